// SPDX-License-Identifier: MIT
// Enumerations of the drawing primitives. Ordinals are stored in files: keep the order.
#pragma once

#include <QObject>

#include <cstdint>

namespace tessal {
namespace PlatformEnums {
Q_NAMESPACE

enum class TPenStyle : std::uint8_t {
    psSolid,
    psDash,
    psDot,
    psDashDot,
    psDashDotDot,
    psClear,
    psInsideFrame,
    psUserStyle,
    psAlternate
};
Q_ENUM_NS(TPenStyle)

// Raster operations of a pen, in the stored order.
enum class TPenMode : std::uint8_t {
    pmBlack,
    pmWhite,
    pmNop,
    pmNot,
    pmCopy,
    pmNotCopy,
    pmMergePenNot,
    pmMaskPenNot,
    pmMergeNotPen,
    pmMaskNotPen,
    pmMerge,
    pmNotMerge,
    pmMask,
    pmNotMask,
    pmXor,
    pmNotXor
};
Q_ENUM_NS(TPenMode)

enum class TBrushStyle : std::uint8_t {
    bsSolid,
    bsClear,
    bsHorizontal,
    bsVertical,
    bsFDiagonal,
    bsBDiagonal,
    bsCross,
    bsDiagCross
};
Q_ENUM_NS(TBrushStyle)

enum class TAlignment : std::uint8_t { taLeftJustify, taRightJustify, taCenter };
Q_ENUM_NS(TAlignment)

enum class TFontPitch : std::uint8_t { fpDefault, fpFixed, fpVariable };
Q_ENUM_NS(TFontPitch)

// Polygon fill rule of regions: alternate (even-odd) or winding (non-zero).
enum class TFillMode : std::uint8_t { fmAlternate, fmWinding };
Q_ENUM_NS(TFillMode)

// Join and end-cap styles of geometric pens.
enum class TPenJoin : std::uint8_t { pjRound, pjBevel, pjMiter, pjMask };
Q_ENUM_NS(TPenJoin)
enum class TPenEndCap : std::uint8_t { pecRound, pecSquare, pecFlat, pecMask };
Q_ENUM_NS(TPenEndCap)

} // namespace PlatformEnums

using PlatformEnums::TAlignment;
using PlatformEnums::TBrushStyle;
using PlatformEnums::TFillMode;
using PlatformEnums::TFontPitch;
using PlatformEnums::TPenEndCap;
using PlatformEnums::TPenJoin;
using PlatformEnums::TPenMode;
using PlatformEnums::TPenStyle;

// Font style bits as stored: bold bit 0, italic bit 1, underline bit 2, strike-out bit 3.
enum TFontStyleBit : std::uint8_t {
    fsBold = 0x01,
    fsItalic = 0x02,
    fsUnderline = 0x04,
    fsStrikeOut = 0x08
};
using TFontStyles = std::uint8_t;

} // namespace tessal
