// SPDX-License-Identifier: MIT
// Whole files for tests, written and read in one go.
#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

namespace tessal::test {

// Writes bytes as the whole file; answers whether every byte was written.
inline bool WriteFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
           file.write(bytes) == bytes.size();
}

// The whole file, or "(unreadable)" when it cannot be opened, which equals no real contents.
inline QByteArray ReadFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(unreadable)");
}

} // namespace tessal::test
