// SPDX-License-Identifier: MIT
// The shape tree model: a table of nodes made in one pass, items made from it on demand.
#include <tessal/inspector/shapetreemodel.h>
#include <tessal/shapes/shape.h>
#include <tessal/surface/cad.h>

#include <QFont>

#include <algorithm>
#include <unordered_map>

namespace tessal {

namespace {

constexpr int MaxDepth = 64; // group nesting guard against broken relations

QString Label(const TMyShape &shape)
{
    return QStringLiteral("%1 (%2)").arg(shape.Name(), shape.ClassName());
}

} // namespace

TShapeTreeModel::TShapeTreeModel(QObject *parent)
    : QAbstractItemModel(parent)
{}

void TShapeTreeModel::Reset(TMyCAD *surface)
{
    beginResetModel();
    m_Surface = surface;
    Build();
    endResetModel();
}

// Top-level shapes first, grouped by layer row; then, breadth first, the members of every
// node made so far, so that each node's children lie side by side. Broken relations (a group
// among its own members) stop at MaxDepth, and the whole table at a bound of its size.
void TShapeTreeModel::Build()
{
    m_Layers.clear();
    m_Nodes.clear();
    m_Shapes.clear();
    m_ShapeLayers.clear();
    m_ShapeParents.clear();
    m_NodeOfShape.clear();
    m_NameGeneration = TMyShape::NameGeneration();
    if (!m_Surface)
        return;
    const std::int32_t count = m_Surface->GetShapesCount();
    for (std::int32_t no = 0; no < count; ++no) {
        const TMyShape *shape = m_Surface->GetShapeByNo(no);
        m_Shapes.push_back(shape);
        m_ShapeLayers.push_back(shape->LayerId());
        m_ShapeParents.push_back(shape->ParentNo());
    }
    for (const TLayer &layer : m_Surface->Layers())
        m_Layers.push_back({layer.Id, layer.Name, 0, 0});
    std::unordered_map<std::int32_t, std::int32_t> rowOfLayer;
    for (std::size_t row = 0; row < m_Layers.size(); ++row)
        rowOfLayer.emplace(m_Layers[row].Id, std::int32_t(row));
    std::vector<std::int32_t> rowOfShape(std::size_t(count), -1);
    for (std::int32_t no = 0; no < count; ++no) {
        const auto layer = rowOfLayer.find(m_ShapeLayers[std::size_t(no)]);
        if (m_ShapeParents[std::size_t(no)] > -1 || layer == rowOfLayer.end())
            continue;
        rowOfShape[std::size_t(no)] = layer->second;
        ++m_Layers[std::size_t(layer->second)].Nodes;
    }
    std::int32_t first = 0;
    std::vector<std::int32_t> next;
    for (TLayerRow &layer : m_Layers) {
        layer.FirstNode = first;
        next.push_back(first);
        first += layer.Nodes;
    }
    m_Nodes.resize(std::size_t(first));
    m_NodeOfShape.assign(std::size_t(count), -1);
    for (std::int32_t no = 0; no < count; ++no) {
        const std::int32_t row = rowOfShape[std::size_t(no)];
        if (row < 0)
            continue;
        const std::int32_t node = next[std::size_t(row)]++;
        m_Nodes[std::size_t(node)] = {no, -1 - row, node - m_Layers[std::size_t(row)].FirstNode, 0,
                                      0};
        m_NodeOfShape[std::size_t(no)] = node;
    }
    std::vector<std::uint8_t> depth(m_Nodes.size(), 0);
    const std::size_t most = std::size_t(count) + 65536;
    for (std::size_t node = 0; node < m_Nodes.size() && m_Nodes.size() < most; ++node) {
        if (depth[node] >= MaxDepth)
            continue;
        const std::size_t before = m_Nodes.size();
        const TMyShape *shape = m_Shapes[std::size_t(m_Nodes[node].Shape)];
        for (const std::int32_t member : shape->ChildShapes()) {
            if (member < 0 || member >= count || m_Nodes.size() >= most)
                continue;
            const auto row = std::int32_t(m_Nodes.size() - before);
            m_Nodes.push_back({member, std::int32_t(node), row, 0, 0});
            depth.push_back(std::uint8_t(depth[node] + 1));
            if (m_NodeOfShape[std::size_t(member)] < 0)
                m_NodeOfShape[std::size_t(member)] = std::int32_t(m_Nodes.size() - 1);
        }
        m_Nodes[node].FirstChild = std::int32_t(before);
        m_Nodes[node].Children = std::int32_t(m_Nodes.size() - before);
    }
}

bool TShapeTreeModel::SameOutline() const
{
    if (!m_Surface)
        return m_Layers.empty() && m_Nodes.empty();
    const std::int32_t count = m_Surface->GetShapesCount();
    if (std::size_t(count) != m_Shapes.size() || m_NameGeneration != TMyShape::NameGeneration() ||
        m_Surface->Layers().size() != m_Layers.size())
        return false;
    if (count > 0 && (m_Surface->GetShapeByNo(0) != m_Shapes.front() ||
                      m_Surface->GetShapeByNo(count - 1) != m_Shapes.back()))
        return false;
    for (std::size_t row = 0; row < m_Layers.size(); ++row) {
        const TLayer &layer = m_Surface->Layers()[row];
        if (layer.Id != m_Layers[row].Id || layer.Name != m_Layers[row].Name)
            return false;
    }
    return true;
}

bool TShapeTreeModel::UpToDate() const
{
    if (!SameOutline())
        return false;
    if (!m_Surface)
        return true;
    const std::int32_t count = m_Surface->GetShapesCount();
    for (std::int32_t no = 0; no < count; ++no) {
        const TMyShape *shape = m_Surface->GetShapeByNo(no);
        const auto at = std::size_t(no);
        if (shape != m_Shapes[at] || shape->LayerId() != m_ShapeLayers[at] ||
            shape->ParentNo() != m_ShapeParents[at])
            return false;
    }
    return true;
}

int TShapeTreeModel::NodeOf(const QModelIndex &index)
{
    return index.isValid() ? int(index.internalId()) - 1 : -1;
}

QModelIndex TShapeTreeModel::IndexOf(const TMyShape *shape) const
{
    if (!m_Surface || !shape)
        return {};
    const std::int32_t no = m_Surface->GetShapeNoInMyShapes(shape);
    if (no < 0 || std::size_t(no) >= m_Shapes.size() || m_Shapes[std::size_t(no)] != shape)
        return {};
    return IndexAt(m_NodeOfShape[std::size_t(no)]);
}

QModelIndex TShapeTreeModel::IndexAt(int item) const
{
    if (item < 0 || std::size_t(item) >= m_Nodes.size())
        return {};
    return createIndex(m_Nodes[std::size_t(item)].Row, 0, quintptr(item + 1));
}

int TShapeTreeModel::ItemOf(const QModelIndex &index) const
{
    return index.model() == this ? NodeOf(index) : -1;
}

QItemSelection TShapeTreeModel::SelectionOf(const std::vector<TMyShape *> &shapes) const
{
    std::vector<int> items;
    for (const TMyShape *shape : shapes)
        if (const int item = ItemOf(IndexOf(shape)); item >= 0)
            items.push_back(item);
    std::sort(items.begin(), items.end());
    items.erase(std::unique(items.begin(), items.end()), items.end());
    QItemSelection selection;
    for (std::size_t first = 0; first < items.size();) {
        const std::int32_t parent = m_Nodes[std::size_t(items[first])].Parent;
        std::size_t last = first;
        while (last + 1 < items.size() && items[last + 1] == items[last] + 1 &&
               m_Nodes[std::size_t(items[last + 1])].Parent == parent)
            ++last;
        selection.select(IndexAt(items[first]), IndexAt(items[last]));
        first = last + 1;
    }
    return selection;
}

// A shape that has left the list, or moved in it, since the last Reset is not answered.
TMyShape *TShapeTreeModel::ShapeAt(int item) const
{
    if (!m_Surface || item < 0 || std::size_t(item) >= m_Nodes.size())
        return nullptr;
    const std::int32_t no = m_Nodes[std::size_t(item)].Shape;
    TMyShape *shape = m_Surface->GetShapeByNo(no);
    return shape && shape == m_Shapes[std::size_t(no)] ? shape : nullptr;
}

TMyShape *TShapeTreeModel::ShapeOf(const QModelIndex &index) const
{
    return ShapeAt(ItemOf(index));
}

QModelIndex TShapeTreeModel::index(int row, int column, const QModelIndex &parent) const
{
    if (row < 0 || column != 0)
        return {};
    if (!parent.isValid())
        return std::size_t(row) < m_Layers.size() ? createIndex(row, 0, quintptr(0))
                                                  : QModelIndex();
    const int node = NodeOf(parent);
    if (node < 0) {
        const TLayerRow &layer = m_Layers[std::size_t(parent.row())];
        return row < layer.Nodes ? createIndex(row, 0, quintptr(layer.FirstNode + row + 1))
                                 : QModelIndex();
    }
    const TNode &n = m_Nodes[std::size_t(node)];
    return row < n.Children ? createIndex(row, 0, quintptr(n.FirstChild + row + 1)) : QModelIndex();
}

QModelIndex TShapeTreeModel::parent(const QModelIndex &child) const
{
    const int node = NodeOf(child);
    if (node < 0)
        return {};
    const std::int32_t up = m_Nodes[std::size_t(node)].Parent;
    if (up < 0)
        return createIndex(-1 - up, 0, quintptr(0));
    return createIndex(m_Nodes[std::size_t(up)].Row, 0, quintptr(up + 1));
}

int TShapeTreeModel::rowCount(const QModelIndex &parent) const
{
    if (!parent.isValid())
        return int(m_Layers.size());
    if (parent.column() != 0)
        return 0;
    const int node = NodeOf(parent);
    return node < 0 ? m_Layers[std::size_t(parent.row())].Nodes
                    : m_Nodes[std::size_t(node)].Children;
}

int TShapeTreeModel::columnCount(const QModelIndex &) const
{
    return 1;
}

bool TShapeTreeModel::hasChildren(const QModelIndex &parent) const
{
    return rowCount(parent) > 0;
}

QVariant TShapeTreeModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const int node = NodeOf(index);
    if (node < 0) {
        if (role == Qt::DisplayRole)
            return m_Layers[std::size_t(index.row())].Name;
        if (role == Qt::FontRole) {
            QFont bold;
            bold.setBold(true);
            return bold;
        }
        return {};
    }
    const TMyShape *shape = ShapeAt(node);
    if (!shape)
        return {};
    if (role == Qt::DisplayRole)
        return Label(*shape);
    if (role == ShapeRole)
        return QVariant::fromValue(reinterpret_cast<quintptr>(shape));
    return {};
}

Qt::ItemFlags TShapeTreeModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    return NodeOf(index) < 0 ? Qt::ItemIsEnabled : Qt::ItemIsEnabled | Qt::ItemIsSelectable;
}

} // namespace tessal
