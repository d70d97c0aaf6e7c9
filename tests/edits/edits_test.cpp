// SPDX-License-Identifier: MIT
// Joining lines, breaking chains, closing polylines and same-size commands: exact points,
// refusals that change nothing, and one take-back giving the saved drawing back byte for
// byte.
#include "surface/documenthelpers.h"

#include <tessal/shapes/line.h>
#include <tessal/shapes/polyline.h>

#include <gtest/gtest.h>

#include <random>

using namespace tessal;
using namespace tessal::test;

namespace {

// A bound connector routed as the surface routes it, between link points at the two
// shapes' centres (start point 0 and end point 1, as AddConnector binds them).
TMyLinkLine *AddRoutedConnector(TMyCAD &cad, TMyShape *a, TMyShape *b)
{
    for (TMyShape *shape : {a, b})
        while (shape->GetLinkPointsCount() < 2)
            shape->AddLinkPoint(shape->GetCenterPointInZoom());
    TMyLinkLine *link = AddConnector(cad, a, b);
    cad.ChangeLinkShapes(link);
    return link;
}

// A drawing with shapes below, between and above the ones a command works on, a group and
// a bound connector, so that a take-back has relations and list places to get right.
struct TScene
{
    TMyCAD cad;
    TScene()
    {
        cad.SetUndoRedoSize(255);
        AddRectangle(cad, 300, 300, 320, 320);
    }
    void AddNeighbours()
    {
        TMyShape *a = AddRectangle(cad, 400, 0, 420, 20);
        TMyShape *b = AddRectangle(cad, 400, 100, 420, 120);
        TMyShape *const ab[] = {a, b};
        cad.GroupShapes(ab, true);
        AddRoutedConnector(cad, cad.GetShapeByNo(0), a);
    }
};

// Each command's tests start from that drawing.
class TSceneTest : public ::testing::Test, public TScene
{};
using Merge = TSceneTest;
using Break = TSceneTest;
using Close = TSceneTest;
using SameSize = TSceneTest;

// Made before a command with the drawing saved: TakeBack() asks that the command recorded
// exactly one step and that taking that step back gives the same bytes.
class TOneStep
{
public:
    explicit TOneStep(TMyCAD &cad)
        : m_Cad(cad)
        , m_Before(Saved(cad))
        , m_Steps(StepCount(cad))
    {}
    void TakeBack()
    {
        ASSERT_EQ(StepCount(m_Cad), m_Steps + 1);
        EXPECT_NE(Saved(m_Cad), m_Before);
        m_Cad.PopFromUndoRedoShapeList();
        EXPECT_TRUE(RelationsValid(m_Cad));
        EXPECT_TRUE(SameBytes(Saved(m_Cad), m_Before));
    }

private:
    TMyCAD &m_Cad;
    const QByteArray m_Before;
    const std::int32_t m_Steps;
};

// A refused command changes no byte and records nothing.
template <typename Command>
void ExpectRefused(TMyCAD &cad, Command command)
{
    const QByteArray before = Saved(cad);
    const std::size_t records = cad.UndoRedoShapeList().size();
    EXPECT_FALSE(command());
    EXPECT_EQ(cad.UndoRedoShapeList().size(), records);
    EXPECT_TRUE(SameBytes(Saved(cad), before));
}

} // namespace

