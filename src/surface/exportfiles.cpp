// SPDX-License-Identifier: MIT
// Picture files of the page or of the selection: BMP, JPEG, PNG, SVG and PDF.
#include <tessal/surface/cad.h>

#include <tessal/platform/color.h>
#include <tessal/platform/filesaver_p.h>

#include <QFileInfo>
#include <QImageWriter>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QSvgGenerator>
#include <QSvgRenderer>

#include <functional>

namespace tessal {

namespace {

QString NothingSelected()
{
    return TMyCAD::tr("Nothing is selected.");
}

// Writes the file through write, which answers false with why set when it fails; a file
// that cannot be written whole leaves the old one as it was.
bool SaveExport(const QString &fileName, const std::function<bool(QIODevice &, QString &)> &write,
                QString &error)
{
    QString why;
    const bool saved = detail::SaveWholeFile(
        fileName, [&](QIODevice &file) { return write(file, why); }, error);
    if (!saved && !why.isEmpty())
        error = why;
    return saved;
}

// Paints through paint onto an SVG generator or a PDF writer of size pixels at dpi over
// file; false when nothing could be painted. Both write out when they go out of scope.
bool PaintVector(QIODevice &file, const QString &fileName, QSize size, int dpi, bool pdf,
                 const std::function<bool(QPaintDevice *)> &paint)
{
    const QString title = QFileInfo(fileName).completeBaseName();
    if (pdf) {
        QPdfWriter writer(&file);
        const QSizeF points(size.width() * 72.0 / dpi, size.height() * 72.0 / dpi);
        writer.setResolution(dpi);
        writer.setPageLayout(
            QPageLayout(QPageSize(points, QPageSize::Point, QString(), QPageSize::ExactMatch),
                        QPageLayout::Portrait, QMarginsF()));
        writer.setCreator(QStringLiteral("Tessal"));
        writer.setTitle(title);
        return paint(&writer);
    }
    QSvgGenerator generator;
    generator.setOutputDevice(&file);
    generator.setSize(size);
    generator.setViewBox(QRect(QPoint(0, 0), size));
    generator.setResolution(dpi);
    generator.setTitle(title);
    return paint(&generator);
}

bool PaintSvg(QPaintDevice *device, QSvgRenderer &renderer, QSize size)
{
    QPainter painter(device);
    if (!painter.isActive())
        return false;
    renderer.render(&painter, QRectF(QPointF(0, 0), QSizeF(size)));
    return true;
}

} // namespace

QImage TMyCAD::ExportImage(TExportArea area)
{
    QImage image;
    AtZoomOne([&] {
        if (area == TExportArea::Selection) {
            image = SelectionImage();
            return;
        }
        const QSize size = PagePixelSize();
        if (size.isEmpty())
            return;
        image = QImage(size, QImage::Format_RGB32);
        image.fill(Qt::white);
        TCanvas canvas(&image);
        DrawPrintPage(canvas, true, false);
        canvas.Flush();
    });
    return image;
}

bool TMyCAD::ExportRaster(const QString &fileName, TExportArea area, const char *format,
                          int quality)
{
    m_LastError.clear();
    const QImage image = ExportImage(area);
    if (image.isNull()) {
        m_LastError = area == TExportArea::Selection ? NothingSelected() : tr("The page is empty.");
        return false;
    }
    const auto write = [&](QIODevice &file, QString &why) {
        QImageWriter writer(&file, format);
        writer.setQuality(quality);
        if (writer.write(image))
            return true;
        why = tr("%1 cannot be written: %2").arg(fileName, writer.errorString());
        return false;
    };
    return SaveExport(fileName, write, m_LastError);
}

bool TMyCAD::SaveToBmp(const QString &fileName, TExportArea area)
{
    return ExportRaster(fileName, area, "bmp", -1);
}

bool TMyCAD::SaveToJpeg(const QString &fileName, TExportArea area, int quality)
{
    return ExportRaster(fileName, area, "jpeg", quality);
}

bool TMyCAD::SaveToPng(const QString &fileName, TExportArea area)
{
    return ExportRaster(fileName, area, "png", -1);
}

// The page goes through a canvas over the writer, so that shapes arrive as vector figures;
// the selection reuses the clipboard's SVG of the copied shapes.
bool TMyCAD::ExportVector(const QString &fileName, TExportArea area, bool pdf)
{
    m_LastError.clear();
    QByteArray selection;
    QSize size;
    AtZoomOne([&] {
        if (area == TExportArea::Selection)
            selection = SelectionSvg();
        else
            size = PagePixelSize();
    });
    QSvgRenderer renderer;
    if (area == TExportArea::Selection) {
        if (selection.isEmpty() || !renderer.load(selection)) {
            m_LastError = NothingSelected();
            return false;
        }
        size = renderer.viewBox().size();
    }
    if (size.isEmpty()) {
        m_LastError = tr("The page is empty.");
        return false;
    }
    const auto write = [&](QIODevice &file, QString &why) {
        if (!pdf && area == TExportArea::Selection)
            return file.write(selection) == selection.size();
        if (PaintVector(file, fileName, size, logicalDpiX(), pdf, [&](QPaintDevice *device) {
                if (area == TExportArea::Selection)
                    return PaintSvg(device, renderer, size);
                bool painted = false;
                AtZoomOne([&] {
                    TCanvas canvas(device);
                    painted = canvas.Painter().isActive();
                    if (painted)
                        DrawPrintPage(canvas, true, false);
                });
                return painted;
            }))
            return true;
        why = tr("%1 cannot be written.").arg(fileName);
        return false;
    };
    return SaveExport(fileName, write, m_LastError);
}

bool TMyCAD::SaveToSvg(const QString &fileName, TExportArea area)
{
    return ExportVector(fileName, area, false);
}

bool TMyCAD::SaveToPdf(const QString &fileName, TExportArea area)
{
    return ExportVector(fileName, area, true);
}

QStringList TMyCAD::ExportSuffixes()
{
    return {QStringLiteral("png"), QStringLiteral("svg"), QStringLiteral("pdf"),
            QStringLiteral("bmp"), QStringLiteral("jpg"), QStringLiteral("jpeg"),
            QStringLiteral("wmf")};
}

bool TMyCAD::ExportToFile(const QString &fileName, TExportArea area)
{
    const QString suffix = QFileInfo(fileName).suffix().toLower();
    if (suffix == QLatin1String("png"))
        return SaveToPng(fileName, area);
    if (suffix == QLatin1String("svg"))
        return SaveToSvg(fileName, area);
    if (suffix == QLatin1String("pdf"))
        return SaveToPdf(fileName, area);
    if (suffix == QLatin1String("bmp"))
        return SaveToBmp(fileName, area);
    if (suffix == QLatin1String("jpg") || suffix == QLatin1String("jpeg"))
        return SaveToJpeg(fileName, area);
    if (suffix == QLatin1String("wmf"))
        return SaveToWmf(fileName, area);
    m_LastError = tr("%1: pictures cannot be written as \"%2\".").arg(fileName, suffix);
    return false;
}

} // namespace tessal
