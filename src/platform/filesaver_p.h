// SPDX-License-Identifier: MIT
// Writing a whole file so that a failure never costs the file that was there before.
#pragma once

#include <QIODevice>
#include <QString>

#include <functional>

namespace tessal::detail {

// Writes fileName through write, which answers false when it could not write everything.
// A regular file (or a new one) is written to a temporary file that replaces it only when
// complete, so a full disk, a folder without write permission or a file-size limit leaves
// the old file as it was. A device or pipe (/dev/full, /dev/stdout) is written in place,
// never replaced. On failure answers false and sets reason to what the system said; a
// file-size limit gives an error, not the signal that would end the program.
bool SaveWholeFile(const QString &fileName, const std::function<bool(QIODevice &)> &write,
                   QString &reason);

} // namespace tessal::detail
