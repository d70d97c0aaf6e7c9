// SPDX-License-Identifier: MIT
// Rectangles and ellipses on the canvas: filled outlines pixel by pixel, info text, and the
// rubber-band previews of drawing, dragging, resizing and rotating. Groups and combined
// shapes: nothing of their own on the canvas but the info text, and hit inside their box or
// on any member.
#include "shapes/testhost.h"

#include <tessal/geometry/canvasmodes.h>
#include <tessal/shapes/rectangle.h>

#include <gtest/gtest.h>

#include <numbers>
#include <random>

namespace tessal::test {
namespace {

constexpr double kPi = std::numbers::pi;

// A host whose new shapes draw with a blue pen of the given width over a red brush.
void BlueOnRed(TTestHost &host, int penWidth = 1)
{
    host.HostPen.Color = clBlue;
    host.HostPen.Width = penWidth;
    host.HostBrush.Color = clRed;
    host.HostBrush.Style = TBrushStyle::bsSolid;
}

void ExpectNear(TMyPoint actual, TMyPoint expected, double tolerance, const char *what)
{
    EXPECT_NEAR(actual.X, expected.X, tolerance) << what;
    EXPECT_NEAR(actual.Y, expected.Y, tolerance) << what;
}

// What draw puts on a 300 x 300 image.
template <class Draw>
QImage Drawn300(Draw draw)
{
    return Drawn(draw, 300, 300);
}

// The shape's outline as DrawRectangle draws it from its corners, on a 300 x 300 image.
QImage Outline(TMyRectangle &shape)
{
    return Drawn300([&](TCanvas &canvas) {
        std::array<TPoint, 4> pts;
        for (int i = 0; i < 4; ++i)
            pts[std::size_t(i)] = MyPtToPt(shape.GetPointInZoom(i));
        shape.DrawRectangle(canvas, pts);
    });
}

// {x, y, colour} of single pixels.
using TPixels = std::initializer_list<std::tuple<int, int, unsigned>>;

void ExpectPixels(const QImage &image, TPixels px)
{
    for (auto [x, y, rgb] : px)
        EXPECT_EQ(PixelAt(image, x, y), rgb) << x << "," << y;
}

TEST(RectanglePaint, UprightAndTurnedOutlineAndFill)
{
    TTestHost host;
    BlueOnRed(host);
    auto r = DrawnBy<TMyRectangle>(host, {100, 60}, {20, 20});
    const QImage image = Painted(*r);
    const TPixels outline = {
        {60, 20, kBlue},  {100, 40, kBlue}, {60, 60, kBlue},   {20, 40, kBlue},  {20, 20, kBlue},
        {100, 60, kBlue}, {60, 18, kWhite}, {102, 40, kWhite}, {60, 62, kWhite}, {18, 40, kWhite},
    };
    ExpectPixels(image, outline);
    EXPECT_EQ(CountPixels(image, QRect(22, 22, 77, 37), kRed), 77 * 37);

    BlueOnRed(host, 3);
    auto t = DrawnBy<TMyRectangle>(host, {40, 60}, {160, 100});
    const TMyPoint c{100, 80};
    const float a = float(kPi / 6);
    t->RotateChangeValueByAngle(c, a);
    const QImage turned = Painted(*t);
    EXPECT_EQ(PixelAt(turned, 100, 80), kRed);
    // The middles of the four turned sides carry the pen; two corners of the upright
    // rectangle lie outside the turned one.
    for (TMyPoint m :
         {TMyPoint{100, 60}, TMyPoint{160, 80}, TMyPoint{100, 100}, TMyPoint{40, 80}}) {
        const TPoint p = MyPtToPt(RotateAPoint(m, c, a));
        EXPECT_EQ(PixelAt(turned, p.X, p.Y), kBlue) << p.X << "," << p.Y;
    }
    ExpectPixels(turned, {{42, 98, kWhite}, {158, 62, kWhite}});
}

TEST(RectanglePaint, InfoTextUnlessCaptionHiddenOrATextShape)
{
    TTestHost host;
    BlueOnRed(host);
    auto r = DrawnBy<TMyRectangle>(host, {20, 20}, {60, 40});
    r->SetTextPoint({120, 120});
    r->SetInfo("XX");
    const QRect around(100, 105, 40, 30);
    EXPECT_FALSE(AllWhite(Painted(*r), around));
    r->SetCaptionShow(false);
    EXPECT_TRUE(AllWhite(Painted(*r), around));

    // Text shapes draw their own text: the rectangle's drawing leaves it out.
    struct TTextLike : TMyRectangle
    {
        using TMyRectangle::TMyRectangle;
        QString ClassName() const override { return QStringLiteral("TMyText"); }
    } text(&host);
    text.Assign(*r);
    text.SetTextPoint({120, 120});
    text.SetCaptionShow(true);
    const QImage image = Painted(text);
    EXPECT_TRUE(AllWhite(image, around));
    EXPECT_EQ(PixelAt(image, 40, 30), kRed);
}

// The ellipse in the box 20,20 .. 100,60 (document): pen on the four extreme points,
// brush at the centre, the box corners untouched, at zoom 1 and 2 (pen widths do not
// grow with the zoom on screen); turned, the outline follows the angle.
TEST(EllipsePaint, OutlineFillAndUntouchedCornersAtTwoZoomsAndTurned)
{
    for (int z : {1, 2}) {
        SCOPED_TRACE(z);
        TTestHost host(240, 240);
        host.ZoomValue = z;
        BlueOnRed(host);
        auto e = DrawnBy<TMyEllipse>(host, {20 * z, 20 * z}, {100 * z, 60 * z});
        const QImage image = Painted(*e, 240, 240);
        for (TPoint p : {TPoint{60, 60}, TPoint{100, 40}, TPoint{60, 20}, TPoint{20, 40}})
            EXPECT_EQ(PixelAt(image, p.X * z, p.Y * z), kBlue) << p.X << "," << p.Y;
        EXPECT_EQ(PixelAt(image, 60 * z, 40 * z), kRed);
        EXPECT_EQ(PixelAt(image, 84 * z, 50 * z), kRed);
        for (TPoint p : {TPoint{22, 22}, TPoint{98, 22}, TPoint{22, 58}, TPoint{98, 58}})
            EXPECT_EQ(PixelAt(image, p.X * z, p.Y * z), kWhite) << p.X << "," << p.Y;
        EXPECT_TRUE(AllWhite(image, QRect(0, 0, 240, 20 * z - 1))); // nothing outside the box
    }
    TTestHost host;
    BlueOnRed(host);
    auto e = DrawnBy<TMyEllipse>(host, {20, 20}, {100, 60});
    e->RotateChangeValueByAngle({60, 40}, kPi / 2);
    ExpectPixels(
        Painted(*e),
        {{80, 40, kBlue}, {40, 40, kBlue}, {60, 80, kBlue}, {60, 40, kRed}, {95, 40, kWhite}});
}

// Drawing previews select the rubber band themselves: a second call erases the first.
TEST(ShapePreview, DrawingIsExclusiveOrAndCoversTheBox)
{
    TTestHost host;
    for (bool ellipse : {false, true}) {
        std::unique_ptr<TMyRectangle> shape =
            ellipse ? std::make_unique<TMyEllipse>(&host) : std::make_unique<TMyRectangle>(&host);
        shape->AddPointByMouse({150, 100});
        QImage image = WhiteImage();
        TCanvas canvas(&image);
        shape->Drawing(canvas, {150, 100}, {50, 40});
        canvas.Flush();
        // The top and the left of the box are marked by either figure.
        EXPECT_LT(CountPixels(image, QRect(50, 38, 101, 5), kWhite), 101 * 5 - 10) << ellipse;
        EXPECT_LT(CountPixels(image, QRect(48, 40, 5, 61), kWhite), 5 * 61 - 5) << ellipse;
        // The ellipse leaves the box corner alone, the rectangle does not.
        EXPECT_EQ(AllWhite(image, QRect(50, 40, 3, 3)), ellipse);
        shape->Drawing(canvas, {150, 100}, {50, 40});
        canvas.Flush();
        EXPECT_TRUE(AllWhite(image)) << ellipse;
    }
}

// The drag and rotate previews of a rectangle show exactly the outline that the shape has
// after the edit, drawn by DrawRectangle; at zoom 2 the rotation centre is a screen point.
// An ellipse's drag preview is its moved outline only.
TEST(ShapePreview, DragAndRotatePreviewsMatchTheEditedShape)
{
    TTestHost host(300, 300);
    host.ZoomValue = 2;
    auto r = DrawnBy<TMyRectangle>(host, {60, 60}, {180, 140});
    r->RotateChangeValueByAngle(r->GetCenterPoint(), 0.3);
    const auto drag = [&](TCanvas &canvas) { r->Draging(canvas, {10, 10}, {37, 2}); };
    const auto turn = [&](TCanvas &canvas) { r->Rotating(canvas, {150, 120}, 0.7); };
    const QImage dragPreview = Drawn300(drag), turnPreview = Drawn300(turn);
    TMyRectangle moved(&host), turned(&host);
    moved.Assign(*r);
    turned.Assign(*r);
    moved.DragChangeValue({10, 10}, {37, 2});
    turned.RotateChangeValueByAngle({75, 60}, 0.7);
    EXPECT_TRUE(ImagesEqual(dragPreview, Outline(moved)));
    EXPECT_TRUE(ImagesEqual(turnPreview, Outline(turned)));
    EXPECT_FALSE(ImagesEqual(dragPreview, Outline(*r)));

    host.ZoomValue = 1;
    auto e = DrawnBy<TMyEllipse>(host, {20, 20}, {100, 60});
    const QImage image = Drawn([&](TCanvas &canvas) {
        canvas.Pen().Color = clBlack;
        canvas.Brush().Style = TBrushStyle::bsClear;
        e->Draging(canvas, {0, 0}, {30, 50});
    });
    // Black on the moved extremes; white on the unmoved bottom point, inside (no fill) and
    // at the moved box's corner.
    const TPixels draggedOutline = {
        {90, 110, kBlack}, {130, 90, kBlack}, {90, 70, kBlack}, {50, 90, kBlack},
        {60, 60, kWhite},  {90, 90, kWhite},  {52, 72, kWhite},
    };
    ExpectPixels(image, draggedOutline);
    EXPECT_EQ(e->Points()[0], (TMyPoint{20, 20})); // previews change nothing
}

// Side of the opposite corner o that p lies on, per axis, inclusive.
bool SameSide(float p, float target, float o)
{
    return (double(p) - o) * (double(target) - o) >= 0;
}

// Every handle of random turned rectangles dragged to random places: either nothing
// changes (and the target lies beyond the opposite corner) or the result is a rectangle of
// the same angle whose far side or corner stayed where it was; the Sizing preview always
// shows exactly the rectangle the resize produces.
TEST(RectangleResize, RandomDragsStayRectanglesAndMatchTheirPreview)
{
    TTestHost host(300, 300);
    std::mt19937 rng(20240611);
    std::uniform_real_distribution<float> coord(60, 240);
    std::uniform_real_distribution<float> angle(-3.1f, 3.1f);
    std::uniform_int_distribution<int> hot(0, 7), target(20, 280);
    int refused = 0, accepted = 0;
    for (int n = 0; n < 300; ++n) {
        const TPoint p0{int(coord(rng)), int(coord(rng))}, p2{int(coord(rng)), int(coord(rng))};
        if (std::abs(p0.X - p2.X) < 4 || std::abs(p0.Y - p2.Y) < 4)
            continue;
        auto r = DrawnBy<TMyRectangle>(host, p0, p2);
        const float a = angle(rng);
        r->RotateChangeValueByAngle(r->GetCenterPoint(), a);
        const TMyPoint c = r->GetCenterPoint();
        const TMyPointArray before = r->Points();
        const int h = hot(rng);
        const int m = h % 4;
        const TPoint to{target(rng), target(rng)};
        // Upright frame: the moved corner, the opposite corner and the target.
        const TMyPoint pm = RotateAPoint(before[m], c, -a);
        const TMyPoint po = RotateAPoint(before[(m + 2) % 4], c, -a);
        const TMyPoint tu = RotateAPoint(PtToMyPt(to), c, -a);
        if (std::abs(tu.X - po.X) < 0.05f || std::abs(tu.Y - po.Y) < 0.05f)
            continue; // too close to the boundary for float rounding to decide

        TMyRectangle copy(&host);
        copy.Assign(*r);
        copy.SetCurrentHot(h);
        r->SetCurrentHot(h);
        const QImage preview = Drawn300([&](TCanvas &canvas) { r->Sizing(canvas, {0, 0}, to); });
        r->SizeChangeValue({0, 0}, PtToMyPt(to));
        EXPECT_TRUE(ImagesEqual(preview, Outline(*r))) << "case " << n << " hot " << h;

        const bool expectAccepted = SameSide(pm.X, tu.X, po.X) && SameSide(pm.Y, tu.Y, po.Y);
        if (!expectAccepted) {
            ++refused;
            EXPECT_EQ(r->Points(), before) << "case " << n;
            continue;
        }
        ++accepted;
        EXPECT_FLOAT_EQ(r->Angle(), copy.Angle());
        TMyPoint u[4];
        for (int i = 0; i < 4; ++i)
            u[i] = RotateAPoint(r->Points()[std::size_t(i)], c, -a);
        const double tol = 0.02;
        for (int i = 0; i < 4; ++i) // sides alternately horizontal and vertical
            EXPECT_NEAR(i % 2 ? u[i].X : u[i].Y, i % 2 ? u[(i + 1) % 4].X : u[(i + 1) % 4].Y, tol)
                << "case " << n << " side " << i;
        // The corner or side across from the handle stays.
        for (int k : {2, 3}) {
            if (h < 4 && k == 3)
                break;
            const std::size_t f = std::size_t((m + k) % 4);
            ExpectNear(r->Points()[f], before[f], tol, "fixed corner");
        }
        if (h < 4)
            ExpectNear(r->Points()[std::size_t(m)], PtToMyPt(to), tol, "dragged corner");
        else
            ExpectNear(u[m], h == 4 || h == 6 ? TMyPoint{pm.X, tu.Y} : TMyPoint{tu.X, pm.Y}, tol,
                       "dragged side");
    }
    EXPECT_GT(refused, 20);
    EXPECT_GT(accepted, 60);
}

// A member whose hit test reaches beyond the group's box, as a line's tolerance band does.
class TProbe : public TMyShape
{
public:
    using TMyShape::TMyShape;
    TRect HitArea;
    int Asked = 0;
    bool IsClickedMe(TCanvas &, TPoint p) override
    {
        ++Asked;
        return HitArea.Contains(p);
    }
};

struct TGroupFixture
{
    TTestHost Host;
    TProbe *Probe = nullptr;
    std::unique_ptr<TMyGroup> Group;

