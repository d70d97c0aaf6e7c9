// SPDX-License-Identifier: MIT
// TPolygonFill: the crossings of every row's pixel centres with the edges, in integers.
#include "polygonfill_p.h"

#include "rowbuckets_p.h"

#include <algorithm>
#include <cstdlib>

namespace tessal::canvasdetail {

namespace {

constexpr std::int64_t Limit = std::int64_t(1) << 24;

// Rounds num / den (den > 0) up.
std::int64_t CeilDiv(std::int64_t num, std::int64_t den)
{
    const std::int64_t q = num / den;
    return q + ((num % den) > 0 ? 1 : 0);
}

} // namespace

namespace {

// The first pixel of row y whose centre is at or right of the edge from a to b, which spans
// the row's centre line with a above b.
std::int64_t FirstRightOf(QPoint a, QPoint b, std::int64_t y)
{
    // Twice the crossing is n / d; centre 2x + 1 is at or right of it when x >= (n - d) / 2d.
    const std::int64_t d = b.y() - a.y(), dx = b.x() - a.x();
    const std::int64_t n = 2 * std::int64_t(a.x()) * d + (2 * y + 1 - 2 * a.y()) * dx;
    return CeilDiv(n - d, 2 * d);
}

} // namespace

std::int32_t TPolygonFill::WindingAt(std::span<const TPoint> polygon, TPoint pixel)
{
    std::int32_t winding = 0;
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        QPoint a(polygon[i].X, polygon[i].Y);
        const TPoint &next = polygon[(i + 1) % polygon.size()];
        QPoint b(next.X, next.Y);
        const std::int32_t direction = b.y() > a.y() ? 1 : -1;
        if (direction < 0)
            std::swap(a, b);
        if (pixel.Y < a.y() || pixel.Y >= b.y())
            continue; // also every level edge
        if (std::abs(a.x()) > Limit || std::abs(b.x()) > Limit || std::abs(a.y()) > Limit ||
            std::abs(b.y()) > Limit)
            continue;
        if (FirstRightOf(a, b, pixel.Y) <= pixel.X)
            winding += direction;
    }
    return winding;
}

bool TPolygonFill::Fill(std::span<const TPoint> polygon, QPoint shift, bool winding,
                        const QRect &bounds)
{
    m_Crossings.clear();
    m_Spans.clear();
    for (const TPoint &p : polygon)
        if (std::abs(std::int64_t(p.X) + shift.x()) > Limit ||
            std::abs(std::int64_t(p.Y) + shift.y()) > Limit)
            return false;
    if (polygon.size() < 3 || bounds.isEmpty())
        return true;
    const auto at = [&](std::size_t i) { return QPoint(polygon[i].X, polygon[i].Y) + shift; };
    for (std::size_t i = 0; i < polygon.size(); ++i)
        AddEdge(at(i), at((i + 1) % polygon.size()), bounds);
    if (m_Crossings.empty())
        return true;
    const auto [top, bottom] =
        std::minmax_element(m_Crossings.begin(), m_Crossings.end(),
                            [](const Crossing &a, const Crossing &b) { return a.Y < b.Y; });
    const std::int32_t first = top->Y;
    if (FillTwoCrossingRows(first, bottom->Y))
        return true;
    ForEachRow(
        m_Crossings, m_Sorted, m_RowEnd, [](const Crossing &c) { return c.X; },
        [&](std::span<const Crossing> row) { EmitRow(row, winding); });
    return true;
}

// Most figures (rectangles, ellipses, any convex polygon) cross every row twice: then the
// row's span runs between its two crossings, inside by either rule, with no sorting.
bool TPolygonFill::FillTwoCrossingRows(std::int32_t first, std::int32_t last)
{
    const auto rows = std::size_t(last - first) + 1;
    m_Pairs.assign(rows * 2, 0);
    m_PairCount.assign(rows, 0);
    for (const Crossing &c : m_Crossings) {
        const auto row = std::size_t(c.Y - first);
        if (m_PairCount[row] == 2)
            return false;
        m_Pairs[row * 2 + m_PairCount[row]++] = c.X;
    }
    for (std::size_t row = 0; row < rows; ++row) {
        if (m_PairCount[row] == 1)
            return false; // cannot happen for a closed figure; the general way copes anyway
        const std::int32_t a = m_Pairs[row * 2], b = m_Pairs[row * 2 + 1];
        if (m_PairCount[row] == 2 && a != b)
            m_Spans.push_back({first + std::int32_t(row), std::min(a, b), std::max(a, b)});
    }
    return true;
}

// The rows whose centres an edge spans, each with the first pixel right of the edge there.
void TPolygonFill::AddEdge(QPoint from, QPoint to, const QRect &bounds)
{
    if (from.y() == to.y())
        return;
    const std::int32_t direction = to.y() > from.y() ? 1 : -1;
    if (direction < 0)
        std::swap(from, to);
    const std::int32_t top = std::max(from.y(), bounds.top());
    const std::int32_t bottom = std::min(to.y() - 1, bounds.bottom());
    for (std::int32_t y = top; y <= bottom; ++y) {
        const std::int64_t x = FirstRightOf(from, to, y);
        m_Crossings.push_back({y,
                               std::int32_t(std::clamp<std::int64_t>(x, std::int64_t(bounds.left()),
                                                                     bounds.right() + 1)),
                               direction});
    }
}

void TPolygonFill::EmitRow(std::span<const Crossing> row, bool winding)
{
    std::int32_t count = 0;
    for (std::size_t i = 0; i + 1 < row.size(); ++i) {
        count += row[i].Direction;
        const bool inside = winding ? count != 0 : (count & 1) != 0;
        const std::int32_t left = row[i].X, right = row[i + 1].X;
        if (!inside || left >= right)
            continue;
        if (!m_Spans.empty() && m_Spans.back().Y == row[i].Y && m_Spans.back().Right == left)
            m_Spans.back().Right = right;
        else
            m_Spans.push_back({row[i].Y, left, right});
    }
}

} // namespace tessal::canvasdetail
