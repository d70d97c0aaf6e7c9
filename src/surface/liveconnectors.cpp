// SPDX-License-Identifier: MIT
// Connectors that follow during a gesture (LiveConnectors): the connectors bound to the
// shapes being dragged, resized or turned are routed again from where their ends would be,
// and the routes are part of the gesture's feedback. Nothing is stored until the release.
#include <tessal/surface/cad.h>
#include <tessal/surface/mouse_p.h>

#include <tessal/geometry/geometry.h>
#include <tessal/shapes/link.h>
#include <tessal/shapes/shape.h>

#include <algorithm>
#include <set>

namespace tessal {

void TMouseMachine::CollectLiveLinks(const std::vector<TMyShape *> &moved)
{
    m_LiveLinks.clear();
    m_LiveLinksCollected = true;
    const std::set<const TMyShape *> roots(moved.begin(), moved.end());
    const auto movesWith = [&](std::int32_t no) {
        const TMyShape *shape = m_Cad.GetShapeByNo(no);
        return shape && roots.contains(m_Cad.GetRootParentShape(const_cast<TMyShape *>(shape)));
    };
    std::set<const TMyLinkLine *> seen;
    for (TMyShape *root : moved) {
        ForTree(m_Cad, root, [&](TMyShape *shape) {
            for (const std::int32_t k : shape->LinkShapes()) {
                auto *link = dynamic_cast<TMyLinkLine *>(m_Cad.GetShapeByNo(k));
                // A connector that moves itself shows in the outlines already.
                if (!link || roots.contains(m_Cad.GetRootParentShape(link)) ||
                    !seen.insert(link).second)
                    continue;
                m_LiveLinks.push_back(
                    {link, movesWith(link->StartSpNo()), movesWith(link->EndSpNo())});
            }
        });
    }
}

std::vector<std::vector<TPoint>> TMouseMachine::LiveRoutes(const TEndMove &move) const
{
    std::vector<std::vector<TPoint>> routes;
    for (const TLiveLink &live : m_LiveLinks) {
        TMyPoint start = live.Link->GetStartPoint();
        TMyPoint end = live.Link->GetEndPoint();
        if (live.StartMoves)
            start = move(*live.Link, true, start);
        if (live.EndMoves)
            end = move(*live.Link, false, end);
        std::vector<TPoint> route;
        for (const TMyPoint p : live.Link->GetPath(start, end))
            route.push_back(MyPtToPt(p));
        routes.push_back(std::move(route));
    }
    return routes;
}

void TMouseMachine::DrawRoutes(TCanvas &canvas, const std::vector<std::vector<TPoint>> &routes)
{
    for (const std::vector<TPoint> &route : routes)
        if (route.size() >= 2)
            canvas.Polyline(route);
}

// A pixel-wide pen covers the pixel right and below each point; two more on every side
// leave room for the pen's ends and joins.
TRect TMouseMachine::RoutesRect(const std::vector<std::vector<TPoint>> &routes)
{
    TRect rect;
    for (const std::vector<TPoint> &route : routes)
        for (const TPoint p : route)
            rect = rect.United(TRect(p.X, p.Y, p.X + 1, p.Y + 1).Inflated(2, 2));
    return rect;
}

// A resized shape's link points are where a copy of it, resized the same way, has them.
TMouseMachine::TEndMove TMouseMachine::ResizeEndMove(TMyShape *shape, TMyPoint handle, TPoint to)
{
    std::shared_ptr<TMyShape> copy = m_Cad.CloneShape(*shape);
    if (!copy || shape->HasChildShapes())
        return {};
    copy->SetCurrentHot(shape->CurrentHot());
    copy->SizeChangeValue(handle, PtToMyPt(to));
    const std::int32_t no = m_Cad.GetShapeNoInMyShapes(shape);
    return [copy, no](const TMyLinkLine &link, bool start, TMyPoint now) {
        const std::int32_t id = start ? link.StartSpPtId() : link.EndSpPtId();
        const std::int32_t bound = start ? link.StartSpNo() : link.EndSpNo();
        if (bound != no || id < 0 || id >= copy->GetLinkPointsCount())
            return now;
        return copy->GetLinkPointInZoom(id);
    };
}

} // namespace tessal
