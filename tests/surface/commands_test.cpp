// SPDX-License-Identifier: MIT
// Editing commands: grouping and its refusals, alignment, stacking order, swapping,
// flipping, locking and turning, with what each records.
#include "documenthelpers.h"

#include <gtest/gtest.h>

#include <numbers>
#include <random>

using namespace tessal;
using namespace tessal::test;

namespace {

std::vector<std::int32_t> OrderOfIds(const TMyCAD &cad)
{
    std::vector<std::int32_t> ids;
    for (std::int32_t no = 0; no < cad.GetShapesCount(); ++no)
        ids.push_back(cad.GetShapeByNo(no)->ShapeId());
    return ids;
}

TMyRect Box(const TMyShape *shape)
{
    const TMyPoint lt = shape->GetLeftTop();
    const TMyPoint rb = shape->GetRightBottom();
    return {lt.X, lt.Y, rb.X, rb.Y};
}

} // namespace

TEST(Commands, GroupingRefusalsLeaveEverything)
{
    TMyCAD cad;
    TMyShape *a = AddRectangle(cad, 0, 0, 10, 10);
    TMyShape *b = AddRectangle(cad, 20, 5, 30, 25);
    cad.NewLayer(QStringLiteral("Other"), true);
    TMyShape *c = AddRectangle(cad, 40, 0, 50, 10);
    cad.SetWorkingShapes(std::vector<TMyShape *>{a, b});
    const std::size_t records = cad.UndoRedoShapeList().size();

    // Members on two layers, a hidden member, no member: nothing changes.
    b->SetVisible(false);
    for (const std::vector<TMyShape *> &members :
         {std::vector<TMyShape *>{a, c}, {a, b}, {}, {nullptr}})
        EXPECT_EQ(cad.GroupShapes(members, true), -1) << members.size();
    EXPECT_EQ(cad.GroupWorkingShape(), -1);
    EXPECT_EQ(cad.WorkingShapes(), (std::vector<TMyShape *>{a, b}));
    EXPECT_EQ(cad.UndoRedoShapeList().size(), records);
    EXPECT_EQ(cad.GetShapesCount(), 3);
    EXPECT_EQ(a->ParentNo(), -1);
    EXPECT_EQ(cad.ShapeIdCounter(), 3);
    b->SetVisible(true);

    // The group lies on its members' layer although layer 1 is current; its corners are
    // document values at any zoom.
    cad.SetZoom(2);
    const std::int32_t id = cad.GroupWorkingShape();
    ASSERT_EQ(id, 3);
    TMyShape *g = cad.GetShapeByID(id);
    EXPECT_EQ(g->ClassName(), QStringLiteral("TMyGroup"));
    EXPECT_EQ(g->Name(), QStringLiteral("Shape3"));
    EXPECT_EQ(g->LayerId(), 0);
    EXPECT_EQ(g->Points(), (TMyPointArray{{0, 0}, {30, 0}, {30, 25}, {0, 25}}));
    EXPECT_EQ(g->CenterPoint(), (TMyPoint{15, 12.5f}));
    EXPECT_EQ(g->TextPoint(), (TMyPoint{15, 35}));
    EXPECT_EQ(g->ChildShapes(), (std::vector<std::int32_t>{0, 1}));
    EXPECT_TRUE(RelationsValid(cad)); // so both members name the group
    EXPECT_EQ(cad.WorkingShapes(), std::vector<TMyShape *>{g});
    EXPECT_EQ(cad.CurrentShape(), g);
    ASSERT_EQ(cad.UndoRedoShapeList().size(), records + 1);
    EXPECT_EQ(cad.UndoRedoShapeList().back().Action, ACT_GROUP);

    // Ungrouping refuses members, other classes and locked groups; the dissolved group is
    // not announced as deleted.
    int announced = 0;
    cad.SetOnShapeDeleted([&announced](TMyCAD *s, TMyShape *) {
        EXPECT_TRUE(s->IsUngrouping());
        ++announced;
    });
    g->SetLockedFlag(true);
    for (TMyShape *refused : {a, c, g})
        cad.UnGroupShape(refused, true);
    EXPECT_EQ(cad.GetShapesCount(), 4);
    EXPECT_EQ(cad.UndoRedoShapeList().size(), records + 1);
    g->SetLockedFlag(false);
    cad.UnGroupShape(g, true);
    EXPECT_EQ(cad.GetShapesCount(), 3);
    EXPECT_EQ(announced, 0);
    EXPECT_FALSE(cad.IsUngrouping());
    EXPECT_EQ(a->ParentNo(), -1);
    EXPECT_EQ(cad.UndoRedoShapeList().back().Action, ACT_UNGROUP);
    EXPECT_TRUE(RelationsValid(cad));
}

