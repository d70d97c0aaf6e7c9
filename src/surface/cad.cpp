// SPDX-License-Identifier: MIT
// TMyCAD construction, the shape-host services and the two images behind every repaint.
#include <tessal/surface/cad.h>

#include <tessal/shapes/shape.h>
#include <tessal/surface/spatialindex_p.h>

#include <QPaintEvent>
#include <QPainter>
#include <QResizeEvent>

#include <cmath>

namespace tessal {

TMyCAD::TMyCAD(QWidget *parent)
    : QWidget(parent)
    , m_Grid(new TGridObject(this))
{
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
    if (!m_ScreenCanvas)
        m_ScreenCanvas = std::make_unique<TCanvas>(&m_ScreenImage);
    return m_ScreenCanvas.get();
}

void TMyCAD::ScreenChanged(const TRect &rect)
{
    update(rect.ToQRect());
}

// ---- Repaint ----

// A full invalidation is how document changes announce themselves, so it also schedules a
// rebuild of the spatial index. Nothing repaints while the grid is being drawn.
void TMyCAD::Invalidate()
{
    if (m_GridDrawing)
        return;
    ShapesRenumbered();
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

void TMyCAD::EnsureScreenImage()
{
    const qreal dpr = devicePixelRatioF();
    const QSize device = (QSizeF(size()) * dpr).toSize();
    if (device.isEmpty()) {
        m_ScreenCanvas.reset();
        m_ScreenImage = QImage();
        return;
    }
    if (m_ScreenImage.size() == device && m_ScreenImage.devicePixelRatio() == dpr)
        return;
    m_ScreenCanvas.reset();
    m_ScreenImage = QImage(device, QImage::Format_RGB32);
    m_ScreenImage.setDevicePixelRatio(dpr);
    m_ScreenImage.fill(Qt::white);
    m_Dirty = QRegion(rect());
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
    EnsureScreenImage();
    if (m_ScreenImage.isNull())
        return;
    Paint(TRect::FromQRect((m_Dirty & event->region()).boundingRect()));
    if (m_ScreenCanvas)
        m_ScreenCanvas->Flush();
    QPainter painter(this);
    for (const QRect &r : event->region())
        painter.drawImage(r, m_ScreenImage,
                          QRectF(QRectF(r).topLeft() * m_ScreenImage.devicePixelRatio(),
                                 QSizeF(r.size()) * m_ScreenImage.devicePixelRatio()));
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
