// SPDX-License-Identifier: MIT
// Elliptic arcs: circle and ellipse modes, the three styles on screen, flips and turns,
// construction with the mouse, handle edits, hit tests and copying.
#include "common/imagecompare.h"
#include "openhost.h"

#include <tessal/shapes/arc.h>

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace tessal::test {
namespace {

constexpr double kPi = std::numbers::pi;
constexpr unsigned kRed = 0xFF0000;
constexpr TColor clRedBrush = 0x0000FF;

// The upper-right quarter of the circle of radius 50 about (100, 100).
std::unique_ptr<TMyElliArc> QuarterArc(TOpenHost &host, TArcStyle style)
{
    auto arc = std::make_unique<TMyElliArc>(&host);
    arc->Points() = {{100, 100}, {150, 100}, {100, 50}};
    arc->SetCenterPoint({100, 100});
    arc->SetArcStyle(style);
    return arc;
}

TEST(ElliArcGeometry, CircleRunsAnticlockwiseFromStartToEnd)
{
    TOpenHost host;
    auto arc = QuarterArc(host, TArcStyle::asArc);
    const TArcGeometry g = arc->ArcGeometry();
    EXPECT_DOUBLE_EQ(g.RadiusX, 50);
    EXPECT_DOUBLE_EQ(g.RadiusY, 50);
    EXPECT_NEAR(g.Start, 0, 1e-12);
    EXPECT_NEAR(g.Sweep, kPi / 2, 1e-6);
    // The other way round it is the remaining three quarters.
    std::swap(arc->Points()[1], arc->Points()[2]);
    EXPECT_NEAR(arc->ArcGeometry().Sweep, 3 * kPi / 2, 1e-6);
    // An end in the start's direction is an empty arc, drawn as nothing.
    arc->Points()[2] = {100, 30};
    EXPECT_EQ(arc->ArcGeometry().Sweep, 0);
    EXPECT_TRUE(InkBounds(Painted(*arc, 200, 200)).isNull());
}

TEST(ElliArcGeometry, EllipseThroughBothEndsOrTheCircleWhenThereIsNone)
{
    TOpenHost host;
    TMyElliArc arc(&host);
    arc.SetArcMode(TArcMode::amEllipse);
    arc.Points() = {{100, 100}, {160, 100}, {100, 70}};
    TArcGeometry g = arc.ArcGeometry();
    EXPECT_NEAR(g.RadiusX, 60, 1e-4);
    EXPECT_NEAR(g.RadiusY, 30, 1e-4);
    const QImage image = Painted(arc, 200, 200);
    EXPECT_TRUE(InkNear(image, 100 + 60 * std::cos(kPi / 4), 100 - 30 * std::sin(kPi / 4)));
    EXPECT_FALSE(InkNear(image, 100 + 42.4, 100 - 42.4, 3)); // where the circle would be

    // The end lies further out on both axes: no frame-aligned ellipse passes through both.
    arc.Points()[2] = {170, 50};
    g = arc.ArcGeometry();
    EXPECT_DOUBLE_EQ(g.RadiusX, 60);
    EXPECT_DOUBLE_EQ(g.RadiusY, 60);

    // The same points in circle mode: the radius comes from the start alone.
    arc.SetArcMode(TArcMode::amCircle);
    arc.Points()[2] = {100, 70};
    EXPECT_DOUBLE_EQ(arc.ArcGeometry().RadiusY, 60);
}

// Chord and pie are closed and filled with the brush; the open arc fills nothing. (135, 70)
// lies between the chord and the curve, (110, 80) inside the pie's triangle.
TEST(ElliArcPaint, StylesFillWhatTheyCloseAtTwoZooms)
{
    struct TCase
    {
        TArcStyle Style;
        bool SegmentFilled, TriangleFilled;
    } cases[] = {{TArcStyle::asArc, false, false},
                 {TArcStyle::asChord, true, false},
                 {TArcStyle::asPie, true, true}};
    for (double z : {1.0, 2.0}) {
        for (const TCase &c : cases) {
            TOpenHost host;
            host.ZoomValue = z;
            host.HostBrush.Color = clRedBrush;
            auto arc = QuarterArc(host, c.Style);
            const QImage image = Painted(*arc);
            const int style = int(c.Style);
            EXPECT_EQ(Rgb(image, int(135 * z), int(70 * z)) == kRed, c.SegmentFilled) << style;
            EXPECT_EQ(Rgb(image, int(110 * z), int(80 * z)) == kRed, c.TriangleFilled) << style;
            EXPECT_TRUE(InkNear(image, (100 + 50 * std::cos(kPi / 4)) * z,
                                (100 - 50 * std::sin(kPi / 4)) * z))
                << style;
            // Nothing in the three other quarters.
            const int below = int(104 * z), left = int(96 * z);
            EXPECT_EQ(CountPixels(image, QRect(0, below, 400, 400 - below), 0xFFFFFF),
                      400 * (400 - below))
                << style;
            EXPECT_EQ(CountPixels(image, QRect(0, 0, left, 400), 0xFFFFFF), left * 400) << style;
            EXPECT_FALSE(InkNear(image, 64.6 * z, 64.6 * z, 3)) << style;
        }
    }
}

TEST(ElliArcPaint, FlipShowsTheMirrorImageAndATurnTurnsIt)
{
    TOpenHost host;
    auto arc = QuarterArc(host, TArcStyle::asArc);
    arc->FlipHoriz();
    EXPECT_TRUE(arc->IsFlipHorz());
    QImage image = Painted(*arc, 200, 200);
    EXPECT_TRUE(InkNear(image, 100 - 35.36, 100 - 35.36));
    EXPECT_FALSE(InkNear(image, 100 + 35.36, 100 - 35.36, 3));
    EXPECT_FALSE(InkNear(image, 100 - 35.36, 100 + 35.36, 3));
    arc->FlipVert(); // both mirrors: the lower-left quarter
    image = Painted(*arc, 200, 200);
    EXPECT_TRUE(InkNear(image, 100 - 35.36, 100 + 35.36));
    EXPECT_FALSE(InkNear(image, 100 - 35.36, 100 - 35.36, 3));

    auto turned = QuarterArc(host, TArcStyle::asPie);
    turned->SetArcMode(TArcMode::amEllipse);
    turned->Points()[2] = {100, 75}; // a quarter ellipse 50 wide and 25 high
    turned->RotateChangeValueByAngle({100, 100}, kPi / 2);
    image = Painted(*turned, 200, 200);
    const TMyPoint mid =
        RotateAPoint({float(100 + 50 * std::cos(kPi / 4)), float(100 - 25 * std::sin(kPi / 4))},
                     {100, 100}, float(kPi / 2));
    EXPECT_TRUE(InkNear(image, mid.X, mid.Y));
    EXPECT_NEAR(turned->ArcGeometry().RadiusX, 50, 1e-3);
    EXPECT_NEAR(turned->ArcGeometry().RadiusY, 25, 1e-3);
}

TEST(ElliArcCreation, CentreStartEndWithTheEndKeptOnTheCircle)
{
    TOpenHost host;
    host.ZoomValue = 2;
    TMyElliArc arc(&host);
    EXPECT_EQ(arc.ArcMode(), TArcMode::amCircle);
    arc.AddPointByMouse({200, 200});
    EXPECT_FALSE(arc.IsDrawingFinished(Qt::LeftButton, {200, 200}));
    arc.AddPointByMouse({320, 200});
    EXPECT_FALSE(arc.IsDrawingFinished(Qt::LeftButton, {320, 200}));
    arc.AddPointByMouse({200, 80 + 200}); // below the centre, nearer than the radius
    EXPECT_TRUE(arc.IsDrawingFinished(Qt::LeftButton, {200, 280}));
    EXPECT_EQ(arc.Points(), (TMyPointArray{{100, 100}, {160, 100}, {100, 160}}));
    arc.AddPointByMouse({10, 10});
    EXPECT_EQ(arc.GetPointsCount(), 3);

    host.Arc = TArcMode::amEllipse; // new arcs take the host's mode; ends are left as placed
    TMyElliArc free(&host);
    for (TPoint p : {TPoint{200, 200}, TPoint{320, 200}, TPoint{200, 280}})
        free.AddPointByMouse(p);
    EXPECT_EQ(free.Points()[2], (TMyPoint{100, 140}));
}

TEST(ElliArcPreview, DrawingShowsTheRadiusThenTheArcToTheMouse)
{
    TOpenHost host;
    TMyElliArc arc(&host);
    arc.AddPointByMouse({100, 100});
    QImage image = BlankImage(200, 200, 0);
    {
        TCanvas canvas(&image);
        arc.Drawing(canvas, {100, 100}, {150, 100});
    }
    EXPECT_TRUE(InkNear(image, 125, 100, 2, 0));
    EXPECT_FALSE(InkNear(image, 100, 125, 2, 0));
    arc.AddPointByMouse({150, 100});
    image = BlankImage(200, 200, 0);
    {
        TCanvas canvas(&image);
        arc.Drawing(canvas, {150, 100}, {100, 20});
    }
    // The arc from the start up to the mouse's direction, at the start's radius.
    EXPECT_TRUE(InkNear(image, 135.36, 64.64, 2, 0)); // dotted: gaps of a few pixels
    EXPECT_FALSE(InkNear(image, 135.36, 135.36, 2, 0));
    // Drawn twice the preview is gone (exclusive or).
    {
        TCanvas canvas(&image);
        arc.Drawing(canvas, {150, 100}, {100, 20});
    }
    EXPECT_TRUE(InkBounds(image, 0).isNull());
}

TEST(ElliArcEdit, MovingTheStartResizesTheCircleAndThePreviewShowsTheDrop)
{
    TOpenHost host;
    host.HostBrush.Color = clRedBrush;
    auto arc = QuarterArc(host, TArcStyle::asPie);
    arc->SetCurrentHot(1);
    QImage preview = BlankImage();
    {
        TCanvas canvas(&preview);
        arc->Sizing(canvas, {150, 100}, {170, 100});
    }
    arc->SizeChangeValue({150, 100}, {170, 100});
    EXPECT_EQ(arc->Points()[1], (TMyPoint{170, 100}));
    EXPECT_EQ(arc->Points()[2], (TMyPoint{100, 30})); // the end stays on the circle
    QImage after = BlankImage();
    {
        TCanvas canvas(&after);
        arc->Draging(canvas, {0, 0}, {0, 0});
    }
    EXPECT_TRUE(ImagesEqual(preview, after));
    EXPECT_TRUE(InkNear(after, 100 + 70 * std::cos(kPi / 4), 100 - 70 * std::sin(kPi / 4)));
}

TEST(ElliArcHitTest, BandAroundTheOutlineAndInsideClosedStyles)
{
    for (double z : {1.0, 2.0}) {
        TOpenHost host;
        host.ZoomValue = z;
        QImage image = BlankImage();
        TCanvas canvas(&image);
        auto at = [z](double x, double y) { return TPoint{int(x * z), int(y * z)}; };
        auto open = QuarterArc(host, TArcStyle::asArc);
        auto pie = QuarterArc(host, TArcStyle::asPie);
        EXPECT_TRUE(open->IsClickedMe(canvas, at(135, 65))) << z;
        EXPECT_TRUE(open->IsClickedMe(canvas, TPoint{int(150 * z) + 7, int(100 * z) - 2})) << z;
        EXPECT_FALSE(open->IsClickedMe(canvas, at(110, 80))) << z;
        EXPECT_TRUE(pie->IsClickedMe(canvas, at(110, 80))) << z;
        EXPECT_FALSE(pie->IsClickedMe(canvas, at(60, 140))) << z;
        EXPECT_FALSE(open->IsClickedMe(canvas, at(60, 140))) << z;
        EXPECT_EQ(pie->InWhichHot(at(150, 100)), 1) << z;
        EXPECT_EQ(pie->InWhichHot(at(125, 75)), -1) << z;
    }
}

TEST(ElliArcCopy, AssignCopiesModeAndStyle)
{
    TOpenHost host;
    auto source = QuarterArc(host, TArcStyle::asChord);
    source->SetArcMode(TArcMode::amEllipse);
    TMyElliArc copy(&host);
    copy.Assign(*source);
    EXPECT_EQ(copy.ArcMode(), TArcMode::amEllipse);
    EXPECT_EQ(copy.ArcStyle(), TArcStyle::asChord);
    EXPECT_EQ(copy.Points(), source->Points());
    TMyElliArc other(&host);
    other.AssignWithoutRelation(*source);
    EXPECT_EQ(other.ArcStyle(), TArcStyle::asChord);
}

} // namespace
} // namespace tessal::test
