// SPDX-License-Identifier: MIT
// What the gestures do to shapes: Shift constraints, outline previews, moves, resizes and
// turns of shapes with their group members, and the points that gesture events report.
#include <tessal/surface/cad.h>
#include <tessal/surface/mouse_p.h>
#include <tessal/surface/pointrule_p.h>
#include <tessal/surface/xortiles_p.h>

#include <tessal/geometry/canvasmodes.h>
#include <tessal/geometry/geometry.h>
#include <tessal/shapes/arc.h>
#include <tessal/shapes/line.h>
#include <tessal/shapes/link.h>
#include <tessal/shapes/polyline.h>
#include <tessal/shapes/rectangle.h>
#include <tessal/shapes/shape.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace tessal {

namespace {

std::int32_t SignOf(std::int32_t v)
{
    return v < 0 ? -1 : 1;
}

// A box as wide as it is high, grown from anchor towards the mouse.
void MakeSquare(TPoint anchor, TPoint &point)
{
    const std::int32_t dx = point.X - anchor.X, dy = point.Y - anchor.Y;
    const std::int32_t d = std::max(std::abs(dx), std::abs(dy));
    point = {anchor.X + SignOf(dx) * d, anchor.Y + SignOf(dy) * d};
}

// A segment held to the nearest of the horizontal, the vertical and the two diagonals.
void MakeHV(TPoint anchor, TPoint &point)
{
    const std::int32_t dx = point.X - anchor.X, dy = point.Y - anchor.Y;
    const double tan22 = std::tan(std::numbers::pi / 8);
    if (std::abs(dy) <= std::abs(dx) * tan22) {
        point.Y = anchor.Y;
    } else if (std::abs(dx) <= std::abs(dy) * tan22) {
        point.X = anchor.X;
    } else {
        const std::int32_t d = std::max(std::abs(dx), std::abs(dy));
        point = {anchor.X + SignOf(dx) * d, anchor.Y + SignOf(dy) * d};
    }
}

double UnitsPerInch(TUnits unit, double pixelsPerInch)
{
    switch (unit) {
    case TUnits::pixel:
        return pixelsPerInch;
    case TUnits::mm:
        return 25.4;
    case TUnits::cm:
        return 2.54;
    case TUnits::dm:
        return 0.254;
    case TUnits::m:
        return 0.0254;
    case TUnits::inch:
        return 1.0;
    }
    return pixelsPerInch;
}

} // namespace

// ---- Constraints ----

void TMyCAD::DrawMakeSquareorHV(TPoint anchor, TPoint &point, TShiftState shift) const
{
    if (!(shift & ssShift))
        return;
    if (PointRuleOf(m_ShapeTool) == TPointRule::Box)
        MakeSquare(anchor, point);
    else
        MakeHV(anchor, point);
}

void TMyCAD::ResizeMakeSquareorHV(TMyShape *shape, TPoint start, TPoint &point,
                                  TShiftState shift) const
{
    (void)start;
    if (!(shift & ssShift) || !shape)
        return;
    const std::int32_t hot = shape->CurrentHot();
    const std::int32_t count = shape->GetPointsCount();
    if (hot < 0 || hot >= count)
        return;
    if (dynamic_cast<const TMyRectangle *>(shape)) {
        if (hot < 4 && count >= 4)
            MakeSquare(MyPtToPt(shape->GetPointInZoom((hot + 2) % 4)), point);
    } else if (dynamic_cast<const TMyLine *>(shape) && count >= 2) {
        MakeHV(MyPtToPt(shape->GetPointInZoom(hot >= 1 ? hot - 1 : 1)), point);
    }
}

// ---- Previews ----

void TMyCAD::DraggingforShapes(TCanvas &canvas, TPoint from, TPoint to)
{
    for (TMyShape *shape : m_WorkingShapes)
        DragOutline(canvas, shape, from, to);
}

void TMyCAD::DragOutline(TCanvas &canvas, TMyShape *shape, TPoint from, TPoint to)
{
    ForTree(*this, shape, [&](TMyShape *s) { s->Draging(canvas, from, to); });
}

void TMyCAD::RotatingforShapes(TCanvas &canvas, TMyShape *shape, TMyPoint centre, double angle)
{
    ForTree(*this, shape, [&](TMyShape *s) { s->Rotating(canvas, centre, angle); });
}

// ---- Applying gestures ----

void TMyCAD::DragChangeValueDxDyforShapes(TMyShape *shape, double dx, double dy)
{
    if (!shape)
        return;
    if (m_OnShapeCodeDragging)
        m_OnShapeCodeDragging(this, shape, dx, dy);
    MoveTree(shape, dx, dy, 0);
    ShapeGeometryChanged(shape);
}

