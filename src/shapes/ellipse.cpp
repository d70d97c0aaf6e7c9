// SPDX-License-Identifier: MIT
// TMyEllipse: the inscribed ellipse as a 72-chord polygon, its previews and its area text.
#include <tessal/geometry/canvasmodes.h>
#include <tessal/geometry/geometry.h>
#include <tessal/shapes/rectangle.h>
#include <tessal/shapes/shapetools.h>

#include <cmath>
#include <numbers>

namespace tessal {

namespace {

// Sine and cosine of the outline's 73 angles, 5 degrees apart from the bottom.
struct TUnitCircle
{
    std::array<double, 73> Sin, Cos;
};

const TUnitCircle &UnitCircle()
{
    static const TUnitCircle circle = [] {
        TUnitCircle c;
        for (std::size_t i = 0; i < c.Sin.size(); ++i) {
            const double t = double(i) * std::numbers::pi / 36;
            c.Sin[i] = std::sin(t);
            c.Cos[i] = std::cos(t);
        }
        return c;
    }();
    return circle;
}

// Halves to even, as nearbyint does in the default rounding mode; a value beyond the result's
// range keeps the low 32 bits of its 64-bit rounding, as it always has.
std::int32_t RoundOutline(double v)
{
    if (v > -2147483648.0 && v < 2147483647.0)
        return RoundEven(v);
    return std::int32_t(std::lrint(v));
}

} // namespace

std::array<TPoint, 73> TMyEllipse::OutlinePoints() const
{
    const TUnitCircle &unit = UnitCircle();
    const double z = Zoom();
    const double a = z * GetMyWidth() / 2;
    const double b = z * GetMyHeight() / 2;
    const double c = std::cos(double(Angle()));
    const double s = std::sin(double(Angle()));
    const TMyPoint centre = GetCenterPointInZoom();
    std::array<TPoint, 73> pts;
    // Point 0 is the bottom of the upright ellipse; point 72 closes the figure on it.
    for (std::size_t i = 0; i < pts.size(); ++i) {
        const double u = a * unit.Sin[i];
        const double v = b * unit.Cos[i];
        pts[i] = {RoundOutline(u * c - v * s + centre.X), RoundOutline(u * s + v * c + centre.Y)};
    }
    return pts;
}

void TMyEllipse::Draw(TCanvas &canvas)
{
    SetDrawShapeMode(*this, canvas);
    if (GetPointsCount() >= 4)
        PowerDrawShape(canvas, OutlinePoints(), true);
    DrawInfo(canvas);
}

void TMyEllipse::Drawing(TCanvas &canvas, TPoint from, TPoint to)
{
    SetDragResizeRotateShapeMode(canvas);
    canvas.Ellipse(PtToARect(from, to));
}

void TMyEllipse::Draging(TCanvas &canvas, TPoint from, TPoint to)
{
    if (GetPointsCount() < 4)
        return;
    std::array<TPoint, 73> pts = OutlinePoints();
    const TPoint d = to - from;
    for (TPoint &p : pts)
        p = p + d;
    canvas.Polyline(pts);
}

QString TMyEllipse::GetInfo() const
{
    return AreaText(std::numbers::pi * (GetMyWidth() / 2.0) * (GetMyHeight() / 2.0));
}

} // namespace tessal
