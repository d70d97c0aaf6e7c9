// SPDX-License-Identifier: MIT
// TMyCAD construction, the shape-host services and the two images behind every repaint.
#include <tessal/surface/cad.h>
#include <tessal/surface/idplaces_p.h>
#include <tessal/surface/nameplaces_p.h>

#include <tessal/shapes/shape.h>
#include <tessal/surface/mouse_p.h>
#include <tessal/surface/spatialindex_p.h>

#include <QPaintEvent>
#include <QPainter>
#include <QResizeEvent>
#include <QScreen>

#include <cmath>

namespace tessal {

TMyCAD::TMyCAD(QWidget *parent)
    : QWidget(parent)
    , m_Grid(new TGridObject(this))
    , m_Mouse(std::make_unique<TMouseMachine>(*this))
{
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    connect(m_Grid, &TGridObject::Changed, this, [this] { Invalidate(); });
    setAttribute(Qt::WA_OpaquePaintEvent);
    setCursor(Qt::CrossCursor);
    // The values that the construction runs through their setters, for their side
    // effects: the page style sizes the control.
    SetColorOfBackGround(clWhite);
    SetPageStyle(TPageStyle::A4);
    NewLayer(QStringLiteral("Layer0"), true);
}

// Out of line: the shape list needs the complete shape class to free its shapes.
TMyCAD::~TMyCAD() = default;

TPoint TMyCAD::ReportPoint(std::int32_t x, std::int32_t y) const
{
    const std::int32_t w = width();
    const std::int32_t h = height();
    switch (m_XYMode) {
    case TXYMode::Mode0:
        return {x, y};
    case TXYMode::Mode1:
        return {x, h - y};
    case TXYMode::Mode2:
        return {w - x, h - y};
    case TXYMode::Mode3:
        return {w - x, y};
    }
    return {x, y};
}

QSize TMyCAD::sizeHint() const
{
    return {PageMmToPixels(m_PageWidth), PageMmToPixels(m_PageHeight)};
}

// ---- Shape host ----

void TMyCAD::RotateShapeTo(TMyShape *shape, double angle)
{
    if (!shape)
        return;
    TMyShape *root = GetRootParentShape(shape);
    const double delta = angle - shape->Angle();
    RotateTree(root, root->GetCenterPoint(), delta, 0);
    ShapeGeometryChanged(root);
    Invalidate();
}

// Shapes read from a file are set up through their setters before they join the drawing,
// and the load repaints everything once it ends: until then the drawing shown is unchanged.
void TMyCAD::ShapeChanged(TMyShape &shape)
{
    ShapeGeometryChanged(&shape);
    if (!IsLoading())
        Invalidate();
}

// Depth guards against a corrupt group whose child list leads back to an ancestor: no
// real group nests deeper than the shape list is long.
void TMyCAD::RotateTree(TMyShape *shape, TMyPoint centre, double delta, std::int32_t depth)
{
    if (!shape || depth > GetShapesCount())
        return;
    shape->RotateChangeValueByAngle(centre, delta);
    for (std::int32_t no : shape->ChildShapes())
        RotateTree(GetShapeByNo(no), centre, delta, depth + 1);
}

void TMyCAD::LockShape(TMyShape *shape, bool locked)
{
    LockTree(shape, locked, 0);
    Invalidate();
}

// The raw flag: the shape's own setter would call back here.
void TMyCAD::LockTree(TMyShape *shape, bool locked, std::int32_t depth)
{
    if (!shape || depth > GetShapesCount())
        return;
    shape->SetLockedFlag(locked);
    for (std::int32_t no : shape->ChildShapes())
        LockTree(GetShapeByNo(no), locked, depth + 1);
}

TCanvas *TMyCAD::ScreenCanvas()
{
    EnsureScreenImage();
    if (m_ScreenImage.isNull())
        return nullptr;
    if (!m_ScreenCanvas) {
        m_ScreenCanvas = std::make_unique<TCanvas>(&m_ScreenImage);
        m_ScreenCanvas->SetOrigin(TPoint(m_ScreenOrigin.x(), m_ScreenOrigin.y()));
    }
    return m_ScreenCanvas.get();
}

void TMyCAD::ScreenChanged(const TRect &rect)
{
    update(rect.ToQRect());
}

// ---- Repaint ----

// Nothing repaints while the grid is being drawn.
void TMyCAD::Invalidate()
{
    if (m_GridDrawing)
        return;
    m_Dirty = QRegion(rect());
    update();
}

void TMyCAD::InvalidateRect(const TRect &rect)
{
    if (m_GridDrawing)
        return;
    m_Dirty += rect.ToQRect();
    update(rect.ToQRect());
}

void TMyCAD::DocumentChanged()
{
    ShapesRenumbered();
    Invalidate();
}

// What the screen image must cover: the visible part of the control (inside a scroll area,
// the part in the viewport), never more than a screen shows. A control that is not shown
// has nothing visible and gets its top-left part, a screen in size. A paint of pixels
// outside that (rendering a hidden control into a pixmap) gets what it asks for.
QRect TMyCAD::ScreenArea(const QRect &need) const
{
    const QRect control = rect();
    const QScreen *display = screen();
    const QSize screenSize = display ? display->geometry().size() : QSize(1920, 1080);
    QRect area;
    if (isVisible()) {
        area = visibleRegion().boundingRect() & control;
        if (display && isWindow())
            area &= QRect(mapFromGlobal(display->geometry().topLeft()), screenSize);
    }
    if (area.isEmpty())
        area = QRect(QPoint(0, 0), screenSize) & control;
    if (!need.isEmpty() && !area.contains(need))
        area = (area | need) & control;
    return area;
}

// The image is also kept when it holds the area and no more than the visible part of the
// control: in a control larger than the screen, paints that reach past the screen (feedback
// drawn there) would otherwise make it again, and compose its new part again, every time.
bool TMyCAD::KeepsScreenImage(const QRect &current, const QRect &area) const
{
    if (current == area)
        return true;
    if (!current.contains(area) || !isVisible())
        return false;
    return (visibleRegion().boundingRect() & rect()).contains(current);
}

void TMyCAD::EnsureScreenImage(const QRect &need)
{
    const qreal dpr = devicePixelRatioF();
    const QRect area = ScreenArea(need);
    if (area.isEmpty()) {
        m_ScreenCanvas.reset();
        m_ScreenImage = QImage();
        return;
    }
    const QRect current = ScreenImageRect();
    if (!m_ScreenImage.isNull() && m_ScreenImage.devicePixelRatio() == dpr &&
        KeepsScreenImage(current, area))
        return;
    m_ScreenCanvas.reset();
    QImage image((QSizeF(area.size()) * dpr).toSize(), QImage::Format_RGB32);
    image.setDevicePixelRatio(dpr);
    image.fill(Qt::white);
    // The part both images show moves over as it is, feedback included; the rest is composed
    // again.
    QRegion stale(area);
    if (!m_ScreenImage.isNull() && m_ScreenImage.devicePixelRatio() == dpr) {
        const QRect kept = current & area;
        if (!kept.isEmpty()) {
            QPainter painter(&image);
            painter.setCompositionMode(QPainter::CompositionMode_Source);
            painter.drawImage(
                QRectF(kept.translated(-area.topLeft())), m_ScreenImage,
                QRectF(QPointF(kept.topLeft() - m_ScreenOrigin) * dpr, QSizeF(kept.size()) * dpr));
            stale -= kept;
        }
    }
    m_ScreenImage = std::move(image);
    m_ScreenOrigin = area.topLeft();
    m_Dirty += stale;
}

// Only a change of size makes the screen image stale: rendering a hidden widget repeats
// resize events of the same size, and those must not wipe feedback drawn on screen.
void TMyCAD::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    EnsureScreenImage();
}

