// SPDX-License-Identifier: MIT
// TMyElliArc: construction and copying of the arc settings.
#include <tessal/shapes/arc.h>

namespace tessal {

TMyElliArc::TMyElliArc(TShapeHost *host)
    : TMyShape(host)
    , m_ArcMode(host->ArcMode())
{}

void TMyElliArc::CopyArcFields(const TMyShape &source)
{
    const auto *arc = dynamic_cast<const TMyElliArc *>(&source);
    if (!arc || arc == this)
        return;
    m_ArcMode = arc->m_ArcMode;
    m_ArcStyle = arc->m_ArcStyle;
}

void TMyElliArc::Assign(const TMyShape &source)
{
    TMyShape::Assign(source);
    CopyArcFields(source);
}

void TMyElliArc::AssignWithoutRelation(const TMyShape &source)
{
    TMyShape::AssignWithoutRelation(source);
    CopyArcFields(source);
}

} // namespace tessal
