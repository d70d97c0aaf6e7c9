// SPDX-License-Identifier: MIT
// 24-bit bitmaps: three bytes per pixel in blue, green, red order, row by row.
#pragma once

#include <tessal/platform/color.h>

#include <QByteArray>
#include <QImage>
#include <QString>

#include <cstdint>

namespace tessal {

// A value type (implicitly shared through QImage) that always holds 24-bit BGR pixels,
// so that the byte arithmetic of the bitmap operations is well defined.
class TBitmap
{
public:
    TBitmap() = default;
    TBitmap(std::int32_t width, std::int32_t height);
    // Converts any image to 24-bit BGR.
    explicit TBitmap(const QImage &image);

    bool IsEmpty() const
    {
        return m_Image.isNull() || m_Image.width() == 0 || m_Image.height() == 0;
    }
    std::int32_t Width() const { return m_Image.width(); }
    std::int32_t Height() const { return m_Image.height(); }
    // Resizes to width x height; the contents become white. Zero sizes empty the bitmap.
    void SetSize(std::int32_t width, std::int32_t height);
    void Clear() { m_Image = QImage(); }
    void Fill(TColor color);

    // Row y: 3 * Width() bytes, B G R per pixel.
    std::uint8_t *ScanLine(std::int32_t y);
    const std::uint8_t *ScanLine(std::int32_t y) const;

    TColor Pixel(std::int32_t x, std::int32_t y) const;
    void SetPixel(std::int32_t x, std::int32_t y, TColor color);

    const QImage &Image() const { return m_Image; }
    QImage &Image() { return m_Image; }

    // The Windows BMP file form (file header, info header, pixel rows) and back. Loading
    // accepts any BMP the platform decodes and converts it to 24 bits; it answers false on
    // bad data and leaves the bitmap unchanged.
    QByteArray SaveToBmp() const;
    bool LoadFromBmp(const QByteArray &bytes);

    friend bool operator==(const TBitmap &a, const TBitmap &b) { return a.m_Image == b.m_Image; }

private:
    QImage m_Image;
};

} // namespace tessal
