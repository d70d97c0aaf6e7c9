// SPDX-License-Identifier: GPL-2.0-or-later
// A file's lines read piece by piece, so that reading a file takes memory by its longest
// line, not by its size.
#pragma once

#include <QString>
#include <QtGlobal>

#include <string_view>
#include <vector>

class QIODevice;

namespace tessal::DxfImport {

// Bytes read from the file at a time: large enough that reading costs little, small beside
// any drawing worth reading piecewise.
constexpr qsizetype DefaultWindow = qsizetype(4) << 20;

// The lines of a device from its current position, read a window at a time. A file with n
// line ends has n + 1 lines: the last one is what follows the last line end, maybe nothing.
class TLineWindow
{
public:
    // window: the most bytes one read asks for. The buffer holds whole lines: it grows when
    // the line being read and the one before it do not fit.
    TLineWindow(QIODevice &device, qsizetype window);

    // The next line, its '\n' included when it has one, valid until the next call. False after
    // the last line and on a read error.
    bool Next(std::string_view &line);
    // The line handed out before the last one, which lies directly before it in memory. Taken
    // anew after each call of Next: a window that grows moves its lines.
    std::string_view Previous() const
    {
        return {m_Buffer.data() + m_Previous, std::size_t(m_Last - m_Previous)};
    }
    // Empty, or why the device could not be read.
    const QString &Error() const { return m_Error; }

private:
    bool Fill();

    QIODevice &m_Device;
    const qsizetype m_Window;
    std::vector<char> m_Buffer;
    qsizetype m_Previous = 0; // start of the line handed out before the last one
    qsizetype m_Last = 0;     // start of the line handed out last: kept when the window moves
    qsizetype m_At = 0;       // start of the next line
    qsizetype m_End = 0;      // end of the bytes read
    qsizetype m_Searched = 0; // no line end from the next line's start up to here
    bool m_DeviceEnd = false;
    bool m_Done = false;
    QString m_Error;
};

} // namespace tessal::DxfImport
