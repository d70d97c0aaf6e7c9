// SPDX-License-Identifier: MIT
// TMyLinkPoint and TMyLineLinkLine: placement by one click, the cross and the junction mark.
#include <tessal/geometry/canvasmodes.h>
#include <tessal/geometry/geometry.h>
#include <tessal/shapes/link.h>
#include <tessal/shapes/shapetools.h>

#include <cmath>

namespace tessal {

TMyLinkPoint::TMyLinkPoint(TShapeHost *host)
    : TMyRectangle(host)
{}

void TMyLinkPoint::Assign(const TMyShape &source)
{
    TMyRectangle::Assign(source);
    if (const auto *point = dynamic_cast<const TMyLinkPoint *>(&source); point && point != this)
        m_Size = point->m_Size;
}

void TMyLinkPoint::AssignWithoutRelation(const TMyShape &source)
{
    TMyRectangle::AssignWithoutRelation(source);
    if (const auto *point = dynamic_cast<const TMyLinkPoint *>(&source); point && point != this)
        m_Size = point->m_Size;
}

void TMyLinkPoint::AddPointByMouse(TPoint point)
{
    if (GetPointsCount() != 0)
        return;
    const float half = m_Size / 2.0f;
    const float x = float(point.X), y = float(point.Y);
    AddPoint({x - half, y - half});
    AddPoint({x + half, y - half});
    AddPoint({x + half, y + half});
    AddPoint({x - half, y + half});
    AddLinkPoint({x, y});
    SetCenterPoint(ComputeCenterPoint(4));
}

void TMyLinkPoint::EnsureLinkPoint()
{
    if (GetLinkPointsCount() == 0 && GetPointsCount() >= 4)
        LinkPoints().push_back(GetCenterPoint());
}

void TMyLinkPoint::Drawed(TPoint from, TPoint &to)
{
    TMyRectangle::Drawed(from, to);
    EnsureLinkPoint();
}

void TMyLinkPoint::Draw(TCanvas &canvas)
{
    if (GetPointsCount() < 4)
        return;
    SetDrawShapeMode(*this, canvas);
    canvas.Brush().Color = Pen().Color;
    canvas.Brush().Style = TBrushStyle::bsSolid;
    LineDraw(*this, canvas, GetPointInZoom(0), GetPointInZoom(2));
    LineDraw(*this, canvas, GetPointInZoom(1), GetPointInZoom(3));
    DrawInfo(canvas);
}

void TMyLineLinkLine::Draw(TCanvas &canvas)
{
    if (GetPointsCount() < 4)
        return;
    SetDrawShapeMode(*this, canvas);
    // A round mark has no turn: its size is the upright width of the corners.
    const TMyPoint c = GetCenterPointInZoom();
    const double outer = GetMyWidth() * Zoom() / 2;
    const double inner = outer / InnerRatio;
    canvas.Brush().Style = TBrushStyle::bsClear;
    canvas.Ellipse(TRect(RoundEven(c.X - outer), RoundEven(c.Y - outer), RoundEven(c.X + outer),
                         RoundEven(c.Y + outer)));
    canvas.Brush().Color = Pen().Color;
    canvas.Brush().Style = TBrushStyle::bsSolid;
    canvas.Ellipse(TRect(RoundEven(c.X - inner), RoundEven(c.Y - inner), RoundEven(c.X + inner),
                         RoundEven(c.Y + inner)));
    DrawInfo(canvas);
}

} // namespace tessal
