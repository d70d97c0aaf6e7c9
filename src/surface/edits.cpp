// SPDX-License-Identifier: MIT
// Editing commands that change the make-up of shapes: joining lines end to end, breaking
// chains apart, closing a polyline and giving shapes the same size.
#include <tessal/surface/cad.h>
#include <tessal/surface/shapestate_p.h>

#include <tessal/shapes/arc.h>
#include <tessal/shapes/line.h>
#include <tessal/shapes/polyline.h>
#include <tessal/shapes/rectangle.h>
#include <tessal/shapes/shape.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>

namespace tessal {

namespace {

// Neither locked nor hidden (itself or by its layer).
bool IsFree(const TMyCAD &cad, const TMyShape &shape)
{
    return !shape.Locked() && shape.Visible() && cad.IsVisibleLayerByID(shape.LayerId());
}

bool IsClass(const TMyShape &shape, std::initializer_list<const char *> names)
{
    const QString name = shape.ClassName();
    return std::any_of(names.begin(), names.end(),
                       [&name](const char *n) { return name == QLatin1String(n); });
}

// The arrow styles name the end that carries a head: ARight the first point, ALeft the
// last one.
bool HeadAtFirst(TArrowStyle style)
{
    return style == TArrowStyle::ARight || style == TArrowStyle::ADouble;
}

bool HeadAtLast(TArrowStyle style)
{
    return style == TArrowStyle::ALeft || style == TArrowStyle::ADouble;
}

TArrowStyle StyleWithHeads(bool first, bool last)
{
    if (first && last)
        return TArrowStyle::ADouble;
    if (first)
        return TArrowStyle::ARight;
    return last ? TArrowStyle::ALeft : TArrowStyle::ANone;
}

// The chain of a shape, turned so that its end point number end comes last (atEnd) or
// first. Nothing when end is not one of the chain's two ends.
std::optional<TMyPointArray> ChainFromEnd(const TMyShape &shape, std::int32_t end, bool atEnd)
{
    const std::int32_t last = shape.GetPointsCount() - 1;
    if (last < 1 || (end != 0 && end != last))
        return std::nullopt;
    TMyPointArray points = shape.Points();
    if ((end == last) != atEnd)
        std::reverse(points.begin(), points.end());
    return points;
}

// Whether the head at the end of the chain that was not merged is there.
bool HeadAtFarEnd(const TMyLine &line, std::int32_t mergedEnd)
{
    return mergedEnd == 0 ? HeadAtLast(line.ArrowStyle()) : HeadAtFirst(line.ArrowStyle());
}

std::size_t CountDistinct(TMyPointArray points)
{
    const auto less = [](TMyPoint a, TMyPoint b) { return a.X < b.X || (a.X == b.X && a.Y < b.Y); };
    std::sort(points.begin(), points.end(), less);
    return std::size_t(std::unique(points.begin(), points.end()) - points.begin());
}

// ---- Breaking ----

bool IsBreakableClass(const TMyShape &shape)
{
    return IsClass(shape, {"TMyLine", "TMyPolyLine", "TMyFreeLine"}) && shape.GetPointsCount() >= 2;
}

// Where a chain breaks for a click: before point Index, at Point (document) on the hit
// segment, or at the inner point Index itself when Point is that point.
struct TBreakAt
{
    std::int32_t Index = -1;
    TMyPoint Point;
    bool AtVertex = false;
};

std::optional<TBreakAt> FindBreak(const TMyLine &line, TPoint screen, double zoom)
{
    std::int32_t before = -1;
    if (!line.IsClickedMeBeforeWhichPoint(before, screen) || before < 1)
        return std::nullopt;
    const TMyPoint a = line.Points()[std::size_t(before - 1)];
    const TMyPoint b = line.Points()[std::size_t(before)];
    // The point of the segment nearest to the click, so that the pieces stay on the line.
    const double px = screen.X / zoom, py = screen.Y / zoom;
    const double dx = double(b.X) - a.X, dy = double(b.Y) - a.Y;
    const double length2 = dx * dx + dy * dy;
    const double t =
        length2 > 0 ? std::clamp(((px - a.X) * dx + (py - a.Y) * dy) / length2, 0.0, 1.0) : 0.0;
    const TMyPoint p{float(a.X + t * dx), float(a.Y + t * dy)};
    TBreakAt at{before, p, false};
    if (p == a || p == b)
        at = {p == a ? before - 1 : before, p, true};
    // A chain cannot break at one of its ends.
    if (at.AtVertex && (at.Index < 1 || at.Index > line.GetPointsCount() - 2))
        return std::nullopt;
    return at;
}

// ---- Same size ----

// A box-framed shape (its Angle turns its box) at an angle that is not a multiple of 90
// degrees, itself or among its members: stretching along an axis of the page would shear
// it.
bool HasTurnedFrame(const TMyCAD &cad, const TMyShape &shape, std::int32_t depth)
{
    if (depth > cad.GetShapesCount())
        return false;
    const bool framed =
        dynamic_cast<const TMyRectangle *>(&shape) || dynamic_cast<const TMyElliArc *>(&shape);
    const double quarters = shape.Angle() / (std::numbers::pi / 2);
    if (framed && std::abs(quarters - std::nearbyint(quarters)) > 1e-6)
        return true;
    for (std::int32_t no : shape.ChildShapes()) {
        const TMyShape *child = cad.GetShapeByNo(no);
        if (child && child != &shape && HasTurnedFrame(cad, *child, depth + 1))
            return true;
    }
    return false;
}

// Scales every point of the shape and its unlocked members by fx, fy about centre
// (document).
void StretchTree(const TMyCAD &cad, TMyShape &shape, TMyPoint centre, double fx, double fy,
                 std::int32_t depth)
{
    if (depth > cad.GetShapesCount())
        return;
    const auto map = [&](TMyPoint p) {
        return TMyPoint{float(centre.X + (double(p.X) - centre.X) * fx),
                        float(centre.Y + (double(p.Y) - centre.Y) * fy)};
    };
    if (!shape.Locked() || depth == 0)
        MapShapePositions(shape, map);
    for (std::int32_t no : shape.ChildShapes()) {
        TMyShape *child = cad.GetShapeByNo(no);
        if (child && child != &shape)
            StretchTree(cad, *child, centre, fx, fy, depth + 1);
    }
}

} // namespace

bool TMyCAD::IsEditableShape(const TMyShape *shape) const
{
    return GetShapeNoInMyShapes(shape) >= 0 && IsFree(*this, *shape);
}

// ---- Joining lines ----

TMyShape *TMyCAD::GetMergeShape(TMyLine *line, bool atStart, TMyPoint point)
{
    if (!line)
        return nullptr;
    line->LookUpMergeShape(atStart, point);
    return GetShapeByID(atStart ? line->StartMergeShapeId() : line->EndMergeShapeId());
}

TMyShape *TMyCAD::CreateAndDelete(TMyLine *line)
{
    if (!line || line->GetPointsCount() < 2)
        return nullptr;
    // Members of groups and shapes with bound connectors are not joined: the joined chain
    // could not stand in for them in the group or at the connector's end.
    const auto mergeable = [this](const TMyShape *shape) {
        return IsEditableShape(shape) && IsClass(*shape, {"TMyLine", "TMyPolyLine"}) &&
               !shape->HasParentShape() && !shape->HasLinkShapes();
    };
    auto *first = dynamic_cast<TMyLine *>(GetShapeByID(line->StartMergeShapeId()));
    auto *second = dynamic_cast<TMyLine *>(GetShapeByID(line->EndMergeShapeId()));
    const bool lineInDocument = GetShapeNoInMyShapes(line) >= 0;
    if (!mergeable(first) || !mergeable(second) || first == second || first == line ||
        second == line || first->LayerId() != second->LayerId() ||
        (lineInDocument && !mergeable(line)))
        return nullptr;
    const std::optional<TMyPointArray> head = ChainFromEnd(*first, line->StartMergePointNo(), true);
    const std::optional<TMyPointArray> tail = ChainFromEnd(*second, line->EndMergePointNo(), false);
    if (!head || !tail)
        return nullptr;

    // The line's own ends lie within a handle of the shapes' ends, which stand for them.
    TMyPointArray chain = *head;
    chain.insert(chain.end(), line->Points().begin() + 1, line->Points().end() - 1);
    chain.insert(chain.end(), tail->begin(), tail->end());
    chain.erase(std::unique(chain.begin(), chain.end()), chain.end());

    std::unique_ptr<TMyShape> merged = CreateShapeByName(QStringLiteral("TMyPolyLine"));
    CopyWholeState(*merged, *first);
    merged->Points() = std::move(chain);
    static_cast<TMyLine &>(*merged).SetArrowStyle(
        StyleWithHeads(HeadAtFarEnd(*first, line->StartMergePointNo()),
                       HeadAtFarEnd(*second, line->EndMergePointNo())));
    merged->SetCenterPoint(merged->ComputeCenterPoint(4));
    merged->SetTextPoint(merged->CenterPoint());
    // A plain line's info is its length text, which a polyline does not have.
    if (first->ClassName() == QLatin1String("TMyLine"))
        merged->SetInfo({});

    std::vector<TMyShape *> gone{first, second};
    if (lineInDocument)
        gone.push_back(line);
    RecordEdit(gone, ACT_DELETE, false, true);
    const bool handlers = m_OnShapeDeleted || m_OnShapeAdded;
    DeleteShapesTogether(gone);
    ClearWorkingShapes();

    const std::int32_t id = m_ShapeIdCounter;
    merged->SetShapeId(id);
    merged->SetName(QStringLiteral("Shape") + QString::number(id));
    merged->SetCaption(merged->Name());
    merged->SetShapeNo(GetShapesCount());
    TMyShape *added = merged.get();
    if (!AddShape(added, true, false))
        return nullptr;
    merged.release();
    TMyShape *const one[] = {added};
    RecordEdit(one, ACT_ADD, true, false);
    m_WorkingShapes = {added};
    m_CurrentShape = added;
    if (m_OnShapeAdded)
        m_OnShapeAdded(this, added, GetShapesCount());
    // The removals and the append kept the index; a handler may have changed anything.
    if (handlers)
        DocumentChanged();
    else
        Invalidate();
    return added;
}

// ---- Same size ----

bool TMyCAD::AverageWidth()
{
    return AverageSize(true);
}

bool TMyCAD::AverageHeight()
{
    return AverageSize(false);
}

bool TMyCAD::AverageSize(bool width)
{
    const auto extent = [width](const TMyShape *shape) {
        return double(width ? shape->GetWidth() : shape->GetHeight());
    };
    std::vector<TMyShape *> shapes;
    double sum = 0;
    for (TMyShape *shape : m_WorkingShapes) {
        if (IsFree(*this, *shape) && extent(shape) > 0) {
            shapes.push_back(shape);
            sum += extent(shape);
        }
    }
    if (shapes.size() < 2)
        return false;
    const double average = sum / double(shapes.size());
    RecordEdit(shapes, ACT_CHANGE, false, false);
    for (TMyShape *shape : shapes) {
        const double f = average / extent(shape);
        const TMyPoint lt = shape->GetLeftTop();
        const TMyPoint rb = shape->GetRightBottom();
        const TMyPoint middle{(lt.X + rb.X) / 2, (lt.Y + rb.Y) / 2};
        const bool even = HasTurnedFrame(*this, *shape, 0);
        StretchTree(*this, *shape, middle, even || width ? f : 1, even || !width ? f : 1, 0);
    }
    for (TMyShape *shape : shapes)
        ChangeLinkShapes(shape);
    DocumentChanged();
    return true;
}

// ---- Breaking chains ----

TMyShape *TMyCAD::BreakLine(TMyShape *shape, std::int32_t pointIndex)
{
    if (!IsEditableShape(shape) || !IsBreakableClass(*shape) || pointIndex < 1 ||
        pointIndex > shape->GetPointsCount() - 2)
        return nullptr;
    TMyShape *const one[] = {shape};
    RecordEdit(one, ACT_CHANGE, false, false);
    return SplitChain(shape, pointIndex);
}

TMyShape *TMyCAD::BreakLineByAPoint(TMyShape *shape, TPoint screenPoint)
{
    if (!IsEditableShape(shape) || !IsBreakableClass(*shape))
        return nullptr;
    const std::optional<TBreakAt> at =
        FindBreak(static_cast<const TMyLine &>(*shape), screenPoint, Zoom());
    if (!at)
        return nullptr;
    if (at->AtVertex)
        return BreakLine(shape, at->Index);
    TMyShape *const one[] = {shape};
    RecordEdit(one, ACT_CHANGE, false, false);
    shape->Points().insert(shape->Points().begin() + at->Index, at->Point);
    return SplitChain(shape, at->Index);
}

TMyShape *TMyCAD::IsBreakLineByAPoint(TPoint screenPoint) const
{
    for (std::int32_t no = GetShapesCount() - 1; no >= 0; --no) {
        TMyShape *shape = m_Shapes[std::size_t(no)].get();
        if (IsFree(*this, *shape) && IsBreakableClass(*shape) &&
            FindBreak(static_cast<const TMyLine &>(*shape), screenPoint, Zoom()))
            return shape;
    }
    return nullptr;
}

// The shape keeps points 0 .. pointIndex and the head at its start; a new shape of its class
// takes points pointIndex .. last and the head at the far end.
TMyShape *TMyCAD::SplitChain(TMyShape *shape, std::int32_t pointIndex)
{
    auto &line = static_cast<TMyLine &>(*shape);
    const TMyPointArray all = shape->Points();
    const TArrowStyle style = line.ArrowStyle();
    const TMyPoint oldCentre = shape->CenterPoint();
    std::unique_ptr<TMyShape> piece = CreateShapeByName(shape->ClassName());
    CopyWholeState(*piece, *shape);

    shape->Points().assign(all.begin(), all.begin() + pointIndex + 1);
    line.SetArrowStyle(StyleWithHeads(HeadAtFirst(style), false));
    shape->SetCenterPoint(shape->ComputeCenterPoint(4));
    // A caption anchor left at the centre (where drawing puts it) stays there.
    if (shape->TextPoint() == oldCentre)
        shape->SetTextPoint(shape->CenterPoint());

    piece->Points().assign(all.begin() + pointIndex, all.end());
    static_cast<TMyLine &>(*piece).SetArrowStyle(StyleWithHeads(false, HeadAtLast(style)));
    piece->SetCenterPoint(piece->ComputeCenterPoint(4));
    piece->SetTextPoint(piece->CenterPoint());
    // Connectors stay bound to the shape; the piece starts without link points.
    piece->LinkPoints().clear();
    piece->LinkShapes().clear();
    piece->ChildShapes().clear();
    const std::int32_t id = m_ShapeIdCounter;
    piece->SetShapeId(id);
    piece->SetName(QStringLiteral("Shape") + QString::number(id));
    piece->SetCaption(piece->Name());

    const std::int32_t no = GetShapeNoInMyShapes(shape) + 1;
    TMyShape *added = piece.get();
    if (!InsertShape(added, no, false))
        return nullptr;
    piece.release();
    if (TMyShape *group = GetShapeByNo(added->ParentNo())) {
        group->ChildShapes().push_back(no);
        std::sort(group->ChildShapes().begin(), group->ChildShapes().end());
    }
    // Plain lines keep their length text current.
    shape->GetInfo();
    added->GetInfo();
    TMyShape *const one[] = {added};
    RecordEdit(one, ACT_ADD, true, false);
    m_WorkingShapes.clear();
    AddWorkingShape(shape);
    AddWorkingShape(added);
    m_CurrentShape = added;
    ChangeLinkShapes(shape);
    if (m_OnShapeAdded)
        m_OnShapeAdded(this, added, GetShapesCount());
    DocumentChanged();
    return added;
}

// ---- Closing a polyline ----

TMyShape *TMyCAD::ClosePolygon(TMyShape *shape)
{
    if (!IsEditableShape(shape) || shape->ClassName() != QLatin1String("TMyPolyLine") ||
        CountDistinct(shape->Points()) < 3)
        return nullptr;
    std::unique_ptr<TMyShape> polygon = CreateShapeByName(QStringLiteral("TMyPolygon"));
    TMyShape *const one[] = {shape};
    RecordEdit(one, ACT_CHANGE, false, false);
    CopyWholeState(*polygon, *shape);
    TMyPointArray &points = polygon->Points();
    if (points.back() != points.front())
        points.push_back(points.front());
    // Nothing moved (the closing point repeats point 0), so bound connectors stay as they are.
    return ReplaceShapeObject(GetShapeNoInMyShapes(shape), std::move(polygon));
}

// ---- List surgery ----

bool TMyCAD::InsertShape(TMyShape *shape, std::int32_t no, bool noIdCount)
{
    const std::int32_t count = GetShapesCount();
    if (!AddShape(shape, true, noIdCount))
        return false;
    no = std::clamp(no, 0, count);
    if (no < count) {
        std::rotate(m_Shapes.begin() + no, m_Shapes.end() - 1, m_Shapes.end());
        RenumberRelations([no, count](std::int32_t n) { return n >= no && n < count ? n + 1 : n; });
        ShapesRenumbered();
    }
    return true;
}

// Everything that remembers the old object forgets it first (ForgetShape), then the
// selection takes the new one in its place.
TMyShape *TMyCAD::ReplaceShapeObject(std::int32_t no, std::unique_ptr<TMyShape> shape)
{
    TMyShape *old = GetShapeByNo(no);
    if (!old || !shape)
        return old;
    TMyShape *now = shape.get();
    const auto working = std::find(m_WorkingShapes.begin(), m_WorkingShapes.end(), old);
    const std::ptrdiff_t place =
        working == m_WorkingShapes.end() ? -1 : working - m_WorkingShapes.begin();
    const bool current = m_CurrentShape == old;
    ForgetShape(old);
    m_Shapes[std::size_t(no)] = std::move(shape);
    ShapesRenumbered();
    now->SetListPlace(no);
    if (place >= 0)
        m_WorkingShapes.insert(m_WorkingShapes.begin() + place, now);
    if (current)
        m_CurrentShape = now;
    DocumentChanged();
    return now;
}

} // namespace tessal
