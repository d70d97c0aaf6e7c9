// SPDX-License-Identifier: MIT
// The press index: a uniform grid of shape numbers in drawing order, and the shapes aside.
#include <tessal/surface/boxtree_p.h>
#include <tessal/surface/pressgrid_p.h>

#include <algorithm>
#include <cmath>

namespace tessal {

struct TPressGrid::TAside
{
    boxtree::TTree Tree;
};

namespace {

bool Finite(const TMyRect &b)
{
    return std::isfinite(b.Left) && std::isfinite(b.Top) && std::isfinite(b.Right) &&
           std::isfinite(b.Bottom);
}

} // namespace

TPressGrid::TPressGrid(const std::vector<TMyRect> &boxes, const std::vector<bool> &indexed,
                       const std::vector<bool> &connectors)
    : m_Places(boxes.size(), TPlace::None)
    , m_Aside(std::make_unique<TAside>())
{
    std::vector<float> sizes;
    TMyRect bounds;
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        if (!indexed[i])
            continue;
        const TMyRect &b = boxes[i];
        if (!Finite(b)) {
            EnterAside(std::int32_t(i), b, connectors[i]);
            continue;
        }
        bounds = sizes.empty()
                     ? b
                     : TMyRect{std::min(bounds.Left, b.Left), std::min(bounds.Top, b.Top),
                               std::max(bounds.Right, b.Right), std::max(bounds.Bottom, b.Bottom)};
        sizes.push_back(std::max(b.Right - b.Left, b.Bottom - b.Top));
        m_Places[i] = TPlace::Grid; // until Fill says otherwise
    }
    if (!sizes.empty())
        ChooseCells(std::move(sizes), bounds);
    Fill(boxes, connectors);
}

TPressGrid::~TPressGrid() = default;

// A cell of one and a half times the typical shape holds the shapes that reach it at about
// a tenth of its area each, so a press reads few shapes that miss it, and a shape lands in
// under three cells on average. A sparse drawing gets larger cells, so that there are never
// many more cells than shapes. A drawing whose extent is not finite gets no grid at all.
void TPressGrid::ChooseCells(std::vector<float> sizes, const TMyRect &bounds)
{
    const std::size_t count = sizes.size();
    std::nth_element(sizes.begin(), sizes.begin() + std::ptrdiff_t(count / 2), sizes.end());
    const double width = double(bounds.Right) - bounds.Left;
    const double height = double(bounds.Bottom) - bounds.Top;
    const double maxCells = 4.0 * double(count) + 64;
    double cell = std::max(1.5 * sizes[count / 2], std::sqrt(width * height / maxCells));
    if (!std::isfinite(width * height) || !(cell > 0) || !std::isfinite(cell))
        return;
    const auto cells = [&](double side) {
        return (std::floor(width / side) + 1) * (std::floor(height / side) + 1);
    };
    while (cells(cell) > maxCells)
        cell *= 1.25;
    m_Left = bounds.Left;
    m_Top = bounds.Top;
    m_Right = bounds.Right;
    m_Bottom = bounds.Bottom;
    m_Cell = float(cell);
    m_Scale = float(256.0 / cell);
    m_Columns = std::int32_t(std::floor(width / cell)) + 1;
    m_Rows = std::int32_t(std::floor(height / cell)) + 1;
}

// Float subtraction and division are monotone, and so is the clamp: a point inside a box
// falls in a cell of the box's span, whatever the rounding. A value that is not a number
// lands in the first cell.
std::int32_t TPressGrid::Column(float x) const
{
    const float c = std::floor((x - m_Left) / m_Cell);
    return !(c >= 0) ? 0 : c >= float(m_Columns) ? m_Columns - 1 : std::int32_t(c);
}

std::int32_t TPressGrid::Row(float y) const
{
    const float r = std::floor((y - m_Top) / m_Cell);
    return !(r >= 0) ? 0 : r >= float(m_Rows) ? m_Rows - 1 : std::int32_t(r);
}

// Subtraction and multiplication by a positive number are monotone, and so are the
// rounding and the clamp: a point inside a box is inside the box's rounded-out 256ths of
// every cell both meet.
TMyRect TPressGrid::Scaled(const TMyRect &box) const
{
    return {(box.Left - m_Left) * m_Scale, (box.Top - m_Top) * m_Scale,
            (box.Right - m_Left) * m_Scale, (box.Bottom - m_Top) * m_Scale};
}

