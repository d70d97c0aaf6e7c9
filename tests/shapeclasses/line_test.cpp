// SPDX-License-Identifier: MIT
// Straight lines: arrow heads, the segment hit band, handles, copies, length texts,
// previews and the end-merge look-up.
#include "shapes/testhost.h"

#include <tessal/geometry/canvasmodes.h>
#include <tessal/shapes/line.h>
#include <tessal/shapes/polyline.h>
#include <tessal/shapes/ruleline.h>

#include <gtest/gtest.h>

#include <numbers>
#include <optional>

namespace tessal::test {
namespace {

std::unique_ptr<TMyLine> MakeLine(TTestHost &host, TMyPointArray points)
{
    auto line = std::make_unique<TMyLine>(&host);
    line->Points() = std::move(points);
    return line;
}

// The line drawn on the host's cleared screen.
const QImage &DrawOn(TTestHost &host, TMyShape &shape)
{
    host.Screen().fill(Qt::white);
    shape.Draw(*host.ScreenCanvas());
    return host.Screen();
}

bool IsWhite(const QImage &image, int x, int y)
{
    return PixelAt(image, x, y) == kWhite;
}

// The horizontal extent of the ink at least `gap` rows away from row `lineY`: for a head
// on a horizontal line this is the head without the line itself.
std::optional<std::pair<int, int>> ExtentOffRow(const QImage &image, int lineY, int gap)
{
    std::optional<std::pair<int, int>> e;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (std::abs(y - lineY) >= gap && !IsWhite(image, x, y))
                e = e ? std::pair(std::min(e->first, x), std::max(e->second, x)) : std::pair(x, x);
    return e;
}

// A wide (45 degree) head makes its extent easy to read off the picture: at distance d from
// the tip it is d pixels high on either side of the line.
TEST(LineArrows, HeadSitsAtTheRightEndAndItsLengthWrapsAtLargeZoom)
{
    // {zoom, from, to (document), length, offset, screen row of the line, screen x of the
    // pulled-back tip, drawn side in screen pixels}. At zoom 9, 30 x 9 = 270 is carried in
    // a byte and drawn as 14; at zoom 2 the offset of 5 stays 5 screen pixels.
    const std::tuple<double, TMyPoint, TMyPoint, std::uint8_t, std::uint8_t, int, double, double>
        cases[] = {{1.0, {20, 100}, {180, 100}, 30, 0, 100, 180, 30},
                   {9.0, {2, 10}, {22, 10}, 30, 0, 90, 198, 14},
                   {2.0, {10, 50}, {90, 50}, 20, 5, 100, 175, 40}};
    for (const auto &[zoom, from, to, length, offset, lineY, tipX, side] : cases) {
        TClassHost host(220, 200);
        host.ZoomValue = zoom;
        host.ArrowAngleValue = 45;
        host.ArrowLengthValue = length;
        host.ArrowOffsetValue = offset;
        host.ArrowStyleValue = TArrowStyle::ALeft;
        const auto extent = ExtentOffRow(DrawOn(host, *MakeLine(host, {from, to})), lineY, 2);
        ASSERT_TRUE(extent.has_value()) << zoom;
        EXPECT_NEAR(extent->first, tipX - side * std::cos(std::numbers::pi / 4), 1.0) << zoom;
        // Two rows off the line the head reaches to two pixels before its tip.
        EXPECT_NEAR(extent->second, tipX - 2, 1.0) << zoom;
    }
}

TEST(LineArrows, StyleChoosesTheEndsAndPolylinesCarryNoneInside)
{
    TClassHost host(220, 200);
    host.ArrowAngleValue = 45;
    host.ArrowLengthValue = 20;
    host.ArrowStyleValue = TArrowStyle::ADouble;
    // Whether a point inside a head, 5 pixels from its tip, 3 rows off the line, is inked.
    auto headAt = [&](TMyShape &line, int x) { return !IsWhite(DrawOn(host, line), x, 97); };
    for (auto [style, start, end] :
         {std::tuple{TArrowStyle::ALeft, false, true}, std::tuple{TArrowStyle::ARight, true, false},
          std::tuple{TArrowStyle::ADouble, true, true},
          std::tuple{TArrowStyle::ANone, false, false}}) {
        auto line = MakeLine(host, {{20, 100}, {180, 100}});
        line->SetArrowStyle(style);
        EXPECT_EQ(headAt(*line, 25), start) << int(style);
        EXPECT_EQ(headAt(*line, 175), end) << int(style);
    }

    // The surface's arrow style reaches new lines but not new polylines; the inner points
    // of a chain carry no head. A surface that says nothing gives 10 degrees, 30 pixels,
    // no offset and no head.
    EXPECT_EQ(TMyLine(&host).ArrowStyle(), TArrowStyle::ADouble);
    TTestHost plain;
    const TMyLine byDefault(&plain);
    EXPECT_EQ(std::tuple(byDefault.ArrowAngle(), byDefault.ArrowLength(), byDefault.ArrowOffset(),
                         byDefault.ArrowStyle()),
              std::tuple(10, std::uint8_t(30), std::uint8_t(0), TArrowStyle::ANone));
    TMyPolyLine poly(&host);
    EXPECT_EQ(poly.ArrowStyle(), TArrowStyle::ANone);
    EXPECT_EQ(poly.ArrowLength(), 20);
    poly.Points() = {{20, 100}, {100, 100}, {180, 100}};
    poly.SetArrowStyle(TArrowStyle::ADouble);
    for (auto [x, head] : {std::pair{175, true}, {25, true}, {95, false}, {105, false}})
        EXPECT_EQ(headAt(poly, x), head) << x;
}

TEST(LineDraw, SegmentsInThePenAndTheAngleFollowsTheFirstSegment)
{
    TClassHost host;
    auto line = MakeLine(host, {{20, 50}, {120, 50}, {120, 150}});
    TPen pen{clRed, TPenMode::pmCopy, TPenStyle::psSolid, 1};
    line->SetPen(pen);
    const QImage &img = DrawOn(host, *line);
    EXPECT_EQ(PixelAt(img, 70, 50), kRed);
    EXPECT_EQ(PixelAt(img, 120, 100), kRed);
    EXPECT_TRUE(IsWhite(img, 70, 49) && IsWhite(img, 70, 51) && IsWhite(img, 119, 100));

    // A wide pen with flat ends stops at the end points; round ends reach past them.
    for (auto [cap, beyond] : {std::pair{TPenStyleEndCapType::psectFLAT, true},
                               std::pair{TPenStyleEndCapType::psectROUND, false}}) {
        auto wide = MakeLine(host, {{40, 100}, {140, 100}});
        pen.Width = 9;
        wide->SetPen(pen);
        wide->SetPenStyleEndCapType(cap);
        EXPECT_FALSE(IsWhite(DrawOn(host, *wide), 90, 97));
        EXPECT_EQ(IsWhite(host.Screen(), 143, 100), beyond);
    }

    host.ZoomValue = 3;
    const std::pair<TMyPointArray, double> angles[] = {
        {{{0, 0}, {10, 10}}, std::numbers::pi / 4},
        {{{10, 0}, {0, 0}}, std::numbers::pi},
        {{{10, 0}, {0, 10}}, 3 * std::numbers::pi / 4},
        {{{0, 10}, {10, 0}}, 7 * std::numbers::pi / 4}};
    for (const auto &[points, angle] : angles) {
        auto l = MakeLine(host, points);
        DrawOn(host, *l);
        EXPECT_FLOAT_EQ(l->Angle(), float(angle));
    }
}

TEST(LineHitTest, EightPixelBandWithTheRectangleRules)
{
    TClassHost host;
    TCanvas &canvas = *host.ScreenCanvas();
    // 8 pixels either side, the right and bottom edges exclusive, nothing beyond the ends.
    // Slanted: the band is measured along y (flat slant) inside the bare bounding box.
    const std::tuple<TMyPoint, TMyPoint, TPoint, bool> rows[] = {
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
    for (const auto &[from, to, at, hit] : rows)
        EXPECT_EQ(MakeLine(host, {from, to})->IsClickedMe(canvas, at), hit)
            << from.X << "," << from.Y << " at " << at.X << "," << at.Y;

    // The band is in screen pixels at every zoom; fewer than two points are never hit.
    host.ZoomValue = 3;
    auto vertical = MakeLine(host, {{50, 20}, {50, 120}});
    EXPECT_TRUE(vertical->IsClickedMe(canvas, {142, 200}));
    EXPECT_FALSE(vertical->IsClickedMe(canvas, {141, 200}));
    EXPECT_FALSE(MakeLine(host, {{50, 50}})->IsClickedMe(canvas, {150, 150}));

    // The segment hit gives the index to insert before; a point on two segments ({99, 11})
    // belongs to the first; a miss answers -1.
    host.ZoomValue = 1;
    TMyPolyLine poly(&host);
    poly.Points() = {{10, 10}, {100, 10}, {100, 100}, {10, 100}};
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

TEST(LineHandles, HotSizeSquaresTheHighestNumberWinsAndDrawHot)
{
    TClassHost host;
    auto line = MakeLine(host, {{50, 50}, {53, 50}});
    // Handle i covers [x - 4, x + 4) x [y - 4, y + 4). At hot size 8 and zoom 2 the handles
    // are at (100, 100) and (106, 100).
    const std::tuple<std::uint8_t, double, TPoint, int> rows[] = {
        {4, 1, {51, 50}, 1},  {4, 1, {46, 46}, 0},  {4, 1, {45, 50}, -1},
        {4, 1, {54, 53}, 1},  {4, 1, {57, 50}, -1}, {4, 1, {50, 54}, -1},
        {8, 2, {92, 100}, 0}, {8, 2, {98, 107}, 1}, {8, 2, {114, 100}, -1}};
    for (const auto &[hotSize, zoom, at, hot] : rows) {
        host.HotSizeValue = hotSize;
        host.ZoomValue = zoom;
        EXPECT_EQ(line->InWhichHot(at), hot) << at.X << "," << at.Y;
        EXPECT_EQ(line->CurrentHot(), hot);
    }

    // DrawHot puts a square on every point, only when the host shows handles.
    host.HotSizeValue = 4;
    host.ZoomValue = 1;
    auto chain = MakeLine(host, {{30, 30}, {100, 30}, {100, 100}});
    host.Hot = false;
    chain->DrawHot(*host.ScreenCanvas());
    EXPECT_TRUE(AllWhite(host.Screen()));
    host.Hot = true;
    chain->DrawHot(*host.ScreenCanvas());
    for (TPoint p : {TPoint{30, 30}, TPoint{100, 30}, TPoint{100, 100}})
        EXPECT_EQ(PixelAt(host.Screen(), p.X, p.Y), kLime); // hot colour inside
    EXPECT_TRUE(IsWhite(host.Screen(), 65, 30));
}

// The arrow fields of a copy are checked with every other property; here the copy without
// relations and the fields that are never copied.
TEST(LineCopy, ArrowsComeAlongTheOffsetAndMergeFieldsStay)
{
    TClassHost host;
    host.ArrowOffsetValue = 3;
    auto source = MakeLine(host, {{1, 2}, {30, 40}});
    source->SetArrowLength(99);
    source->SetArrowOffset(12);
    source->SetArrowStyle(TArrowStyle::ARight);
    source->SetEndMerge(5, 1);
    TMyLine copy(&host);
    copy.AssignWithoutRelation(*source);
    EXPECT_EQ(std::tuple(copy.ArrowLength(), copy.ArrowStyle(), copy.ArrowOffset(),
                         copy.EndMergeShapeId()),
              std::tuple(std::uint8_t(99), TArrowStyle::ARight, std::uint8_t(3), -1));
    copy.Assign(*source);
    EXPECT_EQ(copy.EndMergeShapeId(), -1);

    // A line copied from a shape that is no line keeps its arrows.
    TBoxShape box(&host);
    MakeBox(box, 0, 0, 10, 10);
    copy.Assign(box);
    EXPECT_EQ(copy.ArrowLength(), 99);
    EXPECT_EQ(copy.GetPointsCount(), 4);
}

TEST(LineInfo, LengthOfTheFirstSegmentStoredAsInfo)
{
    TClassHost host;
    auto line = MakeLine(host, {{0, 0}, {0, 96}});
    // The texts per unit and ratio are the shape's length texts; here the screen length
    // grows with the zoom while the reported length does not.
    host.Unit = TUnits::pixel;
    host.ZoomValue = 2;
    EXPECT_EQ(line->GetInfo(), QString("       96 pixel(s)"));
    EXPECT_EQ(line->Info(), QString("       96 pixel(s)"));
    host.ZoomValue = 1;
    EXPECT_EQ(MakeLine(host, {{0, 0}, {30, 40}, {500, 40}})->GetInfo(), "       50 pixel(s)");
    EXPECT_EQ(MakeLine(host, {{5, 5}})->GetInfo(), QString());

    // Polylines have no length text and leave their info alone.
    TMyPolyLine poly(&host);
    poly.Points() = {{0, 0}, {0, 96}};
    poly.SetInfo("mine");
    EXPECT_EQ(poly.GetInfo(), QString());
    EXPECT_EQ(poly.Info(), "mine");

    // A measuring line refreshes its angle and trimmed length when resized.
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
    // The rubber-band pen is dotted: look for its pixels in a small neighbourhood.
    auto dark = [&](int x, int y) { return !AllWhite(host.Screen(), QRect(x - 1, y - 1, 3, 3)); };
    // Each preview: where it must show, where not; drawn twice it is gone.
    const auto check = [&](auto preview, std::vector<TPoint> shown, TPoint hidden) {
        preview();
        for (TPoint p : shown)
            EXPECT_TRUE(dark(p.X, p.Y)) << p.X << "," << p.Y;
        EXPECT_FALSE(dark(hidden.X, hidden.Y)) << hidden.X << "," << hidden.Y;
        preview();
        EXPECT_TRUE(AllWhite(host.Screen()));
    };
    SetDragResizeRotateShapeMode(canvas);
    // The second segment moved by (10, 20).
    check([&] { line->Draging(canvas, {0, 0}, {10, 20}); }, {{130, 120}}, {120, 120});
    // Sizing point 1 draws its two segments to the unmoved neighbours, nothing else.
    line->SetCurrentHot(1);
    check([&] { line->Sizing(canvas, {120, 50}, {160, 50}); }, {{140, 100}, {90, 50}}, {120, 110});
    // A quarter turn about (120, 50): the first segment runs up from the centre, the
    // second one runs left along y = 50.
    check(
        [&] {
            line->Rotating(canvas, {120, 50}, std::numbers::pi / 2);
        },
        {{120, 20}, {70, 50}}, {120, 100});
    check([&] { line->Drawing(canvas, {10, 180}, {190, 180}); }, {{100, 180}}, {100, 170});
}

TEST(LineMerge, DrawedLooksUpOnlyForPlainLinesAndNotIntoMeasuringLines)
{
    TClassHost host;
    auto *rule = host.Add(std::make_unique<TMyRuleLine>(&host));
    rule->Points() = {{10, 150}, {100, 150}};
    auto *target = host.Add(MakeLine(host, {{10, 10}, {100, 10}}));
    target->SetShapeId(7);

    TMyLine drawn(&host);
    drawn.Points() = {{50, 50}, {101, 12}};
    TPoint end{101, 12};
    drawn.Drawed({50, 50}, end);
    EXPECT_EQ(std::tuple(drawn.EndMergeShapeId(), drawn.EndMergePointNo(), drawn.CenterPoint()),
              std::tuple(7, 1, TMyPoint{75.5f, 31}));
    EXPECT_EQ(host.Highlight.Shape, target);
    EXPECT_FALSE(drawn.LookUpMergeShape(false, {100, 150}));
    EXPECT_EQ(drawn.EndMergeShapeId(), -1);

    TMyRuleLine ruler(&host);
    ruler.Points() = {{50, 50}, {100, 10}};
    TPoint rulerEnd{100, 10};
    ruler.Drawed({50, 50}, rulerEnd);
    EXPECT_EQ(ruler.EndMergeShapeId(), -1);
}

} // namespace
} // namespace tessal::test
