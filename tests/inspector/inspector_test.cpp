// SPDX-License-Identifier: MIT
// The component inspector and its grid driven by real key and mouse events: edits reach the
// shapes as one undo step each, mixed values show blank, bad input is refused, and the
// tree follows the surface's shapes and selection.
#include "inspectorhelpers.h"

#include <QLabel>

using namespace tessal;
using namespace tessal::test;

// Each test starts from the small drawing beside its inspector.
class ComponentInspector : public ::testing::Test, public TDoc
{};

TEST_F(ComponentInspector, KeyAndMouseEditsAreOneUndoStepEach)
{
    ClickShape(A());
    ASSERT_EQ(Cad->WorkingShapes(), std::vector<TMyShape *>{A()});
    EXPECT_TRUE(Grid()->Title()->text().startsWith(A()->Name()));

    TypeInto(Grid(), "Tag", "42");
    EXPECT_EQ(std::pair(A()->Tag(), B()->Tag()), std::pair(42, 0));
    ASSERT_EQ(UndoSteps(), 1u) << Grid()->MessageLabel()->text().toStdString();
    EXPECT_EQ(Cad->UndoRedoShapeList().back().Action, ACT_CHANGE);
    EXPECT_EQ(Shown(Grid(), "Tag"), "42");

    // A nested member through the mouse (a click selects, a second click on the selected
    // value edits it): the pen's width alone changes.
    const TColor colour = A()->Pen().Color;
    const QModelIndex width = Row(Grid(), "Pen/Width");
    QTreeView *view = Grid()->View();
    view->scrollTo(width);
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->visualRect(width).center());
    QTest::qWait(QApplication::doubleClickInterval() + 20);
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->visualRect(width).center());
    ASSERT_TRUE(WaitFor([&] { return view->indexWidget(width) != nullptr; }));
    auto *line = qobject_cast<QLineEdit *>(view->indexWidget(width));
    ASSERT_TRUE(line);
    TypeOver(line, "5");
    EXPECT_EQ(std::pair(A()->Pen().Width, A()->Pen().Color), std::pair(5, colour));
    EXPECT_EQ(UndoSteps(), 2u);
    EXPECT_EQ(Shown(Grid(), "Pen").contains(", 5,"), true);

    // An enumeration by name: Down in the combo picks the next value.
    auto *combo = qobject_cast<QComboBox *>(OpenEditor(Grid(), "MultiInfoAlignment"));
    ASSERT_TRUE(combo);
    EXPECT_EQ(combo->currentText(), "taLeftJustify");
    PickNext(combo);
    EXPECT_EQ(A()->MultiInfoAlignment(), TAlignment::taRightJustify);
    EXPECT_EQ(UndoSteps(), 3u);

    // Writing the value a shape already has records nothing; neither does a number cell
    // opened and left untouched, although its text is shorter than the value.
    TypeInto(Grid(), "Tag", "42");
    EXPECT_EQ(UndoSteps(), 3u);
    A()->SetAngleValue(0.123456791f);
    Grid()->Refresh();
    auto *angle = qobject_cast<QLineEdit *>(OpenEditor(Grid(), "Angle"));
    ASSERT_TRUE(angle);
    QTest::keyClick(angle, Qt::Key_Return);
    QApplication::processEvents();
    EXPECT_EQ(A()->Angle(), 0.123456791f);
    EXPECT_EQ(UndoSteps(), 3u);
    A()->SetAngleValue(0);

    // Each step back restores one edit, in reverse order: {tag, pen width, alignment}.
    using enum TAlignment;
    for (auto [tag, penWidth, alignment] :
         {std::tuple(42, 5, taLeftJustify), {42, 1, taLeftJustify}, {0, 1, taLeftJustify}}) {
        Cad->PopFromUndoRedoShapeList();
        EXPECT_EQ(std::tuple(A()->Tag(), A()->Pen().Width, A()->MultiInfoAlignment()),
                  std::tuple(tag, penWidth, alignment));
    }
}

