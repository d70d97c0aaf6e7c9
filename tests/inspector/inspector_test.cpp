// SPDX-License-Identifier: MIT
// The component inspector and its grid driven by real key and mouse events: edits reach the
// shapes as one undo step each, mixed values show blank, bad input is refused, and the
// tree follows the surface's shapes and selection.
#include "inspectorhelpers.h"

#include <QComboBox>
#include <QLabel>
#include <QSortFilterProxyModel>

using namespace tessal;
using namespace tessal::test;

TEST(Inspector, KeyAndMouseEditsAreOneUndoStepEach)
{
    TDoc doc;
    doc.ClickShape(doc.A());
    ASSERT_EQ(doc.Cad->WorkingShapes(), std::vector<TMyShape *>{doc.A()});
    EXPECT_TRUE(doc.Grid()->Title()->text().startsWith(doc.A()->Name()));

    TypeInto(doc.Grid(), "Tag", "42");
    EXPECT_EQ(doc.A()->Tag(), 42);
    EXPECT_EQ(doc.B()->Tag(), 0);
    ASSERT_EQ(doc.UndoSteps(), 1u) << doc.Grid()->MessageLabel()->text().toStdString();
    EXPECT_EQ(doc.Cad->UndoRedoShapeList().back().Action, ACT_CHANGE);
    EXPECT_EQ(Shown(doc.Grid(), "Tag"), "42");

    // A nested member through the mouse (a click selects, a second click on the selected
    // value edits it): the pen's width alone changes.
    const TColor colour = doc.A()->Pen().Color;
    const QModelIndex width = Row(doc.Grid(), "Pen/Width");
    QTreeView *view = doc.Grid()->View();
    view->scrollTo(width);
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->visualRect(width).center());
    QTest::qWait(QApplication::doubleClickInterval() + 20);
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->visualRect(width).center());
    ASSERT_TRUE(WaitFor([&] { return view->indexWidget(width) != nullptr; }));
    auto *line = qobject_cast<QLineEdit *>(view->indexWidget(width));
    ASSERT_TRUE(line);
    QTest::keyClick(line, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(line, "5");
    QTest::keyClick(line, Qt::Key_Return);
    QApplication::processEvents(); // the view commits on its next turn
    EXPECT_EQ(doc.A()->Pen().Width, 5);
    EXPECT_EQ(doc.A()->Pen().Color, colour);
    EXPECT_EQ(doc.UndoSteps(), 2u);
    EXPECT_EQ(Shown(doc.Grid(), "Pen").contains(", 5,"), true);

    // An enumeration by name: Down in the combo picks the next value.
    auto *combo = qobject_cast<QComboBox *>(OpenEditor(doc.Grid(), "MultiInfoAlignment"));
    ASSERT_TRUE(combo);
    EXPECT_EQ(combo->currentText(), "taLeftJustify");
    QTest::keyClick(combo, Qt::Key_Down);
    QTest::keyClick(combo, Qt::Key_Return);
    QApplication::processEvents();
    EXPECT_EQ(doc.A()->MultiInfoAlignment(), TAlignment::taRightJustify);
    EXPECT_EQ(doc.UndoSteps(), 3u);

    // Writing the value a shape already has records nothing.
    TypeInto(doc.Grid(), "Tag", "42");
    EXPECT_EQ(doc.UndoSteps(), 3u);

    // Each step back restores one edit, in reverse order.
    doc.Cad->PopFromUndoRedoShapeList();
    EXPECT_EQ(doc.A()->MultiInfoAlignment(), TAlignment::taLeftJustify);
    EXPECT_EQ(doc.A()->Pen().Width, 5);
    doc.Cad->PopFromUndoRedoShapeList();
    EXPECT_EQ(doc.A()->Pen().Width, 1);
    EXPECT_EQ(doc.A()->Tag(), 42);
    doc.Cad->PopFromUndoRedoShapeList();
    EXPECT_EQ(doc.A()->Tag(), 0);
}

