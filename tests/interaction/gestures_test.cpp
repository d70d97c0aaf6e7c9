// SPDX-License-Identifier: MIT
// Selecting, dragging, resizing, rotating and node editing with real mouse events: the
// selections and events in order, the exact geometry, and undo records per gesture.
#include "common/paintspy.h"
#include "mousehelpers.h"
#include "surface/rendertestshapes.h"

#include <tessal/geometry/canvasmodes.h>
#include <tessal/shapes/polyline.h>
#include <tessal/shapes/shape.h>

#include <gtest/gtest.h>

#include <QPaintEvent>
#include <QStringList>

#include <cmath>
#include <numbers>
#include <random>
#include <span>

namespace tessal::test {
namespace {

QString NameOf(const TMyShape *shape)
{
    return shape ? shape->Name() : "-";
}

// The control's own events come first, then the shape-level ones, in the machine's order.
TEST(MouseSelecting, ClicksShiftClicksBandsAndClickThroughInOrder)
{
    TMouseSurface s;
    TMyShape *big = AddRectangle(s.cad, 50, 50, 350, 250);
    TMyShape *small = AddRectangle(s.cad, 100, 100, 140, 140);
    TMyShape *other = AddRectangle(s.cad, 400, 50, 450, 100);
    s.cad.BringToFront(big, false); // the big one now lies over the small one
    s.cad.ClearWorkingShapes();
    s.cad.ClearAllUndoStuff();
    QStringList log;
    s.cad.SetOnMouseDown([&](TMyCAD *, TMouseButton, TShiftState, int, int) { log << "down"; });
    s.cad.SetOnMouseUp([&](TMyCAD *, TMouseButton, TShiftState, int, int) { log << "up"; });
    s.cad.SetOnShapeSelected([&](TMyCAD *, TMyShape *last, TMyShape *now) {
        log << QString("sel %1>%2").arg(NameOf(last), NameOf(now));
    });
    for (TMyShape *shape : {big, small})
        shape->SetOnClick([&](TMyCAD *sender, TMyShape *clicked) {
            log << QString("click %1%2").arg(NameOf(clicked), sender == &s.cad ? "" : " by?");
        });

    s.Click({60, 60}); // the top one, on its outline
    EXPECT_EQ(s.cad.WorkingShapes(), std::vector<TMyShape *>{big});
    // A click without movement inside the selected big shape reaches the small one.
    s.Click({120, 120});
    EXPECT_EQ(s.cad.WorkingShapes(), std::vector<TMyShape *>{small});
    // Shift adds without dragging, Shift on a selected shape removes it.
    s.Drag({420, 70}, {440, 90}, Qt::ShiftModifier);
    EXPECT_EQ(s.cad.WorkingShapes(), (std::vector<TMyShape *>{small, other}));
    EXPECT_EQ(other->GetLeftTop().X, 400);
    s.Click({120, 120}, Qt::ShiftModifier);
    EXPECT_EQ(s.cad.WorkingShapes(), std::vector<TMyShape *>{other});
    // A press on nothing empties the selection; a band adds what lies wholly inside it.
    s.Click({600, 600});
    EXPECT_TRUE(s.cad.WorkingShapes().empty());
    s.Drag({90, 30}, {460, 150});
    EXPECT_EQ(s.cad.WorkingShapes(), (std::vector<TMyShape *>{small, other}));

    // Each shape's own click follows the selection event, with the control as sender.
    // clang-format off
    const QStringList expected{
        "down", "sel ->Shape0", "click Shape0", "up",              // new shape
        "down", "sel Shape0>Shape0", "click Shape0",
        "up", "sel Shape0>Shape1", "click Shape1",                 // click-through
        "down", "sel Shape1>-", "sel ->Shape2", "up",              // shift adds
        "down", "up",                                              // shift removes
        "down", "sel Shape2>-", "up",                              // nothing
        "down", "up"};                                             // band
    // clang-format on
    EXPECT_EQ(log, expected);
    EXPECT_TRUE(s.cad.UndoRedoShapeList().empty());
}

// A press takes the topmost shape it hits, except that a connector box below it wins; shapes
// of hidden layers are passed over even when every layer can be operated.
TEST(MouseSelecting, ConnectorBoxesWinFromBelowAndHiddenLayersAreSkipped)
{
    TMouseSurface s;
    TMyShape *box = AddByCode(s.cad, TDrawTool::SpLineLinkLine, {{100, 100}, {160, 160}});
    TMyShape *cover = AddRectangle(s.cad, 50, 50, 300, 300);
    s.cad.SetOperateAllLayer(true);
    const std::int32_t shown = s.cad.CurrentLayerId();
    ASSERT_TRUE(s.cad.SetCurrentLayerId(s.cad.NewLayer(QStringLiteral("hidden"), false)));
    AddRectangle(s.cad, 40, 40, 320, 320);
    ASSERT_TRUE(s.cad.SetCurrentLayerId(shown));
    s.cad.ClearWorkingShapes();

    s.Click({130, 130});
    EXPECT_EQ(s.cad.WorkingShapes(), std::vector<TMyShape *>{box});
    s.Click({600, 600});
    s.Click({250, 250});
    EXPECT_EQ(s.cad.WorkingShapes(), std::vector<TMyShape *>{cover});
}

// A drag moves every working shape by the mouse's move as one step; undo restores the
// drawing byte for byte; a drag that ends where it began records nothing.
TEST(MouseGestures, DragMovesAllWorkingShapesAsOneStep)
{
    for (const TDragMode mode : {TDragMode::dgBoth, TDragMode::dgHorz, TDragMode::dgVert}) {
        TMouseSurface s;
        TMyShape *a = AddRectangle(s.cad, 100, 100, 160, 140);
        TMyShape *b = AddRectangle(s.cad, 200, 100, 240, 180);
        TMyLinkLine *link = AddConnector(s.cad, a, b);
        s.cad.ChangeLinkShapes(link);
        s.cad.ClearAllUndoStuff();
        s.cad.SetDragShapeMode(mode);
        const TMyPointArray linkBefore = link->Points();
        const QByteArray before = Saved(s.cad);
        s.Click({150, 100});
        s.Click({230, 100}, Qt::ShiftModifier);
        s.Drag({150, 100}, {150, 100}); // no movement
        EXPECT_TRUE(s.cad.UndoRedoShapeList().empty());

        std::vector<QString> dragged;
        s.cad.SetOnShapeMouseDragged([&](TMyCAD *, TMyShape *shape, TMyPoint, TMyPoint &) {
            dragged.push_back(shape->Name());
        });
        s.Drag({150, 100}, {187, 71});
        const float dx = mode == TDragMode::dgVert ? 0 : 37;
        const float dy = mode == TDragMode::dgHorz ? 0 : -29;
        ExpectNear(a->Points(), {{100 + dx, 100 + dy},
                                 {160 + dx, 100 + dy},
                                 {160 + dx, 140 + dy},
                                 {100 + dx, 140 + dy}});
        EXPECT_EQ(b->GetLeftTop().X, 200 + dx);
        EXPECT_EQ(b->GetLeftTop().Y, 100 + dy);
        EXPECT_EQ(StepCount(s.cad), 1);
        // Both shapes, and the path of the connector bound to them.
        EXPECT_EQ(s.cad.UndoRedoShapeList().size(), 3u);
        EXPECT_EQ(dragged, std::vector<QString>{a->Name()});
        if (mode == TDragMode::dgBoth) {
            EXPECT_NE(link->Points(), linkBefore); // the connector followed
        }
        EXPECT_TRUE(RelationsValid(s.cad));
        s.cad.PopFromUndoRedoShapeList();
        EXPECT_EQ(Saved(s.cad), before);
    }
}

// The corner handle of a rectangle moves that corner; a line's end handle its end; a
// rotation by the handle turns the shape by the angle the mouse swept.
TEST(MouseGestures, ResizeAndRotateByHandles)
{
    TMouseSurface s;
    TMyShape *box = AddRectangle(s.cad, 100, 100, 200, 160);
    const QByteArray before = Saved(s.cad);
    s.cad.ClearAllUndoStuff();
    int resized = 0, finished = 0;
    s.cad.SetOnShapeMouseResized([&](TMyCAD *, TMyShape *, TMyPoint, TMyPoint &) { ++resized; });
    s.cad.SetOnShapeMouseResizeFinished(
        [&](TMyCAD *, TMyShape *, TMyPoint, TMyPoint &) { ++finished; });
    s.Click({150, 100});
    s.Drag({201, 161}, {251, 191}); // corner 2 goes where the mouse lets go
    ExpectNear(box->Points(), {{100, 100}, {251, 100}, {251, 191}, {100, 191}});
    EXPECT_EQ(resized, 1);
    EXPECT_EQ(finished, 1);
    EXPECT_EQ(StepCount(s.cad), 1);
    s.cad.PopFromUndoRedoShapeList();
    EXPECT_EQ(Saved(s.cad), before);

    TMyShape *line = AddByCode(s.cad, TDrawTool::SpLine, {{300, 300}, {400, 300}});
    s.cad.ClearAllUndoStuff();
    s.Drag({400, 300}, {420, 340});
    ExpectNear(line->Points(), {{300, 300}, {420, 340}});

    s.cad.SetShapeTool(TDrawTool::SpRotateSelecting);
    s.Click({150, 100});
    // The box's centre is (150, 130); its corner (200, 160) swept to straight below it is a
    // quarter turn less the corner's own angle.
    s.Drag({200, 160}, {150, 130 + 71});
    EXPECT_EQ(StepCount(s.cad), 2);
    const TMyPoint c = box->GetCenterPoint();
    EXPECT_NEAR(c.X, 150, 1e-3);
    EXPECT_NEAR(c.Y, 130, 1e-3);
    EXPECT_NE(box->Angle(), 0.0f);
    EXPECT_TRUE(RelationsValid(s.cad));

    // A member selected on its own turns alone, about its group's centre (180, 120), and
    // one step takes it back.
    TMouseSurface g;
    TMyShape *const members[] = {AddRectangle(g.cad, 100, 100, 160, 140),
                                 AddRectangle(g.cad, 200, 100, 260, 140)};
    TMyShape *group = g.cad.GetShapeByID(g.cad.GroupShapes(members, false));
    g.cad.ClearAllUndoStuff();
    const QByteArray grouped = Saved(g.cad);
    const TMyPointArray sibling = members[1]->Points(), outline = group->Points();
    g.cad.SetShapeTool(TDrawTool::SpRotateSelecting);
    g.Click({130, 120}); // the group
    g.Click({130, 120}); // its member
    ASSERT_EQ(g.cad.WorkingShapes(), std::vector<TMyShape *>{members[0]});
    g.Drag({160, 140}, {200, 140}); // a quarter turn about (180, 120)
    ExpectNear(members[0]->Points(), {{160, 200}, {160, 140}, {200, 140}, {200, 200}});
    EXPECT_EQ(members[1]->Points(), sibling);
    EXPECT_EQ(group->Points(), outline);
    EXPECT_EQ(StepCount(g.cad), 1);
    g.cad.PopFromUndoRedoShapeList();
    EXPECT_EQ(Saved(g.cad), grouped);
}

// A group's box scales its members in the box's frame: a slanted line keeps its ends on the
// box, and a member turned against the box stays the same shape at its angle, with its
// centre where the box takes it.
TEST(MouseGestures, ResizingAGroupScalesSlantedAndTurnedMembersWithItsBox)
{
    TMouseSurface s;
    TMyShape *line = AddByCode(s.cad, TDrawTool::SpLine, {{100, 100}, {200, 200}});
    line->SetAngleValue(float(std::numbers::pi / 4)); // as painting leaves it
    TMyShape *square = AddRectangle(s.cad, 140, 170, 160, 190);
    square->RotateChangeValueByAngle({150, 180}, std::numbers::pi / 4);
    TMyShape *const members[] = {line, square};
    TMyShape *group = s.cad.GetShapeByID(s.cad.GroupShapes(members, false));
    s.cad.ClearAllUndoStuff();
    const QByteArray before = Saved(s.cad);
    ASSERT_EQ(s.cad.WorkingShapes(), std::vector<TMyShape *>{group}); // grouping selects it
    s.Drag({200, 200}, {300, 200}); // twice as wide, from the left side
    ExpectNear(line->Points(), {{100, 100}, {300, 200}});
    const TMyPoint c = square->GetCenterPoint();
    EXPECT_NEAR(c.X, 200, 1e-3);
    EXPECT_NEAR(c.Y, 180, 1e-3);
    const auto &p = square->Points();
    for (int i = 0; i < 4; ++i) {
        const TMyPoint a = p[i], b = p[(i + 1) % 4];
        EXPECT_NEAR(std::hypot(b.X - a.X, b.Y - a.Y), 20 * std::sqrt(2.5), 1e-3) << i;
        EXPECT_NEAR(std::abs(b.X - a.X), std::abs(b.Y - a.Y), 1e-3) << i; // still at 45 degrees
    }
    s.cad.PopFromUndoRedoShapeList();
    EXPECT_EQ(Saved(s.cad), before);
}

// The node tools on polygons and polylines, with the refusal codes -7 and -8.
TEST(MouseGestures, NodeRemovingAndAddingWithTheirCodes)
{
    TMouseSurface s;
    TMyShape *polygon =
        AddByCode(s.cad, TDrawTool::SpPolygon, {{100, 100}, {200, 100}, {200, 200}, {100, 200}});
    std::vector<int> codes;
    s.cad.SetOnNodeDeleted([&](TMyCAD *, TMyShape *, int i) { codes.push_back(i); });
    s.cad.ClearAllUndoStuff();
    s.cad.SetShapeTool(TDrawTool::SpPolylinePolygonPointRemoving);
    s.Click({200, 100}); // point 1 of five (the last repeats point 0)
    ASSERT_EQ(polygon->GetPointsCount(), 4);
    ExpectNear(polygon->Points(), {{100, 100}, {200, 200}, {100, 200}, {100, 100}});
    s.Click({200, 200}); // four points left: refused
    s.Click({500, 500}); // nothing under the mouse: no event
    EXPECT_EQ(codes, (std::vector<int>{1, -8}));
    EXPECT_EQ(StepCount(s.cad), 1);

    // A free line gives up an inner point as a polyline does, though it shows no handle there.
    TMyShape *free =
        AddByCode(s.cad, TDrawTool::SpFreeLine, {{300, 100}, {320, 110}, {340, 100}, {360, 110}});
    s.Click({340, 100});
    ExpectNear(free->Points(), {{300, 100}, {320, 110}, {360, 110}});
    EXPECT_EQ(codes, (std::vector<int>{1, -8, 2}));

    TMyShape *polyline =
        AddByCode(s.cad, TDrawTool::SpPolyLine, {{300, 300}, {400, 300}, {400, 400}});
    s.cad.SetShapeTool(TDrawTool::SpPolylinePolygonPointAdding);
    std::vector<int> added;
    s.cad.SetOnNodeAdded([&](TMyCAD *, TMyShape *, int i) { added.push_back(i); });
    s.Click({400, 350});
    ExpectNear(polyline->Points(), {{300, 300}, {400, 300}, {400, 350}, {400, 400}});
    EXPECT_EQ(added, std::vector<int>{2});
}

// Browse selects but never drags; the whole-drawing tool moves everything without a step.
TEST(MouseGestures, BrowseNeverMovesDragWholeMovesAll)
{
    TMouseSurface s;
    TMyShape *a = AddRectangle(s.cad, 100, 100, 150, 150);
    TMyShape *b = AddRectangle(s.cad, 300, 300, 350, 350);
    s.cad.ClearAllUndoStuff();
    s.cad.SetShapeTool(TDrawTool::SpBrowse);
    s.Drag({125, 100}, {225, 200});
    EXPECT_EQ(s.cad.WorkingShapes(), std::vector<TMyShape *>{a});
    EXPECT_EQ(a->GetLeftTop().X, 100);

    int whole = 0;
    s.cad.SetOnWholeDragged([&](TMyCAD *) { ++whole; });
    s.cad.SetShapeTool(TDrawTool::SpDragWhole);
    s.Drag({10, 10}, {30, 5});
    EXPECT_EQ(a->GetLeftTop(), (TMyPoint{120, 95}));
    EXPECT_EQ(b->GetLeftTop(), (TMyPoint{320, 295}));
    EXPECT_EQ(whole, 1);
    EXPECT_TRUE(s.cad.UndoRedoShapeList().empty());
    EXPECT_EQ(s.cad.ActionTool(), TActionTools::dtDragWhole);
}

// The whole-drawing drag shows the outlines of the layer's shapes at rest, moved as one
// picture by the drag and laid over the screen in exclusive-or: shapes beyond the screen that
// the drag brings in are shown, shapes it takes out are not, shapes of another layer never,
// and the dots of an outline do not shift where the screen or the feedback's own tiles cut
// it. Moves far out and back, then Escape, leave the screen as it was.
TEST(MouseGestures, WholeDragShowsTheOutlinesAtRestMovedAsOnePicture)
{
    TMouseSurface s;
    std::mt19937 rng(9);
    std::uniform_real_distribution<float> at(0, 1500);
    const std::int32_t first = s.cad.CurrentLayerId();
    const std::int32_t second = s.cad.NewLayer("second", true);
    const TDrawTool tools[] = {TDrawTool::SpRectangle, TDrawTool::SpEllipse, TDrawTool::SpPolyLine,
                               TDrawTool::SpElliArc};
    for (int i = 0; i < 200; ++i) {
        s.cad.SetCurrentLayerId(i % 5 ? first : second);
        const TMyPoint a{at(rng), at(rng)};
        AddByCode(s.cad, tools[i % 4], {a, {a.X + 60, a.Y + 25}, {a.X + 20, a.Y + 50}});
    }
    s.cad.SetCurrentLayerId(first);
    s.cad.SetOperateAllLayer(false);
    s.cad.ClearWorkingShapes();
    s.cad.SetShapeTool(TDrawTool::SpDragWhole);
    s.cad.repaint();
    const QImage before = s.cad.ScreenImage().copy();
    const QPoint origin = s.cad.ScreenOrigin();
    // Every outline at rest, on one picture large enough to cut none of them.
    const QPoint corner{-100, -100};
    QImage rest(1800, 1800, QImage::Format_RGB32);
    rest.fill(Qt::black);
    {
        TCanvas canvas(&rest);
        canvas.SetOrigin(ToTPoint(corner));
        SetDragResizeRotateShapeMode(canvas);
        for (std::int32_t no = 0; no < s.cad.GetShapesCount(); ++no) {
            TMyShape *shape = s.cad.GetShapeByNo(no);
            if (!shape->HasParentShape() && shape->LayerId() == first)
                shape->Draging(canvas, {0, 0}, {0, 0});
        }
        canvas.Flush();
    }
    const QPoint from{400, 300};
    s.Press(from);
    for (const QPoint to :
         {QPoint{200, 200}, QPoint{40, 20}, QPoint{790, 1110}, QPoint{5, 8}, QPoint{440, 330}}) {
        s.Move(to);
        QImage expected = before.copy();
        for (int y = 0; y < expected.height(); ++y)
            for (int x = 0; x < expected.width(); ++x) {
                const QPoint at = QPoint(x, y) + origin - (to - from) - corner;
                if (rest.rect().contains(at))
                    expected.setPixel(x, y, expected.pixel(x, y) ^ (rest.pixel(at) & 0xFFFFFF));
            }
        EXPECT_TRUE(SameOnScreen(expected, origin, s.cad)) << to.x() << ", " << to.y();
    }
    QTest::keyClick(&s.cad, Qt::Key_Escape);
    EXPECT_TRUE(SameOnScreen(before, origin, s.cad));
    // A shape deleted by code during the drag ends it, its outline erased with the others.
    s.Press(from);
    s.Move({300, 250});
    s.cad.DeleteShapeById(s.cad.GetShapeByNo(0)->ShapeId(), false);
    s.Move({200, 150});
    EXPECT_FALSE(s.cad.IsMouseDown());
    EXPECT_TRUE(SameOnScreen(before, origin, s.cad));
}

// A rubber band selects, in list order, the top-level shapes of the layers it may work on
// that lie wholly inside it, exactly as a plain scan of the list finds them: random bands
// dragged both ways over random shapes, groups and a second layer, at three zooms.
TEST(MouseSelecting, RandomBandsSelectWhatAPlainScanFinds)
{
    const TDrawTool tools[] = {TDrawTool::SpLine,    TDrawTool::SpPolyLine, TDrawTool::SpRectangle,
                               TDrawTool::SpEllipse, TDrawTool::SpElliArc,  TDrawTool::SpText};
    std::mt19937 rng(41);
    std::uniform_real_distribution<float> at(100, 700);
    QImage image(1, 1, QImage::Format_RGB32);
    TCanvas canvas(&image);
    std::int64_t selected = 0;
    for (const double zoom : {1.0, 0.45, 1.8}) {
        TMyCAD cad;
        cad.SetZoom(zoom);
        const std::int32_t second = cad.NewLayer("second", true);
        const std::int32_t first = cad.CurrentLayerId();
        for (int i = 0; i < 300; ++i) {
            cad.SetCurrentLayerId(rng() % 4 ? first : second);
            const TMyPoint a{at(rng), at(rng)};
            const std::vector<TMyPoint> points{a,
                                               {a.X + float(rng() % 60), a.Y + float(rng() % 60)},
                                               {a.X + float(rng() % 40), a.Y + 20}};
            const TDrawTool tool = tools[rng() % std::size(tools)];
            const std::size_t n =
                tool == TDrawTool::SpElliArc || tool == TDrawTool::SpPolyLine ? 3 : 2;
            cad.AddShapeByCode(tool, {}, std::span(points).first(n), double(rng() % 3) * 30, {});
        }
        cad.SetCurrentLayerId(first);
        for (int g = 0; g < 20; ++g) {
            TMyShape *members[] = {cad.GetShapeByNo(std::int32_t(rng() % 300)),
                                   cad.GetShapeByNo(std::int32_t(rng() % 300))};
            cad.GroupShapes(members, false);
        }
        for (int band = 0; band < 200; ++band) {
            cad.SetOperateAllLayer(band % 3 == 0);
            // From the empty margin above and left of the shapes, or below and right of them.
            const int far = int(800 * zoom);
            const TPoint start = band % 2 ? TPoint{int(rng() % 40), int(rng() % 40)}
                                          : TPoint{far + int(rng() % 40), far + int(rng() % 40)};
            const TPoint end{int(rng() % std::uint32_t(far)), int(rng() % std::uint32_t(far))};
            std::vector<TMyShape *> expected;
            bool onShape = false;
            for (std::int32_t no = 0; no < cad.GetShapesCount(); ++no) {
                TMyShape *shape = cad.GetShapeByNo(no);
                onShape = onShape || cad.IsClickedMeforShape(canvas, shape, start);
                if (!shape->HasParentShape() && shape->Visible() &&
                    (cad.OperateAllLayer() || shape->LayerId() == first) &&
                    cad.IsInRegion(start, end, shape))
                    expected.push_back(shape);
            }
            if (onShape)
                continue; // a press there would drag, not draw a band
            cad.MouseDown(TMouseButton::mbLeft, ssLeft, start.X, start.Y);
            cad.MouseMove(ssLeft, end.X, end.Y);
            cad.MouseUp(TMouseButton::mbLeft, 0, end.X, end.Y);
            ASSERT_EQ(cad.WorkingShapes(), expected) << "zoom " << zoom << ", band " << band;
            selected += std::int64_t(expected.size());
        }
    }
    EXPECT_GT(selected, 2000);
}

// The release of a band shows the handles of what it took at once, as the repaint that
// follows shows them.
TEST(MouseSelecting, BandReleaseShowsTheHandlesBeforeTheRepaint)
{
    TMouseSurface s;
    AddRectangle(s.cad, 100, 100, 200, 160);
    s.cad.ClearWorkingShapes();
    s.cad.repaint();
    const QImage before = s.cad.ScreenImage().copy();
    s.cad.MouseDown(TMouseButton::mbLeft, ssLeft, 50, 50);
    s.cad.MouseMove(ssLeft, 250, 250);
    s.cad.MouseUp(TMouseButton::mbLeft, 0, 250, 250);
    ASSERT_EQ(s.cad.WorkingShapes().size(), 1u);
    const QImage released = s.cad.ScreenImage().copy();
    EXPECT_FALSE(SameOnScreen(before, s.cad.ScreenOrigin(), s.cad));
    s.cad.repaint();
    EXPECT_TRUE(SameOnScreen(released, s.cad.ScreenOrigin(), s.cad));
}

// A rubber band is drawn over the screen image and erased exactly by Escape. (Drag feedback
// erased by Escape: see the connector feedback test below.)
TEST(MouseGestures, RubberBandIsErasedExactly)
{
    TMouseSurface s;
    AddRectangle(s.cad, 100, 100, 200, 160);
    s.cad.ClearWorkingShapes();
    s.cad.repaint();
    const QImage before = s.cad.ScreenImage().copy();
    const QPoint origin = s.cad.ScreenOrigin();
    s.Press({500, 500});
    for (int i = 1; i <= 20; ++i) {
        s.Move({500 + 3 * i, 500 + 2 * i});
        QCoreApplication::processEvents();
    }
    EXPECT_FALSE(SameOnScreen(before, origin, s.cad));
    QTest::keyClick(&s.cad, Qt::Key_Escape);
    EXPECT_TRUE(SameOnScreen(before, origin, s.cad));
}

// Feedback is drawn over the screen image: while the mouse moves, no shape is drawn again,
// not even one lying under the moving outline or band; the release repaints the drawing.
TEST(MouseGestures, FeedbackDrawsNoShapeUntilTheRelease)
{
    static int draws = 0;
    class TCounted : public TFillShape
    {
    public:
        using TFillShape::TFillShape;
        void Draw(TCanvas &canvas) override
        {
            ++draws;
            TFillShape::Draw(canvas);
        }
    };
    TMouseSurface s;
    s.cad.AddShape(new TCounted(&s.cad, {100, 100, 200, 160}, 0x0000FF), false, false);
    s.cad.AddShape(new TCounted(&s.cad, {160, 130, 260, 200}, 0x00FF00), false, false);
    s.cad.ClearWorkingShapes();
    const auto gesture = [&](QPoint from, QPoint step) {
        s.Press(from);
        QCoreApplication::processEvents();
        draws = 0;
        for (int i = 1; i <= 20; ++i) {
            s.Move(from + step * i);
            QCoreApplication::processEvents();
        }
        EXPECT_EQ(draws, 0);
        s.Release(from + step * 20);
        QCoreApplication::processEvents();
        EXPECT_GT(draws, 0);
    };
    gesture({150, 120}, {3, 2});  // selects the blue one and drags it over the green one
    gesture({120, 220}, {6, -5}); // a band across both
}

// The drag feedback of many shapes is the picture of their outlines drawn in exclusive-or at
// the mouse's offset, pixel for pixel, overlaps included.
TEST(MouseGestures, DragFeedbackEqualsOutlinesDrawnInXor)
{
    TMouseSurface s;
    const std::vector<TMyShape *> shapes{
        AddRectangle(s.cad, 100, 100, 200, 160), AddRectangle(s.cad, 150, 130, 260, 230),
        AddByCode(s.cad, TDrawTool::SpEllipse, {{120, 180}, {220, 260}}, 0.3),
        AddByCode(s.cad, TDrawTool::SpPolyLine, {{90, 90}, {300, 120}, {140, 250}})};
    s.cad.SetWorkingShapes(shapes);
    s.cad.repaint();
    QImage expected = s.cad.ScreenImage().copy();
    const QPoint origin = s.cad.ScreenOrigin();
    s.Press({130, 120});
    s.Move({150, 110});
    s.Move({167, 99});
    {
        TCanvas canvas(&expected);
        canvas.SetOrigin(ToTPoint(origin));
        SetDragResizeRotateShapeMode(canvas);
        s.cad.DraggingforShapes(canvas, {130, 120}, {167, 99});
        canvas.Flush();
    }
    EXPECT_TRUE(SameOnScreen(expected, origin, s.cad));
    s.Release({167, 99});
    EXPECT_EQ(shapes[0]->GetLeftTop(), (TMyPoint{137, 79}));
}

// With LiveConnectors the route of a connector bound to a dragged shape is part of the
// feedback: the screen shows more than the outline alone, and Escape still restores it.
// Each move updates the widget where the screen image changed, and not all of it.
TEST(MouseGestures, LiveConnectorsFollowInTheFeedback)
{
    QImage shown[2];
    for (const bool live : {false, true}) {
        TMouseSurface s;
        TMyShape *a = AddRectangle(s.cad, 100, 100, 160, 140);
        TMyShape *b = AddRectangle(s.cad, 300, 300, 360, 340);
        a->AddLinkPoint({160, 120});
        b->AddLinkPoint({300, 320});
        s.cad.ChangeLinkShapes(AddConnector(s.cad, a, b));
        s.cad.SetLiveConnectors(live);
        s.Click({130, 120});
        s.cad.repaint();
        const QImage before = s.cad.ScreenImage().copy();
        const QPoint origin = s.cad.ScreenOrigin();
        s.Press({130, 120});
        TPaintSpy spy;
        s.cad.installEventFilter(&spy);
        for (const QPoint to : {QPoint(130, 170), QPoint(140, 220)}) {
            const QImage earlier = s.cad.ScreenImage().copy();
            spy.Painted = {};
            s.Move(to);
            QCoreApplication::processEvents();
            const QImage &now = s.cad.ScreenImage();
            int unshown = 0;
            for (int y = 0; y < now.height(); ++y)
                for (int x = 0; x < now.width(); ++x)
                    unshown += earlier.pixel(x, y) != now.pixel(x, y) &&
                               !spy.Painted.contains(QPoint(x, y) + origin);
            EXPECT_EQ(unshown, 0) << live << " " << to.x() << "," << to.y();
            EXPECT_LT(spy.Painted.boundingRect().width() * spy.Painted.boundingRect().height(),
                      now.width() * now.height() / 4)
                << live;
        }
        s.cad.removeEventFilter(&spy);
        shown[live] = s.cad.ScreenImage().copy();
        QTest::keyClick(&s.cad, Qt::Key_Escape);
        EXPECT_TRUE(SameOnScreen(before, origin, s.cad)) << live;
        s.Release({140, 220});
        EXPECT_EQ(a->GetLeftTop().X, 100);
    }
    ASSERT_EQ(shown[0].size(), shown[1].size());
    EXPECT_NE(shown[0], shown[1]);
}

// A change of drawing order repaints the shapes it moves and their handles, no more, and the
// screen then shows what a full repaint shows: random restacks of members and top-level
// shapes, steps, exchanges and undo on overlapping filled boxes, groups and connectors
// (whose routes are worked out on the screen), with part of the drawing selected.
TEST(Restacking, RepaintsWhatItChangesAndNoMore)
{
    TMouseSurface s;
    std::mt19937 rng(41);
    BuildRandomDrawing(s.cad, rng);
    std::vector<TMyShape *> some;
    for (std::int32_t no = 0; no < s.cad.GetShapesCount(); ++no) {
        TMyShape *shape = s.cad.GetShapeByNo(no);
        shape->SetBrush(TBrush{RGBToColor(std::uint8_t(no * 41), std::uint8_t(no * 97), 160),
                               TBrushStyle::bsSolid,
                               {}});
        if (no % 7 == 0)
            some.push_back(shape);
    }
    s.cad.SetWorkingShapes(some);
    s.cad.repaint();
    TPaintSpy spy;
    s.cad.installEventFilter(&spy);
    const QRect all = s.cad.rect();
    for (int step = 0; step < 72; ++step) {
        TMyShape *shape = s.cad.GetShapeByNo(std::int32_t(rng() % s.cad.GetShapesCount()));
        QCoreApplication::processEvents();
        spy.Painted = {};
        switch (step % 6) {
        case 0:
            s.cad.BringToFront(shape, true);
            break;
        case 1:
            s.cad.SendToBack(shape, true);
            break;
        case 2:
            s.cad.BringToFrontByStep(shape, true);
            break;
        case 3:
            s.cad.SendToBackByStep(shape, true);
            break;
        case 4:
            s.cad.PopFromUndoRedoShapeList();
            break;
        case 5:
            s.cad.SwapShape(shape,
                            s.cad.GetShapeByNo(std::int32_t(rng() % s.cad.GetShapesCount())));
            break;
        }
        QCoreApplication::processEvents();
        const QImage partial = s.cad.ScreenImage().copy();
        const QPoint origin = s.cad.ScreenOrigin();
        const QRect painted = spy.Painted.boundingRect();
        if (step % 6 != 4) {
            EXPECT_LT(painted.width() * painted.height(), all.width() * all.height() / 2) << step;
        }
        s.cad.Invalidate();
        s.cad.repaint();
        ASSERT_TRUE(SameOnScreen(partial, origin, s.cad)) << step;
    }
    s.cad.removeEventFilter(&spy);
}

} // namespace
} // namespace tessal::test
