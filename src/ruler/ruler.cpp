// SPDX-License-Identifier: MIT
// Painting and properties of the ruler widget.
#include <tessal/ruler/ruler.h>

#include <QEvent>
#include <QFontMetrics>
#include <QPaintEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace tessal {

namespace {

// Room between a tick and its label, and the least room between a label and the next tick.
constexpr int LabelGap = 3;
constexpr int LabelClearance = 5;
constexpr double MinMinorPixels = 4;

} // namespace

TMyRuler::TMyRuler(Qt::Orientation orientation, QWidget *parent)
    : QWidget(parent)
    , m_Orientation(orientation)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setSizePolicy(orientation == Qt::Horizontal
                      ? QSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed)
                      : QSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding));
}

void TMyRuler::SetOrientation(Qt::Orientation value)
{
    if (value == m_Orientation)
        return;
    m_Orientation = value;
    setSizePolicy(sizePolicy().transposed());
    updateGeometry();
    ScaleChanged();
    emit OrientationChanged(value);
}

void TMyRuler::SetUnit(TUnits value)
{
    if (value == m_Unit)
        return;
    m_Unit = value;
    ScaleChanged();
    emit UnitChanged(value);
}

void TMyRuler::SetZoom(double value)
{
    if (value == m_Zoom || !(value > 0) || !std::isfinite(value))
        return;
    m_Zoom = value;
    ScaleChanged();
    emit ZoomChanged(value);
}

void TMyRuler::SetRatio(double value)
{
    if (value == m_Ratio || !(value > 0) || !std::isfinite(value))
        return;
    m_Ratio = value;
    ScaleChanged();
    emit RatioChanged(value);
}

void TMyRuler::SetOrigin(int value)
{
    if (value == m_Origin)
        return;
    m_Origin = value;
    ScaleChanged();
    emit OriginChanged(value);
}

void TMyRuler::SetReversed(bool value)
{
    if (value == m_Reversed)
        return;
    m_Reversed = value;
    ScaleChanged();
    emit ReversedChanged(value);
}

void TMyRuler::SetPixelsPerInch(int value)
{
    if (value == m_PixelsPerInch || value < 1)
        return;
    m_PixelsPerInch = value;
    ScaleChanged();
    emit PixelsPerInchChanged(value);
}

void TMyRuler::SetMarker(int screenPos)
{
    screenPos = std::max(screenPos, -1);
    if (screenPos == m_Marker)
        return;
    if (m_Marker >= 0)
        update(MarkerStrip(m_Marker));
    m_Marker = screenPos;
    if (m_Marker >= 0)
        update(MarkerStrip(m_Marker));
    emit MarkerChanged(screenPos);
}

void TMyRuler::SetMarkerColor(const QColor &value)
{
    if (value == m_MarkerColor)
        return;
    m_MarkerColor = value;
    if (m_Marker >= 0)
        update(MarkerStrip(m_Marker));
    emit MarkerColorChanged(value);
}

TRulerScale TMyRuler::Scale() const
{
    return {PixelsPerUnit(m_Unit, m_PixelsPerInch) * m_Zoom / m_Ratio, m_Origin, m_Reversed};
}

int TMyRuler::Length() const
{
    return m_Orientation == Qt::Horizontal ? width() : height();
}

TRulerSteps TMyRuler::Steps() const
{
    const TRulerScale scale = Scale();
    const QFontMetrics metrics(font());
    // The widest labels are those of the largest magnitudes, at the ends of the ruler.
    const double ends[] = {scale.ValueAt(0), scale.ValueAt(Length())};
    auto room = [&](double step) {
        int widest = 0;
        for (double end : ends)
            widest = std::max(widest, metrics.horizontalAdvance(RulerLabel(end, step)));
        return double(widest + LabelGap + LabelClearance);
    };
    return ChooseRulerSteps(scale.PixelsPerUnit, room, MinMinorPixels);
}

std::vector<TRulerTick> TMyRuler::Ticks() const
{
    return RulerTicks(Scale(), Steps(), 0, Length());
}

