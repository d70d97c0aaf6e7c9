// SPDX-License-Identifier: MIT
// TMyPolyLine, TMyPolygon and TMyFreeLine: their ending rules, the polygon's closed
// outline and area, and the free line's hit test.
#include <tessal/geometry/canvasmodes.h>
#include <tessal/geometry/geometry.h>
#include <tessal/shapes/polyline.h>
#include <tessal/shapes/shapetools.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace tessal {

namespace {

constexpr TColor DiamondColour = 0x00FFFF;
constexpr double FreeLineBand = 8;

bool InHandle(TMyPoint zoomed, TPoint point, std::int32_t margin)
{
    const TPoint c = MyPtToPt(zoomed);
    return ExpandRect(PtToARect(c, c), margin).Contains(point);
}

// Distance from p to the segment a-b (to the nearer end beyond the segment).
double DistanceToSegment(TPoint a, TPoint b, TPoint p)
{
    const double dx = double(b.X) - a.X, dy = double(b.Y) - a.Y;
    const double len2 = dx * dx + dy * dy;
    double t = len2 == 0 ? 0 : ((double(p.X) - a.X) * dx + (double(p.Y) - a.Y) * dy) / len2;
    t = std::clamp(t, 0.0, 1.0);
    return std::hypot(a.X + t * dx - p.X, a.Y + t * dy - p.Y);
}

} // namespace

// ---- TMyPolyLine ----

TMyPolyLine::TMyPolyLine(TShapeHost *host)
    : TMyLine(host)
{
    SetArrowStyle(TArrowStyle::ANone);
}

bool TMyPolyLine::IsDrawingFinished(Qt::MouseButton, TPoint)
{
    const std::int32_t count = GetPointsCount();
    // Each click adds a point, so a double click leaves the last point twice.
    if (count <= 2 || GetPointInZoom(count - 1) != GetPointInZoom(count - 2))
        return false;
    Points().pop_back();
    return true;
}

void TMyPolyLine::AppendPoint(TPoint point)
{
    const std::int32_t w = Host()->ControlWidth();
    const std::int32_t h = Host()->ControlHeight();
    switch (Host()->XYMode()) {
    case TXYMode::Mode0:
        break;
    case TXYMode::Mode1:
        point.Y = h - point.Y;
        break;
    case TXYMode::Mode2:
        point.Y = h - point.Y;
        point.X = w - point.X;
        break;
    case TXYMode::Mode3:
        point.X = w - point.X;
        break;
    }
    AddPoint(PtToMyPt(point));
}

// ---- TMyPolygon ----

TMyPolygon::TMyPolygon(TShapeHost *host)
    : TMyPolyLine(host)
{}

void TMyPolygon::Draw(TCanvas &canvas)
{
    SetDrawShapeMode(*this, canvas);
    std::vector<TPoint> pts;
    pts.reserve(Points().size());
    for (std::int32_t i = 0; i < GetPointsCount(); ++i)
        pts.push_back(MyPtToPt(GetPointInZoom(i)));
    PowerDrawShape(canvas, pts, true);
    DrawInfo(canvas);
}

void TMyPolygon::DrawHot(TCanvas &canvas)
{
    if (!Host()->HotShow())
        return;
    for (std::int32_t i = 0; i + 1 < GetPointsCount(); ++i)
        DrawSquare(*this, canvas, GetPointInZoom(i));
    DrawDiamond(*this, canvas, ZoomedValuePt(TextPoint()), DiamondColour);
}

std::int32_t TMyPolygon::InWhichHot(TPoint point)
{
    SetCurrentHot(-1);
    const std::int32_t margin = Host()->HotSize();
    for (std::int32_t i = 0; i + 1 < GetPointsCount(); ++i)
        if (InHandle(GetPointInZoom(i), point, margin))
            SetCurrentHot(i);
    return CurrentHot();
}

bool TMyPolygon::IsClickedMe(TCanvas &, TPoint point)
{
    std::vector<TPoint> pts;
    for (std::int32_t i = 0; i < GetPointsCount(); ++i)
        pts.push_back(MyPtToPt(GetPointInZoom(i)));
    if (pts.size() < 3)
        return false;
    return TRegion::Contains(pts, TFillMode::fmAlternate, point);
}

