// SPDX-License-Identifier: GPL-2.0-or-later
// tessal-cli: DXF drawings read through the GPL import library.
#pragma once

#include "cli.h"

namespace tessal::Cli {

// A drawing read from a DXF file; the import report goes to io.Out, a progress line to
// the error stream while a large file is read and that stream is a terminal. Nullptr with
// the reason in error when nothing could be read; a file read in part gives its drawing and
// sets error too.
std::unique_ptr<TMyCAD> LoadDxfDrawing(const QString &fileName, TIo io, QString &error);

} // namespace tessal::Cli
