// SPDX-License-Identifier: MIT
// A stand-in surface for shape tests: settings as plain members, a shape list,
// a white screen image with its canvas, and counters of what the shapes asked
// for. Also the small image helpers the shape tests read pixels with (colours
// as 0xRRGGBB).
#pragma once

#include <tessal/geometry/geometry.h>
#include <tessal/shapes/shape.h>

#include "common/imagecompare.h"

#include <QImage>

#include <cmath>
#include <memory>
#include <vector>

namespace tessal::test {

class TTestHost : public TShapeHost
{
public:
    explicit TTestHost(int width = 200, int height = 200)
        : m_Screen(width, height, QImage::Format_RGB32)
    {
        m_Screen.fill(Qt::white);
        m_ScreenCanvas = std::make_unique<TCanvas>(&m_Screen);
        ControlW = width;
        ControlH = height;
    }

    // Settings the shapes read.
    TPen HostPen;
    TBrush HostBrush;
    TFont HostFont;
    TPenStyleJoinType Join = TPenStyleJoinType::psjtROUND;
    TPenStyleEndCapType Cap = TPenStyleEndCapType::psectROUND;
    bool Drag = true, Resize = true, Rotate = true, Hot = true, ShowLinks = true;
    double ZoomValue = 1.0, RatioValue = 1.0;
    std::uint8_t HotSizeValue = 4;
    TUnits Unit = TUnits::mm;
    TXYMode Mode = TXYMode::Mode0;
    std::int32_t ConstraintDegree = 0;
    TDrawTool Tool = TDrawTool::SpSelecting;
    std::int32_t ControlW = 0, ControlH = 0, Ppi = 96;
    bool Loading = false;

    // Document: the host owns the shapes; their numbers are their positions.
    std::vector<std::unique_ptr<TMyShape>> Shapes;
    TMyShape *Add(std::unique_ptr<TMyShape> shape)
    {
        Shapes.push_back(std::move(shape));
        return Shapes.back().get();
    }

    // What the shapes asked for.
    int Repaints = 0;
    std::vector<std::pair<TMyShape *, double>> RotateCalls;
    std::vector<TRect> ScreenChanges;
    THotHighlight Highlight;

    QImage &Screen()
    {
        m_ScreenCanvas->Flush();
        return m_Screen;
    }

    const TPen &Pen() const override { return HostPen; }
    const TBrush &Brush() const override { return HostBrush; }
    const TFont &Font() const override { return HostFont; }
    TPenStyleJoinType PenStyleJoinType() const override { return Join; }
    TPenStyleEndCapType PenStyleEndCapType() const override { return Cap; }
    bool DragEnable() const override { return Drag; }
    bool ResizeEnable() const override { return Resize; }
    bool RotateEnable() const override { return Rotate; }
    bool HotShow() const override { return Hot; }
    double Zoom() const override { return ZoomValue; }
    std::uint8_t HotSize() const override { return HotSizeValue; }
    double Ratio() const override { return RatioValue; }
    TUnits TheUNIT() const override { return Unit; }
    TXYMode XYMode() const override { return Mode; }
    bool ShowHotLink() const override { return ShowLinks; }
    std::int32_t RotateConstraintDegree() const override { return ConstraintDegree; }
    TDrawTool ShapeTool() const override { return Tool; }
    TActionTools ActionTool() const override { return TActionTools::dtSelecting; }
    std::int32_t ControlWidth() const override { return ControlW; }
    std::int32_t ControlHeight() const override { return ControlH; }
    std::int32_t ScreenPixelsPerInch() const override { return Ppi; }
    bool IsLoading() const override { return Loading; }

    TMyShape *GetShapeByNo(std::int32_t no) const override
    {
        if (no < 0 || no >= std::int32_t(Shapes.size()))
            return nullptr;
        return Shapes[std::size_t(no)].get();
    }
    TMyShape *GetRootParentShape(TMyShape *shape) const override
    {
        while (shape && shape->ParentNo() > -1)
            shape = GetShapeByNo(shape->ParentNo());
        return shape;
    }

    void RequestRepaint() override { ++Repaints; }
    // Turns the shape alone about its own centre (enough for the base's callers).
    void RotateShapeTo(TMyShape *shape, double angle) override
    {
        RotateCalls.emplace_back(shape, angle);
        shape->RotateChangeValueByAngle(shape->GetCenterPoint(), angle - shape->Angle());
    }
    void LockShape(TMyShape *shape, bool locked) override
    {
        shape->SetLockedFlag(locked);
        for (std::int32_t no : shape->ChildShapes())
            if (TMyShape *child = GetShapeByNo(no))
                LockShape(child, locked);
    }
    THotHighlight &HotHighlight() override { return Highlight; }
    TCanvas *ScreenCanvas() override { return m_ScreenCanvas.get(); }
    void ScreenChanged(const TRect &rect) override { ScreenChanges.push_back(rect); }

private:
    QImage m_Screen;
    std::unique_ptr<TCanvas> m_ScreenCanvas;
};

// The host with the surface settings that new lines, arcs and connectors copy,
// and the action state that handle tests switch.
class TClassHost : public TTestHost
{
public:
    using TTestHost::TTestHost;

