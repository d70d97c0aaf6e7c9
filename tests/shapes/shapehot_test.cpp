// SPDX-License-Identifier: MIT
// Hot tests of link points, end points and the text point, with the highlight square on
// the host's screen image.
#include "testhost.h"

#include <gtest/gtest.h>

namespace tessal::test {
namespace {

// Red pixels of the square around a link point at (x, y): a frame of half-side 5.
int RedAround(TTestHost &host, int x, int y)
{
    return CountPixels(host.Screen(), QRect(x - 6, y - 6, 13, 13), kRed);
}

TEST(LinkHot, HighlightIsDrawnOnceAndErasedByTheNextAnswer)
{
    TTestHost host;
    host.ZoomValue = 2;
    TMyShape s(&host);
    s.LinkPoints() = {{25, 25}, {27, 25}}; // zoomed: (50, 50) and (54, 50)
    EXPECT_EQ(s.InWhichLinkHot({52, 53}), 0);
    const int red = RedAround(host, 50, 50);
    EXPECT_GT(red, 20);
    EXPECT_EQ(host.Highlight.Shape, &s);
    EXPECT_FALSE(host.ScreenChanges.empty());
    // Asking again over the same link point draws nothing more (a redraw would erase it).
    EXPECT_EQ(s.InWhichLinkHot({48, 47}), 0);
    EXPECT_EQ(RedAround(host, 50, 50), red);

    // The first match wins; moving on to the next one erases the old square.
    EXPECT_EQ(s.InWhichLinkHot({58, 50}), 1);
    EXPECT_EQ(CountPixels(host.Screen(), QRect(44, 44, 2, 13), kRed), 0);
    EXPECT_GT(CountPixels(host.Screen(), QRect(58, 44, 2, 13), kRed), 0);

    // Another shape's link point takes the shared highlight over. Its square is the empty
    // rectangle at (120, 120) grown by 5, left and top edges in: 115 <= x, y < 125.
    TMyShape other(&host);
    other.LinkPoints() = {{60, 60}};
    EXPECT_EQ(other.InWhichLinkHot({124.5f, 124.5f}), 0);
    EXPECT_EQ(RedAround(host, 54, 50), 0);
    EXPECT_GT(RedAround(host, 120, 120), 20);
    for (auto [at, hot] : {std::pair{TMyPoint{115, 115}, 0},
                           {{125, 120}, -1},
                           {{120, 125}, -1},
                           {{114.5f, 120}, -1},
                           {{120, 114.5f}, -1}})
        EXPECT_EQ(other.InWhichLinkHot(at), hot) << at.X << "," << at.Y;
    EXPECT_TRUE(AllWhite(host.Screen()));
    EXPECT_EQ(host.Highlight.Shape, nullptr);
    EXPECT_EQ(TMyShape(&host).InWhichLinkHot({50, 50}), -1); // without link points
}

TEST(LinkHot, SquareIsNotXorOnTheBackgroundAndLockedShapesShowNone)
{
    TTestHost host;
    TMyShape s(&host);
    s.LinkPoints() = {{100, 100}};
    // Paint a black patch under part of the square: not-xor with red turns it to cyan.
    QImage &screen = host.Screen();
    for (int y = 90; y < 110; ++y)
        for (int x = 90; x < 100; ++x)
            screen.setPixel(x, y, 0xFF000000);
    const QImage before = host.Screen().copy();
    s.InWhichLinkHot({100, 100});
    EXPECT_GT(CountPixels(host.Screen(), QRect(90, 90, 10, 20), 0x00FFFF), 0);
    s.InWhichLinkHot({0, 0});
    EXPECT_TRUE(ImagesEqual(host.Screen(), before));

    s.SetLockedFlag(true);
    EXPECT_EQ(s.InWhichLinkHot({100, 100}), 0);
    EXPECT_TRUE(ImagesEqual(host.Screen(), before));
}

TEST(PointHot, OnlyTheFirstAndLastPointsWithTheHotSizeMargin)
{
    TTestHost host;
    host.HotSizeValue = 3;
    TMyShape s(&host);
    s.Points() = {{10, 10}, {50, 50}, {90, 90}};
    // Each end's square: from 3 before to 2 after the point, on both axes.
    const std::pair<TMyPoint, int> rows[] = {{{50, 50}, -1}, {{12, 7}, 0},  {{13, 10}, -1},
                                             {{10, 13}, -1}, {{6, 10}, -1}, {{93, 90}, -1},
                                             {{90, 93}, -1}, {{87, 92}, 2}};
    for (const auto &[at, hot] : rows)
        EXPECT_EQ(s.InWhichPointHot(at), hot) << at.X << "," << at.Y;
    EXPECT_GT(RedAround(host, 90, 90), 20);
    EXPECT_EQ(s.InWhichPointHot({150, 150}), -1);
    EXPECT_TRUE(AllWhite(host.Screen()));

    s.Points() = {{20, 20}, {20, 20}}; // when first and last coincide, the first wins
    EXPECT_EQ(s.InWhichPointHot({20, 20}), 0);

    // The text point's square: the hot size about the zoomed text point, (16.5, 30)
    // rounded to (16, 30).
    host.ZoomValue = 1.5;
    host.HotSizeValue = 4;
    s.SetTextPoint({11, 20});
    for (auto [x, y, hot] : {std::tuple{16, 30, true},
                             {12, 26, true},
                             {19, 33, true},
                             {11, 30, false},
                             {16, 25, false},
                             {20, 30, false},
                             {16, 34, false}})
        EXPECT_EQ(s.InTextPointHot({x, y}), hot) << x << "," << y;
}

} // namespace
} // namespace tessal::test
