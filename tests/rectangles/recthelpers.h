// SPDX-License-Identifier: MIT
// Shared set-up of the rectangle-family tests: a host whose action state can be set, shapes
// drawn the way the mouse draws them, and pixel helpers.
#pragma once

#include "shapes/testhost.h"

#include <tessal/geometry/geometry.h>
#include <tessal/shapes/rectangle.h>

#include <QImage>

#include <memory>

namespace tessal::test {

// The base test host always answers dtSelecting; handle tests need the rotating states.
class TActionHost : public TTestHost
{
public:
    using TTestHost::TTestHost;
    TActionTools Action = TActionTools::dtSelecting;
    TActionTools ActionTool() const override { return Action; }
};

// A shape of class T drawn by two mouse points (screen pixels at the host's zoom).
template <class T>
std::unique_ptr<T> DrawnBy(TShapeHost &host, TPoint first, TPoint second)
{
    auto shape = std::make_unique<T>(&host);
    shape->AddPointByMouse(first);
    shape->AddPointByMouse(second);
    return shape;
}

// 0xRRGGBB of the pixel at (x, y).
inline unsigned PixelAt(const QImage &image, int x, int y)
{
    return image.pixel(x, y) & 0xFFFFFFu;
}

inline QImage WhiteImage(int w = 200, int h = 200)
{
    QImage image(w, h, QImage::Format_RGB32);
    image.fill(Qt::white);
    return image;
}

// Colour constants as 0xRRGGBB, the form PixelAt answers.
constexpr unsigned kWhite = 0xFFFFFF;
constexpr unsigned kBlack = 0x000000;
constexpr unsigned kRed = 0xFF0000;
constexpr unsigned kBlue = 0x0000FF;
constexpr unsigned kLime = 0x00FF00;
constexpr unsigned kYellow = 0xFFFF00;

} // namespace tessal::test
