// SPDX-License-Identifier: MIT
// The corner piece between the rulers.
#include <tessal/ruler/rulercorner.h>
#include <tessal/ruler/rulerscale.h>

#include <QFontMetrics>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace tessal {

TMyRulerCorner::TMyRulerCorner(QWidget *parent)
    : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setFocusPolicy(Qt::TabFocus);
    setCursor(Qt::PointingHandCursor);
    setToolTip(tr("Click to change the unit"));
}

void TMyRulerCorner::SetUnit(TUnits value)
{
    if (value == m_Unit)
        return;
    m_Unit = value;
    update();
    emit UnitChanged(value);
}

QSize TMyRulerCorner::sizeHint() const
{
    // As thick as the rulers, which are one text line plus their tick room.
    const int side = QFontMetrics(font()).height() + 8;
    return {side, side};
}

void TMyRulerCorner::Advance()
{
    const TUnits next = NextUnit(m_Unit);
    SetUnit(next);
    emit UnitClicked(next);
}

void TMyRulerCorner::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        Advance();
    else
        QWidget::mousePressEvent(event);
}

void TMyRulerCorner::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Space)
        Advance();
    else
        QWidget::keyPressEvent(event);
}

void TMyRulerCorner::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.fillRect(rect(), palette().color(QPalette::Window));
    p.setPen(palette().color(QPalette::WindowText));
    p.drawLine(width() - 1, 0, width() - 1, height());
    p.drawLine(0, height() - 1, width(), height() - 1);
    p.drawText(rect(), Qt::AlignCenter, UnitSymbol(m_Unit));
}

} // namespace tessal
