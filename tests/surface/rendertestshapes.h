// SPDX-License-Identifier: MIT
// Shapes and scenes shared by the rendering and index tests.
#pragma once

#include <tessal/shapes/shape.h>
#include <tessal/shapes/shapetools.h>
#include <tessal/surface/cad.h>

#include <QImage>

#include <array>
#include <cmath>

namespace tessal::test {

// A rectangle filled and outlined in one colour through the base's filled-outline painting,
// independent of the concrete shape classes.
class TFillShape : public TMyShape
{
public:
    TFillShape(TShapeHost *host, TMyRect box, TColor colour)
        : TMyShape(host)
    {
        Points() = {{box.Left, box.Top},
                    {box.Right, box.Top},
                    {box.Right, box.Bottom},
                    {box.Left, box.Bottom}};
        SetPen(TPen{colour, TPenMode::pmCopy, TPenStyle::psSolid, 1});
        SetBrush(TBrush{colour, TBrushStyle::bsSolid, {}});
        SetTextPoint({(box.Left + box.Right) / 2, (box.Top + box.Bottom) / 2});
    }

    void Draw(TCanvas &canvas) override
    {
        SetDrawShapeMode(*this, canvas);
        std::array<TPoint, 4> pts;
        for (std::int32_t i = 0; i < 4; ++i) {
            const TMyPoint p = GetPointInZoom(i);
            pts[std::size_t(i)] = {std::int32_t(std::nearbyint(p.X)),
                                   std::int32_t(std::nearbyint(p.Y))};
        }
        PowerDrawShape(canvas, pts, true);
        DrawInfo(canvas);
    }
};

inline TFillShape *AddFill(TMyCAD &cad, TMyRect box, TColor colour)
{
    auto *shape = new TFillShape(&cad, box, colour);
    cad.AddShape(shape, false, false);
    return shape;
}

// 0xRRGGBB of a colour value, as the image helpers count pixels.
constexpr unsigned Rgb(TColor c)
{
    return (unsigned(GetRValue(c)) << 16) | (unsigned(GetGValue(c)) << 8) | GetBValue(c);
}

inline unsigned PixelRgb(const QImage &image, int x, int y)
{
    return image.pixel(x, y) & 0xFFFFFFu;
}

// The pixels of rect after composing rect alone.
inline QImage Compose(TMyCAD &cad, const TRect &rect)
{
    cad.DrawAll(rect);
    return cad.OffscreenImage().copy(rect.ToQRect().translated(-cad.OffscreenOrigin()));
}

inline TRect ControlRect(const TMyCAD &cad)
{
    return {0, 0, cad.width(), cad.height()};
}

} // namespace tessal::test
