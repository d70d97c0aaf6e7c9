// SPDX-License-Identifier: MIT
// TRoundStroke: rows of a union of round capsules, found approximately and settled exactly.
#include "roundstroke_p.h"

#include "fillpixels_p.h"
#include "rowbuckets_p.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

namespace tessal::canvasdetail {

#ifndef __SIZEOF_INT128__
#error "the stroke rasteriser needs a compiler with 128-bit integers"
#endif
__extension__ typedef __int128 Wide; // exact products of 64-bit coordinates

struct TRoundStroke::Capsule
{
    std::int64_t Ax, Ay, Bx, By, Dx, Dy;
    Wide Length2;   // squared length of the segment
    Wide Reach2;    // the squared width times Length2: four times the squared radius, scaled
    bool Huge;      // coordinates beyond what a double estimate settles to a thousandth
    bool StartDisc; // whether the estimate includes the disc at the start
    // For the estimate: the band's middle moves Slope pixels a row and is HalfBand wide on
    // either side; the stretch between the ends starts at End0 - row * Tilt and is Span long.
    double Slope, HalfBand, Tilt, Span;
};

namespace {

// Whether a centre at (qx, qy) from a disc's middle is covered by a disc of width w.
bool InDisc(std::int64_t qx, std::int64_t qy, std::int64_t w)
{
    const Wide d2 = 4 * (Wide(qx) * qx + Wide(qy) * qy);
    const Wide w2 = Wide(w) * w;
    if (d2 != w2)
        return d2 < w2;
    // On the rim: covered when the middle lies to the right, or straight below.
    return -qx > 0 || (qx == 0 && -qy > 0);
}

} // namespace

void TRoundStroke::Reset(std::int32_t width, const QRect &bounds)
{
    if (std::max(width, 1) != m_Width || m_Rim.empty()) {
        m_Width = std::max(width, 1);
        m_Radius = m_Width / 2.0;
        // Half the chord of a disc of the width at every whole-pixel offset from its middle.
        m_Rim.resize(std::size_t(std::min(m_Width, 1024)) + 1);
        for (std::size_t i = 0; i < m_Rim.size(); ++i) {
            const double off = double(i);
            m_Rim[i] = std::sqrt(std::max(0.0, double(m_Width) * m_Width - 4 * off * off)) / 2;
        }
    }
    m_Bounds = bounds;
    m_Spans.clear();
    m_Merged = true;
    m_Bits = nullptr;
}

void TRoundStroke::PaintDirectly(unsigned char *bits, std::ptrdiff_t stride, std::uint32_t colour)
{
    m_Bits = bits;
    m_Stride = stride;
    m_Colour = colour;
}

TRoundStroke::Capsule TRoundStroke::MakeCapsule(QPoint from, QPoint to, bool withStart) const
{
    Capsule c{};
    c.StartDisc = withStart;
    c.Ax = from.x();
    c.Ay = from.y();
    c.Bx = to.x();
    c.By = to.y();
    c.Dx = c.Bx - c.Ax;
    c.Dy = c.By - c.Ay;
    constexpr std::int64_t Limit = std::int64_t(1) << 24;
    c.Huge = std::max({std::abs(c.Ax), std::abs(c.Ay), std::abs(c.Bx), std::abs(c.By)}) > Limit;
    c.Length2 = Wide(c.Dx) * c.Dx + Wide(c.Dy) * c.Dy;
    c.Reach2 = Wide(m_Width) * m_Width * c.Length2;
    const double dx = double(c.Dx), dy = double(c.Dy), length2 = dx * dx + dy * dy;
    if (c.Dy != 0) {
        const double across = 1 / dy;
        c.Slope = dx * across;
        c.HalfBand = m_Radius * std::sqrt(length2) * std::abs(across);
    }
    if (c.Dx != 0) {
        const double along = 1 / dx;
        c.Tilt = dy * along;
        c.Span = length2 * along;
    }
    return c;
}

namespace {

// Segments no longer than this in either direction, under pens no wider than MaxStampWidth,
// are stamped: the rule depends on the points' differences alone, so the pixels of a
// segment, relative to its start, are the same wherever it lies. They are worked out once
// per width, direction and start disc, and kept for the thread. Outlines of curves and
// ellipses are chains of such segments.
constexpr std::int32_t StampReach = 12;
constexpr std::int32_t StampSide = 2 * StampReach + 1;
constexpr std::int32_t MaxStampWidth = 16;

struct TStampRow
{
    std::int32_t Dy, Left, Right; // pixels Left .. Right of row Dy, from the start
};

struct TStampRef
{
    std::uint32_t Begin = 0, End = 0;
    bool Built = false;
};

struct TStampSet
{
    std::vector<TStampRef> Refs; // by direction and start disc
    std::vector<TStampRow> Rows;
};

TStampSet &StampsOfWidth(std::int32_t width)
{
    thread_local std::array<TStampSet, MaxStampWidth + 1> sets;
    TStampSet &set = sets[std::size_t(width)];
    if (set.Refs.empty())
        set.Refs.resize(std::size_t(StampSide * StampSide * 2));
    return set;
}

} // namespace

void TRoundStroke::AddSegment(QPoint from, QPoint to, bool withStart)
{
    const QPoint d = to - from;
    if (m_Width <= MaxStampWidth && std::abs(d.x()) <= StampReach &&
        std::abs(d.y()) <= StampReach) {
        AddStamp(from, to, withStart);
        return;
    }
    const Capsule c = MakeCapsule(from, to, withStart);
    const double reach = m_Radius + 1e-6;
    if (std::max(c.Ax, c.Bx) + reach < m_Bounds.left() ||
        std::min(c.Ax, c.Bx) - reach > m_Bounds.right())
        return;
    // Rows within half the width: the row at exactly half the width above the highest point is
    // touched (a rim centre straight above a middle is covered), the one below the lowest not.
    const std::int64_t top =
        std::max<std::int64_t>(std::min(c.Ay, c.By) - m_Width / 2, m_Bounds.top());
    const std::int64_t bottom =
        std::min<std::int64_t>(std::max(c.Ay, c.By) + (m_Width - 1) / 2, m_Bounds.bottom());
    if (c.Dx != 0 && c.Dy != 0 && !c.Huge) {
        AddSlantedRows(c, top, bottom);
        return;
    }
    if (c.Dx == 0) {
        // Straight down or up: every row from end to end is covered alike, by the band (the
        // discs at the ends reach no further across than the band does).
        const std::int64_t first = std::max(top, std::min(c.Ay, c.By));
        const std::int64_t last = std::min(bottom, std::max(c.Ay, c.By));
        std::int64_t left = 0, right = 0;
        if (first <= last && CoveredRow(c, std::int32_t(c.Ay), left, right)) {
            for (std::int64_t y = top; y < first; ++y)
                AddRow(c, std::int32_t(y));
            for (std::int64_t y = first; y <= last; ++y)
                Emit(y, left, right);
            for (std::int64_t y = last + 1; y <= bottom; ++y)
                AddRow(c, std::int32_t(y));
            return;
        }
    }
    for (std::int64_t y = top; y <= bottom; ++y)
        AddRow(c, std::int32_t(y));
}

void TRoundStroke::AddStamp(QPoint from, QPoint to, bool withStart)
{
    TStampSet &set = StampsOfWidth(m_Width);
    const QPoint d = to - from;
    TStampRef &ref = set.Refs[std::size_t(
        ((d.y() + StampReach) * StampSide + d.x() + StampReach) * 2 + (withStart ? 1 : 0))];
    if (!ref.Built) {
        const Capsule c = MakeCapsule({0, 0}, d, withStart);
        ref.Begin = std::uint32_t(set.Rows.size());
        const std::int32_t top = std::min(0, d.y()) - m_Width / 2;
        const std::int32_t bottom = std::max(0, d.y()) + (m_Width - 1) / 2;
        for (std::int32_t y = top; y <= bottom; ++y)
            if (std::int64_t left = 0, right = 0; CoveredRow(c, y, left, right))
                set.Rows.push_back({y, std::int32_t(left), std::int32_t(right)});
        ref.End = std::uint32_t(set.Rows.size());
        ref.Built = true;
    }
    for (std::uint32_t i = ref.Begin; i < ref.End; ++i) {
        const TStampRow &row = set.Rows[i];
        Emit(std::int64_t(from.y()) + row.Dy, std::int64_t(from.x()) + row.Left,
             std::int64_t(from.x()) + row.Right);
    }
}

namespace {

// Whether the centre (x, y) is covered by the capsule of a segment, by the rule of the class.
template <typename C>
bool Covered(const C &c, std::int64_t x, std::int64_t y, std::int64_t w)
{
    const std::int64_t qx = x - c.Ax, qy = y - c.Ay;
    const Wide along = Wide(qx) * c.Dx + Wide(qy) * c.Dy;
    if (along <= 0)
        return InDisc(qx, qy, w);
    if (along >= c.Length2)
        return InDisc(x - c.Bx, y - c.By, w);
    // Beside the segment: the cross product is the distance times the length.
    const Wide cross = Wide(c.Dx) * qy - Wide(c.Dy) * qx;
    constexpr Wide Far = Wide(1) << 62;
    if (cross > Far || cross < -Far)
        return false;
    const Wide d2 = 4 * cross * cross;
    if (d2 != c.Reach2)
        return d2 < c.Reach2;
    // On the rim: the nearest point lies in direction cross * (Dy, -Dx).
    const Wide gx = cross * c.Dy, gy = -cross * c.Dx;
    return gx > 0 || (gx == 0 && gy > 0);
}

// Widens [lo, hi] by the part of row y that a disc of width w about (cx, cy) covers, rim[i]
// being half the chord i rows from the middle. A row at exactly half the width touches the
// disc in one point, covered only above the middle.
void Widen(std::int64_t cx, std::int64_t cy, std::int64_t w, std::int64_t y,
           const std::vector<double> &rim, double &lo, double &hi)
{
    const std::int64_t off = 2 * (y - cy);
    if (std::abs(off) > w || off == w)
        return;
    const auto rows = std::size_t(std::abs(y - cy));
    const double h = rows < rim.size() ? rim[rows] : std::sqrt(double(w * w - off * off)) / 2;
    lo = std::min(lo, double(cx) - h);
    hi = std::max(hi, double(cx) + h);
}

// The whole part of v, for |v| < 2^30, by truncating a positive sum (a library floor is far
// slower without rounding instructions). The sum may round up a value within 2^-22 below a
// whole number; the callers settle values that near a whole number exactly.
std::int64_t FloorOf(double v)
{
    constexpr double Offset = 1073741824.0; // 2^30
    return std::int64_t(v + Offset) - std::int64_t(Offset);
}

} // namespace

// The capsule's covered part of row y: a floating-point estimate of the interval whose ends
// are settled by the exact test wherever they come near a pixel centre. Inside the interval
// every centre is covered: the rows where a whole stretch lies on the rim, tangent to a disc
// or along a horizontal band's edge, are decided exactly before estimating.
bool TRoundStroke::CoveredRow(const Capsule &c, std::int32_t y, std::int64_t &left,
                              std::int64_t &right) const
{
    double lo = HUGE_VAL, hi = -HUGE_VAL;
    if (c.StartDisc)
        Widen(c.Ax, c.Ay, m_Width, y, m_Rim, lo, hi);
    Widen(c.Bx, c.By, m_Width, y, m_Rim, lo, hi);
    const double qy = y - double(c.Ay);
    if (c.Dy != 0) {
        // The band beside the segment, limited to the stretch between its ends.
        const double middle = double(c.Ax) + c.Slope * qy;
        double a = middle - c.HalfBand, b = middle + c.HalfBand;
        if (c.Dx != 0) {
            const double s = double(c.Ax) - qy * c.Tilt, e = s + c.Span;
            a = std::max(a, std::min(s, e));
            b = std::min(b, std::max(s, e));
        } else if (qy < std::min<double>(0, c.Dy) || qy > std::max<double>(0, c.Dy)) {
            a = HUGE_VAL; // a vertical segment is beside this row only between its ends
        }
        if (a <= b) {
            lo = std::min(lo, a);
            hi = std::max(hi, b);
        }
    } else if (const std::int64_t off = 2 * (y - c.Ay);
               std::abs(off) < m_Width || off == -m_Width) {
        // A horizontal segment's band: a row at exactly half the width is covered above the
        // segment and not below, all along (the only place where a whole row is on the rim).
        lo = std::min(lo, double(std::min(c.Ax, c.Bx)));
        hi = std::max(hi, double(std::max(c.Ax, c.Bx)));
    }
    if (lo > hi)
        return false;
    const auto covered = [&](std::int64_t x) { return Covered(c, x, y, m_Width); };
    if (c.Huge) {
        // Far-off coordinates leave the estimate too coarse to trust: walk to the ends.
        left = std::int64_t(std::ceil(lo - 1));
        right = std::int64_t(std::floor(hi + 1));
        while (left <= right && !covered(left))
            ++left;
        while (right >= left && !covered(right))
            --right;
    } else {
        // The estimate is off by far less than Near; an end that close to a centre is settled
        // by the exact test, any other is where the estimate puts it.
        constexpr double Near = 1e-3;
        const std::int64_t nl = FloorOf(lo + 0.5), nr = FloorOf(hi + 0.5);
        left = std::abs(lo - double(nl)) < Near ? nl + (covered(nl) ? 0 : 1) : FloorOf(lo) + 1;
        right = std::abs(hi - double(nr)) < Near ? nr - (covered(nr) ? 0 : 1) : FloorOf(hi);
    }
    return left <= right;
}

namespace {

// floor(n / d) for d > 0.
std::int64_t FloorDiv(std::int64_t n, std::int64_t d)
{
    const std::int64_t q = n / d;
    return q - (n % d < 0 ? 1 : 0);
}

// The whole parts of (n + k * step) / d, d > 0, for k = 0, 1, 2 ... in turn, without a
// division for each.
class TQuotientSteps
{
public:
    TQuotientSteps(std::int64_t n, std::int64_t step, std::int64_t d)
        : m_Divisor(d)
        , m_Quotient(FloorDiv(n, d))
        , m_Remainder(n - m_Quotient * d)
        , m_StepQuotient(FloorDiv(step, d))
        , m_StepRemainder(step - m_StepQuotient * d)
    {}

