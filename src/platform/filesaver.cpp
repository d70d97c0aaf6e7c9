// SPDX-License-Identifier: MIT
// Whole-file saves through a temporary file, with the system's reason on failure.
#include "filesaver_p.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <csignal>
#include <ctime>

namespace tessal::detail {

namespace {

// While alive, a write past the process's file-size limit fails with EFBIG instead of
// raising SIGXFSZ, whose default action ends the program. The signal is blocked for this
// thread only, and one raised meanwhile is taken off the pending set before unblocking.
class FileSizeSignalHold
{
public:
    FileSizeSignalHold()
    {
        sigset_t set;
        sigemptyset(&set);
        sigaddset(&set, SIGXFSZ);
        pthread_sigmask(SIG_BLOCK, &set, &m_Previous);
    }
    ~FileSizeSignalHold()
    {
        sigset_t pending;
        sigemptyset(&pending);
        if (sigpending(&pending) == 0 && sigismember(&pending, SIGXFSZ) == 1) {
            sigset_t set;
            sigemptyset(&set);
            sigaddset(&set, SIGXFSZ);
            const timespec none = {0, 0};
            sigtimedwait(&set, nullptr, &none);
        }
        pthread_sigmask(SIG_SETMASK, &m_Previous, nullptr);
    }
    FileSizeSignalHold(const FileSizeSignalHold &) = delete;
    FileSizeSignalHold &operator=(const FileSizeSignalHold &) = delete;

private:
    sigset_t m_Previous;
};

// A write that stops part-way (a file-size limit, a disk filling up) leaves only a vague
// error behind; writing out the rest once more lets the system say why.
QString Reason(const QString &fileName, QFileDevice &file, const QString &fallback)
{
    if (file.error() == QFileDevice::NoError)
        return QStringLiteral("cannot save %1: %2").arg(fileName, fallback);
    QString why = file.errorString();
    if (file.isOpen()) {
        file.unsetError();
        if (!file.flush() && file.error() != QFileDevice::NoError)
            why = file.errorString();
    }
    return QStringLiteral("cannot save %1: %2").arg(fileName, why);
}

// Devices and pipes have no old contents to keep, and replacing them would be wrong.
bool WriteInPlace(const QString &fileName, const std::function<bool(QIODevice &)> &write,
                  QString &reason)
{
    QFile file(fileName);
    const bool ok =
        file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && write(file) && file.flush();
    if (!ok)
        reason = Reason(fileName, file, QStringLiteral("writing failed"));
    return ok;
}

} // namespace

bool SaveWholeFile(const QString &fileName, const std::function<bool(QIODevice &)> &write,
                   QString &reason)
{
    const FileSizeSignalHold hold;
    const QFileInfo info(fileName);
    if (info.exists() && !info.isFile() && !info.isDir())
        return WriteInPlace(fileName, write, reason);
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly)) {
        reason = Reason(fileName, file, QStringLiteral("cannot create it"));
        return false;
    }
    // The buffer is flushed here: commit() would rename the temporary file over the old one
    // even when writing out its buffer failed (a full disk or a file-size limit).
    if (!write(file) || !file.flush() || file.error() != QFileDevice::NoError) {
        reason = Reason(fileName, file, QStringLiteral("writing failed"));
        file.cancelWriting();
        return false;
    }
    if (!file.commit()) {
        reason = Reason(fileName, file, QStringLiteral("writing failed"));
        return false;
    }
    return true;
}

} // namespace tessal::detail
