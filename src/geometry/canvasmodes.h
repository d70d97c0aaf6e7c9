// SPDX-License-Identifier: MIT
// The small canvas set-ups with which handles, rubber bands and shapes are drawn, and the
// handle marks themselves. The shape-level wrappers live in the shapes layer.
#pragma once

#include <tessal/geometry/mypoint.h>
#include <tessal/platform/canvas.h>

namespace tessal {

// The process-wide colour of selection handles: $FF00 until a surface's ColorOfHot is set.
TColor HotColor();
void SetHotColor(TColor color);

void SetDrawHotMode(TCanvas &canvas);
void SetDrawLockedHotMode(TCanvas &canvas);
void SetDragResizeRotateShapeMode(TCanvas &canvas);
// Filled arrow heads: the pen's colour, style and width in copy mode, a solid brush of the
// pen colour, and the font as the canvas font.
void SetDrawTriangleMode(const TPen &pen, const TFont &font, TCanvas &canvas);
// Normal drawing: copies pen and brush onto a screen canvas; a black-and-white printer
// canvas (two colours) gets the grey (R + G + B) / 3 of each colour instead.
void SetDrawShapeMode(const TPen &pen, const TBrush &brush, TCanvas &canvas);

// What a single selection handle depends on.
struct THandleLook
{
    bool HotShow = true;
    bool Locked = false;
    bool Grouped = false;
    bool RotateEnable = true;
    std::int32_t HotSize = 4;
    // The current tool is SpLine or SpLinkPoint: handles become circles, and only shapes
    // that may rotate show them.
    bool PointTool = false;
};
// One handle at p (screen pixels) with the hot or locked set-up. A square of half-side h is
// the rectangle (round(p.X - h), round(p.Y - h)) .. (round(p.X + h), round(p.Y + h)), right
// and bottom exclusive, halves rounded to even; a circle is the ellipse in that box.
void DrawSquare(TCanvas &canvas, TMyPoint p, const THandleLook &look);
// A link-point mark: the two diagonals of the square of half-side 2.5 at p, in blue over
// the hot set-up (which the canvas keeps afterwards, with the blue pen).
void DrawLinkSquare(TCanvas &canvas, TMyPoint p);
// The text-point diamond of half-diagonal hotSize at p, drawn with the canvas's current pen
// and brush (the caller chooses them).
void DrawDiamond(TCanvas &canvas, TMyPoint p, std::int32_t hotSize);
// A straight line between the rounded points with the current pen.
void LineDraw(TCanvas &canvas, TMyPoint a, TMyPoint b);

} // namespace tessal
