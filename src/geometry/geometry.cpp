// SPDX-License-Identifier: MIT
// Plane geometry on document points: conversions, angles, crossings and point arrays.
#include <tessal/geometry/geometry.h>

#include <tessal/platform/message.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tessal {

namespace {

constexpr double Pi = std::numbers::pi;
constexpr double TwoPi = 2 * std::numbers::pi;

template <typename T>
bool InRange(std::int32_t i, const std::vector<T> &arr)
{
    return i >= 0 && static_cast<std::size_t>(i) < arr.size();
}

template <typename T>
bool InsertBefore(const T &p, std::int32_t id, std::vector<T> &arr)
{
    if (!InRange(id, arr))
        return false;
    arr.insert(arr.begin() + id, p);
    return true;
}

} // namespace

TMyPoint PtToMyPt(TPoint p)
{
    return {static_cast<float>(p.X), static_cast<float>(p.Y)};
}

TPoint MyPtToPt(TMyPoint p)
{
    return {RoundEven(p.X), RoundEven(p.Y)};
}

TRect myRecttoRect(const TMyRect &r)
{
    return {RoundEven(r.Left), RoundEven(r.Top), RoundEven(r.Right), RoundEven(r.Bottom)};
}

void OffsetMyRect(TMyRect &r, float dx, float dy)
{
    r.Left += dx;
    r.Right += dx;
    r.Top += dy;
    r.Bottom += dy;
}

TRect ExpandRect(const TRect &r, std::int32_t n)
{
    return r.Inflated(n, n);
}

TRect PtToARect(TPoint a, TPoint b)
{
    return TRect(a, b).Normalized();
}

float GetLengthinPixel(TMyPoint a, TMyPoint b)
{
    const double dx = double(a.X) - b.X;
    const double dy = double(a.Y) - b.Y;
    return static_cast<float>(std::sqrt(dx * dx + dy * dy));
}

double GetSlopeAngle(TMyPoint a, TMyPoint b)
{
    // A vertical direction answers pi/2 whether b lies above or below a: the quadrant
    // rules are not applied to it. Stored angles depend on this tie-break, so it is kept
    // although "below" would continue the other directions at 3pi/2.
    const double dx = double(a.X) - b.X;
    if (dx == 0)
        return Pi / 2;
    const double base = std::atan((double(a.Y) - b.Y) / dx);
    const std::int32_t qx = PointInQuadrantX(a, b);
    const std::int32_t qy = PointInQuadrantY(a, b);
    // Equal coordinates count as -1, so the quadrant cases below cover every pair.
    if (qx > 0 && qy < 0)
        return base + Pi;
    if (qx > 0 && qy > 0)
        return std::abs(base) + Pi;
    if (qx < 0 && qy > 0)
        return TwoPi - std::abs(base);
    return base;
}

void RecaclinRad(float &a)
{
    while (a > TwoPi)
        a = static_cast<float>(a - TwoPi);
    while (a < -TwoPi)
        a = static_cast<float>(a + TwoPi);
}

void RecaclinDeg(std::int32_t &d)
{
    if (d > 360) {
        while (d >= 360)
            d -= 360;
    } else if (d < -360) {
        // Runs until the value passes 360, so negative inputs end up in (360, 720]. Stored
        // and displayed angles depend on this, so it stays.
        while (d <= 360)
            d += 360;
    }
}

TRotation::TRotation(TMyPoint centre, float angle)
    : m_Centre(centre)
    , m_Sin(std::sin(double(angle)))
    , m_Cos(std::cos(double(angle)))
{}

TMyPoint TRotation::operator()(TMyPoint p) const
{
    const TMyPoint c = m_Centre;
    const double dx = double(p.X) - c.X;
    const double dy = double(p.Y) - c.Y;
    return {static_cast<float>(c.X + dx * m_Cos - dy * m_Sin),
            static_cast<float>(c.Y + dx * m_Sin + dy * m_Cos)};
}

TMyPoint RotateAPoint(TMyPoint p, TMyPoint c, float a)
{
    return TRotation(c, a)(p);
}

std::int32_t PointInQuadrantX(TMyPoint a, TMyPoint b)
{
    return b.X > a.X ? 1 : -1;
}

std::int32_t PointInQuadrantY(TMyPoint a, TMyPoint b)
{
    return b.Y > a.Y ? 1 : -1;
}

bool IsAtLeftTop(TMyPoint a, TMyPoint b)
{
    return b.X <= a.X && b.Y <= a.Y;
}

bool IsAtLeftBottom(TMyPoint a, TMyPoint b)
{
    return b.X <= a.X && b.Y >= a.Y;
}

bool IsAtRightTop(TMyPoint a, TMyPoint b)
{
    return b.X >= a.X && b.Y <= a.Y;
}

bool IsAtRightBottom(TMyPoint a, TMyPoint b)
{
    return b.X >= a.X && b.Y >= a.Y;
}

