// SPDX-License-Identifier: MIT
// The repaint pipeline: off-screen composition of a rectangle, the copy to the screen image,
// the handles on top, and the drawing of the shapes in list order.
#include <tessal/surface/cad.h>

#include <tessal/shapes/shape.h>
#include <tessal/shapes/shapetools.h>

#include <QPainter>

namespace tessal {

void TMyCAD::UpdateLabelXY(std::int32_t x, std::int32_t y)
{
    if (m_LabelXY)
        m_LabelXY->setText(QStringLiteral("%1, %2").arg(x).arg(y));
}

void TMyCAD::UpdateLabelValue(const QString &text)
{
    if (m_LabelValue)
        m_LabelValue->setText(text);
}

void TMyCAD::Paint(const TRect &clip)
{
    if (m_Busy)
        return;
    EnsureScreenImage();
    if (m_ScreenImage.isNull())
        return;
    m_Busy = true;
    const TRect area = clip.Intersected(TRect(0, 0, width(), height()));
    if (!area.IsEmpty()) {
        DrawAll(area);
        // The screen canvas keeps a painter open on the screen image; it is made again on
        // demand after the copy.
        m_ScreenCanvas.reset();
        {
            QPainter screen(&m_ScreenImage);
            screen.setCompositionMode(QPainter::CompositionMode_Source);
            const QRect r = area.ToQRect();
            const qreal dpr = m_Offscreen.devicePixelRatio();
            screen.drawImage(r, m_Offscreen,
                             QRectF(QPointF(r.topLeft()) * dpr, QSizeF(r.size()) * dpr));
        }
        m_Dirty -= area.ToQRect();
        ForgetCoveredHighlight(area.ToQRect());
        DrawWorkingHandles(area);
    }
    if (m_OnPaint)
        m_OnPaint(this);
    m_Busy = false;
}

// The off-screen image has the size of the control and a repaint clips to its rectangle.
// Composing in an image only as big as the rectangle, with the painter shifted, would not
// give the same pixels: the rasteriser clips strokes against the image's bounds before
// drawing them, and a closed outline cut by the bounds loses pixels at its joins. With the
// control's size every shape meets the same bounds in every repaint, and a partial repaint
// equals the same part of a full one.
void TMyCAD::DrawAll(const TRect &rect)
{
    const qreal dpr = devicePixelRatioF();
    const QSize device = (QSizeF(size()) * dpr).toSize();
    if (m_Offscreen.size() != device || m_Offscreen.devicePixelRatio() != dpr) {
        m_Offscreen = QImage(device, QImage::Format_RGB32);
        m_Offscreen.setDevicePixelRatio(dpr);
        m_Offscreen.fill(Qt::white);
    }
    const TRect area = rect.Intersected(TRect(0, 0, width(), height()));
    if (m_Offscreen.isNull() || area.IsEmpty())
        return;
    FillBackground(m_Offscreen, area);
    DrawBkBitmapPart(m_Offscreen, QRect(QPoint(0, 0), size()), area.ToQRect());
    DrawGrid(m_Offscreen, area);
    TCanvas canvas(&m_Offscreen);
    canvas.SelectClipRect(&area);
    DrawAllShape(canvas, area);
    canvas.Flush();
}

void TMyCAD::FillBackground(QImage &image, const TRect &rect)
{
    TCanvas canvas(&image);
    canvas.Brush().Color = m_ColorOfBackGround;
    canvas.Brush().Style = TBrushStyle::bsSolid;
    canvas.FillRect(rect);
    canvas.Flush();
}

// Shapes draw themselves with the ordinary screen rule (stored value x Zoom, rounded) in
// control coordinates, so nothing needs shifting: the document is only read.
void TMyCAD::DrawAllShape(TCanvas &canvas, const TRect &rect)
{
    CollectDrawList(rect);
    for (const std::int32_t no : m_DrawList) {
        TMyShape *shape = m_Shapes[std::size_t(no)].get();
        if (shape->Visible())
            DrawShapeTree(canvas, shape, 0);
    }
    for (const std::int32_t no : m_DrawList)
        DrawLinkHotTree(canvas, m_Shapes[std::size_t(no)].get(), 0);
}

void TMyCAD::CollectDrawList(const TRect &rect)
{
    m_DrawList = ShapesInRect(rect);
}

// Members come before their group, in the group's child order; a hidden member is skipped
// with everything it contains. The depth bound stops a corrupt child list that leads back
// to an ancestor.
void TMyCAD::DrawShapeTree(TCanvas &canvas, TMyShape *shape, std::int32_t depth)
{
    if (depth > GetShapesCount())
        return;
    for (const std::int32_t no : shape->ChildShapes()) {
        TMyShape *child = GetShapeByNo(no);
        if (child && child->Visible())
            DrawShapeTree(canvas, child, depth + 1);
    }
    shape->Draw(canvas);
}

void TMyCAD::DrawLinkHotTree(TCanvas &canvas, TMyShape *shape, std::int32_t depth)
{
    if (depth > GetShapesCount())
        return;
    for (const std::int32_t no : shape->ChildShapes()) {
        if (TMyShape *child = GetShapeByNo(no))
            DrawLinkHotTree(canvas, child, depth + 1);
    }
    DrawLinkHot(*shape, canvas);
}

// The handles are drawn on the screen image only, clipped to the recomposed area: outside
// it the screen still shows them from an earlier repaint.
void TMyCAD::DrawWorkingHandles(const TRect &clip)
{
    if (m_WorkingShapes.empty())
        return;
    TCanvas canvas(&m_ScreenImage);
    canvas.SelectClipRect(&clip);
    for (TMyShape *shape : m_WorkingShapes)
        shape->DrawHot(canvas);
    canvas.Flush();
}

} // namespace tessal
