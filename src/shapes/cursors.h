// SPDX-License-Identifier: MIT
// Mouse cursor codes that shapes answer for the position under the mouse.
#pragma once

#include <cstdint>

namespace tessal {

// The surface maps these codes to Qt cursors; the values are those the component has
// always used, so applications may compare against them.
using TCursor = std::int16_t;

constexpr TCursor crDefault = 0;
constexpr TCursor crArrow = -2;
constexpr TCursor crCross = -3;
constexpr TCursor crIBeam = -4;
constexpr TCursor crSizeNESW = -6;
constexpr TCursor crSizeNS = -7;
constexpr TCursor crSizeNWSE = -8;
constexpr TCursor crSizeWE = -9;
constexpr TCursor crUpArrow = -10;
constexpr TCursor crHourGlass = -11;
constexpr TCursor crDrag = -12;
constexpr TCursor crNoDrop = -13;
constexpr TCursor crHSplit = -14;
constexpr TCursor crVSplit = -15;
constexpr TCursor crMultiDrag = -16;
constexpr TCursor crSQLWait = -17;
constexpr TCursor crNo = -18;
constexpr TCursor crAppStart = -19;
constexpr TCursor crHelp = -20;
constexpr TCursor crHandPoint = -21;
constexpr TCursor crSizeAll = -22;

} // namespace tessal
