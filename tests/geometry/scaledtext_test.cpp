// SPDX-License-Identifier: MIT
// Scaled and turned text: the font construction and what it draws.
#include <tessal/geometry/scaledtext.h>

#include "common/imagecompare.h"
#include "platform/canvas_helpers.h"

#include <gtest/gtest.h>

#include <numbers>
#include <tuple>

namespace tessal {
namespace {

constexpr double Pi = std::numbers::pi;

TFont PointFont(int points, TFontStyles style = 0)
{
    TFont font;
    font.Name = "DejaVu Sans";
    font.SetSize(points);
    font.Style = style;
    font.Charset = 134;
    font.Color = clRed;
    return font;
}

// Rows that hold at least one pixel of the given colour.
int InkRows(const QImage &image, unsigned rgb)
{
    int rows = 0;
    for (int y = 0; y < image.height(); ++y)
        rows += test::CountPixels(image, QRect(0, y, image.width(), 1), rgb) > 0;
    return rows;
}

// Height, weight, italic, underline, strike-out, escapement and orientation of a logical font.
auto Fields(const TLogFont &lf)
{
    return std::tuple(lf.Height, lf.Weight, lf.Italic, lf.Underline, lf.StrikeOut, lf.Escapement,
                      lf.Orientation);
}

TEST(ScaledText, LogFontConstruction)
{
    QImage image(8, 8, QImage::Format_RGB32);
    TCanvas canvas(&image);
    const TLogFont lf = MakeScaledLogFont(canvas, PointFont(12), 2, 0);
    EXPECT_EQ(Fields(lf), std::tuple(-24, 400, false, false, false, 0, 0));
    EXPECT_EQ(std::tuple(lf.Charset, lf.FaceName), std::tuple(134, QString("DejaVu Sans")));

    // 12.5 rounds to the even 12, 17.5 to 18; the angle in tenths of a degree, negated
    // (572.96 -> -573).
    const TFontStyles all = fsBold | fsItalic | fsUnderline | fsStrikeOut;
    const TLogFont turned = MakeScaledLogFont(canvas, PointFont(10, all), 1.25, Pi / 2);
    EXPECT_EQ(Fields(turned), std::tuple(-12, 700, true, true, true, -900, -900));
    EXPECT_EQ(Fields(MakeScaledLogFont(canvas, PointFont(14), 1.25, -Pi / 4)),
              std::tuple(-18, 400, false, false, false, 450, 450));
    EXPECT_EQ(MakeScaledLogFont(canvas, PointFont(8), 0.5, 1).Escapement, -573);
}

TEST(ScaledText, DrawsAndMeasuresWithTheSameFontAndTurns)
{
    // "HH" at scale k; the canvas keeps the scaled font, in the text colour, on a
    // transparent background, and measuring selects the same font.
    const TFont font = PointFont(12);
    TPoint extent[3];
    const auto draw = [&](int k) {
        return test::Painted(120, 80, [&](TCanvas &canvas) {
            MyLogTextOut(canvas, 10, 10, "HH", font, k, 0);
            EXPECT_EQ(canvas.LogFont().Height, -12 * k);
            EXPECT_EQ(canvas.LogFont().Color, clRed);
            extent[k] = GetTextWidthHeight(canvas, "HH", font, k, 0);
            EXPECT_EQ(canvas.LogFont().Height, -12 * k);
        });
    };
    const QImage small = draw(1);
    const QImage large = draw(2);
    EXPECT_EQ(test::CountPixels(large, QRect(0, 0, 120, 10), 0xFFFFFF), 120 * 10);
    const int smallRows = InkRows(small, 0xFF0000);
    EXPECT_GE(smallRows, 6);
    EXPECT_NEAR(InkRows(large, 0xFF0000), 2 * smallRows, 2);
    EXPECT_GT(extent[1].X, 0);
    EXPECT_NEAR(extent[2].X, 2 * extent[1].X, 2);
    EXPECT_NEAR(extent[2].Y, 2 * extent[1].Y, 2);

    // An angle of -pi/2 is an escapement of +900: the text runs up the screen from (20, 100).
    const QImage image = test::Painted(80, 120, [](TCanvas &canvas) {
        MyLogTextOut(canvas, 20, 100, "HHHH", PointFont(12), 1, -Pi / 2);
    });
    EXPECT_GT(test::CountPixels(image, image.rect(), 0xFF0000), 20);
    // Turned about the reference corner, the text cell lies right of x = 20 and above y = 100.
    EXPECT_EQ(test::CountPixels(image, QRect(0, 0, 19, 120), 0xFF0000), 0);
    EXPECT_EQ(test::CountPixels(image, QRect(0, 101, 80, 19), 0xFF0000), 0);
    EXPECT_GT(InkRows(image, 0xFF0000), 2 * 12); // four letters stacked upwards
}

} // namespace
} // namespace tessal
