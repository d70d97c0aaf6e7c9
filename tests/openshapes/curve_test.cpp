// SPDX-License-Identifier: MIT
// Poly-Bezier and B-spline curves: where their ink falls, clamped ends, construction with
// the mouse, handle edits and their previews, handles and the hit band.
#include "shapes/testhost.h"

#include <tessal/shapes/curve.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <numbers>

namespace tessal::test {
namespace {

const TMyPointArray kArch = {{20, 150}, {40, 20}, {160, 20}, {180, 150}};

// A four-point piece passes through both anchors and through the cubic's value at t = 0.5,
// (p0 + 3 p1 + 3 p2 + p3) / 8 = (100, 52.5); it never reaches the control points' row.
TEST(PolyBezierPaint, FourPointsPassAnchorsAndTheCubicMidpointAtBothZooms)
{
    for (double z : {1.0, 2.0}) {
        TClassHost host;
        host.ZoomValue = z;
        TMyPolyBezier curve(&host);
        curve.Points() = kArch;
        const QImage image = Painted(curve, 400, 400);
        SCOPED_TRACE(z);
        for (auto [x, y, ink] : {std::tuple{20.0, 150.0, true},
                                 {180.0, 150.0, true},
                                 {100.0, 52.5, true},
                                 {40.0, 20.0, false},
                                 {100.0, 100.0, false}})
            EXPECT_EQ(InkNear(image, x * z, y * z, ink ? 1 : 3), ink) << x << "," << y;
        const QRect ink = InkBounds(image);
        EXPECT_GE(ink.top(), int(52.5 * z) - 2);
        EXPECT_LE(ink.bottom(), int(150 * z) + 1);
    }
}

// Anchors with controls at thirds and the repeated click that ends are drawn with the mouse
// on the surface; here a double click on the first anchor alone, which leaves the curve
// under construction.
TEST(PolyBezierCreation, ARepeatedFirstClickDoesNotEnd)
{
    TClassHost host;
    TMyPolyBezier lone(&host);
    lone.AddPointByMouse({20, 20});
    lone.AddPointByMouse({20, 20});
    EXPECT_FALSE(lone.IsDrawingFinished(Qt::LeftButton, {20, 20}));
    EXPECT_EQ(lone.GetPointsCount(), 1);
}

// Every preview of a handle drag must show what the drop gives: the Sizing band equals the
// curve drawn after SizeChangeValue.
template <class T>
void ExpectSizingShowsTheResult(T &shape, std::int32_t hot, TPoint from, TPoint to)
{
    shape.SetCurrentHot(hot);
    const QImage preview =
        Drawn([&](TCanvas &canvas) { shape.Sizing(canvas, from, to); }, 400, 400);
    shape.SizeChangeValue(PtToMyPt(from), PtToMyPt(to));
    const QImage after =
        Drawn([&](TCanvas &canvas) { shape.Draging(canvas, from, from); }, 400, 400);
    EXPECT_TRUE(ImagesEqual(preview, after)) << hot;
    EXPECT_GT(InkBounds(after).width(), 0);
}

TEST(PolyBezierEdit, AnAnchorCarriesItsControlsAndThePreviewShowsTheDrop)
{
    TClassHost host;
    host.ZoomValue = 2;
    TMyPolyBezier curve(&host);
    curve.Points() = {{10, 10}, {20, 0}, {30, 0}, {40, 10}, {50, 20}, {60, 20}, {70, 10}};
    const TMyPointArray before = curve.Points();
    curve.SetCurrentHot(3);
    curve.SizeChangeValue({80, 20}, {90, 40}); // screen offset (10, 20) is (5, 10) stored
    for (std::size_t i = 0; i < before.size(); ++i) {
        const bool moved = i >= 2 && i <= 4;
        EXPECT_EQ(curve.Points()[i].X, before[i].X + (moved ? 5 : 0)) << i;
        EXPECT_EQ(curve.Points()[i].Y, before[i].Y + (moved ? 10 : 0)) << i;
    }
    curve.SetCurrentHot(5); // a control point moves alone
    curve.SizeChangeValue({0, 0}, {-4, 0});
    EXPECT_EQ(curve.Points()[4].X + curve.Points()[5].X + curve.Points()[6].X, 55 + 58 + 70);
    EXPECT_EQ(curve.Points()[5].X, 58);

    ExpectSizingShowsTheResult(curve, 0, {20, 20}, {40, 60});
    ExpectSizingShowsTheResult(curve, 6, {140, 20}, {150, 90});
}

// The band is 8 screen pixels from the flattened curve whatever the zoom. The arch's top is
// flat, so the distance there is vertical.
TEST(CurveHitTest, WithinEightPixelsOfTheCurveAtEveryZoom)
{
    for (double z : {1.0, 2.0}) {
        TClassHost host;
        host.ZoomValue = z;
        TMyPolyBezier curve(&host);
        curve.Points() = kArch;
        QImage image = WhiteImage(400, 400);
        TCanvas canvas(&image);
        const int top = int(std::lround(52.5 * z)), mid = int(100 * z);
        for (auto [p, hit] : {std::pair{TPoint{mid, top + 7}, true},
                              {TPoint{mid, top + 10}, false},
                              {TPoint{int(20 * z) - 8, int(150 * z)}, true},
                              {TPoint{mid, mid}, false}})
            EXPECT_EQ(curve.IsClickedMe(canvas, p), hit) << z << ": " << p.X << "," << p.Y;
        TMyBLine spline(&host);
        spline.Points() = kArch;
        EXPECT_TRUE(spline.IsClickedMe(canvas, {int(20 * z), int(150 * z)})) << z;
        EXPECT_FALSE(spline.IsClickedMe(canvas, {int(40 * z), int(20 * z)})) << z;
    }
}

// With the ends tripled the curve starts on the first point and ends on the last, while
// inner points only pull. The join of the second and third pieces is (P0 + 4 P1 + P2) / 6.
TEST(BLinePaint, ClampedEndsInnerPointsOffTheCurveAndTwoPointsStraight)
{
    const TMyPointArray pts = {{20, 100}, {60, 20}, {100, 180}, {140, 20}, {180, 100}};
    const std::vector<TMyPoint> flat = FlattenBSpline(pts);
    EXPECT_EQ(flat.front(), pts.front());
    EXPECT_EQ(flat.back(), pts.back());
    double nearest = 1e9;
    for (TMyPoint p : flat)
        nearest = std::min(nearest, std::hypot(p.X - 60.0, p.Y - 60.0));
    EXPECT_LT(nearest, 1e-3);
    for (double z : {1.0, 2.0}) {
        TClassHost host;
        host.ZoomValue = z;
        TMyBLine spline(&host);
        spline.Points() = pts;
        const QImage image = Painted(spline, 400, 400);
        for (auto [x, y, ink] : {std::tuple{20, 100, true},
                                 {180, 100, true},
                                 {60, 60, true},
                                 {60, 20, false},
                                 {100, 180, false}})
            EXPECT_EQ(InkNear(image, x * z, y * z, ink ? 1 : 3), ink) << z << ": " << x << "," << y;
    }
    // Two points give the straight segment.
    TClassHost host;
    TMyBLine spline(&host);
    spline.Points() = {{20, 50}, {120, 50}};
    const QRect ink = InkBounds(Painted(spline, 200, 100));
    EXPECT_TRUE(ink.top() == 50 && ink.bottom() == 50 && ink.left() <= 21 && ink.right() >= 118);
}

TEST(BLineEdit, ThePreviewShowsTheDrop)
{
    TClassHost host;
    TMyBLine spline(&host);
    spline.Points() = {{20, 20}, {80, 120}, {150, 40}};
    ExpectSizingShowsTheResult(spline, 1, {80, 120}, {90, 60});
    EXPECT_EQ(spline.Points()[1], (TMyPoint{90, 60}));
}

TEST(CurvePreviews, DragAndRotateBandsFollowTheCurve)
{
    TClassHost host;
    TMyPolyBezier curve(&host);
    curve.Points() = kArch;
    const QImage moved = Drawn(
        [&](TCanvas &canvas) {
            curve.Draging(canvas, {0, 0}, {30, 40});
        },
        400, 400);
    EXPECT_TRUE(InkNear(moved, 130, 92.5));
    EXPECT_FALSE(InkNear(moved, 100, 52.5, 3));
    const QImage turned = Drawn(
        [&](TCanvas &canvas) {
            curve.Rotating(canvas, {100, 85}, std::numbers::pi);
        },
        400, 400);
    EXPECT_TRUE(InkNear(turned, 100, 117.5)); // the arch upside down
}

// Every point has a handle and the highest number wins; the square's bottom edge is
// exclusive.
TEST(CurveHandles, EveryPointHasOneAndTheHighestNumberWins)
{
    TClassHost host;
    TMyPolyBezier curve(&host);
    curve.Points() = {{10, 10}, {12, 10}, {60, 60}, {100, 10}};
    for (auto [x, y, hot] : {std::tuple{11, 10, 1}, {60, 63, 2}, {60, 64, -1}})
        EXPECT_EQ(curve.InWhichHot({x, y}), hot) << x << "," << y;
    TMyBLine spline(&host);
    spline.Points() = {{10, 10}, {50, 50}, {51, 50}};
    EXPECT_EQ(spline.InWhichHot({50, 50}), 2);
    EXPECT_EQ(spline.InWhichHot({0, 0}), -1);
}

} // namespace
} // namespace tessal::test
