// SPDX-License-Identifier: MIT
// What lies under the shapes: the background picture and the grid.
#include <tessal/geometry/geometry.h>
#include <tessal/surface/cad.h>

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace tessal {

namespace {

// The part visible of a page of size page stretched from picture: page pixel (u, v) shows
// picture pixel (u x pw / W, v x ph / H), integer division, so every picture pixel covers a
// run of whole page pixels and any part of the page can be produced on its own.
QImage StretchPart(const QImage &picture, QSize page, const QRect &part)
{
    const QImage source = picture.convertToFormat(QImage::Format_RGB32);
    QImage out(part.size(), QImage::Format_RGB32);
    std::vector<std::int32_t> columns(std::size_t(part.width()));
    for (std::int32_t x = 0; x < part.width(); ++x)
        columns[std::size_t(x)] =
            std::int32_t(std::int64_t(part.left() + x) * source.width() / page.width());
    for (std::int32_t y = 0; y < part.height(); ++y) {
        const auto row =
            std::int32_t(std::int64_t(part.top() + y) * source.height() / page.height());
        const auto *in = reinterpret_cast<const QRgb *>(source.constScanLine(row));
        auto *target = reinterpret_cast<QRgb *>(out.scanLine(y));
        for (std::int32_t x = 0; x < part.width(); ++x)
            target[x] = in[columns[std::size_t(x)]];
    }
    return out;
}

} // namespace

// Placement on the page, whose top-left corner is (dx, dy) of image:
//   Tiled    copies side by side from the page's corner, as far as the page reaches;
//   Stretch  the page covered exactly (see StretchPart);
//   Center   the picture's corner at ((W - w) / 2, (H - h) / 2), integer division;
//   LeftTop  the picture's corner at the page's corner.
// Nothing is drawn outside the page. The picture is copied as it is, without blending.
void TMyCAD::DrawBkBitmap(QImage &image, std::int32_t dx, std::int32_t dy, bool printing)
{
    const QSize imageSize = image.deviceIndependentSize().toSize();
    DrawBkBitmapPart(image, QRect(QPoint(dx, dy), printing ? imageSize : size()),
                     QRect(QPoint(0, 0), imageSize));
}

// Draws only what falls into clip, so that a small repaint copies few pixels.
void TMyCAD::DrawBkBitmapPart(QImage &image, QRect page, QRect clip)
{
    if (m_BkBitmap.IsEmpty() || image.isNull())
        return;
    const QImage &picture = m_BkBitmap.Image();
    const QRect visible = page & clip & QRect(QPoint(0, 0), image.deviceIndependentSize().toSize());
    if (visible.isEmpty())
        return;
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.setClipRect(visible);
    const std::int32_t dx = page.left();
    const std::int32_t dy = page.top();
    const std::int32_t w = picture.width();
    const std::int32_t h = picture.height();
    switch (m_BkBitmapMode) {
    case TBkBitmapMode::Tiled: {
        // Only the tiles that meet the visible part.
        const std::int32_t firstColumn = (visible.left() - dx) / w;
        const std::int32_t firstRow = (visible.top() - dy) / h;
        for (std::int32_t y = dy + firstRow * h; y <= visible.bottom(); y += h)
            for (std::int32_t x = dx + firstColumn * w; x <= visible.right(); x += w)
                painter.drawImage(QPoint(x, y), picture);
        break;
    }
    case TBkBitmapMode::Stretch:
        painter.drawImage(visible.topLeft(),
                          StretchPart(picture, page.size(), visible.translated(-dx, -dy)));
        break;
    case TBkBitmapMode::Center:
        painter.drawImage(QPoint(dx + (page.width() - w) / 2, dy + (page.height() - h) / 2),
                          picture);
        break;
    case TBkBitmapMode::LeftTop:
        painter.drawImage(QPoint(dx, dy), picture);
        break;
    }
}

// Steps that are not positive draw nothing (a negative step would never reach the edge).
// Lines keep the page's phase, so a line lies on the same control column whichever
// rectangle is repainted, as long as the step is a whole number of pixels; dots start at
// rect's corner in every repaint, so that they only line up across repaints of rectangles
// whose corners lie on the dot grid.
void TMyCAD::DrawGrid(QImage &image, const TRect &rect, QPoint origin)
{
    const TGridObject &grid = *m_Grid;
    if (grid.GridType() == TGridType::gNone)
        return;
    const double scale = grid.GridInZoom() ? m_Zoom : 1.0;
    const double sy = grid.GridHeight() * scale;
    const double sx = grid.GridWidth() * scale;
    if (!(sx > 0) || !(sy > 0))
        return;
    m_GridDrawing = true;
    if (grid.GridShow()) {
        // The grid is laid out from rect's corner, as if rect were an image of its own.
        TCanvas canvas(&image);
        canvas.SetOrigin(TPoint(origin.x(), origin.y()));
        canvas.SelectClipRect(&rect);
        canvas.SetWorldTransform(QTransform::fromTranslate(rect.Left, rect.Top));
        const QSize size(rect.Width(), rect.Height());
        if (grid.GridType() == TGridType::gPixel)
            DrawGridDots(canvas, size, sx, sy);
        else
            DrawGridLines(canvas, size, sx, sy, rect);
        canvas.Flush();
    }
    m_GridDrawing = false;
}

namespace {

// The first index after i worth trying once position `last` was drawn: positions are
// monotone in the index, so every index before the one that reaches last + 1/2 rounds to
// last again. One less is tried, so that a rounding of the quotient never skips a pixel.
std::int64_t NextDistinct(std::int64_t i, double step, std::int32_t last, std::int32_t p)
{
    const double reach = std::floor((double(last) + 0.5 + p) / step) - 1;
    return reach > double(i + 1) ? std::int64_t(reach) : i + 1;
}

} // namespace

// Positions are i x step rather than a running sum, so that no error accumulates across a
// large page. A step below one pixel would round several positions onto the same pixel;
// those repeats are skipped without being visited, so that a tiny step paints as fast as
// a one-pixel step and the same pixels.
void TMyCAD::DrawGridDots(TCanvas &canvas, QSize size, double sx, double sy)
{
    const std::int32_t p = m_Grid->GridPenSize();
    const TColor colour = m_Grid->GridColor();
    canvas.Pen() = TPen{colour, TPenMode::pmCopy, TPenStyle::psSolid, p};
    canvas.Brush().Color = colour;
    canvas.Brush().Style = TBrushStyle::bsSolid;
    std::int32_t lastTop = INT32_MIN;
    for (std::int64_t j = 0; j * sy <= size.height(); j = NextDistinct(j, sy, lastTop, p)) {
        const double y = double(j) * sy;
        const std::int32_t top = RoundEven(y - p);
        if (top == lastTop)
            continue;
        lastTop = top;
        std::int32_t lastLeft = INT32_MIN;
        for (std::int64_t i = 0; i * sx <= size.width(); i = NextDistinct(i, sx, lastLeft, p)) {
            const double x = double(i) * sx;
            const std::int32_t left = RoundEven(x - p);
            if (left == lastLeft)
                continue;
            lastLeft = left;
            canvas.Rectangle(TRect(left, top, RoundEven(x + p), RoundEven(y + p)));
        }
    }
}

// The phase of the page grid inside rect: the first line sits at -offset, where offset is
// rect's corner minus the nearest multiple of the step (halves to even).
void TMyCAD::DrawGridLines(TCanvas &canvas, QSize size, double sx, double sy, const TRect &rect)
{
    const double oy = rect.Top - std::nearbyint(rect.Top / sy) * sy;
    const double ox = rect.Left - std::nearbyint(rect.Left / sx) * sx;
    canvas.Pen() =
        TPen{m_Grid->GridColor(), TPenMode::pmCopy, TPenStyle::psSolid, m_Grid->GridPenSize()};
    std::int32_t last = INT32_MIN;
    for (std::int64_t i = 0; - ox + double(i) * sx <= size.width(); ++i) {
        const std::int32_t x = RoundEven(-ox + double(i) * sx);
        if (x == last)
            continue;
        last = x;
        canvas.MoveTo(x, 0);
        canvas.LineTo(x, size.height());
    }
    last = INT32_MIN;
    for (std::int64_t i = 0; - oy + double(i) * sy <= size.height(); ++i) {
        const std::int32_t y = RoundEven(-oy + double(i) * sy);
        if (y == last)
            continue;
        last = y;
        canvas.MoveTo(0, y);
        canvas.LineTo(size.width(), y);
    }
}

} // namespace tessal
