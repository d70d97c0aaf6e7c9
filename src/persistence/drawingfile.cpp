// SPDX-License-Identifier: MIT
// Saving and loading a whole drawing: header, settings, user data, layers and shapes.
#include <tessal/persistence/drawingfile.h>
#include <tessal/surface/cad.h>

#include <tessal/platform/binarystream.h>
#include <tessal/platform/streamprimitives.h>
#include <tessal/shapes/shape.h>

#include "filesaver_p.h"

#include <QFile>

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>

namespace tessal {

namespace {

// A control larger than this in either direction cannot come from a real drawing, and
// would ask for an off-screen image of many gigabytes.
constexpr std::int32_t MaxControlSide = 32767;

void WriteHeader(BinaryStream &stream)
{
    WriteFixedText(stream, DrawingFile::Tag(), DrawingFile::TagWidth);
    WriteFixedText(stream, DrawingFile::Title(), DrawingFile::TitleWidth);
    WriteFixedText(stream, DrawingFile::NewestVersion(), DrawingFile::VersionWidth);
    WriteFixedText(stream, DrawingFile::VersionDate(), DrawingFile::DateWidth);
    WriteFixedText(stream, QString(), DrawingFile::ReservedWidth);
}

void WriteUserData(BinaryStream &stream, const TUserData &data)
{
    stream.WriteInt32(data.GetCount());
    for (const TUserDataRecord &r : data.Records()) {
        WriteCountedText(stream, r.Key);
        WriteCountedText(stream, r.Value);
    }
}

// The unzoomed size, so that a drawing saved while zoomed opens at its own size.
std::int32_t Unzoomed(std::int32_t pixels, double zoom)
{
    return std::int32_t(std::nearbyint(double(pixels) / zoom));
}

void WriteLayers(BinaryStream &stream, const std::vector<TLayer> &layers)
{
    const std::int32_t count =
        std::min<std::int32_t>(std::int32_t(layers.size()), TMyCAD::MaxLayers);
    stream.WriteInt32(count);
    for (std::int32_t i = 0; i < count; ++i) {
        const TLayer &layer = layers[std::size_t(i)];
        WriteCountedText(stream, layer.Name);
        stream.WriteInt32(layer.Id);
        stream.WriteInt32(layer.Visible ? 1 : 0);
    }
}

// The drawing Tag and user data came with XP.h.
bool HasDrawingUserData(const QString &version)
{
    return version == QLatin1String("XP.h") || version == QLatin1String("XP.i") ||
           version == QLatin1String("XP.j");
}

std::int32_t ReadCount(BinaryStream &stream, std::int64_t elementSize)
{
    const std::int32_t count = stream.ReadInt32();
    if (count <= 0)
        return 0;
    stream.RequireBytes(count, elementSize);
    return count;
}

std::int32_t NextAfter(std::int32_t largest)
{
    return largest == std::numeric_limits<std::int32_t>::max() ? largest : largest + 1;
}

} // namespace

// ---- Saving ----

bool TMyCAD::SaveToStream(QIODevice *stream) const
{
    m_LastError.clear();
    if (!stream || !stream->isWritable()) {
        m_LastError = QStringLiteral("the stream is not open for writing");
        return false;
    }
    try {
        BinaryStream s(stream);
        WriteHeader(s);
        s.WriteUInt32(m_ColorOfBackGround);
        s.WriteInt32(Unzoomed(width(), m_Zoom));
        s.WriteInt32(Unzoomed(height(), m_Zoom));
        s.WriteUInt8(std::uint8_t(m_TheUNIT));
        if (!WriteBitmapBuffer(s, m_BkBitmap))
            throw TStreamError("writing the background picture failed");
        s.WriteInt32(std::int32_t(m_BkBitmapMode));
        s.WriteDouble(m_Ratio);
        s.WriteInt32(m_Tag);
        WriteUserData(s, m_UserData);
        WriteLayers(s, m_Layers);
        s.WriteInt32(m_CurrentLayerId);
        s.WriteInt32(GetShapesCount());
        for (const auto &shape : m_Shapes) {
            WriteFixedText(s, shape->ClassName(), DrawingFile::ClassNameWidth);
            shape->SaveToStream(s);
        }
        return true;
    } catch (const TStreamError &e) {
        m_LastError = QString::fromStdString(e.what());
        return false;
    }
}

bool TMyCAD::SaveToFile(const QString &fileName)
{
    QString reason;
    const auto write = [this](QIODevice &device) { return SaveToStream(&device); };
    if (!detail::SaveWholeFile(fileName, write, reason)) {
        m_LastError = reason;
        return false;
    }
    m_LastError.clear();
    SetModified(false);
    return true;
}

// ---- Loading ----

bool TMyCAD::IsZEDAFile(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    try {
        BinaryStream s(&file);
        return ReadFixedText(s, DrawingFile::TagWidth).trimmed() == DrawingFile::Tag();
    } catch (const TStreamError &) {
        return false;
    }
}

bool TMyCAD::LoadFromFile(const QString &fileName)
{
    if (!IsZEDAFile(fileName)) {
        m_LastError = QStringLiteral("%1 is not a drawing file").arg(fileName);
        return false;
    }
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        m_LastError = file.errorString();
        return false;
    }
    DeleteAllShapes();
    return LoadFromStream(&file);
}

