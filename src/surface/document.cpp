// SPDX-License-Identifier: MIT
// The shape list of a surface: adding, access by number, group roots.
#include <tessal/surface/cad.h>

#include <tessal/platform/message.h>
#include <tessal/shapes/shape.h>

#include <QCoreApplication>

namespace tessal {

bool TMyCAD::AddShape(TMyShape *shape, bool keepLayer, bool noIdCount)
{
    if (!shape)
        return false;
    if (m_Layers.empty()) {
        // A surface always has a layer unless the application deleted them all; a shape
        // without a layer would be invisible and unreachable, so this ends the program.
        ShowMessage(QStringLiteral("Error!There is no Layer!"));
        QCoreApplication::exit(1);
        return false;
    }
    m_Shapes.emplace_back(shape);
    if (!keepLayer)
        shape->SetLayerId(m_CurrentLayerId);
    if (!noIdCount)
        ++m_ShapeIdCounter;
    return true;
}

TMyShape *TMyCAD::GetShapeByNo(std::int32_t no) const
{
    if (no < 0 || no >= GetShapesCount())
        return nullptr;
    return m_Shapes[std::size_t(no)].get();
}

TMyShape *TMyCAD::GetRootParentShape(TMyShape *shape) const
{
    if (!shape)
        return nullptr;
    // A parent chain can be no longer than the list; the bound stops a corrupt cycle.
    for (std::int32_t steps = 0; shape->ParentNo() != -1 && steps < GetShapesCount(); ++steps) {
        TMyShape *parent = GetShapeByNo(shape->ParentNo());
        if (!parent)
            break;
        shape = parent;
    }
    return shape;
}

} // namespace tessal
