// SPDX-License-Identifier: MIT
// TMyLinkLine on the canvas: the route with hops, corners, arrow heads and end dots, and
// the handles of a routed connector.
#include <tessal/geometry/canvasmodes.h>
#include <tessal/geometry/geometry.h>
#include <tessal/shapes/link.h>
#include <tessal/shapes/shapetools.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tessal {

namespace {

constexpr TColor DiamondColour = 0x00FFFF;
// The radius of the middle mark of a selected routed connector.
constexpr std::int32_t CenterMarkRadius = 3;

bool Vertical(TMyPoint a, TMyPoint b)
{
    return a.X == b.X && a.Y != b.Y;
}

bool Horizontal(TMyPoint a, TMyPoint b)
{
    return a.Y == b.Y && a.X != b.X;
}

} // namespace

void TMyLinkLine::Draw(TCanvas &canvas)
{
    const std::vector<TMyPoint> route = DisplayRoute();
    SetDrawShapeMode(*this, canvas);
    TPen oldPen, newPen;
    SetPS(canvas, Pen().Style, Pen().Color, Pen().Width, oldPen, newPen);
    DrawRoute(canvas, route);
    if (route.size() >= 2) {
        // Like a line, the angle follows the first segment as drawn.
        float angle = float(GetSlopeAngle(route[1], route[0]));
        RecaclinRad(angle);
        SetAngleValue(angle);
        SetDrawTriangleMode(*this, canvas);
        DrawArrows(canvas, route);
    }
    SetDrawShapeMode(*this, canvas);
    DrawInfo(canvas);
    canvas.ClearGeometricPen();
}

void TMyLinkLine::DrawRoute(TCanvas &canvas, const std::vector<TMyPoint> &route)
{
    const bool routed = m_LinkLineDrawStyle == TLinkLineDrawStyle::lldsHV;
    for (std::size_t i = 1; i < route.size(); ++i) {
        if (routed && Horizontal(route[i - 1], route[i]))
            DrawHorizontalWithHops(canvas, route[i - 1], route[i]);
        else
            LineDraw(*this, canvas, route[i - 1], route[i]);
    }
    if (routed)
        for (std::size_t i = 1; i + 1 < route.size(); ++i)
            DrawCorner(canvas, route[i]);
}

// Horizontal segments hop over the vertical segments of other routed connectors, whatever
// their order in the drawing, so that a crossing never reads as a junction.
std::vector<float> TMyLinkLine::Crossings(TMyPoint a, TMyPoint b) const
{
    const float left = std::min(a.X, b.X) + HopRadius;
    const float right = std::max(a.X, b.X) - HopRadius;
    std::vector<float> xs;
    // Only connectors with a point on the segment's row between its ends can cross it.
    for (const std::int32_t no : Host()->ShapesIn({left, a.Y, right, a.Y})) {
        const auto *other = dynamic_cast<const TMyLinkLine *>(Host()->GetShapeByNo(no));
        if (!other || other == this || !other->Visible() ||
            other->LinkLineDrawStyle() != TLinkLineDrawStyle::lldsHV)
            continue;
        for (std::int32_t i = 1; i < other->GetPointsCount(); ++i) {
            const TMyPoint p = other->GetPointInZoom(i - 1);
            const TMyPoint q = other->GetPointInZoom(i);
            if (Vertical(p, q) && left < p.X && p.X < right && std::min(p.Y, q.Y) < a.Y &&
                a.Y < std::max(p.Y, q.Y))
                xs.push_back(p.X);
        }
    }
    std::sort(xs.begin(), xs.end());
    // Hops closer than their width would overlap: the first of such a run stands for all.
    std::vector<float> kept;
    for (float x : xs)
        if (kept.empty() || x - kept.back() >= 2 * HopRadius)
            kept.push_back(x);
    if (b.X < a.X)
        std::reverse(kept.begin(), kept.end());
    return kept;
}

void TMyLinkLine::DrawHorizontalWithHops(TCanvas &canvas, TMyPoint a, TMyPoint b)
{
    const float sign = b.X > a.X ? 1.0f : -1.0f;
    TMyPoint from = a;
    for (float x : Crossings(a, b)) {
        LineDraw(*this, canvas, from, {x - sign * HopRadius, a.Y});
        DrawHalfCircle(canvas, {x, a.Y}, true);
        from = {x + sign * HopRadius, a.Y};
    }
    LineDraw(*this, canvas, from, b);
}

