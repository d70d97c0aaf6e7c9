// SPDX-License-Identifier: MIT
// Text on the canvas: logical fonts, placement, rotation, background and measurement.
#include "canvas_helpers.h"

#include <tessal/platform/canvas.h>

#include "common/imagecompare.h"

#include <gtest/gtest.h>

using namespace tessal;
using namespace tessal::test;

namespace {

TLogFont Font(int height, int escapement = 0)
{
    TLogFont lf;
    lf.Height = height;
    lf.FaceName = QStringLiteral("DejaVu Sans");
    lf.Escapement = escapement;
    lf.Orientation = escapement;
    return lf;
}

} // namespace

TEST(CanvasText, ExtentGrowsWithHeightAndStyle)
{
    QImage image = Filled(10, 10, 0xFFFFFF);
    TCanvas canvas(&image);
    canvas.SelectLogFont(Font(-10));
    const TPoint small = canvas.TextExtent(QStringLiteral("Hello"));
    canvas.SelectLogFont(Font(-20));
    const TPoint large = canvas.TextExtent(QStringLiteral("Hello"));
    EXPECT_GT(small.X, 10);
    EXPECT_GT(large.X, small.X * 3 / 2);
    EXPECT_GT(large.Y, small.Y * 3 / 2);
    EXPECT_EQ(canvas.TextHeight(QStringLiteral("x")), large.Y);
    EXPECT_EQ(canvas.TextExtent(QString()).X, 0);
    // A positive height is the whole cell.
    for (int cell : {12, 20, 33}) {
        canvas.SelectLogFont(Font(cell));
        EXPECT_EQ(canvas.TextHeight(QStringLiteral("Ag")), cell);
    }
    // Bold widens, character spacing adds to every character, escapement does not count.
    TLogFont bold = Font(-20);
    bold.Weight = 700;
    canvas.SelectLogFont(bold);
    EXPECT_GT(canvas.TextWidth(QStringLiteral("Hello")), large.X);
    canvas.SelectLogFont(Font(-20, 450));
    EXPECT_EQ(canvas.TextExtent(QStringLiteral("Hello")), large);
    canvas.SetTextCharacterExtra(3);
    EXPECT_EQ(canvas.TextWidth(QStringLiteral("Hello")), large.X + 15);
}

TEST(CanvasText, TextCellHangsBelowAndRightOfThePoint)
{
    QImage image = Filled(120, 60, 0xFFFFFF);
    TCanvas canvas(&image);
    canvas.SelectLogFont(Font(-20));
    canvas.SetBkModeTransparent(true);
    const TPoint extent = canvas.TextExtent(QStringLiteral("Tg"));
    canvas.TextOut(30, 20, QStringLiteral("Tg"));
    canvas.Flush();
    const TRect ink = InkBounds(image, 0xFFFFFF);
    ASSERT_FALSE(ink.IsEmpty());
    EXPECT_GE(ink.Left, 30);
    EXPECT_GE(ink.Top, 20);
    EXPECT_LE(ink.Right, 30 + extent.X + 1);
    EXPECT_LE(ink.Bottom, 20 + extent.Y);
    // The T reaches near the top of the cell, the g below the baseline.
    EXPECT_LE(ink.Top, 20 + extent.Y / 3);
    EXPECT_GT(ink.Bottom, 20 + extent.Y * 2 / 3);
    // Aliased glyphs: only the font colour and the background occur.
    for (TPoint p : Ink(image, 0xFFFFFF))
        ASSERT_EQ(Rgb(image, p.X, p.Y), 0u);
}

TEST(CanvasText, OpaqueBackgroundAndFontColour)
{
    QImage image = Filled(120, 60, 0xFFFFFF);
    TCanvas canvas(&image);
    canvas.SelectLogFont(Font(-16));
    canvas.Font().Color = clBlue; // a colour change keeps the selected font
    canvas.Brush().Color = clYellow;
    canvas.SetBkModeTransparent(false);
    const TPoint extent = canvas.TextExtent(QStringLiteral("Wide"));
    canvas.TextOut(5, 7, QStringLiteral("Wide"));
    canvas.Flush();
    EXPECT_EQ(InkBounds(image, 0xFFFFFF), TRect(5, 7, 5 + extent.X, 7 + extent.Y));
    const int blue = CountPixels(image, image.rect(), 0x0000FF);
    const int yellow = CountPixels(image, image.rect(), 0xFFFF00);
    EXPECT_GT(blue, 20);
    EXPECT_EQ(blue + yellow, extent.X * extent.Y);
    EXPECT_EQ(canvas.LogFont().Height, -16);
}

TEST(CanvasText, EscapementTurnsCounterClockwiseAboutTheCorner)
{
    QImage image = Filled(100, 100, 0xFFFFFF);
    TCanvas canvas(&image);
    canvas.SelectLogFont(Font(-14, 900));
    canvas.SetBkModeTransparent(true);
    const TPoint extent = canvas.TextExtent(QStringLiteral("Rotated"));
    canvas.TextOut(40, 90, QStringLiteral("Rotated"));
    canvas.Flush();
    // Turned a quarter left, the text runs up from (40, 90) with its cell to the right.
    const TRect ink = InkBounds(image, 0xFFFFFF);
    ASSERT_FALSE(ink.IsEmpty());
    EXPECT_GE(ink.Left, 40);
    EXPECT_LE(ink.Right, 40 + extent.Y + 1);
    EXPECT_LE(ink.Bottom, 91);
    EXPECT_GE(ink.Top, 90 - extent.X - 1);
    EXPECT_GT(ink.Height(), ink.Width() * 2);
}

TEST(CanvasText, SetFontReplacesTheLogicalFont)
{
    QImage image = Filled(10, 10, 0xFFFFFF);
    TCanvas canvas(&image);
    canvas.SelectLogFont(Font(-30, 900));
    TFont font;
    font.Name = QStringLiteral("DejaVu Serif");
    font.SetHeight(-15);
    font.Style = fsBold | fsItalic | fsUnderline;
    font.Color = clRed;
    font.Charset = 134;
    canvas.SetFont(font);
    const TLogFont &lf = canvas.LogFont();
    EXPECT_EQ(lf.Height, -15);
    EXPECT_EQ(lf.Weight, 700);
    EXPECT_TRUE(lf.Italic);
    EXPECT_TRUE(lf.Underline);
    EXPECT_FALSE(lf.StrikeOut);
    EXPECT_EQ(lf.Charset, 134);
    EXPECT_EQ(lf.FaceName, QStringLiteral("DejaVu Serif"));
    EXPECT_EQ(lf.Escapement, 0);
    EXPECT_EQ(lf.Color, clRed);
    EXPECT_EQ(canvas.Font().Color, clRed);
    // Editing the canvas font directly takes effect at the next text call.
    const int before = canvas.TextHeight(QStringLiteral("x"));
    canvas.Font().SetHeight(-40);
    EXPECT_GT(canvas.TextHeight(QStringLiteral("x")), before * 2);
    EXPECT_EQ(canvas.LogFont().Height, -40);
}
