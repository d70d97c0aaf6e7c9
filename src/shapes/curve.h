// SPDX-License-Identifier: MIT
// Curves: TMyPolyBezier (cubic Bezier pieces) and TMyBLine (a B-spline over its points).
#pragma once

#include <tessal/shapes/shape.h>

#include <vector>

namespace tessal {

// The point of the cubic Bezier piece p0..p3 at t in [0, 1].
TMyPoint BezierPoint(TMyPoint p0, TMyPoint p1, TMyPoint p2, TMyPoint p3, double t);
// The point of the uniform cubic B-spline piece over q0..q3 at t in [0, 1].
TMyPoint BSplinePoint(TMyPoint q0, TMyPoint q1, TMyPoint q2, TMyPoint q3, double t);
// Polylines that follow the curves of the given control points (in any one coordinate
// space; the step count per piece grows with the length of the piece's control polygon in
// that space, so screen points give a screen-fine polyline). The first and last points are
// exact end points of the curve.
std::vector<TMyPoint> FlattenPolyBezier(const std::vector<TMyPoint> &points);
std::vector<TMyPoint> FlattenBSpline(const std::vector<TMyPoint> &points);

// Helpers of the open outlines (curves, arcs, ticks), in screen pixels.
std::vector<TPoint> RoundedPoints(const std::vector<TMyPoint> &points);
// Whether p lies within band pixels of the chain of segments through points.
bool NearPolyline(const std::vector<TMyPoint> &points, TPoint p, double band);
// Strokes the open chain with the shape's geometric pen (SetPS), not closing it.
void StrokeOutline(TMyShape &shape, TCanvas &canvas, const std::vector<TPoint> &points);
// The highest-numbered point of the shape whose HotSize square contains p, or -1; stored as
// the shape's CurrentHot.
std::int32_t PointHandleUnder(TMyShape &shape, TPoint p);
// Handle squares at every point and the caption anchor's diamond, when handles are shown.
void DrawPointHandles(TMyShape &shape, TCanvas &canvas);

// Points are the start anchor followed by pieces of three: two control points and the next
// anchor (3n + 1 points). A count that is not of that form draws the complete pieces only.
//
// With the mouse each click adds an anchor; the two control points of the new piece are
// put at the thirds of the straight way from the previous anchor, so the piece starts
// straight and is bent by dragging its control handles. A second click on the last anchor
// ends the curve (the empty piece it made is dropped). Dragging an anchor's handle moves
// its neighbouring control points with it, so the tangents at the anchor keep their
// direction. Every point has a handle (the highest number wins where they overlap), and
// the curve is hit within 8 pixels of its outline.
class TMyPolyBezier : public TMyShape
{
    Q_GADGET

public:
    using TMyShape::TMyShape;

    const QMetaObject *MetaObject() const override { return &staticMetaObject; }
    QString ClassName() const override { return QStringLiteral("TMyPolyBezier"); }

    void AddPointByMouse(TPoint point) override;
    bool IsDrawingFinished(Qt::MouseButton button, TPoint point) override;
    // The rubber segment from the last anchor to the mouse: the anchors show as a chain
    // while the curve is built.
    void Drawing(TCanvas &canvas, TPoint from, TPoint to) override;
    void Draging(TCanvas &canvas, TPoint from, TPoint to) override;
    void Rotating(TCanvas &canvas, TMyPoint centre, double angle) override;
    void Sizing(TCanvas &canvas, TPoint from, TPoint to) override;
    // Moves the current handle by to - from (screen); an anchor takes its control points.
    void SizeChangeValue(TMyPoint from, TMyPoint to) override;

    void Draw(TCanvas &canvas) override;
    void DrawHot(TCanvas &canvas) override;
    std::int32_t InWhichHot(TPoint point) override;
    bool IsClickedMe(TCanvas &canvas, TPoint point) override;
    std::int32_t HitReach() const override;

    // The flattened curve in screen pixels (unrounded).
    std::vector<TMyPoint> CurveInZoom() const;

private:
    // The points that a drag of the current handle moves.
    std::vector<std::int32_t> PointsMovedByHandle() const;
    // The zoomed points with the current handle's edit applied (offset in screen pixels).
    std::vector<TMyPoint> ZoomedWithHandleMoved(double dx, double dy) const;
};

// A uniform cubic B-spline whose control polygon is the points. The end points are
// repeated three times, so the curve starts exactly at the first point and ends at the
// last, leaving each end along the first or last side of the polygon; two points give the
// straight segment between them. Inner points pull the curve without lying on it.
//
// It is drawn and edited like a polyline: each click adds a point, a second click on the
// last point ends it, every point has a handle, and the curve is hit within 8 pixels.
class TMyBLine : public TMyShape
{
    Q_GADGET

public:
    using TMyShape::TMyShape;

    const QMetaObject *MetaObject() const override { return &staticMetaObject; }
    QString ClassName() const override { return QStringLiteral("TMyBLine"); }

    // Finished by a second click on the last point (more than two points held); the
    // duplicate is removed.
    bool IsDrawingFinished(Qt::MouseButton button, TPoint point) override;
    // The rubber segment from the last point to the mouse.
    void Drawing(TCanvas &canvas, TPoint from, TPoint to) override;
    void Draging(TCanvas &canvas, TPoint from, TPoint to) override;
    void Rotating(TCanvas &canvas, TMyPoint centre, double angle) override;
    void Sizing(TCanvas &canvas, TPoint from, TPoint to) override;
    void SizeChangeValue(TMyPoint from, TMyPoint to) override;

    void Draw(TCanvas &canvas) override;
    void DrawHot(TCanvas &canvas) override;
    std::int32_t InWhichHot(TPoint point) override;
    bool IsClickedMe(TCanvas &canvas, TPoint point) override;
    std::int32_t HitReach() const override;

    // The flattened curve in screen pixels (unrounded).
    std::vector<TMyPoint> CurveInZoom() const;
};

} // namespace tessal
