// SPDX-License-Identifier: MIT
// The layer table of the surface as a list: the check box is a layer's visibility, the
// selected row is the current layer; buttons add, rename, delete and merge layers.
#pragma once

#include <QWidget>

#include <functional>

class QListWidget;
class QListWidgetItem;
class QPushButton;

namespace tessal {

class TMyCAD;

class TLayersPanel : public QWidget
{
    Q_OBJECT

public:
    // changed runs after every edit of the layer table.
    TLayersPanel(TMyCAD *surface, std::function<void()> changed, QWidget *parent = nullptr);

    // Shows the surface's table again (after a load or a change made elsewhere).
    void Refresh();
    QListWidget *List() const { return m_List; }

    // The edits behind the buttons; false (with a message box) when the surface refused.
    bool AddLayer(const QString &name);
    bool RenameCurrent(const QString &name);
    bool DeleteCurrent();
    bool MergeCurrentInto(const QString &target);

private:
    void ItemChanged(QListWidgetItem *item);
    void RowChanged(int row);
    void AskAdd();
    void AskRename();
    void AskDelete();
    void AskMerge();
    void Refused(const QString &what);
    void Done();

    TMyCAD *m_Surface;
    std::function<void()> m_Changed;
    QListWidget *m_List;
    bool m_Filling = false;
};

} // namespace tessal
