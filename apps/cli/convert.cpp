// SPDX-License-Identifier: MIT
// tessal-cli convert: the page written as a PNG picture, or as SVG or PDF figures; drawings
// to and from DXF.
#include "convert.h"

#ifdef TESSAL_CLI_DXF_IMPORT
#include "dxfconvert.h"
#endif

#include <tessal/surface/cad.h>

#include <QFileInfo>
#include <QPageLayout>
#include <QPageSize>
#include <QPdfWriter>
#include <QSvgGenerator>

namespace tessal::Cli {

namespace {

// The whole page at zoom 1 without selection.
TRect PreparePage(TMyCAD &cad)
{
    cad.SetZoom(1.0);
    cad.ClearWorkingShapes();
    return TRect(0, 0, cad.width(), cad.height());
}

} // namespace

QImage RenderPage(TMyCAD &cad)
{
    cad.DrawAll(PreparePage(cad));
    return cad.OffscreenImage().copy();
}

bool WritePng(TMyCAD &cad, const QString &out, QString &error)
{
    if (RenderPage(cad).save(out, "PNG"))
        return true;
    error = QStringLiteral("%1: cannot write the picture").arg(out);
    return false;
}

bool WriteSvg(TMyCAD &cad, const QString &out, QString &error)
{
    const TRect page = PreparePage(cad);
    const QSize size(page.Width(), page.Height());
    QSvgGenerator generator;
    generator.setFileName(out);
    generator.setSize(size);
    generator.setResolution(cad.ScreenPixelsPerInch());
    generator.setViewBox(QRect(QPoint(0, 0), size));
    generator.setTitle(QFileInfo(out).completeBaseName());
    generator.setDescription(QStringLiteral("Drawing page rendered by tessal-cli"));
    if (!cad.RenderTo(&generator, page, true)) {
        error = QStringLiteral("%1: cannot write the document").arg(out);
        return false;
    }
    return true;
}

// One page of the drawing's size at 96 dots per inch, one device unit per drawing pixel.
bool WritePdf(TMyCAD &cad, const QString &out, QString &error)
{
    constexpr int Dpi = 96;
    const TRect page = PreparePage(cad);
    const QSizeF points(page.Width() * 72.0 / Dpi, page.Height() * 72.0 / Dpi);
    QPdfWriter writer(out);
    writer.setResolution(Dpi);
    writer.setPageLayout(
        QPageLayout(QPageSize(points, QPageSize::Point, QString(), QPageSize::ExactMatch),
                    QPageLayout::Portrait, QMarginsF()));
    writer.setCreator(QStringLiteral("tessal-cli"));
    if (!cad.RenderTo(&writer, page, true)) {
        error = QStringLiteral("%1: cannot write the document").arg(out);
        return false;
    }
    return true;
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
    if (suffix == QLatin1String("png"))
        writer = &WritePng;
    else if (suffix == QLatin1String("svg"))
        writer = &WriteSvg;
    else if (suffix == QLatin1String("pdf"))
        writer = &WritePdf;
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
