// SPDX-License-Identifier: GPL-2.0-or-later
// A pass over a DXF file before it is parsed, and the file's lines as the parser is to see them.
#pragma once

#include <tessal/dxf/import/dxflines_p.h>

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

class QIODevice;

namespace tessal::DxfImport {

// What the start of a file says it is.
enum class TFileKind { AsciiDxf, BinaryDxf, NotDxf };

// What a first pass over the file finds, keeping nothing of the file itself.
struct TPrescan
{
    TFileKind Kind = TFileKind::NotDxf;
    qint64 Lines = 0; // line ends + 1
    qint64 Bytes = 0;
    // Types of the entities in the ENTITIES and BLOCKS sections that the import does not know.
    std::map<std::string, std::int64_t> Unknown;
    // Whether a count value breaks the rule TSafeLines applies (so that lines change).
    bool CountsReplaced = false;
    QString Error; // why the file could not be read
};

// Reads the device from its current position to its end; stops early when the file is no
// ASCII DXF.
TPrescan Prescan(QIODevice &device, qsizetype window);

// The file's lines with every count value (group codes 70-79 and 90-99) that exceeds the
// number of lines from its group on, or is no number, replaced by that number: no valid file
// needs more, and the parser allocates by these counts. Lines pair up from the first, a
// group code then its value; a line that is not replaced is handed on as it is in the file.
class TSafeLines
{
public:
    // lines: the file's line count, as Prescan found it.
    TSafeLines(QIODevice &device, qsizetype window, qint64 lines);
    // The next line as TLineWindow hands it on, or its replacement.
    bool Next(std::string_view &line);
    // Whether the last line handed on is a replacement (not in the window).
    bool Replaced() const { return m_Replaced; }
    // The file's line before the last one handed on (see TLineWindow::Previous).
    std::string_view Previous() const { return m_Lines.Previous(); }
    qint64 LinesRead() const { return m_Index; }
    qint64 BytesRead() const { return m_Bytes; }
    const QString &Error() const { return m_Lines.Error(); }

private:
    TLineWindow m_Lines;
    const qint64 m_Count;
    qint64 m_Index = 0;
    qint64 m_Bytes = 0;
    int m_Code = -1; // of the group whose value comes next
    bool m_Replaced = false;
    std::string m_Replacement;
};

// The size and the last bytes (up to 64) of the file as the parser is to see it, that is with
// its counts replaced. The device is read from start.
struct TSafeEnd
{
    qint64 Bytes = 0;
    QByteArray Tail;
    QString Error;
};
TSafeEnd SafeEnd(QIODevice &device, qint64 start, qsizetype window, const TPrescan &scan);

} // namespace tessal::DxfImport
