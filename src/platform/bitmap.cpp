// SPDX-License-Identifier: MIT
// 24-bit bitmaps and their Windows BMP file form.
#include <tessal/platform/bitmap.h>

#include <QBuffer>
#include <QImageReader>

namespace tessal {

namespace {

constexpr int kFileHeaderSize = 14;
constexpr int kInfoHeaderSize = 40;

void Put16(QByteArray &out, std::uint16_t v)
{
    out.append(char(v & 0xFF));
    out.append(char(v >> 8));
}

void Put32(QByteArray &out, std::uint32_t v)
{
    for (int i = 0; i < 4; ++i, v >>= 8)
        out.append(char(v & 0xFF));
}

QImage WhiteImage(std::int32_t width, std::int32_t height)
{
    if (width <= 0 || height <= 0)
        return {};
    QImage image(width, height, QImage::Format_BGR888);
    image.fill(Qt::white);
    return image;
}

} // namespace

TBitmap::TBitmap(std::int32_t width, std::int32_t height)
    : m_Image(WhiteImage(width, height))
{}

TBitmap::TBitmap(const QImage &image)
    : m_Image(image.isNull() ? QImage() : image.convertToFormat(QImage::Format_BGR888))
{}

void TBitmap::SetSize(std::int32_t width, std::int32_t height)
{
    m_Image = WhiteImage(width, height);
}

void TBitmap::Fill(TColor color)
{
    if (!m_Image.isNull())
        m_Image.fill(ToQColor(color));
}

std::uint8_t *TBitmap::ScanLine(std::int32_t y)
{
    return m_Image.scanLine(y);
}

const std::uint8_t *TBitmap::ScanLine(std::int32_t y) const
{
    return m_Image.constScanLine(y);
}

TColor TBitmap::Pixel(std::int32_t x, std::int32_t y) const
{
    if (!m_Image.valid(x, y))
        return clBlack;
    const std::uint8_t *p = m_Image.constScanLine(y) + 3 * x;
    return RGBToColor(p[2], p[1], p[0]);
}

void TBitmap::SetPixel(std::int32_t x, std::int32_t y, TColor color)
{
    if (!m_Image.valid(x, y))
        return;
    const TColor rgb = ColorToRGB(color);
    std::uint8_t *p = m_Image.scanLine(y) + 3 * x;
    p[0] = GetBValue(rgb);
    p[1] = GetGValue(rgb);
    p[2] = GetRValue(rgb);
}

QByteArray TBitmap::SaveToBmp() const
{
    if (IsEmpty())
        return {};
    const std::uint32_t rowBytes = (3u * std::uint32_t(Width()) + 3u) & ~3u;
    const std::uint32_t pixelBytes = rowBytes * std::uint32_t(Height());
    const std::uint32_t offset = kFileHeaderSize + kInfoHeaderSize;
    QByteArray out;
    out.reserve(qsizetype(offset + pixelBytes));
    out.append("BM", 2);
    Put32(out, offset + pixelBytes);
    Put32(out, 0); // two reserved words
    Put32(out, offset);
    Put32(out, kInfoHeaderSize);
    Put32(out, std::uint32_t(Width()));
    Put32(out, std::uint32_t(Height())); // positive: rows run bottom-up
    Put16(out, 1);                       // planes
    Put16(out, 24);                      // bits per pixel
    Put32(out, 0);                       // no compression
    Put32(out, pixelBytes);
    Put32(out, 0); // horizontal and vertical resolution: none given
    Put32(out, 0);
    Put32(out, 0); // no palette
    Put32(out, 0);
    const QByteArray padding(qsizetype(rowBytes - 3u * std::uint32_t(Width())), '\0');
    for (std::int32_t y = Height() - 1; y >= 0; --y) {
        out.append(reinterpret_cast<const char *>(ScanLine(y)), 3 * Width());
        out.append(padding);
    }
    return out;
}

bool TBitmap::LoadFromBmp(const QByteArray &bytes)
{
    QByteArray data = bytes;
    QBuffer buffer(&data);
    if (!buffer.open(QIODevice::ReadOnly))
        return false;
    QImageReader reader(&buffer, "bmp");
    QImage image;
    if (!reader.read(&image) || image.isNull())
        return false;
    m_Image = image.convertToFormat(QImage::Format_BGR888);
    return true;
}

} // namespace tessal
