// SPDX-License-Identifier: MIT
// Handle marks and canvas set-ups, checked on the pixels they leave.
#include <tessal/geometry/canvasmodes.h>

#include "common/imagecompare.h"
#include "platform/canvas_helpers.h"

#include <gtest/gtest.h>

#include <array>

namespace tessal {
namespace {

using test::CountPixels;
using test::Rgb;

constexpr unsigned White = 0xFFFFFF;
constexpr unsigned Black = 0x000000;
constexpr unsigned Green = 0x00FF00;
constexpr unsigned Grey = 0x808080;
constexpr unsigned Blue = 0x0000FF; // as 0xRRGGBB

// One handle at p, by default (10, 10).
QImage Handle(const THandleLook &look, TMyPoint p = MyPoint(10, 10))
{
    return test::Painted(32, 32, [&](TCanvas &canvas) { DrawSquare(canvas, p, look); });
}

bool Blank(const QImage &image)
{
    return CountPixels(image, image.rect(), White) == 32 * 32;
}

// A square handle of half-side h about (10, 10): frame from 10 - h to 10 + h - 1 (right and
// bottom exclusive), fill inside.
void ExpectSquare(const QImage &image, int h, unsigned fill)
{
    const int lo = 10 - h;
    const int hi = 10 + h - 1;
    EXPECT_EQ((std::array{Rgb(image, lo, lo), Rgb(image, hi, hi), Rgb(image, hi, lo),
                          Rgb(image, lo - 1, 10), Rgb(image, hi + 1, 10)}),
              (std::array{Black, Black, Black, White, White}));
    const int inner = 2 * h - 2;
    EXPECT_EQ(CountPixels(image, QRect(lo + 1, lo + 1, inner, inner), fill), inner * inner);
    EXPECT_EQ(CountPixels(image, image.rect(), fill), inner * inner);
    EXPECT_EQ(CountPixels(image, image.rect(), Black), 4 * (2 * h - 1));
}

TEST(CanvasModes, HandleSizesShapesAndColours)
{
    // Grouped handles are half size (5 / 2 = 2: integer halving), locked ones grey.
    // clang-format off
    const struct { int HotSize; bool Locked, Grouped; int Half; unsigned Fill; } squares[] = {
        {4, false, false, 4, Green}, {4, false, true, 2, Green},
        {5, true, false, 5, Grey}, {5, true, true, 2, Grey}};
    // clang-format on
    for (const auto &s : squares) {
        SCOPED_TRACE(&s - squares);
        THandleLook look;
        look.HotSize = s.HotSize;
        look.Locked = s.Locked;
        look.Grouped = s.Grouped;
        ExpectSquare(Handle(look), s.Half, s.Fill);
        look.HotShow = false;
        EXPECT_TRUE(Blank(Handle(look)));
    }

    // Point tools show circles, and only for rotatable shapes.
    THandleLook look;
    look.PointTool = true;
    look.HotSize = 6;
    const QImage circle = Handle(look);
    EXPECT_EQ(Rgb(circle, 10, 10), Green);
    EXPECT_EQ(Rgb(circle, 4, 4), White); // corner of the box: outside the circle
    EXPECT_EQ(Rgb(circle, 15, 15), White);
    EXPECT_NE(Rgb(circle, 4, 10), White); // left edge of the circle
    const int circlePixels = 32 * 32 - CountPixels(circle, circle.rect(), White);
    EXPECT_GT(circlePixels, 90);
    EXPECT_LT(circlePixels, 12 * 12);
    look.Grouped = true; // grouped: a square of half-side 3 even with a point tool
    ExpectSquare(Handle(look), 3, Green);
    look.RotateEnable = false;
    EXPECT_TRUE(Blank(Handle(look)));
    look.Grouped = false;
    EXPECT_TRUE(Blank(Handle(look)));
    look.PointTool = false; // other tools ignore RotateEnable
    ExpectSquare(Handle(look), 6, Green);

    // The hot colour is shared and settable.
    EXPECT_EQ(HotColor(), clLime);
    SetHotColor(clRed);
    const QImage red = Handle(THandleLook{});
    SetHotColor(clLime);
    EXPECT_EQ(CountPixels(red, red.rect(), 0xFF0000), 36);
    EXPECT_EQ(CountPixels(red, red.rect(), Green), 0);
}

TEST(CanvasModes, HandleCornersRoundToEven)
{
    // Hot size 4. p = 10.5: corners 6.5 -> 6 and 14.5 -> 14, the same square as at 10.
    ExpectSquare(Handle(THandleLook{}, MyPoint(10.5f, 10.5f)), 4, Green);
    // p = 11.5: corners 7.5 -> 8 and 15.5 -> 16, one pixel further.
    const QImage shifted = Handle(THandleLook{}, MyPoint(11.5f, 11.5f));
    EXPECT_EQ((std::array{Rgb(shifted, 8, 8), Rgb(shifted, 15, 15), Rgb(shifted, 7, 8)}),
              (std::array{Black, Black, White}));
}

TEST(CanvasModes, LinkSquareIsABlueCross)
{
    // Corners 7.5 -> 8 and 12.5 -> 12: diagonals of the square (8, 8) - (12, 12).
    const QImage image = test::Painted(32, 32, [](TCanvas &canvas) {
        DrawLinkSquare(canvas, MyPoint(10, 10));
        // The cross leaves the canvas with a copy-mode blue pen and the hot brush.
        EXPECT_EQ(canvas.Pen().Color, clBlue);
        EXPECT_EQ(canvas.Pen().Mode, TPenMode::pmCopy);
        EXPECT_EQ(canvas.Brush().Color, HotColor());
    });
    for (int i : {9, 10, 11}) {
        EXPECT_EQ(Rgb(image, i, i), Blue);
        EXPECT_EQ(Rgb(image, 20 - i, i), Blue);
    }
    for (auto [x, y] : {std::pair{10, 8}, {8, 10}, {13, 13}})
        EXPECT_EQ(Rgb(image, x, y), White) << x << "," << y;
    EXPECT_EQ(CountPixels(image, QRect(14, 0, 18, 32), White), 18 * 32);
    EXPECT_EQ(CountPixels(image, image.rect(), Green), 0);

    // At 11 the corners are 8.5 -> 8 and 13.5 -> 14: a wider cross.
    const QImage wide =
        test::Painted(32, 32, [](TCanvas &canvas) { DrawLinkSquare(canvas, MyPoint(11, 11)); });
    EXPECT_EQ(Rgb(wide, 13, 13), Blue);
    EXPECT_EQ(Rgb(wide, 9, 13), Blue);
}

TEST(CanvasModes, PenAndBrushSetUps)
{
    QImage image(4, 4, QImage::Format_RGB32);
    TCanvas canvas(&image);
    SetDragResizeRotateShapeMode(canvas);
    EXPECT_EQ(canvas.Pen(), (TPen{clWhite, TPenMode::pmXor, TPenStyle::psDot, 1}));
    EXPECT_EQ(canvas.Brush().Style, TBrushStyle::bsClear);

    const TPen pen{clRed, TPenMode::pmXor, TPenStyle::psDash, 3};
    TFont font;
    font.Name = "Serif";
    font.SetSize(20);
    SetDrawTriangleMode(pen, font, canvas);
    EXPECT_EQ(canvas.Pen(), (TPen{clRed, TPenMode::pmCopy, TPenStyle::psDash, 3}));
    EXPECT_EQ(canvas.Brush(), (TBrush{clRed, TBrushStyle::bsSolid, {}}));
    EXPECT_EQ(canvas.Font(), font);

    // The shape mode copies pen and brush with mode copy, and turns them grey on
    // black-and-white printers only: (10 + 20 + 40) / 3 = 23, (200 + 100 + 1) / 3 = 100.
    const TPen shapePen{RGBToColor(10, 20, 40), TPenMode::pmXor, TPenStyle::psDashDot, 2};
    TBrush brush{RGBToColor(200, 100, 1), TBrushStyle::bsCross, {}};
    for (auto [printer, colours, grey] :
         {std::tuple{false, 0, false}, std::tuple{true, 256, false}, std::tuple{true, 2, true}}) {
        SCOPED_TRACE(colours);
        canvas.SetPrinter(printer, colours);
        SetDrawShapeMode(shapePen, brush, canvas);
        EXPECT_EQ(canvas.Pen(), (TPen{grey ? RGBToColor(23, 23, 23) : shapePen.Color,
                                      TPenMode::pmCopy, TPenStyle::psDashDot, 2}));
        EXPECT_EQ(
            canvas.Brush(),
            (TBrush{grey ? RGBToColor(100, 100, 100) : brush.Color, TBrushStyle::bsCross, {}}));
    }
    brush.Style = TBrushStyle::bsClear;
    SetDrawShapeMode(TPen{clWindowText, TPenMode::pmCopy, TPenStyle::psSolid, 1}, brush, canvas);
    EXPECT_EQ(canvas.Brush().Style, TBrushStyle::bsClear);
    EXPECT_EQ(canvas.Pen().Color, RGBToColor(0, 0, 0)); // system colours resolve first

    // The rubber band erases itself when drawn twice; hollow, it leaves the inside.
    QImage band(40, 30, QImage::Format_RGB32);
    band.fill(QColor(30, 120, 200));
    const QImage before = band.copy();
    TCanvas rubber(&band);
    SetDragResizeRotateShapeMode(rubber);
    rubber.Rectangle(TRect(5, 5, 30, 20));
    rubber.Flush();
    EXPECT_GT(test::CompareImages(before, band).DifferingPixels, 10);
    EXPECT_EQ(Rgb(band, 17, 12), Rgb(before, 17, 12));
    rubber.Rectangle(TRect(5, 5, 30, 20));
    rubber.Flush();
    EXPECT_TRUE(test::ImagesEqual(before, band));
}

TEST(CanvasModes, DiamondAndLine)
{
    const QImage image = test::Painted(32, 32, [](TCanvas &canvas) {
        canvas.Brush().Color = clRed;
        DrawDiamond(canvas, MyPoint(15.5f, 16), 6); // corners (10,16) (16,10) (22,16) (16,22)
    });
    EXPECT_EQ((std::array{Rgb(image, 16, 16), Rgb(image, 11, 11), Rgb(image, 20, 20)}),
              (std::array{0xFF0000u, White, White}));
    EXPECT_EQ(CountPixels(image, QRect(0, 0, 9, 32), White), 9 * 32);
    EXPECT_EQ(CountPixels(image, QRect(24, 0, 8, 32), White), 8 * 32);

    const QImage line = test::Painted(32, 32, [](TCanvas &canvas) {
        LineDraw(canvas, MyPoint(2.5f, 4.5f), MyPoint(20.4f, 4.4f)); // y 4.5 -> 4, 4.4 -> 4
    });
    // x 2.5 -> 2 and 20.4 -> 20, the end pixel excluded: pixels 2..19 of row 4 and no others.
    EXPECT_EQ(CountPixels(line, QRect(2, 4, 18, 1), Black), 18);
    EXPECT_EQ(CountPixels(line, line.rect(), White), 32 * 32 - 18);
}

} // namespace
} // namespace tessal