// The end look-up of a drawn line: only plain lines look, only the first or last handle of
// a plain line or polyline counts, in list order, in screen pixels at the zoom.
TEST_F(Merge, LookUpFindsLineEndsUnderTheDroppedEnd)
{
    cad.SetZoom(2);
    AddByCode(cad, TDrawTool::SpPolygon, {{50, 50}, {90, 50}, {90, 90}});
    TMyShape *a = AddByCode(cad, TDrawTool::SpLine, {{0, 0}, {50, 50}});
    TMyShape *b = AddByCode(cad, TDrawTool::SpPolyLine, {{50, 50}, {100, 0}, {150, 0}});

    auto line = cad.CreateShapeBySpTool(TDrawTool::SpLine);
    auto *drawn = static_cast<TMyLine *>(line.get());
    drawn->AddPoint({0, 200});
    drawn->AddPoint({300, 3});
    TPoint end{300, 3};
    drawn->Drawed({0, 200}, end);
    EXPECT_EQ(drawn->EndMergeShapeId(), b->ShapeId());
    EXPECT_EQ(drawn->EndMergePointNo(), 2);
    // The polygon's corner and the polyline's start are both at (100, 100) on screen: the
    // line comes first in the list; the polygon is never a candidate.
    EXPECT_EQ(cad.GetMergeShape(drawn, true, {100, 100}), a);
    EXPECT_EQ(drawn->StartMergePointNo(), 1);
    EXPECT_EQ(cad.GetMergeShape(drawn, true, {96, 96}), a) << "within HotSize (4)";
    EXPECT_EQ(cad.GetMergeShape(drawn, true, {200, 0}), nullptr) << "inner point";
    EXPECT_EQ(drawn->StartMergeShapeId(), -1);
    EXPECT_EQ(drawn->StartMergePointNo(), -1);
    EXPECT_EQ(cad.GetMergeShape(nullptr, true, {0, 0}), nullptr);

    auto poly = cad.CreateShapeBySpTool(TDrawTool::SpPolyLine);
    auto *polyline = static_cast<TMyLine *>(poly.get());
    polyline->AddPoint({0, 200});
    polyline->AddPoint({300, 0});
    end = {300, 0};
    polyline->Drawed({0, 200}, end);
    EXPECT_EQ(polyline->EndMergeShapeId(), -1) << "polylines keep their own ends";
}

// The joined chain for each pair of merged ends: the first shape runs into its merged end,
// the line's inner points follow, the second shape runs out of its merged end; the heads at
// the outer ends stay.
TEST(MergeEnds, JoinedChainsAndHeads)
{
    // The joined chain is the first part, the drawn line's inner point (150, 50), the second.
    // {merged point of the first, of the second, their heads, the joined head, the parts}
    using enum TArrowStyle;
    using P = TMyPointArray;
    const std::tuple<std::int32_t, std::int32_t, TArrowStyle, TArrowStyle, TArrowStyle, P, P>
        cases[] = {
            {1, 0, ARight, ALeft, ADouble, {{0, 0}, {100, 0}}, {{200, 0}, {300, 0}, {300, 100}}},
            {0, 2, ARight, ARight, ALeft, {{100, 0}, {0, 0}}, {{300, 100}, {300, 0}, {200, 0}}},
            {0, 0, ALeft, ANone, ARight, {{100, 0}, {0, 0}}, {{200, 0}, {300, 0}, {300, 100}}},
            {1, 2, ANone, ALeft, ANone, {{0, 0}, {100, 0}}, {{300, 100}, {300, 0}, {200, 0}}},
        };
    for (const auto &[startPoint, endPoint, firstStyle, secondStyle, style, head, tail] : cases) {
        SCOPED_TRACE(startPoint * 10 + endPoint);
        TScene scene;
        TMyCAD &cad = scene.cad;
        auto *first = AddByCode<TMyLine>(cad, TDrawTool::SpLine, {{0, 0}, {100, 0}});
        scene.AddNeighbours();
        auto *second =
            AddByCode<TMyLine>(cad, TDrawTool::SpPolyLine, {{200, 0}, {300, 0}, {300, 100}});
        AddRectangle(cad, 500, 500, 510, 510);
        first->SetArrowStyle(firstStyle);
        TPen pen;
        pen.Color = clRed;
        pen.Width = 3;
        first->SetPen(pen);
        second->SetArrowStyle(secondStyle);
        const std::int32_t ids[] = {first->ShapeId(), second->ShapeId()};

        auto drawn = cad.CreateShapeBySpTool(TDrawTool::SpLine);
        auto *line = static_cast<TMyLine *>(drawn.get());
        line->Points() = {{1, 1}, {150, 50}, {199, 1}};
        line->SetStartMerge(ids[0], startPoint);
        line->SetEndMerge(ids[1], endPoint);
        const std::int32_t count = cad.GetShapesCount();
        TOneStep step(cad);
        TMyShape *merged = cad.CreateAndDelete(line);
        ASSERT_NE(merged, nullptr);
        EXPECT_EQ(merged->ClassName(), "TMyPolyLine");
        TMyPointArray expected = head;
        expected.push_back({150, 50});
        expected.insert(expected.end(), tail.begin(), tail.end());
        EXPECT_EQ(merged->Points(), expected);
        EXPECT_EQ(static_cast<TMyLine *>(merged)->ArrowStyle(), style);
        EXPECT_EQ(merged->Pen().Color, clRed);
        EXPECT_EQ(cad.GetShapesCount(), count - 1);
        EXPECT_EQ(cad.GetShapeNoInMyShapes(merged), count - 2);
        EXPECT_EQ(merged->Name(), QString("Shape%1").arg(merged->ShapeId()));
        EXPECT_EQ(cad.GetShapeByID(ids[0]), nullptr);
        EXPECT_EQ(cad.GetShapeByID(ids[1]), nullptr);
        EXPECT_EQ(cad.WorkingShapes(), std::vector<TMyShape *>{merged});
        EXPECT_TRUE(RelationsValid(cad));
        step.TakeBack();
    }
}

