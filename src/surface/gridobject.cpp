// SPDX-License-Identifier: MIT
// Grid settings: storage and change notification.
#include <tessal/surface/gridobject.h>

namespace tessal {

TGridObject::TGridObject(QObject *parent)
    : QObject(parent)
{}

template <typename T>
void TGridObject::Store(T &field, T value)
{
    field = value;
    emit Changed();
}

void TGridObject::SetGridColor(TColor value)
{
    Store(m_GridColor, value);
}

void TGridObject::SetGridHeight(double value)
{
    Store(m_GridHeight, value);
}

void TGridObject::SetGridPenSize(std::uint8_t value)
{
    Store(m_GridPenSize, value);
}

void TGridObject::SetGridInZoom(bool value)
{
    Store(m_GridInZoom, value);
}

void TGridObject::SetGridShow(bool value)
{
    Store(m_GridShow, value);
}

void TGridObject::SetGridType(TGridType value)
{
    Store(m_GridType, value);
}

void TGridObject::SetGridWidth(double value)
{
    Store(m_GridWidth, value);
}

void TGridObject::Assign(const TGridObject &source)
{
    m_GridColor = source.m_GridColor;
    m_GridHeight = source.m_GridHeight;
    m_GridPenSize = source.m_GridPenSize;
    m_GridInZoom = source.m_GridInZoom;
    m_GridShow = source.m_GridShow;
    m_GridType = source.m_GridType;
    m_GridWidth = source.m_GridWidth;
    emit Changed();
}

} // namespace tessal
