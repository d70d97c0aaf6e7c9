// SPDX-License-Identifier: MIT
// The repaint pipeline: off-screen composition of a rectangle, the copy to the screen image,
// the handles on top, and the drawing of the shapes in list order.
#include <tessal/surface/cad.h>

#include <tessal/shapes/link.h>
#include <tessal/shapes/shape.h>
#include <tessal/shapes/shapekind.h>
#include <tessal/shapes/shapetools.h>
#include <tessal/surface/mouse_p.h>
#include <tessal/surface/spatialindex_p.h>

#include <QPainter>

#include <algorithm>

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
    if (m_ScreenImage.isNull())
        EnsureScreenImage();
    if (m_ScreenImage.isNull())
        return;
    m_Busy = true;
    // Only what the screen image holds is composed; the rest stays dirty until it is shown.
    const QRect shown = ScreenImageRect();
    const TRect visible = TRect::FromQRect(shown);
    const TRect area =
        m_Mouse->Feedback().Recomposing(clip.Intersected(visible)).Intersected(visible);
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
            screen.drawImage(
                QRectF(r.translated(-m_ScreenOrigin)), m_Offscreen,
                QRectF(QPointF(r.topLeft() - m_OffscreenOrigin) * dpr, QSizeF(r.size()) * dpr));
        }
        m_Dirty -= area.ToQRect();
        ForgetCoveredHighlight(area.ToQRect());
        DrawWorkingHandles(area);
        m_Mouse->Feedback().Recomposed(area);
    }
    if (m_OnPaint)
        m_OnPaint(this);
    m_Busy = false;
}

// Shapes are composed tile by tile, on a grid fixed to the control, in an image of the tile
// and a margin around it; the canvas draws in control coordinates through its origin. The
// rasteriser cuts strokes at the image's bounds before drawing them, and a cut line or
// outline is not drawn exactly as an uncut one: the steps of a one-pixel line are worked out
// again from where it enters, a closed outline loses pixels at its joins. With a fixed grid,
// a control pixel is always drawn in the same tile image, whichever rectangle is repainted,
// so a partial repaint equals the same part of a full one; the margin keeps the cuts out of
// the tile, so that no seams show between tiles.
void TMyCAD::DrawAll(const TRect &rect)
{
    const TRect area = rect.Intersected(TRect(0, 0, width(), height()));
    if (area.IsEmpty())
        return;
    const qreal dpr = devicePixelRatioF();
    const QRect target = area.ToQRect();
    const QSize device = (QSizeF(target.size()) * dpr).toSize();
    if (m_Offscreen.size() != device || m_Offscreen.devicePixelRatio() != dpr) {
        m_Offscreen = QImage(device, QImage::Format_RGB32);
        m_Offscreen.setDevicePixelRatio(dpr);
    }
    m_OffscreenOrigin = target.topLeft();
    const QPoint origin = m_OffscreenOrigin;
    // What lies under the shapes has no cut strokes: it is drawn for rect alone.
    FillBackground(m_Offscreen, TRect(0, 0, target.width(), target.height()));
    DrawBkBitmapPart(m_Offscreen, QRect(-origin, size()), target.translated(-origin));
    DrawGrid(m_Offscreen, area, origin);
    CollectDrawList(area);
    if (m_DrawList.empty())
        return;
    const std::int32_t margin = CompositionMargin();
    const std::int32_t side = std::max(256, int(2048 / dpr)); // a tile is at most 2048 pixels
    const QRect control = QWidget::rect();
    std::vector<std::int32_t> list;
    for (std::int32_t ty = target.top() / side; ty * side <= target.bottom(); ++ty)
        for (std::int32_t tx = target.left() / side; tx * side <= target.right(); ++tx) {
            const QRect cell = QRect(tx * side, ty * side, side, side) & control;
            const QRect part = cell & target;
            list.clear();
            for (const std::int32_t no : m_DrawList)
                if (m_Index->Entry(no).Extent.ScreenRect(m_Zoom).Intersects(TRect::FromQRect(part)))
                    list.push_back(no);
            if (!list.empty())
                ComposeTile(cell.adjusted(-margin, -margin, margin, margin), part, list);
        }
}