// A group is resized through its box: its members are scaled with it, in the group's turned
// frame, about the corner that stays.
void TMyCAD::SizeChangeValueforShapes(TMyShape *shape, TMyPoint from, TMyPoint to)
{
    if (!shape || shape->Locked())
        return;
    if (!shape->HasChildShapes() || shape->GetPointsCount() < 4) {
        shape->SizeChangeValue(from, to);
        ShapeGeometryChanged(shape);
        return;
    }
    const double w = shape->GetMyWidth(), h = shape->GetMyHeight();
    const std::int32_t hot = shape->CurrentHot();
    const TMyPoint fixed = shape->GetPoint(hot >= 0 && hot < 4 ? (hot + 2) % 4 : 0);
    const double frame = shape->Angle();
    shape->SizeChangeValue(from, to);
    const double sx = w > 0 ? shape->GetMyWidth() / w : 1.0;
    const double sy = h > 0 ? shape->GetMyHeight() / h : 1.0;
    for (const std::int32_t no : shape->ChildShapes()) {
        ForTree(*this, GetShapeByNo(no), [&](TMyShape *s) {
            if (s->Locked())
                return;
            s->ScaleInFrame(sx, sy, fixed, frame);
            s->SetCenterPoint(s->GetCenterPoint());
        });
    }
    ShapeGeometryChanged(shape);
}

TMyPoint TMyCAD::GetPointByMode(TPoint point) const
{
    const TPoint mirrored = ReportPoint(point.X, point.Y);
    const double ppi = ScreenPixelsPerInch() > 0 ? ScreenPixelsPerInch() : 96;
    const double factor = m_Ratio / m_Zoom / ppi * UnitsPerInch(m_TheUNIT, ppi);
    return {float(mirrored.X * factor), float(mirrored.Y * factor)};
}

TPoint TMyCAD::PointFromMode(TMyPoint point) const
{
    const double ppi = ScreenPixelsPerInch() > 0 ? ScreenPixelsPerInch() : 96;
    const double factor = m_Ratio / m_Zoom / ppi * UnitsPerInch(m_TheUNIT, ppi);
    const TPoint mirrored{std::int32_t(std::nearbyint(point.X / factor)),
                          std::int32_t(std::nearbyint(point.Y / factor))};
    // Every mirror of the modes is its own inverse.
    return ReportPoint(mirrored.X, mirrored.Y);
}

bool TMyCAD::InWhichShapeWhichPointNo(TPoint point, std::int32_t &shapeNo, std::int32_t &pointNo)
{
    const std::int32_t reach = m_HotSize + 2;
    const std::vector<std::int32_t> near =
        ShapesInRect(TRect(point.X, point.Y, point.X + 1, point.Y + 1).Inflated(reach, reach));
    TMyShape *found = nullptr;
    for (auto it = near.rbegin(); it != near.rend() && !found; ++it) {
        ForTree(*this, GetShapeByNo(*it), [&](TMyShape *s) {
            const QString name = s->ClassName();
            if (found || s == m_Mouse->Construction() ||
                (name != QLatin1String("TMyLine") && name != QLatin1String("TMyPolyLine")))
                return;
            const std::int32_t hot = s->InWhichPointHot(PtToMyPt(point));
            if (hot >= 0) {
                found = s;
                pointNo = hot;
            }
        });
    }
    if (!found) {
        ClearAllLinkHot();
        shapeNo = pointNo = -1;
        return false;
    }
    shapeNo = GetShapeNoInMyShapes(found);
    return true;
}

// ---- The machine's shared geometry ----

TMyPoint TMouseMachine::RotationCentre(TMyShape *shape) const
{
    const TMyShape *root = m_Cad.GetRootParentShape(shape);
    return root->ZoomedValuePt(root->GetCenterPoint());
}

double TMouseMachine::RotationAngle(TMyShape *shape, TPoint to) const
{
    const bool constrained = m_Cad.m_RotateConstraintDegree > 0;
    return shape->GetRotatedAngle(RotationCentre(shape), PtToMyPt(m_Start), PtToMyPt(to),
                                  constrained);
}

TRect TMouseMachine::WorkingScreenRect() const
{
    TRect all;
    for (TMyShape *shape : m_Cad.m_WorkingShapes) {
        const TRect r = m_Cad.ShapeScreenRect(shape);
        all = all.IsEmpty() ? r : (r.IsEmpty() ? all : all.United(r));
    }
    return all;
}

// The working shapes' bounding rectangle in zoomed pixels, corners rounded halves to even.
TRect TMouseMachine::WorkingBounds() const
{
    if (m_Cad.m_WorkingShapes.empty())
        return {};
    const double z = m_Cad.m_Zoom;
    double l = std::numeric_limits<double>::max(), t = l, r = -l, b = -l;
    for (const TMyShape *shape : m_Cad.m_WorkingShapes) {
        const TMyPoint lt = shape->GetLeftTop(), rb = shape->GetRightBottom();
        l = std::min(l, lt.X * z);
        t = std::min(t, lt.Y * z);
        r = std::max(r, rb.X * z);
        b = std::max(b, rb.Y * z);
    }
    return TRect(RoundEven(l), RoundEven(t), RoundEven(r), RoundEven(b));
}

