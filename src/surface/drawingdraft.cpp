// SPDX-License-Identifier: MIT
// Drawings built aside, and how one replaces the drawing of its surface.
#include <tessal/surface/drawingdraft.h>
#include <tessal/surface/grouping_p.h>

#include <tessal/shapes/shape.h>

#include <algorithm>

namespace tessal {

TDrawingDraft::TDrawingDraft(TMyCAD &surface)
    : m_Surface(surface)
    , m_LayerIdCounter(surface.LayerIdCounter())
    , m_ShapeIdCounter(surface.ShapeIdCounter())
{}

TDrawingDraft::~TDrawingDraft() = default;

std::int32_t TDrawingDraft::NewLayer(const QString &name, bool visible)
{
    const bool taken = std::any_of(m_Layers.begin(), m_Layers.end(),
                                   [&name](const TLayer &l) { return l.Name == name; });
    if (taken || std::int32_t(m_Layers.size()) >= TMyCAD::MaxLayers)
        return -1;
    const std::int32_t id = m_LayerIdCounter++;
    m_Layers.push_back({name, id, visible});
    m_CurrentLayerId = id;
    return id;
}

std::int32_t TDrawingDraft::GetMaxLayerId() const
{
    return m_Layers.empty() ? -1 : m_Layers.back().Id;
}

QString TDrawingDraft::GetLayerNameByID(std::int32_t id) const
{
    for (const TLayer &layer : m_Layers)
        if (layer.Id == id)
            return layer.Name;
    return {};
}

bool TDrawingDraft::InVisibleLayerByID(std::int32_t id)
{
    for (TLayer &layer : m_Layers)
        if (layer.Id == id) {
            layer.Visible = false;
            return true;
        }
    return false;
}

bool TDrawingDraft::SetCurrentLayerId(std::int32_t id)
{
    if (std::none_of(m_Layers.begin(), m_Layers.end(),
                     [id](const TLayer &l) { return l.Id == id; }))
        return false;
    m_CurrentLayerId = id;
    return true;
}

TMyShape *TDrawingDraft::GetShapeByNo(std::int32_t no) const
{
    if (no < 0 || no >= GetShapesCount())
        return nullptr;
    return m_Shapes[std::size_t(no)].get();
}

TMyShape *TDrawingDraft::AddShape(std::unique_ptr<TMyShape> shape)
{
    if (!shape || m_Layers.empty())
        return nullptr;
    shape->SetListPlace(GetShapesCount());
    m_Shapes.push_back(std::move(shape));
    ++m_ShapeIdCounter;
    return m_Shapes.back().get();
}

std::int32_t TDrawingDraft::GroupShapes(std::span<TMyShape *const> shapes)
{
    std::int32_t layer = 0;
    const std::vector<TMyShape *> roots = Grouping::Roots(m_Shapes, shapes, layer);
    if (roots.empty())
        return -1;
    const std::int32_t no = GetShapesCount();
    const std::int32_t id = m_ShapeIdCounter;
    TMyShape *group =
        AddShape(Grouping::NewGroup(m_Surface, QStringLiteral("TMyGroup"), roots, layer, no, id));
    if (!group)
        return -1;
    Grouping::Adopt(m_Shapes, *group, no, roots);
    return id;
}

// The drawing's shapes and layers go the way DeleteAllLayers takes them, with the events it
// fires, and the undo history with them; then the draft's layers are announced. Shapes move
// over without a copy, and the ones replaced are gone before the call returns.
void TMyCAD::CommitDraft(TDrawingDraft &draft)
{
    DeleteAllLayers();
    ClearAllUndoStuff();
    m_Layers = std::move(draft.m_Layers);
    m_CurrentLayerId = draft.m_CurrentLayerId;
    m_LayerIdCounter = draft.m_LayerIdCounter;
    m_Shapes = std::move(draft.m_Shapes);
    m_ShapeIdCounter = draft.m_ShapeIdCounter;
    draft.m_Layers.clear();
    draft.m_Shapes.clear();
    draft.m_CurrentLayerId = -1;
    // A handler may change the table: each layer is announced from a copy.
    for (std::size_t i = 0; m_OnNewLayer && i < m_Layers.size(); ++i) {
        const TLayer layer = m_Layers[i];
        m_OnNewLayer(this, layer.Id, layer.Name, layer.Visible);
    }
    DocumentChanged();
}

} // namespace tessal
