// SPDX-License-Identifier: MIT
// Editing commands of the surface: grouping, alignment, stacking order, flipping, locking
// and turning.
#include <tessal/surface/cad.h>
#include <tessal/surface/grouping_p.h>
#include <tessal/surface/spatialindex_p.h>

#include <tessal/geometry/geometry.h>
#include <tessal/shapes/link.h>
#include <tessal/shapes/rectangle.h>
#include <tessal/shapes/shape.h>

#include <algorithm>
#include <limits>
#include <numeric>
#include <unordered_set>

namespace tessal {

namespace {

enum TAlignEdge : std::int32_t {
    AlignEdgeLeft,
    AlignEdgeRight,
    AlignEdgeTop,
    AlignEdgeBottom,
    AlignEdgeHCenter,
    AlignEdgeVCenter
};

// The bounding box of the points of the shapes (document units); shapes without points
// add nothing.
struct TBox
{
    float Left = std::numeric_limits<float>::max();
    float Top = std::numeric_limits<float>::max();
    float Right = std::numeric_limits<float>::lowest();
    float Bottom = std::numeric_limits<float>::lowest();

    void Add(const TMyShape &shape)
    {
        if (shape.GetPointsCount() == 0)
            return;
        const TMyPoint lt = shape.GetLeftTop();
        const TMyPoint rb = shape.GetRightBottom();
        Left = std::min(Left, lt.X);
        Top = std::min(Top, lt.Y);
        Right = std::max(Right, rb.X);
        Bottom = std::max(Bottom, rb.Y);
    }
    bool IsEmpty() const { return Left > Right; }
};

// How far a shape with box own moves to meet the common box all along edge (document).
TMyPoint AlignOffset(std::int32_t edge, const TBox &own, const TBox &all)
{
    switch (edge) {
    case AlignEdgeLeft:
        return {all.Left - own.Left, 0};
    case AlignEdgeRight:
        return {all.Right - own.Right, 0};
    case AlignEdgeTop:
        return {0, all.Top - own.Top};
    case AlignEdgeBottom:
        return {0, all.Bottom - own.Bottom};
    case AlignEdgeHCenter:
        return {(all.Right - all.Left) / 2 + all.Left - (own.Left + own.Right) / 2, 0};
    case AlignEdgeVCenter:
        return {0, (all.Bottom - all.Top) / 2 + all.Top - (own.Top + own.Bottom) / 2};
    default:
        return {0, 0};
    }
}

} // namespace

// ---- Grouping ----

std::vector<TMyShape *> Grouping::Roots(const TShapeList &list, std::span<TMyShape *const> shapes,
                                        std::int32_t &layer)
{
    std::vector<TMyShape *> roots;
    std::vector<TMyShape *> given;
    std::unordered_set<const TMyShape *> taken; // a group of a whole big drawing stays linear
    for (TMyShape *shape : shapes) {
        if (PlaceOf(list, shape) < 0)
            continue;
        given.push_back(shape);
        TMyShape *root = RootOf(list, shape);
        if (taken.insert(root).second)
            roots.push_back(root);
    }
    if (roots.empty())
        return {};
    layer = given.front()->LayerId();
    for (const std::vector<TMyShape *> *each : {&given, &roots})
        for (const TMyShape *shape : *each)
            if (shape->LayerId() != layer || !shape->Visible())
                return {};
    return roots;
}

std::unique_ptr<TMyShape> Grouping::NewGroup(TMyCAD &surface, const QString &className,
                                             std::span<TMyShape *const> roots, std::int32_t layer,
                                             std::int32_t no, std::int32_t id)
{
    TBox box;
    for (const TMyShape *root : roots)
        box.Add(*root);
    if (box.IsEmpty())
        box = TBox{0, 0, 0, 0};
    std::unique_ptr<TMyShape> group = surface.CreateShapeByName(className);
    // The corners go in as zoomed pixels, the way AddPoint takes them.
    const double zoom = surface.Zoom();
    const float l = float(box.Left * zoom), t = float(box.Top * zoom);
    const float r = float(box.Right * zoom), b = float(box.Bottom * zoom);
    for (TMyPoint corner : {TMyPoint{l, t}, TMyPoint{r, t}, TMyPoint{r, b}, TMyPoint{l, b}})
        group->AddPoint(corner);
    group->SetShapeNo(no);
    group->SetShapeId(id);
    group->SetName(QStringLiteral("Shape") + QString::number(id));
    const TMyPoint centre = group->ComputeCenterPoint(4);
    group->SetCenterPoint(centre);
    group->SetTextPoint({centre.X, group->GetLeftBottom().Y + 10});
    group->SetParentNo(-1);
    // The group lies on its members' layer, whatever layer is current.
    group->SetLayerId(layer);
    return group;
}

void Grouping::Adopt(const TShapeList &list, TMyShape &group, std::int32_t no,
                     std::span<TMyShape *const> roots)
{
    for (TMyShape *root : roots) {
        group.ChildShapes().push_back(PlaceOf(list, root));
        root->SetParentNo(no);
    }
    std::sort(group.ChildShapes().begin(), group.ChildShapes().end());
}

std::int32_t TMyCAD::GroupShapes(std::span<TMyShape *const> shapes, bool record)
{
    return GroupShapesAs(shapes, record, QStringLiteral("TMyGroup"));
}

std::int32_t TMyCAD::CombineShapes(std::span<TMyShape *const> shapes, bool record)
{
    return GroupShapesAs(shapes, record, QStringLiteral("TMyCombine"));
}

std::int32_t TMyCAD::GroupShapesAs(std::span<TMyShape *const> shapes, bool record,
                                   const QString &className)
{
    std::int32_t layer = 0;
    const std::vector<TMyShape *> roots = Grouping::Roots(m_Shapes, shapes, layer);
    if (roots.empty())
        return -1;
    const std::int32_t no = GetShapesCount();
    const std::int32_t id = m_ShapeIdCounter;
    std::unique_ptr<TMyShape> group = Grouping::NewGroup(*this, className, roots, layer, no, id);
    TMyShape *added = group.get();
    if (!AddShape(added, true, false))
        return -1;
    group.release();
    Grouping::Adopt(m_Shapes, *added, no, roots);
    if (record) {
        TMyShape *const one[] = {added};
        PushtoUndoRedoShapeList(one, 0, ACT_GROUP);
    }
    m_WorkingShapes = {added};
    m_CurrentShape = added;
    // The members leave the index, which takes in the appended group at its next query.
    for (TMyShape *root : roots)
        ShapeJoinedGroup(root);
    Invalidate();
    return id;
}

std::int32_t TMyCAD::GroupWorkingShape()
{
    const std::vector<TMyShape *> shapes = m_WorkingShapes;
    return GroupShapes(shapes, true);
}

std::int32_t TMyCAD::CombineWorkingShape()
{
    const std::vector<TMyShape *> shapes = m_WorkingShapes;
    return CombineShapes(shapes, true);
}

// A locked group is left alone: its deletion would be refused after its members had been
// let go.
void TMyCAD::UnGroupShape(TMyShape *group, bool record)
{
    if (!group || group->HasParentShape() || group->Locked() || !dynamic_cast<TMyGroup *>(group))
        return;
    const std::int32_t no = GetShapeNoInMyShapes(group);
    if (no < 0)
        return;
    m_Ungrouping = true;
    ClearWorkingShapes();
    if (record) {
        TMyShape *const one[] = {group};
        PushtoUndoRedoShapeList(one, 0, ACT_UNGROUP);
    }
    std::vector<TMyShape *> members;
    for (std::int32_t member : group->ChildShapes())
        if (TMyShape *shape = GetShapeByNo(member); shape && shape->ParentNo() == no) {
            shape->SetParentNo(-1);
            members.push_back(shape);
        }
    group->ChildShapes().clear();
    DeleteShapeById(group->ShapeId(), false);
    m_Ungrouping = false;
    // The former members join the index as shapes of their own.
    for (TMyShape *member : members)
        ShapeGeometryChanged(member);
    Invalidate();
}

// ---- Alignment ----

void TMyCAD::MoveTree(TMyShape *shape, double dx, double dy, std::int32_t depth)
{
    if (!shape || depth > GetShapesCount())
        return;
    shape->DragChangeValuedxdy(dx, dy);
    for (std::int32_t no : shape->ChildShapes()) {
        TMyShape *child = GetShapeByNo(no);
        if (child && child != shape)
            MoveTree(child, dx, dy, depth + 1);
    }
}

void TMyCAD::MoveShapesBy(const std::vector<TMyShape *> &shapes, double dx, double dy)
{
    // Told shape by shape, a large part of the drawing costs more than making the index again.
    if (shapes.size() > std::size_t(GetShapesCount() / 8))
        ShapesRenumbered();
    for (TMyShape *shape : shapes)
        DragChangeValueDxDyforShapes(shape, dx, dy);
    for (TMyShape *shape : shapes)
        ChangeLinkShapes(shape);
}

void TMyCAD::Align(std::int32_t edge)
{
    if (m_WorkingShapes.size() < 2)
        return;
    const std::vector<TMyShape *> shapes = m_WorkingShapes;
    PushtoUndoRedoShapeList(shapes, std::int32_t(shapes.size()) - 1, ACT_CHANGE);
    TBox all;
    for (const TMyShape *shape : shapes)
        all.Add(*shape);
    const double zoom = Zoom();
    for (TMyShape *shape : shapes) {
        TBox own;
        own.Add(*shape);
        if (own.IsEmpty())
            continue;
        // Announced as every move by code is, in zoomed pixels, before it is made.
        const TMyPoint d = AlignOffset(edge, own, all);
        if (m_OnShapeCodeDragging)
            m_OnShapeCodeDragging(this, shape, d.X * zoom, d.Y * zoom);
        MoveTree(shape, d.X * zoom, d.Y * zoom, 0);
    }
    for (TMyShape *shape : shapes)
        ChangeLinkShapes(shape);
    CommandChangedGeometry(shapes);
}

// The index takes the changed shapes (with their members) in one by one, or is made again
// when they are a large part of the drawing. Connectors that followed them report
// themselves as they are routed again.
void TMyCAD::CommandChangedGeometry(std::span<TMyShape *const> shapes)
{
    if (shapes.size() > std::size_t(GetShapesCount() / 8))
        ShapesRenumbered();
    for (TMyShape *shape : shapes)
        ShapeGeometryChanged(shape);
    Invalidate();
}

void TMyCAD::AlignLeft()
{
    Align(AlignEdgeLeft);
}

void TMyCAD::AlignRight()
{
    Align(AlignEdgeRight);
}

void TMyCAD::AlignTop()
{
    Align(AlignEdgeTop);
}

void TMyCAD::AlignBottom()
{
    Align(AlignEdgeBottom);
}

void TMyCAD::AlignHorizontalCenter()
{
    Align(AlignEdgeHCenter);
}

void TMyCAD::AlignVerticalCenter()
{
    Align(AlignEdgeVCenter);
}

// ---- Stacking order ----

void TMyCAD::BringToFront(TMyShape *shape, bool record)
{
    if (GetShapeNoInMyShapes(shape) < 0)
        return;
    if (record) {
        TMyShape *const one[] = {shape};
        PushtoUndoRedoShapeList(one, 0, ACT_BRINGTOFRONT);
    }
    RotateToEnd(shape, true);
    RestackChanged(shape);
}

void TMyCAD::SendToBack(TMyShape *shape, bool record)
{
    if (GetShapeNoInMyShapes(shape) < 0)
        return;
    if (record) {
        TMyShape *const one[] = {shape};
        PushtoUndoRedoShapeList(one, 0, ACT_SENDTOBACK);
    }
    RotateToEnd(shape, false);
    RestackChanged(shape);
}

void TMyCAD::BringToFrontByStep(TMyShape *shape, bool record)
{
    if (GetShapeNoInMyShapes(shape) < 0)
        return;
    if (record) {
        TMyShape *const one[] = {shape};
        PushtoUndoRedoShapeList(one, 0, ACT_BRINGTOFRONTBYSTEP);
    }
    if (TMyShape *next = GetNextSingleorRootShape(GetShapeNoInMyShapes(shape)))
        SwapShape(shape, next);
}

void TMyCAD::SendToBackByStep(TMyShape *shape, bool record)
{
    if (GetShapeNoInMyShapes(shape) < 0)
        return;
    if (record) {
        TMyShape *const one[] = {shape};
        PushtoUndoRedoShapeList(one, 0, ACT_SENDTOBACKBYSTEP);
    }
    if (TMyShape *prev = GetPrevSingleorRootShape(GetShapeNoInMyShapes(shape)))
        SwapShape(shape, prev);
}

// The shape is exchanged with each top-level shape above it (toFront) or below it in turn,
// as far as they go: it takes the place of the last of them and each of them the place of
// the one before, while group members stay where they are. One renumbering does what the
// chain of exchanges would, instead of one for every shape passed.
//
// When every other shape on the way is top-level, they all go one place over, and the shape
// moves within the index to the top or bottom; otherwise the index is made again.
void TMyCAD::RotateToEnd(TMyShape *shape, bool toFront)
{
    const std::int32_t from = GetShapeNoInMyShapes(shape);
    const auto count = std::int32_t(m_Shapes.size());
    std::vector<std::int32_t> places;
    const std::int32_t end = toFront ? count : from;
    for (std::int32_t i = toFront ? from + 1 : 0; i < end; ++i) {
        if (i + 8 < end)
            __builtin_prefetch(m_Shapes[std::size_t(i + 8)].get());
        if (m_Shapes[std::size_t(i)]->ParentNo() == -1)
            places.push_back(i);
    }
    if (places.empty())
        return;
    places.insert(toFront ? places.begin() : places.end(), from);
    const bool onlyTopLevel = places.size() == std::size_t(toFront ? count - from : from + 1);
    const bool keepIndex =
        onlyTopLevel && m_Index && !m_Index->IsStale() && (toFront || m_Index->MoveToBottom(shape));
    if (keepIndex && toFront) {
        TMyShape *const one[] = {shape};
        m_Index->Remove(one);
    }
    if (keepIndex)
        ForgetPlaces();
    else
        ShapesRenumbered();
    std::vector<std::int32_t> newNo(m_Shapes.size());
    std::iota(newNo.begin(), newNo.end(), 0);
    const std::size_t last = places.size() - 1;
    std::vector<std::unique_ptr<TMyShape>> moving(places.size());
    for (std::size_t i = 0; i <= last; ++i) {
        const std::size_t to = toFront ? (i == 0 ? last : i - 1) : (i == last ? 0 : i + 1);
        newNo[std::size_t(places[i])] = places[to];
        moving[i] = std::move(m_Shapes[std::size_t(places[i])]);
    }
    for (std::size_t i = 0; i <= last; ++i)
        m_Shapes[std::size_t(newNo[std::size_t(places[i])])] = std::move(moving[i]);
    RenumberRelations(
        [&newNo](std::int32_t n) {
            return n >= 0 && std::size_t(n) < newNo.size() ? newNo[std::size_t(n)] : n;
        },
        true);
}

// Child lists are kept ascending, which an exchange of two numbers can upset. Shapes the
// index holds exchange their places in it too.
void TMyCAD::SwapShape(TMyShape *a, TMyShape *b)
{
    const std::int32_t na = GetShapeNoInMyShapes(a);
    const std::int32_t nb = GetShapeNoInMyShapes(b);
    if (na < 0 || nb < 0 || na == nb)
        return;
    std::swap(m_Shapes[std::size_t(na)], m_Shapes[std::size_t(nb)]);
    if (m_Index && !m_Index->IsStale() && std::max(na, nb) < m_Index->Count()) {
        m_Index->Swap(na, nb);
        ForgetPlaces();
    } else {
        ShapesRenumbered();
    }
    RenumberRelations([na, nb](std::int32_t n) { return n == na ? nb : (n == nb ? na : n); }, true);
    RestackChanged(a);
    RestackChanged(b);
}

// Only the pixels of the shape's tree, and of its handles, change with its place in the
// drawing order.
void TMyCAD::RestackChanged(TMyShape *shape)
{
    InvalidateRect(HandlesReach(GetRootParentShape(shape)));
}

// ---- Flipping, locking, turning ----

void TMyCAD::FlipTree(TMyShape *shape, bool horizontal, std::int32_t depth)
{
    if (!shape || depth > GetShapesCount())
        return;
    for (std::int32_t no : shape->ChildShapes()) {
        TMyShape *child = GetShapeByNo(no);
        if (child && child != shape)
            FlipTree(child, horizontal, depth + 1);
    }
    if (shape->Locked())
        return;
    if (horizontal)
        shape->FlipHoriz();
    else
        shape->FlipVert();
    ChangeLinkShapes(shape);
}

void TMyCAD::FlipShape(TMyShape *shape, bool horizontal)
{
    if (GetShapeNoInMyShapes(shape) < 0 || dynamic_cast<TMyLinkLine *>(shape))
        return;
    TMyShape *const one[] = {shape};
    PushtoUndoRedoShapeList(one, 0, ACT_CHANGE);
    FlipTree(shape, horizontal, 0);
    CommandChangedGeometry(one);
}

void TMyCAD::FlipHoriz(TMyShape *shape)
{
    FlipShape(shape, true);
}

void TMyCAD::FlipVert(TMyShape *shape)
{
    FlipShape(shape, false);
}

void TMyCAD::LockUnLockforShapes(TMyShape *shape, bool locked)
{
    if (shape)
        LockShape(shape, locked);
}

void TMyCAD::Rotate(TMyShape *shape, float angle)
{
    if (!shape)
        return;
    if (m_OnShapeCodeRotating)
        m_OnShapeCodeRotating(this, shape, angle);
    shape->SetAngle(angle);
    ChangeLinkShapes(shape);
    if (m_OnShapeCodeRotating) {
        // The handler may have changed anything.
        DocumentChanged();
        return;
    }
    TMyShape *const one[] = {shape};
    CommandChangedGeometry(one);
}

float TMyCAD::Tilt(TMyShape *shape, TMyPoint centre, TMyPoint from, TMyPoint to, bool constrained)
{
    if (!shape)
        return 0;
    const double angle = shape->GetRotatedAngle(centre, from, to, constrained);
    RotateChangeValueforShapes(shape, centre, angle);
    ChangeLinkShapes(shape);
    return float(angle);
}

// Announced as Rotate announces a turn: before it, with the angle the shape will have.
void TMyCAD::RotateChangeValueforShapes(TMyShape *shape, TMyPoint centre, double angle)
{
    if (!shape)
        return;
    if (m_OnShapeCodeRotating) {
        float to = float(shape->Angle() + angle);
        RecaclinRad(to);
        m_OnShapeCodeRotating(this, shape, to);
    }
    RotateTree(shape, centre, angle, 0);
    ShapeGeometryChanged(shape);
    Invalidate();
}

// ChangeLinkShapes, which re-routes the connectors of moved shapes, lives with the other
// connector operations in routing.cpp.

} // namespace tessal
