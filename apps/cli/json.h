// SPDX-License-Identifier: MIT
// A small JSON value that keeps its members in insertion order, and its text form.
#pragma once

#include <QString>

#include <cstdint>
#include <utility>
#include <vector>

namespace tessal::Cli {

// QJsonObject sorts its keys; the tool's output lists them in the order a reader of the
// drawing expects (identity first, geometry next, appearance last), so it builds its own.
class TJson
{
public:
    enum class TKind : std::uint8_t { Null, Bool, Integer, Single, Double, String, Array, Object };

    TJson() = default;
    static TJson Bool(bool value);
    static TJson Integer(std::int64_t value);
    // A single-precision value is written with the fewest digits that read back as the
    // same float, so that 0.1f appears as 0.1 rather than 0.10000000149011612.
    static TJson Single(float value);
    static TJson Double(double value);
    static TJson String(const QString &value);
    static TJson Array();
    static TJson Object();

    TKind Kind() const { return m_Kind; }
    // Appends to an array / an object; the value must be of that kind.
    TJson &Append(TJson value);
    TJson &Insert(const QString &key, TJson value);
    bool Contains(const QString &key) const;

    // Indented text with a final newline; non-finite numbers are written as null, since
    // JSON has no spelling for them.
    QByteArray ToText() const;

private:
    bool IsLeaf() const { return m_Kind != TKind::Array && m_Kind != TKind::Object; }
    void Write(QByteArray &out, int indent) const;

    TKind m_Kind = TKind::Null;
    bool m_Bool = false;
    std::int64_t m_Integer = 0;
    double m_Double = 0;
    QString m_String;
    std::vector<TJson> m_Items;
    std::vector<std::pair<QString, TJson>> m_Members;
};

} // namespace tessal::Cli
