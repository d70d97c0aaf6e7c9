// SPDX-License-Identifier: MIT
// Curves: flattening of Bezier pieces and B-splines, their drawing, handles, hit test,
// mouse construction, editing and previews; and the open-outline helpers they share with
// arcs and measuring lines.
#include <tessal/geometry/canvasmodes.h>
#include <tessal/geometry/geometry.h>
#include <tessal/shapes/curve.h>
#include <tessal/shapes/shapetools.h>

#include <algorithm>
#include <cmath>

namespace tessal {

namespace {

constexpr double HitBand = 8;
constexpr TColor DiamondColour = 0x00FFFF;
// A piece is cut into steps of about this many units of its control polygon's length, so
// that on screen the chords stay a few pixels long at every zoom.
constexpr double StepLength = 4;
constexpr std::int32_t MinSteps = 2;
constexpr std::int32_t MaxSteps = 256;

double Distance(TMyPoint a, TMyPoint b)
{
    return std::hypot(double(b.X) - a.X, double(b.Y) - a.Y);
}

std::int32_t StepsFor(TMyPoint q0, TMyPoint q1, TMyPoint q2, TMyPoint q3)
{
    const double length = Distance(q0, q1) + Distance(q1, q2) + Distance(q2, q3);
    const double steps = std::ceil(length / StepLength);
    return std::int32_t(std::clamp(steps, double(MinSteps), double(MaxSteps)));
}

double SegmentDistance(TMyPoint a, TMyPoint b, TPoint p)
{
    const double dx = double(b.X) - a.X, dy = double(b.Y) - a.Y;
    const double len2 = dx * dx + dy * dy;
    double t = len2 == 0 ? 0 : ((p.X - double(a.X)) * dx + (p.Y - double(a.Y)) * dy) / len2;
    t = std::clamp(t, 0.0, 1.0);
    return std::hypot(a.X + t * dx - p.X, a.Y + t * dy - p.Y);
}

std::vector<TMyPoint> ZoomedPoints(const TMyShape &shape)
{
    std::vector<TMyPoint> pts;
    pts.reserve(std::size_t(shape.GetPointsCount()));
    for (std::int32_t i = 0; i < shape.GetPointsCount(); ++i)
        pts.push_back(shape.GetPointInZoom(i));
    return pts;
}

std::vector<TMyPoint> Shifted(std::vector<TMyPoint> pts, double dx, double dy)
{
    for (TMyPoint &p : pts)
        p = {float(p.X + dx), float(p.Y + dy)};
    return pts;
}

std::vector<TMyPoint> Turned(std::vector<TMyPoint> pts, TMyPoint centre, double angle)
{
    for (TMyPoint &p : pts)
        p = RotateAPoint(p, centre, float(angle));
    return pts;
}

void PreviewPolyline(TCanvas &canvas, const std::vector<TMyPoint> &curve)
{
    if (curve.size() >= 2)
        canvas.Polyline(RoundedPoints(curve));
}

// A second click on the last point leaves it twice in a row.
bool LastPointRepeated(const TMyShape &shape, std::int32_t back)
{
    const std::int32_t n = shape.GetPointsCount();
    return n > back && shape.GetPointInZoom(n - 1) == shape.GetPointInZoom(n - 1 - back);
}

} // namespace

// ---- Curve formulas ----

TMyPoint BezierPoint(TMyPoint p0, TMyPoint p1, TMyPoint p2, TMyPoint p3, double t)
{
    const double u = 1 - t;
    const double b0 = u * u * u, b1 = 3 * u * u * t, b2 = 3 * u * t * t, b3 = t * t * t;
    return {float(b0 * p0.X + b1 * p1.X + b2 * p2.X + b3 * p3.X),
            float(b0 * p0.Y + b1 * p1.Y + b2 * p2.Y + b3 * p3.Y)};
}

TMyPoint BSplinePoint(TMyPoint q0, TMyPoint q1, TMyPoint q2, TMyPoint q3, double t)
{
    const double t2 = t * t, t3 = t2 * t;
    const double b0 = (1 - t) * (1 - t) * (1 - t) / 6;
    const double b1 = (3 * t3 - 6 * t2 + 4) / 6;
    const double b2 = (-3 * t3 + 3 * t2 + 3 * t + 1) / 6;
    const double b3 = t3 / 6;
    return {float(b0 * q0.X + b1 * q1.X + b2 * q2.X + b3 * q3.X),
            float(b0 * q0.Y + b1 * q1.Y + b2 * q2.Y + b3 * q3.Y)};
}

std::vector<TMyPoint> FlattenPolyBezier(const std::vector<TMyPoint> &points)
{
    std::vector<TMyPoint> out;
    if (points.empty())
        return out;
    out.push_back(points[0]);
    for (std::size_t i = 0; i + 3 < points.size(); i += 3) {
        const TMyPoint p0 = points[i], p1 = points[i + 1], p2 = points[i + 2], p3 = points[i + 3];
        const std::int32_t steps = StepsFor(p0, p1, p2, p3);
        for (std::int32_t k = 1; k < steps; ++k)
            out.push_back(BezierPoint(p0, p1, p2, p3, double(k) / steps));
        out.push_back(p3); // the anchor exactly, not the formula's rounding of it
    }
    return out;
}

std::vector<TMyPoint> FlattenBSpline(const std::vector<TMyPoint> &points)
{
    if (points.size() < 2)
        return points;
    // Each end three times: the first piece starts at (P0 + 4 P0 + P0) / 6 = P0.
    std::vector<TMyPoint> q;
    q.reserve(points.size() + 4);
    q.insert(q.end(), 2, points.front());
    q.insert(q.end(), points.begin(), points.end());
    q.insert(q.end(), 2, points.back());
    std::vector<TMyPoint> out{points.front()};
    for (std::size_t i = 0; i + 3 < q.size(); ++i) {
        const std::int32_t steps = StepsFor(q[i], q[i + 1], q[i + 2], q[i + 3]);
        for (std::int32_t k = 1; k <= steps; ++k)
            out.push_back(BSplinePoint(q[i], q[i + 1], q[i + 2], q[i + 3], double(k) / steps));
    }
    out.back() = points.back();
    return out;
}

// ---- Open outlines ----

std::vector<TPoint> RoundedPoints(const std::vector<TMyPoint> &points)
{
    std::vector<TPoint> out;
    out.reserve(points.size());
    for (const TMyPoint &p : points)
        out.push_back(MyPtToPt(p));
    return out;
}

bool NearPolyline(const std::vector<TMyPoint> &points, TPoint p, double band)
{
    if (points.size() == 1)
        return Distance(points[0], PtToMyPt(p)) <= band;
    for (std::size_t i = 0; i + 1 < points.size(); ++i)
        if (SegmentDistance(points[i], points[i + 1], p) <= band)
            return true;
    return false;
}

void StrokeOutline(TMyShape &shape, TCanvas &canvas, const std::vector<TPoint> &points)
{
    if (points.size() < 2)
        return;
    TPen oldPen, newPen;
    shape.SetPS(canvas, shape.Pen().Style, shape.Pen().Color, shape.Pen().Width, oldPen, newPen);
    canvas.BeginPath();
    canvas.MoveTo(points[0].X, points[0].Y);
    for (std::size_t i = 1; i < points.size(); ++i)
        canvas.LineTo(points[i].X, points[i].Y);
    canvas.EndPath();
    canvas.StrokePath();
    canvas.ClearGeometricPen();
    canvas.SetPen(oldPen);
}

std::int32_t PointHandleUnder(TMyShape &shape, TPoint p)
{
    shape.SetCurrentHot(-1);
    const std::int32_t margin = shape.Host()->HotSize();
    for (std::int32_t i = 0; i < shape.GetPointsCount(); ++i) {
        const TPoint c = MyPtToPt(shape.GetPointInZoom(i));
        if (ExpandRect(PtToARect(c, c), margin).Contains(p))
            shape.SetCurrentHot(i);
    }
    return shape.CurrentHot();
}

void DrawPointHandles(TMyShape &shape, TCanvas &canvas)
{
    if (!shape.Host()->HotShow())
        return;
    for (std::int32_t i = 0; i < shape.GetPointsCount(); ++i)
        DrawSquare(shape, canvas, shape.GetPointInZoom(i));
    DrawDiamond(shape, canvas, shape.ZoomedValuePt(shape.TextPoint()), DiamondColour);
}

// ---- TMyPolyBezier ----

std::vector<TMyPoint> TMyPolyBezier::CurveInZoom() const
{
    return FlattenPolyBezier(ZoomedPoints(*this));
}

void TMyPolyBezier::AddPointByMouse(TPoint point)
{
    const TMyPoint p{float(point.X / Zoom()), float(point.Y / Zoom())};
    if (Points().empty()) {
        Points().push_back(p);
        return;
    }
    const TMyPoint a = Points().back();
    const double dx = double(p.X) - a.X, dy = double(p.Y) - a.Y;
    Points().push_back({float(a.X + dx / 3), float(a.Y + dy / 3)});
    Points().push_back({float(a.X + 2 * dx / 3), float(a.Y + 2 * dy / 3)});
    Points().push_back(p);
    SetCenterPoint(ComputeCenterPoint(4));
}

bool TMyPolyBezier::IsDrawingFinished(Qt::MouseButton, TPoint)
{
    // The repeated click made a piece from the last anchor to itself: drop it.
    if (GetPointsCount() >= 4 && LastPointRepeated(*this, 3)) {
        Points().resize(Points().size() - 3);
        SetCenterPoint(ComputeCenterPoint(4));
        return GetPointsCount() >= 4;
    }
    return false;
}

void TMyPolyBezier::Drawing(TCanvas &canvas, TPoint from, TPoint to)
{
    SetDragResizeRotateShapeMode(canvas);
    canvas.MoveTo(from.X, from.Y);
    canvas.LineTo(to.X, to.Y);
}

std::vector<std::int32_t> TMyPolyBezier::PointsMovedByHandle() const
{
    const std::int32_t h = CurrentHot();
    const std::int32_t n = GetPointsCount();
    if (h < 0 || h >= n)
        return {};
    std::vector<std::int32_t> moved{h};
    // An anchor carries its control points, so its tangents keep their direction.
    if (h % 3 == 0) {
        if (h > 0)
            moved.push_back(h - 1);
        if (h + 1 < n)
            moved.push_back(h + 1);
    }
    return moved;
}

std::vector<TMyPoint> TMyPolyBezier::ZoomedWithHandleMoved(double dx, double dy) const
{
    std::vector<TMyPoint> pts = ZoomedPoints(*this);
    for (std::int32_t i : PointsMovedByHandle()) {
        TMyPoint &p = pts[std::size_t(i)];
        p = {float(p.X + dx), float(p.Y + dy)};
    }
    return pts;
}

void TMyPolyBezier::SizeChangeValue(TMyPoint from, TMyPoint to)
{
    TMyShape::SizeChangeValue(from, to);
    for (std::int32_t i : PointsMovedByHandle())
        PointAddXY(i, double(to.X) - from.X, double(to.Y) - from.Y);
    SetCenterPoint(ComputeCenterPoint(4));
}

void TMyPolyBezier::Sizing(TCanvas &canvas, TPoint from, TPoint to)
{
    PreviewPolyline(canvas, FlattenPolyBezier(ZoomedWithHandleMoved(double(to.X) - from.X,
                                                                    double(to.Y) - from.Y)));
}

void TMyPolyBezier::Draging(TCanvas &canvas, TPoint from, TPoint to)
{
    const TPoint d = to - from;
    PreviewPolyline(canvas, Shifted(CurveInZoom(), d.X, d.Y));
}

void TMyPolyBezier::Rotating(TCanvas &canvas, TMyPoint centre, double angle)
{
    // Turning the control points turns the curve.
    PreviewPolyline(canvas, FlattenPolyBezier(Turned(ZoomedPoints(*this), centre, angle)));
}

void TMyPolyBezier::Draw(TCanvas &canvas)
{
    SetDrawShapeMode(*this, canvas);
    StrokeOutline(*this, canvas, RoundedPoints(CurveInZoom()));
    DrawInfo(canvas);
}

void TMyPolyBezier::DrawHot(TCanvas &canvas)
{
    DrawPointHandles(*this, canvas);
}

std::int32_t TMyPolyBezier::InWhichHot(TPoint point)
{
    return PointHandleUnder(*this, point);
}

bool TMyPolyBezier::IsClickedMe(TCanvas &, TPoint point)
{
    return GetPointsCount() >= 2 && NearPolyline(CurveInZoom(), point, HitBand);
}

// The curve stays inside the polygon of its control points.
std::int32_t TMyPolyBezier::HitReach() const
{
    return std::int32_t(std::ceil(HitBand));
}

// ---- TMyBLine ----

std::vector<TMyPoint> TMyBLine::CurveInZoom() const
{
    return FlattenBSpline(ZoomedPoints(*this));
}

bool TMyBLine::IsDrawingFinished(Qt::MouseButton, TPoint)
{
    if (GetPointsCount() <= 2 || !LastPointRepeated(*this, 1))
        return false;
    Points().pop_back();
    SetCenterPoint(ComputeCenterPoint(4));
    return true;
}

void TMyBLine::Drawing(TCanvas &canvas, TPoint from, TPoint to)
{
    SetDragResizeRotateShapeMode(canvas);
    canvas.MoveTo(from.X, from.Y);
    canvas.LineTo(to.X, to.Y);
}

void TMyBLine::SizeChangeValue(TMyPoint from, TMyPoint to)
{
    TMyShape::SizeChangeValue(from, to);
    const std::int32_t h = CurrentHot();
    if (h >= 0 && h < GetPointsCount())
        PointAddXY(h, double(to.X) - from.X, double(to.Y) - from.Y);
    SetCenterPoint(ComputeCenterPoint(4));
}

void TMyBLine::Sizing(TCanvas &canvas, TPoint from, TPoint to)
{
    std::vector<TMyPoint> pts = ZoomedPoints(*this);
    const std::int32_t h = CurrentHot();
    if (h < 0 || h >= std::int32_t(pts.size()))
        return;
    TMyPoint &p = pts[std::size_t(h)];
    p = {float(p.X + double(to.X) - from.X), float(p.Y + double(to.Y) - from.Y)};
    PreviewPolyline(canvas, FlattenBSpline(pts));
}

void TMyBLine::Draging(TCanvas &canvas, TPoint from, TPoint to)
{
    const TPoint d = to - from;
    PreviewPolyline(canvas, Shifted(CurveInZoom(), d.X, d.Y));
}

void TMyBLine::Rotating(TCanvas &canvas, TMyPoint centre, double angle)
{
    PreviewPolyline(canvas, FlattenBSpline(Turned(ZoomedPoints(*this), centre, angle)));
}

void TMyBLine::Draw(TCanvas &canvas)
{
    SetDrawShapeMode(*this, canvas);
    StrokeOutline(*this, canvas, RoundedPoints(CurveInZoom()));
    DrawInfo(canvas);
}

void TMyBLine::DrawHot(TCanvas &canvas)
{
    DrawPointHandles(*this, canvas);
}

std::int32_t TMyBLine::InWhichHot(TPoint point)
{
    return PointHandleUnder(*this, point);
}

bool TMyBLine::IsClickedMe(TCanvas &, TPoint point)
{
    return GetPointsCount() >= 2 && NearPolyline(CurveInZoom(), point, HitBand);
}

// The curve stays inside the polygon of its control points.
std::int32_t TMyBLine::HitReach() const
{
    return std::int32_t(std::ceil(HitBand));
}

} // namespace tessal
