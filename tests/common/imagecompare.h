// SPDX-License-Identifier: MIT
// Image comparison for pixel tests: reports the largest and the summed channel difference.
#pragma once

#include <gtest/gtest.h>

#include <QImage>
#include <QRect>

#include <cstdint>

namespace tessal::test {

struct ImageDiff
{
    int MaxDifference = 0; // largest difference of one channel of one pixel
    std::int64_t SumDifference = 0;
    int DifferingPixels = 0;
    QPoint FirstDifference{-1, -1};
    bool SizeMismatch = false;
};

ImageDiff CompareImages(const QImage &a, const QImage &b);

// Passes when the images are the same size and no channel differs by more than tolerance.
::testing::AssertionResult ImagesEqual(const QImage &a, const QImage &b, int tolerance = 0);

// Number of pixels of image inside rect whose RGB equals rgb (0xRRGGBB).
int CountPixels(const QImage &image, const QRect &rect, unsigned rgb);

} // namespace tessal::test