// Combining is grouping under a TMyCombine: taken back, ungrouped and taken back again, the
// block comes back as a combine, not as a plain group.
TEST(Commands, CombineMakesABlockThatUndoAndUngroupKeep)
{
    TMyCAD cad;
    TMyShape *a = AddRectangle(cad, 0, 0, 10, 10);
    TMyShape *b = AddRectangle(cad, 20, 5, 30, 25);
    cad.SetWorkingShapes(std::vector<TMyShape *>{a, b});
    const std::int32_t id = cad.CombineWorkingShape();
    ASSERT_EQ(id, 2);
    TMyShape *block = cad.GetShapeByID(id);
    EXPECT_EQ(block->ClassName(), QStringLiteral("TMyCombine"));
    EXPECT_EQ(block->Points(), (TMyPointArray{{0, 0}, {30, 0}, {30, 25}, {0, 25}}));
    EXPECT_EQ(block->ChildShapes(), (std::vector<std::int32_t>{0, 1}));
    EXPECT_EQ(cad.UndoRedoShapeList().back().Action, ACT_GROUP);
    EXPECT_TRUE(RelationsValid(cad));

    cad.PopFromUndoRedoShapeList();
    EXPECT_EQ(cad.GetShapesCount(), 2);
    EXPECT_EQ(a->ParentNo(), -1);
    cad.SetWorkingShapes(std::vector<TMyShape *>{a, b});
    block = cad.GetShapeByID(cad.CombineWorkingShape());
    ASSERT_NE(block, nullptr);
    cad.UnGroupShape(block, true);
    EXPECT_EQ(cad.GetShapesCount(), 2);
    cad.PopFromUndoRedoShapeList();
    ASSERT_EQ(cad.GetShapesCount(), 3);
    EXPECT_EQ(cad.GetShapeByNo(2)->ClassName(), QStringLiteral("TMyCombine"));
    EXPECT_EQ(a->ParentNo(), 2);
    EXPECT_TRUE(RelationsValid(cad));

    // Two layers refuse a combine as they refuse a group.
    cad.NewLayer(QStringLiteral("Other"), true);
    TMyShape *c = AddRectangle(cad, 40, 0, 50, 10);
    TMyShape *const twoLayers[] = {cad.GetShapeByNo(2), c};
    EXPECT_EQ(cad.CombineShapes(twoLayers, true), -1);
}

