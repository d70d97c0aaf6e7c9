// SPDX-License-Identifier: MIT
// Pen and brush set-ups for handles, rubber bands and shapes, and the handle marks.
#include <tessal/geometry/canvasmodes.h>
#include <tessal/geometry/geometry.h>

#include <atomic>
#include <cmath>

namespace tessal {

namespace {

// Shared by every surface of the process: the last ColorOfHot set wins for all of them.
std::atomic<TColor> g_HotColor{clLime};

// The square of half-side h about p, each corner rounded on its own (halves to even), drawn
// with exclusive right and bottom edges. For a whole h that is 2h pixels wide; for the
// half-integer h of link marks the width depends on the parity of p (4 or 6 for h = 2.5).
TRect SquareAbout(TMyPoint p, double h)
{
    return {RoundEven(p.X - h), RoundEven(p.Y - h), RoundEven(p.X + h), RoundEven(p.Y + h)};
}

void SetHandlePen(TCanvas &canvas)
{
    TPen &pen = canvas.Pen();
    pen.Width = 1;
    pen.Color = clBlack;
    pen.Style = TPenStyle::psSolid;
    pen.Mode = TPenMode::pmCopy;
}

void SetSolidBrush(TCanvas &canvas, TColor color)
{
    canvas.SetBrush(TBrush{});
    canvas.Brush().Color = color;
    canvas.Brush().Style = TBrushStyle::bsSolid;
}

// The grey a black-and-white printer prints for a colour: all channels at the mean.
TColor PrinterGrey(TColor color)
{
    const TColor rgb = ColorToRGB(color);
    const int mean = (GetRValue(rgb) + GetGValue(rgb) + GetBValue(rgb)) / 3;
    const auto g = static_cast<std::uint8_t>(mean);
    return RGBToColor(g, g, g);
}

} // namespace

TColor HotColor()
{
    return g_HotColor.load(std::memory_order_relaxed);
}

void SetHotColor(TColor color)
{
    g_HotColor.store(color, std::memory_order_relaxed);
}

void SetDrawHotMode(TCanvas &canvas)
{
    SetHandlePen(canvas);
    SetSolidBrush(canvas, HotColor());
}

void SetDrawLockedHotMode(TCanvas &canvas)
{
    SetHandlePen(canvas);
    SetSolidBrush(canvas, clGray);
}

void SetDragResizeRotateShapeMode(TCanvas &canvas)
{
    TPen &pen = canvas.Pen();
    pen.Width = 1;
    pen.Color = clWhite;
    pen.Style = TPenStyle::psDot;
    pen.Mode = TPenMode::pmXor;
    canvas.SetBrush(TBrush{});
    canvas.Brush().Style = TBrushStyle::bsClear;
}

void SetDrawTriangleMode(const TPen &pen, const TFont &font, TCanvas &canvas)
{
    TPen &p = canvas.Pen();
    p.Color = pen.Color;
    p.Style = pen.Style;
    p.Width = pen.Width;
    p.Mode = TPenMode::pmCopy;
    canvas.SetFont(font);
    SetSolidBrush(canvas, pen.Color);
}

void SetDrawShapeMode(const TPen &pen, const TBrush &brush, TCanvas &canvas)
{
    const bool blackAndWhite = canvas.IsPrinter() && canvas.PrinterColorCount() == 2;
    TPen &p = canvas.Pen();
    p.Color = blackAndWhite ? PrinterGrey(pen.Color) : pen.Color;
    p.Style = pen.Style;
    p.Width = pen.Width;
    p.Mode = TPenMode::pmCopy;
    // Only colour and style describe a shape's fill here; a pattern left on the canvas by
    // earlier drawing must not paint over it.
    canvas.SetBrush(TBrush{});
    canvas.Brush().Color = blackAndWhite ? PrinterGrey(brush.Color) : brush.Color;
    canvas.Brush().Style = brush.Style;
}

void DrawSquare(TCanvas &canvas, TMyPoint p, const THandleLook &look)
{
    if (!look.HotShow)
        return;
    // Handles of group members are half as big so that the group's own handles stand out.
    const std::int32_t half = look.Grouped ? look.HotSize / 2 : look.HotSize;
    if (look.Locked) {
        SetDrawLockedHotMode(canvas);
        canvas.Rectangle(SquareAbout(p, half));
        return;
    }
    SetDrawHotMode(canvas);
    if (!look.PointTool) {
        canvas.Rectangle(SquareAbout(p, half));
        return;
    }
    // With the line and link-point tools only shapes that may rotate show handles; an
    // ungrouped one shows a round handle of radius HotSize.
    if (!look.RotateEnable)
        return;
    if (look.Grouped)
        canvas.Rectangle(SquareAbout(p, half));
    else
        canvas.Ellipse(SquareAbout(p, look.HotSize));
}

void DrawLinkSquare(TCanvas &canvas, TMyPoint p)
{
    SetDrawHotMode(canvas);
    canvas.Pen().Mode = TPenMode::pmCopy;
    canvas.Pen().Color = clBlue;
    const TRect r = SquareAbout(p, 2.5);
    canvas.MoveTo(r.Left, r.Top);
    canvas.LineTo(r.Right, r.Bottom);
    canvas.MoveTo(r.Right, r.Top);
    canvas.LineTo(r.Left, r.Bottom);
}

void DrawDiamond(TCanvas &canvas, TMyPoint p, std::int32_t hotSize)
{
    const TPoint corners[] = {
        {RoundEven(double(p.X) - hotSize), RoundEven(p.Y)},
        {RoundEven(p.X), RoundEven(double(p.Y) - hotSize)},
        {RoundEven(double(p.X) + hotSize), RoundEven(p.Y)},
        {RoundEven(p.X), RoundEven(double(p.Y) + hotSize)},
    };
    canvas.Polygon(corners);
}

void LineDraw(TCanvas &canvas, TMyPoint a, TMyPoint b)
{
    canvas.MoveTo(RoundEven(a.X), RoundEven(a.Y));
    canvas.LineTo(RoundEven(b.X), RoundEven(b.Y));
}

} // namespace tessal
