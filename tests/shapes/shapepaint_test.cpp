// SPDX-License-Identifier: MIT
// Gradient templates, filled outlines and info texts, checked pixel by pixel.
#include "testhost.h"

#include <tessal/shapes/shapetools.h>

#include <gtest/gtest.h>

#include <array>
#include <numbers>
#include <tuple>

namespace tessal::test {
namespace {

using GS = TGradientStyle;

// A template's style, width, height and samples: x, y and the expected ramp entry.
using TTemplateRow = std::tuple<GS, int, int, std::vector<std::array<int, 3>>>;

// From white to black the ramp entry i is the grey 255 - i. Values worked out
// by hand from the template table: corners, centres and a few points where two
// formulas meet.
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
    for (const auto &[style, w, h, samples] : TemplateRows()) {
        SCOPED_TRACE(int(style));
        s.SetGradientStyle(style);
        const TBitmap &bm = s.GradientBitmap();
        ASSERT_EQ(std::pair(bm.Width(), bm.Height()), std::pair(w, h));
        for (const auto &[x, y, index] : samples) {
            const std::uint8_t g = std::uint8_t(255 - index);
            EXPECT_EQ(bm.Pixel(x, y), RGBToColor(g, g, g)) << x << "," << y;
        }
    }
    s.SetGradientStyle(GS::gsNone);
    EXPECT_TRUE(s.GradientBitmap().IsEmpty());
}

TEST(Gradient, RampTruncatesEachChannelTowardZeroAndFollowsTheFlips)
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

    // A style change mirrors the template by the flip flags.
    TMyShape flipped(&host);
    flipped.SetFlipFlags(true, false);
    flipped.SetGradientStyle(GS::gsLinearV);
    EXPECT_EQ(flipped.GradientBitmap().Pixel(0, 0), clBlack);
}

TEST(PowerDrawShape, FillsWithTheBrushAndStrokesWithThePen)
{
    TTestHost host;
    host.HostPen.Color = clRed;
    host.HostPen.Width = 3;
    host.HostBrush.Color = clBlue;
    TBoxShape s(&host);
    MakeBox(s, 20, 20, 80, 80);
    QImage pic = Drawn(
        [&s](TCanvas &canvas) {
            s.Draw(canvas);
            EXPECT_EQ(canvas.Pen(), TPen{}); // the caller's pen is given back
            EXPECT_FALSE(canvas.HasGeometricPen());
        },
        100, 100);
    for (auto [x, y, rgb] :
         {std::tuple{50, 50, kBlue}, {20, 50, kRed}, {50, 80, kRed}, {10, 50, kWhite}})
        EXPECT_EQ(PixelAt(pic, x, y), rgb) << x << "," << y;
    // A solid brush covers the gradient completely.
    s.SetGradientStyle(GS::gsLinearV);
    EXPECT_TRUE(ImagesEqual(Painted(s, 100, 100), pic));
}

TEST(PowerDrawShape, GradientShowsThroughAHollowBrushAndStaysInside)
{
    TTestHost host;
    host.HostPen.Color = clRed;
    host.HostBrush.Style = TBrushStyle::bsClear;
    TBoxShape s(&host);
    MakeBox(s, 20, 20, 80, 80);
    EXPECT_EQ(PixelAt(Painted(s, 100, 100), 50, 50),
              kWhite); // gsNone: only the brush

    s.SetGradientStyle(GS::gsLinearV); // white on the left to black on the right
    const QImage pic = Painted(s, 100, 100);
    EXPECT_GT(qRed(PixelAt(pic, 23, 50)), 220);
    EXPECT_LT(qRed(PixelAt(pic, 77, 50)), 35);
    const QRgb mid = PixelAt(pic, 50, 50);
    EXPECT_TRUE(qRed(mid) == qGreen(mid) && qRed(mid) == qBlue(mid));
    // Clipped to the shape: nothing outside changed.
    EXPECT_TRUE(AllWhite(pic, QRect(0, 0, 100, 17)) && AllWhite(pic, QRect(83, 0, 17, 100)));

    // Turned by 90 degrees about the centre, the ramp runs top to bottom.
    s.RotateChangeValueByAngle(s.GetCenterPoint(), std::numbers::pi / 2);
    const QImage turned = Painted(s, 100, 100);
    EXPECT_GT(std::abs(qRed(PixelAt(turned, 50, 23)) - qRed(PixelAt(turned, 50, 77))), 180);
    EXPECT_LT(std::abs(qRed(PixelAt(turned, 23, 50)) - qRed(PixelAt(turned, 77, 50))), 20);
}

