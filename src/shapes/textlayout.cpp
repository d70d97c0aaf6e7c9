// SPDX-License-Identifier: MIT
// TMyText layout: where the lines break and where each one sits in the box.
#include <tessal/geometry/geometry.h>
#include <tessal/shapes/text.h>

namespace tessal {

namespace {

// The inner margin between the text and the sides, in document pixels.
constexpr double TextMargin = 2;

} // namespace

std::int32_t TMyText::Margin() const
{
    return RoundEven(TextMargin * Zoom());
}

TMyText::TFrame TMyText::UprightFrame() const
{
    TFrame f;
    f.Centre = GetCenterPointInZoom();
    std::vector<TMyPoint> upright;
    for (std::int32_t i = 0; i < 4; ++i)
        upright.push_back(RotateAPoint(GetPointInZoom(i), f.Centre, -Angle()));
    const TMyRect box = GetPointsLTRB(upright);
    f.Left = box.Left;
    f.Top = box.Top;
    f.Right = box.Right;
    f.Bottom = box.Bottom;
    return f;
}

QStringList TMyText::WrapLine(TCanvas &canvas, const QString &line, double room) const
{
    const double z = Zoom();
    auto width = [&](const QString &s) { return GetTextWidthHeight(canvas, s, Font(), z, 0).X; };
    if (!m_WordWrap || width(line) <= room)
        return {line};
    QStringList out;
    QString current;
    for (const QString &word : line.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        const QString joined = current.isEmpty() ? word : current + QLatin1Char(' ') + word;
        if (width(joined) <= room) {
            current = joined;
            continue;
        }
        if (!current.isEmpty())
            out << current;
        current = word;
        // A word that cannot fit on a line of its own is cut, keeping at least one character
        // per line so that the loop always advances.
        while (current.size() > 1 && width(current) > room) {
            qsizetype keep = current.size() - 1;
            while (keep > 1 && width(current.left(keep)) > room)
                --keep;
            out << current.left(keep);
            current = current.mid(keep);
        }
    }
    if (!current.isEmpty() || out.isEmpty())
        out << current;
    return out;
}

QStringList TMyText::LaidOutLines(TCanvas &canvas) const
{
    if (GetPointsCount() < 4)
        return m_Lines;
    const TFrame f = UprightFrame();
    const double room = f.Right - f.Left - 2.0 * Margin();
    QStringList out;
    for (const QString &line : m_Lines)
        out << WrapLine(canvas, line, room);
    return out;
}

std::vector<TMyText::TPlacedLine> TMyText::PlacedLines(TCanvas &canvas) const
{
    const QStringList lines = LaidOutLines(canvas);
    std::vector<TPlacedLine> placed;
    if (lines.isEmpty())
        return placed;
    const double z = Zoom();
    const TFrame f = UprightFrame();
    const std::int32_t m = Margin();
    // One height for every line (the font's cell), so that empty lines keep their place.
    const std::int32_t lineHeight = GetTextLineHeight(canvas, Font(), z);
    const double blockHeight = double(lineHeight) * lines.size();
    double y = f.Top + m;
    if (m_VAlignment == TVAlignment::vaCenter)
        y = f.Top + RoundEven((f.Bottom - f.Top - blockHeight) / 2);
    else if (m_VAlignment == TVAlignment::vaBottom)
        y = f.Bottom - m - blockHeight;
    for (const QString &line : lines) {
        double x = f.Left + m;
        if (m_HAlignment != TAlignment::taLeftJustify) {
            const std::int32_t w = GetTextWidthHeight(canvas, line, Font(), z, 0).X;
            x = m_HAlignment == TAlignment::taRightJustify
                    ? f.Right - m - w
                    : f.Left + RoundEven((f.Right - f.Left - w) / 2);
        }
        // The line's top-left corner is turned into place; the glyphs turn about it.
        placed.push_back({line, RotateAPoint({float(x), float(y)}, f.Centre, Angle())});
        y += lineHeight;
    }
    return placed;
}

} // namespace tessal
