// SPDX-License-Identifier: MIT
// Enumerations shared by shapes and the surface. Ordinals are stored in files: keep orders.
#pragma once

#include <QObject>

#include <cstdint>

namespace tessal {
namespace ShapeEnums {
Q_NAMESPACE

enum class TDrawTool : std::uint8_t {
    SpLinkLine,
    SpSelecting,
    SpRotateSelecting,
    SpLine,
    SpRuleLine,
    SpPolyLine,
    SpRectangle,
    SpLinkPoint,
    SpLineLinkLine,
    SpEllipse,
    SpText,
    SpImage,
    SpPolygon,
    SpPolyBezier,
    SpElliArc,
    SpClose,
    SpPolylinePolygonPointRemoving,
    SpPolylinePolygonPointAdding,
    SpDragWhole,
    SpBrowse,
    SpFreeLine,
    SpBLine
};
Q_ENUM_NS(TDrawTool)

// The state of the surface's mouse machine.
enum class TActionTools : std::uint8_t {
    dtClose,
    dtDrawing,
    dtSelecting,
    dtRotateSelecting,
    dtResizing,
    dtDragging,
    dtDraggingTextoutPoint,
    dtRotating,
    dtPolylinePolygonPointRemoving,
    dtPolylinePolygonPointAdding,
    dtDragWhole,
    dtBrowse
};
Q_ENUM_NS(TActionTools)

enum class TGradientStyle : std::uint8_t {
    gsRadialC,
    gsRadialT,
    gsRadialB,
    gsRadialL,
    gsRadialR,
    gsRadialTL,
    gsRadialTR,
    gsRadialBL,
    gsRadialBR,
    gsLinearH,
    gsLinearV,
    gsReflectedH,
    gsReflectedV,
    gsDiagonalLF,
    gsDiagonalLB,
    gsDiagonalRF,
    gsDiagonalRB,
    gsArrowL,
    gsArrowR,
    gsArrowU,
    gsArrowD,
    gsDiamond,
    gsButterfly,
    gsNone
};
Q_ENUM_NS(TGradientStyle)

// ALeft puts the head on the last point and ARight on the first: the names are the
// stored meaning and are kept.
enum class TArrowStyle : std::uint8_t { ANone, ALeft, ARight, ADouble };
Q_ENUM_NS(TArrowStyle)

enum class TPenStyleJoinType : std::uint8_t { psjtROUND, psjtBEVEL, psjtMITER, psjtMASK };
Q_ENUM_NS(TPenStyleJoinType)

enum class TPenStyleEndCapType : std::uint8_t { psectROUND, psectSQUARE, psectFLAT, psectMASK };
Q_ENUM_NS(TPenStyleEndCapType)

// How reported coordinates are mirrored: Mode1 flips Y, Mode2 both, Mode3 X.
enum class TXYMode : std::uint8_t { Mode0, Mode1, Mode2, Mode3 };
Q_ENUM_NS(TXYMode)

enum class TArcMode : std::uint8_t { amCircle, amEllipse };
Q_ENUM_NS(TArcMode)

enum class TLinkLineDrawStyle : std::uint8_t { lldsHV, lldsFree };
Q_ENUM_NS(TLinkLineDrawStyle)

// How an elliptic arc is closed: the bare arc, the chord between its ends, or the pie
// through the centre.
enum class TArcStyle : std::uint8_t { asArc, asChord, asPie };
Q_ENUM_NS(TArcStyle)

enum class TVAlignment : std::uint8_t { vaTop, vaCenter, vaBottom };
Q_ENUM_NS(TVAlignment)

// Where a measuring line draws its ticks: none, on both sides of the line, or on the side
// above (tsTop) or below (tsBottom) it as seen with the line running left to right.
enum class TTickStyle : std::uint8_t { tsNone, tsBoth, tsTop, tsBottom };
Q_ENUM_NS(TTickStyle)

// How an image picks its transparent colour: from its bottom-left pixel (tmAuto) or the
// TransparentColor property (tmFixed). Files store the ordinal as a 32-bit integer.
enum class TTransparentMode : std::uint8_t { tmAuto, tmFixed };
Q_ENUM_NS(TTransparentMode)

} // namespace ShapeEnums

using ShapeEnums::TActionTools;
using ShapeEnums::TArcMode;
using ShapeEnums::TArcStyle;
using ShapeEnums::TArrowStyle;
using ShapeEnums::TDrawTool;
using ShapeEnums::TGradientStyle;
using ShapeEnums::TLinkLineDrawStyle;
using ShapeEnums::TPenStyleEndCapType;
using ShapeEnums::TPenStyleJoinType;
using ShapeEnums::TTickStyle;
using ShapeEnums::TTransparentMode;
using ShapeEnums::TVAlignment;
using ShapeEnums::TXYMode;

} // namespace tessal
