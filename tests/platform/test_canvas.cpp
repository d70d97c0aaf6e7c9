// SPDX-License-Identifier: MIT
// Pixel rules of the canvas: pen modes, exclusive edges, styles, regions, clipping, paths
// and world transforms.
#include "canvas_helpers.h"

#include <tessal/platform/canvas.h>

#include "common/imagecompare.h"

#include <gtest/gtest.h>

#include <array>
#include <tuple>

using namespace tessal;
using namespace tessal::test;

namespace {

constexpr unsigned kDest = 0x123456; // as 0xRRGGBB
constexpr QImage::Format kFormats[] = {QImage::Format_RGB32, QImage::Format_ARGB32,
                                       QImage::Format_BGR888};

// Each pen mode applied to pen 0x00FF00 over 0x123456, worked out by hand.
struct ModeCase
{
    TPenMode Mode;
    unsigned Expected;
};
constexpr ModeCase kModes[] = {
    {TPenMode::pmBlack, 0x000000},       {TPenMode::pmWhite, 0xFFFFFF},
    {TPenMode::pmNop, 0x123456},         {TPenMode::pmNot, 0xEDCBA9},
    {TPenMode::pmCopy, 0x00FF00},        {TPenMode::pmNotCopy, 0xFF00FF},
    {TPenMode::pmMergePenNot, 0xEDFFA9}, {TPenMode::pmMaskPenNot, 0x00CB00},
    {TPenMode::pmMergeNotPen, 0xFF34FF}, {TPenMode::pmMaskNotPen, 0x120056},
    {TPenMode::pmMerge, 0x12FF56},       {TPenMode::pmNotMerge, 0xED00A9},
    {TPenMode::pmMask, 0x003400},        {TPenMode::pmNotMask, 0xFFCBFF},
    {TPenMode::pmXor, 0x12CB56},         {TPenMode::pmNotXor, 0xED34A9},
};

} // namespace

TEST(CanvasPenMode, EveryModeOnEveryFormat)
{
    for (QImage::Format format : kFormats) {
        for (const ModeCase &c : kModes) {
            const QImage image = Painted(
                8, 6,
                [&](TCanvas &canvas) {
                    canvas.Pen().Color = RGBToColor(0, 0xFF, 0);
                    canvas.Pen().Mode = c.Mode;
                    canvas.MoveTo(1, 1);
                    canvas.LineTo(6, 1);
                    // A hollow rectangle goes through the same mode.
                    canvas.Brush().Style = TBrushStyle::bsClear;
                    canvas.Rectangle({1, 3, 7, 6});
                },
                kDest, format);
            SCOPED_TRACE(::testing::Message() << "format " << format << " mode " << int(c.Mode));
            // The line covers 1..5, not the end pixel 6; the outline 14 pixels.
            for (int x = 0; x < 8; ++x)
                ASSERT_EQ(Rgb(image, x, 1), x >= 1 && x < 6 ? c.Expected : kDest) << "x " << x;
            EXPECT_EQ(Rgb(image, 6, 5), c.Expected);
            EXPECT_EQ(Rgb(image, 3, 4), kDest); // hollow inside
            EXPECT_EQ(CountPixels(image, QRect(0, 3, 8, 3), c.Expected),
                      c.Expected == kDest ? 24 : 14);
            if (format == QImage::Format_ARGB32) {
                EXPECT_EQ(qAlpha(image.pixel(2, 1)), 255);
            }
        }
    }
}

