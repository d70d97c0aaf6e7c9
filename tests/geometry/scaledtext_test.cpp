// SPDX-License-Identifier: MIT
// Scaled and turned text: the font construction and what it draws.
#include <tessal/geometry/scaledtext.h>

#include "common/imagecompare.h"

#include <gtest/gtest.h>

#include <numbers>
#include <tuple>

namespace tessal {
namespace {

constexpr double Pi = std::numbers::pi;

TFont PointFont(int points, TFontStyles style = 0)
{
    TFont font;
    font.Name = QStringLiteral("DejaVu Sans");
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

// Height, weight, italic, underline, strike-out and escapement of a logical font.
auto Fields(const TLogFont &lf)
{
    return std::tuple(lf.Height, lf.Weight, lf.Italic, lf.Underline, lf.StrikeOut, lf.Escapement);
}

TEST(ScaledText, LogFontConstruction)
{
    QImage image(8, 8, QImage::Format_RGB32);
    TCanvas canvas(&image);
    const TLogFont lf = MakeScaledLogFont(canvas, PointFont(12), 2, 0);
    EXPECT_EQ(Fields(lf), std::tuple(-24, 400, false, false, false, 0));
    EXPECT_EQ(lf.Orientation, 0);
    EXPECT_EQ(lf.Charset, 134);
    EXPECT_EQ(lf.FaceName, QStringLiteral("DejaVu Sans"));

    // 12.5 rounds to the even 12, 17.5 to 18; the angle in tenths of a degree, negated
    // (572.96 -> -573).
    const TFontStyles all = fsBold | fsItalic | fsUnderline | fsStrikeOut;
    const TLogFont turned = MakeScaledLogFont(canvas, PointFont(10, all), 1.25, Pi / 2);
    EXPECT_EQ(Fields(turned), std::tuple(-12, 700, true, true, true, -900));
    EXPECT_EQ(turned.Orientation, -900);
    EXPECT_EQ(Fields(MakeScaledLogFont(canvas, PointFont(14), 1.25, -Pi / 4)),
              std::tuple(-18, 400, false, false, false, 450));
    EXPECT_EQ(MakeScaledLogFont(canvas, PointFont(8), 0.5, 1).Escapement, -573);
}

TEST(ScaledText, DrawsAndMeasuresWithTheSameFont)
{
    QImage small(120, 80, QImage::Format_RGB32);
    small.fill(Qt::white);
    QImage large = small.copy();
    const TFont font = PointFont(12);
    {
        TCanvas canvas(&small);
        MyLogTextOut(canvas, 10, 10, QStringLiteral("HH"), font, 1, 0);
        EXPECT_EQ(canvas.LogFont().Height, -12);
        canvas.Flush();
    }
    TCanvas canvas(&large);
    MyLogTextOut(canvas, 10, 10, QStringLiteral("HH"), font, 2, 0);
    canvas.Flush();
    // The canvas keeps the scaled font, in the text colour, on a transparent background.
    EXPECT_EQ(canvas.LogFont().Height, -24);
    EXPECT_EQ(canvas.LogFont().Color, clRed);
    EXPECT_EQ(test::CountPixels(large, QRect(0, 0, 120, 10), 0xFFFFFF), 120 * 10);

    const int smallRows = InkRows(small, 0xFF0000);
    const int largeRows = InkRows(large, 0xFF0000);
    EXPECT_GE(smallRows, 6);
    EXPECT_NEAR(largeRows, 2 * smallRows, 2);

    const TPoint s1 = GetTextWidthHeight(canvas, QStringLiteral("HH"), font, 1, 0);
    const TPoint s2 = GetTextWidthHeight(canvas, QStringLiteral("HH"), font, 2, 0);
    EXPECT_EQ(canvas.LogFont().Height, -24);
    EXPECT_GT(s1.X, 0);
    EXPECT_NEAR(s2.X, 2 * s1.X, 2);
    EXPECT_NEAR(s2.Y, 2 * s1.Y, 2);
}

TEST(ScaledText, QuarterTurnRunsUpwards)
{
    QImage image(80, 120, QImage::Format_RGB32);
    image.fill(Qt::white);
    TCanvas canvas(&image);
    // An angle of -pi/2 is an escapement of +900: the text runs up the screen from (20, 100).
    MyLogTextOut(canvas, 20, 100, QStringLiteral("HHHH"), PointFont(12), 1, -Pi / 2);
    canvas.Flush();
    const int red = test::CountPixels(image, image.rect(), 0xFF0000);
    EXPECT_GT(red, 20);
    // Turned about the reference corner, the text cell lies right of x = 20 and above y = 100.
    EXPECT_EQ(test::CountPixels(image, QRect(0, 0, 19, 120), 0xFF0000), 0);
    EXPECT_GT(InkRows(image, 0xFF0000), 2 * 12); // four letters stacked upwards
    EXPECT_EQ(test::CountPixels(image, QRect(0, 101, 80, 19), 0xFF0000), 0);
}

} // namespace
} // namespace tessal