// What the preview of the shape under construction can touch: its points and the mouse,
// with room for pens and arrow heads. Arcs and routed connectors may reach anywhere.
TRect TMouseMachine::DrawingRect(TPoint from, TPoint to) const
{
    const TRect control(0, 0, m_Cad.width(), m_Cad.height());
    TMyShape *shape = m_Building.get();
    if (!shape || dynamic_cast<TMyElliArc *>(shape) || dynamic_cast<TMyLinkLine *>(shape))
        return control;
    TRect r(std::min(from.X, to.X), std::min(from.Y, to.Y), std::max(from.X, to.X) + 1,
            std::max(from.Y, to.Y) + 1);
    for (std::int32_t i = 0; i < shape->GetPointsCount(); ++i) {
        const TPoint p = MyPtToPt(shape->GetPointInZoom(i));
        r = r.United(TRect(p.X, p.Y, p.X + 1, p.Y + 1));
    }
    std::int32_t pad = 2 * std::max(shape->Pen().Width, 1) + 4;
    if (const auto *line = dynamic_cast<const TMyLine *>(shape))
        pad += std::int32_t(std::ceil(line->ArrowLength() * m_Cad.m_Zoom));
    return r.Inflated(pad, pad);
}

bool TMouseMachine::TakesPartInWholeDrag(const TMyShape *shape) const
{
    return !shape->HasParentShape() &&
           (m_Cad.m_OperateAllLayer || shape->LayerId() == m_Cad.m_CurrentLayerId);
}

std::vector<TMyShape *> TMouseMachine::WholeDragShapes() const
{
    std::vector<TMyShape *> shapes;
    for (std::int32_t no = 0; no < m_Cad.GetShapesCount(); ++no) {
        TMyShape *shape = m_Cad.GetShapeByNo(no);
        if (TakesPartInWholeDrag(shape))
            shapes.push_back(shape);
    }
    return shapes;
}

// The shapes whose outlines, at rest, can show in area: those of the shapes taking part in a
// whole drag whose extent reaches it. The index finds them; on a big drawing all the others
// would be clipped away entirely.
std::vector<TMyShape *> TMouseMachine::WholeDragOutlines(const TRect &area) const
{
    std::vector<TMyShape *> shapes;
    for (const std::int32_t no : m_Cad.IndexedShapesNear(area)) {
        TMyShape *shape = m_Cad.GetShapeByNo(no);
        if (TakesPartInWholeDrag(shape))
            shapes.push_back(shape);
    }
    return shapes;
}

// ---- Abandoning ----

void TMouseMachine::Cancel()
{
    m_Feedback.Hide();
    const TActionTools tool = m_Cad.m_ActionTool;
    if (tool == TActionTools::dtDrawing) {
        m_Building.reset();
        m_Cad.m_CurrentShape = nullptr;
    } else if (m_Down && tool != TActionTools::dtDragWhole) {
        RestoreTool();
    }
    m_Child = m_ClickThrough = nullptr;
    EndGesture();
    m_Cad.ClearAllLinkHot();
}

void TMouseMachine::ForgetDragPicture()
{
    m_DragPicture.reset();
    m_DragPictureTried = false;
    m_WholeDragPicture.reset();
}

void TMouseMachine::ToolChanged()
{
    m_Feedback.Hide();
    m_Building.reset();
    m_Child = m_ClickThrough = nullptr;
    EndGesture();
}

// Called before the shape goes: the feedback may show it and is erased while it still can
// be drawn. A whole drag shows every shape of the layer.
void TMouseMachine::Forget(const std::function<bool(const TMyShape *)> &gone)
{
    const auto goes = [&gone](const TMyShape *shape) { return shape && gone(shape); };
    const bool involved =
        m_Cad.m_ActionTool == TActionTools::dtDragWhole || goes(m_Cad.m_CurrentShape) ||
        std::any_of(m_Cad.m_WorkingShapes.begin(), m_Cad.m_WorkingShapes.end(), goes);
    if (m_Down && involved && m_Cad.m_ActionTool != TActionTools::dtDrawing)
        Cancel();
    if (goes(m_Child))
        m_Child = nullptr;
    if (goes(m_ClickThrough))
        m_ClickThrough = nullptr;
    if (goes(m_Hovered))
        m_Hovered = nullptr;
    // A connector under construction notes its ends by number, and numbers change now.
    if (auto *link = dynamic_cast<TMyLinkLine *>(m_Building.get())) {
        link->SetStartSpNo(-1);
        link->SetEndSpNo(-1);
    }
}

void TMouseMachine::ForgetAll()
{
    if (m_Down && m_Cad.m_ActionTool != TActionTools::dtDrawing)
        Cancel();
    m_Child = m_ClickThrough = m_Hovered = nullptr;
}

} // namespace tessal
