// SPDX-License-Identifier: MIT
// TThinStroke: one-pixel aliased chains, walked in fixed point and joined segment to segment.
#include "thinstroke_p.h"

#include "fillpixels_p.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace tessal::canvasdetail {

namespace {

// The change of the minor coordinate per major step in 16.16 fixed point, truncated toward
// zero.
std::int32_t SlopeOf(std::int32_t minor, std::int32_t major)
{
    return std::int32_t(std::int64_t(minor) * 65536 / major);
}

// A segment whose minor coordinate moves less than a quarter pixel a step counts as straight
// for the joining rules.
bool IsAligned(std::int32_t slope)
{
    return std::abs(slope) < (1 << 14);
}

} // namespace

void TThinStroke::Begin(unsigned char *bits, std::ptrdiff_t stride, const QRect &clip,
                        std::uint32_t colour)
{
    m_Bits = bits;
    m_Stride = stride;
    m_Clip = clip;
    m_Colour = colour;
}

// The walk of a segment from its fixed-point ends. The minor coordinate of the first pixel
// is sampled at the pixel's leading edge when it falls and at its middle when it rises, and
// half-pixel ends move the walk's bounds by half a pixel along the major axis.
TThinStroke::Walk TThinStroke::WalkOf(QPoint from, QPoint to, int ends) const
{
    Walk w{};
    w.Vertical = std::abs(to.x() - from.x()) < std::abs(to.y() - from.y());
    std::int32_t m1 = w.Vertical ? from.y() : from.x(), n1 = w.Vertical ? from.x() : from.y();
    std::int32_t m2 = w.Vertical ? to.y() : to.x(), n2 = w.Vertical ? to.x() : to.y();
    w.Reversed = m1 > m2;
    if (m1 == m2)
        return w; // no length, no pixels
    w.Heading = w.Vertical ? (w.Reversed ? Up : Down) : (w.Reversed ? Left : Right);
    if (w.Reversed) {
        std::swap(m1, m2);
        std::swap(n1, n2);
        ends = (ends & StartEnd ? FinalEnd : 0) | (ends & FinalEnd ? StartEnd : 0);
    }
    w.Slope = SlopeOf(n2 - n1, m2 - m1);
    w.Minor = n1 * 1024;
    // Turning straight back along the same axis starts the segment with half a pixel more.
    const int pair = w.Vertical ? VerticalPair : HorizontalPair;
    if ((m_LastHeading ^ pair) == w.Heading)
        ends |= w.Reversed ? FinalEnd : StartEnd;
    if (ends & StartEnd) {
        m1 -= 32;
        w.Minor -= w.Slope >> 1;
    }
    if (ends & FinalEnd)
        m2 += 32;
    w.Major = (m1 + 32) >> 6;
    w.End = (m2 + 32) >> 6;
    // An extended walk does not begin on the pixel just before the one the chain painted last.
    if ((ends & StartEnd) && m_HasLast && InFrame(m_Last, w.Vertical).Along == w.Major + 1)
        ++w.Major;
    if (w.Major != w.End)
        w.Minor += ((w.Major * 64) + (w.Slope > 0 ? 32 : 0) - m1) * w.Slope >> 6;
    return w;
}

// The pixels the walk paints first and last, in the segment's order of travel.
std::pair<TThinStroke::AxisPixel, TThinStroke::AxisPixel> TThinStroke::TravelEnds(const Walk &w)
{
    const AxisPixel start{w.Major, w.Minor >> 16};
    const AxisPixel end{w.End - 1, (w.Minor + (w.End - w.Major - 1) * w.Slope) >> 16};
    return w.Reversed ? std::pair(end, start) : std::pair(start, end);
}

TThinStroke::AxisPixel TThinStroke::InFrame(QPoint pixel, bool vertical) const
{
    return vertical ? AxisPixel{pixel.y(), pixel.x()} : AxisPixel{pixel.x(), pixel.y()};
}

void TThinStroke::EnterClosed(QPoint from, QPoint to)
{
    const Walk w = WalkOf(from, to, NoEnds);
    if (w.Major == w.End)
        return;
    const AxisPixel last = TravelEnds(w).second;
    m_Last = w.Vertical ? QPoint(last.Across, last.Along) : QPoint(last.Along, last.Across);
    m_HasLast = true;
    m_LastHeading = w.Heading;
    m_LastAligned = IsAligned(w.Slope);
}