TEST(Inspector, SeveralShapesShowSharedValuesAndTakeEditsTogether)
{
    TDoc doc;
    doc.A()->SetTag(1);
    doc.B()->SetTag(2);
    doc.ClickShape(doc.A());
    doc.ClickShape(doc.B(), Qt::ControlModifier);
    ASSERT_EQ(doc.Cad->WorkingShapes(), (std::vector<TMyShape *>{doc.A(), doc.B()}));
    TInspectorGrid *grid = doc.Grid();
    const QModelIndex tag = Row(grid, "Tag");
    EXPECT_EQ(tag.data().toString(), QString());
    EXPECT_TRUE(tag.data(TPropertyModel::MixedRole).toBool());
    EXPECT_EQ(Shown(grid, "Caption"), QString()); // "A" and "B"
    EXPECT_EQ(Shown(grid, "Pen/Width"), "1");
    EXPECT_FALSE(Row(grid, "Locked").data(TPropertyModel::MixedRole).toBool());
    // The rectangles' own properties are shared too.
    EXPECT_TRUE(grid->ViewIndex({"ShowSideHot"}).isValid());

    // Leaving a blank mixed cell blank changes nothing.
    TypeInto(grid, "Tag", QString());
    EXPECT_EQ(doc.A()->Tag(), 1);
    EXPECT_EQ(doc.B()->Tag(), 2);
    EXPECT_EQ(doc.UndoSteps(), 0u);

    TypeInto(grid, "Tag", "7");
    EXPECT_EQ(doc.A()->Tag(), 7);
    EXPECT_EQ(doc.B()->Tag(), 7);
    EXPECT_EQ(doc.UndoSteps(), 1u);
    EXPECT_EQ(Shown(grid, "Tag"), "7");
    doc.Cad->PopFromUndoRedoShapeList();
    EXPECT_EQ(doc.A()->Tag(), 1);
    EXPECT_EQ(doc.B()->Tag(), 2);

    // A rectangle and a line share only the base properties.
    doc.ClickShape(doc.L(), Qt::ControlModifier);
    EXPECT_FALSE(grid->ViewIndex({"ShowSideHot"}).isValid());
    EXPECT_FALSE(grid->ViewIndex({"ArrowLength"}).isValid());
    EXPECT_TRUE(grid->ViewIndex({"Angle"}).isValid());
}

TEST(Inspector, BadValuesAreRefusedWithAVisibleMessage)
{
    TDoc doc;
    doc.ClickShape(doc.L());
    TInspectorGrid *grid = doc.Grid();
    QLabel *message = grid->MessageLabel();
    const int before = doc.L()->Tag();
    const float angle = doc.L()->Angle();

    struct TBad
    {
        const char *Property;
        const char *Input;
        const char *Says;
    };
    const TBad bad[] = {
        {"ArrowLength", "300", "0 to 255"},   {"ArrowLength", "-1", "0 to 255"},
        {"Tag", "abc", "not a whole number"}, {"Tag", "99999999999", "out of range"},
        {"Angle", "1e50", "out of range"},    {"Angle", "north", "not a number"},
    };
    for (const TBad &b : bad) {
        SCOPED_TRACE(b.Input);
        TypeInto(grid, QLatin1String(b.Property), QLatin1String(b.Input));
        EXPECT_TRUE(message->isVisible());
        EXPECT_TRUE(message->text().contains(QLatin1String(b.Says)))
            << message->text().toStdString();
        EXPECT_EQ(doc.UndoSteps(), 0u);
    }
    EXPECT_EQ(doc.L()->Tag(), before);
    EXPECT_EQ(doc.L()->Angle(), angle);
    EXPECT_EQ(Shown(grid, "ArrowLength"), "30");
    // A good edit clears the message.
    TypeInto(grid, "ArrowLength", "255");
    EXPECT_FALSE(message->isVisible());
    EXPECT_EQ(Shown(grid, "ArrowLength"), "255");

    // Limits of the surface's own properties: a zoom of 0 would make the page vanish.
    doc.Inspector->Tree()->clearSelection();
    TypeInto(grid, "Zoom", "0");
    EXPECT_TRUE(message->isVisible());
    EXPECT_EQ(doc.Cad->Zoom(), 1.0);
}

TEST(Inspector, SurfacePropertiesAndNestedObjects)
{
    TDoc doc;
    TInspectorGrid *grid = doc.Grid();
    EXPECT_TRUE(grid->Title()->text().contains("TMyCAD"));
    TypeInto(grid, "GridOperation/GridWidth", "30");
    EXPECT_EQ(doc.Cad->GridOperation()->GridWidth(), 30.0);
    TypeInto(grid, "Zoom", "2");
    EXPECT_EQ(doc.Cad->Zoom(), 2.0);
    TypeInto(grid, "PageHead", "Title text");
    EXPECT_EQ(doc.Cad->PageHead(), "Title text");
    // Surface edits are not shape edits: no undo record.
    EXPECT_EQ(doc.UndoSteps(), 0u);
    // Read-only and event rows cannot be edited.
    TPropertyModel *model = grid->Model();
    EXPECT_FALSE(model->flags(model->IndexOf({"Version"})) & Qt::ItemIsEditable);
    EXPECT_FALSE(model->flags(model->IndexOf({"OnClick"})) & Qt::ItemIsEditable);
    EXPECT_EQ(Shown(grid, "Version"), "2013");
}

TEST(Inspector, LabelsAreLinkedByNameFromTheOpenWindows)
{
    TDoc doc;
    auto *status = new QLabel(&doc.Window);
    status->setObjectName("statusXY");
    new QLabel(&doc.Window); // unnamed: not offered
    TInspectorGrid *grid = doc.Grid();
    EXPECT_EQ(Shown(grid, "LabelXY"), "(none)");
    auto *combo = qobject_cast<QComboBox *>(OpenEditor(grid, "LabelXY"));
    ASSERT_TRUE(combo);
    EXPECT_EQ(combo->findText("statusXY"), 1);
    EXPECT_EQ(combo->findText(QString()), -1);
    QTest::keyClick(combo, Qt::Key_Down);
    QTest::keyClick(combo, Qt::Key_Return);
    QApplication::processEvents();
    EXPECT_EQ(doc.Cad->LabelXY(), status);
    EXPECT_EQ(Shown(grid, "LabelXY"), "statusXY");
    doc.Cad->SetLabelXY(nullptr);
}