QRect TMyRuler::LabelRect(const TRulerTick &tick) const
{
    const QFontMetrics metrics(font());
    const int w = metrics.horizontalAdvance(tick.Label);
    const QRect along(tick.Pos + LabelGap, 1, w, metrics.height());
    if (m_Orientation == Qt::Horizontal)
        return along;
    return {along.top(), along.left(), along.height(), along.width()};
}

int TMyRuler::Thickness() const
{
    return QFontMetrics(font()).height() + 8;
}

QSize TMyRuler::sizeHint() const
{
    return m_Orientation == Qt::Horizontal ? QSize(200, Thickness()) : QSize(Thickness(), 200);
}

QSize TMyRuler::minimumSizeHint() const
{
    return m_Orientation == Qt::Horizontal ? QSize(0, Thickness()) : QSize(Thickness(), 0);
}

QRect TMyRuler::MarkerStrip(int pos) const
{
    return m_Orientation == Qt::Horizontal ? QRect(pos - 1, 0, 3, height())
                                           : QRect(0, pos - 1, width(), 3);
}

void TMyRuler::ScaleChanged()
{
    m_CacheValid = false;
    update();
}

void TMyRuler::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    m_CacheValid = false;
}

void TMyRuler::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::FontChange || event->type() == QEvent::PaletteChange) {
        updateGeometry();
        ScaleChanged();
    }
    QWidget::changeEvent(event);
}

void TMyRuler::RenderTicks()
{
    const qreal ratio = devicePixelRatioF();
    m_Cache = QPixmap(size() * ratio);
    m_Cache.setDevicePixelRatio(ratio);
    m_Cache.fill(palette().color(QPalette::Window));
    QPainter p(&m_Cache);
    p.setFont(font());
    p.setPen(palette().color(QPalette::WindowText));
    const bool horizontal = m_Orientation == Qt::Horizontal;
    const int thick = horizontal ? height() : width();
    // The edge towards the drawing: the bottom of a horizontal ruler, the right of a
    // vertical one.
    p.drawLine(horizontal ? QLine(0, thick - 1, width(), thick - 1)
                          : QLine(thick - 1, 0, thick - 1, height()));
    for (const TRulerTick &tick : Ticks()) {
        const int len = tick.Level == TRulerTick::Major    ? thick
                        : tick.Level == TRulerTick::Medium ? thick / 2
                                                           : thick / 4;
        if (horizontal)
            p.drawLine(tick.Pos, thick - len, tick.Pos, thick - 1);
        else
            p.drawLine(thick - len, tick.Pos, thick - 1, tick.Pos);
        if (tick.Label.isEmpty())
            continue;
        const QRect r = LabelRect(tick);
        if (horizontal) {
            p.drawText(r, Qt::AlignLeft | Qt::AlignTop, tick.Label);
        } else {
            // Read from top to bottom, following the ruler.
            p.save();
            p.translate(r.right() + 1, r.top());
            p.rotate(90);
            p.drawText(QRect(0, 0, r.height(), r.width()), Qt::AlignLeft | Qt::AlignTop,
                       tick.Label);
            p.restore();
        }
    }
    m_CacheValid = true;
}

void TMyRuler::paintEvent(QPaintEvent *event)
{
    if (!m_CacheValid || m_Cache.deviceIndependentSize().toSize() != size())
        RenderTicks();
    QPainter p(this);
    const QRect r = event->rect();
    const qreal ratio = m_Cache.devicePixelRatio();
    p.drawPixmap(r, m_Cache,
                 QRectF(r.x() * ratio, r.y() * ratio, r.width() * ratio, r.height() * ratio));
    if (m_Marker >= 0 && r.intersects(MarkerStrip(m_Marker))) {
        p.setPen(m_MarkerColor);
        if (m_Orientation == Qt::Horizontal)
            p.drawLine(m_Marker, 0, m_Marker, height() - 1);
        else
            p.drawLine(0, m_Marker, width() - 1, m_Marker);
    }
}

} // namespace tessal