bool TMyCAD::LoadFromStream(QIODevice *stream)
{
    m_LastError.clear();
    if (!stream || !stream->isReadable()) {
        m_LastError = QStringLiteral("the stream is not open for reading");
        return false;
    }
    ResetForLoad();
    try {
        if (!stream->seek(0))
            throw TStreamError("the stream cannot be read from its start");
        BinaryStream s(stream);
        ReadDrawingSettings(s);
        ReadLayerTable(s);
        ReadShapeList(s);
    } catch (const TStreamError &e) {
        m_LastError = QString::fromStdString(e.what());
    } catch (const std::bad_alloc &) {
        m_LastError = QStringLiteral("out of memory");
    }
    SetLoading(false);
    ShapesRenumbered();
    Invalidate();
    if (!m_LastError.isEmpty())
        return false;
    ClearAllUndoStuff();
    return true;
}

void TMyCAD::ResetForLoad()
{
    SetLoading(true);
    ClearAllUndoStuff();
    SetZoom(1.0);
    ClearWorkingShapes();
    DeleteAllShapes();
    m_Layers.clear();
}

// The header and the drawing's own settings. A drawing takes the stored size; a block
// (growOnly) only enlarges the control where it is larger. Either way the shape records
// that follow are read in the stream's own layout.
void TMyCAD::ReadDrawingSettings(BinaryStream &stream, bool growOnly)
{
    ReadFixedText(stream, DrawingFile::TagWidth);
    ReadFixedText(stream, DrawingFile::TitleWidth);
    m_DiskFileVersion = ReadFixedText(stream, DrawingFile::VersionWidth).trimmed();
    ReadFixedText(stream, DrawingFile::DateWidth);
    ReadFixedText(stream, DrawingFile::ReservedWidth);

    m_ColorOfBackGround = stream.ReadUInt32();
    const std::int32_t w = stream.ReadInt32();
    const std::int32_t h = stream.ReadInt32();
    if (w < 0 || h < 0 || w > MaxControlSide || h > MaxControlSide)
        throw TStreamError("implausible drawing size " + std::to_string(w) + " x " +
                           std::to_string(h));
    if (!growOnly)
        resize(w, h);
    else if (w > width() || h > height())
        resize(std::max(w, width()), std::max(h, height()));
    const std::uint8_t unit = stream.ReadUInt8();
    if (unit > std::uint8_t(TUnits::inch))
        throw TStreamError("invalid unit " + std::to_string(unit));
    m_TheUNIT = TUnits(unit);
    TBitmap picture;
    ReadBitmapBuffer(stream, picture); // a picture the decoder refuses leaves none
    m_BkBitmap = picture;
    const std::int32_t mode = stream.ReadInt32();
    if (mode < 0 || mode > std::int32_t(TBkBitmapMode::LeftTop))
        throw TStreamError("invalid background mode " + std::to_string(mode));
    m_BkBitmapMode = TBkBitmapMode(mode);
    m_Ratio = stream.ReadDouble();
    if (!HasDrawingUserData(m_DiskFileVersion))
        return;
    m_Tag = stream.ReadInt32();
    std::vector<TUserDataRecord> records = m_UserData.Records();
    for (std::int32_t i = ReadCount(stream, 8); i > 0; --i) {
        QString key = ReadCountedText(stream);
        records.push_back({key, ReadCountedText(stream)});
    }
    m_UserData.SetUserDataRecord(records);
}

// Only exactly 1 reads as visible; the next free layer identity follows the largest read.
void TMyCAD::ReadLayerTable(BinaryStream &stream)
{
    std::int32_t largest = 0;
    for (std::int32_t i = ReadCount(stream, 12); i > 0; --i) {
        TLayer layer;
        layer.Name = ReadCountedText(stream);
        layer.Id = stream.ReadInt32();
        layer.Visible = stream.ReadInt32() == 1;
        largest = std::max(largest, layer.Id);
        m_Layers.push_back(layer);
    }
    m_CurrentLayerId = stream.ReadInt32();
    m_LayerIdCounter = NextAfter(largest);
}

// Every shape returns to its stored place with its stored numbers and relations, so no
// renumbering or re-binding follows. The next free identities are only set once every
// shape was read.
void TMyCAD::ReadShapeList(BinaryStream &stream)
{
    const std::int32_t count = ReadCount(stream, DrawingFile::ClassNameWidth);
    m_Shapes.reserve(std::size_t(count));
    std::int32_t largest = 0;
    for (std::int32_t i = 0; i < count; ++i) {
        const QString className = ReadFixedText(stream, DrawingFile::ClassNameWidth).trimmed();
        std::unique_ptr<TMyShape> shape = CreateShapeByName(className);
        if (!shape)
            throw TStreamError("unknown shape class \"" + className.toStdString() +
                               "\" at offset " + std::to_string(stream.Pos() - 16));
        shape->LoadFromStream(stream);
        shape->SetCenterPoint(shape->GetCenterPoint());
        largest = std::max(largest, shape->ShapeId());
        m_Shapes.emplace_back();
        if (!AddShapeforLoadfromStream(i, shape.get(), true)) {
            m_Shapes.pop_back();
            throw TStreamError("the drawing has no layer to hold its shapes");
        }
        shape.release();
    }
    m_ShapeIdCounter = NextAfter(largest);
}

bool TMyCAD::AddShapeforLoadfromStream(std::int32_t index, TMyShape *shape, bool preallocated)
{
    if (!shape)
        return false;
    if (m_Layers.empty())
        return AddShape(shape, true, true); // runs the no-layer handler and refuses
    const std::int32_t count = GetShapesCount();
    if (index < 0 || index > count)
        return false;
    const auto at = m_Shapes.begin() + index;
    if (preallocated && index < count && !*at)
        at->reset(shape);
    else
        m_Shapes.emplace(at, shape);
    return true;
}

} // namespace tessal
