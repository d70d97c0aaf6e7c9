// SPDX-License-Identifier: MIT
// TMyImage: a picture stretched into a rectangle, with its adjustments.
#pragma once

#include <tessal/platform/bitmap.h>
#include <tessal/shapes/rectangle.h>

#include <optional>
#include <span>

namespace tessal {

// The picture is kept as loaded; brightness, contrast and grey scale are applied when it
// is drawn, so changing them back restores the original. The setters store and ask for a
// repaint.
//
// Drawing: the picture is stretched to the rectangle's upright size at the zoom, turned with
// Angle, and shown through the rectangle's outline (clipped to it). The adjusted copy is
// made once and kept until the picture or a setting changes: brightness first, then
// contrast, then grey scale, then the mirror of IsFlipHorz (left-right) and IsFlipVert
// (top-bottom) in the shape's own frame. With Transparent, the pixels of the adjusted copy
// that have the transparent colour are left out: under tmAuto that colour is the adjusted
// picture's bottom-left pixel (before mirroring), under tmFixed it is TransparentColor.
// Border outlines the rectangle with the pen; an image without a picture always shows its
// outline so that it can be found and selected.
class TMyImage : public TMyRectangle
{
    Q_GADGET
    Q_PROPERTY(tessal::TBitmap Bitmap READ Bitmap WRITE SetBitmap)
    Q_PROPERTY(int Brightness READ Brightness WRITE SetBrightness)
    Q_PROPERTY(int Contrast READ Contrast WRITE SetContrast)
    Q_PROPERTY(bool Transparent READ Transparent WRITE SetTransparent)
    Q_PROPERTY(bool Border READ Border WRITE SetBorder)
    Q_PROPERTY(bool GrayScale READ GrayScale WRITE SetGrayScale)
    Q_PROPERTY(tessal::TColor TransparentColor READ TransparentColor WRITE SetTransparentColor)
    Q_PROPERTY(tessal::ShapeEnums::TTransparentMode TransparentMode READ TransparentMode WRITE
                   SetTransparentMode)

public:
    using TMyRectangle::TMyRectangle;

    const QMetaObject *MetaObject() const override { return &staticMetaObject; }
    QString ClassName() const override { return QStringLiteral("TMyImage"); }
    // The class's part of the stored record, after its parent's.
    void SaveToStream(BinaryStream &stream) const override;
    void LoadFromStream(BinaryStream &stream) override;

    void Assign(const TMyShape &source) override;
    void AssignWithoutRelation(const TMyShape &source) override;
    void Draw(TCanvas &canvas) override;

    // Reads the picture (BMP, JPEG, icon, EMF, WMF) and takes it; false, the picture left
    // unchanged and reason set when the file cannot be read.
    bool LoadFromFile(const QString &fileName, QString *reason = nullptr);
    // The picture as shown before stretching and turning: adjusted and mirrored.
    TBitmap AdjustedBitmap() const;
    // The colour left out while Transparent is on.
    TColor TransparentKey() const;

    const TBitmap &Bitmap() const { return m_Bitmap; }
    void SetBitmap(const TBitmap &bitmap);
    // Added to every colour byte, clamped (0 leaves the picture as it is).
    std::int32_t Brightness() const { return m_Brightness; }
    void SetBrightness(std::int32_t delta);
    // Positive values push bytes away from the middle grey, negative ones pull them in.
    std::int32_t Contrast() const { return m_Contrast; }
    void SetContrast(std::int32_t k);
    bool Transparent() const { return m_Transparent; }
    void SetTransparent(bool on);
    // A frame in the shape's pen around the picture.
    bool Border() const { return m_Border; }
    void SetBorder(bool on);
    bool GrayScale() const { return m_GrayScale; }
    void SetGrayScale(bool on);
    TColor TransparentColor() const { return m_TransparentColor; }
    void SetTransparentColor(TColor color);
    TTransparentMode TransparentMode() const { return m_TransparentMode; }
    void SetTransparentMode(TTransparentMode mode);

protected:
    bool HasUpright() const override { return true; }

private:
    void CopyImageFields(const TMyShape &source);
    void RefreshCache() const;
    // The turned picture placed about the centre, clipped to the outline.
    void DrawPicture(TCanvas &canvas, std::span<const TPoint> corners);

    // What the cached copy was made from.
    struct TCacheKey
    {
        qint64 Picture = 0;
        std::int32_t Brightness = 0, Contrast = 0;
        bool GrayScale = false, FlipHorz = false, FlipVert = false;
        friend bool operator==(const TCacheKey &, const TCacheKey &) = default;
    };
    mutable std::optional<TCacheKey> m_CacheKey;
    mutable TBitmap m_Adjusted;
    mutable TColor m_AutoKey = clWhite;

    TBitmap m_Bitmap;
    std::int32_t m_Brightness = 0;
    std::int32_t m_Contrast = 0;
    bool m_Transparent = false;
    bool m_Border = false;
    bool m_GrayScale = false;
    TColor m_TransparentColor = clWhite;
    TTransparentMode m_TransparentMode = TTransparentMode::tmAuto;
};

} // namespace tessal
