// SPDX-License-Identifier: MIT
// Text that grows with the zoom and turns with its shape.
#pragma once

#include <tessal/platform/canvas.h>

namespace tessal {

// The logical font both functions below select: style flags and weight from font, a
// character height of -round(size x scale) pixels, escapement and orientation
// round(-angle x 180 / pi x 10).
TLogFont MakeScaledLogFont(const TCanvas &canvas, const TFont &font, double scale, double angle);

void MyLogTextOut(TCanvas &canvas, std::int32_t x, std::int32_t y, const QString &text,
                  const TFont &font, double scale, double angle);
// Width (X) and height (Y) in pixels of text drawn by MyLogTextOut with the same arguments.
TPoint GetTextWidthHeight(TCanvas &canvas, const QString &text, const TFont &font, double scale,
                          double angle);
// The height of a line of the font at the scale: the Y of GetTextWidthHeight for any text.
std::int32_t GetTextLineHeight(TCanvas &canvas, const TFont &font, double scale);

} // namespace tessal