TEST(CanvasPenMode, FilledFiguresTouchEachPixelOnce)
{
    // With both a pen and a brush, xor and not-xor must still give pen ^ dest on the outline
    // and brush ^ dest inside, and a second drawing must restore the original exactly.
    // clang-format off
    const struct { TPenMode Mode; unsigned Outline, Inside; } cases[] = {
        {TPenMode::pmXor, 0x12CB56, 0x123456 ^ 0x0000FF},
        {TPenMode::pmNotXor, 0xED34A9, ~(0x123456u ^ 0x0000FF) & 0xFFFFFF},
        {TPenMode::pmNot, 0xEDCBA9, 0xEDCBA9}};
    // clang-format on
    const TPoint star[] = {{20, 0}, {32, 28}, {2, 10}, {38, 10}, {8, 28}};
    for (QImage::Format format : kFormats) {
        for (const auto &c : cases) {
            const auto drawAll = [&](TCanvas &canvas) {
                canvas.Pen().Color = RGBToColor(0, 0xFF, 0);
                canvas.Pen().Mode = c.Mode;
                canvas.Brush().Color = RGBToColor(0, 0, 0xFF);
                canvas.Rectangle({1, 1, 9, 7});
                canvas.Ellipse({10, 1, 30, 9});
                canvas.Polygon(star);
            };
            QImage image = Painted(40, 30, drawAll, kDest, format);
            SCOPED_TRACE(::testing::Message() << "format " << format << " mode " << int(c.Mode));
            EXPECT_EQ((std::array{Rgb(image, 1, 1), Rgb(image, 8, 6), Rgb(image, 4, 3),
                                  Rgb(image, 9, 3), Rgb(image, 12, 4)}),
                      (std::array{c.Outline, c.Outline, c.Inside, kDest, c.Inside}));
            {
                TCanvas canvas(&image);
                drawAll(canvas);
            }
            EXPECT_TRUE(ImagesEqual(image, Filled(40, 30, kDest, format)));
        }
    }
}

// Whichever way a line runs, it covers its start pixel and not its end pixel, and drawing
// it back the other way in xor mode leaves exactly the two end pixels. A polyline draws
// each joint once. (A polyline's pixels are the thin stroke tests'; LineTo takes its own way.)
TEST(CanvasLines, StartPixelInEndPixelOutAndJointsOnce)
{
    const TPoint ends[][2] = {{{5, 10}, {15, 10}}, {{15, 10}, {5, 10}}, {{10, 5}, {10, 15}},
                              {{10, 15}, {10, 5}}, {{5, 5}, {15, 15}},  {{15, 15}, {5, 5}},
                              {{15, 5}, {5, 15}},  {{5, 15}, {15, 5}},  {{5, 8}, {15, 12}},
                              {{15, 12}, {5, 8}}};
    for (const auto &[from, to] : ends) {
        SCOPED_TRACE(testing::Message()
                     << from.X << "," << from.Y << " -> " << to.X << "," << to.Y);
        const auto draw = [&, from = from, to = to](TCanvas &canvas) {
            canvas.MoveTo(from.X, from.Y);
            canvas.LineTo(to.X, to.Y);
            EXPECT_EQ(canvas.PenPos(), to);
        };
        const QImage image = Painted(20, 20, draw);
        EXPECT_EQ(Rgb(image, from.X, from.Y), 0u);
        EXPECT_EQ(Rgb(image, to.X, to.Y), 0xFFFFFFu);
        EXPECT_EQ(20 * 20 - CountPixels(image, image.rect(), 0xFFFFFF), 10);
        const QImage there = Painted(
            20, 20,
            [&, from = from](TCanvas &canvas) {
                canvas.Pen().Color = clWhite;
                canvas.Pen().Mode = TPenMode::pmXor;
                draw(canvas);
                canvas.LineTo(from.X, from.Y);
            },
            0);
        const bool fromFirst = std::tie(from.Y, from.X) < std::tie(to.Y, to.X);
        const std::vector<TPoint> endsOnly =
            fromFirst ? std::vector<TPoint>{from, to} : std::vector<TPoint>{to, from};
        EXPECT_EQ(Ink(there, 0), endsOnly);
    }
    // A closed polyline in xor mode: every corner is drawn exactly once.
    const QImage square = Painted(
        10, 10,
        [](TCanvas &canvas) {
            canvas.Pen().Color = clWhite;
            canvas.Pen().Mode = TPenMode::pmXor;
            const TPoint pts[] = {{1, 1}, {6, 1}, {6, 6}, {1, 6}, {1, 1}};
            canvas.Polyline(pts);
        },
        0);
    EXPECT_EQ(CountPixels(square, square.rect(), 0xFFFFFF), 20);
    EXPECT_EQ(InkBounds(square, 0), TRect(1, 1, 7, 7));
}

