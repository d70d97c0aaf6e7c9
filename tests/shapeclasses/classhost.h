// SPDX-License-Identifier: MIT
// The shape test host with the surface settings that new lines, arcs and connectors copy,
// and small helpers for reading drawn pixels.
#pragma once

#include "../shapes/testhost.h"

#include <common/imagecompare.h>

#include <QColor>
#include <QImage>

#include <optional>

namespace tessal::test {

class TClassHost : public TTestHost
{
public:
    using TTestHost::TTestHost;

    std::int32_t ArrowAngleValue = 10;
    std::uint8_t ArrowLengthValue = 30;
    std::uint8_t ArrowOffsetValue = 0;
    TArrowStyle ArrowStyleValue = TArrowStyle::ANone;
    TArcMode ArcModeValue = TArcMode::amCircle;
    TLinkLineDrawStyle LinkStyleValue = TLinkLineDrawStyle::lldsHV;

    std::int32_t ArrowAngle() const override { return ArrowAngleValue; }
    std::uint8_t ArrowLength() const override { return ArrowLengthValue; }
    std::uint8_t ArrowOffset() const override { return ArrowOffsetValue; }
    TArrowStyle ArrowStyle() const override { return ArrowStyleValue; }
    TArcMode ArcMode() const override { return ArcModeValue; }
    TLinkLineDrawStyle LinkLineDrawStyle() const override { return LinkStyleValue; }
};

inline bool IsWhite(const QImage &image, int x, int y)
{
    return (image.pixel(x, y) & 0xFFFFFF) == 0xFFFFFF;
}

// The horizontal extent of the non-white pixels in the rows at least `gap` rows away from
// row `lineY`: for a head on a horizontal line this is the head without the line itself.
struct TExtent
{
    int Left = 0, Right = 0;
};
inline std::optional<TExtent> ExtentOffRow(const QImage &image, int lineY, int gap)
{
    std::optional<TExtent> e;
    for (int y = 0; y < image.height(); ++y) {
        if (std::abs(y - lineY) < gap)
            continue;
        for (int x = 0; x < image.width(); ++x) {
            if (IsWhite(image, x, y))
                continue;
            if (!e)
                e = TExtent{x, x};
            e->Left = std::min(e->Left, x);
            e->Right = std::max(e->Right, x);
        }
    }
    return e;
}

} // namespace tessal::test
