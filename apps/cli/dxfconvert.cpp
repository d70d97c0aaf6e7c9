// SPDX-License-Identifier: GPL-2.0-or-later
// tessal-cli: DXF drawings read through the GPL import library, with a progress line.
#include "dxfconvert.h"

#include <tessal/dxf/import/dxfimport.h>
#include <tessal/surface/cad.h>

#include <QFileInfo>

#include <cstdio>
#include <unistd.h>

namespace tessal::Cli {

namespace {

// Files from this size on show how far the reading got.
constexpr std::int64_t ProgressFromBytes = 8 << 20;

} // namespace

std::unique_ptr<TMyCAD> LoadDxfDrawing(const QString &fileName, TIo io, QString &error)
{
    TMyCAD::SetNoLayerHandler([](TMyCAD *) {});
    auto cad = std::make_unique<TMyCAD>();
    TDxfImportOptions options;
    const bool showProgress =
        isatty(STDERR_FILENO) && QFileInfo(fileName).size() >= ProgressFromBytes;
    int shown = -1;
    if (showProgress)
        options.Progress = [&](std::int64_t done, std::int64_t total) {
            const int percent = total > 0 ? int(done * 100 / total) : 100;
            if (percent == shown)
                return;
            shown = percent;
            // Straight to the terminal, not through the error stream a caller may capture.
            std::fprintf(stderr, "\rreading %s: %3d%%", qPrintable(fileName), percent);
            std::fflush(stderr);
        };
    TDxfImportReport report;
    const bool ok = LoadFromDxf(*cad, fileName, report, options);
    if (showProgress)
        std::fprintf(stderr, "\n");
    if (ok || report.ShapesCreated > 0 || report.EntitiesRead > 0)
        for (const QString &line : report.Lines())
            if (!line.startsWith(QLatin1String("error:")))
                io.Out << line << '\n';
    if (!ok) {
        error = report.Error.contains(fileName)
                    ? report.Error
                    : QStringLiteral("%1: %2").arg(fileName, report.Error);
        if (report.ShapesCreated == 0)
            return nullptr;
    }
    return cad;
}

} // namespace tessal::Cli
