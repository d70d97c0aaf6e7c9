// SPDX-License-Identifier: MIT
// TCanvas text: logical fonts, text output and measurement.
#include "canvas_p.h"

#include <QFontMetrics>

#include <algorithm>
#include <cmath>

namespace tessal {

namespace {

constexpr int kDefaultPixelHeight = 11; // a height of 0 asks for the default font

QFont BaseFont(const TLogFont &lf)
{
    QFont font;
    if (!lf.FaceName.isEmpty())
        font.setFamily(lf.FaceName);
    // Aliased glyphs and no kerning: text looks the same on every machine and advances
    // character by character.
    font.setStyleStrategy(QFont::StyleStrategy(QFont::NoAntialias | QFont::NoSubpixelAntialias));
    font.setKerning(false);
    font.setHintingPreference(QFont::PreferFullHinting);
    const int weight = lf.Weight <= 0 ? 400 : std::clamp(lf.Weight, 1, 1000);
    font.setWeight(QFont::Weight(weight));
    font.setItalic(lf.Italic);
    font.setUnderline(lf.Underline);
    font.setStrikeOut(lf.StrikeOut);
    return font;
}

int CellHeight(QFont font, int pixelSize, const QPaintDevice *device)
{
    font.setPixelSize(pixelSize);
    const QFontMetrics m(font, device);
    return m.ascent() + m.descent();
}

// A positive height asks for the whole cell (ascent + descent); take the largest em size
// whose cell fits, but never less than one pixel. Integer sizes cannot always fill the cell
// exactly, so text measures the requested height and the glyphs hang from its top.
int PixelSizeForCell(const QFont &font, int cell, const QPaintDevice *device)
{
    int size = cell;
    const int first = CellHeight(font, size, device);
    if (first > 0)
        size = std::max(1, int(std::lround(double(cell) * cell / first)));
    while (size > 1 && CellHeight(font, size, device) > cell)
        --size;
    while (CellHeight(font, size + 1, device) <= cell)
        ++size;
    return size;
}

TLogFont LogFontOf(const TFont &f)
{
    TLogFont lf;
    lf.Height = f.Height();
    lf.Weight = f.Bold() ? 700 : 400;
    lf.Italic = f.Italic();
    lf.Underline = f.Underline();
    lf.StrikeOut = f.StrikeOut();
    lf.Charset = f.Charset;
    lf.FaceName = f.Name;
    lf.Color = f.Color;
    return lf;
}

// Whether two fonts differ in anything but colour: a colour change keeps the selected
// logical font (and with it the escapement).
bool SameShape(TFont a, const TFont &b)
{
    a.Color = b.Color;
    return a == b;
}

} // namespace

void TCanvas::SetFont(const TFont &font)
{
    m_Font = font;
    SelectLogFont(LogFontOf(font));
}

void TCanvas::SelectLogFont(const TLogFont &lf)
{
    // Texts select their font before every measurement and output; the same font again
    // keeps the one built.
    const bool same = d->FontBuilt && lf == m_LogFont;
    m_LogFont = lf;
    m_Font.Color = lf.Color;
    d->SyncedFont = m_Font;
    if (same)
        return;
    d->FontBuilt = true;
    QFont font = BaseFont(lf);
    d->CellHeight = std::max(lf.Height, 0);
    if (lf.Height > 0)
        font.setPixelSize(PixelSizeForCell(font, lf.Height, m_Device));
    else
        font.setPixelSize(lf.Height < 0 ? -lf.Height : kDefaultPixelHeight);
    d->QtFont = font;
}

void TCanvas::SyncFont()
{
    if (!SameShape(m_Font, d->SyncedFont))
        SetFont(m_Font);
}

TPoint TCanvas::TextExtent(const QString &text) const
{
    const_cast<TCanvas *>(this)->SyncFont();
    QFont font = d->QtFont;
    if (m_CharExtra != 0)
        font.setLetterSpacing(QFont::AbsoluteSpacing, m_CharExtra);
    const QFontMetrics m(font, m_Device);
    return {m.horizontalAdvance(text), d->CellHeight ? d->CellHeight : m.ascent() + m.descent()};
}

QFont TCanvas::TextFont() const
{
    const_cast<TCanvas *>(this)->SyncFont();
    QFont font = d->QtFont;
    if (m_CharExtra != 0)
        font.setLetterSpacing(QFont::AbsoluteSpacing, m_CharExtra);
    return font;
}

std::int32_t TCanvas::LineHeight() const
{
    const_cast<TCanvas *>(this)->SyncFont();
    if (d->CellHeight)
        return d->CellHeight;
    const QFontMetrics m(d->QtFont, m_Device);
    return m.ascent() + m.descent();
}

void TCanvas::TextOut(std::int32_t x, std::int32_t y, const QString &text)
{
    SyncFont();
    QFont font = d->QtFont;
    if (m_CharExtra != 0)
        font.setLetterSpacing(QFont::AbsoluteSpacing, m_CharExtra);
    const QFontMetrics m(font, m_Device);
    QPainter &p = d->Painter;
    // The escapement turns the text counter-clockwise about the top-left of its cell.
    QTransform place;
    place.translate(x, y);
    place.rotate(-m_LogFont.Escapement / 10.0);
    p.setWorldTransform(place * DeviceTransform());
    p.setCompositionMode(QPainter::CompositionMode_SourceOver);
    if (!m_BkTransparent && m_Brush.Style == TBrushStyle::bsSolid && !m_Brush.HasBitmap())
        p.fillRect(QRectF(0, 0, m.horizontalAdvance(text),
                          d->CellHeight ? d->CellHeight : m.ascent() + m.descent()),
                   ToQColor(m_Brush.Color));
    p.setFont(font);
    p.setPen(ToQColor(m_Font.Color));
    p.setBrush(Qt::NoBrush);
    p.drawText(QPointF(0, m.ascent()), text);
    p.setWorldTransform(DeviceTransform());
}

} // namespace tessal
