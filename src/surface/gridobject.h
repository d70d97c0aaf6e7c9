// SPDX-License-Identifier: MIT
// The grid settings that a drawing surface owns and draws behind its shapes.
#pragma once

#include <tessal/platform/color.h>
#include <tessal/surface/surfaceenums.h>

#include <QObject>

#include <cstdint>

namespace tessal {

// Spacings are in document pixels (zoom 1) unless GridInZoom makes them follow the zoom.
// Every setter emits Changed, which the owning surface turns into a repaint.
class TGridObject : public QObject
{
    Q_OBJECT
    Q_PROPERTY(tessal::TColor GridColor READ GridColor WRITE SetGridColor)
    Q_PROPERTY(double GridHeight READ GridHeight WRITE SetGridHeight)
    Q_PROPERTY(std::uint8_t GridPenSize READ GridPenSize WRITE SetGridPenSize)
    Q_PROPERTY(bool GridInZoom READ GridInZoom WRITE SetGridInZoom)
    Q_PROPERTY(bool GridShow READ GridShow WRITE SetGridShow)
    Q_PROPERTY(tessal::SurfaceEnums::TGridType GridType READ GridType WRITE SetGridType)
    Q_PROPERTY(double GridWidth READ GridWidth WRITE SetGridWidth)

public:
    explicit TGridObject(QObject *parent = nullptr);

    TColor GridColor() const { return m_GridColor; }
    double GridHeight() const { return m_GridHeight; }
    std::uint8_t GridPenSize() const { return m_GridPenSize; }
    bool GridInZoom() const { return m_GridInZoom; }
    bool GridShow() const { return m_GridShow; }
    TGridType GridType() const { return m_GridType; }
    double GridWidth() const { return m_GridWidth; }

    void SetGridColor(TColor value);
    void SetGridHeight(double value);
    void SetGridPenSize(std::uint8_t value);
    void SetGridInZoom(bool value);
    void SetGridShow(bool value);
    void SetGridType(TGridType value);
    void SetGridWidth(double value);

    // Copies every setting of source (and emits Changed once).
    void Assign(const TGridObject &source);

signals:
    void Changed();

private:
    template <typename T>
    void Store(T &field, T value);

    TColor m_GridColor = clSilver;
    double m_GridHeight = 20;
    std::uint8_t m_GridPenSize = 1;
    bool m_GridInZoom = false;
    bool m_GridShow = true;
    TGridType m_GridType = TGridType::gLine;
    double m_GridWidth = 20;
};

} // namespace tessal