TEST(Commands, AlignmentsMoveBoxesOntoTheCommonBox)
{
    TMyCAD cad;
    TMyShape *r1 = AddRectangle(cad, 0, 0, 10, 10);
    TMyShape *r2 = AddRectangle(cad, 20, 5, 40, 15);
    TMyShape *r3 = AddRectangle(cad, 50, -5, 55, 30);
    const std::vector<TMyShape *> all{r1, r2, r3};
    struct TCase
    {
        void (TMyCAD::*Command)();
        TMyRect R1, R2, R3;
    };
    const TCase cases[] = {
        {&TMyCAD::AlignLeft, {0, 0, 10, 10}, {0, 5, 20, 15}, {0, -5, 5, 30}},
        {&TMyCAD::AlignRight, {45, 0, 55, 10}, {35, 5, 55, 15}, {50, -5, 55, 30}},
        {&TMyCAD::AlignTop, {0, -5, 10, 5}, {20, -5, 40, 5}, {50, -5, 55, 30}},
        {&TMyCAD::AlignBottom, {0, 20, 10, 30}, {20, 20, 40, 30}, {50, -5, 55, 30}},
        {&TMyCAD::AlignHorizontalCenter,
         {22.5f, 0, 32.5f, 10},
         {17.5f, 5, 37.5f, 15},
         {25, -5, 30, 30}},
        {&TMyCAD::AlignVerticalCenter,
         {0, 7.5f, 10, 17.5f},
         {20, 7.5f, 40, 17.5f},
         {50, -5, 55, 30}},
    };
    const std::int32_t steps = StepCount(cad);
    // Each move is announced before it is made, in zoomed pixels.
    cad.SetZoom(2);
    std::vector<TMyPoint> announced; // where each shape's box is to go
    cad.SetOnShapeCodeDragging([&announced](TMyCAD *, TMyShape *shape, double dx, double dy) {
        const TMyRect r = Box(shape);
        announced.push_back({r.Left + float(dx / 2), r.Top + float(dy / 2)});
    });
    for (const TCase &c : cases) {
        cad.SetWorkingShapes(all);
        announced.clear();
        (cad.*c.Command)();
        EXPECT_EQ(announced,
                  (std::vector<TMyPoint>{
                      {c.R1.Left, c.R1.Top}, {c.R2.Left, c.R2.Top}, {c.R3.Left, c.R3.Top}}));
        EXPECT_EQ(Box(r1), c.R1);
        EXPECT_EQ(Box(r2), c.R2);
        EXPECT_EQ(Box(r3), c.R3);
        ASSERT_EQ(StepCount(cad), steps + 1);
        EXPECT_EQ(cad.UndoRedoShapeList().back().Action, ACT_CHANGE);
        cad.PopFromUndoRedoShapeList();
        EXPECT_EQ(Box(r2), (TMyRect{20, 5, 40, 15}));
    }

    // One working shape: nothing happens and nothing is recorded.
    cad.SetWorkingShapes(std::vector<TMyShape *>{r2});
    cad.AlignLeft();
    EXPECT_EQ(Box(r2), (TMyRect{20, 5, 40, 15}));
    EXPECT_EQ(StepCount(cad), steps);

    // A group moves with its members, by document units at any zoom.
    TMyShape *const pair[] = {r2, r3};
    TMyShape *g = cad.GetShapeByID(cad.GroupShapes(pair, false));
    cad.SetZoom(2);
    cad.SetWorkingShapes(std::vector<TMyShape *>{r1, g});
    cad.AlignLeft();
    EXPECT_EQ(Box(g), (TMyRect{0, -5, 35, 30}));
    EXPECT_EQ(Box(r2), (TMyRect{0, 5, 20, 15}));
    EXPECT_EQ(Box(r3), (TMyRect{30, -5, 35, 30}));
    EXPECT_EQ(Box(r1), (TMyRect{0, 0, 10, 10}));
    cad.AlignBottom();
    EXPECT_EQ(Box(r1), (TMyRect{0, 20, 10, 30}));
    // One step: the group with its two members, and the rectangle.
    const auto &list = cad.UndoRedoShapeList();
    EXPECT_EQ(std::count_if(list.begin(), list.end(),
                            [&list](const auto &r) { return r.Step == list.back().Step; }),
              4);
}

