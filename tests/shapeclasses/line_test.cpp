// SPDX-License-Identifier: MIT
// Straight lines: arrow heads, the segment hit band, handles, copies, length texts,
// previews and the end-merge look-up.
#include "classhost.h"

#include <tessal/geometry/canvasmodes.h>
#include <tessal/shapes/line.h>
#include <tessal/shapes/polyline.h>
#include <tessal/shapes/ruleline.h>

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace tessal::test {
namespace {

std::unique_ptr<TMyLine> MakeLine(TTestHost &host, TMyPointArray points)
{
    auto line = std::make_unique<TMyLine>(&host);
    line->Points() = std::move(points);
    return line;
}

void DrawOn(TTestHost &host, TMyShape &shape)
{
    shape.Draw(*host.ScreenCanvas());
}

// A wide (45 degree) head makes its extent easy to read off the picture: at distance d from
// the tip it is d pixels high on either side of the line.
TEST(LineArrows, HeadSitsAtTheRightEndAndItsLengthWrapsAtLargeZoom)
{
    struct TCase
    {
        double Zoom;
        TMyPoint From, To; // document
        std::uint8_t Length;
        std::uint8_t Offset;
        int LineY;   // screen row of the line
        double TipX; // screen x of the pulled-back tip
        double Side; // drawn side length in screen pixels
    };
    const TCase cases[] = {
        // zoom 1: head of 30 at x = 180
        {1.0, {20, 100}, {180, 100}, 30, 0, 100, 180, 30},
        // zoom 9: 30 x 9 = 270 is carried in a byte and drawn as 14
        {9.0, {2, 10}, {22, 10}, 30, 0, 90, 198, 14},
        // zoom 2: the offset of 5 stays 5 screen pixels, the side doubles to 40
        {2.0, {10, 50}, {90, 50}, 20, 5, 100, 175, 40},
    };
    for (const TCase &c : cases) {
        TClassHost host(220, 200);
        host.ZoomValue = c.Zoom;
        host.ArrowAngleValue = 45;
        host.ArrowLengthValue = c.Length;
        host.ArrowOffsetValue = c.Offset;
        host.ArrowStyleValue = TArrowStyle::ALeft;
        auto line = std::make_unique<TMyLine>(&host);
        line->Points() = {c.From, c.To};
        DrawOn(host, *line);
        const auto extent = ExtentOffRow(host.Screen(), c.LineY, 2);
        ASSERT_TRUE(extent.has_value()) << c.Zoom;
        const double baseX = c.TipX - c.Side * std::cos(std::numbers::pi / 4);
        EXPECT_NEAR(extent->Left, baseX, 1.0) << "zoom " << c.Zoom;
        // Two rows off the line the head reaches to two pixels before its tip.
        EXPECT_NEAR(extent->Right, c.TipX - 2, 1.0) << "zoom " << c.Zoom;
    }
}

TEST(LineArrows, StyleChoosesTheEndsAndPolylinesStartWithout)
{
    TClassHost host(220, 200);
    host.ArrowAngleValue = 45;
    host.ArrowLengthValue = 20;
    host.ArrowStyleValue = TArrowStyle::ADouble;
    auto headAt = [&](TArrowStyle style, int x) {
        host.Screen().fill(Qt::white);
        auto line = MakeLine(host, {{20, 100}, {180, 100}});
        line->SetArrowStyle(style);
        DrawOn(host, *line);
        // A point inside a head 5 pixels from its tip, 3 rows off the line.
        return !IsWhite(host.Screen(), x, 97);
    };
    // {style, head at the start, head at the end}
    for (auto [style, start, end] :
         {std::tuple{TArrowStyle::ALeft, false, true}, std::tuple{TArrowStyle::ARight, true, false},
          std::tuple{TArrowStyle::ADouble, true, true},
          std::tuple{TArrowStyle::ANone, false, false}}) {
        EXPECT_EQ(headAt(style, 25), start) << int(style);
        EXPECT_EQ(headAt(style, 175), end) << int(style);
    }

    // The surface's arrow style reaches new lines but not new polylines.
    EXPECT_EQ(TMyLine(&host).ArrowStyle(), TArrowStyle::ADouble);
    TMyPolyLine poly(&host);
    EXPECT_EQ(poly.ArrowStyle(), TArrowStyle::ANone);
    EXPECT_EQ(poly.ArrowLength(), 20);
}

TEST(LineArrows, InnerPointsOfAChainCarryNoHead)
{
    TClassHost host(220, 200);
    host.ArrowAngleValue = 45;
    host.ArrowLengthValue = 20;
    TMyPolyLine poly(&host);
    poly.Points() = {{20, 100}, {100, 100}, {180, 100}};
    poly.SetArrowStyle(TArrowStyle::ADouble);
    DrawOn(host, poly);
    for (auto [x, white] : {std::pair{175, false}, {25, false}, {95, true}, {105, true}})
        EXPECT_EQ(IsWhite(host.Screen(), x, 97), white) << x;
}

TEST(LineDraw, SegmentsInThePenAndTheAngleFollowsTheFirstSegment)
{
    TClassHost host;
    auto line = MakeLine(host, {{20, 50}, {120, 50}, {120, 150}});
    TPen pen;
    pen.Color = clRed;
    pen.Width = 1;
    line->SetPen(pen);
    DrawOn(host, *line);
    const QImage &img = host.Screen();
    EXPECT_EQ(img.pixel(70, 50) & 0xFFFFFF, 0xFF0000u);
    EXPECT_TRUE(IsWhite(img, 70, 49) && IsWhite(img, 70, 51) && IsWhite(img, 119, 100));
    EXPECT_EQ(img.pixel(120, 100) & 0xFFFFFF, 0xFF0000u);

    // A wide pen with flat ends stops at the end points; round ends reach past them.
    for (auto [cap, beyond] : {std::pair{TPenStyleEndCapType::psectFLAT, true},
                               std::pair{TPenStyleEndCapType::psectROUND, false}}) {
        host.Screen().fill(Qt::white);
        auto wide = MakeLine(host, {{40, 100}, {140, 100}});
        pen.Width = 9;
        wide->SetPen(pen);
        wide->SetPenStyleEndCapType(cap);
        DrawOn(host, *wide);
        EXPECT_FALSE(IsWhite(host.Screen(), 90, 97));
        EXPECT_EQ(IsWhite(host.Screen(), 143, 100), beyond);
    }

    const struct
    {
        TMyPointArray Points;
        float Angle;
    } angles[] = {
        {{{0, 0}, {10, 10}}, float(std::numbers::pi / 4)},
        {{{10, 0}, {0, 0}}, float(std::numbers::pi)},
        {{{10, 0}, {0, 10}}, float(3 * std::numbers::pi / 4)},
        {{{0, 10}, {10, 0}}, float(7 * std::numbers::pi / 4)},
    };
    for (const auto &a : angles) {
        auto l = MakeLine(host, a.Points);
        host.ZoomValue = 3;
        DrawOn(host, *l);
        EXPECT_FLOAT_EQ(l->Angle(), a.Angle);
        host.ZoomValue = 1;
    }
}

TEST(LineHitTest, EightPixelBandWithTheRectangleRules)
{
    TClassHost host;
    TCanvas &canvas = *host.ScreenCanvas();
    // 8 pixels either side, the right and bottom edges exclusive, nothing beyond the ends.
    // Slanted: the band is measured along y (flat slant) inside the bare bounding box.
    const struct
    {
        TMyPoint From, To;
        TPoint At;
        bool Hit;
    } rows[] = {
        {{50, 20}, {50, 120}, {42, 70}, true},  {{50, 20}, {50, 120}, {41, 70}, false},
        {{50, 20}, {50, 120}, {57, 70}, true},  {{50, 20}, {50, 120}, {58, 70}, false},
        {{50, 20}, {50, 120}, {50, 20}, true},  {{50, 20}, {50, 120}, {50, 120}, false},
        {{50, 20}, {50, 120}, {50, 17}, false}, {{20, 50}, {120, 50}, {70, 42}, true},
        {{20, 50}, {120, 50}, {70, 41}, false}, {{20, 50}, {120, 50}, {70, 57}, true},
        {{20, 50}, {120, 50}, {70, 58}, false}, {{20, 50}, {120, 50}, {123, 50}, false},
        {{20, 50}, {120, 50}, {17, 50}, false}, {{20, 50}, {120, 50}, {20, 50}, true},
        {{0, 0}, {100, 50}, {50, 33}, true},    {{0, 0}, {100, 50}, {50, 34}, false},
        {{0, 0}, {100, 50}, {50, 17}, true},    {{0, 0}, {100, 50}, {50, 16}, false},
        {{0, 0}, {100, 50}, {2, 9}, true},      {{0, 0}, {100, 50}, {102, 51}, false},
    };
    for (const auto &r : rows)
        EXPECT_EQ(MakeLine(host, {r.From, r.To})->IsClickedMe(canvas, r.At), r.Hit)
            << r.From.X << "," << r.From.Y << " at " << r.At.X << "," << r.At.Y;
    auto vertical = MakeLine(host, {{50, 20}, {50, 120}});

    // The band is in screen pixels at every zoom.
    host.ZoomValue = 3;
    EXPECT_TRUE(vertical->IsClickedMe(canvas, {142, 200}));
    EXPECT_FALSE(vertical->IsClickedMe(canvas, {141, 200}));

    // Fewer than two points are never hit.
    auto single = MakeLine(host, {{50, 50}});
    EXPECT_FALSE(single->IsClickedMe(canvas, {150, 150}));
}

TEST(LineHitTest, SegmentFindingGivesTheIndexToInsertBefore)
{
    TClassHost host;
    TMyPolyLine poly(&host);
    poly.Points() = {{10, 10}, {100, 10}, {100, 100}, {10, 100}};
    // A point on two segments ({99, 11}) belongs to the first; a miss answers -1.
    for (auto [at, expected] : {std::pair<TPoint, int>{{50, 12}, 1},
                                {{103, 50}, 2},
                                {{50, 95}, 3},
                                {{99, 11}, 1},
                                {{50, 50}, -1}}) {
        std::int32_t index = 99;
        EXPECT_EQ(poly.IsClickedMeBeforeWhichPoint(index, at), expected >= 0) << at.X;
        EXPECT_EQ(index, expected) << at.X << "," << at.Y;
    }
}

TEST(LineHandles, HotSizeSquaresAndTheHighestNumberWins)
{
    TClassHost host;
    auto line = MakeLine(host, {{50, 50}, {53, 50}});
    // Handle i covers [x - 4, x + 4) x [y - 4, y + 4).
    // At hot size 8 and zoom 2 the handles are at (100, 100) and (106, 100).
    const struct
    {
        std::uint8_t HotSize;
        double Zoom;
        TPoint At;
        int Hot;
    } rows[] = {{4, 1, {51, 50}, 1},  {4, 1, {46, 46}, 0},  {4, 1, {45, 50}, -1},
                {4, 1, {54, 53}, 1},  {4, 1, {57, 50}, -1}, {4, 1, {50, 54}, -1},
                {8, 2, {92, 100}, 0}, {8, 2, {98, 107}, 1}, {8, 2, {114, 100}, -1}};
    for (const auto &r : rows) {
        host.HotSizeValue = r.HotSize;
        host.ZoomValue = r.Zoom;
        EXPECT_EQ(line->InWhichHot(r.At), r.Hot) << r.At.X << "," << r.At.Y;
        EXPECT_EQ(line->CurrentHot(), r.Hot);
    }
}

TEST(LineCopy, AssignTakesArrowsButKeepsOwnOffsetAndMergeFields)
{
    TClassHost host;
    host.ArrowOffsetValue = 3;
    auto source = MakeLine(host, {{1, 2}, {30, 40}});
    source->SetArrowAngle(33);
    source->SetArrowLength(99);
    source->SetArrowOffset(12);
    source->SetArrowStyle(TArrowStyle::ARight);
    source->SetEndMerge(5, 1);
    source->SetCaption("src");

    for (bool withRelations : {true, false}) {
        TMyLine copy(&host);
        if (withRelations)
            copy.Assign(*source);
        else
            copy.AssignWithoutRelation(*source);
        EXPECT_EQ(copy.ArrowAngle(), 33);
        EXPECT_EQ(copy.ArrowLength(), 99);
        EXPECT_EQ(copy.ArrowStyle(), TArrowStyle::ARight);
        EXPECT_EQ(copy.ArrowOffset(), 3);
        EXPECT_EQ(copy.EndMergeShapeId(), -1);
        EXPECT_EQ(copy.Caption(), "src");
    }

    // A line copied from a shape that is no line keeps its arrows.
    TBoxShape box(&host);
    MakeBox(box, 0, 0, 10, 10);
    TMyLine fromBox(&host);
    fromBox.SetArrowLength(77);
    fromBox.Assign(box);
    EXPECT_EQ(fromBox.ArrowLength(), 77);
    EXPECT_EQ(fromBox.GetPointsCount(), 4);
}

TEST(LineInfo, LengthTextByteForByteInEveryUnit)
{
    TClassHost host;
    auto line = MakeLine(host, {{0, 0}, {0, 96}});
    const struct
    {
        TUnits Unit;
        double Zoom;
        double Ratio;
        const char *Text;
    } rows[] = {
        {TUnits::mm, 1, 1, "    25.40 mm"},
        {TUnits::m, 1, 1, "     0.03 m"},
        // The screen length grows with the zoom, the reported length does not.
        {TUnits::pixel, 2, 1, "       96 pixel(s)"},
        {TUnits::inch, 1, 2.5, "     2.50 in"},
    };
    for (const auto &row : rows) {
        host.Unit = row.Unit;
        host.ZoomValue = row.Zoom;
        host.RatioValue = row.Ratio;
        EXPECT_EQ(line->GetInfo(), QString(row.Text));
        EXPECT_EQ(line->Info(), QString(row.Text)); // stored as the info
    }

    // Only the first segment counts.
    host.Unit = TUnits::pixel;
    host.ZoomValue = 1;
    host.RatioValue = 1;
    auto chain = MakeLine(host, {{0, 0}, {30, 40}, {500, 40}});
    EXPECT_EQ(chain->GetInfo(), QString("       50 pixel(s)"));

    // Polylines have no length text and leave their info alone.
    TMyPolyLine poly(&host);
    poly.Points() = {{0, 0}, {0, 96}};
    poly.SetInfo("mine");
    EXPECT_EQ(poly.GetInfo(), QString());
    EXPECT_EQ(poly.Info(), "mine");
}

TEST(LineInfo, MeasuringLineRefreshesAngleAndTrimmedLengthWhenResized)
{
    TClassHost host;
    host.Unit = TUnits::mm;
    TMyRuleLine rule(&host);
    rule.Points() = {{0, 0}, {96, 0}};
    EXPECT_EQ(rule.GetInfo(), QString("    25.40 mm"));
    rule.SetCurrentHot(1);
    rule.SizeChangeValue({96, 0}, {96, 96}); // point 1 to (96, 96)
    EXPECT_EQ(rule.Info(), QString("35.92 mm"));
    EXPECT_FLOAT_EQ(rule.Angle(), float(std::numbers::pi / 4));
    EXPECT_EQ(rule.CenterPoint(), (TMyPoint{48, 48}));
    rule.SetCurrentHot(0);
    rule.SizeChangeValue({0, 0}, {96, 0}); // now vertical
    EXPECT_FLOAT_EQ(rule.Angle(), float(std::numbers::pi / 2));
}

TEST(LineEdit, SizingMovesTheCurrentHotPointAndFinishesAtTwoPoints)
{
    TClassHost host;
    host.ZoomValue = 2;
    TMyLine line(&host);
    for (TPoint p : {TPoint{20, 20}, TPoint{100, 60}}) {
        EXPECT_FALSE(line.IsDrawingFinished(Qt::LeftButton, {}));
        line.AddPointByMouse(p);
    }
    EXPECT_TRUE(line.IsDrawingFinished(Qt::LeftButton, {}));
    EXPECT_EQ(line.GetPoint(1), (TMyPoint{50, 30}));

    line.SetCurrentHot(1);
    line.SizeChangeValue({100, 60}, {120, 40}); // screen offset (20, -20) = document (10, -10)
    EXPECT_EQ(line.Points(), (TMyPointArray{{10, 10}, {60, 20}}));
    EXPECT_EQ(line.CenterPoint(), (TMyPoint{35, 15}));
    line.SetCurrentHot(-1);
    line.SizeChangeValue({0, 0}, {50, 50});
    EXPECT_EQ(line.Points(), (TMyPointArray{{10, 10}, {60, 20}}));
}

TEST(LinePreviews, RubberBandsAreDrawnWhereTheGestureLeadsAndEraseThemselves)
{
    TClassHost host;
    TCanvas &canvas = *host.ScreenCanvas();
    auto line = MakeLine(host, {{20, 50}, {120, 50}, {120, 150}});
    const QImage blank = host.Screen().copy();

    // The rubber-band pen is dotted: look for its pixels in a small neighbourhood.
    auto dark = [&](int x, int y) {
        return CountPixels(host.Screen(), QRect(x - 1, y - 1, 3, 3), 0xFFFFFF) < 9;
    };
    SetDragResizeRotateShapeMode(canvas);
    line->Draging(canvas, {0, 0}, {10, 20});
    EXPECT_TRUE(dark(130, 120)); // second segment moved by (10, 20)
    EXPECT_FALSE(dark(120, 120));
    line->Draging(canvas, {0, 0}, {10, 20});
    EXPECT_TRUE(host.Screen() == blank);

    // Sizing point 1 draws its two segments to the unmoved neighbours, nothing else.
    line->SetCurrentHot(1);
    line->Sizing(canvas, {120, 50}, {160, 50});
    EXPECT_TRUE(dark(140, 100)); // from (160, 50) to (120, 150)
    EXPECT_TRUE(dark(90, 50));   // from (20, 50) to (160, 50)
    EXPECT_FALSE(dark(120, 110));
    line->Sizing(canvas, {120, 50}, {160, 50});
    EXPECT_TRUE(host.Screen() == blank);

    // A quarter turn about (120, 50): the first segment runs up from the centre, the
    // second one runs left along y = 50.
    line->Rotating(canvas, {120, 50}, std::numbers::pi / 2);
    EXPECT_TRUE(dark(120, 20));
    EXPECT_TRUE(dark(70, 50));
    EXPECT_FALSE(dark(120, 100));
    line->Rotating(canvas, {120, 50}, std::numbers::pi / 2);
    EXPECT_TRUE(host.Screen() == blank);

    line->Drawing(canvas, {10, 180}, {190, 180});
    EXPECT_TRUE(dark(100, 180));
    line->Drawing(canvas, {10, 180}, {190, 180});
    EXPECT_TRUE(host.Screen() == blank);
}

TEST(LineMerge, DrawedLooksUpTheEndOfAnotherLineUnderTheEndPoint)
{
    TClassHost host;
    auto *polygon = host.Add(std::make_unique<TMyPolygon>(&host));
    polygon->Points() = {{150, 150}, {180, 150}, {180, 180}, {150, 150}};
    auto *rule = host.Add(std::make_unique<TMyRuleLine>(&host));
    rule->Points() = {{10, 150}, {100, 150}};
    auto *target = host.Add(MakeLine(host, {{10, 10}, {100, 10}}));
    target->SetShapeId(7);
    auto *poly = host.Add(std::make_unique<TMyPolyLine>(&host));
    poly->Points() = {{10, 100}, {50, 100}, {100, 100}};
    poly->SetShapeId(9);

    TMyLine drawn(&host);
    drawn.Points() = {{50, 50}, {101, 12}};
    TPoint end{101, 12};
    drawn.Drawed({50, 50}, end);
    EXPECT_EQ(drawn.EndMergeShapeId(), 7);
    EXPECT_EQ(drawn.EndMergePointNo(), 1);
    EXPECT_EQ(drawn.CenterPoint(), (TMyPoint{75.5f, 31}));
    EXPECT_EQ(host.Highlight.Shape, target);

    // A polyline's inner point is no end; its first point is.
    EXPECT_FALSE(drawn.LookUpMergeShape(true, {50, 100}));
    EXPECT_TRUE(drawn.LookUpMergeShape(true, {12, 98}));
    EXPECT_EQ(drawn.StartMergeShapeId(), 9);
    EXPECT_EQ(drawn.StartMergePointNo(), 0);
    // Polygons and measuring lines are not merged into.
    EXPECT_FALSE(drawn.LookUpMergeShape(false, {150, 150}));
    EXPECT_FALSE(drawn.LookUpMergeShape(false, {100, 150}));
    EXPECT_EQ(drawn.EndMergeShapeId(), -1);

    // Only plain lines look up at the end of drawing.
    TMyRuleLine ruler(&host);
    ruler.Points() = {{50, 50}, {100, 10}};
    TPoint rulerEnd{100, 10};
    ruler.Drawed({50, 50}, rulerEnd);
    EXPECT_EQ(ruler.EndMergeShapeId(), -1);
}

TEST(LineHandles, DrawHotPutsASquareOnEveryPointOnlyWhenTheHostShowsHandles)
{
    TClassHost host;
    auto line = MakeLine(host, {{30, 30}, {100, 30}, {100, 100}});
    host.Hot = false;
    line->DrawHot(*host.ScreenCanvas());
    EXPECT_EQ(CountPixels(host.Screen(), QRect(0, 0, 200, 200), 0xFFFFFF), 200 * 200);
    host.Hot = true;
    line->DrawHot(*host.ScreenCanvas());
    for (TPoint p : {TPoint{30, 30}, TPoint{100, 30}, TPoint{100, 100}})
        EXPECT_EQ(host.Screen().pixel(p.X, p.Y) & 0xFFFFFF, 0x00FF00u); // hot colour inside
    EXPECT_TRUE(IsWhite(host.Screen(), 65, 30));
}

} // namespace
} // namespace tessal::test
