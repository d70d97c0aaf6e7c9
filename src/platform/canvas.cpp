// SPDX-License-Identifier: MIT
// TCanvas: drawing objects, pen modes and the primitives.
#include "canvas_p.h"

#include <QImage>

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

namespace tessal {

namespace canvasdetail {

ModeSetup SetupForMode(TPenMode mode)
{
    using CM = QPainter::CompositionMode;
    ModeSetup s;
    switch (mode) {
    case TPenMode::pmBlack:
        s.ForcedColor = QColor(Qt::black);
        break;
    case TPenMode::pmWhite:
        s.ForcedColor = QColor(Qt::white);
        break;
    case TPenMode::pmNop:
        s.Draw = false;
        break;
    case TPenMode::pmNot:
        s.Composition = CM::RasterOp_NotDestination;
        break;
    case TPenMode::pmCopy:
        s.Composition = CM::CompositionMode_SourceOver;
        break;
    case TPenMode::pmNotCopy:
        s.Composition = CM::RasterOp_NotSource;
        break;
    case TPenMode::pmMergePenNot:
        s.Composition = CM::RasterOp_SourceOrNotDestination;
        break;
    case TPenMode::pmMaskPenNot:
        s.Composition = CM::RasterOp_SourceAndNotDestination;
        break;
    case TPenMode::pmMergeNotPen:
        s.Composition = CM::RasterOp_NotSourceOrDestination;
        break;
    case TPenMode::pmMaskNotPen:
        s.Composition = CM::RasterOp_NotSourceAndDestination;
        break;
    case TPenMode::pmMerge:
        s.Composition = CM::RasterOp_SourceOrDestination;
        break;
    case TPenMode::pmNotMerge:
        s.Composition = CM::RasterOp_NotSourceAndNotDestination;
        break;
    case TPenMode::pmMask:
        s.Composition = CM::RasterOp_SourceAndDestination;
        break;
    case TPenMode::pmNotMask:
        s.Composition = CM::RasterOp_NotSourceOrNotDestination;
        break;
    case TPenMode::pmXor:
        s.Composition = CM::RasterOp_SourceXorDestination;
        break;
    case TPenMode::pmNotXor:
        s.Composition = CM::RasterOp_NotSourceXorDestination;
        break;
    }
    return s;
}

bool ModeNeedsSinglePass(TPenMode mode)
{
    return mode != TPenMode::pmCopy && mode != TPenMode::pmBlack && mode != TPenMode::pmWhite &&
           mode != TPenMode::pmNop;
}

std::uint32_t ApplyMode(TPenMode mode, std::uint32_t p, std::uint32_t d)
{
    std::uint32_t r = 0;
    switch (mode) {
    case TPenMode::pmBlack:
        r = 0;
        break;
    case TPenMode::pmWhite:
        r = ~0u;
        break;
    case TPenMode::pmNop:
        r = d;
        break;
    case TPenMode::pmNot:
        r = ~d;
        break;
    case TPenMode::pmCopy:
        r = p;
        break;
    case TPenMode::pmNotCopy:
        r = ~p;
        break;
    case TPenMode::pmMergePenNot:
        r = p | ~d;
        break;
    case TPenMode::pmMaskPenNot:
        r = p & ~d;
        break;
    case TPenMode::pmMergeNotPen:
        r = ~p | d;
        break;
    case TPenMode::pmMaskNotPen:
        r = ~p & d;
        break;
    case TPenMode::pmMerge:
        r = p | d;
        break;
    case TPenMode::pmNotMerge:
        r = ~(p | d);
        break;
    case TPenMode::pmMask:
        r = p & d;
        break;
    case TPenMode::pmNotMask:
        r = ~(p & d);
        break;
    case TPenMode::pmXor:
        r = p ^ d;
        break;
    case TPenMode::pmNotXor:
        r = ~(p ^ d);
        break;
    }
    return r & 0xFFFFFFu;
}

QPen MakeQPen(const TPen &pen, bool geometric, TPenJoin join, TPenEndCap cap)
{
    if (pen.Style == TPenStyle::psClear)
        return QPen(Qt::NoPen);
    QPen q(ToQColor(pen.Color));
    const int width = std::max(pen.Width, 1);
    if (geometric) {
        static constexpr Qt::PenJoinStyle joins[] = {Qt::RoundJoin, Qt::BevelJoin, Qt::MiterJoin,
                                                     Qt::MiterJoin};
        static constexpr Qt::PenCapStyle caps[] = {Qt::RoundCap, Qt::SquareCap, Qt::FlatCap,
                                                   Qt::FlatCap};
        q.setWidth(width);
        q.setJoinStyle(joins[int(join)]);
        q.setCapStyle(caps[int(cap)]);
        // Geometric dashes scale with the width, as Qt's own patterns do.
        switch (pen.Style) {
        case TPenStyle::psDash:
            q.setStyle(Qt::DashLine);
            break;
        case TPenStyle::psDot:
            q.setStyle(Qt::DotLine);
            break;
        case TPenStyle::psDashDot:
            q.setStyle(Qt::DashDotLine);
            break;
        case TPenStyle::psDashDotDot:
            q.setStyle(Qt::DashDotDotLine);
            break;
        default:
            break;
        }
        return q;
    }
    if (width > 1) {
        // A wide plain pen is always solid, with round ends and joins.
        q.setWidth(width);
        q.setCapStyle(Qt::RoundCap);
        q.setJoinStyle(Qt::RoundJoin);
        return q;
    }
    // One-pixel pens: the flat cap leaves out the end pixel of every line. Dash lengths in
    // pixels, as the platform's one-pixel styled pens draw them.
    q.setWidth(0);
    q.setCapStyle(Qt::FlatCap);
    switch (pen.Style) {
    case TPenStyle::psDash:
        q.setDashPattern({18, 6});
        break;
    case TPenStyle::psDot:
        q.setDashPattern({3, 3});
        break;
    case TPenStyle::psDashDot:
        q.setDashPattern({9, 6, 3, 6});
        break;
    case TPenStyle::psDashDotDot:
        q.setDashPattern({9, 3, 3, 3, 3, 3});
        break;
    case TPenStyle::psAlternate:
        q.setDashPattern({1, 1});
        break;
    default:
        break;
    }
    return q;
}

QBrush MakeQBrush(const TBrush &brush)
{
    if (brush.HasBitmap())
        return QBrush(brush.Bitmap);
    const QColor color = ToQColor(brush.Color);
    switch (brush.Style) {
    case TBrushStyle::bsSolid:
        return QBrush(color);
    case TBrushStyle::bsClear:
        return QBrush(Qt::NoBrush);
    case TBrushStyle::bsHorizontal:
        return QBrush(color, Qt::HorPattern);
    case TBrushStyle::bsVertical:
        return QBrush(color, Qt::VerPattern);
    // Forward diagonal runs down from left to right, backward diagonal up.
    case TBrushStyle::bsFDiagonal:
        return QBrush(color, Qt::FDiagPattern);
    case TBrushStyle::bsBDiagonal:
        return QBrush(color, Qt::BDiagPattern);
    case TBrushStyle::bsCross:
        return QBrush(color, Qt::CrossPattern);
    case TBrushStyle::bsDiagCross:
        return QBrush(color, Qt::DiagCrossPattern);
    }
    return QBrush(color);
}

} // namespace canvasdetail

using namespace canvasdetail;

TCanvas::TCanvas(QImage *target)
    : d(std::make_unique<Impl>())
    , m_Target(target)
    , m_Device(target)
{
    d->Painter.begin(target);
    d->Painter.setRenderHint(QPainter::Antialiasing, false);
    d->Painter.setRenderHint(QPainter::TextAntialiasing, false);
    SetFont(m_Font);
}

// An image handed over as a plain device still gets the pixel rules.
TCanvas::TCanvas(QPaintDevice *device)
    : d(std::make_unique<Impl>())
    , m_Target(device && device->devType() == QInternal::Image ? static_cast<QImage *>(device)
                                                               : nullptr)
    , m_Device(device)
{
    d->Painter.begin(device);
    d->Painter.setRenderHint(QPainter::Antialiasing, false);
    d->Painter.setRenderHint(QPainter::TextAntialiasing, false);
    SetFont(m_Font);
}

TCanvas::~TCanvas() = default;

QPainter &TCanvas::Painter()
{
    return d->Painter;
}

void TCanvas::SetGeometricPen(TPenJoin join, TPenEndCap cap)
{
    m_Geometric = true;
    m_Join = join;
    m_Cap = cap;
}

void TCanvas::ClearGeometricPen()
{
    m_Geometric = false;
}

void TCanvas::SetPrinter(bool printer, int colorCount)
{
    m_IsPrinter = printer;
    m_PrinterColors = colorCount;
}

void TCanvas::Flush()
{
    if (IsVector())
        return;
    // Ending the painter releases the image for direct access; painting resumes at once.
    d->Painter.end();
    d->Painter.begin(m_Target);
    d->Painter.setRenderHint(QPainter::Antialiasing, false);
    d->Painter.setRenderHint(QPainter::TextAntialiasing, false);
    RestoreDeviceState();
}

// Shapes end their fills by removing a clipping that is mostly not there: the painter is only
// told what differs, as every change of its transform costs it real work.
void TCanvas::RestoreDeviceState()
{
    QPainter &p = d->Painter;
    if (d->Clip || p.hasClipping()) {
        // Clip regions are device pixels: only the origin applies to them.
        p.setWorldTransform(OriginShift());
        if (d->Clip)
            p.setClipPath(*d->Clip);
        else
            p.setClipping(false);
    }
    const QTransform device = DeviceTransform();
    if (p.worldTransform() != device)
        p.setWorldTransform(device);
    if (p.compositionMode() != QPainter::CompositionMode_SourceOver)
        p.setCompositionMode(QPainter::CompositionMode_SourceOver);
    if (p.backgroundMode() != Qt::TransparentMode)
        p.setBackgroundMode(Qt::TransparentMode);
}

void TCanvas::SetOrigin(TPoint origin)
{
    m_Origin = origin;
    DeviceChanged();
    RestoreDeviceState();
}

void TCanvas::DeviceChanged()
{
    d->Device = d->World * OriginShift();
    d->DeviceShift = WholeShift(d->Device);
}

QTransform TCanvas::OriginShift() const
{
    return QTransform::fromTranslate(-m_Origin.X, -m_Origin.Y);
}

QTransform TCanvas::DeviceTransform() const
{
    return d->Device;
}

QTransform TCanvas::OutlineTransform(OutlinePlacement placement) const
{
    // One-pixel lines at integer coordinates cover the pixel right of and below the point;
    // wider strokes are centred on the same pixel centre.
    // On a vector device the one-unit stroke through the pixel centres covers those pixels.
    const bool wide = m_Geometric || m_Pen.Width > 1 || IsVector();
    if (placement != OutlinePlacement::PixelCentres || !wide)
        return DeviceTransform();
    return d->World * QTransform::fromTranslate(0.5, 0.5) * OriginShift();
}

void TCanvas::Render(const QPainterPath &outline, const QPainterPath *fill,
                     OutlinePlacement placement)
{
    if (m_Recording) {
        d->Path.addPath(fill ? *fill : outline);
        return;
    }
    const bool hasFill = fill && (m_Brush.HasBitmap() || m_Brush.Style != TBrushStyle::bsClear);
    const bool hasOutline = m_Pen.Style != TPenStyle::psClear;
    if (hasFill && hasOutline && ModeNeedsSinglePass(m_Pen.Mode) && !IsVector())
        RenderSinglePass(outline, fill, placement);
    else
        RenderDirect(outline, hasFill ? fill : nullptr, placement);
}

void TCanvas::RenderDirect(const QPainterPath &outline, const QPainterPath *fill,
                           OutlinePlacement placement)
{
    ModeSetup mode = SetupForMode(m_Pen.Mode);
    if (!mode.Draw)
        return;
    // Without pixels to combine with, the raster operations draw as copy.
    if (IsVector())
        mode.Composition = QPainter::CompositionMode_SourceOver;
    QPainter &p = d->Painter;
    p.setCompositionMode(mode.Composition);
    if (fill) {
        QBrush brush = MakeQBrush(m_Brush);
        if (mode.ForcedColor)
            brush = QBrush(*mode.ForcedColor);
        p.setPen(Qt::NoPen);
        p.setBrush(brush);
        p.drawPath(*fill);
    }
    QPen pen = MakeQPen(m_Pen, m_Geometric, m_Join, m_Cap);
    if (IsVector() && pen.widthF() == 0) {
        // A zero width means "one device pixel" to the rasteriser but "nothing" or "as thin
        // as the output allows" to vector formats. Mitred joins fill the corner pixels as
        // the rasteriser does.
        pen.setWidthF(1);
        pen.setCosmetic(true);
        pen.setJoinStyle(Qt::MiterJoin);
    }
    if (pen.style() != Qt::NoPen && placement == OutlinePlacement::Area) {
        p.setPen(Qt::NoPen);
        p.setBrush(mode.ForcedColor ? *mode.ForcedColor : pen.color());
        p.drawPath(outline);
    } else if (pen.style() != Qt::NoPen) {
        if (mode.ForcedColor)
            pen.setColor(*mode.ForcedColor);
        if (placement == OutlinePlacement::PixelCentres && StrokeAsSpans(outline, pen.color())) {
            p.setCompositionMode(QPainter::CompositionMode_SourceOver);
            return;
        }
        p.setPen(pen);
        p.setBrush(Qt::NoBrush);
        const QTransform outlineTransform = OutlineTransform(placement);
        const bool shifted = outlineTransform != p.worldTransform();
        if (shifted)
            p.setWorldTransform(outlineTransform);
        p.drawPath(outline);
        if (shifted)
            p.setWorldTransform(DeviceTransform());
    }
    p.setCompositionMode(QPainter::CompositionMode_SourceOver);
}

void TCanvas::RenderSinglePass(const QPainterPath &outline, const QPainterPath *fill,
                               OutlinePlacement placement)
{
    const QPen pen = MakeQPen(m_Pen, m_Geometric, m_Join, m_Cap);
    const qreal margin = pen.widthF() + 2;
    QRect box = DeviceTransform()
                    .mapRect(outline.boundingRect().united(fill->boundingRect()))
                    .toAlignedRect();
    box = box.adjusted(-int(margin), -int(margin), int(margin), int(margin));
    box &= m_Target->rect();
    if (box.isEmpty())
        return;
    // Paint fill and outline in copy mode on a transparent layer: the topmost colour of every
    // touched pixel, each pixel once.
    QImage layer(box.size(), QImage::Format_ARGB32);
    layer.fill(Qt::transparent);
    {
        QPainter lp(&layer);
        const QTransform shift = QTransform::fromTranslate(-box.left(), -box.top());
        if (d->Clip)
            lp.setClipPath(d->Clip->translated(-box.left() - m_Origin.X, -box.top() - m_Origin.Y));
        lp.setWorldTransform(DeviceTransform() * shift);
        lp.setPen(Qt::NoPen);
        lp.setBrush(MakeQBrush(m_Brush));
        lp.drawPath(*fill);
        if (placement == OutlinePlacement::PixelCentres && RoundStrokeApplies() &&
            (!d->Clip || d->ClipRect)) {
            lp.end();
            PaintSpansOnLayer(outline, box, layer, pen.color());
        } else if (placement == OutlinePlacement::Area) {
            lp.setBrush(pen.color());
        } else {
            lp.setPen(pen);
            lp.setBrush(Qt::NoBrush);
            lp.setWorldTransform(OutlineTransform(placement) * shift);
        }
        if (lp.isActive())
            lp.drawPath(outline);
    }
    // Merge the layer into the target under the mode, then copy the opaque pixels over.
    for (int y = 0; y < layer.height(); ++y) {
        auto *row = reinterpret_cast<QRgb *>(layer.scanLine(y));
        for (int x = 0; x < layer.width(); ++x) {
            if (qAlpha(row[x]) == 0)
                continue;
            const QRgb dest = m_Target->pixel(box.left() + x, box.top() + y);
            row[x] = 0xFF000000u | ApplyMode(m_Pen.Mode, row[x] & 0xFFFFFFu, dest & 0xFFFFFFu);
        }
    }
    QPainter &p = d->Painter;
    p.setWorldTransform(QTransform());
    p.drawImage(box.topLeft(), layer);
    p.setWorldTransform(DeviceTransform());
}

// A one-pixel line covers its start pixel and leaves out its end pixel, whichever way it
// runs. The rasteriser leaves out the pixel at the larger end of the major axis, which is
// the end only for lines running right or down; a line running the other way is drawn with
// the same pixels but the two ends exchanged.
bool TCanvas::EndPixelNeedsMoving(TPoint from, TPoint to) const
{
    if (IsVector() || m_Geometric || m_Pen.Width > 1 || m_Pen.Style == TPenStyle::psClear ||
        DeviceTransform().type() > QTransform::TxTranslate)
        return false;
    const std::int32_t dx = to.X - from.X;
    const std::int32_t dy = to.Y - from.Y;
    return std::abs(dx) >= std::abs(dy) ? dx < 0 : dy < 0;
}

void TCanvas::DrawBackwardLine(TPoint from, TPoint to)
{
    QPainter &p = d->Painter;
    QPainterPath line(QPointF(from.X, from.Y));
    line.lineTo(to.X, to.Y);
    const QRect box = QRect(QPoint(std::min(from.X, to.X), std::min(from.Y, to.Y)),
                            QPoint(std::max(from.X, to.X), std::max(from.Y, to.Y)))
                          .adjusted(-2, -2, 2, 2);
    p.save();
    p.setClipRegion(QRegion(box) - QRegion(to.X, to.Y, 1, 1),
                    p.hasClipping() ? Qt::IntersectClip : Qt::ReplaceClip);
    Render(line, nullptr);
    p.restore();
    QPainterPath start;
    start.addRect(from.X, from.Y, 1, 1);
    Render(start, nullptr, OutlinePlacement::Area);
}

void TCanvas::MoveTo(std::int32_t x, std::int32_t y)
{
    m_PenPos = {x, y};
    if (m_Recording)
        d->Path.moveTo(x, y);
}

void TCanvas::LineTo(std::int32_t x, std::int32_t y)
{
    if (m_Recording) {
        if (d->Path.elementCount() == 0 ||
            d->Path.currentPosition() != QPointF(m_PenPos.X, m_PenPos.Y))
            d->Path.moveTo(m_PenPos.X, m_PenPos.Y);
        d->Path.lineTo(x, y);
    } else if (EndPixelNeedsMoving(m_PenPos, {x, y})) {
        DrawBackwardLine(m_PenPos, {x, y});
    } else if (const TPoint ends[] = {m_PenPos, {x, y}};
               !StrokeChainAsSpans(ends, false) && !StrokeChainThin(ends, false)) {
        QPainterPath line(QPointF(m_PenPos.X, m_PenPos.Y));
        line.lineTo(x, y);
        Render(line, nullptr);
    }
    m_PenPos = {x, y};
}

namespace {

QPainterPath PolyPath(std::span<const TPoint> points, bool closed)
{
    QPainterPath path;
    if (points.empty())
        return path;
    path.moveTo(points[0].X, points[0].Y);
    for (std::size_t i = 1; i < points.size(); ++i)
        path.lineTo(points[i].X, points[i].Y);
    if (closed)
        path.closeSubpath();
    return path;
}

// The figure of a rectangle or ellipse: the last covered pixel is Right - 1, Bottom - 1.
QRectF FigureRect(const TRect &r)
{
    return QRectF(r.Left, r.Top, r.Width() - 1, r.Height() - 1);
}

} // namespace

void TCanvas::Polyline(std::span<const TPoint> points)
{
    if (points.size() < 2 || StrokeChainAsSpans(points, false) || StrokeChainThin(points, false))
        return;
    Render(PolyPath(points, false), nullptr);
}

void TCanvas::Polygon(std::span<const TPoint> points)
{
    if (points.size() < 2)
        return;
    const QPainterPath path = PolyPath(points, true); // odd-even: the alternate rule
    Render(path, &path);
}

void TCanvas::Rectangle(const TRect &rect)
{
    const TRect r = rect.Normalized();
    QPainterPath fill;
    fill.addRect(FigureRect(r));
    if (m_Pen.Style == TPenStyle::psInsideFrame && m_Pen.Width > 1 && !m_Recording) {
        // The whole stroke stays inside the rectangle.
        const qreal half = m_Pen.Width / 2.0;
        QPainterPath frame;
        frame.addRect(
            QRectF(r.Left, r.Top, r.Width(), r.Height()).adjusted(half, half, -half, -half));
        Render(frame, &fill, OutlinePlacement::Exact);
        return;
    }
    Render(fill, &fill);
}

namespace {

// The pixels of an ellipse whose outermost pixels are those of box (inclusive bounds): the
// pixels whose centres lie inside the ellipse through the box's edge pixels, widened by half
// a pixel. Row by row the set is one span, symmetric in both directions by construction.
struct EllipseSpans
{
    std::vector<int> Left, Right; // per row from box.Top; Left > Right for an empty row
};

EllipseSpans SpansOf(const TRect &box)
{
    EllipseSpans s;
    const int rows = box.Bottom - box.Top + 1;
    const double cx = (box.Left + box.Right) / 2.0, cy = (box.Top + box.Bottom) / 2.0;
    const double a = (box.Right - box.Left) / 2.0 + 0.5, b = (box.Bottom - box.Top) / 2.0 + 0.5;
    for (int i = 0; i < rows; ++i) {
        const double dy = std::abs(box.Top + i - cy) / b;
        const double w = a * std::sqrt(std::max(0.0, 1.0 - dy * dy));
        // Tiny tolerance: pixel centres exactly on the curve count as inside on both sides.
        const int left = std::max(box.Left, int(std::ceil(cx - w - 1e-9)));
        s.Left.push_back(left);
        s.Right.push_back(box.Left + box.Right - left);
    }
    return s;
}

void AddSpan(QPainterPath &path, int y, int from, int to)
{
    if (from <= to)
        path.addRect(QRectF(from, y, to - from + 1, 1));
}

} // namespace

// Thin solid outlines without rotation or scaling are rasterised here: symmetric and with
// the exact inscribed bounds, where a general curve stroker is neither.
bool TCanvas::DrawExactEllipse(const TRect &r)
{
    const bool thin =
        !m_Geometric && m_Pen.Width <= 1 &&
        (m_Pen.Style == TPenStyle::psSolid || m_Pen.Style == TPenStyle::psInsideFrame ||
         m_Pen.Style == TPenStyle::psClear);
    const QTransform &t = d->World;
    const bool shiftOnly = t.type() <= QTransform::TxTranslate && t.dx() == std::floor(t.dx()) &&
                           t.dy() == std::floor(t.dy());
    // Pixel spans would turn into a staircase of little rectangles on a vector device.
    if (!thin || !shiftOnly || m_Recording || r.IsEmpty() || IsVector())
        return false;
    const bool pen = m_Pen.Style != TPenStyle::psClear;
    // Without a pen the figure loses its last column and row, as rectangles do.
    const TRect box{r.Left, r.Top, r.Right - (pen ? 1 : 2), r.Bottom - (pen ? 1 : 2)};
    if (box.Right < box.Left || box.Bottom < box.Top)
        return true;
    const EllipseSpans s = SpansOf(box);
    const int rows = int(s.Left.size());
    QPainterPath outline, inside;
    outline.setFillRule(Qt::WindingFill);
    inside.setFillRule(Qt::WindingFill);
    for (int i = 0; i < rows; ++i) {
        const int y = box.Top + i;
        if (!pen) {
            AddSpan(inside, y, s.Left[i], s.Right[i]);
            continue;
        }
        // A pixel is outline when a 4-neighbour lies outside the set: the row ends, and the
        // stretch not covered by the row nearer the edge (none beyond the first and last).
        const bool edgeRow = i == 0 || i == rows - 1;
        const int nearer = (2 * i < rows - 1) ? i - 1 : i + 1;
        const int runEnd =
            edgeRow
                ? s.Right[i]
                : std::max(s.Left[i],
                           std::max(s.Left[nearer], s.Left[2 * i < rows - 1 ? i + 1 : i - 1]) - 1);
        const int leftEnd = std::min(runEnd, s.Right[i]);
        AddSpan(outline, y, s.Left[i], leftEnd);
        AddSpan(outline, y, std::max(leftEnd + 1, box.Left + box.Right - leftEnd), s.Right[i]);
        AddSpan(inside, y, leftEnd + 1, box.Left + box.Right - leftEnd - 1);
    }
    Render(outline, &inside, OutlinePlacement::Area);
    return true;
}

void TCanvas::Ellipse(const TRect &rect)
{
    const TRect r = rect.Normalized();
    if (DrawExactEllipse(r))
        return;
    QPainterPath fill;
    fill.addEllipse(FigureRect(r));
    if (m_Pen.Style == TPenStyle::psInsideFrame && m_Pen.Width > 1 && !m_Recording) {
        const qreal half = m_Pen.Width / 2.0;
        QPainterPath frame;
        frame.addEllipse(
            QRectF(r.Left, r.Top, r.Width(), r.Height()).adjusted(half, half, -half, -half));
        Render(frame, &fill, OutlinePlacement::Exact);
        return;
    }
    Render(fill, &fill);
}

void TCanvas::FillRect(const TRect &rect)
{
    const TRect r = rect.Normalized();
    QPainter &p = d->Painter;
    p.setCompositionMode(QPainter::CompositionMode_SourceOver);
    p.fillRect(QRectF(r.Left, r.Top, r.Width(), r.Height()), MakeQBrush(m_Brush));
}

void TCanvas::FrameRect(const TRect &rect)
{
    const TRect r = rect.Normalized();
    if (r.IsEmpty())
        return;
    QPainter &p = d->Painter;
    p.setCompositionMode(QPainter::CompositionMode_SourceOver);
    const QColor c = ToQColor(m_Brush.Color);
    p.fillRect(QRectF(r.Left, r.Top, r.Width(), 1), c);
    p.fillRect(QRectF(r.Left, r.Bottom - 1, r.Width(), 1), c);
    p.fillRect(QRectF(r.Left, r.Top, 1, r.Height()), c);
    p.fillRect(QRectF(r.Right - 1, r.Top, 1, r.Height()), c);
}

TColor TCanvas::GetPixel(std::int32_t x, std::int32_t y) const
{
    const QPointF dev = DeviceTransform().map(QPointF(x, y));
    const QPoint at(int(std::floor(dev.x())), int(std::floor(dev.y())));
    if (!m_Target || !m_Target->valid(at))
        return clNone;
    return FromQColor(QColor(m_Target->pixel(at)));
}

void TCanvas::SetPixel(std::int32_t x, std::int32_t y, TColor color)
{
    const QPointF dev = DeviceTransform().map(QPointF(x, y));
    QPainter &p = d->Painter;
    p.setWorldTransform(QTransform());
    p.setCompositionMode(QPainter::CompositionMode_Source);
    p.fillRect(QRect(int(std::floor(dev.x())), int(std::floor(dev.y())), 1, 1), ToQColor(color));
    p.setCompositionMode(QPainter::CompositionMode_SourceOver);
    p.setWorldTransform(DeviceTransform());
}

void TCanvas::Draw(std::int32_t x, std::int32_t y, const QImage &image)
{
    d->Painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    d->Painter.drawImage(QPoint(x, y), image);
}

void TCanvas::StretchDraw(const TRect &dest, const QImage &image)
{
    d->Painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    d->Painter.drawImage(dest.ToQRect(), image);
}

void TCanvas::CopyRect(const TRect &dest, const QImage &source, const TRect &sourceRect)
{
    QPainter &p = d->Painter;
    p.setCompositionMode(QPainter::CompositionMode_Source);
    p.drawImage(dest.ToQRect(), source, sourceRect.ToQRect());
    p.setCompositionMode(QPainter::CompositionMode_SourceOver);
}

} // namespace tessal
