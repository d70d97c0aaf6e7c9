// SPDX-License-Identifier: MIT
// Saving and loading a whole drawing: header, settings, user data, layers and shapes.
#include <tessal/persistence/drawingfile.h>
#include <tessal/persistence/drawingfile_p.h>
#include <tessal/surface/cad.h>

#include <tessal/platform/binarystream.h>
#include <tessal/platform/filesaver_p.h>
#include <tessal/platform/streamprimitives.h>
#include <tessal/shapes/shape.h>

#include <QBuffer>
#include <QFile>

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>

namespace tessal {

namespace {

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

// Only exactly 1 reads as visible; the next free layer identity follows the largest read.
std::vector<TLayer> ReadLayers(BinaryStream &stream, std::int32_t &currentId,
                               std::int32_t &idCounter)
{
    std::vector<TLayer> layers;
    std::int32_t largest = 0;
    for (std::int32_t i = ReadCount(stream, 12); i > 0; --i) {
        TLayer layer;
        layer.Name = ReadCountedText(stream);
        layer.Id = stream.ReadInt32();
        layer.Visible = stream.ReadInt32() == 1;
        largest = std::max(largest, layer.Id);
        layers.push_back(layer);
    }
    currentId = stream.ReadInt32();
    idCounter = NextAfter(largest);
    return layers;
}

// Shapes read without a layer table have no layer to go on.
bool LacksLayers(const TLoadedDrawing &drawing)
{
    return !drawing.Shapes.empty() && (!drawing.Layers || drawing.Layers->empty());
}

QString NoLayerError()
{
    return QStringLiteral("the drawing has no layer to hold its shapes");
}

} // namespace

// ---- Progress ----

// A report every this many shapes keeps the handler's cost out of sight, yet moves a
// progress bar smoothly for a million shapes.
constexpr std::int64_t ProgressStep = 4096;

void TMyCAD::ReportProgress(std::int64_t done, std::int64_t total) const
{
    if (!m_OnProgress)
        return;
    bool cancel = false;
    m_OnProgress(const_cast<TMyCAD *>(this), done, total, cancel);
    if (cancel)
        throw TLoadCancelled();
}

// ---- Saving ----

// The bytes gather in memory and go to the device in pieces of about this size: a drawing
// is millions of small values, each of which would otherwise be a call into the device.
constexpr qsizetype WriteChunk = 1 << 20;

void TMyCAD::WriteDrawing(BinaryStream &s, const std::function<void()> &flush) const
{
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
    const std::int64_t count = GetShapesCount();
    s.WriteInt32(std::int32_t(count));
    ReportProgress(0, count);
    std::int64_t done = 0;
    for (const auto &shape : m_Shapes) {
        WriteFixedText(s, shape->ClassName(), DrawingFile::ClassNameWidth);
        shape->SaveToStream(s);
        flush();
        if (++done % ProgressStep == 0)
            ReportProgress(done, count);
    }
    ReportProgress(count, count);
}

bool TMyCAD::SaveToStream(QIODevice *stream) const
{
    m_LastError.clear();
    if (!stream || !stream->isWritable()) {
        m_LastError = QStringLiteral("the stream is not open for writing");
        return false;
    }
    QByteArray chunk;
    try {
        BinaryStream s(&chunk);
        const auto pass = [&chunk, &s, stream](qsizetype least) {
            if (s.Pos() < least)
                return;
            s.Trim();
            if (stream->write(chunk) != chunk.size())
                throw TStreamError("write failed at offset " + std::to_string(stream->pos()));
            s.Rewind();
        };
        WriteDrawing(s, [&pass] { pass(WriteChunk); });
        pass(1);
        return true;
    } catch (const TStreamError &e) {
        m_LastError = QString::fromStdString(e.what());
    } catch (const TLoadCancelled &) {
        m_LastError = QStringLiteral("saving was cancelled");
    } catch (const std::bad_alloc &) {
        m_LastError = QStringLiteral("out of memory");
    }
    return false;
}

bool TMyCAD::SaveToFile(const QString &fileName)
{
    QString reason;
    // A save that stopped by itself (cancelled, out of memory) gives its own reason; one
    // the device refused gives the system's.
    QString stopped;
    const auto write = [this, &stopped](QIODevice &device) {
        if (SaveToStream(&device))
            return true;
        const auto *file = qobject_cast<const QFileDevice *>(&device);
        if (!file || file->error() == QFileDevice::NoError)
            stopped = m_LastError;
        return false;
    };
    if (!detail::SaveWholeFile(fileName, write, reason)) {
        m_LastError = stopped.isEmpty() ? reason : stopped;
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

// The file is read from a mapping of it where the system allows, so that its pages are
// neither copied nor kept once the drawing is built.
bool TMyCAD::LoadFromFile(const QString &fileName, TLoadFault fault)
{
    // A file that cannot be read is not called a foreign one: the reason is the system's.
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        m_LastError = QStringLiteral("%1 cannot be opened: %2").arg(fileName, file.errorString());
        return false;
    }
    if (!IsZEDAFile(fileName)) {
        m_LastError = QStringLiteral("%1 is not a drawing file").arg(fileName);
        return false;
    }
    if (const uchar *mapped = file.map(0, file.size()))
        return LoadFromMemory(reinterpret_cast<const char *>(mapped), file.size(), fault);
    const QByteArray bytes = file.readAll();
    return LoadFromMemory(bytes.constData(), bytes.size(), fault);
}

bool TMyCAD::LoadFromStream(QIODevice *stream, TLoadFault fault)
{
    m_LastError.clear();
    if (!stream || !stream->isReadable()) {
        m_LastError = QStringLiteral("the stream is not open for reading");
        return false;
    }
    if (!stream->seek(0)) {
        m_LastError = QStringLiteral("the stream cannot be read from its start");
        return false;
    }
    if (const auto *buffer = qobject_cast<const QBuffer *>(stream))
        return LoadFromMemory(buffer->data().constData(), buffer->data().size(), fault);
    QByteArray bytes;
    try {
        bytes = stream->readAll();
    } catch (const std::bad_alloc &) {
        m_LastError = QStringLiteral("out of memory");
        return false;
    }
    return LoadFromMemory(bytes.constData(), bytes.size(), fault);
}

// The whole file is read before the drawing changes. A cancelled load then leaves it as it
// was; a damaged file replaces it with what could be read, as callers of the stream
// reader rely on, unless they ask to keep the drawing.
bool TMyCAD::LoadFromMemory(const char *data, std::int64_t size, TLoadFault fault)
{
    m_LastError.clear();
    const QString formerVersion = m_DiskFileVersion;
    const bool formerLoading = IsLoading();
    SetLoading(true);
    TLoadedDrawing drawing;
    bool cancelled = false;
    try {
        BinaryStream s(data, size);
        drawing.Settings = ReadDrawingSettingsOnly(s);
        // Shape records are read in the layout the header names.
        m_DiskFileVersion = drawing.Settings->Version;
        drawing.Layers = ReadLayers(s, drawing.CurrentLayerId, drawing.LayerIdCounter);
        std::int32_t largest = 0;
        ReadShapeList(s, drawing.Shapes, largest);
        drawing.ShapeIdCounter = NextAfter(largest);
    } catch (const TStreamError &e) {
        m_LastError = QString::fromStdString(e.what());
    } catch (const TLoadCancelled &) {
        cancelled = true;
        m_LastError = QStringLiteral("loading was cancelled");
    } catch (const std::bad_alloc &) {
        m_LastError = QStringLiteral("out of memory");
    }
    // Kept, the drawing keeps its layers: the no-layer handler has nothing to answer for.
    if (fault == TLoadFault::KeepTheDrawing && m_LastError.isEmpty() && LacksLayers(drawing))
        m_LastError = NoLayerError();
    if (cancelled || (fault == TLoadFault::KeepTheDrawing && !m_LastError.isEmpty())) {
        drawing.Shapes.clear(); // while the loading flag still says so
        m_DiskFileVersion = formerVersion;
        SetLoading(formerLoading);
        return false;
    }
    CommitLoadedDrawing(drawing);
    SetLoading(false);
    ShapesRenumbered();
    Invalidate();
    if (!m_LastError.isEmpty())
        return false;
    ClearAllUndoStuff();
    return true;
}

// The undo history stays: a load that fails part-way keeps it (taking a step back then
// finds its shapes by identity, and passes over those that are gone), and one that succeeds
// clears it once everything is read.
void TMyCAD::ResetForLoad()
{
    SetLoading(true);
    SetZoom(1.0);
    ClearWorkingShapes();
    DeleteAllShapes();
    m_Layers.clear();
}

// Whatever was read completely replaces the drawing. Without a layer table nothing can
// hold the shapes: the no-layer handler runs and the load fails. The next free identities
// follow what was read only when all of it was; a failed load leaves both counters.
void TMyCAD::CommitLoadedDrawing(TLoadedDrawing &drawing)
{
    ResetForLoad();
    if (drawing.Settings)
        ApplyDrawingSettings(*drawing.Settings, false);
    if (drawing.Layers) {
        m_Layers = std::move(*drawing.Layers);
        m_CurrentLayerId = drawing.CurrentLayerId;
    }
    if (!drawing.Shapes.empty()) {
        if (m_Layers.empty()) {
            if (!AddShapeforLoadfromStream(0, drawing.Shapes.front().get(), false) &&
                m_LastError.isEmpty())
                m_LastError = NoLayerError();
            drawing.Shapes.clear();
        } else {
            m_Shapes = std::move(drawing.Shapes);
        }
    }
    if (!m_LastError.isEmpty())
        return;
    if (drawing.Layers)
        m_LayerIdCounter = drawing.LayerIdCounter;
    if (drawing.ShapeIdCounter)
        m_ShapeIdCounter = *drawing.ShapeIdCounter;
}

TDrawingSettings ReadDrawingSettingsOnly(BinaryStream &stream)
{
    TDrawingSettings settings;
    ReadFixedText(stream, DrawingFile::TagWidth);
    ReadFixedText(stream, DrawingFile::TitleWidth);
    settings.Version = ReadFixedText(stream, DrawingFile::VersionWidth).trimmed();
    ReadFixedText(stream, DrawingFile::DateWidth);
    ReadFixedText(stream, DrawingFile::ReservedWidth);

    settings.Background = stream.ReadUInt32();
    settings.Width = stream.ReadInt32();
    settings.Height = stream.ReadInt32();
    // Any size a control can have is stored, however large: the control keeps an image of the
    // part on the screen only, and a side beyond what a widget can have ends at the largest.
    if (settings.Width < 0 || settings.Height < 0)
        throw TStreamError("implausible drawing size " + std::to_string(settings.Width) + " x " +
                           std::to_string(settings.Height));
    const std::uint8_t unit = stream.ReadUInt8();
    if (unit > std::uint8_t(TUnits::inch))
        throw TStreamError("invalid unit " + std::to_string(unit));
    settings.Unit = TUnits(unit);
    ReadBitmapBuffer(stream, settings.Picture); // a picture the decoder refuses leaves none
    const std::int32_t mode = stream.ReadInt32();
    if (mode < 0 || mode > std::int32_t(TBkBitmapMode::LeftTop))
        throw TStreamError("invalid background mode " + std::to_string(mode));
    settings.PictureMode = TBkBitmapMode(mode);
    settings.Ratio = stream.ReadDouble();
    settings.HasUserData = HasDrawingUserData(settings.Version);
    if (!settings.HasUserData)
        return settings;
    settings.Tag = stream.ReadInt32();
    for (std::int32_t i = ReadCount(stream, 8); i > 0; --i) {
        QString key = ReadCountedText(stream);
        settings.UserData.push_back({key, ReadCountedText(stream)});
    }
    return settings;
}

// A drawing takes the stored size; a block (growOnly) only enlarges the control where it is
// larger. Either way the shape records that follow are read in the stream's own layout.
void TMyCAD::ApplyDrawingSettings(const TDrawingSettings &settings, bool growOnly)
{
    m_DiskFileVersion = settings.Version;
    m_ColorOfBackGround = settings.Background;
    const std::int32_t w = settings.Width;
    const std::int32_t h = settings.Height;
    if (!growOnly)
        resize(w, h);
    else if (w > width() || h > height())
        resize(std::max(w, width()), std::max(h, height()));
    m_TheUNIT = settings.Unit;
    m_BkBitmap = settings.Picture;
    m_BkBitmapMode = settings.PictureMode;
    m_Ratio = settings.Ratio;
    if (!settings.HasUserData)
        return;
    m_Tag = settings.Tag;
    std::vector<TUserDataRecord> records = m_UserData.Records();
    records.insert(records.end(), settings.UserData.begin(), settings.UserData.end());
    m_UserData.SetUserDataRecord(records);
}

void TMyCAD::ReadDrawingSettings(BinaryStream &stream, bool growOnly)
{
    ApplyDrawingSettings(ReadDrawingSettingsOnly(stream), growOnly);
}

// Every shape returns to its stored place with its stored numbers and relations, so no
// renumbering or re-binding follows.
void TMyCAD::ReadShapeList(BinaryStream &stream, std::vector<std::unique_ptr<TMyShape>> &shapes,
                           std::int32_t &largestId)
{
    const std::int32_t count = ReadCount(stream, DrawingFile::ClassNameWidth);
    shapes.reserve(std::size_t(count));
    ReportProgress(0, count);
    for (std::int32_t i = 0; i < count; ++i) {
        const QString className = ReadFixedText(stream, DrawingFile::ClassNameWidth).trimmed();
        std::unique_ptr<TMyShape> shape = CreateShapeByName(className);
        if (!shape)
            throw TStreamError("unknown shape class \"" + className.toStdString() +
                               "\" at offset " + std::to_string(stream.Pos() - 16));
        shape->LoadFromStream(stream);
        shape->SetCenterPoint(shape->GetCenterPoint());
        largestId = std::max(largestId, shape->ShapeId());
        shape->SetListPlace(i);
        shapes.push_back(std::move(shape));
        if ((i + 1) % ProgressStep == 0)
            ReportProgress(i + 1, count);
    }
    ReportProgress(count, count);
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
    if (preallocated && index < count && !*at) {
        at->reset(shape);
    } else {
        m_Shapes.emplace(at, shape);
        ShapesRenumbered();
    }
    return true;
}

} // namespace tessal