TEST(Commands, StackingOrderAmongRoots)
{
    TMyCAD cad;
    TMyShape *a = AddRectangle(cad, 0, 0, 10, 10);
    AddRectangle(cad, 0, 0, 10, 10);
    TMyShape *d = AddRectangle(cad, 0, 0, 10, 10);
    TMyShape *e = AddRectangle(cad, 0, 0, 10, 10);
    TMyShape *const de[] = {d, e};
    TMyShape *g = cad.GetShapeByID(cad.GroupShapes(de, false));
    TMyShape *f = AddRectangle(cad, 0, 0, 10, 10);
    const std::vector<std::int32_t> original = OrderOfIds(cad); // a b d e g f
    ASSERT_EQ(original, (std::vector<std::int32_t>{0, 1, 2, 3, 4, 5}));
    const std::int32_t steps = StepCount(cad);

    // The shape passes every root above it; members stay where they are.
    cad.BringToFront(a, true);
    EXPECT_EQ(OrderOfIds(cad), (std::vector<std::int32_t>{1, 4, 2, 3, 5, 0}));
    EXPECT_EQ(g->ChildShapes(), (std::vector<std::int32_t>{2, 3}));
    EXPECT_EQ(d->ParentNo(), 1);
    EXPECT_TRUE(RelationsValid(cad));
    // Already on top: nothing moves, but the step is recorded.
    cad.BringToFront(a, true);
    EXPECT_EQ(OrderOfIds(cad), (std::vector<std::int32_t>{1, 4, 2, 3, 5, 0}));
    EXPECT_EQ(StepCount(cad), steps + 2);
    EXPECT_EQ(cad.UndoRedoShapeList().back().Action, ACT_BRINGTOFRONT);
    // Each take-back sends the shape to the back.
    cad.PopFromUndoRedoShapeList();
    EXPECT_EQ(OrderOfIds(cad), original);
    cad.PopFromUndoRedoShapeList();
    EXPECT_EQ(OrderOfIds(cad), original);

    cad.SendToBackByStep(f, true);
    EXPECT_EQ(OrderOfIds(cad), (std::vector<std::int32_t>{0, 1, 2, 3, 5, 4}));
    EXPECT_EQ(cad.UndoRedoShapeList().back().Action, ACT_SENDTOBACKBYSTEP);
    cad.BringToFrontByStep(a, true);
    EXPECT_EQ(OrderOfIds(cad), (std::vector<std::int32_t>{1, 0, 2, 3, 5, 4}));
    cad.SendToBack(g, true);
    EXPECT_EQ(OrderOfIds(cad), (std::vector<std::int32_t>{4, 1, 2, 3, 0, 5}));
    EXPECT_TRUE(RelationsValid(cad));
    cad.PopFromUndoRedoShapeList(); // brings g to the front
    EXPECT_EQ(OrderOfIds(cad), (std::vector<std::int32_t>{1, 0, 2, 3, 5, 4}));
    cad.PopFromUndoRedoShapeList(); // a one step back
    cad.PopFromUndoRedoShapeList(); // f one step up
    EXPECT_EQ(OrderOfIds(cad), original);
}

