// SPDX-License-Identifier: MIT
// Orthogonal routes: a randomized check of their shape between random boxes, exit sides and
// stubs, going round obstacles, junction ends, the lattice, and merging collinear points.
#include "connectorhost.h"

#include <tessal/shapes/routecrossings_p.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

namespace tessal::test {
namespace {

struct TBox
{
    int L, T, R, B;
};

// A point of the box: on one of its sides, anywhere inside, or its centre.
TMyPoint LinkPointIn(const TBox &b, std::mt19937 &rng)
{
    auto in = [&rng](int lo, int hi) { return float(std::uniform_int_distribution(lo, hi)(rng)); };
    switch (std::uniform_int_distribution(0, 5)(rng)) {
    case 0:
        return {float(b.L), in(b.T, b.B)};
    case 1:
        return {float(b.R), in(b.T, b.B)};
    case 2:
        return {in(b.L, b.R), float(b.T)};
    case 3:
        return {in(b.L, b.R), float(b.B)};
    case 4:
        return {float(b.L + b.R) / 2, float(b.T + b.B) / 2};
    default:
        return {in(b.L + 1, b.R - 1), in(b.T + 1, b.B - 1)};
    }
}

// Two boxes at least 40 pixels apart in x or in y.
std::pair<TBox, TBox> SeparatedBoxes(std::mt19937 &rng)
{
    auto in = [&rng](int lo, int hi) { return std::uniform_int_distribution(lo, hi)(rng); };
    const int l = in(0, 500), t = in(0, 500);
    const TBox a{l, t, l + in(20, 150), t + in(20, 150)};
    for (;;) {
        const int bl = in(-200, 800), bt = in(-200, 800);
        const TBox b{bl, bt, bl + in(20, 150), bt + in(20, 150)};
        const bool apart = b.L >= a.R + 40 || b.R <= a.L - 40 || b.T >= a.B + 40 || b.B <= a.T - 40;
        if (apart)
            return {a, b};
    }
}

::testing::AssertionResult KeepsOutOf(const std::vector<TMyPoint> &route, const TBox &start,
                                      const TBox &end)
{
    const std::size_t last = route.size() - 1;
    for (std::size_t i = 1; i <= last; ++i) {
        // The first segment leaves the start box and the last enters the end box; every
        // segment stays out of the box it does not belong to.
        if (i > 1 && EntersBox(route[i - 1], route[i], start.L, start.T, start.R, start.B))
            return ::testing::AssertionFailure() << "segment " << i << " enters the start box";
        if (i < last && EntersBox(route[i - 1], route[i], end.L, end.T, end.R, end.B))
            return ::testing::AssertionFailure() << "segment " << i << " enters the end box";
    }
    return ::testing::AssertionSuccess();
}

TEST(ConnectorRouting, RandomBoxesGiveAlternatingRoutesThatKeepOutOfTheBoxes)
{
    std::mt19937 rng(20240611);
    for (int round = 0; round < 400; ++round) {
        const auto [a, b] = SeparatedBoxes(rng);
        const double zoom = round % 4 == 3 ? 1.5 : 1.0;
        TClassHost host(1000, 1000);
        host.ZoomValue = zoom;
        const TMyPoint pa = LinkPointIn(a, rng), pb = LinkPointIn(b, rng);
        // Boxes and link points are given on screen; stored as document values.
        const float z = float(zoom);
        TMyRectangle *sa =
            PlaceBox(host, a.L / z, a.T / z, a.R / z, a.B / z, {{pa.X / z, pa.Y / z}});
        TMyRectangle *sb =
            PlaceBox(host, b.L / z, b.T / z, b.R / z, b.B / z, {{pb.X / z, pb.Y / z}});
        TMyLinkLine *link = PlaceConnector(host, {});
        ASSERT_TRUE(link->CreateSrcLink(sa->ShapeId(), 0));
        ASSERT_TRUE(link->CreateDestLink(sb->ShapeId(), 0));
        // Right angles must hold exactly in the stored values, not only on screen.
        ASSERT_TRUE(Alternates(link->Points())) << "round " << round;
        std::vector<TMyPoint> route;
        for (std::int32_t i = 0; i < link->GetPointsCount(); ++i)
            route.push_back(link->GetPointInZoom(i));
        for (auto [got, want] :
             {std::pair{route.front(), link->GetStartPoint()}, {route.back(), link->GetEndPoint()}})
            ASSERT_LT(std::hypot(got.X - want.X, got.Y - want.Y), 1e-3) << "round " << round;
        ASSERT_TRUE(KeepsOutOf(route, a, b)) << "round " << round;
    }
}

TRouteEnd BoundEnd(TMyPoint at, TRouteBox box)
{
    // The magic point rule: onto the nearest side, ties left, right, top, bottom.
    const double d[4] = {std::abs(at.X - box.Left), std::abs(at.X - box.Right),
                         std::abs(at.Y - box.Top), std::abs(at.Y - box.Bottom)};
    const auto side = std::min_element(std::begin(d), std::end(d)) - std::begin(d);
    TMyPoint corner = at;
    const double edge[4] = {double(box.Left), double(box.Right), double(box.Top),
                            double(box.Bottom)};
    if (d[side] < 25)
        (side < 2 ? corner.X : corner.Y) = float(edge[side]);
    return {at, box, corner};
}

TEST(ConnectorRouting, LeavesThroughTheMagicSideAndOneStepBeyond)
{
    // Box (0, 0)-(200, 100); the end is far to the right, level with nothing in particular.
    // {end on the box, where the first segment ends when nothing else is in the way}
    const TRouteBox box{0, 0, 200, 100};
    const std::pair<TMyPoint, TMyPoint> cases[] = {
        {{200, 30}, {215, 30}},   // right side
        {{0, 80}, {-15, 80}},     // left side
        {{60, 0}, {60, -15}},     // top side
        {{150, 100}, {150, 115}}, // bottom side
        {{30, 50}, {-15, 50}},    // inside, nearest the left side
        {{100, 10}, {100, -15}},  // inside, nearest the top
        {{0, 0}, {-15, 0}},       // a corner: left wins the tie
    };
    for (auto [at, second] : cases) {
        TRouteRequest request;
        request.Start = BoundEnd(at, box);
        request.End = {{600, 400}, std::nullopt, {600, 400}};
        const std::vector<TMyPoint> route = RouteOrthogonal(request);
        ASSERT_TRUE(Alternates(route)) << at.X << "," << at.Y;
        EXPECT_EQ(route.front(), at);
        EXPECT_EQ(route.back(), (TMyPoint{600, 400}));
        // The first segment runs out through the side, at least one step beyond it.
        const TMyPoint got = route[1];
        if (second.Y == at.Y) {
            EXPECT_EQ(got.Y, at.Y) << at.X << "," << at.Y;
            EXPECT_GE((got.X - at.X) * (second.X - at.X), (second.X - at.X) * (second.X - at.X));
        } else {
            EXPECT_EQ(got.X, at.X) << at.X << "," << at.Y;
            EXPECT_GE((got.Y - at.Y) * (second.Y - at.Y), (second.Y - at.Y) * (second.Y - at.Y));
        }
        EXPECT_EQ(ExitDirection(box, request.Start.Corner, at),
                  second.X < 0     ? Tdirections::dLeft
                  : second.X > 200 ? Tdirections::dRight
                  : second.Y < 0   ? Tdirections::dTop
                                   : Tdirections::dbottom);
    }
}

TEST(ConnectorRouting, GoesRoundAnObstacleAndStaysStraightWithoutOne)
{
    TRouteRequest request;
    request.Start = BoundEnd({40, 20}, {0, 0, 40, 40});
    request.End = BoundEnd({200, 20}, {200, 0, 240, 40});
    EXPECT_EQ(RouteOrthogonal(request), (std::vector<TMyPoint>{{40, 20}, {200, 20}}));

    // A box across the straight way, with room above and below it.
    request.Obstacles = {{100, -30, 140, 90}};
    const std::vector<TMyPoint> route = RouteOrthogonal(request);
    ASSERT_TRUE(Alternates(route));
    EXPECT_EQ(route.front(), (TMyPoint{40, 20}));
    EXPECT_EQ(route.back(), (TMyPoint{200, 20}));
    for (std::size_t i = 1; i < route.size(); ++i)
        EXPECT_FALSE(EntersBox(route[i - 1], route[i], 100, -30, 140, 90)) << i;
    // It goes round the nearer (upper) end: up past the box top, over it, and down again.
    EXPECT_EQ(route.size(), 6u);
    EXPECT_LT(route[2].Y, -30);

    // With the start inside another shape there is no way round it: the route goes through
    // rather than failing, and still has its right angles and its ends.
    request.Obstacles = {{-100, -100, 150, 150}};
    const std::vector<TMyPoint> through = RouteOrthogonal(request);
    EXPECT_TRUE(Alternates(through));
    EXPECT_TRUE(through.front() == route.front() && through.back() == route.back());
}

TEST(ConnectorRouting, TurnsOnTheLatticeOfTheStartStub)
{
    TRouteRequest request;
    request.Start = BoundEnd({40, 20}, {0, 0, 40, 40});       // stub (55, 20)
    request.End = BoundEnd({220, 100}, {200, 100, 240, 140}); // stub (220, 85)
    request.Obstacles = {{90, -30, 130, 200}};
    const std::vector<TMyPoint> route = RouteOrthogonal(request);
    ASSERT_TRUE(Alternates(route));
    for (std::size_t i = 1; i + 1 < route.size(); ++i) {
        const double dx = std::fmod(route[i].X - 55.0, RouteStep);
        const double dy = std::fmod(route[i].Y - 20.0, RouteStep);
        EXPECT_TRUE(dx == 0 || route[i].X == 220) << route[i].X;
        EXPECT_TRUE(dy == 0 || route[i].Y == 85 || route[i].Y == 20) << route[i].Y;
    }
    // Entering the end box from above: the last segment is vertical, heading down.
    EXPECT_EQ(route[route.size() - 2].X, 220);
    EXPECT_LT(route[route.size() - 2].Y, 100);
}

// A junction is a point on other connectors: a route meets it from any side. A link mark is
// a shape like any other: its route leaves through the side its magic point picks.
TEST(ConnectorRouting, JunctionEndsHaveNoSideLinkMarksDo)
{
    TClassHost host(400, 300);
    auto junction = std::make_unique<TMyLineLinkLine>(&host);
    junction->AddPointByMouse({100, 100});
    TMyLineLinkLine *j = Place(host, std::move(junction));
    auto mark = std::make_unique<TMyLinkPoint>(&host);
    mark->AddPointByMouse({100, 200});
    TMyLinkPoint *m = Place(host, std::move(mark));

    TMyLinkLine *toJunction = PlaceConnector(host, {{300, 100}, {300, 100}});
    ASSERT_TRUE(toJunction->CreateSrcLink(j->ShapeId(), 0));
    EXPECT_EQ(toJunction->Points(), (TMyPointArray{{100, 100}, {300, 100}}));

    TMyLinkLine *toMark = PlaceConnector(host, {{300, 200}, {300, 200}});
    ASSERT_TRUE(toMark->CreateSrcLink(m->ShapeId(), 0));
    // The centre is equally near all four sides: left wins, so the route starts leftwards
    // and has to come round.
    ASSERT_TRUE(Alternates(toMark->Points()));
    EXPECT_LT(toMark->Points()[1].X, 100);
    EXPECT_EQ(toMark->Points().back(), (TMyPoint{300, 200}));
}

// The counts summed from each box's ranges against the box-by-box rule: a step runs
// through a box when it passes its open interior. Edges fall on lattice lines, boxes are
// thinner than a step or inverted, and some have an edge that is not a number or is
// infinite.
TEST(ConnectorRouting, StepCrossingCountsEqualTheBoxByBoxRule)
{
    std::mt19937 rng(424242);
    auto in = [&rng](int lo, int hi) { return std::uniform_int_distribution(lo, hi)(rng); };
    const auto edge = [&](const std::vector<double> &axis) {
        const int pick = in(0, 9);
        if (pick == 0)
            return std::nan("");
        if (pick == 1)
            return (in(0, 1) ? -1 : 1) * std::numeric_limits<double>::infinity();
        if (pick < 5)
            return axis[std::size_t(in(0, int(axis.size()) - 1))];
        return double(in(-20, 220)) + in(0, 3) / 4.0;
    };
    const auto crosses = [](const TRouteBox &b, double x0, double y0, double x1, double y1) {
        if (y0 == y1)
            return b.Top < y0 && y0 < b.Bottom && std::max(x0, x1) > b.Left &&
                   std::min(x0, x1) < b.Right;
        return b.Left < x0 && x0 < b.Right && std::max(y0, y1) > b.Top &&
               std::min(y0, y1) < b.Bottom;
    };
    for (int round = 0; round < 200; ++round) {
        std::vector<double> xs, ys;
        for (auto *axis : {&xs, &ys}) {
            double at = in(-10, 10);
            for (int k = in(1, 14); k > 0; --k, at += in(1, 30))
                axis->push_back(at);
        }
        std::vector<TRouteBox> boxes(std::size_t(in(0, 40)));
        for (TRouteBox &b : boxes)
            b = {edge(xs), edge(ys), edge(xs), edge(ys)};
        const TEdgeCrossings counts(xs, ys, boxes);
        for (std::size_t j = 0; j < ys.size(); ++j)
            for (std::size_t i = 0; i < xs.size(); ++i) {
                int level = 0, upright = 0;
                for (const TRouteBox &b : boxes) {
                    level += i + 1 < xs.size() && crosses(b, xs[i], ys[j], xs[i + 1], ys[j]);
                    upright += j + 1 < ys.size() && crosses(b, xs[i], ys[j], xs[i], ys[j + 1]);
                }
                if (i + 1 < xs.size()) {
                    ASSERT_EQ(counts.Level(i, j), level) << round << " " << i << "," << j;
                }
                if (j + 1 < ys.size()) {
                    ASSERT_EQ(counts.Upright(i, j), upright) << round << " " << i << "," << j;
                }
            }
    }
}

// Obstacles asked for by area give the route that the whole list gives, whatever else and
// in whatever order the finder answers.
TEST(ConnectorRouting, ObstaclesFoundByAreaGiveTheRouteOfTheWholeList)
{
    std::mt19937 rng(99);
    auto in = [&rng](int lo, int hi) { return std::uniform_int_distribution(lo, hi)(rng); };
    for (int round = 0; round < 150; ++round) {
        const auto [a, b] = SeparatedBoxes(rng);
        TRouteRequest request;
        const TRouteBox boxA{double(a.L), double(a.T), double(a.R), double(a.B)};
        const TRouteBox boxB{double(b.L), double(b.T), double(b.R), double(b.B)};
        request.Start = BoundEnd(LinkPointIn(a, rng), boxA);
        request.End = BoundEnd(LinkPointIn(b, rng), boxB);
        for (int k = in(0, 800); k > 0; --k) {
            const int l = in(-300, 1000), t = in(-300, 1000);
            request.Obstacles.push_back(
                {double(l), double(t), double(l + in(5, 90)), double(t + in(5, 90))});
        }
        const std::vector<TMyPoint> whole = RouteOrthogonal(request);
        std::vector<TRouteBox> all;
        std::swap(all, request.Obstacles);
        request.FindObstacles = [&](const TRouteBox &area) {
            std::vector<TRouteBox> found;
            for (const TRouteBox &o : all)
                if (o.Right >= area.Left && o.Left <= area.Right && o.Bottom >= area.Top &&
                    o.Top <= area.Bottom)
                    found.push_back(o);
            // More than asked for, in another order.
            found.insert(found.begin(), {-5000, -5000, -4000, -4000});
            std::shuffle(found.begin(), found.end(), rng);
            return found;
        };
        ASSERT_EQ(RouteOrthogonal(request), whole) << "round " << round;
    }
}

TEST(ConnectorRouting, FreeStyleIsTheStraightLineAndMergingDropsCollinearPoints)
{
    TClassHost host;
    TMyLinkLine link(&host);
    link.SetLinkLineDrawStyle(TLinkLineDrawStyle::lldsFree);
    EXPECT_EQ(link.ComputeRoute({1, 2}, {30, 70}, {}), (std::vector<TMyPoint>{{1, 2}, {30, 70}}));

    // {points, merged}
    const std::pair<std::vector<TMyPoint>, std::vector<TMyPoint>> cases[] = {
        {{{0, 0}, {5, 0}, {10, 0}, {10, 5}, {10, 5}, {10, 10}}, {{0, 0}, {10, 0}, {10, 10}}},
        // Doubling back along a line leaves the far point of the way.
        {{{0, 0}, {10, 0}, {5, 0}, {5, 5}}, {{0, 0}, {5, 0}, {5, 5}}},
        {{{0, 0}, {10, 0}, {0, 0}}, {{0, 0}}},
        // Removing one point can make the one before collinear in turn.
        {{{0, 0}, {0, 5}, {0, 5}, {0, 9}, {4, 9}}, {{0, 0}, {0, 9}, {4, 9}}},
        // Slanted chains are left alone.
        {{{0, 0}, {3, 4}, {6, 8}}, {{0, 0}, {3, 4}, {6, 8}}},
    };
    for (const auto &c : cases) {
        std::vector<TMyPoint> points = c.first;
        MergePoints(points);
        EXPECT_EQ(points, c.second) << &c - cases;
    }
    link.Points() = {{0, 0}, {0, 5}, {0, 9}, {4, 9}, {8, 9}};
    link.MergePoints();
    EXPECT_EQ(link.Points(), (TMyPointArray{{0, 0}, {0, 9}, {8, 9}}));
}

} // namespace
} // namespace tessal::test
