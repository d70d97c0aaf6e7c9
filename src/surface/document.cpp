// SPDX-License-Identifier: MIT
// The shape list of a surface: adding, look-ups, deletion with renumbering, relations and
// the working shapes.
#include <tessal/surface/cad.h>
#include <tessal/surface/grouping_p.h>
#include <tessal/surface/idplaces_p.h>
#include <tessal/surface/mouse_p.h>
#include <tessal/surface/nameplaces_p.h>

#include <tessal/platform/message.h>
#include <tessal/shapes/link.h>
#include <tessal/shapes/shape.h>
#include <tessal/shapes/shapekind.h>
#include <tessal/shapes/shapetools.h>

#include <QCoreApplication>

#include <algorithm>
#include <unordered_set>

namespace tessal {

namespace {

// A shape without any layer would be invisible and unreachable, so by default the
// application is ended: a surface has a layer unless the application deleted them all.
void DefaultNoLayer(TMyCAD *)
{
    ShowMessage(QStringLiteral("Error!There is no Layer!"));
    QCoreApplication::exit(1);
}

TMyCAD::TNoLayerHandler &NoLayerHandler()
{
    static TMyCAD::TNoLayerHandler handler = &DefaultNoLayer;
    return handler;
}

} // namespace

TMyCAD::TNoLayerHandler TMyCAD::SetNoLayerHandler(TNoLayerHandler handler)
{
    TNoLayerHandler old = NoLayerHandler();
    NoLayerHandler() = handler ? std::move(handler) : TNoLayerHandler(&DefaultNoLayer);
    return old;
}

bool TMyCAD::AddShape(TMyShape *shape, bool keepLayer, bool noIdCount)
{
    if (!shape)
        return false;
    if (m_Layers.empty()) {
        NoLayerHandler()(this);
        return false;
    }
    m_Shapes.emplace_back(shape);
    shape->SetListPlace(GetShapesCount() - 1);
    // A shape made by another control belongs to this one now.
    shape->SetHost(this);
    if (!keepLayer)
        shape->SetLayerId(m_CurrentLayerId);
    if (!noIdCount)
        ++m_ShapeIdCounter;
    return true;
}

// ---- Look-ups ----

TMyShape *TMyCAD::GetShapeByNo(std::int32_t no) const
{
    if (no < 0 || no >= GetShapesCount())
        return nullptr;
    return m_Shapes[std::size_t(no)].get();
}

TMyShape *TMyCAD::GetShapeByID(std::int32_t id) const
{
    // Identities are handed out by the counter, so nothing outside its range can exist.
    if (id < 0 || id >= m_ShapeIdCounter)
        return nullptr;
    return GetShapeByNo(GetShapeNoById(id));
}

TMyShape *TMyCAD::GetShapeByName(const QString &name) const
{
    if (!m_NamePlaces)
        m_NamePlaces = std::make_unique<TNamePlaces>();
    return GetShapeByNo(m_NamePlaces->Find(m_Shapes, name));
}

// Every shape by identity, for work that would otherwise search the list once per shape.
TShapesById TMyCAD::ShapesById() const
{
    return TShapesById(m_Shapes);
}

std::int32_t TMyCAD::GetShapeNoById(std::int32_t id) const
{
    if (!m_IdPlaces)
        m_IdPlaces = std::make_unique<TIdPlaces>();
    if (const std::int32_t no = m_IdPlaces->Find(m_Shapes, id); no >= 0)
        return no;
    // Not in the table: a shape that is gone, or an identity far beyond the others.
    for (std::size_t i = 0; i < m_Shapes.size(); ++i)
        if (m_Shapes[i]->ShapeId() == id)
            return std::int32_t(i);
    return -1;
}

void TMyCAD::ForgetPlaces() const
{
    if (m_IdPlaces)
        m_IdPlaces->Forget();
    if (m_NamePlaces)
        m_NamePlaces->Forget();
}

// A shape not yet in the list (being made, or read) is none of the table's business. A
// listed shape knows its place; looking further would search the list for every shape made.
void TMyCAD::ShapeIdChanged(TMyShape &shape)
{
    if (Grouping::HintedPlace(m_Shapes, &shape) >= 0)
        ForgetPlaces();
}

std::int32_t TMyCAD::GetShapeNoInMyShapes(const TMyShape *shape) const
{
    return Grouping::PlaceOf(m_Shapes, shape);
}

std::int32_t Grouping::HintedPlace(const TShapeList &list, const TMyShape *shape)
{
    const auto holds = [&list, shape](std::int32_t no) {
        return no >= 0 && std::size_t(no) < list.size() && list[std::size_t(no)].get() == shape;
    };
    // The place hint, or the number, which is the place of a shape appended since the last
    // deletion or reorder.
    if (holds(shape->ListPlace()))
        return shape->ListPlace();
    if (holds(shape->ShapeNo()))
        return shape->ShapeNo();
    return -1;
}

std::int32_t Grouping::PlaceOf(const TShapeList &list, const TMyShape *shape)
{
    if (!shape)
        return -1;
    if (const std::int32_t hinted = HintedPlace(list, shape); hinted >= 0)
        return hinted;
    // A detached shape costs a search that reads no shape. A listed one means that hints are
    // out of date, most likely all of them (shapes added or read with numbers of their own):
    // one pass mends every hint, rather than a search for each shape asked for next.
    const auto at = std::find_if(list.begin(), list.end(),
                                 [shape](const auto &each) { return each.get() == shape; });
    if (at == list.end())
        return -1;
    for (std::size_t i = 0; i < list.size(); ++i)
        list[i]->SetListPlace(std::int32_t(i));
    return std::int32_t(at - list.begin());
}

bool TMyCAD::RenameShapeName(const QString &oldName, const QString &newName)
{
    if (oldName == newName || GetShapeByName(newName))
        return false;
    TMyShape *shape = GetShapeByName(oldName);
    if (!shape)
        return false;
    shape->SetName(newName);
    return true;
}

// ---- Relations ----

TMyShape *TMyCAD::GetRootParentShape(TMyShape *shape) const
{
    return Grouping::RootOf(m_Shapes, shape);
}

TMyShape *Grouping::RootOf(const TShapeList &list, TMyShape *shape)
{
    if (!shape)
        return nullptr;
    // A parent chain can be no longer than the list; the bound stops a corrupt cycle.
    const std::int32_t count = std::int32_t(list.size());
    for (std::int32_t steps = 0; shape->ParentNo() != -1 && steps < count; ++steps) {
        const std::int32_t no = shape->ParentNo();
        if (no < 0 || no >= count)
            break;
        shape = list[std::size_t(no)].get();
    }
    return shape;
}

bool TMyCAD::areTheyBrother(TMyShape *a, TMyShape *b) const
{
    if (!a || !b || a == b || !a->HasParentShape() || !b->HasParentShape())
        return false;
    return GetRootParentShape(a) == GetRootParentShape(b);
}

TMyShape *TMyCAD::GetNextSingleorRootShape(std::int32_t no) const
{
    for (std::int32_t i = std::max(no + 1, 0); i < GetShapesCount(); ++i)
        if (m_Shapes[std::size_t(i)]->ParentNo() == -1)
            return m_Shapes[std::size_t(i)].get();
    return nullptr;
}

TMyShape *TMyCAD::GetPrevSingleorRootShape(std::int32_t no) const
{
    for (std::int32_t i = std::min(no, GetShapesCount()) - 1; i >= 0; --i)
        if (m_Shapes[std::size_t(i)]->ParentNo() == -1)
            return m_Shapes[std::size_t(i)].get();
    return nullptr;
}

void TMyCAD::RenumberRelations(const std::function<std::int32_t(std::int32_t)> &map, bool reordered)
{
    // In place: most lists are empty, and a drawing has a million of them.
    const auto remap = [&map](std::vector<std::int32_t> &numbers) {
        auto kept = numbers.begin();
        for (const std::int32_t n : numbers)
            if (const std::int32_t m = map(n); m >= 0)
                *kept++ = m;
        numbers.erase(kept, numbers.end());
    };
    TShapeKind<TMyLinkLine> asLink;
    const std::size_t count = m_Shapes.size();
    for (std::size_t i = 0; i < count; ++i) {
        // The objects lie apart in memory: shapes further on are asked for while this one is
        // done, at both ends (the class, and the relation lists).
        if (i + 16 < count) {
            TMyShape *ahead = m_Shapes[i + 16].get();
            __builtin_prefetch(ahead);
            __builtin_prefetch(&ahead->ChildShapes());
        }
        TMyShape *shape = m_Shapes[i].get();
        shape->SetListPlace(std::int32_t(i));
        if (shape->ParentNo() >= 0)
            shape->SetParentNo(std::max(map(shape->ParentNo()), -1));
        remap(shape->ChildShapes());
        if (reordered)
            std::sort(shape->ChildShapes().begin(), shape->ChildShapes().end());
        remap(shape->LinkShapes());
        if (TMyLinkLine *link = asLink(shape)) {
            if (link->StartSpNo() >= 0) {
                const std::int32_t m = map(link->StartSpNo());
                link->SetStartSpNo(std::max(m, -1));
                if (m < 0)
                    link->SetStartSpPtId(-1);
            }
            if (link->EndSpNo() >= 0) {
                const std::int32_t m = map(link->EndSpNo());
                link->SetEndSpNo(std::max(m, -1));
                if (m < 0)
                    link->SetEndSpPtId(-1);
            }
        }
    }
}

// ---- Deletion ----

// Members first, so that a group is removed after everything it holds. Depth guards a
// corrupt child list that leads back to an ancestor.
void TMyCAD::CollectDeletion(TMyShape *shape, bool honourLocks, TDeletion &deletion,
                             std::int32_t depth)
{
    if (!shape || depth > GetShapesCount() || deletion.Taken.contains(shape))
        return;
    const std::vector<std::int32_t> children = shape->ChildShapes();
    for (std::int32_t no : children) {
        TMyShape *child = GetShapeByNo(no);
        if (child && child != shape && !(honourLocks && child->Locked()))
            CollectDeletion(child, honourLocks, deletion, depth + 1);
    }
    DetachLinks(shape);
    deletion.Taken.insert(shape);
    deletion.Shapes.push_back(shape);
}

// A connector bound to the shape lets go of it and stays; a connector that goes leaves the
// connector lists of the shapes it was bound to.
void TMyCAD::DetachLinks(TMyShape *shape)
{
    const std::int32_t no = GetShapeNoInMyShapes(shape);
    for (std::int32_t k : shape->LinkShapes()) {
        auto *link = dynamic_cast<TMyLinkLine *>(GetShapeByNo(k));
        if (!link)
            continue;
        if (link->StartSpNo() == no) {
            link->SetStartSpNo(-1);
            link->SetStartSpPtId(-1);
        }
        if (link->EndSpNo() == no) {
            link->SetEndSpNo(-1);
            link->SetEndSpPtId(-1);
        }
    }
    if (auto *link = dynamic_cast<TMyLinkLine *>(shape)) {
        if (TMyShape *start = GetShapeByNo(link->StartSpNo()))
            RemoveLinklineShape(*start, no);
        if (TMyShape *end = GetShapeByNo(link->EndSpNo()))
            RemoveLinklineShape(*end, no);
    }
}

// Removing the shapes one by one, each time lowering every number above the removed one,
// gives the same numbers as this single pass: a remaining shape's new number is its old
// one less the removed shapes below it. A reference to a removed shape is dropped (a
// member whose group went becomes top-level, a connector end bound to it is set free).
void TMyCAD::RemoveShapes(const std::vector<TMyShape *> &shapes)
{
    if (shapes.empty())
        return;
    // The list is gone through by place: a set asked for every shape of a big drawing would
    // cost more than the rest. What remembers shapes asks the set.
    std::vector<bool> gone(m_Shapes.size(), false);
    for (const TMyShape *shape : shapes)
        if (const std::int32_t no = GetShapeNoInMyShapes(shape); no >= 0)
            gone[std::size_t(no)] = true;
    const std::unordered_set<const TMyShape *> leaving(shapes.begin(), shapes.end());
    std::vector<std::int32_t> newNo(m_Shapes.size(), -1);
    std::int32_t next = 0;
    for (std::size_t i = 0; i < m_Shapes.size(); ++i)
        if (!gone[i])
            newNo[i] = next++;
    const std::vector<TMyShape *> regrouped = RegroupedByRemoval(shapes, gone);
    ForgetShapes([&leaving](const TMyShape *shape) { return leaving.contains(shape); });
    if (m_Index && !m_Index->IsStale())
        m_Index->Remove(shapes);
    for (std::size_t i = 0; i < m_Shapes.size(); ++i)
        if (!gone[i] && std::size_t(newNo[i]) != i)
            m_Shapes[std::size_t(newNo[i])] = std::move(m_Shapes[i]);
    m_Shapes.resize(std::size_t(next));
    if (m_IdPlaces)
        m_IdPlaces->Removed(newNo);
    if (m_NamePlaces)
        m_NamePlaces->Forget();
    RenumberRelations([&newNo](std::int32_t n) {
        return n >= 0 && std::size_t(n) < newNo.size() ? newNo[std::size_t(n)] : -1;
    });
    for (TMyShape *shape : regrouped)
        ShapeGeometryChanged(shape);
}

// The shapes that stay whose extent a removal changes: a group losing members, and members
// left without their group, which become shapes of their own.
std::vector<TMyShape *> TMyCAD::RegroupedByRemoval(const std::vector<TMyShape *> &shapes,
                                                   const std::vector<bool> &goneByPlace) const
{
    std::vector<TMyShape *> regrouped;
    const auto keep = [&](std::int32_t no) {
        TMyShape *shape = GetShapeByNo(no);
        if (shape && !goneByPlace[std::size_t(no)])
            regrouped.push_back(shape);
    };
    for (const TMyShape *shape : shapes) {
        keep(shape->ParentNo());
        for (const std::int32_t child : shape->ChildShapes())
            keep(child);
    }
    return regrouped;
}

void TMyCAD::RemoveShapeTree(TMyShape *shape, bool honourLocks)
{
    TDeletion deletion;
    CollectDeletion(shape, honourLocks, deletion, 0);
    RemoveShapes(deletion.Shapes);
}

void TMyCAD::ForgetShape(const TMyShape *shape)
{
    ForgetShapes([shape](const TMyShape *each) { return each == shape; });
}

void TMyCAD::ForgetShapes(const std::function<bool(const TMyShape *)> &gone)
{
    m_Mouse->Forget(gone);
    m_WorkingShapes.EraseIf(gone);
    if (m_CurrentShape && gone(m_CurrentShape))
        m_CurrentShape = nullptr;
    if (m_HotHighlight.Shape && gone(m_HotHighlight.Shape))
        m_HotHighlight = {};
}

bool TMyCAD::DeleteShapeById(std::int32_t id, bool withUndo)
{
    TMyShape *shape = GetShapeByID(id);
    if (!shape || shape->Locked())
        return false;
    if (m_OnShapeDeleted && !m_Ungrouping) {
        m_OnShapeDeleted(this, shape);
        // The handler may have changed the document.
        shape = GetShapeByID(id);
        if (!shape || shape->Locked())
            return false;
    }
    if (withUndo) {
        TMyShape *const one[] = {shape};
        PushtoUndoRedoShapeList(one, 0, ACT_DELETE);
    }
    RemoveShapeTree(shape, true);
    ClearWorkingShapes();
    ShapesRemoved();
    return true;
}

// The removal kept the index current; a deletion handler may have changed anything else.
void TMyCAD::ShapesRemoved()
{
    if (m_OnShapeDeleted)
        DocumentChanged();
    else
        Invalidate();
}

void TMyCAD::DeleteSelectedShapes()
{
    std::vector<TMyShape *> shapes;
    for (TMyShape *shape : m_WorkingShapes)
        if (!shape->Locked())
            shapes.push_back(shape);
    if (!shapes.empty())
        PushtoUndoRedoShapeList(shapes, std::int32_t(shapes.size()) - 1, ACT_DELETE);
    DeleteShapesTogether(shapes);
    ClearWorkingShapes();
    ShapesRemoved();
}

void TMyCAD::DeleteShapesTogether(const std::vector<TMyShape *> &shapes)
{
    // Removed together, the list is renumbered once rather than once a shape: one by one,
    // deleting a million shapes would renumber a million shapes a million times.
    TDeletion deletion;
    if (!m_OnShapeDeleted) {
        for (TMyShape *shape : shapes)
            CollectDeletion(shape, true, deletion, 0);
        RemoveShapes(deletion.Shapes);
        return;
    }
    AnnounceDeletion(shapes, deletion);
    RemoveShapes(deletion.Shapes);
    ClearWorkingShapes();
    ShapesRemoved();
}

void TMyCAD::AnnounceDeletion(const std::vector<TMyShape *> &shapes, TDeletion &deletion)
{
    // As when all shapes go, each shape is announced while it and all announced before it
    // still exist. A handler may change the document, even remove a later shape, so before
    // each step a shape must still be listed, found by its address without touching it, and
    // still carry its identity (a new shape may have taken a freed address).
    struct TLeaving
    {
        TMyShape *Shape;
        std::int32_t Id, Place;
    };
    std::vector<TLeaving> leaving;
    for (TMyShape *shape : shapes)
        if (const std::int32_t no = GetShapeNoInMyShapes(shape); no >= 0)
            leaving.push_back({shape, shape->ShapeId(), no});
    const auto present = [this](TLeaving &each) {
        if (std::size_t(each.Place) >= m_Shapes.size() ||
            m_Shapes[std::size_t(each.Place)].get() != each.Shape) {
            const auto at = std::find_if(m_Shapes.begin(), m_Shapes.end(),
                                         [&each](const auto &s) { return s.get() == each.Shape; });
            if (at == m_Shapes.end())
                return false;
            each.Place = std::int32_t(at - m_Shapes.begin());
        }
        return each.Shape->ShapeId() == each.Id && !each.Shape->Locked();
    };
    std::vector<TLeaving> announced;
    for (TLeaving &each : leaving)
        if (present(each)) {
            m_OnShapeDeleted(this, each.Shape);
            announced.push_back(each);
        }
    for (TLeaving &each : announced)
        if (present(each))
            CollectDeletion(each.Shape, true, deletion, 0);
}

void TMyCAD::DeleteAllShapes()
{
    m_Mouse->ForgetAll();
    if (m_OnShapeDeleted)
        for (const auto &shape : m_Shapes)
            if (!shape->HasParentShape())
                m_OnShapeDeleted(this, shape.get());
    m_WorkingShapes.clear();
    m_CurrentShape = nullptr;
    m_HotHighlight = {};
    m_Shapes.clear();
    ShapesRenumbered();
    DocumentChanged();
}

// ---- Working shapes ----

void TMyCAD::SetWorkingShapes(std::span<TMyShape *const> shapes)
{
    m_WorkingShapes.clear();
    for (TMyShape *shape : shapes) {
        if (GetShapeNoInMyShapes(shape) < 0)
            continue;
        TMyShape *root = GetRootParentShape(shape);
        if (!m_WorkingShapes.Contains(root))
            m_WorkingShapes.push_back(root);
    }
    Invalidate();
}

void TMyCAD::AddWorkingShape(TMyShape *shape)
{
    if (GetShapeNoInMyShapes(shape) < 0)
        return;
    TMyShape *root = GetRootParentShape(shape);
    if (!IsWorkingShape(root))
        m_WorkingShapes.push_back(root);
    Invalidate();
}

void TMyCAD::ClearWorkingShapes()
{
    m_WorkingShapes.clear();
    Invalidate();
}

bool TMyCAD::IsWorkingShape(const TMyShape *shape) const
{
    return m_WorkingShapes.Contains(shape);
}

void TMyCAD::SetCurrentShape(TMyShape *shape)
{
    m_CurrentShape = GetShapeNoInMyShapes(shape) < 0 ? nullptr : shape;
}

} // namespace tessal
