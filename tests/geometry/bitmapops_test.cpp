// SPDX-License-Identifier: MIT
// Byte arithmetic, flips and turned copies of 24-bit bitmaps.
#include <tessal/geometry/bitmapops.h>

#include <gtest/gtest.h>

#include <numbers>
#include <random>
#include <vector>

namespace tessal {
namespace {

constexpr double Pi = std::numbers::pi;

// A bitmap one pixel high whose row holds exactly these bytes (B, G, R per pixel).
TBitmap RowOf(const std::vector<int> &bytes)
{
    TBitmap b(std::int32_t(bytes.size() / 3), 1);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        b.ScanLine(0)[i] = std::uint8_t(bytes[i]);
    return b;
}

std::vector<int> BytesOf(const TBitmap &b)
{
    std::vector<int> out;
    for (std::int32_t y = 0; y < b.Height(); ++y)
        for (std::int32_t i = 0; i < 3 * b.Width(); ++i)
            out.push_back(b.ScanLine(y)[i]);
    return out;
}

TBitmap RandomBitmap(std::mt19937 &rng, std::int32_t w, std::int32_t h)
{
    TBitmap b(w, h);
    std::uniform_int_distribution<int> byte(0, 255);
    for (std::int32_t y = 0; y < h; ++y)
        for (std::int32_t i = 0; i < 3 * w; ++i)
            b.ScanLine(y)[i] = std::uint8_t(byte(rng));
    return b;
}

TEST(BitmapOps, GrayScaleAveragesTheThreeBytes)
{
    TBitmap b = RowOf({10, 20, 33, 255, 255, 254});
    GrayScaleBitmap(b, false);
    EXPECT_EQ(BytesOf(b), (std::vector<int>{10, 20, 33, 255, 255, 254}));
    GrayScaleBitmap(b, true);
    EXPECT_EQ(BytesOf(b), (std::vector<int>{21, 21, 21, 254, 254, 254}));
}

TEST(BitmapOps, BrightnessAddsAndClamps)
{
    const std::vector<int> start{0, 5, 100, 127, 250, 255};
    TBitmap b = RowOf(start);
    AdjustBrightBitmap(b, 0);
    EXPECT_EQ(BytesOf(b), start);
    AdjustBrightBitmap(b, 10);
    EXPECT_EQ(BytesOf(b), (std::vector<int>{10, 15, 110, 137, 255, 255}));
    AdjustBrightBitmap(b, -20);
    EXPECT_EQ(BytesOf(b), (std::vector<int>{0, 0, 90, 117, 235, 235}));

    TBitmap white = RowOf(start);
    AdjustBrightBitmap(white, 300);
    EXPECT_EQ(BytesOf(white), std::vector<int>(6, 255));
    TBitmap black = RowOf(start);
    AdjustBrightBitmap(black, -300);
    EXPECT_EQ(BytesOf(black), std::vector<int>(6, 0));
}

TEST(BitmapOps, ContrastAroundTheFixedPoint)
{
    const std::vector<int> start{127, 128, 0, 255, 10, 100, 160, 250, 200};
    const auto adjusted = [&start](int k) {
        TBitmap b = RowOf(start);
        AdjustContrastBitmap(b, k);
        return BytesOf(b);
    };
    EXPECT_EQ(adjusted(0), start);
    // d = |c - 127| * k / 255, truncated; c - d below 128, c + d from 128 up.
    EXPECT_EQ(adjusted(255), (std::vector<int>{127, 129, 0, 255, 0, 73, 193, 255, 255}));
    EXPECT_EQ(adjusted(100), (std::vector<int>{127, 128, 0, 255, 0, 90, 172, 255, 228}));
    EXPECT_EQ(adjusted(50), (std::vector<int>{127, 128, 0, 255, 0, 95, 166, 255, 214}));
    // Negative k pulls towards 127; truncation toward zero (-49.8 -> -49 and -3.9 -> -3,
    // where flooring would give -50 and -4).
    EXPECT_EQ(adjusted(-100), (std::vector<int>{127, 128, 49, 205, 55, 110, 148, 202, 172}));
    EXPECT_EQ(adjusted(-255), (std::vector<int>{127, 127, 127, 127, 127, 127, 127, 127, 127}));
    EXPECT_EQ(adjusted(-1000), (std::vector<int>{127, 125, 255, 0, 255, 205, 31, 0, 0}));
}

TEST(BitmapOps, FlipMirrorsInPlace)
{
    TBitmap b(2, 2);
    b.SetPixel(0, 0, clRed);
    b.SetPixel(1, 0, clLime);
    b.SetPixel(0, 1, clBlue);
    b.SetPixel(1, 1, clYellow);
    TBitmap h = b;
    FlipBitmap(h, true, false);
    EXPECT_EQ(h.Pixel(0, 0), clLime);
    EXPECT_EQ(h.Pixel(1, 0), clRed);
    EXPECT_EQ(h.Pixel(0, 1), clYellow);
    TBitmap v = b;
    FlipBitmap(v, false, true);
    EXPECT_EQ(v.Pixel(0, 0), clBlue);
    EXPECT_EQ(v.Pixel(1, 1), clLime);
    TBitmap both = b;
    FlipBitmap(both, true, true);
    EXPECT_EQ(both.Pixel(0, 0), clYellow);
    EXPECT_EQ(both.Pixel(1, 1), clRed);
    TBitmap none = b;
    FlipBitmap(none, false, false);
    EXPECT_EQ(none, b);
    EXPECT_EQ(b.Pixel(0, 0), clRed); // copies were flipped, not the original
}

TEST(BitmapOps, RotatedSizeIsTheTurnedBoundingBox)
{
    const TBitmap b(20, 10);
    TBitmap r = RotateBitmap(b, Pi / 2, 20, 10);
    EXPECT_EQ(r.Width(), 10);
    EXPECT_EQ(r.Height(), 20);
    r = RotateBitmap(b, Pi / 4, 10, 10); // 10 * sqrt(2) = 14.14
    EXPECT_EQ(r.Width(), 15);
    EXPECT_EQ(r.Height(), 15);
    r = RotateBitmap(b, 0.3, 40, 7); // stretched first: 40 cos + 7 sin = 40.28, 40 sin + 7 cos
    EXPECT_EQ(r.Width(), 41);
    EXPECT_EQ(r.Height(), 19);
    EXPECT_TRUE(RotateBitmap(b, 1, 0, 10).IsEmpty());
    EXPECT_TRUE(RotateBitmap(TBitmap(), 1, 10, 10).IsEmpty());
}

TEST(BitmapOps, RotationSenseAndBackground)
{
    // Left half red, right half blue; a quarter turn with a positive angle is anticlockwise
    // on the screen, so the left half ends at the bottom.
    TBitmap b(20, 10);
    for (int y = 0; y < 10; ++y)
        for (int x = 0; x < 20; ++x)
            b.SetPixel(x, y, x < 10 ? clRed : clBlue);
    const TBitmap r = RotateBitmap(b, Pi / 2, 20, 10);
    EXPECT_EQ(r.Pixel(5, 15), clRed);
    EXPECT_EQ(r.Pixel(5, 4), clBlue);

    const TBitmap d = RotateBitmap(b, Pi / 4, 20, 10);
    EXPECT_EQ(d.Pixel(0, 0), clWhite); // outside the turned picture
    EXPECT_EQ(d.Pixel(d.Width() - 1, d.Height() - 1), clWhite);
    EXPECT_EQ(d.Pixel(d.Width() / 2 - 4, d.Height() / 2 + 4), clRed);
    EXPECT_EQ(d.Pixel(d.Width() / 2 + 4, d.Height() / 2 - 4), clBlue);
}

TEST(BitmapOps, StretchBeforeTurning)
{
    TBitmap b(2, 1);
    b.SetPixel(0, 0, clRed);
    b.SetPixel(1, 0, clBlue);
    const TBitmap r = RotateBitmap(b, 0, 6, 3);
    ASSERT_EQ(r.Width(), 6);
    ASSERT_EQ(r.Height(), 3);
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 6; ++x)
            EXPECT_EQ(r.Pixel(x, y), x < 3 ? clRed : clBlue) << x << "," << y;
}

TEST(BitmapOps, RightAngleTurnsEqualExactPixelMoves)
{
    std::mt19937 rng(20240611);
    std::uniform_int_distribution<int> side(1, 17);
    for (int round = 0; round < 40; ++round) {
        const int w = side(rng);
        const int h = side(rng);
        const TBitmap b = RandomBitmap(rng, w, h);

        EXPECT_EQ(RotateBitmap(b, 0, w, h), b);
        TBitmap half = b;
        FlipBitmap(half, true, true);
        EXPECT_EQ(RotateBitmap(b, Pi, w, h), half) << w << "x" << h;

        // A quarter turn anticlockwise moves source (i, j) to (j, w - 1 - i).
        const TBitmap q = RotateBitmap(b, Pi / 2, w, h);
        ASSERT_EQ(q.Width(), h);
        ASSERT_EQ(q.Height(), w);
        int mismatches = 0;
        for (int j = 0; j < h; ++j)
            for (int i = 0; i < w; ++i)
                mismatches += q.Pixel(j, w - 1 - i) != b.Pixel(i, j);
        EXPECT_EQ(mismatches, 0) << w << "x" << h;
    }
}

} // namespace
} // namespace tessal
