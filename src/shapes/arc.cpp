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

// An angle brought into [0, 2 pi).
double Positive(double a)
{
    a = std::fmod(a, 2 * Pi);
    return a < 0 ? a + 2 * Pi : a;
}

struct TFramePoint
{
    double X = 0, Y = 0;
};

TFramePoint InFrame(TMyPoint p, TMyPoint centre, float angle)
{
    const TMyPoint u = RotateAPoint(p, centre, -angle);
    return {double(u.X) - centre.X, double(u.Y) - centre.Y};
}

// The semi-axes of the frame-aligned ellipse about the origin through s and e, or nothing.
bool EllipseThrough(TFramePoint s, TFramePoint e, double &a, double &b)
{
    const double xs = s.X * s.X, ys = s.Y * s.Y, xe = e.X * e.X, ye = e.Y * e.Y;
    const double det = xs * ye - xe * ys;
    if (std::abs(det) < 1e-9)
        return false;
    const double inverseA2 = (ye - ys) / det;
    const double inverseB2 = (xs - xe) / det;
    if (inverseA2 <= 0 || inverseB2 <= 0)
        return false;
    a = 1 / std::sqrt(inverseA2);
    b = 1 / std::sqrt(inverseB2);
    return true;
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
    g.Centre = points[0];
    const TFramePoint s = InFrame(points[1], g.Centre, Angle());
    const TFramePoint e = InFrame(points[2], g.Centre, Angle());
    double a = 0, b = 0;
    if (m_ArcMode != TArcMode::amEllipse || !EllipseThrough(s, e, a, b))
        a = b = std::hypot(s.X, s.Y);
    if (a <= 0 || b <= 0 || (e.X == 0 && e.Y == 0))
        return g;
    g.RadiusX = a;
    g.RadiusY = b;
    g.Start = std::atan2(-s.Y / b, s.X / a);
    const double end = std::atan2(-e.Y / b, e.X / a);
    // A mirror turns the sense of the arc round, so a flipped arc stays the same curve.
    const bool mirrored = IsFlipHorz() != IsFlipVert();
    g.Sweep = mirrored ? -Positive(g.Start - end) : Positive(end - g.Start);
    if (std::abs(g.Sweep) < 1e-9)
        g.Sweep = 0;
    return g;
}

TArcGeometry TMyElliArc::ArcGeometry() const
{
    return GeometryOf(Points());
}

void TMyElliArc::KeepEndOnCircle(TMyPointArray &points) const
{
    if (m_ArcMode != TArcMode::amCircle || points.size() < 3)
        return;
    const TMyPoint c = points[0];
    const double r = GetLengthinPixel(c, points[1]);
    const double d = GetLengthinPixel(c, points[2]);
    if (d == 0)
        return;
    points[2] = {float(c.X + (double(points[2].X) - c.X) * r / d),
                 float(c.Y + (double(points[2].Y) - c.Y) * r / d)};
}

std::vector<TMyPoint> TMyElliArc::OutlineOf(const TMyPointArray &points, bool closed) const
{
    const TArcGeometry g = GeometryOf(points);
    std::vector<TMyPoint> out;
    if (g.Sweep == 0)
        return out;
    const double z = Zoom();
    const std::int32_t steps = std::max(1, std::int32_t(std::ceil(std::abs(g.Sweep) / ChordStep)));
    for (std::int32_t i = 0; i <= steps; ++i) {
        const double t = g.Start + g.Sweep * i / steps;
        const TMyPoint onFrame{float(g.Centre.X + g.RadiusX * std::cos(t)),
                               float(g.Centre.Y - g.RadiusY * std::sin(t))};
        const TMyPoint p = RotateAPoint(onFrame, g.Centre, Angle());
        out.push_back({float(p.X * z), float(p.Y * z)});
    }
    if (closed && m_ArcStyle == TArcStyle::asPie)
        out.push_back({float(g.Centre.X * z), float(g.Centre.Y * z)});
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
    Points().push_back({float(point.X / Zoom()), float(point.Y / Zoom())});
    KeepEndOnCircle(Points());
    SetCenterPoint(ComputeCenterPoint(4));
}

bool TMyElliArc::IsDrawingFinished(Qt::MouseButton, TPoint)
{
    return GetPointsCount() == 3;
}

void TMyElliArc::Drawing(TCanvas &canvas, TPoint from, TPoint to)
{
    SetDragResizeRotateShapeMode(canvas);
    if (Points().empty()) {
        canvas.MoveTo(from.X, from.Y);
        canvas.LineTo(to.X, to.Y);
        return;
    }
    // The radius to the mouse; once the start is placed, also the arc ending there.
    const TPoint centre = MyPtToPt(GetPointInZoom(0));
    canvas.MoveTo(centre.X, centre.Y);
    canvas.LineTo(to.X, to.Y);
    if (GetPointsCount() != 2)
        return;
    TMyPointArray pts = Points();
    pts.push_back({float(to.X / Zoom()), float(to.Y / Zoom())});
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
        KeepEndOnCircle(pts);
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
        if (m_ArcStyle == TArcStyle::asArc)
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
           TRegion(RoundedPoints(outline), TFillMode::fmAlternate).Contains(point);
}

} // namespace tessal
