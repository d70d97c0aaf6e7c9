// SPDX-License-Identifier: MIT
// Byte arithmetic, flips and turned copies of 24-bit bitmaps.
#include <tessal/geometry/bitmapops.h>

#include <gtest/gtest.h>

#include <array>
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

TEST(BitmapOps, ByteArithmetic)
{
    // Grey averages the three bytes of a pixel (truncating); brightness adds and clamps.
    const std::vector<int> start{0, 5, 100, 127, 250, 255};
    const auto apply = [](std::vector<int> bytes, auto op) {
        TBitmap b = RowOf(bytes);
        op(b);
        return BytesOf(b);
    };
    const auto grey = [](bool on) { return [on](TBitmap &b) { GrayScaleBitmap(b, on); }; };
    const auto bright = [](int k) { return [k](TBitmap &b) { AdjustBrightBitmap(b, k); }; };
    const std::vector<int> rgb{10, 20, 33, 255, 255, 254};
    EXPECT_EQ(apply(rgb, grey(false)), rgb);
    EXPECT_EQ(apply(rgb, grey(true)), (std::vector<int>{21, 21, 21, 254, 254, 254}));
    EXPECT_EQ(apply(start, bright(0)), start);
    EXPECT_EQ(apply(start, bright(10)), (std::vector<int>{10, 15, 110, 137, 255, 255}));
    EXPECT_EQ(apply(apply(start, bright(10)), bright(-20)),
              (std::vector<int>{0, 0, 90, 117, 235, 235}));
    EXPECT_EQ(apply(start, bright(300)), std::vector<int>(6, 255));
    EXPECT_EQ(apply(start, bright(-300)), std::vector<int>(6, 0));

    // Contrast: d = |c - 127| * k / 255, truncated; c - d below 128, c + d from 128 up.
    // Negative k pulls towards 127, truncating toward zero (-49.8 -> -49 and -3.9 -> -3,
    // where flooring would give -50 and -4).
    const std::vector<int> wide{127, 128, 0, 255, 10, 100, 160, 250, 200};
    const std::pair<int, std::vector<int>> contrast[] = {
        {0, wide},
        {255, {127, 129, 0, 255, 0, 73, 193, 255, 255}},
        {100, {127, 128, 0, 255, 0, 90, 172, 255, 228}},
        {50, {127, 128, 0, 255, 0, 95, 166, 255, 214}},
        {-100, {127, 128, 49, 205, 55, 110, 148, 202, 172}},
        {-255, std::vector<int>(9, 127)},
        {-1000, {127, 125, 255, 0, 255, 205, 31, 0, 0}}};
    for (const auto &[amount, expected] : contrast) {
        const int k = amount;
        EXPECT_EQ(apply(wide, [k](TBitmap &b) { AdjustContrastBitmap(b, k); }), expected) << k;
    }
}

TEST(BitmapOps, TurnedCopiesAreStretchedFirstAndKeepTheirSense)
{
    // Stretched to w x h first, then turned: 10 sqrt(2) = 14.14 -> 15; 40 cos 0.3 + 7 sin 0.3
    // = 40.28 -> 41 and 40 sin 0.3 + 7 cos 0.3 = 18.5 -> 19.
    // clang-format off
    const struct { double Angle; std::int32_t W, H, ExpectedW, ExpectedH; } cases[] = {
        {Pi / 2, 20, 10, 10, 20}, {Pi / 4, 10, 10, 15, 15}, {0.3, 40, 7, 41, 19}};
    // clang-format on
    // Left half red, right half blue.
    TBitmap b(20, 10);
    for (int y = 0; y < 10; ++y)
        for (int x = 0; x < 20; ++x)
            b.SetPixel(x, y, x < 10 ? clRed : clBlue);
    for (const auto &c : cases) {
        const TBitmap r = RotateBitmap(b, c.Angle, c.W, c.H);
        EXPECT_EQ(std::pair(r.Width(), r.Height()), std::pair(c.ExpectedW, c.ExpectedH)) << c.Angle;
    }
    EXPECT_TRUE(RotateBitmap(b, 1, 0, 10).IsEmpty());
    EXPECT_TRUE(RotateBitmap(TBitmap(), 1, 10, 10).IsEmpty());

    // Turned an eighth anticlockwise (the exact quarter turns are checked pixel by pixel
    // below): white outside the turned picture.
    const TBitmap d = RotateBitmap(b, Pi / 4, 20, 10);
    const int w = d.Width(), h = d.Height();
    EXPECT_EQ((std::array{d.Pixel(0, 0), d.Pixel(w - 1, h - 1), d.Pixel(w / 2 - 4, h / 2 + 4),
                          d.Pixel(w / 2 + 4, h / 2 - 4)}),
              (std::array{clWhite, clWhite, clRed, clBlue}));

    // Unturned, 20 x 10 stretched to 6 x 3.
    const TBitmap r = RotateBitmap(b, 0, 6, 3);
    ASSERT_EQ(std::pair(r.Width(), r.Height()), std::pair(6, 3));
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
        ASSERT_EQ(std::pair(q.Width(), q.Height()), std::pair(h, w));
        int mismatches = 0;
        for (int j = 0; j < h; ++j)
            for (int i = 0; i < w; ++i)
                mismatches += q.Pixel(j, w - 1 - i) != b.Pixel(i, j);
        EXPECT_EQ(mismatches, 0) << w << "x" << h;
    }
}

} // namespace
} // namespace tessal
