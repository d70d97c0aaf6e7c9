// SPDX-License-Identifier: MIT
// TMyRuleLine: the measuring line's settings, copying and its resize bookkeeping.
#include <tessal/geometry/canvasmodes.h>
#include <tessal/geometry/geometry.h>
#include <tessal/shapes/ruleline.h>
#include <tessal/shapes/shapetools.h>

#include <cmath>
#include <numbers>

namespace tessal {

namespace {

// The unit direction of a -> b as seen running left to right (downwards when vertical),
// and the normal towards its top side.
struct TAxis
{
    double DX = 0, DY = 0, NX = 0, NY = 0;
};

TAxis AxisOf(TMyPoint a, TMyPoint b)
{
    double dx = double(b.X) - a.X, dy = double(b.Y) - a.Y;
    const double length = std::hypot(dx, dy);
    if (length == 0)
        return {};
    dx /= length;
    dy /= length;
    if (dx < 0 || (dx == 0 && dy < 0)) {
        dx = -dx;
        dy = -dy;
    }
    // Screen y grows downwards: the top side of a rightward line is -y.
    return {dx, dy, dy, -dx};
}

} // namespace

void TMyRuleLine::CopyRuleFields(const TMyShape &source)
{
    const auto *rule = dynamic_cast<const TMyRuleLine *>(&source);
    if (!rule || rule == this)
        return;
    m_ShowUserInfo = rule->m_ShowUserInfo;
    m_TickStyle = rule->m_TickStyle;
    m_UserInfo = rule->m_UserInfo;
}

void TMyRuleLine::Assign(const TMyShape &source)
{
    TMyLine::Assign(source);
    CopyRuleFields(source);
}

void TMyRuleLine::AssignWithoutRelation(const TMyShape &source)
{
    TMyLine::AssignWithoutRelation(source);
    CopyRuleFields(source);
}

// The angle here is the bare arctangent of the first segment (within +-pi/2), unlike the
// full-circle direction that Draw gives a line.
void TMyRuleLine::SizeChangeValue(TMyPoint from, TMyPoint to)
{
    TMyLine::SizeChangeValue(from, to);
    if (GetPointsCount() < 2)
        return;
    const TMyPoint p0 = GetPoint(0);
    const TMyPoint p1 = GetPoint(1);
    const double angle = p0.X == p1.X ? std::numbers::pi / 2
                                      : std::atan((double(p0.Y) - p1.Y) / (double(p0.X) - p1.X));
    SetAngleValue(float(angle));
    SetInfo(LengthText(GetLengthinPixel(p1, p0), 1).trimmed());
}

void TMyRuleLine::SetShowUserInfo(bool on)
{
    StoreAndRepaint(m_ShowUserInfo, on);
}

void TMyRuleLine::SetTickStyle(TTickStyle style)
{
    StoreAndRepaint(m_TickStyle, style);
}

void TMyRuleLine::SetUserInfo(const QString &text)
{
    StoreAndRepaint(m_UserInfo, text);
}

// ---- Painting ----

std::vector<TMyRuleLine::TTick> TMyRuleLine::Ticks() const
{
    std::vector<TTick> ticks;
    if (GetPointsCount() < 2 || m_TickStyle == TTickStyle::tsNone)
        return ticks;
    const TMyPoint a = GetPointInZoom(0), b = GetPointInZoom(1);
    const double length = GetLengthinPixel(a, b);
    const double spacing = TickSpacing * Zoom();
    if (length == 0 || spacing <= 0)
        return ticks;
    // Ticks run from point 0 whatever the direction the sides are judged by.
    const double ux = (double(b.X) - a.X) / length, uy = (double(b.Y) - a.Y) / length;
    const TAxis axis = AxisOf(a, b);
    const double above = m_TickStyle == TTickStyle::tsBottom ? 0 : 1;
    const double below = m_TickStyle == TTickStyle::tsTop ? 0 : 1;
    // A small allowance so that a length of exactly n spacings gets its end tick despite
    // the floating-point noise of the zoom.
    const auto count = std::int32_t(std::floor(length / spacing + 1e-6)) + 1;
    for (std::int32_t i = 0; i < count; ++i) {
        const bool isLong = i % LongTickEvery == 0;
        const double size = isLong ? LongTick : ShortTick;
        const double px = a.X + ux * spacing * i, py = a.Y + uy * spacing * i;
        ticks.push_back({{float(px - axis.NX * size * below), float(py - axis.NY * size * below)},
                         {float(px + axis.NX * size * above), float(py + axis.NY * size * above)},
                         isLong});
    }
    return ticks;
}

QString TMyRuleLine::LabelText()
{
    if (m_ShowUserInfo)
        return m_UserInfo;
    if (GetPointsCount() < 2)
        return {};
    // From the stored points, not the rounded screen ones: the reading is the same at
    // every zoom.
    return LengthText(GetLengthinPixel(GetPoint(0), GetPoint(1)), 1).trimmed();
}

void TMyRuleLine::DrawLabel(TCanvas &canvas)
{
    const QString text = LabelText();
    if (!CaptionShow() || text.isEmpty() || GetPointsCount() < 2)
        return;
    const double z = Zoom();
    const TMyPoint a = GetPointInZoom(0), b = GetPointInZoom(1);
    const TAxis axis = AxisOf(a, b);
    const TPoint size = GetTextWidthHeight(canvas, text, Font(), z, 0);
    // Clear of the long ticks, so that the label never sits on the marks.
    const double away = LongTick + 2 + size.Y / 2.0;
    const double cx = (double(a.X) + b.X) / 2 + axis.NX * away;
    const double cy = (double(a.Y) + b.Y) / 2 + axis.NY * away;
    MyLogTextOut(canvas, RoundEven(cx - size.X / 2.0), RoundEven(cy - size.Y / 2.0), text, Font(),
                 z, 0);
}

void TMyRuleLine::Draw(TCanvas &canvas)
{
    SetDrawShapeMode(*this, canvas);
    TPen oldPen, newPen;
    SetPS(canvas, Pen().Style, Pen().Color, Pen().Width, oldPen, newPen);
    DrawSegments(canvas, {});
    canvas.ClearGeometricPen();
    SetDrawShapeMode(*this, canvas);
    for (const TTick &tick : Ticks())
        LineDraw(*this, canvas, tick.From, tick.To);
    if (GetPointsCount() >= 2) {
        // The line's own rules: the angle follows the first segment, heads on the ends.
        float angle = float(GetSlopeAngle(GetPointInZoom(1), GetPointInZoom(0)));
        RecaclinRad(angle);
        SetAngleValue(angle);
        SetDrawTriangleMode(*this, canvas);
        const std::int32_t last = GetPointsCount() - 1;
        if (ArrowStyle() == TArrowStyle::ALeft || ArrowStyle() == TArrowStyle::ADouble)
            DrawTriangle(canvas, GetPointInZoom(last), GetPointInZoom(last - 1));
        if (ArrowStyle() == TArrowStyle::ARight || ArrowStyle() == TArrowStyle::ADouble)
            DrawTriangle(canvas, GetPointInZoom(0), GetPointInZoom(1));
    }
    SetDrawShapeMode(*this, canvas);
    DrawLabel(canvas);
}

} // namespace tessal
