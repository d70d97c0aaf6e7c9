// SPDX-License-Identifier: MIT
// Polylines, polygons and free lines: how drawing ends, mirrored appending, the closed
// outline, the area text and the free line's hit test.
#include "shapes/testhost.h"

#include <tessal/geometry/canvasmodes.h>
#include <tessal/geometry/geometry.h>
#include <tessal/shapes/polyline.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <numbers>

namespace tessal::test {
namespace {

// Presses as the surface gives them: each appends a point, each release asks whether the
// shape is finished.
bool Click(TMyShape &shape, TPoint p)
{
    shape.AddPointByMouse(p);
    return shape.IsDrawingFinished(Qt::LeftButton, p);
}

TEST(PolyLineDrawing, EndsOnTheRepeatedClickAndDropsTheDuplicate)
{
    TClassHost host;
    host.ZoomValue = 2;
    TMyPolyLine poly(&host);
    EXPECT_FALSE(Click(poly, {20, 20}));
    // Two points that coincide are not yet a polyline.
    EXPECT_FALSE(Click(poly, {20, 20}));
    EXPECT_EQ(poly.GetPointsCount(), 2);

    TMyPolyLine second(&host); // {61, 80} near {60, 80} is not the same spot
    for (TPoint p : {TPoint{20, 20}, TPoint{60, 20}, TPoint{60, 80}, TPoint{61, 80}})
        EXPECT_FALSE(Click(second, p)) << p.X;
    EXPECT_TRUE(Click(second, {61, 80}));
    EXPECT_EQ(second.Points(), (TMyPointArray{{10, 10}, {30, 10}, {30, 40}, {30.5f, 40}}));

    // Three clicks of which the last two coincide make a finished two-point polyline.
    TMyPolyLine shortest(&host);
    Click(shortest, {0, 0});
    Click(shortest, {40, 0});
    EXPECT_TRUE(Click(shortest, {40, 0}));
    EXPECT_EQ(shortest.GetPointsCount(), 2);
}

TEST(PolyLineDrawing, AppendPointMirrorsByTheXYMode)
{
    TClassHost host(200, 150);
    host.ZoomValue = 2;
    const TMyPoint stored[] = {{15, 20}, {15, 55}, {85, 55}, {85, 20}};
    for (int mode = 0; mode < 4; ++mode) {
        host.Mode = TXYMode(mode);
        TMyPolyLine poly(&host);
        poly.AppendPoint({30, 40});
        EXPECT_EQ(poly.Points(), TMyPointArray{stored[mode]}) << mode;
    }
}

TEST(PolygonDrawing, ClosesWithinHotSizeOfTheFirstOrTheLastCorner)
{
    TClassHost host;
    auto start = [&] {
        auto poly = std::make_unique<TMyPolygon>(&host);
        EXPECT_FALSE(Click(*poly, {10, 10}));
        EXPECT_FALSE(Click(*poly, {100, 10}));
        return poly;
    };
    // Three points cannot close, even on the first corner.
    auto three = start();
    EXPECT_FALSE(Click(*three, {11, 11}));
    EXPECT_EQ(three->GetPointsCount(), 3);

    // A click just inside HotSize of the first corner closes (the surface's drawing tests);
    // exactly HotSize away does not.
    auto apart = start();
    EXPECT_FALSE(Click(*apart, {100, 100}));
    EXPECT_FALSE(Click(*apart, {14, 10}));
    EXPECT_EQ(apart->GetPoint(3), (TMyPoint{14, 10}));

    // A repeated click on the last corner closes too, back to point 0.
    auto repeated = start();
    EXPECT_FALSE(Click(*repeated, {100, 100}));
    EXPECT_TRUE(Click(*repeated, {102, 97}));
    EXPECT_EQ(repeated->Points(), (TMyPointArray{{10, 10}, {100, 10}, {100, 100}, {10, 10}}));

    // At zoom 3 the corners are compared on the screen: HotSize stays 4 screen pixels.
    host.ZoomValue = 3;
    auto zoomed = start();
    EXPECT_FALSE(Click(*zoomed, {100, 100}));
    EXPECT_FALSE(Click(*zoomed, {5, 10}));
    EXPECT_TRUE(Click(*zoomed, {7, 10}));
    EXPECT_EQ(zoomed->GetPoint(4), (TMyPoint{10 / 3.0f, 10 / 3.0f}));
}

TEST(PolygonEdit, HandlesSkipTheClosingPointAndMovingACornerKeepsItClosed)
{
    TClassHost host;
    TMyPolygon poly(&host);
    poly.Points() = {{10, 10}, {100, 10}, {100, 100}, {10, 10}};
    // Point 0 and the closing point lie together; only point 0 answers.
    EXPECT_EQ(poly.InWhichHot({10, 10}), 0);
    EXPECT_EQ(poly.InWhichHot({100, 100}), 2);

    poly.SetCurrentHot(0);
    poly.SizeChangeValue({10, 10}, {20, 0});
    EXPECT_EQ(poly.Points(), (TMyPointArray{{20, 0}, {100, 10}, {100, 100}, {20, 0}}));
    EXPECT_EQ(poly.CenterPoint(), (TMyPoint{60, 50}));
    poly.SetCurrentHot(3);
    poly.SizeChangeValue({0, 0}, {-10, 0});
    EXPECT_EQ(poly.Points(), (TMyPointArray{{10, 0}, {100, 10}, {100, 100}, {10, 0}}));
    poly.SetCurrentHot(1);
    poly.SizeChangeValue({0, 0}, {0, 10});
    EXPECT_EQ(poly.Points(), (TMyPointArray{{10, 0}, {100, 20}, {100, 100}, {10, 0}}));

    // The preview of moving point 0 shows its two segments, the closing one included,
    // and erases itself.
    TCanvas &canvas = *host.ScreenCanvas();
    const QImage blank = host.Screen().copy();
    SetDragResizeRotateShapeMode(canvas);
    poly.SetCurrentHot(0);
    poly.Sizing(canvas, {10, 0}, {10, 60});
    auto dark = [&](int x, int y) { return !AllWhite(host.Screen(), QRect(x - 1, y - 1, 3, 3)); };
    EXPECT_TRUE(dark(55, 40));  // (10, 60) to (100, 20)
    EXPECT_TRUE(dark(55, 80));  // (100, 100) to (10, 60)
    EXPECT_FALSE(dark(55, 10)); // the old first side is not drawn
    poly.Sizing(canvas, {10, 0}, {10, 60});
    EXPECT_TRUE(host.Screen() == blank);
}

TEST(PolygonDraw, FilledOutlineWithoutHeadsAndARegionHitTest)
{
    TClassHost host;
    host.ArrowStyleValue = TArrowStyle::ADouble;
    host.ArrowAngleValue = 45;
    TMyPolygon poly(&host);
    poly.Points() = {{20, 20}, {180, 20}, {180, 180}, {20, 180}, {20, 20}};
    poly.SetArrowStyle(TArrowStyle::ADouble);
    poly.SetBrush(TBrush{clBlue, TBrushStyle::bsSolid, {}});
    poly.Draw(*host.ScreenCanvas());
    const QImage &img = host.Screen();
    // Filled blue, black outline, no arrow head at point 0 (30, 24), white outside.
    for (auto [x, y, rgb] : {std::tuple{100, 100, 0x0000FFu},
                             {100, 20, 0x000000u},
                             {30, 24, 0x0000FFu},
                             {10, 100, 0xFFFFFFu}})
        EXPECT_EQ(PixelAt(img, x, y), rgb) << x << "," << y;
    // Inside the region only: no band outside.
    for (auto [x, y, hit] :
         {std::tuple{100, 100, true}, {21, 21, true}, {15, 100, false}, {190, 100, false}})
        EXPECT_EQ(poly.IsClickedMe(*host.ScreenCanvas(), {x, y}), hit) << x << "," << y;
}

// The area formats are checked unit by unit with the rectangles; here the polygon's own
// area, whichever way round the outline runs and at any zoom.
TEST(PolygonInfo, AreaTextByteForByte)
{
    TClassHost host;
    TMyPolygon rect(&host);
    rect.Points() = {{0, 0}, {100, 0}, {100, 50}, {0, 50}, {0, 0}};
    TMyPolygon triangle(&host);
    triangle.Points() = {{0, 0}, {0, 96}, {96, 96}, {0, 0}}; // 4608 px, half a square inch
    const std::tuple<TMyPolygon *, TUnits, double, QString> rows[] = {
        {&rect, TUnits::pixel, 2, "Area= 20000.00pixel(s)2"},
        {&triangle, TUnits::inch, 1, "Area=     0.50inch2"},
        {&triangle, TUnits::mm, 2, "Area=  1290.32mm2"}};
    for (const auto &[shape, unit, ratio, text] : rows) {
        host.Unit = unit;
        host.RatioValue = ratio;
        EXPECT_EQ(shape->GetInfo(), text);
        EXPECT_EQ(shape->Info(), text);
    }
    host.Unit = TUnits::pixel;
    host.RatioValue = 1;
    host.ZoomValue = 3;
    std::reverse(rect.Points().begin(), rect.Points().end());
    EXPECT_EQ(rect.GetInfo(), QString("Area=  5000.00pixel(s)2"));
}

struct TGradientProbe : TMyPolygon
{
    using TMyPolygon::GradientLeftTop;
    using TMyPolygon::TMyPolygon;
};

TEST(PolygonDraw, GradientCornerComesFromTheUprightBoxTurnedForward)
{
    TClassHost host;
    TGradientProbe poly(&host);
    // An upright diamond in the box (0, 0)-(40, 40) turned by 45 degrees about (20, 20) is
    // an axis-parallel square; the gradient still covers the whole turned box.
    const TMyPoint c{20, 20};
    const float a = float(std::numbers::pi / 4);
    for (TMyPoint p : TMyPointArray{{20, 0}, {40, 20}, {20, 40}, {0, 20}, {20, 0}})
        poly.Points().push_back(RotateAPoint(p, c, a));
    poly.SetCenterPoint(c);
    poly.SetAngleValue(a);
    const float half = float(20 * std::numbers::sqrt2);
    EXPECT_NEAR(poly.GradientLeftTop().X, 20 - half, 1e-4);
    EXPECT_NEAR(poly.GradientLeftTop().Y, 20 - half, 1e-4);
    EXPECT_NEAR(poly.GetLeftTop().X, 20 - half / 2, 1e-4);
}

TEST(FreeLine, EndsAtReleaseAndIsHitNearAnyOfItsPieces)
{
    TClassHost host;
    TMyFreeLine free(&host);
    free.AddPointByMouse({20, 20});
    EXPECT_FALSE(free.IsDrawingFinished(Qt::LeftButton, {20, 20}));
    for (int i = 1; i <= 40; ++i)
        free.AddPointByMouse({20 + 2 * i, 20 + (i % 3)});
    EXPECT_TRUE(free.IsDrawingFinished(Qt::LeftButton, {100, 21}));
    EXPECT_EQ(free.GetPointsCount(), 41);

    // 8 below a piece is a hit, and round past the last end.
    for (auto [x, y, hit] :
         {std::tuple{61, 29, true}, {61, 31, false}, {105, 21, true}, {110, 21, false}})
        EXPECT_EQ(free.IsClickedMe(*host.ScreenCanvas(), {x, y}), hit) << x << "," << y;
    // Every point answers the handle test, the highest number winning where squares of
    // 4 before to 3 after a point overlap: the first end only where no other reaches.
    for (auto [x, y, hot] : {std::tuple{16, 20, 0},
                             {20, 20, 2},
                             {60, 20, 22},
                             {60, 25, 20},
                             {60, 26, -1},
                             {103, 21, 40},
                             {104, 21, -1}})
        EXPECT_EQ(free.InWhichHot({x, y}), hot) << x << "," << y;
}

} // namespace
} // namespace tessal::test
