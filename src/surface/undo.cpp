// SPDX-License-Identifier: MIT
// The undo history: recording steps as shape copies and taking the newest step back.
#include <tessal/surface/cad.h>
#include <tessal/surface/idplaces_p.h>
#include <tessal/surface/shapestate_p.h>

#include <tessal/shapes/line.h>
#include <tessal/shapes/link.h>
#include <tessal/shapes/shape.h>
#include <tessal/shapes/shapekind.h>
#include <tessal/shapes/shapetools.h>

#include <algorithm>
#include <array>
#include <functional>
#include <limits>
#include <unordered_map>
#include <unordered_set>

namespace tessal {

namespace {

bool IsKnownAction(const QString &action)
{
    for (const QString *known :
         {&ACT_ADD, &ACT_CHANGE, &ACT_DELETE, &ACT_GROUP, &ACT_UNGROUP, &ACT_BRINGTOFRONT,
          &ACT_SENDTOBACK, &ACT_BRINGTOFRONTBYSTEP, &ACT_SENDTOBACKBYSTEP})
        if (action == *known)
            return true;
    return false;
}

// Where a deleted shape goes back: its recorded place, or after everything.
std::int32_t RestorePlace(const TMyCAD::TUndoRecord &record)
{
    return record.AtPlace ? record.Place : std::numeric_limits<std::int32_t>::max();
}

void ReplaceId(std::int32_t &id, std::int32_t from, std::int32_t to)
{
    if (id == from)
        id = to;
}

// A recorded layer that is gone since (merged away, or replaced by a load that failed)
// would leave the shape on no layer, unseen and out of reach: it stays on the one it has.
void KeepLayerIfGone(const TMyCAD &cad, TMyShape &live, std::int32_t layerNow)
{
    if (cad.GetLayerNoById(live.LayerId()) < 0)
        live.SetLayerId(layerNow);
}

} // namespace

// Everything a step must be able to give back. Assign carries geometry, appearance and
// relations but leaves out the text point, the identity and a few flags; a line's Assign
// also keeps the copy's own arrow offset.
void CopyWholeState(TMyShape &to, const TMyShape &from)
{
    to.Assign(from);
    to.SetTextPoint(from.TextPoint());
    to.SetShapeId(from.ShapeId());
    to.SetShapeNo(from.ShapeNo());
    to.SetName(from.Name());
    to.SetVisible(from.Visible());
    to.SetCaptionShow(from.CaptionShow());
    to.SetHotShow(from.HotShow());
    to.SetDragEnable(from.DragEnable());
    to.SetResizeEnable(from.ResizeEnable());
    to.SetRotateEnable(from.RotateEnable());
    to.SetLogUse(from.LogUse());
    to.SetLogHeight(from.LogHeight());
    to.SetLogWidth(from.LogWidth());
    to.SetPenStyleJoinType(from.PenStyleJoinType());
    to.SetPenStyleEndCapType(from.PenStyleEndCapType());
    const auto *fromLine = dynamic_cast<const TMyLine *>(&from);
    if (auto *toLine = dynamic_cast<TMyLine *>(&to); toLine && fromLine)
        toLine->SetArrowOffset(fromLine->ArrowOffset());
}

// ---- Recording ----

void TMyCAD::RecordShape(TMyShape *shape, std::int32_t step, const QString &action)
{
    TUndoRecord record;
    record.Copy = CreateShapeByName(shape->ClassName());
    if (!record.Copy)
        return;
    CopyWholeState(*record.Copy, *shape);
    record.Place = GetShapeNoInMyShapes(shape);
    // Connectors are not brought back with the shapes they were bound to.
    record.Copy->LinkShapes().clear();
    record.Step = step;
    record.ShapeName = shape->Name().left(255);
    record.Action = action;
    if (const TMyShape *parent = GetShapeByNo(shape->ParentNo()))
        record.ParentId = parent->ShapeId();
    for (std::int32_t no : shape->ChildShapes())
        if (const TMyShape *child = GetShapeByNo(no))
            record.ChildIds.push_back(child->ShapeId());
    if (const auto *link = dynamic_cast<const TMyLinkLine *>(shape)) {
        const TMyShape *start = GetShapeByNo(link->StartSpNo());
        const TMyShape *end = GetShapeByNo(link->EndSpNo());
        record.StartId = start ? start->ShapeId() : -1;
        record.EndId = end ? end->ShapeId() : -1;
    }
    m_UndoList.push_back(std::move(record));
}

// The shape, then its members depth first. Depth guards a corrupt child list.
void TMyCAD::RecordTree(TMyShape *shape, std::int32_t step, const QString &action,
                        bool childrenOnlyFromTop, std::int32_t depth)
{
    if (!shape || depth > GetShapesCount())
        return;
    RecordShape(shape, step, action);
    if (childrenOnlyFromTop && shape->HasParentShape())
        return;
    for (std::int32_t no : shape->ChildShapes()) {
        TMyShape *child = GetShapeByNo(no);
        if (child && child != shape)
            RecordTree(child, step, action, childrenOnlyFromTop, depth + 1);
    }
}

void TMyCAD::PushtoUndoRedoShapeList(std::span<TMyShape *const> shapes, std::int32_t highIndex,
                                     const QString &action)
{
    const std::int32_t last = std::min(highIndex, std::int32_t(shapes.size()) - 1);
    if (m_UndoRedoSize == 0 || last < 0 || !IsKnownAction(action))
        return;
    if (m_JoinDepth > 0 && m_JoinedStep >= 0 && !m_UndoList.empty() &&
        m_UndoList.back().Step == m_JoinedStep) {
        m_LastRecorded = m_UndoList.size();
        AppendRecords(shapes, last, m_JoinedStep, action);
        return;
    }
    // Tested by equality on purpose: a history longer than a reduced limit is kept.
    if (!m_UndoList.empty() && m_UndoList.back().Step == m_UndoRedoSize - 1) {
        const std::int32_t oldest = m_UndoList.front().Step;
        const auto kept = std::find_if(m_UndoList.begin(), m_UndoList.end(),
                                       [oldest](const TUndoRecord &r) { return r.Step != oldest; });
        m_UndoList.erase(m_UndoList.begin(), kept);
        for (TUndoRecord &record : m_UndoList)
            --record.Step;
    }
    const std::int32_t step = m_UndoList.empty() ? 0 : m_UndoList.back().Step + 1;
    m_LastRecorded = m_UndoList.size();
    AppendRecords(shapes, last, step, action);
    if (m_JoinDepth > 0)
        m_JoinedStep = step;
}

void TMyCAD::EndUndoStep()
{
    if (m_JoinDepth > 0 && --m_JoinDepth == 0)
        m_JoinedStep = -1;
}

void TMyCAD::AppendRecords(std::span<TMyShape *const> shapes, std::int32_t last, std::int32_t step,
                           const QString &action)
{
    if (action == ACT_UNGROUP) {
        RecordTree(shapes[0], step, action, true, 0);
    } else if (action == ACT_DELETE || action == ACT_CHANGE) {
        if (action == ACT_CHANGE)
            RecordBoundConnectors(shapes.first(std::size_t(last) + 1), step);
        for (std::int32_t i = last; i >= 0; --i)
            RecordTree(shapes[std::size_t(i)], step, action, false, 0);
    } else if (action == ACT_ADD) {
        for (std::int32_t i = last; i >= 0; --i)
            if (shapes[std::size_t(i)])
                RecordShape(shapes[std::size_t(i)], step, action);
    } else if (shapes[0]) {
        RecordShape(shapes[0], step, action);
    }
}

void TMyCAD::RecordEdit(std::span<TMyShape *const> shapes, const QString &action, bool join,
                        bool atPlace)
{
    const std::int32_t last = std::int32_t(shapes.size()) - 1;
    if (m_UndoRedoSize == 0 || last < 0 || !IsKnownAction(action))
        return;
    if (join && !m_UndoList.empty()) {
        m_LastRecorded = m_UndoList.size();
        AppendRecords(shapes, last, m_UndoList.back().Step, action);
    } else {
        PushtoUndoRedoShapeList(shapes, last, action);
    }
    for (std::size_t i = m_LastRecorded; i < m_UndoList.size(); ++i)
        m_UndoList[i].AtPlace = atPlace;
}

void TMyCAD::RecordFormerNames(const std::vector<std::pair<std::int32_t, QString>> &formerNames,
                               const TMyShape *firstAdded)
{
    // An addition is recorded last shape first, so its first shape is the newest record.
    if (m_UndoList.empty() || !firstAdded ||
        m_UndoList.back().Copy->ShapeId() != firstAdded->ShapeId())
        return;
    const std::int32_t step = m_UndoList.back().Step;
    for (const auto &[id, name] : formerNames) {
        TMyShape *shape = GetShapeByID(id);
        if (!shape)
            continue;
        RecordShape(shape, step, ACT_CHANGE);
        m_UndoList.back().ShapeName = name;
        m_UndoList.back().Scope = TUndoRecord::TScope::Name;
    }
}

// A connector's path depends on every shape it goes around, so re-routing it when its
// shapes get their state back need not give its old path: the path is recorded too. These
// records come first in the step, so that they are taken back last.
void TMyCAD::RecordBoundConnectors(std::span<TMyShape *const> shapes, std::int32_t step)
{
    // In the order first met; the sets keep a command on a whole big drawing linear.
    std::vector<TMyShape *> changed;
    std::unordered_set<const TMyShape *> met;
    const std::function<void(TMyShape *, std::int32_t)> collect = [&](TMyShape *shape,
                                                                      std::int32_t depth) {
        if (!shape || depth > GetShapesCount() || !met.insert(shape).second)
            return;
        changed.push_back(shape);
        for (std::int32_t no : shape->ChildShapes())
            collect(GetShapeByNo(no), depth + 1);
    };
    for (TMyShape *shape : shapes)
        collect(shape, 0);
    // Changed connectors too: their own record is followed by re-routes as their shapes
    // are taken back.
    std::vector<TMyShape *> connectors;
    std::unordered_set<const TMyShape *> taken;
    TShapeKind<TMyLinkLine> asLink;
    const auto add = [&](TMyShape *link) {
        if (asLink(link) && taken.insert(link).second)
            connectors.push_back(link);
    };
    for (TMyShape *shape : changed) {
        add(shape);
        for (std::int32_t no : shape->LinkShapes())
            add(GetShapeByNo(no));
    }
    for (TMyShape *link : connectors) {
        RecordShape(link, step, ACT_CHANGE);
        m_UndoList.back().Scope = TUndoRecord::TScope::Path;
    }
}

void TMyCAD::ClearAllUndoStuff()
{
    m_UndoList.clear();
}

// ---- Taking back ----

std::int32_t TMyCAD::PopFromUndoRedoShapeList()
{
    if (m_UndoRedoSize == 0 || m_UndoList.empty())
        return -1;
    ClearWorkingShapes();
    const std::int32_t step = m_UndoList.back().Step;
    std::size_t first = m_UndoList.size();
    while (first > 0 && m_UndoList[first - 1].Step == step)
        --first;

    std::vector<TMyShape *> regroup;
    const TUndoRecord *formerGroup = nullptr;
    std::vector<const TUndoRecord *> restore;

    // Added shapes that follow one another in the step go together.
    std::vector<std::int32_t> added;
    for (std::size_t i = m_UndoList.size(); i-- > first;) {
        const TUndoRecord &record = m_UndoList[i];
        const std::int32_t id = record.Copy->ShapeId();
        const bool adds = record.Scope == TUndoRecord::TScope::Whole && record.Action == ACT_ADD;
        if (!adds)
            DeleteAdded(added);
        if (record.Scope == TUndoRecord::TScope::Name) {
            if (TMyShape *live = GetShapeByID(id))
                live->SetName(record.ShapeName);
        } else if (record.Scope == TUndoRecord::TScope::Path) {
            TakeBackPath(record);
        } else if (record.Action == ACT_ADD) {
            added.push_back(id);
        } else if (record.Action == ACT_DELETE) {
            restore.push_back(&record);
        } else if (record.Action == ACT_CHANGE) {
            TakeBackChange(record);
        } else if (record.Action == ACT_GROUP) {
            UnGroupShape(GetShapeByID(id), false);
        } else if (record.Action == ACT_UNGROUP) {
            // A former member comes back into a new group only if it still exists: a copy
            // outside the document cannot be a member.
            if (record.Copy->HasParentShape() || !record.Copy->HasChildShapes()) {
                if (TMyShape *live = GetShapeByID(id))
                    regroup.push_back(live);
            } else {
                formerGroup = &record;
            }
        } else {
            TakeBackReorder(record);
        }
    }
    DeleteAdded(added);
    if (!regroup.empty())
        Regroup(regroup, formerGroup);
    if (!restore.empty())
        RestoreShapes(restore);
    m_UndoList.erase(m_UndoList.begin() + std::ptrdiff_t(first), m_UndoList.end());
    // Every operation above tells the index what it changed, or has it made again.
    Invalidate();
    return step - 1;
}

// Takes back the addition of the shapes with the identities ids, and empties ids. Without a
// deletion handler they go together: the list is renumbered once, and the shapes are found
// through one look at it rather than a search each.
void TMyCAD::DeleteAdded(std::vector<std::int32_t> &ids)
{
    if (ids.empty())
        return;
    if (m_OnShapeDeleted) {
        for (const std::int32_t id : ids)
            DeleteShapeById(id, false);
        ids.clear();
        return;
    }
    const TShapesById present = ShapesById();
    TDeletion deletion;
    for (const std::int32_t id : ids)
        if (TMyShape *shape = present.Find(id); shape && !shape->Locked())
            CollectDeletion(shape, true, deletion, 0);
    ids.clear();
    RemoveShapes(deletion.Shapes);
}

// The live shape takes the recorded state but keeps its place in the document: its name,
// number and relations are those of now. A connector whose ends differ is re-bound, so
// that the shapes' connector lists keep naming exactly the connectors bound to them.
void TMyCAD::TakeBackChange(const TUndoRecord &record)
{
    TMyShape *live = GetShapeByID(record.Copy->ShapeId());
    if (!live)
        return;
    // A command that changed the shape's class (a polyline closed into a polygon) is taken
    // back by an object of the recorded class in the same place.
    if (live->ClassName() != record.Copy->ClassName()) {
        std::unique_ptr<TMyShape> same = CreateShapeByName(record.Copy->ClassName());
        if (!same)
            return;
        CopyWholeState(*same, *live);
        live = ReplaceShapeObject(GetShapeNoInMyShapes(live), std::move(same));
    }
    const std::int32_t parent = live->ParentNo();
    const std::vector<std::int32_t> children = live->ChildShapes();
    const std::vector<std::int32_t> links = live->LinkShapes();
    const QString name = live->Name();
    const std::int32_t shapeNo = live->ShapeNo();
    auto *link = dynamic_cast<TMyLinkLine *>(live);
    const std::int32_t oldStart = link ? link->StartSpNo() : -1;
    const std::int32_t oldEnd = link ? link->EndSpNo() : -1;
    const std::int32_t layer = live->LayerId();

    CopyWholeState(*live, *record.Copy);
    KeepLayerIfGone(*this, *live, layer);
    live->SetParentNo(parent);
    live->ChildShapes() = children;
    live->LinkShapes() = links;
    live->SetName(name);
    live->SetShapeNo(shapeNo);
    if (link) {
        // The recorded ends name places of that time; deletions taken back since may have
        // moved the shapes, so the ends are found again by identity.
        link->SetStartSpNo(GetShapeNoInMyShapes(GetShapeByID(record.StartId)));
        link->SetEndSpNo(GetShapeNoInMyShapes(GetShapeByID(record.EndId)));
        const std::int32_t self = GetShapeNoInMyShapes(link);
        if (!GetShapeByNo(link->StartSpNo())) {
            link->SetStartSpNo(-1);
            link->SetStartSpPtId(-1);
        }
        if (!GetShapeByNo(link->EndSpNo())) {
            link->SetEndSpNo(-1);
            link->SetEndSpPtId(-1);
        }
        for (std::int32_t old : {oldStart, oldEnd})
            if (old != link->StartSpNo() && old != link->EndSpNo())
                if (TMyShape *shape = GetShapeByNo(old))
                    RemoveLinklineShape(*shape, self);
        for (std::int32_t now : {link->StartSpNo(), link->EndSpNo()})
            if (TMyShape *shape = GetShapeByNo(now))
                AddLinklineShape(*shape, self);
    }
    ShapeGeometryChanged(live);
    ChangeLinkShapes(live);
}

void TMyCAD::TakeBackPath(const TUndoRecord &record)
{
    auto *live = dynamic_cast<TMyLinkLine *>(GetShapeByID(record.Copy->ShapeId()));
    if (!live)
        return;
    const std::array<std::int32_t, 4> ends = {live->StartSpNo(), live->StartSpPtId(),
                                              live->EndSpNo(), live->EndSpPtId()};
    const std::int32_t parent = live->ParentNo();
    const QString name = live->Name();
    const std::int32_t shapeNo = live->ShapeNo();
    const std::int32_t layer = live->LayerId();
    CopyWholeState(*live, *record.Copy);
    KeepLayerIfGone(*this, *live, layer);
    live->SetStartSpNo(ends[0]);
    live->SetStartSpPtId(ends[1]);
    live->SetEndSpNo(ends[2]);
    live->SetEndSpPtId(ends[3]);
    live->SetParentNo(parent);
    live->SetName(name);
    live->SetShapeNo(shapeNo);
    ShapeGeometryChanged(live);
}

void TMyCAD::TakeBackReorder(const TUndoRecord &record)
{
    TMyShape *live = GetShapeByID(record.Copy->ShapeId());
    if (!live)
        return;
    if (record.Action == ACT_BRINGTOFRONT)
        SendToBack(live, false);
    else if (record.Action == ACT_SENDTOBACK)
        BringToFront(live, false);
    else if (record.Action == ACT_BRINGTOFRONTBYSTEP)
        SendToBackByStep(live, false);
    else if (record.Action == ACT_SENDTOBACKBYSTEP)
        BringToFrontByStep(live, false);
}

// The new group has a new identity; the records left in the history that named the former
// group are made to name it, so that older steps still find it.
void TMyCAD::Regroup(std::vector<TMyShape *> &members, const TUndoRecord *formerGroup)
{
    // A block (a placed library entry, a combine) comes back as a block.
    const QString className =
        formerGroup ? formerGroup->Copy->ClassName() : QStringLiteral("TMyGroup");
    const std::int32_t newId = GroupShapesAs(members, false, className);
    TMyShape *group = GetShapeByID(newId);
    if (!group || !formerGroup)
        return;
    group->SetUserData(formerGroup->Copy->UserData());
    group->SetName(formerGroup->ShapeName);
    const std::int32_t oldId = formerGroup->Copy->ShapeId();
    for (TUndoRecord &record : m_UndoList) {
        if (&record == formerGroup)
            continue;
        if (record.Copy->ShapeId() == oldId)
            record.Copy->SetShapeId(newId);
        ReplaceId(record.ParentId, oldId, newId);
        ReplaceId(record.StartId, oldId, newId);
        ReplaceId(record.EndId, oldId, newId);
        for (std::int32_t &child : record.ChildIds)
            ReplaceId(child, oldId, newId);
    }
}

namespace {

// The records whose shapes come back, in the order they go back: those recorded at their
// places first, lowest place first, so that each lands where it was; the rest after them in
// the order visited. A locked member spared by the deletion is still here. Identities need
// not be unique (shapes added by code keep what they were given), so another shape of the
// same identity does not keep a deleted one from coming back.
std::vector<const TMyCAD::TUndoRecord *>
InRestoreOrder(const std::vector<const TMyCAD::TUndoRecord *> &records, const TShapesById &present)
{
    std::vector<const TMyCAD::TUndoRecord *> todo;
    for (const TMyCAD::TUndoRecord *record : records)
        if (!record->Copy->Locked() || !present.Find(record->Copy->ShapeId()))
            todo.push_back(record);
    std::stable_sort(todo.begin(), todo.end(),
                     [](const TMyCAD::TUndoRecord *a, const TMyCAD::TUndoRecord *b) {
                         return RestorePlace(*a) < RestorePlace(*b);
                     });
    return todo;
}

// The recorded state without any relation: relations are resolved once every shape of the
// step is back in the list.
void CutLoose(TMyShape &shape)
{
    shape.LinkShapes().clear();
    shape.SetParentNo(-1);
    shape.ChildShapes().clear();
    if (auto *link = dynamic_cast<TMyLinkLine *>(&shape)) {
        link->SetStartSpNo(-1);
        link->SetStartSpPtId(-1);
        link->SetEndSpNo(-1);
        link->SetEndSpPtId(-1);
    }
}

} // namespace

void TMyCAD::RestoreShapes(const std::vector<const TUndoRecord *> &records)
{
    // With no layer (all deleted, or a load that failed before its layer table) nothing can
    // hold the shapes: they stay gone, rather than take the program down through the
    // no-layer handler for an undo.
    if (m_Layers.empty())
        return;
    // The shapes here now, by identity: a search of the list for every record would make
    // bringing back many shapes of a big drawing quadratic.
    const TShapesById present = ShapesById();
    const std::vector<const TUndoRecord *> todo = InRestoreOrder(records, present);
    std::vector<TMyShape *> restored;
    restored.reserve(todo.size());
    for (const TUndoRecord *record : todo) {
        std::unique_ptr<TMyShape> shape = CreateShapeByName(record->Copy->ClassName());
        CopyWholeState(*shape, *record->Copy);
        shape->SetName(record->ShapeName);
        CutLoose(*shape);
        if (GetLayerNoById(shape->LayerId()) < 0)
            shape->SetLayerId(m_CurrentLayerId);
        const bool added = record->AtPlace ? InsertShape(shape.get(), RestorePlace(*record), true)
                                           : AddShape(shape.get(), true, true);
        if (!added)
            return;
        restored.push_back(shape.release());
    }
    RelateRestored(todo, restored, present);
}

// Relations name identities; of shapes that share one, the first restored answers. A
// restored member joins its group itself, so that members of one identity are each listed
// once.
void TMyCAD::RelateRestored(const std::vector<const TUndoRecord *> &records,
                            const std::vector<TMyShape *> &restored, const TShapesById &present)
{
    std::unordered_map<std::int32_t, std::int32_t> newNo;
    for (const TMyShape *shape : restored)
        newNo.emplace(shape->ShapeId(), GetShapeNoInMyShapes(shape));
    std::unordered_set<TMyShape *> joined; // groups that gained members
    for (std::size_t k = 0; k < restored.size(); ++k) {
        const TUndoRecord *record = records[k];
        TMyShape *shape = restored[k];
        const std::int32_t no = GetShapeNoInMyShapes(shape);
        const auto it = newNo.find(record->ParentId);
        TMyShape *parent =
            it != newNo.end() ? GetShapeByNo(it->second) : present.Find(record->ParentId);
        if (parent && parent != shape) {
            shape->SetParentNo(GetShapeNoInMyShapes(parent));
            parent->ChildShapes().push_back(no);
            joined.insert(parent);
        }
        // A member still here (spared as locked) rejoins; of shapes sharing its identity,
        // the first without a group.
        for (std::int32_t childId : record->ChildIds) {
            if (TMyShape *child = present.Find(childId); child && !child->HasParentShape()) {
                child->SetParentNo(no);
                shape->ChildShapes().push_back(GetShapeNoInMyShapes(child));
                ShapeJoinedGroup(child);
            }
        }
    }
    for (TMyShape *group : joined)
        std::sort(group->ChildShapes().begin(), group->ChildShapes().end());
    for (TMyShape *shape : restored)
        std::sort(shape->ChildShapes().begin(), shape->ChildShapes().end());
    // Each shape entered the index on its own; those that are members leave it again and
    // their groups are measured with them.
    for (TMyShape *shape : restored) {
        if (shape->HasParentShape())
            ShapeJoinedGroup(shape);
        else
            ShapeGeometryChanged(shape);
    }
}

} // namespace tessal
