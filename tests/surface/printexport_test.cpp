// SPDX-License-Identifier: MIT
// Picture files and printing: every format decodes to the page as drawn at zoom 1, whatever
// the zoom on screen; failures keep the old file; printing fills the expected sheets.
#include "common/files.h"
#include "documenthelpers.h"

#include <tessal/geometry/metafile_p.h>
#include <tessal/platform/color.h>
#include <tessal/surface/cad.h>

#include <gtest/gtest.h>

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QPainter>
#include <QPrinter>
#include <QRegularExpression>
#include <QSvgGenerator>
#include <QSvgRenderer>
#include <QTemporaryDir>

#include <sys/resource.h>

using namespace tessal;
using tessal::test::AddRectangle;

namespace {

// A red filled rectangle and a blue one on an A5 page without grid.
void BuildDrawing(TMyCAD &cad)
{
    cad.SetPageStyle(TPageStyle::A5);
    cad.GridOperation()->SetGridShow(false);
    TBrush brush;
    brush.Color = clRed;
    cad.SetBrush(brush);
    AddRectangle(cad, 20, 30, 120, 90);
    brush.Color = clBlue;
    cad.SetBrush(brush);
    AddRectangle(cad, 200, 300, 260, 420);
}

QImage Zoom1Composition(TMyCAD &cad)
{
    cad.SetZoom(1.0);
    cad.DrawAll(TRect(0, 0, cad.width(), cad.height()));
    return cad.OffscreenImage().copy().convertToFormat(QImage::Format_RGB32);
}

int PdfPageCount(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    const QString text = QString::fromLatin1(file.readAll());
    return int(text.count(QRegularExpression(QStringLiteral("/Type\\s*/Page[^s]"))));
}

QByteArray Head(const QString &path, int n)
{
    return tessal::test::ReadFile(path).left(n);
}

std::uint32_t U16(const QByteArray &b, qsizetype at)
{
    return std::uint8_t(b[at]) | std::uint32_t(std::uint8_t(b[at + 1])) << 8;
}

std::uint32_t U32(const QByteArray &b, qsizetype at)
{
    return U16(b, at) | U16(b, at + 2) << 16;
}

// A placeable metafile: the 22-byte placeable header whose frame is the picture in pixels
// at dpi units per inch, the 18-byte metafile header, records of (size in words, function),
// one stretched 24-bit bottom-up DIB of the picture, and the end record.
void CheckMetafile(const QByteArray &b, const QImage &picture, int dpi)
{
    ASSERT_GT(b.size(), 40);
    EXPECT_EQ(U32(b, 0), 0x9AC6CDD7u);
    EXPECT_EQ(U16(b, 6), 0u);
    EXPECT_EQ(U16(b, 8), 0u);
    EXPECT_EQ(U16(b, 10), std::uint32_t(picture.width()));
    EXPECT_EQ(U16(b, 12), std::uint32_t(picture.height()));
    EXPECT_EQ(U16(b, 14), std::uint32_t(dpi));
    EXPECT_EQ(U16(b, 22 + 2), 9u) << "header size in words";
    // libUEMF counts the placeable header into the file size.
    EXPECT_EQ(U32(b, 22 + 6) * 2, std::uint32_t(b.size())) << "file size in words";
    qsizetype at = 22 + 18;
    qsizetype dib = -1;
    std::uint32_t last = 0xFFFF;
    while (at + 6 <= b.size()) {
        const std::uint32_t words = U32(b, at);
        last = U16(b, at + 4);
        if (last == 0x0F43)
            dib = at + 28;
        ASSERT_GE(words, 3u);
        at += qsizetype(words) * 2;
    }
    EXPECT_EQ(at, b.size());
    EXPECT_EQ(last, 0u) << "the end record closes the file";
    ASSERT_GT(dib, 0) << "no stretched DIB";
    EXPECT_EQ(U32(b, dib + 4), std::uint32_t(picture.width()));
    EXPECT_EQ(U32(b, dib + 8), std::uint32_t(picture.height()));
    EXPECT_EQ(U16(b, dib + 14), 24u);
    const qsizetype stride = (picture.width() * 3 + 3) / 4 * 4;
    for (const QPoint p : {QPoint(70, 60), QPoint(230, 360), QPoint(0, 0), QPoint(400, 600)}) {
        const qsizetype px = dib + 40 + (picture.height() - 1 - p.y()) * stride + p.x() * 3;
        ASSERT_LE(px + 3, b.size());
        const QColor c{int(std::uint8_t(b[px + 2])), int(std::uint8_t(b[px + 1])),
                       int(std::uint8_t(b[px]))};
        EXPECT_EQ(c, picture.pixelColor(p)) << p.x() << "," << p.y();
    }
}

} // namespace

