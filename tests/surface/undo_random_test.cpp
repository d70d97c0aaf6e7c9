// SPDX-License-Identifier: MIT
// Undo under random use: thousands of recorded commands with steps taken back in between
// and a short history that overflows all the time. Every step taken back must give the
// saved drawing of the moment before that step, byte for byte.
#include "documenthelpers.h"

#include <gtest/gtest.h>

#include <QBuffer>

#include <deque>
#include <functional>
#include <iostream>
#include <iterator>
#include <random>
#include <span>

namespace tessal::test {
namespace {

// The saved drawing with the shapes in identity order. Taking back a deletion puts the
// shapes back after the present ones, so only the list order may differ from before; every
// relation number is renumbered with it, by the surface's own exchange of list places.
// Nothing else is set aside.
QByteArray Canonical(QByteArray bytes)
{
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    TMyCAD copy;
    EXPECT_TRUE(copy.LoadFromStream(&buffer)) << copy.LastError().toStdString();
    const std::int32_t n = copy.GetShapesCount();
    for (std::int32_t i = 0; i < n; ++i) {
        std::int32_t lowest = i;
        for (std::int32_t j = i + 1; j < n; ++j)
            if (copy.GetShapeByNo(j)->ShapeId() < copy.GetShapeByNo(lowest)->ShapeId())
                lowest = j;
        copy.SwapShape(copy.GetShapeByNo(i), copy.GetShapeByNo(lowest));
    }
    // The current layer is a choice of the user's, not part of any step.
    copy.SetCurrentLayerId(0);
    return Saved(copy);
}

class RandomUse
{
public:
    explicit RandomUse(unsigned seed)
        : m_Rng(seed)
    {
        m_Cad.SetUndoRedoSize(HistorySize);
        m_Cad.NewLayer(QStringLiteral("Second"), true);
    }

    int Pick(int n) { return std::uniform_int_distribution<int>(0, n - 1)(m_Rng); }
    float Coordinate() { return float(Pick(400)) - 100; }
    TMyShape *AnyShape()
    {
        const std::int32_t n = m_Cad.GetShapesCount();
        return n ? m_Cad.GetShapeByNo(Pick(n)) : nullptr;
    }
    // The number of shapes that meet test.
    template <typename Test>
    int Count(Test test) const
    {
        int n = 0;
        for (std::int32_t no = 0; no < m_Cad.GetShapesCount(); ++no)
            n += test(*m_Cad.GetShapeByNo(no)) ? 1 : 0;
        return n;
    }
    // A shape that no connector is bound to, nor any member of its root group, and that is
    // not a bound connector itself; nullptr when the one picked is not such a shape.
    // Deleting a bound shape sets the connector's end free, and taking the deletion back
    // does not bind it again (as documented), so random deletions keep away from them.
    TMyShape *AnyUnboundShape()
    {
        TMyShape *shape = AnyShape();
        TMyShape *root = shape;
        while (root && root->HasParentShape())
            root = m_Cad.GetShapeByNo(root->ParentNo());
        return root && Unbound(*root, 0) ? shape : nullptr;
    }
    bool Unbound(const TMyShape &shape, int depth) const
    {
        const auto *link = dynamic_cast<const TMyLinkLine *>(&shape);
        if (!shape.LinkShapes().empty() ||
            (link && (link->StartSpNo() >= 0 || link->EndSpNo() >= 0)))
            return false;
        for (std::int32_t no : shape.ChildShapes())
            if (const TMyShape *child = m_Cad.GetShapeByNo(no);
                child && (depth > m_Cad.GetShapesCount() || !Unbound(*child, depth + 1)))
                return false;
        return true;
    }
    // A few shapes as the working shapes, as a selection would give them.
    void SelectSome(int count, bool unboundOnly = false)
    {
        std::vector<TMyShape *> chosen;
        for (int i = 0; i < count; ++i)
            if (TMyShape *shape = unboundOnly ? AnyUnboundShape() : AnyShape())
                chosen.push_back(shape);
        m_Cad.SetWorkingShapes(chosen);
    }

