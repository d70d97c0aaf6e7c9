// SPDX-License-Identifier: MIT
// TMyLine: drawing with arrow heads, handles, the segment hit test, previews and info.
#include <tessal/geometry/canvasmodes.h>
#include <tessal/geometry/geometry.h>
#include <tessal/shapes/line.h>
#include <tessal/shapes/shapetools.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tessal {

namespace {

// The hit band of a segment in screen pixels, whatever the zoom and pen width.
constexpr std::int32_t HitBand = 8;
// The caption anchor's diamond.
constexpr TColor DiamondColour = 0x00FFFF;

TMyPoint Moved(TMyPoint p, double dx, double dy)
{
    return {float(p.X + dx), float(p.Y + dy)};
}

} // namespace

TMyLine::TMyLine(TShapeHost *host)
    : TMyShape(host)
    , m_ArrowAngle(host->ArrowAngle())
    , m_ArrowLength(host->ArrowLength())
    , m_ArrowOffset(host->ArrowOffset())
    , m_ArrowStyle(host->ArrowStyle())
{}

// ---- Copying ----

void TMyLine::CopyArrowFields(const TMyShape &source)
{
    const auto *line = dynamic_cast<const TMyLine *>(&source);
    if (!line || line == this)
        return;
    m_ArrowLength = line->m_ArrowLength;
    m_ArrowAngle = line->m_ArrowAngle;
    m_ArrowStyle = line->m_ArrowStyle;
}

void TMyLine::Assign(const TMyShape &source)
{
    TMyShape::Assign(source);
    CopyArrowFields(source);
}

void TMyLine::AssignWithoutRelation(const TMyShape &source)
{
    TMyShape::AssignWithoutRelation(source);
    CopyArrowFields(source);
}

void TMyLine::SetStartMerge(std::int32_t shapeId, std::int32_t pointNo)
{
    m_StartMergeShapeId = shapeId;
    m_StartMergePointNo = pointNo;
}

void TMyLine::SetEndMerge(std::int32_t shapeId, std::int32_t pointNo)
{
    m_EndMergeShapeId = shapeId;
    m_EndMergePointNo = pointNo;
}

// ---- Drawing ----

void TMyLine::DrawSegments(TCanvas &canvas, TPoint offset) const
{
    for (std::int32_t i = 0; i + 1 < GetPointsCount(); ++i)
        LineDraw(*this, canvas, Moved(GetPointInZoom(i), offset.X, offset.Y),
                 Moved(GetPointInZoom(i + 1), offset.X, offset.Y));
}

void TMyLine::Draw(TCanvas &canvas)
{
    SetDrawShapeMode(*this, canvas);
    TPen oldPen, newPen;
    SetPS(canvas, Pen().Style, Pen().Color, Pen().Width, oldPen, newPen);
    DrawSegments(canvas, {});
    // The angle and the heads need a first segment; a chain of fewer points has neither.
    if (GetPointsCount() >= 2) {
        float angle = float(GetSlopeAngle(GetPointInZoom(1), GetPointInZoom(0)));
        RecaclinRad(angle);
        SetAngleValue(angle);
        SetDrawTriangleMode(*this, canvas);
        const std::int32_t last = GetPointsCount() - 1;
        // Only the end segments carry heads. ALeft marks the last point, ARight the first.
        if (m_ArrowStyle == TArrowStyle::ALeft || m_ArrowStyle == TArrowStyle::ADouble)
            DrawTriangle(canvas, GetPointInZoom(last), GetPointInZoom(last - 1));
        if (m_ArrowStyle == TArrowStyle::ARight || m_ArrowStyle == TArrowStyle::ADouble)
            DrawTriangle(canvas, GetPointInZoom(0), GetPointInZoom(1));
    }
    SetDrawShapeMode(*this, canvas);
    DrawInfo(canvas);
    canvas.ClearGeometricPen();
}

