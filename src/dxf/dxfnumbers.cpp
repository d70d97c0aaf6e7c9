// SPDX-License-Identifier: MIT
// The text form of DXF numbers, independent of the C and Qt locales.
#include <tessal/dxf/dxfnumbers.h>

#include <QString>

#include <charconv>
#include <cmath>
#include <cstring>

namespace tessal::Dxf {

namespace {

char *Copy(char *out, const char *from, std::size_t n)
{
    std::memcpy(out, from, n);
    return out + n;
}

char *Zeros(char *out, int n)
{
    for (int i = 0; i < n; ++i)
        *out++ = '0';
    return out;
}

} // namespace

std::size_t WriteNumber(char *out, double value)
{
    if (!std::isfinite(value)) {
        const char *text = std::isnan(value) ? "NAN" : value > 0 ? "INF" : "-INF";
        return std::size_t(Copy(out, text, std::strlen(text)) - out);
    }
    if (value == 0) {
        *out = '0';
        return 1;
    }
    char *o = out;
    if (value < 0)
        *o++ = '-';
    // The digits rounded to 15 significant ones, and the decimal exponent: |value| is
    // d.ddd... x 10^exponent. to_chars never consults the locale.
    char buffer[40];
    const char *end = std::to_chars(buffer, buffer + sizeof buffer, std::fabs(value),
                                    std::chars_format::scientific, 14)
                          .ptr;
    char digits[16];
    int n = 0;
    const char *p = buffer;
    for (; p < end && *p != 'e'; ++p)
        if (*p != '.' && n < 16)
            digits[n++] = *p;
    int exponent = 0;
    if (p + 1 < end)
        std::from_chars(p + 1 + (p[1] == '+'), end, exponent);
    while (n > 1 && digits[n - 1] == '0')
        --n;
    if (exponent < -5 || exponent >= 15) {
        // Mantissa, "E" and the exponent without padding.
        *o++ = digits[0];
        if (n > 1) {
            *o++ = '.';
            o = Copy(o, digits + 1, std::size_t(n - 1));
        }
        *o++ = 'E';
        return std::size_t(std::to_chars(o, o + 8, exponent).ptr - out);
    }
    if (exponent < 0) {
        o = Copy(o, "0.", 2);
        o = Zeros(o, -exponent - 1);
        o = Copy(o, digits, std::size_t(n));
    } else if (exponent + 1 >= n) {
        o = Copy(o, digits, std::size_t(n));
        o = Zeros(o, exponent + 1 - n);
    } else {
        o = Copy(o, digits, std::size_t(exponent + 1));
        *o++ = '.';
        o = Copy(o, digits + exponent + 1, std::size_t(n - exponent - 1));
    }
    return std::size_t(o - out);
}

QByteArray FormatNumber(double value)
{
    char text[MaxNumberLength];
    return QByteArray(text, qsizetype(WriteNumber(text, value)));
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
