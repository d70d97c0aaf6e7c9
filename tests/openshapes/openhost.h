// SPDX-License-Identifier: MIT
// Shared set-up of the curve, arc, text, image and measuring-line tests: a host with the
// arc mode setting, painting a shape onto a fresh image, and reading the ink back.
#pragma once

#include "shapes/testhost.h"

#include <QImage>
#include <QRect>

#include <cmath>
#include <vector>

namespace tessal::test {

class TOpenHost : public TTestHost
{
public:
    using TTestHost::TTestHost;
    TArcMode Arc = TArcMode::amCircle;
    TArcMode ArcMode() const override { return Arc; }
};

inline QImage BlankImage(int w = 400, int h = 400, unsigned rgb = 0xFFFFFF)
{
    QImage image(w, h, QImage::Format_RGB32);
    image.fill(QColor::fromRgb(rgb));
    return image;
}

// The shape's Draw onto a blank image of the given size.
inline QImage Painted(TMyShape &shape, int w = 400, int h = 400, unsigned background = 0xFFFFFF)
{
    QImage image = BlankImage(w, h, background);
    {
        TCanvas canvas(&image);
        shape.Draw(canvas);
    }
    return image;
}

inline unsigned Rgb(const QImage &image, int x, int y)
{
    return image.pixel(x, y) & 0xFFFFFFu;
}

inline bool Inked(const QImage &image, int x, int y, unsigned background = 0xFFFFFF)
{
    return image.rect().contains(x, y) && Rgb(image, x, y) != background;
}

// Whether any pixel within radius (Chebyshev) of (x, y) is not the background.
inline bool InkNear(const QImage &image, double x, double y, int radius = 1,
                    unsigned background = 0xFFFFFF)
{
    const int cx = int(std::lround(x)), cy = int(std::lround(y));
    for (int dy = -radius; dy <= radius; ++dy)
        for (int dx = -radius; dx <= radius; ++dx)
            if (Inked(image, cx + dx, cy + dy, background))
                return true;
    return false;
}

// The bounding box of the pixels that are not the background (null when there are none).
inline QRect InkBounds(const QImage &image, unsigned background = 0xFFFFFF)
{
    QRect box;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (Rgb(image, x, y) != background)
                box |= QRect(x, y, 1, 1);
    return box;
}

// Runs of inked pixels along row y (or column x when vertical): their start coordinates.
inline std::vector<int> InkRuns(const QImage &image, int line, bool vertical,
                                unsigned background = 0xFFFFFF)
{
    std::vector<int> starts;
    bool inside = false;
    const int n = vertical ? image.height() : image.width();
    for (int i = 0; i < n; ++i) {
        const bool ink =
            vertical ? Inked(image, line, i, background) : Inked(image, i, line, background);
        if (ink && !inside)
            starts.push_back(i);
        inside = ink;
    }
    return starts;
}

} // namespace tessal::test
