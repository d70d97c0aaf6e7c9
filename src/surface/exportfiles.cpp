// SPDX-License-Identifier: MIT
// Picture files of the page or of the selection: BMP, JPEG, PNG, SVG and PDF.
#include <tessal/surface/cad.h>

#include <tessal/platform/color.h>

#include <QFileInfo>
#include <QImageWriter>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QSaveFile>
#include <QSvgGenerator>
#include <QSvgRenderer>

namespace tessal {

namespace {

QString NothingSelected()
{
    return TMyCAD::tr("Nothing is selected.");
}

bool OpenSaveFile(QSaveFile &file, QString &error)
{
    if (file.open(QIODevice::WriteOnly))
        return true;
    error = TMyCAD::tr("%1 cannot be written: %2").arg(file.fileName(), file.errorString());
    return false;
}

// The buffer is flushed first: commit() would rename the temporary file over the old one
// even when writing out its buffer failed (a full disk or a file-size limit).
bool Commit(QSaveFile &file, QString &error)
{
    if (!file.flush() || file.error() != QFileDevice::NoError) {
        error = TMyCAD::tr("%1 cannot be written: %2").arg(file.fileName(), file.errorString());
        file.cancelWriting();
        return false;
    }
    if (file.commit())
        return true;
    error = TMyCAD::tr("%1 cannot be written: %2").arg(file.fileName(), file.errorString());
    return false;
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
    QSaveFile file(fileName);
    if (!OpenSaveFile(file, m_LastError))
        return false;
    QImageWriter writer(&file, format);
    writer.setQuality(quality);
    if (!writer.write(image)) {
        m_LastError = tr("%1 cannot be written: %2").arg(fileName, writer.errorString());
        file.cancelWriting();
        return false;
    }
    return Commit(file, m_LastError);
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
    QSaveFile file(fileName);
    if (!OpenSaveFile(file, m_LastError))
        return false;
    if (!pdf && area == TExportArea::Selection) {
        if (file.write(selection) != selection.size()) {
            m_LastError = tr("%1 cannot be written: %2").arg(fileName, file.errorString());
            file.cancelWriting();
            return false;
        }
        return Commit(file, m_LastError);
    }
    const int dpi = logicalDpiX();
    QSvgGenerator generator;
    QPdfWriter writer(&file);
    QPaintDevice *device = &generator;
    if (pdf) {
        const QSizeF points(size.width() * 72.0 / dpi, size.height() * 72.0 / dpi);
        writer.setResolution(dpi);
        writer.setPageLayout(
            QPageLayout(QPageSize(points, QPageSize::Point, QString(), QPageSize::ExactMatch),
                        QPageLayout::Portrait, QMarginsF()));
        writer.setCreator(QStringLiteral("Tessal"));
        writer.setTitle(QFileInfo(fileName).completeBaseName());
        device = &writer;
    } else {
        generator.setOutputDevice(&file);
        generator.setSize(size);
        generator.setViewBox(QRect(QPoint(0, 0), size));
        generator.setResolution(dpi);
        generator.setTitle(QFileInfo(fileName).completeBaseName());
    }
    bool painted = false;
    if (area == TExportArea::Selection) {
        QPainter painter(device);
        painted = painter.isActive();
        if (painted)
            renderer.render(&painter, QRectF(QPointF(0, 0), QSizeF(size)));
    } else {
        AtZoomOne([&] {
            TCanvas canvas(device);
            painted = canvas.Painter().isActive();
            if (painted)
                DrawPrintPage(canvas, true, false);
        });
    }
    if (!painted) {
        m_LastError = tr("%1 cannot be written.").arg(fileName);
        file.cancelWriting();
        return false;
    }
    return Commit(file, m_LastError);
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