// Rectangles end before their right and bottom edges (without a pen one pixel earlier
// still); an ellipse is inscribed in the same box and symmetric.
TEST(CanvasFigures, RightAndBottomEdgesAreExclusive)
{
    const QImage image = Painted(30, 12, [](TCanvas &canvas) {
        canvas.Brush().Color = clRed;
        canvas.Rectangle({2, 2, 7, 6});
        canvas.Pen().Style = TPenStyle::psClear;
        canvas.Rectangle({9, 2, 14, 6});
        canvas.FillRect({16, 2, 21, 6});
        canvas.Brush().Color = clBlue;
        canvas.FrameRect({23, 2, 28, 6});
    });
    EXPECT_EQ(CountPixels(image, QRect(0, 0, 8, 12), 0x000000), 14);
    EXPECT_EQ(CountPixels(image, QRect(0, 0, 8, 12), 0xFF0000), 6);
    EXPECT_EQ(InkBounds(image.copy(0, 0, 8, 12), 0xFFFFFF), TRect(2, 2, 7, 6));
    EXPECT_EQ(InkBounds(image.copy(8, 0, 7, 12), 0xFFFFFF), TRect(1, 2, 5, 5));
    EXPECT_EQ(CountPixels(image, QRect(15, 0, 7, 12), 0xFF0000), 20);
    EXPECT_EQ(InkBounds(image.copy(15, 0, 7, 12), 0xFFFFFF), TRect(1, 2, 6, 6));
    EXPECT_EQ(CountPixels(image, QRect(22, 0, 8, 12), 0x0000FF), 14);
    EXPECT_EQ(InkBounds(image.copy(22, 0, 8, 12), 0xFFFFFF), TRect(1, 2, 6, 6));

    const QImage ellipse = Painted(24, 16, [](TCanvas &canvas) {
        canvas.Brush().Style = TBrushStyle::bsClear;
        canvas.Ellipse({2, 1, 21, 14});
    });
    EXPECT_EQ(InkBounds(ellipse, 0xFFFFFF), TRect(2, 1, 21, 14));
    // Mirror symmetry about the centre of pixels 2..20 and 1..13.
    for (TPoint p : Ink(ellipse, 0xFFFFFF)) {
        EXPECT_EQ(Rgb(ellipse, 22 - p.X, p.Y), 0u) << p.X << "," << p.Y;
        EXPECT_EQ(Rgb(ellipse, p.X, 14 - p.Y), 0u) << p.X << "," << p.Y;
    }
    EXPECT_EQ(Rgb(ellipse, 11, 7), 0xFFFFFFu);
}

TEST(CanvasPens, StylesAndWidths)
{
    const auto line = [](TPenStyle style, int width) {
        return Painted(60, 9, [&](TCanvas &canvas) {
            canvas.Pen().Style = style;
            canvas.Pen().Width = width;
            canvas.MoveTo(0, 4);
            canvas.LineTo(60, 4);
        });
    };
    const auto bits = [](const QImage &image) {
        QString out;
        for (int x = 0; x < 60; ++x)
            out += Rgb(image, x, 4) == 0 ? '#' : '.';
        return out;
    };
    const QString dash = QString(18, '#') + QString(6, '.');
    // clang-format off
    const struct { TPenStyle Style; int Width; QString Prefix; } cases[] = {
        {TPenStyle::psSolid, 1, QString(60, '#')}, {TPenStyle::psSolid, 0, QString(60, '#')},
        {TPenStyle::psInsideFrame, 1, QString(60, '#')}, {TPenStyle::psClear, 1, QString(60, '.')},
        {TPenStyle::psDash, 1, dash + dash}, {TPenStyle::psDot, 1, "###...###..."},
        {TPenStyle::psDashDot, 1, "#########......###......"},
        {TPenStyle::psDashDotDot, 1, "#########...###...###..."},
        {TPenStyle::psAlternate, 1, "#.#.#."}};
    // clang-format on
    for (const auto &c : cases)
        EXPECT_EQ(bits(line(c.Style, c.Width)).left(c.Prefix.size()), c.Prefix)
            << int(c.Style) << " width " << c.Width;
    // A wide pen is solid and centred on the line; a styled wide pen draws solid too.
    const QImage wide = line(TPenStyle::psDash, 3);
    EXPECT_EQ(bits(wide).mid(2, 56), QString(56, '#'));
    EXPECT_EQ(InkBounds(wide.copy(30, 0, 1, 9), 0xFFFFFF), TRect(0, 3, 1, 6)); // rows 3 to 5
}