void TMyLine::DrawTriangle(TCanvas &canvas, TMyPoint tip, TMyPoint toward)
{
    // The offset is in screen pixels: the tip stays the same distance short of the end at
    // every zoom, while the sides grow with it.
    const TMyPoint pulled = SplitLine(tip, toward, m_ArrowOffset).first;
    const float half = float(m_ArrowAngle * std::numbers::pi / 180);
    // The zoomed side length is carried in 8 bits and wraps at large zooms (30 at zoom 9
    // is 270, drawn as 14); drawings rely on the heads looking as they always have.
    const auto length = static_cast<std::uint8_t>(RoundEven(Zoom() * m_ArrowLength));
    const auto [first, second] = GetTriangle(pulled, toward, length, half);
    const TPoint corners[3] = {MyPtToPt(pulled), MyPtToPt(first), MyPtToPt(second)};
    canvas.Polygon(corners);
}

void TMyLine::DrawHot(TCanvas &canvas)
{
    if (!Host()->HotShow())
        return;
    for (std::int32_t i = 0; i < GetPointsCount(); ++i)
        DrawSquare(*this, canvas, GetPointInZoom(i));
    DrawDiamond(*this, canvas, ZoomedValuePt(TextPoint()), DiamondColour);
}

// ---- Handles and hit tests ----

std::int32_t TMyLine::InWhichHot(TPoint point)
{
    SetCurrentHot(-1);
    const std::int32_t margin = Host()->HotSize();
    // No early exit: where handles overlap, the highest point number wins.
    for (std::int32_t i = 0; i < GetPointsCount(); ++i) {
        const TPoint c = MyPtToPt(GetPointInZoom(i));
        if (ExpandRect(PtToARect(c, c), margin).Contains(point))
            SetCurrentHot(i);
    }
    return CurrentHot();
}

// Vertical and horizontal segments get the band on their two long sides only; a slanted
// segment must first contain the point in its bare bounding box, so near its ends (and
// along a flat slant) the band is narrower than 8 pixels.
bool TMyLine::SegmentHit(TPoint a, TPoint b, TPoint p)
{
    const std::int32_t left = std::min(a.X, b.X), right = std::max(a.X, b.X);
    const std::int32_t top = std::min(a.Y, b.Y), bottom = std::max(a.Y, b.Y);
    if (a.X == b.X)
        return TRect(left - HitBand, top, right + HitBand, bottom).Contains(p);
    if (a.Y == b.Y)
        return TRect(left, top - HitBand, right, bottom + HitBand).Contains(p);
    if (!TRect(left, top, right, bottom).Contains(p))
        return false;
    const double dx = double(b.X) - a.X;
    const double dy = double(b.Y) - a.Y;
    if (std::abs(dx) > std::abs(dy)) {
        const double yl = dy / dx * (p.X - a.X) + a.Y;
        return yl - HitBand <= p.Y && p.Y <= yl + HitBand;
    }
    const double xl = dx / dy * (p.Y - a.Y) + a.X;
    return xl - HitBand <= p.X && p.X <= xl + HitBand;
}

bool TMyLine::IsClickedMeBeforeWhichPoint(std::int32_t &pointIndex, TPoint point) const
{
    for (std::int32_t i = 0; i + 1 < GetPointsCount(); ++i) {
        if (SegmentHit(MyPtToPt(GetPointInZoom(i)), MyPtToPt(GetPointInZoom(i + 1)), point)) {
            pointIndex = i + 1;
            return true;
        }
    }
    pointIndex = -1;
    return false;
}

bool TMyLine::IsClickedMe(TCanvas &, TPoint point)
{
    std::int32_t index = -1;
    return IsClickedMeBeforeWhichPoint(index, point);
}

// Off the axes a segment is hit only within the box of its rounded ends, so such a line
// reaches no further than its points; the band of a level or upright segment reaches
// HitBand to its sides. Rounding makes this a matter of the zoom, which the index is built
// for.
std::int32_t TMyLine::HitReach() const
{
    for (std::int32_t i = 0; i + 1 < GetPointsCount(); ++i) {
        const TPoint a = MyPtToPt(GetPointInZoom(i));
        const TPoint b = MyPtToPt(GetPointInZoom(i + 1));
        if (a.X == b.X || a.Y == b.Y)
            return HitBand;
    }
    return 0;
}

// ---- Interactive drawing ----

