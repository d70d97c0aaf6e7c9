// SPDX-License-Identifier: MIT
// Text on the canvas: logical fonts, placement, rotation, background and measurement.
#include "canvas_helpers.h"

#include <tessal/platform/canvas.h>

#include "common/imagecompare.h"

#include <gtest/gtest.h>

#include <tuple>

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

// The text drawn with a transparent background at (x, y), its extent and its ink bounds.
struct Drawn
{
    QImage Image;
    TPoint Extent;
    TRect Ink;
};
Drawn DrawText(int w, int h, const TLogFont &font, int x, int y, const QString &text)
{
    Drawn d;
    d.Image = Painted(w, h, [&](TCanvas &canvas) {
        canvas.SelectLogFont(font);
        canvas.SetBkModeTransparent(true);
        d.Extent = canvas.TextExtent(text);
        canvas.TextOut(x, y, text);
    });
    d.Ink = InkBounds(d.Image, 0xFFFFFF);
    return d;
}

} // namespace

// (That the extent grows with the font's height is the scaled text test's.)
TEST(CanvasText, ExtentsAndTheLogicalFontSetFontReplaces)
{
    QImage image = Filled(10, 10, 0xFFFFFF);
    TCanvas canvas(&image);
    const QString hello = QStringLiteral("Hello");
    canvas.SelectLogFont(Font(-20));
    const TPoint large = canvas.TextExtent(hello);
    EXPECT_GT(large.X, 20);
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
    EXPECT_GT(canvas.TextWidth(hello), large.X);
    canvas.SelectLogFont(Font(-20, 450));
    EXPECT_EQ(canvas.TextExtent(hello), large);
    canvas.SetTextCharacterExtra(3);
    EXPECT_EQ(canvas.TextWidth(hello), large.X + 15);

    // SetFont replaces the logical font.
    canvas.SelectLogFont(Font(-30, 900));
    TFont font;
    font.Name = QStringLiteral("DejaVu Serif");
    font.SetHeight(-15);
    font.Style = fsBold | fsItalic | fsUnderline;
    font.Color = clRed;
    font.Charset = 134;
    canvas.SetFont(font);
    const TLogFont &lf = canvas.LogFont();
    EXPECT_EQ(std::tuple(lf.Height, lf.Weight, lf.Italic, lf.Underline, lf.StrikeOut, lf.Charset,
                         lf.Escapement, lf.Color),
              std::tuple(-15, 700, true, true, false, 134, 0, TColor(clRed)));
    EXPECT_EQ(lf.FaceName, QStringLiteral("DejaVu Serif"));
    EXPECT_EQ(canvas.Font().Color, clRed);
    // Editing the canvas font directly takes effect at the next text call.
    const int before = canvas.TextHeight(QStringLiteral("x"));
    canvas.Font().SetHeight(-40);
    EXPECT_GT(canvas.TextHeight(QStringLiteral("x")), before * 2);
    EXPECT_EQ(canvas.LogFont().Height, -40);
}

TEST(CanvasText, PlacementOfPlainAndTurnedText)
{
    // The text cell hangs below and right of the point; the T reaches near the top of the
    // cell, the g below the baseline.
    const Drawn plain = DrawText(120, 60, Font(-20), 30, 20, QStringLiteral("Tg"));
    const TRect ink = plain.Ink;
    ASSERT_FALSE(ink.IsEmpty());
    EXPECT_GE(ink.Left, 30);
    EXPECT_LE(ink.Right, 30 + plain.Extent.X + 1);
    EXPECT_GE(ink.Top, 20);
    EXPECT_LE(ink.Top, 20 + plain.Extent.Y / 3);
    EXPECT_GT(ink.Bottom, 20 + plain.Extent.Y * 2 / 3);
    EXPECT_LE(ink.Bottom, 20 + plain.Extent.Y);
    // Aliased glyphs: only the font colour and the background occur.
    for (TPoint p : Ink(plain.Image, 0xFFFFFF))
        ASSERT_EQ(Rgb(plain.Image, p.X, p.Y), 0u);

    // Turned a quarter left, the text runs up from (40, 90) with its cell to the right.
    const Drawn turned = DrawText(100, 100, Font(-14, 900), 40, 90, QStringLiteral("Rotated"));
    const TRect up = turned.Ink;
    ASSERT_FALSE(up.IsEmpty());
    EXPECT_GE(up.Left, 40);
    EXPECT_LE(up.Right, 40 + turned.Extent.Y + 1);
    EXPECT_LE(up.Bottom, 91);
    EXPECT_GE(up.Top, 90 - turned.Extent.X - 1);
    EXPECT_GT(up.Height(), up.Width() * 2);
}

TEST(CanvasText, OpaqueBackgroundAndFontColour)
{
    TPoint extent;
    const QImage image = Painted(120, 60, [&](TCanvas &canvas) {
        canvas.SelectLogFont(Font(-16));
        canvas.Font().Color = clBlue; // a colour change keeps the selected font
        canvas.Brush().Color = clYellow;
        canvas.SetBkModeTransparent(false);
        extent = canvas.TextExtent(QStringLiteral("Wide"));
        canvas.TextOut(5, 7, QStringLiteral("Wide"));
        EXPECT_EQ(canvas.LogFont().Height, -16);
    });
    EXPECT_EQ(InkBounds(image, 0xFFFFFF), TRect(5, 7, 5 + extent.X, 7 + extent.Y));
    const int blue = CountPixels(image, image.rect(), 0x0000FF);
    EXPECT_GT(blue, 20);
    EXPECT_EQ(blue + CountPixels(image, image.rect(), 0xFFFF00), extent.X * extent.Y);
}
