// SPDX-License-Identifier: GPL-2.0-or-later
// One pass over a DXF file before dxflib parses it: sane counts, unknown entity types.
#include <tessal/dxf/import/dxfprescan_p.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <string_view>

namespace tessal::DxfImport {

namespace {

bool IsKnownEntity(const QByteArray &type)
{
    static const char *const known[] = {
        "LINE",     "POINT",  "CIRCLE",  "ARC",    "ELLIPSE",       "LWPOLYLINE",
        "POLYLINE", "VERTEX", "SEQEND",  "SPLINE", "SOLID",         "TRACE",
        "3DFACE",   "TEXT",   "MTEXT",   "HATCH",  "INSERT",        "XLINE",
        "RAY",      "IMAGE",  "ATTRIB",  "LEADER", "DIMENSION",     "BLOCK",
        "ENDBLK",   "ENDSEC", "SECTION", "EOF",    "ARCALIGNEDTEXT"};
    for (const char *k : known)
        if (type == k)
            return true;
    return false;
}

} // namespace

namespace {

// A line's text without surrounding blanks (spaces, tabs, carriage returns), no copy made.
std::string_view Stripped(const char *begin, const char *end)
{
    while (begin < end && (*begin == ' ' || *begin == '\t' || *begin == '\r'))
        ++begin;
    while (end > begin && (end[-1] == ' ' || end[-1] == '\t' || end[-1] == '\r'))
        --end;
    return {begin, std::size_t(end - begin)};
}

} // namespace

QByteArray Prescan(const QByteArray &data, std::map<std::string, std::int64_t> &unknown)
{
    const char *const begin = data.constData();
    const char *const end = begin + data.size();
    const qsizetype lines = std::count(begin, end, '\n') + 1;
    auto lineEnd = [&](const char *from) {
        const void *nl = std::memchr(from, '\n', std::size_t(end - from));
        return nl ? static_cast<const char *>(nl) : end;
    };
    QByteArray out;
    std::string_view section, lastZero;
    const char *copied = begin;
    const char *at = begin;
    for (qsizetype k = 0; k + 1 < lines && at < end; k += 2) {
        const char *codeEnd = lineEnd(at);
        const char *valueStart = std::min(codeEnd + 1, end);
        const char *valueEnd = lineEnd(valueStart);
        const std::string_view codeText = Stripped(at, codeEnd);
        const std::string_view value = Stripped(valueStart, valueEnd);
        at = std::min(valueEnd + 1, end);
        int code = -1;
        std::from_chars(codeText.data(), codeText.data() + codeText.size(), code);
        if (code == 0) {
            lastZero = value;
            if ((section == "ENTITIES" || section == "BLOCKS") &&
                !IsKnownEntity(QByteArray::fromRawData(value.data(), qsizetype(value.size()))))
                ++unknown[std::string(value)];
            continue;
        }
        if (code == 2 && lastZero == "SECTION")
            section = value;
        if (!((code >= 70 && code <= 79) || (code >= 90 && code <= 99)))
            continue;
        long long count = 0;
        const char *first = value.data() + (!value.empty() && value[0] == '+');
        const auto parsed = std::from_chars(first, value.data() + value.size(), count);
        const qsizetype left = lines - k;
        if (parsed.ec == std::errc() && parsed.ptr == value.data() + value.size() &&
            count <= left && count >= -left)
            continue;
        // Too large, too small or no number: the number of lines left instead.
        out.append(copied, valueStart - copied);
        out += QByteArray::number(left);
        copied = valueEnd;
    }
    if (copied == begin)
        return data;
    out.append(copied, end - copied);
    return out;
}

} // namespace tessal::DxfImport
