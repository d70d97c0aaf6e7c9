// SPDX-License-Identifier: MIT
// Wide outlines with round joins and ends: the pixel rule, checked against a direct
// evaluation of the distance at a nudged pixel centre, and its independence of where and in
// how many parts the stroke is drawn.
#include "canvas_helpers.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

using namespace tessal;
using namespace tessal::test;

namespace {

constexpr unsigned Paper = 0xFFFFFF;
constexpr unsigned Pen = 0x404040; // grey: the same in either channel order

// The rule evaluated naively: a pixel is inked when the centre, nudged a hair right and a
// hair's hair down, lies closer than half the width to a segment. The nudge decides the
// centres that lie exactly at half the width, and is far smaller than any other gap that
// integer points of this size can produce.
bool Reference(const std::vector<TPoint> &points, int width, int px, int py)
{
    const long double x = px + 1e-6L, y = py + 1e-9L, r = width / 2.0L;
    for (std::size_t i = 0; i + 1 < points.size(); ++i) {
        const long double ax = points[i].X, ay = points[i].Y;
        const long double dx = points[i + 1].X - ax, dy = points[i + 1].Y - ay;
        const long double len2 = dx * dx + dy * dy;
        long double t = len2 > 0 ? ((x - ax) * dx + (y - ay) * dy) / len2 : 0;
        t = std::clamp(t, 0.0L, 1.0L);
        const long double ex = ax + t * dx - x, ey = ay + t * dy - y;
        if (ex * ex + ey * ey < r * r)
            return true;
    }
    return false;
}

QImage DrawPolyline(const std::vector<TPoint> &points, int width, int size, bool closed = false)
{
    return Painted(size, size, [&](TCanvas &c) {
        c.Pen() = TPen{TColor(Pen), TPenMode::pmCopy, TPenStyle::psSolid, width};
        if (closed)
            c.StrokeClosedFigure(points);
        else
            c.Polyline(points);
    });
}

// Pixels where the stroke of points, drawn open or closed, disagrees with the rule; the first
// one is reported with what.
int Mismatches(std::vector<TPoint> points, int width, int size, bool closed,
               const std::string &what)
{
    const QImage image = DrawPolyline(points, width, size, closed);
    if (closed)
        points.push_back(points.front());
    int mismatches = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if ((Rgb(image, x, y) == Pen) != Reference(points, width, x, y) && mismatches++ == 0)
                ADD_FAILURE() << what << ", width " << width << ": pixel " << x << ", " << y;
    return mismatches;
}

std::vector<TPoint> RandomPolyline(std::mt19937 &rng, int size)
{
    std::uniform_int_distribution<int> coord(-8, size + 8), count(2, 6);
    std::vector<TPoint> points(std::size_t(count(rng)));
    for (TPoint &p : points)
        p = {coord(rng), coord(rng)};
    return points;
}

} // namespace

// Random polylines, partly off the image, follow the rule. So do the chains that outlines of
// ellipses and curves are (steps of a few pixels) and rectangles' long straight sides, which
// take shortcuts of their own: walks of short steps, now and then a long straight one down or
// across or a repeated point, under pens up to past the widest the shortcuts serve.
TEST(RoundStroke, PolylinesAndShortStepsAndStraightRunsFollowThePixelRule)
{
    std::mt19937 rng(2026);
    int mismatches = 0;
    for (int round = 0; round < 300; ++round) {
        mismatches += Mismatches(RandomPolyline(rng, 48), 2 + round % 6, 48, round % 3 == 0,
                                 "polyline " + std::to_string(round));
    }
    rng.seed(31);
    constexpr int Size = 64;
    std::uniform_int_distribution<int> step(-14, 14), coin(0, 6), run(14, 40), start(8, Size - 8);
    for (int round = 0; round < 200; ++round) {
        std::vector<TPoint> points{{start(rng), start(rng)}};
        for (int i = 0; i < 12; ++i) {
            const TPoint last = points.back();
            const int pick = coin(rng);
            if (pick == 0)
                points.push_back({last.X, last.Y + (last.Y < Size / 2 ? run(rng) : -run(rng))});
            else if (pick == 1)
                points.push_back({last.X + (last.X < Size / 2 ? run(rng) : -run(rng)), last.Y});
            else if (pick == 2)
                points.push_back(last);
            else
                points.push_back({last.X + step(rng), last.Y + step(rng)});
        }
        mismatches += Mismatches(points, 2 + round % 18, Size, round % 4 == 0,
                                 "round " + std::to_string(round));
    }
    // A chain that stays on one point is a disc, closed or not.
    for (int width = 2; width <= 5; ++width)
        for (const bool closed : {false, true})
            mismatches += Mismatches({{20, 21}, {20, 21}, {20, 21}}, width, Size, closed, "dot");
    EXPECT_EQ(mismatches, 0);
}

