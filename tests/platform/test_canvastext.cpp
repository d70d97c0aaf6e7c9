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
