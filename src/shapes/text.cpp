// SPDX-License-Identifier: MIT
// TMyText: the text settings, their setters and copying.
#include <tessal/shapes/text.h>

namespace tessal {

namespace {

template <typename T>
void StoreAndRepaint(T &field, const T &value, TShapeHost *host)
{
    if (field == value)
        return;
    field = value;
    host->RequestRepaint();
}

} // namespace

void TMyText::CopyTextFields(const TMyShape &source)
{
    const auto *text = dynamic_cast<const TMyText *>(&source);
    if (!text || text == this)
        return;
    m_IsBorder = text->m_IsBorder;
    m_IsSolid = text->m_IsSolid;
    m_Lines = text->m_Lines;
    m_VAlignment = text->m_VAlignment;
    m_HAlignment = text->m_HAlignment;
    m_WordWrap = text->m_WordWrap;
}

void TMyText::Assign(const TMyShape &source)
{
    TMyRectangle::Assign(source);
    CopyTextFields(source);
}

void TMyText::AssignWithoutRelation(const TMyShape &source)
{
    TMyRectangle::AssignWithoutRelation(source);
    CopyTextFields(source);
}

void TMyText::SetIsBorder(bool on)
{
    StoreAndRepaint(m_IsBorder, on, Host());
}

void TMyText::SetIsSolid(bool on)
{
    StoreAndRepaint(m_IsSolid, on, Host());
}

void TMyText::SetLines(const QStringList &lines)
{
    StoreAndRepaint(m_Lines, lines, Host());
}

void TMyText::SetVAlignment(TVAlignment alignment)
{
    StoreAndRepaint(m_VAlignment, alignment, Host());
}

void TMyText::SetHAlignment(TAlignment alignment)
{
    StoreAndRepaint(m_HAlignment, alignment, Host());
}

void TMyText::SetWordWrap(bool on)
{
    StoreAndRepaint(m_WordWrap, on, Host());
}

} // namespace tessal
