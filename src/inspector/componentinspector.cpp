// SPDX-License-Identifier: MIT
// The component inspector: combo, layer/shape tree and grid, kept in step with a surface.
#include <tessal/inspector/componentinspector.h>
#include <tessal/inspector/inspectorgrid.h>
#include <tessal/inspector/shapetreemodel.h>
#include <tessal/shapes/shape.h>
#include <tessal/surface/cad.h>

#include <QAbstractListModel>
#include <QComboBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QSplitter>
#include <QTimer>
#include <QToolButton>
#include <QTreeView>
#include <QVBoxLayout>

#include <algorithm>

namespace tessal {

namespace {

// The combo box's rows: the surface, then every shape item of the tree in the tree model's
// order, read from the tree model as asked for.
class TComponentListModel : public QAbstractListModel
{
public:
    TComponentListModel(TShapeTreeModel *tree, QObject *parent)
        : QAbstractListModel(parent)
        , m_Tree(tree)
    {
        connect(tree, &QAbstractItemModel::modelAboutToBeReset, this,
                &TComponentListModel::beginResetModel);
        connect(tree, &QAbstractItemModel::modelReset, this, &TComponentListModel::endResetModel);
    }
    void SetSurfaceName(const QString &name) { m_SurfaceName = name; }

    int rowCount(const QModelIndex &parent = {}) const override
    {
        return parent.isValid() ? 0 : 1 + m_Tree->ShapeItemCount();
    }
    QVariant data(const QModelIndex &index, int role) const override
    {
        if (index.row() == 0)
            return role == Qt::DisplayRole ? QVariant(m_SurfaceName)
                   : role == Qt::UserRole  ? QVariant::fromValue(quintptr(0))
                                           : QVariant();
        const QModelIndex item = m_Tree->IndexAt(index.row() - 1);
        return m_Tree->data(item, role == Qt::UserRole ? TShapeTreeModel::ShapeRole : role);
    }

private:
    TShapeTreeModel *m_Tree;
    QString m_SurfaceName;
};

} // namespace

TComponentInspector::TComponentInspector(QWidget *parent)
    : QWidget(parent)
    , m_Model(new TShapeTreeModel(this))
    , m_Combo(new QComboBox(this))
    , m_Layers(new QToolButton(this))
    , m_Tree(new QTreeView(this))
    , m_Grid(new TInspectorGrid(this))
    , m_Walk(new QTimer(this))
{
    m_Walk->setSingleShot(true);
    connect(m_Walk, &QTimer::timeout, this, [this] {
        if (!m_Model->UpToDate())
            Rebuild();
    });
    m_Tree->setModel(m_Model);
    m_Tree->setHeaderHidden(true);
    // Rows are measured once, not each of a million.
    m_Tree->setUniformRowHeights(true);
    m_Combo->setModel(new TComponentListModel(m_Model, m_Combo));
    m_Combo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_Combo->setMinimumContentsLength(16);
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
    connect(m_Tree->selectionModel(), &QItemSelectionModel::selectionChanged, this,
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
    const std::vector<TLayer> before = m_Surface->Layers();
    const QStringList problems = ApplyLayers(dialog.Items());
    Refresh();
    if (before != m_Surface->Layers())
        emit LayersEdited();
    m_Grid->ShowMessage(problems.join(QLatin1Char('\n')));
}

QStringList TComponentInspector::ApplyLayers(const std::vector<TCollectionDialog::TItem> &items)
{
    QStringList problems;
    std::vector<std::int32_t> kept;
    for (const auto &item : items)
        if (item.Data.isValid() && m_Surface->GetLayerNoById(item.Data.toInt()) >= 0)
            kept.push_back(item.Data.toInt());
    // When every old layer goes, the new ones come first: the shapes need somewhere to go.
    // Without new ones the last layer stays, since a drawing without layers ends the
    // application at the next shape added.
    const bool newFirst = kept.empty();
    if (newFirst)
        AddNewLayers(items, kept, problems);
    const std::vector<TLayer> before = m_Surface->Layers();
    if (kept.empty() && !before.empty()) {
        kept.push_back(before.back().Id);
        problems << tr("Layer %1 is the drawing's last layer: kept.").arg(before.back().Name);
    }
    for (const TLayer &layer : before) {
        if (std::count(kept.begin(), kept.end(), layer.Id))
            continue;
        if (m_Surface->GetShapesCountInALayer(layer.Id) == 0)
            m_Surface->DeleteLayerByID(layer.Id);
        else
            m_Surface->MergeLayers(layer.Id, kept.front());
    }
    for (const auto &item : items) {
        const std::int32_t id = item.Data.isValid() ? item.Data.toInt() : -1;
        if (id >= 0 && m_Surface->GetLayerNoById(id) >= 0 &&
            m_Surface->GetLayerNameByID(id) != item.Name &&
            !m_Surface->SetLayerNameByID(id, item.Name))
            problems << tr("Cannot rename a layer to %1.").arg(item.Name);
    }
    if (!newFirst)
        AddNewLayers(items, kept, problems);
    return problems;
}

void TComponentInspector::AddNewLayers(const std::vector<TCollectionDialog::TItem> &items,
                                       std::vector<std::int32_t> &added, QStringList &problems)
{
    for (const auto &item : items) {
        if (item.Data.isValid())
            continue;
        const std::int32_t id = m_Surface->NewLayer(item.Name, true);
        if (id >= 0)
            added.push_back(id);
        else
            problems << tr("Cannot add layer %1: the name is taken or the table is full.")
                            .arg(item.Name);
    }
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
    m_Working.clear();
    m_Shown.clear();
    Rebuild();
    emit SurfaceChanged(surface);
}

void TComponentInspector::Refresh()
{
    if (!m_Model->UpToDate())
        Rebuild();
    else if (!m_Surface)
        return;
    else if (m_Surface->WorkingShapes() != m_Working)
        ShowSelectionFromSurface();
    else
        m_Grid->Refresh();
}

bool TComponentInspector::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_Watched && event->type() == QEvent::Paint && !m_Syncing)
        SurfacePainted();
    return QWidget::eventFilter(watched, event);
}

