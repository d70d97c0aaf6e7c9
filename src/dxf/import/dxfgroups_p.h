// SPDX-License-Identifier: GPL-2.0-or-later
// The groups of a DXF file as the parser reads them, taken from the file piece by piece.
#pragma once

#include <tessal/dxf/import/dxfprescan_p.h>

#include <string>
#include <string_view>

namespace tessal::DxfImport {

// What a file cut short gets at its end, so that its last entity is handed on too.
inline constexpr std::string_view AddedEnd = "\n0\nEOF\n";

// The safe lines (see TSafeLines) taken in pairs: a group code and its value. The code is
// read as strtol reads it (blanks around it ignored, 0 when it is no number); the value
// loses only its line end, since blanks belong to texts and names. A group needs a line end
// after its code and something after that. With addEnd, AddedEnd follows the file's last
// line.
class TGroupStream
{
public:
    TGroupStream(QIODevice &device, qsizetype window, qint64 lines, bool addEnd);
    // The next group; false when no group is left or the file could not be read (Error).
    bool Next();
    int Code() const { return m_Code; }
    std::string_view Value() const { return m_Value; }
    // The group's two lines, line ends included, as the parser is to read them.
    std::string_view Group() const { return m_Group; }
    // Bytes of the groups so far, replaced counts and the added end counted as they are.
    qint64 Offset() const { return m_Offset; }
    const TSafeLines &Lines() const { return m_Lines; }
    const QString &Error() const { return m_Lines.Error(); }

private:
    bool NextLine(std::string_view &line, bool &inWindow);

    TSafeLines m_Lines;
    const bool m_AddEnd;
    int m_Added = -1; // lines of the added end handed on, -1 before it
    std::string m_LastLine;
    std::string m_Scratch;
    std::string_view m_Group;
    std::string_view m_Value;
    int m_Code = 0;
    qint64 m_Offset = 0;
};

} // namespace tessal::DxfImport
