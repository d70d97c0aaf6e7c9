// SPDX-License-Identifier: MIT
// Link marks and junctions: placement by one click, their link point, and their pictures at
// two zooms.
#include "connectorhost.h"

#include <gtest/gtest.h>

namespace tessal::test {
namespace {

constexpr unsigned kBluePixel = 0x0000FF;

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
        EXPECT_EQ(CountPixels(image, image.rect(), kBluePixel), 2 * n - 1) << z;
        for (int i = 0; i < n; ++i) {
            EXPECT_EQ(PixelAt(image, lo + i, lo + i), kBluePixel) << z << " " << i;
            EXPECT_TRUE(i == 0 || PixelAt(image, lo + n - i, lo + i) == kBluePixel)
                << z << " " << i;
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
            EXPECT_EQ(PixelAt(image, c + d, c), kBluePixel) << zoom << " dot " << d;
            EXPECT_EQ(PixelAt(image, c, c - d), kBluePixel) << zoom << " dot " << d;
        }
        // Between dot and ring: white.
        for (int d = inner + 1; d < outer - 2; ++d) {
            EXPECT_EQ(PixelAt(image, c + d, c), kWhite) << zoom << " gap " << d;
            EXPECT_EQ(PixelAt(image, c, c + d), kWhite) << zoom << " gap " << d;
        }
        // The ring's left and top extremes lie on the box's left and top edges.
        EXPECT_EQ(PixelAt(image, c - outer, c), kBluePixel) << zoom;
        EXPECT_EQ(PixelAt(image, c, c - outer), kBluePixel) << zoom;
        EXPECT_EQ(PixelAt(image, c - outer - 1, c), kWhite) << zoom;
        EXPECT_EQ(PixelAt(image, c + outer + 1, c), kWhite) << zoom;
    }
}

} // namespace
} // namespace tessal::test
