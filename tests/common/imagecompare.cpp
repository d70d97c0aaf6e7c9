// SPDX-License-Identifier: MIT
#include "common/imagecompare.h"

#include <algorithm>
#include <cstdlib>

namespace tessal::test {

ImageDiff CompareImages(const QImage &a, const QImage &b)
{
    ImageDiff diff;
    if (a.size() != b.size()) {
        diff.SizeMismatch = true;
        return diff;
    }
    const QImage ca = a.convertToFormat(QImage::Format_RGB32);
    const QImage cb = b.convertToFormat(QImage::Format_RGB32);
    for (int y = 0; y < ca.height(); ++y) {
        const auto *ra = reinterpret_cast<const QRgb *>(ca.constScanLine(y));
        const auto *rb = reinterpret_cast<const QRgb *>(cb.constScanLine(y));
        for (int x = 0; x < ca.width(); ++x) {
            const int d = std::max({std::abs(qRed(ra[x]) - qRed(rb[x])),
                                    std::abs(qGreen(ra[x]) - qGreen(rb[x])),
                                    std::abs(qBlue(ra[x]) - qBlue(rb[x]))});
            if (d == 0)
                continue;
            if (diff.DifferingPixels == 0)
                diff.FirstDifference = {x, y};
            ++diff.DifferingPixels;
            diff.SumDifference += d;
            diff.MaxDifference = std::max(diff.MaxDifference, d);
        }
    }
    return diff;
}

::testing::AssertionResult ImagesEqual(const QImage &a, const QImage &b, int tolerance)
{
    const ImageDiff d = CompareImages(a, b);
    if (d.SizeMismatch)
        return ::testing::AssertionFailure() << "sizes differ: " << a.width() << "x" << a.height()
                                             << " vs " << b.width() << "x" << b.height();
    if (d.MaxDifference > tolerance)
        return ::testing::AssertionFailure()
               << d.DifferingPixels << " pixels differ, max " << d.MaxDifference << ", sum "
               << d.SumDifference << ", first at (" << d.FirstDifference.x() << ", "
               << d.FirstDifference.y() << ")";
    return ::testing::AssertionSuccess();
}

int CountPixels(const QImage &image, const QRect &rect, unsigned rgb)
{
    const QImage c = image.convertToFormat(QImage::Format_RGB32);
    int n = 0;
    const QRect r = rect.intersected(c.rect());
    for (int y = r.top(); y <= r.bottom(); ++y)
        for (int x = r.left(); x <= r.right(); ++x)
            n += (c.pixel(x, y) & 0xFFFFFFu) == rgb ? 1 : 0;
    return n;
}

} // namespace tessal::test
