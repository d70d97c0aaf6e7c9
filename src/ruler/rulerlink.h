// SPDX-License-Identifier: MIT
// TRulerLink keeps rulers and their corner in step with a drawing surface; TMyRulerFrame
// lays the three around a surface.
#pragma once

#include <tessal/surface/cad.h>

#include <QObject>
#include <QPointer>
#include <QWidget>

namespace tessal {

class TMyRuler;
class TMyRulerCorner;

// Follows the surface without the surface knowing: an event filter on the surface sees
//  - mouse moves (the markers follow the mouse) and leaving (the markers go),
//  - moves and resizes: a scroll area scrolls by moving the surface inside its viewport,
//    and a zoom or page change resizes it, so the origins are re-read from where the
//    surface sits relative to each ruler,
//  - paints: every property change of the surface ends in a repaint, so the zoom, the ratio,
//    the unit (TheUNIT) and the axis directions (XYMode) are re-read there and compared.
// Moves and resizes of the rulers re-read the origins too. Sync() does all of it now.
// A click on the corner sets the surface's TheUNIT, which the rulers then show.
class TRulerLink : public QObject
{
    Q_OBJECT
public:
    // Any of the widgets may be nullptr. None is owned.
    TRulerLink(TMyCAD *surface, TMyRuler *horizontal, TMyRuler *vertical, TMyRulerCorner *corner,
               QObject *parent = nullptr);

    void Sync();
    TMyCAD *Surface() const { return m_Surface; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void ShowMarkers(QPoint surfacePos);
    void HideMarkers();
    // The ruler position of the surface's pixel 0 along the ruler (and of its far edge).
    int SurfaceStart(const TMyRuler *ruler) const;

    QPointer<TMyCAD> m_Surface;
    // The surface as the event filter sees it: compared by address, because its events
    // keep coming while it is destroyed, when it is no longer a TMyCAD.
    const QObject *m_Watched = nullptr;
    QPointer<TMyRuler> m_Horizontal;
    QPointer<TMyRuler> m_Vertical;
    QPointer<TMyRulerCorner> m_Corner;
};

// The corner at the top left, the horizontal ruler above and the vertical ruler left of
// content, which is the surface itself or a widget holding it (usually the QScrollArea
// the surface scrolls in). The frame takes content into its grid layout.
class TMyRulerFrame : public QWidget
{
    Q_OBJECT
public:
    explicit TMyRulerFrame(TMyCAD *surface, QWidget *content = nullptr, QWidget *parent = nullptr);

    TMyRuler *HorizontalRuler() const { return m_Horizontal; }
    TMyRuler *VerticalRuler() const { return m_Vertical; }
    TMyRulerCorner *Corner() const { return m_Corner; }
    TRulerLink *Link() const { return m_Link; }

private:
    TMyRuler *m_Horizontal;
    TMyRuler *m_Vertical;
    TMyRulerCorner *m_Corner;
    TRulerLink *m_Link;
};

} // namespace tessal
