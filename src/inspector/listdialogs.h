// SPDX-License-Identifier: MIT
// Dialogs that edit lists: a collection of named items, and the items of a menu.
#pragma once

#include <QDialog>
#include <QVariant>

#include <functional>
#include <vector>

class QListWidget;
class QListWidgetItem;
class QMenu;
class QPushButton;

namespace tessal {

// Items of a collection with their names: Add appends a new item (its data invalid),
// Remove deletes the selected one, Up and Down move it, and a double click renames it.
// The caller maps the result back onto its collection by each item's data.
class TCollectionDialog : public QDialog
{
    Q_OBJECT
public:
    struct TItem
    {
        QString Name;
        QVariant Data; // invalid for items added here
        friend bool operator==(const TItem &, const TItem &) = default;
    };

    TCollectionDialog(const QString &title, const std::vector<TItem> &items,
                      QWidget *parent = nullptr);
    std::vector<TItem> Items() const;
    QListWidget *List() const { return m_List; }

    void AddItem(const QString &name);
    void RemoveCurrent();
    void MoveCurrent(int by);
    // Collections whose order means nothing (or cannot change) hide Up and Down.
    void SetReorderable(bool reorderable);

protected:
    // The name a new item gets: the first of "Item1", "Item2", ... not in use.
    virtual QString NewName() const;

private:
    void UpdateButtons();

    QListWidget *m_List;
    QPushButton *m_Remove;
    QPushButton *m_Up;
    QPushButton *m_Down;
    bool m_Reorderable = true;
};

// The items of a QMenu: texts (with & mnemonics), shortcuts and separators, in order.
// Apply() writes the list back: actions that stay keep their objects (and connections),
// removed ones are deleted, new ones are created with the menu as parent.
class TMenuEditorDialog : public QDialog
{
    Q_OBJECT
public:
    explicit TMenuEditorDialog(QMenu *menu, QWidget *parent = nullptr);

    QListWidget *List() const { return m_List; }
    void AddItem(const QString &text, const QString &shortcut = {});
    void AddSeparator();
    void RemoveCurrent();
    void MoveCurrent(int by);
    void SetCurrentText(const QString &text);
    void SetCurrentShortcut(const QString &shortcut);
    void Apply();

private:
    QListWidgetItem *MakeItem(QAction *action, const QString &text, const QString &shortcut,
                              bool separator);
    void Relabel(QListWidgetItem *item);
    // Asks for a new text of the current item's role and hands it to apply.
    void AskForCurrent(int role, const QString &title, const QString &label,
                       const std::function<void(const QString &)> &apply);

    QMenu *m_Menu;
    QListWidget *m_List;
};

} // namespace tessal
