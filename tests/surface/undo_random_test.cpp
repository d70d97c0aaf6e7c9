// SPDX-License-Identifier: MIT
// Undo under random use: thousands of recorded commands with steps taken back in between
// and a short history that overflows all the time. Every step taken back must give the
// saved drawing of the moment before that step, byte for byte.
#include "documenthelpers.h"

#include <gtest/gtest.h>

#include <QBuffer>

#include <deque>
#include <functional>
#include <random>

namespace tessal::test {
namespace {

QByteArray Saved(const TMyCAD &cad)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(cad.SaveToStream(&buffer));
    return buffer.data();
}

// The saved drawing with the shapes in identity order. Taking back a deletion puts the
// shapes back after the present ones, so only the list order may differ from before; every
// relation number is renumbered with it, by the surface's own exchange of list places.
QByteArray Canonical(const TMyCAD &cad)
{
    QByteArray bytes = Saved(cad);
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
    // A few distinct shapes as the working shapes, as a selection would give them.
    void SelectSome(int count)
    {
        std::vector<TMyShape *> chosen;
        for (int i = 0; i < count; ++i)
            if (TMyShape *shape = AnyShape())
                chosen.push_back(shape);
        m_Cad.SetWorkingShapes(chosen);
    }

    static constexpr std::uint8_t HistorySize = 12;
    TMyCAD m_Cad;
    std::mt19937 m_Rng;
};

// Every command that records a step. Each entry runs one command on random arguments; one
// that refuses its arguments records nothing and must leave the drawing as it was.
// Commands added later (node edits by mouse, say) join by adding an entry here.
struct Operation
{
    const char *name;
    int weight;
    std::function<void(RandomUse &)> run;
};

const std::vector<Operation> &Operations()
{
    static const TDrawTool tools[] = {
        TDrawTool::SpRectangle, TDrawTool::SpEllipse, TDrawTool::SpLine, TDrawTool::SpPolyLine,
        TDrawTool::SpPolygon,   TDrawTool::SpText,    TDrawTool::SpArc,  TDrawTool::SpPolyBezier,
        TDrawTool::SpBLine,     TDrawTool::SpLinkLine};
    static const std::vector<Operation> operations = {
        {"add by code", 6,
         [](RandomUse &u) {
             u.m_Cad.SetCurrentLayerId(u.Pick(2));
             const TDrawTool tool = tools[u.Pick(std::size(tools))];
             u.m_Cad.AddShapeByCode2(tool, {}, {u.Coordinate(), u.Coordinate()}, 5 + u.Pick(80),
                                     5 + u.Pick(80), 2 + u.Pick(4), u.Pick(4) * 0.3, {});
         }},
        {"connector created and bound", 2,
         [](RandomUse &u) {
             TMyShape *a = u.AnyShape();
             TMyShape *b = u.AnyShape();
             if (a && b && a != b && !dynamic_cast<TMyLinkLine *>(a) &&
                 !dynamic_cast<TMyLinkLine *>(b))
                 AddConnector(u.m_Cad, a, b);
         }},
        {"delete one", 3,
         [](RandomUse &u) {
             if (TMyShape *shape = u.AnyShape())
                 u.m_Cad.DeleteShapeById(shape->ShapeId(), true);
         }},
        {"delete selected", 1,
         [](RandomUse &u) {
             u.SelectSome(1 + u.Pick(3));
             u.m_Cad.DeleteSelectedShapes();
         }},
        {"align", 2,
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
        {"flip", 2,
         [](RandomUse &u) {
             if (TMyShape *shape = u.AnyShape())
                 u.Pick(2) ? u.m_Cad.FlipHoriz(shape) : u.m_Cad.FlipVert(shape);
         }},
        {"restack", 3,
         [](RandomUse &u) {
             TMyShape *shape = u.AnyShape();
             if (!shape)
                 return;
             switch (u.Pick(4)) {
             case 0:
                 u.m_Cad.BringToFront(shape, true);
                 break;
             case 1:
                 u.m_Cad.SendToBack(shape, true);
                 break;
             case 2:
                 u.m_Cad.BringToFrontByStep(shape, true);
                 break;
             default:
                 u.m_Cad.SendToBackByStep(shape, true);
                 break;
             }
         }},
        {"group", 2,
         [](RandomUse &u) {
             std::vector<TMyShape *> members;
             for (int i = 0; i < 2 + u.Pick(2); ++i)
                 members.push_back(u.AnyShape());
             u.m_Cad.GroupShapes(members, true);
         }},
        {"ungroup", 1,
         [](RandomUse &u) {
             if (TMyShape *shape = u.AnyShape(); shape && shape->HasChildShapes())
                 u.m_Cad.UnGroupShape(shape, true);
         }},
        {"paste", 1,
         [](RandomUse &u) {
             u.SelectSome(1 + u.Pick(2));
             u.m_Cad.PasteShapesData(u.m_Cad.CopiedShapesData());
         }},
        {"block insertion", 1,
         [](RandomUse &u) {
             TMyCAD block;
             AddRectangle(block, u.Coordinate(), u.Coordinate(), 150, 150);
             const TMyPoint ends[] = {{0, 0}, {u.Coordinate(), u.Coordinate()}};
             block.AddShapeByCode(TDrawTool::SpLine, {}, ends, 0, {});
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

const Operation &PickOperation(RandomUse &u)
{
    const auto &operations = Operations();
    int total = 0;
    for (const Operation &op : operations)
        total += op.weight;
    int at = u.Pick(total);
    for (const Operation &op : operations) {
        if (at < op.weight)
            return op;
        at -= op.weight;
    }
    return operations.front();
}

// The newest record of the history, which changes exactly when a step is recorded.
const TMyShape *NewestRecord(const TMyCAD &cad)
{
    const auto &list = cad.UndoRedoShapeList();
    return list.empty() ? nullptr : list.back().Copy.get();
}

// Runs count operations, taking steps back one time in four. before holds the drawing as
// it was before each step still in the history, oldest first.
void Run(RandomUse &u, int count, std::deque<QByteArray> &before)
{
    for (int i = 0; i < count; ++i) {
        SCOPED_TRACE(testing::Message() << "operation " << i);
        if (u.Pick(4) == 0) {
            const bool any = !before.empty();
            EXPECT_EQ(u.m_Cad.PopFromUndoRedoShapeList(),
                      any ? std::int32_t(before.size()) - 2 : -1);
            if (any) {
                ASSERT_EQ(Canonical(u.m_Cad), before.back()) << "taking back a step";
                before.pop_back();
            }
            continue;
        }
        const Operation &op = PickOperation(u);
        SCOPED_TRACE(op.name);
        const QByteArray now = Canonical(u.m_Cad);
        const TMyShape *newest = NewestRecord(u.m_Cad);
        op.run(u);
        ASSERT_TRUE(RelationsValid(u.m_Cad));
        if (NewestRecord(u.m_Cad) == newest) {
            ASSERT_EQ(Canonical(u.m_Cad), now) << "a command that recorded nothing changed shapes";
            continue;
        }
        before.push_back(now);
        // The history keeps at most HistorySize steps: the oldest one is forgotten.
        if (before.size() > RandomUse::HistorySize)
            before.pop_front();
        ASSERT_EQ(std::size_t(StepCount(u.m_Cad)), before.size());
    }
}

TEST(UndoRandom, EveryStepTakenBackGivesTheSavedDrawingBack)
{
    int steps = 0;
    for (unsigned seed : {3u, 11u, 29u, 97u}) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        RandomUse u(seed);
        std::deque<QByteArray> before;
        for (int round = 0; round < 25; ++round) {
            ASSERT_NO_FATAL_FAILURE(Run(u, 100, before));
            // The records kept are bounded by the history, not by the work done.
            ASSERT_LE(StepCount(u.m_Cad), RandomUse::HistorySize);
            steps += int(before.size());
            // Everything still in the history taken back: the oldest remembered drawing.
            while (!before.empty()) {
                ASSERT_GE(u.m_Cad.PopFromUndoRedoShapeList(), -1);
                ASSERT_EQ(Canonical(u.m_Cad), before.back());
                before.pop_back();
            }
            EXPECT_EQ(u.m_Cad.PopFromUndoRedoShapeList(), -1);
        }
    }
    // The runs did overflow the history and did take steps back.
    EXPECT_GT(steps, 400);
}

} // namespace
} // namespace tessal::test
