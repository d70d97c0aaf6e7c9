// SPDX-License-Identifier: MIT
// Integer screen points and rectangles with device-context semantics.
#pragma once

#include <QPoint>
#include <QRect>

#include <algorithm>
#include <cstdint>

namespace tessal {

// A screen position in whole pixels.
struct TPoint
{
    std::int32_t X = 0;
    std::int32_t Y = 0;

    constexpr TPoint() = default;
    constexpr TPoint(std::int32_t x, std::int32_t y)
        : X(x)
        , Y(y)
    {}

    friend constexpr bool operator==(TPoint, TPoint) = default;
    friend constexpr TPoint operator+(TPoint a, TPoint b) { return {a.X + b.X, a.Y + b.Y}; }
    friend constexpr TPoint operator-(TPoint a, TPoint b) { return {a.X - b.X, a.Y - b.Y}; }

    QPoint ToQPoint() const { return {X, Y}; }
    static TPoint FromQPoint(QPoint p) { return {p.x(), p.y()}; }
};

// A screen rectangle. Right and Bottom are exclusive: a point is inside when
// Left <= x < Right and Top <= y < Bottom. Never substitute a QRect, whose right() and
// bottom() are inclusive.
struct TRect
{
    std::int32_t Left = 0;
    std::int32_t Top = 0;
    std::int32_t Right = 0;
    std::int32_t Bottom = 0;

    constexpr TRect() = default;
    constexpr TRect(std::int32_t l, std::int32_t t, std::int32_t r, std::int32_t b)
        : Left(l)
        , Top(t)
        , Right(r)
        , Bottom(b)
    {}
    constexpr TRect(TPoint topLeft, TPoint bottomRight)
        : Left(topLeft.X)
        , Top(topLeft.Y)
        , Right(bottomRight.X)
        , Bottom(bottomRight.Y)
    {}

    friend constexpr bool operator==(const TRect &, const TRect &) = default;

    constexpr std::int32_t Width() const { return Right - Left; }
    constexpr std::int32_t Height() const { return Bottom - Top; }
    constexpr TPoint TopLeft() const { return {Left, Top}; }
    constexpr TPoint BottomRight() const { return {Right, Bottom}; }
    constexpr bool IsEmpty() const { return Right <= Left || Bottom <= Top; }

    constexpr bool Contains(TPoint p) const
    {
        return p.X >= Left && p.X < Right && p.Y >= Top && p.Y < Bottom;
    }

    // Grows every side by n (shrinks for negative n), like the platform's inflate.
    constexpr TRect Inflated(std::int32_t dx, std::int32_t dy) const
    {
        return {Left - dx, Top - dy, Right + dx, Bottom + dy};
    }
    constexpr TRect Translated(std::int32_t dx, std::int32_t dy) const
    {
        return {Left + dx, Top + dy, Right + dx, Bottom + dy};
    }
    constexpr TRect Normalized() const
    {
        return {std::min(Left, Right), std::min(Top, Bottom), std::max(Left, Right),
                std::max(Top, Bottom)};
    }
    // The overlap of two rectangles; empty (all zero) when they do not meet.
    constexpr TRect Intersected(const TRect &o) const
    {
        TRect r{std::max(Left, o.Left), std::max(Top, o.Top), std::min(Right, o.Right),
                std::min(Bottom, o.Bottom)};
        return r.IsEmpty() ? TRect{} : r;
    }
    constexpr bool Intersects(const TRect &o) const { return !Intersected(o).IsEmpty(); }
    // The smallest rectangle holding both; an empty one adds nothing.
    constexpr TRect United(const TRect &o) const
    {
        if (o.IsEmpty())
            return *this;
        if (IsEmpty())
            return o;
        return {std::min(Left, o.Left), std::min(Top, o.Top), std::max(Right, o.Right),
                std::max(Bottom, o.Bottom)};
    }

    // Qt's rectangle covering the same pixels (QRect's right() is Right - 1).
    QRect ToQRect() const { return QRect(Left, Top, Width(), Height()); }
    static TRect FromQRect(const QRect &r)
    {
        return {r.left(), r.top(), r.left() + r.width(), r.top() + r.height()};
    }
};

} // namespace tessal
