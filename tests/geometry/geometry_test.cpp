// SPDX-License-Identifier: MIT
// Plane geometry: exact values worked out by hand from the component's rules.
#include <tessal/geometry/geometry.h>
#include <tessal/platform/message.h>

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace tessal {
namespace {

constexpr double Pi = std::numbers::pi;

TEST(Geometry, ConversionsRoundHalvesToEven)
{
    EXPECT_EQ(MyPtToPt(MyPoint(2.5f, 3.5f)), TPoint(2, 4));
    EXPECT_EQ(MyPtToPt(MyPoint(-0.5f, 1.5f)), TPoint(0, 2));
    EXPECT_EQ(MyPtToPt(MyPoint(-1.5f, -2.5f)), TPoint(-2, -2));
    EXPECT_EQ(MyPtToPt(MyPoint(0.49f, -0.51f)), TPoint(0, -1));
    EXPECT_EQ(myRecttoRect(TMyRect{0.5f, 1.5f, 2.5f, -3.5f}), TRect(0, 2, 2, -4));
    EXPECT_EQ(PtToMyPt(TPoint(-7, 9)), MyPoint(-7, 9));

    TMyRect r{1, 2, 3, 4};
    OffsetMyRect(r, 10, -1);
    EXPECT_EQ(r, (TMyRect{11, 1, 13, 3}));
    EXPECT_EQ(PtToARect(TPoint(5, 1), TPoint(2, 7)), TRect(2, 1, 5, 7));
    EXPECT_EQ(PtToARect(TPoint(3, 3), TPoint(3, 3)), TRect(3, 3, 3, 3));
    EXPECT_EQ(ExpandRect(TRect(2, 1, 5, 7), 3), TRect(-1, -2, 8, 10));
    EXPECT_FLOAT_EQ(GetLengthinPixel(MyPoint(1, 1), MyPoint(4, 5)), 5.0f);
}

TEST(Geometry, RecaclinDegKeepsItsOvershoot)
{
    const std::pair<std::int32_t, std::int32_t> cases[] = {
        {360, 360},  {-360, -360}, {0, 0},      {359, 359},  {361, 1},    {720, 0},
        {1000, 280}, {-361, 719},  {-400, 680}, {-720, 720}, {-1000, 440}};
    for (auto [in, out] : cases) {
        std::int32_t d = in;
        RecaclinDeg(d);
        EXPECT_EQ(d, out) << "input " << in;
    }
}

TEST(Geometry, RecaclinRadStaysWithinTwoPiKeepingSign)
{
    float a = 7;
    RecaclinRad(a);
    EXPECT_FLOAT_EQ(a, float(7 - 2 * Pi));
    a = -7;
    RecaclinRad(a);
    EXPECT_FLOAT_EQ(a, float(-7 + 2 * Pi));
    a = -1;
    RecaclinRad(a);
    EXPECT_EQ(a, -1.0f);
    a = 20;
    RecaclinRad(a);
    EXPECT_NEAR(a, 20 - 6 * Pi, 1e-5);
    a = -6.0f; // inside [-2pi, 2pi]: negative angles stay negative
    RecaclinRad(a);
    EXPECT_EQ(a, -6.0f);
}

TEST(Geometry, SlopeAngleQuadrantsAndTies)
{
    const TMyPoint a = MyPoint(0, 0);
    EXPECT_DOUBLE_EQ(GetSlopeAngle(a, MyPoint(-1, -1)), Pi / 4);    // left, above
    EXPECT_DOUBLE_EQ(GetSlopeAngle(a, MyPoint(1, -1)), 3 * Pi / 4); // right, above
    EXPECT_DOUBLE_EQ(GetSlopeAngle(a, MyPoint(1, 1)), 5 * Pi / 4);  // right, below
    EXPECT_DOUBLE_EQ(GetSlopeAngle(a, MyPoint(-1, 1)), 7 * Pi / 4); // left, below
    EXPECT_NEAR(GetSlopeAngle(a, MyPoint(2, -1)), 2.677945044588987, 1e-12);
    // Equal coordinates count as "not greater", which decides the ties.
    EXPECT_DOUBLE_EQ(GetSlopeAngle(a, MyPoint(0, -3)), Pi / 2);    // straight above
    EXPECT_DOUBLE_EQ(GetSlopeAngle(a, MyPoint(0, 3)), Pi / 2);     // straight below too
    EXPECT_DOUBLE_EQ(GetSlopeAngle(a, MyPoint(-3, 0)), 0.0);       // straight left
    EXPECT_DOUBLE_EQ(GetSlopeAngle(a, MyPoint(3, 0)), Pi);         // straight right
    EXPECT_DOUBLE_EQ(GetSlopeAngle(a, a), Pi / 2);

    EXPECT_EQ(PointInQuadrantX(a, MyPoint(0, 5)), -1);
    EXPECT_EQ(PointInQuadrantY(a, MyPoint(5, 0.5f)), 1);
}

TEST(Geometry, RotateAndCornerTests)
{
    const TMyPoint p = RotateAPoint(MyPoint(10, 0), MyPoint(0, 0), float(Pi / 2));
    EXPECT_NEAR(p.X, 0, 1e-5); // a positive angle turns clockwise with Y downwards
    EXPECT_NEAR(p.Y, 10, 1e-5);
    const TMyPoint q = RotateAPoint(MyPoint(10, 5), MyPoint(5, 5), float(Pi));
    EXPECT_NEAR(q.X, 0, 1e-5);
    EXPECT_NEAR(q.Y, 5, 1e-5);

    const TMyPoint a = MyPoint(5, 5);
    EXPECT_TRUE(IsAtLeftTop(a, a) && IsAtLeftBottom(a, a) && IsAtRightTop(a, a) &&
                IsAtRightBottom(a, a));
    const TMyPoint lb = MyPoint(4, 6);
    EXPECT_TRUE(IsAtLeftBottom(a, lb));
    EXPECT_FALSE(IsAtLeftTop(a, lb) || IsAtRightTop(a, lb) || IsAtRightBottom(a, lb));
    const TMyPoint rt = MyPoint(6, 5); // on the horizontal through a: top and bottom both hold
    EXPECT_TRUE(IsAtRightTop(a, rt) && IsAtRightBottom(a, rt));
    EXPECT_FALSE(IsAtLeftTop(a, rt) || IsAtLeftBottom(a, rt));
}

TEST(Geometry, IntersectionCases)
{
    // Both vertical: half the difference of line A's Y values, not their midpoint.
    EXPECT_EQ(Getintersection(MyPoint(2, 10), MyPoint(5, 0), MyPoint(2, 30), MyPoint(5, 7)),
              MyPoint(2, 10));
    // Only A vertical (x = 2), B: y = 2x + 1.
    EXPECT_EQ(Getintersection(MyPoint(2, 0), MyPoint(0, 1), MyPoint(2, 10), MyPoint(4, 9)),
              MyPoint(2, 5));
    // Only B vertical (x = 3), A: y = 2x + 1.
    EXPECT_EQ(Getintersection(MyPoint(0, 1), MyPoint(3, -5), MyPoint(4, 9), MyPoint(3, 5)),
              MyPoint(3, 7));
    // Both horizontal: half the difference of line A's X values.
    EXPECT_EQ(Getintersection(MyPoint(10, 4), MyPoint(0, 8), MyPoint(30, 4), MyPoint(5, 8)),
              MyPoint(10, 4));
    // General crossings.
    EXPECT_EQ(Getintersection(MyPoint(0, 0), MyPoint(0, 4), MyPoint(4, 4), MyPoint(4, 0)),
              MyPoint(2, 2));
    const TMyPoint c = Getintersection(MyPoint(1, 1), MyPoint(0, 6), MyPoint(3, 5), MyPoint(4, 2));
    EXPECT_FLOAT_EQ(c.X, 7.0f / 3);
    EXPECT_FLOAT_EQ(c.Y, 11.0f / 3);
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

TEST(Geometry, ArrowHeadCorners)
{
    const float h = float(Pi / 6);
    // Horizontal line, head opening to the right.
    auto [a1, a2] = GetTriangle(MyPoint(0, 0), MyPoint(100, 0), 10, h);
    EXPECT_NEAR(a1.X, 8.660254, 1e-4);
    EXPECT_NEAR(a1.Y, 5, 1e-4);
    EXPECT_NEAR(a2.X, 8.660254, 1e-4);
    EXPECT_NEAR(a2.Y, -5, 1e-4);
    // Vertical line, head opening downwards: the theta corner comes first.
    auto [b1, b2] = GetTriangle(MyPoint(0, 0), MyPoint(0, 50), 10, h);
    EXPECT_NEAR(b1.X, -5, 1e-4);
    EXPECT_NEAR(b1.Y, 8.660254, 1e-4);
    EXPECT_NEAR(b2.X, 5, 1e-4);
    EXPECT_NEAR(b2.Y, 8.660254, 1e-4);
    // Tip right-below the tail: both signs negative.
    auto [c1, c2] = GetTriangle(MyPoint(10, 10), MyPoint(0, 0), 20, 0.2f);
    EXPECT_NEAR(c1.X, -1.0506258, 1e-4);
    EXPECT_NEAR(c1.Y, -6.6698431, 1e-4);
    EXPECT_NEAR(c2.X, -6.6698431, 1e-4);
    EXPECT_NEAR(c2.Y, -1.0506258, 1e-4);
}

TEST(Geometry, SplitLineGivesOnePointTwice)
{
    auto [p, q] = SplitLine(MyPoint(0, 0), MyPoint(3, 4), 5);
    EXPECT_EQ(p, q);
    EXPECT_NEAR(p.X, 3, 1e-5);
    EXPECT_NEAR(p.Y, 4, 1e-5);
    std::tie(p, q) = SplitLine(MyPoint(10, 10), MyPoint(7, 6), 10);
    EXPECT_EQ(p, q);
    EXPECT_NEAR(p.X, 4, 1e-5);
    EXPECT_NEAR(p.Y, 2, 1e-5);
    std::tie(p, q) = SplitLine(MyPoint(0, 5), MyPoint(-10, 5), 4); // horizontal, leftwards
    EXPECT_EQ(p, q);
    EXPECT_NEAR(p.X, -4, 1e-5);
    EXPECT_NEAR(p.Y, 5, 1e-5);
}

TEST(Geometry, BoundingBoxOfPoints)
{
    EXPECT_EQ(GetPointsLTRB({MyPoint(3, -1), MyPoint(-2, 5), MyPoint(4, 2)}),
              (TMyRect{-2, -1, 4, 5}));
    EXPECT_EQ(GetPointsLTRB({MyPoint(7, 8)}), (TMyRect{7, 8, 7, 8}));
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
    EXPECT_FALSE(IsExistPt(4, arr));
    EXPECT_FALSE(IsExistPt(-1, arr));
    RemovePoint(4, arr);
    RemovePoint(-1, arr);
    EXPECT_EQ(arr.size(), 4u);
    RemovePoint(0, arr);
    RemovePoint(2, arr);
    EXPECT_EQ(arr, (TMyPointArray{MyPoint(1, 1), MyPoint(2, 2)}));

    std::vector<TPoint> screen{TPoint(1, 2)};
    EXPECT_FALSE(InsertAPointBeforeId1(TPoint(5, 5), 1, screen));
    EXPECT_TRUE(InsertAPointBeforeId1(TPoint(5, 5), 0, screen));
    EXPECT_EQ(screen, (std::vector<TPoint>{TPoint(5, 5), TPoint(1, 2)}));
    EXPECT_TRUE(IsExistPt1(1, screen));
    EXPECT_FALSE(IsExistPt1(2, screen));
}

TEST(Geometry, ConnectorListsAddOnceRemoveLast)
{
    std::vector<std::int32_t> links;
    AddLinklineShape(links, 4);
    AddLinklineShape(links, 2);
    AddLinklineShape(links, 4);
    EXPECT_EQ(links, (std::vector<std::int32_t>{4, 2}));

    links = {3, 5, 3, 7}; // duplicates can come from a file
    RemoveLinklineShape(links, 3);
    EXPECT_EQ(links, (std::vector<std::int32_t>{3, 5, 7}));
    RemoveLinklineShape(links, 9);
    EXPECT_EQ(links, (std::vector<std::int32_t>{3, 5, 7}));
    RemoveLinklineShape(links, 7);
    RemoveLinklineShape(links, 3);
    EXPECT_EQ(links, (std::vector<std::int32_t>{5}));
}

TEST(Geometry, AppendSpacePadsToOneMoreThanN)
{
    EXPECT_EQ(AppendSpace("ab", 4), QStringLiteral("ab   "));
    EXPECT_EQ(AppendSpace("abcd", 4), QStringLiteral("abcd "));
    EXPECT_EQ(AppendSpace("abcdef", 4), QStringLiteral("abcdef"));
    EXPECT_EQ(AppendSpace("abcde", 4), QStringLiteral("abcde"));
    EXPECT_EQ(AppendSpace("", 0), QStringLiteral(" "));
}

} // namespace
} // namespace tessal
