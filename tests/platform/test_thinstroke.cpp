// SPDX-License-Identifier: MIT
// One-pixel outlines: the canvas paints them itself where it can, and must give exactly the
// pixels Qt's raster engine gives the same chain under the same pen, transform and clipping.
#include "canvas_helpers.h"

#include <gtest/gtest.h>

#include <QPainter>

#include <cmath>
#include <numbers>
#include <optional>
#include <random>
#include <sstream>

using namespace tessal;
using namespace tessal::test;

namespace {

constexpr int Width = 72;
constexpr int Height = 56;

// One drawing of a chain, with everything that decides its pixels.
struct TThinCase
{
    std::vector<TPoint> Points;
    bool Closed = false;
    bool Geometric = false;
    TPenEndCap Cap = TPenEndCap::pecRound;
    TPenJoin Join = TPenJoin::pjRound;
    int PenWidth = 1;
    TPenMode Mode = TPenMode::pmCopy;
    TColor Colour = 0;
    unsigned Background = 0;
    TPoint Origin;
    QTransform World;
    std::optional<TRect> Clip;
    QImage::Format Format = QImage::Format_RGB32;

    std::string Describe() const
    {
        std::ostringstream s;
        s << (Closed ? "closed" : "open") << (Geometric ? " geometric" : " plain") << " cap "
          << int(Cap) << " mode " << int(Mode) << " origin " << Origin.X << "," << Origin.Y
          << " world " << World.m11() << "/" << World.dx() << "," << World.dy() << " format "
          << int(Format);
        if (Clip)
            s << " clip " << Clip->Left << "," << Clip->Top << "-" << Clip->Right << ","
              << Clip->Bottom;
        s << " points";
        for (const TPoint &p : Points)
            s << " " << p.X << "," << p.Y;
        return s.str();
    }
};

// The chain as the canvas draws it.
QImage DrawnByCanvas(const TThinCase &c)
{
    return Painted(
        Width, Height,
        [&](TCanvas &canvas) {
            canvas.SetOrigin(c.Origin);
            canvas.SetWorldTransform(c.World);
            if (c.Clip)
                canvas.SelectClipRect(&*c.Clip);
            canvas.Pen() = TPen{c.Colour, c.Mode, TPenStyle::psSolid, c.PenWidth};
            if (c.Geometric)
                canvas.SetGeometricPen(c.Join, c.Cap);
            if (c.Closed)
                canvas.StrokeClosedFigure(c.Points);
            else
                canvas.Polyline(c.Points);
        },
        c.Background, c.Format);
}

// The same chain through the painter alone: a cosmetic pen with flat ends for a plain pen,
// a pen one unit wide centred on the pixel centres for a geometric one.
QImage DrawnByPainter(const TThinCase &c)
{
    QImage image = Filled(Width, Height, c.Background, c.Format);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing, false);
    const QTransform shift = QTransform::fromTranslate(-c.Origin.X, -c.Origin.Y);
    if (c.Clip)
        p.setClipRect(QRect(c.Clip->Left, c.Clip->Top, c.Clip->Width(), c.Clip->Height())
                          .translated(-c.Origin.X, -c.Origin.Y));
    QColor colour = ToQColor(c.Colour);
    if (c.Mode != TPenMode::pmCopy)
        colour = c.Mode == TPenMode::pmBlack ? Qt::black : Qt::white;
    QPen pen(colour);
    if (c.Geometric) {
        static constexpr Qt::PenCapStyle caps[] = {Qt::RoundCap, Qt::SquareCap, Qt::FlatCap,
                                                   Qt::FlatCap};
        static constexpr Qt::PenJoinStyle joins[] = {Qt::RoundJoin, Qt::BevelJoin, Qt::MiterJoin,
                                                     Qt::MiterJoin};
        pen.setWidth(1);
        pen.setCapStyle(caps[int(c.Cap)]);
        pen.setJoinStyle(joins[int(c.Join)]);
        p.setWorldTransform(c.World * QTransform::fromTranslate(0.5, 0.5) * shift);
    } else {
        pen.setWidth(0);
        pen.setCapStyle(Qt::FlatCap);
        p.setWorldTransform(c.World * shift);
    }
    p.setPen(pen);
    std::vector<QPoint> points;
    for (const TPoint &pt : c.Points)
        points.emplace_back(pt.X, pt.Y);
    if (c.Closed)
        p.drawPolygon(points.data(), int(points.size()));
    else
        p.drawPolyline(points.data(), int(points.size()));
    return image;
}

