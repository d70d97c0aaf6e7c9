// SPDX-License-Identifier: MIT
// Snapping rules on tables of points: the grid with halves to even, the box edges of other
// shapes with their scaled capture band, the capture-distance setter, and rectangles.
#include "mousehelpers.h"

#include <gtest/gtest.h>

namespace tessal::test {
namespace {

struct TSnapCase
{
    double GridW, GridH;
    int Reach;
    TPoint In, Out;
    bool Snapped;
};

TEST(Snapping, GridAxesIndependentlyHalvesToEvenWithinTheReach)
{
    const TSnapCase cases[] = {
        {20, 20, 4, {103, 77}, {100, 80}, true},
        {20, 20, 4, {104, 77}, {104, 80}, true}, // 4 away is out of reach
        {20, 20, 4, {104, 76}, {104, 76}, false},
        {20, 20, 4, {-3, 118}, {0, 120}, true},
        {20, 20, 0, {100, 100}, {100, 100}, false}, // a zero reach never snaps
        {2.5, 2.5, 2, {3, 7}, {2, 8}, true},        // 2.5 and 7.5 round to even
        {2.5, 10, 2, {13, 21}, {12, 20}, true},
        {12.5, 7.5, 3, {37, 22}, {38, 22}, true}, // 37.5 -> 38, and 22.5 -> 22 is d=0.5
    };
    for (const TSnapCase &c : cases) {
        TMyCAD cad;
        cad.GridOperation()->SetGridWidth(c.GridW);
        cad.GridOperation()->SetGridHeight(c.GridH);
        cad.SetSnapPixels(std::uint8_t(c.Reach));
        ASSERT_EQ(cad.SnapPixels(), c.Reach);
        cad.SetSnap(true);
        std::int32_t x = c.In.X, y = c.In.Y;
        EXPECT_EQ(cad.SnapXY(x, y), c.Snapped) << c.In.X << "," << c.In.Y;
        EXPECT_EQ((TPoint{x, y}), c.Out) << c.In.X << "," << c.In.Y;
    }

    // A reach is taken only when it is below both grid spacings.
    TMyCAD cad;
    cad.GridOperation()->SetGridWidth(20);
    cad.GridOperation()->SetGridHeight(8);
    for (auto [reach, kept] : {std::pair{5, 5}, {8, 5}, {7, 7}}) {
        cad.SetSnapPixels(std::uint8_t(reach));
        EXPECT_EQ(cad.SnapPixels(), kept) << reach;
    }
    cad.GridOperation()->SetGridHeight(30);
    cad.SetSnapPixels(20);
    EXPECT_EQ(cad.SnapPixels(), 7);
}

TEST(Snapping, BoxEdgesOfOtherShapes)
{
    TMyCAD cad;
    cad.SetSnap(false);
    cad.SetSnapShape(true);
    // A shape added by code is working but not current: only the shape under the mouse
    // is never snapped to.
    AddRectangle(cad, 100, 100, 200, 160);
    struct TEdgeCase
    {
        TPoint In, Out;
        bool Snapped;
    };
    const TEdgeCase cases[] = {
        {{102, 130}, {100, 130}, true},  {{198, 130}, {200, 130}, true},
        {{100, 130}, {100, 130}, true}, // on the edge: zero is never chosen, yet in reach
        {{102, 185}, {100, 185}, true}, // rows reach 1.2 x Bottom = 192, beyond the box
        {{102, 193}, {102, 193}, false}, {{150, 97}, {150, 100}, true},
        {{230, 162}, {230, 160}, true}, // columns reach 1.2 x Right = 240
        {{104, 130}, {104, 130}, false}, {{101, 99}, {100, 100}, true}, // both axes
    };
    for (const TEdgeCase &c : cases) {
        std::int32_t x = c.In.X, y = c.In.Y;
        EXPECT_EQ(cad.SnapXY(x, y), c.Snapped) << c.In.X << "," << c.In.Y;
        EXPECT_EQ((TPoint{x, y}), c.Out) << c.In.X << "," << c.In.Y;
    }
    // A later shape overwrites the candidate of the same edge; the smaller of left and
    // right wins.
    AddRectangle(cad, 103, 10, 180, 400);
    std::int32_t x = 102, y = 130;
    EXPECT_TRUE(cad.SnapXY(x, y));
    EXPECT_EQ(x, 103);
    // With the grid in reach, edges are not looked at.
    cad.SetSnap(true);
    x = 101, y = 50;
    EXPECT_TRUE(cad.SnapXY(x, y));
    EXPECT_EQ((TPoint{x, y}), (TPoint{100, 50}));
}

TEST(Snapping, RectangleMovesAsItsBestCornerWould)
{
    TMyCAD cad;
    cad.SetSnap(true);
    std::int32_t x = 10, y = 10;
    cad.SnapRect(TRect(98, 57, 160, 121), x, y);
    EXPECT_EQ((TPoint{x, y}), (TPoint{12, 9}));
    x = 10, y = 10;
    cad.SnapRect(TRect(90, 50, 130, 70), x, y); // no corner within reach
    EXPECT_EQ((TPoint{x, y}), (TPoint{10, 10}));
}

// A drag lines up the dragged shapes' own box, not their painted extent (wider by pen and
// handles), with the grid or another shape's edge; a drag held to one axis stays on it.
TEST(Snapping, DraggedShapesLineUpTheirBox)
{
    struct TDragCase
    {
        bool Grid;
        TDragMode Mode;
        float Top;
        QPoint By;
        TMyPoint LeftTop;
    };
    const TDragCase cases[] = {
        {true, TDragMode::dgBoth, 103, {21, 18}, {120, 120}},  // every corner 1 off the grid
        {true, TDragMode::dgHorz, 103, {21, 18}, {120, 103}},  // 3 off in Y, yet held
        {false, TDragMode::dgBoth, 100, {137, 0}, {240, 100}}, // right edge onto 300
        {false, TDragMode::dgBoth, 100, {133, 0}, {233, 100}}, // 7 short: out of reach
    };
    for (const TDragCase &c : cases) {
        TMouseSurface s;
        s.cad.GridOperation()->SetGridWidth(20);
        s.cad.GridOperation()->SetGridHeight(20);
        s.cad.SetSnapPixels(5);
        s.cad.SetSnap(c.Grid);
        s.cad.SetSnapShape(!c.Grid);
        s.cad.SetDragShapeMode(c.Mode);
        TMyShape *a = AddRectangle(s.cad, 100, c.Top, 160, c.Top + 40);
        TPen pen = a->Pen();
        pen.Width = 5;
        a->SetPen(pen);
        AddRectangle(s.cad, 300, 100, 360, 140);
        s.Click({130, 120});
        s.Drag({130, 120}, QPoint(130, 120) + c.By);
        EXPECT_EQ(a->GetLeftTop(), c.LeftTop) << c.Grid << " " << int(c.Mode) << " " << c.By.x();
        EXPECT_EQ(a->GetRightBottom(), (TMyPoint{c.LeftTop.X + 60, c.LeftTop.Y + 40}));
    }
}

} // namespace
} // namespace tessal::test
