// SPDX-License-Identifier: MIT
// TMyLinkLine: copying, binding the ends to link points, the drawing style, and the route
// between the live ends.
#include <tessal/geometry/geometry.h>
#include <tessal/shapes/link.h>
#include <tessal/shapes/shapetools.h>

#include <cmath>

namespace tessal {

// ---- Host defaults ----

TMyShape *TShapeHost::GetShapeByID(std::int32_t id) const
{
    for (std::int32_t no = 0; TMyShape *shape = GetShapeByNo(no); ++no)
        if (shape->ShapeId() == id)
            return shape;
    return nullptr;
}

std::int32_t TShapeHost::GetShapeNoInMyShapes(const TMyShape *shape) const
{
    for (std::int32_t no = 0; const TMyShape *each = GetShapeByNo(no); ++no)
        if (each == shape)
            return no;
    return -1;
}

std::vector<std::int32_t> TShapeHost::ShapesIn(const TMyRect &box) const
{
    (void)box;
    std::vector<std::int32_t> all;
    for (std::int32_t no = 0; GetShapeByNo(no); ++no)
        all.push_back(no);
    return all;
}

std::vector<TMyPoint> TShapeHost::GetPath(const TMyLinkLine &line, TMyPoint start,
                                          TMyPoint end) const
{
    return line.ComputeRoute(start, end, {});
}

// ---- Construction and copying ----

TMyLinkLine::TMyLinkLine(TShapeHost *host)
    : TMyLine(host)
    , m_LinkLineDrawStyle(host->LinkLineDrawStyle())
{}

void TMyLinkLine::CopyLinkFields(const TMyShape &source)
{
    const auto *link = dynamic_cast<const TMyLinkLine *>(&source);
    if (!link || link == this)
        return;
    m_StartSpNo = link->m_StartSpNo;
    m_StartSpPtId = link->m_StartSpPtId;
    m_EndSpNo = link->m_EndSpNo;
    m_EndSpPtId = link->m_EndSpPtId;
    m_LinkLineDrawStyle = link->m_LinkLineDrawStyle;
    m_Reroute = true;
    m_DisplayCache = {};
}

// The bindings are relations like the group members: a full copy takes them, a copy
// without relations starts free at both ends.
void TMyLinkLine::Assign(const TMyShape &source)
{
    TMyLine::Assign(source);
    CopyLinkFields(source);
}

void TMyLinkLine::AssignWithoutRelation(const TMyShape &source)
{
    TMyLine::AssignWithoutRelation(source);
    if (const auto *link = dynamic_cast<const TMyLinkLine *>(&source); link && link != this) {
        m_LinkLineDrawStyle = link->m_LinkLineDrawStyle;
        m_Reroute = true;
    }
}

// ---- Binding ----

bool TMyLinkLine::Bind(std::int32_t &shapeNo, std::int32_t &pointId, std::int32_t shapeId,
                       std::int32_t linkPointIndex)
{
    TMyShape *shape = Host()->GetShapeByID(shapeId);
    if (!shape || linkPointIndex < 0 || linkPointIndex > shape->GetLinkPointsCount() - 1)
        return false;
    // The invariant: a bound end's shape lists the connector, and only while bound. Both
    // are named by their places in the list.
    const std::int32_t self = Host()->GetShapeNoInMyShapes(this);
    if (shapeNo > -1)
        if (TMyShape *previous = Host()->GetShapeByNo(shapeNo))
            RemoveLinklineShape(*previous, self);
    shapeNo = Host()->GetShapeNoInMyShapes(shape);
    pointId = linkPointIndex;
    AddLinklineShape(*shape, self);
    UpdateRoute();
    Repaint();
    return true;
}

bool TMyLinkLine::CreateSrcLink(std::int32_t shapeId, std::int32_t linkPointIndex)
{
    return Bind(m_StartSpNo, m_StartSpPtId, shapeId, linkPointIndex);
}

bool TMyLinkLine::CreateDestLink(std::int32_t shapeId, std::int32_t linkPointIndex)
{
    return Bind(m_EndSpNo, m_EndSpPtId, shapeId, linkPointIndex);
}

void TMyLinkLine::RemoveSrcLink()
{
    m_StartSpNo = -1;
    m_StartSpPtId = -1;
}

void TMyLinkLine::RemoveDestLink()
{
    m_EndSpNo = -1;
    m_EndSpPtId = -1;
}

void TMyLinkLine::RemoveAllLink()
{
    RemoveSrcLink();
    RemoveDestLink();
}

TMyShape *TMyLinkLine::GetStartShape() const
{
    return m_StartSpNo > -1 ? Host()->GetShapeByNo(m_StartSpNo) : nullptr;
}

TMyShape *TMyLinkLine::GetEndShape() const
{
    return m_EndSpNo > -1 ? Host()->GetShapeByNo(m_EndSpNo) : nullptr;
}

// A binding that names a shape or link point that is not there (a drawing read before
// its shapes were renumbered, say) falls back to the own point rather than failing.
TMyPoint TMyLinkLine::EndPosition(std::int32_t shapeNo, std::int32_t pointId, bool atStart) const
{
    if (shapeNo != -1) {
        const TMyShape *shape = Host()->GetShapeByNo(shapeNo);
        if (shape && pointId >= 0 && pointId < shape->GetLinkPointsCount())
            return shape->GetLinkPointInZoom(pointId);
    }
    if (GetPointsCount() == 0)
        return {};
    return GetPointInZoom(atStart ? 0 : GetPointsCount() - 1);
}

TMyPoint TMyLinkLine::GetStartPoint() const
{
    return EndPosition(m_StartSpNo, m_StartSpPtId, true);
}

TMyPoint TMyLinkLine::GetEndPoint() const
{
    return EndPosition(m_EndSpNo, m_EndSpPtId, false);
}

std::int32_t TMyLinkLine::IsLineHV(TMyPoint a, TMyPoint b)
{
    return std::abs(double(a.X) - b.X) >= std::abs(double(a.Y) - b.Y) ? 1 : 2;
}

// ---- Drawing style ----

void TMyLinkLine::SetLinkLineDrawStyle(TLinkLineDrawStyle style)
{
    if (style == m_LinkLineDrawStyle)
        return;
    m_LinkLineDrawStyle = style;
    m_DisplayCache = {};
    if (style == TLinkLineDrawStyle::lldsFree) {
        // A straight connector is its two ends: the route's corners are dropped.
        if (!Points().empty()) {
            const TMyPoint first = Points().front();
            const TMyPoint last = Points().back();
            Points() = {first, last};
        }
    } else {
        m_Reroute = true;
        // The shapes a connector of a drawing being read is bound to may not be there yet.
        if (GetPointsCount() >= 2 && !Host()->IsLoading())
            UpdateRoute();
    }
    Repaint();
}

// ---- Routing ----

std::vector<TMyPoint> TMyLinkLine::GetPath(TMyPoint start, TMyPoint end) const
{
    return Host()->GetPath(*this, start, end);
}

// A junction is a point on other connectors: routes meet it from any side. Every other
// bound shape is left through the side its magic point lies on.
TRouteEnd TMyLinkLine::RouteEndAt(TMyPoint at, std::int32_t shapeNo) const
{
    TRouteEnd end{at, std::nullopt, at};
    const TMyShape *shape = shapeNo > -1 ? Host()->GetShapeByNo(shapeNo) : nullptr;
    if (!shape || dynamic_cast<const TMyLineLinkLine *>(shape) || shape->GetPointsCount() == 0)
        return end;
    // The same whole-pixel box that GetMagicPoint measures against, so that the magic point
    // lies exactly on one of its sides.
    const double z = Zoom();
    const TMyPoint lt = shape->GetLeftTop();
    const TMyPoint rb = shape->GetRightBottom();
    const TRouteBox box{std::nearbyint(lt.X * z), std::nearbyint(lt.Y * z),
                        std::nearbyint(rb.X * z), std::nearbyint(rb.Y * z)};
    if (!(box.Left < box.Right && box.Top < box.Bottom))
        return end;
    end.Box = box;
    end.Corner = GetMagicPoint(*shape, at);
    return end;
}

std::vector<TMyPoint> TMyLinkLine::ComputeRoute(TMyPoint start, TMyPoint end,
                                                const TObstacleFinder &obstacles) const
{
    if (m_LinkLineDrawStyle == TLinkLineDrawStyle::lldsFree)
        return {start, end};
    TRouteRequest request;
    request.Start = RouteEndAt(start, m_StartSpNo);
    request.End = RouteEndAt(end, m_EndSpNo);
    request.FindObstacles = obstacles;
    return RouteOrthogonal(request);
}

void TMyLinkLine::UpdateRoute()
{
    const bool startKnown = m_StartSpNo > -1 || GetPointsCount() > 0;
    const bool endKnown = m_EndSpNo > -1 || GetPointsCount() > 0;
    if (!startKnown || !endKnown)
        return;
    const std::vector<TMyPoint> route = GetPath(GetStartPoint(), GetEndPoint());
    const double z = Zoom();
    TMyPointArray points;
    points.reserve(route.size());
    for (TMyPoint p : route)
        points.push_back({float(p.X / z), float(p.Y / z)});
    // A route of one point (both ends at the same place) is still a line of two.
    if (points.size() == 1)
        points.push_back(points.front());
    Points() = std::move(points);
    SetCenterPoint(ComputeCenterPoint(4));
    const TMyPoint middle = Middle(route);
    SetTextPoint({float(middle.X / z), float(middle.Y / z)});
    m_Reroute = false;
    m_DisplayCache = {};
}

void TMyLinkLine::MergePoints()
{
    tessal::MergePoints(Points());
}

TMyPoint TMyLinkLine::Middle(const std::vector<TMyPoint> &route)
{
    if (route.empty())
        return {};
    double total = 0;
    for (std::size_t i = 1; i < route.size(); ++i)
        total += GetLengthinPixel(route[i - 1], route[i]);
    double left = total / 2;
    for (std::size_t i = 1; i < route.size(); ++i) {
        const double length = GetLengthinPixel(route[i - 1], route[i]);
        if (left <= length && length > 0) {
            const double t = left / length;
            return {float(route[i - 1].X + (route[i].X - route[i - 1].X) * t),
                    float(route[i - 1].Y + (route[i].Y - route[i - 1].Y) * t)};
        }
        left -= length;
    }
    return route.back();
}

std::vector<TMyPoint> TMyLinkLine::RouteInDocument() const
{
    const bool bound = m_StartSpNo > -1 || m_EndSpNo > -1;
    if (!bound || StoredRouteMeetsEnds())
        return Points();
    std::vector<TMyPoint> route = DisplayRoute();
    const double z = Zoom();
    for (TMyPoint &p : route)
        p = {float(p.X / z), float(p.Y / z)};
    return route;
}

std::vector<TMyPoint> TMyLinkLine::DisplayRoute() const
{
    if (std::optional<std::vector<TMyPoint>> known = KnownDisplayRoute())
        return std::move(*known);
    const TMyPoint start = GetStartPoint();
    const TMyPoint end = GetEndPoint();
    m_DisplayCache = {start, end, Zoom(), GetPath(start, end)};
    return m_DisplayCache.Route;
}

bool TMyLinkLine::StoredRouteMeetsEnds() const
{
    return GetPointsCount() >= 2 && MyPtToPt(GetPointInZoom(0)) == MyPtToPt(GetStartPoint()) &&
           MyPtToPt(GetPointInZoom(GetPointsCount() - 1)) == MyPtToPt(GetEndPoint());
}

std::optional<std::vector<TMyPoint>> TMyLinkLine::KnownDisplayRoute() const
{
    const TMyPoint start = GetStartPoint();
    const TMyPoint end = GetEndPoint();
    const bool bothBound = m_StartSpNo > -1 && m_EndSpNo > -1;
    const auto own = [this] {
        std::vector<TMyPoint> points;
        for (std::int32_t i = 0; i < GetPointsCount(); ++i)
            points.push_back(GetPointInZoom(i));
        return points;
    };
    if (GetPointsCount() < 2 && !bothBound)
        return own();
    if (m_LinkLineDrawStyle == TLinkLineDrawStyle::lldsFree)
        return std::vector<TMyPoint>{start, end};
    if (!m_Reroute && StoredRouteMeetsEnds())
        return own();
    const TRouteCache &cache = m_DisplayCache;
    if (cache.Route.empty() || cache.Start != start || cache.End != end || cache.Zoom != Zoom())
        return std::nullopt;
    return cache.Route;
}

// ---- Editing ----

void TMyLinkLine::SizeChangeValue(TMyPoint from, TMyPoint to)
{
    TMyLine::SizeChangeValue(from, to);
    if (m_LinkLineDrawStyle == TLinkLineDrawStyle::lldsHV)
        UpdateRoute();
}

void TMyLinkLine::Drawed(TPoint from, TPoint &to)
{
    TMyLine::Drawed(from, to);
    UpdateRoute();
}

} // namespace tessal
