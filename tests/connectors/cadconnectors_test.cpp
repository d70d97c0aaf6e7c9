// SPDX-License-Identifier: MIT
// The surface's connector operations: routes round the document's shapes, connectors
// following moved shapes and groups, link points found under the mouse with their
// highlight, and where a connector drawn from a press starts.
#include "connectorhost.h"
#include "surface/documenthelpers.h"

#include <tessal/shapes/polyline.h>

#include <tessal/surface/cad.h>

#include <gtest/gtest.h>

#include <random>

namespace tessal::test {
namespace {

struct TDiagram
{
    TMyCAD Cad;
    TMyShape *A = nullptr;
    TMyShape *B = nullptr;

    TDiagram()
    {
        Cad.SetPageWidth(100);
        Cad.SetPageHeight(80);
        Cad.GridOperation()->SetGridType(TGridType::gNone);
        Cad.NewLayer(QStringLiteral("Top"), true);
        A = Box(20, 40, 80, 100);
        A->LinkPoints() = {{80, 70}, {50, 40}};
        B = Box(220, 40, 280, 100);
        B->LinkPoints() = {{220, 70}, {250, 100}};
    }

    TMyShape *Box(float l, float t, float r, float b) { return AddRectangle(Cad, l, t, r, b); }

    TMyLinkLine *Connect(TMyShape *from, std::int32_t fromPoint, TMyShape *to, std::int32_t toPoint)
    {
        auto *link = AddByCode<TMyLinkLine>(Cad, TDrawTool::SpLinkLine, {{0, 0}, {1, 1}});
        EXPECT_TRUE(link->CreateSrcLink(from->ShapeId(), fromPoint));
        EXPECT_TRUE(link->CreateDestLink(to->ShapeId(), toPoint));
        return link;
    }
};

// Each test starts from that diagram.
class CadConnectors : public ::testing::Test, public TDiagram
{};

bool RouteEnters(const TMyPointArray &route, float l, float t, float r, float b)
{
    for (std::size_t i = 1; i < route.size(); ++i)
        if (EntersBox(route[i - 1], route[i], l, t, r, b))
            return true;
    return false;
}

TEST_F(CadConnectors, RoutesGoRoundClosedShapesOnlyWhileAskedTo)
{
    TMyLinkLine *link = Connect(A, 0, B, 0);
    EXPECT_EQ(link->Points(), (TMyPointArray{{80, 70}, {220, 70}}));

    // A link mark and a plain line on the way are no obstacles; a rectangle is.
    AddByCode(Cad, TDrawTool::SpLinkPoint, {{120, 66}, {128, 74}});
    AddByCode(Cad, TDrawTool::SpLine, {{140, 20}, {140, 120}});
    link->UpdateRoute();
    EXPECT_EQ(link->Points(), (TMyPointArray{{80, 70}, {220, 70}}));

    TMyShape *wall = Box(160, 50, 180, 110);
    Cad.ChangeLinkShapes(link);
    ASSERT_TRUE(Alternates(link->Points()));
    EXPECT_FALSE(RouteEnters(link->Points(), 160, 50, 180, 110));
    EXPECT_EQ(link->Points().front(), (TMyPoint{80, 70}));
    EXPECT_EQ(link->Points().back(), (TMyPoint{220, 70}));

    // A switched-off avoidance and hidden shapes let the route through.
    for (bool around : {false, true}) {
        Cad.SetLinklineAroundShape(around);
        wall->SetVisible(!around);
        link->UpdateRoute();
        EXPECT_EQ(link->Points(), (TMyPointArray{{80, 70}, {220, 70}})) << around;
    }

    // The straight style is the line between the ends whatever lies between.
    wall->SetVisible(true);
    link->SetLinkLineDrawStyle(TLinkLineDrawStyle::lldsFree);
    EXPECT_EQ(Cad.GetPath(*link, {80, 70}, {220, 70}),
              (std::vector<TMyPoint>{{80, 70}, {220, 70}}));
}

// The surface asks its index for the shapes near a route; the route is the one that every
// visible top-level closed shape of the drawing as an obstacle gives, at several zooms and
// while shapes move.
TEST_F(CadConnectors, ObstaclesFromTheIndexGiveTheRouteOfTheWholeDrawing)
{
    std::mt19937 rng(8080);
    auto in = [&rng](float lo, float hi) { return std::uniform_real_distribution(lo, hi)(rng); };
    const TDrawTool tools[] = {TDrawTool::SpRectangle, TDrawTool::SpEllipse, TDrawTool::SpLine,
                               TDrawTool::SpLinkPoint, TDrawTool::SpPolygon};
    std::vector<TMyShape *> shapes;
    for (int i = 0; i < 500; ++i) {
        const float x = in(-50, 400), y = in(-50, 300), w = in(4, 40), h = in(4, 40);
        const TMyPoint points[] = {{x, y}, {x + w, y + h}, {x, y + h}};
        const TDrawTool tool = tools[i % 5];
        TMyShape *shape =
            AddByCode(Cad, tool, std::span(points, tool == TDrawTool::SpPolygon ? 3 : 2));
        ASSERT_NE(shape, nullptr) << i;
        shape->SetVisible(i % 13 != 0);
        shapes.push_back(shape);
    }
    const std::int32_t hidden = Cad.NewLayer(QStringLiteral("Hidden"), false);
    for (std::size_t i = 0; i < shapes.size(); i += 17)
        shapes[i]->SetLayerId(hidden);
    TMyShape *members[] = {shapes[10], shapes[11]};
    ASSERT_NE(Cad.GroupShapes(members, false), -1);
    TMyLinkLine *link = Connect(A, 0, B, 0);

    const auto obstacle = [this](const TMyShape &s) {
        if (s.HasParentShape() || &s == A || &s == B || !s.Visible() ||
            !Cad.IsVisibleLayerByID(s.LayerId()) || dynamic_cast<const TMyLinkLine *>(&s) ||
            dynamic_cast<const TMyLinkPoint *>(&s))
            return false;
        return !dynamic_cast<const TMyLine *>(&s) || dynamic_cast<const TMyPolygon *>(&s);
    };
    const TObstacleFinder scan = [&](const TRouteBox &) {
        std::vector<TRouteBox> boxes;
        const double z = Cad.Zoom();
        for (std::int32_t no = 0; no < Cad.GetShapesCount(); ++no) {
            const TMyShape &s = *Cad.GetShapeByNo(no);
            const TMyPoint lt = s.GetLeftTop(), rb = s.GetRightBottom();
            if (obstacle(s))
                boxes.push_back({lt.X * z, lt.Y * z, rb.X * z, rb.Y * z});
        }
        return boxes;
    };
    int detours = 0;
    for (const double zoom : {1.0, 1.5, 0.5, 3.0}) {
        Cad.SetZoom(zoom);
        for (int k = 0; k < 25; ++k) {
            TMyShape *moved = shapes[std::size_t(rng() % shapes.size())];
            moved->DragChangeValuedxdy(in(-30, 30), in(-30, 30));
            const TMyPoint start = link->GetStartPoint();
            const TMyPoint end = {in(200, 300) * float(zoom), in(20, 120) * float(zoom)};
            const std::vector<TMyPoint> route = Cad.GetPath(*link, start, end);
            ASSERT_EQ(route, link->ComputeRoute(start, end, scan)) << zoom << " " << k;
            detours += route != link->ComputeRoute(start, end, {});
        }
    }
    // The drawing is dense enough that most routes have something to go round.
    EXPECT_GT(detours, 50);
}

// The look-ups under the mouse take their candidates from the index; they answer what a
// scan of every shape from the top down answers, group members, hidden shapes, hidden
// layers, connectors and a zoom included.
TEST_F(CadConnectors, LookUpsUnderTheMouseAnswerWhatTheScanAnswers)
{
    std::mt19937 rng(31337);
    auto in = [&rng](float lo, float hi) { return std::uniform_real_distribution(lo, hi)(rng); };
    std::vector<TMyShape *> shapes;
    for (int i = 0; i < 300; ++i) {
        const float x = in(0, 300), y = in(0, 200), w = in(4, 50), h = in(4, 50);
        const TMyPoint points[] = {{x, y}, {x + w, y + h}};
        const TDrawTool tool = i % 4 == 3 ? TDrawTool::SpLinkLine
                               : i % 4    ? TDrawTool::SpRectangle
                                          : TDrawTool::SpLine;
        TMyShape *shape = AddByCode(Cad, tool, points);
        // Link points on the outline, inside, and some way out.
        for (int k = int(rng() % 3); k > 0; --k)
            shape->AddLinkPoint({x + in(-8, w + 8), y + in(-8, h + 8)});
        shapes.push_back(shape);
    }
    for (std::size_t i = 0; i + 3 < shapes.size(); i += 40) {
        TMyShape *members[] = {shapes[i], shapes[i + 1]}; // a line and a rectangle
        ASSERT_NE(Cad.GroupShapes(members, false), -1);
    }
    const std::int32_t hidden = Cad.NewLayer(QStringLiteral("Hidden"), false);
    for (std::size_t i = 5; i < shapes.size(); i += 23)
        shapes[i]->SetLayerId(hidden);
    for (std::size_t i = 4; i < shapes.size(); i += 11)
        shapes[i]->SetVisible(false);

    QImage scratch(1, 1, QImage::Format_RGB32);
    TCanvas canvas(&scratch);
    const auto shown = [this](const TMyShape &s) {
        return s.Visible() && Cad.IsVisibleLayerByID(s.LayerId()) &&
               !dynamic_cast<const TMyLinkLine *>(&s);
    };
    // The topmost shown shape with a link point whose square holds p, and that point. The
    // square reaches five pixels before the point and four after it.
    const auto near = [](int d) { return -5 <= d && d < 5; };
    const auto hotScan = [&](TPoint p) {
        for (std::int32_t no = Cad.GetShapesCount() - 1; no >= 0; --no) {
            const TMyShape &s = *Cad.GetShapeByNo(no);
            for (std::int32_t k = 0; shown(s) && k < s.GetLinkPointsCount(); ++k) {
                const TPoint c = MyPtToPt(s.GetLinkPointInZoom(k));
                if (near(p.X - c.X) && near(p.Y - c.Y))
                    return std::pair{no, k};
            }
        }
        return std::pair{-1, -1};
    };
    const auto hitScan = [&](TPoint p) -> TMyShape * {
        for (std::int32_t no = Cad.GetShapesCount() - 1; no >= 0; --no) {
            TMyShape *s = Cad.GetShapeByNo(no);
            if (shown(*s) && s->GetLinkPointsCount() > 0 && s->IsClickedMe(canvas, p))
                return s;
        }
        return nullptr;
    };
    // The lowest line or polyline with an end whose hot square holds p.
    const auto endScan = [&](TPoint p) -> TMyShape * {
        for (std::int32_t no = 0; no < Cad.GetShapesCount(); ++no) {
            TMyShape *s = Cad.GetShapeByNo(no);
            const QString name = s->ClassName();
            if ((name == QLatin1String("TMyLine") || name == QLatin1String("TMyPolyLine")) &&
                s->InWhichPointHot(PtToMyPt(p)) >= 0)
                return s;
        }
        return nullptr;
    };
    const std::unique_ptr<TMyShape> probe = Cad.CreateShapeByName(QStringLiteral("TMyLine"));
    int hot = 0, hits = 0, ends = 0;
    for (const double zoom : {1.0, 1.7}) {
        Cad.SetZoom(zoom);
        for (int k = 0; k < 400; ++k) {
            const TPoint p{std::int32_t(in(-10, 360) * zoom), std::int32_t(in(-10, 260) * zoom)};
            std::int32_t no = 7, id = 7;
            Cad.InWhichShapeWhichHotLinkId(p, no, id);
            const std::pair want = hotScan(p);
            ASSERT_EQ(std::pair(no, id), want) << zoom << " " << p.X << "," << p.Y;
            hot += no >= 0;
            std::int32_t startId = 7;
            TMyShape *start = Cad.GetMainShape(p, startId);
            if (want.first < 0) {
                ASSERT_EQ(start, hitScan(p)) << zoom << " " << p.X << "," << p.Y;
                hits += start != nullptr;
            }
            // A line drawn from p is joined to the end found there.
            TMyShape *end =
                Cad.GetMergeShape(static_cast<TMyLine *>(probe.get()), true, PtToMyPt(p));
            ASSERT_EQ(end, endScan(p)) << zoom << " " << p.X << "," << p.Y;
            ends += end != nullptr;
        }
    }
    // Both kinds of answer came up often enough to mean something.
    EXPECT_GT(hot, 60);
    EXPECT_GT(hits, 60);
    EXPECT_GT(ends, 20);
}

// A horizontal segment hops over the vertical segments of other routed connectors that it
// crosses, found among many shapes: a half circle above the line and a gap in it.
TEST_F(CadConnectors, HorizontalSegmentsHopOverCrossingConnectors)
{
    std::mt19937 rng(5);
    std::uniform_real_distribution<float> at(0, 360);
    for (int i = 0; i < 400; ++i) {
        const float x = at(rng), y = 200 + at(rng) / 4;
        Box(x, y, x + 8, y + 6);
    }
    TMyLinkLine *across = Connect(A, 0, B, 0); // (80, 70) to (220, 70)
    for (const float x : {130.0f, 170.0f}) {
        TMyShape *low = Box(x - 10, 150, x + 10, 170);
        TMyShape *high = Box(x - 10, 0, x + 10, 20);
        low->LinkPoints() = {{x, 150}};
        high->LinkPoints() = {{x, 20}};
        Connect(low, 0, high, 0);
    }
    ASSERT_EQ(across->Points(), (TMyPointArray{{80, 70}, {220, 70}}));
    Cad.grab();
    const QImage &image = Cad.ScreenImage();
    for (const int x : {130, 170}) {
        // The line breaks off before the crossing and the arc rises above it.
        EXPECT_EQ(CountPixels(image, QRect(x - 3, 70, 2, 1), kWhite), 2) << x;
        EXPECT_EQ(CountPixels(image, QRect(x + 2, 70, 2, 1), kWhite), 2) << x;
        EXPECT_GT(CountPixels(image, QRect(x - 4, 65, 3, 4), kBlack), 1) << x;
        EXPECT_GT(CountPixels(image, QRect(x + 2, 65, 3, 4), kBlack), 1) << x;
    }
    // No hop away from the crossings.
    EXPECT_EQ(CountPixels(image, QRect(100, 70, 20, 1), kBlack), 20);
    EXPECT_EQ(CountPixels(image, QRect(100, 63, 20, 6), kBlack), 0);
}

TEST_F(CadConnectors, ConnectorsFollowMovedShapesAndGroups)
{
    TMyLinkLine *link = Connect(A, 0, B, 1);
    TMyLinkLine *loose = Connect(A, 1, B, 0);
    loose->RemoveSrcLink();
    const TMyPointArray looseBefore = loose->Points();

    A->DragChangeValuedxdy(0, 100);
    Cad.ChangeLinkShapes(A);
    ASSERT_TRUE(Alternates(link->Points()));
    EXPECT_EQ(link->Points().front(), (TMyPoint{80, 170}));
    EXPECT_EQ(link->Points().back(), (TMyPoint{250, 100}));
    // Still listed by A, but no longer bound to it: left alone.
    EXPECT_EQ(loose->Points(), looseBefore);

    // Through a group: the member moved, the group is told.
    TMyShape *members[] = {B};
    TMyShape *group = Cad.GetShapeByID(Cad.GroupShapes(members, false));
    ASSERT_NE(group, nullptr);
    B->DragChangeValuedxdy(40, 0);
    Cad.ChangeLinkShapes(group);
    EXPECT_EQ(link->Points().back(), (TMyPoint{290, 100}));
    EXPECT_TRUE(Alternates(link->Points()));
    EXPECT_EQ(loose->Points().back(), (TMyPoint{260, 70}));
}

// A file keeps each shape's number from when it was made, which need not be its place,
// and a load leaves it so. Binding names places, so a connector bound after such a load
// joins the shape asked for and follows it.
TEST_F(CadConnectors, BindingNamesListPlacesWhateverTheShapesNumbers)
{
    auto *link = AddByCode<TMyLinkLine>(Cad, TDrawTool::SpLinkLine, {{0, 0}, {1, 1}});
    A->SetShapeNo(1); // as a writer that never renumbers stores them
    B->SetShapeNo(2);
    link->SetShapeNo(3);
    ASSERT_TRUE(link->CreateSrcLink(A->ShapeId(), 0));
    EXPECT_EQ(link->StartSpNo(), 0);
    EXPECT_EQ(link->GetStartShape(), A);
    EXPECT_EQ(A->LinkShapes(), std::vector<std::int32_t>{2});
    EXPECT_EQ(link->Points().front(), (TMyPoint{80, 70}));
    ASSERT_TRUE(link->CreateSrcLink(B->ShapeId(), 0)); // rebinding leaves A's list
    EXPECT_TRUE(A->LinkShapes().empty());
    EXPECT_EQ(B->LinkShapes(), std::vector<std::int32_t>{2});
    B->DragChangeValuedxdy(0, 100);
    Cad.ChangeLinkShapes(B);
    EXPECT_EQ(link->Points().front(), (TMyPoint{220, 170}));
}

// Markers made from given corners, by tool or from a copied shape, carry one link point
// at their centre, where connectors attach.
TEST_F(CadConnectors, MarkersMadeByCodeTakeConnectorsAtTheirCentre)
{
    Cad.SetZoom(2);
    TMyShape *marks[] = {
        AddByCode(Cad, TDrawTool::SpLinkPoint, {{120, 66}, {128, 74}}, 0.5),
        Cad.GetShapeByID(
            Cad.AddShapeByCode2(TDrawTool::SpLineLinkLine, {}, {150, 10}, 20, 10, 0, 0, {})),
        Cad.CreateAddShapeByName(QStringLiteral("TMyLinkPoint"), Box(300, 10, 310, 30))};
    const TMyPoint centres[] = {{124, 70}, {160, 15}, {305, 20}};
    for (int i = 0; i < 3; ++i) {
        ASSERT_NE(marks[i], nullptr) << i;
        const TMyPoint c = centres[i];
        EXPECT_EQ(marks[i]->LinkPoints(), TMyPointArray{c}) << i;
        auto *link = AddByCode<TMyLinkLine>(Cad, TDrawTool::SpLinkLine, {{0, 0}, {1, 1}});
        EXPECT_TRUE(link->CreateSrcLink(marks[i]->ShapeId(), 0)) << i;
        EXPECT_EQ(link->GetStartPoint(), (TMyPoint{2 * c.X, 2 * c.Y})) << i;
    }
}

TEST_F(CadConnectors, LinkPointUnderTheMouseIsFoundAndHighlighted)
{
    Cad.grab();
    TCanvas *screen = Cad.ScreenCanvas();
    ASSERT_NE(screen, nullptr);
    screen->Flush();
    const QImage before = Cad.ScreenImage().copy();

    // The shape number and link point found at p, or {-1, -1}.
    const auto found = [this](TPoint p) {
        std::int32_t no = 7, id = 7;
        const bool hit = Cad.InWhichShapeWhichHotLinkId(p, no, id);
        EXPECT_EQ(hit, no >= 0);
        return std::pair{no, id};
    };
    const auto noOf = [this](TMyShape *s) { return Cad.GetShapeNoInMyShapes(s); };
    // Within the square of B's second link point (250, 100): 245 <= x, y < 255.
    EXPECT_EQ(found({245, 104}), std::pair(noOf(B), 1));
    screen->Flush();
    EXPECT_GT(CountPixels(Cad.ScreenImage(), QRect(243, 93, 15, 15), kRed), 20);

    // Off the squares: nothing, and the highlight goes.
    EXPECT_EQ(found({255, 100}), std::pair(-1, -1));
    screen->Flush();
    EXPECT_TRUE(ImagesEqual(Cad.ScreenImage(), before));

    // The topmost of two shapes sharing a link point wins; a hidden layer's shapes are
    // passed over.
    TMyShape *top = Box(60, 60, 90, 90);
    top->LinkPoints() = {{10, 10}, {80, 70}};
    EXPECT_EQ(found({80, 70}), std::pair(noOf(top), 1));
    top->SetLayerId(Cad.NewLayer(QStringLiteral("Hidden"), false));
    EXPECT_EQ(found({80, 70}), std::pair(noOf(A), 0));

    // Switching the highlight off restores the screen; a second time does nothing.
    for (int twice = 0; twice < 2; ++twice) {
        Cad.ClearAllLinkHot();
        screen->Flush();
        EXPECT_TRUE(ImagesEqual(Cad.ScreenImage(), before)) << twice;
    }
}

TEST_F(CadConnectors, MainShapeOfAPressIsTheLinkPointElseTheNearestOneOfTheShapeHit)
{
    std::int32_t id = 7;
    // (45, 50) is inside A, nearer its top link point (50, 40) than its side one (80, 70).
    const std::tuple<TPoint, TMyShape *, int> presses[] = {
        {{251, 99}, B, 1}, {{45, 50}, A, 1}, {{75, 90}, A, 0}, {{150, 150}, nullptr, -1}};
    for (auto [p, shape, point] : presses) {
        EXPECT_EQ(Cad.GetMainShape(p, id), shape) << p.X << "," << p.Y;
        EXPECT_EQ(id, point) << p.X << "," << p.Y;
    }
    // A shape without link points is not a place to start from.
    Box(140, 140, 160, 160);
    EXPECT_EQ(Cad.GetMainShape({150, 150}, id), nullptr);
}

} // namespace
} // namespace tessal::test
