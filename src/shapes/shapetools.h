// SPDX-License-Identifier: MIT
// Helpers that take a shape: bulk point edits, connector lists, canvas set-ups and the
// handle marks drawn in the shape's and its surface's current settings.
#pragma once

#include <tessal/shapes/shape.h>

namespace tessal {

// Adds dx, dy (document units) to every point, link point and the text point; the centre
// stays where it is (callers recompute it).
void OffsetAllPoints(TMyShape &shape, float dx, float dy);
// Empties the point list; link points are kept.
void RemoveAllPoints(TMyShape &shape);
// The shape's list of attached connectors: no duplicates; removal takes the last match.
void AddLinklineShape(TMyShape &shape, std::int32_t id);
void RemoveLinklineShape(TMyShape &shape, std::int32_t id);

void SetDrawTriangleMode(const TMyShape &shape, TCanvas &canvas);
void SetDrawShapeMode(const TMyShape &shape, TCanvas &canvas);

// One selection handle at p (screen), shaped by the shape's flags and the host's tool.
void DrawSquare(const TMyShape &shape, TCanvas &canvas, TMyPoint p);
// Link-point marks at every link point, when the host shows handles and link hots.
void DrawLinkHot(const TMyShape &shape, TCanvas &canvas);
// The text-point handle; nothing for text shapes or shapes without info text. The canvas
// brush is set to colour.
void DrawDiamond(const TMyShape &shape, TCanvas &canvas, TMyPoint p, TColor colour);
void LineDraw(const TMyShape &shape, TCanvas &canvas, TMyPoint a, TMyPoint b);

// The area readout of closed shapes: "Area=" followed by the area (square document pixels)
// in the host's unit squared, "%9.2f" and a suffix such as "mm2" or "pixel(s)2".
QString AreaInfoText(const TShapeHost &host, double area);

} // namespace tessal
