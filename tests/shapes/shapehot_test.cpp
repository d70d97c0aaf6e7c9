// SPDX-License-Identifier: MIT
// Hot tests of link points, end points and the text point, with the highlight square on
// the host's screen image.
#include "common/imagecompare.h"
#include "testhost.h"

#include <gtest/gtest.h>

namespace tessal::test {
namespace {

bool ScreenIsWhite(TTestHost &host)
{
    return CountPixels(host.Screen(), host.Screen().rect(), 0xFFFFFF) == 200 * 200;
}

int RedIn(TTestHost &host, QRect r)
{
    return CountPixels(host.Screen(), r, 0xFF0000);
}

// The square around a link point at (x, y): a red frame of half-side 5.
QRect Around(int x, int y)
{
    return QRect(x - 6, y - 6, 13, 13);
}

TEST(LinkHot, HighlightIsDrawnOnceAndErasedByTheNextAnswer)
{
    TTestHost host;
    TMyShape s(&host);
    s.LinkPoints() = {{50, 50}};
    EXPECT_EQ(s.InWhichLinkHot({52, 53}), 0);
    const int red = RedIn(host, Around(50, 50));
    EXPECT_GT(red, 20);
    EXPECT_EQ(host.Highlight.Shape, &s);
    EXPECT_FALSE(host.ScreenChanges.empty());

    // Asking again over the same link point draws nothing more (a redraw would erase it).
    EXPECT_EQ(s.InWhichLinkHot({48, 47}), 0);
    EXPECT_EQ(RedIn(host, Around(50, 50)), red);

    // The margin is 5 pixels around the one-pixel rectangle: 45 .. 55 inclusive.
    EXPECT_EQ(s.InWhichLinkHot({55.5f, 50}), 0);
    EXPECT_EQ(s.InWhichLinkHot({56, 50}), -1);
    EXPECT_TRUE(ScreenIsWhite(host));
    EXPECT_EQ(host.Highlight.Shape, nullptr);
    EXPECT_EQ(TMyShape(&host).InWhichLinkHot({50, 50}), -1); // without link points
}

TEST(LinkHot, FirstMatchWinsAndMovingOnErasesTheOldSquare)
{
    TTestHost host;
    host.ZoomValue = 2;
    TMyShape s(&host);
    s.LinkPoints() = {{25, 25}, {27, 25}}; // zoomed: (50, 50) and (54, 50)
    EXPECT_EQ(s.InWhichLinkHot({52, 50}), 0);
    EXPECT_GT(RedIn(host, QRect(44, 44, 2, 13)), 0); // left edge of the first square
    EXPECT_EQ(s.InWhichLinkHot({58, 50}), 1);
    EXPECT_EQ(RedIn(host, QRect(44, 44, 2, 13)), 0);
    EXPECT_GT(RedIn(host, QRect(58, 44, 2, 13)), 0); // right edge of the second

    // Another shape's link point takes the shared highlight over.
    TMyShape other(&host);
    other.LinkPoints() = {{60, 60}};
    EXPECT_EQ(other.InWhichLinkHot({120, 120}), 0);
    EXPECT_EQ(RedIn(host, Around(54, 50)), 0);
    EXPECT_GT(RedIn(host, Around(120, 120)), 20);
    EXPECT_EQ(s.InWhichLinkHot({0, 0}), -1); // any shape's miss clears it
    EXPECT_TRUE(ScreenIsWhite(host));
}

TEST(LinkHot, SquareIsNotXorOnTheBackground)
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

    // Locked shapes answer but show no square.
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
    const std::pair<TMyPoint, int> rows[] = {
        {{50, 50}, -1}, {{13, 7}, 0}, {{14, 10}, -1}, {{88, 92}, 2}};
    for (const auto &[at, hot] : rows)
        EXPECT_EQ(s.InWhichPointHot(at), hot) << at.X << "," << at.Y;
    EXPECT_GT(RedIn(host, Around(90, 90)), 20);
    EXPECT_EQ(s.InWhichPointHot({150, 150}), -1);
    EXPECT_TRUE(ScreenIsWhite(host));

    s.Points() = {{20, 20}, {20, 20}}; // when first and last coincide, the first wins
    EXPECT_EQ(s.InWhichPointHot({20, 20}), 0);
}

TEST(TextPointHot, HotSizeAroundTheZoomedTextPoint)
{
    TTestHost host;
    host.ZoomValue = 1.5;
    TMyShape s(&host);
    s.SetTextPoint({11, 20}); // zoomed (16.5, 30) rounds to (16, 30)
    for (const auto &[at, hot] : {std::pair<TPoint, bool>{{16, 30}, true},
                                  {{12, 26}, true},
                                  {{11, 30}, false},
                                  {{20, 34}, true},
                                  {{21, 30}, false}})
        EXPECT_EQ(s.InTextPointHot(at), hot) << at.X << "," << at.Y;
}

} // namespace
} // namespace tessal::test