    static constexpr std::uint8_t HistorySize = 12;
    TMyCAD m_Cad;
    std::mt19937 m_Rng;
    std::deque<const char *> m_Steps; // the command of each step in the history
    QByteArray Canonical() const { return test::Canonical(Saved(m_Cad)); }
    std::int32_t Undo() { return m_Cad.PopFromUndoRedoShapeList(); }
};

// Every command that records a step. Each entry runs one command on random arguments; one
// that refuses its arguments records nothing and must leave the drawing as it was.
// Commands added later (node edits by mouse, say) join by adding an entry here.
// Ungrouping is not among them: it is taken back by a new group, with a new identity and a
// box of its own (see UngroupTakenBackByARegroup), so the saved drawing cannot come back.
struct Operation
{
    const char *name;
    int weight;
    bool adds; // left out while the drawing is at its working size
    std::function<void(RandomUse &)> run;
};

const std::vector<Operation> &Operations()
{
    static const TDrawTool tools[] = {
        TDrawTool::SpRectangle, TDrawTool::SpEllipse,    TDrawTool::SpLine,
        TDrawTool::SpPolyLine,  TDrawTool::SpPolygon,    TDrawTool::SpText,
        TDrawTool::SpElliArc,   TDrawTool::SpPolyBezier, TDrawTool::SpBLine};
    static const std::vector<Operation> operations = {
        {"add by code", 6, true,
         [](RandomUse &u) {
             u.m_Cad.SetCurrentLayerId(u.Pick(2));
             const TDrawTool tool = tools[u.Pick(int(std::size(tools)))];
             u.m_Cad.AddShapeByCode2(tool, {}, {u.Coordinate(), u.Coordinate()}, 5 + u.Pick(80),
                                     5 + u.Pick(80), 2 + u.Pick(4), u.Pick(4) * 0.3, {});
         }},
        {"connector created and bound", 2, true,
         [](RandomUse &u) {
             // A few connectors are enough; routing each one again is the slowest part.
             TMyShape *a = u.AnyShape();
             TMyShape *b = u.AnyShape();
             const auto connector = [](const TMyShape &s) {
                 return dynamic_cast<const TMyLinkLine *>(&s) != nullptr;
             };
             if (u.Count(connector) < 4 && a && b && a != b && !dynamic_cast<TMyLinkLine *>(a) &&
                 !dynamic_cast<TMyLinkLine *>(b)) {
                 // Routed as binding by mouse leaves it, so that its path follows its ends.
                 u.m_Cad.ChangeLinkShapes(AddConnector(u.m_Cad, a, b));
             }
         }},
        {"delete one", 3, false,
         [](RandomUse &u) {
             if (TMyShape *shape = u.AnyUnboundShape())
                 u.m_Cad.DeleteShapeById(shape->ShapeId(), true);
         }},
        {"delete selected", 1, false,
         [](RandomUse &u) {
             u.SelectSome(1 + u.Pick(3), true);
             u.m_Cad.DeleteSelectedShapes();
         }},
        {"align", 2, false,
         [](RandomUse &u) {
             u.SelectSome(2 + u.Pick(3));
             using Align = void (TMyCAD::*)();
             static const Align aligns[] = {&TMyCAD::AlignLeft,
                                            &TMyCAD::AlignRight,
                                            &TMyCAD::AlignTop,
                                            &TMyCAD::AlignBottom,
                                            &TMyCAD::AlignHorizontalCenter,
                                            &TMyCAD::AlignVerticalCenter};
             (u.m_Cad.*aligns[u.Pick(6)])();
         }},
        {"flip", 2, false,
         [](RandomUse &u) {
             if (TMyShape *shape = u.AnyShape())
                 u.Pick(2) ? u.m_Cad.FlipHoriz(shape) : u.m_Cad.FlipVert(shape);
         }},
        {"restack", 3, false,
         [](RandomUse &u) {
             using Restack = void (TMyCAD::*)(TMyShape *, bool);
             static const Restack restacks[] = {&TMyCAD::BringToFront, &TMyCAD::SendToBack,
                                                &TMyCAD::BringToFrontByStep,
                                                &TMyCAD::SendToBackByStep};
             if (TMyShape *shape = u.AnyShape())
                 (u.m_Cad.*restacks[u.Pick(4)])(shape, true);
         }},
        {"group", 2, false,
         [](RandomUse &u) {
             // Without ungrouping, groups would nest ever deeper; a few levels are enough.
             if (u.Count([](const TMyShape &s) { return s.HasChildShapes(); }) >= 5)
                 return;
             std::vector<TMyShape *> members;
             for (int i = 0; i < 2 + u.Pick(2); ++i)
                 members.push_back(u.AnyShape());
             u.m_Cad.GroupShapes(members, true);
         }},
        {"paste", 1, true,
         [](RandomUse &u) {
             u.SelectSome(1 + u.Pick(2));
             u.m_Cad.PasteShapesData(u.m_Cad.CopiedShapesData());
         }},
        {"block insertion", 1, true,
         [](RandomUse &u) {
             TMyCAD block;
             AddRectangle(block, u.Coordinate(), u.Coordinate(), 150, 150);
             AddByCode(block, TDrawTool::SpLine, {{0, 0}, {u.Coordinate(), u.Coordinate()}});
             QByteArray bytes = Saved(block);
             QBuffer buffer(&bytes);
             buffer.open(QIODevice::ReadOnly);
             const auto mode = u.Pick(2) ? TBlockLayerMode::Merge : TBlockLayerMode::Import;
             if (u.m_Cad.LoadFromStreamforBlock(&buffer, mode))
                 u.m_Cad.PasteforBlock();
         }},
    };
    return operations;
}

// The drawing is kept near this many shapes, so that its saves stay quick.
constexpr std::int32_t WorkingSize = 24;

const Operation &PickOperation(RandomUse &u)
{
    const bool full = u.m_Cad.GetShapesCount() >= WorkingSize;
    int total = 0;
    for (const Operation &op : Operations())
        total += full && op.adds ? 0 : op.weight;
    int at = u.Pick(total);
    for (const Operation &op : Operations()) {
        const int weight = full && op.adds ? 0 : op.weight;
        if (at < weight)
            return op;
        at -= weight;
    }
    return Operations().front();
}

// The newest record of the history, which changes exactly when a step is recorded.
const TMyShape *NewestRecord(const TMyCAD &cad)
{
    const auto &list = cad.UndoRedoShapeList();
    return list.empty() ? nullptr : list.back().Copy.get();
}

// Runs count operations, taking steps back one time in four. before holds the drawing as
// it was before each step still in the history, oldest first.
void RunSome(RandomUse &u, int count, std::deque<QByteArray> &before)
{
    for (int i = 0; i < count; ++i) {
        SCOPED_TRACE(testing::Message() << "operation " << i);
        if (u.Pick(4) == 0) {
            const bool any = !before.empty();
            EXPECT_EQ(u.Undo(), any ? std::int32_t(before.size()) - 2 : -1);
            ASSERT_TRUE(IndexAgreesWithTheScan(u.m_Cad, {-150, -150, 350, 350}, 100, {40, 200}));
            ASSERT_TRUE(IdsAgreeWithTheScan(u.m_Cad));
            if (any) {
                ASSERT_TRUE(SameBytes(u.Canonical(), Canonical(before.back())))
                    << "taking back a step of " << u.m_Steps.back();
                u.m_Steps.pop_back();
                before.pop_back();
            }
            continue;
        }
        const Operation &op = PickOperation(u);
        SCOPED_TRACE(op.name);
        // Kept as saved; put in identity order only when compared.
        const QByteArray now = Saved(u.m_Cad);
        const TMyShape *newest = NewestRecord(u.m_Cad);
        op.run(u);
        ASSERT_TRUE(RelationsValid(u.m_Cad));
        ASSERT_TRUE(IndexAgreesWithTheScan(u.m_Cad, {-150, -150, 350, 350}, 100, {40, 200}));
        ASSERT_TRUE(IdsAgreeWithTheScan(u.m_Cad));
        if (NewestRecord(u.m_Cad) == newest) {
            ASSERT_TRUE(SameBytes(u.Canonical(), Canonical(now)))
                << "a command that recorded nothing changed shapes";
            continue;
        }
        before.push_back(now);
        u.m_Steps.push_back(op.name);
        // The history keeps at most HistorySize steps: the oldest one is forgotten.
        if (before.size() > RandomUse::HistorySize) {
            before.pop_front();
            u.m_Steps.pop_front();
        }
        ASSERT_EQ(std::size_t(StepCount(u.m_Cad)), before.size());
    }
}

// Under the sanitizers every connector route costs many times more, so one seed's 2,500
// operations stand for the four seeds' 10,000 of an ordinary build.
#if defined(__SANITIZE_ADDRESS__)
constexpr int Seeds = 1;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr int Seeds = 1;
#else
constexpr int Seeds = 4;
#endif
#else
constexpr int Seeds = 4;
#endif

TEST(UndoRandom, EveryStepTakenBackGivesTheSavedDrawingBack)
{
    int steps = 0;
    const unsigned seeds[] = {3u, 11u, 29u, 97u};
    for (unsigned seed : std::span(seeds, Seeds)) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        RandomUse u(seed);
        std::deque<QByteArray> before;
        for (int round = 0; round < 25; ++round) {
            ASSERT_NO_FATAL_FAILURE(RunSome(u, 100, before));
            // The records kept are bounded by the history, not by the work done.
            ASSERT_LE(StepCount(u.m_Cad), RandomUse::HistorySize);
            steps += int(before.size());
            // Everything still in the history taken back: the oldest remembered drawing.
            while (!before.empty()) {
                ASSERT_GE(u.Undo(), -1);
                ASSERT_TRUE(SameBytes(u.Canonical(), Canonical(before.back())))
                    << "taking back a step of " << u.m_Steps.back();
                before.pop_back();
                u.m_Steps.pop_back();
            }
            EXPECT_EQ(u.Undo(), -1);
        }
    }
    // The runs did overflow the history and did take steps back.
    EXPECT_GT(steps, 100 * Seeds);
}

} // namespace
} // namespace tessal::test
