// SPDX-License-Identifier: MIT
// The spatial index of a surface: an R-tree over the boxes of its top-level shapes.
#pragma once

#include <tessal/geometry/mypoint.h>
#include <tessal/platform/types.h>
#include <tessal/surface/pressgrid_p.h>

#include <cstdint>
#include <memory>
#include <span>
#include <unordered_map>
#include <utility>
#include <vector>

namespace tessal {

class TMyShape;

// What of an extent must be worked out again when the zoom changes: nothing (points and pen
// widths), only how far a press reaches (a line is hit in a band beside it only where a
// segment is level or upright on the screen), or everything (texts are measured at the zoom,
// arcs flattened at it, arrow heads sized at it).
enum class TZoomRule : std::uint8_t { Fixed, Reach, Measure };

// Where a top-level shape (with all its group members) can paint: a box in document units
// and a margin in screen pixels that does not grow with the zoom (pen widths, link marks).
// Where a press can hit it is narrower, and told apart when every class involved says.
struct TShapeExtent
{
    TMyRect Box;
    // The box of the points the hit tests use, and how many pixels beyond it they reach;
    // HitReach is -1 when a class does not say.
    TMyRect HitBox;
    std::int32_t Pad = 0;
    std::int16_t HitReach = -1;
    // False for group members and shapes without anything to draw; they are not indexed.
    bool Indexed = false;
    TZoomRule Zoomed = TZoomRule::Fixed;

    // The control pixels covered at zoom: the rounded zoomed box grown by Pad, Right and
    // Bottom exclusive.
    TRect ScreenRect(double zoom) const;
};

// The control pixels that hold the box (control pixels, edges included), with a pixel to
// spare on each side and within what a rectangle can hold; empty when an edge is not a
// number.
TRect ControlRectHolding(double left, double top, double right, double bottom);

// The index only narrows the candidates of a query: it answers every shape whose extent
// might meet the query box, and the caller applies the exact test.
//
// Entries are kept in slots, in the order of the shape numbers they had when they were
// entered. A shape taken out of the list leaves its slot empty, and a slot's shape number is
// the slot less the empty or unused slots below it: removals keep the order of the others,
// so no other entry changes, in the tree or in the press cells. Below the first shape lie
// BottomRoom unused slots, so that a shape sent to the back takes the one under the lowest
// in use and leaves its own empty, and the others keep theirs. Any other change of
// numbering (an insertion, a new order) needs a rebuild, save the exchange of two shapes'
// places.
class TShapeIndex
{
public:
    TShapeIndex();
    ~TShapeIndex();
    TShapeIndex(const TShapeIndex &) = delete;
    TShapeIndex &operator=(const TShapeIndex &) = delete;

    struct TEntry
    {
        const TMyShape *Shape = nullptr;
        TShapeExtent Extent;
        // Kept in the tree too: a press looks for connectors below its topmost hit.
        bool Connector = false;
    };

    // Replaces everything: entries[i] belongs to shape number i. The tree's boxes take in
    // the pads turned into document units at zoom.
    void Rebuild(std::vector<TEntry> entries, double zoom);
    // The zoom changes and the tree stays, within ZoomKept times the tree's zoom either way:
    // at a smaller zoom each query grows by what the pads then lack, at a larger one the
    // tree's boxes are a little wider than they need be. False when the tree must be rebuilt
    // instead. The caller replaces the extents that change with the zoom.
    bool KeepTreeAtZoom(double zoom);
    static constexpr double ZoomKept = 4;
    // An entry's new extent whose box, pad and indexing are those in the tree already: only
    // the press cells, made again after a zoom change, see the difference.
    void SetExtentInPlace(std::int32_t no, const TShapeExtent &extent);
    void Replace(std::int32_t no, const TShapeExtent &extent);
    void Append(const TEntry &entry);
    // The shapes leave the list; those not in the index are passed over. Marks the index
    // stale once more than a quarter of the slots (and more than RemovedKept) are empty,
    // when a rebuild makes queries cheaper again.
    void Remove(std::span<TMyShape *const> shapes);
    static constexpr std::size_t RemovedKept = 64;
    // The shape becomes number 0 and the shapes below it go one place up; false (nothing
    // changed) when it is not in the index or no unused slot is left below.
    bool MoveToBottom(const TMyShape *shape);
    static constexpr std::int32_t BottomRoom = 256;
    // Shape numbers a and b exchange their places in the list.
    void Swap(std::int32_t a, std::int32_t b);
    void MarkStale() { m_Stale = true; }
    // Entries changed one by one since the last rebuild; past a share of the whole, a
    // rebuild costs less than taking in more of them singly.
    std::int64_t ChangesSinceRebuild() const { return m_Changes; }
    bool IsStale() const { return m_Stale; }

