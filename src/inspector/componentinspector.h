// SPDX-License-Identifier: MIT
// TComponentInspector: pick the surface or its shapes and edit them in an inspector grid.
#pragma once

#include <tessal/surface/cad.h>

#include <tessal/inspector/listdialogs.h>

#include <QPointer>
#include <QWidget>

#include <vector>

class QComboBox;
class QTimer;
class QToolButton;
class QTreeView;

namespace tessal {

class TInspectorGrid;
class TMyShape;
class TShapeTreeModel;

// A combo box of the surface and its shapes (by name), a tree of layers -> top-level shapes
// -> group members, and the grid. Choosing shapes in the tree or the combo makes their
// roots the surface's working shapes and shows the chosen shapes themselves in the grid
// (so a group member can be edited on its own); choosing nothing, or the surface, shows the
// surface's properties.
//
// The surface tells no one when its shapes or its selection change, but it repaints after
// every such change: an event filter on its paints compares the document's shape list and
// the working shapes with what the tree shows, and rebuilds or reselects when they differ.
// Refresh() does the same at once. Tree and combo read one item model, which makes no
// object per shape, so a drawing of a million shapes is shown at once.
//
// On a paint, what needs no walk over the shapes (their number, the first and last, names,
// layers, the selection) is compared at once; the walk that finds a shape moved to another
// layer or group follows when the events of the moment are done, and on a drawing of more
// than WalkAtOnce shapes at most every WalkPause milliseconds, so that the paints of a drag
// are not each made to wait for it. The grid's values are read from every shape shown: once
// more than WalkAtOnce shapes are shown, they are read again when the selection changes or
// a value is edited in the grid, not on every paint.
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
    // left out are merged into the first layer that stays, so no shape is lost, renamed
    // ones are renamed and new ones added. The drawing always keeps a layer: when every
    // layer is left out and none is added, the last one stays. Answers what could not be
    // done, for the message line.
    QStringList ApplyLayers(const std::vector<TCollectionDialog::TItem> &items);

    QComboBox *ComponentBox() const { return m_Combo; }
    QToolButton *LayersButton() const { return m_Layers; }
    QTreeView *Tree() const { return m_Tree; }
    TShapeTreeModel *TreeModel() const { return m_Model; }
    TInspectorGrid *Grid() const { return m_Grid; }
    // The tree item of a shape, invalid when it has none.
    QModelIndex IndexOf(const TMyShape *shape) const;

    static constexpr int WalkAtOnce = 50000;
    static constexpr int WalkPause = 500;

signals:
    void SurfaceChanged(tessal::TMyCAD *surface);
    // The "Layers..." dialog changed the layer table (layer changes record no undo step).
    void LayersEdited();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void AddNewLayers(const std::vector<TCollectionDialog::TItem> &items,
                      std::vector<std::int32_t> &added, QStringList &problems);
    void SurfacePainted();
    void Rebuild();
    void TreeSelectionChanged();
    void ComboActivated(int index);
    void ShowSelectionFromSurface();
    std::vector<TMyShape *> SelectedShapes() const;
    void ShowInGrid(const std::vector<TMyShape *> &shapes);

    QPointer<TMyCAD> m_Surface;
    // The filtered surface by address: its last events arrive while it is destroyed.
    const QObject *m_Watched = nullptr;
    TShapeTreeModel *m_Model;
    QComboBox *m_Combo;
    QToolButton *m_Layers;
    QTreeView *m_Tree;
    TInspectorGrid *m_Grid;
    QTimer *m_Walk;
    std::vector<TMyShape *> m_Working; // the working shapes as last seen or set
    std::vector<TMyShape *> m_Shown;   // what the grid shows
    bool m_Syncing = false;
};

} // namespace tessal
