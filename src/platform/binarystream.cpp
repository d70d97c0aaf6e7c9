// SPDX-License-Identifier: MIT
// Little-endian value encoding, and the portable conversion of the 10-byte extended float.
#include <tessal/platform/binarystream.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>

namespace tessal {

BinaryStream::~BinaryStream()
{
    Trim();
}

void BinaryStream::Trim()
{
    if (!m_Out || m_Out->size() == m_Offset)
        return;
    m_Out->resize(qsizetype(m_Offset));
    m_OutData = m_Out->data();
    m_OutEnd = m_Offset;
}

// The owner may have kept a copy of the bytes, which shares the array's memory: asking for
// it anew gives the stream memory of its own again.
void BinaryStream::Rewind()
{
    if (!m_Out)
        return;
    m_Offset = 0;
    m_OutData = m_Out->data();
    m_OutEnd = m_Out->size();
}

void BinaryStream::Reserve(std::int64_t count)
{
    if (m_Offset + count <= m_OutEnd)
        return;
    const std::int64_t least = m_Offset + count;
    m_Out->resize(qsizetype(std::max({least, 2 * m_OutEnd, std::int64_t(4096)})));
    m_OutData = m_Out->data();
    m_OutEnd = m_Out->size();
}

std::int64_t BinaryStream::Pos() const
{
    if (m_Device)
        return m_Device->pos();
    return m_Offset;
}

std::int64_t BinaryStream::BytesLeft() const
{
    if (m_Device)
        return m_Device->bytesAvailable();
    return m_Out ? 0 : m_Size - m_Offset;
}

void BinaryStream::RequireBytes(std::int64_t count, std::int64_t elementSize) const
{
    // Divide rather than multiply so that a huge count cannot overflow the check itself.
    const std::int64_t left = BytesLeft();
    if (count < 0 || (elementSize > 0 && count > left / elementSize))
        throw TStreamError("count " + std::to_string(count) + " exceeds remaining bytes");
}

void BinaryStream::RequireUnbacked(std::int64_t count, std::int64_t elementSize)
{
    const std::int64_t left = UnbackedAllowance - m_Unbacked;
    if (count < 0 || (elementSize > 0 && count > left / elementSize))
        throw TStreamError("count " + std::to_string(count) + " before offset " +
                           std::to_string(Pos()) +
                           " asks for more elements than one read may make without stored bytes");
    m_Unbacked += count * elementSize;
}

void BinaryStream::ReadRaw(void *data, std::int64_t count)
{
    if (count <= 0)
        return;
    if (!m_Device) {
        // A short read takes what is left, as a device does, so the offset in the message
        // and the next read behave alike.
        const std::int64_t have = std::min(count, m_Size - m_Offset);
        if (have > 0)
            std::memcpy(data, m_Data + m_Offset, std::size_t(have));
        m_Offset += std::max<std::int64_t>(have, 0);
        if (have == count)
            return;
    } else if (m_Device->read(static_cast<char *>(data), count) == count) {
        return;
    }
    throw TStreamError("unexpected end of stream at offset " + std::to_string(Pos()));
}

QByteArray BinaryStream::ReadBytes(std::int64_t count)
{
    RequireBytes(count, 1);
    QByteArray bytes(qsizetype(count), Qt::Uninitialized);
    ReadRaw(bytes.data(), count);
    return bytes;
}

void BinaryStream::Skip(std::int64_t count)
{
    RequireBytes(count, 1);
    if (!m_Device) {
        m_Offset += count;
        return;
    }
    if (m_Device->skip(count) != count)
        throw TStreamError("unexpected end of stream at offset " + std::to_string(Pos()));
}

std::uint64_t BinaryStream::ReadLittle(int size)
{
    std::uint8_t local[8];
    const std::uint8_t *bytes = local;
    if (m_Data && size <= m_Size - m_Offset) {
        bytes = reinterpret_cast<const std::uint8_t *>(m_Data + m_Offset);
        m_Offset += size;
    } else {
        ReadRaw(local, size);
    }
    std::uint64_t v = 0;
    for (int i = size - 1; i >= 0; --i)
        v = (v << 8) | bytes[i];
    return v;
}

void BinaryStream::WriteLittle(std::uint64_t v, int size)
{
    if constexpr (std::endian::native == std::endian::little) {
        if (m_Out && m_Offset + size <= m_OutEnd) {
            std::memcpy(m_OutData + m_Offset, &v, std::size_t(size));
            m_Offset += size;
            return;
        }
    }
    std::uint8_t bytes[8];
    for (int i = 0; i < size; ++i, v >>= 8)
        bytes[i] = std::uint8_t(v);
    WriteRaw(bytes, size);
}

void BinaryStream::WriteRaw(const void *data, std::int64_t count)
{
    if (count <= 0)
        return;
    if (m_Out) {
        Reserve(count);
        std::memcpy(m_OutData + m_Offset, data, std::size_t(count));
        m_Offset += count;
        return;
    }
    if (!m_Device || m_Device->write(static_cast<const char *>(data), count) != count)
        throw TStreamError("write failed at offset " + std::to_string(Pos()));
}

std::int8_t BinaryStream::ReadInt8()
{
    return std::int8_t(ReadLittle(1));
}
std::uint8_t BinaryStream::ReadUInt8()
{
    return std::uint8_t(ReadLittle(1));
}
std::int16_t BinaryStream::ReadInt16()
{
    return std::int16_t(ReadLittle(2));
}
std::uint16_t BinaryStream::ReadUInt16()
{
    return std::uint16_t(ReadLittle(2));
}
std::int32_t BinaryStream::ReadInt32()
{
    return std::int32_t(ReadLittle(4));
}
std::uint32_t BinaryStream::ReadUInt32()
{
    return std::uint32_t(ReadLittle(4));
}
std::int64_t BinaryStream::ReadInt64()
{
    return std::int64_t(ReadLittle(8));
}
std::uint64_t BinaryStream::ReadUInt64()
{
    return ReadLittle(8);
}
float BinaryStream::ReadFloat()
{
    return std::bit_cast<float>(std::uint32_t(ReadLittle(4)));
}
double BinaryStream::ReadDouble()
{
    return std::bit_cast<double>(ReadLittle(8));
}
bool BinaryStream::ReadBool()
{
    return ReadLittle(1) != 0;
}

double BinaryStream::ReadExtended()
{
    std::uint8_t bytes[10];
    ReadRaw(bytes, 10);
    return DecodeExtended(bytes);
}

void BinaryStream::WriteInt8(std::int8_t v)
{
    WriteLittle(std::uint8_t(v), 1);
}
void BinaryStream::WriteUInt8(std::uint8_t v)
{
    WriteLittle(v, 1);
}
void BinaryStream::WriteInt16(std::int16_t v)
{
    WriteLittle(std::uint16_t(v), 2);
}
void BinaryStream::WriteUInt16(std::uint16_t v)
{
    WriteLittle(v, 2);
}
void BinaryStream::WriteInt32(std::int32_t v)
{
    WriteLittle(std::uint32_t(v), 4);
}
void BinaryStream::WriteUInt32(std::uint32_t v)
{
    WriteLittle(v, 4);
}
void BinaryStream::WriteInt64(std::int64_t v)
{
    WriteLittle(std::uint64_t(v), 8);
}
void BinaryStream::WriteUInt64(std::uint64_t v)
{
    WriteLittle(v, 8);
}
void BinaryStream::WriteFloat(float v)
{
    WriteLittle(std::bit_cast<std::uint32_t>(v), 4);
}
void BinaryStream::WriteDouble(double v)
{
    WriteLittle(std::bit_cast<std::uint64_t>(v), 8);
}
void BinaryStream::WriteBool(bool v)
{
    WriteLittle(v ? 1 : 0, 1);
}

void BinaryStream::WriteExtended(double v)
{
    std::uint8_t bytes[10];
    EncodeExtended(v, bytes);
    WriteRaw(bytes, 10);
}

void BinaryStream::WriteBytes(const QByteArray &bytes)
{
    WriteRaw(bytes.constData(), bytes.size());
}

// Extended layout: bytes 0-7 hold the 64-bit significand with an explicit integer bit (bit
// 63), bytes 8-9 the sign (bit 15) and the exponent biased by 16383. Every double, its
// subnormals included, is a normal extended value, so encoding is exact.
namespace {

constexpr int kExtendedBias = 16383;
constexpr int kDoubleBias = 1023;
constexpr std::uint64_t kIntegerBit = std::uint64_t(1) << 63;

void StoreExtended(bool negative, std::uint16_t exponent, std::uint64_t significand,
                   std::uint8_t out[10])
{
    for (int i = 0; i < 8; ++i)
        out[i] = std::uint8_t(significand >> (8 * i));
    const std::uint16_t top = std::uint16_t(exponent | (negative ? 0x8000 : 0));
    out[8] = std::uint8_t(top);
    out[9] = std::uint8_t(top >> 8);
}

// significand x 2^scale rounded to a double, with a single rounding also where the result
// is subnormal (converting first and scaling after would round twice).
double ScaleToDouble(std::uint64_t significand, int scale)
{
    const int top = 63 - std::countl_zero(significand); // value lies in [2^(top+scale), ...)
    const int magnitude = top + scale;
    // Significant bits a double keeps at this magnitude: 53 when normal, fewer below 2^-1022.
    int keep = magnitude >= -1022 ? 53 : 53 - (-1022 - magnitude);
    if (keep < 0)
        return 0.0; // below half the smallest subnormal
    const int drop = top + 1 - keep;
    if (drop > 0) {
        const std::uint64_t half = drop == 64 ? kIntegerBit : std::uint64_t(1) << (drop - 1);
        const std::uint64_t rest = drop == 64 ? significand : significand & ((half << 1) - 1);
        std::uint64_t kept = drop == 64 ? 0 : significand >> drop;
        if (rest > half || (rest == half && (kept & 1)))
            ++kept;
        return std::ldexp(double(kept), scale + drop);
    }
    return std::ldexp(double(significand), scale);
}

} // namespace

void EncodeExtended(double value, std::uint8_t out[10])
{
    const std::uint64_t bits = std::bit_cast<std::uint64_t>(value);
    const bool negative = (bits >> 63) != 0;
    const int exponent = int((bits >> 52) & 0x7FF);
    const std::uint64_t fraction = bits & ((std::uint64_t(1) << 52) - 1);
    if (exponent == 0x7FF) {
        // Infinity keeps only the integer bit; a NaN is quiet and keeps its payload.
        const std::uint64_t nan = fraction ? (kIntegerBit >> 1) | (fraction << 11) : 0;
        StoreExtended(negative, 0x7FFF, kIntegerBit | nan, out);
    } else if (exponent == 0 && fraction == 0) {
        StoreExtended(negative, 0, 0, out);
    } else if (exponent == 0) {
        const int top = 63 - std::countl_zero(fraction);
        const int e = top - 1074 + kExtendedBias;
        StoreExtended(negative, std::uint16_t(e), fraction << (63 - top), out);
    } else {
        const int e = exponent - kDoubleBias + kExtendedBias;
        StoreExtended(negative, std::uint16_t(e), kIntegerBit | (fraction << 11), out);
    }
}

double DecodeExtended(const std::uint8_t in[10])
{
    std::uint64_t significand = 0;
    for (int i = 7; i >= 0; --i)
        significand = (significand << 8) | in[i];
    const std::uint16_t top = std::uint16_t(in[8] | (in[9] << 8));
    const bool negative = (top & 0x8000) != 0;
    const int exponent = top & 0x7FFF;
    double magnitude;
    if (exponent == 0x7FFF) {
        // The integer bit aside, an empty significand is infinity, anything else a NaN.
        magnitude = (significand << 1) == 0 ? std::numeric_limits<double>::infinity()
                                            : std::numeric_limits<double>::quiet_NaN();
    } else if (significand == 0) {
        magnitude = 0.0;
    } else {
        // Exponent 0 marks extended subnormals, whose scale is that of exponent 1.
        const int unbiased = (exponent == 0 ? 1 : exponent) - kExtendedBias;
        magnitude = ScaleToDouble(significand, unbiased - 63);
    }
    return negative ? -magnitude : magnitude;
}

} // namespace tessal
