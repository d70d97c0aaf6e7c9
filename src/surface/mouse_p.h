// SPDX-License-Identifier: MIT
// The mouse machine of the surface: which gesture is under way, the shape being drawn, and
// the feedback drawn over the screen image while the mouse moves.
#pragma once

#include <tessal/platform/canvas.h>
#include <tessal/platform/types.h>
#include <tessal/shapes/shapeenums.h>
#include <tessal/surface/spatialindex_p.h>
#include <tessal/surface/surfaceenums.h>

#include <tessal/geometry/mypoint.h>

#include <QImage>

#include <functional>
#include <memory>
#include <vector>

namespace tessal {

class TMyCAD;
class TMyShape;
class TMyLinkLine;
class TXorPicture;
class TXorTiles;

// Applies f to shape and, depth first, to its members; the bound stops a corrupt child list
// that leads back to an ancestor.
template <typename Cad, typename Shape, typename F>
void ForTree(const Cad &cad, Shape *shape, F &&f, std::int32_t depth = 0)
{
    if (!shape || depth > cad.GetShapesCount())
        return;
    for (const std::int32_t no : shape->ChildShapes()) {
        Shape *child = cad.GetShapeByNo(no);
        if (child && child != shape)
            ForTree(cad, child, f, depth + 1);
    }
    f(shape);
}

// Exclusive-or feedback on the screen image: drawing the same figure again erases it, so a
// move costs the two figures and the update of the rectangles they touch, never a repaint of
// the drawing. The figure is kept as a closure so that it can be erased exactly, and drawn
// again after a repaint has recomposed pixels under it.
class TFeedback
{
public:
    using TDraw = std::function<void(TCanvas &)>;

    explicit TFeedback(TMyCAD &cad)
        : m_Cad(cad)
    {}

    // Erases the figure on screen (if any) and draws draw, which touches at most rect.
    void Show(TDraw draw, const TRect &rect);
    void Hide();
    bool IsShown() const { return m_Shown; }
    const TRect &Rect() const { return m_Rect; }

    // A repaint is about to recompose area: a figure reaching into it must be recomposed
    // whole (a partial erase cannot be undone by drawing again), so area grows to hold it.
    TRect Recomposing(const TRect &area) const;
    // After the repaint: a figure whose pixels were recomposed is drawn again.
    void Recomposed(const TRect &area);

private:
    void DrawOnScreen();

    TMyCAD &m_Cad;
    TDraw m_Draw;
    TRect m_Rect;
    bool m_Shown = false;
};

// Where a resize by the shape's current handle starts from (control pixels).
TMyPoint ResizeHandlePosition(const TMyShape &shape, TPoint start);

class TMouseMachine
{
public:
    explicit TMouseMachine(TMyCAD &cad);
    ~TMouseMachine();

    void Press(TMouseButton button, TShiftState shift, TPoint p);
    void Move(TShiftState shift, TPoint p);
    void Release(TMouseButton button, TShiftState shift, TPoint p);

    // The tool changed: a shape under construction is dropped with its feedback.
    void ToolChanged();
    // Escape: the shape under construction or the gesture under way is abandoned.
    void Cancel();
    // Shapes leave the document, those for which gone answers true: no reference to them may
    // survive.
    void Forget(const std::function<bool(const TMyShape *)> &gone);
    void ForgetAll();
    // Hover tracking: shape is the one under the mouse now, or nullptr.
    void Hover(TMyShape *shape, TPoint point);
    TMyShape *Hovered() const { return m_Hovered; }

    TMyShape *Construction() const { return m_Building.get(); }
    bool IsDown() const { return m_Down; }
    TFeedback &Feedback() { return m_Feedback; }

private:
    // Press (mousepress.cpp).
    void PressDrawing(TShiftState shift, TPoint p);
    void StartShape();
    void PressSelecting(TShiftState shift);
    bool PressHandles();
    bool PressBodies(TShiftState shift);
    void PressNewShape(TShiftState shift);
    TMyShape *FindClickThrough(TMyShape *outer);
    TMyShape *ChooseNewShape();

