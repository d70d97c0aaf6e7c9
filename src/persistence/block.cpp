// SPDX-License-Identifier: MIT
// Bringing stored shapes into an open drawing: a whole drawing file inserted as a block, and
// a shape library entry placed at a point.
#include <tessal/persistence/block.h>
#include <tessal/persistence/drawingfile.h>
#include <tessal/persistence/drawingfile_p.h>
#include <tessal/persistence/library.h>
#include <tessal/surface/cad.h>

#include <tessal/platform/binarystream.h>
#include <tessal/platform/streamprimitives.h>
#include <tessal/shapes/link.h>
#include <tessal/shapes/rectangle.h>
#include <tessal/shapes/shape.h>

#include <QFile>

#include <algorithm>
#include <new>
#include <optional>

namespace tessal {

namespace {

std::int32_t ReadCount(BinaryStream &stream, std::int64_t elementSize)
{
    const std::int32_t count = stream.ReadInt32();
    if (count <= 0)
        return 0;
    stream.RequireBytes(count, elementSize);
    return count;
}

// Layer IDs of old blocks were bytes; only those bits identify a block's layer.
std::int32_t BlockLayerPosition(const std::vector<TLayer> &layers, std::int32_t id)
{
    std::int32_t position = -1;
    for (std::size_t i = 0; i < layers.size(); ++i)
        if ((layers[i].Id & 0xFF) == (id & 0xFF))
            position = std::int32_t(i);
    return position;
}

} // namespace

// ---- Blocks ----

bool TMyCAD::AddBlockfromZEDAFile(const QString &fileName, TBlockLayerMode mode)
{
    SetModified(true);
    if (!IsZEDAFile(fileName))
        return false;
    QFile file(fileName);
    bool read = false;
    if (!file.open(QIODevice::ReadOnly))
        m_LastError = file.errorString();
    else if ((read = LoadFromStreamforBlock(&file, mode)))
        PasteforBlock();
    m_MemoryShapes.clear();
    return read;
}

// The whole block is read before the drawing changes, so that a damaged or cancelled block
// leaves it exactly as it was.
bool TMyCAD::LoadFromStreamforBlock(QIODevice *stream, TBlockLayerMode mode)
{
    m_LastError.clear();
    if (!stream || !stream->isReadable()) {
        m_LastError = QStringLiteral("the stream is not open for reading");
        return false;
    }
    m_MemoryShapes.clear();
    const QString formerVersion = m_DiskFileVersion;
    const bool formerLoading = IsLoading();
    SetLoading(true);
    std::optional<TDrawingSettings> settings;
    std::vector<TLayer> blockLayers;
    std::vector<std::unique_ptr<TMyShape>> shapes;
    try {
        if (!stream->seek(0))
            throw TStreamError("the stream cannot be read from its start");
        // Read from memory: a block can be as big as any drawing.
        const QByteArray bytes = stream->readAll();
        BinaryStream s(bytes.constData(), bytes.size());
        settings = ReadDrawingSettingsOnly(s);
        // The block's shape records are read in the block's own layout.
        m_DiskFileVersion = settings->Version;
        blockLayers = ReadBlockLayers(s);
        std::int32_t largest = 0;
        ReadShapeList(s, shapes, largest);
    } catch (const TStreamError &e) {
        m_LastError = QString::fromStdString(e.what());
    } catch (const TLoadCancelled &) {
        m_LastError = QStringLiteral("inserting the block was cancelled");
    } catch (const std::bad_alloc &) {
        m_LastError = QStringLiteral("out of memory");
    }
    if (!m_LastError.isEmpty()) {
        shapes.clear(); // while the loading flag still says so
        m_DiskFileVersion = formerVersion;
        SetLoading(formerLoading);
        return false;
    }
    TakeOverBlock(*settings, blockLayers, std::move(shapes), mode);
    SetLoading(false);
    Invalidate();
    return true;
}

// Names read from the block cannot collide with the drawing's: its named shapes are renamed
// "A" and their identity, and the step that pastes the block can give the names back.
void TMyCAD::TakeOverBlock(const TDrawingSettings &settings, const std::vector<TLayer> &layers,
                           std::vector<std::unique_ptr<TMyShape>> shapes, TBlockLayerMode mode)
{
    m_BlockFormerNames.clear();
    for (const auto &shape : m_Shapes) {
        if (shape->Name().isEmpty())
            continue;
        m_BlockFormerNames.emplace_back(shape->ShapeId(), shape->Name());
        shape->SetName(QStringLiteral("A") + QString::number(shape->ShapeId()));
    }
    SetZoom(1.0);
    ApplyDrawingSettings(settings, true); // a block never makes the drawing smaller
    m_MemoryShapes = std::move(shapes);
    AssignBlockLayers(layers, mode);
}

// The block's layer table, only 1 reading as visible; its current layer is not used.
std::vector<TLayer> TMyCAD::ReadBlockLayers(BinaryStream &stream)
{
    std::vector<TLayer> layers;
    const std::int32_t count = ReadCount(stream, 12);
    layers.reserve(std::size_t(count));
    for (std::int32_t i = 0; i < count; ++i) {
        TLayer layer;
        layer.Name = ReadCountedText(stream);
        layer.Id = stream.ReadInt32();
        layer.Visible = stream.ReadInt32() == 1;
        layers.push_back(layer);
    }
    stream.ReadInt32();
    return layers;
}

void TMyCAD::AssignBlockLayers(const std::vector<TLayer> &blockLayers, TBlockLayerMode mode)
{
    if (mode == TBlockLayerMode::Merge) {
        for (const auto &shape : m_MemoryShapes)
            shape->SetLayerId(m_CurrentLayerId);
        return;
    }
    const std::int32_t wanted = std::min(std::int32_t(blockLayers.size()), MaxLayers);
    // A name already in use is skipped, so the numbers always lead to a new layer.
    for (std::int32_t number = 1; GetLayersCount() < wanted; ++number)
        NewLayer(QStringLiteral("Block") + QString::number(number), true);
    for (const auto &shape : m_MemoryShapes)
        shape->SetLayerId(GetLayerIdByNo(BlockLayerPosition(blockLayers, shape->LayerId())));
}

bool TMyCAD::PasteforBlock()
{
    std::vector<std::unique_ptr<TMyShape>> shapes = std::move(m_MemoryShapes);
    m_MemoryShapes.clear();
    if (shapes.empty())
        return true;
    const std::vector<TMyShape *> placed = PlaceShapes(std::move(shapes), {0, 0}, true);
    // Taking the insertion back gives the drawing's shapes their names back too.
    if (!placed.empty())
        RecordFormerNames(m_BlockFormerNames, placed.front());
    m_BlockFormerNames.clear();
    return !placed.empty();
}

// ---- Library entries ----

bool AddUserDefineShapefromLib(TLibManager &library, const QString &name, std::int32_t x,
                               std::int32_t y, TMyCAD &target)
{
    TMyPointArray linkPoints;
    TUserData userData;
    TLibManager::TShapeList entry;
    std::int32_t width = 0, height = 0;
    if (!library.GetCmbShape(name, true, linkPoints, userData, entry, width, height))
        return false;
    const double zoom = target.Zoom() > 0 ? target.Zoom() : 1.0;
    const TMyPoint at{float(x / zoom), float(y / zoom)};
    const auto placed = [at](TMyPoint p) { return TMyPoint{p.X + at.X, p.Y + at.Y}; };

    std::vector<std::unique_ptr<TMyShape>> shapes;
    const std::int32_t combineNo = std::int32_t(entry.size());
    for (const auto &source : entry) {
        std::unique_ptr<TMyShape> member = target.CloneShape(*source);
        if (!member)
            return false;
        member->ChildShapes().clear();
        member->LinkShapes().clear();
        member->SetParentNo(combineNo);
        if (auto *link = dynamic_cast<TMyLinkLine *>(member.get())) {
            link->SetStartSpNo(-1);
            link->SetStartSpPtId(-1);
            link->SetEndSpNo(-1);
            link->SetEndSpPtId(-1);
        }
        for (TMyPoint &p : member->Points())
            p = placed(p);
        for (TMyPoint &p : member->LinkPoints())
            p = placed(p);
        member->SetTextPoint(placed(member->TextPoint()));
        member->SetCenterPoint(member->GetCenterPoint());
        shapes.push_back(std::move(member));
    }

    std::unique_ptr<TMyShape> combine = target.CreateShapeByName(QStringLiteral("TMyCombine"));
    const float w = float(width), h = float(height);
    combine->Points() = {at, {at.X + w, at.Y}, {at.X + w, at.Y + h}, {at.X, at.Y + h}};
    for (TMyPoint p : linkPoints)
        combine->LinkPoints().push_back(placed(p));
    for (std::int32_t i = 0; i < combineNo; ++i)
        combine->ChildShapes().push_back(i);
    const TMyPoint centre = combine->GetCenterPoint();
    combine->SetCenterPoint(centre);
    combine->SetTextPoint({centre.X, at.Y + h + 10});
    combine->SetUserData(userData);
    shapes.push_back(std::move(combine));
    return !target.PlaceShapes(std::move(shapes), {0, 0}, false).empty();
}

} // namespace tessal
