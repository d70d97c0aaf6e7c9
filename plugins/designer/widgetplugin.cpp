// SPDX-License-Identifier: MIT
// Designer entries for the surface, the rulers and the inspectors.
#include "widgetplugin.h"
#include "userdatataskmenu.h"

#include <tessal/inspector/componentinspector.h>
#include <tessal/inspector/inspectorgrid.h>
#include <tessal/ruler/ruler.h>
#include <tessal/ruler/rulercorner.h>
#include <tessal/surface/cad.h>

#include <QtDesigner/QDesignerFormEditorInterface>
#include <QtDesigner/QExtensionManager>

#include <QPainter>
#include <QPixmap>

namespace tessal {

namespace {

// The palette icons are drawn here rather than shipped as files: a page with a shape, a
// ruler scale, the corner's unit box and a property list.
QIcon DrawIcon(const std::function<void(QPainter &)> &draw)
{
    QPixmap pixmap(32, 32);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    draw(p);
    return QIcon(pixmap);
}

QIcon SurfaceIcon()
{
    return DrawIcon([](QPainter &p) {
        p.setPen(Qt::black);
        p.setBrush(Qt::white);
        p.drawRect(3, 3, 26, 26);
        p.setBrush(QColor(80, 140, 220));
        p.drawEllipse(8, 10, 12, 10);
        p.drawLine(14, 24, 26, 8);
    });
}

QIcon RulerIcon()
{
    return DrawIcon([](QPainter &p) {
        p.setPen(Qt::black);
        p.setBrush(QColor(250, 230, 150));
        p.drawRect(1, 10, 30, 12);
        for (int x = 4; x < 30; x += 4)
            p.drawLine(x, 10, x, x % 8 == 0 ? 18 : 14);
    });
}

QIcon CornerIcon()
{
    return DrawIcon([](QPainter &p) {
        p.setPen(Qt::black);
        p.setBrush(QColor(250, 230, 150));
        p.drawRect(4, 4, 24, 24);
        p.drawText(QRect(4, 4, 24, 24), Qt::AlignCenter, QStringLiteral("mm"));
    });
}

QIcon GridIcon()
{
    return DrawIcon([](QPainter &p) {
        p.setPen(Qt::black);
        p.setBrush(Qt::white);
        p.drawRect(3, 3, 26, 26);
        for (int y = 10; y < 29; y += 6)
            p.drawLine(3, y, 29, y);
        p.drawLine(14, 3, 14, 29);
    });
}

QString Dom(const QString &className, const QString &name, int w, int h)
{
    return QStringLiteral("<ui language=\"c++\"><widget class=\"%1\" name=\"%2\">"
                          "<property name=\"geometry\"><rect><x>0</x><y>0</y>"
                          "<width>%3</width><height>%4</height></rect></property>"
                          "</widget></ui>")
        .arg(className, name)
        .arg(w)
        .arg(h);
}

} // namespace

TWidgetPlugin::TWidgetPlugin(TEntry entry, QObject *parent)
    : QObject(parent)
    , m_Entry(std::move(entry))
{}

void TWidgetPlugin::initialize(QDesignerFormEditorInterface *core)
{
    if (m_Initialized)
        return;
    m_Initialized = true;
    // Designer edits the surface's user data as the texts of UserDataTexts; a task-menu
    // entry on the surface opens the key/value editor on it as well.
    if (core && m_Entry.ClassName == QLatin1String("tessal::TMyCAD")) {
        QExtensionManager *manager = core->extensionManager();
        manager->registerExtensions(new TUserDataTaskMenuFactory(manager),
                                    Q_TYPEID(QDesignerTaskMenuExtension));
    }
}

TTessalDesignerPlugins::TTessalDesignerPlugins(QObject *parent)
    : QObject(parent)
{
    const QString inc = QStringLiteral("tessal/%1.h");
    const TWidgetPlugin::TEntry entries[] = {
        {QStringLiteral("tessal::TMyCAD"), inc.arg(QLatin1String("surface/cad")),
         tr("Vector drawing surface"),
         Dom(QStringLiteral("tessal::TMyCAD"), QStringLiteral("cad"), 400, 300), SurfaceIcon(),
         [](QWidget *parent) { return new TMyCAD(parent); }},
        {QStringLiteral("tessal::TMyRuler"), inc.arg(QLatin1String("ruler/ruler")),
         tr("Ruler beside a drawing surface"),
         Dom(QStringLiteral("tessal::TMyRuler"), QStringLiteral("ruler"), 300, 24), RulerIcon(),
         [](QWidget *parent) { return new TMyRuler(Qt::Horizontal, parent); }},
        {QStringLiteral("tessal::TMyRulerCorner"), inc.arg(QLatin1String("ruler/rulercorner")),
         tr("Corner between two rulers; switches the unit"),
         Dom(QStringLiteral("tessal::TMyRulerCorner"), QStringLiteral("rulerCorner"), 24, 24),
         CornerIcon(), [](QWidget *parent) { return new TMyRulerCorner(parent); }},
        {QStringLiteral("tessal::TInspectorGrid"),
         inc.arg(QLatin1String("inspector/inspectorgrid")), tr("Property grid"),
         Dom(QStringLiteral("tessal::TInspectorGrid"), QStringLiteral("inspectorGrid"), 250, 300),
         GridIcon(), [](QWidget *parent) { return new TInspectorGrid(parent); }},
        {QStringLiteral("tessal::TComponentInspector"),
         inc.arg(QLatin1String("inspector/componentinspector")),
         tr("Component inspector for a drawing surface"),
         Dom(QStringLiteral("tessal::TComponentInspector"), QStringLiteral("componentInspector"),
             250, 400),
         GridIcon(), [](QWidget *parent) { return new TComponentInspector(parent); }},
    };
    for (const auto &entry : entries)
        m_Widgets << new TWidgetPlugin(entry, this);
}

} // namespace tessal
