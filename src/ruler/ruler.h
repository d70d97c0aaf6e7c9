// SPDX-License-Identifier: MIT
// TMyRuler: a horizontal or vertical ruler shown beside a drawing surface.
#pragma once

#include <tessal/ruler/rulerscale.h>

#include <QColor>
#include <QPixmap>
#include <QWidget>

namespace tessal {

// A ruler knows nothing of the document: it shows a scale described by its properties
// (unit, zoom, drawing ratio, where value 0 sits, direction) and a marker line. TRulerLink keeps
// these in step with a surface. Positions (Origin, Marker) are the ruler's own pixels along its
// length. Ticks are drawn once into a cached picture; moving the marker repaints only the
// two thin strips where it was and where it is.
class TMyRuler : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(
        Qt::Orientation Orientation READ Orientation WRITE SetOrientation NOTIFY OrientationChanged)
    Q_PROPERTY(tessal::GeometryEnums::TUnits Unit READ Unit WRITE SetUnit NOTIFY UnitChanged)
    Q_PROPERTY(double Zoom READ Zoom WRITE SetZoom NOTIFY ZoomChanged)
    Q_PROPERTY(double Ratio READ Ratio WRITE SetRatio NOTIFY RatioChanged)
    Q_PROPERTY(int Origin READ Origin WRITE SetOrigin NOTIFY OriginChanged)
    Q_PROPERTY(bool Reversed READ Reversed WRITE SetReversed NOTIFY ReversedChanged)
    Q_PROPERTY(
        int PixelsPerInch READ PixelsPerInch WRITE SetPixelsPerInch NOTIFY PixelsPerInchChanged)
    Q_PROPERTY(int Marker READ Marker WRITE SetMarker NOTIFY MarkerChanged)
    Q_PROPERTY(QColor MarkerColor READ MarkerColor WRITE SetMarkerColor NOTIFY MarkerColorChanged)

public:
    explicit TMyRuler(Qt::Orientation orientation = Qt::Horizontal, QWidget *parent = nullptr);

    Qt::Orientation Orientation() const { return m_Orientation; }
    void SetOrientation(Qt::Orientation value);
    TUnits Unit() const { return m_Unit; }
    void SetUnit(TUnits value);
    // Screen pixels per document pixel. Values at or below zero are refused.
    double Zoom() const { return m_Zoom; }
    void SetZoom(double value);
    // Units of the drawing per unit shown on the screen (the surface's Ratio): at ratio 2 a
    // millimetre on the screen reads as 2 mm. Values at or below zero are refused.
    double Ratio() const { return m_Ratio; }
    void SetRatio(double value);
    int Origin() const { return m_Origin; }
    void SetOrigin(int value);
    bool Reversed() const { return m_Reversed; }
    void SetReversed(bool value);
    // The screen resolution that converts pixels to lengths; 96 until set. Values below 1
    // are refused.
    int PixelsPerInch() const { return m_PixelsPerInch; }
    void SetPixelsPerInch(int value);
    // The marker's position, -1 for none.
    int Marker() const { return m_Marker; }
    void SetMarker(int screenPos);
    QColor MarkerColor() const { return m_MarkerColor; }
    void SetMarkerColor(const QColor &value);

    TRulerScale Scale() const;
    TRulerSteps Steps() const;
    // The ticks shown now, and where each major tick's label is drawn (ruler pixels).
    std::vector<TRulerTick> Ticks() const;
    QRect LabelRect(const TRulerTick &tick) const;
    int Length() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    void OrientationChanged(Qt::Orientation value);
    void UnitChanged(tessal::GeometryEnums::TUnits value);
    void ZoomChanged(double value);
    void RatioChanged(double value);
    void OriginChanged(int value);
    void ReversedChanged(bool value);
    void PixelsPerInchChanged(int value);
    void MarkerChanged(int value);
    void MarkerColorChanged(const QColor &value);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    // The scale changed: the cached ticks are redrawn at the next paint.
    void ScaleChanged();
    void RenderTicks();
    // The widget rectangle of a strip across the ruler at pos, wide enough for the marker.
    QRect MarkerStrip(int pos) const;
    int Thickness() const;

    Qt::Orientation m_Orientation;
    TUnits m_Unit = TUnits::mm;
    double m_Zoom = 1;
    double m_Ratio = 1;
    int m_Origin = 0;
    bool m_Reversed = false;
    int m_PixelsPerInch = 96;
    int m_Marker = -1;
    QColor m_MarkerColor = Qt::red;
    QPixmap m_Cache;
    bool m_CacheValid = false;
};

} // namespace tessal
