// SPDX-License-Identifier: MIT
// The editor's sample drawing, made the way an application drives the surface from code:
// one shape of every class, on two layers, with connectors between the boxes.
#include "sample.h"

#include <tessal/shapes/image.h>
#include <tessal/shapes/line.h>
#include <tessal/shapes/link.h>
#include <tessal/shapes/ruleline.h>
#include <tessal/shapes/shape.h>
#include <tessal/surface/cad.h>

#include <algorithm>
#include <numbers>
#include <vector>

namespace tessal {

namespace {

const TColor Ink = RGBToColor(30, 60, 110);

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

// Link points in the middle of the four sides of a box shape: 0 left, 1 top, 2 right,
// 3 bottom. The sample is built at zoom 1, where screen and document values agree.
void AddSideLinkPoints(TMyShape *shape)
{
    if (!shape)
        return;
    const TMyPoint lt = shape->GetLeftTop();
    const TMyPoint rb = shape->GetRightBottom();
    const float cx = (lt.X + rb.X) / 2;
    const float cy = (lt.Y + rb.Y) / 2;
    for (const TMyPoint p :
         {TMyPoint{lt.X, cy}, TMyPoint{cx, lt.Y}, TMyPoint{rb.X, cy}, TMyPoint{cx, rb.Y}})
        shape->AddLinkPoint(p);
}

// An orthogonal connector from link point fromPoint of one shape to toPoint of another.
void Connect(TMyCAD &cad, TMyShape *from, std::int32_t fromPoint, TMyShape *to,
             std::int32_t toPoint)
{
    if (!from || !to)
        return;
    const TMyPoint a = from->GetLinkPoint(fromPoint);
    const TMyPoint b = to->GetLinkPoint(toPoint);
    auto *link = dynamic_cast<TMyLinkLine *>(Add(cad, TDrawTool::SpLinkLine, {a, b}));
    if (!link)
        return;
    Style(link, RGBToColor(60, 60, 60), clWhite, 1);
    link->SetArrowStyle(TArrowStyle::ALeft);
    link->CreateSrcLink(from->ShapeId(), fromPoint);
    link->CreateDestLink(to->ShapeId(), toPoint);
}

// A small picture made in code, so the sample needs no file.
TBitmap SamplePicture()
{
    TBitmap bitmap(96, 64);
    for (std::int32_t y = 0; y < bitmap.Height(); ++y)
        for (std::int32_t x = 0; x < bitmap.Width(); ++x)
            bitmap.SetPixel(
                x, y,
                RGBToColor(std::uint8_t(80 + x), std::uint8_t(120 + y), std::uint8_t(200 - x)));
    return bitmap;
}

// A combine holding two shapes, wired the way grouping wires a group: the container's
// points are the members' common box and each member names it as parent.
void Combine(TMyCAD &cad, TMyShape *a, TMyShape *b)
{
    TMyShape *combine = cad.CreateAddShapeByName(QStringLiteral("TMyCombine"));
    if (!combine || !a || !b)
        return;
    const TMyPoint lt{std::min(a->GetLeftTop().X, b->GetLeftTop().X),
                      std::min(a->GetLeftTop().Y, b->GetLeftTop().Y)};
    const TMyPoint rb{std::max(a->GetRightBottom().X, b->GetRightBottom().X),
                      std::max(a->GetRightBottom().Y, b->GetRightBottom().Y)};
    combine->Points() = {lt, {rb.X, lt.Y}, rb, {lt.X, rb.Y}};
    combine->SetCenterPoint({(lt.X + rb.X) / 2, (lt.Y + rb.Y) / 2});
    const std::int32_t number = cad.GetShapeNoInMyShapes(combine);
    std::vector<std::int32_t> members{cad.GetShapeNoInMyShapes(a), cad.GetShapeNoInMyShapes(b)};
    std::sort(members.begin(), members.end());
    combine->ChildShapes() = members;
    a->SetParentNo(number);
    b->SetParentNo(number);
}

} // namespace

void BuildSampleDrawing(TMyCAD &cad)
{
    // Layer0: the boxes of a small pipeline, each with a link point on every side.
    TMyShape *source = Add(cad, TDrawTool::SpRectangle, {{60, 80}, {220, 160}});
    Style(source, Ink, RGBToColor(200, 220, 245));
    source->SetInfo(QStringLiteral("Source"));
    TMyShape *filter = Add(cad, TDrawTool::SpRectangle, {{320, 80}, {480, 160}});
    Style(filter, Ink, clWhite);
    filter->SetColorBegin(clWhite);
    filter->SetColorEnd(RGBToColor(120, 170, 230));
    filter->SetGradientStyle(TGradientStyle::gsLinearH);
    filter->SetBrush(TBrush{clWhite, TBrushStyle::bsClear, {}});
    filter->SetInfo(QStringLiteral("Filter"));
    TMyShape *store = Add(cad, TDrawTool::SpEllipse, {{580, 70}, {740, 170}});
    Style(store, RGBToColor(40, 110, 60), RGBToColor(210, 240, 215));
    store->SetInfo(QStringLiteral("Store"));
    TMyShape *review =
        Add(cad, TDrawTool::SpPolygon, {{330, 270}, {470, 270}, {500, 330}, {300, 330}});
    Style(review, RGBToColor(150, 80, 20), RGBToColor(250, 225, 190));
    review->SetInfo(QStringLiteral("Review"));
    for (TMyShape *box : {source, filter, store, review})
        AddSideLinkPoints(box);

    // A group and a combine, each of two small shapes.
    TMyShape *g1 = Add(cad, TDrawTool::SpRectangle, {{80, 400}, {150, 450}});
    TMyShape *g2 = Add(cad, TDrawTool::SpEllipse, {{160, 400}, {230, 450}});
    Style(g1, Ink, RGBToColor(255, 240, 200));
    Style(g2, Ink, RGBToColor(255, 220, 220));
    std::vector<TMyShape *> pair{g1, g2};
    cad.GroupShapes(pair, false);
    TMyShape *c1 =
        Add(cad, TDrawTool::SpRectangle, {{80, 480}, {150, 520}}, {}, std::numbers::pi / 12);
    TMyShape *c2 = Add(cad, TDrawTool::SpRectangle, {{170, 480}, {230, 520}});
    Style(c1, RGBToColor(90, 90, 90), RGBToColor(230, 230, 230));
    Style(c2, RGBToColor(90, 90, 90), RGBToColor(230, 230, 230));
    Combine(cad, c1, c2);

    // Curves, an arc and a free-hand line.
    Style(Add(cad, TDrawTool::SpPolyBezier, {{300, 420}, {340, 360}, {400, 480}, {440, 420}}),
          RGBToColor(160, 40, 120), clWhite);
    Style(Add(cad, TDrawTool::SpBLine, {{480, 440}, {510, 380}, {560, 480}, {600, 400}}),
          RGBToColor(40, 120, 160), clWhite);
    TMyShape *arc = Add(cad, TDrawTool::SpElliArc, {{640, 460}, {690, 400}, {740, 460}});
    Style(arc, RGBToColor(200, 120, 0), RGBToColor(255, 230, 180));
    std::vector<TMyPoint> scribble;
    for (int i = 0; i <= 24; ++i)
        scribble.push_back({float(300 + i * 10), float(540 + 12 * std::sin(i * 0.6))});
    Style(cad.GetShapeByID(cad.AddShapeByCode(TDrawTool::SpFreeLine, QString(), scribble, 0, {})),
          RGBToColor(0, 140, 0), clWhite, 2);

    // A second layer for the connections, marks, a measuring line, a picture and a note.
    cad.NewLayer(QStringLiteral("Annotations"), true);
    Connect(cad, source, 2, filter, 0);
    Connect(cad, filter, 2, store, 0);
    Connect(cad, filter, 3, review, 1);
    Connect(cad, review, 2, store, 3);
    Style(Add(cad, TDrawTool::SpLinkPoint, {{52, 112}, {68, 128}}), Ink, Ink, 1);
    Style(Add(cad, TDrawTool::SpLineLinkLine, {{532, 112}, {548, 128}}), Ink, Ink, 1);
    auto *arrow = dynamic_cast<TMyLine *>(Add(cad, TDrawTool::SpLine, {{560, 250}, {660, 200}}));
    Style(arrow, RGBToColor(60, 60, 60), clWhite);
    if (arrow)
        arrow->SetArrowStyle(TArrowStyle::ADouble);
    Style(Add(cad, TDrawTool::SpPolyLine, {{560, 300}, {620, 300}, {620, 350}, {700, 350}}),
          RGBToColor(120, 120, 120), clWhite, 1);
    Style(Add(cad, TDrawTool::SpRuleLine, {{60, 620}, {460, 620}}), clBlack, clWhite, 1);
    cad.AddImageShapeByCode(QString(), {520, 580}, SamplePicture());
    TMyShape *note = Add(cad, TDrawTool::SpText, {{60, 220}, {280, 300}},
                         QStringLiteral("Sample drawing: every shape class on two layers,\n"
                                        "built with AddShapeByCode"));
    Style(note, clBlack, clWhite, 1);

    // One shape selected, to show the handles.
    cad.ClearWorkingShapes();
    cad.AddWorkingShape(filter);
    cad.Invalidate();
}

} // namespace tessal