TEST(PrintExport, PicturesShowThePageAtZoomOneWhateverTheScreenZoom)
{
    TMyCAD cad;
    BuildDrawing(cad);
    const QImage expected = Zoom1Composition(cad);
    ASSERT_EQ(expected.size(), cad.PagePixelSize());
    cad.SetZoom(2.5);
    const QSize screenSize = cad.size();
    cad.SetPrintABorder(true);
    cad.SetPageHead(QStringLiteral("head"));

    const QImage page = cad.ExportImage().convertToFormat(QImage::Format_RGB32);
    EXPECT_EQ(page, expected) << "the picture is the zoom-1 page without printing aids";
    EXPECT_EQ(cad.Zoom(), 2.5);
    EXPECT_EQ(cad.size(), screenSize);

    QTemporaryDir dir;
    const auto path = [&](const char *name) { return dir.filePath(QString::fromLatin1(name)); };
    // Lossless rasters decode to exactly the page.
    for (const char *name : {"page.png", "page.bmp"}) {
        SCOPED_TRACE(name);
        ASSERT_TRUE(cad.ExportToFile(path(name))) << cad.LastError().toStdString();
        EXPECT_EQ(QImage(path(name)).convertToFormat(QImage::Format_RGB32), expected);
    }
    // JPEG: same size, the fills' colours within the codec's tolerance.
    ASSERT_TRUE(cad.ExportToFile(path("page.jpeg")));
    const QImage jpeg(path("page.jpeg"));
    ASSERT_EQ(jpeg.size(), expected.size());
    for (const QPoint p : {QPoint(70, 60), QPoint(230, 360), QPoint(400, 600)}) {
        const QColor a = jpeg.pixelColor(p);
        const QColor b = expected.pixelColor(p);
        EXPECT_NEAR(a.red(), b.red(), 8);
        EXPECT_NEAR(a.green(), b.green(), 8);
        EXPECT_NEAR(a.blue(), b.blue(), 8);
    }
    // SVG: vector figures over the page's view box, painting the same fills.
    ASSERT_TRUE(cad.ExportToFile(path("page.svg")));
    QSvgRenderer svg(path("page.svg"));
    ASSERT_TRUE(svg.isValid());
    EXPECT_EQ(svg.viewBox(), QRect(QPoint(0, 0), expected.size()));
    QImage drawn(expected.size(), QImage::Format_RGB32);
    drawn.fill(Qt::black);
    {
        QPainter painter(&drawn);
        svg.render(&painter);
    }
    EXPECT_EQ(drawn.pixelColor(70, 60), QColor(Qt::red));
    EXPECT_EQ(drawn.pixelColor(230, 360), QColor(Qt::blue));
    EXPECT_EQ(drawn.pixelColor(400, 600), QColor(Qt::white));
    // PDF: one page whose media box is the page in points.
    ASSERT_TRUE(cad.ExportToFile(path("page.pdf")));
    EXPECT_EQ(Head(path("page.pdf"), 5), QByteArray("%PDF-"));
    EXPECT_EQ(PdfPageCount(path("page.pdf")), 1);
#ifdef TESSAL_HAVE_UEMF
    ASSERT_TRUE(cad.ExportToFile(path("page.wmf"))) << cad.LastError().toStdString();
    CheckMetafile(Head(path("page.wmf"), 1 << 24), expected, cad.logicalDpiX());
#endif
#if defined(TESSAL_HAVE_UEMF) && defined(TESSAL_HAVE_WMF)
    // With the writer's library in the process, the reader's still calls its own functions:
    // a metafile with text makes it map a font through a function both libraries name alike.
    QString reason;
    detail::DecodePicture(
        tessal::test::ReadFile(QStringLiteral(TESSAL_TEST_DATA_DIR "/pictures/text_with_font.wmf")),
        QStringLiteral("WMF"), reason);
#endif
}

