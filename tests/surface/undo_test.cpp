// SPDX-License-Identifier: MIT
// The undo history: eviction and numbering, and what each action gives back. Random edit
// sequences taken back step by step are the random undo test's.
#include "documenthelpers.h"

#include <gtest/gtest.h>

using namespace tessal;
using namespace tessal::test;

// A smaller limit waits until the history shrinks to it; a limit of 0 records nothing.
// Eviction at the limit, the numbering after it and taking back everything kept are the
// random undo test's, whose short history overflows all the time.
TEST(Undo, SizeLimits)
{
    TMyCAD cad;
    ASSERT_EQ(cad.UndoRedoSize(), 10);
    for (int i = 0; i < 10; ++i)
        AddRectangle(cad, 0, 0, 5, 5);
    const auto &list = cad.UndoRedoShapeList();
    cad.SetUndoRedoSize(4);
    AddRectangle(cad, 0, 0, 5, 5);
    EXPECT_EQ(StepCount(cad), 11);
    EXPECT_EQ(list.front().Copy->ShapeId(), 0);
    cad.SetUndoRedoSize(0);
    EXPECT_TRUE(list.empty());
    AddRectangle(cad, 0, 0, 5, 5);
    EXPECT_TRUE(list.empty());
    EXPECT_EQ(cad.PopFromUndoRedoShapeList(), -1);
    EXPECT_EQ(cad.GetShapesCount(), 12);
    cad.SetUndoRedoSize(3); // the fourth step evicts the first
    for (int i = 0; i < 4; ++i)
        AddRectangle(cad, 0, 0, 5, 5);
    ASSERT_EQ(StepCount(cad), 3);
    EXPECT_EQ(list.front().Copy->ShapeId(), 13);
}

// A group with two members joined by a connector, deleted in one step: one take-back
// brings all three back after the present shapes, with their identities, names and
// points, the group holding its members again; the connector stays detached.
TEST(Undo, DeletedGroupComesBackWhole)
{
    TMyCAD cad;
    TMyShape *a = AddRectangle(cad, 0, 0, 10, 10);
    TMyShape *b = AddRectangle(cad, 20, 0, 30, 10);
    TMyShape *const ab[] = {a, b};
    const std::int32_t gid = cad.GroupShapes(ab, true);
    cad.RenameShapeName(QStringLiteral("Shape2"), QStringLiteral("Pair"));
    TMyLinkLine *link = AddConnector(cad, a, b);
    AddRectangle(cad, 50, 50, 60, 60);
    auto before = Snapshot(cad);

    ASSERT_TRUE(cad.DeleteShapeById(gid, true));
    EXPECT_EQ(cad.GetShapesCount(), 2);
    EXPECT_EQ(link->StartSpNo(), -1);
    EXPECT_EQ(link->EndSpNo(), -1);
    const auto &step = cad.UndoRedoShapeList();
    ASSERT_EQ(step.back().Action, ACT_DELETE);
    EXPECT_TRUE(step.back().Copy->LinkShapes().empty());

    EXPECT_EQ(cad.PopFromUndoRedoShapeList(), 4);
    ASSERT_EQ(cad.GetShapesCount(), 5);
    EXPECT_TRUE(RelationsValid(cad));
    // Visited newest first: B, A, then the group.
    EXPECT_EQ(cad.GetShapeByNo(2)->ShapeId(), 1);
    EXPECT_EQ(cad.GetShapeByNo(3)->ShapeId(), 0);
    EXPECT_EQ(cad.GetShapeByNo(4)->ShapeId(), gid);
    // Everything but the connector's binding is as it was: names, points, the group's
    // members.
    auto after = Snapshot(cad);
    for (std::int32_t id : {0, 1})
        before[id].LinkIds.clear();
    before[link->ShapeId()].StartId = before[link->ShapeId()].EndId = -1;
    before[link->ShapeId()].StartPt = before[link->ShapeId()].EndPt = -1;
    EXPECT_EQ(after, before);

    // A deleted connector comes back unbound.
    TMyLinkLine *bound = AddConnector(cad, cad.GetShapeByID(0), cad.GetShapeByID(1));
    const std::int32_t bid = bound->ShapeId();
    ASSERT_TRUE(cad.DeleteShapeById(bid, true));
    EXPECT_TRUE(cad.GetShapeByID(0)->LinkShapes().empty());
    cad.PopFromUndoRedoShapeList();
    auto *back = dynamic_cast<TMyLinkLine *>(cad.GetShapeByID(bid));
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(Ends(back), (std::array{-1, -1, -1, -1}));
    // Taking back its addition removes it from its shapes' lists.
    cad.PopFromUndoRedoShapeList();
    EXPECT_EQ(cad.GetShapeByID(bid), nullptr);
    EXPECT_TRUE(RelationsValid(cad));
}

