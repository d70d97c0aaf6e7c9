// SPDX-License-Identifier: GPL-2.0-or-later
// LoadFromDxf: reads the file, parses it with dxflib and builds the drawing.
#include <tessal/dxf/import/dxfbuild_p.h>
#include <tessal/dxf/import/dxfimport.h>
#include <tessal/dxf/import/dxfmodel_p.h>
#include <tessal/surface/cad.h>

#include <QFile>

#include <limits>

namespace tessal {

std::int64_t TDxfImportReport::SkippedCount() const
{
    std::int64_t n = 0;
    for (const auto &[reason, count] : Skipped)
        n += count;
    return n;
}

QStringList TDxfImportReport::Lines() const
{
    QStringList lines;
    lines << QStringLiteral("entities read: %1").arg(EntitiesRead)
          << QStringLiteral("shapes created: %1").arg(ShapesCreated)
          << QStringLiteral("entities skipped: %1").arg(SkippedCount());
    for (const auto &[reason, count] : Skipped)
        lines << QStringLiteral("  %1 x %2").arg(count).arg(reason);
    for (const QString &note : Notes)
        lines << QStringLiteral("note: %1").arg(note);
    if (!Error.isEmpty())
        lines << QStringLiteral("error: %1").arg(Error);
    return lines;
}

bool LoadFromDxfData(TMyCAD &cad, const QByteArray &data, TDxfImportReport &report,
                     const TDxfImportOptions &options)
{
    report = {};
    DxfImport::TModel model;
    QString error;
    // The drawing's own handler may cancel; the parse is the only stage that reports, so
    // that a cancel always comes before the drawing changes.
    const TProgressEvent &handler = cad.OnProgress();
    const auto progress = [&](std::int64_t done, std::int64_t total) {
        if (options.Progress)
            options.Progress(done, total);
        bool cancel = false;
        if (handler)
            handler(&cad, done, total, cancel);
        return !cancel;
    };
    const bool parsed = DxfImport::ParseDxf(data, model, error, progress);
    for (const auto &[reason, count] : model.Skipped)
        report.Skipped[QString::fromStdString(reason)] += count;
    report.Cancelled = model.Cancelled;
    // Cancelled, or nothing recognisable: the drawing stays as it was.
    if (model.Cancelled ||
        (!parsed && model.Entities.empty() && model.Layers.empty() && model.Blocks.empty())) {
        report.Error = error;
        cad.SetLastDxfError(error);
        return false;
    }
    DxfImport::TBuilder(cad, model, report, options).Build();
    report.Error = error;
    cad.SetLastDxfError(error);
    return parsed;
}

bool LoadFromDxf(TMyCAD &cad, const QString &fileName, TDxfImportReport &report,
                 const TDxfImportOptions &options)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        report = {};
        report.Error = QStringLiteral("%1: %2").arg(fileName, file.errorString());
        cad.SetLastDxfError(report.Error);
        return false;
    }
    // Read in one piece into a buffer of the file's size: a drawing's file may be large,
    // and a buffer that grows as it is read copies it over and over.
    const qint64 size = file.size();
    if (size > 0 && size < std::numeric_limits<qsizetype>::max()) {
        QByteArray data(qsizetype(size), Qt::Uninitialized);
        const qint64 read = file.read(data.data(), size);
        if (read >= 0) {
            data.truncate(qsizetype(read));
            data += file.readAll(); // whatever was appended meanwhile
            return LoadFromDxfData(cad, data, report, options);
        }
    }
    return LoadFromDxfData(cad, file.readAll(), report, options);
}

} // namespace tessal
