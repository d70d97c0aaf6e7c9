// SPDX-License-Identifier: MIT
// The pixels of a filled polygon with whole-number vertices, worked out exactly.
#pragma once

#include "roundstroke_p.h"

#include <tessal/platform/types.h>

#include <span>
#include <vector>

namespace tessal::canvasdetail {

// A pixel belongs to the polygon when its centre is inside by the alternate (odd crossings)
// or the winding (non-zero) rule. Vertices are whole numbers and centres lie halfway between,
// so no centre is level with a vertex; a centre exactly on an edge belongs when the polygon
// lies to its right. Adjacent polygons sharing an edge therefore share no pixel, and the same
// polygon gives the same pixels wherever it is drawn.
class TPolygonFill
{
public:
    // Collects the pixels inside bounds of the polygon moved by shift. False, with nothing
    // collected, when a coordinate is too large for the exact arithmetic (beyond 2^24).
    bool Fill(std::span<const TPoint> polygon, QPoint shift, bool winding, const QRect &bounds);
    // The collected pixels, row by row from the top and left to right, every pixel once.
    const std::vector<TSpan> &Spans() const { return m_Spans; }
    // The winding number about the centre of one pixel, by the same rule: whether the pixel
    // is filled, for hit tests.
    static std::int32_t WindingAt(std::span<const TPoint> polygon, TPoint pixel);

private:
    struct Crossing
    {
        std::int32_t Y;
        std::int32_t X;         // the first pixel whose centre is at or right of the edge
        std::int32_t Direction; // +1 for an edge running down, -1 up
    };
    void AddEdge(QPoint from, QPoint to, const QRect &bounds);
    void EmitRow(std::span<const Crossing> row, bool winding);
    bool FillTwoCrossingRows(std::int32_t first, std::int32_t last);

    std::vector<Crossing> m_Crossings;
    std::vector<Crossing> m_Sorted;
    std::vector<std::size_t> m_RowEnd;
    std::vector<TSpan> m_Spans;
    std::vector<std::int32_t> m_Pairs; // two crossings a row, while that holds
    std::vector<std::uint8_t> m_PairCount;
};

} // namespace tessal::canvasdetail
