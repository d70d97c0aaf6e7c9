// SPDX-License-Identifier: MIT
// Pixel operations on 24-bit bitmaps and the picture-file reader.
#pragma once

#include <tessal/platform/bitmap.h>

#include <QString>

namespace tessal {

void GrayScaleBitmap(TBitmap &bitmap, bool enabled);
void AdjustBrightBitmap(TBitmap &bitmap, std::int32_t delta);
void AdjustContrastBitmap(TBitmap &bitmap, std::int32_t k);
void FlipBitmap(TBitmap &bitmap, bool horizontal, bool vertical);
// The picture stretched to width x height and turned by angle (radians, the shapes' sense
// of rotation). The result is the bounding box of the turned rectangle; outside the
// picture it is white.
TBitmap RotateBitmap(const TBitmap &bitmap, double angle, std::int32_t width,
                     std::int32_t height);

// Reads a picture by the last three characters of its name: BMP, JPG/PEG, ICO, EMF, WMF.
// Answers an empty bitmap and, when reason is given, says why for an unknown extension,
// a metafile format built without its reader, or an unreadable file.
TBitmap LoadGraphicsFile(const QString &fileName, QString *reason = nullptr);

} // namespace tessal