bool TMyPolygon::IsDrawingFinished(Qt::MouseButton, TPoint point)
{
    const std::int32_t count = GetPointsCount();
    if (count <= 3)
        return false;
    const double margin = Host()->HotSize();
    auto near = [&](TMyPoint p) {
        return std::abs(point.X - double(p.X)) < margin && std::abs(point.Y - double(p.Y)) < margin;
    };
    // The click that ends the polygon has already been added as the last point; it is
    // replaced by point 0, which closes the outline.
    if (!near(GetPointInZoom(0)) && !near(GetPointInZoom(count - 2)))
        return false;
    SetPoint(count - 1, GetPoint(0));
    return true;
}

void TMyPolygon::SizeChangeValue(TMyPoint from, TMyPoint to)
{
    const std::int32_t h = CurrentHot();
    const std::int32_t last = GetPointsCount() - 1;
    if (h >= 0 && h <= last) {
        const double dx = double(to.X) - from.X, dy = double(to.Y) - from.Y;
        PointAddXY(h, dx, dy);
        // Point 0 and the closing point are one corner.
        if (last > 0 && h == 0)
            PointAddXY(last, dx, dy);
        else if (last > 0 && h == last)
            PointAddXY(0, dx, dy);
    }
    SetCenterPoint(ComputeCenterPoint(4));
}

void TMyPolygon::Sizing(TCanvas &canvas, TPoint from, TPoint to)
{
    const std::int32_t h = CurrentHot();
    const std::int32_t last = GetPointsCount() - 1;
    if (h < 0 || h > last)
        return;
    auto moved = [&](std::int32_t i) {
        return i == h || (h == 0 && i == last) || (h == last && i == 0);
    };
    auto at = [&](std::int32_t i) {
        const TMyPoint p = GetPointInZoom(i);
        if (!moved(i))
            return p;
        return TMyPoint{float(p.X + double(to.X) - from.X), float(p.Y + double(to.Y) - from.Y)};
    };
    for (std::int32_t i = 0; i < last; ++i)
        if (moved(i) || moved(i + 1))
            LineDraw(*this, canvas, at(i), at(i + 1));
}

double TMyPolygon::EnclosedArea() const
{
    const TMyPointArray &pts = Points();
    double twice = 0;
    for (std::size_t i = 0; i < pts.size(); ++i) {
        const TMyPoint a = pts[i];
        const TMyPoint b = pts[(i + 1) % pts.size()];
        twice += double(a.X) * b.Y - double(b.X) * a.Y;
    }
    return std::abs(twice) / 2;
}

QString TMyPolygon::GetInfo() const
{
    const QString text = AreaInfoText(*Host(), EnclosedArea());
    const_cast<TMyPolygon *>(this)->SetInfo(text);
    return text;
}

TMyPoint TMyPolygon::GradientLeftTop() const
{
    if (Points().empty())
        return {};
    const TMyPoint c = CenterPoint();
    const float a = Angle();
    TMyPointArray upright;
    for (const TMyPoint &p : Points())
        upright.push_back(RotateAPoint(p, c, -a));
    const TMyRect box = GetPointsLTRB(upright);
    const TMyPointArray corners = {
        RotateAPoint({box.Left, box.Top}, c, a), RotateAPoint({box.Right, box.Top}, c, a),
        RotateAPoint({box.Right, box.Bottom}, c, a), RotateAPoint({box.Left, box.Bottom}, c, a)};
    const TMyRect turned = GetPointsLTRB(corners);
    return {turned.Left, turned.Top};
}

// ---- TMyFreeLine ----

TMyFreeLine::TMyFreeLine(TShapeHost *host)
    : TMyPolyLine(host)
{}

void TMyFreeLine::DrawHot(TCanvas &canvas)
{
    if (!Host()->HotShow() || GetPointsCount() == 0)
        return;
    DrawSquare(*this, canvas, GetPointInZoom(0));
    if (GetPointsCount() > 1)
        DrawSquare(*this, canvas, GetPointInZoom(GetPointsCount() - 1));
    DrawDiamond(*this, canvas, ZoomedValuePt(TextPoint()), DiamondColour);
}

bool TMyFreeLine::IsDrawingFinished(Qt::MouseButton, TPoint)
{
    // The points were recorded while the mouse moved; the release ends the line unless
    // the press was a bare click.
    return GetPointsCount() >= 2;
}

bool TMyFreeLine::IsClickedMe(TCanvas &, TPoint point)
{
    for (std::int32_t i = 0; i + 1 < GetPointsCount(); ++i)
        if (DistanceToSegment(MyPtToPt(GetPointInZoom(i)), MyPtToPt(GetPointInZoom(i + 1)),
                              point) <= FreeLineBand)
            return true;
    return false;
}

std::int32_t TMyFreeLine::HitReach() const
{
    return std::int32_t(std::ceil(FreeLineBand));
}

} // namespace tessal