// A line already in the drawing goes with the two shapes, and all three come back.
TEST_F(Merge, LineInTheDrawingIsReplacedToo)
{
    AddByCode(cad, TDrawTool::SpPolyLine, {{0, 0}, {50, 0}, {100, 0}});
    AddNeighbours();
    AddByCode(cad, TDrawTool::SpLine, {{100, 100}, {200, 100}});
    auto *line = AddByCode<TMyLine>(cad, TDrawTool::SpLine, {{100, 1}, {101, 99}});
    ASSERT_NE(cad.GetMergeShape(line, true, {100, 1}), nullptr);
    ASSERT_NE(cad.GetMergeShape(line, false, {101, 99}), nullptr);
    TOneStep step(cad);
    TMyShape *merged = cad.CreateAndDelete(line);
    ASSERT_NE(merged, nullptr);
    EXPECT_EQ(merged->Points(), (TMyPointArray{{0, 0}, {50, 0}, {100, 0}, {100, 100}, {200, 100}}));
    EXPECT_EQ(cad.GetShapesCount(), 6);
    step.TakeBack();
}

TEST_F(Merge, RefusedJoins)
{
    auto *first = AddByCode<TMyLine>(cad, TDrawTool::SpLine, {{0, 0}, {100, 0}});
    auto *second = AddByCode<TMyLine>(cad, TDrawTool::SpPolyLine, {{200, 0}, {300, 0}, {300, 100}});
    auto *polygon = AddByCode(cad, TDrawTool::SpPolygon, {{0, 50}, {50, 50}, {50, 90}});
    auto drawn = cad.CreateShapeBySpTool(TDrawTool::SpLine);
    auto *line = static_cast<TMyLine *>(drawn.get());
    line->Points() = {{100, 0}, {200, 0}};
    const auto refuse = [&](std::int32_t startId, std::int32_t startPoint, std::int32_t endId,
                            std::int32_t endPoint) {
        line->SetStartMerge(startId, startPoint);
        line->SetEndMerge(endId, endPoint);
        ExpectRefused(cad, [&] { return cad.CreateAndDelete(line) != nullptr; });
    };
    const std::int32_t a = first->ShapeId(), b = second->ShapeId();
    refuse(a, 1, a, 0);                  // both ends on one shape
    refuse(a, 1, -1, -1);                // one end free
    refuse(a, 1, b, 1);                  // an inner point
    refuse(a, 1, polygon->ShapeId(), 0); // not a line or polyline
    refuse(a, 1, 12345, 0);              // gone
    EXPECT_EQ(cad.CreateAndDelete(nullptr), nullptr);

    first->SetLockedFlag(true);
    refuse(a, 1, b, 0);
    first->SetLockedFlag(false);
    second->SetVisible(false);
    refuse(a, 1, b, 0);
    second->SetVisible(true);
    TMyShape *const grouped[] = {first, polygon};
    const std::int32_t group = cad.GroupShapes(grouped, false);
    refuse(a, 1, b, 0);
    cad.UnGroupShape(cad.GetShapeByID(group), false);
    AddConnector(cad, cad.GetShapeByNo(0), second);
    refuse(a, 1, b, 0);

    // Ends on two layers, then both on a hidden layer.
    auto *free = AddByCode<TMyLine>(cad, TDrawTool::SpLine, {{100, 0}, {150, 0}});
    const std::int32_t layer = cad.NewLayer("Other", true);
    auto *third = AddByCode<TMyLine>(cad, TDrawTool::SpLine, {{200, 0}, {250, 0}});
    auto *fourth = AddByCode<TMyLine>(cad, TDrawTool::SpLine, {{100, 0}, {150, 0}});
    refuse(free->ShapeId(), 1, third->ShapeId(), 0);
    cad.InVisibleLayerByID(layer);
    refuse(fourth->ShapeId(), 1, third->ShapeId(), 0);
}

