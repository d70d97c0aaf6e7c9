// SPDX-License-Identifier: MIT
// How many boxes each step of a route lattice runs through, counted once for all steps.
#pragma once

#include <tessal/shapes/routing.h>

#include <cstdint>
#include <span>
#include <vector>

namespace tessal {

// The lattice's columns xs and rows ys ascend. A step between neighbouring nodes runs
// through a box when it passes through the box's open interior: a level step on a row
// strictly between the box's top and bottom whose span meets the open span from left to
// right, and likewise for an upright step. Each box covers a range of rows and a range of
// steps along them, so the counts of all steps are summed from those ranges; a search then
// looks a step up instead of testing every box at every step.
class TEdgeCrossings
{
public:
    TEdgeCrossings() = default;
    TEdgeCrossings(std::span<const double> xs, std::span<const double> ys,
                   std::span<const TRouteBox> boxes);

    // The step from node (i, j) to (i + 1, j).
    std::int32_t Level(std::size_t i, std::size_t j) const { return m_Level[j * (m_Nx - 1) + i]; }
    // The step from node (i, j) to (i, j + 1).
    std::int32_t Upright(std::size_t i, std::size_t j) const
    {
        return m_Upright[i * (m_Ny - 1) + j];
    }

private:
    std::size_t m_Nx = 0;
    std::size_t m_Ny = 0;
    std::vector<std::int32_t> m_Level;
    std::vector<std::int32_t> m_Upright;
};

} // namespace tessal
