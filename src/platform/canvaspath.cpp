// SPDX-License-Identifier: MIT
// TCanvas paths, regions, clipping and world transforms.
#include "canvas_p.h"

#include <QVarLengthArray>

#include <cmath>

namespace tessal {

TRegion::TRegion(std::span<const TPoint> polygon, TFillMode mode)
{
    if (polygon.size() < 3)
        return;
    m_Points.assign(polygon.begin(), polygon.end());
    m_Winding = mode == TFillMode::fmWinding;
    m_Path.moveTo(polygon[0].X, polygon[0].Y);
    for (std::size_t i = 1; i < polygon.size(); ++i)
        m_Path.lineTo(polygon[i].X, polygon[i].Y);
    m_Path.closeSubpath();
    m_Path.setFillRule(mode == TFillMode::fmWinding ? Qt::WindingFill : Qt::OddEvenFill);
}

TRegion TRegion::FromRect(const TRect &r)
{
    TRegion region;
    const TRect n = r.Normalized();
    if (n.IsEmpty())
        return region;
    region.m_Path.addRect(QRectF(n.Left, n.Top, n.Width(), n.Height()));
    region.m_Points = {{n.Left, n.Top}, {n.Right, n.Top}, {n.Right, n.Bottom}, {n.Left, n.Bottom}};
    return region;
}

bool TRegion::Contains(TPoint p) const
{
    return Contains(m_Points, FillMode(), p);
}

// A pixel belongs to the region when its centre does, by the rule the region is filled
// with, centres on an edge included. Fewer than three points make no region.
bool TRegion::Contains(std::span<const TPoint> polygon, TFillMode mode, TPoint p)
{
    if (polygon.size() < 3)
        return false;
    const std::int32_t winding = canvasdetail::TPolygonFill::WindingAt(polygon, p);
    return mode == TFillMode::fmWinding ? winding != 0 : (winding & 1) != 0;
}

TRect TRegion::Bounds() const
{
    if (m_Path.isEmpty())
        return {};
    const QRectF b = m_Path.boundingRect();
    return {int(std::floor(b.left())), int(std::floor(b.top())), int(std::ceil(b.right())),
            int(std::ceil(b.bottom()))};
}

void TCanvas::BeginPath()
{
    d->Path = QPainterPath();
    m_Recording = true;
}

void TCanvas::EndPath()
{
    m_Recording = false;
}

void TCanvas::CloseFigure()
{
    if (m_Recording)
        d->Path.closeSubpath();
}

void TCanvas::AbortPath()
{
    d->Path = QPainterPath();
    m_Recording = false;
}

void TCanvas::FlattenPath()
{
    if (m_Recording)
        return;
    QPainterPath flat;
    for (const QPolygonF &polygon : d->Path.toSubpathPolygons()) {
        if (polygon.isEmpty())
            continue;
        flat.moveTo(polygon.first());
        for (qsizetype i = 1; i < polygon.size(); ++i)
            flat.lineTo(polygon[i]);
    }
    d->Path = flat;
}

std::vector<TPoint> TCanvas::GetPathPoints() const
{
    std::vector<TPoint> points;
    points.reserve(std::size_t(d->Path.elementCount()));
    for (int i = 0; i < d->Path.elementCount(); ++i) {
        const QPainterPath::Element e = d->Path.elementAt(i);
        points.push_back({std::int32_t(std::nearbyint(e.x)), std::int32_t(std::nearbyint(e.y))});
    }
    return points;
}

// A path is used up by stroking or filling it, as the recording is meant for one drawing.
void TCanvas::StrokePath()
{
    if (m_Recording)
        return;
    const QPainterPath path = d->Path;
    d->Path = QPainterPath();
    Render(path, nullptr);
}

void TCanvas::FillPath()
{
    if (m_Recording)
        return;
    const QPainterPath path = d->Path;
    d->Path = QPainterPath();
    const TPen pen = m_Pen;
    m_Pen.Style = TPenStyle::psClear;
    Render(path, &path);
    m_Pen = pen;
}

void TCanvas::StrokeAndFillPath()
{
    if (m_Recording)
        return;
    const QPainterPath path = d->Path;
    d->Path = QPainterPath();
    Render(path, &path);
}

void TCanvas::FillRgn(const TRegion &region, const TBrush &brush)
{
    QPainter &p = d->Painter;
    p.setCompositionMode(QPainter::CompositionMode_SourceOver);
    p.setPen(Qt::NoPen);
    p.setBrush(canvasdetail::MakeQBrush(brush));
    if (region.IsEmpty() || FillPolygonAsSpans(region.Points(), region.FillMode(), brush))
        return;
    p.drawPath(region.Path());
}

// The polygon goes to the rasteriser as it is: the same edges as the region's path, without the
// path's allocation.
void TCanvas::FillPolygon(std::span<const TPoint> polygon, TFillMode mode, const TBrush &brush)
{
    QPainter &p = d->Painter;
    p.setCompositionMode(QPainter::CompositionMode_SourceOver);
    p.setPen(Qt::NoPen);
    p.setBrush(canvasdetail::MakeQBrush(brush));
    if (polygon.size() < 3 || FillPolygonAsSpans(polygon, mode, brush))
        return;                          // an empty region, or filled
    QVarLengthArray<QPoint, 128> points; // on the stack for every outline of the shapes
    points.reserve(qsizetype(polygon.size()));
    for (const TPoint &pt : polygon)
        points.append(QPoint(pt.X, pt.Y));
    p.drawPolygon(points.constData(), int(points.size()),
                  mode == TFillMode::fmWinding ? Qt::WindingFill : Qt::OddEvenFill);
}

void TCanvas::StrokeClosedFigure(std::span<const TPoint> points)
{
    if (points.empty())
        return;
    d->Path = QPainterPath();
    m_Recording = false;
    m_PenPos = points.back();
    if (StrokeChainAsSpans(points, true) || StrokeChainThin(points, true))
        return;
    QPainterPath path;
    path.reserve(int(points.size()) + 1);
    path.moveTo(points[0].X, points[0].Y);
    for (std::size_t i = 1; i < points.size(); ++i)
        path.lineTo(points[i].X, points[i].Y);
    path.closeSubpath();
    Render(path, nullptr);
}

void TCanvas::SelectClipRgn(const TRegion *region)
{
    if (region)
        d->Clip = region->Path();
    else
        d->Clip.reset();
    d->ClipRect.reset();
    RestoreDeviceState();
}

void TCanvas::SelectClipRect(const TRect *rect)
{
    if (rect) {
        QPainterPath clip;
        const TRect n = rect->Normalized();
        clip.addRect(QRectF(n.Left, n.Top, n.Width(), n.Height()));
        d->Clip = clip;
        d->ClipRect = QRect(n.Left, n.Top, n.Width(), n.Height());
    } else {
        d->Clip.reset();
        d->ClipRect.reset();
    }
    RestoreDeviceState();
}

void TCanvas::SetWorldTransform(const QTransform &t)
{
    d->World = t;
    DeviceChanged();
    d->Painter.setWorldTransform(DeviceTransform());
}

void TCanvas::ResetWorldTransform()
{
    SetWorldTransform(QTransform());
}

QTransform TCanvas::WorldTransform() const
{
    return d->World;
}

} // namespace tessal
