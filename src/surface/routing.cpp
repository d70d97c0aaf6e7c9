// SPDX-License-Identifier: MIT
// TMyCAD and connectors: the route computation with the document's shapes as obstacles,
// connectors following moved shapes, and finding link points under the mouse.
#include <tessal/surface/cad.h>
#include <tessal/surface/spatialindex_p.h>

#include <tessal/geometry/geometry.h>
#include <tessal/shapes/link.h>
#include <tessal/shapes/polyline.h>
#include <tessal/shapes/shape.h>

#include <QImage>

#include <algorithm>
#include <cmath>
#include <limits>

namespace tessal {

namespace {

// What routes go round: closed shapes. Connectors and link marks are what routes are made
// of, and crossing an open line is ordinary in a diagram.
bool IsObstacleKind(const TMyShape &shape)
{
    if (dynamic_cast<const TMyLinkLine *>(&shape) || dynamic_cast<const TMyLinkPoint *>(&shape))
        return false;
    if (dynamic_cast<const TMyLine *>(&shape))
        return dynamic_cast<const TMyPolygon *>(&shape) != nullptr;
    return true;
}

TRouteBox ScreenBox(const TMyShape &shape, double zoom)
{
    const TMyPoint lt = shape.GetLeftTop();
    const TMyPoint rb = shape.GetRightBottom();
    return {lt.X * zoom, lt.Y * zoom, rb.X * zoom, rb.Y * zoom};
}

// The link point whose 5-pixel square holds p, as InWhichLinkHot finds it, but without
// touching the highlight.
std::int32_t LinkHotIndex(const TMyShape &shape, TPoint p)
{
    for (std::int32_t i = 0; i < shape.GetLinkPointsCount(); ++i) {
        const TPoint c = MyPtToPt(shape.GetLinkPointInZoom(i));
        if (ExpandRect(PtToARect(c, c), 5).Contains(p))
            return i;
    }
    return -1;
}

std::int32_t NearestLinkPoint(const TMyShape &shape, TPoint p)
{
    std::int32_t nearest = -1;
    double best = std::numeric_limits<double>::infinity();
    for (std::int32_t i = 0; i < shape.GetLinkPointsCount(); ++i) {
        const double d = GetLengthinPixel(shape.GetLinkPointInZoom(i), PtToMyPt(p));
        if (d < best) {
            best = d;
            nearest = i;
        }
    }
    return nearest;
}

// The connectors of a shape follow it; a group's members are moved with it, so theirs do
// too. The depth bound stops a corrupt child list that leads back to an ancestor.
void FollowShape(TMyCAD &cad, TMyShape *shape, std::int32_t depth)
{
    if (depth > cad.GetShapesCount())
        return;
    if (auto *self = dynamic_cast<TMyLinkLine *>(shape)) {
        self->UpdateRoute();
        cad.ShapeGeometryChanged(self);
    }
    const std::int32_t no = cad.GetShapeNoInMyShapes(shape);
    // The list may still name connectors that were set free from this shape.
    const std::vector<std::int32_t> links = shape->LinkShapes();
    for (std::int32_t k : links) {
        auto *link = dynamic_cast<TMyLinkLine *>(cad.GetShapeByNo(k));
        if (link && link != shape && (link->StartSpNo() == no || link->EndSpNo() == no)) {
            link->UpdateRoute();
            cad.ShapeGeometryChanged(link);
        }
    }
    const std::vector<std::int32_t> children = shape->ChildShapes();
    for (std::int32_t c : children) {
        TMyShape *child = cad.GetShapeByNo(c);
        if (child && child != shape)
            FollowShape(cad, child, depth + 1);
    }
}

} // namespace

std::vector<TMyPoint> TMyCAD::GetPath(const TMyLinkLine &line, TMyPoint start, TMyPoint end) const
{
    if (!m_LinklineAroundShape || line.LinkLineDrawStyle() != TLinkLineDrawStyle::lldsHV)
        return line.ComputeRoute(start, end, {});
    // The bound shapes are the route's own business; their groups hold them.
    const TMyShape *own[2] = {GetRootParentShape(line.GetStartShape()),
                              GetRootParentShape(line.GetEndShape())};
    // The search asks only for the shapes near it, which the index finds; it is a cache of
    // the list, so bringing it up to date changes nothing this const call promises.
    auto *self = const_cast<TMyCAD *>(this);
    return line.ComputeRoute(start, end, [self, own](const TRouteBox &area) {
        std::vector<TRouteBox> obstacles;
        for (const std::int32_t no : self->IndexedShapesNear(
                 ControlRectHolding(area.Left, area.Top, area.Right, area.Bottom))) {
            const TMyShape &shape = *self->m_Shapes[std::size_t(no)];
            if (&shape == own[0] || &shape == own[1] || shape.HasParentShape())
                continue;
            if (!shape.Visible() || !self->IsVisibleLayerByID(shape.LayerId()) ||
                shape.GetPointsCount() == 0 || !IsObstacleKind(shape))
                continue;
            obstacles.push_back(ScreenBox(shape, self->m_Zoom));
        }
        return obstacles;
    });
}

void TMyCAD::ChangeLinkShapes(TMyShape *shape)
{
    if (!shape)
        return;
    FollowShape(*this, shape, 0);
    Invalidate();
}

bool TMyCAD::InWhichShapeWhichHotLinkId(TPoint point, std::int32_t &shapeNo, std::int32_t &linkId)
{
    // A hot square holds the pixels from five before to four after its link point (rounded).
    const float x = float(point.X), y = float(point.Y);
    const std::vector<std::int32_t> near = ShapesIn({x - 6, y - 6, x + 6, y + 6});
    for (auto it = near.rbegin(); it != near.rend(); ++it) {
        const std::int32_t no = *it;
        TMyShape *shape = m_Shapes[std::size_t(no)].get();
        if (!shape->Visible() || !IsVisibleLayerByID(shape->LayerId()) ||
            dynamic_cast<TMyLinkLine *>(shape))
            continue;
        const std::int32_t k = LinkHotIndex(*shape, point);
        if (k < 0)
            continue;
        shape->InWhichLinkHot(PtToMyPt(point));
        shapeNo = no;
        linkId = k;
        return true;
    }
    ClearAllLinkHot();
    shapeNo = -1;
    linkId = -1;
    return false;
}

TMyShape *TMyCAD::GetMainShape(TPoint point, std::int32_t &linkId)
{
    std::int32_t no = -1;
    if (InWhichShapeWhichHotLinkId(point, no, linkId))
        return GetShapeByNo(no);
    // Hit tests may draw into the canvas they are given; a scratch one keeps the screen
    // untouched.
    QImage scratch(1, 1, QImage::Format_RGB32);
    TCanvas canvas(&scratch);
    // The index hands out every top-level shape a press at point can hit, members included.
    TPressCursor cursor;
    BeginPressCandidates(point, cursor);
    std::vector<std::int32_t> roots;
    for (TIndexCandidate candidate; cursor.Next(candidate);)
        roots.push_back(candidate.No);
    const std::vector<std::int32_t> near = TreesOf(roots);
    for (auto it = near.rbegin(); it != near.rend(); ++it) {
        TMyShape *shape = m_Shapes[std::size_t(*it)].get();
        if (!shape->Visible() || !IsVisibleLayerByID(shape->LayerId()) ||
            shape->GetLinkPointsCount() == 0 || dynamic_cast<TMyLinkLine *>(shape))
            continue;
        if (shape->IsClickedMe(canvas, point)) {
            linkId = NearestLinkPoint(*shape, point);
            return shape;
        }
    }
    linkId = -1;
    return nullptr;
}

void TMyCAD::ClearAllLinkHot()
{
    const THotHighlight memory = m_HotHighlight;
    m_HotHighlight = {};
    if (!memory.Shape)
        return;
    TCanvas *screen = ScreenCanvas();
    if (!screen)
        return;
    // Drawing the not-xor square again takes it off the screen.
    memory.Shape->DrawHotLinkSquare(*screen, memory.Square);
    const TMyPoint p = memory.Square;
    const auto round = [](double v) { return std::int32_t(std::nearbyint(v)); };
    ScreenChanged(
        TRect(round(p.X - 5), round(p.Y - 5), round(p.X + 5), round(p.Y + 5)).Inflated(2, 2));
}

} // namespace tessal
