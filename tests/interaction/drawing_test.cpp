// SPDX-License-Identifier: MIT
// Drawing every shape class with real mouse events: the points each gesture leaves, the one
// undo record, the events, the return to selecting, and what a cancelled input leaves.
#include "mousehelpers.h"

#include <tessal/shapes/line.h>
#include <tessal/shapes/link.h>
#include <tessal/shapes/shape.h>
#include <tessal/shapes/text.h>

#include <gtest/gtest.h>

#include <QApplication>
#include <QTimer>

#include <functional>

namespace tessal::test {
namespace {

using TGesture = std::function<void(TMouseSurface &)>;

struct TDrawCase
{
    TDrawTool Tool;
    const char *Class;
    TGesture Gesture;
    TMyPointArray Points; // empty: only the count below is checked
    int Count;
};

TGesture DragFrom(QPoint a, QPoint b)
{
    return [a, b](TMouseSurface &s) { s.Drag(a, b); };
}

TGesture Clicks(std::vector<QPoint> points)
{
    return [points](TMouseSurface &s) {
        for (const QPoint p : points)
            s.Click(p);
    };
}

std::vector<TDrawCase> Cases()
{
    using D = TDrawTool;
    const QPoint a(100, 100), b(200, 150);
    const TMyPointArray box{{100, 100}, {200, 100}, {200, 150}, {100, 150}};
    const TMyPointArray segment{{100, 100}, {200, 150}};
    // clang-format off
    return {
        {D::SpLine, "TMyLine", DragFrom(a, b), segment, 2},
        {D::SpLine, "TMyLine", Clicks({a, b}), segment, 2},
        {D::SpRuleLine, "TMyRuleLine", DragFrom(a, b), segment, 2},
        {D::SpRectangle, "TMyRectangle", DragFrom(a, b), box, 4},
        {D::SpRectangle, "TMyRectangle", Clicks({a, b}), box, 4},
        {D::SpEllipse, "TMyEllipse", DragFrom(a, b), box, 4},
        {D::SpText, "TMyText", DragFrom(a, b), box, 4},
        {D::SpImage, "TMyImage", DragFrom(a, b), {}, 4},
        {D::SpLinkPoint, "TMyLinkPoint", DragFrom(a, b), {}, 4},
        {D::SpLineLinkLine, "TMyLineLinkLine", DragFrom(a, b), {}, 4},
        {D::SpLinkLine, "TMyLinkLine", DragFrom(a, b), {}, 0},
        {D::SpPolyLine, "TMyPolyLine", Clicks({a, {200, 100}, {200, 200}, {200, 200}}),
         {{100, 100}, {200, 100}, {200, 200}}, 3},
        {D::SpPolygon, "TMyPolygon", Clicks({a, {200, 100}, {200, 200}, {101, 101}}),
         {{100, 100}, {200, 100}, {200, 200}, {100, 100}}, 4},
        {D::SpBLine, "TMyBLine", Clicks({a, {150, 50}, {200, 100}, {200, 100}}),
         {{100, 100}, {150, 50}, {200, 100}}, 3},
        {D::SpElliArc, "TMyElliArc", Clicks({a, {200, 100}, {150, 60}}),
         {{100, 100}, {150, 60}, {200, 100}}, 3},
        {D::SpPolyBezier, "TMyPolyBezier", Clicks({a, {160, 40}, {220, 100}, {220, 100}}),
         {{100, 100}, {120, 80}, {140, 60}, {160, 40}, {180, 60}, {200, 80}, {220, 100}}, 7},
        {D::SpFreeLine, "TMyFreeLine",
         [](TMouseSurface &s) {
             s.Press({100, 100});
             s.Move({110, 104});
             s.Move({125, 111});
             s.Release({125, 111});
         },
         {{100, 100}, {110, 104}, {125, 111}}, 3},
    };
    // clang-format on
}

TEST(MouseDrawing, EveryToolMakesItsShapeWithOneAddStep)
{
    for (const TDrawCase &c : Cases()) {
        SCOPED_TRACE(c.Class);
        TMouseSurface s;
        s.cad.SetDisableTextInput(true);
        s.cad.SetOnRequestPicture([](TMyCAD *, TBitmap &picture) {
            picture = TBitmap(4, 3);
            picture.Fill(clRed);
        });
        std::vector<std::pair<TMyShape *, int>> added;
        int toSelecting = 0;
        s.cad.SetOnShapeAdded([&](TMyCAD *, TMyShape *shape, int n) {
            added.push_back({shape, n});
        });
        s.cad.SetOnActionToolToSelecting([&](TMyCAD *) { ++toSelecting; });
        s.cad.SetShapeTool(c.Tool);
        EXPECT_EQ(s.cad.ActionTool(), TActionTools::dtDrawing);
        c.Gesture(s);

        ASSERT_EQ(s.cad.GetShapesCount(), 1);
        TMyShape *shape = s.cad.GetShapeByNo(0);
        EXPECT_EQ(shape->ClassName(), QLatin1String(c.Class));
        if (!c.Points.empty()) {
            ExpectNear(shape->Points(), c.Points);
        } else if (c.Count > 0) {
            EXPECT_EQ(shape->GetPointsCount(), c.Count);
        }
        EXPECT_EQ(shape->Name(), "Shape0");
        ASSERT_EQ(added.size(), 1u);
        EXPECT_EQ(added[0], std::make_pair(shape, 1));
        ASSERT_EQ(s.cad.UndoRedoShapeList().size(), 1u);
        EXPECT_EQ(s.cad.UndoRedoShapeList()[0].Action, ACT_ADD);
        EXPECT_EQ(s.cad.WorkingShapes(), std::vector<TMyShape *>{shape});
        EXPECT_EQ(toSelecting, 1);
        EXPECT_EQ(s.cad.ShapeTool(), TDrawTool::SpSelecting);
        EXPECT_EQ(s.cad.ActionTool(), TActionTools::dtSelecting);
        EXPECT_EQ(s.cad.ShapeUnderConstruction(), nullptr);
        EXPECT_TRUE(RelationsValid(s.cad));
    }
}

// A connector drawn from one rectangle's link point to another's is bound at both ends,
// and never snaps to the grid while every other tool does.
TEST(MouseDrawing, ConnectorsBindAndSkipTheGridOthersSnap)
{
    TMouseSurface s;
    TMyShape *from = AddRectangle(s.cad, 40, 40, 100, 100);
    TMyShape *to = AddRectangle(s.cad, 300, 40, 360, 100);
    from->AddLinkPoint({103, 73});
    to->AddLinkPoint({297, 73});
    s.cad.SetSnap(true);
    s.cad.SetShapeTool(TDrawTool::SpLinkLine);
    s.Drag({103, 73}, {297, 73});
    auto *link = dynamic_cast<TMyLinkLine *>(s.cad.GetShapeByNo(2));
    ASSERT_NE(link, nullptr);
    EXPECT_EQ(link->StartSpNo(), 0);
    EXPECT_EQ(link->EndSpNo(), 1);
    EXPECT_TRUE(RelationsValid(s.cad));

    // Grid 20 with a reach of 4: (103, 77) lands on (100, 80).
    s.cad.SetShapeTool(TDrawTool::SpLine);
    s.Drag({103, 77}, {218, 157});
    const TMyShape *line = s.cad.GetShapeByNo(3);
    ExpectNear(line->Points(), {{100, 80}, {220, 160}});
}

// A line drawn from the end of one line to the start of another joins the two into one
// polyline, as one step that undo takes back whole.
TEST(MouseDrawing, ALineDroppedOnTwoLineEndsJoinsThem)
{
    TMouseSurface s;
    AddByCode(s.cad, TDrawTool::SpLine, {{50, 300}, {150, 300}});
    AddByCode(s.cad, TDrawTool::SpLine, {{250, 300}, {350, 320}});
    s.cad.ClearAllUndoStuff();
    const QByteArray before = Saved(s.cad);
    s.cad.SetShapeTool(TDrawTool::SpLine);
    s.Drag({151, 301}, {249, 299});
    ASSERT_EQ(s.cad.GetShapesCount(), 1);
    const TMyShape *joined = s.cad.GetShapeByNo(0);
    EXPECT_EQ(joined->ClassName(), QLatin1String("TMyPolyLine"));
    ExpectNear(joined->Points(), {{50, 300}, {150, 300}, {250, 300}, {350, 320}});
    EXPECT_EQ(StepCount(s.cad), 1);
    EXPECT_TRUE(IndexAgreesWithTheScan(s.cad, {0, 250, 400, 350}, 40, {20, 200}));
    s.cad.PopFromUndoRedoShapeList();
    EXPECT_EQ(Saved(s.cad), before);
}

// Shift holds a box square and a segment to the nearest of the axes and diagonals.
TEST(MouseDrawing, ShiftMakesSquaresAndStraightSegments)
{
    struct TShiftCase
    {
        TDrawTool Tool;
        QPoint End;
        TMyPoint Expected; // the corner or end opposite (100, 100)
    };
    const TShiftCase cases[] = {
        {TDrawTool::SpRectangle, {180, 130}, {180, 180}},
        {TDrawTool::SpRectangle, {40, 130}, {40, 160}},
        {TDrawTool::SpLine, {200, 120}, {200, 100}},
        {TDrawTool::SpLine, {110, 30}, {100, 30}},
        {TDrawTool::SpLine, {160, 150}, {160, 160}},
    };
    for (const TShiftCase &c : cases) {
        TMouseSurface s;
        s.cad.SetShapeTool(c.Tool);
        s.Press({100, 100}, Qt::ShiftModifier);
        s.Move(c.End);
        s.Release(c.End, Qt::ShiftModifier);
        ASSERT_EQ(s.cad.GetShapesCount(), 1);
        const TMyShape *shape = s.cad.GetShapeByNo(0);
        const TMyPoint far = shape->GetPoint(c.Tool == TDrawTool::SpLine ? 1 : 2);
        EXPECT_EQ(far.X, c.Expected.X) << c.End.x() << "," << c.End.y();
        EXPECT_EQ(far.Y, c.Expected.Y) << c.End.x() << "," << c.End.y();
    }
}

// The text dialog only fills in the lines: cancelled, it leaves the text as drawn without
// the dialog, added and recorded.
TEST(MouseDrawing, CancelledTextInputStillAddsTheText)
{
    TMouseSurface s;
    s.cad.SetShapeTool(TDrawTool::SpText);
    QTimer::singleShot(0, [] {
        if (QWidget *dialog = QApplication::activeModalWidget())
            dialog->close();
    });
    s.Drag({100, 100}, {200, 150});
    s.cad.SetDisableTextInput(true);
    s.cad.SetShapeTool(TDrawTool::SpText);
    s.Drag({100, 200}, {200, 250});
    ASSERT_EQ(s.cad.GetShapesCount(), 2);
    const auto *cancelled = dynamic_cast<const TMyText *>(s.cad.GetShapeByNo(0));
    ASSERT_NE(cancelled, nullptr);
    EXPECT_EQ(cancelled->Lines(), static_cast<const TMyText *>(s.cad.GetShapeByNo(1))->Lines());
    ExpectNear(cancelled->Points(), {{100, 100}, {200, 100}, {200, 150}, {100, 150}});
    EXPECT_EQ(StepCount(s.cad), 2);
}

// Cancelled input (a picture), another button, Escape and a tool change leave no shape and no
// record; the screen shows exactly what it showed before the gesture.
TEST(MouseDrawing, AbandonedDrawingsLeaveNothing)
{
    TMouseSurface s;
    AddRectangle(s.cad, 20, 20, 60, 60);
    s.cad.ClearAllUndoStuff();
    s.cad.ClearWorkingShapes();
    s.cad.repaint();
    const QImage before = s.cad.ScreenImage().copy();
    const QPoint origin = s.cad.ScreenOrigin();

    s.cad.SetShapeTool(TDrawTool::SpImage);
    s.cad.SetOnRequestPicture([](TMyCAD *, TBitmap &) {});
    s.Drag({100, 100}, {200, 150});
    s.cad.SetShapeTool(TDrawTool::SpPolyLine);
    s.Click({100, 100});
    s.Click({150, 120});
    s.Move({170, 160});
    QTest::keyClick(&s.cad, Qt::Key_Escape);
    s.Click({100, 300});
    s.Move({180, 320});
    s.cad.SetShapeTool(TDrawTool::SpEllipse);
    QTest::mouseClick(&s.cad, Qt::RightButton, Qt::NoModifier, QPoint(300, 300));

    EXPECT_EQ(s.cad.GetShapesCount(), 1);
    EXPECT_TRUE(s.cad.UndoRedoShapeList().empty());
    EXPECT_EQ(s.cad.ShapeUnderConstruction(), nullptr);
    EXPECT_TRUE(SameOnScreen(before, origin, s.cad));
}

} // namespace
} // namespace tessal::test
