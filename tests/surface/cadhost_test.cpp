// SPDX-License-Identifier: MIT
// The surface as host of its shapes: holding shapes, group roots, turning and locking whole
// groups, and the screen image that feedback is drawn on.
#include "common/imagecompare.h"

#include <tessal/shapes/shape.h>
#include <tessal/surface/cad.h>

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <tuple>
#include <utility>
#include <vector>

using namespace tessal;
using tessal::test::CountPixels;

namespace {

TMyShape *AddRect(TMyCAD &cad, float l, float t, float r, float b, std::int32_t parent)
{
    auto *s = new TMyShape(&cad);
    for (TMyPoint p : {TMyPoint{l, t}, TMyPoint{r, t}, TMyPoint{r, b}, TMyPoint{l, b}})
        s->Points().push_back(p);
    s->SetCenterPoint({(l + r) / 2, (t + b) / 2});
    s->SetParentNo(parent);
    EXPECT_TRUE(cad.AddShape(s, false, false));
    return s;
}

// A group R (0) of A (1) and the group B (2), which holds C (3); D (4) stands alone.
struct TGroups
{
    TMyCAD Cad;
    TMyShape *R, *A, *B, *C, *D;
    TGroups()
    {
        R = AddRect(Cad, 0, 0, 100, 50, -1);
        A = AddRect(Cad, 10, 10, 20, 20, 0);
        B = AddRect(Cad, 60, 10, 90, 40, 0);
        C = AddRect(Cad, 70, 20, 80, 30, 2);
        D = AddRect(Cad, 200, 200, 210, 210, -1);
        R->ChildShapes() = {1, 2};
        B->ChildShapes() = {3};
    }
};

void ExpectPoint(TMyPoint actual, float x, float y)
{
    EXPECT_NEAR(actual.X, x, 1e-3f);
    EXPECT_NEAR(actual.Y, y, 1e-3f);
}

} // namespace

TEST(CadHost, AddShapeJoinsLayerAndCountsIdentities)
{
    TMyCAD cad;
    EXPECT_FALSE(cad.AddShape(nullptr, false, false));
    cad.NewLayer(QStringLiteral("Top"), true);
    auto *a = new TMyShape(&cad);
    a->SetLayerId(9);
    ASSERT_TRUE(cad.AddShape(a, false, false));
    EXPECT_EQ(a->LayerId(), 1);
    EXPECT_EQ(cad.ShapeIdCounter(), 1);
    auto *b = new TMyShape(&cad);
    b->SetLayerId(9);
    ASSERT_TRUE(cad.AddShape(b, true, true));
    EXPECT_EQ(b->LayerId(), 9);
    EXPECT_EQ(cad.ShapeIdCounter(), 1);
    EXPECT_EQ(cad.GetShapesCount(), 2);
    EXPECT_EQ(cad.GetShapeByNo(0), a);
    EXPECT_EQ(cad.GetShapeByNo(1), b);
    EXPECT_EQ(cad.GetShapeByNo(2), nullptr);
    EXPECT_EQ(cad.GetShapeByNo(-1), nullptr);
}

// New shapes take their defaults from the surface through the host interface.
TEST(CadHost, ShapesCopyTheSurfaceDefaults)
{
    TMyCAD cad;
    const TPen pen{clRed, TPenMode::pmCopy, TPenStyle::psDot, 4};
    const TBrush brush{clLime, TBrushStyle::bsCross, {}};
    TFont font;
    font.Name = QStringLiteral("Serif");
    cad.SetPen(pen);
    cad.SetBrush(brush);
    cad.SetFont(font);
    cad.SetPenStyleJoinType(TPenStyleJoinType::psjtBEVEL);
    cad.SetPenStyleEndCapType(TPenStyleEndCapType::psectSQUARE);
    cad.SetDragEnable(false);
    cad.SetRotateEnable(false);
    TMyShape shape(&cad);
    EXPECT_EQ(std::tuple(shape.Pen(), shape.Brush(), shape.Font()), std::tuple(pen, brush, font));
    EXPECT_EQ(shape.PenStyleJoinType(), TPenStyleJoinType::psjtBEVEL);
    EXPECT_EQ(shape.PenStyleEndCapType(), TPenStyleEndCapType::psectSQUARE);
    EXPECT_TRUE(!shape.DragEnable() && !shape.RotateEnable() && shape.ResizeEnable());
}

TEST(CadHost, RootParentsAndLocking)
{
    TGroups g;
    for (auto [shape, root] : {std::pair{g.C, g.R}, {g.A, g.R}, {g.R, g.R}, {g.D, g.D}})
        EXPECT_EQ(g.Cad.GetRootParentShape(shape), root) << shape->ShapeNo();
    EXPECT_EQ(g.Cad.GetRootParentShape(nullptr), nullptr);
    // A parent number beyond the list ends the walk at the last shape found.
    g.D->SetParentNo(99);
    EXPECT_EQ(g.Cad.GetRootParentShape(g.D), g.D);
    // Locking a shape locks its members, not its group.
    const auto locked = [&g] {
        std::vector<bool> flags;
        for (TMyShape *s : {g.R, g.A, g.B, g.C, g.D})
            flags.push_back(s->Locked());
        return flags;
    };
    g.B->SetLocked(true);
    EXPECT_EQ(locked(), (std::vector<bool>{false, false, true, true, false}));
    g.Cad.LockShape(g.R, true);
    EXPECT_EQ(locked(), (std::vector<bool>{true, true, true, true, false}));
    g.R->SetLocked(false);
    EXPECT_EQ(locked(), (std::vector<bool>{false, false, false, false, false}));
    // A corrupt cycle ends instead of hanging.
    g.A->SetParentNo(2);
    g.B->SetParentNo(1);
    TMyShape *r = g.Cad.GetRootParentShape(g.C);
    EXPECT_TRUE(r == g.A || r == g.B);
}

