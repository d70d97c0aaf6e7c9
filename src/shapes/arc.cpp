// SPDX-License-Identifier: MIT
// TMyElliArc: the arc's geometry from its three points, drawing by style, handles, hit
// test, mouse construction, editing and previews.
#include <tessal/geometry/canvasmodes.h>
#include <tessal/geometry/geometry.h>
#include <tessal/shapes/arc.h>
#include <tessal/shapes/curve.h>
#include <tessal/shapes/shapetools.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tessal {

namespace {

constexpr double Pi = std::numbers::pi;
constexpr double HitBand = 8;
// The outline is cut into chords of at most 5 degrees of the curve parameter, as the
// ellipse shape is.
constexpr double ChordStep = Pi / 36;

// Beyond this many times the points' spread a radius is taken for a straight line, and
// below that fraction of it for a flattened ellipse.
constexpr double LargestRadiusRatio = 1e4;

// An angle brought into [0, 2 pi).
double Positive(double a)
{
    a = std::fmod(a, 2 * Pi);
    return a < 0 ? a + 2 * Pi : a;
}

struct TVec
{
    double X = 0, Y = 0;
};

TVec operator-(TVec a, TVec b)
{
    return {a.X - b.X, a.Y - b.Y};
}

// p in the frame turned by angle, relative to pivot.
TVec ToFrame(TMyPoint p, TMyPoint pivot, double angle)
{
    const double dx = double(p.X) - pivot.X, dy = double(p.Y) - pivot.Y;
    const double c = std::cos(angle), s = std::sin(angle);
    return {dx * c + dy * s, -dx * s + dy * c};
}

TMyPoint FromFrame(TVec v, TMyPoint pivot, double angle)
{
    const double c = std::cos(angle), s = std::sin(angle);
    return {float(pivot.X + v.X * c - v.Y * s), float(pivot.Y + v.X * s + v.Y * c)};
}

// The centre of the circle through the origin, p and e, or nothing when they are on one line.
bool CircleCentre(TVec p, TVec e, TVec &centre)
{
    const double cross = p.X * e.Y - p.Y * e.X;
    const double pp = p.X * p.X + p.Y * p.Y, ee = e.X * e.X + e.Y * e.Y;
    if (std::abs(cross) <= 1e-12 * (pp + ee))
        return false;
    centre = {(e.Y * pp - p.Y * ee) / (2 * cross), (p.X * ee - e.X * pp) / (2 * cross)};
    return true;
}

// The semi-axes of the frame-aligned ellipse about the origin through s and p, or nothing.
bool EllipseThrough(TVec s, TVec p, double &a, double &b)
{
    const double xs = s.X * s.X, ys = s.Y * s.Y, xp = p.X * p.X, yp = p.Y * p.Y;
    const double det = xs * yp - xp * ys;
    if (std::abs(det) <= 1e-12 * (xs + ys) * (xp + yp))
        return false;
    const double inverseA2 = (yp - ys) / det;
    const double inverseB2 = (xs - xp) / det;
    if (inverseA2 <= 0 || inverseB2 <= 0)
        return false;
    a = 1 / std::sqrt(inverseA2);
    b = 1 / std::sqrt(inverseB2);
    return true;
}

// The curve parameter of frame point q on the ellipse about centre with semi-axes a, b.
double ParameterOf(TVec q, TVec centre, double a, double b)
{
    return std::atan2(-(q.Y - centre.Y) / b, (q.X - centre.X) / a);
}

} // namespace

TMyElliArc::TMyElliArc(TShapeHost *host)
    : TMyShape(host)
    , m_ArcMode(host->ArcMode())
{}

void TMyElliArc::CopyArcFields(const TMyShape &source)
{
    const auto *arc = dynamic_cast<const TMyElliArc *>(&source);
    if (!arc || arc == this)
        return;
    m_ArcMode = arc->m_ArcMode;
    m_ArcStyle = arc->m_ArcStyle;
}

void TMyElliArc::Assign(const TMyShape &source)
{
    TMyShape::Assign(source);
    CopyArcFields(source);
}

