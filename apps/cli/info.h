// SPDX-License-Identifier: MIT
// tessal-cli info: a short description of a drawing file.
#pragma once

#include "cli.h"

namespace tessal::Cli {

// Version, page, size, unit, layers with their shape counts (group members included) and
// the number of shapes of each class, one fact a line.
QString DrawingInfo(const TMyCAD &cad);
int RunInfo(const QString &fileName, TIo io);

} // namespace tessal::Cli
