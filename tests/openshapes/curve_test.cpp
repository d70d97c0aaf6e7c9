// SPDX-License-Identifier: MIT
// Poly-Bezier and B-spline curves: where their ink falls, clamped ends, construction with
// the mouse, handle edits and their previews, handles and the hit band. Elliptic arcs
// through their three points: the circle and the half ellipse, the way round, straight arcs,
// the three styles on screen, flips and turns, construction with the mouse, handle edits,
// hit tests and copying.
#include "shapes/testhost.h"

#include <tessal/shapes/arc.h>
#include <tessal/shapes/curve.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <numbers>
#include <random>

namespace tessal::test {
namespace {

constexpr double kPi = std::numbers::pi;

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
        const std::tuple<double, double, bool> probes[] = {
            {20, 150, true}, {180, 150, true},  {100, 52.5, true},
            {40, 20, false}, {100, 100, false},
        };
        for (auto [x, y, ink] : probes)
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
    curve.SetCurrentHot(3);
    // The anchor and its two controls move; the screen offset (10, 20) is (5, 10) stored.
    curve.SizeChangeValue({80, 20}, {90, 40});
    EXPECT_EQ(curve.Points(),
              (TMyPointArray{{10, 10}, {20, 0}, {35, 10}, {45, 20}, {55, 30}, {60, 20}, {70, 10}}));
    curve.SetCurrentHot(5); // a control point moves alone
    curve.SizeChangeValue({0, 0}, {-4, 0});
    EXPECT_EQ(curve.Points(),
              (TMyPointArray{{10, 10}, {20, 0}, {35, 10}, {45, 20}, {55, 30}, {58, 20}, {70, 10}}));

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
        const std::pair<TPoint, bool> probes[] = {{{mid, top + 7}, true},
                                                  {{mid, top + 10}, false},
                                                  {{int(20 * z) - 8, int(150 * z)}, true},
                                                  {{mid, mid}, false}};
        for (auto [p, hit] : probes)
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
        const std::tuple<int, int, bool> probes[] = {
            {20, 100, true}, {180, 100, true}, {60, 60, true}, {60, 20, false}, {100, 180, false},
        };
        for (auto [x, y, ink] : probes)
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
    const auto drag = [&](TCanvas &canvas) { curve.Draging(canvas, {0, 0}, {30, 40}); };
    const QImage moved = Drawn(drag, 400, 400);
    EXPECT_TRUE(InkNear(moved, 130, 92.5));
    EXPECT_FALSE(InkNear(moved, 100, 52.5, 3));
    const auto turn = [&](TCanvas &canvas) { curve.Rotating(canvas, {100, 85}, kPi); };
    const QImage turned = Drawn(turn, 400, 400);
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

constexpr TColor clRedBrush = 0x0000FF;

// The upper-right quarter of the circle of radius 50 about (100, 100), from its right end
// through (130, 60) up to its top.
std::unique_ptr<TMyElliArc> QuarterArc(TClassHost &host, TArcStyle style)
{
    auto arc = std::make_unique<TMyElliArc>(&host);
    arc->Points() = {{150, 100}, {130, 60}, {100, 50}};
    arc->SetCenterPoint({100, 100});
    arc->SetArcStyle(style);
    return arc;
}

double DistanceToPolyline(const std::vector<TMyPoint> &line, double x, double y)
{
    double best = INFINITY;
    for (std::size_t i = 0; i + 1 < line.size(); ++i) {
        const double ax = line[i].X, ay = line[i].Y;
        const double dx = line[i + 1].X - ax, dy = line[i + 1].Y - ay;
        const double len2 = dx * dx + dy * dy;
        const double t =
            len2 == 0 ? 0 : std::clamp(((x - ax) * dx + (y - ay) * dy) / len2, 0.0, 1.0);
        best = std::min(best, std::hypot(x - ax - t * dx, y - ay - t * dy));
    }
    return best;
}

// Centre and radii of the geometry within tol.
void ExpectEllipse(const TArcGeometry &g, double cx, double cy, double rx, double ry, double tol)
{
    EXPECT_NEAR(g.Centre.X, cx, tol);
    EXPECT_NEAR(g.Centre.Y, cy, tol);
    EXPECT_NEAR(g.RadiusX, rx, tol);
    EXPECT_NEAR(g.RadiusY, ry, tol);
}

// Random circles, turned frames and arcs both ways round: the geometry finds the circle, the
// outline starts and ends exactly at the end points, passes through the middle point and
// keeps to the circle.
TEST(ElliArcGeometry, RandomCirclesAndHalfEllipsesAreFoundAgain)
{
    std::mt19937 random(20240611);
    std::uniform_real_distribution<double> unit(0, 1);
    TClassHost host;
    for (int round = 0; round < 300; ++round) {
        const bool ellipse = round % 2 == 1;
        TMyElliArc arc(&host);
        arc.SetArcMode(ellipse ? TArcMode::amEllipse : TArcMode::amCircle);
        const double frame = 2 * kPi * unit(random);
        arc.SetAngle(float(frame));
        const double cx = 100 + 200 * unit(random), cy = 100 + 200 * unit(random);
        const double a = 20 + 80 * unit(random);
        const double b = ellipse ? a * (0.4 + 2 * unit(random)) : a;
        const double start = 2 * kPi * unit(random);
        const double sign = unit(random) < 0.5 ? -1 : 1;
        const double sweep = sign * (ellipse ? kPi : 0.3 + 5.6 * unit(random));
        const double share = 0.2 + 0.6 * unit(random);
        auto at = [&](double t) {
            return RotateAPoint({float(cx + a * std::cos(t)), float(cy - b * std::sin(t))},
                                {float(cx), float(cy)}, float(frame));
        };
        const TMyPoint through = at(start + share * sweep);
        arc.Points() = {at(start), through, at(start + sweep)};
        const TArcGeometry g = arc.ArcGeometry();
        SCOPED_TRACE(round);
        ASSERT_FALSE(g.Straight);
        ExpectEllipse(g, cx, cy, a, b, 2e-3 * std::max(a, b));
        EXPECT_NEAR(g.Sweep, sweep, 1e-3);
        EXPECT_NEAR(std::remainder(g.Start - start, 2 * kPi), 0, 1e-3);

        const std::vector<TMyPoint> outline = arc.OutlineInZoom();
        for (auto [end, i] : {std::pair{outline.front(), 0}, {outline.back(), 2}})
            EXPECT_LT(std::hypot(end.X - arc.Points()[i].X, end.Y - arc.Points()[i].Y), 1e-3);
        // The chords of at most 5 degrees stay within 0.1 % of the radius of the curve.
        EXPECT_LT(DistanceToPolyline(outline, through.X, through.Y), 2e-3 * std::max(a, b));
        for (const TMyPoint &p : outline) {
            const TMyPoint u = RotateAPoint(p, {float(cx), float(cy)}, float(-frame));
            ASSERT_NEAR(std::hypot((u.X - cx) / a, (u.Y - cy) / b), 1, 3e-3);
        }
    }
}

TEST(ElliArcGeometry, EllipseIsTheHalfOverStartAndEndThroughTheMiddlePoint)
{
    TClassHost host;
    TMyElliArc arc(&host);
    arc.SetArcMode(TArcMode::amEllipse);
    // The point at parameter 60 degrees of the ellipse 60 wide, 30 high about (100, 100).
    // The geometry of such halves is checked on random ellipses; here the picture.
    arc.Points() = {{40, 100}, {130, float(100 - 30 * std::sin(kPi / 3))}, {160, 100}};
    QImage image = Painted(arc);
    EXPECT_TRUE(InkNear(image, 100, 70));
    EXPECT_TRUE(InkNear(image, 100 + 60 * std::cos(kPi / 4), 100 - 30 * std::sin(kPi / 4)));
    EXPECT_FALSE(InkNear(image, 100 + 42.4, 100 - 42.4, 3)); // where the circle would be
    EXPECT_TRUE(AllWhite(image, QRect(0, 103, 200, 97)));

    // The middle point below picks the lower half.
    arc.Points()[1] = {100, 130};
    EXPECT_NEAR(arc.ArcGeometry().Sweep, kPi, 1e-6);
    image = Painted(arc);
    EXPECT_TRUE(InkNear(image, 100, 130));
    EXPECT_TRUE(AllWhite(image, QRect(0, 0, 200, 97)));

    // Further out than the start on both axes: no such ellipse, so the circle through the
    // three points, as circle mode gives it, centred on (100, 62).
    arc.Points()[1] = {170, 50};
    const TArcGeometry g = arc.ArcGeometry();
    ExpectEllipse(g, 100, 62, std::sqrt(5044.0), std::sqrt(5044.0), 1e-4);
    TMyElliArc circle(&host);
    circle.Points() = arc.Points();
    EXPECT_EQ(circle.ArcGeometry().Sweep, g.Sweep);
    EXPECT_EQ(circle.OutlineInZoom(), arc.OutlineInZoom());

    // Circle mode through the points of the first ellipse: the circle about (100, 145).
    circle.Points()[1] = {100, 70};
    ExpectEllipse(circle.ArcGeometry(), 100, 145, 75, 75, 1e-4);
}

// On one line the three points give the straight segment from the start to the end,
// whatever the style, and nothing is filled; so does a middle point beyond the end. A bulge
// of a hundred-thousandth of the chord is straight too, while a pixel's bulge is a curve.
TEST(ElliArcGeometry, PointsOnOneLineDrawTheSegmentFromStartToEnd)
{
    for (TArcMode mode : {TArcMode::amCircle, TArcMode::amEllipse}) {
        TClassHost host;
        host.HostBrush.Color = clRedBrush;
        for (TArcStyle style : {TArcStyle::asArc, TArcStyle::asPie}) {
            SCOPED_TRACE(int(mode) * 10 + int(style));
            TMyElliArc arc(&host);
            arc.SetArcMode(mode);
            arc.SetArcStyle(style);
            arc.Points() = {{50, 100}, {100, 100}, {150, 100}};
            TArcGeometry g = arc.ArcGeometry();
            EXPECT_TRUE(g.Straight);
            EXPECT_EQ(g.Centre, (TMyPoint{100, 100}));
            EXPECT_TRUE(g.Sweep == 0 && g.RadiusX == 0);
            EXPECT_EQ(InkBounds(Painted(arc)), QRect(50, 100, 101, 1));
            QImage scratch = WhiteImage();
            TCanvas canvas(&scratch);
            EXPECT_TRUE(arc.IsClickedMe(canvas, {120, 106}));
            EXPECT_FALSE(arc.IsClickedMe(canvas, {170, 100}));
            arc.Points()[1] = {190, 100};
            EXPECT_EQ(InkBounds(Painted(arc)), QRect(50, 100, 101, 1));
            // Start and end together: a segment of no length.
            arc.Points() = {{80, 80}, {120, 120}, {80, 80}};
            g = arc.ArcGeometry();
            EXPECT_TRUE(g.Straight);
            EXPECT_EQ(g.Centre, (TMyPoint{80, 80}));
        }
        TMyElliArc arc(&host);
        arc.SetArcMode(mode);
        arc.Points() = {{0, 100}, {200, 100.001f}, {400, 100}};
        EXPECT_TRUE(arc.ArcGeometry().Straight);
        arc.Points()[1] = {200, 101};
        const TArcGeometry g = arc.ArcGeometry();
        EXPECT_FALSE(g.Straight);
        EXPECT_NEAR(mode == TArcMode::amCircle ? g.RadiusX : g.RadiusY,
                    mode == TArcMode::amCircle ? (200.0 * 200 + 1) / 2 : 1, 1e-2);
    }
}

// Chord and pie are closed and filled with the brush; the open arc fills nothing. (135, 70)
// lies between the chord and the curve, (110, 80) inside the pie's triangle.
TEST(ElliArcPaint, StylesFillWhatTheyCloseAtTwoZooms)
{
    const std::tuple<TArcStyle, bool, bool> cases[] = {{TArcStyle::asArc, false, false},
                                                       {TArcStyle::asChord, true, false},
                                                       {TArcStyle::asPie, true, true}};
    for (double z : {1.0, 2.0}) {
        for (auto [style, segmentFilled, triangleFilled] : cases) {
            SCOPED_TRACE(z * 10 + int(style));
            TClassHost host;
            host.ZoomValue = z;
            host.HostBrush.Color = clRedBrush;
            const QImage image = Painted(*QuarterArc(host, style), 400, 400);
            EXPECT_EQ(PixelAt(image, int(135 * z), int(70 * z)) == kRed, segmentFilled);
            EXPECT_EQ(PixelAt(image, int(110 * z), int(80 * z)) == kRed, triangleFilled);
            EXPECT_TRUE(InkNear(image, 135.36 * z, 64.64 * z));
            EXPECT_TRUE(InkNear(image, 130 * z, 60 * z));
            // Nothing in the three other quarters.
            const int below = int(104 * z), left = int(96 * z);
            EXPECT_TRUE(AllWhite(image, QRect(0, below, 400, 400 - below)));
            EXPECT_TRUE(AllWhite(image, QRect(0, 0, left, 400)));
            EXPECT_FALSE(InkNear(image, 64.6 * z, 64.6 * z, 3));
        }
    }
    // Changing the style or the mode by code shows at once; the same value repaints nothing.
    TClassHost host;
    auto arc = QuarterArc(host, TArcStyle::asArc);
    const int before = host.Repaints;
    arc->SetArcStyle(TArcStyle::asArc);
    arc->SetArcStyle(TArcStyle::asPie);
    arc->SetArcMode(arc->ArcMode() == TArcMode::amCircle ? TArcMode::amEllipse
                                                         : TArcMode::amCircle);
    EXPECT_EQ(host.Repaints, before + 2);
}

TEST(ElliArcPaint, ATurnedEllipseTurnsItsFrame)
{
    TClassHost host;
    // The upper half of an ellipse 50 wide and 25 high, as a pie, turned a sixth of a turn:
    // the frame turns with it, so the picture is the turned picture.
    host.HostBrush.Color = clRedBrush;
    auto turned = QuarterArc(host, TArcStyle::asPie);
    turned->SetArcMode(TArcMode::amEllipse);
    turned->Points() = {{50, 100}, {100, 75}, {150, 100}};
    turned->RotateChangeValueByAngle({100, 100}, kPi / 6);
    ExpectEllipse(turned->ArcGeometry(), 100, 100, 50, 25, 1e-3);
    const QImage image = Painted(*turned);
    auto turnedPoint = [](double x, double y) {
        return RotateAPoint({float(x), float(y)}, {100, 100}, float(kPi / 6));
    };
    for (double t : {kPi / 4, kPi / 2, 3 * kPi / 4}) {
        const TMyPoint on = turnedPoint(100 + 50 * std::cos(t), 100 - 25 * std::sin(t));
        EXPECT_TRUE(InkNear(image, on.X, on.Y)) << t;
    }
    const TMyPoint inside = turnedPoint(100, 90), outside = turnedPoint(100, 110);
    EXPECT_EQ(PixelAt(image, int(inside.X), int(inside.Y)), kRed);
    EXPECT_EQ(PixelAt(image, int(outside.X), int(outside.Y)), kWhite);
}

TEST(ElliArcCreation, StartThenEndThenThePointBetweenAndThePreviews)
{
    TClassHost host;
    host.ZoomValue = 2;
    TMyElliArc arc(&host);
    for (TPoint p : {TPoint{300, 200}, TPoint{200, 100}}) {
        arc.AddPointByMouse(p);
        EXPECT_FALSE(arc.IsDrawingFinished(Qt::LeftButton, p));
    }
    EXPECT_EQ(arc.Points(), (TMyPointArray{{150, 100}, {100, 50}}));
    arc.AddPointByMouse({260, 120});
    EXPECT_TRUE(arc.IsDrawingFinished(Qt::LeftButton, {260, 120}));
    EXPECT_EQ(arc.Points(), (TMyPointArray{{150, 100}, {130, 60}, {100, 50}}));
    EXPECT_EQ(arc.GetCenterPoint(), (TMyPoint{125, 75}));
    arc.AddPointByMouse({10, 10});
    EXPECT_EQ(arc.GetPointsCount(), 3);

    // While drawing, the preview shows the chord, then the arc through the mouse: the long
    // way from the start through the lower left to the end, dotted, in exclusive or.
    host.ZoomValue = 1;
    TMyElliArc drawn(&host);
    drawn.AddPointByMouse({150, 100});
    auto chord = [&](TCanvas &canvas) { drawn.Drawing(canvas, {150, 100}, {100, 50}); };
    QImage image = Drawn(chord, 200, 200, 0);
    EXPECT_TRUE(InkNear(image, 125, 75, 2, 0));
    EXPECT_FALSE(InkNear(image, 135.36, 64.64, 2, 0));
    drawn.AddPointByMouse({100, 50});
    auto curve = [&](TCanvas &canvas) { drawn.Drawing(canvas, {100, 50}, {70, 140}); };
    image = Drawn(curve, 200, 200, 0);
    EXPECT_TRUE(InkNear(image, 100, 150, 2, 0));
    EXPECT_TRUE(InkNear(image, 50, 100, 2, 0));
    EXPECT_FALSE(InkNear(image, 135.36, 64.64, 3, 0));
    EXPECT_EQ(drawn.GetPointsCount(), 2); // the preview places nothing
    {
        TCanvas canvas(&image);
        curve(canvas);
    }
    EXPECT_TRUE(InkBounds(image, 0).isNull());
}

TEST(ElliArcEdit, MovingTheMiddlePointTakesTheArcRoundTheOtherWay)
{
    TClassHost host;
    host.HostBrush.Color = clRedBrush;
    auto arc = QuarterArc(host, TArcStyle::asPie);
    ExpectSizingShowsTheResult(*arc, 1, {130, 60}, {70, 140});
    EXPECT_EQ(arc->Points(), (TMyPointArray{{150, 100}, {70, 140}, {100, 50}}));
    EXPECT_NEAR(arc->ArcGeometry().Sweep, -3 * kPi / 2, 1e-5);
    const QImage painted = Painted(*arc);
    EXPECT_EQ(PixelAt(painted, 70, 110), kRed); // the pie now covers three quarters
    EXPECT_EQ(PixelAt(painted, 130, 75), kWhite);
    EXPECT_TRUE(InkNear(painted, 100, 150));

    // Moving the start moves only the start; the curve follows through the other two.
    arc->SetCurrentHot(0);
    arc->SizeChangeValue({150, 100}, {140, 130});
    EXPECT_EQ(arc->Points(), (TMyPointArray{{140, 130}, {70, 140}, {100, 50}}));
    EXPECT_NEAR(arc->ArcGeometry().RadiusX, 50, 1e-4); // (140, 130) is on the same circle
}

TEST(ElliArcHitTest, BandAroundTheOutlineAndInsideClosedStyles)
{
    for (double z : {1.0, 2.0}) {
        TClassHost host;
        host.ZoomValue = z;
        QImage image = WhiteImage(400, 400);
        TCanvas canvas(&image);
        auto at = [z](double x, double y) { return TPoint{int(x * z), int(y * z)}; };
        auto open = QuarterArc(host, TArcStyle::asArc);
        auto pie = QuarterArc(host, TArcStyle::asPie);
        SCOPED_TRACE(z);
        // {point, open arc hit, pie hit}; 7 screen pixels right of the start is in the band.
        for (auto [p, arcHit, pieHit] : {std::tuple{at(135, 65), true, true},
                                         {TPoint{int(150 * z) + 7, int(100 * z) - 2}, true, true},
                                         {at(110, 80), false, true},
                                         {at(60, 140), false, false}}) {
            EXPECT_EQ(open->IsClickedMe(canvas, p), arcHit) << p.X << "," << p.Y;
            EXPECT_EQ(pie->IsClickedMe(canvas, p), pieHit) << p.X << "," << p.Y;
        }
        for (auto [x, y, hot] :
             {std::tuple{150, 100, 0}, {130, 60, 1}, {100, 50, 2}, {120, 80, -1}})
            EXPECT_EQ(pie->InWhichHot(at(x, y)), hot) << x;
        pie->Points()[1] = {100, 51}; // on top of the end: the end's handle wins
        EXPECT_EQ(pie->InWhichHot(at(100, 50)), 2);
    }
}

} // namespace
} // namespace tessal::test
