// SPDX-License-Identifier: MIT
// Cell editors of the inspector grid.
#include <tessal/inspector/propertydelegate.h>
#include <tessal/inspector/propertymodel.h>
#include <tessal/inspector/valuedialogs.h>

#include <QAbstractProxyModel>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>

namespace tessal {

TDialogCellEditor::TDialogCellEditor(const TPropertyType &type, QWidget *parent)
    : QWidget(parent)
    , m_Type(type)
    , m_Text(new QLabel(this))
    , m_Button(new QToolButton(this))
{
    setAutoFillBackground(true);
    m_Button->setText(QStringLiteral("..."));
    m_Button->setToolTip(tr("Edit %1").arg(type.Name));
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(2, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(m_Text, 1);
    layout->addWidget(m_Button);
    setFocusProxy(m_Button);
    connect(m_Button, &QToolButton::clicked, this, &TDialogCellEditor::OpenDialog);
}

void TDialogCellEditor::SetValue(const QVariant &value, const QString &text)
{
    m_Start = value;
    m_Value = value;
    m_Text->setText(text);
}

void TDialogCellEditor::OpenDialog()
{
    QVariant value = m_Value;
    if (!RunValueDialog(window(), m_Type, value))
        return;
    m_Value = value;
    m_Changed = true;
    emit Accepted(this);
}

TPropertyDelegate::TPropertyDelegate(TPropertyModel *model, QAbstractProxyModel *proxy,
                                     QObject *parent)
    : QStyledItemDelegate(parent)
    , m_Model(model)
    , m_Proxy(proxy)
{}

const TPropertyType *TPropertyDelegate::TypeOf(const QModelIndex &index) const
{
    return m_Model->TypeAt(m_Proxy ? m_Proxy->mapToSource(index) : index);
}

QWidget *TPropertyDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                                         const QModelIndex &index) const
{
    const TPropertyType *type = TypeOf(index);
    if (!type)
        return nullptr;
    if (type->Kind == TPropertyKind::Bool || type->Kind == TPropertyKind::Enum) {
        auto *box = new QComboBox(parent);
        if (type->Kind == TPropertyKind::Bool)
            box->addItems({QStringLiteral("False"), QStringLiteral("True")});
        else
            for (int i = 0; i < type->Enumerator.keyCount(); ++i)
                box->addItem(QString::fromLatin1(type->Enumerator.key(i)));
        // A choice is a finished edit: commit without waiting for focus to leave.
        connect(box, &QComboBox::activated, this, [this, box] {
            auto *self = const_cast<TPropertyDelegate *>(this);
            emit self->commitData(box);
        });
        return box;
    }
    if (type->Kind == TPropertyKind::Reference) {
        auto *box = new QComboBox(parent);
        box->addItem(tr("(none)"), QVariant::fromValue(quintptr(0)));
        for (QObject *o : ReferenceCandidates(type->Type))
            box->addItem(o->objectName(), QVariant::fromValue(reinterpret_cast<quintptr>(o)));
        connect(box, &QComboBox::activated, this, [this, box] {
            auto *self = const_cast<TPropertyDelegate *>(this);
            emit self->commitData(box);
        });
        return box;
    }
    if (HasValueDialog(type->Kind)) {
        auto *cell = new TDialogCellEditor(*type, parent);
        connect(cell, &TDialogCellEditor::Accepted, this, [this](TDialogCellEditor *editor) {
            auto *self = const_cast<TPropertyDelegate *>(this);
            emit self->commitData(editor);
            emit self->closeEditor(editor);
        });
        return cell;
    }
    if (type->Kind == TPropertyKind::Integer || type->Kind == TPropertyKind::Real ||
        type->Kind == TPropertyKind::String)
        return new QLineEdit(parent);
    return QStyledItemDelegate::createEditor(parent, option, index);
}

void TPropertyDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    const TPropertyType *type = TypeOf(index);
    const QString text = index.data(Qt::DisplayRole).toString();
    if (auto *box = qobject_cast<QComboBox *>(editor)) {
        box->setCurrentIndex(box->findText(text));
    } else if (auto *cell = qobject_cast<TDialogCellEditor *>(editor)) {
        // A value that differs between the items has none of its own: the dialog starts
        // from the first item's.
        const bool mixed = index.data(TPropertyModel::MixedRole).toBool();
        cell->SetValue(index.data(mixed ? int(TPropertyModel::FirstValueRole) : int(Qt::EditRole)),
                       text);
    } else if (auto *line = qobject_cast<QLineEdit *>(editor)) {
        // The surface repaints (and the grid re-reads its values) while the user types:
        // typed text wins over the value shown when the editor opened.
        if (line->isModified())
            return;
        line->setText(type && type->Kind == TPropertyKind::String
                          ? index.data(Qt::EditRole).toString()
                          : text);
    } else {
        QStyledItemDelegate::setEditorData(editor, index);
    }
}

void TPropertyDelegate::setModelData(QWidget *editor, QAbstractItemModel *model,
                                     const QModelIndex &index) const
{
    const TPropertyType *type = TypeOf(index);
    if (auto *box = qobject_cast<QComboBox *>(editor);
        box && type && type->Kind == TPropertyKind::Reference) {
        auto *object = reinterpret_cast<QObject *>(box->currentData().value<quintptr>());
        model->setData(index, ReferenceValue(type->Type, object));
    } else if (box) {
        if (box->currentIndex() >= 0)
            model->setData(index, box->currentText());
    } else if (auto *cell = qobject_cast<TDialogCellEditor *>(editor)) {
        // On a mixed pen, brush or font each item keeps the members the user left alone.
        if (!cell->HasNewValue())
            return;
        if (index.data(TPropertyModel::MixedRole).toBool())
            m_Model->SetChangedMembers(m_Proxy ? m_Proxy->mapToSource(index) : index,
                                       cell->StartValue(), cell->Value());
        else
            model->setData(index, cell->Value());
    } else if (auto *line = qobject_cast<QLineEdit *>(editor)) {
        // Text the user did not touch is not written back: a number is shown shorter than
        // it is, and writing the text would change it. A mixed value left blank stays as
        // it is on every item.
        if (line->isModified() &&
            !(line->text().isEmpty() && index.data(TPropertyModel::MixedRole).toBool()))
            model->setData(index, line->text());
    } else {
        QStyledItemDelegate::setModelData(editor, model, index);
    }
}

void TPropertyDelegate::updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                                             const QModelIndex &) const
{
    editor->setGeometry(option.rect);
}

} // namespace tessal
