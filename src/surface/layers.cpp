// SPDX-License-Identifier: MIT
// The layer table of a surface: making, changing, merging and removing layers, and the
// shapes on a layer.
#include <tessal/surface/cad.h>

#include <tessal/shapes/shape.h>

#include <algorithm>

namespace tessal {

std::int32_t TMyCAD::NewLayer(const QString &name, bool visible)
{
    if (GetLayerNoByName(name) != -1 || GetLayersCount() >= MaxLayers)
        return -1;
    const std::int32_t id = m_LayerIdCounter;
    m_Layers.push_back({name, id, visible});
    m_CurrentLayerId = id;
    if (m_OnNewLayer)
        m_OnNewLayer(this, id, name, visible);
    ++m_LayerIdCounter;
    return id;
}

std::int32_t TMyCAD::GetMaxLayerId() const
{
    return m_Layers.empty() ? -1 : m_Layers.back().Id;
}

std::int32_t TMyCAD::GetLayerNoById(std::int32_t id) const
{
    const auto it = std::find_if(m_Layers.begin(), m_Layers.end(),
                                 [id](const TLayer &l) { return l.Id == id; });
    return it == m_Layers.end() ? -1 : std::int32_t(it - m_Layers.begin());
}

std::int32_t TMyCAD::GetLayerNoByName(const QString &name) const
{
    const auto it = std::find_if(m_Layers.begin(), m_Layers.end(),
                                 [&name](const TLayer &l) { return l.Name == name; });
    return it == m_Layers.end() ? -1 : std::int32_t(it - m_Layers.begin());
}

std::int32_t TMyCAD::GetLayerIdByNo(std::int32_t no) const
{
    if (no < 0 || no >= GetLayersCount())
        return -1;
    return m_Layers[std::size_t(no)].Id;
}

std::int32_t TMyCAD::GetLayerIdByName(const QString &name) const
{
    return GetLayerIdByNo(GetLayerNoByName(name));
}

QString TMyCAD::GetLayerNameByID(std::int32_t id) const
{
    const std::int32_t no = GetLayerNoById(id);
    return no < 0 ? QString() : m_Layers[std::size_t(no)].Name;
}

bool TMyCAD::IsVisibleLayerByID(std::int32_t id) const
{
    const std::int32_t no = GetLayerNoById(id);
    return no >= 0 && m_Layers[std::size_t(no)].Visible;
}

// ---- Changing layers ----

bool TMyCAD::SetLayerNameByID(std::int32_t id, const QString &name)
{
    const std::int32_t no = GetLayerNoById(id);
    if (no < 0)
        return false;
    const std::int32_t holder = GetLayerNoByName(name);
    if (holder >= 0 && holder != no)
        return false;
    m_Layers[std::size_t(no)].Name = name;
    Invalidate();
    return true;
}

bool TMyCAD::SetLayerNameByName(const QString &oldName, const QString &newName)
{
    return SetLayerNameByID(GetLayerIdByName(oldName), newName);
}

bool TMyCAD::VisibleLayerByID(std::int32_t id)
{
    const std::int32_t no = GetLayerNoById(id);
    if (no < 0)
        return false;
    m_Layers[std::size_t(no)].Visible = true;
    Invalidate();
    return true;
}

bool TMyCAD::VisibleLayerByName(const QString &name)
{
    return VisibleLayerByID(GetLayerIdByName(name));
}

bool TMyCAD::InVisibleLayerByID(std::int32_t id)
{
    const std::int32_t no = GetLayerNoById(id);
    if (no < 0)
        return false;
    m_Layers[std::size_t(no)].Visible = false;
    Invalidate();
    return true;
}

bool TMyCAD::InVisibleLayerByName(const QString &name)
{
    return InVisibleLayerByID(GetLayerIdByName(name));
}

void TMyCAD::VisibleAllLayer()
{
    for (TLayer &layer : m_Layers)
        layer.Visible = true;
    Invalidate();
}

bool TMyCAD::SetCurrentLayerId(std::int32_t id)
{
    if (GetLayerNoById(id) < 0)
        return false;
    m_CurrentLayerId = id;
    Invalidate();
    return true;
}

// ---- Removing and merging ----

// The record goes first so that OnDeleteLayer sees the table without it.
void TMyCAD::RemoveLayerAt(std::int32_t no)
{
    const TLayer layer = m_Layers[std::size_t(no)];
    m_Layers.erase(m_Layers.begin() + no);
    if (m_CurrentLayerId == layer.Id)
        m_CurrentLayerId = GetMaxLayerId();
    if (m_OnDeleteLayer)
        m_OnDeleteLayer(this, layer.Id, layer.Name, layer.Visible);
}

bool TMyCAD::DeleteLayerByID(std::int32_t id)
{
    const std::int32_t no = GetLayerNoById(id);
    if (no < 0)
        return false;
    TDeletion deletion;
    for (const auto &shape : m_Shapes)
        if (shape->LayerId() == id)
            CollectDeletion(shape.get(), false, deletion, 0);
    // Announced while they exist: each removed shape whose group stays or that has none.
    if (m_OnShapeDeleted)
        for (TMyShape *shape : deletion.Shapes)
            if (!deletion.Taken.contains(GetShapeByNo(shape->ParentNo())))
                m_OnShapeDeleted(this, shape);
    RemoveShapes(deletion.Shapes);
    RemoveLayerAt(GetLayerNoById(id));
    DocumentChanged();
    return true;
}

bool TMyCAD::DeleteLayerByName(const QString &name)
{
    return DeleteLayerByID(GetLayerIdByName(name));
}

void TMyCAD::DeleteAllLayers()
{
    DeleteAllShapes();
    while (!m_Layers.empty())
        RemoveLayerAt(GetLayersCount() - 1);
    DocumentChanged();
}

bool TMyCAD::MergeLayers(std::int32_t from, std::int32_t to)
{
    const std::int32_t fromNo = GetLayerNoById(from);
    if (from == to || fromNo < 0 || GetLayerNoById(to) < 0)
        return false;
    for (const auto &shape : m_Shapes)
        if (shape->LayerId() == from)
            shape->SetLayerId(to);
    if (m_CurrentLayerId == from)
        m_CurrentLayerId = to;
    RemoveLayerAt(fromNo);
    DocumentChanged();
    return true;
}

// ---- Shapes on a layer ----

std::vector<TMyShape *> TMyCAD::GetShapesByLayerId(std::int32_t id) const
{
    std::vector<TMyShape *> shapes;
    for (const auto &shape : m_Shapes)
        if (shape->LayerId() == id)
            shapes.push_back(shape.get());
    return shapes;
}

std::int32_t TMyCAD::GetShapesCountInALayer(std::int32_t id) const
{
    return std::int32_t(std::count_if(m_Shapes.begin(), m_Shapes.end(),
                                      [id](const auto &shape) { return shape->LayerId() == id; }));
}

void TMyCAD::SelectAllShapesByLayerId(std::int32_t id)
{
    const std::vector<TMyShape *> shapes = GetShapesByLayerId(id);
    SetWorkingShapes(shapes);
}

} // namespace tessal
