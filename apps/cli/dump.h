// SPDX-License-Identifier: MIT
// tessal-cli dump: a drawing, or the shapes of a library entry, as JSON.
#pragma once

#include "cli.h"
#include "json.h"

#include <tessal/geometry/mypoint.h>
#include <tessal/shapes/userdata.h>

namespace tessal {
class TMyShape;
}

namespace tessal::Cli {

// The drawing as loaded: the file's settings, layers and every shape in list order.
TJson DrawingJson(const TMyCAD &cad);

// One shape: its unpublished state (identity, list number, layer, relations, points), the
// published properties of the shape base in a fixed order, then every further published
// property of its class. Enumerations are written by value name; pens, brushes and fonts
// as objects of their fields; user data as [key, value] pairs.
TJson ShapeJson(const TMyShape &shape);

TJson PointsJson(const TMyPointArray &points);
TJson UserDataJson(const TUserData &data);

int RunDump(const QString &fileName, TIo io);

} // namespace tessal::Cli
