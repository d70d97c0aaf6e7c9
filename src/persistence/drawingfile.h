// SPDX-License-Identifier: MIT
// Fixed texts and field widths of the drawing file header.
#pragma once

#include <QString>

#include <cstdint>

namespace tessal::DrawingFile {

// The header is five space-padded 8-bit texts, 218 bytes in all.
constexpr std::int32_t TagWidth = 64;
constexpr std::int32_t TitleWidth = 64;
constexpr std::int32_t VersionWidth = 16;
constexpr std::int32_t DateWidth = 10;
constexpr std::int32_t ReservedWidth = 64;
constexpr std::int32_t HeaderSize =
    TagWidth + TitleWidth + VersionWidth + DateWidth + ReservedWidth;
// Shape class names precede each record in a field of this width.
constexpr std::int32_t ClassNameWidth = 16;

// The identification text, the only header field a reader checks.
inline QString Tag()
{
    return QStringLiteral("Tessal Component");
}
// Readers ignore the title; it tells a person looking at the bytes what wrote them.
inline QString Title()
{
    return QStringLiteral("Tessal drawing component for C++ and Qt applications");
}
// The layout writers produce, and the date that goes with it.
inline QString NewestVersion()
{
    return QStringLiteral("XP.j");
}
inline QString VersionDate()
{
    return QStringLiteral("20091209");
}

} // namespace tessal::DrawingFile
