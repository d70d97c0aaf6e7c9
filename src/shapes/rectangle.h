// SPDX-License-Identifier: MIT
// TMyRectangle and the classes built on its four corners: ellipse, group and combine.
#pragma once

#include <tessal/shapes/shape.h>

#include <array>
#include <optional>
#include <vector>

namespace tessal {

// Four points: 0 the corner where drawing started, 1 (x of the opposite corner, y of 0),
// 2 the opposite corner, 3 (x of 0, y of the opposite corner). The points keep their
// upright relation; Angle turns the whole about the centre (the middle of the points'
// bounding box). The side-handle flags only store: the caller repaints.
//
// Handles: 0-3 at the corners, 4-7 at the middles of the sides 0-1, 1-2, 3-2 and 0-3. Side
// handles are left out while the surface rotates. Text, image and link-point shapes reuse
// all of this.
class TMyRectangle : public TMyShape
{
    Q_GADGET
    Q_PROPERTY(bool AssociateSideResizing READ AssociateSideResizing WRITE SetAssociateSideResizing)
    Q_PROPERTY(bool ShowSideHot READ ShowSideHot WRITE SetShowSideHot)
    Q_PROPERTY(bool ShowHorizontalSideHot READ ShowHorizontalSideHot WRITE SetShowHorizontalSideHot)
    Q_PROPERTY(bool ShowVerticalSideHot READ ShowVerticalSideHot WRITE SetShowVerticalSideHot)

public:
    explicit TMyRectangle(TShapeHost *host);

    const QMetaObject *MetaObject() const override { return &staticMetaObject; }
    QString ClassName() const override { return QStringLiteral("TMyRectangle"); }

    void Assign(const TMyShape &source) override;
    void AssignWithoutRelation(const TMyShape &source) override;

    // ---- Drawing with the mouse ----
    // The first point is taken as it is; the second (screen) adds corners 1, 2 and 3 unless
    // it shares a row or column with the first, so that no flat rectangle can be drawn.
    void AddPointByMouse(TPoint point) override;
    // True once the four corners exist.
    bool IsDrawingFinished(Qt::MouseButton button, TPoint point) override;

    // ---- Painting ----
    // The closed outline filled and stroked in the shape's pen, brush and gradient, then the
    // info text (which a text shape draws itself).
    void Draw(TCanvas &canvas) override;
    // The handles in use and the caption anchor's diamond, when the surface shows handles.
    void DrawHot(TCanvas &canvas) override;
    // The closed outline through four screen points with the canvas's current pen.
    void DrawRectangle(TCanvas &canvas, const std::array<TPoint, 4> &pts) const;

    // ---- Rubber bands ----
    // Drawing selects the rubber band itself; the others draw in the caller's set-up.
    void Drawing(TCanvas &canvas, TPoint from, TPoint to) override;
    void Draging(TCanvas &canvas, TPoint from, TPoint to) override;
    // centre is a screen point, like the corners it turns.
    void Rotating(TCanvas &canvas, TMyPoint centre, double angle) override;
    // The rectangle that SizeChangeValue(from, to) would leave.
    void Sizing(TCanvas &canvas, TPoint from, TPoint to) override;

    // ---- Editing ----
    // Moves the current handle to `to` (screen) in the shape's own turned frame: a corner
    // drags its two neighbours along one axis each, a side handle moves its side across
    // only. A drag that would take the handle past the opposite corner changes nothing.
    void SizeChangeValue(TMyPoint from, TMyPoint to) override;

    // ---- Queries ----
    TMyPoint GetCenterPoint() const override;
    // -1 the zero point, 0-3 the corners, 4-7 the side middles (whatever the side-handle
    // flags say); document values.
    TMyPoint GetPoint(std::int32_t index) const override;
    // The handle in use under the point (screen), the highest number where handles
    // overlap; also stored as CurrentHot.
    std::int32_t InWhichHot(TPoint point) override;
    // Inside the turned outline, with no tolerance band; the brush does not matter.
    bool IsClickedMe(TCanvas &canvas, TPoint point) override;
    std::int32_t HitReach() const override { return 0; }
    // Sizing arrows for handles (side handles by number, corners by where they are from the
    // centre); the cross elsewhere. Runs the handle test, so CurrentHot follows the mouse.
    TCursor GetMouseCursor(std::int32_t x, std::int32_t y) override;
    // "Area=" and the area in the surface's unit; also stored as Info.
    QString GetInfo() const override;
    // The width and height of the box spanned by two screen points as "m=...\rn=...".
    QString GetLengthByUnit(TPoint from, TPoint to) override;

