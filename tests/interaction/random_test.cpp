// SPDX-License-Identifier: MIT
// Thousands of random presses, moves and releases with random tools, modifiers and zooms:
// the selection stays well formed, the relations consistent, the index agrees with a scan
// of the list, every gesture records at most
// one step, taking a gesture's step back gives the drawing saved before it, byte for byte,
// and so does taking back, one by one, every step the history still holds at the end.
#include "mousehelpers.h"

#include <tessal/shapes/shape.h>

#include <gtest/gtest.h>

#include <random>
#include <set>

namespace tessal::test {
namespace {

const TDrawTool Tools[] = {
    TDrawTool::SpSelecting,
    TDrawTool::SpSelecting,
    TDrawTool::SpSelecting,
    TDrawTool::SpRotateSelecting,
    TDrawTool::SpLine,
    TDrawTool::SpRectangle,
    TDrawTool::SpEllipse,
    TDrawTool::SpPolyLine,
    TDrawTool::SpPolygon,
    TDrawTool::SpFreeLine,
    TDrawTool::SpBLine,
    TDrawTool::SpPolylinePolygonPointRemoving,
    TDrawTool::SpPolylinePolygonPointAdding,
    TDrawTool::SpBrowse,
    TDrawTool::SpDragWhole,
};

class TRandomUser
{
public:
    TRandomUser(TMouseSurface &s, unsigned seed)
        : m_S(s)
        , m_Rng(seed)
    {}

    // Mostly near the points of existing shapes, where handles and outlines are.
    QPoint Somewhere()
    {
        const int n = m_S.cad.GetShapesCount();
        if (n > 0 && Chance(0.6)) {
            const TMyShape *shape = m_S.cad.GetShapeByNo(Int(0, n - 1));
            if (shape->GetPointsCount() > 0) {
                const TMyPoint p = shape->GetPointInZoom(Int(0, shape->GetPointsCount() - 1));
                return QPoint(int(p.X) + Int(-3, 3), int(p.Y) + Int(-3, 3));
            }
        }
        return QPoint(Int(0, 600), Int(0, 600));
    }

    void Gesture()
    {
        if (Chance(0.25)) {
            const TDrawTool tool = Tools[Int(0, int(std::size(Tools)) - 1)];
            m_S.cad.SetShapeTool(tool);
        }
        if (!WholeDrags && m_S.cad.ShapeTool() == TDrawTool::SpDragWhole)
            m_S.cad.SetShapeTool(TDrawTool::SpSelecting);
        // A zoom change is a step of its own: the stored control size follows the zoom.
        if (Chance(0.03)) {
            m_S.cad.SetZoom(std::array{0.5, 1.0, 1.5, 2.0}[std::size_t(Int(0, 3))]);
            return;
        }
        const Qt::KeyboardModifiers mod = Chance(0.2) ? Qt::ShiftModifier : Qt::NoModifier;
        QPoint p = Somewhere();
        if (Chance(0.05)) {
            QTest::mouseDClick(&m_S.cad, Qt::LeftButton, mod, p);
            return;
        }
        m_S.Press(p, mod);
        const int moves = Int(0, 5);
        for (int i = 0; i < moves; ++i) {
            p += QPoint(Int(-40, 40), Int(-40, 40));
            m_S.Move(p);
        }
        if (Chance(0.05))
            QTest::keyClick(&m_S.cad, Qt::Key_Escape);
        if (Chance(0.03))
            QTest::mouseClick(&m_S.cad, Qt::RightButton, Qt::NoModifier, p);
        m_S.Release(p, mod);
    }

    // Moving the whole drawing records no step; the last gestures leave it out so that the
    // history they leave can be taken back to the drawings saved before them.
    bool WholeDrags = true;

