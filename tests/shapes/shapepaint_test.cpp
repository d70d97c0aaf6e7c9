// SPDX-License-Identifier: MIT
// Gradient templates, filled outlines and info texts, checked pixel by pixel.
#include "common/imagecompare.h"
#include "testhost.h"

#include <tessal/shapes/shapetools.h>

#include <gtest/gtest.h>

#include <climits>
#include <numbers>

namespace tessal::test {
namespace {

using GS = TGradientStyle;

struct TSample
{
    int X, Y, Index; // expected ramp entry
};

struct TTemplateRow
{
    GS Style;
    int W, H;
    std::vector<TSample> Samples;
};

// From white to black the ramp entry i is the grey 255 - i. Values worked out by hand from
// the template table: corners, centres and a few points where two formulas meet.
const std::vector<TTemplateRow> &TemplateRows()
{
    // clang-format off
    static const std::vector<TTemplateRow> rows = {
        {GS::gsRadialC, 362, 362, {{0, 0, 255}, {180, 180, 0}, {181, 181, 1},
            {361, 361, 255}, {181, 180, 0}}},
        {GS::gsRadialT, 362, 181, {{0, 0, 180}, {180, 0, 0}, {181, 90, 90}, {361, 180, 255}}},
        {GS::gsRadialB, 362, 181, {{180, 180, 0}, {0, 0, 255}, {180, 0, 180}, {361, 180, 180}}},
        {GS::gsRadialL, 181, 362, {{0, 180, 0}, {0, 181, 0}, {180, 0, 255}, {100, 180, 100}}},
        {GS::gsRadialR, 181, 362, {{180, 180, 0}, {0, 181, 180}, {150, 221, 50}}},
        {GS::gsRadialTL, 181, 181, {{0, 0, 0}, {180, 180, 255}, {30, 40, 50}, {90, 90, 127}}},
        {GS::gsRadialTR, 181, 181, {{180, 0, 0}, {0, 0, 180}, {150, 40, 50}}},
        {GS::gsRadialBL, 181, 181, {{0, 180, 0}, {30, 140, 50}, {180, 0, 255}}},
        {GS::gsRadialBR, 181, 181, {{180, 180, 0}, {150, 140, 50}, {0, 0, 255}}},
        {GS::gsLinearH, 1, 256, {{0, 0, 0}, {0, 100, 100}, {0, 255, 255}}},
        {GS::gsLinearV, 256, 1, {{0, 0, 0}, {100, 0, 100}, {255, 0, 255}}},
        {GS::gsReflectedH, 1, 512, {{0, 0, 255}, {0, 255, 0}, {0, 256, 0},
            {0, 300, 44}, {0, 511, 255}}},
        {GS::gsReflectedV, 512, 1, {{0, 0, 255}, {255, 0, 0}, {256, 0, 0}, {511, 0, 255}}},
        {GS::gsDiagonalLF, 128, 129, {{0, 0, 127}, {127, 0, 0}, {0, 128, 255}, {127, 128, 128}}},
        {GS::gsDiagonalLB, 128, 129, {{0, 0, 0}, {127, 128, 255}, {10, 20, 30}, {127, 0, 127}}},
        {GS::gsDiagonalRF, 256, 256, {{0, 0, 0}, {255, 0, 255}, {0, 255, 255}, {100, 40, 60}}},
        {GS::gsDiagonalRB, 256, 256, {{0, 0, 255}, {255, 0, 0}, {255, 255, 255},
            {100, 100, 55}, {200, 54, 1}}},
        {GS::gsArrowL, 129, 256, {{0, 0, 255}, {128, 127, 0}, {0, 128, 128},
            {128, 128, 0}, {128, 255, 127}, {0, 255, 255}}},
        {GS::gsArrowR, 129, 256, {{0, 0, 127}, {128, 0, 255}, {0, 127, 0},
            {0, 128, 0}, {128, 255, 255}}},
        {GS::gsArrowU, 256, 129, {{0, 0, 255}, {127, 128, 0}, {128, 0, 128}, {255, 128, 127}}},
        {GS::gsArrowD, 256, 129, {{0, 0, 127}, {0, 128, 255}, {127, 0, 0},
            {128, 0, 0}, {255, 128, 255}}},
        {GS::gsDiamond, 256, 256, {{0, 0, 255}, {127, 127, 1}, {128, 0, 128}, {255, 0, 255},
            {0, 255, 255}, {128, 128, 1}, {255, 255, 255}}},
        {GS::gsButterfly, 256, 256, {{0, 0, 128}, {127, 0, 255}, {128, 0, 255}, {255, 0, 128}, {0, 128, 0},
            {127, 128, 127}, {128, 128, 128}, {255, 255, 128}, {0, 255, 127}}},
    };
    // clang-format on
    return rows;
}

TEST(Gradient, EveryTemplateHasItsSizeAndSampledValues)
{
    TTestHost host;
    TMyShape s(&host);
    ASSERT_EQ(TemplateRows().size(), 23u);
    for (const TTemplateRow &row : TemplateRows()) {
        SCOPED_TRACE(int(row.Style));
        s.SetGradientStyle(row.Style);
        const TBitmap &bm = s.GradientBitmap();
        ASSERT_EQ(bm.Width(), row.W);
        ASSERT_EQ(bm.Height(), row.H);
        for (const TSample &p : row.Samples) {
            const std::uint8_t g = std::uint8_t(255 - p.Index);
            EXPECT_EQ(bm.Pixel(p.X, p.Y), RGBToColor(g, g, g)) << p.X << "," << p.Y;
        }
    }
    s.SetGradientStyle(GS::gsNone);
    EXPECT_TRUE(s.GradientBitmap().IsEmpty());
}

TEST(Gradient, RampTruncatesEachChannelTowardZero)
{
    TTestHost host;
    TMyShape s(&host);
    s.SetGradientStyle(GS::gsLinearV);
    s.SetColorBegin(RGBToColor(10, 200, 30));
    s.SetColorEnd(RGBToColor(250, 0, 130));
    const TBitmap &bm = s.GradientBitmap();
    // Green falls: (0 - 200) * 128 / 255 = -100.39 truncates to -100, not -101.
    EXPECT_EQ(bm.Pixel(128, 0), RGBToColor(130, 100, 80));
    EXPECT_EQ(bm.Pixel(255, 0), RGBToColor(250, 0, 130));
    EXPECT_EQ(bm.Pixel(1, 0), RGBToColor(10, 200, 30)); // 240 / 255 = 0, -200 / 255 = 0
}

TEST(Gradient, StyleChangeMirrorsTheTemplateByTheFlipFlags)
{
    TTestHost host;
    TMyShape s(&host);
    s.SetFlipFlags(true, false);
    s.SetGradientStyle(GS::gsLinearV);
    EXPECT_EQ(s.GradientBitmap().Pixel(0, 0), clBlack);
}

// A 100 x 100 white image with a canvas on it.
struct TPicture
{
    QImage Image{100, 100, QImage::Format_RGB32};
    std::unique_ptr<TCanvas> Canvas;
    TPicture()
    {
        Image.fill(Qt::white);
        Canvas = std::make_unique<TCanvas>(&Image);
    }
    QImage &Done()
    {
        Canvas->Flush();
        return Image;
    }
    QRgb At(int x, int y) { return Done().pixel(x, y) & 0xFFFFFF; }
};

TEST(PowerDrawShape, FillsWithTheBrushAndStrokesWithThePen)
{
    TTestHost host;
    host.HostPen.Color = clRed;
    host.HostPen.Width = 3;
    host.HostBrush.Color = clBlue;
    TBoxShape s(&host);
    MakeBox(s, 20, 20, 80, 80);
    TPicture pic;
    s.Draw(*pic.Canvas);
    const std::pair<QPoint, QRgb> expected[] = {
        {{50, 50}, 0x0000FF}, {{20, 50}, 0xFF0000}, {{50, 80}, 0xFF0000}, {{10, 50}, 0xFFFFFF}};
    for (const auto &[at, rgb] : expected)
        EXPECT_EQ(pic.At(at.x(), at.y()), rgb) << at.x() << "," << at.y();
    EXPECT_EQ(pic.Canvas->Pen(), TPen{}); // the caller's pen is given back
    EXPECT_FALSE(pic.Canvas->HasGeometricPen());

    // A solid brush covers the gradient completely.
    s.SetGradientStyle(GS::gsLinearV);
    TPicture covered;
    s.Draw(*covered.Canvas);
    EXPECT_TRUE(ImagesEqual(covered.Done(), pic.Done()));
}

TEST(PowerDrawShape, GradientShowsThroughAHollowBrushAndStaysInside)
{
    TTestHost host;
    host.HostPen.Color = clRed;
    host.HostBrush.Style = TBrushStyle::bsClear;
    TBoxShape s(&host);
    MakeBox(s, 20, 20, 80, 80);
    TPicture plain;
    s.Draw(*plain.Canvas);
    EXPECT_EQ(plain.At(50, 50), 0xFFFFFFu); // gsNone: only the (hollow) brush

    s.SetGradientStyle(GS::gsLinearV); // white on the left to black on the right
    TPicture pic;
    s.Draw(*pic.Canvas);
    EXPECT_GT(qRed(pic.At(23, 50)), 220);
    EXPECT_LT(qRed(pic.At(77, 50)), 35);
    const QRgb mid = pic.At(50, 50);
    EXPECT_TRUE(qRed(mid) == qGreen(mid) && qRed(mid) == qBlue(mid));
    // Clipped to the shape: nothing outside changed.
    EXPECT_EQ(test::CountPixels(pic.Done(), QRect(0, 0, 100, 17), 0xFFFFFF), 1700);
    EXPECT_EQ(test::CountPixels(pic.Done(), QRect(83, 0, 17, 100), 0xFFFFFF), 1700);

    // Turned by 90 degrees about the centre, the ramp runs top to bottom.
    s.RotateChangeValueByAngle(s.GetCenterPoint(), std::numbers::pi / 2);
    TPicture turned;
    s.Draw(*turned.Canvas);
    EXPECT_GT(std::abs(qRed(turned.At(50, 23)) - qRed(turned.At(50, 77))), 180);
    EXPECT_LT(std::abs(qRed(turned.At(23, 50)) - qRed(turned.At(77, 50))), 20);
}

// The bounding box of the non-white pixels, or an empty rectangle.
QRect InkBox(const QImage &image, const QRect &area)
{
    int l = INT_MAX, t = INT_MAX, r = INT_MIN, b = INT_MIN;
    for (int y = area.top(); y <= area.bottom(); ++y)
        for (int x = area.left(); x <= area.right(); ++x)
            if ((image.pixel(x, y) & 0xFFFFFF) != 0xFFFFFF) {
                l = std::min(l, x), t = std::min(t, y);
                r = std::max(r, x), b = std::max(b, y);
            }
    return l == INT_MAX ? QRect() : QRect(QPoint(l, t), QPoint(r, b));
}

struct TInfoScene
{
    TTestHost Host;
    TMyShape Shape{&Host};
    QImage Image{200, 200, QImage::Format_RGB32};
    TInfoScene()
    {
        TFont f;
        f.Name = "DejaVu Sans";
        f.Color = clBlack;
        f.SetSize(12);
        Shape.SetFont(f);
        Shape.SetTextPoint({100, 100});
    }
    QImage Render()
    {
        Image.fill(Qt::white);
        TCanvas canvas(&Image);
        Shape.Draw(canvas);
        canvas.Flush();
        return Image;
    }
};

TEST(DrawInfo, SingleLineIsCentredOnTheTextPoint)
{
    TInfoScene scene;
    scene.Shape.SetInfo("Hello");
    const QImage img = scene.Render();
    const QRect ink = InkBox(img, img.rect());
    EXPECT_NEAR(ink.center().x(), 100, 3);
    EXPECT_NEAR(ink.center().y(), 100, 6);
    // Zoom 2 doubles the text around the zoomed anchor (200, 200) of a larger picture.
    scene.Shape.SetTextPoint({50, 50});
    scene.Host.ZoomValue = 2;
    const QRect big = InkBox(scene.Render(), scene.Image.rect());
    EXPECT_NEAR(big.center().x(), 100, 3);
    EXPECT_NEAR(double(big.width()) / ink.width(), 2.0, 0.25);

    scene.Shape.SetCaptionShow(false);
    EXPECT_TRUE(InkBox(scene.Render(), scene.Image.rect()).isNull());
}

TEST(DrawInfo, MultiInfoAlignmentsAndInfoWins)
{
    TInfoScene scene;
    scene.Shape.SetMultiInfo({"WW", "WWWWWWWW"});
    auto lineBoxes = [&]() {
        const QImage img = scene.Render();
        const QRect all = InkBox(img, img.rect());
        const int split = all.top() + all.height() / 2;
        return std::pair{InkBox(img, QRect(0, 0, 200, split)),
                         InkBox(img, QRect(0, split, 200, 200 - split))};
    };
    scene.Shape.SetMultiInfoAlignment(TAlignment::taLeftJustify);
    auto [shortL, longL] = lineBoxes();
    EXPECT_NEAR(shortL.left(), longL.left(), 1);
    EXPECT_NEAR((longL.left() + longL.right()) / 2.0, 100, 3); // the block is centred
    EXPECT_NEAR((shortL.top() + longL.bottom()) / 2.0, 100, 6);

    scene.Shape.SetMultiInfoAlignment(TAlignment::taRightJustify);
    auto [shortR, longR] = lineBoxes();
    EXPECT_NEAR(shortR.right(), longR.right(), 1);
    EXPECT_EQ(longR, longL);

    scene.Shape.SetMultiInfoAlignment(TAlignment::taCenter);
    auto [shortC, longC] = lineBoxes();
    EXPECT_NEAR(shortC.center().x(), longC.center().x(), 1);
    EXPECT_GT(shortC.left(), shortL.left() + 10);
    EXPECT_LT(shortC.right(), shortR.right() - 10);

    // A non-empty Info hides the lines completely.
    scene.Shape.SetInfo("X");
    const QImage both = scene.Render().copy();
    scene.Shape.SetMultiInfo({});
    EXPECT_TRUE(test::ImagesEqual(both, scene.Render()));
}

TEST(ShapeTools, DiamondOnlyForShapesWithInfoText)
{
    TTestHost host;
    TMyShape s(&host);
    TPicture pic;
    DrawDiamond(s, *pic.Canvas, {50, 50}, clRed);
    EXPECT_EQ(test::CountPixels(pic.Done(), pic.Image.rect(), 0xFFFFFF), 10000);
    s.SetMultiInfo({"x"});
    DrawDiamond(s, *pic.Canvas, {50, 50}, clRed);
    EXPECT_EQ(pic.At(50, 50), 0xFF0000u);
    EXPECT_EQ(pic.At(50, 44), 0xFFFFFFu);
}

} // namespace
} // namespace tessal::test