    // When a side handle is dragged, the opposite side moves too (read by the surface).
    bool AssociateSideResizing() const { return m_AssociateSideResizing; }
    void SetAssociateSideResizing(bool on) { m_AssociateSideResizing = on; }
    // Whether side-middle handles (4 to 7) exist at all.
    bool ShowSideHot() const { return m_ShowSideHot; }
    void SetShowSideHot(bool on) { m_ShowSideHot = on; }
    // The right and left side handles (5 and 7).
    bool ShowHorizontalSideHot() const { return m_ShowHorizontalSideHot; }
    void SetShowHorizontalSideHot(bool on) { m_ShowHorizontalSideHot = on; }
    // The top and bottom side handles (4 and 6).
    bool ShowVerticalSideHot() const { return m_ShowVerticalSideHot; }
    void SetShowVerticalSideHot(bool on) { m_ShowVerticalSideHot = on; }

protected:
    bool KeepsItsBox() const override { return true; }
    // The area text for an area in document pixels squared, stored as Info.
    QString AreaText(double area) const;

private:
    struct THandle
    {
        std::int32_t Number;
        TMyPoint At; // screen
    };
    // At most the four corners and four side middles, kept in place: the handles are
    // looked at on every press and hover of the selection.
    class THandles
    {
    public:
        void Add(std::int32_t number, TMyPoint at) { m_Items[m_Count++] = {number, at}; }
        const THandle *begin() const { return m_Items.data(); }
        const THandle *end() const { return m_Items.data() + m_Count; }

    private:
        std::array<THandle, 8> m_Items{};
        std::size_t m_Count = 0;
    };
    // The handles in use, in number order.
    THandles HandlesInUse() const;
    // False when point (screen) lies beyond the reach of every handle.
    bool NearCorners(TPoint point, std::int32_t margin) const;
    std::array<TMyPoint, 4> SideMiddles() const;
    bool SideHandlesInUse() const;
    // The corners a drag of the current handle to target (document) leaves, or nothing when
    // the drag is refused or there is no such handle.
    std::optional<std::array<TMyPoint, 4>> ResizedCorners(TMyPoint target) const;
    void CopyRectangleFields(const TMyShape &source);

    bool m_AssociateSideResizing = false;
    bool m_ShowSideHot = true;
    bool m_ShowHorizontalSideHot = true;
    bool m_ShowVerticalSideHot = true;
};

// The ellipse inscribed in the rectangle's corners. The outline is a polygon of 72 chords
// (5 degree steps) about the centre, sized by the upright width and height and turned by
// Angle; the corners themselves only give the centre and the size.
class TMyEllipse : public TMyRectangle
{
    Q_GADGET

public:
    using TMyRectangle::TMyRectangle;

    const QMetaObject *MetaObject() const override { return &staticMetaObject; }
    QString ClassName() const override { return QStringLiteral("TMyEllipse"); }

    void Draw(TCanvas &canvas) override;
    void Drawing(TCanvas &canvas, TPoint from, TPoint to) override;
    // The outline of Draw moved by to - from, unfilled, in the caller's set-up.
    void Draging(TCanvas &canvas, TPoint from, TPoint to) override;
    QString GetInfo() const override;

    // The 73 screen points of the outline (the last repeats the first).
    std::array<TPoint, 73> OutlinePoints() const;
};

// A group: its four points are the corners of its members' common box; the members are
// held by shape number in ChildShapes and are shapes of the document, which the surface
// draws in their own places of the drawing order. The group itself has no outline or fill:
// it draws only its info text, and shows the rectangle's handles when selected. It is hit
// inside its box and wherever one of its members is hit (a member's tolerance band may
// reach outside the box).
class TMyGroup : public TMyRectangle
{
    Q_GADGET

public:
    using TMyRectangle::TMyRectangle;

    const QMetaObject *MetaObject() const override { return &staticMetaObject; }
    QString ClassName() const override { return QStringLiteral("TMyGroup"); }

    void Draw(TCanvas &canvas) override;
    bool IsClickedMe(TCanvas &canvas, TPoint point) override;
};

// A group made from a library entry or an inserted drawing (a block). It behaves exactly as
// a group: its members are document shapes drawn by the surface, each in its own style, and
// it draws nothing itself but its info text. Only the class name differs, which the files
// and the library code use to tell a placed entry from a user's group.
class TMyCombine : public TMyGroup
{
    Q_GADGET

public:
    using TMyGroup::TMyGroup;

    const QMetaObject *MetaObject() const override { return &staticMetaObject; }
    QString ClassName() const override { return QStringLiteral("TMyCombine"); }
};

} // namespace tessal