    // Move (mousemove.cpp).
    void MoveDrawingPreview(TShiftState shift, TPoint p);
    void MoveCursor(TPoint p);
    void MoveHover(TPoint p);
    void MoveWithButton(TShiftState shift, TPoint p);
    void MoveFreeLine(TPoint p);
    void MoveRubberBand(TPoint p);
    void MoveResizing(TShiftState shift, TPoint p);
    void MoveDragging(TPoint p);
    std::shared_ptr<const TXorPicture> DragPicture(const std::vector<TMyShape *> &shapes);
    void ForgetDragPicture();
    void MoveTextPoint(TPoint p);
    void MoveRotating(TPoint p);
    void MoveDragWhole(TPoint p);
    TXorTiles *WholeDragPicture();

    // Release (mouserelease.cpp).
    bool ReleaseChild();
    bool ReleaseClickThrough();
    void ReleaseDrawing(TMouseButton button, TShiftState shift);
    bool AskForInput(TMyShape *shape);
    void FinishShape();
    bool JoinLines();
    void FinishDrawingTool(bool indexKept);
    void ReleaseRubberBand();
    void ReleaseResizing(TShiftState shift);
    void ReleaseDragging();
    void ReleaseTextPoint();
    void ReleaseRotating();
    void ReleaseNodeRemoving();
    void ReleaseNodeAdding();
    void ReleaseDragWhole();
    void Changed(bool handlersRan);
    void EndGesture();

    // Connectors re-routed in the feedback (liveconnectors.cpp).
    struct TLiveLink
    {
        TMyLinkLine *Link = nullptr;
        bool StartMoves = false;
        bool EndMoves = false;
    };
    // Where the bound end of a connector goes: its present screen position is given.
    using TEndMove = std::function<TMyPoint(const TMyLinkLine &link, bool start, TMyPoint now)>;
    void CollectLiveLinks(const std::vector<TMyShape *> &moved);
    std::vector<std::vector<TPoint>> LiveRoutes(const TEndMove &move) const;
    static void DrawRoutes(TCanvas &canvas, const std::vector<std::vector<TPoint>> &routes);
    // The pixels DrawRoutes can touch.
    static TRect RoutesRect(const std::vector<std::vector<TPoint>> &routes);
    TEndMove ResizeEndMove(TMyShape *shape, TMyPoint handle, TPoint to);

    // Shared helpers.
    TCanvas &Scratch();
    TMyShape *Current() const;
    void SetCurrent(TMyShape *shape);
    void RestoreTool();
    double RotationAngle(TMyShape *shape, TPoint to) const;
    TMyPoint RotationCentre(TMyShape *shape) const;
    TRect WorkingScreenRect() const;
    TRect WorkingBounds() const;
    TRect DrawingRect(TPoint from, TPoint to) const;
    TRect SizingRect(TMyShape *shape, TPoint to) const;
    bool TakesPartInWholeDrag(const TMyShape *shape) const;
    std::vector<TMyShape *> WholeDragShapes() const;
    std::vector<TMyShape *> WholeDragOutlines(const TRect &area) const;
    void FireGesture(const std::function<void(TMyShape *, TMyPoint, TMyPoint &)> &handler,
                     TMyShape *shape);

    TMyCAD &m_Cad;
    TFeedback m_Feedback;
    TActionTools m_Saved = TActionTools::dtSelecting;
    bool m_Down = false;
    TPoint m_Start;
    TPoint m_Now;
    // The shape being drawn: owned here until it joins the document.
    std::unique_ptr<TMyShape> m_Building;
    TMyShape *m_Child = nullptr;
    TMyShape *m_ClickThrough = nullptr;
    TMyShape *m_Hovered = nullptr;
    // The working shapes' painted extent at the start of a drag, what its feedback repaints,
    // and their bounding rectangle, what snapping and the bound lock hold (both zoomed).
    TRect m_DragBase;
    TRect m_SnapBase;
    std::vector<TLiveLink> m_LiveLinks;
    std::shared_ptr<const TXorPicture> m_DragPicture;
    bool m_DragPictureTried = false;
    // The outlines of a whole drag, drawn as the drag brings them into view.
    std::unique_ptr<TXorTiles> m_WholeDragPicture;
    bool m_LiveLinksCollected = false;
    QImage m_ScratchImage;
    std::unique_ptr<TCanvas> m_Scratch;
    // The candidates of the last press, kept to reuse their storage.
    TPressCursor m_Candidates;
};

} // namespace tessal
