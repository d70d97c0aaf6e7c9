// SPDX-License-Identifier: MIT
// Record parts of the line family: arrows, connector ends and measuring-line labels.
#include <tessal/shapes/line.h>
#include <tessal/shapes/link.h>
#include <tessal/shapes/records/recordversion_p.h>
#include <tessal/shapes/ruleline.h>

#include <tessal/platform/streamprimitives.h>

namespace tessal {

void TMyLine::SaveToStream(BinaryStream &stream) const
{
    TMyShape::SaveToStream(stream);
    stream.WriteInt32(m_ArrowAngle);
    stream.WriteUInt8(m_ArrowLength);
    stream.WriteUInt8(m_ArrowOffset);
    stream.WriteUInt8(std::uint8_t(m_ArrowStyle));
}

void TMyLine::LoadFromStream(BinaryStream &stream)
{
    TMyShape::LoadFromStream(stream);
    m_ArrowAngle = stream.ReadInt32();
    m_ArrowLength = stream.ReadUInt8();
    m_ArrowOffset = stream.ReadUInt8();
    m_ArrowStyle = ReadOrdinal<TArrowStyle>(stream, 4, "arrow style");
}

void TMyLinkLine::SaveToStream(BinaryStream &stream) const
{
    TMyLine::SaveToStream(stream);
    stream.WriteInt32(m_StartSpNo);
    stream.WriteInt32(m_StartSpPtId);
    stream.WriteInt32(m_EndSpNo);
    stream.WriteInt32(m_EndSpPtId);
    stream.WriteUInt8(std::uint8_t(m_LinkLineDrawStyle));
}

// The ends are kept as stored: the drawing restores every shape at its old place, so the
// numbers stay valid without a re-binding pass. The style is taken without its setter, which
// would reshape the stored route; the route is checked against the live ends when drawn.
// Before XP.5 there is no style byte and the connector keeps the style it was created with.
void TMyLinkLine::LoadFromStream(BinaryStream &stream)
{
    TMyLine::LoadFromStream(stream);
    m_StartSpNo = stream.ReadInt32();
    m_StartSpPtId = stream.ReadInt32();
    m_EndSpNo = stream.ReadInt32();
    m_EndSpPtId = stream.ReadInt32();
    const TRecordVersion version = RecordVersionOf(Host()->DiskFileVersion());
    if (HasSince(version, TRecordVersion::XP5))
        m_LinkLineDrawStyle = ReadOrdinal<TLinkLineDrawStyle>(stream, 2, "connector style");
    m_Reroute = true;
}

void TMyRuleLine::SaveToStream(BinaryStream &stream) const
{
    TMyLine::SaveToStream(stream);
    stream.WriteBool(m_ShowUserInfo);
    stream.WriteUInt8(std::uint8_t(m_TickStyle));
    WriteCountedText(stream, m_UserInfo);
}

void TMyRuleLine::LoadFromStream(BinaryStream &stream)
{
    TMyLine::LoadFromStream(stream);
    SetShowUserInfo(stream.ReadBool());
    SetTickStyle(ReadOrdinal<TTickStyle>(stream, 4, "tick style"));
    SetUserInfo(ReadCountedText(stream));
}

} // namespace tessal
