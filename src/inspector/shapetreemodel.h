// SPDX-License-Identifier: MIT
// The shapes of a surface as an item model: layers, their top-level shapes, group members.
#pragma once

#include <QAbstractItemModel>
#include <QItemSelection>
#include <QPointer>
#include <QStringList>

#include <cstdint>
#include <vector>

namespace tessal {

class TMyCAD;
class TMyShape;

// A tree of layers (in table order) -> top-level shapes on the layer (in list order) ->
// group members, nested. Items are made on demand from a table of nodes built by Reset in
// one pass over the shapes, so a drawing of a million shapes costs no item objects; a node
// holds the shape's number, and an item whose shape has gone since shows nothing until the
// next Reset. Column 0 only; ShapeRole answers the shape's address (quintptr).
class TShapeTreeModel : public QAbstractItemModel
{
    Q_OBJECT

public:
    static constexpr int ShapeRole = Qt::UserRole + 1;

    explicit TShapeTreeModel(QObject *parent = nullptr);

    void Reset(TMyCAD *surface);
    // Whether the shapes, their layers and groups and the layer table are still what the
    // last Reset saw; a walk over the shapes that makes nothing.
    bool UpToDate() const;
    // The part of that which needs no walk: the surface, the number of shapes, the first and
    // the last, the names (through the count of renames) and the layer table.
    bool SameOutline() const;

    // The first item of the shape, invalid when it has none.
    QModelIndex IndexOf(const TMyShape *shape) const;
    TMyShape *ShapeOf(const QModelIndex &index) const;
    // Every shape item in order: layer by layer, the top-level shapes, then members.
    int ShapeItemCount() const { return int(m_Nodes.size()); }
    TMyShape *ShapeAt(int item) const;
    QModelIndex IndexAt(int item) const;
    // The place of an item in that order, -1 for a layer or an invalid index.
    int ItemOf(const QModelIndex &index) const;
    // The first items of the shapes, as runs of neighbouring rows: selecting all of a
    // million shapes makes a range a layer, not a million.
    QItemSelection SelectionOf(const std::vector<TMyShape *> &shapes) const;

    QModelIndex index(int row, int column, const QModelIndex &parent = {}) const override;
    QModelIndex parent(const QModelIndex &child) const override;
    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    bool hasChildren(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

private:
    struct TNode
    {
        std::int32_t Shape;      // number in the list
        std::int32_t Parent;     // node, or -1 - layer row for a top-level shape
        std::int32_t Row;        // under the parent
        std::int32_t FirstChild; // nodes FirstChild .. FirstChild + Children - 1
        std::int32_t Children;
    };
    struct TLayerRow
    {
        std::int32_t Id;
        QString Name;
        std::int32_t FirstNode;
        std::int32_t Nodes;
    };

    void Build();
    // Internal ids: 0 for a layer row, node + 1 for a shape.
    static int NodeOf(const QModelIndex &index);

    QPointer<TMyCAD> m_Surface;
    std::vector<TLayerRow> m_Layers;
    std::vector<TNode> m_Nodes;
    std::vector<std::int32_t> m_NodeOfShape; // first node by shape number, -1 for none
    // What Reset saw, for UpToDate.
    std::vector<const TMyShape *> m_Shapes;
    std::vector<std::int32_t> m_ShapeLayers, m_ShapeParents;
    std::uint64_t m_NameGeneration = 0;
};

} // namespace tessal
