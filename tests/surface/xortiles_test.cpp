// SPDX-License-Identifier: MIT
// Tiles of an exclusive-or picture, drawn on demand: laid at any offset they show what the
// picture drawn at once shows, on both sides of the origin, and laid again they erase it.
#include <tessal/surface/xortiles_p.h>

#include <gtest/gtest.h>

#include <random>

namespace tessal {
namespace {

struct TBox
{
    TRect Rect;
    TColor Colour;
};

void DrawBoxes(TCanvas &canvas, const std::vector<TBox> &boxes)
{
    canvas.Pen().Mode = TPenMode::pmXor;
    canvas.Pen().Style = TPenStyle::psDot;
    canvas.Brush().Style = TBrushStyle::bsClear;
    for (const TBox &box : boxes) {
        canvas.Pen().Color = box.Colour;
        canvas.Rectangle(box.Rect);
    }
}

TEST(XorTiles, LaidAtRandomOffsetsTheyShowThePictureAndEraseIt)
{
    std::mt19937 rng(3);
    std::uniform_int_distribution<int> at(-900, 900), size(1, 64);
    std::vector<TBox> boxes;
    for (int i = 0; i < 150; ++i) {
        const TPoint p{at(rng), at(rng)};
        boxes.push_back({{p.X, p.Y, p.X + size(rng), p.Y + size(rng)}, TColor(rng() & 0xFFFFFF)});
    }
    int drawn = 0;
    TXorTiles tiles(
        [&](TCanvas &canvas, const TRect &) {
            ++drawn;
            DrawBoxes(canvas, boxes);
        },
        64, 12);
    // The whole picture at once, on an image large enough to cut none of it.
    QImage whole(3000, 3000, QImage::Format_RGB32);
    whole.fill(Qt::darkCyan);
    {
        TCanvas canvas(&whole);
        canvas.SetOrigin(TPoint{-1500, -1500});
        DrawBoxes(canvas, boxes);
    }
    const TPoint origin{-100, -50};
    QImage screen(300, 200, QImage::Format_RGB32);
    for (int round = 0; round < 40; ++round) {
        const TPoint offset{at(rng), at(rng)};
        screen.fill(Qt::darkCyan);
        const QImage blank = screen.copy();
        const TPoint rest = origin - offset;
        const QImage expected = whole.copy(rest.X + 1500, rest.Y + 1500, 300, 200);
        const TRect seen(rest.X, rest.Y, rest.X + 300, rest.Y + 200);
        const TXorTiles::TTiles shown = tiles.Tiles(seen);
        EXPECT_LE(tiles.TileCount(), 30u); // at most 6 x 5 tiles of 64 pixels in view
        for (const auto &tile : shown)
            tile->XorInto(screen, origin, offset);
        ASSERT_EQ(screen, expected) << "round " << round;
        tiles.Tiles(seen.Translated(5000, 0)); // far away: the shown tiles may be dropped
        for (const auto &tile : shown)
            tile->XorInto(screen, origin, offset);
        ASSERT_EQ(screen, blank) << "round " << round;
    }
    EXPECT_GT(drawn, 40 * 20); // tiles were dropped and drawn again
}

} // namespace
} // namespace tessal
