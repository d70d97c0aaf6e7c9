// SPDX-License-Identifier: GPL-2.0-or-later
// The import from any device that can be read more than once.
#pragma once

#include <tessal/dxf/import/dxfimport.h>

#include <QtGlobal>

class QIODevice;

namespace tessal {

// LoadFromDxf from the device's current position to its end, read in pieces of window
// bytes (see DxfImport::TLineWindow). The device must allow seeking back: it is read more
// than once.
bool LoadFromDxfDevice(TMyCAD &cad, QIODevice &device, TDxfImportReport &report,
                       const TDxfImportOptions &options, qsizetype window);

} // namespace tessal
