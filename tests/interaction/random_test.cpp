// SPDX-License-Identifier: MIT
// Thousands of random presses, moves and releases with random tools, modifiers and zooms:
// the selection stays well formed, the relations consistent, every gesture records at most
// one step, and taking a gesture's step back gives the drawing saved before it, byte for byte.
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
        if (Chance(0.25))
            m_S.cad.SetShapeTool(Tools[Int(0, int(std::size(Tools)) - 1)]);
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

TEST(MouseRandom, GesturesKeepTheDocumentWellFormedAndUndoExact)
{
    for (const unsigned seed : {1u, 2u, 3u}) {
        SCOPED_TRACE(seed);
        TMouseSurface s;
        s.cad.SetDisableTextInput(true);
        s.cad.SetUndoRedoSize(255);
        // A member taken alone would be a working shape with a parent; keep groups whole.
        s.cad.SetOnChildShapeSelected([](TMyCAD *, TMyShape *, bool &accept) { accept = false; });
        AddRectangle(s.cad, 50, 50, 150, 120);
        AddRectangle(s.cad, 200, 80, 260, 200);
        TMyShape *a = AddRectangle(s.cad, 300, 300, 380, 360);
        TMyShape *b = AddRectangle(s.cad, 420, 300, 480, 380);
        // No connectors: taking a step back routes a connector again against the shapes as
        // they are then, which need not give the route it had (see the connector tests).
        const std::vector<TMyShape *> pair{a, b};
        s.cad.GroupShapes(pair, false);
        s.cad.ClearAllUndoStuff();

        TRandomUser user(s, seed);
        int undone = 0;
        for (int i = 0; i < 800; ++i) {
            const int steps = StepCount(s.cad);
            const QByteArray prior = Saved(s.cad);
            user.Gesture();
            ASSERT_TRUE(SelectionWellFormed(s.cad)) << "gesture " << i;
            ASSERT_TRUE(RelationsValid(s.cad)) << "gesture " << i;
            ASSERT_LE(StepCount(s.cad), steps + 1) << "one gesture, at most one step";
            // Every second recorded gesture is taken back at once: the drawing must be the
            // one before it, byte for byte.
            if (StepCount(s.cad) == steps + 1 && user.Chance(0.5)) {
                const QString action = s.cad.UndoRedoShapeList().back().Action;
                const auto tool = s.cad.ShapeTool();
                s.cad.PopFromUndoRedoShapeList();
                ASSERT_EQ(Saved(s.cad), prior)
                    << "gesture " << i << " " << action.toStdString() << " tool " << int(tool)
                    << " shapes " << s.cad.GetShapesCount();
                ++undone;
            }
        }
        EXPECT_GT(undone, 50);
        EXPECT_GT(s.cad.GetShapesCount(), 5);
    }
}

} // namespace
} // namespace tessal::test
