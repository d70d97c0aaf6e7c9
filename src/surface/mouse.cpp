// SPDX-License-Identifier: MIT
// TMyCAD and the mouse: Qt's events turned into the machine's press, move and release, the
// choice of tool, the working-shape list, hover and the confinement of the cursor.
#include <tessal/surface/cad.h>
#include <tessal/surface/mouse_p.h>

#include <tessal/shapes/shape.h>

#include <QCursor>
#include <QMouseEvent>
#include <QToolTip>

#include <algorithm>
#include <cmath>

namespace tessal {

namespace {

TShiftState ShiftOf(Qt::KeyboardModifiers modifiers, Qt::MouseButtons buttons)
{
    TShiftState shift = 0;
    if (modifiers & Qt::ShiftModifier)
        shift |= ssShift;
    if (modifiers & Qt::AltModifier)
        shift |= ssAlt;
    if (modifiers & Qt::ControlModifier)
        shift |= ssCtrl;
    if (buttons & Qt::LeftButton)
        shift |= ssLeft;
    if (buttons & Qt::RightButton)
        shift |= ssRight;
    if (buttons & Qt::MiddleButton)
        shift |= ssMiddle;
    return shift;
}

// Buttons other than these three (back, forward) take no part in anything.
bool ButtonOf(Qt::MouseButton qt, TMouseButton &button)
{
    switch (qt) {
    case Qt::LeftButton:
        button = TMouseButton::mbLeft;
        return true;
    case Qt::RightButton:
        button = TMouseButton::mbRight;
        return true;
    case Qt::MiddleButton:
        button = TMouseButton::mbMiddle;
        return true;
    default:
        return false;
    }
}

TPoint PointOf(const QMouseEvent *event)
{
    const QPoint p = event->position().toPoint();
    return {p.x(), p.y()};
}

bool IsDrawingTool(TDrawTool tool)
{
    switch (tool) {
    case TDrawTool::SpSelecting:
    case TDrawTool::SpRotateSelecting:
    case TDrawTool::SpClose:
    case TDrawTool::SpPolylinePolygonPointRemoving:
    case TDrawTool::SpPolylinePolygonPointAdding:
    case TDrawTool::SpDragWhole:
    case TDrawTool::SpBrowse:
        return false;
    default:
        return true;
    }
}

TActionTools ActionToolOf(TDrawTool tool)
{
    switch (tool) {
    case TDrawTool::SpSelecting:
        return TActionTools::dtSelecting;
    case TDrawTool::SpRotateSelecting:
        return TActionTools::dtRotateSelecting;
    case TDrawTool::SpClose:
        return TActionTools::dtClose;
    case TDrawTool::SpPolylinePolygonPointRemoving:
        return TActionTools::dtPolylinePolygonPointRemoving;
    case TDrawTool::SpPolylinePolygonPointAdding:
        return TActionTools::dtPolylinePolygonPointAdding;
    case TDrawTool::SpDragWhole:
        return TActionTools::dtDragWhole;
    case TDrawTool::SpBrowse:
        return TActionTools::dtBrowse;
    default:
        return TActionTools::dtDrawing;
    }
}

} // namespace

// ---- Feedback ----

void TFeedback::Show(TDraw draw, const TRect &rect)
{
    Hide();
    m_Draw = std::move(draw);
    m_Rect = rect;
    DrawOnScreen();
}

void TFeedback::Hide()
{
    if (!m_Shown)
        return;
    DrawOnScreen();
    m_Draw = {};
}

void TFeedback::DrawOnScreen()
{
    TCanvas *screen = m_Cad.ScreenCanvas();
    if (!screen || !m_Draw) {
        m_Shown = false;
        return;
    }
    m_Draw(*screen);
    m_Shown = !m_Shown;
    m_Cad.ScreenChanged(m_Rect);
}

TRect TFeedback::Recomposing(const TRect &area) const
{
    if (!m_Shown || !area.Intersects(m_Rect))
        return area;
    return area.United(m_Rect);
}

void TFeedback::Recomposed(const TRect &area)
{
    if (!m_Shown || !area.Intersects(m_Rect))
        return;
    // The recomposed pixels no longer hold the figure; drawing it makes it shown again.
    m_Shown = false;
    DrawOnScreen();
}

// ---- Qt events ----

void TMyCAD::mousePressEvent(QMouseEvent *event)
{
    TMouseButton button;
    if (!ButtonOf(event->button(), button))
        return;
    setFocus(Qt::MouseFocusReason);
    const TPoint p = PointOf(event);
    MouseDown(button, ShiftOf(event->modifiers(), event->buttons()), p.X, p.Y);
}

// The second press of a double click arrives here instead of as a press.
void TMyCAD::mouseDoubleClickEvent(QMouseEvent *event)
{
    TMouseButton button;
    if (!ButtonOf(event->button(), button))
        return;
    if (m_OnDblClick)
        m_OnDblClick(this);
    const TPoint p = PointOf(event);
    MouseDown(button, ShiftOf(event->modifiers(), event->buttons()) | ssDouble, p.X, p.Y);
}

void TMyCAD::mouseMoveEvent(QMouseEvent *event)
{
    const TPoint p = PointOf(event);
    MouseMove(ShiftOf(event->modifiers(), event->buttons()), p.X, p.Y);
}

void TMyCAD::mouseReleaseEvent(QMouseEvent *event)
{
    TMouseButton button;
    if (!ButtonOf(event->button(), button))
        return;
    const TPoint p = PointOf(event);
    MouseUp(button, ShiftOf(event->modifiers(), event->buttons()), p.X, p.Y);
    if (button == TMouseButton::mbLeft && rect().contains(p.X, p.Y) && m_OnClick)
        m_OnClick(this);
}

void TMyCAD::enterEvent(QEnterEvent *event)
{
    QWidget::enterEvent(event);
    if (m_OnMouseEnter)
        m_OnMouseEnter(this);
}

void TMyCAD::leaveEvent(QEvent *event)
{
    QWidget::leaveEvent(event);
    if (!m_Mouse->IsDown())
        ShowHintEnterLeaveShape(nullptr, false, {});
    if (m_OnMouseLeave)
        m_OnMouseLeave(this);
}

// ---- The machine's entry points ----

void TMyCAD::MouseDown(TMouseButton button, TShiftState shift, std::int32_t x, std::int32_t y)
{
    if (m_OnMouseDown)
        m_OnMouseDown(this, button, shift, x, y);
    m_Mouse->Press(button, shift, {x, y});
}

void TMyCAD::MouseMove(TShiftState shift, std::int32_t x, std::int32_t y)
{
    if (m_OnMouseMove)
        m_OnMouseMove(this, shift, x, y);
    m_Mouse->Move(shift, {x, y});
}

void TMyCAD::MouseUp(TMouseButton button, TShiftState shift, std::int32_t x, std::int32_t y)
{
    if (m_OnMouseUp)
        m_OnMouseUp(this, button, shift, x, y);
    m_Mouse->Release(button, shift, {x, y});
}

void TMyCAD::CancelGesture()
{
    m_Mouse->Cancel();
}

TMyShape *TMyCAD::ShapeUnderConstruction() const
{
    return m_Mouse->Construction();
}

bool TMyCAD::IsMouseDown() const
{
    return m_Mouse->IsDown();
}

void TMyCAD::SetShapeTool(TDrawTool value)
{
    m_ShapeTool = value;
    m_ActionTool = ActionToolOf(value);
    if (IsDrawingTool(value)) {
        m_Mouse->ToolChanged();
        m_CurrentShape = nullptr;
        ClearAllLinkHot();
    } else {
        m_Mouse->ToolChanged();
    }
    Invalidate();
}

// ---- Working shapes ----

void TMyCAD::RemoveWorkingShape(TMyShape *shape)
{
    if (!m_WorkingShapes.Contains(shape))
        return;
    const auto it = std::find(m_WorkingShapes.begin(), m_WorkingShapes.end(), shape);
    if (it == m_WorkingShapes.end())
        return;
    if (m_CurrentShape == shape)
        m_CurrentShape = nullptr;
    m_WorkingShapes.erase(it);
    Invalidate();
}

std::int32_t TMyCAD::IsInWorkingShape(const TMyShape *shape) const
{
    const auto it = std::find(m_WorkingShapes.begin(), m_WorkingShapes.end(), shape);
    return it == m_WorkingShapes.end() ? -1 : std::int32_t(it - m_WorkingShapes.begin());
}

void TMyCAD::SelectAllWorkingShapes()
{
    if (!m_HotShow || m_WorkingShapes.empty())
        return;
    TCanvas *screen = ScreenCanvas();
    if (!screen)
        return;
    // Handles of shapes outside the screen image would only be clipped away, square by
    // square.
    const TRect shown = TRect::FromQRect(ScreenImageRect());
    for (TMyShape *shape : m_WorkingShapes) {
        if (!shape->Visible() || !IsVisibleLayerByID(shape->LayerId()))
            continue;
        const TRect reach = HandlesReach(shape);
        if (!reach.Intersects(shown))
            continue;
        shape->DrawHot(*screen);
        ScreenChanged(reach);
    }
}

// ---- Hit tests ----

bool TMyCAD::IsClickedMeforShape(TCanvas &canvas, TMyShape *shape, TPoint point)
{
    if (!shape || !shape->Visible())
        return false;
    if (shape->IsClickedMe(canvas, point))
        return true;
    for (const std::int32_t no : shape->ChildShapes()) {
        TMyShape *child = GetShapeByNo(no);
        if (child && child != shape && child->Visible() && child->IsClickedMe(canvas, point))
            return true;
    }
    return false;
}

// A shape without points has no place, so it is inside no region.
bool TMyCAD::IsInRegion(TPoint p1, TPoint p2, TMyShape *shape) const
{
    if (!shape)
        return false;
    const TMyShape *root = GetRootParentShape(shape);
    if (root->GetPointsCount() == 0)
        return false;
    const double z = m_Zoom;
    const TMyPoint lt = root->GetLeftTop();
    const TMyPoint rb = root->GetRightBottom();
    const double left = std::min(p1.X, p2.X), right = std::max(p1.X, p2.X);
    const double top = std::min(p1.Y, p2.Y), bottom = std::max(p1.Y, p2.Y);
    return lt.X * z >= left && rb.X * z <= right && lt.Y * z >= top && rb.Y * z <= bottom;
}

void TMyCAD::GetMousePointbyDragMode(TPoint start, TPoint &current) const
{
    if (m_DragMode == TDragMode::dgHorz)
        current.Y = start.Y;
    else if (m_DragMode == TDragMode::dgVert)
        current.X = start.X;
}

// ---- Cursor confinement ----

// Qt cannot clip the system cursor portably; the surface keeps the mouse inside by pulling
// every position it is given back onto the area, and moves the visible cursor there too.
void TMyCAD::SetCursorClipArea(const TRect &rect, std::int32_t rightInset, bool hideCursor,
                               std::int32_t bottomInset)
{
    m_CursorClip = TRect(rect.Left, rect.Top, std::max(rect.Left + 1, rect.Right - rightInset),
                         std::max(rect.Top + 1, rect.Bottom - bottomInset));
    if (hideCursor)
        setCursor(Qt::BlankCursor);
}

void TMyCAD::ReleaseCursorClipArea()
{
    if (m_CursorClip.IsEmpty())
        return;
    m_CursorClip = {};
    if (cursor().shape() == Qt::BlankCursor)
        setCursor(Qt::CrossCursor);
}

// ---- Hover ----

void TMyCAD::ShowHintEnterLeaveShape(TMyShape *shape, bool entering, TPoint point)
{
    m_Mouse->Hover(entering ? shape : nullptr, point);
}

// The enter event comes before the leave event of the shape left behind.
void TMouseMachine::Hover(TMyShape *shape, TPoint point)
{
    TMyShape *last = m_Hovered;
    m_Hovered = shape;
    if (shape && shape != last && m_Cad.m_OnMouseEnterShape)
        m_Cad.m_OnMouseEnterShape(&m_Cad, shape);
    if (last && last != shape && m_Cad.m_OnMouseLeaveShape)
        m_Cad.m_OnMouseLeaveShape(&m_Cad, last);
    if (!m_Cad.m_ShowHint || shape == last)
        return;
    if (!shape) {
        QToolTip::hideText();
        return;
    }
    const QString text = shape->Info().isEmpty() ? shape->Name() : shape->Info();
    const QPoint global = m_Cad.mapToGlobal(QPoint(point.X, point.Y));
    QToolTip::showText(global, text, &m_Cad, QRect(global, QSize(1, 1)));
}

} // namespace tessal
