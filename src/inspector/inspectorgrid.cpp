// SPDX-License-Identifier: MIT
// The inspector grid widget.
#include <tessal/inspector/inspectorgrid.h>
#include <tessal/inspector/propertydelegate.h>
#include <tessal/inspector/propertymodel.h>
#include <tessal/shapes/shape.h>

#include <QHeaderView>
#include <QLabel>
#include <QSortFilterProxyModel>
#include <QTreeView>
#include <QVBoxLayout>

namespace tessal {

TInspectorGrid::TInspectorGrid(QWidget *parent)
    : QWidget(parent)
    , m_Model(new TPropertyModel(this))
    , m_Proxy(new QSortFilterProxyModel(this))
    , m_View(new QTreeView(this))
    , m_Title(new QLabel(this))
    , m_Message(new QLabel(this))
{
    m_Proxy->setSourceModel(m_Model);
    m_Proxy->setSortCaseSensitivity(Qt::CaseInsensitive);
    m_Delegate = new TPropertyDelegate(m_Model, m_Proxy, this);
    m_View->setModel(m_Proxy);
    m_View->setItemDelegateForColumn(TPropertyModel::ValueColumn, m_Delegate);
    m_View->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::SelectedClicked |
                            QAbstractItemView::EditKeyPressed | QAbstractItemView::AnyKeyPressed);
    m_View->setSelectionBehavior(QAbstractItemView::SelectItems);
    m_View->setAlternatingRowColors(true);
    m_View->setUniformRowHeights(true);
    m_View->header()->setSectionResizeMode(QHeaderView::Interactive);
    m_View->header()->setSortIndicatorShown(false);
    m_View->setColumnWidth(0, 150);
    m_Message->setWordWrap(true);
    m_Message->setStyleSheet(QStringLiteral("color: #b00000"));
    m_Message->hide();
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_Title);
    layout->addWidget(m_View, 1);
    layout->addWidget(m_Message);
    connect(m_Model, &TPropertyModel::EditRefused, this, &TInspectorGrid::ShowMessage);
    connect(m_Model, &TPropertyModel::EditApplied, this, [this] {
        if (m_Model->LastError().isEmpty())
            ShowMessage({});
    });
    connect(m_Model, &QAbstractItemModel::modelReset, m_View, [this] { m_View->expandToDepth(0); });
    TargetChanged({});
}

void TInspectorGrid::SetObject(QObject *object)
{
    m_Model->SetTarget(object ? std::make_unique<TObjectTarget>(object) : nullptr);
    TargetChanged(object
                      ? QStringLiteral("%1 (%2)").arg(
                            object->objectName(), QLatin1String(object->metaObject()->className()))
                      : QString());
}

void TInspectorGrid::SetShapes(TMyCAD *surface, std::vector<TMyShape *> shapes)
{
    QString title;
    if (shapes.size() == 1)
        title = QStringLiteral("%1 (%2)").arg(shapes.front()->Name(), shapes.front()->ClassName());
    else if (!shapes.empty())
        title = tr("%n shapes", nullptr, int(shapes.size()));
    m_Model->SetTarget(
        shapes.empty() ? nullptr : std::make_unique<TShapesTarget>(surface, std::move(shapes)));
    TargetChanged(title);
}

void TInspectorGrid::Clear()
{
    m_Model->SetTarget(nullptr);
    TargetChanged({});
}

void TInspectorGrid::Refresh()
{
    // A target whose items are gone shows nothing rather than reading freed shapes.
    if (m_Model->Target() && !m_Model->Target()->IsValid())
        Clear();
    else
        m_Model->Refresh();
}

void TInspectorGrid::TargetChanged(const QString &title)
{
    m_Title->setText(title.isEmpty() ? tr("(nothing selected)") : title);
    ShowMessage({});
}

void TInspectorGrid::ShowMessage(const QString &text)
{
    m_Message->setText(text);
    m_Message->setVisible(!text.isEmpty());
}

bool TInspectorGrid::Grouped() const
{
    return m_Model->Grouped();
}

void TInspectorGrid::SetGrouped(bool value)
{
    if (value == Grouped())
        return;
    m_Model->SetGrouped(value);
    emit GroupedChanged(value);
}

void TInspectorGrid::SetSorted(bool value)
{
    if (value == m_Sorted)
        return;
    m_Sorted = value;
    // Column -1 restores the declaration order.
    m_Proxy->sort(value ? TPropertyModel::NameColumn : -1);
    emit SortedChanged(value);
}

bool TInspectorGrid::ShowInherited() const
{
    return m_Model->ShowInherited();
}

void TInspectorGrid::SetShowInherited(bool value)
{
    if (value == ShowInherited())
        return;
    m_Model->SetShowInherited(value);
    emit ShowInheritedChanged(value);
}

QModelIndex TInspectorGrid::ViewIndex(const QStringList &path) const
{
    return m_Proxy->mapFromSource(m_Model->IndexOf(path));
}

} // namespace tessal
