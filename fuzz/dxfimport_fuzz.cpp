// SPDX-License-Identifier: GPL-2.0-or-later
// Any bytes given to the DXF import: an answer and a report, never a crash, a hang or a huge
// allocation.
#include "fuzzapp.h"

#include <tessal/dxf/import/dxfimport.h>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    tessal::fuzz::EnsureApplication();
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    tessal::TMyCAD cad;
    tessal::TDxfImportReport report;
    tessal::TDxfImportOptions options;
    // Blocks that insert themselves many times over multiply quickly; a smaller limit keeps
    // each run short without hiding anything the full limit would reach.
    options.MaxShapes = 20000;
    tessal::LoadFromDxfData(cad, bytes, report, options);
    return 0;
}