void TMyLinkLine::DrawHalfCircle(TCanvas &canvas, TMyPoint centre, bool horizontal)
{
    constexpr int Steps = 8;
    TPoint arc[Steps + 1];
    for (int k = 0; k <= Steps; ++k) {
        const double t = std::numbers::pi * k / Steps;
        const double along = -HopRadius * std::cos(t);
        const double across = -HopRadius * std::sin(t);
        arc[k] = horizontal ? TPoint{RoundEven(centre.X + along), RoundEven(centre.Y + across)}
                            : TPoint{RoundEven(centre.X + across), RoundEven(centre.Y + along)};
    }
    canvas.Polyline(arc);
}

void TMyLinkLine::DrawCorner(TCanvas &canvas, TMyPoint corner)
{
    const std::int32_t width = Pen().Width;
    const TPenStyleEndCapType cap = PenStyleEndCapType();
    if (width <= 1 ||
        (cap != TPenStyleEndCapType::psectFLAT && cap != TPenStyleEndCapType::psectMASK))
        return;
    const TBrush saved = canvas.Brush();
    canvas.Brush().Color = Pen().Color;
    canvas.Brush().Style = TBrushStyle::bsSolid;
    const std::int32_t left = RoundEven(corner.X - width / 2.0);
    const std::int32_t top = RoundEven(corner.Y - width / 2.0);
    canvas.FillRect(TRect(left, top, left + width, top + width));
    canvas.SetBrush(saved);
}

void TMyLinkLine::DrawStartEnd(TCanvas &canvas, TMyPoint end)
{
    // A whole-pixel box of EndDotSize pixels about the rounded end, centred on it.
    const TPoint c = MyPtToPt(end);
    const std::int32_t lead = EndDotSize / 2;
    canvas.Ellipse(TRect(c.X - lead, c.Y - lead, c.X - lead + EndDotSize, c.Y - lead + EndDotSize));
}

void TMyLinkLine::DrawArrows(TCanvas &canvas, const std::vector<TMyPoint> &route)
{
    const std::size_t last = route.size() - 1;
    const TArrowStyle style = ArrowStyle();
    const bool headAtLast = style == TArrowStyle::ALeft || style == TArrowStyle::ADouble;
    const bool headAtFirst = style == TArrowStyle::ARight || style == TArrowStyle::ADouble;
    if (headAtLast)
        DrawTriangle(canvas, route[last], route[last - 1]);
    if (headAtFirst)
        DrawTriangle(canvas, route[0], route[1]);
    if (m_StartSpNo > -1 && !headAtFirst)
        DrawStartEnd(canvas, route[0]);
    if (m_EndSpNo > -1 && !headAtLast)
        DrawStartEnd(canvas, route[last]);
}

// ---- Handles ----

void TMyLinkLine::DrawCenter(TCanvas &canvas)
{
    const std::vector<TMyPoint> route = DisplayRoute();
    if (route.size() < 2)
        return;
    const TPoint m = MyPtToPt(Middle(route));
    SetDrawHotMode(canvas);
    canvas.Brush().Style = TBrushStyle::bsClear;
    canvas.Ellipse(TRect(m.X - CenterMarkRadius, m.Y - CenterMarkRadius, m.X + CenterMarkRadius + 1,
                         m.Y + CenterMarkRadius + 1));
}

void TMyLinkLine::DrawHot(TCanvas &canvas)
{
    if (m_LinkLineDrawStyle == TLinkLineDrawStyle::lldsFree) {
        TMyLine::DrawHot(canvas);
        return;
    }
    if (!Host()->HotShow())
        return;
    const std::vector<TMyPoint> route = DisplayRoute();
    if (route.empty())
        return;
    DrawSquare(*this, canvas, route.front());
    DrawSquare(*this, canvas, route.back());
    DrawCenter(canvas);
    DrawDiamond(*this, canvas, ZoomedValuePt(TextPoint()), DiamondColour);
}

// The inner points of a route are the host's to place: only the two ends are handles.
std::int32_t TMyLinkLine::InWhichHot(TPoint point)
{
    if (m_LinkLineDrawStyle == TLinkLineDrawStyle::lldsFree)
        return TMyLine::InWhichHot(point);
    SetCurrentHot(-1);
    const std::int32_t last = GetPointsCount() - 1;
    const std::int32_t margin = Host()->HotSize();
    for (std::int32_t i : {0, last}) {
        if (last < 0)
            break;
        const TPoint c = MyPtToPt(GetPointInZoom(i));
        if (ExpandRect(PtToARect(c, c), margin).Contains(point))
            SetCurrentHot(i);
    }
    return CurrentHot();
}

} // namespace tessal
