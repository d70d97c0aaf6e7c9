// SPDX-License-Identifier: MIT
// The dialogs that edit a TUserData: the key/value list editor and its add dialog.
#pragma once

#include <tessal/shapes/userdata.h>

#include <QDialog>

#include <functional>

class QLineEdit;
class QPushButton;
class QTableWidget;

namespace tessal {

// "Add key and value": a key and a value edit, OK (default) and Cancel.
class TUserKeyAddFrm : public QDialog
{
    Q_OBJECT
public:
    explicit TUserKeyAddFrm(QWidget *parent = nullptr);

    QLineEdit *KeyEdit() const { return m_KeyEdit; }
    QLineEdit *ValueEdit() const { return m_ValueEdit; }

private:
    QLineEdit *m_KeyEdit;
    QLineEdit *m_ValueEdit;
};

// Shows the add dialog with key and value filled in; answers true on OK and then holds the
// edited texts in key and value.
using TAddKeyDialogRunner = std::function<bool(QWidget *parent, QString &key, QString &value)>;

// "Key and Value Editor": the list lvKeyValue (columns Key and Value, whole-row selection,
// read-only) and the buttons OK, Cancel, Add, Delete, Insert and Edit. The rows are edited
// here only; EditUserData writes them back.
class TUserKeyFrm : public QDialog
{
    Q_OBJECT
public:
    explicit TUserKeyFrm(QWidget *parent = nullptr);

    QTableWidget *KeyValueList() const { return m_List; }
    void AppendRow(const QString &key, const QString &value);
    int RowCount() const;
    QString KeyAt(int row) const;
    QString ValueAt(int row) const;

    // Replaces the way the add dialog is run (the default runs TUserKeyAddFrm modally).
    void SetAddDialogRunner(TAddKeyDialogRunner runner) { m_RunAddDialog = std::move(runner); }

private:
    void AddClicked();
    void DeleteClicked();
    void InsertClicked();
    void EditClicked();
    // The selected row, or -1 after telling the user to select one.
    int SelectedRowOrComplain() const;
    void SetRow(int row, const QString &key, const QString &value);
    QPushButton *MakeButton(const QString &text, const char *name);

    QTableWidget *m_List;
    TAddKeyDialogRunner m_RunAddDialog;
};

// The property editor of TUserData: shows the records in a modal TUserKeyFrm and, on OK,
// replaces them by the rows in list order, dropping a row whose key repeats an earlier one.
// Answers whether OK was chosen.
bool EditUserData(QWidget *parent, TUserData &data);

} // namespace tessal
