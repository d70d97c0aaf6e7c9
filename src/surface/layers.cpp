// SPDX-License-Identifier: MIT
// The layer table of a surface: making layers and looking them up.
#include <tessal/surface/cad.h>

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

} // namespace tessal