    explicit TGroupFixture(bool combine)
        : Group(combine ? std::make_unique<TMyCombine>(&Host) : std::make_unique<TMyGroup>(&Host))
    {
        Host.HostBrush.Color = clRed;
        Host.Add(DrawnBy<TMyRectangle>(Host, {20, 20}, {60, 50}));
        Probe = static_cast<TProbe *>(Host.Add(std::make_unique<TProbe>(&Host)));
        Probe->Points() = {{80, 40}, {120, 80}};
        Probe->HitArea = TRect(78, 38, 123, 83);
        // The group's corners are the members' common box, 20,20 .. 120,80.
        Group->AddPointByMouse({20, 20});
        Group->AddPointByMouse({120, 80});
        Group->ChildShapes() = {0, 1, 7}; // 7 names no shape: skipped
    }
};

// Plain groups and combined shapes alike: nothing of their own on the canvas but the info
// text; hit inside their box or on any member, and never through themselves.
TEST(Group, DrawsOnlyItsInfoAndIsHitInsideItsBoxOrOnAMember)
{
    for (bool combine : {false, true}) {
        SCOPED_TRACE(combine);
        TGroupFixture f(combine);
        EXPECT_TRUE(AllWhite(Painted(*f.Group)));
        f.Group->SetTextPoint({70, 100});
        f.Group->SetInfo("G");
        const QImage image = Painted(*f.Group);
        EXPECT_FALSE(AllWhite(image, QRect(55, 90, 30, 20)));
        EXPECT_TRUE(AllWhite(image, QRect(0, 0, 200, 85)));

        TCanvas &canvas = *f.Host.ScreenCanvas();
        EXPECT_TRUE(f.Group->IsClickedMe(canvas, {70, 70})); // box, between the members
        EXPECT_TRUE(f.Group->IsClickedMe(canvas, {30, 30}));
        // Outside the box but within the probe member's reach.
        EXPECT_TRUE(f.Group->IsClickedMe(canvas, {121, 81}));
        EXPECT_GT(f.Probe->Asked, 0);
        EXPECT_FALSE(f.Group->IsClickedMe(canvas, {124, 81}));
        EXPECT_FALSE(f.Group->IsClickedMe(canvas, {10, 10}));
        f.Host.Add(std::unique_ptr<TMyShape>(f.Group.release()));
        TMyShape *group = f.Host.Shapes.back().get();
        group->ChildShapes() = {2, 0};
        EXPECT_FALSE(group->IsClickedMe(canvas, {150, 150}));
    }
}

} // namespace
} // namespace tessal::test
