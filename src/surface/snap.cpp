// SPDX-License-Identifier: MIT
// Snapping of control pixels to the grid and to the box edges of other shapes. Every
// rounding here takes halves to the even neighbour.
#include <tessal/surface/cad.h>
#include <tessal/surface/spatialindex_p.h>

#include <tessal/shapes/shape.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace tessal {

namespace {

// "No correction" in the search for the smallest one.
constexpr std::int32_t NoCorrection = 10000;

std::int32_t RoundEven(double v)
{
    return std::int32_t(std::nearbyint(v));
}

// One axis against grid lines every g pixels; true when v moved onto a line.
bool SnapToGrid(std::int32_t &v, double g, std::int32_t reach)
{
    if (g <= 0)
        return false;
    const double k = std::nearbyint(v / g);
    const double r = v - k * g;
    if (reach > std::abs(r)) {
        v = RoundEven(k * g);
        return true;
    }
    // Just below the next line up.
    if (r > g - reach) {
        v = RoundEven((k + 1) * g);
        return true;
    }
    return false;
}

// The smaller of two candidate corrections by size, zero meaning none.
std::int32_t Smallest(std::int32_t a, std::int32_t b)
{
    std::int32_t best = NoCorrection;
    for (const std::int32_t c : {a, b})
        if (c != 0 && std::abs(c) < std::abs(best))
            best = c;
    return best;
}

} // namespace

void TMyCAD::SetSnapPixels(std::uint8_t value)
{
    // The capture distance must stay below the grid spacing in both directions.
    if (value < m_Grid->GridWidth() && value < m_Grid->GridHeight())
        Store(m_SnapPixels, value);
}

bool TMyCAD::SnapXY(std::int32_t &x, std::int32_t &y)
{
    const std::int32_t reach = m_SnapPixels;
    if (m_Snap) {
        const bool snappedX = SnapToGrid(x, m_Grid->GridWidth(), reach);
        const bool snappedY = SnapToGrid(y, m_Grid->GridHeight(), reach);
        if (snappedX || snappedY)
            return true;
    }
    if (!m_SnapShape)
        return false;
    // Only shapes with an edge within reach of x or of y can capture: the index answers
    // those that meet a column and a row through the point, and they are visited in list
    // order, a later one overwriting an earlier one's candidate for the same edge.
    EnsureIndex();
    const double z = m_Zoom;
    constexpr float far = std::numeric_limits<float>::max();
    std::vector<std::int32_t> numbers;
    m_Index->Query({float((x - reach) / z), -far, float((x + reach) / z), far}, numbers);
    m_Index->Query({-far, float((y - reach) / z), far, float((y + reach) / z)}, numbers);
    std::sort(numbers.begin(), numbers.end());
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    std::int32_t left = 0, right = 0, top = 0, bottom = 0;
    bool reached = false;
    for (const std::int32_t no : numbers) {
        const TMyShape *shape = m_Shapes[std::size_t(no)].get();
        if (shape->HasParentShape() || shape == m_CurrentShape)
            continue;
        const TMyPoint lt = shape->GetLeftTop(), rb = shape->GetRightBottom();
        const double l = lt.X * z, t = lt.Y * z, r = rb.X * z, b = rb.Y * z;
        const auto near = [reach](double v, double e) { return e - reach < v && v < e + reach; };
        const bool inRows = 0.8 * t < y && y < 1.2 * b;
        const bool inColumns = 0.8 * l < x && x < 1.2 * r;
        for (const auto &[edge, candidate] : {std::pair{l, &left}, std::pair{r, &right}})
            if (near(x, edge) && inRows) {
                *candidate = RoundEven(x - edge);
                reached = true;
            }
        for (const auto &[edge, candidate] : {std::pair{t, &top}, std::pair{b, &bottom}})
            if (near(y, edge) && inColumns) {
                *candidate = RoundEven(y - edge);
                reached = true;
            }
    }
    if (const std::int32_t dx = Smallest(left, right); dx != NoCorrection)
        x -= dx;
    if (const std::int32_t dy = Smallest(top, bottom); dy != NoCorrection)
        y -= dy;
    return reached;
}

void TMyCAD::SnapRect(const TRect &rect, std::int32_t &x, std::int32_t &y)
{
    std::int32_t bestX = NoCorrection, bestY = NoCorrection;
    const TPoint corners[4] = {{rect.Left, rect.Top},
                               {rect.Right, rect.Top},
                               {rect.Left, rect.Bottom},
                               {rect.Right, rect.Bottom}};
    for (const TPoint corner : corners) {
        std::int32_t cx = corner.X, cy = corner.Y;
        if (!SnapXY(cx, cy))
            continue;
        const std::int32_t dx = corner.X - cx, dy = corner.Y - cy;
        if (dx != 0 && std::abs(dx) < std::abs(bestX))
            bestX = dx;
        if (dy != 0 && std::abs(dy) < std::abs(bestY))
            bestY = dy;
    }
    if (bestX != NoCorrection)
        x -= bestX;
    if (bestY != NoCorrection)
        y -= bestY;
}

} // namespace tessal
