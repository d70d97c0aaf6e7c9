// SPDX-License-Identifier: MIT
// Private entry points of the picture readers behind LoadGraphicsFile, shared with the
// picture fuzz target.
#pragma once

#include <tessal/platform/bitmap.h>

#include <QByteArray>
#include <QString>

#include <cstdint>

namespace tessal::detail {

// Pictures larger than this in either direction, or in area, are refused rather than
// allocated: a corrupt header must not cost gigabytes.
constexpr std::int32_t MaxPictureSide = 16384;
constexpr std::int64_t MaxPictureArea = std::int64_t(64) * 1024 * 1024;

bool PictureSizeAcceptable(std::int64_t width, std::int64_t height);

// Draws SVG text stretched over a white 24-bit bitmap of width x height. Answers an empty
// bitmap when the SVG cannot be parsed.
TBitmap RenderSvgPicture(const QByteArray &svg, std::int32_t width, std::int32_t height);

// Decodes the bytes of a picture file; kind is the upper-case last three characters of its
// name (BMP, JPG, PEG, ICO, EMF, WMF). Answers an empty bitmap and sets reason on failure.
TBitmap DecodePicture(const QByteArray &bytes, const QString &kind, QString &reason);

// The metafile readers; each answers an empty bitmap and sets reason on failure.
TBitmap ReadEmfPicture(const QByteArray &bytes, QString &reason);
TBitmap ReadWmfPicture(const QByteArray &bytes, QString &reason);

} // namespace tessal::detail
