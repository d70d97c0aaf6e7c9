// SPDX-License-Identifier: MIT
// Little-endian reading and writing of numbers and raw bytes on a QIODevice.
#pragma once

#include <QByteArray>
#include <QIODevice>

#include <cstdint>
#include <stdexcept>

namespace tessal {

// Raised by BinaryStream when the device ends early or refuses to write. File readers catch
// it at their boundary and report the message; it never crosses the public interface.
class TStreamError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

// Reads and writes fixed-width little-endian values, either at a device's current position
// or on memory. Memory streams exist for speed: a big drawing is millions of small values,
// and a device pays a virtual call (and for a file, a status query per size check) on each.
// The stream owns neither the device nor the memory, which must outlive it.
class BinaryStream
{
public:
    explicit BinaryStream(QIODevice *device)
        : m_Device(device)
    {}
    // Reads size bytes at data; Pos() counts from data.
    BinaryStream(const char *data, std::int64_t size)
        : m_Data(data)
        , m_Size(size)
    {}
    // Appends everything written to out. The array is grown ahead of the writes, so that a
    // value costs one bounds check and a copy; Trim() (or the end of the stream) cuts it to
    // what was written. Pos() counts from out's start. While the stream lives, the owner
    // touches the array only between Trim() and Rewind().
    explicit BinaryStream(QByteArray *out)
        : m_Offset(out->size())
        , m_Out(out)
    {}
    ~BinaryStream();
    BinaryStream(const BinaryStream &) = delete;
    BinaryStream &operator=(const BinaryStream &) = delete;

    // Memory writes: cuts the array to the bytes written so far.
    void Trim();
    // Memory writes: the owner has taken the bytes away (to pass them on to a device in
    // pieces); writing starts again at the array's start, in the memory it already has.
    void Rewind();

    // Null for a memory stream.
    QIODevice *Device() const { return m_Device; }
    std::int64_t Pos() const;
    // Bytes that can still be read before the end of the device.
    std::int64_t BytesLeft() const;
    // Throws TStreamError unless count elements of elementSize bytes can still be read; call
    // it before allocating storage for a count read from a file. A negative count fails too.
    void RequireBytes(std::int64_t count, std::int64_t elementSize) const;
    // Some old layouts store a count without its elements, and the reader makes that many
    // from nothing, so the bytes left cannot bound it. What such counts claim is drawn from
    // an allowance of UnbackedAllowance bytes shared by everything read through the stream:
    // far beyond any real file, yet it keeps a few hostile bytes from asking for gigabytes.
    // Throws TStreamError, before anything is allocated, when count elements of elementSize
    // bytes would overdraw it. A negative count fails too.
    void RequireUnbacked(std::int64_t count, std::int64_t elementSize);
    static constexpr std::int64_t UnbackedAllowance = std::int64_t(32) << 20;

    std::int8_t ReadInt8();
    std::uint8_t ReadUInt8();
    std::int16_t ReadInt16();
    std::uint16_t ReadUInt16();
    std::int32_t ReadInt32();
    std::uint32_t ReadUInt32();
    std::int64_t ReadInt64();
    std::uint64_t ReadUInt64();
    float ReadFloat();
    double ReadDouble();
    // One byte; any non-zero value is true.
    bool ReadBool();
    // The 10-byte x87 extended format, rounded to the nearest double (halves to even);
    // values beyond the double range become infinities.
    double ReadExtended();
    QByteArray ReadBytes(std::int64_t count);
    void ReadRaw(void *data, std::int64_t count);
    void Skip(std::int64_t count);

    void WriteInt8(std::int8_t v);
    void WriteUInt8(std::uint8_t v);
    void WriteInt16(std::int16_t v);
    void WriteUInt16(std::uint16_t v);
    void WriteInt32(std::int32_t v);
    void WriteUInt32(std::uint32_t v);
    void WriteInt64(std::int64_t v);
    void WriteUInt64(std::uint64_t v);
    void WriteFloat(float v);
    void WriteDouble(double v);
    void WriteBool(bool v); // 0 or 1
    void WriteExtended(double v);
    void WriteBytes(const QByteArray &bytes);
    void WriteRaw(const void *data, std::int64_t count);

private:
    std::uint64_t ReadLittle(int size);
    void WriteLittle(std::uint64_t v, int size);
    // Grows the array geometrically to hold count more bytes.
    void Reserve(std::int64_t count);

    QIODevice *m_Device = nullptr;
    const char *m_Data = nullptr;
    std::int64_t m_Size = 0;
    std::int64_t m_Offset = 0; // the read position, or the write position in m_Out
    QByteArray *m_Out = nullptr;
    char *m_OutData = nullptr; // m_Out's bytes, valid up to m_OutEnd
    std::int64_t m_OutEnd = 0;
    std::int64_t m_Unbacked = 0; // bytes of the allowance drawn so far
};

// The x87 extended encoding on its own, for callers that hold the bytes already.
void EncodeExtended(double value, std::uint8_t out[10]);
double DecodeExtended(const std::uint8_t in[10]);

} // namespace tessal
