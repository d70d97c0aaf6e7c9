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
void DrawSquare(TCanvas &canvas, TMyPoint p, const THandleLook &look);
void DrawLinkSquare(TCanvas &canvas, TMyPoint p);
void DrawDiamond(TCanvas &canvas, TMyPoint p, std::int32_t hotSize);
void LineDraw(TCanvas &canvas, TMyPoint a, TMyPoint b);

} // namespace tessal