// Breaking at an inner point: the shape keeps the first part and the head at its start,
// the new piece of the same class sits just above it with the rest and the far head.
TEST(BreakEachLineKind, AtAnInnerPoint)
{
    for (TDrawTool tool : {TDrawTool::SpLine, TDrawTool::SpPolyLine, TDrawTool::SpFreeLine}) {
        SCOPED_TRACE(int(tool));
        TScene scene;
        TMyCAD &cad = scene.cad;
        auto *chain =
            AddByCode<TMyLine>(cad, tool, {{0, 0}, {10, 0}, {10, 10}, {20, 10}, {20, 30}});
        scene.AddNeighbours();
        chain->SetArrowStyle(TArrowStyle::ADouble);
        chain->UserData().AddKeyandValue("key", "value");
        TOneStep step(cad);
        TMyShape *piece = cad.BreakLine(chain, 2);
        ASSERT_NE(piece, nullptr);
        EXPECT_EQ(chain->Points(), (TMyPointArray{{0, 0}, {10, 0}, {10, 10}}));
        EXPECT_EQ(piece->Points(), (TMyPointArray{{10, 10}, {20, 10}, {20, 30}}));
        EXPECT_EQ(piece->ClassName(), chain->ClassName());
        EXPECT_EQ(chain->ArrowStyle(), TArrowStyle::ARight);
        EXPECT_EQ(static_cast<TMyLine *>(piece)->ArrowStyle(), TArrowStyle::ALeft);
        EXPECT_EQ(cad.GetShapeNoInMyShapes(piece), cad.GetShapeNoInMyShapes(chain) + 1);
        EXPECT_EQ(piece->LayerId(), chain->LayerId());
        EXPECT_EQ(piece->UserData().GetCount(), 1);
        EXPECT_EQ(piece->CenterPoint(), (TMyPoint{15, 20}));
        EXPECT_EQ(cad.CurrentShape(), piece);
        const auto &list = cad.UndoRedoShapeList();
        EXPECT_EQ(list[list.size() - 2].Action, ACT_CHANGE);
        EXPECT_EQ(list.back().Action, ACT_ADD);
        EXPECT_TRUE(RelationsValid(cad));
        step.TakeBack();
    }
}

// A member of a group breaks within the group: the piece joins it.
TEST_F(Break, MemberPieceJoinsTheGroup)
{
    TMyShape *chain = AddByCode(cad, TDrawTool::SpPolyLine, {{0, 0}, {10, 0}, {10, 10}});
    TMyShape *other = AddRectangle(cad, 50, 50, 60, 60);
    TMyShape *const members[] = {chain, other};
    TMyShape *group = cad.GetShapeByID(cad.GroupShapes(members, true));
    TOneStep step(cad);
    TMyShape *piece = cad.BreakLine(chain, 1);
    ASSERT_NE(piece, nullptr);
    EXPECT_EQ(cad.GetRootParentShape(piece), group);
    EXPECT_EQ(group->ChildShapes().size(), 3u);
    EXPECT_EQ(cad.WorkingShapes(), std::vector<TMyShape *>{group});
    step.TakeBack();
}

