// SPDX-License-Identifier: MIT
// TMyText layout: where the lines break and where each one sits in the box.
//
// Every decision is taken in document units, with the font measured at its own size (as at
// zoom 1), and the result is only then scaled by the zoom. The hinted glyphs of a zoomed font
// are not exactly zoom times as wide or as high as at zoom 1, so measuring them instead would
// re-wrap a paragraph, or move its lines against the box, each time the user zooms, and print
// otherwise than the screen shows. Only the drawing of the glyphs uses the zoomed font.
#include <tessal/geometry/geometry.h>
#include <tessal/shapes/text.h>

namespace tessal {

namespace {

// The inner margin between the text and the sides, in document units.
constexpr double TextMargin = 2;

} // namespace

TMyText::TFrame TMyText::UprightFrame() const
{
    TFrame f;
    f.Centre = GetCenterPoint();
    std::vector<TMyPoint> upright;
    for (std::int32_t i = 0; i < 4; ++i)
        upright.push_back(RotateAPoint(GetPoint(i), f.Centre, -Angle()));
    const TMyRect box = GetPointsLTRB(upright);
    f.Left = box.Left;
    f.Top = box.Top;
    f.Right = box.Right;
    f.Bottom = box.Bottom;
    return f;
}

std::int32_t TMyText::LayoutWidth(TCanvas &canvas, const QString &text) const
{
    return GetTextWidthHeight(canvas, text, Font(), 1, 0).X;
}

QStringList TMyText::WrapLine(TCanvas &canvas, const QString &line, double room) const
{
    auto fits = [&](const QString &s) { return LayoutWidth(canvas, s) <= room; };
    if (!m_WordWrap || fits(line))
        return {line};
    QStringList out;
    QString current;
    for (const QString &word : line.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        const QString joined = current.isEmpty() ? word : current + QLatin1Char(' ') + word;
        if (fits(joined)) {
            current = joined;
            continue;
        }
        if (!current.isEmpty())
            out << current;
        current = word;
        // A word that cannot fit on a line of its own is cut, keeping at least one character
        // per line so that the loop always advances.
        while (current.size() > 1 && !fits(current)) {
            qsizetype keep = current.size() - 1;
            while (keep > 1 && !fits(current.left(keep)))
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
    const double room = f.Right - f.Left - 2 * TextMargin;
    QStringList out;
    for (const QString &line : m_Lines)
        out << WrapLine(canvas, line, room);
    return out;
}

double TMyText::BlockTop(const TFrame &f, double blockHeight) const
{
    switch (m_VAlignment) {
    case TVAlignment::vaCenter:
        return f.Top + RoundEven((f.Bottom - f.Top - blockHeight) / 2);
    case TVAlignment::vaBottom:
        return f.Bottom - TextMargin - blockHeight;
    default:
        return f.Top + TextMargin;
    }
}

double TMyText::LineLeft(const TFrame &f, std::int32_t width) const
{
    switch (m_HAlignment) {
    case TAlignment::taRightJustify:
        return f.Right - TextMargin - width;
    case TAlignment::taCenter:
        return f.Left + RoundEven((f.Right - f.Left - width) / 2);
    default:
        return f.Left + TextMargin;
    }
}

std::vector<TMyText::TPlacedLine> TMyText::PlacedLines(TCanvas &canvas) const
{
    const QStringList lines = LaidOutLines(canvas);
    std::vector<TPlacedLine> placed;
    if (lines.isEmpty())
        return placed;
    const TFrame f = UprightFrame();
    // One height for every line (the font's cell), so that empty lines keep their place.
    const std::int32_t lineHeight = GetTextLineHeight(canvas, Font(), 1);
    double y = BlockTop(f, double(lineHeight) * lines.size());
    const double z = Zoom();
    const TMyPoint centre = ZoomedValuePt(f.Centre);
    const bool measured = m_HAlignment != TAlignment::taLeftJustify;
    for (const QString &line : lines) {
        const std::int32_t width = measured ? LayoutWidth(canvas, line) : 0;
        const TMyPoint topLeft{float(LineLeft(f, width) * z), float(y * z)};
        // The line's top-left corner is turned into place; the glyphs turn about it.
        placed.push_back({line, RotateAPoint(topLeft, centre, Angle()), width});
        y += lineHeight;
    }
    return placed;
}

} // namespace tessal
