// SPDX-License-Identifier: MIT
// Resolution of system-colour codes and conversion between colour values and QColor.
#include <tessal/platform/color.h>

#include <array>

namespace tessal {

namespace {

// Fixed values for the system colours, indexed by the low byte of the code. They are
// deliberately independent of the desktop theme: a drawing must render identically on
// every machine and in the offscreen test platform.
constexpr std::array<TColor, 25> kSystemColors = {
    RGBToColor(200, 200, 200), // scroll bar
    RGBToColor(0, 0, 0),       // desktop background
    RGBToColor(153, 180, 209), // active caption
    RGBToColor(191, 205, 219), // inactive caption
    RGBToColor(240, 240, 240), // menu
    RGBToColor(255, 255, 255), // window
    RGBToColor(100, 100, 100), // window frame
    RGBToColor(0, 0, 0),       // menu text
    RGBToColor(0, 0, 0),       // window text
    RGBToColor(0, 0, 0),       // caption text
    RGBToColor(180, 180, 180), // active border
    RGBToColor(244, 247, 252), // inactive border
    RGBToColor(171, 171, 171), // application work space
    RGBToColor(51, 153, 255),  // highlight
    RGBToColor(255, 255, 255), // highlight text
    RGBToColor(240, 240, 240), // button face
    RGBToColor(160, 160, 160), // button shadow
    RGBToColor(109, 109, 109), // grey text
    RGBToColor(0, 0, 0),       // button text
    RGBToColor(67, 78, 84),    // inactive caption text
    RGBToColor(255, 255, 255), // button highlight
    RGBToColor(105, 105, 105), // 3-D dark shadow
    RGBToColor(227, 227, 227), // 3-D light
    RGBToColor(0, 0, 0),       // tooltip text
    RGBToColor(255, 255, 225), // tooltip background
};

} // namespace

TColor ColorToRGB(TColor c)
{
    if (IsSystemColor(c)) {
        const TColor index = c & 0xFFu;
        // Codes past the table are not system colours this platform knows: black.
        return index < kSystemColors.size() ? kSystemColors[index] : clBlack;
    }
    return c & 0x00FFFFFFu;
}

QColor ToQColor(TColor c)
{
    const TColor rgb = ColorToRGB(c);
    return QColor(GetRValue(rgb), GetGValue(rgb), GetBValue(rgb));
}

TColor FromQColor(const QColor &c)
{
    const QColor rgb = c.toRgb();
    return RGBToColor(std::uint8_t(rgb.red()), std::uint8_t(rgb.green()), std::uint8_t(rgb.blue()));
}

} // namespace tessal
