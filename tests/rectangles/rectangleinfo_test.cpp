// SPDX-License-Identifier: MIT
// The area and side-length texts of rectangles and ellipses, byte for byte.
#include "shapes/testhost.h"

#include <tessal/shapes/rectangle.h>

#include <gtest/gtest.h>

namespace tessal::test {
namespace {

TEST(RectangleInfo, AreaTextPerUnitIsStoredAsInfo)
{
    TTestHost host;
    auto r = DrawnBy<TMyRectangle>(host, {10, 10}, {110, 60}); // 100 x 50
    auto e = DrawnBy<TMyEllipse>(host, {10, 10}, {110, 60});
    struct TCase
    {
        TUnits Unit;
        double Ratio;
        const char *Rectangle;
        const char *Ellipse;
    } cases[] = {
        // No blank before the suffix; the number is right-aligned in 9 characters.
        {TUnits::pixel, 1, "Area=  5000.00pixel(s)2", "Area=  3926.99pixel(s)2"},
        {TUnits::pixel, 2, "Area= 20000.00pixel(s)2", "Area= 15707.96pixel(s)2"},
        // 5000 / 96^2 square inches = 350.02 mm2 at 96 pixels per inch.
        {TUnits::mm, 1, "Area=   350.02mm2", "Area=   274.91mm2"},
        {TUnits::cm, 1, "Area=     3.50cm2", "Area=     2.75cm2"},
        {TUnits::dm, 1, "Area=     0.04dm2", "Area=     0.03dm2"},
        {TUnits::m, 2, "Area=     0.00m2", "Area=     0.00m2"},
        {TUnits::inch, 1, "Area=     0.54inch2", "Area=     0.43inch2"},
    };
    for (const TCase &c : cases) {
        host.Unit = c.Unit;
        host.RatioValue = c.Ratio;
        EXPECT_EQ(r->GetInfo(), QLatin1String(c.Rectangle));
        EXPECT_EQ(r->Info(), QLatin1String(c.Rectangle));
        EXPECT_EQ(e->GetInfo(), QLatin1String(c.Ellipse));
        EXPECT_EQ(e->Info(), QLatin1String(c.Ellipse));
    }
    // The area is the shape's own, not its turned bounding box's, and ignores the zoom.
    host.Unit = TUnits::pixel;
    host.RatioValue = 1;
    host.ZoomValue = 3;
    r->RotateChangeValueByAngle(r->GetCenterPoint(), 0.5);
    EXPECT_EQ(r->GetInfo(), QLatin1String("Area=  5000.00pixel(s)2"));
}

// The width and the height of the box spanned by two screen points, with the kept
// oddities: cm, dm and m still say "mm", and "inch" is a tenth-inch count.
TEST(RectangleInfo, SideLengthTextsPerUnit)
{
    TTestHost host;
    TMyRectangle r(&host);
    struct TCase
    {
        TUnits Unit;
        double Zoom, Ratio;
        const char *Text;
    } cases[] = {
        {TUnits::pixel, 1, 1, "m=   100.00 pixel(s)\rn=    50.00pixel(s)"},
        {TUnits::pixel, 2, 1, "m=    50.00 pixel(s)\rn=    25.00pixel(s)"},
        {TUnits::mm, 1, 1, "m=    26.46 mm\rn=    13.23mm"},
        {TUnits::mm, 2, 3, "m=    39.69 mm\rn=    19.84mm"},
        {TUnits::cm, 1, 1, "m=     2.65 mm\rn=     1.32mm"},
        {TUnits::dm, 1, 1, "m=     0.26 mm\rn=     0.13mm"},
        {TUnits::m, 1, 1, "m=     0.03 mm\rn=     0.01mm"},
        {TUnits::inch, 1, 1, "m=    10.42 in\rn=     5.21in"},
    };
    for (const TCase &c : cases) {
        host.Unit = c.Unit;
        host.ZoomValue = c.Zoom;
        host.RatioValue = c.Ratio;
        // From (110, 60) to (10, 10): m runs along the first point's row, n up the
        // second point's column; the direction does not matter.
        EXPECT_EQ(r.GetLengthByUnit({110, 60}, {10, 10}), QLatin1String(c.Text));
        EXPECT_EQ(r.GetLengthByUnit({10, 10}, {110, 60}), QLatin1String(c.Text));
    }
}

} // namespace
} // namespace tessal::test