TEST(CanvasPens, InsideFrameKeepsAWideOutlineInsideTheBox)
{
    const auto frame = [](TPenStyle style) {
        return Painted(30, 30, [&](TCanvas &canvas) {
            canvas.Pen().Style = style;
            canvas.Pen().Width = 4;
            canvas.Brush().Style = TBrushStyle::bsClear;
            canvas.Rectangle({5, 5, 25, 25});
        });
    };
    const QImage inside = frame(TPenStyle::psInsideFrame);
    EXPECT_EQ(InkBounds(inside, 0xFFFFFF), TRect(5, 5, 25, 25));
    EXPECT_EQ(Rgb(inside, 8, 15), 0u);
    EXPECT_EQ(Rgb(inside, 9, 15), 0xFFFFFFu);
    const TRect outer = InkBounds(frame(TPenStyle::psSolid), 0xFFFFFF);
    EXPECT_LT(outer.Left, 5);
    EXPECT_GT(outer.Right, 25);
}

TEST(CanvasPens, GeometricJoinsAndCaps)
{
    const auto draw = [](TPenJoin join, TPenEndCap cap) {
        return Painted(40, 40, [&](TCanvas &canvas) {
            canvas.Pen().Width = 8;
            canvas.SetGeometricPen(join, cap);
            const TPoint pts[] = {{10, 30}, {20, 10}, {30, 30}};
            canvas.Polyline(pts);
        });
    };
    const auto inked = [](const QImage &image) { return Ink(image, 0xFFFFFF).size(); };
    const QImage miter = draw(TPenJoin::pjMiter, TPenEndCap::pecFlat);
    const QImage bevel = draw(TPenJoin::pjBevel, TPenEndCap::pecFlat);
    const std::size_t nRound = inked(draw(TPenJoin::pjRound, TPenEndCap::pecFlat));
    EXPECT_GT(inked(miter), nRound);
    EXPECT_GT(nRound, inked(bevel));
    EXPECT_LT(InkBounds(miter, 0xFFFFFF).Top, InkBounds(bevel, 0xFFFFFF).Top);
    const std::size_t nRoundCap = inked(draw(TPenJoin::pjMiter, TPenEndCap::pecRound));
    EXPECT_GT(inked(draw(TPenJoin::pjMiter, TPenEndCap::pecSquare)), nRoundCap);
    EXPECT_GT(nRoundCap, inked(miter));
    // The mask values behave as the defaults.
    EXPECT_TRUE(ImagesEqual(draw(TPenJoin::pjMask, TPenEndCap::pecFlat), miter));
    EXPECT_TRUE(ImagesEqual(draw(TPenJoin::pjMiter, TPenEndCap::pecMask), miter));
}

TEST(CanvasBrushes, HatchesRunTheRightWay)
{
    const auto fill = [](TBrushStyle style) {
        return Painted(16, 16, [&](TCanvas &canvas) {
            canvas.Brush().Style = style;
            canvas.Brush().Color = clBlack;
            canvas.FillRect({0, 0, 16, 16});
        });
    };
    const QImage horizontal = fill(TBrushStyle::bsHorizontal);
    int fullRows = 0;
    for (int y = 0; y < 16; ++y)
        fullRows += CountPixels(horizontal, QRect(0, y, 16, 1), 0) == 16 ? 1 : 0;
    EXPECT_GE(fullRows, 2);
    EXPECT_EQ(CountPixels(horizontal, horizontal.rect(), 0), fullRows * 16);
    // Forward diagonal: down to the right; backward diagonal: up to the right.
    const QImage forward = fill(TBrushStyle::bsFDiagonal);
    for (auto [image, dy] : {std::pair{forward, 1}, {fill(TBrushStyle::bsBDiagonal), -1}})
        for (TPoint p : Ink(image, 0xFFFFFF))
            if (p.X < 15 && p.Y + dy >= 0 && p.Y + dy < 16) {
                EXPECT_EQ(Rgb(image, p.X + 1, p.Y + dy), 0u) << dy << ": " << p.X << "," << p.Y;
            }
    EXPECT_GT(Ink(fill(TBrushStyle::bsDiagCross), 0xFFFFFF).size(), Ink(forward, 0xFFFFFF).size());
    EXPECT_TRUE(Ink(fill(TBrushStyle::bsClear), 0xFFFFFF).empty());
}

