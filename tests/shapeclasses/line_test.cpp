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
    EXPECT_TRUE(headAt(TArrowStyle::ALeft, 175));
    EXPECT_FALSE(headAt(TArrowStyle::ALeft, 25));
    EXPECT_TRUE(headAt(TArrowStyle::ARight, 25));
    EXPECT_FALSE(headAt(TArrowStyle::ARight, 175));
    EXPECT_TRUE(headAt(TArrowStyle::ADouble, 25));
    EXPECT_TRUE(headAt(TArrowStyle::ADouble, 175));
    EXPECT_FALSE(headAt(TArrowStyle::ANone, 25));
    EXPECT_FALSE(headAt(TArrowStyle::ANone, 175));

    // The surface's arrow style reaches new lines but not new polylines.
    EXPECT_EQ(TMyLine(&host).ArrowStyle(), TArrowStyle::ADouble);
    TMyPolyLine poly(&host);
    EXPECT_EQ(poly.ArrowStyle(), TArrowStyle::ANone);
    EXPECT_EQ(poly.ArrowAngle(), 45);
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
    EXPECT_FALSE(IsWhite(host.Screen(), 175, 97));
    EXPECT_FALSE(IsWhite(host.Screen(), 25, 97));
    EXPECT_TRUE(IsWhite(host.Screen(), 95, 97));
    EXPECT_TRUE(IsWhite(host.Screen(), 105, 97));
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
    EXPECT_TRUE(IsWhite(img, 70, 49));
    EXPECT_TRUE(IsWhite(img, 70, 51));
    EXPECT_EQ(img.pixel(120, 100) & 0xFFFFFF, 0xFF0000u);
    EXPECT_TRUE(IsWhite(img, 119, 100));
    EXPECT_FLOAT_EQ(line->Angle(), 0.0f);

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
    auto vertical = MakeLine(host, {{50, 20}, {50, 120}});
    EXPECT_TRUE(vertical->IsClickedMe(canvas, {42, 70}));  // 8 to the left
    EXPECT_FALSE(vertical->IsClickedMe(canvas, {41, 70})); // 9 to the left
    EXPECT_TRUE(vertical->IsClickedMe(canvas, {57, 70}));  // right edge is exclusive
    EXPECT_FALSE(vertical->IsClickedMe(canvas, {58, 70}));
    EXPECT_TRUE(vertical->IsClickedMe(canvas, {50, 20}));
    EXPECT_FALSE(vertical->IsClickedMe(canvas, {50, 120})); // bottom end is exclusive
    EXPECT_FALSE(vertical->IsClickedMe(canvas, {50, 17}));

    auto horizontal = MakeLine(host, {{20, 50}, {120, 50}});
    EXPECT_TRUE(horizontal->IsClickedMe(canvas, {70, 42}));
    EXPECT_FALSE(horizontal->IsClickedMe(canvas, {70, 41}));
    EXPECT_TRUE(horizontal->IsClickedMe(canvas, {70, 57}));
    EXPECT_FALSE(horizontal->IsClickedMe(canvas, {70, 58}));
    EXPECT_FALSE(horizontal->IsClickedMe(canvas, {123, 50})); // beyond the end
    EXPECT_FALSE(horizontal->IsClickedMe(canvas, {17, 50}));
    EXPECT_TRUE(horizontal->IsClickedMe(canvas, {20, 50}));

    // Slanted: the band is measured along y (flat slant) inside the bare bounding box.
    auto slanted = MakeLine(host, {{0, 0}, {100, 50}});
    EXPECT_TRUE(slanted->IsClickedMe(canvas, {50, 33}));
    EXPECT_FALSE(slanted->IsClickedMe(canvas, {50, 34}));
    EXPECT_TRUE(slanted->IsClickedMe(canvas, {50, 17}));
    EXPECT_FALSE(slanted->IsClickedMe(canvas, {50, 16}));
    EXPECT_TRUE(slanted->IsClickedMe(canvas, {2, 9}));
    EXPECT_FALSE(slanted->IsClickedMe(canvas, {102, 51})); // on the extension, outside the box

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
    std::int32_t index = 99;
    EXPECT_TRUE(poly.IsClickedMeBeforeWhichPoint(index, {50, 12}));
    EXPECT_EQ(index, 1);
    EXPECT_TRUE(poly.IsClickedMeBeforeWhichPoint(index, {103, 50}));
    EXPECT_EQ(index, 2);
    EXPECT_TRUE(poly.IsClickedMeBeforeWhichPoint(index, {50, 95}));
    EXPECT_EQ(index, 3);
    // A point on two segments belongs to the first.
    EXPECT_TRUE(poly.IsClickedMeBeforeWhichPoint(index, {99, 11}));
    EXPECT_EQ(index, 1);
    EXPECT_FALSE(poly.IsClickedMeBeforeWhichPoint(index, {50, 50}));
    EXPECT_EQ(index, -1);
}

