// SPDX-License-Identifier: MIT
// Keys on the focused surface, hover events, and odd input in the middle of gestures.
#include "mousehelpers.h"

#include <tessal/shapes/shape.h>

#include <gtest/gtest.h>

#include <QStringList>
#include <QWheelEvent>

namespace tessal::test {
namespace {

// Delete removes the selection in one step; an arrow nudges by a pixel and with Shift by a
// grid step, one step per key press, connectors following; Ctrl+A takes the current layer;
// with KeyboardEditing off the keys do nothing.
TEST(MouseKeyboard, DeleteArrowsSelectAll)
{
    TMouseSurface s;
    TMyShape *a = AddRectangle(s.cad, 100, 100, 160, 140);
    TMyShape *b = AddRectangle(s.cad, 300, 100, 360, 140);
    s.cad.ChangeLinkShapes(AddConnector(s.cad, a, b));
    s.cad.ClearAllUndoStuff();
    s.cad.SetWorkingShapes(std::vector<TMyShape *>{a});
    const QByteArray before = Saved(s.cad);

    QTest::keyClick(&s.cad, Qt::Key_Right);
    QTest::keyClick(&s.cad, Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(a->GetLeftTop(), (TMyPoint{101, 120}));
    EXPECT_EQ(StepCount(s.cad), 2);
    EXPECT_TRUE(RelationsValid(s.cad));
    s.cad.PopFromUndoRedoShapeList();
    s.cad.PopFromUndoRedoShapeList();
    EXPECT_EQ(Saved(s.cad), before);

    QTest::keyClick(&s.cad, Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(s.cad.GetWorkingShapesCount(), 3);
    QTest::keyClick(&s.cad, Qt::Key_Delete);
    EXPECT_EQ(s.cad.GetShapesCount(), 0);
    EXPECT_EQ(StepCount(s.cad), 1);
    s.cad.PopFromUndoRedoShapeList();
    EXPECT_EQ(s.cad.GetShapesCount(), 3);

    s.cad.SetKeyboardEditing(false);
    QTest::keyClick(&s.cad, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&s.cad, Qt::Key_Delete);
    EXPECT_EQ(s.cad.GetShapesCount(), 3);
}

// Entering a shape fires before leaving the one left behind; leaving the control leaves it.
TEST(MouseKeyboard, HoverEnterAndLeaveInOrder)
{
    TMouseSurface s;
    AddRectangle(s.cad, 100, 100, 160, 140);
    AddRectangle(s.cad, 200, 100, 260, 140);
    QStringList log;
    s.cad.SetOnMouseEnterShape([&](TMyCAD *, TMyShape *shape) { log << "enter " + shape->Name(); });
    s.cad.SetOnMouseLeaveShape([&](TMyCAD *, TMyShape *shape) { log << "leave " + shape->Name(); });
    s.Move({130, 120});
    s.Move({131, 121});
    s.Move({230, 120});
    s.Move({400, 400});
    EXPECT_EQ(log, (QStringList{"enter Shape0", "enter Shape1", "leave Shape0", "leave Shape1"}));
}

// Releases without presses, other buttons and the wheel mid-gesture, a shape deleted or the
// tool or zoom changed during a gesture: nothing crashes, no shape is lost, nothing half
// done is recorded.
TEST(MouseKeyboard, OddInputDuringGestures)
{
    TMouseSurface s;
    TMyShape *a = AddRectangle(s.cad, 100, 100, 160, 140);
    TMyShape *b = AddRectangle(s.cad, 300, 100, 360, 140);
    s.cad.ClearAllUndoStuff();

    s.Release({10, 10});
    s.cad.MouseUp(TMouseButton::mbRight, 0, 5000, -5000);
    s.cad.MouseMove(ssLeft, -300, 99999);

    s.Press({130, 100});
    s.Move({150, 130});
    QTest::mouseClick(&s.cad, Qt::RightButton, Qt::NoModifier, QPoint(150, 130));
    QWheelEvent wheel(QPointF(150, 130), s.cad.mapToGlobal(QPointF(150, 130)), {}, {0, 120},
                      Qt::LeftButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&s.cad, &wheel);
    s.Release({170, 130});
    // The drag is applied once, at the release, up to where the mouse last moved.
    EXPECT_EQ(StepCount(s.cad), 1);
    EXPECT_EQ(a->GetLeftTop(), (TMyPoint{120, 130}));

    // The application removes the dragged shape while the button is down.
    s.Press({330, 100});
    s.Move({340, 120});
    s.cad.DeleteShapeById(b->ShapeId(), false);
    s.Move({350, 130});
    s.Release({350, 130});
    EXPECT_EQ(s.cad.GetShapesCount(), 1);

    // A tool change and a zoom change in the middle of gestures abandon them.
    s.cad.SetShapeTool(TDrawTool::SpRectangle);
    s.Press({400, 400});
    s.Move({450, 450});
    s.cad.SetShapeTool(TDrawTool::SpSelecting);
    s.Release({450, 450});
    s.Press({140, 150});
    s.Move({190, 190});
    s.cad.SetZoom(2);
    s.Move({210, 210});
    s.Release({210, 210});
    EXPECT_EQ(s.cad.GetShapesCount(), 1);
    EXPECT_EQ(a->GetLeftTop(), (TMyPoint{120, 130}));
    EXPECT_EQ(StepCount(s.cad), 1);
    EXPECT_TRUE(RelationsValid(s.cad));
}

} // namespace
} // namespace tessal::test
