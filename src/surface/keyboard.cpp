// SPDX-License-Identifier: MIT
// The keys of a drawing program on the focused surface: Delete removes the working shapes,
// the arrows nudge them (with Shift by a grid step), Escape abandons the gesture under way
// and Ctrl+A selects the current layer. KeyboardEditing switches all of it off.
#include <tessal/surface/cad.h>

#include <tessal/shapes/shape.h>

#include <QKeyEvent>

namespace tessal {

namespace {

bool ArrowStep(int key, double &dx, double &dy)
{
    dx = dy = 0;
    switch (key) {
    case Qt::Key_Left:
        dx = -1;
        return true;
    case Qt::Key_Right:
        dx = 1;
        return true;
    case Qt::Key_Up:
        dy = -1;
        return true;
    case Qt::Key_Down:
        dy = 1;
        return true;
    default:
        return false;
    }
}

} // namespace

void TMyCAD::keyPressEvent(QKeyEvent *event)
{
    if (!m_KeyboardEditing) {
        QWidget::keyPressEvent(event);
        return;
    }
    double dx = 0, dy = 0;
    if (event->matches(QKeySequence::Delete) || event->key() == Qt::Key_Backspace) {
        CancelGesture();
        DeleteSelectedShapes();
    } else if (event->key() == Qt::Key_Escape) {
        CancelGesture();
        Invalidate();
    } else if (event->matches(QKeySequence::SelectAll)) {
        CancelGesture();
        SelectAllShapesByLayerId(m_CurrentLayerId);
    } else if (ArrowStep(event->key(), dx, dy)) {
        const bool grid = event->modifiers() & Qt::ShiftModifier;
        NudgeWorkingShapes(grid ? dx * m_Grid->GridWidth() : dx,
                           grid ? dy * m_Grid->GridHeight() : dy);
    } else {
        QWidget::keyPressEvent(event);
        return;
    }
    event->accept();
}

void TMyCAD::NudgeWorkingShapes(double dx, double dy)
{
    if (IsMouseDown())
        return;
    std::vector<TMyShape *> shapes;
    for (TMyShape *shape : m_WorkingShapes)
        if (!shape->Locked() && shape->DragEnable())
            shapes.push_back(shape);
    if (shapes.empty() || !m_DragEnable || (dx == 0 && dy == 0))
        return;
    PushtoUndoRedoShapeList(shapes, std::int32_t(shapes.size()) - 1, ACT_CHANGE);
    MoveShapesBy(shapes, dx, dy);
    m_Modified = true;
    // The moved shapes told the index; a handler that saw the moves may have changed more.
    if (m_OnShapeCodeDragging)
        DocumentChanged();
    else
        Invalidate();
}

} // namespace tessal
