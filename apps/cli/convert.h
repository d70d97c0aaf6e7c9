// SPDX-License-Identifier: MIT
// tessal-cli convert: the drawing's page as a picture or a document.
#pragma once

#include "cli.h"

#include <QSize>

namespace tessal::Cli {

// The page as the editor's Export > Page as Picture writes it: at zoom 1 with its background
// and shapes, without grid, handles or printing aids. The writer follows out's suffix (.png,
// .svg, .pdf) and replaces out only once complete; false with a one-line reason, also for a
// page larger than PageSizeAllowed takes.
bool WritePage(TMyCAD &cad, const QString &out, QString &error);
// Whether a page of size pixels may be rendered; otherwise false with the reason.
bool PageSizeAllowed(QSize size, QString &error);

struct TConvertOptions
{
    // DXF output: texts as the outlines of their glyphs (SaveToDxf1) instead of TEXT.
    bool TextOutlines = false;
};

// Converts FILE to OUT by their extensions. A large drawing written to DXF shows a progress
// line while the error stream is a terminal.
int RunConvert(const QString &fileName, const QString &out, TIo io,
               const TConvertOptions &options = {});

} // namespace tessal::Cli
