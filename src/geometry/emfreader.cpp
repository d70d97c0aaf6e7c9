// SPDX-License-Identifier: MIT
// Enhanced metafiles: checks the record framing, converts to SVG and renders it.
#include "metafile_p.h"

#include <QtEndian>

#include <emf2svg.h>

#include <cmath>
#include <cstdlib>
#include <memory>
#include <utility>

namespace tessal::detail {

namespace {

constexpr std::uint32_t EmrHeader = 1;
constexpr std::uint32_t EmrEof = 14;
constexpr std::uint32_t EmfSignature = 0x464D4520; // " EMF"
constexpr qsizetype HeaderMinSize = 88;

struct EmfFrame
{
    std::int32_t Left, Top, Right, Bottom;
};

std::uint32_t LeU32(const QByteArray &b, qsizetype at)
{
    return qFromLittleEndian<quint32>(b.constData() + at);
}

EmfFrame RectAt(const QByteArray &b, qsizetype at)
{
    return {qint32(LeU32(b, at)), qint32(LeU32(b, at + 4)), qint32(LeU32(b, at + 8)),
            qint32(LeU32(b, at + 12))};
}

// The header's description (UTF-16 characters at an offset) must lie within the header:
// the converter reads it for as many characters as the count claims.
bool DescriptionInside(const QByteArray &b, std::uint32_t headerSize)
{
    const std::uint64_t count = LeU32(b, 60);
    const std::uint64_t offset = LeU32(b, 64);
    return count == 0 ||
           (offset >= std::uint64_t(HeaderMinSize) && offset + 2 * count <= headerSize);
}

// With no characters counted, the converter would still read a description at a non-zero
// offset, up to a terminator that may lie past the data; the copy it gets has none.
void DropEmptyDescription(QByteArray &data)
{
    if (LeU32(data, 60) == 0)
        qToLittleEndian<quint32>(0, data.data() + 64);
}

// The length of the metafile up to and including its end record, or 0 when the header or
// the chain of records is broken. The converter walks records by their sizes, so this is
// what keeps a truncated or garbled file from sending it past the end of the data.
qsizetype CheckedLength(const QByteArray &b)
{
    if (b.size() < HeaderMinSize || LeU32(b, 0) != EmrHeader || LeU32(b, 40) != EmfSignature)
        return 0;
    const std::uint32_t headerSize = LeU32(b, 4);
    if (headerSize < HeaderMinSize || headerSize > std::uint32_t(b.size()) ||
        !DescriptionInside(b, headerSize))
        return 0;
    qsizetype at = 0;
    while (b.size() - at >= 8) {
        const std::uint32_t type = LeU32(b, at);
        const std::uint32_t size = LeU32(b, at + 4);
        if (size < 8 || size % 4 != 0 || size > std::uint64_t(b.size() - at))
            return 0;
        at += size;
        if (type == EmrEof)
            return at;
    }
    return 0;
}

// The picture's size in pixels at 96 per inch, from the frame (hundredths of a millimetre);
// a file without a frame falls back to its bounds in device pixels (inclusive).
std::pair<std::int64_t, std::int64_t> PictureSize(const QByteArray &b)
{
    const EmfFrame frame = RectAt(b, 24);
    const double toPixels = 96.0 / 2540.0;
    const auto w = std::int64_t(std::nearbyint((double(frame.Right) - frame.Left) * toPixels));
    const auto h = std::int64_t(std::nearbyint((double(frame.Bottom) - frame.Top) * toPixels));
    if (w > 0 && h > 0)
        return {w, h};
    const EmfFrame bounds = RectAt(b, 8);
    return {std::int64_t(bounds.Right) - bounds.Left + 1,
            std::int64_t(bounds.Bottom) - bounds.Top + 1};
}

} // namespace

TBitmap ReadEmfPicture(const QByteArray &bytes, QString &reason)
{
    const qsizetype length = CheckedLength(bytes);
    if (length == 0) {
        reason = QStringLiteral("not a valid EMF picture (bad header or truncated records)");
        return {};
    }
    const auto [width, height] = PictureSize(bytes);
    if (!PictureSizeAcceptable(width, height)) {
        reason = QStringLiteral("EMF picture has an impossible size");
        return {};
    }
    QByteArray data = bytes.left(length); // the converter takes a non-const buffer
    DropEmptyDescription(data);
    // No namespace prefix: plain SVG elements, and the converter then has no prefix string
    // to allocate (and leak) per call.
    generatorOptions options{};
    options.nameSpace = nullptr;
    options.svgDelimiter = true;
    options.imgWidth = double(width);
    options.imgHeight = double(height);
    char *svgText = nullptr;
    size_t svgLength = 0;
    const int ok = emf2svg(data.data(), size_t(data.size()), &svgText, &svgLength, &options);
    const std::unique_ptr<char, decltype(&std::free)> owned(svgText, &std::free);
    if (!ok || !svgText) {
        reason = QStringLiteral("EMF picture could not be converted");
        return {};
    }
    TBitmap picture = RenderSvgPicture(QByteArray(svgText, qsizetype(svgLength)),
                                       std::int32_t(width), std::int32_t(height));
    if (picture.IsEmpty())
        reason = QStringLiteral("EMF picture could not be rendered");
    return picture;
}

} // namespace tessal::detail