// Turning a member turns its whole root group about the root's centre by the difference
// between the wanted angle and the member's own angle; other shapes stay.
TEST(CadHost, RotateShapeToTurnsTheWholeGroup)
{
    TGroups g;
    g.C->SetAngleValue(0.25f);
    const double quarter = std::numbers::pi / 2;
    g.Cad.RotateShapeTo(g.C, 0.25 + quarter);
    // A quarter turn about (50, 25): (x, y) -> (50 - (y - 25), 25 + (x - 50)).
    ExpectPoint(g.R->GetPoint(0), 75, -25);
    ExpectPoint(g.R->GetPoint(2), 25, 75);
    ExpectPoint(g.A->GetPoint(0), 65, -15);
    ExpectPoint(g.B->GetPoint(2), 35, 65);
    ExpectPoint(g.C->GetPoint(0), 55, 45);
    ExpectPoint(g.D->GetPoint(0), 200, 200);
    EXPECT_NEAR(g.R->Angle(), quarter, 1e-6);
    EXPECT_NEAR(g.A->Angle(), quarter, 1e-6);
    EXPECT_NEAR(g.C->Angle(), 0.25 + quarter, 1e-6);
    EXPECT_EQ(g.D->Angle(), 0.0f);

    // The shape's own setter goes through the same host service: half a turn more.
    g.A->SetAngle(float(3 * quarter));
    ExpectPoint(g.R->GetPoint(0), 25, 75);
    ExpectPoint(g.C->GetPoint(0), 45, 5);
    EXPECT_NEAR(g.B->Angle(), 3 * quarter, 1e-5);
}

// What is drawn on the screen canvas stays on screen through plain exposes; only an
// invalidated area is composed afresh, and only that area.
TEST(CadHost, ScreenImageKeepsFeedbackUntilInvalidated)
{
    TMyCAD cad;
    cad.SetPageWidth(20);
    cad.SetPageHeight(10);
    cad.GridOperation()->SetGridType(TGridType::gNone);
    const QRect all = cad.rect();
    const int pixels = all.width() * all.height();
    ASSERT_GT(pixels, 400);

    QImage shot = cad.grab().toImage();
    EXPECT_EQ(CountPixels(shot, all, 0xFFFFFF), pixels);
    cad.SetColorOfBackGround(clRed);
    TColor seenDuringPaint = 0;
    cad.SetOnPaint([&seenDuringPaint](TMyCAD *s) {
        seenDuringPaint = FromQColor(s->ScreenImage().pixelColor(1, 1));
    });
    shot = cad.grab().toImage();
    EXPECT_EQ(CountPixels(shot, all, 0xFF0000), pixels);
    EXPECT_EQ(seenDuringPaint, clRed);

    TCanvas *screen = cad.ScreenCanvas();
    ASSERT_NE(screen, nullptr);
    screen->Brush().Color = clBlack;
    screen->FillRect(TRect(0, 0, 10, 10));
    cad.ScreenChanged(TRect(0, 0, 10, 10));
    shot = cad.grab().toImage();
    EXPECT_EQ(CountPixels(shot, QRect(0, 0, 10, 10), 0x000000), 100);
    EXPECT_EQ(CountPixels(shot, all, 0xFF0000), pixels - 100);

    cad.InvalidateRect(TRect(0, 0, 5, 5));
    shot = cad.grab().toImage();
    EXPECT_EQ(CountPixels(shot, QRect(0, 0, 10, 10), 0x000000), 75);
    EXPECT_EQ(CountPixels(shot, all, 0xFF0000), pixels - 75);

    static_cast<TShapeHost &>(cad).RequestRepaint();
    shot = cad.grab().toImage();
    EXPECT_EQ(CountPixels(shot, all, 0xFF0000), pixels);
}

// Recomposing the area of the remembered highlight square removes the square from the
// screen, so the memory goes too; recomposing elsewhere keeps it.
TEST(CadHost, RecompositionForgetsTheHighlightItCovers)
{
    TMyCAD cad;
    cad.SetPageWidth(40);
    cad.SetPageHeight(20);
    TMyShape shape(&cad);
    cad.grab();
    cad.HotHighlight() = {&shape, 2, {100, 50}};
    cad.InvalidateRect(TRect(0, 0, 10, 10));
    cad.grab();
    EXPECT_EQ(cad.HotHighlight().Shape, &shape);
    EXPECT_EQ(cad.HotHighlight().Number, 2);
    cad.InvalidateRect(TRect(106, 56, 120, 70));
    cad.grab();
    EXPECT_EQ(cad.HotHighlight().Shape, nullptr);
    EXPECT_EQ(cad.HotHighlight().Number, -1);
}
