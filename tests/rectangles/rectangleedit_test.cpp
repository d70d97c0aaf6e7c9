// SPDX-License-Identifier: MIT
// Drawing a rectangle with the mouse, its computed points, resizing by its handles, and the
// area and side-length texts of rectangles and ellipses, byte for byte.
#include "shapes/testhost.h"

#include <tessal/shapes/rectangle.h>

#include <gtest/gtest.h>

#include <numbers>

namespace tessal::test {
namespace {

TEST(RectangleCreation, CornerOrderFollowsTheDragFromEachDirection)
{
    TTestHost host;
    for (TPoint second : {TPoint{90, 70}, TPoint{10, 70}, TPoint{90, 10}, TPoint{10, 10}}) {
        auto r = DrawnBy<TMyRectangle>(host, {50, 40}, second);
        const float x = float(second.X), y = float(second.Y);
        EXPECT_EQ(r->Points(), (TMyPointArray{{50, 40}, {x, 40}, {x, y}, {50, y}}))
            << x << "," << y;
        EXPECT_EQ(r->GetCenterPoint(), (TMyPoint{(50 + x) / 2, (40 + y) / 2}));
    }
}

// Mouse points are screen pixels at the zoom: stored, and read by the resize, unzoomed.
TEST(RectangleCreation, ScreenPointsAreStoredAndResizedUnzoomed)
{
    TTestHost host;
    host.ZoomValue = 2;
    auto r = DrawnBy<TMyRectangle>(host, {100, 80}, {40, 160});
    EXPECT_EQ(r->Points(), (TMyPointArray{{50, 40}, {20, 40}, {20, 80}, {50, 80}}));
    EXPECT_EQ(r->GetCenterPointInZoom(), (TMyPoint{70, 120}));
    r->SetCurrentHot(2);
    r->SizeChangeValue({40, 160}, {20, 200});
    EXPECT_EQ(r->Points(), (TMyPointArray{{50, 40}, {10, 40}, {10, 100}, {50, 100}}));
}

TEST(RectangleCreation, SecondPointOnTheSameRowOrColumnIsRefused)
{
    TTestHost host;
    TMyRectangle r(&host);
    // The same column, the same row and the same point are refused.
    for (TPoint p : {TPoint{30, 30}, TPoint{30, 90}, TPoint{80, 30}, TPoint{30, 30}})
        r.AddPointByMouse(p);
    EXPECT_EQ(r.GetPointsCount(), 1);
    EXPECT_FALSE(r.IsDrawingFinished(Qt::LeftButton, {80, 30}));
    // Drawing goes on: a proper second corner still finishes the shape.
    r.AddPointByMouse({80, 90});
    EXPECT_EQ(r.GetPointsCount(), 4);
    EXPECT_TRUE(r.IsDrawingFinished(Qt::LeftButton, {80, 90}));
    // A finished rectangle takes no further corner.
    r.AddPointByMouse({120, 120});
    EXPECT_EQ(r.GetPointsCount(), 4);
}

TEST(RectanglePoints, SideMiddlesAndZeroPointFollowTheRotation)
{
    TTestHost host;
    auto r = DrawnBy<TMyRectangle>(host, {40, 40}, {160, 100});
    EXPECT_EQ(r->GetPoint(-1), (TMyPoint{0, 0}));
    r->SetShowSideHot(false); // the flags decide which handles exist, not which points read
    // Middles of the top, right, bottom and left sides, upright and after a quarter turn.
    const TMyPoint upright[] = {{100, 40}, {160, 70}, {100, 100}, {40, 70}};
    const TMyPoint turned[] = {{130, 70}, {100, 130}, {70, 70}, {100, 10}};
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(r->GetPoint(4 + i), upright[i]) << i;
    r->RotateChangeValueByAngle({100, 70}, std::numbers::pi / 2);
    for (int i = 0; i < 4; ++i) {
        EXPECT_NEAR(r->GetPoint(4 + i).X, turned[i].X, 1e-3) << i;
        EXPECT_NEAR(r->GetPoint(4 + i).Y, turned[i].Y, 1e-3) << i;
    }
    EXPECT_FLOAT_EQ(r->GetMyWidth(), 120);
    EXPECT_FLOAT_EQ(r->GetMyHeight(), 60);
}

TEST(RectangleResize, CornerAndSideHandlesOfAnUprightRectangle)
{
    TTestHost host;
    const TMyPointArray kSame = {{20, 20}, {60, 20}, {60, 40}, {20, 40}};
    // {handle, mouse, corners after}
    const std::tuple<int, TMyPoint, TMyPointArray> cases[] = {
        // Every handle of turned rectangles is dragged at random with the previews; here exact
        // values upright. Corner 2 to a new place: its neighbours follow on one axis each.
        {2, {80, 50}, {{20, 20}, {80, 20}, {80, 50}, {20, 50}}},
        // Side handles move their side across only; the other coordinate of the mouse is
        // ignored.
        {5, {90, 35}, {{20, 20}, {90, 20}, {90, 40}, {20, 40}}},
        {4, {25, 5}, {{20, 5}, {60, 5}, {60, 40}, {20, 40}}},
        // Dragging through the opposite side would turn the rectangle inside out: refused.
        // The side handle's refusal also looks at the free coordinate: the mouse must stay
        // on the handle's side of the opposite corner on both axes.
        {2, {10, 50}, kSame},
        {5, {15, 30}, kSame},
        {4, {40, 45}, kSame},
        {5, {90, 45}, kSame},
        // Reaching the opposite side exactly is allowed (the tests are inclusive).
        {5, {20, 30}, {{20, 20}, {20, 20}, {20, 40}, {20, 40}}},
    };
    for (const auto &[hot, to, expected] : cases) {
        auto r = DrawnBy<TMyRectangle>(host, {20, 20}, {60, 40});
        r->SetCurrentHot(hot);
        r->SizeChangeValue({0, 0}, to);
        EXPECT_EQ(r->Points(), expected) << "hot " << hot << " to " << to.X << "," << to.Y;
        const TMyRect box = GetPointsLTRB(expected);
        EXPECT_EQ(r->CenterPoint(),
                  (TMyPoint{(box.Left + box.Right) / 2, (box.Top + box.Bottom) / 2}));
    }
}

TEST(RectangleInfo, AreaTextPerUnitIsStoredAsInfo)
{
    TTestHost host;
    auto r = DrawnBy<TMyRectangle>(host, {10, 10}, {110, 60}); // 100 x 50
    auto e = DrawnBy<TMyEllipse>(host, {10, 10}, {110, 60});
    // {unit, ratio, rectangle's text, ellipse's text}
    const std::tuple<TUnits, double, const char *, const char *> cases[] = {
        // No blank before the suffix; the number is right-aligned in 9 characters.
        {TUnits::pixel, 1, "Area=  5000.00pixel(s)2", "Area=  3926.99pixel(s)2"},
        {TUnits::pixel, 2, "Area= 20000.00pixel(s)2", "Area= 15707.96pixel(s)2"},
        // 5000 / 96^2 square inches = 350.02 mm2 at 96 pixels per inch.
        {TUnits::mm, 1, "Area=   350.02mm2", "Area=   274.91mm2"},
        {TUnits::cm, 1, "Area=     3.50cm2", "Area=     2.75cm2"},
        {TUnits::dm, 1, "Area=     0.04dm2", "Area=     0.03dm2"},
        {TUnits::m, 2, "Area=     0.00m2", "Area=     0.00m2"},
        {TUnits::inch, 1, "Area=     0.54inch2", "Area=     0.43inch2"},
    };
    for (auto [unit, ratio, rectangle, ellipse] : cases) {
        host.Unit = unit;
        host.RatioValue = ratio;
        EXPECT_EQ(r->GetInfo(), QLatin1String(rectangle));
        EXPECT_EQ(r->Info(), QLatin1String(rectangle));
        EXPECT_EQ(e->GetInfo(), QLatin1String(ellipse));
        EXPECT_EQ(e->Info(), QLatin1String(ellipse));
    }
    // The area is the shape's own, not its turned bounding box's, and ignores the zoom.
    host.Unit = TUnits::pixel;
    host.RatioValue = 1;
    host.ZoomValue = 3;
    r->RotateChangeValueByAngle(r->GetCenterPoint(), 0.5);
    EXPECT_EQ(r->GetInfo(), QLatin1String("Area=  5000.00pixel(s)2"));
}

// The width and the height of the box spanned by two screen points, with the kept
// oddities: cm, dm and m still say "mm", and "inch" is a tenth-inch count.
TEST(RectangleInfo, SideLengthTextsPerUnit)
{
    TTestHost host;
    TMyRectangle r(&host);
    // {unit, zoom, ratio, text}
    const std::tuple<TUnits, double, double, const char *> cases[] = {
        {TUnits::pixel, 1, 1, "m=   100.00 pixel(s)\rn=    50.00pixel(s)"},
        {TUnits::pixel, 2, 1, "m=    50.00 pixel(s)\rn=    25.00pixel(s)"},
        {TUnits::mm, 1, 1, "m=    26.46 mm\rn=    13.23mm"},
        {TUnits::mm, 2, 3, "m=    39.69 mm\rn=    19.84mm"},
        {TUnits::cm, 1, 1, "m=     2.65 mm\rn=     1.32mm"},
        {TUnits::dm, 1, 1, "m=     0.26 mm\rn=     0.13mm"},
        {TUnits::m, 1, 1, "m=     0.03 mm\rn=     0.01mm"},
        {TUnits::inch, 1, 1, "m=    10.42 in\rn=     5.21in"},
    };
    for (auto [unit, zoom, ratio, text] : cases) {
        host.Unit = unit;
        host.ZoomValue = zoom;
        host.RatioValue = ratio;
        // From (110, 60) to (10, 10): m runs along the first point's row, n up the
        // second point's column; the direction does not matter.
        EXPECT_EQ(r.GetLengthByUnit({110, 60}, {10, 10}), QLatin1String(text));
        EXPECT_EQ(r.GetLengthByUnit({10, 10}, {110, 60}), QLatin1String(text));
    }
}

} // namespace
} // namespace tessal::test