    std::int64_t Floor() const { return m_Quotient; }
    std::int64_t Ceil() const { return m_Quotient + (m_Remainder != 0 ? 1 : 0); }
    void Next()
    {
        m_Quotient += m_StepQuotient;
        m_Remainder += m_StepRemainder;
        if (m_Remainder >= m_Divisor) {
            m_Remainder -= m_Divisor;
            ++m_Quotient;
        }
    }

private:
    std::int64_t m_Divisor, m_Quotient, m_Remainder, m_StepQuotient, m_StepRemainder;
};

// The band of a segment holds the centres whose cross product with it lies within
// Low .. High: those closer than half the width, and those exactly at half the width on the
// covered side (the nearest point of the segment to the right, for a segment that is not
// level: the side where the cross product has the sign of the segment's Dy).
struct TBandLimits
{
    std::int64_t Low, High;
};

TBandLimits BandLimits(Wide reach2, std::int64_t dy)
{
    // The largest inside value c has 4 c^2 < reach2, that is c^2 <= (reach2 - 1) / 4.
    const Wide limit = (reach2 - 1) / 4;
    auto c = std::int64_t(std::sqrt(double(limit)));
    while (Wide(c) * c > limit)
        --c;
    while (Wide(c + 1) * (c + 1) <= limit)
        ++c;
    const bool rimOnCentres = 4 * Wide(c + 1) * (c + 1) == reach2;
    return {-c - (rimOnCentres && dy < 0 ? 1 : 0), c + (rimOnCentres && dy > 0 ? 1 : 0)};
}

} // namespace

// A slanted segment's rows away from its ends are covered by the band alone, wherever the
// band's stretch of the row lies between the ends: the discs reach no row further than half
// the width from their middles. Those rows are found by stepping the band's edges from row to
// row; the rest go to CoveredRow.
void TRoundStroke::AddSlantedRows(const Capsule &c, std::int64_t top, std::int64_t bottom)
{
    const TBandLimits band = BandLimits(c.Reach2, c.Dy);
    // The cross product Dx qy - Dy qx within Low .. High puts qx = x - Ax between
    // ceil(P / |Dy|) and floor(Q / |Dy|), P and Q moving by sign(Dy) Dx a row.
    const std::int64_t sign = c.Dy > 0 ? 1 : -1, divisor = std::abs(c.Dy);
    const std::int64_t step = sign * c.Dx, at = step * (top - c.Ay);
    TQuotientSteps left(at - (sign > 0 ? band.High : -band.Low), step, divisor);
    TQuotientSteps right(at - (sign > 0 ? band.Low : -band.High), step, divisor);
    // Whether the centre (x, y) lies strictly between the ends, along the segment.
    const auto between = [&c](std::int64_t x, std::int64_t y) {
        const Wide along = Wide(x - c.Ax) * c.Dx + Wide(y - c.Ay) * c.Dy;
        return along > 0 && along < c.Length2;
    };
    const std::int64_t nearEnd = m_Width / 2 + 1;
    for (std::int64_t y = top; y <= bottom; ++y, left.Next(), right.Next()) {
        const std::int64_t l = c.Ax + left.Ceil(), r = c.Ax + right.Floor();
        if (std::abs(y - c.Ay) <= nearEnd || std::abs(y - c.By) <= nearEnd || l > r ||
            !between(l, y) || !between(r, y))
            AddRow(c, std::int32_t(y));
        else
            Emit(y, l, r);
    }
}

void TRoundStroke::AddRow(const Capsule &c, std::int32_t y)
{
    if (std::int64_t left = 0, right = 0; CoveredRow(c, y, left, right))
        Emit(y, left, right);
}

void TRoundStroke::Emit(std::int64_t y, std::int64_t left, std::int64_t right)
{
    if (y < m_Bounds.top() || y > m_Bounds.bottom())
        return;
    const std::int64_t from = std::max<std::int64_t>(left, m_Bounds.left());
    const std::int64_t to = std::min<std::int64_t>(right, m_Bounds.right());
    if (from > to)
        return;
    if (m_Bits) {
        auto *row = reinterpret_cast<std::uint32_t *>(m_Bits + m_Stride * y);
        FillPixels(row + from, row + to + 1, m_Colour);
        return;
    }
    m_Spans.push_back({std::int32_t(y), std::int32_t(from), std::int32_t(to + 1)});
    m_Merged = false;
}

// Row by row from left to right, overlapping or touching spans joined.
const std::vector<TSpan> &TRoundStroke::Spans()
{
    if (m_Merged)
        return m_Spans;
    m_Merging.swap(m_Spans);
    m_Spans.clear();
    ForEachRow(
        m_Merging, m_Sorted, m_RowEnd, [](const TSpan &s) { return s.Left; },
        [this](std::span<const TSpan> row) {
            m_Spans.push_back(row.front());
            for (const TSpan &s : row.subspan(1)) {
                if (s.Left <= m_Spans.back().Right)
                    m_Spans.back().Right = std::max(m_Spans.back().Right, s.Right);
                else
                    m_Spans.push_back(s);
            }
        });
    m_Merged = true;
    return m_Spans;
}

} // namespace tessal::canvasdetail