    std::int32_t ArrowAngleValue = 10;
    std::uint8_t ArrowLengthValue = 30;
    std::uint8_t ArrowOffsetValue = 0;
    TArrowStyle ArrowStyleValue = TArrowStyle::ANone;
    TArcMode ArcModeValue = TArcMode::amCircle;
    TLinkLineDrawStyle LinkStyleValue = TLinkLineDrawStyle::lldsHV;
    TActionTools Action = TActionTools::dtSelecting;

    std::int32_t ArrowAngle() const override { return ArrowAngleValue; }
    std::uint8_t ArrowLength() const override { return ArrowLengthValue; }
    std::uint8_t ArrowOffset() const override { return ArrowOffsetValue; }
    TArrowStyle ArrowStyle() const override { return ArrowStyleValue; }
    TArcMode ArcMode() const override { return ArcModeValue; }
    TLinkLineDrawStyle LinkLineDrawStyle() const override { return LinkStyleValue; }
    TActionTools ActionTool() const override { return Action; }
};

// A closed four-corner shape that paints itself through PowerDrawShape, like
// the closed shape classes do.
class TBoxShape : public TMyShape
{
public:
    using TMyShape::TMyShape;
    void Draw(TCanvas &canvas) override
    {
        std::vector<TPoint> pts;
        for (std::int32_t i = 0; i < GetPointsCount(); ++i)
            pts.push_back(MyPtToPt(GetPointInZoom(i)));
        PowerDrawShape(canvas, pts, true);
    }
};

// A box with corners (l, t), (r, t), (r, b), (l, b) in document units, centred.
inline void MakeBox(TMyShape &s, float l, float t, float r, float b)
{
    s.Points() = {{l, t}, {r, t}, {r, b}, {l, b}};
    s.SetCenterPoint({(l + r) / 2, (t + b) / 2});
}

// A shape of class T drawn by two mouse points (screen pixels at the host's
// zoom).
template <class T>
std::unique_ptr<T> DrawnBy(TShapeHost &host, TPoint first, TPoint second)
{
    auto shape = std::make_unique<T>(&host);
    shape->AddPointByMouse(first);
    shape->AddPointByMouse(second);
    return shape;
}

constexpr unsigned kWhite = 0xFFFFFF, kBlack = 0x000000, kRed = 0xFF0000, kBlue = 0x0000FF;
constexpr unsigned kLime = 0x00FF00, kYellow = 0xFFFF00;

inline QImage WhiteImage(int w = 200, int h = 200, unsigned rgb = kWhite)
{
    QImage image(w, h, QImage::Format_RGB32);
    image.fill(QColor::fromRgb(rgb));
    return image;
}

inline unsigned PixelAt(const QImage &image, int x, int y)
{
    return image.pixel(x, y) & 0xFFFFFFu;
}

// A w x h image of the background after draw(canvas) and a flush.
template <class Draw>
QImage Drawn(Draw draw, int w = 200, int h = 200, unsigned background = kWhite)
{
    QImage image = WhiteImage(w, h, background);
    TCanvas canvas(&image);
    draw(canvas);
    canvas.Flush();
    return image;
}

inline QImage Painted(TMyShape &shape, int w = 200, int h = 200, unsigned background = kWhite)
{
    return Drawn([&shape](TCanvas &canvas) { shape.Draw(canvas); }, w, h, background);
}

inline bool AllWhite(const QImage &image, QRect rect = {})
{
    rect = rect.isNull() ? image.rect() : rect;
    return CountPixels(image, rect, kWhite) == rect.width() * rect.height();
}

inline bool Inked(const QImage &image, int x, int y, unsigned background = kWhite)
{
    return image.rect().contains(x, y) && PixelAt(image, x, y) != background;
}

// Whether any pixel within radius (Chebyshev) of (x, y) is not the background.
inline bool InkNear(const QImage &image, double x, double y, int radius = 1,
                    unsigned background = kWhite)
{
    const int cx = int(std::lround(x)), cy = int(std::lround(y));
    for (int dy = -radius; dy <= radius; ++dy)
        for (int dx = -radius; dx <= radius; ++dx)
            if (Inked(image, cx + dx, cy + dy, background))
                return true;
    return false;
}

// The bounding box of the pixels in area (the whole image by default) that are
// not the background; null when there are none.
inline QRect InkBounds(const QImage &image, unsigned background = kWhite, QRect area = {})
{
    area = area.isNull() ? image.rect() : area;
    QRect box;
    for (int y = area.top(); y <= area.bottom(); ++y)
        for (int x = area.left(); x <= area.right(); ++x)
            if (PixelAt(image, x, y) != background)
                box |= QRect(x, y, 1, 1);
    return box;
}

} // namespace tessal::test
