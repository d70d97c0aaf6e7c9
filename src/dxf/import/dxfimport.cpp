// SPDX-License-Identifier: GPL-2.0-or-later
// LoadFromDxf: reads the file piece by piece, parses it with dxflib and builds the drawing
// aside.
#include <tessal/dxf/import/dxfbuild_p.h>
#include <tessal/dxf/import/dxfimport.h>
#include <tessal/dxf/import/dxfimport_p.h>
#include <tessal/dxf/import/dxfmodel_p.h>
#include <tessal/surface/cad.h>

#include <QBuffer>
#include <QFile>

#include <algorithm>

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

namespace {

// The parse's part of an import's reports: it takes about as long as the build of the shapes
// for the drawings measured (a little longer), which takes the rest.
constexpr double ParseShare = 0.5;

// The reports of one import on one scale, whose whole is the file's size: the parse moves
// through the first part of it by the bytes read, the build through the rest by the
// entities built, so that a bar fills once and never goes back. The options' handler hears
// each report, then the drawing's OnProgress, which may cancel.
class TImportProgress
{
public:
    TImportProgress(TMyCAD &cad, const TDxfImportOptions &options, qsizetype size)
        : m_Cad(cad)
        , m_Options(options)
        , m_Total(std::max<std::int64_t>(size, 1))
        , m_Split(std::int64_t(double(m_Total) * ParseShare))
    {}
    bool Parse(std::int64_t done, std::int64_t total)
    {
        return Report(Part(0, m_Split, done, total));
    }
    bool Build(std::int64_t done, std::int64_t total)
    {
        return Report(Part(m_Split, m_Total, done, total));
    }

private:
    static std::int64_t Part(std::int64_t from, std::int64_t to, std::int64_t done,
                             std::int64_t total)
    {
        if (total <= 0 || done >= total)
            return to;
        return from + std::int64_t(double(to - from) * double(std::max<std::int64_t>(done, 0)) /
                                   double(total));
    }
    bool Report(std::int64_t done)
    {
        m_Done = std::max(m_Done, done);
        if (m_Options.Progress)
            m_Options.Progress(m_Done, m_Total);
        bool cancel = false;
        // A copy: the handler may set another one while it runs.
        if (const TProgressEvent handler = m_Cad.OnProgress())
            handler(&m_Cad, m_Done, m_Total, cancel);
        return !cancel;
    }

    TMyCAD &m_Cad;
    const TDxfImportOptions &m_Options;
    const std::int64_t m_Total;
    const std::int64_t m_Split;
    std::int64_t m_Done = 0;
};

} // namespace

bool LoadFromDxfDevice(TMyCAD &cad, QIODevice &device, TDxfImportReport &report,
                       const TDxfImportOptions &options, qsizetype window)
{
    report = {};
    DxfImport::TModel model;
    QString error;
    TImportProgress progress(cad, options, qsizetype(device.size() - device.pos()));
    const bool parsed = DxfImport::ParseDxf(
        device, model, error,
        [&progress](std::int64_t done, std::int64_t total) { return progress.Parse(done, total); },
        true, window);
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
    // A build that is stopped made nothing: the report keeps what the parse found.
    const TDxfImportReport parseReport = report;
    const bool built = DxfImport::TBuilder(cad, model, report, options)
                           .Build([&progress](std::int64_t done, std::int64_t total) {
                               return progress.Build(done, total);
                           });
    if (!built) {
        report = parseReport;
        report.Cancelled = true;
        error = DxfImport::CancelledMessage();
    }
    report.Error = error;
    cad.SetLastDxfError(error);
    return parsed && built;
}

bool LoadFromDxfData(TMyCAD &cad, const QByteArray &data, TDxfImportReport &report,
                     const TDxfImportOptions &options)
{
    QBuffer buffer;
    buffer.setData(data);
    buffer.open(QIODevice::ReadOnly);
    return LoadFromDxfDevice(cad, buffer, report, options, DxfImport::DefaultWindow);
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
    return LoadFromDxfDevice(cad, file, report, options, DxfImport::DefaultWindow);
}

} // namespace tessal
