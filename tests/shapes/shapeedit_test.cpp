// SPDX-License-Identifier: MIT
// Shape geometry: moving, turning, mirroring, scaling, measuring, copying and
// restyling.
#include "testhost.h"

#include <tessal/shapes/shapetools.h>

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace tessal::test {
namespace {

constexpr double Pi = std::numbers::pi;
constexpr double Deg = Pi / 180;

void ExpectNear(TMyPoint a, TMyPoint b, double tol = 1e-3)
{
    EXPECT_NEAR(a.X, b.X, tol);
    EXPECT_NEAR(a.Y, b.Y, tol);
}

// A triangle with link points, text point and a non-trivial centre.
std::unique_ptr<TMyShape> Triangle(TTestHost &host)
{
    auto s = std::make_unique<TMyShape>(&host);
    s->Points() = {{0, 0}, {10, 0}, {10, 20}};
    s->LinkPoints() = {{5, 0}, {10, 10}};
    s->SetTextPoint({3, 4});
    s->SetCenterPoint({5, 10});
    return s;
}

// Every kind of point a shape keeps: outline, link points, text point, centre.
using TState = std::tuple<TMyPointArray, TMyPointArray, TMyPoint, TMyPoint>;
TState State(const TMyShape &s)
{
    return {s.Points(), s.LinkPoints(), s.TextPoint(), s.CenterPoint()};
}

TEST(ShapeEdit, MovingByZeroChangesNothingAndMovesAreZoomed)
{
    TTestHost host;
    host.ZoomValue = 2;
    auto s = Triangle(host);
    const TState before = State(*s);
    s->DragChangeValuedxdy(0, 0);
    s->DragChangeValue({7, 7}, {7, 7});
    EXPECT_EQ(State(*s), before);

    // 10 screen pixels at zoom 2 are 5 document units, for every kind of point.
    s->DragChangeValue({1, 1}, {11, -5});
    EXPECT_EQ(State(*s),
              (TState{{{5, -3}, {15, -3}, {15, 17}}, {{10, -3}, {15, 7}}, {8, 1}, {10, 7}}));
    s->DragChangeValuedxdy(-10, 6);
    EXPECT_EQ(State(*s), before);

    // The zoomed accessors divide and multiply by the zoom.
    s->AddPoint({8, 4});
    EXPECT_EQ(s->GetPointInZoom(3), (TMyPoint{8, 4}));
    s->SetPointXInZoom(3, 20);
    s->PointAddY(3, 6);
    EXPECT_EQ(s->GetPoint(3), (TMyPoint{10, 5}));
}

TEST(ShapeEdit, RotationTurnsEveryPointAndAddsToTheAngle)
{
    TTestHost host;
    auto s = Triangle(host);
    s->RotateChangeValueByAngle({0, 0}, Pi / 2);
    ExpectNear(s->GetPoint(2), {-20, 10});
    ExpectNear(s->GetLinkPoint(1), {-10, 10});
    ExpectNear(s->TextPoint(), {-4, 3});
    ExpectNear(s->CenterPoint(), {-10, 5});
    EXPECT_NEAR(s->Angle(), Pi / 2, 1e-6);
    // Turns beyond a full circle are brought back within it.
    s->RotateChangeValueByAngle({0, 0}, 7 - Pi / 2);
    EXPECT_NEAR(s->Angle(), 7 - 2 * Pi, 1e-5);

    // Without points nothing turns, not even the angle.
    TMyShape empty(&host);
    empty.SetTextPoint({5, 5});
    empty.RotateChangeValueByAngle({0, 0}, 1);
    EXPECT_EQ(empty.Angle(), 0);
    EXPECT_EQ(empty.TextPoint(), (TMyPoint{5, 5}));
}

TEST(ShapeEdit, FlipsMirrorAboutTheCentreAndTwiceRestore)
{
    TTestHost host;
    auto s = Triangle(host);
    const TState before = State(*s);
    s->SetAngleValue(0.5f);
    s->FlipHoriz();
    EXPECT_EQ(State(*s), (TState{{{10, 0}, {0, 0}, {0, 20}}, {{5, 0}, {0, 10}}, {7, 4}, {5, 10}}));
    EXPECT_NEAR(s->Angle(), Pi - 0.5, 1e-6);
    EXPECT_TRUE(s->IsFlipHorz());
    EXPECT_EQ(host.Repaints, 1);
    s->FlipHoriz();
    EXPECT_EQ(State(*s), before);
    EXPECT_FALSE(s->IsFlipHorz());

    s->SetIsFlipVert(true); // the setter performs the flip
    EXPECT_EQ(State(*s),
              (TState{{{0, 20}, {10, 20}, {10, 0}}, {{5, 20}, {10, 10}}, {3, 16}, {5, 10}}));
    EXPECT_FLOAT_EQ(s->Angle(), -0.5f);
    s->SetIsFlipVert(true); // equal value: nothing
    s->FlipVert();
    EXPECT_EQ(State(*s), before);
    EXPECT_FLOAT_EQ(s->Angle(), 0.5f);

    // An angle of zero stays zero (it is not turned into pi).
    s->SetAngleValue(0);
    s->FlipHoriz();
    EXPECT_EQ(s->Angle(), 0);

    // A group member is mirrored about the root group's centre.
    TMyShape *root = host.Add(std::make_unique<TMyShape>(&host));
    TMyShape *mid = host.Add(std::make_unique<TMyShape>(&host));
    TMyShape *leaf = host.Add(Triangle(host));
    root->SetCenterPoint({100, 100});
    mid->SetCenterPoint({50, 50});
    mid->SetParentNo(0);
    leaf->SetParentNo(1);
    leaf->FlipHoriz();
    EXPECT_EQ(leaf->Points(), (TMyPointArray{{200, 0}, {190, 0}, {190, 20}}));
    leaf->FlipVert();
    EXPECT_EQ(leaf->GetPoint(2), (TMyPoint{190, 180}));
}

TEST(ShapeSetters, AngleLockAndEqualValues)
{
    TTestHost host;
    TMyShape s(&host);
    s.SetAngle(0.75f); // no points yet: stored, nothing turned, the host is not asked
    EXPECT_FLOAT_EQ(s.Angle(), 0.75f);
    EXPECT_TRUE(host.RotateCalls.empty());

    auto t = Triangle(host);
    t->SetAngle(Pi / 2);
    ASSERT_EQ(host.RotateCalls.size(), 1u);
    EXPECT_EQ(host.RotateCalls[0].first, t.get());
    ExpectNear(t->GetPoint(0), {15, 5}); // turned about its centre (5, 10)
    t->SetAngle(t->Angle());
    EXPECT_EQ(host.RotateCalls.size(), 1u);

    const int before = host.Repaints;
    s.SetLocked(true);
    s.SetLocked(true);
    s.SetTag(0);
    s.SetCaption("");
    s.SetPen(s.Pen());
    EXPECT_EQ(host.Repaints, before + 1);
    s.SetCaption("c");
    EXPECT_EQ(host.Repaints, before + 2);
}

TEST(ShapeEdit, ScalingARotatedRectangleKeepsItARectangleAtTheSameAngle)
{
    TTestHost host;
    TMyShape s(&host);
    MakeBox(s, 0, 0, 100, 50);
    s.SetTextPoint({50, 25});
    s.RotateChangeValueByAngle({50, 25}, 30 * Deg);
    const TMyPoint fixed = s.GetPoint(0);
    s.SizeChangeValueByScale(2, 0.5, fixed, s.GetPoint(2), s.GetPoint(2));

    const auto &p = s.Points();
    ExpectNear(p[0], fixed);
    const double ux = p[1].X - p[0].X, uy = p[1].Y - p[0].Y;
    const double vx = p[3].X - p[0].X, vy = p[3].Y - p[0].Y;
    EXPECT_NEAR(std::hypot(ux, uy), 200, 1e-3);
    EXPECT_NEAR(std::hypot(vx, vy), 25, 1e-3);
    EXPECT_NEAR(ux * vx + uy * vy, 0, 1e-2);
    EXPECT_NEAR(std::atan2(uy, ux), 30 * Deg, 1e-5);
    ExpectNear(p[2], {p[1].X + float(vx), p[1].Y + float(vy)});
    // The centre and text point moved with the box: still its middle.
    ExpectNear(s.CenterPoint(), {(p[0].X + p[2].X) / 2, (p[0].Y + p[2].Y) / 2});
    ExpectNear(s.TextPoint(), s.CenterPoint());
    // The unrotated size is what the gradient is stretched to.
    EXPECT_NEAR(s.GetMyWidth(), 200, 1e-2);
    EXPECT_NEAR(s.GetMyHeight(), 25, 1e-2);
}

TEST(ShapeEdit, RotatedAngleIsNormalisedAndSnaps)
{
    TTestHost host;
    TMyShape s(&host);
    const TMyPoint c{10, 10};
    const TMyPoint from{110, 10};
    auto turned = [&](double deg) { return RotateAPoint(from, c, float(deg * Deg)); };

    // The answer turns from onto to in the shapes' sense of rotation.
    for (double deg : {20.0, -20.0, 135.0, -170.0, 179.0})
        EXPECT_NEAR(s.GetRotatedAngle(c, from, turned(deg), false), deg * Deg, 1e-5) << deg;
    // Across the zero direction of the slope angles a small drag stays a small
    // turn, and so does passing straight below the centre.
    EXPECT_NEAR(s.GetRotatedAngle(c, {0, 11}, {0, 9}, false), 2 * std::atan(0.1), 1e-6);
    EXPECT_NEAR(s.GetRotatedAngle(c, {11, 20}, {10, 20}, false), std::atan(0.1), 1e-6);

    // {constraint, snap asked, turned by, answer} in degrees.
    const double snaps[][4] = {
        {15, 1, 20, 15}, {15, 1, 23, 30}, {15, 1, -52, -45}, {15, 0, 23, 23}, {0, 1, 23, 23}};
    for (const auto &r : snaps) {
        host.ConstraintDegree = std::int32_t(r[0]);
        EXPECT_NEAR(s.GetRotatedAngle(c, from, turned(r[2]), r[1] != 0), r[3] * Deg, 1e-5)
            << r[0] << " " << r[2];
    }
}

TEST(ShapeEdit, MagicPointPicksTheNearestSideWithTiesInOrder)
{
    TTestHost host;
    TMyShape s(&host);
    TMyShape other(&host);
    // Box 100..110 at zoom 1; at zoom 2 the box 100.25.. is zoomed and rounded
    // (200.5 -> 200) and the threshold is 50. Sides count as whole lines; ties go
    // left, right, top.
    const std::tuple<double, TMyPoint, TMyPoint> rows[] = {
        {1, {105, 105}, {100, 105}}, {1, {108, 105}, {110, 105}}, {1, {105, 102}, {105, 100}},
        {1, {105, 109}, {105, 110}}, {1, {105, 97}, {105, 100}},  {1, {105, 95}, {100, 95}},
        {1, {109, 101}, {110, 101}}, {1, {135, 135}, {135, 135}}, {1, {134.5f, 135}, {110, 135}},
        {2, {201, 210}, {200, 210}}, {2, {265, 265}, {220, 265}}, {2, {271, 271}, {271, 271}},
    };
    for (const auto &[zoom, at, expected] : rows) {
        host.ZoomValue = zoom;
        MakeBox(other, zoom == 1 ? 100 : 100.25f, 100, 110, 110);
        EXPECT_EQ(s.GetMagicPoint(other, at), expected) << at.X << "," << at.Y;
    }
}

TEST(ShapeMeasure, LengthTextsForEveryUnit)
{
    TTestHost host;
    TMyShape s(&host);
    const std::pair<TUnits, const char *> rows[] = {{TUnits::pixel, "       96 pixel(s)"},
                                                    {TUnits::mm, "    25.40 mm"},
                                                    {TUnits::cm, "     2.54 cm"},
                                                    {TUnits::dm, "     0.25 dm"},
                                                    {TUnits::m, "     0.03 m"},
                                                    {TUnits::inch, "     1.00 in"}};
    for (const auto &[unit, text] : rows) {
        host.Unit = unit;
        EXPECT_EQ(s.GetLengthByUnit({0, 0}, {96, 0}), QString::fromLatin1(text));
    }

    // Pixels at Ratio 1 and Zoom 2 are half the screen distance; printf rounds
    // the exact tie 2.5 to even.
    host.Unit = TUnits::pixel;
    host.ZoomValue = 2;
    host.Ppi = 80; // keeps the arithmetic exact
    EXPECT_EQ(s.GetLengthByUnit({10, 10}, {40, 50}), "       25 pixel(s)");
    EXPECT_EQ(s.GetLengthByUnit({0, 0}, {0, 5}), "        2 pixel(s)");
    // Ratio scales, the screen resolution turns pixels into inches.
    host.Unit = TUnits::mm;
    host.RatioValue = 10;
    host.Ppi = 254;
    EXPECT_EQ(s.GetLengthByUnit({0, 0}, {0, 200}), "   100.00 mm");
    host.RatioValue = 1e6;
    EXPECT_EQ(s.GetLengthByUnit({0, 0}, {0, 254}),
              "12700000.00 mm"); // wider than 9
}

TEST(ShapePoints, BoundsCentresAndMirroredReports)
{
    TTestHost host(300, 200);
    TMyShape s(&host);
    EXPECT_EQ(s.GetLeftTop(), (TMyPoint{0, 0}));
    EXPECT_EQ(s.GetPointInZoomWithMode(0), (TMyPoint{0, 0}));
    s.Points() = {{30, 40}, {10, 60}, {20, 50}};
    s.SetCenterPoint({1, 2});
    EXPECT_EQ(s.GetRightBottom(), (TMyPoint{30, 60}));
    EXPECT_EQ(s.GetWidth(), 20);
    // Corners left-top, right-top, right-bottom, left-bottom, the middle, the
    // stored centre.
    const TMyPoint centres[] = {{10, 40}, {30, 40}, {30, 60}, {10, 60}, {20, 50}, {1, 2}};
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(s.ComputeCenterPoint(i), centres[i]) << i;

    host.ZoomValue = 2;
    const TMyPoint expected[] = {{60, 80}, {60, 200 - 80}, {300 - 60, 200 - 80}, {300 - 60, 80}};
    for (int mode = 0; mode < 4; ++mode) {
        host.Mode = TXYMode(mode);
        EXPECT_EQ(s.GetPointInZoomWithMode(0), expected[mode]) << mode;
        EXPECT_EQ(s.GetPointInZoomWithMode(3), (TMyPoint{0, 0}));
    }
}

// The published properties, and which copy takes them, are walked by the shape-class
// tests; here the fields that are not published or are relations.
TEST(ShapeCopy, AssignTakesTheRelationsAssignWithoutRelationLeavesThem)
{
    TTestHost host;
    TMyShape src(&host);
    MakeBox(src, 1, 2, 3, 4);
    src.LinkPoints() = {{9, 9}};
    src.SetGradientStyle(TGradientStyle::gsLinearH);
    src.SetLayerId(3);
    src.ChildShapes() = {4, 5};
    src.LinkShapes() = {6};
    src.SetParentNo(7);
    src.SetTextPoint({8, 8});

    TMyShape full(&host), bare(&host);
    bare.ChildShapes() = {1};
    bare.Assign(bare); // self-assignment keeps everything
    full.Assign(src);
    bare.AssignWithoutRelation(src);
    for (const TMyShape *d : {&full, &bare}) {
        EXPECT_EQ(std::tuple(d->Points(), d->LinkPoints(), d->LayerId(), d->CenterPoint()),
                  std::tuple(src.Points(), src.LinkPoints(), 3, TMyPoint{2, 3}));
        EXPECT_EQ(d->GradientBitmap(), src.GradientBitmap());
    }
    // Children, connectors, parent and text point.
    const auto relations = [](const TMyShape &s) {
        return std::tuple(s.ChildShapes(), s.LinkShapes(), s.ParentNo(), s.TextPoint());
    };
    using TIds = std::vector<std::int32_t>;
    EXPECT_EQ(relations(full), std::tuple(TIds{4, 5}, TIds{6}, 7, TMyPoint{0, 0}));
    EXPECT_EQ(relations(bare), std::tuple(TIds{1}, TIds{}, -1, TMyPoint{8, 8}));
}

TEST(ShapeSetters, RestylingAGroupRestylesItsMembersRecursively)
{
    TTestHost host;
    TMyShape *group = host.Add(std::make_unique<TMyShape>(&host));
    TMyShape *a = host.Add(std::make_unique<TMyShape>(&host));
    TMyShape *inner = host.Add(std::make_unique<TMyShape>(&host));
    TMyShape *b = host.Add(std::make_unique<TMyShape>(&host));
    group->ChildShapes() = {1, 2, 99}; // 99 does not exist and is skipped
    inner->ChildShapes() = {3};

    TPen pen{clGreen, TPenMode::pmCopy, TPenStyle::psSolid, 5};
    const TBrush brush{clWhite, TBrushStyle::bsClear, {}};
    group->SetPen(pen);
    group->SetBrush(brush);
    group->SetGradientStyle(TGradientStyle::gsDiamond);
    group->SetColorEnd(clBlue);
    for (TMyShape *s : {a, inner, b}) {
        EXPECT_EQ(std::tuple(s->Pen(), s->Brush(), s->GradientStyle(), s->ColorEnd()),
                  std::tuple(pen, brush, TGradientStyle::gsDiamond, TColor(clBlue)));
        EXPECT_EQ(s->GradientBitmap(), group->GradientBitmap());
    }
    // While a drawing is read the members keep what the file says.
    host.Loading = true;
    pen.Color = clRed;
    group->SetPen(pen);
    EXPECT_EQ(group->Pen().Color, clRed);
    EXPECT_EQ(a->Pen().Color, clGreen);
}

TEST(ShapeTools, PointListsAndConnectorLists)
{
    TTestHost host;
    auto s = Triangle(host);
    OffsetAllPoints(*s, 1.5f, -2); // all but the centre, which callers recompute
    EXPECT_EQ(
        State(*s),
        (TState{
            {{1.5f, -2}, {11.5f, -2}, {11.5f, 18}}, {{6.5f, -2}, {11.5f, 8}}, {4.5f, 2}, {5, 10}}));

    // The list rules themselves are the geometry's; here only that the shape's list is used.
    AddLinklineShape(*s, 4);
    AddLinklineShape(*s, 8);
    RemoveLinklineShape(*s, 4);
    EXPECT_EQ(s->LinkShapes(), (std::vector<std::int32_t>{8}));

    RemoveAllPoints(*s);
    EXPECT_EQ(s->GetPointsCount(), 0);
    EXPECT_EQ(s->GetLinkPointsCount(), 2);
}

} // namespace
} // namespace tessal::test
