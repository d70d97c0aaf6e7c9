// SPDX-License-Identifier: MIT
// TMyShape: construction, the property setters and copying.
#include <tessal/geometry/bitmapops.h>
#include <tessal/shapes/shape.h>

namespace tessal {

TMyShape::TMyShape(TShapeHost *host)
    : m_Host(host)
    , m_Brush(host->Brush())
    , m_DragEnable(host->DragEnable())
    , m_Font(host->Font())
    , m_HotShow(host->HotShow())
    , m_Pen(host->Pen())
    , m_PenStyleJoinType(host->PenStyleJoinType())
    , m_PenStyleEndCapType(host->PenStyleEndCapType())
    , m_ResizeEnable(host->ResizeEnable())
    , m_RotateEnable(host->RotateEnable())
{}

TMyShape::~TMyShape() = default;

// ---- Base behaviour of the virtual operations ----

void TMyShape::Draging(TCanvas &, TPoint, TPoint)
{}
// A finished drawing gets its rotation centre and puts its caption anchor on it.
void TMyShape::Drawed(TPoint, TPoint &)
{
    if (m_Points.empty())
        return;
    m_CenterPoint = ComputeCenterPoint(4);
    m_TextPoint = m_CenterPoint;
}
void TMyShape::DrawHot(TCanvas &)
{}
void TMyShape::Drawing(TCanvas &, TPoint, TPoint)
{}
void TMyShape::Rotating(TCanvas &, TMyPoint, double)
{}
void TMyShape::SizeChangeValue(TMyPoint, TMyPoint)
{}
void TMyShape::Sizing(TCanvas &, TPoint, TPoint)
{}

TCursor TMyShape::GetMouseCursor(std::int32_t, std::int32_t)
{
    return crCross;
}

bool TMyShape::IsDrawingFinished(Qt::MouseButton, TPoint)
{
    return false;
}

void TMyShape::AddPointByMouse(TPoint point)
{
    AddPoint(TMyPoint{float(point.X), float(point.Y)});
}

void TMyShape::Draw(TCanvas &canvas)
{
    DrawInfo(canvas);
}

std::int32_t TMyShape::InWhichHot(TPoint)
{
    return -1;
}

bool TMyShape::IsClickedMe(TCanvas &, TPoint)
{
    return false;
}

// ---- Setters ----

void TMyShape::SetAngle(float angle)
{
    if (angle == m_Angle)
        return;
    // A shape without points has nothing to turn yet; the angle waits for the geometry.
    if (m_Points.empty()) {
        m_Angle = angle;
        return;
    }
    m_Host->RotateShapeTo(this, angle);
}

void TMyShape::SetLocked(bool locked)
{
    if (locked == m_Locked)
        return;
    m_Host->LockShape(this, locked);
    Repaint();
}

void TMyShape::SetColorBegin(TColor color)
{
    if (color == m_ColorBegin)
        return;
    m_ColorBegin = color;
    DrawGradient();
    PassAppearanceToChildren();
    Repaint();
}

void TMyShape::SetColorEnd(TColor color)
{
    if (color == m_ColorEnd)
        return;
    m_ColorEnd = color;
    DrawGradient();
    PassAppearanceToChildren();
    Repaint();
}

void TMyShape::SetGradientStyle(TGradientStyle style)
{
    if (style == m_GradientStyle)
        return;
    m_GradientStyle = style;
    PassAppearanceToChildren();
    DrawGradient();
    // Only a style change puts the template into the shape's mirrored state; a colour change
    // rebuilds it unmirrored, as it always has.
    FlipBitmap(m_GradientBitmap, m_IsFlipHorz, m_IsFlipVert);
    Repaint();
}

void TMyShape::SetIsFlipHorz(bool flip)
{
    if (flip != m_IsFlipHorz)
        FlipHoriz();
}

void TMyShape::SetIsFlipVert(bool flip)
{
    if (flip != m_IsFlipVert)
        FlipVert();
}

void TMyShape::SetFlipFlags(bool horizontal, bool vertical)
{
    m_IsFlipHorz = horizontal;
    m_IsFlipVert = vertical;
}

void TMyShape::SetPen(const TPen &pen)
{
    if (pen == m_Pen)
        return;
    m_Pen = pen;
    PassAppearanceToChildren();
    Repaint();
}

void TMyShape::SetBrush(const TBrush &brush)
{
    if (brush == m_Brush)
        return;
    m_Brush = brush;
    PassAppearanceToChildren();
    Repaint();
}

void TMyShape::SetFont(const TFont &font)
{
    if (font == m_Font)
        return;
    m_Font = font;
    PassAppearanceToChildren();
    Repaint();
}

void TMyShape::PassAppearanceToChildren()
{
    // While a drawing is read every shape gets its own stored appearance; copying the
    // group's over it would undo the file.
    if (m_Host->IsLoading())
        return;
    // Each child's setters pass the values on to its own children, so a nested group is
    // restyled throughout; the equal-value checks end the recursion.
    for (std::int32_t no : m_ChildShapes) {
        TMyShape *child = m_Host->GetShapeByNo(no);
        if (!child || child == this)
            continue;
        child->SetPen(m_Pen);
        child->SetBrush(m_Brush);
        child->SetFont(m_Font);
        child->SetColorBegin(m_ColorBegin);
        child->SetColorEnd(m_ColorEnd);
        child->SetGradientStyle(m_GradientStyle);
    }
}

void TMyShape::SetCaption(const QString &caption)
{
    StoreAndRepaint(m_Caption, caption);
}

void TMyShape::SetCaptionShow(bool show)
{
    StoreAndRepaint(m_CaptionShow, show);
}

void TMyShape::SetDragEnable(bool enable)
{
    StoreAndRepaint(m_DragEnable, enable, false);
}

void TMyShape::SetHotShow(bool show)
{
    StoreAndRepaint(m_HotShow, show);
}

void TMyShape::SetInfo(const QString &info)
{
    StoreAndRepaint(m_Info, info);
}

void TMyShape::SetLogHeight(std::int32_t height)
{
    StoreAndRepaint(m_LogHeight, height);
}

void TMyShape::SetLogUse(bool use)
{
    StoreAndRepaint(m_LogUse, use);
}

void TMyShape::SetLogWidth(std::int32_t width)
{
    StoreAndRepaint(m_LogWidth, width);
}

void TMyShape::SetMultiInfo(const QStringList &lines)
{
    StoreAndRepaint(m_MultiInfo, lines);
}

void TMyShape::SetMultiInfoAlignment(TAlignment alignment)
{
    StoreAndRepaint(m_MultiInfoAlignment, alignment);
}

void TMyShape::SetPenStyleJoinType(TPenStyleJoinType type)
{
    StoreAndRepaint(m_PenStyleJoinType, type);
}

void TMyShape::SetPenStyleEndCapType(TPenStyleEndCapType type)
{
    StoreAndRepaint(m_PenStyleEndCapType, type);
}

void TMyShape::SetResizeEnable(bool enable)
{
    StoreAndRepaint(m_ResizeEnable, enable, false);
}

void TMyShape::SetRotateEnable(bool enable)
{
    StoreAndRepaint(m_RotateEnable, enable, false);
}

void TMyShape::SetTag(std::int32_t tag)
{
    StoreAndRepaint(m_Tag, tag, false);
}

void TMyShape::SetVisible(bool visible)
{
    StoreAndRepaint(m_Visible, visible);
}

// ---- Copying ----

void TMyShape::CopyAppearanceAndGeometry(const TMyShape &source)
{
    m_Points = source.m_Points;
    m_LinkPoints = source.m_LinkPoints;
    m_Pen = source.m_Pen;
    m_Brush = source.m_Brush;
    m_Font = source.m_Font;
    m_ColorBegin = source.m_ColorBegin;
    m_ColorEnd = source.m_ColorEnd;
    m_GradientStyle = source.m_GradientStyle;
    m_GradientBitmap = source.m_GradientBitmap;
    m_IsFlipHorz = source.m_IsFlipHorz;
    m_IsFlipVert = source.m_IsFlipVert;
    m_Locked = source.m_Locked;
    m_Angle = source.m_Angle;
    m_Caption = source.m_Caption;
    m_Info = source.m_Info;
    m_MultiInfoAlignment = source.m_MultiInfoAlignment;
    m_Tag = source.m_Tag;
    m_UserData = source.m_UserData;
    m_LayerId = source.m_LayerId;
    m_CenterPoint = source.m_CenterPoint;
}

void TMyShape::Assign(const TMyShape &source)
{
    if (&source == this)
        return;
    CopyAppearanceAndGeometry(source);
    m_MultiInfo = source.m_MultiInfo;
    m_ChildShapes = source.m_ChildShapes;
    m_LinkShapes = source.m_LinkShapes;
    m_ParentNo = source.m_ParentNo;
    // Classes that derive their centre from the points recompute it here.
    m_CenterPoint = GetCenterPoint();
}

void TMyShape::AssignWithoutRelation(const TMyShape &source)
{
    if (&source == this)
        return;
    CopyAppearanceAndGeometry(source);
    m_TextPoint = source.m_TextPoint;
    m_CenterPoint = GetCenterPoint();
}

} // namespace tessal