// Composes the shapes of list into part (control pixels) of the off-screen image, through an
// image of tile.
void TMyCAD::ComposeTile(const QRect &tile, const QRect &part,
                         const std::vector<std::int32_t> &list)
{
    const qreal dpr = m_Offscreen.devicePixelRatio();
    const QSize device = (QSizeF(tile.size()) * dpr).toSize();
    if (m_Tile.size() != device || m_Tile.devicePixelRatio() != dpr) {
        m_Tile = QImage(device, QImage::Format_RGB32);
        m_Tile.setDevicePixelRatio(dpr);
    }
    const auto copy = [dpr](QImage &to, QPoint toOrigin, const QImage &from, QPoint fromOrigin,
                            const QRect &r) {
        QPainter painter(&to);
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.drawImage(QRectF(r.translated(-toOrigin)), from,
                          QRectF(QPointF(r.topLeft() - fromOrigin) * dpr, QSizeF(r.size()) * dpr));
    };
    copy(m_Tile, tile.topLeft(), m_Offscreen, m_OffscreenOrigin, part);
    {
        TCanvas canvas(&m_Tile);
        canvas.SetOrigin(TPoint(tile.left(), tile.top()));
        const TRect clip = TRect::FromQRect(part);
        canvas.SelectClipRect(&clip);
        DrawListedShapes(canvas, list);
        canvas.Flush();
    }
    copy(m_Offscreen, m_OffscreenOrigin, m_Tile, tile.topLeft(), part);
}

// The widest reach of the document's shapes beyond their points (pens, arrow heads, marks)
// and a few pixels more. It depends on the document alone, not on what a repaint draws, so
// that every repaint cuts strokes at the same places. It is capped: a pen wider than the
// cap (only damaged or absurd drawings have one) may show a seam at a tile edge, but the
// tile image stays a few megabytes instead of growing with the pen.
std::int32_t TMyCAD::CompositionMargin() const
{
    constexpr std::int32_t MaxPad = 256;
    return m_Index->LargestPad(MaxPad) + 8;
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
    DrawListedShapes(canvas, m_DrawList);
}

namespace {

// Shapes lie apart in memory, and a big repaint draws tens of thousands of them: waiting for
// every one to arrive from memory costs more than drawing most of them. The drawing loop asks
// for the shapes a few places ahead: the object first, its points once the object is there.
constexpr std::size_t ShapesAhead = 8;
constexpr std::size_t ShapePointsAhead = 4;

void PrefetchShape(const TMyShape *shape)
{
    const auto *bytes = reinterpret_cast<const char *>(shape);
    for (std::size_t at = 0; at < sizeof(TMyShape); at += 64)
        __builtin_prefetch(bytes + at);
}

} // namespace

void TMyCAD::DrawListedShapes(TCanvas &canvas, const std::vector<std::int32_t> &list)
{
    const auto shapeAt = [&](std::size_t i) { return m_Shapes[std::size_t(list[i])].get(); };
    for (std::size_t i = 0; i < list.size(); ++i) {
        if (i + ShapesAhead < list.size())
            PrefetchShape(shapeAt(i + ShapesAhead));
        if (i + ShapePointsAhead < list.size())
            __builtin_prefetch(shapeAt(i + ShapePointsAhead)->Points().data());
        TMyShape *shape = shapeAt(i);
        if (shape->Visible())
            DrawShapeTree(canvas, shape, 0);
    }
    for (const std::int32_t no : list)
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
// A selection of the whole of a big drawing has most of its handles far from the clip; they
// are passed over by the box the index keeps. A connector's route, with its handles, can be
// worked out on the screen beyond that box, so connectors are always asked.
void TMyCAD::DrawWorkingHandles(const TRect &clip)
{
    if (m_WorkingShapes.empty())
        return;
    TCanvas canvas(&m_ScreenImage);
    canvas.SetOrigin(TPoint(m_ScreenOrigin.x(), m_ScreenOrigin.y()));
    canvas.SelectClipRect(&clip);
    TShapeKind<TMyLinkLine> asConnector;
    for (TMyShape *shape : m_WorkingShapes)
        if (asConnector(shape) || HandlesReach(shape).Intersects(clip))
            shape->DrawHot(canvas);
    canvas.Flush();
}

TRect TMyCAD::HandlesReach(TMyShape *shape) const
{
    // The index keeps the extent of a top-level shape at the zoom it was made for; anything
    // else is measured.
    const std::int32_t no = GetShapeNoInMyShapes(shape);
    const bool current = m_Index && !m_Index->IsStale() && m_Index->Zoom() == m_Zoom;
    const TShapeIndex::TEntry *entry =
        current && no >= 0 && no < m_Index->Count() ? &m_Index->Entry(no) : nullptr;
    const TRect box = entry && entry->Shape == shape && entry->Extent.Indexed
                          ? entry->Extent.ScreenRect(m_Zoom)
                          : ShapeScreenRect(shape);
    return box.Inflated(m_HotSize + 4, m_HotSize + 4);
}

} // namespace tessal
