// SPDX-License-Identifier: MIT
// TMyRuleLine: a measuring line that shows its length.
#pragma once

#include <tessal/shapes/line.h>

#include <vector>

namespace tessal {

// A line whose info text is its length in the host's unit, kept up to date when an end is
// moved. UserInfo is an application text shown instead of the length while ShowUserInfo
// is on. The setters store and ask for a repaint.
//
// Drawn as a line (with its arrow heads) carrying tick marks from point 0 towards point 1:
// one every 10 document pixels, the ticks at 0, 50, 100, ... long, the others short; their
// lengths are in screen pixels, so they stay readable at every zoom. TickStyle puts them
// across the line, on its top side or on its bottom side, as seen with the line running
// from left to right (a vertical line runs downwards, its top side is the right). The label
// (the length, or UserInfo) is drawn upright, centred beside the middle of the first segment
// on the top side, when CaptionShow is on; it replaces the info text.
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
    // The class's part of the stored record, after its parent's.
    void SaveToStream(BinaryStream &stream) const override;
    void LoadFromStream(BinaryStream &stream) override;

    // Also turns Angle to the first segment and refreshes the length text.
    void SizeChangeValue(TMyPoint from, TMyPoint to) override;
    void Draw(TCanvas &canvas) override;

    // Tick spacing in document pixels, every how many ticks one is long, and the tick
    // lengths on each side of the line in screen pixels.
    static constexpr double TickSpacing = 10;
    static constexpr std::int32_t LongTickEvery = 5;
    static constexpr double ShortTick = 4;
    static constexpr double LongTick = 8;

    // The tick marks of the first segment (screen pixels, unrounded), from point 0 on.
    struct TTick
    {
        TMyPoint From, To;
        bool Long = false;
    };
    std::vector<TTick> Ticks() const;
    // What the label shows: UserInfo while ShowUserInfo is on, else the trimmed length.
    QString LabelText();

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
    void DrawLabel(TCanvas &canvas);

    bool m_ShowUserInfo = false;
    TTickStyle m_TickStyle = TTickStyle::tsBoth;
    QString m_UserInfo;
};

} // namespace tessal