TEST_F(ComponentInspector, SeveralShapesShowSharedValuesAndTakeEditsTogether)
{
    A()->SetTag(1);
    B()->SetTag(2);
    const auto tags = [this] { return std::pair(A()->Tag(), B()->Tag()); };
    ClickShape(A());
    ClickShape(B(), Qt::ControlModifier);
    ASSERT_EQ(Cad->WorkingShapes(), (std::vector<TMyShape *>{A(), B()}));
    TInspectorGrid *grid = Grid();
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
    EXPECT_EQ(tags(), std::pair(1, 2));
    EXPECT_EQ(UndoSteps(), 0u);

    TypeInto(grid, "Tag", "7");
    EXPECT_EQ(tags(), std::pair(7, 7));
    EXPECT_EQ(UndoSteps(), 1u);
    EXPECT_EQ(Shown(grid, "Tag"), "7");
    Cad->PopFromUndoRedoShapeList();
    EXPECT_EQ(tags(), std::pair(1, 2));

    // A rectangle and a line share only the base properties.
    ClickShape(L(), Qt::ControlModifier);
    EXPECT_FALSE(grid->ViewIndex({"ShowSideHot"}).isValid());
    EXPECT_FALSE(grid->ViewIndex({"ArrowLength"}).isValid());
    EXPECT_TRUE(grid->ViewIndex({"Angle"}).isValid());

    // Shapes shown stay valid through a restack; a deleted one is noticed without touching
    // its freed memory (which the sanitizer run watches).
    const TShapesTarget target(Cad, {A(), B()});
    const std::int32_t gone = B()->ShapeId();
    Cad->BringToFront(A(), false);
    EXPECT_TRUE(target.IsValid());
    Cad->DeleteShapeById(gone, false);
    EXPECT_FALSE(target.IsValid());
}

TEST_F(ComponentInspector, BadValuesAreRefusedWithAVisibleMessage)
{
    ClickShape(L());
    TInspectorGrid *grid = Grid();
    QLabel *message = grid->MessageLabel();
    const int before = L()->Tag();
    const float angle = L()->Angle();

    // {property, input, what the message says}
    const std::tuple<const char *, const char *, const char *> bad[] = {
        {"ArrowLength", "300", "0 to 255"},   {"ArrowLength", "-1", "0 to 255"},
        {"Tag", "abc", "not a whole number"}, {"Tag", "99999999999", "out of range"},
        {"Angle", "1e50", "out of range"},    {"Angle", "north", "not a number"},
    };
    for (auto [property, input, says] : bad) {
        SCOPED_TRACE(input);
        TypeInto(grid, QLatin1String(property), QLatin1String(input));
        EXPECT_TRUE(message->isVisible());
        EXPECT_TRUE(message->text().contains(QLatin1String(says))) << message->text().toStdString();
        EXPECT_EQ(UndoSteps(), 0u);
    }
    EXPECT_EQ(L()->Tag(), before);
    EXPECT_EQ(L()->Angle(), angle);
    EXPECT_EQ(Shown(grid, "ArrowLength"), "30");
    // A good edit clears the message.
    TypeInto(grid, "ArrowLength", "255");
    EXPECT_FALSE(message->isVisible());
    EXPECT_EQ(Shown(grid, "ArrowLength"), "255");

    // Limits of the surface's own properties: a zoom of 0 would make the page vanish.
    Inspector->Tree()->clearSelection();
    TypeInto(grid, "Zoom", "0");
    EXPECT_TRUE(message->isVisible());
    EXPECT_EQ(Cad->Zoom(), 1.0);
    // A grid step far below a pixel only makes every repaint slow.
    TypeInto(grid, "GridOperation/GridWidth", "0.00001");
    EXPECT_TRUE(message->text().contains("GridWidth must lie between 0.1 and 10000"));
    EXPECT_EQ(Cad->GridOperation()->GridWidth(), 20.0);
}

