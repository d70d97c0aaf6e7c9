// SPDX-License-Identifier: MIT
// Enumerations of the drawing surface: page, background picture, grid, dragging, mouse input.
#pragma once

#include <QObject>

#include <cstdint>

namespace tessal {
namespace SurfaceEnums {
Q_NAMESPACE

// Paper sizes; the portrait size of each named style is in PageStyleSize (cad.h).
// CustomerPage keeps whatever PageWidth and PageHeight hold.
enum class TPageStyle : std::uint8_t { A0, A1, A2, A3, A4, A5, B3, B4, B5, CustomerPage };
Q_ENUM_NS(TPageStyle)

// Placement of the background picture. The ordinal is stored in drawing files.
enum class TBkBitmapMode : std::uint8_t { Tiled, Stretch, Center, LeftTop };
Q_ENUM_NS(TBkBitmapMode)

enum class TGridType : std::uint8_t { gPixel, gLine, gNone };
Q_ENUM_NS(TGridType)

// Axes along which a mouse drag may move shapes.
enum class TDragMode : std::uint8_t { dgHorz, dgVert, dgBoth };
Q_ENUM_NS(TDragMode)

enum class TPrinterOrientation : std::uint8_t { poPortrait, poLandscape };
Q_ENUM_NS(TPrinterOrientation)

enum class TMouseButton : std::uint8_t { mbLeft, mbRight, mbMiddle };
Q_ENUM_NS(TMouseButton)

// Phase of a drag-and-drop hovering over the surface.
enum class TDragState : std::uint8_t { dsDragEnter, dsDragLeave, dsDragMove };
Q_ENUM_NS(TDragState)

} // namespace SurfaceEnums

using SurfaceEnums::TBkBitmapMode;
using SurfaceEnums::TDragMode;
using SurfaceEnums::TDragState;
using SurfaceEnums::TGridType;
using SurfaceEnums::TMouseButton;
using SurfaceEnums::TPageStyle;
using SurfaceEnums::TPrinterOrientation;

// Held modifier keys and mouse buttons of a mouse event, plus the double-click flag.
enum TShiftStateBit : std::uint8_t {
    ssShift = 0x01,
    ssAlt = 0x02,
    ssCtrl = 0x04,
    ssLeft = 0x08,
    ssRight = 0x10,
    ssMiddle = 0x20,
    ssDouble = 0x40
};
using TShiftState = std::uint8_t;

} // namespace tessal
