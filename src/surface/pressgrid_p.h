// SPDX-License-Identifier: MIT
// The index a press asks: the shapes that can take a press at a point, from the top down.
#pragma once

#include <tessal/geometry/mypoint.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace tessal {

class TPressCursor;

// What the index itself knows of a shape, so that a press can pass over candidates without
// touching the shapes (on a big drawing every touch is a cache miss).
struct TIndexCandidate
{
    std::int32_t No = 0;
    bool Connector = false;
    friend bool operator==(const TIndexCandidate &, const TIndexCandidate &) = default;
};

// A press wants the topmost shape it hits, and below that only connectors. An R-tree answers
// every shape near the point in no useful order, so its cost grows with the density of the
// drawing; this index keeps, for each cell of a uniform grid, the shapes that reach the cell
// in drawing order, and a press reads its cell from the top down and stops when the caller
// has what it needs. Its cost is then the few shapes above the first hit, however dense the
// drawing.
//
// Boxes are given already grown by the reach of a press, so a press is a point. Shapes much
// larger than a cell, and shapes changed since the grid was built, are kept aside in a small
// R-tree whose answer is merged in; once that holds too many, the owner builds afresh.
class TPressGrid
{
public:
    // boxes[i] is shape number i's grown box; only shapes with indexed[i] set are entered.
    TPressGrid(const std::vector<TMyRect> &boxes, const std::vector<bool> &indexed,
               const std::vector<bool> &connectors);
    ~TPressGrid();
    TPressGrid(const TPressGrid &) = delete;
    TPressGrid &operator=(const TPressGrid &) = delete;

    // Shape number no leaves the box it was entered with.
    void Drop(std::int32_t no, const TMyRect &box);
    // Shape number no (changed, or new) is entered with box.
    void Enter(std::int32_t no, const TMyRect &box, bool connector);
    // True once so many shapes are kept aside that a press would be better served afresh.
    bool WantsRebuild() const;

    // Starts a press at p (document units) on cursor.
    void Begin(TMyPoint p, TPressCursor &cursor) const;

private:
    // A shape's box within one cell, in 256ths of the cell and rounded outwards, so that a
    // cell of a dense drawing is read in few cache lines.
    struct TItem
    {
        std::uint8_t Left, Top, Right, Bottom;
        std::uint32_t Key; // (number << 2) | (dropped << 1) | connector
    };
    struct TCellPoint
    {
        std::uint8_t X, Y;
    };
    struct TAside;
    struct TSpan
    {
        std::int32_t Column0, Column1, Row0, Row1;
    };
    enum class TPlace : std::uint8_t { None, Grid, Aside };

    static constexpr std::uint32_t ConnectorBit = 1, DroppedBit = 2;
    // A shape that spans more cells than this in either direction is kept aside, so that no
    // shape is entered more than MaxSpan² times.
    static constexpr std::int32_t MaxSpan = 4;

    void ChooseCells(std::vector<float> sizes, const TMyRect &bounds);
    std::int32_t Column(float x) const;
    std::int32_t Row(float y) const;
    // A box or point in 256ths of a cell from the grid's left-top corner.
    TMyRect Scaled(const TMyRect &box) const;
    static TItem ItemIn(const TMyRect &scaled, std::int32_t column, std::int32_t row,
                        std::uint32_t key);
    TSpan SpanOf(const TMyRect &box) const;
    bool Fits(const TSpan &span) const;
    void Fill(const std::vector<TMyRect> &boxes, const std::vector<bool> &connectors);
    void EnterAside(std::int32_t no, const TMyRect &box, bool connector);

    // The cells cover the boxes of the grid, which all lie within these bounds.
    float m_Left = 0, m_Top = 0, m_Right = 0, m_Bottom = 0, m_Cell = 1, m_Scale = 256;
    std::int32_t m_Columns = 0, m_Rows = 0;
    // Cell c holds m_Items[m_Starts[c] .. m_Starts[c + 1]), in ascending shape number.
    std::vector<std::uint32_t> m_Starts;
    std::vector<TItem> m_Items;
    std::vector<TPlace> m_Places;
    std::int32_t m_Connectors = 0;
    std::int32_t m_GridCount = 0;
    std::unique_ptr<TAside> m_Aside;

    friend class TPressCursor;
};

// The candidates of one press, lazily and from the top of the drawing down: every shape whose
// grown box holds the point, each once.
class TPressCursor
{
public:
    bool Next(TIndexCandidate &candidate);
    // From now on only connectors are wanted; the others are passed over without a look.
    void ConnectorsOnly();
    // Starts a press that no grid answers: the caller fills the list returned with the
    // candidates, in ascending number.
    std::vector<TIndexCandidate> &BeginList();
    // The numbers the grid holds are the slots the shapes were entered in; first is the
    // lowest slot in use and removed (ascending, or null for none) names the slots left empty
    // above it, so that Next hands out the numbers the shapes have now. The vector must
    // outlive the press.
    void Renumber(std::int32_t first, const std::vector<std::int32_t> *removed)
    {
        m_First = first;
        m_Removed = removed;
    }

private:
    friend class TPressGrid;
    bool NextEntered(TIndexCandidate &candidate);
    bool NextInCell(TIndexCandidate &candidate);

    TPressGrid::TCellPoint m_Point;
    const TPressGrid::TItem *m_Begin = nullptr;
    const TPressGrid::TItem *m_At = nullptr;
    std::vector<TIndexCandidate> m_Aside; // ascending, taken from the back
    bool m_AnyConnector = false;
    bool m_ConnectorsOnly = false;
    bool m_HasPending = false;
    TIndexCandidate m_Pending;
    std::int32_t m_First = 0;
    const std::vector<std::int32_t> *m_Removed = nullptr;
};

} // namespace tessal
