// SPDX-License-Identifier: MIT
// The texts of copied shapes in full, carried on the clipboard beside their records (private
// to the surface).
#pragma once

#include <QByteArray>

#include <memory>
#include <span>
#include <vector>

namespace tessal {

class TMyShape;

// The stored records keep every text as 8-bit characters and only (length mod 256) of them,
// as the drawing files must. A copy within the program should lose nothing, so the texts
// travel a second time in this form:
//   16 bytes   "Tessal texts", padded with spaces
//   int32      shape count, then per shape, in the order of the records:
//     16 bytes   class name, padded with spaces
//     text       Caption, Info, the font's name
//     list       MultiInfo lines
//     int32      user data count, then key and value texts of each record
//     list       the class's own texts: a text shape's lines, a measuring line's UserInfo
// A text is an int32 count of UTF-16 code units and then the units (little-endian); a list
// is an int32 count and then that many texts.
QByteArray ShapeTextsData(std::span<const TMyShape *const> shapes);

// Gives the shapes, read from the records that came with data, the texts data holds. Throws
// TStreamError when the data is damaged or speaks of other shapes (another count or class);
// the shapes are then partly changed.
void ApplyShapeTexts(const QByteArray &data, std::span<const std::unique_ptr<TMyShape>> shapes);

} // namespace tessal
