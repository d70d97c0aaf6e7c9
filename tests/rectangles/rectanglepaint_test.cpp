// SPDX-License-Identifier: MIT
// Rectangles and ellipses on the canvas: filled outlines pixel by pixel, info text, and the
// rubber-band previews of drawing, dragging and rotating.
#include "shapes/testhost.h"

#include <tessal/geometry/canvasmodes.h>
#include <tessal/shapes/rectangle.h>

#include <gtest/gtest.h>

#include <numbers>

namespace tessal::test {
namespace {

constexpr double kPi = std::numbers::pi;

// A host whose new shapes draw with a blue pen of the given width over a red brush.
void BlueOnRed(TTestHost &host, int penWidth = 1)
{
    host.HostPen.Color = clBlue;
    host.HostPen.Width = penWidth;
    host.HostBrush.Color = clRed;
    host.HostBrush.Style = TBrushStyle::bsSolid;
}

void ExpectPixels(const QImage &image, std::initializer_list<std::tuple<int, int, unsigned>> px)
{
    for (auto [x, y, rgb] : px)
        EXPECT_EQ(PixelAt(image, x, y), rgb) << x << "," << y;
}

TEST(RectanglePaint, UprightAndTurnedOutlineAndFill)
{
    TTestHost host;
    BlueOnRed(host);
    auto r = DrawnBy<TMyRectangle>(host, {100, 60}, {20, 20});
    const QImage image = Painted(*r);
    ExpectPixels(image, {{60, 20, kBlue},
                         {100, 40, kBlue},
                         {60, 60, kBlue},
                         {20, 40, kBlue},
                         {20, 20, kBlue},
                         {100, 60, kBlue},
                         {60, 18, kWhite},
                         {102, 40, kWhite},
                         {60, 62, kWhite},
                         {18, 40, kWhite}});
    EXPECT_EQ(CountPixels(image, QRect(22, 22, 77, 37), kRed), 77 * 37);

    BlueOnRed(host, 3);
    auto t = DrawnBy<TMyRectangle>(host, {40, 60}, {160, 100});
    const TMyPoint c{100, 80};
    const float a = float(kPi / 6);
    t->RotateChangeValueByAngle(c, a);
    const QImage turned = Painted(*t);
    EXPECT_EQ(PixelAt(turned, 100, 80), kRed);
    // The middles of the four turned sides carry the pen; two corners of the upright
    // rectangle lie outside the turned one.
    for (TMyPoint m :
         {TMyPoint{100, 60}, TMyPoint{160, 80}, TMyPoint{100, 100}, TMyPoint{40, 80}}) {
        const TPoint p = MyPtToPt(RotateAPoint(m, c, a));
        EXPECT_EQ(PixelAt(turned, p.X, p.Y), kBlue) << p.X << "," << p.Y;
    }
    ExpectPixels(turned, {{42, 98, kWhite}, {158, 62, kWhite}});
}

TEST(RectanglePaint, InfoTextUnlessCaptionHiddenOrATextShape)
{
    TTestHost host;
    BlueOnRed(host);
    auto r = DrawnBy<TMyRectangle>(host, {20, 20}, {60, 40});
    r->SetTextPoint({120, 120});
    r->SetInfo("XX");
    const QRect around(100, 105, 40, 30);
    EXPECT_FALSE(AllWhite(Painted(*r), around));
    r->SetCaptionShow(false);
    EXPECT_TRUE(AllWhite(Painted(*r), around));

    // Text shapes draw their own text: the rectangle's drawing leaves it out.
    struct TTextLike : TMyRectangle
    {
        using TMyRectangle::TMyRectangle;
        QString ClassName() const override { return QStringLiteral("TMyText"); }
    } text(&host);
    text.Assign(*r);
    text.SetTextPoint({120, 120});
    text.SetCaptionShow(true);
    const QImage image = Painted(text);
    EXPECT_TRUE(AllWhite(image, around));
    EXPECT_EQ(PixelAt(image, 40, 30), kRed);
}

// The ellipse in the box 20,20 .. 100,60 (document): pen on the four extreme points,
// brush at the centre, the box corners untouched, at zoom 1 and 2 (pen widths do not
// grow with the zoom on screen); turned, the outline follows the angle.
TEST(EllipsePaint, OutlineFillAndUntouchedCornersAtTwoZoomsAndTurned)
{
    for (int z : {1, 2}) {
        SCOPED_TRACE(z);
        TTestHost host(240, 240);
        host.ZoomValue = z;
        BlueOnRed(host);
        auto e = DrawnBy<TMyEllipse>(host, {20 * z, 20 * z}, {100 * z, 60 * z});
        const QImage image = Painted(*e, 240, 240);
        for (TPoint p : {TPoint{60, 60}, TPoint{100, 40}, TPoint{60, 20}, TPoint{20, 40}})
            EXPECT_EQ(PixelAt(image, p.X * z, p.Y * z), kBlue) << p.X << "," << p.Y;
        EXPECT_EQ(PixelAt(image, 60 * z, 40 * z), kRed);
        EXPECT_EQ(PixelAt(image, 84 * z, 50 * z), kRed);
        for (TPoint p : {TPoint{22, 22}, TPoint{98, 22}, TPoint{22, 58}, TPoint{98, 58}})
            EXPECT_EQ(PixelAt(image, p.X * z, p.Y * z), kWhite) << p.X << "," << p.Y;
        EXPECT_TRUE(AllWhite(image, QRect(0, 0, 240, 20 * z - 1))); // nothing outside the box
    }
    TTestHost host;
    BlueOnRed(host);
    auto e = DrawnBy<TMyEllipse>(host, {20, 20}, {100, 60});
    e->RotateChangeValueByAngle({60, 40}, kPi / 2);
    ExpectPixels(
        Painted(*e),
        {{80, 40, kBlue}, {40, 40, kBlue}, {60, 80, kBlue}, {60, 40, kRed}, {95, 40, kWhite}});
}

// Drawing previews select the rubber band themselves: a second call erases the first.
TEST(ShapePreview, DrawingIsExclusiveOrAndCoversTheBox)
{
    TTestHost host;
    for (bool ellipse : {false, true}) {
        std::unique_ptr<TMyRectangle> shape =
            ellipse ? std::make_unique<TMyEllipse>(&host) : std::make_unique<TMyRectangle>(&host);
        shape->AddPointByMouse({150, 100});
        QImage image = WhiteImage();
        TCanvas canvas(&image);
        shape->Drawing(canvas, {150, 100}, {50, 40});
        canvas.Flush();
        // The top and the left of the box are marked by either figure.
        EXPECT_LT(CountPixels(image, QRect(50, 38, 101, 5), kWhite), 101 * 5 - 10) << ellipse;
        EXPECT_LT(CountPixels(image, QRect(48, 40, 5, 61), kWhite), 5 * 61 - 5) << ellipse;
        // The ellipse leaves the box corner alone, the rectangle does not.
        EXPECT_EQ(AllWhite(image, QRect(50, 40, 3, 3)), ellipse);
        shape->Drawing(canvas, {150, 100}, {50, 40});
        canvas.Flush();
        EXPECT_TRUE(AllWhite(image)) << ellipse;
    }
}

// The drag and rotate previews of a rectangle show exactly the outline that the shape has
// after the edit, drawn by DrawRectangle; at zoom 2 the rotation centre is a screen point.
// An ellipse's drag preview is its moved outline only.
TEST(ShapePreview, DragAndRotatePreviewsMatchTheEditedShape)
{
    TTestHost host(300, 300);
    host.ZoomValue = 2;
    auto r = DrawnBy<TMyRectangle>(host, {60, 60}, {180, 140});
    r->RotateChangeValueByAngle(r->GetCenterPoint(), 0.3);
    auto outline = [](TMyRectangle &shape) {
        return Drawn(
            [&](TCanvas &canvas) {
                std::array<TPoint, 4> pts;
                for (int i = 0; i < 4; ++i)
                    pts[std::size_t(i)] = MyPtToPt(shape.GetPointInZoom(i));
                shape.DrawRectangle(canvas, pts);
            },
            300, 300);
    };
    const QImage dragPreview = Drawn(
        [&](TCanvas &canvas) {
            r->Draging(canvas, {10, 10}, {37, 2});
        },
        300, 300);
    const QImage turnPreview = Drawn(
        [&](TCanvas &canvas) {
            r->Rotating(canvas, {150, 120}, 0.7);
        },
        300, 300);
    TMyRectangle moved(&host), turned(&host);
    moved.Assign(*r);
    turned.Assign(*r);
    moved.DragChangeValue({10, 10}, {37, 2});
    turned.RotateChangeValueByAngle({75, 60}, 0.7);
    EXPECT_TRUE(ImagesEqual(dragPreview, outline(moved)));
    EXPECT_TRUE(ImagesEqual(turnPreview, outline(turned)));
    EXPECT_FALSE(ImagesEqual(dragPreview, outline(*r)));

    host.ZoomValue = 1;
    auto e = DrawnBy<TMyEllipse>(host, {20, 20}, {100, 60});
    const QImage image = Drawn([&](TCanvas &canvas) {
        canvas.Pen().Color = clBlack;
        canvas.Brush().Style = TBrushStyle::bsClear;
        e->Draging(canvas, {0, 0}, {30, 50});
    });
    // Black on the moved extremes; white on the unmoved bottom point, inside (no fill) and
    // at the moved box's corner.
    ExpectPixels(image, {{90, 110, kBlack},
                         {130, 90, kBlack},
                         {90, 70, kBlack},
                         {50, 90, kBlack},
                         {60, 60, kWhite},
                         {90, 90, kWhite},
                         {52, 72, kWhite}});
    EXPECT_EQ(e->Points()[0], (TMyPoint{20, 20})); // previews change nothing
}

} // namespace
} // namespace tessal::test
