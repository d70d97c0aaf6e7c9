// SPDX-License-Identifier: MIT
// Copying and transforming the whole state of a shape (private to the surface).
#pragma once

#include <tessal/shapes/shape.h>

namespace tessal {

// Everything a shape's record and relations hold: Assign's fields plus the text point,
// identity, list number, name, the enable and display flags and a line's arrow offset. The
// two shapes may be of different classes; the class's own fields are copied when both have
// them.
void CopyWholeState(TMyShape &to, const TMyShape &from);

// Gives every stored position of the shape (points, link points, centre, text point) the
// value map answers for it, in document units.
template <typename Map>
void MapShapePositions(TMyShape &shape, const Map &map)
{
    for (TMyPoint &p : shape.Points())
        p = map(p);
    for (TMyPoint &p : shape.LinkPoints())
        p = map(p);
    shape.SetCenterPoint(map(shape.CenterPoint()));
    shape.SetTextPoint(map(shape.TextPoint()));
}

} // namespace tessal
