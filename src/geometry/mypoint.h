// SPDX-License-Identifier: MIT
// Floating-point document points and rectangles, and the units lengths are shown in.
#pragma once

#include <QObject>

#include <cstdint>
#include <vector>

namespace tessal {

// A point in document units (pixels at zoom 1), single precision as stored in files.
struct TMyPoint
{
    float X = 0;
    float Y = 0;
    friend constexpr bool operator==(TMyPoint, TMyPoint) = default;
};

struct TMyRect
{
    float Left = 0;
    float Top = 0;
    float Right = 0;
    float Bottom = 0;
    friend constexpr bool operator==(const TMyRect &, const TMyRect &) = default;
};

constexpr TMyPoint MyPoint(float x, float y)
{
    return {x, y};
}

using TMyPointArray = std::vector<TMyPoint>;

namespace GeometryEnums {
Q_NAMESPACE
// The unit of lengths shown to the user. Stored ordinal: keep the order.
enum class TUnits : std::uint8_t { pixel, mm, cm, dm, m, inch };
Q_ENUM_NS(TUnits)
} // namespace GeometryEnums
using GeometryEnums::TUnits;

} // namespace tessal
