// SPDX-License-Identifier: GPL-2.0-or-later
// One pass over a DXF file before dxflib parses it.
#pragma once

#include <QByteArray>

#include <cstdint>
#include <map>
#include <string>

namespace tessal::DxfImport {

// One pass over the file before parsing. Answers the data with every count value (group
// codes 70-79 and 90-99) that exceeds the number of lines after it lowered to that number:
// no valid file needs more, and the parser allocates by these counts. Counts the entities
// of the ENTITIES and BLOCKS sections whose types the import does not know into unknown.
QByteArray Prescan(const QByteArray &data, std::map<std::string, std::int64_t> &unknown);
} // namespace tessal::DxfImport
