// SPDX-License-Identifier: MIT
// Record format versions and the checked reads shared by the shape record readers.
#pragma once

#include <tessal/platform/binarystream.h>

#include <QString>

#include <cmath>
#include <cstdint>
#include <string>

namespace tessal {

// The record layouts, oldest first. The letters b, c, d, f and g were never used.
enum class TRecordVersion : std::int8_t {
    Unknown = -1,
    XP2,
    XP3,
    XP4,
    XP5,
    XP6,
    XP7,
    XP8,
    XP9,
    XPa,
    XPe,
    XPh,
    XPi,
    XPj
};

// Exact, case-sensitive comparison with the thirteen version texts.
TRecordVersion RecordVersionOf(const QString &text);

// Whether a layout has the fields that version since introduced. An unknown version has
// only the fields every version has.
inline bool HasSince(TRecordVersion version, TRecordVersion since)
{
    return version != TRecordVersion::Unknown && version >= since;
}

inline bool IsBetween(TRecordVersion version, TRecordVersion first, TRecordVersion last)
{
    return version != TRecordVersion::Unknown && version >= first && version <= last;
}

// A one-byte ordinal of an enumeration with valueCount values. Anything outside is a read
// error: values beyond the list would index tables of the drawing code.
template <typename E>
E ReadOrdinal(BinaryStream &stream, std::uint8_t valueCount, const char *field)
{
    const std::uint8_t value = stream.ReadUInt8();
    if (value >= valueCount)
        throw TStreamError(std::string("invalid ") + field + " " + std::to_string(value) +
                           " at offset " + std::to_string(stream.Pos() - 1));
    return E(value);
}

// A coordinate or angle: a single, or in old layouts an extended value narrowed to single.
// Values that are not finite, or beyond a billion pixels, cannot come from a drawing and
// would poison every box and transform computed from them, so they are read errors.
inline float ReadCoordinate(BinaryStream &stream, bool extended)
{
    const double value = extended ? double(float(stream.ReadExtended())) : stream.ReadFloat();
    if (!std::isfinite(value) || std::fabs(value) > 1e9)
        throw TStreamError("invalid coordinate at offset " +
                           std::to_string(stream.Pos() - (extended ? 10 : 4)));
    return float(value);
}

// A pen width or font height in pixels or points. Beyond 32767 none can be drawn, and the
// drawing code would size its images and its arithmetic by it.
inline std::int32_t ReadExtent(BinaryStream &stream, const char *field)
{
    const std::int32_t value = stream.ReadInt32();
    if (value < -32767 || value > 32767)
        throw TStreamError(std::string("implausible ") + field + " " + std::to_string(value) +
                           " at offset " + std::to_string(stream.Pos() - 4));
    return value;
}

// A count of elements of at least elementSize bytes each; negative counts read nothing.
// A count that the bytes left cannot hold is a read error before anything is allocated.
inline std::int32_t ReadCount(BinaryStream &stream, std::int64_t elementSize)
{
    const std::int32_t count = stream.ReadInt32();
    if (count <= 0)
        return 0;
    stream.RequireBytes(count, elementSize);
    return count;
}

} // namespace tessal
