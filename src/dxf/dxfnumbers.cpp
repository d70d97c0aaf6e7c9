// SPDX-License-Identifier: MIT
// The text form of DXF numbers, independent of the C and Qt locales.
#include <tessal/dxf/dxfnumbers.h>

#include <QString>

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <string>

namespace tessal::Dxf {

namespace {

// The digits (without dot or trailing zeros) and the decimal exponent of |value| rounded to
// 15 significant digits: value = 0.d1d2d3... x 10^(exponent + 1).
struct TDigits
{
    std::string Digits;
    int Exponent = 0;
};

TDigits Decompose(double magnitude)
{
    // to_chars never consults the locale.
    char buffer[64];
    const auto result =
        std::to_chars(buffer, buffer + sizeof buffer, magnitude, std::chars_format::scientific, 14);
    const std::string text(buffer, result.ptr);
    const std::size_t e = text.find('e');
    TDigits d;
    d.Exponent = std::atoi(text.c_str() + e + 1);
    for (std::size_t i = 0; i < e; ++i)
        if (text[i] != '.')
            d.Digits.push_back(text[i]);
    while (d.Digits.size() > 1 && d.Digits.back() == '0')
        d.Digits.pop_back();
    return d;
}

std::string Fixed(const TDigits &d)
{
    const int n = int(d.Digits.size());
    if (d.Exponent < 0)
        return "0." + std::string(std::size_t(-d.Exponent - 1), '0') + d.Digits;
    if (d.Exponent + 1 >= n)
        return d.Digits + std::string(std::size_t(d.Exponent + 1 - n), '0');
    return d.Digits.substr(0, std::size_t(d.Exponent + 1)) + "." +
           d.Digits.substr(std::size_t(d.Exponent + 1));
}

std::string Scientific(const TDigits &d)
{
    std::string s = d.Digits.substr(0, 1);
    if (d.Digits.size() > 1)
        s += "." + d.Digits.substr(1);
    return s + "E" + std::to_string(d.Exponent);
}

} // namespace

QByteArray FormatNumber(double value)
{
    if (!std::isfinite(value))
        return std::isnan(value) ? QByteArray("NAN") : QByteArray(value > 0 ? "INF" : "-INF");
    if (value == 0)
        return QByteArray("0");
    const TDigits d = Decompose(std::fabs(value));
    const bool plain = d.Exponent >= -5 && d.Exponent < 15;
    const std::string body = plain ? Fixed(d) : Scientific(d);
    return QByteArray::fromStdString(value < 0 ? "-" + body : body);
}

QByteArray EscapeText(const QString &text)
{
    QByteArray out;
    out.reserve(text.size());
    for (const QChar c : text) {
        const char16_t u = c.unicode();
        if (u < 0x20 || u == 0x7F)
            out += ' ';
        else if (u < 0x80)
            out += char(u);
        else
            out += "\\U+" + QByteArray::number(u, 16).toUpper().rightJustified(4, '0');
    }
    return out;
}

} // namespace tessal::Dxf
