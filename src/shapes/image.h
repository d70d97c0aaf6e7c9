// SPDX-License-Identifier: MIT
// TMyImage: a picture stretched into a rectangle, with its adjustments.
#pragma once

#include <tessal/platform/bitmap.h>
#include <tessal/shapes/rectangle.h>

namespace tessal {

// The picture is kept as loaded; brightness, contrast and grey scale are applied when it
// is drawn, so changing them back restores the original. The setters store and ask for a
// repaint.
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

    void Assign(const TMyShape &source) override;
    void AssignWithoutRelation(const TMyShape &source) override;

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

private:
    void CopyImageFields(const TMyShape &source);

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
