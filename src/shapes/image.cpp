// SPDX-License-Identifier: MIT
// TMyImage: the picture and its adjustment settings, their setters and copying.
#include <tessal/geometry/bitmapops.h>
#include <tessal/geometry/geometry.h>
#include <tessal/shapes/image.h>
#include <tessal/shapes/shapetools.h>

#include <array>
#include <cmath>

namespace tessal {

namespace {

// The image with every pixel of colour key made fully transparent.
QImage WithoutColour(const QImage &image, TColor key)
{
    QImage out = image.convertToFormat(QImage::Format_ARGB32);
    const QRgb rgb = qRgb(GetRValue(key), GetGValue(key), GetBValue(key)) & 0xFFFFFFu;
    for (int y = 0; y < out.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(out.scanLine(y));
        for (int x = 0; x < out.width(); ++x)
            if ((line[x] & 0xFFFFFFu) == rgb)
                line[x] = 0;
    }
    return out;
}

} // namespace

void TMyImage::CopyImageFields(const TMyShape &source)
{
    const auto *image = dynamic_cast<const TMyImage *>(&source);
    if (!image || image == this)
        return;
    m_Bitmap = image->m_Bitmap;
    m_Brightness = image->m_Brightness;
    m_Contrast = image->m_Contrast;
    m_Transparent = image->m_Transparent;
    m_Border = image->m_Border;
    m_GrayScale = image->m_GrayScale;
    m_TransparentColor = image->m_TransparentColor;
    m_TransparentMode = image->m_TransparentMode;
}

void TMyImage::Assign(const TMyShape &source)
{
    TMyRectangle::Assign(source);
    CopyImageFields(source);
}

void TMyImage::AssignWithoutRelation(const TMyShape &source)
{
    TMyRectangle::AssignWithoutRelation(source);
    CopyImageFields(source);
}

void TMyImage::SetBitmap(const TBitmap &bitmap)
{
    StoreAndRepaint(m_Bitmap, bitmap);
}

void TMyImage::SetBrightness(std::int32_t delta)
{
    StoreAndRepaint(m_Brightness, delta);
}

void TMyImage::SetContrast(std::int32_t k)
{
    StoreAndRepaint(m_Contrast, k);
}

void TMyImage::SetTransparent(bool on)
{
    StoreAndRepaint(m_Transparent, on);
}

void TMyImage::SetBorder(bool on)
{
    StoreAndRepaint(m_Border, on);
}

void TMyImage::SetGrayScale(bool on)
{
    StoreAndRepaint(m_GrayScale, on);
}

void TMyImage::SetTransparentColor(TColor color)
{
    StoreAndRepaint(m_TransparentColor, color);
}

void TMyImage::SetTransparentMode(TTransparentMode mode)
{
    StoreAndRepaint(m_TransparentMode, mode);
}

bool TMyImage::LoadFromFile(const QString &fileName, QString *reason)
{
    TBitmap picture = LoadGraphicsFile(fileName, reason);
    if (picture.IsEmpty())
        return false;
    SetBitmap(picture);
    return true;
}

// ---- The adjusted copy ----

void TMyImage::RefreshCache() const
{
    const TCacheKey key{m_Bitmap.Image().cacheKey(),
                        m_Brightness,
                        m_Contrast,
                        m_GrayScale,
                        IsFlipHorz(),
                        IsFlipVert()};
    if (m_CacheKey == key)
        return;
    // Copy on write: the adjustments detach the copy, the original is never touched.
    TBitmap copy = m_Bitmap;
    AdjustBrightBitmap(copy, m_Brightness);
    AdjustContrastBitmap(copy, m_Contrast);
    GrayScaleBitmap(copy, m_GrayScale);
    m_AutoKey = copy.IsEmpty() ? clWhite : copy.Pixel(0, copy.Height() - 1);
    FlipBitmap(copy, IsFlipHorz(), IsFlipVert());
    m_Adjusted = copy;
    m_CacheKey = key;
}

TBitmap TMyImage::AdjustedBitmap() const
{
    RefreshCache();
    return m_Adjusted;
}

TColor TMyImage::TransparentKey() const
{
    if (m_TransparentMode == TTransparentMode::tmFixed)
        return ColorToRGB(m_TransparentColor);
    RefreshCache();
    return m_AutoKey;
}

// ---- Painting ----

void TMyImage::DrawPicture(TCanvas &canvas, std::span<const TPoint> corners)
{
    const TBitmap adjusted = AdjustedBitmap();
    const double z = Zoom();
    const std::int32_t w = RoundEven(z * GetMyWidth());
    const std::int32_t h = RoundEven(z * GetMyHeight());
    const TBitmap turned = RotateBitmap(adjusted, -Angle(), w, h);
    if (turned.IsEmpty())
        return;
    const QImage shown =
        m_Transparent ? WithoutColour(turned.Image(), TransparentKey()) : turned.Image();
    // The turned copy is the bounding box of the turned rectangle, centred on the shape.
    const TMyPoint c = GetCenterPointInZoom();
    const TRegion region(corners, TFillMode::fmWinding);
    canvas.SelectClipRgn(&region);
    canvas.Draw(RoundEven(c.X - turned.Width() / 2.0), RoundEven(c.Y - turned.Height() / 2.0),
                shown);
    canvas.SelectClipRgn(nullptr);
}

void TMyImage::Draw(TCanvas &canvas)
{
    SetDrawShapeMode(*this, canvas);
    if (GetPointsCount() >= 4) {
        std::array<TPoint, 5> pts;
        for (std::size_t i = 0; i < 4; ++i)
            pts[i] = MyPtToPt(GetPointInZoom(std::int32_t(i)));
        pts[4] = pts[0];
        if (!m_Bitmap.IsEmpty())
            DrawPicture(canvas, std::span(pts.data(), 4));
        if (m_Border || m_Bitmap.IsEmpty())
            PowerDrawShape(canvas, pts, false);
    }
    DrawInfo(canvas);
}

} // namespace tessal
