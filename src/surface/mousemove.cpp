// SPDX-License-Identifier: MIT
// The move of the mouse machine: previews of the shape under construction, cursors, hover,
// and the feedback of the gesture under way. Nothing here changes the document.
#include <tessal/surface/cad.h>
#include <tessal/surface/mouse_p.h>
#include <tessal/surface/xorpicture_p.h>
#include <tessal/surface/xortiles_p.h>

#include <tessal/geometry/canvasmodes.h>
#include <tessal/geometry/geometry.h>
#include <tessal/shapes/link.h>
#include <tessal/shapes/polyline.h>
#include <tessal/shapes/shape.h>

#include <QCursor>

#include <algorithm>
#include <cmath>

namespace tessal {

namespace {

Qt::CursorShape QtCursor(TCursor cursor)
{
    switch (cursor) {
    case crArrow:
        return Qt::ArrowCursor;
    case crIBeam:
        return Qt::IBeamCursor;
    case crSizeNESW:
        return Qt::SizeBDiagCursor;
    case crSizeNS:
        return Qt::SizeVerCursor;
    case crSizeNWSE:
        return Qt::SizeFDiagCursor;
    case crSizeWE:
        return Qt::SizeHorCursor;
    case crUpArrow:
        return Qt::UpArrowCursor;
    case crHourGlass:
        return Qt::WaitCursor;
    case crDrag:
    case crMultiDrag:
        return Qt::DragMoveCursor;
    case crNo:
    case crNoDrop:
        return Qt::ForbiddenCursor;
    case crHandPoint:
        return Qt::PointingHandCursor;
    case crSizeAll:
        return Qt::SizeAllCursor;
    case crHSplit:
        return Qt::SplitHCursor;
    case crVSplit:
        return Qt::SplitVCursor;
    default:
        return Qt::CrossCursor;
    }
}

TPoint Clamped(TPoint p, const TRect &area)
{
    return {std::clamp(p.X, area.Left, area.Right - 1), std::clamp(p.Y, area.Top, area.Bottom - 1)};
}

} // namespace

void TMouseMachine::Move(TShiftState shift, TPoint p)
{
    if (!m_Cad.m_CursorClip.IsEmpty() && !m_Cad.m_CursorClip.Contains(p)) {
        p = Clamped(p, m_Cad.m_CursorClip);
        if (m_Cad.isVisible())
            QCursor::setPos(m_Cad.mapToGlobal(QPoint(p.X, p.Y)));
    }
    const TActionTools tool = m_Cad.m_ActionTool;
    if (tool == TActionTools::dtDrawing && m_Building && !dynamic_cast<TMyFreeLine *>(Current()))
        MoveDrawingPreview(shift, p);
    if ((tool == TActionTools::dtSelecting || tool == TActionTools::dtRotateSelecting) &&
        m_Cad.m_MouseEffect)
        MoveCursor(p);
    if (!m_Down)
        MoveHover(p);
    const TPoint reported = m_Cad.ReportPoint(p.X, p.Y);
    m_Cad.UpdateLabelXY(reported.X, reported.Y);
    if (!m_Down)
        return;
    m_Cad.SetCursorClipArea(TRect(0, 0, m_Cad.width(), m_Cad.height()), 0, false, 0);
    MoveWithButton(shift, p);
}

// The rubber segment of the shape under construction follows the mouse, between presses too
// (a polyline shows its next segment before the click that places it).
void TMouseMachine::MoveDrawingPreview(TShiftState shift, TPoint p)
{
    TMyShape *shape = m_Building.get();
    if (m_Cad.m_ShapeTool == TDrawTool::SpLine) {
        std::int32_t no = -1, point = -1;
        m_Cad.InWhichShapeWhichPointNo(p, no, point);
    }
    if (auto *link = dynamic_cast<TMyLinkLine *>(shape);
        link && m_Cad.m_ShapeTool == TDrawTool::SpLinkLine) {
        std::int32_t no = -1, linkId = -1;
        m_Cad.InWhichShapeWhichHotLinkId(p, no, linkId);
        link->SetEndSpNo(no);
        link->SetEndSpPtId(linkId);
    } else {
        m_Cad.SnapXY(p.X, p.Y);
    }
    m_Now = p;
    m_Cad.DrawMakeSquareorHV(m_Start, m_Now, shift);
    const TPoint from = m_Start, to = m_Now;
    m_Feedback.Show([shape, from, to](TCanvas &c) { shape->Drawing(c, from, to); },
                    DrawingRect(from, to));
    m_Cad.UpdateLabelValue(shape->GetLengthByUnit(from, to));
}

// The first working shape with a handle under the mouse decides the cursor.
void TMouseMachine::MoveCursor(TPoint p)
{
    TCursor cursor = crCross;
    for (TMyShape *shape : m_Cad.m_WorkingShapes) {
        cursor = shape->GetMouseCursor(p.X, p.Y);
        if (cursor != crCross)
            break;
    }
    if (m_Cad.m_CursorClip.IsEmpty() || m_Cad.cursor().shape() != Qt::BlankCursor)
        m_Cad.setCursor(QtCursor(cursor));
}

void TMouseMachine::MoveHover(TPoint p)
{
    TCanvas &scratch = Scratch();
    const TRect probe = TRect(p.X, p.Y, p.X + 1, p.Y + 1).Inflated(10, 10);
    const std::vector<std::int32_t> near = m_Cad.ShapesInRect(probe);
    for (auto it = near.rbegin(); it != near.rend(); ++it) {
        TMyShape *shape = m_Cad.GetShapeByNo(*it);
        if (m_Cad.IsClickedMeforShape(scratch, shape, p)) {
            m_Cad.ShowHintEnterLeaveShape(shape, true, p);
            return;
        }
    }
    m_Cad.ShowHintEnterLeaveShape(nullptr, false, p);
}

void TMouseMachine::MoveWithButton(TShiftState shift, TPoint p)
{
    switch (m_Cad.m_ActionTool) {
    case TActionTools::dtDrawing:
        if (dynamic_cast<TMyFreeLine *>(Current()))
            MoveFreeLine(p);
        break;
    case TActionTools::dtSelecting:
    case TActionTools::dtRotateSelecting:
        MoveRubberBand(p);
        break;
    case TActionTools::dtResizing:
        MoveResizing(shift, p);
        break;
    case TActionTools::dtDragging:
        MoveDragging(p);
        break;
    case TActionTools::dtDraggingTextoutPoint:
        MoveTextPoint(p);
        break;
    case TActionTools::dtRotating:
        MoveRotating(p);
        break;
    case TActionTools::dtDragWhole:
        MoveDragWhole(p);
        break;
    default:
        break;
    }
}

// A free line takes every mouse position as a point; its feedback is the line itself, drawn
// segment by segment, so nothing is erased between moves.
void TMouseMachine::MoveFreeLine(TPoint p)
{
    TMyShape *shape = m_Building.get();
    if (!shape || p == m_Start)
        return;
    const TPoint from = m_Start;
    TFeedback segment(m_Cad);
    segment.Show([shape, from, p](TCanvas &c) { shape->Drawing(c, from, p); },
                 DrawingRect(from, p));
    shape->AddPointByMouse(p);
    m_Start = m_Now = p;
}

void TMouseMachine::MoveRubberBand(TPoint p)
{
    m_Now = p;
    const TRect band = TRect(std::min(m_Start.X, p.X), std::min(m_Start.Y, p.Y),
                             std::max(m_Start.X, p.X) + 1, std::max(m_Start.Y, p.Y) + 1);
    const TPoint from = m_Start;
    m_Feedback.Show(
        [from, p](TCanvas &c) {
            c.Pen().Width = 1;
            c.Pen().Style = TPenStyle::psDot;
            c.Pen().Mode = TPenMode::pmXor;
            c.Pen().Color = clWhite;
            c.Brush().Style = TBrushStyle::bsClear;
            c.Rectangle(TRect(std::min(from.X, p.X), std::min(from.Y, p.Y),
                              std::max(from.X, p.X) + 1, std::max(from.Y, p.Y) + 1));
        },
        band.Inflated(2, 2));
}

void TMouseMachine::MoveResizing(TShiftState shift, TPoint p)
{
    TMyShape *shape = Current();
    if (!shape)
        return;
    if (m_Cad.m_ShapeTool != TDrawTool::SpLinkLine)
        m_Cad.SnapXY(p.X, p.Y);
    m_Cad.ResizeMakeSquareorHV(shape, m_Start, p, shift);
    m_Now = p;
    const TPoint from = m_Start;
    std::vector<std::vector<TPoint>> routes;
    TRect touched = SizingRect(shape, p);
    if (m_Cad.m_LiveConnectors) {
        if (!m_LiveLinksCollected)
            CollectLiveLinks({shape});
        if (const TEndMove move = ResizeEndMove(shape, ResizeHandlePosition(*shape, m_Start), p))
            routes = LiveRoutes(move);
        touched = touched.United(RoutesRect(routes));
    }
    m_Feedback.Show(
        [shape, from, p, routes = std::move(routes)](TCanvas &c) {
            SetDragResizeRotateShapeMode(c);
            shape->Sizing(c, from, p);
            DrawRoutes(c, routes);
        },
        touched);
    TMyPoint to = m_Cad.GetPointByMode(p);
    if (m_Cad.m_OnShapeMouseResizing)
        m_Cad.m_OnShapeMouseResizing(&m_Cad, shape, m_Cad.GetPointByMode(m_Start), to);
    if (dynamic_cast<TMyLinkLine *>(shape)) {
        std::int32_t no = -1, linkId = -1;
        m_Cad.InWhichShapeWhichHotLinkId(p, no, linkId);
    }
    m_Cad.UpdateLabelValue(shape->GetLengthByUnit(from, p));
}

// A resized outline stays within twice the reach of the box's centre to its corners and to
// the mouse (a turned box is resized in its own frame); a connector's route may go anywhere.
TRect TMouseMachine::SizingRect(TMyShape *shape, TPoint to) const
{
    const TRect box = m_Cad.ShapeScreenRect(shape);
    if (dynamic_cast<TMyLinkLine *>(shape) || box.IsEmpty())
        return TRect(0, 0, m_Cad.width(), m_Cad.height());
    const double cx = (box.Left + box.Right) / 2.0, cy = (box.Top + box.Bottom) / 2.0;
    double reach = std::hypot(to.X - cx, to.Y - cy);
    for (const TPoint corner : {TPoint{box.Left, box.Top}, TPoint{box.Right, box.Bottom}})
        reach = std::max(reach, double(std::hypot(corner.X - cx, corner.Y - cy)));
    const auto r = std::int32_t(std::ceil(2 * reach)) + 4;
    const auto x = std::int32_t(cx), y = std::int32_t(cy);
    return TRect(x - r, y - r, x + r + 1, y + r + 1);
}

void TMouseMachine::MoveDragging(TPoint p)
{
    if (m_Cad.m_WorkingShapes.empty())
        return;
    if (m_DragBase.IsEmpty()) {
        m_DragBase = WorkingScreenRect();
        m_SnapBase = WorkingBounds();
    }
    if (m_Cad.m_Snap || m_Cad.m_SnapShape)
        m_Cad.SnapRect(m_SnapBase.Translated(p.X - m_Start.X, p.Y - m_Start.Y), p.X, p.Y);
    if (m_Cad.m_LockBound) {
        // The shapes' box may not leave the control: the mouse is held where it keeps it in.
        const TRect area(m_Start.X - m_SnapBase.Left, m_Start.Y - m_SnapBase.Top,
                         m_Cad.width() - (m_SnapBase.Right - m_Start.X) + 1,
                         m_Cad.height() - (m_SnapBase.Bottom - m_Start.Y) + 1);
        if (area.Right > area.Left && area.Bottom > area.Top) {
            m_Cad.SetCursorClipArea(area, 0, false, 0);
            p = Clamped(p, area);
        }
    }
    m_Cad.GetMousePointbyDragMode(m_Start, p);
    m_Now = p;
    TMyPoint to = m_Cad.GetPointByMode(p);
    if (m_Cad.m_OnShapeMouseDragging)
        m_Cad.m_OnShapeMouseDragging(&m_Cad, Current(), m_Cad.GetPointByMode(m_Start), to);
    if (!m_Cad.m_DragTrace)
        return;
    const TPoint from = m_Start;
    TMyCAD &cad = m_Cad;
    // The outlines are those of the shapes dragged now, even if the selection changes
    // before they are erased.
    std::vector<TMyShape *> shapes = m_Cad.m_WorkingShapes;
    std::vector<std::vector<TPoint>> routes;
    TRect touched = m_DragBase.Translated(p.X - m_Start.X, p.Y - m_Start.Y).Inflated(2, 2);
    if (m_Cad.m_LiveConnectors) {
        if (!m_LiveLinksCollected)
            CollectLiveLinks(shapes);
        const float dx = float(p.X - m_Start.X), dy = float(p.Y - m_Start.Y);
        routes = LiveRoutes([dx, dy](const TMyLinkLine &, bool, TMyPoint now) {
            return TMyPoint{now.X + dx, now.Y + dy};
        });
        touched = touched.United(RoutesRect(routes));
    }
    const std::shared_ptr<const TXorPicture> picture = DragPicture(shapes);
    const TPoint offset{p.X - m_Start.X, p.Y - m_Start.Y};
    m_Feedback.Show(
        [&cad, shapes = std::move(shapes), routes = std::move(routes), picture, offset, from,
         p](TCanvas &c) {
            SetDragResizeRotateShapeMode(c);
            if (picture && c.Target()) {
                c.Flush(); // the image is written directly
                picture->XorInto(*c.Target(), c.Origin(), offset);
            } else {
                for (TMyShape *shape : shapes)
                    cad.DragOutline(c, shape, from, p);
            }
            DrawRoutes(c, routes);
        },
        touched);
}

// The outlines of the dragged shapes drawn once, in exclusive-or on black, and kept as the
// pixels they change: a move shows them at the new offset instead of drawing every outline
// again. Nothing where the picture would be huge or the screen has device pixels of another
// size; the outlines are drawn then.
std::shared_ptr<const TXorPicture> TMouseMachine::DragPicture(const std::vector<TMyShape *> &shapes)
{
    if (m_DragPicture || m_DragPictureTried)
        return m_DragPicture;
    m_DragPictureTried = true;
    const TRect area = m_DragBase.Inflated(2, 2);
    constexpr qint64 MaxPixels = 16 * 1024 * 1024;
    if (area.IsEmpty() || qint64(area.Width()) * area.Height() > MaxPixels ||
        m_Cad.m_ScreenImage.devicePixelRatio() != 1.0)
        return {};
    QImage picture(area.Width(), area.Height(), QImage::Format_RGB32);
    picture.fill(Qt::black);
    {
        TCanvas canvas(&picture);
        canvas.SetOrigin(area.TopLeft());
        SetDragResizeRotateShapeMode(canvas);
        for (TMyShape *shape : shapes)
            m_Cad.DragOutline(canvas, shape, m_Start, m_Start);
        canvas.Flush();
    }
    m_DragPicture = std::make_shared<const TXorPicture>(picture, area.TopLeft());
    return m_DragPicture;
}

void TMouseMachine::MoveTextPoint(TPoint p)
{
    m_Now = p;
    const std::int32_t h = m_Cad.m_HotSize;
    m_Feedback.Show(
        [p, h](TCanvas &c) {
            SetDragResizeRotateShapeMode(c);
            DrawDiamond(c, PtToMyPt(p), h);
        },
        TRect(p.X, p.Y, p.X + 1, p.Y + 1).Inflated(h + 3, h + 3));
}

void TMouseMachine::MoveRotating(TPoint p)
{
    TMyShape *shape = Current();
    if (!shape)
        return;
    m_Now = p;
    const TMyPoint centre = RotationCentre(shape);
    const double angle = RotationAngle(shape, p);
    TMyCAD &cad = m_Cad;
    const TRect box = m_Cad.ShapeScreenRect(shape);
    double reach = 0;
    for (const TPoint corner : {TPoint{box.Left, box.Top}, TPoint{box.Right, box.Top},
                                TPoint{box.Left, box.Bottom}, TPoint{box.Right, box.Bottom}})
        reach = std::max(reach, double(std::hypot(corner.X - centre.X, corner.Y - centre.Y)));
    const auto r = std::int32_t(std::ceil(reach)) + 4;
    const auto cx = std::int32_t(std::lround(centre.X)), cy = std::int32_t(std::lround(centre.Y));
    std::vector<std::vector<TPoint>> routes;
    TRect touched(cx - r, cy - r, cx + r + 1, cy + r + 1);
    if (m_Cad.m_LiveConnectors) {
        if (!m_LiveLinksCollected)
            CollectLiveLinks({shape});
        routes = LiveRoutes([centre, angle](const TMyLinkLine &, bool, TMyPoint now) {
            return RotateAPoint(now, centre, float(angle));
        });
        touched = touched.United(RoutesRect(routes));
    }
    m_Feedback.Show(
        [&cad, shape, centre, angle, routes = std::move(routes)](TCanvas &c) {
            SetDragResizeRotateShapeMode(c);
            cad.RotatingforShapes(c, shape, centre, angle);
            DrawRoutes(c, routes);
        },
        touched);
    TMyPoint to = m_Cad.GetPointByMode(p);
    if (m_Cad.m_OnShapeMouseRotating)
        m_Cad.m_OnShapeMouseRotating(&m_Cad, shape, m_Cad.GetPointByMode(m_Start), to);
}

void TMouseMachine::MoveDragWhole(TPoint p)
{
    m_Cad.GetMousePointbyDragMode(m_Start, p);
    m_Now = p;
    const TPoint from = m_Start;
    const TRect screen(0, 0, m_Cad.width(), m_Cad.height());
    const TPoint offset{p.X - from.X, p.Y - from.Y};
    const TRect seen = TRect::FromQRect(m_Cad.ScreenImageRect()).Translated(-offset.X, -offset.Y);
    if (TXorTiles *picture = WholeDragPicture()) {
        m_Feedback.Show(
            [tiles = picture->Tiles(seen), offset](TCanvas &c) {
                if (!c.Target())
                    return;
                c.Flush(); // the image is written directly
                for (const auto &tile : tiles)
                    tile->XorInto(*c.Target(), c.Origin(), offset);
            },
            screen);
        return;
    }
    const std::vector<TMyShape *> shapes = WholeDragOutlines(seen.Inflated(4, 4));
    m_Feedback.Show(
        [shapes, from, p](TCanvas &c) {
            SetDragResizeRotateShapeMode(c);
            for (TMyShape *shape : shapes)
                shape->Draging(c, from, p);
        },
        screen);
}

// The outlines of the shapes taking part, drawn at rest tile by tile as the drag brings them
// into view. Moved by whole pixels they are the same pixels, so each move lays the tiles in
// view instead of drawing every outline there again. Nothing on a screen whose device pixels
// have another size; the outlines are drawn then.
TXorTiles *TMouseMachine::WholeDragPicture()
{
    if (m_Cad.m_ScreenImage.isNull() || m_Cad.m_ScreenImage.devicePixelRatio() != 1.0)
        return nullptr;
    if (!m_WholeDragPicture) {
        m_WholeDragPicture = std::make_unique<TXorTiles>([this](TCanvas &c, const TRect &tile) {
            SetDragResizeRotateShapeMode(c);
            for (TMyShape *shape : WholeDragOutlines(tile.Inflated(4, 4)))
                shape->Draging(c, m_Start, m_Start);
        });
    }
    return m_WholeDragPicture.get();
}

} // namespace tessal
