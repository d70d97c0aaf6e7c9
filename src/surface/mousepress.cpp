// SPDX-License-Identifier: MIT
// The press of the mouse machine: the next point of a shape under construction, or the
// choice of what a selecting press takes hold of (a handle, a selected body, a new shape).
#include <tessal/surface/cad.h>
#include <tessal/surface/mouse_p.h>
#include <tessal/surface/xortiles_p.h>

#include <tessal/geometry/canvasmodes.h>
#include <tessal/geometry/geometry.h>
#include <tessal/shapes/curve.h>
#include <tessal/shapes/line.h>
#include <tessal/shapes/link.h>
#include <tessal/shapes/polyline.h>
#include <tessal/shapes/shape.h>

namespace tessal {

namespace {

bool IsPolylineFamily(const TMyShape *shape)
{
    return dynamic_cast<const TMyPolyLine *>(shape) != nullptr;
}

bool IsSelectingTool(TActionTools tool)
{
    return tool == TActionTools::dtSelecting || tool == TActionTools::dtRotateSelecting ||
           tool == TActionTools::dtBrowse;
}

} // namespace

TMouseMachine::TMouseMachine(TMyCAD &cad)
    : m_Cad(cad)
    , m_Feedback(cad)
{}

TMouseMachine::~TMouseMachine() = default;

void TMouseMachine::Press(TMouseButton button, TShiftState shift, TPoint p)
{
    const TActionTools tool = m_Cad.m_ActionTool;
    if (tool == TActionTools::dtClose)
        return;
    if (tool != TActionTools::dtDrawing && (shift & ssDouble))
        return;
    if (button != TMouseButton::mbLeft)
        return;
    // A press while a gesture is still under way (its release went elsewhere) ends that
    // gesture without applying it.
    if (m_Down && tool != TActionTools::dtDrawing)
        Cancel();
    m_Start = m_Now = p;
    m_Down = true;
    m_Child = nullptr;
    m_ClickThrough = nullptr;
    if (m_Cad.m_ActionTool == TActionTools::dtDrawing)
        PressDrawing(shift, p);
    else if (IsSelectingTool(m_Cad.m_ActionTool))
        PressSelecting(shift);
}

// ---- Drawing ----

void TMouseMachine::PressDrawing(TShiftState shift, TPoint p)
{
    m_Cad.m_WorkingShapes.clear();
    m_Saved = m_Cad.m_ReturnToSelecting ? TActionTools::dtSelecting : TActionTools::dtDrawing;
    // A connector is placed where the mouse is: its ends look for link points instead.
    if (m_Cad.m_ShapeTool != TDrawTool::SpLinkLine)
        m_Cad.SnapXY(p.X, p.Y);
    m_Start = m_Now = p;
    if (!m_Building)
        StartShape();
    TMyShape *shape = m_Building.get();
    if (!shape)
        return;
    m_Feedback.Hide();
    if (shape->GetPointsCount() > 0) {
        const std::int32_t anchorNo = IsPolylineFamily(shape) ? shape->GetPointsCount() - 1 : 0;
        m_Cad.DrawMakeSquareorHV(MyPtToPt(shape->GetPointInZoom(anchorNo)), m_Now, shift);
    }
    shape->AddPointByMouse(m_Now);
    m_Now = p;
    m_Start = MyPtToPt(shape->GetPointInZoom(shape->GetPointsCount() - 1));
    if ((dynamic_cast<TMyBLine *>(shape) && shape->GetPointsCount() > 2) ||
        IsPolylineFamily(shape)) {
        const TPoint from = m_Start, to = m_Now;
        m_Feedback.Show([shape, from, to](TCanvas &c) { shape->Drawing(c, from, to); },
                        DrawingRect(from, to));
    }
}

void TMouseMachine::StartShape()
{
    m_Building = m_Cad.CreateShapeBySpTool(m_Cad.m_ShapeTool);
    TMyShape *shape = m_Building.get();
    m_Cad.m_CurrentShape = shape;
    if (!shape)
        return;
    shape->SetShapeNo(m_Cad.GetShapesCount());
    if (auto *link = dynamic_cast<TMyLinkLine *>(shape)) {
        std::int32_t linkId = -1;
        if (TMyShape *main = m_Cad.GetMainShape(m_Start, linkId); main && linkId >= 0) {
            link->SetStartSpNo(m_Cad.GetShapeNoInMyShapes(main));
            link->SetStartSpPtId(linkId);
        }
    } else if (shape->ClassName() == QLatin1String("TMyLine")) {
        m_Cad.GetMergeShape(static_cast<TMyLine *>(shape), true, PtToMyPt(m_Start));
    }
}

// ---- Selecting ----

void TMouseMachine::PressSelecting(TShiftState shift)
{
    m_Saved = m_Cad.m_ActionTool;
    if (PressHandles())
        return;
    if (PressBodies(shift))
        return;
    PressNewShape(shift);
}

// The handles, children and text points of the working shapes. A free line among them ends
// the pass: its many points are not handles to be taken hold of.
bool TMouseMachine::PressHandles()
{
    TCanvas &scratch = Scratch();
    for (TMyShape *shape : m_Cad.m_WorkingShapes) {
        if (dynamic_cast<TMyFreeLine *>(shape))
            return false;
        SetCurrent(shape);
        for (const std::int32_t no : shape->ChildShapes()) {
            TMyShape *child = m_Cad.GetShapeByNo(no);
            if (child && child != shape && m_Cad.IsClickedMeforShape(scratch, child, m_Start))
                m_Child = child;
        }
        const std::int32_t hot = shape->InWhichHot(m_Start);
        if (hot >= 0) {
            if (!dynamic_cast<TMyLinkLine *>(shape) && hot < 4)
                m_Start = MyPtToPt(shape->GetPointInZoom(hot));
            TActionTools &tool = m_Cad.m_ActionTool;
            if (tool == TActionTools::dtSelecting && m_Cad.m_ResizeEnable)
                tool = TActionTools::dtResizing;
            else if (tool == TActionTools::dtRotateSelecting && m_Cad.m_RotateEnable &&
                     shape->RotateEnable())
                tool = TActionTools::dtRotating;
            m_Now = m_Start;
            return true;
        }
        const bool hasText = !shape->MultiInfo().isEmpty() || !shape->Info().isEmpty();
        if (hasText && !shape->Locked() && shape->InTextPointHot(m_Start)) {
            m_Start = MyPtToPt(shape->ZoomedValuePt(shape->TextPoint()));
            m_Now = m_Start;
            if (m_Cad.m_ActionTool == TActionTools::dtSelecting)
                m_Cad.m_ActionTool = TActionTools::dtDraggingTextoutPoint;
            return true;
        }
    }
    return false;
}

bool TMouseMachine::PressBodies(TShiftState shift)
{
    TCanvas &scratch = Scratch();
    const std::vector<TMyShape *> working = m_Cad.m_WorkingShapes;
    for (TMyShape *shape : working) {
        if (!m_Cad.IsClickedMeforShape(scratch, shape, m_Start))
            continue;
        if (shift & ssShift) {
            m_Cad.RemoveWorkingShape(shape);
            return true;
        }
        SetCurrent(shape);
        m_ClickThrough = FindClickThrough(shape);
        if (m_Cad.m_ActionTool != TActionTools::dtBrowse)
            m_Cad.m_ActionTool = TActionTools::dtDragging;
        if (m_Cad.m_OnShapeSelected)
            m_Cad.m_OnShapeSelected(&m_Cad, shape, shape);
        if (shape->OnClick())
            shape->OnClick()(&m_Cad, shape);
        return true;
    }
    return false;
}

// A shape inside the pressed one that a click without movement selects instead, so that a
// small shape on top of a selected large one can be reached.
TMyShape *TMouseMachine::FindClickThrough(TMyShape *outer)
{
    TCanvas &scratch = Scratch();
    const TMyPoint lt = outer->ZoomedValuePt(outer->GetLeftTop());
    const TMyPoint rb = outer->ZoomedValuePt(outer->GetRightBottom());
    const TPoint p1 = MyPtToPt(lt);
    const TPoint p2 = MyPtToPt(rb);
    const std::int32_t outerNo = m_Cad.GetShapeNoInMyShapes(outer);
    const TRect probe = TRect(m_Start.X, m_Start.Y, m_Start.X + 1, m_Start.Y + 1).Inflated(10, 10);
    for (const std::int32_t no : m_Cad.ShapesInRect(probe)) {
        TMyShape *shape = m_Cad.GetShapeByNo(no);
        if (shape == outer || shape->ParentNo() == outerNo)
            continue;
        if (!m_Cad.IsClickedMeforShape(scratch, shape, m_Start) || !m_Cad.IsInRegion(p1, p2, shape))
            continue;
        if (!m_Cad.m_OperateAllLayer && shape->LayerId() != m_Cad.m_CurrentLayerId)
            continue;
        return m_Cad.GetRootParentShape(shape);
    }
    return nullptr;
}

void TMouseMachine::PressNewShape(TShiftState shift)
{
    TMyShape *previous = m_Cad.m_WorkingShapes.empty() ? nullptr : m_Cad.m_WorkingShapes.front();
    if (previous && m_Cad.m_OnShapeSelected)
        m_Cad.m_OnShapeSelected(&m_Cad, previous, nullptr);
    TMyShape *choice = ChooseNewShape();
    if (!choice) {
        m_Cad.ClearWorkingShapes();
        return;
    }
    SetCurrent(choice);
    if (shift & ssShift) {
        m_Cad.AddWorkingShape(choice);
        if (m_Cad.m_OnShapeSelected)
            m_Cad.m_OnShapeSelected(&m_Cad, nullptr, choice);
        return;
    }
    m_Cad.m_WorkingShapes.assign(1, choice);
    if (m_Cad.m_OnShapeSelected)
        m_Cad.m_OnShapeSelected(&m_Cad, previous, choice);
    if (choice->OnClick())
        choice->OnClick()(&m_Cad, choice);
    if (m_Cad.m_ActionTool != TActionTools::dtBrowse)
        m_Cad.m_ActionTool = TActionTools::dtDragging;
    if (!dynamic_cast<TMyLineLinkLine *>(choice))
        m_Cad.Invalidate();
}

// From the top of the drawing down; a connector box wins over what it lies on. Only
// top-level shapes can be chosen, and the index hands out the shapes that can be hit at the
// press one by one, so that on a dense drawing the search ends at the topmost hit.
TMyShape *TMouseMachine::ChooseNewShape()
{
    TCanvas &scratch = Scratch();
    m_Cad.BeginPressCandidates(m_Start, m_Candidates);
    TMyShape *other = nullptr;
    for (TIndexCandidate candidate; m_Candidates.Next(candidate);) {
        TMyShape *shape = m_Cad.m_Shapes[std::size_t(candidate.No)].get();
        if (!m_Cad.IsShownTopLevel(shape) || m_Cad.IsWorkingShape(shape))
            continue;
        if (!m_Cad.m_OperateAllLayer && shape->LayerId() != m_Cad.m_CurrentLayerId)
            continue;
        if (!m_Cad.IsClickedMeforShape(scratch, shape, m_Start))
            continue;
        if (candidate.Connector)
            return shape;
        // Below the topmost hit only a connector box can still win.
        other = shape;
        m_Candidates.ConnectorsOnly();
    }
    return other;
}

// ---- Shared helpers ----

TCanvas &TMouseMachine::Scratch()
{
    // Hit tests may draw into the canvas they are given; a scratch one keeps the screen as
    // it is.
    if (!m_Scratch) {
        m_ScratchImage = QImage(1, 1, QImage::Format_RGB32);
        m_Scratch = std::make_unique<TCanvas>(&m_ScratchImage);
    }
    return *m_Scratch;
}

TMyShape *TMouseMachine::Current() const
{
    return m_Cad.m_CurrentShape;
}

void TMouseMachine::SetCurrent(TMyShape *shape)
{
    m_Cad.m_CurrentShape = shape;
}

void TMouseMachine::RestoreTool()
{
    m_Cad.m_ActionTool = m_Saved;
}

} // namespace tessal