// Shapes added by code keep the identity they were given, often the same one: deleting
// such shapes, and a group of them with a locked member, beside others of that identity,
// brings every one back when taken back, with its group.
TEST(Undo, ShapesSharingAnIdentityAllComeBack)
{
    TMyCAD cad;
    std::vector<TMyShape *> shapes;
    for (int i = 0; i < 7; ++i) {
        auto shape = cad.CreateShapeByName(QStringLiteral("TMyRectangle"));
        const float l = float(20 * i);
        shape->Points() = {{l, 0}, {l + 10, 0}, {l + 10, 10 + l}, {l, 10 + l}};
        shapes.push_back(shape.release());
        cad.AddShape(shapes.back(), false, false);
    }
    TMyShape *const members[] = {shapes[1], shapes[2], shapes[3]};
    cad.GroupShapes(members, false);
    shapes[3]->SetLockedFlag(true);
    // Each shape by its box, with its group's box and its members' boxes.
    const auto layout = [&cad] {
        const auto box = [&cad](std::int32_t no) {
            const TMyShape *shape = cad.GetShapeByNo(no);
            return shape ? std::to_string(shape->GetLeftTop().X) + "," +
                               std::to_string(shape->GetRightBottom().Y)
                         : std::string("-");
        };
        std::vector<std::string> all;
        for (std::int32_t no = 0; no < cad.GetShapesCount(); ++no) {
            std::vector<std::string> members;
            for (std::int32_t child : cad.GetShapeByNo(no)->ChildShapes())
                members.push_back(box(child));
            std::sort(members.begin(), members.end());
            std::string each = box(no) + " in " + box(cad.GetShapeByNo(no)->ParentNo()) + " of";
            for (const std::string &member : members)
                each += " " + member;
            all.push_back(each);
        }
        std::sort(all.begin(), all.end());
        return all;
    };
    const std::vector<std::string> before = layout();
    cad.SetWorkingShapes(std::vector<TMyShape *>{shapes[5], shapes[2], shapes[0]});
    cad.DeleteSelectedShapes();
    ASSERT_EQ(cad.GetShapesCount(), 3); // the spared member and shapes 4 and 6
    cad.PopFromUndoRedoShapeList();
    EXPECT_TRUE(RelationsValid(cad));
    EXPECT_EQ(layout(), before);
}

// Ungrouping is taken back by a new group that carries the old name and user data; older
// steps that named the old group find the new one.
TEST(Undo, UngroupTakenBackByARegroup)
{
    TMyCAD cad;
    TMyShape *a = AddRectangle(cad, 0, 0, 10, 10);
    TMyShape *b = AddRectangle(cad, 20, 0, 30, 20);
    TMyShape *const ab[] = {a, b};
    const std::int32_t gid = cad.GroupShapes(ab, true);
    TMyShape *group = cad.GetShapeByID(gid);
    group->SetName(QStringLiteral("Door"));
    group->UserData().AddKeyandValue(QStringLiteral("hinge"), QStringLiteral("left"));
    const TMyPointArray aPoints = a->Points();
    const TMyPointArray groupPoints = group->Points();
    cad.FlipHoriz(group);
    ASSERT_NE(a->Points(), aPoints);

    cad.UnGroupShape(group, true);
    EXPECT_EQ(cad.GetShapesCount(), 2);
    EXPECT_EQ(a->ParentNo(), -1);
    const auto &last = cad.UndoRedoShapeList().back();
    EXPECT_EQ(last.Action, ACT_UNGROUP);

    EXPECT_EQ(cad.PopFromUndoRedoShapeList(), 3);
    ASSERT_EQ(cad.GetShapesCount(), 3);
    TMyShape *regrouped = cad.GetShapeByNo(2);
    EXPECT_NE(regrouped->ShapeId(), gid);
    EXPECT_EQ(regrouped->Name(), QStringLiteral("Door"));
    EXPECT_EQ(regrouped->UserData().GetValueByKey(QStringLiteral("hinge")), QStringLiteral("left"));
    EXPECT_EQ(regrouped->ChildShapes(), (std::vector<std::int32_t>{0, 1}));
    EXPECT_TRUE(RelationsValid(cad));

    // The flip's records now name the new group; taking it back flips everything back.
    EXPECT_EQ(cad.PopFromUndoRedoShapeList(), 2);
    EXPECT_EQ(a->Points(), aPoints);
    EXPECT_EQ(regrouped->Points(), groupPoints);
    // Taking back the grouping dissolves the group.
    EXPECT_EQ(cad.PopFromUndoRedoShapeList(), 1);
    EXPECT_EQ(cad.GetShapesCount(), 2);
    EXPECT_EQ(a->ParentNo(), -1);
    EXPECT_EQ(b->ParentNo(), -1);
}

// A change step gives the live shape its recorded state back; a connector's ends are
// re-bound so that the shapes' connector lists stay right.
TEST(Undo, ChangeStepsRestoreStateAndBindings)
{
    TMyCAD cad;
    TMyShape *a = AddRectangle(cad, 0, 0, 10, 10);
    TMyShape *b = AddRectangle(cad, 30, 0, 40, 10);
    TMyShape *c = AddRectangle(cad, 60, 0, 70, 10);
    TMyLinkLine *link = AddConnector(cad, a, b);
    TMyShape *const one[] = {link};
    cad.PushtoUndoRedoShapeList(one, 0, ACT_CHANGE);
    // Re-bind the end to C the way the mouse would, and move the connector.
    RemoveLinklineShape(*b, 3);
    link->SetEndSpNo(2);
    AddLinklineShape(*c, 3);
    link->DragChangeValuedxdy(5, 5);
    ASSERT_TRUE(RelationsValid(cad));

    cad.PopFromUndoRedoShapeList();
    EXPECT_EQ(link->EndSpNo(), 1);
    EXPECT_EQ(b->LinkShapes(), (std::vector<std::int32_t>{3}));
    EXPECT_TRUE(c->LinkShapes().empty());
    EXPECT_EQ(link->GetPoint(0), a->GetCenterPoint());
    EXPECT_TRUE(RelationsValid(cad));
}
