// SPDX-License-Identifier: MIT
// Connector ends: binding and unbinding with the connector lists, end positions read live
// from link points, the orientation rule, switching the drawing style, and drawing.
#include "connectorhost.h"

#include <tessal/shapes/shapetools.h>

#include <gtest/gtest.h>

namespace tessal::test {
namespace {

struct TTwoBoxes
{
    TClassHost Host{300, 200};
    TMyRectangle *A = nullptr;
    TMyRectangle *B = nullptr;
    TMyLinkLine *Link = nullptr;

    TTwoBoxes()
    {
        // Link points at the middles of the facing sides, and one on top of each.
        A = PlaceBox(Host, 20, 40, 80, 100, {{80, 70}, {50, 40}});
        B = PlaceBox(Host, 180, 60, 240, 120, {{180, 90}, {210, 60}});
        Link = PlaceConnector(Host, {{10, 10}, {30, 10}, {30, 30}, {50, 30}, {290, 190}});
    }
};

TEST(ConnectorBinding, RefusedIndexOrShapeChangesNothing)
{
    TTwoBoxes f;
    const TMyPointArray before = f.Link->Points();
    const int repaints = f.Host.Repaints;
    // Two link points: 2 is one past the last; -1 and an unknown identity are refused too.
    EXPECT_FALSE(f.Link->CreateSrcLink(f.A->ShapeId(), 2));
    EXPECT_FALSE(f.Link->CreateSrcLink(f.A->ShapeId(), -1));
    EXPECT_FALSE(f.Link->CreateDestLink(f.B->ShapeId(), 2));
    EXPECT_FALSE(f.Link->CreateDestLink(999, 0));
    EXPECT_TRUE(f.Link->StartSpNo() == -1 && f.Link->StartSpPtId() == -1);
    EXPECT_TRUE(f.Link->EndSpNo() == -1 && f.Link->EndSpPtId() == -1);
    EXPECT_TRUE(f.A->LinkShapes().empty() && f.B->LinkShapes().empty());
    EXPECT_EQ(f.Link->Points(), before);
    EXPECT_EQ(f.Host.Repaints, repaints);

    // The last index is accepted.
    EXPECT_TRUE(f.Link->CreateSrcLink(f.A->ShapeId(), 1));
    EXPECT_TRUE(f.Link->StartSpNo() == f.A->ShapeNo() && f.Link->StartSpPtId() == 1);
    EXPECT_EQ(f.A->LinkShapes(), std::vector<std::int32_t>{f.Link->ShapeNo()});
    EXPECT_GT(f.Host.Repaints, repaints);
}

TEST(ConnectorBinding, RebindingMovesTheConnectorUnbindingKeepsTheNumber)
{
    TTwoBoxes f;
    const std::int32_t self = f.Link->ShapeNo();
    // Another connector already listed by A must stay listed.
    f.A->LinkShapes() = {7};
    ASSERT_TRUE(f.Link->CreateSrcLink(f.A->ShapeId(), 0));
    EXPECT_EQ(f.A->LinkShapes(), (std::vector<std::int32_t>{7, self}));
    EXPECT_EQ(f.Link->GetStartShape(), f.A);

    ASSERT_TRUE(f.Link->CreateSrcLink(f.B->ShapeId(), 1));
    EXPECT_EQ(f.A->LinkShapes(), std::vector<std::int32_t>{7});
    EXPECT_EQ(f.B->LinkShapes(), std::vector<std::int32_t>{self});
    EXPECT_EQ(f.Link->GetStartShape(), f.B);

    // Binding the end to the same shape lists the connector once.
    ASSERT_TRUE(f.Link->CreateDestLink(f.B->ShapeId(), 0));
    EXPECT_EQ(f.B->LinkShapes(), std::vector<std::int32_t>{self});
    EXPECT_EQ(f.Link->GetEndShape(), f.B);

    // Setting the start free keeps the number in B's list, and the end still uses it.
    f.Link->RemoveSrcLink();
    EXPECT_TRUE(f.Link->StartSpPtId() == -1 && f.Link->GetStartShape() == nullptr);
    EXPECT_EQ(f.Link->GetEndShape(), f.B);
    f.Link->RemoveAllLink();
    EXPECT_TRUE(f.Link->EndSpPtId() == -1 && f.Link->GetEndShape() == nullptr);
    EXPECT_EQ(f.B->LinkShapes(), std::vector<std::int32_t>{self});
}

TEST(ConnectorBinding, EndsReadTheLinkPointsLiveElseTheOwnPoints)
{
    TTwoBoxes f;
    f.Host.ZoomValue = 2;
    // Free ends: the own first and last points, zoomed.
    EXPECT_EQ(f.Link->GetStartPoint(), (TMyPoint{20, 20}));
    EXPECT_EQ(f.Link->GetEndPoint(), (TMyPoint{580, 380}));

    ASSERT_TRUE(f.Link->CreateSrcLink(f.A->ShapeId(), 0));
    ASSERT_TRUE(f.Link->CreateDestLink(f.B->ShapeId(), 1));
    EXPECT_EQ(f.Link->GetStartPoint(), (TMyPoint{160, 140}));
    EXPECT_EQ(f.Link->GetEndPoint(), (TMyPoint{420, 120}));

    // Moving a bound shape (screen offsets at zoom 2) moves the end with it, before any
    // re-routing, and the route drawn meets the moved link point.
    f.A->DragChangeValuedxdy(30, -10);
    EXPECT_EQ(f.Link->GetStartPoint(), (TMyPoint{190, 130}));
    EXPECT_EQ(f.Link->DisplayRoute().front(), (TMyPoint{190, 130}));
    f.Link->UpdateRoute();
    EXPECT_EQ(f.Link->GetPointInZoom(0), (TMyPoint{190, 130}));
    EXPECT_EQ(f.Link->GetPointInZoom(f.Link->GetPointsCount() - 1), (TMyPoint{420, 120}));

    // A binding that names a link point the shape no longer has falls back to the own point.
    f.A->LinkPoints().clear();
    EXPECT_EQ(f.Link->GetStartPoint(), f.Link->GetPointInZoom(0));
    // No points and a free end: the origin.
    TMyLinkLine empty(&f.Host);
    EXPECT_EQ(empty.GetStartPoint(), (TMyPoint{0, 0}));
}

TEST(ConnectorBinding, IsLineHVCountsTiesAsHorizontal)
{
    struct TCase
    {
        TMyPoint A, B;
        std::int32_t Expected;
    };
    const TCase cases[] = {
        {{0, 0}, {5, 5}, 1},         {{0, 0}, {5, 6}, 2}, {{0, 0}, {-6, 5}, 1},
        {{3, 3}, {3, 3}, 1},         {{0, 0}, {0, 1}, 2}, {{10, 0}, {0, -10}, 1},
        {{0, 0}, {0.5f, -0.75f}, 2},
    };
    for (const TCase &c : cases)
        EXPECT_EQ(TMyLinkLine::IsLineHV(c.A, c.B), c.Expected) << c.B.X << "," << c.B.Y;
}

TEST(ConnectorStyle, SwitchingKeepsTheEndsOrRoutesBetweenThem)
{
    TTwoBoxes f;
    f.Link->SetLinkLineDrawStyle(TLinkLineDrawStyle::lldsFree);
    EXPECT_EQ(f.Link->Points(), (TMyPointArray{{10, 10}, {290, 190}}));
    EXPECT_EQ(f.Link->DisplayRoute(), (std::vector<TMyPoint>{{10, 10}, {290, 190}}));

    // Back to orthogonal: routed at once between the same ends.
    f.Link->SetLinkLineDrawStyle(TLinkLineDrawStyle::lldsHV);
    EXPECT_FALSE(f.Link->NeedsReroute());
    const TMyPointArray &route = f.Link->Points();
    EXPECT_TRUE(Alternates(route));
    EXPECT_EQ(route.front(), (TMyPoint{10, 10}));
    EXPECT_EQ(route.back(), (TMyPoint{290, 190}));

    // While a drawing is read the route waits for the next drawing.
    f.Link->SetLinkLineDrawStyle(TLinkLineDrawStyle::lldsFree);
    f.Host.Loading = true;
    f.Link->SetLinkLineDrawStyle(TLinkLineDrawStyle::lldsHV);
    EXPECT_TRUE(f.Link->NeedsReroute());
    EXPECT_EQ(f.Link->Points(), (TMyPointArray{{10, 10}, {290, 190}}));
    EXPECT_TRUE(Alternates(f.Link->DisplayRoute()));
}

// Facing link points on one row: the route is the straight segment between them, drawn
// with a dot at each bound end; moved apart vertically it needs one vertical leg.
TEST(ConnectorDraw, RouteBetweenBoundEndsWithEndDotsAndArrowHead)
{
    TClassHost host(300, 200);
    host.HostPen.Color = clBlue;
    TMyRectangle *a = PlaceBox(host, 20, 40, 80, 100, {{80, 70}});
    TMyRectangle *b = PlaceBox(host, 180, 40, 240, 100, {{180, 70}});
    TMyLinkLine *link = PlaceConnector(host, {});
    ASSERT_TRUE(link->CreateSrcLink(a->ShapeId(), 0));
    ASSERT_TRUE(link->CreateDestLink(b->ShapeId(), 0));
    EXPECT_EQ(link->Points(), (TMyPointArray{{80, 70}, {180, 70}}));

    const auto drawn = [&] {
        QImage image = WhiteImage(300, 200);
        TCanvas canvas(&image);
        link->Draw(canvas);
        canvas.Flush();
        return image;
    };
    QImage image = drawn();
    for (int x = 82; x < 178; ++x)
        ASSERT_EQ(PixelAt(image, x, 70), 0x0000FFu) << x;
    // The end dots reach two pixels above and below each end; the bare line does not.
    for (int x : {80, 180})
        for (int y : {68, 72})
            EXPECT_EQ(PixelAt(image, x, y), 0x0000FFu) << x << "," << y;
    EXPECT_EQ(PixelAt(image, 130, 68), 0xFFFFFFu);

    // B moves down: the route leaves A to the right, turns down and comes in level with B's
    // link point. A head on the last point replaces the dot there.
    b->DragChangeValuedxdy(0, 60);
    link->SetArrowStyle(TArrowStyle::ALeft);
    image = drawn();
    const std::vector<TMyPoint> route = link->DisplayRoute();
    ASSERT_EQ(route.size(), 4u);
    EXPECT_TRUE(Alternates(route));
    EXPECT_EQ(route.front(), (TMyPoint{80, 70}));
    EXPECT_EQ(route.back(), (TMyPoint{180, 130}));
    EXPECT_TRUE(route[1].X > 80 + RouteStep - 1 && route[1].X < 180 - RouteStep + 1);
    const int legX = int(route[1].X);
    for (int y = 75; y < 125; ++y)
        ASSERT_EQ(PixelAt(image, legX, y), 0x0000FFu) << y;
    // A 30-pixel head of 10 degrees each side opens about 5 pixels from the line at its base.
    EXPECT_EQ(PixelAt(image, 155, 126), 0x0000FFu);
    EXPECT_EQ(PixelAt(image, 180, 128), 0xFFFFFFu);
}

} // namespace
} // namespace tessal::test