// By a point: the nearest point of the hit segment starts the second piece (zoom 2, so the
// screen click is halved); at an inner point it is the same as BreakLine; the ends of the
// chain and clicks beside it are refused.
TEST_F(Break, ByAPointOnASegment)
{
    cad.SetZoom(2);
    TMyShape *line = AddByCode(cad, TDrawTool::SpLine, {{0, 0}, {100, 0}});
    AddNeighbours();
    TMyShape *poly = AddByCode(cad, TDrawTool::SpPolyLine, {{0, 50}, {40, 50}, {40, 90}});
    // {shape, click, its points after, the piece's points}
    const std::tuple<TMyShape *, TPoint, TMyPointArray, TMyPointArray> cases[] = {
        {line, {101, 5}, {{0, 0}, {50.5f, 0}}, {{50.5f, 0}, {100, 0}}},
        {poly, {83, 100}, {{0, 50}, {40, 50}}, {{40, 50}, {40, 90}}},
    };
    for (const auto &[shape, click, kept, rest] : cases) {
        TOneStep step(cad);
        TMyShape *piece = cad.BreakLineByAPoint(shape, click);
        ASSERT_NE(piece, nullptr);
        EXPECT_EQ(shape->Points(), kept);
        EXPECT_EQ(piece->Points(), rest);
        step.TakeBack();
    }
    for (TPoint beside : {TPoint{-3, 2}, TPoint{200, 2}, TPoint{100, 12}, TPoint{80, 181}})
        ExpectRefused(cad, [&] { return cad.BreakLineByAPoint(poly, beside) != nullptr; });
}

TEST_F(Break, RefusedShapesAndPoints)
{
    TMyShape *poly = AddByCode(cad, TDrawTool::SpPolyLine, {{0, 0}, {10, 0}, {10, 10}});
    for (std::int32_t index : {-1, 0, 2, 3})
        ExpectRefused(cad, [&] { return cad.BreakLine(poly, index) != nullptr; });
    for (TDrawTool tool :
         {TDrawTool::SpPolygon, TDrawTool::SpLinkLine, TDrawTool::SpRuleLine, TDrawTool::SpBLine}) {
        TMyShape *other = AddByCode(cad, tool, {{0, 20}, {10, 20}, {10, 30}});
        ASSERT_NE(other, nullptr);
        ExpectRefused(cad, [&] { return cad.BreakLine(other, 1) != nullptr; });
        ExpectRefused(cad, [&] { return cad.BreakLineByAPoint(other, {5, 20}) != nullptr; });
    }
    poly->SetLockedFlag(true);
    ExpectRefused(cad, [&] { return cad.BreakLine(poly, 1) != nullptr; });
    poly->SetLockedFlag(false);
    cad.InVisibleLayerByID(poly->LayerId());
    ExpectRefused(cad, [&] { return cad.BreakLine(poly, 1) != nullptr; });
    EXPECT_EQ(cad.BreakLine(nullptr, 1), nullptr);
}

// The topmost breakable shape under the point, whatever lies above it.
TEST_F(Break, WhichShapeBreaksAtAPoint)
{
    TMyShape *low = AddByCode(cad, TDrawTool::SpPolyLine, {{0, 0}, {100, 0}});
    TMyShape *high = AddByCode(cad, TDrawTool::SpLine, {{0, 2}, {100, 2}});
    AddByCode(cad, TDrawTool::SpPolygon, {{0, -20}, {100, -20}, {50, 40}});
    EXPECT_EQ(cad.IsBreakLineByAPoint({50, 1}), high);
    high->SetLockedFlag(true);
    EXPECT_EQ(cad.IsBreakLineByAPoint({50, 1}), low);
    EXPECT_EQ(cad.IsBreakLineByAPoint({0, 0}), nullptr) << "an end of both";
    EXPECT_EQ(cad.IsBreakLineByAPoint({50, 30}), nullptr);
}

