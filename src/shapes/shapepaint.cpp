// SPDX-License-Identifier: MIT
// TMyShape: filled outlines with the gradient, the outline pen and the info texts.
#include <tessal/geometry/bitmapops.h>
#include <tessal/geometry/geometry.h>
#include <tessal/geometry/scaledtext.h>
#include <tessal/shapes/shape.h>

#include <algorithm>
#include <cmath>

namespace tessal {

namespace {

TPenJoin JoinOf(TPenStyleJoinType type)
{
    switch (type) {
    case TPenStyleJoinType::psjtROUND:
        return TPenJoin::pjRound;
    case TPenStyleJoinType::psjtBEVEL:
        return TPenJoin::pjBevel;
    case TPenStyleJoinType::psjtMITER:
        return TPenJoin::pjMiter;
    default:
        return TPenJoin::pjMask;
    }
}

TPenEndCap CapOf(TPenStyleEndCapType type)
{
    switch (type) {
    case TPenStyleEndCapType::psectROUND:
        return TPenEndCap::pecRound;
    case TPenStyleEndCapType::psectSQUARE:
        return TPenEndCap::pecSquare;
    case TPenStyleEndCapType::psectFLAT:
        return TPenEndCap::pecFlat;
    default:
        return TPenEndCap::pecMask;
    }
}

} // namespace

void TMyShape::SetPS(TCanvas &canvas, TPenStyle style, TColor color, std::int32_t width,
                     TPen &oldPen, TPen &newPen)
{
    oldPen = canvas.Pen();
    newPen = oldPen; // the raster mode belongs to the canvas and is kept
    newPen.Style = style;
    newPen.Color = color;
    // Widths are document pixels on screen; a printer page is drawn at the zoom of its
    // resolution, so the pen grows with it and never vanishes.
    newPen.Width = canvas.IsPrinter() ? std::max(1, RoundEven(Zoom() * width)) : width;
    canvas.SetPen(newPen);
    canvas.SetGeometricPen(JoinOf(m_PenStyleJoinType), CapOf(m_PenStyleEndCapType));
}

void TMyShape::PowerDrawShape(TCanvas &canvas, std::span<const TPoint> pts, bool filled)
{
    if (pts.empty())
        return;
    if (filled) {
        const bool gradient =
            GradientStyle() != TGradientStyle::gsNone && !GradientBitmap().IsEmpty();
        if (gradient) {
            const TRegion region(pts, TFillMode::fmWinding);
            const std::int32_t w = RoundEven(Zoom() * GetMyWidth());
            const std::int32_t h = RoundEven(Zoom() * GetMyHeight());
            if (w > 0 && h > 0) {
                const TBitmap turned = RotateBitmap(GradientBitmap(), -m_Angle, w, h);
                canvas.SelectClipRgn(&region);
                const TMyPoint lt = ZoomedValuePt(GradientLeftTop());
                canvas.Draw(RoundEven(lt.X), RoundEven(lt.Y), turned.Image());
            }
            // A hollow or hatched brush lets the gradient underneath show.
            canvas.FillRgn(region, m_Brush);
        } else {
            canvas.FillPolygon(pts, TFillMode::fmWinding, m_Brush);
        }
        // Also ends any clipping the caller had set, as it always has.
        canvas.SelectClipRgn(nullptr);
    }
    TPen oldPen, newPen;
    SetPS(canvas, m_Pen.Style, m_Pen.Color, m_Pen.Width, oldPen, newPen);
    canvas.StrokeClosedFigure(pts);
    canvas.ClearGeometricPen();
    canvas.SetPen(oldPen);
}

// ---- Texts ----

namespace {

// With LogUse on, the logical height stands in for the font's point size.
TFont LogicalFont(const TFont &font, bool logUse, std::int32_t logHeight)
{
    if (!logUse)
        return font;
    TFont f = font;
    f.SetSize(logHeight);
    return f;
}

} // namespace

void TMyShape::MyLogTextOut(TCanvas &canvas, std::int32_t x, std::int32_t y, const QString &text,
                            const TFont &font, double scale, double angle) const
{
    tessal::MyLogTextOut(canvas, x, y, text, LogicalFont(font, LogUse(), LogHeight()), scale,
                         angle);
}

TPoint TMyShape::GetTextWidthHeight(TCanvas &canvas, const QString &text, const TFont &font,
                                    double scale, double angle) const
{
    return tessal::GetTextWidthHeight(canvas, text, LogicalFont(font, LogUse(), LogHeight()), scale,
                                      angle);
}

std::int32_t TMyShape::GetTextLineHeight(TCanvas &canvas, const TFont &font, double scale) const
{
    return tessal::GetTextLineHeight(canvas, LogicalFont(font, LogUse(), LogHeight()), scale);
}

// The info texts are upright (angle 0) whatever the shape's angle: they are centred on the
// text point by their measured box, which only holds for unturned text.
void TMyShape::DrawInfo(TCanvas &canvas)
{
    if (!m_CaptionShow)
        return;
    const double z = Zoom();
    const double ax = RoundEven(m_TextPoint.X * z);
    const double ay = RoundEven(m_TextPoint.Y * z);
    if (!Info().isEmpty()) {
        const TPoint size = GetTextWidthHeight(canvas, Info(), m_Font, z, 0);
        MyLogTextOut(canvas, RoundEven(ax - size.X / 2.0), RoundEven(ay - size.Y / 2.0), Info(),
                     m_Font, z, 0);
        return;
    }
    if (MultiInfo().isEmpty())
        return;
    std::int32_t blockWidth = 0;
    std::int32_t blockHeight = 0;
    std::int32_t lineHeight = 0;
    for (const QString &line : MultiInfo()) {
        const TPoint size = GetTextWidthHeight(canvas, line, m_Font, z, 0);
        blockWidth = std::max(blockWidth, size.X);
        blockHeight += size.Y;
        lineHeight = size.Y;
    }
    const std::int32_t left = RoundEven(ax - blockWidth / 2.0);
    std::int32_t y = RoundEven(ay - blockHeight / 2.0);
    // Every line advances by the height of the last line measured above: the lines of one
    // font are equally high, and this is how the block has always been laid out.
    for (const QString &line : MultiInfo()) {
        const std::int32_t w = GetTextWidthHeight(canvas, line, m_Font, z, 0).X;
        std::int32_t x = left;
        if (MultiInfoAlignment() == TAlignment::taRightJustify)
            x = left + blockWidth - w;
        else if (MultiInfoAlignment() == TAlignment::taCenter)
            x = left + RoundEven((blockWidth - w) / 2.0);
        MyLogTextOut(canvas, x, y, line, m_Font, z, 0);
        y += lineHeight;
    }
}

} // namespace tessal
