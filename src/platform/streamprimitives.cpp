// SPDX-License-Identifier: MIT
// Counted and fixed-width 8-bit texts and BMP blocks on a binary stream.
#include <tessal/platform/streamprimitives.h>

#include <tessal/platform/codepage.h>

#include <algorithm>

namespace tessal {

namespace {

// Both sides of a counted text move (length mod 256) bytes, whatever the length says.
std::int32_t StoredBytes(std::int32_t length)
{
    return length % 256;
}

} // namespace

void WriteStrBuffer(BinaryStream &stream, const QString &text, std::int32_t count)
{
    if (count <= 0)
        return;
    // Every caller writes at most 255 bytes; a buffer on the stack spares an allocation per
    // text, which a big drawing has millions of.
    char local[256];
    QByteArray large;
    char *bytes = local;
    if (count > std::int32_t(sizeof local)) {
        large.resize(count);
        bytes = large.data();
    }
    const std::int32_t have = std::min<std::int32_t>(count, std::int32_t(text.size()));
    const QChar *chars = text.constData();
    for (std::int32_t i = 0; i < have; ++i)
        bytes[i] = char(chars[i].unicode() & 0xFF);
    std::fill(bytes + have, bytes + count, ' ');
    stream.WriteRaw(bytes, count);
}

QString ReadStrBuffer(BinaryStream &stream, std::int32_t count)
{
    return FromAnsi(stream.ReadBytes(count));
}

void WriteCountedText(BinaryStream &stream, const QString &text)
{
    const std::int32_t length = std::int32_t(text.size());
    stream.WriteInt32(length);
    WriteStrBuffer(stream, text, StoredBytes(length));
}

void WriteCountedAnsiText(BinaryStream &stream, const QString &text)
{
    const QByteArray ansi = ToAnsi(text);
    const std::int32_t length = std::int32_t(ansi.size());
    stream.WriteInt32(length);
    stream.WriteBytes(ansi.left(StoredBytes(length)));
}

QString ReadCountedText(BinaryStream &stream)
{
    const std::int32_t length = stream.ReadInt32();
    if (length < 0)
        throw TStreamError("negative text length " + std::to_string(length) + " at offset " +
                           std::to_string(stream.Pos() - 4));
    return ReadStrBuffer(stream, StoredBytes(length));
}

void WriteFixedText(BinaryStream &stream, const QString &text, std::int32_t width)
{
    WriteStrBuffer(stream, text, width);
}

QString ReadFixedText(BinaryStream &stream, std::int32_t width)
{
    return ReadStrBuffer(stream, width);
}

bool WriteBitmapBuffer(BinaryStream &stream, const TBitmap &bitmap)
{
    try {
        const QByteArray bytes = bitmap.IsEmpty() ? QByteArray() : bitmap.SaveToBmp();
        stream.WriteInt64(bytes.size());
        stream.WriteBytes(bytes);
        return true;
    } catch (const TStreamError &) {
        return false;
    }
}

bool ReadBitmapBuffer(BinaryStream &stream, TBitmap &bitmap)
{
    bitmap.Clear();
    try {
        const std::int64_t size = stream.ReadInt64();
        if (size <= 0)
            return true;
        if (size > stream.BytesLeft()) {
            // A block longer than the stream: the stream's read would fail after taking what
            // is there, and so do we, so that the container's next read reports the end.
            stream.Skip(stream.BytesLeft());
            return false;
        }
        TBitmap loaded;
        if (!loaded.LoadFromBmp(stream.ReadBytes(size)))
            return false;
        bitmap = loaded;
        return true;
    } catch (const TStreamError &) {
        return false;
    }
}

} // namespace tessal
