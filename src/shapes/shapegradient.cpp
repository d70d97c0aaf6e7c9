// SPDX-License-Identifier: MIT
// TMyShape: the gradient templates. Each style paints a small fixed-size picture from a
// 256-entry colour ramp; painting stretches and turns it to the shape.
#include <tessal/shapes/shape.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace tessal {

namespace {

using TRamp = std::array<TColor, 256>;

// Entry i = begin + (end - begin) * i / 255 per channel, truncating toward zero.
TRamp MakeRamp(TColor begin, TColor end)
{
    const TColor b = ColorToRGB(begin);
    const TColor e = ColorToRGB(end);
    auto channel = [](int from, int to, int i) {
        return std::uint8_t(from + (to - from) * i / 255);
    };
    TRamp ramp;
    for (int i = 0; i < 256; ++i)
        ramp[std::size_t(i)] = RGBToColor(channel(GetRValue(b), GetRValue(e), i),
                                          channel(GetGValue(b), GetGValue(e), i),
                                          channel(GetBValue(b), GetBValue(e), i));
    return ramp;
}

void Put(TBitmap &bitmap, const TRamp &ramp, int x, int y, int index)
{
    const TColor c = ramp[std::size_t(std::clamp(index, 0, 255))];
    std::uint8_t *px = bitmap.ScanLine(y) + 3 * x;
    px[0] = GetBValue(c);
    px[1] = GetGValue(c);
    px[2] = GetRValue(c);
}

// Sizes the template and paints every pixel with ramp[index(x, y)].
template <typename IndexOf>
void Paint(TBitmap &bitmap, const TRamp &ramp, int w, int h, IndexOf index)
{
    bitmap.SetSize(w, h);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            Put(bitmap, ramp, x, y, index(x, y));
}

// Distance of a coordinate from the middle of a 362-wide axis whose two central pixels
// (180 and 181) are both at distance 0.
int FromMiddle(int v)
{
    return v <= 180 ? 180 - v : v - 181;
}

// The radial fillers: the squared horizontal distance of each column is computed once and
// reused for every row.
template <typename DxOf, typename DyOf>
void PaintRadial(TBitmap &bitmap, const TRamp &ramp, int w, int h, DxOf dxOf, DyOf dyOf)
{
    std::vector<int> dx2(static_cast<std::size_t>(w));
    for (int x = 0; x < w; ++x)
        dx2[std::size_t(x)] = dxOf(x) * dxOf(x);
    bitmap.SetSize(w, h);
    for (int y = 0; y < h; ++y) {
        const int dy2 = dyOf(y) * dyOf(y);
        for (int x = 0; x < w; ++x)
            Put(bitmap, ramp, x, y,
                int(std::nearbyint(std::sqrt(double(dx2[std::size_t(x)] + dy2)))));
    }
}

void PaintRadialStyle(TBitmap &bm, const TRamp &d, TGradientStyle style)
{
    auto same = [](int v) { return v; };
    auto from180 = [](int v) { return 180 - v; };
    switch (style) {
    case TGradientStyle::gsRadialC:
        return PaintRadial(bm, d, 362, 362, FromMiddle, from180);
    case TGradientStyle::gsRadialT:
        return PaintRadial(bm, d, 362, 181, FromMiddle, same);
    case TGradientStyle::gsRadialB:
        return PaintRadial(bm, d, 362, 181, FromMiddle, from180);
    case TGradientStyle::gsRadialL:
        return PaintRadial(bm, d, 181, 362, same, FromMiddle);
    case TGradientStyle::gsRadialR:
        return PaintRadial(bm, d, 181, 362, from180, FromMiddle);
    case TGradientStyle::gsRadialTL:
        return PaintRadial(bm, d, 181, 181, same, same);
    case TGradientStyle::gsRadialTR:
        return PaintRadial(bm, d, 181, 181, from180, same);
    case TGradientStyle::gsRadialBL:
        return PaintRadial(bm, d, 181, 181, same, from180);
    default:
        return PaintRadial(bm, d, 181, 181, from180, from180);
    }
}

void PaintLinearStyle(TBitmap &bm, const TRamp &d, TGradientStyle style)
{
    switch (style) {
    case TGradientStyle::gsLinearH:
        return Paint(bm, d, 1, 256, [](int, int y) { return y; });
    case TGradientStyle::gsLinearV:
        return Paint(bm, d, 256, 1, [](int x, int) { return x; });
    case TGradientStyle::gsReflectedH:
        return Paint(bm, d, 1, 512, [](int, int y) { return y < 256 ? 255 - y : y - 256; });
    case TGradientStyle::gsReflectedV:
        return Paint(bm, d, 512, 1, [](int x, int) { return x < 256 ? 255 - x : x - 256; });
    case TGradientStyle::gsDiagonalLF:
        return Paint(bm, d, 128, 129, [](int x, int y) { return y - x + 127; });
    case TGradientStyle::gsDiagonalLB:
        return Paint(bm, d, 128, 129, [](int x, int y) { return x + y; });
    case TGradientStyle::gsDiagonalRF:
        return Paint(bm, d, 256, 256, [](int x, int y) { return std::abs(y - x); });
    default: // gsDiagonalRB
        return Paint(bm, d, 256, 256,
                     [](int x, int y) { return x + y < 255 ? 255 - (x + y) : x + y - 255; });
    }
}

void PaintArrowStyle(TBitmap &bm, const TRamp &d, TGradientStyle style)
{
    switch (style) {
    case TGradientStyle::gsArrowL:
        return Paint(bm, d, 129, 256, [](int x, int y) { return y < 128 ? 255 - (x + y) : y - x; });
    case TGradientStyle::gsArrowR:
        return Paint(bm, d, 129, 256,
                     [](int x, int y) { return y < 128 ? x - y + 127 : x + y - 128; });
    case TGradientStyle::gsArrowU:
        return Paint(bm, d, 256, 129, [](int x, int y) { return x < 128 ? 255 - (x + y) : x - y; });
    case TGradientStyle::gsArrowD:
        return Paint(bm, d, 256, 129,
                     [](int x, int y) { return x < 128 ? y - x + 127 : x + y - 128; });
    case TGradientStyle::gsDiamond:
        return Paint(bm, d, 256, 256, [](int x, int y) {
            if (y < 128)
                return x < 128 ? 255 - (x + y) : x - y;
            return x < 128 ? y - x : x + y - 255;
        });
    default: // gsButterfly
        return Paint(bm, d, 256, 256, [](int x, int y) {
            if (y < 128)
                return x < 128 ? x - y + 128 : 383 - (x + y);
            return x < 128 ? x + y - 128 : y - x + 128;
        });
    }
}

} // namespace

void TMyShape::DrawGradient()
{
    const auto style = GradientStyle();
    if (style == TGradientStyle::gsNone) {
        // Most shapes have no gradient; they must not get extras for an empty template.
        if (m_Extras)
            m_Extras->GradientBitmap.Clear();
        return;
    }
    TBitmap &bitmap = MutableExtras().GradientBitmap;
    bitmap.Clear();
    const TRamp ramp = MakeRamp(ColorBegin(), ColorEnd());
    if (style <= TGradientStyle::gsRadialBR)
        PaintRadialStyle(bitmap, ramp, style);
    else if (style <= TGradientStyle::gsDiagonalRB)
        PaintLinearStyle(bitmap, ramp, style);
    else
        PaintArrowStyle(bitmap, ramp, style);
}

} // namespace tessal
