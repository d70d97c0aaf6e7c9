// SPDX-License-Identifier: MIT
// The ordered JSON value: construction and indented text with shortest round-trip numbers.
#include "json.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace tessal::Cli {

TJson TJson::Bool(bool value)
{
    TJson j;
    j.m_Kind = TKind::Bool;
    j.m_Bool = value;
    return j;
}

TJson TJson::Integer(std::int64_t value)
{
    TJson j;
    j.m_Kind = TKind::Integer;
    j.m_Integer = value;
    return j;
}

TJson TJson::Single(float value)
{
    TJson j;
    j.m_Kind = TKind::Single;
    j.m_Double = value;
    return j;
}

TJson TJson::Double(double value)
{
    TJson j;
    j.m_Kind = TKind::Double;
    j.m_Double = value;
    return j;
}

TJson TJson::String(const QString &value)
{
    TJson j;
    j.m_Kind = TKind::String;
    j.m_String = value;
    return j;
}

TJson TJson::Array()
{
    TJson j;
    j.m_Kind = TKind::Array;
    return j;
}

TJson TJson::Object()
{
    TJson j;
    j.m_Kind = TKind::Object;
    return j;
}

TJson &TJson::Append(TJson value)
{
    m_Items.push_back(std::move(value));
    return m_Items.back();
}

TJson &TJson::Insert(const QString &key, TJson value)
{
    m_Members.emplace_back(key, std::move(value));
    return m_Members.back().second;
}

bool TJson::Contains(const QString &key) const
{
    return std::any_of(m_Members.begin(), m_Members.end(),
                       [&](const auto &member) { return member.first == key; });
}

QByteArray TJson::ToText() const
{
    QByteArray out;
    Write(out, 0);
    out += '\n';
    return out;
}

namespace {

void WriteString(QByteArray &out, const QString &text)
{
    out += '"';
    for (const char c : text.toUtf8()) {
        switch (c) {
        case '"':
            out += "\\\"";
            break;
        case '\\':
            out += "\\\\";
            break;
        case '\n':
            out += "\\n";
            break;
        case '\r':
            out += "\\r";
            break;
        case '\t':
            out += "\\t";
            break;
        default:
            if (static_cast<unsigned char>(c) < 0x20)
                out += QByteArray("\\u00") + QByteArray::number(int(c), 16).rightJustified(2, '0');
            else
                out += c;
        }
    }
    out += '"';
}

template <typename T>
void WriteNumber(QByteArray &out, T value)
{
    if (!std::isfinite(value)) {
        out += "null";
        return;
    }
    char buffer[64];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    out.append(buffer, result.ptr - buffer);
}

} // namespace

void TJson::Write(QByteArray &out, int indent) const
{
    const QByteArray inner(indent + 2, ' ');
    switch (m_Kind) {
    case TKind::Null:
        out += "null";
        break;
    case TKind::Bool:
        out += m_Bool ? "true" : "false";
        break;
    case TKind::Integer:
        out += QByteArray::number(qlonglong(m_Integer));
        break;
    case TKind::Single:
        WriteNumber(out, float(m_Double));
        break;
    case TKind::Double:
        WriteNumber(out, m_Double);
        break;
    case TKind::String:
        WriteString(out, m_String);
        break;
    case TKind::Array: {
        // Arrays of plain values, points and key/value pairs stay on one line.
        const bool flat = std::all_of(m_Items.begin(), m_Items.end(), [](const TJson &item) {
            return item.IsLeaf() || (item.m_Kind == TKind::Array &&
                                     std::all_of(item.m_Items.begin(), item.m_Items.end(),
                                                 [](const TJson &leaf) { return leaf.IsLeaf(); }));
        });
        out += '[';
        for (std::size_t i = 0; i < m_Items.size(); ++i) {
            if (i)
                out += flat ? ", " : ",";
            if (!flat)
                out += '\n' + inner;
            m_Items[i].Write(out, indent + 2);
        }
        if (!flat && !m_Items.empty())
            out += '\n' + QByteArray(indent, ' ');
        out += ']';
        break;
    }
    case TKind::Object:
        out += '{';
        for (std::size_t i = 0; i < m_Members.size(); ++i) {
            out += i ? ",\n" : "\n";
            out += inner;
            WriteString(out, m_Members[i].first);
            out += ": ";
            m_Members[i].second.Write(out, indent + 2);
        }
        if (!m_Members.empty())
            out += '\n' + QByteArray(indent, ' ');
        out += '}';
        break;
    }
}

} // namespace tessal::Cli
