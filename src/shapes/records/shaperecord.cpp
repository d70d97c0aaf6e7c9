// SPDX-License-Identifier: MIT
// The base part of every shape record, in each of the thirteen layouts.
#include <tessal/shapes/records/recordversion_p.h>
#include <tessal/shapes/shape.h>

#include <tessal/platform/streamprimitives.h>

#include <algorithm>
#include <array>
#include <numbers>
#include <utility>

namespace tessal {

TRecordVersion RecordVersionOf(const QString &text)
{
    static const std::array<QString, 13> names = {
        QStringLiteral("XP.2"), QStringLiteral("XP.3"), QStringLiteral("XP.4"),
        QStringLiteral("XP.5"), QStringLiteral("XP.6"), QStringLiteral("XP.7"),
        QStringLiteral("XP.8"), QStringLiteral("XP.9"), QStringLiteral("XP.a"),
        QStringLiteral("XP.e"), QStringLiteral("XP.h"), QStringLiteral("XP.i"),
        QStringLiteral("XP.j")};
    // Newest first: nearly every record read is in the newest layout.
    for (std::size_t i = names.size(); i-- > 0;)
        if (names[i] == text)
            return TRecordVersion(i);
    return TRecordVersion::Unknown;
}

namespace {

using V = TRecordVersion;

// Records hold the angle in degrees; shapes keep radians.
float DegreesOf(float radians)
{
    return float(double(radians) * 180.0 / std::numbers::pi);
}
float RadiansOf(float degrees)
{
    return float(double(degrees) * std::numbers::pi / 180.0);
}

void WriteNumbers(BinaryStream &stream, const std::vector<std::int32_t> &numbers)
{
    stream.WriteInt32(std::int32_t(numbers.size()));
    for (const std::int32_t n : numbers)
        stream.WriteInt32(n);
}

void ReadNumbers(BinaryStream &stream, std::vector<std::int32_t> &numbers)
{
    numbers.resize(std::size_t(ReadCount(stream, 4)));
    for (std::int32_t &n : numbers)
        n = stream.ReadInt32();
}

void WritePoints(BinaryStream &stream, const TMyPointArray &points)
{
    stream.WriteInt32(std::int32_t(points.size()));
    for (const TMyPoint &p : points) {
        stream.WriteFloat(p.X);
        stream.WriteFloat(p.Y);
    }
}

// XP.2 stores the count without coordinates, and XP.3 to XP.5 store extended values.
void ReadPoints(BinaryStream &stream, TMyPointArray &points, V version)
{
    if (!HasSince(version, V::XP3)) {
        // Only the count is stored: it is taken as it stands, however far it runs past the
        // bytes that follow, and the points are made as zeros. The stream's allowance for
        // elements without bytes behind them is all that bounds it.
        const std::int32_t count = std::max(stream.ReadInt32(), 0);
        stream.RequireUnbacked(count, sizeof(TMyPoint));
        points.assign(std::size_t(count), TMyPoint{});
        return;
    }
    const bool extended = version <= V::XP5;
    points.resize(std::size_t(ReadCount(stream, extended ? 20 : 8)));
    for (TMyPoint &p : points) {
        p.X = ReadCoordinate(stream, extended);
        p.Y = ReadCoordinate(stream, extended);
    }
}

void WriteFont(BinaryStream &stream, const TFont &font)
{
    WriteCountedText(stream, font.Name);
    stream.WriteUInt8(font.Charset);
    stream.WriteUInt32(font.Color);
    stream.WriteInt32(font.Height());
    stream.WriteInt32(font.Size());
    stream.WriteUInt8(std::uint8_t(font.Pitch));
    stream.WriteInt32(font.PixelsPerInch);
    stream.WriteUInt8(font.Style);
}

// Applied in the stored order: the size is set after the height (at the font's former
// resolution) and so decides the height; the resolution itself comes after both.
TFont ReadFont(BinaryStream &stream, TFont font)
{
    // Most shapes keep the default face; keeping the shape's own copy of an equal name
    // shares its text instead of holding one more per shape.
    if (QString name = ReadCountedText(stream); name != font.Name)
        font.Name = std::move(name);
    font.Charset = stream.ReadUInt8();
    font.Color = stream.ReadUInt32();
    font.SetHeight(ReadExtent(stream, "font height"));
    font.SetSize(ReadExtent(stream, "font size"));
    font.Pitch = ReadOrdinal<TFontPitch>(stream, 3, "font pitch");
    font.PixelsPerInch = stream.ReadInt32();
    font.Style = stream.ReadUInt8();
    return font;
}

void WriteUserData(BinaryStream &stream, const TUserData &data)
{
    stream.WriteInt32(data.GetCount());
    for (const TUserDataRecord &r : data.Records()) {
        WriteCountedText(stream, r.Key);
        WriteCountedText(stream, r.Value);
    }
}

// TextPoint, Tag and Angle: singles from XP.6, extended values before, and in XP.2 only the
// text point.
void ReadPlacement(TMyShape &shape, BinaryStream &stream, V version)
{
    if (!HasSince(version, V::XP2))
        return;
    const bool extended = version <= V::XP5;
    TMyPoint textPoint;
    textPoint.X = ReadCoordinate(stream, extended);
    textPoint.Y = ReadCoordinate(stream, extended);
    shape.SetTextPoint(textPoint);
    if (version == V::XP2)
        return;
    shape.SetTag(stream.ReadInt32());
    shape.SetAngleValue(RadiansOf(ReadCoordinate(stream, extended)));
}

// Brush, caption, gradient, font, info and pen: the fields every version has, with the
// reserved words and the old bytes where the version has them.
void ReadAppearance(TMyShape &shape, BinaryStream &stream, V version)
{
    TBitmap pattern;
    ReadBitmapBuffer(stream, pattern); // a bad picture leaves the brush without one
    TBrush brush = shape.Brush();
    const TColor brushColor = stream.ReadUInt32();
    const auto brushStyle = ReadOrdinal<TBrushStyle>(stream, 8, "brush style");
    // A pattern replaces colour and style, which are then read but not applied.
    if (!pattern.IsEmpty()) {
        brush.Bitmap = pattern.Image();
    } else {
        brush.Bitmap = QImage();
        brush.Color = brushColor;
        brush.Style = brushStyle;
    }
    shape.SetBrush(brush);
    shape.SetCaption(ReadCountedText(stream));
    shape.SetColorBegin(stream.ReadUInt32());
    shape.SetColorEnd(stream.ReadUInt32());
    shape.SetFont(ReadFont(stream, shape.Font()));
    if (version != V::XP7)
        stream.Skip(8); // reserved words
    shape.SetGradientStyle(ReadOrdinal<TGradientStyle>(stream, 24, "gradient style"));
    shape.DrawGradient();
    if (IsBetween(version, V::XP2, V::XP5))
        stream.Skip(2);
    shape.SetInfo(ReadCountedText(stream));
    TPen pen = shape.Pen();
    pen.Color = stream.ReadUInt32();
    pen.Mode = ReadOrdinal<TPenMode>(stream, 16, "pen mode");
    pen.Style = ReadOrdinal<TPenStyle>(stream, 9, "pen style");
    pen.Width = ReadExtent(stream, "pen width");
    if (pen.Width < 0)
        throw TStreamError("negative pen width at offset " + std::to_string(stream.Pos() - 4));
    shape.SetPen(pen);
}

// User data, flags, MultiInfo, log text and the newest switches, as far as the version
// reaches.
void ReadTail(TMyShape &shape, BinaryStream &stream, V version)
{
    if (!HasSince(version, V::XP8))
        return;
    std::vector<TUserDataRecord> records = std::as_const(shape).UserData().Records();
    for (std::int32_t i = ReadCount(stream, 8); i > 0; --i) {
        QString key = ReadCountedText(stream);
        records.push_back({key, ReadCountedText(stream)});
    }
    TUserData data;
    data.SetUserDataRecord(records);
    shape.SetUserData(data);
    if (!HasSince(version, V::XP9))
        return;
    const bool flipHorz = stream.ReadBool();
    shape.SetFlipFlags(flipHorz, stream.ReadBool());
    shape.SetVisible(stream.ReadBool());
    if (!HasSince(version, V::XPe))
        return;
    QStringList lines = shape.MultiInfo();
    for (std::int32_t i = ReadCount(stream, 4); i > 0; --i)
        lines.append(ReadCountedText(stream));
    shape.SetMultiInfo(lines);
    shape.SetMultiInfoAlignment(ReadOrdinal<TAlignment>(stream, 3, "info alignment"));
    if (!HasSince(version, V::XPh))
        return;
    shape.SetLogHeight(stream.ReadInt32());
    shape.SetLogUse(stream.ReadBool());
    shape.SetLogWidth(stream.ReadInt32());
    shape.SetLockedFlag(stream.ReadBool());
    if (!HasSince(version, V::XPj))
        return;
    shape.SetPenStyleEndCapType(ReadOrdinal<TPenStyleEndCapType>(stream, 4, "end cap"));
    shape.SetPenStyleJoinType(ReadOrdinal<TPenStyleJoinType>(stream, 4, "join"));
    shape.SetHotShow(stream.ReadBool());
    shape.SetResizeEnable(stream.ReadBool());
    shape.SetRotateEnable(stream.ReadBool());
}

} // namespace

void TMyShape::SaveToStream(BinaryStream &stream) const
{
    WriteCountedText(stream, m_Name);
    stream.WriteInt32(m_ShapeId);
    stream.WriteInt32(m_ShapeNo);
    stream.WriteInt32(m_LayerId);
    stream.WriteInt32(m_ParentNo);
    WriteNumbers(stream, m_ChildShapes);
    WriteNumbers(stream, m_LinkShapes);
    WritePoints(stream, m_Points);
    WritePoints(stream, m_LinkPoints);
    stream.WriteFloat(m_TextPoint.X);
    stream.WriteFloat(m_TextPoint.Y);
    stream.WriteInt32(m_Tag);
    stream.WriteFloat(DegreesOf(m_Angle));
    const TBitmap pattern = m_Brush.HasBitmap() ? TBitmap(m_Brush.Bitmap) : TBitmap();
    if (!WriteBitmapBuffer(stream, pattern))
        throw TStreamError("writing the brush bitmap failed");
    stream.WriteUInt32(m_Brush.Color);
    stream.WriteUInt8(std::uint8_t(m_Brush.Style));
    WriteCountedText(stream, Caption());
    stream.WriteUInt32(ColorBegin());
    stream.WriteUInt32(ColorEnd());
    WriteFont(stream, m_Font);
    stream.WriteInt32(0); // two reserved words
    stream.WriteInt32(0);
    stream.WriteUInt8(std::uint8_t(GradientStyle()));
    WriteCountedText(stream, Info());
    stream.WriteUInt32(m_Pen.Color);
    stream.WriteUInt8(std::uint8_t(m_Pen.Mode));
    stream.WriteUInt8(std::uint8_t(m_Pen.Style));
    stream.WriteInt32(m_Pen.Width);
    WriteUserData(stream, UserData());
    stream.WriteBool(m_IsFlipHorz);
    stream.WriteBool(m_IsFlipVert);
    stream.WriteBool(m_Visible);
    stream.WriteInt32(std::int32_t(MultiInfo().size()));
    for (const QString &line : MultiInfo())
        WriteCountedText(stream, line);
    stream.WriteUInt8(std::uint8_t(MultiInfoAlignment()));
    stream.WriteInt32(LogHeight());
    stream.WriteBool(LogUse());
    stream.WriteInt32(LogWidth());
    stream.WriteBool(m_Locked);
    stream.WriteUInt8(std::uint8_t(m_PenStyleEndCapType));
    stream.WriteUInt8(std::uint8_t(m_PenStyleJoinType));
    stream.WriteBool(m_HotShow);
    stream.WriteBool(m_ResizeEnable);
    stream.WriteBool(m_RotateEnable);
}

void TMyShape::LoadFromStream(BinaryStream &stream)
{
    const V version = RecordVersionOf(m_Host->DiskFileVersion());
    SetName(ReadCountedText(stream));
    m_ShapeId = stream.ReadInt32();
    m_ShapeNo = stream.ReadInt32();
    m_LayerId = stream.ReadInt32();
    m_ParentNo = stream.ReadInt32();
    ReadNumbers(stream, m_ChildShapes);
    ReadNumbers(stream, m_LinkShapes);
    ReadPoints(stream, m_Points, version);
    ReadPoints(stream, m_LinkPoints, version);
    ReadPlacement(*this, stream, version);
    ReadAppearance(*this, stream, version);
    ReadTail(*this, stream, version);
}

} // namespace tessal
