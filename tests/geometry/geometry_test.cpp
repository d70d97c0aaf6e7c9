// SPDX-License-Identifier: MIT
// Plane geometry: exact values worked out by hand from the component's rules.
#include <tessal/geometry/geometry.h>
#include <tessal/platform/message.h>

#include <gtest/gtest.h>

#include <array>
#include <cfenv>
#include <cmath>
#include <numbers>
#include <random>
#include <vector>

namespace tessal {
namespace {

constexpr double Pi = std::numbers::pi;

void ExpectNear(TMyPoint p, double x, double y, double tolerance = 1e-5)
{
    EXPECT_NEAR(p.X, x, tolerance);
    EXPECT_NEAR(p.Y, y, tolerance);
}

TEST(Geometry, ConversionsRoundHalvesToEven)
{
    // clang-format off
    const std::pair<TMyPoint, TPoint> rounded[] = {
        {MyPoint(2.5f, 3.5f), TPoint(2, 4)}, {MyPoint(-0.5f, 1.5f), TPoint(0, 2)},
        {MyPoint(-1.5f, -2.5f), TPoint(-2, -2)}, {MyPoint(0.49f, -0.51f), TPoint(0, -1)}};
    // clang-format on
    for (auto [in, out] : rounded)
        EXPECT_EQ(MyPtToPt(in), out) << in.X << "," << in.Y;
    EXPECT_EQ(myRecttoRect(TMyRect{0.5f, 1.5f, 2.5f, -3.5f}), TRect(0, 2, 2, -4));
    EXPECT_EQ(PtToMyPt(TPoint(-7, 9)), MyPoint(-7, 9));

    TMyRect r{1, 2, 3, 4};
    OffsetMyRect(r, 10, -1);
    EXPECT_EQ(r, (TMyRect{11, 1, 13, 3}));
    EXPECT_EQ(PtToARect(TPoint(5, 1), TPoint(2, 7)), TRect(2, 1, 5, 7));
    EXPECT_EQ(PtToARect(TPoint(3, 3), TPoint(3, 3)), TRect(3, 3, 3, 3));
    EXPECT_EQ(ExpandRect(TRect(2, 1, 5, 7), 3), TRect(-1, -2, 8, 10));
    EXPECT_FLOAT_EQ(GetLengthinPixel(MyPoint(1, 1), MyPoint(4, 5)), 5.0f);
    EXPECT_EQ(GetPointsLTRB({MyPoint(3, -1), MyPoint(-2, 5), MyPoint(4, 2)}),
              (TMyRect{-2, -1, 4, 5}));
    EXPECT_EQ(GetPointsLTRB({MyPoint(7, 8)}), (TMyRect{7, 8, 7, 8}));
}

// The rounding is done without the library; it must agree with it on halves, on values next
// to the ends of the range, and under another rounding mode.
TEST(Geometry, RoundEvenAgreesWithTheLibraryRounding)
{
    std::mt19937 rng(99);
    std::uniform_int_distribution<int> magnitude(0, 31);
    std::uniform_real_distribution<double> unit(-1, 1);
    std::vector<double> values{0.5,           -0.5,         1.5,           -2.5, 2147483646.5,
                               -2147483647.5, 2147483646.9, -2147483647.9, -0.0};
    for (int i = 0; i < 20000; ++i) {
        const double v = unit(rng) * std::ldexp(1.0, magnitude(rng));
        values.push_back(i % 2 ? v : std::floor(v) + 0.5);
    }
    for (const int mode : {FE_TONEAREST, FE_UPWARD}) {
        std::fesetround(mode);
        for (const double v : values) {
            if (std::abs(std::nearbyint(v)) >= 2147483648.0)
                continue;
            ASSERT_EQ(RoundEven(v), std::int32_t(std::nearbyint(v))) << v << " mode " << mode;
        }
    }
    std::fesetround(FE_TONEAREST);
}

TEST(Geometry, AngleNormalisation)
{
    // Degrees keep their overshoot: 360 stays, -361 becomes 719.
    const std::pair<std::int32_t, std::int32_t> degrees[] = {
        {360, 360},  {-360, -360}, {0, 0},      {359, 359},  {361, 1},    {720, 0},
        {1000, 280}, {-361, 719},  {-400, 680}, {-720, 720}, {-1000, 440}};
    for (auto [in, out] : degrees) {
        std::int32_t d = in;
        RecaclinDeg(d);
        EXPECT_EQ(d, out) << "input " << in;
    }
    // Radians stay within two pi keeping their sign; -6 lies inside [-2pi, 2pi] and stays.
    // clang-format off
    const std::pair<float, double> radians[] = {
        {7, 7 - 2 * Pi}, {-7, -7 + 2 * Pi}, {-1, -1}, {20, 20 - 6 * Pi}, {-6, -6}};
    // clang-format on
    for (auto [in, out] : radians) {
        float a = in;
        RecaclinRad(a);
        EXPECT_NEAR(a, out, 1e-5) << "input " << in;
    }
}

TEST(Geometry, SlopeAngleQuadrantsAndTies)
{
    // Equal coordinates count as "not greater", which decides the ties: straight above and
    // straight below both give pi / 2.
    // clang-format off
    const std::pair<TMyPoint, double> angles[] = {
        {MyPoint(-1, -1), Pi / 4}, {MyPoint(1, -1), 3 * Pi / 4}, {MyPoint(1, 1), 5 * Pi / 4},
        {MyPoint(-1, 1), 7 * Pi / 4}, {MyPoint(2, -1), 2.677945044588987},
        {MyPoint(0, -3), Pi / 2}, {MyPoint(0, 3), Pi / 2}, {MyPoint(-3, 0), 0.0},
        {MyPoint(3, 0), Pi}, {MyPoint(0, 0), Pi / 2}};
    // clang-format on
    for (auto [p, angle] : angles)
        EXPECT_NEAR(GetSlopeAngle(MyPoint(0, 0), p), angle, 1e-12) << p.X << "," << p.Y;
    EXPECT_EQ(PointInQuadrantX(MyPoint(0, 0), MyPoint(0, 5)), -1);
    EXPECT_EQ(PointInQuadrantY(MyPoint(0, 0), MyPoint(5, 0.5f)), 1);
}

TEST(Geometry, RotateAndCornerTests)
{
    // A positive angle turns clockwise with Y downwards.
    ExpectNear(RotateAPoint(MyPoint(10, 0), MyPoint(0, 0), float(Pi / 2)), 0, 10);
    ExpectNear(RotateAPoint(MyPoint(10, 5), MyPoint(5, 5), float(Pi)), 0, 5);

    // Left-top, left-bottom, right-top, right-bottom of (5, 5); on the horizontal through
    // it, top and bottom both hold.
    const auto corners = [](TMyPoint p) {
        const TMyPoint a = MyPoint(5, 5);
        return std::array{IsAtLeftTop(a, p), IsAtLeftBottom(a, p), IsAtRightTop(a, p),
                          IsAtRightBottom(a, p)};
    };
    EXPECT_EQ(corners(MyPoint(5, 5)), (std::array{true, true, true, true}));
    EXPECT_EQ(corners(MyPoint(4, 6)), (std::array{false, true, false, false}));
    EXPECT_EQ(corners(MyPoint(6, 5)), (std::array{false, false, true, true}));
}

TEST(Geometry, IntersectionCases)
{
    // Both vertical or both horizontal: half the difference of line A's values, not their
    // midpoint. One vertical: A at x = 2 against y = 2x + 1, then B at x = 3 against the same.
    // clang-format off
    const struct { TMyPoint A1, A2, B1, B2; float X, Y; } cases[] = {
        {MyPoint(2, 10), MyPoint(5, 0), MyPoint(2, 30), MyPoint(5, 7), 2, 10},
        {MyPoint(2, 0), MyPoint(0, 1), MyPoint(2, 10), MyPoint(4, 9), 2, 5},
        {MyPoint(0, 1), MyPoint(3, -5), MyPoint(4, 9), MyPoint(3, 5), 3, 7},
        {MyPoint(10, 4), MyPoint(0, 8), MyPoint(30, 4), MyPoint(5, 8), 10, 4},
        {MyPoint(0, 0), MyPoint(0, 4), MyPoint(4, 4), MyPoint(4, 0), 2, 2},
        {MyPoint(1, 1), MyPoint(0, 6), MyPoint(3, 5), MyPoint(4, 2), 7.0f / 3, 11.0f / 3}};
    // clang-format on
    for (const auto &c : cases) {
        const TMyPoint p = Getintersection(c.A1, c.A2, c.B1, c.B2);
        EXPECT_FLOAT_EQ(p.X, c.X) << &c - cases;
        EXPECT_FLOAT_EQ(p.Y, c.Y) << &c - cases;
    }
}

TEST(Geometry, ParallelLinesReportErrorAndContinue)
{
    QStringList shown;
    const TMessageHandler previous =
        SetMessageHandler([&shown](const QString &text) { shown << text; });
    const TMyPoint apart =
        Getintersection(MyPoint(0, 0), MyPoint(0, 1), MyPoint(2, 2), MyPoint(2, 3));
    const TMyPoint same =
        Getintersection(MyPoint(0, 0), MyPoint(1, 1), MyPoint(2, 2), MyPoint(3, 3));
    // Horizontal pairs are parallel too, but take the half-difference rule instead.
    Getintersection(MyPoint(0, 1), MyPoint(0, 2), MyPoint(4, 1), MyPoint(4, 2));
    SetMessageHandler(previous);

    EXPECT_EQ(shown, QStringList({"error", "error"}));
    EXPECT_FALSE(std::isfinite(apart.X) && std::isfinite(apart.Y));
    EXPECT_FALSE(std::isfinite(same.X) && std::isfinite(same.Y));
}

TEST(Geometry, ArrowHeadAndSplitPoints)
{
    // A horizontal line, head opening to the right; a vertical one opening downwards (the
    // theta corner first); a tip right-below the tail (both signs negative).
    // clang-format off
    const float h = float(Pi / 6);
    const struct { TMyPoint Tip, Tail; std::uint8_t N; float Half; double X1, Y1, X2, Y2; }
    heads[] = {
        {MyPoint(0, 0), MyPoint(100, 0), 10, h, 8.660254, 5, 8.660254, -5},
        {MyPoint(0, 0), MyPoint(0, 50), 10, h, -5, 8.660254, 5, 8.660254},
        {MyPoint(10, 10), MyPoint(0, 0), 20, 0.2f, -1.0506258, -6.6698431,
         -6.6698431, -1.0506258}};
    // clang-format on
    for (const auto &c : heads) {
        auto [a, b] = GetTriangle(c.Tip, c.Tail, c.N, c.Half);
        ExpectNear(a, c.X1, c.Y1, 1e-4);
        ExpectNear(b, c.X2, c.Y2, 1e-4);
    }

    // SplitLine answers one point twice, n along from a towards b.
    // clang-format off
    const struct { TMyPoint A, B; std::int32_t N; float X, Y; } splits[] = {
        {MyPoint(0, 0), MyPoint(3, 4), 5, 3, 4}, {MyPoint(10, 10), MyPoint(7, 6), 10, 4, 2},
        {MyPoint(0, 5), MyPoint(-10, 5), 4, -4, 5}};
    // clang-format on
    for (const auto &s : splits) {
        auto [p, q] = SplitLine(s.A, s.B, s.N);
        EXPECT_EQ(p, q);
        ExpectNear(p, s.X, s.Y);
    }
}

TEST(Geometry, PointArraysIgnoreIndicesOutOfRange)
{
    TMyPointArray arr;
    EXPECT_FALSE(InsertAPointBeforeId(MyPoint(1, 1), 0, arr)); // nothing to insert before
    AppendAPoint(MyPoint(1, 1), arr);
    AppendAPoint(MyPoint(3, 3), arr);
    EXPECT_TRUE(InsertAPointBeforeId(MyPoint(2, 2), 1, arr));
    EXPECT_TRUE(InsertAPointBeforeId(MyPoint(0, 0), 0, arr));
    EXPECT_FALSE(InsertAPointBeforeId(MyPoint(9, 9), 4, arr)); // one past the end
    EXPECT_FALSE(InsertAPointBeforeId(MyPoint(9, 9), -1, arr));
    EXPECT_EQ(arr, (TMyPointArray{MyPoint(0, 0), MyPoint(1, 1), MyPoint(2, 2), MyPoint(3, 3)}));
    EXPECT_TRUE(IsExistPt(3, arr));
    EXPECT_FALSE(IsExistPt(4, arr) || IsExistPt(-1, arr));
    for (int i : {4, -1, 0, 2})
        RemovePoint(i, arr);
    EXPECT_EQ(arr, (TMyPointArray{MyPoint(1, 1), MyPoint(2, 2)}));

    std::vector<TPoint> screen{TPoint(1, 2)};
    EXPECT_FALSE(InsertAPointBeforeId1(TPoint(5, 5), 1, screen));
    EXPECT_TRUE(InsertAPointBeforeId1(TPoint(5, 5), 0, screen));
    EXPECT_EQ(screen, (std::vector<TPoint>{TPoint(5, 5), TPoint(1, 2)}));
    EXPECT_TRUE(IsExistPt1(1, screen));
    EXPECT_FALSE(IsExistPt1(2, screen));
}

TEST(Geometry, ConnectorListsAndPadding)
{
    std::vector<std::int32_t> links;
    for (int id : {4, 2, 4})
        AddLinklineShape(links, id);
    EXPECT_EQ(links, (std::vector<std::int32_t>{4, 2}));
    links = {3, 5, 3, 7}; // duplicates can come from a file: the last one goes
    RemoveLinklineShape(links, 3);
    RemoveLinklineShape(links, 9);
    EXPECT_EQ(links, (std::vector<std::int32_t>{3, 5, 7}));
    RemoveLinklineShape(links, 7);
    RemoveLinklineShape(links, 3);
    EXPECT_EQ(links, (std::vector<std::int32_t>{5}));

    // AppendSpace pads to one more than n and never cuts.
    EXPECT_EQ(AppendSpace("ab", 4), "ab   ");
    EXPECT_EQ(AppendSpace("abcd", 4), "abcd ");
    EXPECT_EQ(AppendSpace("abcde", 4), "abcde");
    EXPECT_EQ(AppendSpace("abcdef", 4), "abcdef");
    EXPECT_EQ(AppendSpace("", 0), " ");
}

} // namespace
} // namespace tessal
