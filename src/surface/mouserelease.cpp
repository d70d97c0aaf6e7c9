// SPDX-License-Identifier: MIT
// The release of the mouse machine: it finishes a shape, selects by rubber band, applies a
// resize, drag, text-point move or rotation as one undo step, or edits a node.
#include <tessal/surface/cad.h>
#include <tessal/surface/mouse_p.h>

#include <tessal/geometry/bitmapops.h>
#include <tessal/geometry/geometry.h>
#include <tessal/platform/message.h>
#include <tessal/shapes/curve.h>
#include <tessal/shapes/image.h>
#include <tessal/shapes/line.h>
#include <tessal/shapes/link.h>
#include <tessal/shapes/polyline.h>
#include <tessal/shapes/rectangle.h>
#include <tessal/shapes/shape.h>
#include <tessal/shapes/text.h>
#include <tessal/shapes/texteditdialog.h>

#include <QFileDialog>

namespace tessal {

namespace {

// Shapes that two points make: a press, a drag and a release draw them as two clicks do.
bool IsTwoPointTool(TDrawTool tool)
{
    switch (tool) {
    case TDrawTool::SpLine:
    case TDrawTool::SpRuleLine:
    case TDrawTool::SpRectangle:
    case TDrawTool::SpEllipse:
    case TDrawTool::SpText:
    case TDrawTool::SpImage:
    case TDrawTool::SpLinkLine:
    case TDrawTool::SpLinkPoint:
    case TDrawTool::SpLineLinkLine:
        return true;
    default:
        return false;
    }
}

// Where a point clicked on the control polygon of a curve goes: before the end of the first
// side hit, as on a polyline; -1 when no side is hit.
std::int32_t ControlPolygonSegment(const TMyShape &shape, TPoint p)
{
    for (std::int32_t i = 0; i + 1 < shape.GetPointsCount(); ++i)
        if (TMyLine::SegmentHit(MyPtToPt(shape.GetPointInZoom(i)),
                                MyPtToPt(shape.GetPointInZoom(i + 1)), p))
            return i + 1;
    return -1;
}

} // namespace

// The handle a resize starts from: a corner where it is, a rectangle's side handle (4 to 7)
// as the corner numbered four less, other shapes' handles where they are.
TMyPoint ResizeHandlePosition(const TMyShape &shape, TPoint start)
{
    const std::int32_t hot = shape.CurrentHot();
    if (dynamic_cast<const TMyLinkLine *>(&shape))
        return PtToMyPt(start);
    if (dynamic_cast<const TMyRectangle *>(&shape) && hot >= 4 && hot <= 7)
        return shape.GetPointInZoom(hot - 4);
    if (hot >= 0 && hot < shape.GetPointsCount())
        return shape.GetPointInZoom(hot);
    return PtToMyPt(start);
}

void TMouseMachine::Release(TMouseButton button, TShiftState shift, TPoint p)
{
    (void)p;
    // Only the left button takes part in gestures: another button's release ends nothing
    // (and leaves a shape under construction as it is).
    if (!m_Down || button != TMouseButton::mbLeft)
        return;
    if (ReleaseChild() || ReleaseClickThrough())
        return;
    switch (m_Cad.m_ActionTool) {
    case TActionTools::dtDrawing:
        ReleaseDrawing(button, shift);
        break;
    case TActionTools::dtSelecting:
    case TActionTools::dtRotateSelecting:
        ReleaseRubberBand();
        break;
    case TActionTools::dtResizing:
        ReleaseResizing(shift);
        break;
    case TActionTools::dtDragging:
        ReleaseDragging();
        break;
    case TActionTools::dtDraggingTextoutPoint:
        ReleaseTextPoint();
        break;
    case TActionTools::dtRotating:
        ReleaseRotating();
        break;
    case TActionTools::dtPolylinePolygonPointRemoving:
        ReleaseNodeRemoving();
        break;
    case TActionTools::dtPolylinePolygonPointAdding:
        ReleaseNodeAdding();
        break;
    case TActionTools::dtDragWhole:
        ReleaseDragWhole();
        break;
    default:
        break;
    }
    EndGesture();
}

// The shapes a gesture changed have told the index so themselves. A handler of the control's
// events may have changed anything; the index is then made again.
void TMouseMachine::Changed(bool handlersRan)
{
    if (handlersRan)
        m_Cad.DocumentChanged();
    else
        m_Cad.Invalidate();
}

void TMouseMachine::EndGesture()
{
    m_Down = false;
    m_LiveLinksCollected = false;
    ForgetDragPicture();
    m_DragBase = {};
    m_SnapBase = {};
    m_Cad.ReleaseCursorClipArea();
}

// A click on a member of a selected group may select that member alone.
bool TMouseMachine::ReleaseChild()
{
    if (!m_Child || m_Now != m_Start)
        return false;
    bool accept = true;
    TMyShape *child = m_Child;
    if (m_Cad.m_OnChildShapeSelected)
        m_Cad.m_OnChildShapeSelected(&m_Cad, child, accept);
    if (!accept) {
        m_Child = nullptr;
        return false;
    }
    m_Feedback.Hide();
    SetCurrent(child);
    m_Cad.m_WorkingShapes.assign(1, child);
    EndGesture();
    m_Cad.SelectAllWorkingShapes();
    RestoreTool();
    m_Cad.Invalidate();
    return true;
}

bool TMouseMachine::ReleaseClickThrough()
{
    if (!m_ClickThrough || m_Now != m_Start)
        return false;
    TMyShape *chosen = m_ClickThrough;
    TMyShape *previous = Current();
    m_Feedback.Hide();
    m_Cad.m_WorkingShapes.assign(1, chosen);
    EndGesture();
    m_Cad.m_ActionTool = TActionTools::dtSelecting;
    m_Cad.SelectAllWorkingShapes();
    m_Cad.Invalidate();
    if (m_Cad.m_OnShapeSelected)
        m_Cad.m_OnShapeSelected(&m_Cad, previous, chosen);
    if (chosen->OnClick())
        chosen->OnClick()(&m_Cad, chosen);
    return true;
}

// ---- Drawing ----

void TMouseMachine::ReleaseDrawing(TMouseButton button, TShiftState shift)
{
    TMyShape *shape = m_Building.get();
    if (button != TMouseButton::mbLeft || !shape)
        return;
    m_Cad.m_Modified = true;
    TPoint p = m_Now;
    if (m_Cad.m_ShapeTool != TDrawTool::SpLinkLine)
        m_Cad.SnapXY(p.X, p.Y);
    m_Cad.DrawMakeSquareorHV(m_Start, p, shift);
    m_Now = p;
    if (IsTwoPointTool(m_Cad.m_ShapeTool) && shape->GetPointsCount() == 1 &&
        p != MyPtToPt(shape->GetPointInZoom(0)))
        shape->AddPointByMouse(p);
    if (!shape->IsDrawingFinished(Qt::LeftButton, p))
        return;
    m_Feedback.Hide();
    FinishShape();
}

// A text shape asks for its lines, and keeps the ones it has when the dialog is cancelled,
// as it does without the dialog. An image asks for its picture; without one no shape is
// left behind.
bool TMouseMachine::AskForInput(TMyShape *shape)
{
    if (auto *text = dynamic_cast<TMyText *>(shape); text && !m_Cad.m_DisableTextInput) {
        QStringList lines = text->Lines();
        if (EditTextLines(&m_Cad, lines))
            text->SetLines(lines);
    }
    if (auto *image = dynamic_cast<TMyImage *>(shape)) {
        TBitmap picture;
        if (m_Cad.m_OnRequestPicture) {
            m_Cad.m_OnRequestPicture(&m_Cad, picture);
        } else {
            const QString file = QFileDialog::getOpenFileName(
                &m_Cad, QObject::tr("Picture"), QString(),
                QObject::tr("Pictures (*.bmp *.png *.jpg *.jpeg *.ico *.emf *.wmf)"));
            QString reason;
            if (!file.isEmpty())
                picture = LoadGraphicsFile(file, &reason);
            if (!reason.isEmpty())
                ShowMessage(reason);
        }
        if (picture.IsEmpty())
            return false;
        image->SetBitmap(picture);
    }
    return true;
}

void TMouseMachine::FinishShape()
{
    TMyShape *shape = m_Building.get();
    TMyCAD &cad = m_Cad;
    shape->SetShapeNo(cad.GetShapesCount());
    shape->SetShapeId(cad.m_ShapeIdCounter);
    shape->SetName(QStringLiteral("Shape%1").arg(cad.m_ShapeIdCounter));
    cad.ReleaseCursorClipArea();
    if (!AskForInput(shape)) {
        m_Building.reset();
        SetCurrent(nullptr);
        cad.Invalidate();
        return;
    }
    if (auto *text = dynamic_cast<TMyText *>(shape)) {
        const TMyPoint lt = text->GetLeftTop(), rb = text->GetRightBottom();
        text->Points() = {lt, {rb.X, lt.Y}, rb, {lt.X, rb.Y}};
    }
    // A connector's ends were noted by number while it was drawn; binding them now puts the
    // connector into its shapes' lists, which needs its own number.
    auto *link = dynamic_cast<TMyLinkLine *>(shape);
    const std::int32_t startNo = link ? link->StartSpNo() : -1;
    const std::int32_t startPt = link ? link->StartSpPtId() : -1;
    const std::int32_t endNo = link ? link->EndSpNo() : -1;
    const std::int32_t endPt = link ? link->EndSpPtId() : -1;
    if (link) {
        link->SetStartSpNo(-1);
        link->SetEndSpNo(-1);
    }
    if (JoinLines())
        return;
    if (!cad.AddShape(shape, false, false))
        return;
    m_Building.release();
    if (link) {
        if (TMyShape *s = cad.GetShapeByNo(startNo))
            link->CreateSrcLink(s->ShapeId(), startPt);
        if (TMyShape *e = cad.GetShapeByNo(endNo))
            link->CreateDestLink(e->ShapeId(), endPt);
    }
    cad.m_WorkingShapes.assign(1, shape);
    TPoint to = m_Now;
    shape->Drawed(m_Start, to);
    if (cad.m_OnShapeAdded)
        cad.m_OnShapeAdded(&cad, shape, cad.GetShapesCount());
    cad.PushtoUndoRedoShapeList(std::span<TMyShape *const>(&shape, 1), 0, ACT_ADD);
    SetCurrent(nullptr);
    FinishDrawingTool(true);
}

// A plain line dropped with both ends on the ends of two other lines joins them into one
// polyline. The line itself never joins the drawing: the join is the step recorded, and
// taking it back gives the two lines as they were.
bool TMouseMachine::JoinLines()
{
    TMyShape *shape = m_Building.get();
    if (shape->ClassName() != QLatin1String("TMyLine"))
        return false;
    auto *line = static_cast<TMyLine *>(shape);
    TPoint to = m_Now;
    line->Drawed(m_Start, to);
    if (line->StartMergeShapeId() < 0 || line->EndMergeShapeId() < 0 ||
        line->StartMergeShapeId() == line->EndMergeShapeId())
        return false;
    line->SetLayerId(m_Cad.m_CurrentLayerId);
    if (!m_Cad.CreateAndDelete(line))
        return false;
    m_Building.reset();
    SetCurrent(nullptr);
    // The join told the index what it removed and appended.
    FinishDrawingTool(true);
    return true;
}

// After a finished shape: back to selecting when the control asks for it, and one repaint.
// A shape only appended is taken in by the index at its next query, and removals have told
// it already (indexKept); event handlers may have changed anything.
void TMouseMachine::FinishDrawingTool(bool indexKept)
{
    TMyCAD &cad = m_Cad;
    bool handled = cad.m_OnShapeAdded != nullptr;
    if (cad.m_ReturnToSelecting) {
        if (cad.m_OnActionToolToSelecting) {
            cad.m_OnActionToolToSelecting(&cad);
            handled = true;
        }
        cad.m_ActionTool = m_Saved;
        cad.m_ShapeTool = TDrawTool::SpSelecting;
    }
    if (indexKept && !handled)
        cad.Invalidate();
    else
        cad.DocumentChanged();
}

// ---- Selecting ----

void TMouseMachine::ReleaseRubberBand()
{
    m_Feedback.Hide();
    if (m_Now != m_Start) {
        // A shape inside the band has its points there, and the extent the index keeps
        // holds them: only the shapes near the band are looked at, in list order.
        const TRect band(std::min(m_Start.X, m_Now.X), std::min(m_Start.Y, m_Now.Y),
                         std::max(m_Start.X, m_Now.X) + 1, std::max(m_Start.Y, m_Now.Y) + 1);
        for (const std::int32_t no : m_Cad.IndexedShapesNear(band)) {
            TMyShape *shape = m_Cad.GetShapeByNo(no);
            if (shape->HasParentShape() || !shape->Visible())
                continue;
            if (!m_Cad.m_OperateAllLayer && shape->LayerId() != m_Cad.m_CurrentLayerId)
                continue;
            if (m_Cad.IsInRegion(m_Start, m_Now, shape) && !m_Cad.m_WorkingShapes.Contains(shape))
                m_Cad.m_WorkingShapes.push_back(shape);
        }
    }
    m_Cad.SelectAllWorkingShapes();
    m_Cad.Invalidate();
}

// ---- Gestures on the working shapes ----

void TMouseMachine::ReleaseResizing(TShiftState shift)
{
    m_Feedback.Hide();
    TMyShape *shape = Current();
    RestoreTool();
    if (!shape || m_Now == m_Start) {
        m_Cad.Invalidate();
        return;
    }
    m_Cad.m_Modified = true;
    TPoint p = m_Now;
    if (m_Cad.m_ShapeTool != TDrawTool::SpLinkLine)
        m_Cad.SnapXY(p.X, p.Y);
    m_Cad.PushtoUndoRedoShapeList(std::span<TMyShape *const>(&shape, 1), 0, ACT_CHANGE);
    m_Cad.ResizeMakeSquareorHV(shape, m_Start, p, shift);
    const TMyPoint handle = ResizeHandlePosition(*shape, m_Start);
    m_Cad.SizeChangeValueforShapes(shape, handle, PtToMyPt(p));
    if (m_Cad.m_OnShapeMouseResized) {
        const TMyPoint asked = m_Cad.GetPointByMode(p);
        TMyPoint to = asked;
        m_Cad.m_OnShapeMouseResized(&m_Cad, shape, m_Cad.GetPointByMode(m_Start), to);
        if (to != asked) {
            TPoint again = m_Cad.PointFromMode(to);
            // A side handle moves its side across only: the other coordinate is held.
            const std::int32_t hot = shape->CurrentHot();
            if (dynamic_cast<TMyRectangle *>(shape) && hot >= 4 && hot <= 7) {
                if (hot % 2 == 0)
                    again.X = p.X;
                else
                    again.Y = p.Y;
            }
            m_Cad.SizeChangeValueforShapes(shape, PtToMyPt(p), PtToMyPt(again));
            p = again;
        }
    }
    m_Cad.ChangeLinkShapes(shape);
    TMyPoint to = m_Cad.GetPointByMode(p);
    if (m_Cad.m_OnShapeMouseResizeFinished)
        m_Cad.m_OnShapeMouseResizeFinished(&m_Cad, shape, m_Cad.GetPointByMode(m_Start), to);
    Changed(m_Cad.m_OnShapeMouseResized || m_Cad.m_OnShapeMouseResizeFinished);
}

void TMouseMachine::ReleaseDragging()
{
    m_Feedback.Hide();
    RestoreTool();
    TPoint p = m_Now;
    m_Cad.GetMousePointbyDragMode(m_Start, p);
    if (p == m_Start || m_Cad.m_WorkingShapes.empty()) {
        m_Cad.Invalidate();
        return;
    }
    m_Cad.m_Modified = true;
    if (m_Cad.m_Snap || m_Cad.m_SnapShape) {
        const TRect base = m_DragBase.IsEmpty() ? WorkingBounds() : m_SnapBase;
        m_Cad.SnapRect(base.Translated(p.X - m_Start.X, p.Y - m_Start.Y), p.X, p.Y);
        // Snapping corrects both axes; a drag held to one axis stays on it.
        m_Cad.GetMousePointbyDragMode(m_Start, p);
    }
    const std::vector<TMyShape *> shapes = m_Cad.m_WorkingShapes;
    std::vector<TMyShape *> movable;
    for (TMyShape *shape : shapes)
        if (!shape->Locked() && shape->DragEnable())
            movable.push_back(shape);
    if (movable.empty() || !m_Cad.m_DragEnable) {
        m_Cad.Invalidate();
        return;
    }
    m_Cad.PushtoUndoRedoShapeList(movable, std::int32_t(movable.size()) - 1, ACT_CHANGE);
    m_Cad.MoveShapesBy(movable, p.X - m_Start.X, p.Y - m_Start.Y);
    if (m_Cad.m_OnShapeMouseDragged) {
        const TMyPoint asked = m_Cad.GetPointByMode(p);
        TMyPoint to = asked;
        m_Cad.m_OnShapeMouseDragged(&m_Cad, Current(), m_Cad.GetPointByMode(m_Start), to);
        if (to != asked) {
            const TPoint again = m_Cad.PointFromMode(to);
            m_Cad.MoveShapesBy(movable, again.X - p.X, again.Y - p.Y);
        }
    }
    Changed(m_Cad.m_OnShapeMouseDragged || m_Cad.m_OnShapeCodeDragging);
}

void TMouseMachine::ReleaseTextPoint()
{
    m_Feedback.Hide();
    RestoreTool();
    TMyShape *shape = Current();
    if (shape && m_Now != m_Start) {
        m_Cad.m_Modified = true;
        const double z = m_Cad.m_Zoom;
        shape->SetTextPoint({float(m_Now.X / z), float(m_Now.Y / z)});
    }
    m_Cad.DocumentChanged();
}

void TMouseMachine::ReleaseRotating()
{
    m_Feedback.Hide();
    RestoreTool();
    TMyShape *shape = Current();
    if (!shape || m_Now == m_Start) {
        m_Cad.Invalidate();
        return;
    }
    m_Cad.m_Modified = true;
    m_Cad.PushtoUndoRedoShapeList(std::span<TMyShape *const>(&shape, 1), 0, ACT_CHANGE);
    // A member selected on its own turns alone (with its members), about its group's centre.
    const TMyPoint centre = m_Cad.GetRootParentShape(shape)->GetCenterPoint();
    const double angle = RotationAngle(shape, m_Now);
    m_Cad.RotateChangeValueforShapes(shape, centre, angle);
    m_Cad.ChangeLinkShapes(shape);
    TMyPoint to = m_Cad.GetPointByMode(m_Now);
    if (m_Cad.m_OnShapeMouseRotated)
        m_Cad.m_OnShapeMouseRotated(&m_Cad, shape, m_Cad.GetPointByMode(m_Start), to);
    Changed(m_Cad.m_OnShapeMouseRotated || m_Cad.m_OnShapeCodeRotating);
}

void TMouseMachine::ReleaseDragWhole()
{
    m_Feedback.Hide();
    TPoint p = m_Now;
    m_Cad.GetMousePointbyDragMode(m_Start, p);
    if (p == m_Start) {
        m_Cad.Invalidate();
        return;
    }
    m_Cad.m_Modified = true;
    m_Cad.MoveShapesBy(WholeDragShapes(), p.X - m_Start.X, p.Y - m_Start.Y);
    if (m_Cad.m_OnWholeDragged)
        m_Cad.m_OnWholeDragged(&m_Cad);
    m_Cad.DocumentChanged();
}

// ---- Nodes ----

void TMouseMachine::ReleaseNodeRemoving()
{
    if (m_Cad.m_WorkingShapes.size() > 1)
        return;
    std::int32_t code = -9;
    TMyShape *found = nullptr;
    for (TMyShape *shape : m_Cad.m_WorkingShapes) {
        const bool polygon = dynamic_cast<TMyPolygon *>(shape) != nullptr;
        const bool chain = dynamic_cast<TMyPolyLine *>(shape) || dynamic_cast<TMyBLine *>(shape);
        if (!polygon && !chain)
            continue;
        const std::int32_t i = shape->InWhichHot(m_Start);
        if (i < 0)
            continue;
        found = shape;
        const std::int32_t count = shape->GetPointsCount();
        if (polygon && i == count - 1) {
            code = -7;
        } else if ((polygon && count <= 4) || (!polygon && count < 3)) {
            code = -8;
        } else {
            m_Cad.PushtoUndoRedoShapeList(std::span<TMyShape *const>(&shape, 1), 0, ACT_CHANGE);
            shape->Points().erase(shape->Points().begin() + i);
            if (polygon && i == 0)
                shape->SetPoint(shape->GetPointsCount() - 1, shape->GetPoint(0));
            shape->SetCenterPoint(shape->GetCenterPoint());
            m_Cad.ChangeLinkShapes(shape);
            code = i;
        }
    }
    m_Cad.DocumentChanged();
    if (found && code != -9 && m_Cad.m_OnNodeDeleted)
        m_Cad.m_OnNodeDeleted(&m_Cad, found, code);
}

void TMouseMachine::ReleaseNodeAdding()
{
    const std::vector<TMyShape *> shapes = m_Cad.m_WorkingShapes;
    for (TMyShape *shape : shapes) {
        std::int32_t index = -1;
        if (auto *line = dynamic_cast<TMyPolyLine *>(shape))
            line->IsClickedMeBeforeWhichPoint(index, m_Now);
        else if (dynamic_cast<TMyBLine *>(shape))
            index = ControlPolygonSegment(*shape, m_Now);
        if (index < 0)
            continue;
        m_Cad.PushtoUndoRedoShapeList(std::span<TMyShape *const>(&shape, 1), 0, ACT_CHANGE);
        const double z = m_Cad.m_Zoom;
        shape->Points().insert(shape->Points().begin() + index,
                               TMyPoint{float(m_Now.X / z), float(m_Now.Y / z)});
        shape->SetCenterPoint(shape->GetCenterPoint());
        m_Cad.ChangeLinkShapes(shape);
        m_Cad.DocumentChanged();
        if (m_Cad.m_OnNodeAdded)
            m_Cad.m_OnNodeAdded(&m_Cad, shape, index);
    }
}

} // namespace tessal
