// SPDX-License-Identifier: MIT
// The editors of the inspector's value cells.
#pragma once

#include <tessal/inspector/propertykind.h>

#include <QStyledItemDelegate>
#include <QVariant>

class QAbstractProxyModel;
class QLabel;
class QToolButton;

namespace tessal {

class TPropertyModel;

// A cell editor for values edited in a dialog: the value's text and a "..." button that
// opens the dialog. Accepting the dialog commits the value at once. The dialog opens on the
// value given last; StartValue keeps it, so that what the user changed can be told apart.
class TDialogCellEditor : public QWidget
{
    Q_OBJECT
public:
    TDialogCellEditor(const TPropertyType &type, QWidget *parent);
    void SetValue(const QVariant &value, const QString &text);
    QVariant Value() const { return m_Value; }
    QVariant StartValue() const { return m_Start; }
    bool HasNewValue() const { return m_Changed; }
    QToolButton *Button() const { return m_Button; }
    // Opens the dialog (as the button does).
    void OpenDialog();

signals:
    void Accepted(tessal::TDialogCellEditor *editor);

private:
    TPropertyType m_Type;
    QVariant m_Start;
    QVariant m_Value;
    bool m_Changed = false;
    QLabel *m_Text;
    QToolButton *m_Button;
};

// Booleans and enumerations are chosen by name in a combo box; numbers and strings are
// typed into a line edit and checked by the model when committed; everything with a
// dialog gets a TDialogCellEditor.
class TPropertyDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    TPropertyDelegate(TPropertyModel *model, QAbstractProxyModel *proxy, QObject *parent);

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model,
                      const QModelIndex &index) const override;
    void updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                              const QModelIndex &index) const override;

private:
    const TPropertyType *TypeOf(const QModelIndex &index) const;

    TPropertyModel *m_Model;
    QAbstractProxyModel *m_Proxy;
};

} // namespace tessal
