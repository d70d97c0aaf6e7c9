// SPDX-License-Identifier: MIT
// The component inspector: combo, layer/shape tree and grid, kept in step with a surface.
#include <tessal/inspector/componentinspector.h>
#include <tessal/inspector/inspectorgrid.h>
#include <tessal/shapes/shape.h>
#include <tessal/surface/cad.h>

#include <QComboBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QSplitter>
#include <QToolButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace tessal {

namespace {

constexpr int ShapeRole = Qt::UserRole + 1;
constexpr int MaxDepth = 64; // group nesting guard against broken relations

TMyShape *ShapeOf(const QTreeWidgetItem *item)
{
    return item ? reinterpret_cast<TMyShape *>(item->data(0, ShapeRole).value<quintptr>())
                : nullptr;
}

QString Label(const TMyShape *shape)
{
    return QStringLiteral("%1 (%2)").arg(shape->Name(), shape->ClassName());
}

} // namespace

TComponentInspector::TComponentInspector(QWidget *parent)
    : QWidget(parent)
    , m_Combo(new QComboBox(this))
    , m_Layers(new QToolButton(this))
    , m_Tree(new QTreeWidget(this))
    , m_Grid(new TInspectorGrid(this))
{
    m_Tree->setHeaderHidden(true);
    m_Tree->setSelectionMode(QAbstractItemView::ExtendedSelection);
    auto *split = new QSplitter(Qt::Vertical, this);
    split->addWidget(m_Tree);
    split->addWidget(m_Grid);
    split->setStretchFactor(1, 2);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    m_Layers->setText(tr("Layers..."));
    m_Layers->setToolTip(tr("Add, rename and remove layers"));
    auto *top = new QHBoxLayout;
    top->addWidget(m_Combo, 1);
    top->addWidget(m_Layers);
    layout->addLayout(top);
    layout->addWidget(split, 1);
    connect(m_Tree, &QTreeWidget::itemSelectionChanged, this,
            &TComponentInspector::TreeSelectionChanged);
    connect(m_Combo, &QComboBox::activated, this, &TComponentInspector::ComboActivated);
    connect(m_Layers, &QToolButton::clicked, this, &TComponentInspector::EditLayers);
}

void TComponentInspector::EditLayers()
{
    if (!m_Surface)
        return;
    std::vector<TCollectionDialog::TItem> items;
    for (const TLayer &layer : m_Surface->Layers())
        items.push_back({layer.Name, layer.Id});
    TCollectionDialog dialog(tr("Layers"), items, this);
    // The surface keeps its layers in creation order.
    dialog.SetReorderable(false);
    if (dialog.exec() != QDialog::Accepted)
        return;
    const QStringList problems = ApplyLayers(dialog.Items());
    Refresh();
    m_Grid->ShowMessage(problems.join(QLatin1Char('\n')));
}

QStringList TComponentInspector::ApplyLayers(const std::vector<TCollectionDialog::TItem> &items)
{
    QStringList problems;
    std::vector<std::int32_t> kept;
    for (const auto &item : items)
        if (item.Data.isValid() && m_Surface->GetLayerNoById(item.Data.toInt()) >= 0)
            kept.push_back(item.Data.toInt());
    const std::vector<TLayer> before = m_Surface->Layers();
    for (const TLayer &layer : before) {
        if (std::count(kept.begin(), kept.end(), layer.Id))
            continue;
        if (m_Surface->GetShapesCountInALayer(layer.Id) == 0)
            m_Surface->DeleteLayerByID(layer.Id);
        else if (!kept.empty())
            m_Surface->MergeLayers(layer.Id, kept.front());
        else
            problems << tr("Layer %1 holds shapes and is the last layer: kept.").arg(layer.Name);
    }
    for (const auto &item : items) {
        if (item.Data.isValid()) {
            const std::int32_t id = item.Data.toInt();
            if (m_Surface->GetLayerNameByID(id) != item.Name &&
                !m_Surface->SetLayerNameByID(id, item.Name))
                problems << tr("Cannot rename a layer to %1.").arg(item.Name);
        } else if (m_Surface->NewLayer(item.Name, true) < 0) {
            problems << tr("Cannot add layer %1: the name is taken or the table is full.")
                            .arg(item.Name);
        }
    }
    return problems;
}

void TComponentInspector::SetSurface(TMyCAD *surface)
{
    if (surface == m_Surface)
        return;
    if (m_Surface)
        m_Surface->removeEventFilter(this);
    m_Surface = surface;
    m_Watched = surface;
    if (m_Surface)
        m_Surface->installEventFilter(this);
    m_Snapshot = {};
    m_Working.clear();
    m_Shown.clear();
    Rebuild();
    emit SurfaceChanged(surface);
}

TComponentInspector::TSnapshot TComponentInspector::Take() const
{
    TSnapshot s;
    if (!m_Surface)
        return s;
    for (std::int32_t i = 0; i < m_Surface->GetShapesCount(); ++i) {
        const TMyShape *shape = m_Surface->GetShapeByNo(i);
        s.Shapes.push_back(shape);
        s.Names << shape->Name();
        s.Layers.push_back(shape->LayerId());
        s.Parents.push_back(shape->ParentNo());
    }
    for (const TLayer &layer : m_Surface->Layers())
        s.LayerNames << layer.Name;
    return s;
}