// How a segment meets the pixel the chain painted last, judged by the segment's first pixel:
// - on that very pixel, the first pixel is left out;
// - after a change of direction, when the two are not neighbours, or meet corner to corner
//   while both segments are nearly straight, a pixel is added before the first;
// - in an unchanged direction, when the first pixel lies more than one step ahead but at most
//   one aside, the walk moves half a step across.
// Adding or leaving out pixels happens at the start of the segment's travel, which is the end
// of the walk for a reversed one.
void TThinStroke::Join(Walk &w, const AxisPixel &first, AxisPixel &last, bool aligned) const
{
    if (!m_HasLast)
        return;
    const AxisPixel before = InFrame(m_Last, w.Vertical);
    const std::int32_t along = std::abs(before.Along - first.Along);
    const std::int32_t across = std::abs(before.Across - first.Across);
    if (along == 0 && across == 0) {
        if (w.Reversed) {
            --w.End;
        } else {
            ++w.Major;
            w.Minor += w.Slope;
        }
    } else if (m_LastHeading != w.Heading &&
               ((aligned && m_LastAligned && along != 0 && across != 0) || along > 1 ||
                across > 1)) {
        if (w.Reversed) {
            ++w.End;
        } else {
            --w.Major;
            w.Minor -= w.Slope;
        }
    } else if (m_LastHeading == w.Heading && along > 1 && across <= 1) {
        w.Minor += w.Slope >> 1;
        last.Across = TravelEnds(w).second.Across;
    }
}

// Paints the walk; it always paints at least its starting pixel, even when the joining has
// left it without length.
void TThinStroke::Paint(const Walk &w)
{
    std::int32_t major = w.Major, minor = w.Minor;
    const auto plot = [this](std::int32_t x, std::int32_t y) {
        if (x >= m_Clip.left() && x <= m_Clip.right() && y >= m_Clip.top() && y <= m_Clip.bottom())
            reinterpret_cast<std::uint32_t *>(m_Bits + m_Stride * y)[x] = m_Colour;
    };
    if (w.Vertical) {
        do {
            plot(minor >> 16, major);
            minor += w.Slope;
        } while (++major < w.End);
        return;
    }
    if (w.Slope == 0 && w.End > major) {
        // A level run: one fill of the row's clipped stretch.
        const std::int32_t y = minor >> 16;
        const std::int32_t left = std::max(major, m_Clip.left());
        const std::int32_t right = std::min(w.End, m_Clip.right() + 1);
        if (y >= m_Clip.top() && y <= m_Clip.bottom() && left < right) {
            auto *row = reinterpret_cast<std::uint32_t *>(m_Bits + m_Stride * y);
            FillPixels(row + left, row + right, m_Colour);
        }
        return;
    }
    do {
        plot(major, minor >> 16);
        minor += w.Slope;
    } while (++major < w.End);
}

bool TThinStroke::Segment(QPoint from, QPoint to, int ends)
{
    Walk w = WalkOf(from, to, ends);
    if (w.Major == w.End)
        return false;
    auto [first, last] = TravelEnds(w);
    const bool aligned = IsAligned(w.Slope);
    Join(w, first, last, aligned);
    m_LastHeading = w.Heading;
    m_LastAligned = aligned;
    Paint(w);
    m_Last = w.Vertical ? QPoint(last.Across, last.Along) : QPoint(last.Along, last.Across);
    m_HasLast = true;
    return true;
}

// A chain whose last point is its first is closed as well, whether or not the figure is: it
// has no ends, and its first segment joins the last one. A segment without pixels of its own
// leaves the next one starting where it started.
void TThinStroke::Chain(std::span<const QPoint> points, bool closed, bool capped)
{
    m_HasLast = false;
    m_LastHeading = NoDirection;
    m_LastAligned = false;
    const std::size_t n = points.size();
    if (n < 2)
        return;
    const bool shut = closed || points[0] == points[n - 1];
    if (shut)
        EnterClosed(points[0] == points[n - 1] && n > 2 ? points[n - 2] : points[n - 1], points[0]);
    int ends = !shut && capped ? StartEnd : NoEnds;
    QPoint at = points[0];
    for (std::size_t i = 1; i < n; ++i) {
        if (!shut && capped && i == n - 1)
            ends |= FinalEnd;
        // A repeated point adds nothing; the outlines of small figures repeat points often.
        if (points[i] != at && Segment(at, points[i], ends))
            at = points[i];
        ends = NoEnds;
    }
    if (closed)
        Segment(at, points[0], NoEnds);
}

} // namespace tessal::canvasdetail
