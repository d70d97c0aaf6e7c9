// SPDX-License-Identifier: MIT
// Record part of the elliptic arc: its mode and its closing style.
#include <tessal/shapes/arc.h>
#include <tessal/shapes/records/recordversion_p.h>

namespace tessal {

void TMyElliArc::SaveToStream(BinaryStream &stream) const
{
    TMyShape::SaveToStream(stream);
    stream.WriteUInt8(std::uint8_t(m_ArcMode));
    stream.WriteUInt8(std::uint8_t(m_ArcStyle));
}

void TMyElliArc::LoadFromStream(BinaryStream &stream)
{
    TMyShape::LoadFromStream(stream);
    m_ArcMode = ReadOrdinal<TArcMode>(stream, 2, "arc mode");
    m_ArcStyle = ReadOrdinal<TArcStyle>(stream, 3, "arc style");
}

} // namespace tessal
