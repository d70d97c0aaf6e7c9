// SPDX-License-Identifier: MIT
// Shape-level wrappers of the geometry helpers: they read the shape and its surface.
#include <tessal/geometry/canvasmodes.h>
#include <tessal/geometry/geometry.h>
#include <tessal/shapes/shapetools.h>

#include <cstdio>

namespace tessal {

void OffsetAllPoints(TMyShape &shape, float dx, float dy)
{
    for (TMyPoint &p : shape.Points())
        p = {p.X + dx, p.Y + dy};
    for (TMyPoint &p : shape.LinkPoints())
        p = {p.X + dx, p.Y + dy};
    const TMyPoint t = shape.TextPoint();
    shape.SetTextPoint({t.X + dx, t.Y + dy});
}

void RemoveAllPoints(TMyShape &shape)
{
    shape.Points().clear();
}

void AddLinklineShape(TMyShape &shape, std::int32_t id)
{
    AddLinklineShape(shape.LinkShapes(), id);
}

void RemoveLinklineShape(TMyShape &shape, std::int32_t id)
{
    RemoveLinklineShape(shape.LinkShapes(), id);
}

void SetDrawTriangleMode(const TMyShape &shape, TCanvas &canvas)
{
    SetDrawTriangleMode(shape.Pen(), shape.Font(), canvas);
}

void SetDrawShapeMode(const TMyShape &shape, TCanvas &canvas)
{
    SetDrawShapeMode(shape.Pen(), shape.Brush(), canvas);
}

void DrawSquare(const TMyShape &shape, TCanvas &canvas, TMyPoint p)
{
    const TShapeHost *host = shape.Host();
    const TDrawTool tool = host->ShapeTool();
    THandleLook look;
    look.HotShow = shape.HotShow();
    look.Locked = shape.Locked();
    look.Grouped = shape.ParentNo() > -1;
    look.RotateEnable = shape.RotateEnable();
    look.HotSize = host->HotSize();
    look.PointTool = tool == TDrawTool::SpLine || tool == TDrawTool::SpLinkPoint;
    DrawSquare(canvas, p, look);
}

void DrawLinkHot(const TMyShape &shape, TCanvas &canvas)
{
    const TShapeHost *host = shape.Host();
    if (!host->HotShow() || !host->ShowHotLink())
        return;
    for (std::int32_t i = 0; i < shape.GetLinkPointsCount(); ++i)
        DrawLinkSquare(canvas, shape.GetLinkPointInZoom(i));
}

void DrawDiamond(const TMyShape &shape, TCanvas &canvas, TMyPoint p, TColor colour)
{
    // Text shapes are their own text; without info text there is nothing to move.
    if (shape.ClassName() == QLatin1String("TMyText"))
        return;
    if (shape.Info().isEmpty() && shape.MultiInfo().isEmpty())
        return;
    canvas.Brush().Color = colour;
    canvas.Brush().Style = TBrushStyle::bsSolid;
    DrawDiamond(canvas, p, shape.Host()->HotSize());
}

void LineDraw(const TMyShape &, TCanvas &canvas, TMyPoint a, TMyPoint b)
{
    LineDraw(canvas, a, b);
}

QString AreaInfoText(const TShapeHost &host, double area)
{
    const double r = host.Ratio() * host.Ratio();
    const double ppi = host.ScreenPixelsPerInch();
    const double p = ppi * ppi;
    const double mm2 = r / p * area * 25.4 * 25.4;
    double value = 0;
    const char *suffix = "";
    switch (host.TheUNIT()) {
    case TUnits::pixel:
        value = r * area;
        suffix = "pixel(s)2";
        break;
    case TUnits::mm:
        value = mm2;
        suffix = "mm2";
        break;
    case TUnits::cm:
        value = mm2 / 100;
        suffix = "cm2";
        break;
    case TUnits::dm:
        value = mm2 / 10000;
        suffix = "dm2";
        break;
    case TUnits::m:
        value = mm2 / 1000000;
        suffix = "m2";
        break;
    case TUnits::inch:
        value = r / p * area;
        suffix = "inch2";
        break;
    }
    // The C library's formatting, so that ties round and the padding come out as printf's.
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%9.2f", value);
    return QStringLiteral("Area=") + QString::fromLatin1(buffer) + QLatin1String(suffix);
}

} // namespace tessal
