// SPDX-License-Identifier: MIT
// Byte arithmetic on 24-bit bitmaps, turned copies, and the picture-file reader.
#include <tessal/geometry/bitmapops.h>

#include "metafile_p.h"

#include <QFile>
#include <QFileInfo>
#include <QPainter>
#include <QSvgRenderer>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace tessal {

namespace {

std::uint8_t ClampByte(std::int64_t v)
{
    return static_cast<std::uint8_t>(std::clamp<std::int64_t>(v, 0, 255));
}

// Applies f to every channel byte of every row.
template <typename F>
void ForEachByte(TBitmap &bitmap, F f)
{
    const std::int32_t rowBytes = 3 * bitmap.Width();
    for (std::int32_t y = 0; y < bitmap.Height(); ++y) {
        std::uint8_t *row = bitmap.ScanLine(y);
        for (std::int32_t i = 0; i < rowBytes; ++i)
            row[i] = f(row[i]);
    }
}

// Side of the box that holds a turned side pair; the small slack keeps exact right angles
// from growing a pixel through rounding noise in cos and sin.
std::int32_t TurnedExtent(double along, double across)
{
    return static_cast<std::int32_t>(std::ceil(along + across - 1e-6));
}

// Composes a decoded picture over white, as drawing it into a fresh bitmap does: icons and
// other pictures with transparency keep a white background.
TBitmap OverWhite(const QImage &picture)
{
    QImage canvas(picture.size(), QImage::Format_RGB32);
    canvas.fill(Qt::white);
    QPainter painter(&canvas);
    painter.drawImage(0, 0, picture);
    painter.end();
    return TBitmap(canvas);
}

TBitmap DecodeRaster(const QByteArray &bytes, const char *format, const QString &kind,
                     QString &reason)
{
    QImage picture;
    if (!picture.loadFromData(bytes, format) || picture.isNull()) {
        reason = QStringLiteral("not a valid %1 picture").arg(kind);
        return {};
    }
    if (!detail::PictureSizeAcceptable(picture.width(), picture.height())) {
        reason = QStringLiteral("%1 picture too large").arg(kind);
        return {};
    }
    return OverWhite(picture);
}

TBitmap DecodeBmp(const QByteArray &bytes, QString &reason)
{
    TBitmap bitmap;
    if (!bitmap.LoadFromBmp(bytes)) {
        reason = QStringLiteral("not a valid BMP picture");
        return {};
    }
    return bitmap;
}

TBitmap DecodeMetafile(const QByteArray &bytes, const QString &kind, QString &reason)
{
#if defined(TESSAL_HAVE_EMF)
    if (kind == QLatin1String("EMF"))
        return detail::ReadEmfPicture(bytes, reason);
#endif
#if defined(TESSAL_HAVE_WMF)
    if (kind == QLatin1String("WMF"))
        return detail::ReadWmfPicture(bytes, reason);
#endif
    Q_UNUSED(bytes);
    reason = QStringLiteral("reading %1 pictures is not built in").arg(kind);
    return {};
}

} // namespace

namespace detail {

bool PictureSizeAcceptable(std::int64_t width, std::int64_t height)
{
    return width > 0 && height > 0 && width <= MaxPictureSide && height <= MaxPictureSide &&
           width * height <= MaxPictureArea;
}

TBitmap RenderSvgPicture(const QByteArray &svg, std::int32_t width, std::int32_t height)
{
    QSvgRenderer renderer(svg);
    if (!renderer.isValid() || !PictureSizeAcceptable(width, height))
        return {};
    QImage canvas(width, height, QImage::Format_RGB32);
    canvas.fill(Qt::white);
    QPainter painter(&canvas);
    renderer.render(&painter, QRectF(0, 0, width, height));
    painter.end();
    return TBitmap(canvas);
}

TBitmap DecodePicture(const QByteArray &bytes, const QString &kind, QString &reason)
{
    if (kind == QLatin1String("BMP"))
        return DecodeBmp(bytes, reason);
    if (kind == QLatin1String("JPG") || kind == QLatin1String("PEG"))
        return DecodeRaster(bytes, "JPEG", QStringLiteral("JPEG"), reason);
    if (kind == QLatin1String("ICO"))
        return DecodeRaster(bytes, "ICO", QStringLiteral("icon"), reason);
    if (kind == QLatin1String("PNG"))
        return DecodeRaster(bytes, "PNG", QStringLiteral("PNG"), reason);
    return DecodeMetafile(bytes, kind, reason);
}

} // namespace detail