namespace {

// Rounded down (or up), then clamped to the cell; what is not a number goes to 0.
std::uint8_t InCell(float scaled, std::int32_t cell, bool up)
{
    const float at = scaled - float(cell) * 256.0f;
    if (!(at > 0))
        return 0;
    if (at >= 255)
        return 255;
    const auto whole = std::uint8_t(at);
    return up && float(whole) < at ? std::uint8_t(whole + 1) : whole;
}

} // namespace

TPressGrid::TItem TPressGrid::ItemIn(const TMyRect &scaled, std::int32_t column, std::int32_t row,
                                     std::uint32_t key)
{
    return {InCell(scaled.Left, column, false), InCell(scaled.Top, row, false),
            InCell(scaled.Right, column, true), InCell(scaled.Bottom, row, true), key};
}

TPressGrid::TSpan TPressGrid::SpanOf(const TMyRect &box) const
{
    return {Column(box.Left), Column(box.Right), Row(box.Top), Row(box.Bottom)};
}

bool TPressGrid::Fits(const TSpan &span) const
{
    return m_Columns > 0 && span.Column1 - span.Column0 < MaxSpan &&
           span.Row1 - span.Row0 < MaxSpan;
}

// Two passes over the shapes: count what each cell holds, then place the shapes in
// ascending number, which leaves every cell in drawing order.
void TPressGrid::Fill(const std::vector<TMyRect> &boxes, const std::vector<bool> &connectors)
{
    const std::size_t cellCount = std::size_t(m_Columns) * std::size_t(m_Rows);
    m_Starts.assign(cellCount + 1, 0);
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        if (m_Places[i] != TPlace::Grid)
            continue;
        const TSpan s = SpanOf(boxes[i]);
        if (!Fits(s)) {
            m_Places[i] = TPlace::None;
            EnterAside(std::int32_t(i), boxes[i], connectors[i]);
            continue;
        }
        ++m_GridCount;
        m_Connectors += connectors[i] ? 1 : 0;
        for (std::int32_t r = s.Row0; r <= s.Row1; ++r)
            for (std::int32_t c = s.Column0; c <= s.Column1; ++c)
                ++m_Starts[std::size_t(r) * std::size_t(m_Columns) + std::size_t(c) + 1];
    }
    for (std::size_t c = 0; c < cellCount; ++c)
        m_Starts[c + 1] += m_Starts[c];
    m_Items.resize(cellCount ? m_Starts[cellCount] : 0);
    std::vector<std::uint32_t> next(m_Starts.begin(), m_Starts.end() - 1);
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        if (m_Places[i] != TPlace::Grid)
            continue;
        const TSpan s = SpanOf(boxes[i]);
        const std::uint32_t key = std::uint32_t(i) << 2 | (connectors[i] ? ConnectorBit : 0);
        const TMyRect scaled = Scaled(boxes[i]);
        for (std::int32_t r = s.Row0; r <= s.Row1; ++r)
            for (std::int32_t c = s.Column0; c <= s.Column1; ++c)
                m_Items[next[std::size_t(r) * std::size_t(m_Columns) + std::size_t(c)]++] =
                    ItemIn(scaled, c, r, key);
    }
}

void TPressGrid::EnterAside(std::int32_t no, const TMyRect &box, bool connector)
{
    m_Aside->Tree.insert(boxtree::TValue(boxtree::Box(box), TIndexCandidate{no, connector}));
    m_Places[std::size_t(no)] = TPlace::Aside;
    m_Connectors += connector ? 1 : 0;
}

void TPressGrid::Drop(std::int32_t no, const TMyRect &box)
{
    const auto at = std::size_t(no);
    if (at >= m_Places.size())
        return;
    if (m_Places[at] == TPlace::Aside) {
        for (const bool connector : {false, true}) {
            if (m_Aside->Tree.remove(
                    boxtree::TValue(boxtree::Box(box), TIndexCandidate{no, connector}))) {
                m_Connectors -= connector ? 1 : 0;
                break;
            }
        }
    } else if (m_Places[at] == TPlace::Grid) {
        // The box is the one the shape was entered with, so it names the same cells; each
        // cell is in ascending number, so the entry is found by bisection.
        const TSpan s = SpanOf(box);
        for (std::int32_t r = s.Row0; r <= s.Row1; ++r) {
            for (std::int32_t c = s.Column0; c <= s.Column1; ++c) {
                const std::size_t cell = std::size_t(r) * std::size_t(m_Columns) + std::size_t(c);
                TItem *first = m_Items.data() + m_Starts[cell];
                TItem *last = m_Items.data() + m_Starts[cell + 1];
                TItem *item = std::lower_bound(
                    first, last, std::uint32_t(no),
                    [](const TItem &t, std::uint32_t n) { return (t.Key >> 2) < n; });
                if (item != last && (item->Key >> 2) == std::uint32_t(no)) {
                    m_Connectors -= (item->Key & ConnectorBit) && !(item->Key & DroppedBit);
                    item->Key |= DroppedBit;
                }
            }
        }
        --m_GridCount;
    }
    m_Places[at] = TPlace::None;
}

