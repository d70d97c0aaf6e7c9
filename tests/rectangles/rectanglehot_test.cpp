// SPDX-License-Identifier: MIT
// Rectangle handles (numbering, side-handle switches, rotation states), their drawing, the
// cursors they ask for and the region hit test.
#include "shapes/testhost.h"

#include <tessal/shapes/rectangle.h>

#include <gtest/gtest.h>

#include <numbers>
#include <random>

namespace tessal::test {
namespace {

constexpr double kPi = std::numbers::pi;

// Random turned rectangles at random zooms and handle sizes, probed all around their
// handles: the answer is the highest handle whose square holds the point, as the handle
// points themselves say.
TEST(RectangleHandles, RandomProbesMeetTheHandleSquares)
{
    std::mt19937 rng(5);
    std::uniform_int_distribution<int> at(20, 300);
    for (int round = 0; round < 300; ++round) {
        TClassHost host;
        host.ZoomValue = 0.3 + double(rng() % 30) / 10;
        host.HotSizeValue = std::uint8_t(rng() % 9);
        auto r = DrawnBy<TMyRectangle>(host, {at(rng), at(rng)}, {at(rng), at(rng)});
        if (r->GetPointsCount() != 4)
            continue; // both corners on one pixel: nothing drawn
        r->RotateChangeValueByAngle(r->GetCenterPoint(), double(rng() % 360) * kPi / 180);
        for (int probe = 0; probe < 60; ++probe) {
            const TPoint c = MyPtToPt(r->GetPointInZoom(std::int32_t(rng() % 8)));
            const int reach = host.HotSizeValue + 3;
            const TPoint p{c.X + int(rng() % (2 * reach + 1)) - reach,
                           c.Y + int(rng() % (2 * reach + 1)) - reach};
            std::int32_t expected = -1;
            for (std::int32_t i = 0; i < 8; ++i) {
                const TPoint h = MyPtToPt(r->GetPointInZoom(i));
                if (ExpandRect(PtToARect(h, h), host.HotSizeValue).Contains(p))
                    expected = i;
            }
            ASSERT_EQ(r->InWhichHot(p), expected) << round << ": " << p.X << "," << p.Y;
        }
    }
}

// A 4 x 4 rectangle has all eight handles on top of each other: the highest number in use
// wins, and switching handles off or rotating hands the point to the next lower one.
TEST(RectangleHandles, OverlappingHandlesAnswerTheHighestNumberInUse)
{
    TClassHost host;
    auto r = DrawnBy<TMyRectangle>(host, {50, 50}, {54, 54});
    const TPoint p{52, 52};
    // {side hot, horizontal, vertical, state, answer}; the general switch wins over both.
    using A = TActionTools;
    const std::tuple<bool, bool, bool, A, int> hots2[] = {
        {true, true, true, A::dtSelecting, 7},       {true, false, true, A::dtSelecting, 6},
        {true, false, false, A::dtSelecting, 3},     {true, true, false, A::dtSelecting, 7},
        {false, true, true, A::dtSelecting, 3},      {true, true, true, A::dtRotating, 3},
        {true, true, true, A::dtRotateSelecting, 3}, {true, true, true, A::dtResizing, 7},
        {true, true, true, A::dtDragging, 7},
    };
    for (auto [side, hor, ver, state, hot] : hots2) {
        r->SetShowSideHot(side);
        r->SetShowHorizontalSideHot(hor);
        r->SetShowVerticalSideHot(ver);
        host.Action = state;
        EXPECT_EQ(r->InWhichHot(p), hot) << side << hor << ver << int(state);
    }
    // Above and right of the cluster only corner 1 still reaches.
    host.Action = TActionTools::dtSelecting;
    EXPECT_EQ(r->InWhichHot({57, 47}), 1);
}

// Which of the eight handle centres DrawHot painted in the handle colour, as a bit mask,
// and whether the text-point diamond at (70, 100) is there.
std::pair<unsigned, bool> DrawnHandles(TMyRectangle &r)
{
    QImage image = WhiteImage();
    {
        TCanvas canvas(&image);
        r.DrawHot(canvas);
    }
    const TPoint at[8] = {{20, 20}, {120, 20}, {120, 70}, {20, 70},
                          {70, 20}, {120, 45}, {70, 70},  {20, 45}};
    unsigned mask = 0;
    for (unsigned i = 0; i < 8; ++i)
        mask |= PixelAt(image, at[i].X, at[i].Y) == kLime ? 1u << i : 0u;
    return {mask, PixelAt(image, 70, 100) == kYellow};
}

TEST(RectangleHandles, DrawHotShowsTheHandlesInUseAndTheTextDiamond)
{
    TClassHost host;
    auto r = DrawnBy<TMyRectangle>(host, {20, 20}, {120, 70});
    r->SetTextPoint({70, 100});
    r->SetInfo("label");
    constexpr unsigned corners = 0x0F, vertical = 0x50, horizontal = 0xA0;
    // {side hot, horizontal, vertical, state, handles drawn}
    using A = TActionTools;
    const std::tuple<bool, bool, bool, A, unsigned> cases[] = {
        {true, true, true, A::dtSelecting, corners | vertical | horizontal},
        {true, false, true, A::dtSelecting, corners | vertical},
        {true, true, false, A::dtSelecting, corners | horizontal},
        {false, true, true, A::dtSelecting, corners},
        {true, true, true, A::dtRotating, corners},
        {true, true, true, A::dtRotateSelecting, corners},
    };
    for (auto [side, hor, ver, state, drawn] : cases) {
        r->SetShowSideHot(side);
        r->SetShowHorizontalSideHot(hor);
        r->SetShowVerticalSideHot(ver);
        host.Action = state;
        EXPECT_EQ(DrawnHandles(*r), std::make_pair(drawn, true))
            << side << hor << ver << int(state);
    }
    // The surface's HotShow switches every handle off.
    host.Action = TActionTools::dtSelecting;
    host.Hot = false;
    EXPECT_EQ(DrawnHandles(*r), std::make_pair(0u, false));
}

TEST(RectangleCursor, SideHandlesBySideCornersByPositionElseCross)
{
    TClassHost host;
    auto r = DrawnBy<TMyRectangle>(host, {20, 20}, {120, 70});
    const std::tuple<int, int, TCursor> cursors[] = {
        {20, 20, crSizeNWSE}, {120, 20, crSizeNESW}, {121, 71, crSizeNWSE}, {20, 70, crSizeNESW},
        {70, 20, crSizeNS},   {70, 70, crSizeNS},    {120, 45, crSizeWE},   {18, 45, crSizeWE},
        {70, 45, crCross},    {5, 5, crCross},
    };
    for (auto [x, y, cursor] : cursors)
        EXPECT_EQ(r->GetMouseCursor(x, y), cursor) << x << "," << y;
    // A hidden side handle is no handle: the cross again.
    r->SetShowVerticalSideHot(false);
    EXPECT_EQ(r->GetMouseCursor(70, 20), crCross);

    // Turned a quarter, corner 0 sits right-top of the centre: the cursor follows the
    // position, the side handles keep their numbers' cursors.
    r->SetShowVerticalSideHot(true);
    r->RotateChangeValueByAngle(r->GetCenterPoint(), kPi / 2);
    const TMyPoint c0 = r->GetPointInZoom(0);
    EXPECT_EQ(r->GetMouseCursor(MyPtToPt(c0).X, MyPtToPt(c0).Y), crSizeNESW);
    const TPoint side4 = MyPtToPt(r->GetPointInZoom(4));
    EXPECT_EQ(r->GetMouseCursor(side4.X, side4.Y), crSizeNS);
}

TEST(RectangleHitTest, InsideTheTurnedOutlineOnly)
{
    TTestHost host;
    auto r = DrawnBy<TMyRectangle>(host, {40, 40}, {160, 80});
    QImage image = WhiteImage();
    TCanvas canvas(&image);
    // {turned an eighth, x, y, hit}. Turned, (139, 99) is 55 out along the long axis (half
    // length 60): inside. (60, 75) is inside the upright rectangle but 39 off the long axis
    // (half width 20): outside.
    const std::tuple<bool, int, int, bool> hits[] = {
        {false, 100, 60, true}, {false, 60, 75, true},   {false, 41, 41, true},
        {false, 39, 60, false}, {false, 100, 85, false}, {true, 100, 60, true},
        {true, 139, 99, true},  {true, 60, 75, false},   {true, 45, 45, false},
    };
    for (auto [turned, x, y, hit] : hits) {
        if (turned && r->Angle() == 0)
            r->RotateChangeValueByAngle({100, 60}, kPi / 4);
        EXPECT_EQ(r->IsClickedMe(canvas, {x, y}), hit) << turned << " " << x << "," << y;
    }
    // A hollow rectangle is hit anywhere inside too: the region ignores the brush.
    TBrush hollow = r->Brush();
    hollow.Style = TBrushStyle::bsClear;
    r->SetBrush(hollow);
    EXPECT_TRUE(r->IsClickedMe(canvas, {100, 60}));
}

} // namespace
} // namespace tessal::test