// The info text of a shape with a 12 point font: one line centred on the text point, at
// zoom 2 twice the size about the zoomed point; several lines as a block centred there,
// aligned within it; a non-empty Info hides the lines, and a hidden caption shows nothing.
TEST(DrawInfo, LinesAreCentredOnTheTextPointAndAligned)
{
    TTestHost host;
    TMyShape shape(&host);
    TFont f;
    f.Name = "DejaVu Sans";
    f.Color = clBlack;
    f.SetSize(12);
    shape.SetFont(f);
    shape.SetTextPoint({100, 100});
    shape.SetInfo("Hello");
    const QRect ink = InkBounds(Painted(shape));
    EXPECT_NEAR(ink.center().x(), 100, 3);
    EXPECT_NEAR(ink.center().y(), 100, 6);
    shape.SetTextPoint({50, 50});
    host.ZoomValue = 2;
    const QRect big = InkBounds(Painted(shape));
    EXPECT_NEAR(big.center().x(), 100, 3);
    EXPECT_NEAR(double(big.width()) / ink.width(), 2.0, 0.25);

    host.ZoomValue = 1;
    shape.SetTextPoint({100, 100});
    shape.SetInfo("");
    shape.SetMultiInfo({"WW", "WWWWWWWW"});
    // The ink of the upper and of the lower line.
    auto lineBoxes = [&](TAlignment alignment) {
        shape.SetMultiInfoAlignment(alignment);
        const QImage img = Painted(shape);
        const QRect all = InkBounds(img);
        const int split = all.top() + all.height() / 2;
        return std::pair{InkBounds(img, kWhite, QRect(0, 0, 200, split)),
                         InkBounds(img, kWhite, QRect(0, split, 200, 200 - split))};
    };
    auto [shortL, longL] = lineBoxes(TAlignment::taLeftJustify);
    EXPECT_NEAR(shortL.left(), longL.left(), 1);
    EXPECT_NEAR((longL.left() + longL.right()) / 2.0, 100, 3);
    EXPECT_NEAR((shortL.top() + longL.bottom()) / 2.0, 100, 6);
    auto [shortR, longR] = lineBoxes(TAlignment::taRightJustify);
    EXPECT_NEAR(shortR.right(), longR.right(), 1);
    EXPECT_EQ(longR, longL);
    auto [shortC, longC] = lineBoxes(TAlignment::taCenter);
    EXPECT_NEAR(shortC.center().x(), longC.center().x(), 1);
    EXPECT_GT(shortC.left(), shortL.left() + 10);
    EXPECT_LT(shortC.right(), shortR.right() - 10);

    shape.SetInfo("X");
    const QImage both = Painted(shape);
    shape.SetMultiInfo({});
    EXPECT_TRUE(ImagesEqual(both, Painted(shape)));
    shape.SetCaptionShow(false);
    EXPECT_TRUE(AllWhite(Painted(shape)));
}

TEST(ShapeTools, DiamondOnlyForShapesWithInfoText)
{
    TTestHost host;
    TMyShape s(&host);
    const auto diamond = [&s] {
        return Drawn([&s](TCanvas &canvas) { DrawDiamond(s, canvas, {50, 50}, clRed); });
    };
    EXPECT_TRUE(AllWhite(diamond()));
    s.SetMultiInfo({"x"});
    const QImage pic = diamond();
    EXPECT_EQ(PixelAt(pic, 50, 50), kRed);
    EXPECT_EQ(PixelAt(pic, 50, 44), kWhite);
}

} // namespace
} // namespace tessal::test