void TPressGrid::Enter(std::int32_t no, const TMyRect &box, bool connector)
{
    if (std::size_t(no) >= m_Places.size())
        m_Places.resize(std::size_t(no) + 1, TPlace::None);
    if (m_Places[std::size_t(no)] != TPlace::None)
        return;
    EnterAside(no, box, connector);
}

bool TPressGrid::WantsRebuild() const
{
    return m_Aside->Tree.size() > std::max<std::size_t>(1024, std::size_t(m_GridCount) / 8);
}

void TPressGrid::Begin(TMyPoint p, TPressCursor &cursor) const
{
    cursor.BeginList();
    cursor.m_AnyConnector = m_Connectors > 0;
    if (!m_Aside->Tree.empty()) {
        boxtree::Query(m_Aside->Tree, boxtree::TPoint2(p.X, p.Y),
                       [&](const TIndexCandidate &c) { cursor.m_Aside.push_back(c); });
        std::sort(cursor.m_Aside.begin(), cursor.m_Aside.end(),
                  [](const TIndexCandidate &a, const TIndexCandidate &b) { return a.No < b.No; });
    }
    // Outside the bounds (or not a number) no box of the grid can hold the point, and the
    // clamps below would put it on a cell's edge.
    if (m_Columns > 0 && m_Left <= p.X && p.X <= m_Right && m_Top <= p.Y && p.Y <= m_Bottom) {
        const std::int32_t column = Column(p.X), row = Row(p.Y);
        const TMyRect at = Scaled({p.X, p.Y, p.X, p.Y});
        cursor.m_Point = {InCell(at.Left, column, false), InCell(at.Top, row, false)};
        const std::size_t cell = std::size_t(row) * std::size_t(m_Columns) + std::size_t(column);
        cursor.m_Begin = m_Items.data() + m_Starts[cell];
        cursor.m_At = m_Items.data() + m_Starts[cell + 1];
    }
}

std::vector<TIndexCandidate> &TPressCursor::BeginList()
{
    m_ConnectorsOnly = false;
    m_HasPending = false;
    m_AnyConnector = true;
    m_Begin = m_At = nullptr;
    m_Aside.clear();
    return m_Aside;
}

bool TPressCursor::NextInCell(TIndexCandidate &candidate)
{
    while (m_At != m_Begin) {
        const TPressGrid::TItem &item = *--m_At;
        if ((item.Key & TPressGrid::DroppedBit) ||
            (m_ConnectorsOnly && !(item.Key & TPressGrid::ConnectorBit)))
            continue;
        if (item.Left <= m_Point.X && m_Point.X <= item.Right && item.Top <= m_Point.Y &&
            m_Point.Y <= item.Bottom) {
            candidate = {std::int32_t(item.Key >> 2), (item.Key & TPressGrid::ConnectorBit) != 0};
            return true;
        }
    }
    return false;
}

bool TPressCursor::Next(TIndexCandidate &candidate)
{
    if (!NextEntered(candidate))
        return false;
    std::int32_t below = 0;
    if (m_Removed)
        below = std::int32_t(std::lower_bound(m_Removed->begin(), m_Removed->end(), candidate.No) -
                             m_Removed->begin());
    candidate.No -= m_First + below;
    return true;
}

// The cell and the shapes aside hold different shapes; of the two next ones, the higher
// number comes first.
bool TPressCursor::NextEntered(TIndexCandidate &candidate)
{
    if (!m_HasPending)
        m_HasPending = NextInCell(m_Pending);
    while (m_ConnectorsOnly && !m_Aside.empty() && !m_Aside.back().Connector)
        m_Aside.pop_back();
    if (!m_Aside.empty() && (!m_HasPending || m_Aside.back().No > m_Pending.No)) {
        candidate = m_Aside.back();
        m_Aside.pop_back();
        return true;
    }
    if (!m_HasPending)
        return false;
    candidate = m_Pending;
    m_HasPending = false;
    return true;
}

void TPressCursor::ConnectorsOnly()
{
    m_ConnectorsOnly = true;
    if (m_HasPending && !m_Pending.Connector)
        m_HasPending = false;
    if (!m_AnyConnector) {
        m_At = m_Begin;
        m_Aside.clear();
    }
}

} // namespace tessal
