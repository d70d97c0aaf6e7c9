// SPDX-License-Identifier: MIT
// Drawing the document on any paint device: vector files, printers, pictures.
#include <tessal/surface/cad.h>

#include <tessal/platform/color.h>
#include <tessal/shapes/shape.h>

#include <QImage>
#include <QPainter>

namespace tessal {

// The same layers as a repaint composes (render.cpp), drawn through the canvas instead of
// on the off-screen image. The background picture is a raster either way: the part under
// the page is composed on an image of the page and placed as one picture.
void TMyCAD::DrawDocument(TCanvas &canvas, const TRect &page, bool grid)
{
    if (page.IsEmpty())
        return;
    const QRect target = page.ToQRect();
    const QPoint origin = target.topLeft();
    canvas.SetOrigin(TPoint(origin.x(), origin.y()));
    canvas.SelectClipRect(&page);
    canvas.Brush().Color = m_ColorOfBackGround;
    canvas.Brush().Style = TBrushStyle::bsSolid;
    canvas.FillRect(page);
    if (!m_BkBitmap.IsEmpty()) {
        QImage picture(target.size(), QImage::Format_RGB32);
        picture.fill(ToQColor(m_ColorOfBackGround));
        DrawBkBitmapPart(picture, QRect(-origin, size()), QRect(QPoint(0, 0), target.size()));
        canvas.Draw(page.Left, page.Top, picture);
    }
    if (grid)
        DrawGridOn(canvas, page);
    CollectDrawList(page);
    DrawListedShapes(canvas, m_DrawList);
    canvas.SelectClipRect(nullptr);
}

bool TMyCAD::RenderTo(QPaintDevice *device, const TRect &page, bool grid)
{
    if (!device)
        return false;
    TCanvas canvas(device);
    if (!canvas.Painter().isActive())
        return false;
    DrawDocument(canvas, page, grid);
    return true;
}

// DrawGrid's layout (the grid laid out from the page's corner) on a canvas that is already
// shifted to the page.
void TMyCAD::DrawGridOn(TCanvas &canvas, const TRect &page)
{
    const TGridObject &gridObject = *m_Grid;
    if (gridObject.GridType() == TGridType::gNone || !gridObject.GridShow())
        return;
    const double scale = gridObject.GridInZoom() ? m_Zoom : 1.0;
    const double sy = gridObject.GridHeight() * scale;
    const double sx = gridObject.GridWidth() * scale;
    if (!(sx > 0) || !(sy > 0))
        return;
    m_GridDrawing = true;
    const QTransform world = canvas.WorldTransform();
    canvas.SetWorldTransform(QTransform::fromTranslate(page.Left, page.Top) * world);
    const QSize size(page.Width(), page.Height());
    if (gridObject.GridType() == TGridType::gPixel)
        DrawGridDots(canvas, size, sx, sy);
    else
        DrawGridLines(canvas, size, sx, sy, page);
    canvas.SetWorldTransform(world);
    m_GridDrawing = false;
}

} // namespace tessal