// The polygon takes the polyline's place, identity, name, look, group and connectors; one
// take-back makes it the polyline again.
TEST_F(Close, PolylineBecomesPolygonInPlace)
{
    TMyShape *poly = AddByCode(cad, TDrawTool::SpPolyLine, {{0, 0}, {40, 0}, {40, 30}});
    TMyShape *other = AddRectangle(cad, 100, 0, 110, 10);
    TMyShape *const members[] = {poly, other};
    const std::int32_t groupId = cad.GroupShapes(members, true);
    AddRoutedConnector(cad, cad.GetShapeByNo(0), poly);
    TBrush brush;
    brush.Color = clBlue;
    poly->SetBrush(brush);
    const std::int32_t id = poly->ShapeId();
    const std::int32_t no = cad.GetShapeNoInMyShapes(poly);
    const QString name = poly->Name();
    const auto relations = Snapshot(cad)[id];
    cad.SetWorkingShapes(std::vector<TMyShape *>{cad.GetShapeByID(groupId)});
    TOneStep step(cad);
    TMyShape *closed = cad.ClosePolygon(poly);
    ASSERT_NE(closed, nullptr);
    EXPECT_EQ(closed->ClassName(), "TMyPolygon");
    EXPECT_EQ(closed->Points(), (TMyPointArray{{0, 0}, {40, 0}, {40, 30}, {0, 0}}));
    EXPECT_EQ(cad.GetShapeNoInMyShapes(closed), no);
    EXPECT_EQ(closed->ShapeId(), id);
    EXPECT_EQ(closed->Name(), name);
    EXPECT_EQ(closed->Brush().Color, clBlue);
    auto state = Snapshot(cad)[id];
    state.Class = relations.Class;
    state.Points = relations.Points;
    EXPECT_EQ(state, relations);
    EXPECT_TRUE(RelationsValid(cad));
    step.TakeBack();
    EXPECT_EQ(cad.GetShapeByID(id)->ClassName(), "TMyPolyLine");

    // A polyline that already ends on its start is not given another closing point.
    // The selection follows the new object.
    TMyShape *ring = AddByCode(cad, TDrawTool::SpPolyLine, {{0, 0}, {9, 0}, {9, 9}, {0, 0}});
    cad.SetCurrentShape(ring);
    closed = cad.ClosePolygon(ring);
    ASSERT_NE(closed, nullptr);
    EXPECT_EQ(closed->GetPointsCount(), 4);
    EXPECT_EQ(cad.WorkingShapes(), std::vector<TMyShape *>{closed});
    EXPECT_EQ(cad.CurrentShape(), closed);
}

TEST_F(Close, RefusedShapes)
{
    TMyShape *flat = AddByCode(cad, TDrawTool::SpPolyLine, {{0, 0}, {10, 0}, {0, 0}, {10, 0}});
    ExpectRefused(cad, [&] { return cad.ClosePolygon(flat) != nullptr; });
    for (TDrawTool tool : {TDrawTool::SpLine, TDrawTool::SpPolygon, TDrawTool::SpFreeLine}) {
        TMyShape *other = AddByCode(cad, tool, {{0, 0}, {10, 0}, {10, 10}});
        ExpectRefused(cad, [&] { return cad.ClosePolygon(other) != nullptr; });
    }
    TMyShape *poly = AddByCode(cad, TDrawTool::SpPolyLine, {{0, 0}, {10, 0}, {10, 10}});
    poly->SetLockedFlag(true);
    ExpectRefused(cad, [&] { return cad.ClosePolygon(poly) != nullptr; });
    EXPECT_EQ(cad.ClosePolygon(nullptr), nullptr);
}