void TMyElliArc::AssignWithoutRelation(const TMyShape &source)
{
    TMyShape::AssignWithoutRelation(source);
    CopyArcFields(source);
}

// ---- Geometry ----

TArcGeometry TMyElliArc::GeometryOf(const TMyPointArray &points) const
{
    TArcGeometry g;
    if (points.size() < 3)
        return g;
    // The frame is pinned at the start, so the start is its origin.
    const TMyPoint pivot = points[0];
    const double angle = Angle();
    const TVec s{}, p = ToFrame(points[1], pivot, angle), e = ToFrame(points[2], pivot, angle);
    const double spread =
        std::max({std::hypot(p.X, p.Y), std::hypot(e.X, e.Y), std::hypot(e.X - p.X, e.Y - p.Y)});
    const double largest = LargestRadiusRatio * spread;

    TVec centre;
    double a = 0, b = 0;
    bool found = false;
    if (m_ArcMode == TArcMode::amEllipse) {
        centre = {e.X / 2, e.Y / 2};
        found = EllipseThrough(s - centre, p - centre, a, b) && std::max(a, b) <= largest &&
                std::min(a, b) * LargestRadiusRatio >= spread;
    }
    if (!found && CircleCentre(p, e, centre)) {
        a = b = std::hypot(centre.X, centre.Y);
        found = a <= largest;
    }
    if (!found) {
        g.Straight = true;
        g.Centre = FromFrame({e.X / 2, e.Y / 2}, pivot, angle);
        return g;
    }

    g.Centre = FromFrame(centre, pivot, angle);
    g.RadiusX = a;
    g.RadiusY = b;
    g.Start = ParameterOf(s, centre, a, b);
    // Anticlockwise when that way meets the middle point before the end, else clockwise.
    const double toEnd = Positive(ParameterOf(e, centre, a, b) - g.Start);
    const double toThrough = Positive(ParameterOf(p, centre, a, b) - g.Start);
    g.Sweep = toThrough <= toEnd ? toEnd : toEnd - 2 * Pi;
    return g;
}

TArcGeometry TMyElliArc::ArcGeometry() const
{
    return GeometryOf(Points());
}

std::vector<TMyPoint> TMyElliArc::OutlineOf(const TMyPointArray &points, bool closed) const
{
    const TArcGeometry g = GeometryOf(points);
    const double z = Zoom();
    auto zoomed = [z](TMyPoint p) { return TMyPoint{float(p.X * z), float(p.Y * z)}; };
    std::vector<TMyPoint> out;
    if (g.Straight)
        return {zoomed(points[0]), zoomed(points[2])};
    if (g.Sweep == 0)
        return out;
    const std::int32_t steps = std::max(1, std::int32_t(std::ceil(std::abs(g.Sweep) / ChordStep)));
    for (std::int32_t i = 0; i <= steps; ++i) {
        const double t = g.Start + g.Sweep * i / steps;
        const TMyPoint onFrame{float(g.Centre.X + g.RadiusX * std::cos(t)),
                               float(g.Centre.Y - g.RadiusY * std::sin(t))};
        out.push_back(zoomed(RotateAPoint(onFrame, g.Centre, Angle())));
    }
    if (closed && m_ArcStyle == TArcStyle::asPie)
        out.push_back(zoomed(g.Centre));
    if (closed && m_ArcStyle != TArcStyle::asArc)
        out.push_back(out.front());
    return out;
}

std::vector<TMyPoint> TMyElliArc::OutlineInZoom() const
{
    return OutlineOf(Points(), true);
}

// ---- Drawing with the mouse ----

void TMyElliArc::AddPointByMouse(TPoint point)
{
    if (GetPointsCount() >= 3)
        return;
    // The clicks give the start, the end and then the point between them.
    const TMyPoint p{float(point.X / Zoom()), float(point.Y / Zoom())};
    if (GetPointsCount() == 2)
        Points().insert(Points().begin() + 1, p);
    else
        Points().push_back(p);
    SetCenterPoint(ComputeCenterPoint(4));
}

bool TMyElliArc::IsDrawingFinished(Qt::MouseButton, TPoint)
{
    return GetPointsCount() == 3;
}