// Bringing a shape to the front or sending it to the back leaves the drawing that exchanging
// it with each top-level shape on its way leaves, order and relations: random drawings with
// nested groups, connectors and locked shapes, top-level shapes and members moved both ways.
// The spatial index, kept or made again, answers what a scan of the list answers.
TEST(Commands, RestackingToAnEndEqualsTheExchangesOnTheWay)
{
    const auto indexAgrees = [](TMyCAD &cad) {
        const TRect all(-4000, -4000, 4000, 4000);
        return cad.ShapesInRect(all) == cad.ShapesInRectLinear(all);
    };
    for (unsigned seed = 1; seed <= 30; ++seed) {
        TMyCAD direct, stepwise;
        for (TMyCAD *cad : {&direct, &stepwise}) {
            std::mt19937 same(seed);
            BuildRandomDrawing(*cad, same);
            ASSERT_TRUE(indexAgrees(*cad));
        }
        std::mt19937 rng(seed + 100);
        for (int k = 0; k < 6; ++k) {
            const auto no = std::int32_t(rng() % std::uint32_t(direct.GetShapesCount()));
            const bool front = rng() % 2 == 0;
            if (front)
                direct.BringToFront(direct.GetShapeByNo(no), false);
            else
                direct.SendToBack(direct.GetShapeByNo(no), false);
            TMyShape *shape = stepwise.GetShapeByNo(no);
            const auto next = [&] {
                const std::int32_t at = stepwise.GetShapeNoInMyShapes(shape);
                return front ? stepwise.GetNextSingleorRootShape(at)
                             : stepwise.GetPrevSingleorRootShape(at);
            };
            while (TMyShape *other = next())
                stepwise.SwapShape(shape, other);
            ASSERT_TRUE(RelationsValid(direct)) << "seed " << seed;
            ASSERT_EQ(OrderOfIds(direct), OrderOfIds(stepwise)) << "seed " << seed;
            ASSERT_EQ(Snapshot(direct), Snapshot(stepwise)) << "seed " << seed;
            ASSERT_TRUE(indexAgrees(direct)) << "seed " << seed;
            ASSERT_TRUE(indexAgrees(stepwise)) << "seed " << seed;
        }
    }
}

TEST(Commands, SwapKeepsConnectorsAndGroupsOnTheirShapes)
{
    TMyCAD cad;
    TMyShape *a = AddRectangle(cad, 0, 0, 10, 10);
    TMyShape *b = AddRectangle(cad, 20, 0, 30, 10);
    TMyShape *c = AddRectangle(cad, 40, 0, 50, 10);
    TMyShape *const bc[] = {b, c};
    TMyShape *g = cad.GetShapeByID(cad.GroupShapes(bc, false));
    TMyLinkLine *link = AddConnector(cad, a, c);
    const auto before = Snapshot(cad);

    cad.SwapShape(a, c);
    EXPECT_EQ(cad.GetShapeByNo(0), c);
    EXPECT_EQ(cad.GetShapeByNo(2), a);
    EXPECT_EQ(Ends(link), (std::array{2, 0, 0, 1}));
    EXPECT_EQ(g->ChildShapes(), (std::vector<std::int32_t>{0, 1}));
    EXPECT_TRUE(RelationsValid(cad));
    EXPECT_EQ(Snapshot(cad), before);

    cad.SwapShape(link, g);
    cad.SwapShape(a, a);
    cad.SwapShape(a, nullptr);
    EXPECT_EQ(cad.GetShapeNoInMyShapes(link), 3);
    EXPECT_EQ(b->ParentNo(), 4);
    EXPECT_EQ(a->LinkShapes(), (std::vector<std::int32_t>{3}));
    EXPECT_TRUE(RelationsValid(cad));
    EXPECT_EQ(Snapshot(cad), before);

    // A shape added since the index was last asked takes the place of one it holds.
    const TRect all(-100, -100, 200, 200);
    ASSERT_EQ(cad.ShapesInRect(all), cad.ShapesInRectLinear(all));
    cad.SwapShape(AddRectangle(cad, 60, 0, 70, 10), a);
    EXPECT_EQ(cad.ShapesInRect(all), cad.ShapesInRectLinear(all));
}

