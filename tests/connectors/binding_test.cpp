// SPDX-License-Identifier: MIT
// Connector ends: binding and unbinding with the connector lists, end positions read live
// from link points, the orientation rule, switching the drawing style, and drawing. Link
// marks and junctions: placement by one click, their link point, and their pictures at two
// zooms.
#include "connectorhost.h"

#include <tessal/shapes/shapetools.h>

#include <gtest/gtest.h>

namespace tessal::test {
namespace {

// Two boxes with link points at the middles of their facing sides and one on top of each,
// and a free connector of five points.
class ConnectorBinding : public ::testing::Test
{
protected:
    TClassHost Host{300, 200};
    TMyRectangle *A = PlaceBox(Host, 20, 40, 80, 100, {{80, 70}, {50, 40}});
    TMyRectangle *B = PlaceBox(Host, 180, 60, 240, 120, {{180, 90}, {210, 60}});
    TMyLinkLine *Link = PlaceConnector(Host, {{10, 10}, {30, 10}, {30, 30}, {50, 30}, {290, 190}});
};

TEST_F(ConnectorBinding, RefusedIndexOrShapeChangesNothing)
{
    const TMyPointArray before = Link->Points();
    const int repaints = Host.Repaints;
    // Two link points: 2 is one past the last; -1 and an unknown identity are refused too.
    EXPECT_FALSE(Link->CreateSrcLink(A->ShapeId(), 2));
    EXPECT_FALSE(Link->CreateSrcLink(A->ShapeId(), -1));
    EXPECT_FALSE(Link->CreateDestLink(B->ShapeId(), 2));
    EXPECT_FALSE(Link->CreateDestLink(999, 0));
    EXPECT_TRUE(Link->StartSpNo() == -1 && Link->StartSpPtId() == -1);
    EXPECT_TRUE(Link->EndSpNo() == -1 && Link->EndSpPtId() == -1);
    EXPECT_TRUE(A->LinkShapes().empty() && B->LinkShapes().empty());
    EXPECT_EQ(Link->Points(), before);
    EXPECT_EQ(Host.Repaints, repaints);

    // The last index is accepted.
    EXPECT_TRUE(Link->CreateSrcLink(A->ShapeId(), 1));
    EXPECT_TRUE(Link->StartSpNo() == A->ShapeNo() && Link->StartSpPtId() == 1);
    EXPECT_EQ(A->LinkShapes(), std::vector<std::int32_t>{Link->ShapeNo()});
    EXPECT_GT(Host.Repaints, repaints);
}

TEST_F(ConnectorBinding, RebindingMovesTheConnectorUnbindingKeepsTheNumber)
{
    const std::int32_t self = Link->ShapeNo();
    // Another connector already listed by A must stay listed.
    A->LinkShapes() = {7};
    ASSERT_TRUE(Link->CreateSrcLink(A->ShapeId(), 0));
    EXPECT_EQ(A->LinkShapes(), (std::vector<std::int32_t>{7, self}));
    EXPECT_EQ(Link->GetStartShape(), A);

    ASSERT_TRUE(Link->CreateSrcLink(B->ShapeId(), 1));
    EXPECT_EQ(A->LinkShapes(), std::vector<std::int32_t>{7});
    EXPECT_EQ(B->LinkShapes(), std::vector<std::int32_t>{self});
    EXPECT_EQ(Link->GetStartShape(), B);

    // Binding the end to the same shape lists the connector once.
    ASSERT_TRUE(Link->CreateDestLink(B->ShapeId(), 0));
    EXPECT_EQ(B->LinkShapes(), std::vector<std::int32_t>{self});
    EXPECT_EQ(Link->GetEndShape(), B);

    // Setting the start free keeps the number in B's list, and the end still uses it.
    Link->RemoveSrcLink();
    EXPECT_TRUE(Link->StartSpPtId() == -1 && Link->GetStartShape() == nullptr);
    EXPECT_EQ(Link->GetEndShape(), B);
    Link->RemoveAllLink();
    EXPECT_TRUE(Link->EndSpPtId() == -1 && Link->GetEndShape() == nullptr);
    EXPECT_EQ(B->LinkShapes(), std::vector<std::int32_t>{self});
}

TEST_F(ConnectorBinding, EndsReadTheLinkPointsLiveElseTheOwnPoints)
{
    Host.ZoomValue = 2;
    // Free ends: the own first and last points, zoomed.
    EXPECT_EQ(Link->GetStartPoint(), (TMyPoint{20, 20}));
    EXPECT_EQ(Link->GetEndPoint(), (TMyPoint{580, 380}));

    ASSERT_TRUE(Link->CreateSrcLink(A->ShapeId(), 0));
    ASSERT_TRUE(Link->CreateDestLink(B->ShapeId(), 1));
    EXPECT_EQ(Link->GetStartPoint(), (TMyPoint{160, 140}));
    EXPECT_EQ(Link->GetEndPoint(), (TMyPoint{420, 120}));

    // Moving a bound shape (screen offsets at zoom 2) moves the end with it, before any
    // re-routing, and the route drawn meets the moved link point.
    A->DragChangeValuedxdy(30, -10);
    EXPECT_EQ(Link->GetStartPoint(), (TMyPoint{190, 130}));
    EXPECT_EQ(Link->DisplayRoute().front(), (TMyPoint{190, 130}));
    Link->UpdateRoute();
    EXPECT_EQ(Link->GetPointInZoom(0), (TMyPoint{190, 130}));
    EXPECT_EQ(Link->GetPointInZoom(Link->GetPointsCount() - 1), (TMyPoint{420, 120}));

    // A binding that names a link point the shape no longer has, or a shape that is not
    // there, falls back to the own point.
    A->LinkPoints().clear();
    EXPECT_EQ(Link->GetStartPoint(), Link->GetPointInZoom(0));
    Link->SetEndSpNo(99);
    EXPECT_EQ(Link->GetEndPoint(), Link->GetPointInZoom(Link->GetPointsCount() - 1));
    // No points and a free end: the origin.
    TMyLinkLine empty(&Host);
    EXPECT_EQ(empty.GetStartPoint(), (TMyPoint{0, 0}));
}

TEST(ConnectorOrientation, IsLineHVCountsTiesAsHorizontal)
{
    // {from, to, 1 horizontal or 2 vertical}
    const std::tuple<TMyPoint, TMyPoint, std::int32_t> cases[] = {
        {{0, 0}, {5, 5}, 1},         {{0, 0}, {5, 6}, 2}, {{0, 0}, {-6, 5}, 1},
        {{3, 3}, {3, 3}, 1},         {{0, 0}, {0, 1}, 2}, {{10, 0}, {0, -10}, 1},
        {{0, 0}, {0.5f, -0.75f}, 2},
    };
    for (auto [a, b, expected] : cases)
        EXPECT_EQ(TMyLinkLine::IsLineHV(a, b), expected) << b.X << "," << b.Y;
}

TEST_F(ConnectorBinding, StyleSwitchKeepsTheEndsOrRoutesBetweenThem)
{
    Link->SetLinkLineDrawStyle(TLinkLineDrawStyle::lldsFree);
    EXPECT_EQ(Link->Points(), (TMyPointArray{{10, 10}, {290, 190}}));
    EXPECT_EQ(Link->DisplayRoute(), (std::vector<TMyPoint>{{10, 10}, {290, 190}}));

    // Back to orthogonal: routed at once between the same ends, whatever was pending.
    Link->SetNeedsReroute(true);
    Link->SetLinkLineDrawStyle(TLinkLineDrawStyle::lldsHV);
    EXPECT_FALSE(Link->NeedsReroute());
    const TMyPointArray &route = Link->Points();
    EXPECT_TRUE(Alternates(route));
    EXPECT_EQ(route.front(), (TMyPoint{10, 10}));
    EXPECT_EQ(route.back(), (TMyPoint{290, 190}));

    // While a drawing is read the route waits for the next drawing.
    Link->SetLinkLineDrawStyle(TLinkLineDrawStyle::lldsFree);
    Host.Loading = true;
    Link->SetLinkLineDrawStyle(TLinkLineDrawStyle::lldsHV);
    EXPECT_TRUE(Link->NeedsReroute());
    EXPECT_EQ(Link->Points(), (TMyPointArray{{10, 10}, {290, 190}}));
    EXPECT_TRUE(Alternates(Link->DisplayRoute()));
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

    QImage image = Painted(*link, 300, 200);
    for (int x = 82; x < 178; ++x)
        ASSERT_EQ(PixelAt(image, x, 70), kBlue) << x;
    // The end dots reach two pixels above and below each end; the bare line does not.
    for (int x : {80, 180})
        for (int y : {68, 72})
            EXPECT_EQ(PixelAt(image, x, y), kBlue) << x << "," << y;
    EXPECT_EQ(PixelAt(image, 130, 68), kWhite);

    // B moves down: the route leaves A to the right, turns down and comes in level with B's
    // link point. A head on the last point replaces the dot there.
    b->DragChangeValuedxdy(0, 60);
    link->SetArrowStyle(TArrowStyle::ALeft);
    image = Painted(*link, 300, 200);
    const std::vector<TMyPoint> route = link->DisplayRoute();
    ASSERT_EQ(route.size(), 4u);
    EXPECT_TRUE(Alternates(route));
    EXPECT_EQ(route.front(), (TMyPoint{80, 70}));
    EXPECT_EQ(route.back(), (TMyPoint{180, 130}));
    EXPECT_TRUE(route[1].X > 80 + RouteStep - 1 && route[1].X < 180 - RouteStep + 1);
    const int legX = int(route[1].X);
    for (int y = 75; y < 125; ++y)
        ASSERT_EQ(PixelAt(image, legX, y), kBlue) << y;
    // A 30-pixel head of 10 degrees each side opens about 5 pixels from the line at its base.
    EXPECT_EQ(PixelAt(image, 155, 126), kBlue);
    EXPECT_EQ(PixelAt(image, 180, 128), kWhite);
}

TEST(LinkMark, OneClickPlacesTheSquareAndTheLinkPoint)
{
    TClassHost host;
    host.ZoomValue = 2;
    TMyLinkPoint mark(&host);
    mark.AddPointByMouse({50, 60});
    // Size 8 screen pixels at zoom 2: 4 document units about the click.
    EXPECT_EQ(mark.Points(), (TMyPointArray{{23, 28}, {27, 28}, {27, 32}, {23, 32}}));
    EXPECT_EQ(mark.LinkPoints(), (TMyPointArray{{25, 30}}));
    EXPECT_TRUE(mark.IsDrawingFinished(Qt::LeftButton, {50, 60}));
    mark.AddPointByMouse({80, 90});
    EXPECT_EQ(mark.GetPointsCount() + mark.GetLinkPointsCount(), 5);

    // Corners set by code get their link point once the drawing is finished.
    TMyLinkPoint byCode(&host);
    MakeBox(byCode, 10, 20, 18, 28);
    TPoint end{};
    byCode.Drawed({}, end);
    byCode.Drawed({}, end);
    EXPECT_EQ(byCode.LinkPoints(), (TMyPointArray{{14, 24}}));
}

// The two diagonals, each covering its start pixel but not its end pixel; they share the
// centre pixel. Placed at zoom 1 and drawn at zoom 1 and 2.
TEST(LinkMark, DiagonalsAtTwoZooms)
{
    TClassHost host;
    host.HostPen.Color = clBlue;
    host.HostBrush.Color = clRed;
    host.HostBrush.Style = TBrushStyle::bsSolid;
    TMyLinkPoint mark(&host);
    mark.AddPointByMouse({50, 50});

    // Which end pixel a line heading down to the left covers is the canvas's business; the
    // pixels between the ends are the mark's. The red brush never shows.
    for (int z : {1, 2}) {
        host.ZoomValue = z;
        const QImage image = Painted(mark);
        const int lo = 46 * z, n = 8 * z;
        EXPECT_EQ(CountPixels(image, image.rect(), kBlue), 2 * n - 1) << z;
        for (int i = 0; i < n; ++i) {
            EXPECT_EQ(PixelAt(image, lo + i, lo + i), kBlue) << z << " " << i;
            EXPECT_TRUE(i == 0 || PixelAt(image, lo + n - i, lo + i) == kBlue) << z << " " << i;
        }
        EXPECT_EQ(PixelAt(image, lo + n, lo + n), kWhite) << z;
        EXPECT_EQ(CountPixels(image, image.rect(), kRed), 0);
    }
    host.ZoomValue = 1;
    const QImage one = Painted(mark);
    for (TPoint p : {TPoint{50, 46}, TPoint{50, 52}, TPoint{46, 50}})
        EXPECT_EQ(PixelAt(one, p.X, p.Y), kWhite) << p.X << "," << p.Y;
}

// A ring of diameter Size and a filled dot of half that diameter, both in the pen colour,
// scaled with the zoom.
TEST(JunctionMark, RingAndDotAtTwoZooms)
{
    TClassHost host;
    host.HostPen.Color = clBlue;
    TMyLineLinkLine junction(&host);
    junction.SetSize(20);
    junction.AddPointByMouse({50, 50});
    EXPECT_EQ(junction.LinkPoints(), (TMyPointArray{{50, 50}}));

    for (int zoom : {1, 2}) {
        host.ZoomValue = zoom;
        const QImage image = Painted(junction);
        const int c = 50 * zoom, outer = 10 * zoom, inner = 5 * zoom;
        // Dot: solid out to just inside its radius.
        for (int d = 0; d < inner - 1; ++d) {
            EXPECT_EQ(PixelAt(image, c + d, c), kBlue) << zoom << " dot " << d;
            EXPECT_EQ(PixelAt(image, c, c - d), kBlue) << zoom << " dot " << d;
        }
        // Between dot and ring: white.
        for (int d = inner + 1; d < outer - 2; ++d) {
            EXPECT_EQ(PixelAt(image, c + d, c), kWhite) << zoom << " gap " << d;
            EXPECT_EQ(PixelAt(image, c, c + d), kWhite) << zoom << " gap " << d;
        }
        // The ring's left and top extremes lie on the box's left and top edges.
        EXPECT_EQ(PixelAt(image, c - outer, c), kBlue) << zoom;
        EXPECT_EQ(PixelAt(image, c, c - outer), kBlue) << zoom;
        EXPECT_EQ(PixelAt(image, c - outer - 1, c), kWhite) << zoom;
        EXPECT_EQ(PixelAt(image, c + outer + 1, c), kWhite) << zoom;
    }
}

} // namespace
} // namespace tessal::test
