// SPDX-License-Identifier: MIT
// tessal-cli convert: the page written as a PNG picture, or as SVG or PDF figures, as the
// editor exports it; drawings to and from DXF.
#include "convert.h"

#ifdef TESSAL_CLI_DXF_IMPORT
#include "dxfconvert.h"
#endif

#include <tessal/surface/cad.h>

#include <QFileInfo>

namespace tessal::Cli {

namespace {

// Pages past this many pixels a side, or in all, are refused before anything is drawn: a
// picture of the page is allocated whole, and a mistaken size would claim gigabytes.
constexpr int MaxPageSide = 32768;
constexpr qint64 MaxPagePixels = qint64(1) << 28; // 1 GiB at four bytes a pixel

} // namespace

bool PageSizeAllowed(QSize size, QString &error)
{
    if (size.width() <= MaxPageSide && size.height() <= MaxPageSide &&
        qint64(size.width()) * size.height() <= MaxPagePixels)
        return true;
    error = QStringLiteral("the page of %1 x %2 pixels is larger than this tool renders "
                           "(%3 pixels a side, %4 million pixels in all)")
                .arg(size.width())
                .arg(size.height())
                .arg(MaxPageSide)
                .arg(MaxPagePixels / 1000000);
    return false;
}

bool WritePage(TMyCAD &cad, const QString &out, QString &error)
{
    if (!PageSizeAllowed(cad.PagePixelSize(), error)) {
        error = QStringLiteral("%1: %2").arg(out, error);
        return false;
    }
    if (cad.ExportToFile(out, TExportArea::Page))
        return true;
    error = cad.LastError();
    return false;
}

bool WriteDrawing(TMyCAD &cad, const QString &out, QString &error)
{
    if (cad.SaveToFile(out))
        return true;
    error = QStringLiteral("%1: %2").arg(out, cad.LastError());
    return false;
}

// SaveToDxf, or SaveToDxf1 for texts as glyph outlines, with a progress line for a large
// drawing while the error stream is a terminal.
bool WriteDxf(TMyCAD &cad, const QString &out, bool textOutlines, QString &error)
{
    const bool progress = cad.GetShapesCount() >= ProgressShapeCount && ProgressShown();
    if (progress)
        cad.SetOnProgress([name = QFileInfo(out).fileName(), shown = -1](
                              TMyCAD *, std::int64_t done, std::int64_t total, bool &) mutable {
            ShowProgress("writing", name, done, total, shown);
        });
    const bool ok = textOutlines ? cad.SaveToDxf1(out) : cad.SaveToDxf(out);
    if (progress) {
        EndProgress();
        cad.SetOnProgress({});
    }
    if (!ok)
        error = cad.LastError();
    return ok;
}

bool WriteDxfText(TMyCAD &cad, const QString &out, QString &error)
{
    return WriteDxf(cad, out, false, error);
}

bool WriteDxfOutlines(TMyCAD &cad, const QString &out, QString &error)
{
    return WriteDxf(cad, out, true, error);
}

int RunConvert(const QString &fileName, const QString &out, TIo io, const TConvertOptions &options)
{
    const QString suffix = QFileInfo(out).suffix().toLower();
    using TWriter = bool (*)(TMyCAD &, const QString &, QString &);
    TWriter writer = nullptr;
    if (suffix == QLatin1String("png") || suffix == QLatin1String("svg") ||
        suffix == QLatin1String("pdf"))
        writer = &WritePage;
    else if (suffix == QLatin1String("dxf"))
        writer = options.TextOutlines ? &WriteDxfOutlines : &WriteDxfText;
    else if (suffix == QLatin1String("tsd"))
        writer = &WriteDrawing;
    else {
        io.Err << "convert: unknown output format \"" << suffix << "\"\n";
        return Usage(io);
    }

    if (options.TextOutlines && suffix != QLatin1String("dxf")) {
        io.Err << "convert: --text-outlines applies to DXF output only\n";
        return Usage(io);
    }

    QString error;
    const bool fromDxf =
        QFileInfo(fileName).suffix().compare(QLatin1String("dxf"), Qt::CaseInsensitive) == 0;
#ifdef TESSAL_CLI_DXF_IMPORT
    const std::unique_ptr<TMyCAD> cad =
        fromDxf ? LoadDxfDrawing(fileName, io, error) : LoadDrawing(fileName, error);
#else
    if (fromDxf)
        return Fail(io, QStringLiteral("reading DXF needs a build with TESSAL_DXF_IMPORT"));
    const std::unique_ptr<TMyCAD> cad = LoadDrawing(fileName, error);
#endif
    if (!cad)
        return Fail(io, error);
    // A DXF file read in part is still converted, and the tool then reports the damage.
    const QString partial = error;
    if (!writer(*cad, out, error))
        return Fail(io, error);
    if (!partial.isEmpty())
        return Fail(io, partial);
    return ExitOk;
}

} // namespace tessal::Cli
