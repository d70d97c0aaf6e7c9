// SPDX-License-Identifier: GPL-2.0-or-later
// A file's lines read piece by piece.
#include <tessal/dxf/import/dxflines_p.h>

#include <QIODevice>

#include <algorithm>
#include <cstring>

namespace tessal::DxfImport {

TLineWindow::TLineWindow(QIODevice &device, qsizetype window)
    : m_Device(device)
    , m_Window(std::max<qsizetype>(window, 1))
    , m_Buffer(std::size_t(m_Window) * 2)
{}

bool TLineWindow::Next(std::string_view &line)
{
    while (!m_Done) {
        const char *at = m_Buffer.data() + m_At;
        // A long line is searched once, not again after each read of it.
        const qsizetype from = std::max(m_At, m_Searched);
        const auto *newline = static_cast<const char *>(
            std::memchr(m_Buffer.data() + from, '\n', std::size_t(m_End - from)));
        if (!newline)
            m_Searched = m_End;
        if (newline || m_DeviceEnd) {
            const qsizetype end = newline ? qsizetype(newline - m_Buffer.data()) + 1 : m_End;
            line = {at, std::size_t(end - m_At)};
            m_Previous = m_Last;
            m_Last = m_At;
            m_At = end;
            m_Done = !newline;
            return true;
        }
        if (!Fill())
            m_Done = true;
    }
    return false;
}

// Moves the lines still needed to the front of the buffer and reads on after them; false
// on a read error.
bool TLineWindow::Fill()
{
    std::copy(m_Buffer.begin() + m_Last, m_Buffer.begin() + m_End, m_Buffer.begin());
    m_At -= m_Last;
    m_End -= m_Last;
    m_Searched -= m_Last;
    m_Previous = m_Last = 0;
    if (m_End + m_Window > qsizetype(m_Buffer.size()))
        m_Buffer.resize(std::max(m_Buffer.size() * 2, std::size_t(m_End + m_Window)));
    const qint64 read = m_Device.read(m_Buffer.data() + m_End, m_Window);
    if (read < 0) {
        m_Error = m_Device.errorString();
        return false;
    }
    m_End += qsizetype(read);
    m_DeviceEnd = read == 0;
    return true;
}

} // namespace tessal::DxfImport