void TComponentInspector::Refresh()
{
    if (!m_Surface) {
        if (m_Tree->topLevelItemCount() > 0 || m_Combo->count() > 0)
            Rebuild();
        return;
    }
    if (Take() != m_Snapshot)
        Rebuild();
    else if (m_Surface->WorkingShapes() != m_Working)
        ShowSelectionFromSurface();
    else
        m_Grid->Refresh();
}

bool TComponentInspector::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_Watched && event->type() == QEvent::Paint && !m_Syncing)
        Refresh();
    return QWidget::eventFilter(watched, event);
}

void TComponentInspector::AddShapeItem(QTreeWidgetItem *parent, TMyShape *shape, int depth)
{
    auto *item = new QTreeWidgetItem(parent, {Label(shape)});
    item->setData(0, ShapeRole, QVariant::fromValue(reinterpret_cast<quintptr>(shape)));
    m_Combo->addItem(Label(shape), QVariant::fromValue(reinterpret_cast<quintptr>(shape)));
    if (depth >= MaxDepth)
        return;
    for (std::int32_t no : shape->ChildShapes())
        if (TMyShape *child = m_Surface->GetShapeByNo(no))
            AddShapeItem(item, child, depth + 1);
}

void TComponentInspector::Rebuild()
{
    m_Syncing = true;
    m_Tree->clear();
    m_Combo->clear();
    m_Snapshot = Take();
    if (m_Surface) {
        const QString name = m_Surface->objectName();
        m_Combo->addItem(name.isEmpty() ? tr("(surface)") : name, QVariant::fromValue(quintptr(0)));
        for (const TLayer &layer : m_Surface->Layers()) {
            auto *layerItem = new QTreeWidgetItem(m_Tree, {layer.Name});
            layerItem->setFlags(Qt::ItemIsEnabled);
            QFont f = layerItem->font(0);
            f.setBold(true);
            layerItem->setFont(0, f);
            for (TMyShape *shape : m_Surface->GetShapesByLayerId(layer.Id))
                if (!shape->HasParentShape())
                    AddShapeItem(layerItem, shape, 0);
        }
        m_Tree->expandAll();
    }
    m_Syncing = false;
    // Shapes that are gone leave the grid; the surface's selection is shown again.
    m_Working.clear();
    ShowSelectionFromSurface();
}

QTreeWidgetItem *TComponentInspector::ItemOf(const TMyShape *shape) const
{
    for (QTreeWidgetItemIterator it(m_Tree); *it; ++it)
        if (ShapeOf(*it) == shape)
            return *it;
    return nullptr;
}

std::vector<TMyShape *> TComponentInspector::SelectedShapes() const
{
    std::vector<TMyShape *> shapes;
    for (QTreeWidgetItemIterator it(m_Tree); *it; ++it)
        if ((*it)->isSelected() && ShapeOf(*it))
            shapes.push_back(ShapeOf(*it));
    return shapes;
}

void TComponentInspector::ShowInGrid(const std::vector<TMyShape *> &shapes)
{
    if (shapes == m_Shown && !shapes.empty()) {
        m_Grid->Refresh();
        return;
    }
    m_Shown = shapes;
    if (shapes.empty())
        m_Grid->SetObject(m_Surface);
    else
        m_Grid->SetShapes(m_Surface, shapes);
    const quintptr key = shapes.size() == 1 ? reinterpret_cast<quintptr>(shapes.front()) : 0;
    m_Combo->setCurrentIndex(m_Combo->findData(QVariant::fromValue(key)));
}

void TComponentInspector::ShowSelectionFromSurface()
{
    if (!m_Surface) {
        m_Grid->Clear();
        m_Shown.clear();
        return;
    }
    m_Working = m_Surface->WorkingShapes();
    // The tree may show a member of a selected group; keep it while its root is selected.
    std::vector<TMyShape *> shown;
    for (TMyShape *shape : m_Shown)
        if (m_Surface->GetShapeNoInMyShapes(shape) >= 0 &&
            std::count(m_Working.begin(), m_Working.end(), m_Surface->GetRootParentShape(shape)))
            shown.push_back(shape);
    if (shown.size() != m_Working.size() || shown.empty())
        shown = m_Working;
    m_Syncing = true;
    m_Tree->clearSelection();
    for (TMyShape *shape : shown)
        if (QTreeWidgetItem *item = ItemOf(shape))
            item->setSelected(true);
    m_Syncing = false;
    ShowInGrid(shown);
}

void TComponentInspector::TreeSelectionChanged()
{
    if (m_Syncing || !m_Surface)
        return;
    const std::vector<TMyShape *> chosen = SelectedShapes();
    std::vector<TMyShape *> roots;
    for (TMyShape *shape : chosen) {
        TMyShape *root = m_Surface->GetRootParentShape(shape);
        if (std::find(roots.begin(), roots.end(), root) == roots.end())
            roots.push_back(root);
    }
    m_Syncing = true;
    m_Surface->SetWorkingShapes(roots);
    m_Working = m_Surface->WorkingShapes();
    m_Syncing = false;
    ShowInGrid(chosen);
}

void TComponentInspector::ComboActivated(int index)
{
    auto *shape = reinterpret_cast<TMyShape *>(m_Combo->itemData(index).value<quintptr>());
    if (!shape) {
        m_Tree->clearSelection();
        return;
    }
    m_Tree->clearSelection();
    if (QTreeWidgetItem *item = ItemOf(shape)) {
        item->setSelected(true);
        m_Tree->scrollToItem(item);
    }
}

} // namespace tessal
