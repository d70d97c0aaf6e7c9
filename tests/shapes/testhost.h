// SPDX-License-Identifier: MIT
// A stand-in surface for shape tests: settings as plain members, a shape list, a white
// screen image with its canvas, and counters of what the shapes asked for.
#pragma once

#include <tessal/geometry/geometry.h>
#include <tessal/shapes/shape.h>

#include <QImage>

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

// A closed four-corner shape that paints itself through PowerDrawShape, like the closed
// shape classes do.
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

} // namespace tessal::test
