// SPDX-License-Identifier: MIT
// Orthogonal connector routes as a function of plain data: ends, exit corners and boxes.
#pragma once

#include <tessal/geometry/mypoint.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace tessal {

// The four directions a route can take, and none for an end that may leave any way.
enum class Tdirections : std::uint8_t { dLeft, dbottom, dRight, dTop, dNone };
// A segment's orientation.
enum class TLinkLineStyle : std::uint8_t { llsFree, llsHorz, llsVert };
// A connector end.
enum class TLinkLineEndPoint : std::uint8_t { llStart, llEnd };

// An axis-parallel box in screen pixels; Left < Right, Top < Bottom. Only its open interior
// is out of bounds: a route may run along its sides.
struct TRouteBox
{
    double Left = 0;
    double Top = 0;
    double Right = 0;
    double Bottom = 0;
};

// One end of a route. A bound end has the box of the shape it is bound to and that shape's
// magic point for it (the link point pulled onto the nearest side of the box); the route
// leaves through that side. A free end, or one bound to a junction mark, has no box and
// leaves in whichever direction suits.
struct TRouteEnd
{
    TMyPoint At;
    std::optional<TRouteBox> Box;
    TMyPoint Corner;
};

// The boxes of the shapes to avoid that meet area (screen pixels, edges included). It may
// answer more: the search passes over boxes outside its lattice.
using TObstacleFinder = std::function<std::vector<TRouteBox>(const TRouteBox &area)>;

struct TRouteRequest
{
    TRouteEnd Start;
    TRouteEnd End;
    // Boxes of other shapes, avoided where a way round exists.
    std::vector<TRouteBox> Obstacles;
    // Where the other shapes are many (a whole drawing), they are asked for by area
    // instead, and Obstacles is not read: only the few near the search matter.
    TObstacleFinder FindObstacles;
};

// The lattice step of the search, and how far a route leaves a bound shape before it may
// turn (screen pixels).
inline constexpr double RouteStep = 15;

// The side of box through which a route leaves from p: the side the magic point corner lies
// on, else the nearest side (ties in the order left, right, top, bottom).
Tdirections ExitDirection(const TRouteBox &box, TMyPoint corner, TMyPoint p);

// A route from request.Start.At to request.End.At (screen pixels) of horizontal and vertical
// segments only, strictly alternating, with no repeated points. A bound end is left
// through its exit side and RouteStep beyond it; the two bound boxes are never entered past
// those stubs, and other boxes only where no way round them is found.
//
// The search runs A* over a lattice of RouteStep spacing anchored at the start's stub (the
// end stub's row and column are added so that the route can end exactly). A step costs its
// length, a turn a fixed penalty, and a step through an obstacle many times its length, so
// the answer is the shortest route with few turns that keeps clear of shapes. When the
// lattice would be too large, or no route avoids the two bound boxes, a plain route with
// at most two turns between the stubs is answered instead.
std::vector<TMyPoint> RouteOrthogonal(const TRouteRequest &request);

// Drops repeated points and the middle one of any three consecutive points on one
// horizontal or vertical line, so that an orthogonal chain alternates. The first and the
// last point stay.
void MergePoints(std::vector<TMyPoint> &points);

} // namespace tessal
