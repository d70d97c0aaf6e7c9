// SPDX-License-Identifier: MIT
// TMyShape: construction, the property setters and copying.
#include <tessal/geometry/bitmapops.h>
#include <tessal/shapes/shape.h>

#include <atomic>

namespace tessal {

TMyShape::TMyShape(TShapeHost *host)
    : m_Host(host)
    , m_Brush(host->Brush())
    , m_Font(host->Font())
    , m_Pen(host->Pen())
    , m_PenStyleJoinType(host->PenStyleJoinType())
    , m_PenStyleEndCapType(host->PenStyleEndCapType())
    , m_DragEnable(host->DragEnable())
    , m_HotShow(host->HotShow())
    , m_ResizeEnable(host->ResizeEnable())
    , m_RotateEnable(host->RotateEnable())
{}

TMyShape::~TMyShape() = default;

TShapeExtras &TMyShape::MutableExtras()
{
    if (!m_Extras)
        m_Extras = std::make_unique<TShapeExtras>();
    return *m_Extras;
}

const TShapeExtras TMyShape::s_DefaultExtras;

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
    if (color == ColorBegin())
        return;
    MutableExtras().ColorBegin = color;
    DrawGradient();
    PassAppearanceToChildren();
    Repaint();
}

void TMyShape::SetColorEnd(TColor color)
{
    if (color == ColorEnd())
        return;
    MutableExtras().ColorEnd = color;
    DrawGradient();
    PassAppearanceToChildren();
    Repaint();
}

void TMyShape::SetGradientStyle(TGradientStyle style)
{
    if (style == GradientStyle())
        return;
    MutableExtras().GradientStyle = style;
    PassAppearanceToChildren();
    DrawGradient();
    // Only a style change puts the template into the shape's mirrored state; a colour change
    // rebuilds it unmirrored, as it always has.
    FlipBitmap(MutableExtras().GradientBitmap, m_IsFlipHorz, m_IsFlipVert);
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
        child->SetColorBegin(ColorBegin());
        child->SetColorEnd(ColorEnd());
        child->SetGradientStyle(GradientStyle());
    }
}

void TMyShape::SetCaption(const QString &caption)
{
    StoreExtraAndRepaint(&TShapeExtras::Caption, caption);
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
    StoreExtraAndRepaint(&TShapeExtras::Info, info);
}

void TMyShape::SetLogHeight(std::int32_t height)
{
    StoreExtraAndRepaint(&TShapeExtras::LogHeight, height);
}

void TMyShape::SetLogUse(bool use)
{
    StoreExtraAndRepaint(&TShapeExtras::LogUse, use);
}

void TMyShape::SetLogWidth(std::int32_t width)
{
    StoreExtraAndRepaint(&TShapeExtras::LogWidth, width);
}

void TMyShape::SetMultiInfo(const QStringList &lines)
{
    StoreExtraAndRepaint(&TShapeExtras::MultiInfo, lines);
}

void TMyShape::SetMultiInfoAlignment(TAlignment alignment)
{
    StoreExtraAndRepaint(&TShapeExtras::MultiInfoAlignment, alignment);
}

void TMyShape::SetOnClick(const TShapeNotifyEvent &handler)
{
    if (handler || m_Extras)
        MutableExtras().OnClick = handler;
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

namespace {
std::atomic<std::uint64_t> NameGenerationCounter{0};
} // namespace

void TMyShape::SetName(const QString &name)
{
    if (name == m_Name)
        return;
    m_Name = name;
    NameGenerationCounter.fetch_add(1, std::memory_order_relaxed);
}

std::uint64_t TMyShape::NameGeneration()
{
    return NameGenerationCounter.load(std::memory_order_relaxed);
}

void TMyShape::SetShapeId(std::int32_t id)
{
    if (id == m_ShapeId)
        return;
    m_ShapeId = id;
    if (m_Host)
        m_Host->ShapeIdChanged(*this);
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
    const TShapeExtras &from = source.Extras();
    AssignExtra(&TShapeExtras::ColorBegin, from.ColorBegin);
    AssignExtra(&TShapeExtras::ColorEnd, from.ColorEnd);
    AssignExtra(&TShapeExtras::GradientStyle, from.GradientStyle);
    AssignExtra(&TShapeExtras::GradientBitmap, from.GradientBitmap);
    m_IsFlipHorz = source.m_IsFlipHorz;
    m_IsFlipVert = source.m_IsFlipVert;
    m_Locked = source.m_Locked;
    m_Angle = source.m_Angle;
    AssignExtra(&TShapeExtras::Caption, from.Caption);
    AssignExtra(&TShapeExtras::Info, from.Info);
    AssignExtra(&TShapeExtras::MultiInfoAlignment, from.MultiInfoAlignment);
    m_Tag = source.m_Tag;
    AssignExtra(&TShapeExtras::UserData, from.UserData);
    m_LayerId = source.m_LayerId;
    m_CenterPoint = source.m_CenterPoint;
}

void TMyShape::Assign(const TMyShape &source)
{
    if (&source == this)
        return;
    CopyAppearanceAndGeometry(source);
    AssignExtra(&TShapeExtras::MultiInfo, source.MultiInfo());
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