TEST(Inspector, TreeFollowsTheSurfaceAndGroupMembersEditAlone)
{
    TDoc doc;
    QTreeWidget *tree = doc.Inspector->Tree();
    // One row per layer, in table order; the shapes sit on the current layer.
    ASSERT_EQ(tree->topLevelItemCount(), doc.Cad->GetLayersCount());
    const int layer = doc.Cad->GetLayerNoById(doc.Cad->CurrentLayerId());
    QTreeWidgetItem *layerItem = tree->topLevelItem(layer);
    EXPECT_EQ(layerItem->text(0), "Layer1");
    EXPECT_EQ(layerItem->childCount(), 3);
    EXPECT_EQ(doc.Inspector->ComponentBox()->count(), 4); // surface + three shapes

    // Selection made on the surface shows in the tree and the grid.
    doc.Cad->SetWorkingShapes(std::vector<TMyShape *>{doc.B()});
    EXPECT_TRUE(WaitFor([&] { return doc.Inspector->ItemOf(doc.B())->isSelected(); }));
    EXPECT_TRUE(doc.Grid()->Title()->text().startsWith(doc.B()->Name()));

    // A new shape appears; a deleted one goes, and the grid does not keep it.
    const std::int32_t id =
        doc.Cad->AddShapeByCode2(TDrawTool::SpEllipse, "E", {20, 150}, 40, 30, 0, 0, {});
    EXPECT_TRUE(WaitFor([&] { return doc.Inspector->ItemOf(doc.Cad->GetShapeByID(id)); }));
    doc.Cad->DeleteShapeById(doc.IdB, false);
    EXPECT_TRUE(WaitFor([&] { return tree->topLevelItem(layer)->childCount() == 3; }));
    EXPECT_FALSE(doc.Grid()->Title()->text().startsWith(QString("Shape%1 ").arg(doc.IdB)));

    // Grouped shapes sit under their group; a member is edited on its own while the
    // surface selects its group.
    const std::int32_t group =
        doc.Cad->GroupShapes(std::vector<TMyShape *>{doc.A(), doc.L()}, false);
    TMyShape *g = doc.Cad->GetShapeByID(group);
    ASSERT_TRUE(g);
    EXPECT_TRUE(WaitFor(
        [&] { return doc.Inspector->ItemOf(g) && doc.Inspector->ItemOf(g)->childCount() == 2; }));
    doc.ClickShape(doc.A());
    EXPECT_EQ(doc.Cad->WorkingShapes(), std::vector<TMyShape *>{g});
    TypeInto(doc.Grid(), "Tag", "9");
    EXPECT_EQ(doc.A()->Tag(), 9);
    EXPECT_EQ(g->Tag(), 0);
    doc.Cad->PopFromUndoRedoShapeList();
    EXPECT_EQ(doc.A()->Tag(), 0);

    // The combo box picks a shape by name.
    QComboBox *combo = doc.Inspector->ComponentBox();
    const int e = combo->findText(doc.Cad->GetShapeByID(id)->Name(), Qt::MatchStartsWith);
    ASSERT_GE(e, 0);
    combo->setCurrentIndex(e);
    emit combo->activated(e);
    EXPECT_EQ(doc.Cad->WorkingShapes(), std::vector<TMyShape *>{doc.Cad->GetShapeByID(id)});
}

TEST(Inspector, GroupsAndSorting)
{
    TDoc doc;
    doc.ClickShape(doc.A());
    TInspectorGrid *grid = doc.Grid();
    QAbstractItemModel *view = grid->View()->model();
    QStringList groups;
    for (int r = 0; r < view->rowCount(); ++r)
        groups << view->index(r, 0).data().toString();
    EXPECT_EQ(groups, (QStringList{"TMyShape", "Events", "TMyRectangle"}));
    const QModelIndex base = view->index(0, 0);
    EXPECT_EQ(view->index(0, 0, base).data().toString(), "Angle");
    grid->SetGrouped(false);
    const int rows = view->rowCount();
    EXPECT_EQ(rows, doc.A()->MetaObject()->propertyCount());
    grid->SetSorted(true);
    QStringList names;
    for (int r = 0; r < rows; ++r)
        names << view->index(r, 0).data().toString();
    QStringList sorted = names;
    std::sort(sorted.begin(), sorted.end(), [](const QString &a, const QString &b) {
        return a.compare(b, Qt::CaseInsensitive) < 0;
    });
    EXPECT_EQ(names, sorted);
    EXPECT_EQ(names.back(), "Visible");
    grid->SetSorted(false);
    EXPECT_EQ(view->index(rows - 1, 0).data().toString(), "ShowVerticalSideHot");
}
