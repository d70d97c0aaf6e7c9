// SPDX-License-Identifier: MIT
// The layers panel.
#include "layersdock.h"

#include <tessal/surface/cad.h>

#include <QHBoxLayout>
#include <QInputDialog>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace tessal {

TLayersPanel::TLayersPanel(TMyCAD *surface, std::function<void()> changed, QWidget *parent)
    : QWidget(parent)
    , m_Surface(surface)
    , m_Changed(std::move(changed))
    , m_List(new QListWidget)
{
    m_List->setObjectName(QStringLiteral("layerList"));
    auto *buttons = new QHBoxLayout;
    const auto button = [&](const QString &text, const QString &tip, void (TLayersPanel::*run)()) {
        auto *b = new QPushButton(text);
        b->setToolTip(tip);
        connect(b, &QPushButton::clicked, this, run);
        buttons->addWidget(b);
    };
    button(tr("Add"), tr("Add a layer and make it current"), &TLayersPanel::AskAdd);
    button(tr("Rename"), tr("Rename the current layer"), &TLayersPanel::AskRename);
    button(tr("Delete"), tr("Delete the current layer with its shapes"), &TLayersPanel::AskDelete);
    button(tr("Merge"), tr("Move the current layer's shapes to another layer"),
           &TLayersPanel::AskMerge);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->addWidget(m_List);
    layout->addLayout(buttons);
    connect(m_List, &QListWidget::itemChanged, this, &TLayersPanel::ItemChanged);
    connect(m_List, &QListWidget::currentRowChanged, this, &TLayersPanel::RowChanged);
    Refresh();
}

void TLayersPanel::Refresh()
{
    m_Filling = true;
    const QSignalBlocker block(m_List);
    m_List->clear();
    for (const TLayer &layer : m_Surface->Layers()) {
        auto *item = new QListWidgetItem(layer.Name, m_List);
        item->setData(Qt::UserRole, layer.Id);
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        item->setCheckState(layer.Visible ? Qt::Checked : Qt::Unchecked);
        item->setToolTip(tr("%n shape(s)", nullptr, m_Surface->GetShapesCountInALayer(layer.Id)));
        if (layer.Id == m_Surface->CurrentLayerId())
            m_List->setCurrentItem(item);
    }
    m_Filling = false;
}

void TLayersPanel::ItemChanged(QListWidgetItem *item)
{
    if (m_Filling)
        return;
    const std::int32_t id = item->data(Qt::UserRole).toInt();
    if (item->checkState() == Qt::Checked)
        m_Surface->VisibleLayerByID(id);
    else
        m_Surface->InVisibleLayerByID(id);
    Done();
}

void TLayersPanel::RowChanged(int row)
{
    if (m_Filling || row < 0)
        return;
    m_Surface->SetCurrentLayerId(m_List->item(row)->data(Qt::UserRole).toInt());
}

bool TLayersPanel::AddLayer(const QString &name)
{
    if (m_Surface->NewLayer(name, true) < 0) {
        Refused(tr("A layer named \"%1\" exists already, or the drawing has %2 layers.")
                    .arg(name)
                    .arg(TMyCAD::MaxLayers));
        return false;
    }
    Done();
    return true;
}

bool TLayersPanel::RenameCurrent(const QString &name)
{
    if (!m_Surface->SetLayerNameByID(m_Surface->CurrentLayerId(), name)) {
        Refused(tr("Another layer is named \"%1\".").arg(name));
        return false;
    }
    Done();
    return true;
}

bool TLayersPanel::DeleteCurrent()
{
    if (m_Surface->GetLayersCount() <= 1) {
        Refused(tr("The last layer cannot be deleted."));
        return false;
    }
    if (!m_Surface->DeleteLayerByID(m_Surface->CurrentLayerId()))
        return false;
    Done();
    return true;
}

bool TLayersPanel::MergeCurrentInto(const QString &target)
{
    const std::int32_t to = m_Surface->GetLayerIdByName(target);
    if (to < 0 || !m_Surface->MergeLayers(m_Surface->CurrentLayerId(), to)) {
        Refused(tr("The layers cannot be merged."));
        return false;
    }
    m_Surface->SetCurrentLayerId(to);
    Done();
    return true;
}

void TLayersPanel::AskAdd()
{
    bool ok = false;
    const QString name =
        QInputDialog::getText(this, tr("Add layer"), tr("Name:"), QLineEdit::Normal,
                              tr("Layer%1").arg(m_Surface->GetLayersCount()), &ok);
    if (ok && !name.isEmpty())
        AddLayer(name);
}

void TLayersPanel::AskDelete()
{
    if (QMessageBox::question(this, tr("Delete layer"),
                              tr("Delete the current layer and its shapes?")) == QMessageBox::Yes)
        DeleteCurrent();
}

void TLayersPanel::AskRename()
{
    bool ok = false;
    const QString name =
        QInputDialog::getText(this, tr("Rename layer"), tr("Name:"), QLineEdit::Normal,
                              m_Surface->GetLayerNameByID(m_Surface->CurrentLayerId()), &ok);
    if (ok && !name.isEmpty())
        RenameCurrent(name);
}

void TLayersPanel::AskMerge()
{
    QStringList others;
    for (const TLayer &layer : m_Surface->Layers())
        if (layer.Id != m_Surface->CurrentLayerId())
            others << layer.Name;
    if (others.isEmpty())
        return;
    bool ok = false;
    const QString target = QInputDialog::getItem(this, tr("Merge layer"), tr("Move the shapes to:"),
                                                 others, 0, false, &ok);
    if (ok)
        MergeCurrentInto(target);
}

void TLayersPanel::Refused(const QString &what)
{
    QMessageBox::warning(this, tr("Layers"), what);
}

void TLayersPanel::Done()
{
    Refresh();
    m_Changed();
}

} // namespace tessal