    double Zoom() const { return m_Zoom; }
    std::int32_t Count() const
    {
        return std::int32_t(m_Entries.size() - m_Removed.size()) - m_First;
    }
    const TEntry &Entry(std::int32_t no) const { return m_Entries[std::size_t(SlotOf(no))]; }
    // The widest pad of any entry, or cap when one reaches it (cap at most PadCounted).
    std::int32_t LargestPad(std::int32_t cap) const;
    static constexpr std::int32_t PadCounted = 1024;
    // The number of an entry's shape, -1 when the shape is not in the index.
    std::int32_t NumberOf(const TMyShape *shape) const;
    // The query box of a control rectangle: one pixel more on every side, since the tree's
    // boxes are not rounded.
    TMyRect QueryBox(const TRect &rect) const;
    // Shape numbers whose padded box meets box (document units, edges included), in no
    // particular order.
    void Query(const TMyRect &box, std::vector<std::int32_t> &numbers) const;

    // How far from a shape's painted pixels a press can still take it, in control pixels,
    // when its classes do not say how far they are hit.
    static constexpr std::int32_t PressReach = 10;
    // Starts cursor on the shapes whose hit box (grown by its reach), or else padded box
    // (grown by PressReach), holds the control pixel at, from the top of the drawing down.
    void BeginPress(TPoint at, TPressCursor &cursor);
    // The work of a press answered from the tree: TreePressCost, and one for each entry the
    // tree answers. The press cells are made once that work, since the last rebuild or zoom
    // change, reaches a TreePressShare-th of the entries.
    static constexpr std::int64_t TreePressCost = 64;
    static constexpr std::int64_t TreePressShare = 4;

private:
    // The tree, kept out of this header, which the whole surface includes.
    struct TTree;

    std::int32_t SlotOf(std::int32_t no) const;
    // Whether so many empty slots make a rebuild worth its cost.
    bool TooManyEmpty(std::size_t empty) const;
    std::int32_t NumberAt(std::int32_t slot) const;
    void ReplaceSlot(std::int32_t slot, const TShapeExtent &extent);
    // Keeps the count of entries by pad, so that a repaint learns the widest without a walk
    // over every entry.
    void CountPad(std::int32_t pad, std::int64_t change);

    // Deterministic for the tree's zoom, so an entry is removed from the tree with the box it
    // was inserted with.
    TMyRect PaddedBox(const TShapeExtent &extent) const;
    // Where a press can take the shape, with a pixel to spare for rounding.
    TMyRect PressBox(const TShapeExtent &extent) const;
    void PressFromTree(TMyPoint p, TPressCursor &cursor);
    void MakePressGrid();
    void DropPressGrid();

    std::unique_ptr<TTree> m_Tree;
    std::vector<TEntry> m_Entries; // by slot
    std::unordered_map<const TMyShape *, std::int32_t> m_Slots;
    std::vector<std::int32_t> m_Removed; // the empty slots above m_First, ascending
    std::int32_t m_First = 0;            // the slots below are unused
    // Made once presses answered from the tree have done enough work (m_TreePressWork)
    // since a rebuild or a zoom change, then kept current with the tree.
    std::unique_ptr<TPressGrid> m_Press;
    std::int64_t m_TreePressWork = 0;
    double m_Zoom = 1.0;
    // The zoom the tree's pads were turned into document units at, and the largest pad in it.
    double m_TreeZoom = 1.0;
    std::int32_t m_MaxPad = 0;
    // The widest hit reach entered since the tree was made; it only grows.
    std::int32_t m_MaxReach = 0;
    // Entries (in every slot) by pad, the last count for PadCounted and more.
    std::vector<std::int64_t> m_PadCounts = std::vector<std::int64_t>(PadCounted + 1, 0);
    bool m_Stale = true;
    std::int64_t m_Changes = 0;
};

} // namespace tessal
