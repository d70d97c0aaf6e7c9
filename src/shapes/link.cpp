// SPDX-License-Identifier: MIT
// TMyLinkLine and TMyLinkPoint: construction, copying and the connector's drawing style.
#include <tessal/shapes/link.h>

namespace tessal {

// ---- TMyLinkLine ----

TMyLinkLine::TMyLinkLine(TShapeHost *host)
    : TMyLine(host)
    , m_LinkLineDrawStyle(host->LinkLineDrawStyle())
{}

void TMyLinkLine::CopyLinkFields(const TMyShape &source)
{
    const auto *link = dynamic_cast<const TMyLinkLine *>(&source);
    if (!link || link == this)
        return;
    m_StartSpNo = link->m_StartSpNo;
    m_StartSpPtId = link->m_StartSpPtId;
    m_EndSpNo = link->m_EndSpNo;
    m_EndSpPtId = link->m_EndSpPtId;
    m_LinkLineDrawStyle = link->m_LinkLineDrawStyle;
    m_Reroute = true;
}

// The bindings are relations like the group members: a full copy takes them, a copy
// without relations starts free at both ends.
void TMyLinkLine::Assign(const TMyShape &source)
{
    TMyLine::Assign(source);
    CopyLinkFields(source);
}

void TMyLinkLine::AssignWithoutRelation(const TMyShape &source)
{
    TMyLine::AssignWithoutRelation(source);
    if (const auto *link = dynamic_cast<const TMyLinkLine *>(&source); link && link != this) {
        m_LinkLineDrawStyle = link->m_LinkLineDrawStyle;
        m_Reroute = true;
    }
}

void TMyLinkLine::SetLinkLineDrawStyle(TLinkLineDrawStyle style)
{
    if (style == m_LinkLineDrawStyle)
        return;
    if (style == TLinkLineDrawStyle::lldsFree) {
        // A straight connector is its two ends: the route's corners are dropped.
        if (!Points().empty()) {
            const TMyPoint first = Points().front();
            const TMyPoint last = Points().back();
            Points() = {first, last};
        }
    } else {
        m_Reroute = true;
    }
    m_LinkLineDrawStyle = style;
}

// ---- TMyLinkPoint ----

TMyLinkPoint::TMyLinkPoint(TShapeHost *host)
    : TMyRectangle(host)
{}

void TMyLinkPoint::Assign(const TMyShape &source)
{
    TMyRectangle::Assign(source);
    if (const auto *point = dynamic_cast<const TMyLinkPoint *>(&source); point && point != this)
        m_Size = point->m_Size;
}

void TMyLinkPoint::AssignWithoutRelation(const TMyShape &source)
{
    TMyRectangle::AssignWithoutRelation(source);
    if (const auto *point = dynamic_cast<const TMyLinkPoint *>(&source); point && point != this)
        m_Size = point->m_Size;
}

} // namespace tessal
