// SPDX-License-Identifier: MIT
// Event types of the drawing surface. Every handler receives the surface as its first
// argument; an empty function means "not assigned". A by-reference argument is one the
// handler may change to steer what the surface does next.
#pragma once

#include <tessal/geometry/mypoint.h>
#include <tessal/platform/bitmap.h>
#include <tessal/shapes/shape.h>
#include <tessal/surface/surfaceenums.h>

#include <QMetaType>
#include <QString>

#include <cstdint>
#include <functional>

class QObject;

namespace tessal {

class TMyCAD;
class TMyShape;

// A plain notification: clicks, paint, mouse entering or leaving the control, the return
// to selecting after drawing, the end of a whole-drawing drag.
using TNotifyEvent = std::function<void(TMyCAD *sender)>;
using TActionToolToSelecting = TNotifyEvent;
using TWholeDragOperation = TNotifyEvent;

// A press on a member of a selected group; clearing accept keeps the group selected.
using TChildShapeSelected = std::function<void(TMyCAD *sender, TMyShape *child, bool &accept)>;

// A layer made or removed: its identity, name and visibility.
using TLayerEvent =
    std::function<void(TMyCAD *sender, std::int32_t id, const QString &name, bool visible)>;
using TNewLayer = TLayerEvent;
using TDeleteLayer = TLayerEvent;

// Drag and drop from another object; x and y are control pixels.
using TDragDropEvent =
    std::function<void(TMyCAD *sender, QObject *source, std::int32_t x, std::int32_t y)>;
using TDragOverEvent = std::function<void(TMyCAD *sender, QObject *source, std::int32_t x,
                                          std::int32_t y, TDragState state, bool &accept)>;

// The control's own mouse events, fired before any shape-level processing.
using TMouseEvent = std::function<void(TMyCAD *sender, TMouseButton button, TShiftState shift,
                                       std::int32_t x, std::int32_t y)>;
using TMouseMoveEvent =
    std::function<void(TMyCAD *sender, TShiftState shift, std::int32_t x, std::int32_t y)>;

// One shape concerned: hover enter/leave, deletion (fired while the shape still exists).
// The type of a shape's own click event (declared with the shape).
using TShapeEvent = TShapeNotifyEvent;
using TEnterLeaveShape = TShapeEvent;
using TShapeDeleted = TShapeEvent;

// A shape and a number: the shape count after an addition, or the index of a point that a
// node tool inserted or removed (negative codes report a refused removal).
using TShapeIndexEvent = std::function<void(TMyCAD *sender, TMyShape *shape, std::int32_t n)>;
using TShapeAdded = TShapeIndexEvent;
using TNodeAdded = TShapeIndexEvent;
using TNodeDeleted = TShapeIndexEvent;

// The selection moved from last (or none) to selected.
using TShapeSelected =
    std::function<void(TMyCAD *sender, TMyShape *lastSelected, TMyShape *selected)>;

// Moves and turns made by code: the offset in zoomed pixels, the angle in radians.
using TShapeCodeDragging =
    std::function<void(TMyCAD *sender, TMyShape *shape, double dx, double dy)>;
using TShapeCodeRotating = std::function<void(TMyCAD *sender, TMyShape *shape, float angle)>;

// Mouse gestures on shapes, with both points in reported coordinates (XYMode and TheUNIT
// applied). Where the gesture ends the handler may move toPoint; the surface then applies
// the gesture once more up to the changed point.
using TShapeMouseDraggingSizingRotating =
    std::function<void(TMyCAD *sender, TMyShape *shape, TMyPoint fromPoint, TMyPoint &toPoint)>;

// The image tool asks for its picture; an empty picture cancels the shape.
using TRequestPicture = std::function<void(TMyCAD *sender, TBitmap &picture)>;

// Progress of long work (reading or writing a drawing): done of total steps so far, where a
// step is one shape. Setting cancel stops the work and leaves everything as it was before.
using TProgressEvent =
    std::function<void(TMyCAD *sender, std::int64_t done, std::int64_t total, bool &cancel)>;

} // namespace tessal

Q_DECLARE_METATYPE(tessal::TRequestPicture)
Q_DECLARE_METATYPE(tessal::TNotifyEvent)
Q_DECLARE_METATYPE(tessal::TChildShapeSelected)
Q_DECLARE_METATYPE(tessal::TLayerEvent)
Q_DECLARE_METATYPE(tessal::TDragDropEvent)
Q_DECLARE_METATYPE(tessal::TDragOverEvent)
Q_DECLARE_METATYPE(tessal::TMouseEvent)
Q_DECLARE_METATYPE(tessal::TMouseMoveEvent)
Q_DECLARE_METATYPE(tessal::TShapeIndexEvent)
Q_DECLARE_METATYPE(tessal::TShapeSelected)
Q_DECLARE_METATYPE(tessal::TShapeCodeDragging)
Q_DECLARE_METATYPE(tessal::TShapeCodeRotating)
Q_DECLARE_METATYPE(tessal::TShapeMouseDraggingSizingRotating)