    bool Chance(double p) { return std::uniform_real_distribution<>(0, 1)(m_Rng) < p; }
    int Int(int lo, int hi) { return std::uniform_int_distribution<>(lo, hi)(m_Rng); }

private:
    TMouseSurface &m_S;
    std::mt19937 m_Rng;
};

::testing::AssertionResult SelectionWellFormed(const TMyCAD &cad)
{
    std::set<const TMyShape *> seen;
    for (const TMyShape *shape : cad.WorkingShapes()) {
        if (cad.GetShapeNoInMyShapes(shape) < 0)
            return ::testing::AssertionFailure() << "a working shape is not in the drawing";
        if (shape->HasParentShape())
            return ::testing::AssertionFailure() << "a group member is a working shape";
        if (!seen.insert(shape).second)
            return ::testing::AssertionFailure() << "a working shape is listed twice";
    }
    return ::testing::AssertionSuccess();
}

// The stored control size follows the zoom, so drawings saved at different zooms are
// compared as saved at 100 %.
QByteArray SavedAtFullSize(TMyCAD &cad)
{
    const double zoom = cad.Zoom();
    cad.SetZoom(1.0);
    QByteArray bytes = Saved(cad);
    cad.SetZoom(zoom);
    return bytes;
}

// A new step always brings new shape copies, also when the oldest step made room for it:
// the first record of the newest step tells steps apart.
const TMyShape *NewestStep(const TMyCAD &cad)
{
    const auto &list = cad.UndoRedoShapeList();
    std::size_t first = list.size();
    while (first > 0 && list[first - 1].Step == list.back().Step)
        --first;
    return first == list.size() ? nullptr : list[first].Copy.get();
}

TEST(MouseRandom, GesturesKeepTheDocumentWellFormedAndUndoExact)
{
    for (const unsigned seed : {1u, 2u, 3u}) {
        SCOPED_TRACE(seed);
        TMouseSurface s;
        s.cad.SetDisableTextInput(true);
        // Small enough for the oldest steps to be evicted many times over.
        s.cad.SetUndoRedoSize(40);
        // A member taken alone would be a working shape with a parent; keep groups whole.
        s.cad.SetOnChildShapeSelected([](TMyCAD *, TMyShape *, bool &accept) { accept = false; });
        TMyShape *r1 = AddRectangle(s.cad, 50, 50, 150, 120);
        TMyShape *r2 = AddRectangle(s.cad, 200, 80, 260, 200);
        TMyShape *a = AddRectangle(s.cad, 300, 300, 380, 360);
        TMyShape *b = AddRectangle(s.cad, 420, 300, 480, 380);
        s.cad.ChangeLinkShapes(AddConnector(s.cad, r1, r2));
        const std::vector<TMyShape *> pair{a, b};
        s.cad.GroupShapes(pair, false);
        s.cad.ClearAllUndoStuff();

        TRandomUser user(s, seed);
        std::vector<QByteArray> history; // the drawing before each step still held
        int undone = 0;
        for (int i = 0; i < 800; ++i) {
            user.WholeDrags = i < 400;
            const int steps = StepCount(s.cad);
            const TMyShape *newest = NewestStep(s.cad);
            const std::size_t records = s.cad.UndoRedoShapeList().size();
            const QByteArray prior = SavedAtFullSize(s.cad);
            user.Gesture();
            ASSERT_TRUE(SelectionWellFormed(s.cad)) << "gesture " << i;
            ASSERT_TRUE(RelationsValid(s.cad)) << "gesture " << i;
            ASSERT_TRUE(IndexAgreesWithTheScan(s.cad, {-50, -50, 700, 700}, 150, {30, 160}))
                << "gesture " << i;
            ASSERT_LE(StepCount(s.cad), steps + 1) << "one gesture, at most one step";
            if (NewestStep(s.cad) == newest) {
                ASSERT_EQ(s.cad.UndoRedoShapeList().size(), records)
                    << "gesture " << i << " added to the step of an earlier one";
                // Moving the whole drawing records nothing, so the steps before it can no
                // longer give back the drawings saved before them.
                if (s.cad.ShapeTool() == TDrawTool::SpDragWhole && SavedAtFullSize(s.cad) != prior)
                    history.clear();
                continue;
            }
            // The new step may have pushed the oldest one out.
            if (history.size() == std::size_t(StepCount(s.cad)))
                history.erase(history.begin());
            // Every second recorded gesture is taken back at once: the drawing must be the
            // one before it, byte for byte.
            if (user.Chance(0.5)) {
                const QString action = s.cad.UndoRedoShapeList().back().Action;
                const auto tool = s.cad.ShapeTool();
                s.cad.PopFromUndoRedoShapeList();
                ASSERT_TRUE(IndexAgreesWithTheScan(s.cad, {-50, -50, 700, 700}, 150, {30, 160}))
                    << "undo of gesture " << i;
                ASSERT_EQ(SavedAtFullSize(s.cad), prior)
                    << "gesture " << i << " " << action.toStdString() << " tool " << int(tool)
                    << " shapes " << s.cad.GetShapesCount();
                ++undone;
                continue;
            }
            history.push_back(prior);
        }
        EXPECT_GT(undone, 50);
        EXPECT_GT(s.cad.GetShapesCount(), 5);
        ASSERT_LE(history.size(), std::size_t(StepCount(s.cad)));
        ASSERT_GE(history.size(), 20u) << "too few steps to take back";
        const bool comparableToTheStart = history.size() == std::size_t(StepCount(s.cad));
        while (!history.empty()) {
            s.cad.PopFromUndoRedoShapeList();
            ASSERT_EQ(SavedAtFullSize(s.cad), history.back()) << history.size() << " steps left";
            history.pop_back();
        }
        if (comparableToTheStart) {
            EXPECT_EQ(s.cad.PopFromUndoRedoShapeList(), -1);
        }
    }
}

} // namespace
} // namespace tessal::test
