// SPDX-License-Identifier: MIT
// TMyShape: point access in document and zoomed values, and the edit arithmetic.
#include <tessal/geometry/geometry.h>
#include <tessal/shapes/shape.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>

namespace tessal {

namespace {

TMyRect BoundsOf(const TMyPointArray &points)
{
    return points.empty() ? TMyRect{} : GetPointsLTRB(points);
}

} // namespace

// ---- Point access ----

TMyPoint TMyShape::GetPoint(std::int32_t index) const
{
    return m_Points[std::size_t(index)];
}

TMyPoint TMyShape::ZoomedValuePt(TMyPoint p) const
{
    const double z = Zoom();
    return {float(p.X * z), float(p.Y * z)};
}

TMyPoint TMyShape::GetPointInZoom(std::int32_t index) const
{
    return ZoomedValuePt(GetPoint(index));
}

TMyPoint TMyShape::GetLinkPointInZoom(std::int32_t index) const
{
    return ZoomedValuePt(m_LinkPoints[std::size_t(index)]);
}

void TMyShape::SetPointInZoom(std::int32_t index, TMyPoint p)
{
    m_Points[std::size_t(index)] = {float(p.X / Zoom()), float(p.Y / Zoom())};
}

void TMyShape::SetPointXInZoom(std::int32_t index, float x)
{
    m_Points[std::size_t(index)].X = float(x / Zoom());
}

void TMyShape::SetPointYInZoom(std::int32_t index, float y)
{
    m_Points[std::size_t(index)].Y = float(y / Zoom());
}

void TMyShape::AddPoint(TMyPoint p)
{
    m_Points.push_back({float(p.X / Zoom()), float(p.Y / Zoom())});
}

void TMyShape::AddLinkPoint(TMyPoint p)
{
    m_LinkPoints.push_back({float(p.X / Zoom()), float(p.Y / Zoom())});
}

void TMyShape::PointAddX(std::int32_t index, double dx)
{
    TMyPoint &p = m_Points[std::size_t(index)];
    p.X = float(p.X + dx / Zoom());
}

void TMyShape::PointAddY(std::int32_t index, double dy)
{
    TMyPoint &p = m_Points[std::size_t(index)];
    p.Y = float(p.Y + dy / Zoom());
}

void TMyShape::PointAddXY(std::int32_t index, double dx, double dy)
{
    PointAddX(index, dx);
    PointAddY(index, dy);
}

void TMyShape::LinkPointAddXY(std::int32_t index, double dx, double dy)
{
    TMyPoint &p = m_LinkPoints[std::size_t(index)];
    p.X = float(p.X + dx / Zoom());
    p.Y = float(p.Y + dy / Zoom());
}

TMyPoint TMyShape::GetPointInZoomWithMode(std::int32_t index) const
{
    if (index < 0 || index >= GetPointsCount())
        return {};
    TMyPoint p = GetPointInZoom(index);
    const float w = float(m_Host->ControlWidth());
    const float h = float(m_Host->ControlHeight());
    switch (m_Host->XYMode()) {
    case TXYMode::Mode0:
        break;
    case TXYMode::Mode1:
        p.Y = h - p.Y;
        break;
    case TXYMode::Mode2:
        p.X = w - p.X;
        p.Y = h - p.Y;
        break;
    case TXYMode::Mode3:
        p.X = w - p.X;
        break;
    }
    return p;
}

// ---- Extent ----

TMyPoint TMyShape::GetLeftTop() const
{
    const TMyRect r = BoundsOf(m_Points);
    return {r.Left, r.Top};
}

TMyPoint TMyShape::GetRightTop() const
{
    const TMyRect r = BoundsOf(m_Points);
    return {r.Right, r.Top};
}

TMyPoint TMyShape::GetLeftBottom() const
{
    const TMyRect r = BoundsOf(m_Points);
    return {r.Left, r.Bottom};
}

TMyPoint TMyShape::GetRightBottom() const
{
    const TMyRect r = BoundsOf(m_Points);
    return {r.Right, r.Bottom};
}

float TMyShape::GetWidth() const
{
    const TMyRect r = BoundsOf(m_Points);
    return std::abs(r.Right - r.Left);
}

float TMyShape::GetHeight() const
{
    const TMyRect r = BoundsOf(m_Points);
    return std::abs(r.Bottom - r.Top);
}

float TMyShape::GetMyWidth() const
{
    TMyPointArray upright;
    const TMyPoint c = GetCenterPoint();
    for (const TMyPoint &p : m_Points)
        upright.push_back(RotateAPoint(p, c, -m_Angle));
    const TMyRect r = BoundsOf(upright);
    return r.Right - r.Left;
}

float TMyShape::GetMyHeight() const
{
    TMyPointArray upright;
    const TMyPoint c = GetCenterPoint();
    for (const TMyPoint &p : m_Points)
        upright.push_back(RotateAPoint(p, c, -m_Angle));
    const TMyRect r = BoundsOf(upright);
    return r.Bottom - r.Top;
}

TMyPoint TMyShape::ComputeCenterPoint(std::int32_t kind) const
{
    const TMyRect r = BoundsOf(m_Points);
    switch (kind) {
    case 0:
        return {r.Left, r.Top};
    case 1:
        return {r.Right, r.Top};
    case 2:
        return {r.Right, r.Bottom};
    case 3:
        return {r.Left, r.Bottom};
    case 4:
        return {(r.Left + r.Right) / 2, (r.Top + r.Bottom) / 2};
    default:
        return m_CenterPoint;
    }
}

TMyPoint TMyShape::GetCenterPoint() const
{
    return m_CenterPoint;
}

TMyPoint TMyShape::GetCenterPointInZoom() const
{
    return ZoomedValuePt(GetCenterPoint());
}

// ---- Moving, turning, mirroring ----

void TMyShape::DragChangeValue(TPoint from, TPoint to)
{
    DragChangeValuedxdy(double(to.X) - from.X, double(to.Y) - from.Y);
}

void TMyShape::DragChangeValuedxdy(double dx, double dy)
{
    if (dx == 0 && dy == 0)
        return;
    for (std::int32_t i = 0; i < GetPointsCount(); ++i)
        PointAddXY(i, dx, dy);
    for (std::int32_t i = 0; i < GetLinkPointsCount(); ++i)
        LinkPointAddXY(i, dx, dy);
    const double ddx = dx / Zoom();
    const double ddy = dy / Zoom();
    m_CenterPoint = {float(m_CenterPoint.X + ddx), float(m_CenterPoint.Y + ddy)};
    m_TextPoint = {float(m_TextPoint.X + ddx), float(m_TextPoint.Y + ddy)};
}

void TMyShape::RotateChangeValueByAngle(TMyPoint centre, double angle)
{
    if (m_Points.empty())
        return;
    const float a = float(angle);
    // Through the virtual GetPoint, so classes that derive points from others turn what
    // they show.
    for (std::int32_t i = 0; i < GetPointsCount(); ++i)
        SetPoint(i, RotateAPoint(GetPoint(i), centre, a));
    for (TMyPoint &p : m_LinkPoints)
        p = RotateAPoint(p, centre, a);
    m_TextPoint = RotateAPoint(m_TextPoint, centre, a);
    m_CenterPoint = RotateAPoint(m_CenterPoint, centre, a);
    m_Angle = float(m_Angle + angle);
    RecaclinRad(m_Angle);
}

TMyPoint TMyShape::FlipCentre() const
{
    if (HasParentShape()) {
        if (const TMyShape *root = m_Host->GetRootParentShape(const_cast<TMyShape *>(this)))
            return root->GetCenterPoint();
    }
    return GetCenterPoint();
}

namespace {

float Mirror(float v, float c)
{
    return float(double(c) - (double(v) - c));
}

} // namespace

void TMyShape::FlipHoriz()
{
    const TMyPoint c = FlipCentre();
    for (TMyPoint &p : m_Points)
        p.X = Mirror(p.X, c.X);
    for (TMyPoint &p : m_LinkPoints)
        p.X = Mirror(p.X, c.X);
    m_CenterPoint.X = Mirror(m_CenterPoint.X, c.X);
    m_TextPoint.X = Mirror(m_TextPoint.X, c.X);
    if (m_Angle != 0)
        m_Angle = HasUpright() ? -m_Angle : float(std::numbers::pi - m_Angle);
    m_IsFlipHorz = !m_IsFlipHorz;
    Repaint();
}

void TMyShape::FlipVert()
{
    const TMyPoint c = FlipCentre();
    for (TMyPoint &p : m_Points)
        p.Y = Mirror(p.Y, c.Y);
    for (TMyPoint &p : m_LinkPoints)
        p.Y = Mirror(p.Y, c.Y);
    m_CenterPoint.Y = Mirror(m_CenterPoint.Y, c.Y);
    m_TextPoint.Y = Mirror(m_TextPoint.Y, c.Y);
    if (m_Angle != 0)
        m_Angle = -m_Angle;
    m_IsFlipVert = !m_IsFlipVert;
    Repaint();
}

// ---- Scaling, rotation angle, magnet ----

TMyPoint TMyShape::ScaledInFrame(TMyPoint p, double sx, double sy, TMyPoint fixed, double frame)
{
    const TMyPoint u = RotateAPoint(p, fixed, float(-frame));
    const TMyPoint s{float(fixed.X + (double(u.X) - fixed.X) * sx),
                     float(fixed.Y + (double(u.Y) - fixed.Y) * sy)};
    return RotateAPoint(s, fixed, float(frame));
}

template <typename F>
void TMyShape::ScaleAll(F scale)
{
    for (TMyPoint &p : m_Points)
        p = scale(p);
    for (TMyPoint &p : m_LinkPoints)
        p = scale(p);
    m_TextPoint = scale(m_TextPoint);
    m_CenterPoint = scale(m_CenterPoint);
}

// A rotated shape is scaled along its own axes: each point is turned back by -Angle about
// the fixed point, scaled there, and turned forward again. A rotated rectangle therefore
// stays a rectangle at the same angle. from and to (the handle's old and new positions)
// are for classes that need them; the factors already say everything here.
void TMyShape::SizeChangeValueByScale(double sx, double sy, TMyPoint fixed, TMyPoint, TMyPoint)
{
    ScaleAll([&](TMyPoint p) { return ScaledInFrame(p, sx, sy, fixed, m_Angle); });
}

void TMyShape::ScaleInFrame(double sx, double sy, TMyPoint fixed, double frame)
{
    const double phi = double(m_Angle) - frame;
    if (!KeepsItsBox() || std::fmod(phi, std::numbers::pi) == 0) {
        ScaleAll([&](TMyPoint p) { return ScaledInFrame(p, sx, sy, fixed, frame); });
        return;
    }
    // The images of the shape's own unit sides under the box's scaling.
    const double c = std::cos(phi), s = std::sin(phi);
    const double ownX = std::hypot(sx * c, sy * s), ownY = std::hypot(sx * s, sy * c);
    const TMyPoint centre = GetCenterPoint();
    const TMyPoint moved = ScaledInFrame(centre, sx, sy, fixed, frame);
    const double dx = double(moved.X) - centre.X, dy = double(moved.Y) - centre.Y;
    ScaleAll([&](TMyPoint p) {
        const TMyPoint q = ScaledInFrame(p, ownX, ownY, centre, m_Angle);
        return TMyPoint{float(q.X + dx), float(q.Y + dy)};
    });
}

// The turn between the directions centre->from and centre->to, normalised to (-pi, pi] so
// that a small drag across the zero direction is a small turn. The directions are taken
// with a continuous angle rather than the slope angle, whose vertical tie-break answers
// pi/2 for straight below too: a drag passing under the centre would flip the shape.
// With a constraint the turn snaps to the nearest multiple of RotateConstraintDegree
// (halves to even).
double TMyShape::GetRotatedAngle(TMyPoint centre, TMyPoint from, TMyPoint to,
                                 bool constrained) const
{
    constexpr double pi = std::numbers::pi;
    const auto direction = [centre](TMyPoint p) {
        return std::atan2(double(p.Y) - centre.Y, double(p.X) - centre.X);
    };
    double a = direction(to) - direction(from);
    while (a > pi)
        a -= 2 * pi;
    while (a <= -pi)
        a += 2 * pi;
    const std::int32_t degree = m_Host->RotateConstraintDegree();
    if (constrained && degree > 0) {
        const double step = degree * pi / 180;
        a = std::nearbyint(a / step) * step;
    }
    return a;
}

TMyPoint TMyShape::GetMagicPoint(const TMyShape &other, TMyPoint p) const
{
    const double z = Zoom();
    const TMyPoint lt = other.GetLeftTop();
    const TMyPoint rb = other.GetRightBottom();
    const TRect r{RoundEven(lt.X * z), RoundEven(lt.Y * z), RoundEven(rb.X * z),
                  RoundEven(rb.Y * z)};
    const double d[4] = {std::abs(double(p.X) - r.Left), std::abs(double(p.X) - r.Right),
                         std::abs(double(p.Y) - r.Top), std::abs(double(p.Y) - r.Bottom)};
    // min_element keeps the first of equal distances: left, right, top, bottom.
    const auto side = std::min_element(std::begin(d), std::end(d)) - std::begin(d);
    if (d[side] >= z * 25)
        return p;
    switch (side) {
    case 0:
        p.X = float(r.Left);
        break;
    case 1:
        p.X = float(r.Right);
        break;
    case 2:
        p.Y = float(r.Top);
        break;
    default:
        p.Y = float(r.Bottom);
        break;
    }
    return p;
}

// ---- Length readout ----

QString TMyShape::GetLengthByUnit(TPoint from, TPoint to)
{
    return LengthText(GetLengthinPixel(PtToMyPt(from), PtToMyPt(to)), Zoom());
}

QString TMyShape::LengthText(double pixels, double zoom) const
{
    const double ppi = m_Host->ScreenPixelsPerInch();
    const double inches = pixels / ppi;
    const double r = m_Host->Ratio() / zoom;
    double value = 0;
    const char *format = "%9.2f";
    const char *suffix = "";
    switch (m_Host->TheUNIT()) {
    case TUnits::pixel:
        value = r * inches * ppi;
        format = "%9.0f";
        suffix = " pixel(s)";
        break;
    case TUnits::mm:
        value = r * inches * 25.4;
        suffix = " mm";
        break;
    case TUnits::cm:
        value = r * inches * 25.4 / 10;
        suffix = " cm";
        break;
    case TUnits::dm:
        value = r * inches * 25.4 / 100;
        suffix = " dm";
        break;
    case TUnits::m:
        value = r * inches * 25.4 / 1000;
        suffix = " m";
        break;
    case TUnits::inch:
        value = r * inches;
        suffix = " in";
        break;
    }
    // The C library's formatting, so the rounding of ties and the padding match printf.
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, format, value);
    return QString::fromLatin1(buffer) + QLatin1String(suffix);
}

} // namespace tessal
