// SPDX-License-Identifier: MIT
// TMyRulerCorner: the square where two rulers meet; shows the unit and switches it on click.
#pragma once

#include <tessal/geometry/mypoint.h>

#include <QWidget>

namespace tessal {

class TMyRulerCorner : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(tessal::GeometryEnums::TUnits Unit READ Unit WRITE SetUnit NOTIFY UnitChanged)

public:
    explicit TMyRulerCorner(QWidget *parent = nullptr);

    TUnits Unit() const { return m_Unit; }
    void SetUnit(TUnits value);

    QSize sizeHint() const override;

signals:
    void UnitChanged(tessal::GeometryEnums::TUnits value);
    // The user asked for the next unit (left click, or Space while focused).
    void UnitClicked(tessal::GeometryEnums::TUnits next);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void Advance();

    TUnits m_Unit = TUnits::mm;
};

} // namespace tessal
