// SPDX-License-Identifier: MIT
// tessal-cli convert: composing the page once and writing it as PNG, SVG or PDF.
#include "convert.h"

#include <tessal/surface/cad.h>

#include <QFileInfo>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QSvgGenerator>

namespace tessal::Cli {

QImage RenderPage(TMyCAD &cad)
{
    cad.SetZoom(1.0);
    cad.ClearWorkingShapes();
    cad.DrawAll(TRect(0, 0, cad.width(), cad.height()));
    return cad.OffscreenImage().copy();
}

bool WritePng(TMyCAD &cad, const QString &out, QString &error)
{
    if (RenderPage(cad).save(out, "PNG"))
        return true;
    error = QStringLiteral("%1: cannot write the picture").arg(out);
    return false;
}

// The shapes paint through a canvas that only targets images (pen modes such as xor need
// the pixels), so the SVG carries the composed page as one embedded picture.
bool WriteSvg(TMyCAD &cad, const QString &out, QString &error)
{
    const QImage page = RenderPage(cad);
    QSvgGenerator generator;
    generator.setFileName(out);
    generator.setSize(page.size());
    generator.setResolution(cad.ScreenPixelsPerInch());
    generator.setViewBox(QRect(QPoint(0, 0), page.size()));
    generator.setTitle(QFileInfo(out).completeBaseName());
    generator.setDescription(QStringLiteral("Drawing page rendered by tessal-cli"));
    QPainter painter;
    if (!painter.begin(&generator)) {
        error = QStringLiteral("%1: cannot write the document").arg(out);
        return false;
    }
    painter.drawImage(0, 0, page);
    return painter.end();
}

// One page of the drawing's size: its pixels at the surface's screen resolution.
bool WritePdf(TMyCAD &cad, const QString &out, QString &error)
{
    const QImage page = RenderPage(cad);
    const int dpi = cad.ScreenPixelsPerInch();
    const QSizeF mm(page.width() * 25.4 / dpi, page.height() * 25.4 / dpi);
    QPdfWriter writer(out);
    writer.setResolution(dpi);
    writer.setPageLayout(
        QPageLayout(QPageSize(mm, QPageSize::Millimeter, QString(), QPageSize::ExactMatch),
                    QPageLayout::Portrait, QMarginsF()));
    writer.setCreator(QStringLiteral("tessal-cli"));
    QPainter painter;
    if (!painter.begin(&writer)) {
        error = QStringLiteral("%1: cannot write the document").arg(out);
        return false;
    }
    painter.drawImage(QRectF(0, 0, writer.width(), writer.height()), page);
    return painter.end();
}

int RunConvert(const QString &fileName, const QString &out, TIo io)
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
        return Fail(io, QStringLiteral("DXF export is not available yet"));
    else {
        io.Err << "convert: unknown output format \"" << suffix << "\"\n";
        return Usage(io);
    }

    QString error;
    const std::unique_ptr<TMyCAD> cad = LoadDrawing(fileName, error);
    if (!cad)
        return Fail(io, error);
    if (!writer(*cad, out, error))
        return Fail(io, error);
    if (writer == &WriteSvg) {
        io.Err << "note: " << out
               << " holds the page as an embedded picture; shapes are drawn on images only\n";
        io.Err.flush();
    }
    return ExitOk;
}

} // namespace tessal::Cli
