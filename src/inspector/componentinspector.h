// SPDX-License-Identifier: MIT
// TComponentInspector: pick the surface or its shapes and edit them in an inspector grid.
#pragma once

#include <tessal/surface/cad.h>

#include <tessal/inspector/listdialogs.h>

#include <QPointer>
#include <QWidget>

#include <vector>

class QComboBox;
class QToolButton;
class QTreeWidget;
class QTreeWidgetItem;

namespace tessal {

class TInspectorGrid;
class TMyShape;

// A combo box of the surface and its shapes (by name), a tree of layers -> top-level shapes
// -> group members, and the grid. Choosing shapes in the tree or the combo makes their
// roots the surface's working shapes and shows the chosen shapes themselves in the grid
// (so a group member can be edited on its own); choosing nothing, or the surface, shows the
// surface's properties.
//
// The surface tells no one when its shapes or its selection change, but it repaints after
// every such change: an event filter on its paints compares the document's shape list and
// the working shapes with what the tree shows, and rebuilds or reselects when they differ.
// Refresh() does the same at once.
class TComponentInspector : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(tessal::TMyCAD *Surface READ Surface WRITE SetSurface NOTIFY SurfaceChanged)

public:
    explicit TComponentInspector(QWidget *parent = nullptr);

    TMyCAD *Surface() const { return m_Surface; }
    void SetSurface(TMyCAD *surface);
    void Refresh();

    // The "Layers..." button: the layer table in a collection dialog, applied on OK.
    void EditLayers();
    // Makes the layer table match items (names with layer IDs; new layers without): layers
    // left out are merged into the first layer that stays, so no shape is lost, and the
    // last layer is kept while it holds shapes; renamed ones are renamed and new ones
    // added. Answers what could not be done, for the message line.
    QStringList ApplyLayers(const std::vector<TCollectionDialog::TItem> &items);

    QComboBox *ComponentBox() const { return m_Combo; }
    QToolButton *LayersButton() const { return m_Layers; }
    QTreeWidget *Tree() const { return m_Tree; }
    TInspectorGrid *Grid() const { return m_Grid; }
    // The tree item of a shape, nullptr when it has none.
    QTreeWidgetItem *ItemOf(const TMyShape *shape) const;

signals:
    void SurfaceChanged(tessal::TMyCAD *surface);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    // What the tree was built from: every shape with its name, layer and parent, and the
    // layer table.
    struct TSnapshot
    {
        std::vector<const void *> Shapes;
        QStringList Names;
        std::vector<int> Layers;
        std::vector<int> Parents;
        QStringList LayerNames;
        bool operator==(const TSnapshot &) const = default;
    };
    TSnapshot Take() const;
    void Rebuild();
    void AddShapeItem(QTreeWidgetItem *parent, TMyShape *shape, int depth);
    void TreeSelectionChanged();
    void ComboActivated(int index);
    void ShowSelectionFromSurface();
    std::vector<TMyShape *> SelectedShapes() const;
    void ShowInGrid(const std::vector<TMyShape *> &shapes);

    QPointer<TMyCAD> m_Surface;
    // The filtered surface by address: its last events arrive while it is destroyed.
    const QObject *m_Watched = nullptr;
    QComboBox *m_Combo;
    QToolButton *m_Layers;
    QTreeWidget *m_Tree;
    TInspectorGrid *m_Grid;
    TSnapshot m_Snapshot;
    std::vector<TMyShape *> m_Working; // the working shapes as last seen or set
    std::vector<TMyShape *> m_Shown;   // what the grid shows
    bool m_Syncing = false;
};

} // namespace tessal
