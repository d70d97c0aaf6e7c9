// SPDX-License-Identifier: MIT
// The Designer plugin loads, lists the widgets with icons and groups, creates each of them,
// its task-menu entry edits a surface's user data, and a form keeps that data.
#include "userdatataskmenu.h"

#include <tessal/shapes/userdatadialogs.h>
#include <tessal/surface/cad.h>

#include <gtest/gtest.h>

#include <QtDesigner/QFormBuilder>
#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>

#include <QAction>
#include <QApplication>
#include <QBuffer>
#include <QFileInfo>
#include <QPluginLoader>
#include <QTimer>

#include <memory>

using namespace tessal;

TEST(Designer, PluginListsAndCreatesEveryWidget)
{
    QPluginLoader loader(QStringLiteral(TESSAL_DESIGNER_PLUGIN));
    ASSERT_TRUE(loader.load()) << loader.errorString().toStdString();
    auto *collection = qobject_cast<QDesignerCustomWidgetCollectionInterface *>(loader.instance());
    ASSERT_TRUE(collection);
    QStringList names;
    for (QDesignerCustomWidgetInterface *w : collection->customWidgets()) {
        SCOPED_TRACE(w->name().toStdString());
        names << w->name();
        EXPECT_EQ(std::tuple(w->group(), w->icon().isNull(), w->toolTip().isEmpty(),
                             w->isContainer(), w->includeFile().left(7),
                             w->domXml().contains(QStringLiteral("class=\"%1\"").arg(w->name()))),
                  std::tuple("Tessal", false, false, false, "tessal/", true));
        w->initialize(nullptr);
        EXPECT_TRUE(w->isInitialized());
        QWidget parent;
        QWidget *widget = w->createWidget(&parent);
        ASSERT_TRUE(widget);
        EXPECT_EQ(QString::fromLatin1(widget->metaObject()->className()), w->name());
        EXPECT_EQ(widget->parent(), &parent);
    }
    EXPECT_EQ(names, (QStringList{"tessal::TMyCAD", "tessal::TMyRuler", "tessal::TMyRulerCorner",
                                  "tessal::TInspectorGrid", "tessal::TComponentInspector"}));
    // A surface created by the plugin is the library's class.
    QWidget *cad = collection->customWidgets().front()->createWidget(nullptr);
    EXPECT_TRUE(qobject_cast<TMyCAD *>(cad));
    delete cad;
}

TEST(Designer, TaskMenuEditsTheSurfaceUserData)
{
    TMyCAD cad;
    cad.UserData().AddKeyandValue(QStringLiteral("a"), QStringLiteral("1"));
    TUserDataTaskMenuFactory factory;
    TUserDataTaskMenu menu(&cad, nullptr);
    ASSERT_EQ(menu.taskActions().size(), 1);
    EXPECT_EQ(menu.preferredEditAction(), menu.taskActions().front());
    QTimer::singleShot(0, [] {
        auto *form = qobject_cast<TUserKeyFrm *>(QApplication::activeModalWidget());
        ASSERT_TRUE(form);
        EXPECT_EQ(form->RowCount(), 1);
        form->AppendRow(QStringLiteral("b"), QStringLiteral("2"));
        form->accept();
    });
    menu.taskActions().front()->trigger();
    EXPECT_EQ(std::tuple(cad.UserData().GetCount(), cad.UserData().GetValueByKey("b")),
              std::tuple(2, "2"));
}

TEST(Designer, UserDataTravelsThroughAFormFile)
{
    // Records a form file must give back exactly: an empty value, duplicate keys, and the
    // characters that separate or escape.
    const std::vector<TUserDataRecord> records = {{"owner", "tessal"}, {"empty", ""},
                                                  {"a=b", "c=d"},      {"back\\slash\\", "\\"},
                                                  {"owner", "again"},  {"", "no key"}};
    TUserData data;
    data.SetUserDataRecord(records);
    EXPECT_EQ(data.Texts(), (QStringList{"owner=tessal", "empty", "a\\=b=c=d",
                                         "back\\\\slash\\\\=\\", "owner=again", "=no key"}));
    TUserData back;
    back.SetTexts(data.Texts());
    EXPECT_EQ(back, data);

    QWidget form;
    form.setObjectName("Form");
    auto *cad = new TMyCAD(&form);
    cad->setObjectName("cad");
    cad->SetUserData(data);
    QFormBuilder builder;
    builder.addPluginPath(QFileInfo(QStringLiteral(TESSAL_DESIGNER_PLUGIN)).absolutePath());
    QBuffer file;
    file.open(QIODevice::WriteOnly);
    builder.save(&file, &form);
    const QByteArray xml = file.data();
    EXPECT_TRUE(xml.contains("<property name=\"UserDataTexts\"")) << xml.toStdString();
    file.close();
    file.open(QIODevice::ReadOnly);
    std::unique_ptr<QWidget> loaded(builder.load(&file));
    ASSERT_TRUE(loaded) << builder.errorString().toStdString();
    auto *copy = loaded->findChild<TMyCAD *>("cad");
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->UserData(), data);
}
