// SPDX-License-Identifier: GPL-2.0-or-later
// tessal-cli: DXF drawings read through the GPL import library, with a progress line.
#include "dxfconvert.h"

#include <tessal/dxf/import/dxfimport.h>
#include <tessal/surface/cad.h>

#include <QFileInfo>

namespace tessal::Cli {

std::unique_ptr<TMyCAD> LoadDxfDrawing(const QString &fileName, TIo io, QString &error)
{
    TMyCAD::SetNoLayerHandler([](TMyCAD *) {});
    auto cad = std::make_unique<TMyCAD>();
    TDxfImportOptions options;
    const bool showProgress = QFileInfo(fileName).size() > ProgressFileSize && ProgressShown();
    int shown = -1;
    if (showProgress)
        options.Progress = [&, name = QFileInfo(fileName).fileName()](std::int64_t done,
                                                                      std::int64_t total) {
            ShowProgress("reading", name, done, total, shown);
        };
    TDxfImportReport report;
    const bool ok = LoadFromDxf(*cad, fileName, report, options);
    if (showProgress)
        EndProgress();
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
