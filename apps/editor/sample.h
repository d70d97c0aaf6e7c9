// SPDX-License-Identifier: MIT
// The drawing the editor shows when it is started without a file.
#pragma once

namespace tessal {

class TMyCAD;

// Adds a small diagram on two layers through the surface's creation calls: boxes and an
// ellipse on the first layer, connecting arrows, a polyline and notes on a second one.
void BuildSampleDrawing(TMyCAD &cad);

} // namespace tessal
