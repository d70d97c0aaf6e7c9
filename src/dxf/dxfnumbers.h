// SPDX-License-Identifier: MIT
// The numbers and texts of DXF files: the pixel-to-millimetre factor, the text form of
// values, and text values in plain ASCII.
#pragma once

#include <QByteArray>

#include <cstddef>

namespace tessal::Dxf {

// Document pixels per millimetre at 96 pixels per inch. DXF files are in millimetres.
constexpr double PixelsPerMm = 3.779527559055118;

// The shortest general form of value with at most 15 significant digits: no exponent for
// magnitudes from 1e-5 up to below 1e15 ("100.0125", "0", "-2.5"), otherwise mantissa, "E"
// and the exponent without padding ("1.5E-7", "2E15"). The decimal separator is always ".",
// whatever the locale: DXF readers reject any other. Negative zero is written "0".
QByteArray FormatNumber(double value);
// The same written to out, which holds at least MaxNumberLength bytes; answers the length.
constexpr std::size_t MaxNumberLength = 32;
std::size_t WriteNumber(char *out, double value);

// A text value in ASCII: every other character as "\U+XXXX" (four hex digits, per UTF-16
// code unit), which readers of every version decode, whatever code page they assume for a
// file without a header. Line breaks and other control characters become spaces.
QByteArray EscapeText(const QString &text);

} // namespace tessal::Dxf