TEST_F(ComponentInspector, ValuesTheOwnerDoesNotTakeAreReported)
{
    Inspector->Tree()->clearSelection();
    TInspectorGrid *grid = Grid();
    QLabel *message = grid->MessageLabel();
    const auto says = [message] { return message->isVisible() ? message->text() : QString(); };

    // The capture distance stays below the grid step; the setter keeps its value.
    ASSERT_EQ(Cad->SnapPixels(), 4);
    TypeInto(grid, "SnapPixels", "200");
    EXPECT_EQ(Cad->SnapPixels(), 4);
    EXPECT_EQ(says(), "SnapPixels did not take the value 200; it is 4.");
    TypeInto(grid, "SnapPixels", "6");
    EXPECT_EQ(std::pair(Cad->SnapPixels(), says()), std::pair(std::uint8_t(6), QString()));

    // Page sizes are millimetres of paper: none, or kilometres, are refused before writing.
    const QSize size = Cad->size();
    const auto page = std::pair(Cad->PageWidth(), Cad->PageHeight());
    for (const char *name : {"PageWidth", "PageHeight"}) {
        for (const char *input : {"0", "4000000000", "10001"}) {
            SCOPED_TRACE(std::string(name) + " " + input);
            TypeInto(grid, QLatin1String(name), QLatin1String(input));
            EXPECT_TRUE(says().startsWith(QLatin1String(name) + " must lie between 1 and 10000"))
                << says().toStdString();
        }
    }
    EXPECT_EQ(std::pair(Cad->PageWidth(), Cad->PageHeight()), page);
    EXPECT_EQ(Cad->size(), size);
    TypeInto(grid, "PageWidth", "1000");
    EXPECT_EQ(std::pair(Cad->PageWidth(), says()), std::pair(1000u, QString()));

    // Reals that come back as asked to the precision of their type are no cause for a
    // message: a shape's angle comes back through its own arithmetic.
    TypeInto(grid, "Ratio", "0.3");
    EXPECT_EQ(std::pair(Cad->Ratio(), says()), std::pair(0.3, QString()));
    ClickShape(L());
    TypeInto(grid, "Angle", "0.1");
    EXPECT_NEAR(L()->Angle(), 0.1f, 1e-6);
    EXPECT_EQ(says(), QString());
}

TEST_F(ComponentInspector, SurfacePropertiesAndNestedObjects)
{
    TInspectorGrid *grid = Grid();
    EXPECT_TRUE(grid->Title()->text().contains("TMyCAD"));
    TypeInto(grid, "GridOperation/GridWidth", "30");
    EXPECT_EQ(Cad->GridOperation()->GridWidth(), 30.0);
    TypeInto(grid, "Zoom", "2");
    EXPECT_EQ(Cad->Zoom(), 2.0);
    TypeInto(grid, "PageHead", "Title text");
    EXPECT_EQ(Cad->PageHead(), "Title text");
    // Surface edits are not shape edits: no undo record.
    EXPECT_EQ(UndoSteps(), 0u);
    // Read-only and event rows cannot be edited.
    TPropertyModel *model = grid->Model();
    EXPECT_FALSE(model->flags(model->IndexOf({"Version"})) & Qt::ItemIsEditable);
    EXPECT_FALSE(model->flags(model->IndexOf({"OnClick"})) & Qt::ItemIsEditable);
    EXPECT_EQ(Shown(grid, "Version"), "2013");
}

TEST_F(ComponentInspector, LabelsAreLinkedByNameFromTheOpenWindows)
{
    auto *status = new QLabel(&Window);
    status->setObjectName("statusXY");
    new QLabel(&Window); // unnamed: not offered
    TInspectorGrid *grid = Grid();
    EXPECT_EQ(Shown(grid, "LabelXY"), "(none)");
    auto *combo = qobject_cast<QComboBox *>(OpenEditor(grid, "LabelXY"));
    ASSERT_TRUE(combo);
    EXPECT_EQ(combo->findText("statusXY"), 1);
    EXPECT_EQ(combo->findText(QString()), -1);
    PickNext(combo);
    EXPECT_EQ(Cad->LabelXY(), status);
    EXPECT_EQ(Shown(grid, "LabelXY"), "statusXY");
    Cad->SetLabelXY(nullptr);
}

