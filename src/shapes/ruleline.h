// SPDX-License-Identifier: MIT
// TMyRuleLine: a measuring line that shows its length.
#pragma once

#include <tessal/shapes/line.h>

namespace tessal {

// A line whose info text is its length in the host's unit, kept up to date when an end is
// moved. UserInfo is an application text shown instead of the length while ShowUserInfo
// is on. The setters store and ask for a repaint.
class TMyRuleLine : public TMyLine
{
    Q_GADGET
    Q_PROPERTY(bool ShowUserInfo READ ShowUserInfo WRITE SetShowUserInfo)
    Q_PROPERTY(tessal::ShapeEnums::TTickStyle TickStyle READ TickStyle WRITE SetTickStyle)
    Q_PROPERTY(QString UserInfo READ UserInfo WRITE SetUserInfo)

public:
    using TMyLine::TMyLine;

    const QMetaObject *MetaObject() const override { return &staticMetaObject; }
    QString ClassName() const override { return QStringLiteral("TMyRuleLine"); }

    // Also turns Angle to the first segment and refreshes the length text.
    void SizeChangeValue(TMyPoint from, TMyPoint to) override;

    void Assign(const TMyShape &source) override;
    void AssignWithoutRelation(const TMyShape &source) override;

    bool ShowUserInfo() const { return m_ShowUserInfo; }
    void SetShowUserInfo(bool on);
    TTickStyle TickStyle() const { return m_TickStyle; }
    void SetTickStyle(TTickStyle style);
    const QString &UserInfo() const { return m_UserInfo; }
    void SetUserInfo(const QString &text);

private:
    void CopyRuleFields(const TMyShape &source);

    bool m_ShowUserInfo = false;
    TTickStyle m_TickStyle = TTickStyle::tsBoth;
    QString m_UserInfo;
};

} // namespace tessal