TEST(LineHandles, HotSizeSquaresAndTheHighestNumberWins)
{
    TClassHost host;
    auto line = MakeLine(host, {{50, 50}, {53, 50}});
    // Handle i covers [x - 4, x + 4) x [y - 4, y + 4).
    EXPECT_EQ(line->InWhichHot({51, 50}), 1);
    EXPECT_EQ(line->CurrentHot(), 1);
    EXPECT_EQ(line->InWhichHot({46, 46}), 0);
    EXPECT_EQ(line->InWhichHot({45, 50}), -1);
    EXPECT_EQ(line->CurrentHot(), -1);
    EXPECT_EQ(line->InWhichHot({54, 53}), 1);
    EXPECT_EQ(line->InWhichHot({57, 50}), -1);
    EXPECT_EQ(line->InWhichHot({50, 54}), -1);

    host.HotSizeValue = 8;
    host.ZoomValue = 2; // handles at (100, 100) and (106, 100)
    EXPECT_EQ(line->InWhichHot({92, 100}), 0);
    EXPECT_EQ(line->InWhichHot({98, 107}), 1);
    EXPECT_EQ(line->InWhichHot({114, 100}), -1);
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
        EXPECT_EQ(copy.Points(), source->Points());
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
        {TUnits::cm, 1, 1, "     2.54 cm"},
        {TUnits::dm, 1, 1, "     0.25 dm"},
        {TUnits::m, 1, 1, "     0.03 m"},
        {TUnits::inch, 1, 1, "     1.00 in"},
        {TUnits::pixel, 1, 1, "       96 pixel(s)"},
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
    EXPECT_EQ(rule.GetPoint(1), (TMyPoint{96, 96}));
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
    EXPECT_FALSE(line.IsDrawingFinished(Qt::LeftButton, {}));
    line.AddPointByMouse({20, 20});
    EXPECT_FALSE(line.IsDrawingFinished(Qt::LeftButton, {}));
    line.AddPointByMouse({100, 60});
    EXPECT_TRUE(line.IsDrawingFinished(Qt::LeftButton, {}));
    EXPECT_EQ(line.GetPoint(1), (TMyPoint{50, 30}));

    line.SetCurrentHot(1);
    line.SizeChangeValue({100, 60}, {120, 40}); // screen offset (20, -20) = document (10, -10)
    EXPECT_EQ(line.GetPoint(1), (TMyPoint{60, 20}));
    EXPECT_EQ(line.GetPoint(0), (TMyPoint{10, 10}));
    EXPECT_EQ(line.CenterPoint(), (TMyPoint{35, 15}));
    line.SetCurrentHot(-1);
    line.SizeChangeValue({0, 0}, {50, 50});
    EXPECT_EQ(line.GetPoint(0), (TMyPoint{10, 10}));
    EXPECT_EQ(line.GetPoint(1), (TMyPoint{60, 20}));
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
    EXPECT_EQ(drawn.StartMergeShapeId(), -1);
    EXPECT_EQ(drawn.CenterPoint(), (TMyPoint{75.5f, 31}));
    EXPECT_EQ(host.Highlight.Shape, target);

    // A polyline's inner point is no end; its first point is.
    EXPECT_FALSE(drawn.LookUpMergeShape(true, {50, 100}));
    EXPECT_EQ(drawn.StartMergeShapeId(), -1);
    EXPECT_TRUE(drawn.LookUpMergeShape(true, {12, 98}));
    EXPECT_EQ(drawn.StartMergeShapeId(), 9);
    EXPECT_EQ(drawn.StartMergePointNo(), 0);
    // Polygons and measuring lines are not merged into.
    EXPECT_FALSE(drawn.LookUpMergeShape(false, {150, 150}));
    EXPECT_FALSE(drawn.LookUpMergeShape(false, {100, 150}));
    EXPECT_EQ(drawn.EndMergeShapeId(), -1);
    EXPECT_EQ(drawn.EndMergePointNo(), -1);

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
