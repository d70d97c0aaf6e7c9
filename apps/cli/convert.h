// SPDX-License-Identifier: MIT
// tessal-cli convert: the drawing's page as a picture or a document.
#pragma once

#include "cli.h"

#include <QImage>

namespace tessal::Cli {

// The whole page as the surface composes it on screen at zoom 1: background, background
// picture, grid and shapes, without selection handles.
QImage RenderPage(TMyCAD &cad);

// Writes the page to out by its extension (.png, .svg, .pdf); false with a reason.
bool WritePng(TMyCAD &cad, const QString &out, QString &error);
bool WriteSvg(TMyCAD &cad, const QString &out, QString &error);
bool WritePdf(TMyCAD &cad, const QString &out, QString &error);

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
