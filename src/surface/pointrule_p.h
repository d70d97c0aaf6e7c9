// SPDX-License-Identifier: MIT
// How each drawing tool's shape takes its points (private to the surface).
#pragma once

#include <tessal/shapes/shapeenums.h>

#include <cstdint>
#include <optional>

namespace tessal {

// How a tool's shape takes the points it is given, by code or by the mouse: as the corners
// of a box, or as a chain, Bezier, polygon or arc of points. Tools that draw no shape have
// none.
enum class TPointRule : std::uint8_t { Box, Chain, Bezier, Polygon, Arc };

std::optional<TPointRule> PointRuleOf(TDrawTool tool);

} // namespace tessal
