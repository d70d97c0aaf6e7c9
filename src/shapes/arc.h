// SPDX-License-Identifier: MIT
// TMyElliArc: a part of an ellipse or circle, open or closed by a chord or a pie.
#pragma once

#include <tessal/shapes/shape.h>

#include <vector>

namespace tessal {

// Where an arc lies, in document units and in the shape's own frame (the axes turned by
// Angle about the centre).
struct TArcGeometry
{
    TMyPoint Centre;
    double RadiusX = 0; // along the frame's x axis
    double RadiusY = 0; // along the frame's y axis
    // Curve parameter of the start: the frame point is (RadiusX cos t, -RadiusY sin t), so
    // a growing parameter runs anticlockwise on the screen.
    double Start = 0;
    // Signed turn from the start to the end; 0 for an empty arc.
    double Sweep = 0;
};

// Three points: 0 the centre, 1 the start, 2 the end. The arc runs from the start
// anticlockwise on the screen to the end; a mirrored arc (exactly one of IsFlipHorz and
// IsFlipVert set) runs clockwise, so a flip shows the mirror image of the same arc. An end
// in the very direction of the start gives an empty arc.
//
// amCircle: the radius is the distance from the centre to the start, and the end only gives
// the direction; the end point is kept on the circle whenever a point is placed or moved.
// amEllipse: the ellipse about the centre, with its axes along the shape's frame, that
// passes through both the start and the end. When no such ellipse exists (the point further
// out on one axis is also further out on the other), the circle through the start is used.
//
// asArc strokes the open curve; asChord closes it by the straight line between its ends
// and asPie by the two radii; both are filled (brush and gradient) through PowerDrawShape.
// Each of the three points has a handle (the highest number wins); the arc is hit within 8
// pixels of its outline, and a chord or pie also anywhere inside. With the mouse the three
// points are clicked in order: the preview shows the radius, then the arc following the
// mouse. The setters only store: the caller repaints.
class TMyElliArc : public TMyShape
{
    Q_GADGET
    Q_PROPERTY(tessal::ShapeEnums::TArcMode ArcMode READ ArcMode WRITE SetArcMode)
    Q_PROPERTY(tessal::ShapeEnums::TArcStyle ArcStyle READ ArcStyle WRITE SetArcStyle)

public:
    // Takes the host's ArcMode; a new arc is open (asArc).
    explicit TMyElliArc(TShapeHost *host);

    const QMetaObject *MetaObject() const override { return &staticMetaObject; }
    QString ClassName() const override { return QStringLiteral("TMyElliArc"); }
    // The class's part of the stored record, after its parent's.
    void SaveToStream(BinaryStream &stream) const override;
    void LoadFromStream(BinaryStream &stream) override;

    void AddPointByMouse(TPoint point) override;
    bool IsDrawingFinished(Qt::MouseButton button, TPoint point) override;
    void Drawing(TCanvas &canvas, TPoint from, TPoint to) override;
    void Draging(TCanvas &canvas, TPoint from, TPoint to) override;
    void Rotating(TCanvas &canvas, TMyPoint centre, double angle) override;
    void Sizing(TCanvas &canvas, TPoint from, TPoint to) override;
    // Moves the current handle by to - from (screen).
    void SizeChangeValue(TMyPoint from, TMyPoint to) override;

    void Assign(const TMyShape &source) override;
    void AssignWithoutRelation(const TMyShape &source) override;
    void Draw(TCanvas &canvas) override;
    void DrawHot(TCanvas &canvas) override;
    std::int32_t InWhichHot(TPoint point) override;
    bool IsClickedMe(TCanvas &canvas, TPoint point) override;

    // The arc of the current points (empty Sweep with fewer than three).
    TArcGeometry ArcGeometry() const;
    // The outline in screen pixels (unrounded): the curve in 5-degree steps, then for a chord
    // the start again, for a pie the centre and the start again.
    std::vector<TMyPoint> OutlineInZoom() const;

    TArcMode ArcMode() const { return m_ArcMode; }
    void SetArcMode(TArcMode mode) { m_ArcMode = mode; }
    TArcStyle ArcStyle() const { return m_ArcStyle; }
    void SetArcStyle(TArcStyle style) { m_ArcStyle = style; }

private:
    void CopyArcFields(const TMyShape &source);
    TArcGeometry GeometryOf(const TMyPointArray &points) const;
    // The outline of the given document points, zoomed.
    std::vector<TMyPoint> OutlineOf(const TMyPointArray &points, bool closed) const;
    // In circle mode, puts the end point on the circle through the start.
    void KeepEndOnCircle(TMyPointArray &points) const;
    // The points after a drag of the current handle by (dx, dy) screen pixels.
    TMyPointArray PointsWithHandleMoved(double dx, double dy) const;

    TArcMode m_ArcMode;
    TArcStyle m_ArcStyle = TArcStyle::asArc;
};

} // namespace tessal
