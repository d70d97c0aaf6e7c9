// SPDX-License-Identifier: MIT
// Drawing a rectangle with the mouse, its computed points and resizing by its handles.
#include "shapes/testhost.h"

#include <tessal/shapes/rectangle.h>

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

namespace tessal::test {
namespace {

constexpr double kPi = std::numbers::pi;

void ExpectNear(TMyPoint actual, TMyPoint expected, double tolerance, const char *what)
{
    EXPECT_NEAR(actual.X, expected.X, tolerance) << what;
    EXPECT_NEAR(actual.Y, expected.Y, tolerance) << what;
}

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
    r->RotateChangeValueByAngle({100, 70}, kPi / 2);
    for (int i = 0; i < 4; ++i)
        ExpectNear(r->GetPoint(4 + i), turned[i], 1e-3, "side middle");
    EXPECT_FLOAT_EQ(r->GetMyWidth(), 120);
    EXPECT_FLOAT_EQ(r->GetMyHeight(), 60);
}

TEST(RectangleResize, CornerAndSideHandlesOfAnUprightRectangle)
{
    TTestHost host;
    const TMyPointArray kSame = {{20, 20}, {60, 20}, {60, 40}, {20, 40}};
    struct TCase
    {
        int Hot;
        TMyPoint To;
        TMyPointArray Expected;
    } cases[] = {
        // Every handle of turned rectangles is dragged at random below; here exact values
        // upright. Corner 2 to a new place: its neighbours follow on one axis each.
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
    for (const TCase &c : cases) {
        auto r = DrawnBy<TMyRectangle>(host, {20, 20}, {60, 40});
        r->SetCurrentHot(c.Hot);
        r->SizeChangeValue({0, 0}, c.To);
        EXPECT_EQ(r->Points(), c.Expected) << "hot " << c.Hot << " to " << c.To.X << "," << c.To.Y;
        const TMyRect box = GetPointsLTRB(c.Expected);
        EXPECT_EQ(r->CenterPoint(),
                  (TMyPoint{(box.Left + box.Right) / 2, (box.Top + box.Bottom) / 2}));
    }
}

// Side of the opposite corner o that p lies on, per axis, inclusive.
bool SameSide(float p, float target, float o)
{
    return (double(p) - o) * (double(target) - o) >= 0;
}

// Every handle of random turned rectangles dragged to random places: either nothing
// changes (and the target lies beyond the opposite corner) or the result is a rectangle of
// the same angle whose far side or corner stayed where it was; the Sizing preview always
// shows exactly the rectangle the resize produces.
TEST(RectangleResize, RandomDragsStayRectanglesAndMatchTheirPreview)
{
    TTestHost host(300, 300);
    std::mt19937 rng(20240611);
    std::uniform_real_distribution<float> coord(60, 240);
    std::uniform_real_distribution<float> angle(-3.1f, 3.1f);
    std::uniform_int_distribution<int> hot(0, 7), target(20, 280);
    int refused = 0, accepted = 0;
    for (int n = 0; n < 300; ++n) {
        const TPoint p0{int(coord(rng)), int(coord(rng))}, p2{int(coord(rng)), int(coord(rng))};
        if (std::abs(p0.X - p2.X) < 4 || std::abs(p0.Y - p2.Y) < 4)
            continue;
        auto r = DrawnBy<TMyRectangle>(host, p0, p2);
        const float a = angle(rng);
        r->RotateChangeValueByAngle(r->GetCenterPoint(), a);
        const TMyPoint c = r->GetCenterPoint();
        const TMyPointArray before = r->Points();
        const int h = hot(rng);
        const int m = h % 4;
        const TPoint to{target(rng), target(rng)};
        // Upright frame: the moved corner, the opposite corner and the target.
        const TMyPoint pm = RotateAPoint(before[m], c, -a);
        const TMyPoint po = RotateAPoint(before[(m + 2) % 4], c, -a);
        const TMyPoint tu = RotateAPoint(PtToMyPt(to), c, -a);
        if (std::abs(tu.X - po.X) < 0.05f || std::abs(tu.Y - po.Y) < 0.05f)
            continue; // too close to the boundary for float rounding to decide

        TMyRectangle copy(&host);
        copy.Assign(*r);
        copy.SetCurrentHot(h);
        r->SetCurrentHot(h);
        const QImage preview = Drawn(
            [&](TCanvas &canvas) {
                r->Sizing(canvas, {0, 0}, to);
            },
            300, 300);
        r->SizeChangeValue({0, 0}, PtToMyPt(to));
        const QImage result = Drawn(
            [&](TCanvas &canvas) {
                std::array<TPoint, 4> pts;
                for (int i = 0; i < 4; ++i)
                    pts[std::size_t(i)] = MyPtToPt(r->GetPointInZoom(i));
                r->DrawRectangle(canvas, pts);
            },
            300, 300);
        EXPECT_TRUE(ImagesEqual(preview, result)) << "case " << n << " hot " << h;

        const bool expectAccepted = SameSide(pm.X, tu.X, po.X) && SameSide(pm.Y, tu.Y, po.Y);
        if (!expectAccepted) {
            ++refused;
            EXPECT_EQ(r->Points(), before) << "case " << n;
            continue;
        }
        ++accepted;
        EXPECT_FLOAT_EQ(r->Angle(), copy.Angle());
        TMyPoint u[4];
        for (int i = 0; i < 4; ++i)
            u[i] = RotateAPoint(r->Points()[std::size_t(i)], c, -a);
        const double tol = 0.02;
        for (int i = 0; i < 4; ++i) // sides alternately horizontal and vertical
            EXPECT_NEAR(i % 2 ? u[i].X : u[i].Y, i % 2 ? u[(i + 1) % 4].X : u[(i + 1) % 4].Y, tol)
                << "case " << n << " side " << i;
        // The corner or side across from the handle stays.
        for (int k : {2, 3}) {
            if (h < 4 && k == 3)
                break;
            const std::size_t f = std::size_t((m + k) % 4);
            ExpectNear(r->Points()[f], before[f], tol, "fixed corner");
        }
        if (h < 4)
            ExpectNear(r->Points()[std::size_t(m)], PtToMyPt(to), tol, "dragged corner");
        else
            ExpectNear(u[m], h == 4 || h == 6 ? TMyPoint{pm.X, tu.Y} : TMyPoint{tu.X, pm.Y}, tol,
                       "dragged side");
    }
    EXPECT_GT(refused, 20);
    EXPECT_GT(accepted, 60);
}

} // namespace
} // namespace tessal::test