// Any paint device takes the page as figures; without the grid unless asked for.
TEST(PrintExport, RenderToAVectorDeviceLeavesTheGridOutUnlessAsked)
{
    TMyCAD cad;
    cad.resize(120, 90);
    TBrush brush;
    brush.Color = clBlue;
    cad.SetBrush(brush);
    AddRectangle(cad, 20, 20, 80, 60);
    cad.ClearWorkingShapes();
    for (const bool grid : {false, true}) {
        QByteArray svg;
        {
            QBuffer buffer(&svg);
            buffer.open(QIODevice::WriteOnly);
            QSvgGenerator generator;
            generator.setOutputDevice(&buffer);
            generator.setSize(QSize(120, 90));
            generator.setViewBox(QRect(0, 0, 120, 90));
            ASSERT_TRUE(grid ? cad.RenderTo(&generator, TRect(0, 0, 120, 90), true)
                             : cad.RenderTo(&generator, TRect(0, 0, 120, 90)));
        }
        EXPECT_FALSE(svg.contains("<image"));
        QImage page(120, 90, QImage::Format_RGB32);
        page.fill(Qt::magenta);
        QPainter painter(&page);
        QSvgRenderer(svg).render(&painter, QRectF(0, 0, 120, 90));
        EXPECT_EQ(page.pixelColor(50, 40), QColor(Qt::blue)) << "the fill";
        EXPECT_EQ(page.pixelColor(20, 40), QColor(Qt::black)) << "the outline";
        EXPECT_EQ(page.pixelColor(110, 5), QColor(Qt::white)) << "the background";
        // Grid lines every 20 pixels: x = 100 is one.
        EXPECT_EQ(page.pixelColor(100, 70) != QColor(Qt::white), grid);
    }
}

TEST(PrintExport, SelectionPicturesAndFailuresThatKeepTheOldFile)
{
    TMyCAD cad;
    BuildDrawing(cad);
    QTemporaryDir dir;
    const QString png = dir.filePath(QStringLiteral("sel.png"));
    ASSERT_TRUE(tessal::test::WriteFile(png, "old contents"));

    cad.ClearWorkingShapes();
    for (const QString suffix : {"png", "svg", "pdf", "bmp"}) {
        EXPECT_FALSE(cad.ExportToFile(dir.filePath("sel." + suffix), TExportArea::Selection));
        EXPECT_EQ(cad.LastError(), QStringLiteral("Nothing is selected."));
    }
    EXPECT_EQ(Head(png, 64), QByteArray("old contents"));
    EXPECT_FALSE(cad.ExportToFile(dir.filePath(QStringLiteral("x.tiff"))));
    EXPECT_TRUE(cad.LastError().contains(QStringLiteral("tiff")));
    EXPECT_FALSE(cad.SaveToPng(dir.filePath(QStringLiteral("missing/dir/x.png"))));
    EXPECT_FALSE(cad.LastError().isEmpty());
    // Past a file-size limit every format fails, says why and keeps the old file (the
    // system would rename a half-written file over it, and end the program with a signal).
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    for (const char *name : {"full.png", "full.svg", "full.pdf", "full.wmf"}) {
        const QString path = dir.filePath(QLatin1String(name));
        ASSERT_TRUE(tessal::test::WriteFile(path, "old contents"));
        rlimit none = before;
        none.rlim_cur = 0;
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &none), 0);
        const bool saved = cad.ExportToFile(path);
        setrlimit(RLIMIT_FSIZE, &before);
        EXPECT_FALSE(saved) << name;
        // The metafile library reports its own scratch file's failure.
        if (!QByteArray(name).endsWith("wmf")) {
            EXPECT_TRUE(cad.LastError().contains("File too large")) << name;
        }
        EXPECT_FALSE(cad.LastError().isEmpty()) << name;
        EXPECT_EQ(Head(path, 64), QByteArray("old contents")) << name;
    }

    // The selection picture is the clipboard's picture of the shape at zoom 1.
    TMyShape *blue = cad.GetShapeByNo(1);
    cad.AddWorkingShape(blue);
    cad.SetZoom(2.0);
    ASSERT_TRUE(cad.SaveToPng(png, TExportArea::Selection)) << cad.LastError().toStdString();
    cad.SetZoom(1.0);
    const QImage expected = cad.SelectionImage().convertToFormat(QImage::Format_RGB32);
    EXPECT_EQ(QImage(png).convertToFormat(QImage::Format_RGB32), expected);
    EXPECT_EQ(expected.pixelColor(expected.width() / 2, expected.height() / 2), QColor(Qt::blue));
    // As SVG: figures, not a picture, over the same size.
    const QString svg = dir.filePath(QStringLiteral("sel.svg"));
    ASSERT_TRUE(cad.SaveToSvg(svg, TExportArea::Selection));
    EXPECT_EQ(QSvgRenderer(svg).viewBox().size(), expected.size());
    EXPECT_FALSE(Head(svg, 1 << 20).contains("<image"));
    EXPECT_TRUE(Head(svg, 1 << 20).contains("<path"));
    const QString pdf = dir.filePath(QStringLiteral("sel.pdf"));
    ASSERT_TRUE(cad.SaveToPdf(pdf, TExportArea::Selection));
    EXPECT_EQ(PdfPageCount(pdf), 1);
}