// Only the stale part of the exposed region is composed again; the rest is shown from the
// screen image as it is, with any feedback drawn on it.
void TMyCAD::paintEvent(QPaintEvent *event)
{
    EnsureScreenImage(event->region().boundingRect());
    if (m_ScreenImage.isNull())
        return;
    Paint(TRect::FromQRect((m_Dirty & event->region()).boundingRect()));
    if (m_ScreenCanvas)
        m_ScreenCanvas->Flush();
    QPainter painter(this);
    const qreal dpr = m_ScreenImage.devicePixelRatio();
    const QRect shown = ScreenImageRect();
    for (const QRect &exposed : event->region()) {
        const QRect r = exposed & shown;
        painter.drawImage(
            r, m_ScreenImage,
            QRectF(QPointF(r.topLeft() - m_ScreenOrigin) * dpr, QSizeF(r.size()) * dpr));
    }
}

// A recomposed area no longer shows the highlight square; erasing it by drawing it again
// would draw it instead, so the memory of it is dropped.
void TMyCAD::ForgetCoveredHighlight(const QRect &recomposed)
{
    if (!m_HotHighlight.Shape)
        return;
    constexpr int reach = 7; // the half-side of 5 and the reach of the two-pixel pen
    const QPoint centre(int(std::floor(m_HotHighlight.Square.X)),
                        int(std::floor(m_HotHighlight.Square.Y)));
    const QRect square(centre - QPoint(reach, reach), QSize(2 * reach + 1, 2 * reach + 1));
    if (square.intersects(recomposed))
        m_HotHighlight = {};
}

} // namespace tessal