bool TMyLine::IsDrawingFinished(Qt::MouseButton, TPoint)
{
    return GetPointsCount() == 2;
}

void TMyLine::Drawing(TCanvas &canvas, TPoint from, TPoint to)
{
    SetDragResizeRotateShapeMode(canvas);
    canvas.MoveTo(from.X, from.Y);
    canvas.LineTo(to.X, to.Y);
}

void TMyLine::Drawed(TPoint from, TPoint &to)
{
    TMyShape::Drawed(from, to);
    // Only plain lines are joined end to end; polylines, connectors and measuring lines
    // keep their own ends.
    if (ClassName() == QLatin1String("TMyLine"))
        LookUpMergeShape(false, TMyPoint{float(to.X), float(to.Y)});
}

bool TMyLine::LookUpMergeShape(bool atStart, TMyPoint point)
{
    std::int32_t shapeId = -1;
    std::int32_t pointNo = -1;
    const float reach = float(Host()->HotSize()) + 1;
    const TMyRect near{point.X - reach, point.Y - reach, point.X + reach, point.Y + reach};
    for (const std::int32_t no : Host()->ShapesIn(near)) {
        TMyShape *shape = Host()->GetShapeByNo(no);
        if (!shape || shape == this)
            continue;
        const QString name = shape->ClassName();
        if (name != QLatin1String("TMyLine") && name != QLatin1String("TMyPolyLine"))
            continue;
        // The end-point hot test also shows (or moves) the red highlight square.
        const std::int32_t hot = shape->InWhichPointHot(point);
        if (hot >= 0) {
            shapeId = shape->ShapeId();
            pointNo = hot;
            break;
        }
    }
    // A highlight shown before goes when no end is hot here.
    if (shapeId < 0)
        HighlightHot(-1, {});
    if (atStart)
        SetStartMerge(shapeId, pointNo);
    else
        SetEndMerge(shapeId, pointNo);
    return shapeId >= 0;
}

// ---- Previews (rubber-band mode set by the caller) ----

void TMyLine::Draging(TCanvas &canvas, TPoint from, TPoint to)
{
    DrawSegments(canvas, to - from);
}

void TMyLine::Sizing(TCanvas &canvas, TPoint from, TPoint to)
{
    const std::int32_t h = CurrentHot();
    const std::int32_t count = GetPointsCount();
    if (h < 0 || h >= count)
        return;
    const TMyPoint moved = Moved(GetPointInZoom(h), double(to.X) - from.X, double(to.Y) - from.Y);
    if (h >= 1)
        LineDraw(*this, canvas, moved, GetPointInZoom(h - 1));
    if (h + 1 < count)
        LineDraw(*this, canvas, moved, GetPointInZoom(h + 1));
}

void TMyLine::Rotating(TCanvas &canvas, TMyPoint centre, double angle)
{
    const float a = float(angle);
    for (std::int32_t i = 0; i + 1 < GetPointsCount(); ++i)
        LineDraw(*this, canvas, RotateAPoint(GetPointInZoom(i), centre, a),
                 RotateAPoint(GetPointInZoom(i + 1), centre, a));
}

// ---- Editing and info ----

void TMyLine::SizeChangeValue(TMyPoint from, TMyPoint to)
{
    const std::int32_t h = CurrentHot();
    if (h >= 0 && h < GetPointsCount())
        PointAddXY(h, double(to.X) - from.X, double(to.Y) - from.Y);
    SetCenterPoint(ComputeCenterPoint(4));
}

QString TMyLine::GetInfo() const
{
    // Polylines, free lines and connectors have no length text of their own.
    const QString name = ClassName();
    if (name != QLatin1String("TMyLine") && name != QLatin1String("TMyRuleLine"))
        return {};
    if (GetPointsCount() < 2)
        return {};
    // Asking for the text also stores it as the shape's info, which is how the surface
    // keeps a line's length label current.
    auto *self = const_cast<TMyLine *>(this);
    const QString text =
        self->GetLengthByUnit(MyPtToPt(GetPointInZoom(0)), MyPtToPt(GetPointInZoom(1)));
    self->SetInfo(text);
    return text;
}

} // namespace tessal
