// SPDX-License-Identifier: MIT
// Record parts of the rectangle family: text lines, pictures and link-point markers.
#include <tessal/shapes/image.h>
#include <tessal/shapes/link.h>
#include <tessal/shapes/records/recordversion_p.h>
#include <tessal/shapes/text.h>

#include <tessal/platform/streamprimitives.h>

namespace tessal {

using V = TRecordVersion;

void TMyText::SaveToStream(BinaryStream &stream) const
{
    TMyRectangle::SaveToStream(stream);
    stream.WriteBool(m_IsBorder);
    stream.WriteBool(m_IsSolid);
    stream.WriteInt32(std::int32_t(m_Lines.size()));
    // The lines, unlike every other stored text, go through the code page first, so that
    // double-byte characters survive.
    for (const QString &line : m_Lines)
        WriteCountedAnsiText(stream, line);
    stream.WriteUInt8(std::uint8_t(m_VAlignment));
    stream.WriteUInt8(std::uint8_t(m_HAlignment));
    stream.WriteBool(m_WordWrap);
}

void TMyText::LoadFromStream(BinaryStream &stream)
{
    TMyRectangle::LoadFromStream(stream);
    SetIsBorder(stream.ReadBool());
    SetIsSolid(stream.ReadBool());
    if (!HasSince(RecordVersionOf(Host()->DiskFileVersion()), V::XPa))
        return;
    QStringList lines;
    for (std::int32_t i = ReadCount(stream, 4); i > 0; --i)
        lines.append(ReadCountedText(stream));
    SetLines(lines);
    SetVAlignment(ReadOrdinal<TVAlignment>(stream, 3, "vertical alignment"));
    SetHAlignment(ReadOrdinal<TAlignment>(stream, 3, "horizontal alignment"));
    SetWordWrap(stream.ReadBool());
}

void TMyImage::SaveToStream(BinaryStream &stream) const
{
    TMyRectangle::SaveToStream(stream);
    if (!WriteBitmapBuffer(stream, m_Bitmap))
        throw TStreamError("writing the picture failed");
    stream.WriteInt32(m_Brightness);
    stream.WriteInt32(m_Contrast);
    stream.WriteBool(m_Transparent);
    stream.WriteBool(m_Border);
    stream.WriteBool(m_GrayScale);
    stream.WriteUInt32(m_TransparentColor);
    stream.WriteInt32(std::int32_t(m_TransparentMode));
}

void TMyImage::LoadFromStream(BinaryStream &stream)
{
    TMyRectangle::LoadFromStream(stream);
    TBitmap picture;
    ReadBitmapBuffer(stream, picture); // a picture the decoder refuses leaves none
    SetBitmap(picture);
    const V version = RecordVersionOf(Host()->DiskFileVersion());
    if (!HasSince(version, V::XP9))
        return;
    SetBrightness(stream.ReadInt32());
    SetContrast(stream.ReadInt32());
    SetTransparent(stream.ReadBool());
    SetBorder(stream.ReadBool());
    SetGrayScale(stream.ReadBool());
    if (!HasSince(version, V::XPi))
        return;
    SetTransparentColor(stream.ReadUInt32());
    const std::int32_t mode = stream.ReadInt32();
    if (mode < 0 || mode > 1)
        throw TStreamError("invalid transparent mode " + std::to_string(mode));
    SetTransparentMode(TTransparentMode(mode));
}

void TMyLinkPoint::SaveToStream(BinaryStream &stream) const
{
    TMyRectangle::SaveToStream(stream);
    stream.WriteUInt8(m_Size);
}

void TMyLinkPoint::LoadFromStream(BinaryStream &stream)
{
    TMyRectangle::LoadFromStream(stream);
    SetSize(stream.ReadUInt8());
}

} // namespace tessal
