// SPDX-License-Identifier: MIT
// TMyRectangle: drawing by two corners, painting, handles, resizing in the turned frame,
// previews and the area and side-length texts.
#include <tessal/geometry/canvasmodes.h>
#include <tessal/geometry/geometry.h>
#include <tessal/shapes/rectangle.h>
#include <tessal/shapes/shapetools.h>

#include <cmath>
#include <cstdio>

namespace tessal {

namespace {

// The caption anchor's diamond.
constexpr TColor DiamondColour = 0x00FFFF;

TMyPoint Offset(TMyPoint p, double dx, double dy)
{
    return {float(p.X + dx), float(p.Y + dy)};
}

QString Formatted(double value)
{
    // The C library's formatting, so that ties round and the padding comes out as printf's.
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%9.2f", value);
    return QString::fromLatin1(buffer);
}

// The neighbours of the moved corner that a handle drags: A shares the moved corner's y in
// the upright frame, B its x. For a side handle A is the moved corner itself and B the
// other end of its side, and both move across the side only.
struct TResizeCorners
{
    std::int32_t M, A, B;
};

constexpr TResizeCorners ResizeTable[8] = {
    {0, 1, 3}, {1, 0, 2}, {2, 3, 1}, {3, 2, 0}, {0, 0, 1}, {1, 1, 2}, {2, 2, 3}, {3, 3, 0},
};

} // namespace

TMyRectangle::TMyRectangle(TShapeHost *host)
    : TMyShape(host)
{}

void TMyRectangle::CopyRectangleFields(const TMyShape &source)
{
    const auto *rect = dynamic_cast<const TMyRectangle *>(&source);
    if (!rect || rect == this)
        return;
    m_AssociateSideResizing = rect->m_AssociateSideResizing;
    m_ShowSideHot = rect->m_ShowSideHot;
    m_ShowHorizontalSideHot = rect->m_ShowHorizontalSideHot;
    m_ShowVerticalSideHot = rect->m_ShowVerticalSideHot;
}

void TMyRectangle::Assign(const TMyShape &source)
{
    TMyShape::Assign(source);
    CopyRectangleFields(source);
}

void TMyRectangle::AssignWithoutRelation(const TMyShape &source)
{
    TMyShape::AssignWithoutRelation(source);
    CopyRectangleFields(source);
}

// ---- Drawing with the mouse ----

void TMyRectangle::AddPointByMouse(TPoint point)
{
    if (GetPointsCount() == 0) {
        TMyShape::AddPointByMouse(point);
        return;
    }
    if (GetPointsCount() != 1)
        return;
    // Compared as stored values: two different screen columns never map to one.
    const TMyPoint first = Points()[0];
    const float x = float(point.X / Zoom());
    const float y = float(point.Y / Zoom());
    if (x == first.X || y == first.Y)
        return;
    Points().push_back({x, first.Y});
    Points().push_back({x, y});
    Points().push_back({first.X, y});
    SetCenterPoint(ComputeCenterPoint(4));
}

bool TMyRectangle::IsDrawingFinished(Qt::MouseButton, TPoint)
{
    return GetPointsCount() == 4;
}

// ---- Points ----

TMyPoint TMyRectangle::GetCenterPoint() const
{
    return ComputeCenterPoint(4);
}

TMyPoint TMyRectangle::GetPoint(std::int32_t index) const
{
    // Turning a corner back and forth again would only add rounding noise: it is answered
    // as stored.
    if (index >= 0 && index < GetPointsCount() && index < 4)
        return Points()[std::size_t(index)];
    if (index < 4 || index > 7 || GetPointsCount() < 4)
        return {};
    return SideMiddles()[std::size_t(index - 4)];
}

// The middles of the sides, top, right, bottom and left, found on the rectangle turned
// upright and turned back: one sine and cosine each way for all four.
std::array<TMyPoint, 4> TMyRectangle::SideMiddles() const
{
    const TMyPoint c = GetCenterPoint();
    const float a = Angle();
    const TRotation upright(c, -a);
    TMyPoint u[4];
    for (std::size_t i = 0; i < 4; ++i)
        u[i] = upright(Points()[i]);
    const float middleY = float((double(u[2].Y) - u[1].Y) / 2 + u[1].Y);
    const TRotation back(c, a);
    // The left middle takes its height from the right side; both are the same on an
    // upright rectangle.
    return {back({float((double(u[1].X) - u[0].X) / 2 + u[0].X), u[0].Y}), back({u[1].X, middleY}),
            back({float((double(u[2].X) - u[3].X) / 2 + u[3].X), u[2].Y}), back({u[0].X, middleY})};
}

// ---- Handles ----

bool TMyRectangle::SideHandlesInUse() const
{
    // While the surface rotates only the corners can be grabbed.
    const TActionTools action = Host()->ActionTool();
    return m_ShowSideHot && action != TActionTools::dtRotating &&
           action != TActionTools::dtRotateSelecting;
}

// Every handle lies on the outline, within the box of the corners; a point farther from
// that box than a handle reaches (with two pixels to spare for rounding) meets none, and
// most presses and hovers are answered without working out the side middles.
bool TMyRectangle::NearCorners(TPoint point, std::int32_t margin) const
{
    if (GetPointsCount() < 4)
        return false;
    TMyPoint low = ZoomedValuePt(Points()[0]), high = low;
    for (std::size_t i = 1; i < 4; ++i) {
        const TMyPoint p = ZoomedValuePt(Points()[i]);
        low = {std::min(low.X, p.X), std::min(low.Y, p.Y)};
        high = {std::max(high.X, p.X), std::max(high.Y, p.Y)};
    }
    const double reach = double(margin) + 2;
    return point.X >= low.X - reach && point.X <= high.X + reach && point.Y >= low.Y - reach &&
           point.Y <= high.Y + reach;
}

TMyRectangle::THandles TMyRectangle::HandlesInUse() const
{
    THandles handles;
    if (GetPointsCount() < 4)
        return handles;
    for (std::int32_t i = 0; i < 4; ++i)
        handles.Add(i, ZoomedValuePt(Points()[std::size_t(i)]));
    if (!SideHandlesInUse())
        return handles;
    const std::array<TMyPoint, 4> sides = SideMiddles();
    for (std::int32_t i = 4; i < 8; ++i) {
        const bool topOrBottom = i == 4 || i == 6;
        if (topOrBottom ? m_ShowVerticalSideHot : m_ShowHorizontalSideHot)
            handles.Add(i, ZoomedValuePt(sides[std::size_t(i - 4)]));
    }
    return handles;
}

void TMyRectangle::DrawHot(TCanvas &canvas)
{
    if (!Host()->HotShow())
        return;
    for (const THandle &h : HandlesInUse())
        DrawSquare(*this, canvas, h.At);
    DrawDiamond(*this, canvas, ZoomedValuePt(TextPoint()), DiamondColour);
}

std::int32_t TMyRectangle::InWhichHot(TPoint point)
{
    SetCurrentHot(-1);
    const std::int32_t margin = Host()->HotSize();
    if (!NearCorners(point, margin))
        return -1;
    // A handle covers HotSize pixels up and left of its rounded position and HotSize - 1
    // down and right, as its square is drawn. No early exit: the highest number wins.
    for (const THandle &h : HandlesInUse()) {
        const TPoint c = MyPtToPt(h.At);
        if (ExpandRect(PtToARect(c, c), margin).Contains(point))
            SetCurrentHot(h.Number);
    }
    return CurrentHot();
}

TCursor TMyRectangle::GetMouseCursor(std::int32_t x, std::int32_t y)
{
    const std::int32_t hot = InWhichHot({x, y});
    if (hot == 4 || hot == 6)
        return crSizeNS;
    if (hot == 5 || hot == 7)
        return crSizeWE;
    if (hot < 0)
        return crCross;
    // Corners by where they lie from the centre, so that a turned rectangle shows arrows
    // that fit the corner's place on screen; the last matching test wins.
    const TMyPoint p{float(x / Zoom()), float(y / Zoom())};
    const TMyPoint c = GetCenterPoint();
    TCursor cursor = crCross;
    if (IsAtLeftTop(c, p))
        cursor = crSizeNWSE;
    if (IsAtLeftBottom(c, p))
        cursor = crSizeNESW;
    if (IsAtRightTop(c, p))
        cursor = crSizeNESW;
    if (IsAtRightBottom(c, p))
        cursor = crSizeNWSE;
    return cursor;
}

bool TMyRectangle::IsClickedMe(TCanvas &, TPoint point)
{
    if (GetPointsCount() < 4)
        return false;
    std::array<TPoint, 4> pts;
    for (std::size_t i = 0; i < 4; ++i)
        pts[i] = MyPtToPt(GetPointInZoom(std::int32_t(i)));
    return TRegion::Contains(pts, TFillMode::fmAlternate, point);
}

// ---- Resizing ----

std::optional<std::array<TMyPoint, 4>> TMyRectangle::ResizedCorners(TMyPoint target) const
{
    const std::int32_t hot = CurrentHot();
    if (GetPointsCount() != 4 || hot < 0 || hot > 7)
        return std::nullopt;
    const TResizeCorners k = ResizeTable[hot];
    const bool side = hot > 3;
    const TMyPoint c = GetCenterPoint();
    const float a = Angle();
    std::array<TMyPoint, 4> corners;
    std::vector<TMyPoint> upright(4);
    for (std::size_t i = 0; i < 4; ++i) {
        corners[i] = Points()[i];
        upright[i] = RotateAPoint(corners[i], c, -a);
    }
    const TMyRect box = GetPointsLTRB(upright);
    const TMyPoint lt{box.Left, box.Top}, rb{box.Right, box.Bottom};
    const TMyPoint rt{box.Right, box.Top}, lb{box.Left, box.Bottom};
    const TMyPoint p = upright[std::size_t(k.M)];
    const TMyPoint t = RotateAPoint(target, c, -a);
    // The handle must stay on its own side of the opposite corner on both axes: a drag
    // through the opposite side would turn the rectangle inside out.
    const bool sameSide = (IsAtLeftTop(c, p) && IsAtLeftTop(rb, t)) ||
                          (IsAtRightBottom(c, p) && IsAtRightBottom(lt, t)) ||
                          (IsAtRightTop(c, p) && IsAtRightTop(lb, t)) ||
                          (IsAtLeftBottom(c, p) && IsAtLeftBottom(rt, t));
    if (!sameSide)
        return std::nullopt;
    double dx = double(t.X) - p.X;
    double dy = double(t.Y) - p.Y;
    if (side && (k.M == 0 || k.M == 2))
        dx = 0; // top and bottom sides move up and down only
    if (side && (k.M == 1 || k.M == 3))
        dy = 0; // right and left sides move sideways only
    if (!side)
        corners[std::size_t(k.M)] = target;
    const TMyPoint ua = upright[std::size_t(k.A)];
    const TMyPoint ub = upright[std::size_t(k.B)];
    corners[std::size_t(k.A)] = RotateAPoint(Offset(ua, side ? dx : 0, dy), c, a);
    corners[std::size_t(k.B)] = RotateAPoint(Offset(ub, dx, side ? dy : 0), c, a);
    return corners;
}

void TMyRectangle::SizeChangeValue(TMyPoint from, TMyPoint to)
{
    TMyShape::SizeChangeValue(from, to);
    const auto corners = ResizedCorners({float(to.X / Zoom()), float(to.Y / Zoom())});
    if (!corners)
        return;
    for (std::size_t i = 0; i < 4; ++i)
        Points()[i] = (*corners)[i];
    SetCenterPoint(ComputeCenterPoint(4));
}

// ---- Painting and previews ----

void TMyRectangle::DrawRectangle(TCanvas &canvas, const std::array<TPoint, 4> &pts) const
{
    canvas.MoveTo(pts[0].X, pts[0].Y);
    canvas.LineTo(pts[1].X, pts[1].Y);
    canvas.LineTo(pts[2].X, pts[2].Y);
    canvas.LineTo(pts[3].X, pts[3].Y);
    canvas.LineTo(pts[0].X, pts[0].Y);
}

void TMyRectangle::Draw(TCanvas &canvas)
{
    SetDrawShapeMode(*this, canvas);
    if (GetPointsCount() >= 4) {
        std::array<TPoint, 5> pts;
        for (std::size_t i = 0; i < 4; ++i)
            pts[i] = MyPtToPt(GetPointInZoom(std::int32_t(i)));
        pts[4] = pts[0];
        PowerDrawShape(canvas, pts, true);
    }
    if (ClassName() != QLatin1String("TMyText"))
        DrawInfo(canvas);
}

void TMyRectangle::Drawing(TCanvas &canvas, TPoint from, TPoint to)
{
    SetDragResizeRotateShapeMode(canvas);
    canvas.Rectangle(PtToARect(from, to));
}

void TMyRectangle::Draging(TCanvas &canvas, TPoint from, TPoint to)
{
    if (GetPointsCount() < 4)
        return;
    const TPoint d = to - from;
    std::array<TPoint, 4> pts;
    for (std::size_t i = 0; i < 4; ++i)
        pts[i] = MyPtToPt(Offset(GetPointInZoom(std::int32_t(i)), d.X, d.Y));
    DrawRectangle(canvas, pts);
}

void TMyRectangle::Rotating(TCanvas &canvas, TMyPoint centre, double angle)
{
    if (GetPointsCount() < 4)
        return;
    std::array<TPoint, 4> pts;
    for (std::size_t i = 0; i < 4; ++i)
        pts[i] = MyPtToPt(RotateAPoint(GetPointInZoom(std::int32_t(i)), centre, float(angle)));
    DrawRectangle(canvas, pts);
}

void TMyRectangle::Sizing(TCanvas &canvas, TPoint, TPoint to)
{
    if (GetPointsCount() < 4)
        return;
    // The very computation of SizeChangeValue, so the band shows what the drop will give.
    const auto resized = ResizedCorners({float(to.X / Zoom()), float(to.Y / Zoom())});
    std::array<TPoint, 4> pts;
    for (std::size_t i = 0; i < 4; ++i)
        pts[i] = MyPtToPt(ZoomedValuePt(resized ? (*resized)[i] : Points()[i]));
    DrawRectangle(canvas, pts);
}

// ---- Texts ----

QString TMyRectangle::AreaText(double area) const
{
    const QString text = AreaInfoText(*Host(), area);
    // Asking for the text also stores it: the surface shows a shape's info as its label.
    const_cast<TMyRectangle *>(this)->SetInfo(text);
    return text;
}

QString TMyRectangle::GetInfo() const
{
    return AreaText(double(GetMyWidth()) * GetMyHeight());
}

// The cm, dm and m readouts keep the "mm" suffixes and the inch readout counts tenths of an
// inch: drawings and applications show these texts as they always were.
QString TMyRectangle::GetLengthByUnit(TPoint from, TPoint to)
{
    const TMyPoint p1 = PtToMyPt(from);
    const TMyPoint p2 = PtToMyPt(to);
    const TMyPoint k{p2.X, p1.Y};
    const TShapeHost *host = Host();
    const TUnits unit = host->TheUNIT();
    const double q = host->Ratio() / Zoom();
    const double ppi = host->ScreenPixelsPerInch();
    auto value = [&](double length) {
        const double mm = length * 25.4 / ppi * q;
        switch (unit) {
        case TUnits::pixel:
            return length * q;
        case TUnits::mm:
            return mm;
        case TUnits::cm:
            return mm / 10;
        case TUnits::dm:
            return mm / 100;
        case TUnits::m:
            return mm / 1000;
        case TUnits::inch:
            return mm / 2.54;
        }
        return mm;
    };
    const char *suffix = unit == TUnits::pixel ? "pixel(s)" : unit == TUnits::inch ? "in" : "mm";
    // Only the first suffix has a blank before it.
    return QStringLiteral("m=") + Formatted(value(GetLengthinPixel(p1, k))) + QLatin1Char(' ') +
           QLatin1String(suffix) + QLatin1Char('\r') + QStringLiteral("n=") +
           Formatted(value(GetLengthinPixel(p2, k))) + QLatin1String(suffix);
}

} // namespace tessal
