// SPDX-License-Identifier: MIT
// The surface drawn on vector devices: the page and the copied shapes as SVG figures that
// read back as the surface shows them.
#include <tessal/shapes/shape.h>
#include <tessal/shapes/shapetools.h>
#include <tessal/surface/cad.h>

#include <gtest/gtest.h>

#include <QBuffer>
#include <QPainter>
#include <QSvgGenerator>
#include <QSvgRenderer>

namespace tessal {
namespace {

unsigned RgbAt(const QImage &image, int x, int y)
{
    return image.pixel(x, y) & 0xFFFFFFu;
}

QImage RenderedBack(const QByteArray &svg, QSize size)
{
    QSvgRenderer renderer(svg);
    EXPECT_TRUE(renderer.isValid());
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::magenta); // shows where the document paints nothing
    QPainter painter(&image);
    renderer.render(&painter, QRectF(QPointF(0, 0), QSizeF(size)));
    return image;
}

// A 120 x 90 page with one rectangle (20, 20)-(80, 60) filled blue, without background
// picture or grid: every part of the page is a figure.
struct OneRectangle
{
    TMyCAD cad;
    TMyShape *rect = nullptr;
    OneRectangle()
    {
        cad.resize(120, 90);
        cad.GridOperation()->SetGridShow(false);
        cad.SetShowHotLink(false);
        const TMyPoint corners[] = {{20, 20}, {80, 60}};
        rect = cad.GetShapeByID(cad.AddShapeByCode(TDrawTool::SpRectangle, {}, corners, 0, {}));
        rect->SetBrush(TBrush{0xFF0000, TBrushStyle::bsSolid, {}});
    }
};

} // namespace

TEST(VectorExport, PageAndSelectionAsSvgFigures)
{
    OneRectangle d;
    QByteArray svg;
    {
        QBuffer buffer(&svg);
        buffer.open(QIODevice::WriteOnly);
        QSvgGenerator generator;
        generator.setOutputDevice(&buffer);
        generator.setSize(QSize(120, 90));
        generator.setViewBox(QRect(0, 0, 120, 90));
        ASSERT_TRUE(d.cad.RenderTo(&generator, TRect(0, 0, 120, 90)));
    }
    EXPECT_TRUE(svg.contains("<path") || svg.contains("<rect") || svg.contains("<polygon"));
    EXPECT_FALSE(svg.contains("<image"));
    const QImage page = RenderedBack(svg, QSize(120, 90));
    EXPECT_EQ(RgbAt(page, 50, 40), 0x0000FFu) << "the fill";
    EXPECT_EQ(RgbAt(page, 20, 40), 0x000000u) << "the outline";
    EXPECT_EQ(RgbAt(page, 5, 5), 0xFFFFFFu) << "the background colour";
    EXPECT_EQ(RgbAt(page, 100, 80), 0xFFFFFFu);

    // The working shape copied: the picture of its painted extent, as figures.
    d.cad.SetWorkingShapes(std::vector{d.rect});
    const QImage picture = d.cad.SelectionImage();
    const QByteArray selection = d.cad.SelectionSvg();
    ASSERT_FALSE(picture.isNull());
    EXPECT_FALSE(selection.contains("<image"));
    EXPECT_TRUE(selection.contains("<path") || selection.contains("<rect"));
    const QImage copied = RenderedBack(selection, picture.size());
    const TRect box = d.cad.ShapeScreenRect(d.rect);
    for (const QPoint at : {QPoint(50, 40), QPoint(20, 40), QPoint(79, 59), QPoint(box.Left, 40)}) {
        const QPoint in = at - QPoint(box.Left, box.Top);
        EXPECT_EQ(RgbAt(copied, in.x(), in.y()), RgbAt(picture, in.x(), in.y()))
            << at.x() << ", " << at.y();
    }
    d.cad.ClearWorkingShapes();
    EXPECT_TRUE(d.cad.SelectionSvg().isEmpty());
}

} // namespace tessal
