// SPDX-License-Identifier: MIT
// Crossing counts of a route lattice's steps, summed from each box's ranges of lines and
// steps with a two-dimensional difference table.
#include <tessal/shapes/routecrossings_p.h>

#include <algorithm>

namespace tessal {

namespace {

// Steps run along a line at each position of across, between neighbours of along: the count
// of step k on line l lands at [l * (along.size() - 1) + k]. A box adds one to the steps
// on the lines strictly inside (acrossLo, acrossHi) whose span meets the open span
// (alongLo, alongHi). The comparisons are those of the per-box test, so a box with an edge
// that is not a number covers nothing, as there.
struct TBoxSpan
{
    double AlongLo, AlongHi, AcrossLo, AcrossHi;
};

std::vector<std::int32_t> CountSteps(std::span<const double> along, std::span<const double> across,
                                     std::span<const TBoxSpan> spans)
{
    const std::size_t steps = along.size() < 2 ? 0 : along.size() - 1;
    const std::size_t lines = across.size();
    if (steps == 0 || lines == 0)
        return {};
    // One column and one row more than the counts, for the ends of the ranges.
    const std::size_t width = steps + 1;
    std::vector<std::int32_t> table((lines + 1) * width, 0);
    for (const TBoxSpan &s : spans) {
        const auto l0 = std::size_t(std::upper_bound(across.begin(), across.end(), s.AcrossLo) -
                                    across.begin());
        const auto l1 = std::size_t(std::lower_bound(across.begin(), across.end(), s.AcrossHi) -
                                    across.begin());
        // Step k meets the span when along[k + 1] > lo and along[k] < hi.
        const auto kFirst = std::size_t(
            std::max<std::ptrdiff_t>(
                std::upper_bound(along.begin(), along.end(), s.AlongLo) - along.begin(), 1) -
            1);
        const auto kEnd = std::min(
            std::size_t(std::lower_bound(along.begin(), along.end(), s.AlongHi) - along.begin()),
            steps);
        if (l0 >= l1 || kFirst >= kEnd)
            continue;
        table[l0 * width + kFirst] += 1;
        table[l0 * width + kEnd] -= 1;
        table[l1 * width + kFirst] -= 1;
        table[l1 * width + kEnd] += 1;
    }
    std::vector<std::int32_t> counts(lines * steps);
    std::vector<std::int32_t> above(width, 0);
    for (std::size_t l = 0; l < lines; ++l) {
        std::int32_t run = 0;
        for (std::size_t k = 0; k < steps; ++k) {
            run += table[l * width + k];
            above[k] += run;
            counts[l * steps + k] = above[k];
        }
    }
    return counts;
}

} // namespace

TEdgeCrossings::TEdgeCrossings(std::span<const double> xs, std::span<const double> ys,
                               std::span<const TRouteBox> boxes)
    : m_Nx(xs.size())
    , m_Ny(ys.size())
{
    std::vector<TBoxSpan> spans;
    spans.reserve(boxes.size());
    for (const TRouteBox &b : boxes)
        spans.push_back({b.Left, b.Right, b.Top, b.Bottom});
    m_Level = CountSteps(xs, ys, spans);
    for (TBoxSpan &s : spans)
        s = {s.AcrossLo, s.AcrossHi, s.AlongLo, s.AlongHi};
    m_Upright = CountSteps(ys, xs, spans);
}

} // namespace tessal
