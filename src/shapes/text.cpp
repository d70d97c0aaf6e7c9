// SPDX-License-Identifier: MIT
// TMyText: the text settings, their setters, copying and painting (the layout is in
// textlayout.cpp).
#include <tessal/geometry/canvasmodes.h>
#include <tessal/geometry/geometry.h>
#include <tessal/shapes/shapetools.h>
#include <tessal/shapes/text.h>

#include <array>

namespace tessal {

void TMyText::CopyTextFields(const TMyShape &source)
{
    const auto *text = dynamic_cast<const TMyText *>(&source);
    if (!text || text == this)
        return;
    m_IsBorder = text->m_IsBorder;
    m_IsSolid = text->m_IsSolid;
    m_Lines = text->m_Lines;
    m_VAlignment = text->m_VAlignment;
    m_HAlignment = text->m_HAlignment;
    m_WordWrap = text->m_WordWrap;
}

void TMyText::Assign(const TMyShape &source)
{
    TMyRectangle::Assign(source);
    CopyTextFields(source);
}

void TMyText::AssignWithoutRelation(const TMyShape &source)
{
    TMyRectangle::AssignWithoutRelation(source);
    CopyTextFields(source);
}

void TMyText::SetIsBorder(bool on)
{
    StoreAndRepaint(m_IsBorder, on);
}

void TMyText::SetIsSolid(bool on)
{
    StoreAndRepaint(m_IsSolid, on);
}

void TMyText::SetLines(const QStringList &lines)
{
    StoreAndRepaint(m_Lines, lines);
}

void TMyText::SetVAlignment(TVAlignment alignment)
{
    StoreAndRepaint(m_VAlignment, alignment);
}

void TMyText::SetHAlignment(TAlignment alignment)
{
    StoreAndRepaint(m_HAlignment, alignment);
}

void TMyText::SetWordWrap(bool on)
{
    StoreAndRepaint(m_WordWrap, on);
}

// ---- Painting ----

TMyPoint TMyText::GlyphShift(TCanvas &canvas, const TPlacedLine &line) const
{
    const double z = Zoom();
    if (m_HAlignment == TAlignment::taLeftJustify || z == 1)
        return {};
    // The zoomed glyphs run a little longer or shorter than the line the layout placed; they
    // keep the end the alignment holds (the right end, or the middle) where it placed it.
    double shift = line.Width * z - GetTextWidthHeight(canvas, line.Text, Font(), z, 0).X;
    if (m_HAlignment == TAlignment::taCenter)
        shift /= 2;
    return RotateAPoint(TMyPoint{float(shift), 0}, TMyPoint{0, 0}, Angle());
}

void TMyText::DrawLines(TCanvas &canvas)
{
    for (const TPlacedLine &line : PlacedLines(canvas)) {
        const TMyPoint shift = GlyphShift(canvas, line);
        MyLogTextOut(canvas, RoundEven(line.TopLeft.X + shift.X),
                     RoundEven(line.TopLeft.Y + shift.Y), line.Text, Font(), Zoom(), Angle());
    }
}

void TMyText::Draw(TCanvas &canvas)
{
    SetDrawShapeMode(*this, canvas);
    if (GetPointsCount() < 4)
        return;
    std::array<TPoint, 5> pts;
    for (std::size_t i = 0; i < 4; ++i)
        pts[i] = MyPtToPt(GetPointInZoom(std::int32_t(i)));
    pts[4] = pts[0];
    if (m_IsSolid)
        canvas.FillRgn(TRegion(std::span(pts.data(), 4), TFillMode::fmWinding), Brush());
    if (m_IsBorder)
        PowerDrawShape(canvas, pts, false);
    DrawLines(canvas);
}

} // namespace tessal
