// SPDX-License-Identifier: MIT
// The canvas over a vector device: figures arrive as vector elements that cover the pixels an
// image canvas paints, and pen modes reduce to copy. (A PDF page of figures holding no picture
// is the command-line conversion test's.)
#include "canvas_helpers.h"

#include <tessal/platform/canvas.h>

#include <gtest/gtest.h>

#include <QBuffer>
#include <QPainter>
#include <QSvgGenerator>
#include <QSvgRenderer>

using namespace tessal;
using namespace tessal::test;

namespace {

constexpr int kWidth = 60, kHeight = 40;

// Figures that exercise the outline placement, the thin pen and the modes: a red box with a
// one-pixel black outline, a thin line, a green box in xor (drawn as copy), a nop box
// (nothing) and a white-mode box (white whatever the colours).
void DrawFigures(TCanvas &canvas)
{
    canvas.Pen() = TPen{clBlack, TPenMode::pmCopy, TPenStyle::psSolid, 1};
    canvas.Brush() = TBrush{0x0000FF, TBrushStyle::bsSolid, {}};
    canvas.Rectangle(TRect(10, 5, 30, 25));
    canvas.MoveTo(2, 35);
    canvas.LineTo(58, 35);
    canvas.Flush(); // ends nothing on a vector device: later figures still arrive
    canvas.Pen().Mode = TPenMode::pmXor;
    canvas.Brush().Color = 0x00FF00;
    canvas.Rectangle(TRect(35, 5, 45, 15));
    canvas.Pen().Mode = TPenMode::pmNop;
    canvas.Rectangle(TRect(35, 18, 45, 28));
    canvas.Pen().Mode = TPenMode::pmWhite;
    canvas.Brush().Color = 0x00FF00;
    canvas.Rectangle(TRect(48, 5, 58, 15));
}

QImage RenderedBack(const QByteArray &svg)
{
    QSvgRenderer renderer(svg);
    EXPECT_TRUE(renderer.isValid());
    QImage image = Filled(kWidth, kHeight, 0xFFFFFF);
    QPainter painter(&image);
    renderer.render(&painter, QRectF(0, 0, kWidth, kHeight));
    return image;
}

} // namespace

TEST(CanvasDevice, SvgHoldsFiguresCoveringTheImagePixels)
{
    QByteArray svg;
    {
        QBuffer buffer(&svg);
        buffer.open(QIODevice::WriteOnly);
        QSvgGenerator generator;
        generator.setOutputDevice(&buffer);
        generator.setSize(QSize(kWidth, kHeight));
        generator.setViewBox(QRect(0, 0, kWidth, kHeight));
        TCanvas canvas(static_cast<QPaintDevice *>(&generator));
        EXPECT_TRUE(canvas.IsVector());
        EXPECT_EQ(canvas.Target(), nullptr);
        DrawFigures(canvas);
        EXPECT_EQ(canvas.GetPixel(20, 15), clNone);
    }
    EXPECT_TRUE(svg.contains("<path") || svg.contains("<rect") || svg.contains("<polygon"));
    EXPECT_FALSE(svg.contains("<image"));

    const QImage reference = Painted(kWidth, kHeight, DrawFigures);
    const QImage drawn = RenderedBack(svg);
    // Inside, on and just beyond every edge of the box; the thin line; the mode boxes.
    const std::tuple<int, int, unsigned> probes[] = {
        {20, 15, 0xFF0000}, {10, 15, 0x000000}, {29, 15, 0x000000}, {20, 5, 0x000000},
        {20, 24, 0x000000}, {9, 15, 0xFFFFFF},  {30, 15, 0xFFFFFF}, {20, 25, 0xFFFFFF},
        {30, 35, 0x000000}, {30, 34, 0xFFFFFF}, {40, 10, 0x00FF00}, {40, 23, 0xFFFFFF},
        {53, 10, 0xFFFFFF}, {5, 5, 0xFFFFFF},
    };
    for (const auto &[x, y, rgb] : probes) {
        EXPECT_EQ(Rgb(drawn, x, y), rgb) << x << ", " << y;
        // The image canvas paints the same pixels except where xor combines with what is there.
        if (x < 35 || x > 45 || y > 15) {
            EXPECT_EQ(Rgb(reference, x, y), rgb) << "image " << x << ", " << y;
        }
    }
}