// Widths 10 and 30 become 20 each about their boxes' middles; a polyline stretches along
// the page's x axis whatever its angle; a turned rectangle scales evenly; a group stretches
// with its members; connectors follow.
TEST_F(SameSize, AverageWidthAndHeight)
{
    TMyShape *narrow = AddRectangle(cad, 0, 0, 10, 40);
    TMyShape *wide = AddRectangle(cad, 100, 0, 130, 10);
    TMyShape *const pair[] = {narrow, wide};
    TOneStep width(cad);
    cad.SetWorkingShapes(pair);
    ASSERT_TRUE(cad.AverageWidth());
    ExpectNear(narrow->Points(), {{-5, 0}, {15, 0}, {15, 40}, {-5, 40}});
    ExpectNear(wide->Points(), {{105, 0}, {125, 0}, {125, 10}, {105, 10}});
    width.TakeBack();
    TOneStep height(cad);
    cad.SetWorkingShapes(pair);
    ASSERT_TRUE(cad.AverageHeight());
    ExpectNear(narrow->Points(), {{0, 7.5f}, {10, 7.5f}, {10, 32.5f}, {0, 32.5f}});
    ExpectNear(wide->Points(), {{100, -7.5f}, {130, -7.5f}, {130, 17.5f}, {100, 17.5f}});
    height.TakeBack();

    TMyShape *poly = AddByCode(cad, TDrawTool::SpPolyLine, {{0, 100}, {40, 120}, {20, 140}});
    poly->SetAngleValue(0.5f);
    TMyShape *turned =
        AddByCode(cad, TDrawTool::SpRectangle, {{200, 100}, {210, 100}, {210, 120}, {200, 120}});
    turned->SetAngleValue(0.3f);
    TMyShape *a = AddRectangle(cad, 300, 100, 310, 110);
    TMyShape *b = AddRectangle(cad, 320, 100, 330, 130);
    TMyShape *const ab[] = {a, b};
    TMyShape *group = cad.GetShapeByID(cad.GroupShapes(ab, true));
    TMyLinkLine *link = AddRoutedConnector(cad, cad.GetShapeByNo(0), a);
    const TMyPointArray route = link->Points();
    TMyShape *const four[] = {poly, turned, group};
    TOneStep step(cad);
    cad.SetWorkingShapes(four);
    ASSERT_TRUE(cad.AverageWidth());
    // Widths 40, 10 and 30: 80/3 each.
    const float w = 80.0f / 3;
    ExpectNear(poly->Points(), {{20 - w / 2, 100}, {20 + w / 2, 120}, {20, 140}});
    ExpectNear(turned->Points(), {{205 - w / 2, 110 - w},
                                  {205 + w / 2, 110 - w},
                                  {205 + w / 2, 110 + w},
                                  {205 - w / 2, 110 + w}});
    const float f = w / 30;
    ExpectNear(a->Points(),
               {{315 - 15 * f, 100}, {315 - 5 * f, 100}, {315 - 5 * f, 110}, {315 - 15 * f, 110}});
    EXPECT_NEAR(group->GetWidth(), w, 1e-4);
    EXPECT_NE(link->Points(), route);
    step.TakeBack();
}

TEST_F(SameSize, RefusedSelections)
{
    TMyShape *a = AddRectangle(cad, 0, 0, 10, 10);
    TMyShape *b = AddRectangle(cad, 20, 0, 50, 10);
    TMyShape *vertical = AddByCode(cad, TDrawTool::SpLine, {{60, 0}, {60, 50}});
    TMyShape *const one[] = {a};
    cad.SetWorkingShapes(one);
    ExpectRefused(cad, [&] { return cad.AverageWidth(); });
    TMyShape *const withLine[] = {a, vertical};
    cad.SetWorkingShapes(withLine);
    ExpectRefused(cad, [&] { return cad.AverageWidth(); });
    EXPECT_TRUE(cad.AverageHeight()) << "the vertical line has a height";
    TMyShape *const pair[] = {a, b};
    cad.SetWorkingShapes(pair);
    b->SetLockedFlag(true);
    ExpectRefused(cad, [&] { return cad.AverageWidth(); });
}

