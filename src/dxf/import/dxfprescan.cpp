// SPDX-License-Identifier: GPL-2.0-or-later
// One pass over a DXF file before it is parsed (its kind, its lines, unknown entity types),
// and the rule that replaces count values no file of its length can need.
#include <tessal/dxf/import/dxfprescan_p.h>

#include <QIODevice>

#include <algorithm>
#include <charconv>
#include <optional>

namespace tessal::DxfImport {

namespace {

bool IsKnownEntity(std::string_view type)
{
    static constexpr std::string_view known[] = {
        "LINE",     "POINT",  "CIRCLE",  "ARC",    "ELLIPSE",       "LWPOLYLINE",
        "POLYLINE", "VERTEX", "SEQEND",  "SPLINE", "SOLID",         "TRACE",
        "3DFACE",   "TEXT",   "MTEXT",   "HATCH",  "INSERT",        "XLINE",
        "RAY",      "IMAGE",  "ATTRIB",  "LEADER", "DIMENSION",     "BLOCK",
        "ENDBLK",   "ENDSEC", "SECTION", "EOF",    "ARCALIGNEDTEXT"};
    return std::find(std::begin(known), std::end(known), type) != std::end(known);
}

// A line's text without its line end and surrounding blanks (spaces, tabs, carriage
// returns).
std::string_view Stripped(std::string_view line)
{
    if (!line.empty() && line.back() == '\n')
        line.remove_suffix(1);
    const auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\r'; };
    while (!line.empty() && blank(line.front()))
        line.remove_prefix(1);
    while (!line.empty() && blank(line.back()))
        line.remove_suffix(1);
    return line;
}

// The group code of a code line; -1 when it starts with no number.
int GroupCode(std::string_view line)
{
    const std::string_view text = Stripped(line);
    int code = -1;
    std::from_chars(text.data(), text.data() + text.size(), code);
    return code;
}

bool IsCountCode(int code)
{
    return (code >= 70 && code <= 79) || (code >= 90 && code <= 99);
}

// The size of a count value, or nothing when the value is not a whole number (a plus sign
// may lead).
std::optional<unsigned long long> CountSize(std::string_view line)
{
    const std::string_view value = Stripped(line);
    const char *first = value.data() + (!value.empty() && value[0] == '+');
    const char *last = value.data() + value.size();
    long long count = 0;
    const auto parsed = std::from_chars(first, last, count);
    if (parsed.ec != std::errc() || parsed.ptr != last)
        return std::nullopt;
    return count < 0 ? 0ULL - static_cast<unsigned long long>(count)
                     : static_cast<unsigned long long>(count);
}

// What the start of the file says, when the line (the first line if first) decides it:
// the binary signature, or else the first line that is not blank, which must start with a
// group code of at most six characters.
std::optional<TFileKind> KindFromStart(std::string_view line, bool first)
{
    if (first && line.starts_with("AutoCAD Binary DXF"))
        return TFileKind::BinaryDxf;
    std::size_t i = line.find_first_not_of(" \t\r\n");
    if (i == std::string_view::npos)
        return std::nullopt;
    const std::size_t start = i;
    if (line[i] == '-')
        ++i;
    while (i < line.size() && line[i] >= '0' && line[i] <= '9')
        ++i;
    const bool code = i > start && i - start <= 6 &&
                      (i == line.size() || line[i] == '\r' || line[i] == '\n' || line[i] == ' ');
    return code ? TFileKind::AsciiDxf : TFileKind::NotDxf;
}

// Follows the sections and counts the entities of unknown type in ENTITIES and BLOCKS.
class TCensus
{
public:
    explicit TCensus(std::map<std::string, std::int64_t> &unknown)
        : m_Unknown(unknown)
    {}
    void Group(int code, std::string_view value)
    {
        if (code == 0) {
            m_LastZero = value;
            if ((m_Section == "ENTITIES" || m_Section == "BLOCKS") && !IsKnownEntity(value))
                ++m_Unknown[std::string(value)];
        } else if (code == 2 && m_LastZero == "SECTION") {
            m_Section = value;
        }
    }

private:
    std::map<std::string, std::int64_t> &m_Unknown;
    std::string m_Section, m_LastZero;
};

constexpr qsizetype TailSize = 64;

void KeepTail(QByteArray &tail, std::string_view line)
{
    tail.append(line.data(), qsizetype(line.size()));
    if (tail.size() > 4 * TailSize)
        tail.remove(0, tail.size() - TailSize);
}

} // namespace

TPrescan Prescan(QIODevice &device, qsizetype window)
{
    TPrescan scan;
    TLineWindow lines(device, window);
    TCensus census(scan.Unknown);
    std::optional<TFileKind> kind;
    std::string_view line;
    // The largest line index a count reaches from its group's first line.
    unsigned long long reach = 0;
    while (lines.Next(line)) {
        const qint64 k = scan.Lines++;
        scan.Bytes += qint64(line.size());
        if (!kind) {
            kind = KindFromStart(line, k == 0);
            if (kind && *kind != TFileKind::AsciiDxf)
                break;
        }
        if (k % 2 == 0)
            continue;
        const int code = GroupCode(lines.Previous());
        census.Group(code, Stripped(line));
        if (!IsCountCode(code))
            continue;
        const auto size = CountSize(line);
        scan.CountsReplaced = scan.CountsReplaced || !size;
        reach = std::max(reach, size ? *size + static_cast<unsigned long long>(k - 1) : 0);
    }
    scan.Error = lines.Error();
    scan.Kind = kind.value_or(TFileKind::NotDxf);
    scan.CountsReplaced =
        scan.CountsReplaced || reach > static_cast<unsigned long long>(scan.Lines);
    return scan;
}

TSafeLines::TSafeLines(QIODevice &device, qsizetype window, qint64 lines)
    : m_Lines(device, window)
    , m_Count(lines)
{}

bool TSafeLines::Next(std::string_view &line)
{
    m_Replaced = false;
    if (!m_Lines.Next(line))
        return false;
    const qint64 k = m_Index++;
    m_Bytes += qint64(line.size());
    if (k % 2 == 0) {
        m_Code = GroupCode(line);
        return true;
    }
    if (!IsCountCode(m_Code))
        return true;
    // The lines from the group's code on.
    const qint64 left = m_Count - (k - 1);
    const auto size = CountSize(line);
    if (size && left >= 0 && *size <= static_cast<unsigned long long>(left))
        return true;
    m_Replacement = std::to_string(left);
    if (line.ends_with('\n'))
        m_Replacement += '\n';
    line = m_Replacement;
    m_Replaced = true;
    return true;
}

TSafeEnd SafeEnd(QIODevice &device, qint64 start, qsizetype window, const TPrescan &scan)
{
    TSafeEnd end;
    if (!scan.CountsReplaced) {
        // The lines are the file's own: its end is read where it is.
        end.Bytes = scan.Bytes;
        const qint64 from = std::max<qint64>(0, scan.Bytes - TailSize);
        if (device.seek(start + from))
            end.Tail = device.read(scan.Bytes - from);
        if (end.Tail.size() != scan.Bytes - from)
            end.Error = device.errorString();
        return end;
    }
    if (!device.seek(start)) {
        end.Error = device.errorString();
        return end;
    }
    TSafeLines lines(device, window, scan.Lines);
    std::string_view line;
    while (lines.Next(line)) {
        end.Bytes += qint64(line.size());
        KeepTail(end.Tail, line);
    }
    end.Error = lines.Error();
    end.Tail = end.Tail.right(TailSize);
    return end;
}

} // namespace tessal::DxfImport
