// SPDX-License-Identifier: MIT
// The pixels of a one-pixel aliased outline, as Qt's raster engine draws them.
#pragma once

#include <QPoint>
#include <QRect>

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

namespace tessal::canvasdetail {

// One-pixel solid outlines without antialiasing, painted straight into 32-bit pixels. The
// pixels are exactly those the raster engine paints for the same chain under a one-pixel pen
// (a cosmetic pen, or a pen one unit wide without scaling): the canvas draws its thin
// outlines here when nothing but a shift by whole pixels lies between the points and the
// image, and the result must not depend on which of the two painted them.
//
// Points are in 64ths of a pixel, device coordinates; (0, 0) is the top-left corner of the
// top-left pixel. A segment is walked along its major axis (a tie counts as horizontal), one
// pixel per whole step; the chain carries the last pixel and direction of one segment into
// the next, which decides how the two are joined (see Join).
class TThinStroke
{
public:
    // Where the pixels go: 32-bit pixels with the given stride, only those inside clip.
    void Begin(unsigned char *bits, std::ptrdiff_t stride, const QRect &clip, std::uint32_t colour);
    // Draws the chain. A closed chain returns to its first point (a final point equal to the
    // first adds nothing); an open one with capped ends reaches half a pixel past either end.
    // Every coordinate must lie within 0 .. 64 x 32767.
    void Chain(std::span<const QPoint> points, bool closed, bool capped);

private:
    // Directions of travel of a segment along its major axis, as bits: a reversal along the
    // same axis is the other bit of the pair.
    enum Direction : std::uint8_t {
        NoDirection = 0,
        Down = 1,
        Up = 2,
        Right = 4,
        Left = 8,
        VerticalPair = Down | Up,
        HorizontalPair = Right | Left,
    };
    enum Ends : std::uint8_t { NoEnds = 0, StartEnd = 1, FinalEnd = 2 };

    // A segment before it is joined: walked from Major to End - 1 (exclusive end), with the
    // minor coordinate Minor (16.16 fixed point) moving by Slope a step. Reversed segments run
    // up or left and are walked from their final point back.
    struct Walk
    {
        bool Vertical, Reversed;
        Direction Heading;
        std::int32_t Slope, Major, End, Minor;
    };
    // A pixel in the frame of a walk: along and across its major axis.
    struct AxisPixel
    {
        std::int32_t Along, Across;
    };

    Walk WalkOf(QPoint from, QPoint to, int ends) const;
    static std::pair<AxisPixel, AxisPixel> TravelEnds(const Walk &w);
    AxisPixel InFrame(QPoint pixel, bool vertical) const;
    // Takes over the last pixel and direction the closing segment leaves, as if drawn.
    void EnterClosed(QPoint from, QPoint to);
    // Draws a segment joined to the one before; false when it has no pixel of its own.
    bool Segment(QPoint from, QPoint to, int ends);
    void Join(Walk &w, const AxisPixel &first, AxisPixel &last, bool aligned) const;
    void Paint(const Walk &w);

    unsigned char *m_Bits = nullptr;
    std::ptrdiff_t m_Stride = 0;
    QRect m_Clip;
    std::uint32_t m_Colour = 0;
    // The last pixel painted (or that would have been, outside the clip) and the direction
    // of the segment that painted it.
    bool m_HasLast = false;
    QPoint m_Last;
    Direction m_LastHeading = NoDirection;
    bool m_LastAligned = false;
};

} // namespace tessal::canvasdetail