TEST(Commands, FlipLeavesLockedMembersAndConnectors)
{
    TMyCAD cad;
    TMyShape *a = AddRectangle(cad, 0, 0, 10, 10);
    TMyShape *b = AddRectangle(cad, 20, 0, 40, 10);
    TMyShape *const ab[] = {a, b};
    TMyShape *g = cad.GetShapeByID(cad.GroupShapes(ab, false));
    TMyLinkLine *link = AddConnector(cad, a, b);
    const TMyPointArray bPoints = b->Points();
    const TMyPointArray aPoints = a->Points();
    b->SetLockedFlag(true);
    const std::int32_t steps = StepCount(cad);

    // Mirrored about the group's centre, x = 20.
    cad.FlipHoriz(g);
    EXPECT_EQ(Box(a), (TMyRect{30, 0, 40, 10}));
    EXPECT_TRUE(a->IsFlipHorz());
    EXPECT_EQ(b->Points(), bPoints);
    EXPECT_FALSE(b->IsFlipHorz());
    EXPECT_EQ(Box(g), (TMyRect{0, 0, 40, 10}));
    EXPECT_TRUE(g->IsFlipHorz());
    ASSERT_EQ(StepCount(cad), steps + 1);
    // The group, its two members, and the path of the connector bound to a member.
    EXPECT_EQ(cad.UndoRedoShapeList().size(), std::size_t(steps) + 4);

    // Connectors are never flipped directly.
    const TMyPointArray linkPoints = link->Points();
    cad.FlipVert(link);
    EXPECT_EQ(link->Points(), linkPoints);
    EXPECT_EQ(StepCount(cad), steps + 1);

    cad.FlipVert(a);
    EXPECT_EQ(Box(a), (TMyRect{30, 0, 40, 10}));
    EXPECT_TRUE(a->IsFlipVert());
    cad.PopFromUndoRedoShapeList();
    cad.PopFromUndoRedoShapeList();
    EXPECT_EQ(a->Points(), aPoints);
    EXPECT_FALSE(a->IsFlipHorz());
    EXPECT_FALSE(a->IsFlipVert());
    EXPECT_TRUE(b->Locked());

    // Locking reaches every member; a locked group does not flip at all.
    cad.LockUnLockforShapes(g, true);
    EXPECT_TRUE(a->Locked());
    EXPECT_TRUE(g->Locked());
    cad.FlipHoriz(g);
    EXPECT_EQ(a->Points(), aPoints);
    cad.LockUnLockforShapes(g, false);
    EXPECT_FALSE(a->Locked());
    EXPECT_FALSE(b->Locked());
}

TEST(Commands, RotateAndTiltTurnShapesWithMembers)
{
    TMyCAD cad;
    // Rotate announces the turn before making it.
    TMyShape *p = AddByCode(cad, TDrawTool::SpPolyLine, {{0, 0}, {20, 10}});
    std::vector<float> seen;
    cad.SetOnShapeCodeRotating([&seen](TMyCAD *, TMyShape *shape, float angle) {
        seen.push_back(shape->Angle());
        seen.push_back(angle);
    });
    cad.Rotate(p, 1);
    EXPECT_EQ(seen, (std::vector<float>{0, 1}));
    EXPECT_FLOAT_EQ(p->Angle(), 1);

    // A drag from (10, 0) to (10, 10) about the origin: an eighth of a turn, clockwise on
    // the screen, that carries the members along.
    TMyShape *q = AddByCode(cad, TDrawTool::SpPolyLine, {{10, 0}, {12, 0}});
    TMyShape *r = AddByCode(cad, TDrawTool::SpPolyLine, {{0, -3}, {0, -5}});
    TMyShape *const qr[] = {q, r};
    TMyShape *g = cad.GetShapeByID(cad.GroupShapes(qr, false));
    const std::int32_t steps = StepCount(cad);
    seen.clear();
    const float angle = cad.Tilt(g, {0, 0}, {10, 0}, {10, 10}, false);
    const float h = float(std::numbers::sqrt2 / 2);
    EXPECT_FLOAT_EQ(angle, float(std::numbers::pi / 4));
    EXPECT_EQ(seen, (std::vector<float>{0, angle})); // announced before, as Rotate does
    ExpectNear(q->Points(), {{10 * h, 10 * h}, {12 * h, 12 * h}});
    ExpectNear(r->Points(), {{3 * h, -3 * h}, {5 * h, -5 * h}});
    EXPECT_FLOAT_EQ(g->Angle(), float(std::numbers::pi / 4));
    EXPECT_EQ(StepCount(cad), steps);
    EXPECT_EQ(cad.Tilt(nullptr, {0, 0}, {1, 0}, {0, 1}, false), 0);
}