// The outline of an ellipse as the shapes draw it: 73 rounded points, five degrees apart.
std::vector<TPoint> EllipseOutline(double cx, double cy, double a, double b, double angle)
{
    std::vector<TPoint> points;
    for (int i = 0; i <= 72; ++i) {
        const double t = i * std::numbers::pi / 36, u = a * std::sin(t), v = b * std::cos(t);
        points.push_back(
            {std::int32_t(std::lrint(u * std::cos(angle) - v * std::sin(angle) + cx)),
             std::int32_t(std::lrint(u * std::sin(angle) + v * std::cos(angle) + cy))});
    }
    return points;
}

// Chains of every sort the shapes produce, some reaching past the image.
std::vector<TPoint> RandomChain(std::mt19937 &rng)
{
    const auto pick = [&](int lo, int hi) { return std::uniform_int_distribution(lo, hi)(rng); };
    switch (pick(0, 4)) {
    case 0: { // a rectangle's outline, sometimes one pixel thin
        const int l = pick(-3, Width + 2), t = pick(-3, Height + 2);
        const int r = pick(0, 1) ? l + pick(0, 3) : pick(-3, Width + 2);
        const int b = pick(0, 1) ? t + pick(0, 3) : pick(-3, Height + 2);
        return {{l, t}, {r, t}, {r, b}, {l, b}, {l, t}};
    }
    case 1: // an ellipse of any size down to a dot, upright or turned
        return EllipseOutline(pick(0, 2 * Width) / 2.0, pick(0, 2 * Height) / 2.0,
                              pick(0, 600) / 20.0, pick(0, 600) / 20.0,
                              pick(0, 1) ? 0 : pick(0, 628) / 100.0);
    default: { // walks of long, short, straight and repeated steps
        const int reach = std::array{2, 6, Width}[std::size_t(pick(0, 2))];
        std::vector<TPoint> points{{pick(-2, Width + 1), pick(-2, Height + 1)}};
        for (int n = pick(1, 7); n > 0; --n) {
            TPoint next{points.back().X + pick(-reach, reach),
                        points.back().Y + pick(-reach, reach)};
            const int kind = pick(0, 9);
            if (kind == 0)
                next = points.back();
            else if (kind == 1)
                next.Y = points.back().Y;
            else if (kind == 2)
                next.X = points.back().X;
            points.push_back(next);
        }
        if (pick(0, 3) == 0)
            points.push_back(points.front());
        return points;
    }
    }
}

TThinCase RandomCase(std::mt19937 &rng)
{
    const auto pick = [&](int lo, int hi) { return std::uniform_int_distribution(lo, hi)(rng); };
    TThinCase c;
    c.Points = RandomChain(rng);
    c.Closed = pick(0, 1) == 1;
    c.Geometric = pick(0, 2) != 0;
    c.Cap = TPenEndCap(pick(0, 3));
    c.Join = TPenJoin(pick(0, 3));
    c.PenWidth = pick(0, 1);
    c.Mode = std::array{TPenMode::pmCopy, TPenMode::pmCopy, TPenMode::pmBlack,
                        TPenMode::pmWhite}[std::size_t(pick(0, 3))];
    c.Colour = TColor(pick(0, 0xFFFFFF));
    c.Background = unsigned(pick(0, 0xFFFFFF));
    c.Origin = {pick(-12, 12), pick(-12, 12)};
    // Mostly whole-pixel shifts; now and then a transform the painter has to handle.
    switch (pick(0, 9)) {
    case 0:
        c.World = QTransform::fromTranslate(pick(-20, 20) / 4.0, pick(-20, 20) / 4.0);
        break;
    case 1:
        c.World = QTransform::fromScale(2, 2);
        break;
    default:
        c.World = QTransform::fromTranslate(pick(-10, 10), pick(-10, 10));
        break;
    }
    if (pick(0, 1)) {
        const int l = pick(-16, Width + 16), t = pick(-16, Height + 16);
        c.Clip = TRect{l, t, l + pick(0, Width), t + pick(0, Height)};
    }
    c.Format = std::array{QImage::Format_RGB32, QImage::Format_RGB32, QImage::Format_ARGB32,
                          QImage::Format_ARGB32_Premultiplied}[std::size_t(pick(0, 3))];
    return c;
}

} // namespace

TEST(ThinStroke, RandomChainsPaintThePaintersPixels)
{
    std::mt19937 rng(4711);
    int mismatches = 0;
    for (int round = 0; round < 12000; ++round) {
        const TThinCase c = RandomCase(rng);
        if (DrawnByCanvas(c) != DrawnByPainter(c) && mismatches++ < 5)
            ADD_FAILURE() << "round " << round << ": " << c.Describe();
    }
    EXPECT_EQ(mismatches, 0);
}