void GrayScaleBitmap(TBitmap &bitmap, bool enabled)
{
    if (!enabled)
        return;
    for (std::int32_t y = 0; y < bitmap.Height(); ++y) {
        std::uint8_t *px = bitmap.ScanLine(y);
        for (std::int32_t x = 0; x < bitmap.Width(); ++x, px += 3) {
            const auto grey = static_cast<std::uint8_t>((px[0] + px[1] + px[2]) / 3);
            px[0] = px[1] = px[2] = grey;
        }
    }
}

void AdjustBrightBitmap(TBitmap &bitmap, std::int32_t delta)
{
    if (delta == 0)
        return;
    ForEachByte(bitmap, [delta](std::uint8_t c) { return ClampByte(std::int64_t(c) + delta); });
}

void AdjustContrastBitmap(TBitmap &bitmap, std::int32_t k)
{
    if (k == 0)
        return;
    // 127 is the pivot: bytes below 128 move down, the rest up (the reverse for negative k).
    // The division truncates toward zero, so a negative k rounds its pull towards 127 down.
    ForEachByte(bitmap, [k](std::uint8_t c) {
        const std::int64_t d = std::int64_t(std::abs(c - 127)) * k / 255;
        return ClampByte(c < 128 ? c - d : c + d);
    });
}

void FlipBitmap(TBitmap &bitmap, bool horizontal, bool vertical)
{
    if (bitmap.IsEmpty() || (!horizontal && !vertical))
        return;
    bitmap.Image() = bitmap.Image().mirrored(horizontal, vertical);
}

TBitmap RotateBitmap(const TBitmap &bitmap, double angle, std::int32_t width, std::int32_t height)
{
    if (bitmap.IsEmpty() || width <= 0 || height <= 0)
        return {};
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    const std::int32_t outW = TurnedExtent(width * std::abs(c), height * std::abs(s));
    const std::int32_t outH = TurnedExtent(width * std::abs(s), height * std::abs(c));
    if (!detail::PictureSizeAcceptable(outW, outH))
        return {};
    TBitmap out(outW, outH);
    out.Fill(clWhite);
    const double srcScaleX = double(bitmap.Width()) / width;
    const double srcScaleY = double(bitmap.Height()) / height;
    // Inverse mapping: each output pixel centre is turned back about the centre of the box
    // into the stretched picture and takes the nearest source pixel. A positive angle turns
    // the picture anticlockwise on the screen, so RotateBitmap(b, -a) matches shapes
    // turned by a with RotateAPoint.
    for (std::int32_t y = 0; y < outH; ++y) {
        std::uint8_t *dst = out.ScanLine(y);
        const double dy = y + 0.5 - outH / 2.0;
        for (std::int32_t x = 0; x < outW; ++x, dst += 3) {
            const double dx = x + 0.5 - outW / 2.0;
            const double sx = (dx * c - dy * s + width / 2.0) * srcScaleX;
            const double sy = (dx * s + dy * c + height / 2.0) * srcScaleY;
            const double fx = std::floor(sx);
            const double fy = std::floor(sy);
            if (fx < 0 || fy < 0 || fx >= bitmap.Width() || fy >= bitmap.Height())
                continue;
            const std::uint8_t *src =
                bitmap.ScanLine(static_cast<std::int32_t>(fy)) + 3 * static_cast<std::int32_t>(fx);
            std::copy(src, src + 3, dst);
        }
    }
    return out;
}

TBitmap LoadGraphicsFile(const QString &fileName, QString *reason)
{
    QString why;
    const auto fail = [&](const QString &text) {
        if (reason)
            *reason = text;
        return TBitmap();
    };
    // Only the last three characters choose the reader, so ".jpeg" reads as JPEG too.
    const QString kind = fileName.right(3).toUpper();
    const bool known = kind == QLatin1String("BMP") || kind == QLatin1String("JPG") ||
                       kind == QLatin1String("PEG") || kind == QLatin1String("ICO") ||
                       kind == QLatin1String("PNG") || kind == QLatin1String("EMF") ||
                       kind == QLatin1String("WMF");
    if (!known) {
        const QString suffix = QFileInfo(fileName).suffix();
        return fail(QStringLiteral("unsupported picture format: %1")
                        .arg(suffix.isEmpty() ? fileName : QLatin1Char('.') + suffix));
    }
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return fail(QStringLiteral("cannot read %1: %2").arg(fileName, file.errorString()));
    const TBitmap picture = detail::DecodePicture(file.readAll(), kind, why);
    if (picture.IsEmpty())
        return fail(QStringLiteral("%1: %2").arg(fileName, why));
    if (reason)
        reason->clear();
    return picture;
}

} // namespace tessal
