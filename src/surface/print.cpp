// SPDX-License-Identifier: MIT
// Printing the drawing page on one sheet or over several.
#include <tessal/surface/cad.h>
#include <tessal/surface/mouse_p.h>

#include <tessal/platform/color.h>

#include <QPainter>
#include <QPrinter>

#include <algorithm>
#include <cmath>

namespace tessal {

namespace {

// The printable part of a sheet, in printer pixels, with the painter's origin at its corner.
QSize PrintableSize(QPrinter *printer)
{
    return printer->pageLayout().paintRectPixels(printer->resolution()).size();
}

// Sheets needed along one direction; a picture that exceeds a sheet by less than a
// thousandth of a pixel (rounding of the millimetre sizes) still fits.
int SheetsFor(double extent, int sheet)
{
    return std::max(1, int(std::ceil(extent / sheet - 1e-3)));
}

} // namespace

QSize TMyCAD::PagePixelSize() const
{
    const double perMm = logicalDpiX() / 25.4;
    QSize size(int(std::nearbyint(m_PageWidth * perMm)), int(std::nearbyint(m_PageHeight * perMm)));
    // A custom page of no size: the control's extent stands in for it.
    if (size.isEmpty() && m_Zoom > 0)
        size = QSize(int(std::nearbyint(width() / m_Zoom)), int(std::nearbyint(height() / m_Zoom)));
    return size;
}

void TMyCAD::AtZoomOne(const std::function<void()> &draw)
{
    // Feedback drawn at the screen's zoom could not be erased afterwards.
    m_Mouse->Cancel();
    struct TRestore
    {
        double &Zoom;
        double Saved;
        ~TRestore() { Zoom = Saved; }
    } restore{m_Zoom, m_Zoom};
    // Only the spatial index depends on the zoom, and it notices the change by itself; the
    // control keeps its size, so nothing on screen moves.
    m_Zoom = 1.0;
    draw();
}

void TMyCAD::DrawPrintPage(TCanvas &canvas, bool background, bool aids)
{
    const QSize size = PagePixelSize();
    const TRect page(0, 0, size.width(), size.height());
    if (background) {
        canvas.Brush().Color = m_ColorOfBackGround;
        canvas.Brush().Style = TBrushStyle::bsSolid;
        canvas.FillRect(page);
        if (!m_BkBitmap.IsEmpty()) {
            QImage picture(size, QImage::Format_RGB32);
            picture.fill(ToQColor(m_ColorOfBackGround));
            DrawBkBitmapPart(picture, QRect(QPoint(0, 0), size), QRect(QPoint(0, 0), size));
            canvas.Draw(0, 0, picture);
        }
    }
    CollectDrawList(page);
    DrawListedShapes(canvas, m_DrawList);
    if (!aids)
        return;
    DrawBorderOn(canvas, QSizeF(size));
    DrawHeadFootOn(canvas, QSizeF(size));
}

QSize TMyCAD::PrintSheetGrid(QPrinter *printer, TPrintScale scale) const
{
    if (!printer || scale == TPrintScale::FitToPage)
        return {1, 1};
    const QSize sheet = PrintableSize(printer);
    const QSize page = PagePixelSize();
    if (sheet.isEmpty() || page.isEmpty())
        return {1, 1};
    const double k = double(printer->resolution()) / logicalDpiX();
    return {SheetsFor(page.width() * k, sheet.width()),
            SheetsFor(page.height() * k, sheet.height())};
}

bool TMyCAD::Print(QPrinter *printer, TPrintScale scale)
{
    m_LastError.clear();
    if (!printer) {
        m_LastError = tr("No printer was given.");
        return false;
    }
    const QSize page = PagePixelSize();
    const QSize sheet = PrintableSize(printer);
    if (page.isEmpty() || sheet.isEmpty()) {
        m_LastError = tr("The page or the printable area of the sheet is empty.");
        return false;
    }
    // Printer pixels per document pixel.
    double k = double(printer->resolution()) / logicalDpiX();
    if (scale == TPrintScale::FitToPage)
        k = std::min(double(sheet.width()) / page.width(), double(sheet.height()) / page.height());
    const QSize grid = PrintSheetGrid(printer, scale);
    bool ok = true;
    AtZoomOne([&] {
        TCanvas canvas(static_cast<QPaintDevice *>(printer));
        if (!canvas.Painter().isActive()) {
            m_LastError = tr("The printer cannot be opened.");
            ok = false;
            return;
        }
        canvas.SetPrinter(true, printer->colorMode() == QPrinter::GrayScale ? 2 : 0);
        const TRect clip(0, 0, sheet.width(), sheet.height());
        for (int row = 0; row < grid.height() && ok; ++row)
            for (int col = 0; col < grid.width() && ok; ++col) {
                if ((row > 0 || col > 0) && !printer->newPage()) {
                    m_LastError =
                        tr("The printer cannot start sheet %1.").arg(row * grid.width() + col + 1);
                    ok = false;
                    break;
                }
                canvas.SelectClipRect(&clip);
                canvas.SetWorldTransform(
                    QTransform::fromScale(k, k) *
                    QTransform::fromTranslate(-col * sheet.width(), -row * sheet.height()));
                DrawPrintPage(canvas, m_PrintBackground, true);
            }
        canvas.ResetWorldTransform();
        canvas.SelectClipRect(nullptr);
    });
    return ok;
}

} // namespace tessal
