// SPDX-License-Identifier: MIT
// Text output and measuring under a font scaled with the zoom and turned with its shape.
#include <tessal/geometry/scaledtext.h>

#include <cmath>
#include <numbers>

namespace tessal {

TLogFont MakeScaledLogFont(const TCanvas &canvas, const TFont &font, double scale, double angle)
{
    TLogFont lf = canvas.LogFont();
    lf.Italic = font.Italic();
    lf.Underline = font.Underline();
    lf.StrikeOut = font.StrikeOut();
    lf.Weight = font.Bold() ? 700 : 400;
    lf.Charset = font.Charset;
    // The point size serves directly as the pixel height at scale 1, whatever the screen's
    // resolution, so text keeps its size relative to the drawing at every zoom. Negative:
    // character height, not cell height.
    lf.Height = -static_cast<std::int32_t>(std::nearbyint(font.Size() * scale));
    lf.FaceName = font.Name;
    // Shapes turn clockwise on the screen for a positive angle; escapement counts
    // anticlockwise in tenths of a degree, hence the sign.
    const auto tenths =
        static_cast<std::int32_t>(std::nearbyint(-angle * 180 / std::numbers::pi * 10));
    lf.Escapement = tenths;
    lf.Orientation = tenths;
    return lf;
}

void MyLogTextOut(TCanvas &canvas, std::int32_t x, std::int32_t y, const QString &text,
                  const TFont &font, double scale, double angle)
{
    TLogFont lf = MakeScaledLogFont(canvas, font, scale, angle);
    lf.Color = font.Color;
    canvas.SelectLogFont(lf);
    canvas.Font().Color = font.Color;
    canvas.SetBkModeTransparent(true);
    canvas.TextOut(x, y, text);
    // Leave the canvas holding this font, whatever the text output did to it.
    canvas.SelectLogFont(lf);
}

TPoint GetTextWidthHeight(TCanvas &canvas, const QString &text, const TFont &font, double scale,
                          double angle)
{
    canvas.SelectLogFont(MakeScaledLogFont(canvas, font, scale, angle));
    return canvas.TextExtent(text);
}

std::int32_t GetTextLineHeight(TCanvas &canvas, const TFont &font, double scale)
{
    canvas.SelectLogFont(MakeScaledLogFont(canvas, font, scale, 0));
    return canvas.LineHeight();
}

} // namespace tessal
