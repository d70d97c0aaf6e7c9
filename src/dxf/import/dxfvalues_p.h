// SPDX-License-Identifier: GPL-2.0-or-later
// Text and colour values of DXF files as the drawing needs them.
#pragma once

#include <tessal/dxf/import/dxfmodel_p.h>

#include <QPointF>
#include <QString>

#include <cstdint>
#include <string>

namespace tessal::DxfImport {

// MTEXT without its formatting codes: \P breaks lines, stacked fractions become a/b.
QString PlainMText(const QString &text);
// A text value's bytes as text: UTF-8 when they are valid UTF-8, else the process's 8-bit
// code page (Windows-1252 unless the application set another); "\U+XXXX" escapes decoded and, for
// TEXT, the "%%" codes (%%d degree, %%p plus-minus, %%c diameter, %%% percent; the underline and
// overline switches %%u and %%o dropped).
QString DecodeText(const std::string &bytes, bool textCodes);
// Fills a TEXT entity from its values: the insertion point, the alignment point (which
// places a justified text), height, angle in degrees, justification codes 72 and 73 and the
// text's bytes.
void SetText(TEntity &e, QPointF insert, QPointF align, double height, double degrees,
             std::int32_t h, std::int32_t v, const std::string &bytes);
// The RGB value (0x00RRGGBB) of an AutoCAD colour index 1..255.
std::uint32_t AciToRgb(std::int32_t aci);

} // namespace tessal::DxfImport
