// SPDX-License-Identifier: MIT
// Rulers following a surface, and the frame that lays them around it.
#include <tessal/ruler/ruler.h>
#include <tessal/ruler/rulercorner.h>
#include <tessal/ruler/rulerlink.h>
#include <tessal/surface/cad.h>

#include <QEvent>
#include <QGridLayout>
#include <QMouseEvent>

namespace tessal {

TRulerLink::TRulerLink(TMyCAD *surface, TMyRuler *horizontal, TMyRuler *vertical,
                       TMyRulerCorner *corner, QObject *parent)
    : QObject(parent)
    , m_Surface(surface)
    , m_Horizontal(horizontal)
    , m_Vertical(vertical)
    , m_Corner(corner)
{
    m_Watched = surface;
    if (m_Surface) {
        m_Surface->installEventFilter(this);
        // Mouse moves arrive without a pressed button only when tracking is on.
        m_Surface->setMouseTracking(true);
    }
    for (QWidget *ruler : {static_cast<QWidget *>(horizontal), static_cast<QWidget *>(vertical)})
        if (ruler)
            ruler->installEventFilter(this);
    if (m_Corner) {
        connect(m_Corner, &TMyRulerCorner::UnitClicked, this, [this](TUnits unit) {
            if (m_Surface)
                m_Surface->SetTheUNIT(unit);
            Sync();
        });
    }
    Sync();
}

int TRulerLink::SurfaceStart(const TMyRuler *ruler) const
{
    const QPoint p = ruler->mapFromGlobal(m_Surface->mapToGlobal(QPoint(0, 0)));
    return ruler->Orientation() == Qt::Horizontal ? p.x() : p.y();
}

void TRulerLink::Sync()
{
    if (!m_Surface)
        return;
    const TXYMode mode = m_Surface->XYMode();
    const bool mirrorX = mode == TXYMode::Mode2 || mode == TXYMode::Mode3;
    const bool mirrorY = mode == TXYMode::Mode1 || mode == TXYMode::Mode2;
    auto follow = [&](TMyRuler *ruler, bool mirrored, int extent) {
        if (!ruler)
            return;
        ruler->SetUnit(m_Surface->TheUNIT());
        ruler->SetZoom(m_Surface->Zoom());
        ruler->SetRatio(m_Surface->Ratio());
        ruler->SetPixelsPerInch(m_Surface->ScreenPixelsPerInch());
        ruler->SetReversed(mirrored);
        // A mirrored axis counts from the surface's far edge, as the surface reports it.
        ruler->SetOrigin(SurfaceStart(ruler) + (mirrored ? extent : 0));
    };
    follow(m_Horizontal, mirrorX, m_Surface->width());
    follow(m_Vertical, mirrorY, m_Surface->height());
    if (m_Corner)
        m_Corner->SetUnit(m_Surface->TheUNIT());
}

void TRulerLink::ShowMarkers(QPoint surfacePos)
{
    const QPoint global = m_Surface->mapToGlobal(surfacePos);
    if (m_Horizontal)
        m_Horizontal->SetMarker(m_Horizontal->mapFromGlobal(global).x());
    if (m_Vertical)
        m_Vertical->SetMarker(m_Vertical->mapFromGlobal(global).y());
}

void TRulerLink::HideMarkers()
{
    if (m_Horizontal)
        m_Horizontal->SetMarker(-1);
    if (m_Vertical)
        m_Vertical->SetMarker(-1);
}

bool TRulerLink::eventFilter(QObject *watched, QEvent *event)
{
    const bool fromSurface = watched == m_Watched;
    switch (event->type()) {
    case QEvent::MouseMove:
        if (fromSurface)
            ShowMarkers(static_cast<QMouseEvent *>(event)->position().toPoint());
        break;
    case QEvent::Leave:
        if (fromSurface)
            HideMarkers();
        break;
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::Show:
    case QEvent::Paint:
        Sync();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

TMyRulerFrame::TMyRulerFrame(TMyCAD *surface, QWidget *content, QWidget *parent)
    : QWidget(parent)
    , m_Horizontal(new TMyRuler(Qt::Horizontal, this))
    , m_Vertical(new TMyRuler(Qt::Vertical, this))
    , m_Corner(new TMyRulerCorner(this))
{
    auto *grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(0);
    grid->addWidget(m_Corner, 0, 0);
    grid->addWidget(m_Horizontal, 0, 1);
    grid->addWidget(m_Vertical, 1, 0);
    grid->addWidget(content ? content : surface, 1, 1);
    grid->setRowStretch(1, 1);
    grid->setColumnStretch(1, 1);
    m_Link = new TRulerLink(surface, m_Horizontal, m_Vertical, m_Corner, this);
}

} // namespace tessal