void TComponentInspector::SurfacePainted()
{
    if (!m_Model->SameOutline()) {
        Rebuild();
        return;
    }
    if (!m_Surface)
        return;
    if (m_Surface->WorkingShapes() != m_Working)
        ShowSelectionFromSurface();
    else if (m_Shown.size() <= std::size_t(WalkAtOnce))
        m_Grid->Refresh();
    if (!m_Walk->isActive())
        m_Walk->start(m_Surface->GetShapesCount() > WalkAtOnce ? WalkPause : 0);
}

void TComponentInspector::Rebuild()
{
    m_Syncing = true;
    const QString name = m_Surface ? m_Surface->objectName() : QString();
    static_cast<TComponentListModel *>(m_Combo->model())
        ->SetSurfaceName(name.isEmpty() ? tr("(surface)") : name);
    m_Model->Reset(m_Surface);
    // The layers open; groups open when asked, since a walk over every item to open them
    // would cost as much as the rest on a big drawing.
    for (int row = 0; row < m_Model->rowCount(); ++row)
        m_Tree->expand(m_Model->index(row, 0));
    m_Syncing = false;
    // Shapes that are gone leave the grid; the surface's selection is shown again.
    m_Working.clear();
    ShowSelectionFromSurface();
}

QModelIndex TComponentInspector::IndexOf(const TMyShape *shape) const
{
    return m_Model->IndexOf(shape);
}

// In the tree model's order, whatever order they were chosen in.
std::vector<TMyShape *> TComponentInspector::SelectedShapes() const
{
    std::vector<int> items;
    for (const QModelIndex &index : m_Tree->selectionModel()->selectedIndexes())
        items.push_back(m_Model->ItemOf(index));
    std::sort(items.begin(), items.end());
    std::vector<TMyShape *> shapes;
    for (const int item : items)
        if (TMyShape *shape = m_Model->ShapeAt(item))
            shapes.push_back(shape);
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
    m_Combo->setCurrentIndex(shapes.size() == 1 ? 1 + m_Model->ItemOf(IndexOf(shapes.front())) : 0);
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
            m_Surface->IsWorkingShape(m_Surface->GetRootParentShape(shape)))
            shown.push_back(shape);
    if (shown.size() != m_Working.size() || shown.empty())
        shown = m_Working;
    m_Syncing = true;
    m_Tree->selectionModel()->select(m_Model->SelectionOf(shown),
                                     QItemSelectionModel::ClearAndSelect);
    m_Syncing = false;
    ShowInGrid(shown);
}

void TComponentInspector::TreeSelectionChanged()
{
    if (m_Syncing || !m_Surface)
        return;
    const std::vector<TMyShape *> chosen = SelectedShapes();
    m_Syncing = true;
    // The surface selects the roots of the chosen shapes, each once.
    m_Surface->SetWorkingShapes(chosen);
    m_Working = m_Surface->WorkingShapes();
    m_Syncing = false;
    ShowInGrid(chosen);
}

void TComponentInspector::ComboActivated(int index)
{
    const QModelIndex item = m_Model->IndexAt(index - 1);
    if (!item.isValid()) {
        m_Tree->clearSelection();
        return;
    }
    m_Tree->selectionModel()->select(item, QItemSelectionModel::ClearAndSelect);
    m_Tree->scrollTo(item);
}

} // namespace tessal
