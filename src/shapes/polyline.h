// SPDX-License-Identifier: MIT
// TMyPolyLine, TMyPolygon and TMyFreeLine: open, closed and freehand chains of points.
#pragma once

#include <tessal/shapes/line.h>

namespace tessal {

// An open chain of any length drawn with the line's rules. New polylines carry no arrow
// heads whatever the host's arrow style; they can be set afterwards.
class TMyPolyLine : public TMyLine
{
    Q_GADGET

public:
    explicit TMyPolyLine(TShapeHost *host);

    const QMetaObject *MetaObject() const override { return &staticMetaObject; }
    QString ClassName() const override { return QStringLiteral("TMyPolyLine"); }

    // Finished by a second click on the last point (the last two zoomed points equal, more
    // than two points): the duplicate is removed.
    bool IsDrawingFinished(Qt::MouseButton button, TPoint point) override;

    // Adds a screen point mirrored by the host's XYMode about the control's size.
    void AppendPoint(TPoint point);
};

// A closed chain: once finished its last point repeats point 0. That closing duplicate has
// no handle of its own; moving either end moves the other. The region inside is filled and
// hit (alternate rule), there is no tolerance band and no arrow head.
class TMyPolygon : public TMyPolyLine
{
    Q_GADGET

public:
    explicit TMyPolygon(TShapeHost *host);

    const QMetaObject *MetaObject() const override { return &staticMetaObject; }
    QString ClassName() const override { return QStringLiteral("TMyPolygon"); }

    void DrawHot(TCanvas &canvas) override;
    // Finished, once more than three points are held, by a click strictly within HotSize
    // (in x and in y) of point 0 or of the second-to-last point; the last point becomes
    // point 0.
    bool IsDrawingFinished(Qt::MouseButton button, TPoint point) override;
    void SizeChangeValue(TMyPoint from, TMyPoint to) override;
    // The segments at the moved point, the closing segment included.
    void Sizing(TCanvas &canvas, TPoint from, TPoint to) override;

    void Draw(TCanvas &canvas) override;
    // "Area=" and the enclosed area in the host's unit; stored as Info.
    QString GetInfo() const override;
    std::int32_t InWhichHot(TPoint point) override;
    bool IsClickedMe(TCanvas &canvas, TPoint point) override;
    std::int32_t HitReach() const override { return 0; }

    // The enclosed area of the outline in document pixels squared (absolute value).
    double EnclosedArea() const;

protected:
    // The gradient sits in the polygon's own turned frame: the upright bounding box turned
    // forward by Angle, and the bounding box of that.
    TMyPoint GradientLeftTop() const override;
};

// A freehand chain that collects one point per mouse move while the button is down. Only
// its two ends show handles, though every point answers the handle test like a polyline's
// (the node tools remove inner points; a press never takes hold of a free line's handles).
// It is hit within 8 pixels of any of its segments (the many tiny segments of a hand-drawn
// line defeat the line's rectangle rules).
class TMyFreeLine : public TMyPolyLine
{
    Q_GADGET

public:
    explicit TMyFreeLine(TShapeHost *host);

    const QMetaObject *MetaObject() const override { return &staticMetaObject; }
    QString ClassName() const override { return QStringLiteral("TMyFreeLine"); }

    void DrawHot(TCanvas &canvas) override;
    // Finished at the release once at least two points were recorded.
    bool IsDrawingFinished(Qt::MouseButton button, TPoint point) override;
    bool IsClickedMe(TCanvas &canvas, TPoint point) override;
    std::int32_t HitReach() const override;
};

} // namespace tessal
