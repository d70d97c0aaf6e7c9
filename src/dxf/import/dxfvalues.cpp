// SPDX-License-Identifier: GPL-2.0-or-later
// Text and colour values of DXF files as the drawing needs them.
#include <tessal/dxf/import/dxfvalues_p.h>
#include <tessal/platform/codepage.h>

#include <algorithm>
#include <cmath>

namespace tessal::DxfImport {

QString DecodeText(const std::string &bytes, bool textCodes)
{
    const QByteArray raw = QByteArray::fromStdString(bytes);
    QString text = QString::fromUtf8(raw);
    if (text.contains(QChar::ReplacementCharacter))
        text = FromAnsi(raw);
    QString out;
    out.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == QLatin1Char('\\') && i + 6 < text.size() + 0 &&
            (text[i + 1] == QLatin1Char('U') || text[i + 1] == QLatin1Char('u')) &&
            text[i + 2] == QLatin1Char('+')) {
            bool ok = false;
            const uint u = text.mid(i + 3, 4).toUInt(&ok, 16);
            if (ok) {
                out += QChar(char16_t(u));
                i += 6;
                continue;
            }
        }
        if (textCodes && text[i] == QLatin1Char('%') && i + 2 < text.size() &&
            text[i + 1] == QLatin1Char('%')) {
            const QChar code = text[i + 2].toLower();
            const char16_t symbol = code == QLatin1Char('d')   ? u'\u00B0'
                                    : code == QLatin1Char('p') ? u'\u00B1'
                                    : code == QLatin1Char('c') ? u'\u2300'
                                    : code == QLatin1Char('%') ? u'%'
                                                               : 0;
            if (symbol)
                out += QChar(symbol);
            if (symbol || code == QLatin1Char('u') || code == QLatin1Char('o')) {
                i += 2;
                continue;
            }
        }
        out += text[i];
    }
    return out;
}

QString PlainMText(const QString &text)
{
    QString out;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (c == QLatin1Char('{') || c == QLatin1Char('}'))
            continue;
        if (c != QLatin1Char('\\') || i + 1 >= text.size()) {
            out += c;
            continue;
        }
        const QChar code = text[++i];
        switch (code.toLatin1()) {
        case 'P':
            out += QLatin1Char('\n');
            break;
        case '~':
            out += QLatin1Char(' ');
            break;
        case '\\':
        case '{':
        case '}':
            out += code;
            break;
        case 'L':
        case 'l':
        case 'O':
        case 'o':
        case 'K':
        case 'k':
            break;  // underline, overline, strike-through on and off
        case 'S': { // stacked text up to ';': "a^b", "a/b" or "a#b" shown as a/b
            const qsizetype end = text.indexOf(QLatin1Char(';'), i);
            QString stack = text.mid(i + 1, (end < 0 ? text.size() : end) - i - 1);
            stack.replace(QLatin1Char('^'), QLatin1Char('/'))
                .replace(QLatin1Char('#'), QLatin1Char('/'));
            out += stack;
            i = end < 0 ? text.size() : end;
            break;
        }
        case 'U':
            if (i + 5 < text.size() + 0 && text[i + 1] == QLatin1Char('+')) {
                bool ok = false;
                const uint u = text.mid(i + 2, 4).toUInt(&ok, 16);
                if (ok) {
                    out += QChar(char16_t(u));
                    i += 5;
                }
            }
            break;
        default: { // codes with a value up to ';' (font, height, colour, ...)
            const qsizetype end = text.indexOf(QLatin1Char(';'), i);
            i = end < 0 ? text.size() : end;
            break;
        }
        }
    }
    return out;
}

void SetText(TEntity &e, QPointF insert, QPointF align, double height, double degrees,
             std::int32_t h, std::int32_t v, const std::string &bytes)
{
    // Aligned (3), middle (4) and fit (5) texts are placed by their second point like
    // centred ones.
    const bool justified = h != 0 || v != 0;
    e.Points = {justified ? align : insert};
    e.Height = height;
    e.Angle = degrees;
    e.Text = DecodeText(bytes, true);
    e.HAlign = h == 2 ? 2 : (h == 0 ? 0 : 1);
    e.VAlign = h == 4 ? 2 : std::clamp(v, 0, 3);
}

std::uint32_t AciToRgb(std::int32_t aci)
{
    static const std::uint32_t fixed[10] = {0x000000, 0xFF0000, 0xFFFF00, 0x00FF00, 0x00FFFF,
                                            0x0000FF, 0xFF00FF, 0xFFFFFF, 0x808080, 0xC0C0C0};
    static const int greys[6] = {51, 80, 105, 130, 190, 255};
    if (aci < 0 || aci > 255)
        return 0xFFFFFF;
    if (aci < 10)
        return fixed[aci];
    if (aci >= 250) {
        const std::uint32_t g = std::uint32_t(greys[aci - 250]);
        return g << 16 | g << 8 | g;
    }
    // Rows of ten: the hue in 15 degree steps, then five brightnesses, each at full and at
    // half saturation.
    static const double values[5] = {255, 165, 127, 76, 38};
    const double hue = (aci / 10 - 1) * 15.0;
    const int shade = aci % 10;
    double rgb[3];
    for (int c = 0; c < 3; ++c) {
        const double k = std::fmod((c == 0 ? 5 : c == 1 ? 3 : 1) + hue / 60, 6);
        rgb[c] = 1 - std::max(0.0, std::min({k, 4 - k, 1.0}));
        if (shade % 2)
            rgb[c] = (rgb[c] + 1) / 2;
    }
    std::uint32_t out = 0;
    for (double c : rgb)
        out = out << 8 | std::uint32_t(c * values[shade / 2]);
    return out;
}

} // namespace tessal::DxfImport
