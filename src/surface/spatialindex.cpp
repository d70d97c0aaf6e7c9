// SPDX-License-Identifier: MIT
// The spatial index of a surface: bulk-loaded, then kept current one entry at a time.
#include <tessal/surface/boxtree_p.h>
#include <tessal/surface/spatialindex_p.h>

#include <algorithm>
#include <cmath>

namespace tessal {

struct TShapeIndex::TTree
{
    using TValue = boxtree::TValue;
    static boxtree::TBox2 Box(const TMyRect &r) { return boxtree::Box(r); }

    boxtree::TTree Tree;
};

TShapeIndex::TShapeIndex()
    : m_Tree(std::make_unique<TTree>())
{}

TShapeIndex::~TShapeIndex() = default;

TRect TShapeExtent::ScreenRect(double zoom) const
{
    const auto px = [zoom](float v) { return std::int32_t(std::nearbyint(double(v) * zoom)); };
    return {px(Box.Left) - Pad, px(Box.Top) - Pad, px(Box.Right) + Pad + 1,
            px(Box.Bottom) + Pad + 1};
}

TRect ControlRectHolding(double left, double top, double right, double bottom)
{
    if (std::isnan(left) || std::isnan(top) || std::isnan(right) || std::isnan(bottom))
        return {}; // no point lies there
    const auto pixel = [](double v) {
        constexpr double limit = 1 << 30;
        return std::int32_t(std::clamp(v, -limit, limit));
    };
    return TRect(pixel(std::floor(left) - 1), pixel(std::floor(top) - 1),
                 pixel(std::ceil(right) + 2), pixel(std::ceil(bottom) + 2));
}

namespace {

// One more pixel than the pad covers the rounding of the zoomed box, so the tree never
// answers less than the exact test accepts.
TMyRect Padded(const TShapeExtent &extent, double zoom)
{
    const float pad = float((extent.Pad + 1) / zoom);
    const TMyRect &b = extent.Box;
    return {b.Left - pad, b.Top - pad, b.Right + pad, b.Bottom + pad};
}

} // namespace

TMyRect TShapeIndex::PaddedBox(const TShapeExtent &extent) const
{
    return Padded(extent, m_TreeZoom);
}

void TShapeIndex::Rebuild(std::vector<TEntry> entries, double zoom)
{
    m_Zoom = m_TreeZoom = zoom;
    m_MaxPad = 0;
    m_MaxReach = 0;
    DropPressGrid();
    m_First = BottomRoom;
    m_Entries.clear();
    m_Entries.reserve(std::size_t(m_First) + entries.size());
    m_Entries.resize(std::size_t(m_First));
    m_Entries.insert(m_Entries.end(), entries.begin(), entries.end());
    m_Removed.clear();
    m_Changes = 0;
    m_Slots.clear();
    m_Slots.reserve(m_Entries.size());
    std::fill(m_PadCounts.begin(), m_PadCounts.end(), 0);
    for (const TEntry &entry : m_Entries)
        CountPad(entry.Extent.Pad, 1);
    std::vector<TTree::TValue> values;
    values.reserve(m_Entries.size());
    for (auto i = std::size_t(m_First); i < m_Entries.size(); ++i) {
        m_Slots.insert_or_assign(m_Entries[i].Shape, std::int32_t(i));
        if (!m_Entries[i].Extent.Indexed)
            continue;
        m_MaxPad = std::max(m_MaxPad, m_Entries[i].Extent.Pad);
        m_MaxReach = std::max<std::int32_t>(m_MaxReach, m_Entries[i].Extent.HitReach);
        values.emplace_back(TTree::Box(PaddedBox(m_Entries[i].Extent)),
                            TIndexCandidate{std::int32_t(i), m_Entries[i].Connector});
    }
    // The packing constructor builds a better tree than repeated insertion, and faster.
    m_Tree->Tree = decltype(m_Tree->Tree)(values.begin(), values.end());
    m_Stale = false;
}

std::int32_t TShapeIndex::NumberAt(std::int32_t slot) const
{
    const auto below = std::lower_bound(m_Removed.begin(), m_Removed.end(), slot);
    return slot - m_First - std::int32_t(below - m_Removed.begin());
}

// m_Removed[j] - m_First - j live slots lie below the j-th empty one, a count that never
// falls; the slot of number no lies above every empty slot with at most no live ones below.
std::int32_t TShapeIndex::SlotOf(std::int32_t no) const
{
    std::size_t low = 0, high = m_Removed.size();
    while (low < high) {
        const std::size_t mid = (low + high) / 2;
        if (m_Removed[mid] - m_First - std::int32_t(mid) <= no)
            low = mid + 1;
        else
            high = mid;
    }
    return no + m_First + std::int32_t(low);
}

void TShapeIndex::Replace(std::int32_t no, const TShapeExtent &extent)
{
    ReplaceSlot(SlotOf(no), extent);
}

void TShapeIndex::ReplaceSlot(std::int32_t slot, const TShapeExtent &extent)
{
    const auto i = std::size_t(slot);
    ++m_Changes;
    const TIndexCandidate item{slot, m_Entries[i].Connector};
    if (m_Entries[i].Extent.Indexed) {
        m_Tree->Tree.remove(TTree::TValue(TTree::Box(PaddedBox(m_Entries[i].Extent)), item));
        if (m_Press)
            m_Press->Drop(slot, PressBox(m_Entries[i].Extent));
    }
    CountPad(m_Entries[i].Extent.Pad, -1);
    CountPad(extent.Pad, 1);
    m_Entries[i].Extent = extent;
    if (extent.Indexed) {
        m_MaxPad = std::max(m_MaxPad, extent.Pad);
        m_MaxReach = std::max<std::int32_t>(m_MaxReach, extent.HitReach);
        m_Tree->Tree.insert(TTree::TValue(TTree::Box(PaddedBox(extent)), item));
        if (m_Press)
            m_Press->Enter(slot, PressBox(extent), item.Connector);
    }
}

void TShapeIndex::Append(const TEntry &entry)
{
    const auto slot = std::int32_t(m_Entries.size());
    m_Entries.push_back({entry.Shape, TShapeExtent{}, entry.Connector});
    CountPad(0, 1);
    m_Slots.insert_or_assign(entry.Shape, slot);
    ReplaceSlot(slot, entry.Extent);
}

void TShapeIndex::Remove(std::span<TMyShape *const> shapes)
{
    // Entries that would leave too many slots empty are not taken out one by one.
    if (TooManyEmpty(m_Removed.size() + shapes.size())) {
        MarkStale();
        return;
    }
    const std::size_t before = m_Removed.size();
    for (const TMyShape *shape : shapes) {
        const auto it = m_Slots.find(shape);
        if (it == m_Slots.end())
            continue;
        const std::int32_t slot = it->second;
        m_Slots.erase(it);
        ReplaceSlot(slot, TShapeExtent{});
        m_Entries[std::size_t(slot)].Shape = nullptr;
        m_Removed.push_back(slot);
    }
    std::sort(m_Removed.begin() + std::ptrdiff_t(before), m_Removed.end());
    std::inplace_merge(m_Removed.begin(), m_Removed.begin() + std::ptrdiff_t(before),
                       m_Removed.end());
    if (TooManyEmpty(m_Removed.size()))
        MarkStale();
}

bool TShapeIndex::TooManyEmpty(std::size_t empty) const
{
    return empty > std::max<std::size_t>(RemovedKept, m_Entries.size() / 4);
}

bool TShapeIndex::MoveToBottom(const TMyShape *shape)
{
    const auto it = m_Slots.find(shape);
    if (m_First == 0 || it == m_Slots.end())
        return false;
    const std::int32_t from = it->second;
    const TEntry entry = m_Entries[std::size_t(from)];
    ReplaceSlot(from, TShapeExtent{});
    m_Entries[std::size_t(from)].Shape = nullptr;
    m_Removed.insert(std::upper_bound(m_Removed.begin(), m_Removed.end(), from), from);
    const std::int32_t to = --m_First;
    m_Entries[std::size_t(to)] = {entry.Shape, TShapeExtent{}, entry.Connector};
    it->second = to;
    ReplaceSlot(to, entry.Extent);
    if (TooManyEmpty(m_Removed.size()))
        MarkStale();
    return true;
}

// Each slot is emptied with the shape it holds, so the tree and the press cells let go of
// the right entries, and filled with the other shape.
void TShapeIndex::Swap(std::int32_t a, std::int32_t b)
{
    const std::int32_t places[] = {SlotOf(a), SlotOf(b)};
    const TEntry entries[] = {m_Entries[std::size_t(places[0])], m_Entries[std::size_t(places[1])]};
    for (int k = 0; k < 2; ++k)
        ReplaceSlot(places[k], TShapeExtent{});
    for (int k = 0; k < 2; ++k) {
        const TEntry &other = entries[1 - k];
        m_Entries[std::size_t(places[k])] = {other.Shape, TShapeExtent{}, other.Connector};
        m_Slots.insert_or_assign(other.Shape, places[k]);
        ReplaceSlot(places[k], other.Extent);
    }
}

std::int32_t TShapeIndex::NumberOf(const TMyShape *shape) const
{
    const auto it = m_Slots.find(shape);
    return it == m_Slots.end() ? -1 : NumberAt(it->second);
}

std::int32_t TShapeIndex::LargestPad(std::int32_t cap) const
{
    std::int32_t pad = PadCounted;
    while (pad > 0 && m_PadCounts[std::size_t(pad)] == 0)
        --pad;
    return std::min(pad, cap);
}

void TShapeIndex::CountPad(std::int32_t pad, std::int64_t change)
{
    m_PadCounts[std::size_t(std::clamp(pad, 0, PadCounted))] += change;
}

bool TShapeIndex::KeepTreeAtZoom(double zoom)
{
    if (m_Stale || zoom * ZoomKept < m_TreeZoom || zoom > m_TreeZoom * ZoomKept)
        return false;
    m_Zoom = zoom;
    DropPressGrid();
    return true;
}

void TShapeIndex::DropPressGrid()
{
    m_Press.reset();
    m_TreePressWork = 0;
}

void TShapeIndex::SetExtentInPlace(std::int32_t no, const TShapeExtent &extent)
{
    TShapeExtent &entry = m_Entries[std::size_t(SlotOf(no))].Extent;
    CountPad(entry.Pad, -1);
    CountPad(extent.Pad, 1);
    entry = extent;
    if (extent.Indexed)
        m_MaxReach = std::max<std::int32_t>(m_MaxReach, extent.HitReach);
}

// At a smaller zoom than the tree's, a pad covers more of the document than the tree's box
// took in; the query grows by that much for the largest pad instead.
TMyRect TShapeIndex::QueryBox(const TRect &rect) const
{
    const double z = m_Zoom;
    const double lack = z < m_TreeZoom ? (m_MaxPad + 1) * (1 / z - 1 / m_TreeZoom) : 0;
    return {float((rect.Left - 1) / z - lack), float((rect.Top - 1) / z - lack),
            float((rect.Right + 1) / z + lack), float((rect.Bottom + 1) / z + lack)};
}

void TShapeIndex::Query(const TMyRect &box, std::vector<std::int32_t> &numbers) const
{
    boxtree::Query(m_Tree->Tree, boxtree::Box(box), [this, &numbers](const TIndexCandidate &c) {
        numbers.push_back(m_Removed.empty() ? c.No - m_First : NumberAt(c.No));
    });
}

TMyRect TShapeIndex::PressBox(const TShapeExtent &extent) const
{
    const bool known = extent.HitReach >= 0;
    const TMyRect b = known ? extent.HitBox : Padded(extent, m_Zoom);
    const float reach = float(((known ? extent.HitReach : PressReach) + 1) / m_Zoom);
    return {b.Left - reach, b.Top - reach, b.Right + reach, b.Bottom + reach};
}

// A press is answered from the tree (a couple of microseconds on a million shapes) until the
// presses so answered since the last rebuild or zoom change have done enough work: a few
// presses after a zoom do not pay for press cells (70 ms on a million shapes) they would
// hardly use, and a run of presses, or presses where many shapes lie on top of each other,
// soon gets them.
void TShapeIndex::BeginPress(TPoint at, TPressCursor &cursor)
{
    const TMyPoint p{float(at.X / m_Zoom), float(at.Y / m_Zoom)};
    if (!m_Press && m_TreePressWork < std::int64_t(m_Entries.size()) / TreePressShare) {
        PressFromTree(p, cursor);
    } else {
        if (!m_Press || m_Press->WantsRebuild())
            MakePressGrid();
        m_Press->Begin(p, cursor);
    }
    cursor.Renumber(m_First, m_Removed.empty() ? nullptr : &m_Removed);
}

// Every press box lies within the tree's box of the same entry grown by the press reach, and
// at a smaller zoom than the tree's by what its pad then lacks; the tree is asked for the
// point grown by as much for the widest reach and pad, and each answer is tested exactly.
void TShapeIndex::PressFromTree(TMyPoint p, TPressCursor &cursor)
{
    const double z = m_Zoom;
    const double lack = z < m_TreeZoom ? (m_MaxPad + 1) * (1 / z - 1 / m_TreeZoom) : 0;
    const double grow = lack + (std::max(PressReach, m_MaxReach) + 2) / z;
    const TMyRect near{float(p.X - grow), float(p.Y - grow), float(p.X + grow), float(p.Y + grow)};
    std::vector<TIndexCandidate> &candidates = cursor.BeginList();
    std::int64_t met = 0;
    boxtree::Query(m_Tree->Tree, boxtree::Box(near), [&](const TIndexCandidate &c) {
        ++met;
        const TMyRect b = PressBox(m_Entries[std::size_t(c.No)].Extent);
        if (b.Left <= p.X && p.X <= b.Right && b.Top <= p.Y && p.Y <= b.Bottom)
            candidates.push_back(c);
    });
    std::sort(candidates.begin(), candidates.end(),
              [](const TIndexCandidate &a, const TIndexCandidate &b) { return a.No < b.No; });
    m_TreePressWork += TreePressCost + met;
}

void TShapeIndex::MakePressGrid()
{
    const std::size_t count = m_Entries.size();
    std::vector<TMyRect> boxes(count);
    std::vector<bool> indexed(count), connectors(count);
    for (std::size_t i = 0; i < count; ++i) {
        indexed[i] = m_Entries[i].Extent.Indexed;
        connectors[i] = m_Entries[i].Connector;
        if (indexed[i])
            boxes[i] = PressBox(m_Entries[i].Extent);
    }
    m_Press = std::make_unique<TPressGrid>(boxes, indexed, connectors);
}

} // namespace tessal