TMyPoint Getintersection(TMyPoint p1, TMyPoint p2, TMyPoint p3, TMyPoint p4)
{
    // Line A runs through p1 and p3, line B through p2 and p4. The degenerate cases answer
    // half the coordinate difference rather than a midpoint; callers rely on these values.
    const bool aVertical = p1.X == p3.X;
    const bool bVertical = p2.X == p4.X;
    if (aVertical && bVertical)
        return {p1.X, static_cast<float>((double(p3.Y) - p1.Y) / 2)};
    const double kA = (double(p3.Y) - p1.Y) / (double(p3.X) - p1.X);
    const double kB = (double(p4.Y) - p2.Y) / (double(p4.X) - p2.X);
    if (aVertical)
        return {p1.X, static_cast<float>((double(p1.X) - p2.X) * kB + p2.Y)};
    if (bVertical)
        return {p2.X, static_cast<float>((double(p2.X) - p1.X) * kA + p1.Y)};
    if (p1.Y == p3.Y && p2.Y == p4.Y)
        return {static_cast<float>((double(p3.X) - p1.X) / 2), p1.Y};
    if (kA == kB)
        ShowMessage(QStringLiteral("error")); // parallel: the division below is not finite
    const double x = (kB * p2.X - p2.Y - kA * p1.X + p1.Y) / (kB - kA);
    const double y = (x - p1.X) * kA + p1.Y;
    return {static_cast<float>(x), static_cast<float>(y)};
}

std::pair<TMyPoint, TMyPoint> GetTriangle(TMyPoint tip, TMyPoint tail, std::uint8_t length,
                                          float half)
{
    const double theta =
        tip.Y == tail.Y
            ? Pi / 2 - half
            : std::abs(std::atan((double(tip.X) - tail.X) / (double(tip.Y) - tail.Y))) - half;
    const double theta2 = theta + 2.0 * half;
    const double sx = tip.X <= tail.X ? 1.0 : -1.0;
    const double sy = tip.Y <= tail.Y ? 1.0 : -1.0;
    const auto corner = [&](double t) {
        return TMyPoint{static_cast<float>(tip.X + sx * length * std::sin(t)),
                        static_cast<float>(tip.Y + sy * length * std::cos(t))};
    };
    return {corner(theta), corner(theta2)};
}

std::pair<TMyPoint, TMyPoint> SplitLine(TMyPoint a, TMyPoint b, std::int32_t n)
{
    const double theta =
        a.Y == b.Y ? Pi / 2 : std::abs(std::atan((double(a.X) - b.X) / (double(a.Y) - b.Y)));
    const double sx = a.X <= b.X ? 1.0 : -1.0;
    const double sy = a.Y <= b.Y ? 1.0 : -1.0;
    const TMyPoint p{static_cast<float>(a.X + sx * n * std::sin(theta)),
                     static_cast<float>(a.Y + sy * n * std::cos(theta))};
    return {p, p};
}

TMyRect GetPointsLTRB(const std::vector<TMyPoint> &points)
{
    TMyRect r{points.front().X, points.front().Y, points.front().X, points.front().Y};
    for (const TMyPoint &p : points) {
        r.Left = std::min(r.Left, p.X);
        r.Top = std::min(r.Top, p.Y);
        r.Right = std::max(r.Right, p.X);
        r.Bottom = std::max(r.Bottom, p.Y);
    }
    return r;
}

void AppendAPoint(TMyPoint p, std::vector<TMyPoint> &arr)
{
    arr.push_back(p);
}

bool InsertAPointBeforeId(TMyPoint p, std::int32_t id, std::vector<TMyPoint> &arr)
{
    return InsertBefore(p, id, arr);
}

bool InsertAPointBeforeId1(TPoint p, std::int32_t id, std::vector<TPoint> &arr)
{
    return InsertBefore(p, id, arr);
}

void RemovePoint(std::int32_t i, std::vector<TMyPoint> &arr)
{
    if (InRange(i, arr))
        arr.erase(arr.begin() + i);
}

bool IsExistPt(std::int32_t i, const std::vector<TMyPoint> &arr)
{
    return InRange(i, arr);
}

bool IsExistPt1(std::int32_t i, const std::vector<TPoint> &arr)
{
    return InRange(i, arr);
}

void AddLinklineShape(std::vector<std::int32_t> &linkShapes, std::int32_t id)
{
    if (std::find(linkShapes.begin(), linkShapes.end(), id) == linkShapes.end())
        linkShapes.push_back(id);
}

void RemoveLinklineShape(std::vector<std::int32_t> &linkShapes, std::int32_t id)
{
    const auto last = std::find(linkShapes.rbegin(), linkShapes.rend(), id);
    if (last != linkShapes.rend())
        linkShapes.erase(std::next(last).base());
}

QString AppendSpace(const QString &s, std::int32_t n)
{
    if (s.size() > n)
        return s;
    return s + QString(n - s.size() + 1, QLatin1Char(' '));
}

} // namespace tessal