// The same stroke in parts and far from the origin gives the same pixels. In a mode where
// painting twice undoes the first time, the overlapping capsules of a wide polyline must
// still touch every pixel once: the xor picture inks exactly the copy picture.
TEST(RoundStroke, SamePixelsInPartsFarFromTheOriginAndInXor)
{
    std::mt19937 rng(7);
    constexpr int Size = 40;
    for (int round = 0; round < 60; ++round) {
        const std::vector<TPoint> points = RandomPolyline(rng, Size);
        const int width = 2 + round % 4;
        const QImage whole = DrawPolyline(points, width, Size);
        const QImage xored = Painted(Size, Size, [&](TCanvas &c) {
            c.Pen() = TPen{TColor(Pen), TPenMode::pmXor, TPenStyle::psSolid, width};
            c.Polyline(points);
        });
        ASSERT_EQ(Ink(xored, Paper), Ink(whole, Paper)) << "round " << round;
        for (const TPoint &p : Ink(xored, Paper))
            ASSERT_EQ(Rgb(xored, p.X, p.Y), Paper ^ Pen);
        // The same stroke on a canvas whose image starts far away, clipped to a quarter.
        const TPoint far(1'000'000 - 13, -2'000'000 + 7);
        std::vector<TPoint> moved = points;
        for (TPoint &p : moved)
            p = {p.X + far.X, p.Y + far.Y};
        const TRect quarter{far.X + 10, far.Y + 5, far.X + 30, far.Y + 25};
        const QImage part = Painted(Size, Size, [&](TCanvas &c) {
            c.SetOrigin(far);
            c.SelectClipRect(&quarter);
            c.Pen() = TPen{TColor(Pen), TPenMode::pmCopy, TPenStyle::psSolid, width};
            c.Polyline(moved);
        });
        for (int y = 0; y < Size; ++y)
            for (int x = 0; x < Size; ++x) {
                const bool inside = x >= 10 && x < 30 && y >= 5 && y < 25;
                ASSERT_EQ(Rgb(part, x, y), inside ? Rgb(whole, x, y) : Paper)
                    << "round " << round << " at " << x << ", " << y;
            }
    }
}

namespace {

// Winding number of the polygon about (x, y), by the crossings of the row to the right.
int WindingAt(const std::vector<TPoint> &polygon, long double x, long double y)
{
    int winding = 0;
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        const TPoint a = polygon[i], b = polygon[(i + 1) % polygon.size()];
        if ((a.Y <= y) == (b.Y <= y))
            continue;
        const long double cx = a.X + (y - a.Y) * (b.X - a.X) / (b.Y - a.Y);
        if (cx > x)
            winding += b.Y > a.Y ? 1 : -1;
    }
    return winding;
}

} // namespace

TEST(PolygonFill, RandomPolygonsFollowThePixelRuleAndTheHitTest)
{
    std::mt19937 rng(99);
    constexpr int Size = 40;
    int mismatches = 0, hitMismatches = 0;
    for (int round = 0; round < 400; ++round) {
        std::vector<TPoint> polygon = RandomPolyline(rng, Size);
        polygon.push_back({polygon[0].X + 7, polygon[1].Y - 5});
        const TFillMode mode = round % 2 ? TFillMode::fmWinding : TFillMode::fmAlternate;
        const QImage image = Painted(Size, Size, [&](TCanvas &c) {
            c.FillPolygon(polygon, mode, TBrush{TColor(Pen), TBrushStyle::bsSolid, {}});
        });
        const TRegion region(polygon, mode);
        for (int y = 0; y < Size; ++y)
            for (int x = 0; x < Size; ++x) {
                // The centre nudged a hair right and a hair's hair down decides edge centres.
                const int w = WindingAt(polygon, x + 0.5L + 1e-6L, y + 0.5L + 1e-9L);
                const bool inside = mode == TFillMode::fmWinding ? w != 0 : (w & 1) != 0;
                const bool inked = Rgb(image, x, y) == Pen;
                if (inked != inside && mismatches++ == 0)
                    ADD_FAILURE() << "round " << round << ": pixel " << x << ", " << y;
                hitMismatches += inked != region.Contains({x, y});
            }
    }
    EXPECT_EQ(mismatches, 0);
    EXPECT_EQ(hitMismatches, 0);
}

// Chains are drawn from their points without a path where they can be; a recorded path of
// the same figure, stroked, must give the same pixels for every kind of pen.
TEST(RoundStroke, ChainsMatchTheirRecordedPaths)
{
    std::mt19937 rng(5);
    constexpr int Size = 40;
    for (int round = 0; round < 120; ++round) {
        const std::vector<TPoint> points = RandomPolyline(rng, Size);
        const bool closed = round % 2 == 1, geometric = round % 3 == 0;
        const TPen pen{TColor(Pen), TPenMode::pmCopy, TPenStyle::psSolid, 1 + round / 2 % 4};
        const auto setUp = [&](TCanvas &c) {
            c.Pen() = pen;
            if (geometric)
                c.SetGeometricPen(TPenJoin::pjRound, TPenEndCap::pecRound);
        };
        const QImage direct = Painted(Size, Size, [&](TCanvas &c) {
            setUp(c);
            if (closed)
                c.StrokeClosedFigure(points);
            else
                c.Polyline(points);
        });
        const QImage recorded = Painted(Size, Size, [&](TCanvas &c) {
            setUp(c);
            c.BeginPath();
            c.MoveTo(points[0].X, points[0].Y);
            for (std::size_t i = 1; i < points.size(); ++i)
                c.LineTo(points[i].X, points[i].Y);
            if (closed)
                c.CloseFigure();
            c.EndPath();
            c.StrokePath();
        });
        ASSERT_EQ(direct, recorded)
            << "round " << round << ", width " << pen.Width << (geometric ? ", geometric" : "");
    }
}
