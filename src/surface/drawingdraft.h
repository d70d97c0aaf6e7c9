// SPDX-License-Identifier: MIT
// A drawing built aside for a surface, which replaces the surface's drawing in one step.
#pragma once

#include <tessal/surface/cad.h>

#include <QString>

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace tessal {

class TMyShape;

// Layers and shapes made for a surface without touching it, so that work the user cancels
// half way leaves the drawing as it was; TMyCAD::CommitDraft then puts them in place of the
// drawing's own. The operations follow the surface's rules of the same names: layer names
// are unique and at most TMyCAD::MaxLayers, a new layer becomes current, shape numbers are
// list places, and identities continue the surface's counters (identities are never
// reused, so those the draft hands out are the ones the surface would have). No event
// fires and nothing is recorded for undo. The draft holds on to the surface.
class TDrawingDraft
{
public:
    // An empty drawing: no layers, no shapes, the surface's next free identities.
    explicit TDrawingDraft(TMyCAD &surface);
    TDrawingDraft(const TDrawingDraft &) = delete;
    TDrawingDraft &operator=(const TDrawingDraft &) = delete;
    ~TDrawingDraft();

    // ---- Layers ----
    // Appends a layer and makes it current; -1 when the name is taken or the table is full.
    std::int32_t NewLayer(const QString &name, bool visible);
    // The ID of the last layer, -1 without layers.
    std::int32_t GetMaxLayerId() const;
    // An empty name, resp. false, for an unknown layer.
    QString GetLayerNameByID(std::int32_t id) const;
    bool InVisibleLayerByID(std::int32_t id);
    bool SetCurrentLayerId(std::int32_t id);
    const std::vector<TLayer> &Layers() const { return m_Layers; }
    std::int32_t CurrentLayerId() const { return m_CurrentLayerId; }

    // ---- Shapes ----
    std::int32_t GetShapesCount() const { return std::int32_t(m_Shapes.size()); }
    TMyShape *GetShapeByNo(std::int32_t no) const;
    // The identity the next added shape takes.
    std::int32_t ShapeIdCounter() const { return m_ShapeIdCounter; }
    // Appends a shape made for the surface (TMyCAD::CreateShapeByName) on its own layer and
    // advances the identity counter, as TMyCAD::AddShape(shape, true, false) does. Nullptr,
    // with the shape destroyed, while the draft has no layer.
    TMyShape *AddShape(std::unique_ptr<TMyShape> shape);
    // Groups the roots of the shapes under a new TMyGroup, as TMyCAD::GroupShapes does
    // without recording; answers its identity, or -1 when they cannot be grouped.
    std::int32_t GroupShapes(std::span<TMyShape *const> shapes);

private:
    friend class TMyCAD;

    TMyCAD &m_Surface;
    std::vector<TLayer> m_Layers;
    std::int32_t m_CurrentLayerId = -1;
    std::int32_t m_LayerIdCounter = 0;
    std::vector<std::unique_ptr<TMyShape>> m_Shapes;
    std::int32_t m_ShapeIdCounter = 0;
};

} // namespace tessal
