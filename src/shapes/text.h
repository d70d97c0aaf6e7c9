// SPDX-License-Identifier: MIT
// TMyText: lines of text laid out in a rectangle.
#pragma once

#include <tessal/shapes/rectangle.h>

#include <vector>

namespace tessal {

// The text is Lines, laid out inside the four corners by the two alignments. A new text
// shape has no border, a clear background, top-left alignment and no word wrap. The
// setters store and ask for a repaint.
//
// Layout happens in the shape's own upright frame, in document units, with the font
// measured at its own size whatever the zoom: the lines keep an inner margin of 2 document
// pixels from the sides, every line is as high as the font's cell, and the block of lines is
// placed by VAlignment and each line by HAlignment. So the lines break, and stand, at the
// same places at every zoom; the zoom only scales the result and the glyphs drawn (whose
// hinted size is not always exactly zoom times theirs). The block is then turned with Angle
// about the rectangle's centre, and the glyphs with it. With WordWrap a line wider than the room
// between the margins is broken after the last word that fits (a word wider than the room on its
// own is broken between characters); without it, and for text that does not fit vertically, the
// text runs beyond the rectangle. IsSolid fills the rectangle with the brush, IsBorder outlines it
// with the pen; the info texts are not drawn (the text shape is its own text).
class TMyText : public TMyRectangle
{
    Q_GADGET
    Q_PROPERTY(bool IsBorder READ IsBorder WRITE SetIsBorder)
    Q_PROPERTY(bool IsSolid READ IsSolid WRITE SetIsSolid)
    Q_PROPERTY(QStringList Lines READ Lines WRITE SetLines)
    Q_PROPERTY(tessal::ShapeEnums::TVAlignment VAlignment READ VAlignment WRITE SetVAlignment)
    Q_PROPERTY(tessal::PlatformEnums::TAlignment HAlignment READ HAlignment WRITE SetHAlignment)
    Q_PROPERTY(bool WordWrap READ WordWrap WRITE SetWordWrap)

public:
    using TMyRectangle::TMyRectangle;

    const QMetaObject *MetaObject() const override { return &staticMetaObject; }
    QString ClassName() const override { return QStringLiteral("TMyText"); }
    // The class's part of the stored record, after its parent's.
    void SaveToStream(BinaryStream &stream) const override;
    void LoadFromStream(BinaryStream &stream) override;

    void Assign(const TMyShape &source) override;
    void AssignWithoutRelation(const TMyShape &source) override;
    void Draw(TCanvas &canvas) override;

    // The lines as they are shown: Lines, broken where word wrap breaks them, the same at
    // every zoom. The canvas is used for measuring.
    QStringList LaidOutLines(TCanvas &canvas) const;
    // One laid-out line as Draw places it: the text and the top-left corner of its cell in
    // screen pixels at the current zoom (its place at zoom 1 times the zoom), unrounded and
    // already turned with the block about the centre; and its width in document units,
    // measured only where the alignment needs it (0 for left-aligned text).
    struct TPlacedLine
    {
        QString Text;
        TMyPoint TopLeft;
        std::int32_t Width = 0;
    };
    std::vector<TPlacedLine> PlacedLines(TCanvas &canvas) const;

    // The outline is drawn with the shape's pen.
    bool IsBorder() const { return m_IsBorder; }
    void SetIsBorder(bool on);
    // The rectangle is filled with the shape's brush behind the text.
    bool IsSolid() const { return m_IsSolid; }
    void SetIsSolid(bool on);
    const QStringList &Lines() const { return m_Lines; }
    void SetLines(const QStringList &lines);
    TVAlignment VAlignment() const { return m_VAlignment; }
    void SetVAlignment(TVAlignment alignment);
    TAlignment HAlignment() const { return m_HAlignment; }
    void SetHAlignment(TAlignment alignment);
    bool WordWrap() const { return m_WordWrap; }
    void SetWordWrap(bool on);

protected:
    bool HasUpright() const override { return true; }

private:
    struct TFrame
    {
        TMyPoint Centre;                                 // document
        double Left = 0, Top = 0, Right = 0, Bottom = 0; // the upright box, document
    };
    TFrame UprightFrame() const;
    // The width of text in document units: measured with the font at its own size.
    std::int32_t LayoutWidth(TCanvas &canvas, const QString &text) const;
    QStringList WrapLine(TCanvas &canvas, const QString &line, double room) const;
    // The top of the block and the left of one line in the upright frame, document units.
    double BlockTop(const TFrame &f, double blockHeight) const;
    double LineLeft(const TFrame &f, std::int32_t width) const;
    // Where the zoomed glyphs of a placed line start against the place the layout gave it.
    TMyPoint GlyphShift(TCanvas &canvas, const TPlacedLine &line) const;
    void DrawLines(TCanvas &canvas);
    void CopyTextFields(const TMyShape &source);

    bool m_IsBorder = false;
    bool m_IsSolid = false;
    QStringList m_Lines;
    TVAlignment m_VAlignment = TVAlignment::vaTop;
    TAlignment m_HAlignment = TAlignment::taLeftJustify;
    bool m_WordWrap = false;
};

} // namespace tessal
