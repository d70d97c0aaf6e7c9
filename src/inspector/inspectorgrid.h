// SPDX-License-Identifier: MIT
// TInspectorGrid: the property grid of a widget or of selected shapes.
#pragma once

#include <QWidget>

#include <vector>

class QLabel;
class QSortFilterProxyModel;
class QTreeView;

namespace tessal {

class TMyCAD;
class TMyShape;
class TPropertyDelegate;
class TPropertyModel;

// Names and values in a tree view over a TPropertyModel, sortable by name through a proxy.
// A refused edit shows its reason in a message line under the tree until the next edit
// succeeds. Editing starts on a double click, on a click into the selected value, on F2
// or on typing over a selected value.
class TInspectorGrid : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(bool Grouped READ Grouped WRITE SetGrouped NOTIFY GroupedChanged)
    Q_PROPERTY(bool Sorted READ Sorted WRITE SetSorted NOTIFY SortedChanged)
    Q_PROPERTY(
        bool ShowInherited READ ShowInherited WRITE SetShowInherited NOTIFY ShowInheritedChanged)

public:
    explicit TInspectorGrid(QWidget *parent = nullptr);

    // Shows the properties of object (nullptr: nothing). Not owned.
    void SetObject(QObject *object);
    // Shows the properties that the shapes share; edits apply to all of them.
    void SetShapes(TMyCAD *surface, std::vector<TMyShape *> shapes);
    void Clear();
    // Re-reads every value (after the items changed elsewhere).
    void Refresh();

    bool Grouped() const;
    void SetGrouped(bool value);
    bool Sorted() const { return m_Sorted; }
    void SetSorted(bool value);
    bool ShowInherited() const;
    void SetShowInherited(bool value);

    TPropertyModel *Model() const { return m_Model; }
    QSortFilterProxyModel *Proxy() const { return m_Proxy; }
    QTreeView *View() const { return m_View; }
    QLabel *Title() const { return m_Title; }
    QLabel *MessageLabel() const { return m_Message; }
    // Shows text in the message line (empty hides it).
    void ShowMessage(const QString &text);
    // The view's index of a property's value cell, e.g. {"Pen", "Width"}.
    QModelIndex ViewIndex(const QStringList &path) const;

signals:
    void GroupedChanged(bool value);
    void SortedChanged(bool value);
    void ShowInheritedChanged(bool value);

private:
    void TargetChanged(const QString &title);

    TPropertyModel *m_Model;
    QSortFilterProxyModel *m_Proxy;
    TPropertyDelegate *m_Delegate;
    QTreeView *m_View;
    QLabel *m_Title;
    QLabel *m_Message;
    bool m_Sorted = false;
};

} // namespace tessal