TEST(PrintExport, PrintingFitsOneSheetOrTilesAtActualSize)
{
    TMyCAD cad;
    BuildDrawing(cad);
    cad.SetPageStyle(TPageStyle::A3);
    cad.SetPageHead(QStringLiteral("Head"));
    cad.SetPageFoot(QStringLiteral("Foot"));
    QTemporaryDir dir;

    const auto makePrinter = [&](QPrinter &printer, const QString &name) {
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(dir.filePath(name));
        printer.setPageSize(QPageSize(QPageSize::A4));
        printer.setPageMargins(QMarginsF(10, 10, 10, 10), QPageLayout::Millimeter);
    };
    {
        QPrinter printer(QPrinter::HighResolution);
        makePrinter(printer, QStringLiteral("fit.pdf"));
        EXPECT_EQ(cad.PrintSheetGrid(&printer, TPrintScale::FitToPage), QSize(1, 1));
        ASSERT_TRUE(cad.Print(&printer, TPrintScale::FitToPage)) << cad.LastError().toStdString();
    }
    EXPECT_EQ(PdfPageCount(dir.filePath(QStringLiteral("fit.pdf"))), 1);
    {
        // A3 (297 x 420 mm) at its own size on 190 x 277 mm of printable A4: 2 x 2 sheets.
        QPrinter printer(QPrinter::HighResolution);
        makePrinter(printer, QStringLiteral("tiles.pdf"));
        EXPECT_EQ(cad.PrintSheetGrid(&printer, TPrintScale::ActualSize), QSize(2, 2));
        cad.SetPageOrientation(TPrinterOrientation::poLandscape);
        EXPECT_EQ(cad.PrintSheetGrid(&printer, TPrintScale::ActualSize), QSize(3, 2));
        cad.SetPageOrientation(TPrinterOrientation::poPortrait);
        ASSERT_TRUE(cad.Print(&printer, TPrintScale::ActualSize));
    }
    EXPECT_EQ(PdfPageCount(dir.filePath(QStringLiteral("tiles.pdf"))), 4);
    {
        QPrinter printer;
        makePrinter(printer, QStringLiteral("x.pdf"));
        printer.setOutputFileName(dir.filePath(QStringLiteral("missing/dir/x.pdf")));
        EXPECT_FALSE(cad.Print(&printer));
        EXPECT_FALSE(cad.LastError().isEmpty());
    }
    EXPECT_FALSE(cad.Print(nullptr));
}
