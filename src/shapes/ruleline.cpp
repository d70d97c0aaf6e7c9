// SPDX-License-Identifier: MIT
// TMyRuleLine: the measuring line's settings, copying and its resize bookkeeping.
#include <tessal/geometry/geometry.h>
#include <tessal/shapes/ruleline.h>

#include <cmath>
#include <numbers>

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

void TMyRuleLine::CopyRuleFields(const TMyShape &source)
{
    const auto *rule = dynamic_cast<const TMyRuleLine *>(&source);
    if (!rule || rule == this)
        return;
    m_ShowUserInfo = rule->m_ShowUserInfo;
    m_TickStyle = rule->m_TickStyle;
    m_UserInfo = rule->m_UserInfo;
}

void TMyRuleLine::Assign(const TMyShape &source)
{
    TMyLine::Assign(source);
    CopyRuleFields(source);
}

void TMyRuleLine::AssignWithoutRelation(const TMyShape &source)
{
    TMyLine::AssignWithoutRelation(source);
    CopyRuleFields(source);
}

// The angle here is the bare arctangent of the first segment (within +-pi/2), unlike the
// full-circle direction that Draw gives a line.
void TMyRuleLine::SizeChangeValue(TMyPoint from, TMyPoint to)
{
    TMyLine::SizeChangeValue(from, to);
    if (GetPointsCount() < 2)
        return;
    const TMyPoint p0 = GetPoint(0);
    const TMyPoint p1 = GetPoint(1);
    const double angle = p0.X == p1.X ? std::numbers::pi / 2
                                      : std::atan((double(p0.Y) - p1.Y) / (double(p0.X) - p1.X));
    SetAngleValue(float(angle));
    SetInfo(GetLengthByUnit(MyPtToPt(GetPointInZoom(1)), MyPtToPt(GetPointInZoom(0))).trimmed());
}

void TMyRuleLine::SetShowUserInfo(bool on)
{
    StoreAndRepaint(m_ShowUserInfo, on, Host());
}

void TMyRuleLine::SetTickStyle(TTickStyle style)
{
    StoreAndRepaint(m_TickStyle, style, Host());
}

void TMyRuleLine::SetUserInfo(const QString &text)
{
    StoreAndRepaint(m_UserInfo, text, Host());
}

} // namespace tessal
