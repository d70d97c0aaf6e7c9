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
    // a growing parameter runs anticlockwise on the screen. Within [-pi, pi].
    double Start = 0;
    // Signed turn from the start to the end, through the arc's middle point: positive runs
    // anticlockwise on the screen. 0 when there is no curve.
    double Sweep = 0;
    // The three points lie on one line (two of them may coincide): the shape is the straight
    // segment from the start to the end; Centre is its middle and the other fields are 0.
    bool Straight = false;
};

// Three points, all on the curve: 0 the start, 1 a point the arc passes through, 2 the end.
// The arc runs from the start through point 1 to the end, so point 1 also says which way
// round it goes. Points on one line, or two of them coinciding, give the straight segment
// from the start to the end. A flip or turn moves the points, so it shows the mirrored or
// turned arc.
//
// amCircle: the circle through the three points.
// amEllipse: half an ellipse. Its axes lie along the shape's frame (turned by Angle), its
// centre is the middle of the start and the end, so they are the ends of one diameter, and
// it passes through point 1, which picks the half. Where no such ellipse exists (point 1,
// seen from the centre, lies further out than the start along both axes or nearer along
// both), the circle through the three points is used, the circle a DXF file gets for any arc.
// A radius beyond 10000 times the largest distance between the points, or below a 10000th
// of it, is not used: such an ellipse gives way to the circle, and such a circle to the
// straight segment.
//
// asArc strokes the open curve; asChord closes it by the straight line between its ends
// and asPie by the two radii to the centre; both are filled (brush and gradient) through
// PowerDrawShape. Each of the three points has a handle (the highest number wins); the arc
// is hit within 8 pixels of its outline, and a chord or pie also anywhere inside. With the
// mouse the start is clicked first, then the end, and last the point the arc passes
// through: the preview shows the line from the start to the mouse, then the arc from the
// start through the mouse to the end. The setters only store: the caller repaints.
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
    std::int32_t HitReach() const override;

    // The arc of the current points (Sweep 0 and not Straight with fewer than three).
    TArcGeometry ArcGeometry() const;
    // The outline in screen pixels (unrounded): the curve in steps of at most 5 degrees of
    // its parameter, then for a chord the start again, for a pie the centre and the start
    // again; a straight arc is its start and end only.
    std::vector<TMyPoint> OutlineInZoom() const;

    TArcMode ArcMode() const { return m_ArcMode; }
    void SetArcMode(TArcMode mode) { StoreAndRepaint(m_ArcMode, mode); }
    TArcStyle ArcStyle() const { return m_ArcStyle; }
    void SetArcStyle(TArcStyle style) { StoreAndRepaint(m_ArcStyle, style); }

private:
    void CopyArcFields(const TMyShape &source);
    TArcGeometry GeometryOf(const TMyPointArray &points) const;
    // The outline of the given document points, zoomed.
    std::vector<TMyPoint> OutlineOf(const TMyPointArray &points, bool closed) const;
    // The points after a drag of the current handle by (dx, dy) screen pixels.
    TMyPointArray PointsWithHandleMoved(double dx, double dy) const;

    TArcMode m_ArcMode;
    TArcStyle m_ArcStyle = TArcStyle::asArc;
};

} // namespace tessal
