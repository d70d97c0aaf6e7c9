// SPDX-License-Identifier: MIT
// The editor's sample drawing, made the way an application drives the surface from code.
#include "sample.h"

#include <tessal/shapes/line.h>
#include <tessal/shapes/shape.h>
#include <tessal/surface/cad.h>

#include <array>
#include <numbers>

namespace tessal {

namespace {

TMyShape *Add(TMyCAD &cad, TDrawTool tool, std::initializer_list<TMyPoint> points,
              const QString &text = {}, double angle = 0)
{
    const std::vector<TMyPoint> pts(points);
    return cad.GetShapeByID(cad.AddShapeByCode(tool, QString(), pts, angle, text));
}

void Style(TMyShape *shape, TColor pen, TColor brush, std::int32_t width = 2)
{
    if (!shape)
        return;
    shape->SetPen(TPen{pen, TPenMode::pmCopy, TPenStyle::psSolid, width});
    shape->SetBrush(TBrush{brush, TBrushStyle::bsSolid, {}});
}

void Arrow(TMyCAD &cad, TMyPoint from, TMyPoint to)
{
    TMyShape *shape = Add(cad, TDrawTool::SpLine, {from, to});
    Style(shape, RGBToColor(60, 60, 60), clWhite);
    if (auto *line = dynamic_cast<TMyLine *>(shape))
        line->SetArrowStyle(TArrowStyle::ALeft);
}

} // namespace

void BuildSampleDrawing(TMyCAD &cad)
{
    // Layer0: the boxes of a small pipeline and a store.
    const TColor ink = RGBToColor(30, 60, 110);
    TMyShape *source = Add(cad, TDrawTool::SpRectangle, {{60, 80}, {220, 160}});
    Style(source, ink, RGBToColor(200, 220, 245));
    source->SetInfo(QStringLiteral("Source"));
    TMyShape *filter = Add(cad, TDrawTool::SpRectangle, {{320, 80}, {480, 160}});
    Style(filter, ink, RGBToColor(255, 255, 255));
    filter->SetColorBegin(RGBToColor(255, 255, 255));
    filter->SetColorEnd(RGBToColor(120, 170, 230));
    filter->SetGradientStyle(TGradientStyle::gsLinearH);
    filter->SetBrush(TBrush{clWhite, TBrushStyle::bsClear, {}});
    filter->SetInfo(QStringLiteral("Filter"));
    TMyShape *store = Add(cad, TDrawTool::SpEllipse, {{560, 70}, {720, 170}});
    Style(store, RGBToColor(40, 110, 60), RGBToColor(210, 240, 215));
    store->SetInfo(QStringLiteral("Store"));
    TMyShape *turned =
        Add(cad, TDrawTool::SpRectangle, {{330, 260}, {470, 330}}, {}, std::numbers::pi / 12);
    Style(turned, RGBToColor(150, 80, 20), RGBToColor(250, 225, 190));
    turned->SetInfo(QStringLiteral("Review"));

    // A second layer for the connections and notes.
    cad.NewLayer(QStringLiteral("Annotations"), true);
    Arrow(cad, {220, 120}, {320, 120});
    Arrow(cad, {480, 120}, {560, 120});
    Arrow(cad, {400, 160}, {400, 255});
    TMyShape *path = Add(cad, TDrawTool::SpPolyLine, {{640, 170}, {640, 300}, {470, 300}});
    Style(path, RGBToColor(120, 120, 120), clWhite, 1);
    TMyShape *note = Add(cad, TDrawTool::SpText, {{60, 220}, {280, 300}},
                         QStringLiteral("Sample drawing: two layers,\nbuilt with AddShapeByCode"));
    Style(note, clBlack, clWhite, 1);

    // One shape selected, to show the handles.
    cad.ClearWorkingShapes();
    cad.AddWorkingShape(filter);
    cad.Invalidate();
}

} // namespace tessal