// Random polylines broken at random inner points and random segment points, closed or
// joined: every piece lies on the original chain, the document stays consistent, each step
// goes back exactly, and taking back everything gives the first drawing again.
TEST(Randomized, EditsOnRandomChainsGoBackExactly)
{
    for (unsigned seed : {3u, 11u, 500u}) {
        SCOPED_TRACE(seed);
        std::mt19937 rng(seed);
        const auto pick = [&rng](int n) {
            return std::uniform_int_distribution<int>(0, n - 1)(rng);
        };
        TScene scene;
        TMyCAD &cad = scene.cad;
        cad.SetZoom(pick(2) ? 1.5 : 1);
        scene.AddNeighbours();
        const QByteArray start = Saved(cad);
        std::vector<QByteArray> states;
        std::array<int, 4> done{};
        for (int op = 0; op < 120; ++op) {
            if (cad.GetShapesCount() < 8 || pick(4) == 0) {
                std::vector<TMyPoint> points;
                for (int i = 0, n = 2 + pick(6); i < n; ++i)
                    points.push_back({float(pick(400)), float(pick(400))});
                states.push_back(Saved(cad));
                AddByCode(cad, pick(3) ? TDrawTool::SpPolyLine : TDrawTool::SpLine, points);
                continue;
            }
            TMyShape *shape = cad.GetShapeByNo(pick(cad.GetShapesCount()));
            const TMyPointArray original = shape->Points();
            const QByteArray before = Saved(cad);
            TMyShape *result = nullptr;
            // Closing and joining destroy shape.
            const int kind = pick(4);
            switch (kind) {
            case 0:
                result = cad.BreakLine(shape, 1 + pick(std::max<int>(1, int(original.size()) - 1)));
                break;
            case 1: {
                const int i = pick(std::max<int>(1, int(original.size()) - 1));
                if (original.size() < 2)
                    break;
                const double t = pick(1000) / 1000.0;
                const TMyPoint a = original[std::size_t(i)], b = original[std::size_t(i) + 1];
                const double zoom = cad.Zoom();
                result = cad.BreakLineByAPoint(
                    shape, {std::int32_t(std::nearbyint((a.X + (b.X - a.X) * t) * zoom)),
                            std::int32_t(std::nearbyint((a.Y + (b.Y - a.Y) * t) * zoom))});
                break;
            }
            case 2:
                result = cad.ClosePolygon(shape);
                break;
            default: {
                auto drawn = cad.CreateShapeBySpTool(TDrawTool::SpLine);
                auto *line = static_cast<TMyLine *>(drawn.get());
                line->Points() = {shape->GetPoint(0), {0, 0}};
                line->SetStartMerge(shape->ShapeId(), 0);
                TMyShape *other = cad.GetShapeByNo(pick(cad.GetShapesCount()));
                line->SetEndMerge(other->ShapeId(), other->GetPointsCount() - 1);
                result = cad.CreateAndDelete(line);
            }
            }
            ASSERT_TRUE(RelationsValid(cad)) << "operation " << op;
            ASSERT_TRUE(IndexAgreesWithTheScan(cad, {-50, -50, 650, 650}, 70, {30, 300}))
                << "operation " << op;
            if (!result) {
                ASSERT_TRUE(SameBytes(Saved(cad), before));
                continue;
            }
            ++done[std::size_t(kind)];
            if (kind < 2) {
                // A break: the two pieces make the original chain, sharing one point.
                TMyPointArray joined = shape->Points();
                joined.insert(joined.end(), result->Points().begin() + 1, result->Points().end());
                const bool inserted = joined.size() == original.size() + 1;
                ASSERT_EQ(joined.size(), original.size() + (inserted ? 1 : 0));
                if (!inserted) {
                    EXPECT_EQ(joined, original);
                }
            }
            states.push_back(before);
            if (pick(3) == 0) {
                cad.PopFromUndoRedoShapeList();
                ASSERT_TRUE(SameBytes(Saved(cad), states.back())) << "operation " << op;
                states.pop_back();
            }
        }
        while (!states.empty()) {
            cad.PopFromUndoRedoShapeList();
            ASSERT_TRUE(SameBytes(Saved(cad), states.back()));
            states.pop_back();
        }
        EXPECT_TRUE(SameBytes(Saved(cad), start));
        for (int kind = 0; kind < 4; ++kind)
            EXPECT_GT(done[std::size_t(kind)], 1) << "operation kind " << kind;
    }
}
