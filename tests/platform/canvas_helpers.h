// SPDX-License-Identifier: MIT
// Small image helpers shared by the canvas tests.
#pragma once

#include <tessal/platform/canvas.h>
#include <tessal/platform/types.h>

#include <QImage>

#include <vector>

namespace tessal::test {

inline QImage Filled(int w, int h, unsigned rgb, QImage::Format format = QImage::Format_RGB32)
{
    QImage image(w, h, format);
    image.fill(QColor::fromRgb(rgb));
    return image;
}

inline unsigned Rgb(const QImage &image, int x, int y)
{
    return image.pixel(x, y) & 0xFFFFFFu;
}

// The pixels that differ from the background, as a set of points in row order.
inline std::vector<TPoint> Ink(const QImage &image, unsigned background)
{
    std::vector<TPoint> ink;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (Rgb(image, x, y) != background)
                ink.push_back({x, y});
    return ink;
}

// The smallest rectangle holding every differing pixel (Right, Bottom exclusive).
inline TRect InkBounds(const QImage &image, unsigned background)
{
    QRect r;
    for (TPoint p : Ink(image, background))
        r |= QRect(p.X, p.Y, 1, 1);
    return r.isEmpty() ? TRect{} : TRect{r.left(), r.top(), r.right() + 1, r.bottom() + 1};
}

// A w x h image of the background colour after draw(canvas) and a flush.
template <class Draw>
QImage Painted(int w, int h, Draw draw, unsigned background = 0xFFFFFF,
               QImage::Format format = QImage::Format_RGB32)
{
    QImage image = Filled(w, h, background, format);
    TCanvas canvas(&image);
    draw(canvas);
    canvas.Flush();
    return image;
}

// Pixels whose inking (differing from the background) disagrees with the region.
inline int RegionMismatches(const QImage &image, const TRegion &region, unsigned background)
{
    int mismatches = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            mismatches += (Rgb(image, x, y) != background) != region.Contains({x, y}) ? 1 : 0;
    return mismatches;
}

} // namespace tessal::test
