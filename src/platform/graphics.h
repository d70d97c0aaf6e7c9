// SPDX-License-Identifier: MIT
// Pen, brush and font: small value types describing how a canvas draws.
#pragma once

#include <tessal/platform/color.h>
#include <tessal/platform/enums.h>

#include <QImage>
#include <QMetaType>
#include <QString>

#include <cstdint>

namespace tessal {

class TPen
{
    Q_GADGET
    Q_PROPERTY(tessal::TColor Color MEMBER Color)
    Q_PROPERTY(tessal::PlatformEnums::TPenMode Mode MEMBER Mode)
    Q_PROPERTY(tessal::PlatformEnums::TPenStyle Style MEMBER Style)
    Q_PROPERTY(int Width MEMBER Width)
public:
    TColor Color = clBlack;
    TPenMode Mode = TPenMode::pmCopy;
    TPenStyle Style = TPenStyle::psSolid;
    std::int32_t Width = 1;

    friend bool operator==(const TPen &, const TPen &) = default;
};

class TBrush
{
    Q_GADGET
    Q_PROPERTY(tessal::TColor Color MEMBER Color)
    Q_PROPERTY(tessal::PlatformEnums::TBrushStyle Style MEMBER Style)
public:
    TColor Color = clWhite;
    TBrushStyle Style = TBrushStyle::bsSolid;
    // Pattern picture; when set it paints instead of Color and Style.
    QImage Bitmap;

    bool HasBitmap() const { return !Bitmap.isNull(); }
    friend bool operator==(const TBrush &a, const TBrush &b)
    {
        return a.Color == b.Color && a.Style == b.Style && a.Bitmap == b.Bitmap;
    }
};

// A font description. Height and Size are two views of one value: a negative Height is the
// character height in pixels, Size the height in points at PixelsPerInch.
class TFont
{
    Q_GADGET
    Q_PROPERTY(QString Name MEMBER Name)
    Q_PROPERTY(int Charset MEMBER Charset)
    Q_PROPERTY(tessal::TColor Color MEMBER Color)
    Q_PROPERTY(int Height READ Height WRITE SetHeight)
    Q_PROPERTY(int Size READ Size WRITE SetSize)
    Q_PROPERTY(tessal::PlatformEnums::TFontPitch Pitch MEMBER Pitch)
    Q_PROPERTY(int PixelsPerInch MEMBER PixelsPerInch)
    Q_PROPERTY(int Style MEMBER Style)
public:
    static constexpr std::uint8_t DEFAULT_CHARSET = 1;

    QString Name = QStringLiteral("Tahoma");
    std::uint8_t Charset = DEFAULT_CHARSET;
    TColor Color = clWindowText;
    TFontPitch Pitch = TFontPitch::fpDefault;
    std::int32_t PixelsPerInch = 96;
    TFontStyles Style = 0;

    std::int32_t Height() const { return m_Height; }
    void SetHeight(std::int32_t h) { m_Height = h; }
    // Points: -Height * 72 / PixelsPerInch, rounded.
    std::int32_t Size() const;
    void SetSize(std::int32_t points);

    bool Bold() const { return Style & fsBold; }
    bool Italic() const { return Style & fsItalic; }
    bool Underline() const { return Style & fsUnderline; }
    bool StrikeOut() const { return Style & fsStrikeOut; }

    friend bool operator==(const TFont &, const TFont &) = default;

private:
    std::int32_t m_Height = -11; // 8 points at 96 pixels per inch
};

// MulDiv of the platform: a * b / c rounded to nearest, halves away from zero; -1 for c = 0.
std::int32_t MulDiv(std::int32_t a, std::int32_t b, std::int32_t c);

} // namespace tessal

Q_DECLARE_METATYPE(tessal::TPen)
Q_DECLARE_METATYPE(tessal::TBrush)
Q_DECLARE_METATYPE(tessal::TFont)
