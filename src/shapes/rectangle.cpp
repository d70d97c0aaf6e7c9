// SPDX-License-Identifier: MIT
// TMyRectangle: construction and copying of the side-handle settings.
#include <tessal/shapes/rectangle.h>

namespace tessal {

TMyRectangle::TMyRectangle(TShapeHost *host)
    : TMyShape(host)
{}

void TMyRectangle::CopyRectangleFields(const TMyShape &source)
{
    const auto *rect = dynamic_cast<const TMyRectangle *>(&source);
    if (!rect || rect == this)
        return;
    m_AssociateSideResizing = rect->m_AssociateSideResizing;
    m_ShowSideHot = rect->m_ShowSideHot;
    m_ShowHorizontalSideHot = rect->m_ShowHorizontalSideHot;
    m_ShowVerticalSideHot = rect->m_ShowVerticalSideHot;
}

void TMyRectangle::Assign(const TMyShape &source)
{
    TMyShape::Assign(source);
    CopyRectangleFields(source);
}

void TMyRectangle::AssignWithoutRelation(const TMyShape &source)
{
    TMyShape::AssignWithoutRelation(source);
    CopyRectangleFields(source);
}

} // namespace tessal
