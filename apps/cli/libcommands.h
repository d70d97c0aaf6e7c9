// SPDX-License-Identifier: MIT
// tessal-cli lib: listing, dumping and upgrading shape library files.
#pragma once

#include "cli.h"
#include "json.h"

namespace tessal {
class TLibManager;
}

namespace tessal::Cli {

// Loads a library whose tag the readers know; false with a one-line reason otherwise (the
// oldest family, which nothing reads beyond its tag, included).
bool LoadLibrary(TLibManager &library, const QString &fileName, QString &error);

// The entry's name, nominal size, user data, the link points of its link point shapes and
// its shapes as the drawing dump writes them.
bool EntryJson(TLibManager &library, const QString &name, TJson &json, QString &error);

// ARGUMENTS after "lib": list LIBFILE | dump LIBFILE NAME | upgrade LIBFILE [OUT].
int RunLib(const QStringList &args, TIo io);

} // namespace tessal::Cli