TEST(CanvasRegions, AlternateAndWindingDifferAtTheStarCentre)
{
    const TPoint star[] = {{50, 0}, {79, 90}, {2, 35}, {97, 35}, {21, 90}};
    const TRegion alternate(star, TFillMode::fmAlternate);
    const TRegion winding(star, TFillMode::fmWinding);
    EXPECT_FALSE(alternate.Contains({49, 50})); // the centre
    EXPECT_TRUE(winding.Contains({49, 50}));
    EXPECT_EQ(winding.Bounds(), TRect(2, 0, 97, 90));
    // Filling a region paints exactly the pixels it contains.
    for (const TRegion *region : {&alternate, &winding}) {
        const QImage image = Painted(100, 100, [&](TCanvas &canvas) {
            TBrush brush;
            brush.Color = clBlack;
            canvas.FillRgn(*region, brush);
        });
        EXPECT_EQ(RegionMismatches(image, *region, 0xFFFFFF), 0);
    }
    // The centre pixel of a rectangle region follows the exclusive edges.
    const TRegion rect = TRegion::FromRect({3, 3, 6, 6});
    EXPECT_EQ((std::array{rect.Contains({5, 5}), rect.Contains({6, 5}), rect.Contains({2, 3})}),
              (std::array{true, false, false}));
}

TEST(CanvasRegions, ClippingLimitsDrawingUntilRemoved)
{
    QImage image = Filled(20, 20, 0xFFFFFF);
    TCanvas canvas(&image);
    canvas.Brush().Color = clBlack;
    const TRect clip{2, 2, 5, 5};
    canvas.SelectClipRect(&clip);
    canvas.FillRect({0, 0, 20, 20});
    canvas.Flush();
    EXPECT_EQ(InkBounds(image, 0xFFFFFF), clip);
    EXPECT_EQ(Ink(image, 0xFFFFFF).size(), 9u);

    image.fill(Qt::white);
    const TPoint triangle[] = {{1, 1}, {18, 3}, {6, 17}};
    const TRegion region(triangle, TFillMode::fmAlternate);
    canvas.SelectClipRgn(&region);
    canvas.Brush().Color = clRed;
    canvas.Rectangle({0, 0, 20, 20});
    canvas.Flush();
    EXPECT_EQ(RegionMismatches(image, region, 0xFFFFFF), 0);

    canvas.SelectClipRgn(nullptr);
    canvas.FillRect({0, 0, 20, 20});
    canvas.Flush();
    EXPECT_EQ(CountPixels(image, image.rect(), 0xFF0000), 400);
}

TEST(CanvasPaths, FlattenedEllipseLiesOnTheEllipse)
{
    QImage image = Filled(120, 80, 0xFFFFFF);
    TCanvas canvas(&image);
    canvas.BeginPath();
    EXPECT_TRUE(canvas.InPath());
    canvas.Ellipse({0, 0, 101, 61}); // recorded, not drawn
    canvas.EndPath();
    canvas.Flush();
    EXPECT_TRUE(Ink(image, 0xFFFFFF).empty());
    canvas.FlattenPath();
    const std::vector<TPoint> points = canvas.GetPathPoints();
    ASSERT_GE(points.size(), 16u);
    for (TPoint p : points) {
        // The figure spans pixels 0..100 x 0..60: centre (50, 30), radii 50 and 30.
        const double u = (p.X - 50) / 50.0, v = (p.Y - 30) / 30.0;
        EXPECT_NEAR(u * u + v * v, 1.0, 0.05) << p.X << "," << p.Y;
    }
    EXPECT_EQ(points.front(), points.back());
    canvas.StrokePath();
    canvas.Flush();
    EXPECT_EQ(InkBounds(image, 0xFFFFFF), TRect(0, 0, 101, 61));
    EXPECT_TRUE(canvas.GetPathPoints().empty()); // a path is used up by drawing it
}

