// SPDX-License-Identifier: MIT
// The pixels of a wide solid stroke with round joins and ends, worked out exactly.
#pragma once

#include <QPoint>
#include <QRect>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tessal::canvasdetail {

// Pixels Left .. Right - 1 of row Y.
struct TSpan
{
    std::int32_t Y;
    std::int32_t Left;
    std::int32_t Right;
};

// A stroke of a given width along segments whose end points lie on pixel centres: point
// (x, y) is the centre of pixel (x, y). A pixel belongs to the stroke when its centre lies
// closer than half the width to one of the segments. A centre at exactly half the width
// belongs when the nearest point of the segment lies to its right, or straight below it: a
// horizontal line of width w covers w rows (the upper ones when w is even), a vertical one w
// columns (the left ones), and two strokes that meet edge to edge share no pixel.
//
// The rule is evaluated in integer arithmetic, so the picture depends on nothing but the
// points: the same stroke gives the same pixels wherever it is drawn from, in whole or in
// parts. Round joins and ends need no work of their own: the union of the segments' round
// capsules is the stroke.
class TRoundStroke
{
public:
    // Starts collecting the pixels inside bounds of a stroke of the given width (>= 1).
    void Reset(std::int32_t width, const QRect &bounds);

    // Paints every row into the pixels (32 bits each) as soon as it is known, instead of
    // collecting it, until the next Reset.
    void PaintDirectly(unsigned char *bits, std::ptrdiff_t stride, std::uint32_t colour);

    // Adds a segment's capsule. In a chain, the disc at a segment's start is the previous
    // segment's end disc: withStart false leaves it to that one (the pixels the segment adds
    // are then those of its band and end disc, found with less work).
    void AddSegment(QPoint from, QPoint to, bool withStart = true);
    // The collected pixels, row by row from the top and left to right, every pixel once.
    const std::vector<TSpan> &Spans();

private:
    struct Capsule;
    Capsule MakeCapsule(QPoint from, QPoint to, bool withStart) const;
    // The covered pixels left .. right of row y, false when there are none; not clipped.
    bool CoveredRow(const Capsule &c, std::int32_t y, std::int64_t &left,
                    std::int64_t &right) const;
    void AddRow(const Capsule &c, std::int32_t y);
    void AddSlantedRows(const Capsule &c, std::int64_t top, std::int64_t bottom);
    // Adds pixels left .. right of row y, clipped to the bounds.
    void Emit(std::int64_t y, std::int64_t left, std::int64_t right);
    // A short segment's pixels, stamped from the set worked out for its direction.
    void AddStamp(QPoint from, QPoint to, bool withStart);

    std::int32_t m_Width = 1;
    double m_Radius = 0.5;
    std::vector<double> m_Rim; // half chords of the width's disc, by rows from its middle
    QRect m_Bounds;
    std::vector<TSpan> m_Spans;
    std::vector<TSpan> m_Merging;      // the spans found, while merging
    std::vector<TSpan> m_Sorted;       // the same in row order
    std::vector<std::size_t> m_RowEnd; // where each row's spans end in m_Sorted
    bool m_Merged = true;
    unsigned char *m_Bits = nullptr; // painting directly when set
    std::ptrdiff_t m_Stride = 0;
    std::uint32_t m_Colour = 0;
};

} // namespace tessal::canvasdetail
