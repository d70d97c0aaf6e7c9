// SPDX-License-Identifier: MIT
// What a shape needs from the surface that owns it. TMyCAD implements this interface; the
// shapes layer sees nothing else of the surface, which keeps dependencies one-way.
#pragma once

#include <tessal/geometry/mypoint.h>
#include <tessal/platform/canvas.h>
#include <tessal/platform/graphics.h>
#include <tessal/shapes/shapeenums.h>

#include <QString>

#include <cstdint>
#include <vector>

namespace tessal {

class TMyShape;
class TMyLinkLine;

// The handle highlighted by the last link-point or end-point hot test, shared by all
// shapes of one surface so that moving from one shape to another erases the old square.
struct THotHighlight
{
    TMyShape *Shape = nullptr;
    std::int32_t Number = -1;
    // Where the square was drawn (screen), so that erasing draws exactly the same square
    // even if the shape has moved or the zoom changed since. A repaint that recomposes the
    // screen image removes the square; the surface then resets this memory to its defaults.
    TMyPoint Square;
};

class TShapeHost
{
public:
    virtual ~TShapeHost() = default;

    // Settings that new shapes copy at construction.
    virtual const TPen &Pen() const = 0;
    virtual const TBrush &Brush() const = 0;
    virtual const TFont &Font() const = 0;
    virtual TPenStyleJoinType PenStyleJoinType() const = 0;
    virtual TPenStyleEndCapType PenStyleEndCapType() const = 0;
    virtual bool DragEnable() const = 0;
    virtual bool ResizeEnable() const = 0;
    virtual bool RotateEnable() const = 0;
    virtual bool HotShow() const = 0;

    // Defaults that new lines, connectors and arcs copy at construction. They are not
    // abstract so that a host without these settings gives the surface's own defaults.
    virtual std::int32_t ArrowAngle() const { return 10; }
    virtual std::uint8_t ArrowLength() const { return 30; }
    virtual std::uint8_t ArrowOffset() const { return 0; }
    virtual TArrowStyle ArrowStyle() const { return TArrowStyle::ANone; }
    virtual TArcMode ArcMode() const { return TArcMode::amCircle; }
    virtual TLinkLineDrawStyle LinkLineDrawStyle() const { return TLinkLineDrawStyle::lldsHV; }

    // View state read while drawing and measuring.
    virtual double Zoom() const = 0;
    virtual std::uint8_t HotSize() const = 0;
    virtual double Ratio() const = 0;
    virtual TUnits TheUNIT() const = 0;
    virtual TXYMode XYMode() const = 0;
    virtual bool ShowHotLink() const = 0;
    virtual std::int32_t RotateConstraintDegree() const = 0;
    virtual TDrawTool ShapeTool() const = 0;
    virtual TActionTools ActionTool() const = 0;
    // The control's size in pixels (for the XYMode mirror) and the screen resolution.
    virtual std::int32_t ControlWidth() const = 0;
    virtual std::int32_t ControlHeight() const = 0;
    virtual std::int32_t ScreenPixelsPerInch() const = 0;
    // True while a drawing is being read: appearance changes are not passed to children.
    virtual bool IsLoading() const = 0;
    // The format version text by which stored shape records are read ("XP.2" ... "XP.j").
    virtual QString DiskFileVersion() const { return QStringLiteral("XP.j"); }

    // Document access by shape number (position in the shape list); nullptr when out of
    // range.
    virtual TMyShape *GetShapeByNo(std::int32_t no) const = 0;
    virtual TMyShape *GetRootParentShape(TMyShape *shape) const = 0;
    // The shape with the identity, nullptr when none. The default searches GetShapeByNo.
    virtual TMyShape *GetShapeByID(std::int32_t id) const;
    // The shape's place in the list (its shape number as relations name it), -1 when not
    // listed. A shape's ShapeNo is where it was made, or what a file stored: not a place.
    // The default searches GetShapeByNo.
    virtual std::int32_t GetShapeNoInMyShapes(const TMyShape *shape) const;

    // The numbers of the shapes (group members included) that may have a point in box
    // (screen pixels, edges included), ascending; more may be answered, never fewer. The
    // default answers every shape.
    virtual std::vector<std::int32_t> ShapesIn(const TMyRect &box) const;

    // The orthogonal route of a connector from start to end (screen points). The default
    // routes around the connector's two bound shapes only; a surface also steers round its
    // other shapes.
    virtual std::vector<TMyPoint> GetPath(const TMyLinkLine &line, TMyPoint start,
                                          TMyPoint end) const;

    // Requests a repaint later; never paints at once.
    virtual void RequestRepaint() = 0;
    // The shape's own state changed through one of its setters (points, pen, texts, a flip):
    // a repaint is due, and whatever the host keeps about the shape is out of date.
    virtual void ShapeChanged(TMyShape &shape)
    {
        (void)shape;
        RequestRepaint();
    }
    // The shape's identity changed; a host that finds shapes by identity must look again.
    virtual void ShapeIdChanged(TMyShape &shape) { (void)shape; }
    // Turns the shape together with its group to the absolute angle (radians) about the
    // centre of its root group, or its own centre when ungrouped.
    virtual void RotateShapeTo(TMyShape *shape, double angle) = 0;
    // Locks or unlocks the shape together with its group relatives.
    virtual void LockShape(TMyShape *shape, bool locked) = 0;

    // The remembered link-point / end-point highlight.
    virtual THotHighlight &HotHighlight() = 0;
    // The canvas of the on-screen image, where not-xor and xor feedback is drawn so that a
    // second drawing erases it; ScreenChanged asks for the touched rectangle to be shown.
    // ScreenCanvas may answer nullptr when the surface has no screen image yet.
    virtual TCanvas *ScreenCanvas() = 0;
    virtual void ScreenChanged(const TRect &rect) = 0;
};

} // namespace tessal
