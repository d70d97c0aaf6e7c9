// SPDX-License-Identifier: GPL-2.0-or-later
// The groups of a DXF file as the parser reads them.
#include <tessal/dxf/import/dxfdirect_p.h>
#include <tessal/dxf/import/dxfgroups_p.h>

namespace tessal::DxfImport {

namespace {

std::string_view WithoutLineEnd(std::string_view line)
{
    while (!line.empty() && (line.back() == '\r' || line.back() == '\n'))
        line.remove_suffix(1);
    return line;
}

} // namespace

TGroupStream::TGroupStream(QIODevice &device, qsizetype window, qint64 lines, bool addEnd)
    : m_Lines(device, window, lines)
    , m_AddEnd(addEnd)
{}

// The next line; inWindow when it is the file's own line, directly after the one before.
bool TGroupStream::NextLine(std::string_view &line, bool &inWindow)
{
    if (m_Added < 0) {
        if (!m_Lines.Next(line))
            return false;
        inWindow = !m_Lines.Replaced();
        if (!m_AddEnd || line.ends_with('\n'))
            return true;
        // The file's last line, which the added end's line end ends.
        m_Added = 0;
        m_LastLine.assign(line);
        m_LastLine += AddedEnd.front();
        line = m_LastLine;
        inWindow = false;
        return true;
    }
    static constexpr std::string_view added[] = {"0\n", "EOF\n", ""};
    if (m_Added >= int(std::size(added)))
        return false;
    line = added[m_Added++];
    inWindow = false;
    return true;
}

bool TGroupStream::Next()
{
    std::string_view code, value;
    bool codeInWindow = false, valueInWindow = false;
    if (!NextLine(code, codeInWindow) || !code.ends_with('\n') || !NextLine(value, valueInWindow) ||
        value.empty())
        return false;
    // A window that grew while the value was read has moved the code's line.
    if (codeInWindow)
        code = m_Lines.Previous();
    if (codeInWindow && valueInWindow) {
        m_Group = {code.data(), code.size() + value.size()};
    } else {
        m_Scratch.assign(code);
        m_Scratch += value;
        m_Group = m_Scratch;
    }
    m_Offset += qint64(m_Group.size());
    m_Code = ToInt(WithoutLineEnd(code));
    m_Value = WithoutLineEnd(m_Group.substr(code.size()));
    return true;
}

} // namespace tessal::DxfImport