TEST_F(ComponentInspector, TreeFollowsTheSurfaceAndGroupMembersEditAlone)
{
    QAbstractItemModel *tree = Inspector->Tree()->model();
    const auto selected = [&](const TMyShape *shape) {
        return Inspector->Tree()->selectionModel()->isSelected(Inspector->IndexOf(shape));
    };
    // One row per layer, in table order; the shapes sit on the current layer.
    ASSERT_EQ(tree->rowCount(), Cad->GetLayersCount());
    const int layer = Cad->GetLayerNoById(Cad->CurrentLayerId());
    const QModelIndex layerItem = tree->index(layer, 0);
    EXPECT_EQ(layerItem.data().toString(), "Layer1");
    EXPECT_EQ(tree->rowCount(layerItem), 3);
    EXPECT_EQ(Inspector->ComponentBox()->count(), 4); // surface + three shapes

    // Selection made on the surface shows in the tree and the grid.
    Cad->SetWorkingShapes(std::vector<TMyShape *>{B()});
    EXPECT_TRUE(WaitFor([&] { return selected(B()); }));
    EXPECT_TRUE(Grid()->Title()->text().startsWith(B()->Name()));

    // A new shape appears; a deleted one goes, and the grid does not keep it.
    const std::int32_t id =
        Cad->AddShapeByCode2(TDrawTool::SpEllipse, "E", {20, 150}, 40, 30, 0, 0, {});
    EXPECT_TRUE(WaitFor([&] { return Inspector->IndexOf(Cad->GetShapeByID(id)).isValid(); }));
    Cad->DeleteShapeById(IdB, false);
    EXPECT_TRUE(WaitFor([&] { return tree->rowCount(tree->index(layer, 0)) == 3; }));
    EXPECT_FALSE(Grid()->Title()->text().startsWith(QString("Shape%1 ").arg(IdB)));

    // Grouped shapes sit under their group; a member is edited on its own while the
    // surface selects its group.
    const std::int32_t group = Cad->GroupShapes(std::vector<TMyShape *>{A(), L()}, false);
    TMyShape *g = Cad->GetShapeByID(group);
    ASSERT_TRUE(g);
    EXPECT_TRUE(WaitFor([&] {
        const QModelIndex index = Inspector->IndexOf(g);
        return index.isValid() && tree->rowCount(index) == 2;
    }));
    ClickShape(A());
    EXPECT_EQ(Cad->WorkingShapes(), std::vector<TMyShape *>{g});
    TypeInto(Grid(), "Tag", "9");
    EXPECT_EQ(std::pair(A()->Tag(), g->Tag()), std::pair(9, 0));
    Cad->PopFromUndoRedoShapeList();
    EXPECT_EQ(A()->Tag(), 0);

    // The combo box picks a shape by name.
    QComboBox *combo = Inspector->ComponentBox();
    const int e = combo->findText(Cad->GetShapeByID(id)->Name(), Qt::MatchStartsWith);
    ASSERT_GE(e, 0);
    combo->setCurrentIndex(e);
    emit combo->activated(e);
    EXPECT_EQ(Cad->WorkingShapes(), std::vector<TMyShape *>{Cad->GetShapeByID(id)});

    // A shape moved to another layer changes neither the number of shapes nor a name: the
    // walk that follows a repaint finds it.
    const std::int32_t other = 1 - layer;
    Cad->GetShapeByID(id)->SetLayerId(Cad->Layers()[std::size_t(other)].Id);
    Cad->update();
    EXPECT_TRUE(
        WaitFor([&] { return Inspector->IndexOf(Cad->GetShapeByID(id)).parent().row() == other; }));
}

TEST_F(ComponentInspector, GroupsAndSorting)
{
    ClickShape(A());
    TInspectorGrid *grid = Grid();
    QAbstractItemModel *view = grid->View()->model();
    const auto names = [view] {
        QStringList list;
        for (int r = 0; r < view->rowCount(); ++r)
            list << view->index(r, 0).data().toString();
        return list;
    };
    EXPECT_EQ(names(), (QStringList{"TMyShape", "Events", "TMyRectangle"}));
    const QModelIndex base = view->index(0, 0);
    EXPECT_EQ(view->index(0, 0, base).data().toString(), "Angle");
    grid->SetGrouped(false);
    const int rows = view->rowCount();
    EXPECT_EQ(rows, A()->MetaObject()->propertyCount());
    grid->SetSorted(true);
    QStringList sorted = names();
    std::sort(sorted.begin(), sorted.end(), [](const QString &a, const QString &b) {
        return a.compare(b, Qt::CaseInsensitive) < 0;
    });
    EXPECT_EQ(names(), sorted);
    EXPECT_EQ(sorted.back(), "Visible");
    grid->SetSorted(false);
    EXPECT_EQ(view->index(rows - 1, 0).data().toString(), "ShowVerticalSideHot");
}