TEST(CanvasPaths, RecordedLinesFillAndStroke)
{
    QImage image = Filled(30, 30, 0xFFFFFF);
    TCanvas canvas(&image);
    canvas.BeginPath();
    canvas.MoveTo(5, 5);
    canvas.LineTo(25, 5);
    canvas.LineTo(25, 25);
    canvas.LineTo(5, 25);
    canvas.CloseFigure();
    canvas.EndPath();
    EXPECT_EQ(canvas.GetPathPoints(),
              (std::vector<TPoint>{{5, 5}, {25, 5}, {25, 25}, {5, 25}, {5, 5}}));
    canvas.Brush().Color = clRed;
    canvas.FillPath();
    canvas.Flush();
    EXPECT_EQ(CountPixels(image, image.rect(), 0xFF0000), 400); // 5..24 both ways
    EXPECT_EQ(CountPixels(image, image.rect(), 0), 0);

    image.fill(Qt::white);
    canvas.BeginPath();
    const TPoint tri[] = {{2, 2}, {20, 2}, {2, 20}};
    canvas.Polygon(tri);
    canvas.EndPath();
    canvas.StrokeAndFillPath();
    canvas.Flush();
    EXPECT_GT(CountPixels(image, image.rect(), 0xFF0000), 100);
    EXPECT_GT(CountPixels(image, image.rect(), 0), 40);

    canvas.BeginPath();
    canvas.MoveTo(1, 1);
    canvas.LineTo(4, 4);
    canvas.AbortPath();
    EXPECT_FALSE(canvas.InPath());
    EXPECT_TRUE(canvas.GetPathPoints().empty());
}

TEST(CanvasTransforms, RotatedAndTranslatedDrawing)
{
    QImage image = Filled(30, 30, 0xFFFFFF);
    TCanvas canvas(&image);
    QTransform t;
    t.translate(10, 10);
    t.rotate(90); // x runs down the screen
    canvas.SetWorldTransform(t);
    canvas.MoveTo(0, 0);
    canvas.LineTo(6, 0);
    canvas.SetPixel(0, -5, clRed); // lands at (15, 10)
    EXPECT_EQ(canvas.GetPixel(0, -5), clRed);
    canvas.Flush();
    EXPECT_EQ(InkBounds(image.copy(0, 0, 12, 30), 0xFFFFFF), TRect(10, 10, 11, 16));
    EXPECT_EQ(Rgb(image, 15, 10), 0xFF0000u);
    canvas.ResetWorldTransform();
    canvas.MoveTo(20, 20);
    canvas.LineTo(25, 20);
    canvas.Flush();
    EXPECT_EQ(InkBounds(image.copy(16, 16, 14, 14), 0xFFFFFF), TRect(4, 4, 9, 5));
    EXPECT_EQ(canvas.GetPixel(22, 20), clBlack);
    EXPECT_EQ(canvas.GetPixel(-1, 3), clNone);
}

TEST(CanvasImages, DrawStretchAndCopy)
{
    QImage tile = Filled(2, 2, 0x00FF00);
    tile.setPixel(1, 1, 0xFF0000FFu);
    const QImage image = Painted(
        20, 20,
        [&](TCanvas &canvas) {
            canvas.Draw(3, 4, tile);
            canvas.StretchDraw({10, 10, 14, 14}, tile); // nearest pixels, doubled
            canvas.CopyRect({0, 15, 1, 16}, tile, {1, 1, 2, 2});
        },
        0xFFFFFF, QImage::Format_BGR888);
    EXPECT_EQ((std::array{Rgb(image, 3, 4), Rgb(image, 4, 5), Rgb(image, 0, 15)}),
              (std::array{0x00FF00u, 0x0000FFu, 0x0000FFu}));
    EXPECT_EQ(InkBounds(image.copy(0, 0, 9, 9), 0xFFFFFF), TRect(3, 4, 5, 6));
    EXPECT_EQ(CountPixels(image, QRect(12, 12, 2, 2), 0x0000FF), 4);
    EXPECT_EQ(CountPixels(image, QRect(10, 10, 4, 4), 0x00FF00), 12);
}
