// SPDX-License-Identifier: MIT
// TCanvas: wide outlines with round joins and ends, painted as the spans of TRoundStroke.
#include "canvas_p.h"
#include "fillpixels_p.h"

#include <QVarLengthArray>

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace tessal {

using namespace canvasdetail;

std::optional<QPoint> canvasdetail::WholeShift(const QTransform &t)
{
    if (t.type() > QTransform::TxTranslate || t.dx() != std::floor(t.dx()) ||
        t.dy() != std::floor(t.dy()) || std::abs(t.dx()) > 1e9 || std::abs(t.dy()) > 1e9)
        return std::nullopt;
    return QPoint(int(t.dx()), int(t.dy()));
}

namespace {

// The largest image side whose pixel coordinates the thin stroke's fixed point holds.
constexpr int MaxThinSide = 32767;

bool IsWholeNumber(qreal v)
{
    return v == std::floor(v) && std::abs(v) < 1e9;
}

} // namespace

// Wide solid outlines with round joins and ends are rasterised by TRoundStroke when their
// pixels are the image's own: on an image without scaling, for outlines through pixel centres.
bool TCanvas::RoundStrokeApplies() const
{
    if (IsVector() || m_Recording || m_Target->devicePixelRatio() != 1)
        return false;
    if (m_Geometric)
        return m_Pen.Width >= 2 && m_Join == TPenJoin::pjRound && m_Cap == TPenEndCap::pecRound &&
               (m_Pen.Style == TPenStyle::psSolid || m_Pen.Style == TPenStyle::psInsideFrame);
    return m_Pen.Width >= 2 && m_Pen.Style != TPenStyle::psClear;
}

// Collects the pixels of the outline's stroke; false, with nothing collected, when the
// outline has curves or points between pixels, which the general stroker handles.
bool TCanvas::CollectRoundStroke(const QPainterPath &outline)
{
    const std::optional<QPoint> &shift = d->DeviceShift;
    if (!shift)
        return false;
    for (int i = 0; i < outline.elementCount(); ++i) {
        const QPainterPath::Element &e = outline.elementAt(i);
        if (e.isCurveTo() || !IsWholeNumber(e.x) || !IsWholeNumber(e.y))
            return false;
    }
    QPoint last;
    bool first = true; // the first segment of a figure draws its start disc
    for (int i = 0; i < outline.elementCount(); ++i) {
        const QPainterPath::Element &e = outline.elementAt(i);
        const QPoint at = QPoint(int(e.x), int(e.y)) + *shift;
        if (e.isLineTo())
            d->Stroke.AddSegment(last, at, std::exchange(first, false));
        else
            first = true;
        last = at;
    }
    return true;
}

// The same for a chain of points moved by shift, closed back to the first one when asked.
void TCanvas::CollectRoundStroke(std::span<const TPoint> chain, bool closed, QPoint shift)
{
    TRoundStroke &stroke = d->Stroke;
    const auto at = [&](std::size_t i) { return QPoint(chain[i].X, chain[i].Y) + shift; };
    // A closed chain's first start disc is its last end disc. A segment of no length adds
    // nothing but its end disc, which the segment before it has added at the same point
    // already (small ellipses and curves repeat points often): it is left out, handing its
    // start disc on, unless a closed chain has nothing else to show.
    bool start = !closed, added = false;
    for (std::size_t i = 1; i < chain.size(); ++i) {
        if (chain[i] == chain[i - 1] && (!start || i + 1 < chain.size()))
            continue;
        stroke.AddSegment(at(i - 1), at(i), std::exchange(start, false));
        added = true;
    }
    if (closed && !added && chain.size() > 1)
        stroke.AddSegment(at(0), at(0), false);
    // As a closed path does: the closing line only when the chain ends elsewhere.
    if (closed && chain.size() > 1 && chain.back() != chain.front())
        stroke.AddSegment(at(chain.size() - 1), at(0), false);
}

// Spans are written straight into the image where its format and the clipping allow;
// otherwise they go through the painter, which applies the clipping and the pen mode.
bool TCanvas::WritesSpansDirectly(bool copy) const
{
    const QImage::Format format = m_Target->format();
    return (format == QImage::Format_RGB32 ||
            (copy &&
             (format == QImage::Format_ARGB32 || format == QImage::Format_ARGB32_Premultiplied))) &&
           d->Painter.hasClipping() == d->Clip.has_value() && (!d->Clip || d->ClipRect);
}

namespace {

bool CopiesPen(TPenMode mode)
{
    return mode == TPenMode::pmCopy || mode == TPenMode::pmBlack || mode == TPenMode::pmWhite;
}

} // namespace

// Starts a stroke inside the image and the clipping. A stroke in copy mode straight into the
// image is painted row by row as it is worked out: painting a pixel twice does no harm there.
bool TCanvas::BeginRoundStroke(bool direct, const QColor &colour)
{
    QRect bounds = m_Target->rect();
    if (direct && d->ClipRect)
        bounds &= d->ClipRect->translated(-m_Origin.X, -m_Origin.Y);
    d->Stroke.Reset(m_Pen.Width, bounds);
    if (!direct || !CopiesPen(m_Pen.Mode))
        return false;
    d->Stroke.PaintDirectly(const_cast<uchar *>(m_Target->constBits()), m_Target->bytesPerLine(),
                            0xFF000000u | colour.rgb());
    return true;
}

bool TCanvas::StrokeAsSpans(const QPainterPath &outline, const QColor &colour)
{
    if (!RoundStrokeApplies())
        return false;
    const bool direct = WritesSpansDirectly(CopiesPen(m_Pen.Mode));
    const bool painted = BeginRoundStroke(direct, colour);
    if (!CollectRoundStroke(outline))
        return false;
    if (!painted)
        PaintSpans(direct, colour);
    return true;
}

// Strokes a chain of points with the pen as an outline without fill, when the span rule
// applies; the painter's state is left as it was.
bool TCanvas::StrokeChainAsSpans(std::span<const TPoint> chain, bool closed)
{
    if (!RoundStrokeApplies())
        return false;
    const std::optional<QPoint> &shift = d->DeviceShift;
    if (!shift)
        return false;
    const ModeSetup mode = SetupForMode(m_Pen.Mode);
    if (!mode.Draw)
        return true;
    const bool direct = WritesSpansDirectly(CopiesPen(m_Pen.Mode));
    const QColor colour = mode.ForcedColor ? *mode.ForcedColor : ToQColor(m_Pen.Color);
    const bool painted = BeginRoundStroke(direct, colour);
    CollectRoundStroke(chain, closed, *shift);
    if (painted)
        return true;
    d->Painter.setCompositionMode(mode.Composition);
    PaintSpans(direct, colour);
    d->Painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    return true;
}

void TCanvas::PaintSpans(bool direct, const QColor &colour)
{
    const std::vector<TSpan> &spans = d->Stroke.Spans();
    if (direct) {
        WriteSpans(spans, colour.rgb(), CopiesPen(m_Pen.Mode) ? TPenMode::pmCopy : m_Pen.Mode);
        return;
    }
    QPainter &p = d->Painter;
    QVarLengthArray<QRect, 256> rects;
    for (const TSpan &s : spans)
        rects.append(QRect(s.Left, s.Y, s.Right - s.Left, 1));
    p.setWorldTransform(QTransform());
    p.setPen(Qt::NoPen);
    p.setBrush(colour);
    p.drawRects(rects.constData(), int(rects.size()));
    p.setWorldTransform(DeviceTransform());
}

void TCanvas::WriteSpans(const std::vector<TSpan> &spans, QRgb colour, TPenMode mode)
{
    uchar *bits = const_cast<uchar *>(m_Target->constBits()); // the painter's own pixels
    const qsizetype stride = m_Target->bytesPerLine();
    const QRgb opaque = 0xFF000000u | colour;
    for (const TSpan &s : spans) {
        auto *row = reinterpret_cast<QRgb *>(bits + stride * s.Y);
        if (mode == TPenMode::pmCopy) {
            FillPixels(row + s.Left, row + s.Right, opaque);
            continue;
        }
        for (QRgb *px = row + s.Left; px != row + s.Right; ++px)
            *px = 0xFF000000u | ApplyMode(mode, colour & 0xFFFFFFu, *px & 0xFFFFFFu);
    }
}

// The outline of a single-pass drawing: its pixels painted opaque on the layer that holds
// the part box of the image.
void TCanvas::PaintSpansOnLayer(const QPainterPath &outline, const QRect &box, QImage &layer,
                                const QColor &colour)
{
    QRect bounds = box;
    if (d->ClipRect)
        bounds &= d->ClipRect->translated(-m_Origin.X, -m_Origin.Y);
    d->Stroke.Reset(m_Pen.Width, bounds);
    if (!CollectRoundStroke(outline)) {
        QPainter lp(&layer); // curves: the general stroker, as for any other outline
        if (d->Clip)
            lp.setClipPath(d->Clip->translated(-box.left() - m_Origin.X, -box.top() - m_Origin.Y));
        lp.setWorldTransform(OutlineTransform(OutlinePlacement::PixelCentres) *
                             QTransform::fromTranslate(-box.left(), -box.top()));
        lp.setPen(MakeQPen(m_Pen, m_Geometric, m_Join, m_Cap));
        lp.drawPath(outline);
        return;
    }
    const QRgb opaque = 0xFF000000u | colour.rgb();
    for (const TSpan &s : d->Stroke.Spans()) {
        auto *row = reinterpret_cast<QRgb *>(layer.scanLine(s.Y - box.top()));
        FillPixels(row + (s.Left - box.left()), row + (s.Right - box.left()), opaque);
    }
}

// Solid fills of polygons on an image without scaling are filled by TPolygonFill.
bool TCanvas::FillPolygonAsSpans(std::span<const TPoint> polygon, TFillMode mode,
                                 const TBrush &brush)
{
    if (IsVector() || m_Target->devicePixelRatio() != 1 || brush.HasBitmap() ||
        brush.Style != TBrushStyle::bsSolid || !WritesSpansDirectly(true))
        return false;
    const std::optional<QPoint> &shift = d->DeviceShift;
    QRect bounds = m_Target->rect();
    if (d->ClipRect)
        bounds &= d->ClipRect->translated(-m_Origin.X, -m_Origin.Y);
    if (!shift || !d->Fill.Fill(polygon, *shift, mode == TFillMode::fmWinding, bounds))
        return false;
    WriteSpans(d->Fill.Spans(), ToQColor(brush.Color).rgb(), TPenMode::pmCopy);
    return true;
}

// One-pixel solid chains (plain or geometric pens) go to the rasteriser's line drawing as a
// point array: the pixels of the same figure as a path, without building one. In copy mode
// on an image they are mostly painted directly, with the rasteriser's own pixels.
bool TCanvas::StrokeChainThin(std::span<const TPoint> chain, bool closed)
{
    if (IsVector() || m_Recording || m_Pen.Width > 1 || m_Pen.Style != TPenStyle::psSolid)
        return false;
    const ModeSetup mode = SetupForMode(m_Pen.Mode);
    if (!mode.Draw)
        return true;
    const QColor colour = mode.ForcedColor ? *mode.ForcedColor : ToQColor(m_Pen.Color);
    if (StrokeChainThinDirectly(chain, closed, colour.rgb()))
        return true;
    QPen pen = MakeQPen(m_Pen, m_Geometric, m_Join, m_Cap);
    pen.setColor(colour);
    QVarLengthArray<QPoint, 128> points;
    points.reserve(qsizetype(chain.size()));
    for (const TPoint &pt : chain)
        points.append(QPoint(pt.X, pt.Y));
    QPainter &p = d->Painter;
    p.setCompositionMode(mode.Composition);
    p.setPen(pen);
    p.setBrush(Qt::NoBrush);
    // A geometric pen is centred on the pixel centres, as in Render.
    if (m_Geometric)
        p.setWorldTransform(OutlineTransform(OutlinePlacement::PixelCentres));
    if (closed)
        p.drawPolygon(points.constData(), int(points.size()));
    else
        p.drawPolyline(points.constData(), int(points.size()));
    if (m_Geometric)
        p.setWorldTransform(DeviceTransform());
    p.setCompositionMode(QPainter::CompositionMode_SourceOver);
    return true;
}

// The thin stroke paints what the rasteriser would when only a whole-pixel shift lies between
// the points and the image, and the chain stays on the image: the rasteriser cuts segments
// that leave it a pixel or more behind, which moves their steps. A geometric pen is centred on
// the pixel centres, as in Render.
bool TCanvas::StrokeChainThinDirectly(std::span<const TPoint> chain, bool closed, QRgb colour)
{
    if (chain.size() < 2 || !CopiesPen(m_Pen.Mode) || m_Target->devicePixelRatio() != 1 ||
        m_Target->width() > MaxThinSide || m_Target->height() > MaxThinSide ||
        !WritesSpansDirectly(true))
        return false;
    const std::optional<QPoint> &shift = d->DeviceShift;
    if (!shift)
        return false;
    const std::int64_t centre = m_Geometric ? 32 : 0;
    const std::int64_t right = 64 * std::int64_t(m_Target->width());
    const std::int64_t bottom = 64 * std::int64_t(m_Target->height());
    QVarLengthArray<QPoint, 128> points;
    points.reserve(qsizetype(chain.size()));
    for (const TPoint &pt : chain) {
        const std::int64_t x = 64 * (std::int64_t(pt.X) + shift->x()) + centre;
        const std::int64_t y = 64 * (std::int64_t(pt.Y) + shift->y()) + centre;
        if (x < 0 || x > right || y < 0 || y > bottom)
            return false;
        points.append(QPoint(int(x), int(y)));
    }
    QRect clip = m_Target->rect();
    if (d->ClipRect)
        clip &= d->ClipRect->translated(-m_Origin.X, -m_Origin.Y);
    d->Thin.Begin(const_cast<uchar *>(m_Target->constBits()), m_Target->bytesPerLine(), clip,
                  0xFF000000u | colour);
    const bool capped =
        m_Geometric && (m_Cap == TPenEndCap::pecRound || m_Cap == TPenEndCap::pecSquare);
    d->Thin.Chain(points, closed, capped);
    return true;
}

} // namespace tessal
