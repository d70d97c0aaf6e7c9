// SPDX-License-Identifier: MIT
// Colour values in the 32-bit 0x00BBGGRR form, with system-colour codes (high byte 0xFF).
#pragma once

#include <QColor>

#include <cstdint>

namespace tessal {

using TColor = std::uint32_t;

constexpr TColor RGBToColor(std::uint8_t r, std::uint8_t g, std::uint8_t b)
{
    return TColor(r) | (TColor(g) << 8) | (TColor(b) << 16);
}
constexpr std::uint8_t GetRValue(TColor c)
{
    return std::uint8_t(c & 0xFF);
}
constexpr std::uint8_t GetGValue(TColor c)
{
    return std::uint8_t((c >> 8) & 0xFF);
}
constexpr std::uint8_t GetBValue(TColor c)
{
    return std::uint8_t((c >> 16) & 0xFF);
}

// Named colours.
constexpr TColor clBlack = 0x000000;
constexpr TColor clMaroon = 0x000080;
constexpr TColor clGreen = 0x008000;
constexpr TColor clOlive = 0x008080;
constexpr TColor clNavy = 0x800000;
constexpr TColor clPurple = 0x800080;
constexpr TColor clTeal = 0x808000;
constexpr TColor clGray = 0x808080;
constexpr TColor clSilver = 0xC0C0C0;
constexpr TColor clRed = 0x0000FF;
constexpr TColor clLime = 0x00FF00;
constexpr TColor clYellow = 0x00FFFF;
constexpr TColor clBlue = 0xFF0000;
constexpr TColor clFuchsia = 0xFF00FF;
constexpr TColor clAqua = 0xFFFF00;
constexpr TColor clWhite = 0xFFFFFF;
constexpr TColor clNone = 0x1FFFFFFF;
constexpr TColor clDefault = 0x20000000;

// System colours: the high byte 0xFF marks a code, the low byte is the system index.
constexpr TColor clSystemColor = 0xFF000000;
constexpr TColor clScrollBar = clSystemColor | 0;
constexpr TColor clBackground = clSystemColor | 1;
constexpr TColor clActiveCaption = clSystemColor | 2;
constexpr TColor clInactiveCaption = clSystemColor | 3;
constexpr TColor clMenu = clSystemColor | 4;
constexpr TColor clWindow = clSystemColor | 5;
constexpr TColor clWindowFrame = clSystemColor | 6;
constexpr TColor clMenuText = clSystemColor | 7;
constexpr TColor clWindowText = clSystemColor | 8;
constexpr TColor clCaptionText = clSystemColor | 9;
constexpr TColor clActiveBorder = clSystemColor | 10;
constexpr TColor clInactiveBorder = clSystemColor | 11;
constexpr TColor clAppWorkSpace = clSystemColor | 12;
constexpr TColor clHighlight = clSystemColor | 13;
constexpr TColor clHighlightText = clSystemColor | 14;
constexpr TColor clBtnFace = clSystemColor | 15;
constexpr TColor clBtnShadow = clSystemColor | 16;
constexpr TColor clGrayText = clSystemColor | 17;
constexpr TColor clBtnText = clSystemColor | 18;
constexpr TColor clInactiveCaptionText = clSystemColor | 19;
constexpr TColor clBtnHighlight = clSystemColor | 20;
constexpr TColor cl3DDkShadow = clSystemColor | 21;
constexpr TColor cl3DLight = clSystemColor | 22;
constexpr TColor clInfoText = clSystemColor | 23;
constexpr TColor clInfoBk = clSystemColor | 24;

constexpr bool IsSystemColor(TColor c)
{
    return (c & 0xFF000000u) == clSystemColor;
}

// Resolves a system-colour code to its RGB value (fixed, theme-independent values so that
// drawings look the same everywhere); other values are returned with the high byte cleared.
TColor ColorToRGB(TColor c);

QColor ToQColor(TColor c);
TColor FromQColor(const QColor &c);

} // namespace tessal
