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
// A new bitmap: the picture stretched to width x height and turned by angle (radians). A
// positive angle turns anticlockwise on the screen, the opposite of RotateAPoint, so a shape
// turned by a shows its picture through RotateBitmap(picture, -a, ...). The result is the
// bounding box of the turned rectangle, sampled from the nearest source pixel; outside the
// picture it is white. Empty for an empty picture or a size that is not positive.
TBitmap RotateBitmap(const TBitmap &bitmap, double angle, std::int32_t width, std::int32_t height);

// Reads a picture by the last three characters of its name: BMP, JPG/PEG, ICO, EMF, WMF.
// Every picture comes back as a 24-bit bitmap of its own size, drawn over white (metafiles
// at 96 pixels per inch). Answers an empty bitmap and, when reason is given, says why for an
// unknown extension, a metafile format built without its reader, or an unreadable file;
// reason is cleared on success.
TBitmap LoadGraphicsFile(const QString &fileName, QString *reason = nullptr);

} // namespace tessal