void TMyElliArc::Drawing(TCanvas &canvas, TPoint from, TPoint to)
{
    SetDragResizeRotateShapeMode(canvas);
    if (GetPointsCount() < 2) {
        // The chord from the start (or from where the mouse went down) to the mouse.
        const TPoint start = Points().empty() ? from : MyPtToPt(GetPointInZoom(0));
        canvas.MoveTo(start.X, start.Y);
        canvas.LineTo(to.X, to.Y);
        return;
    }
    const TMyPointArray pts{Points()[0], {float(to.X / Zoom()), float(to.Y / Zoom())}, Points()[1]};
    const std::vector<TMyPoint> arc = OutlineOf(pts, false);
    if (arc.size() >= 2)
        canvas.Polyline(RoundedPoints(arc));
}

// ---- Editing and previews ----

TMyPointArray TMyElliArc::PointsWithHandleMoved(double dx, double dy) const
{
    TMyPointArray pts = Points();
    const std::int32_t h = CurrentHot();
    if (h >= 0 && h < std::int32_t(pts.size())) {
        TMyPoint &p = pts[std::size_t(h)];
        p = {float(p.X + dx / Zoom()), float(p.Y + dy / Zoom())};
    }
    return pts;
}

void TMyElliArc::SizeChangeValue(TMyPoint from, TMyPoint to)
{
    TMyShape::SizeChangeValue(from, to);
    Points() = PointsWithHandleMoved(double(to.X) - from.X, double(to.Y) - from.Y);
    SetCenterPoint(ComputeCenterPoint(4));
}

void TMyElliArc::Sizing(TCanvas &canvas, TPoint from, TPoint to)
{
    const std::vector<TMyPoint> outline =
        OutlineOf(PointsWithHandleMoved(double(to.X) - from.X, double(to.Y) - from.Y), true);
    if (outline.size() >= 2)
        canvas.Polyline(RoundedPoints(outline));
}

void TMyElliArc::Draging(TCanvas &canvas, TPoint from, TPoint to)
{
    std::vector<TMyPoint> outline = OutlineInZoom();
    if (outline.size() < 2)
        return;
    const TPoint d = to - from;
    for (TMyPoint &p : outline)
        p = {p.X + float(d.X), p.Y + float(d.Y)};
    canvas.Polyline(RoundedPoints(outline));
}

void TMyElliArc::Rotating(TCanvas &canvas, TMyPoint centre, double angle)
{
    std::vector<TMyPoint> outline = OutlineInZoom();
    if (outline.size() < 2)
        return;
    for (TMyPoint &p : outline)
        p = RotateAPoint(p, centre, float(angle));
    canvas.Polyline(RoundedPoints(outline));
}

// ---- Painting, handles, hit test ----

void TMyElliArc::Draw(TCanvas &canvas)
{
    SetDrawShapeMode(*this, canvas);
    const std::vector<TPoint> outline = RoundedPoints(OutlineInZoom());
    if (outline.size() >= 2) {
        // A straight arc has nothing to fill.
        if (m_ArcStyle == TArcStyle::asArc || outline.size() == 2)
            StrokeOutline(*this, canvas, outline);
        else
            PowerDrawShape(canvas, outline, true);
    }
    DrawInfo(canvas);
}

void TMyElliArc::DrawHot(TCanvas &canvas)
{
    DrawPointHandles(*this, canvas);
}

std::int32_t TMyElliArc::InWhichHot(TPoint point)
{
    return PointHandleUnder(*this, point);
}

bool TMyElliArc::IsClickedMe(TCanvas &, TPoint point)
{
    const std::vector<TMyPoint> outline = OutlineInZoom();
    if (outline.size() < 2)
        return false;
    if (NearPolyline(outline, point, HitBand))
        return true;
    return m_ArcStyle != TArcStyle::asArc &&
           TRegion::Contains(RoundedPoints(outline), TFillMode::fmAlternate, point);
}

std::int32_t TMyElliArc::HitReach() const
{
    return std::int32_t(std::ceil(HitBand));
}

} // namespace tessal
