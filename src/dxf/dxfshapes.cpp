// SPDX-License-Identifier: MIT
// How each exported shape class becomes DXF entities.
#include <tessal/dxf/dxfnumbers.h>
#include <tessal/dxf/dxfwriter_p.h>
#include <tessal/geometry/geometry.h>
#include <tessal/geometry/scaledtext.h>
#include <tessal/shapes/curve.h>
#include <tessal/shapes/link.h>
#include <tessal/shapes/text.h>

#include <QFontMetricsF>
#include <QImage>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tessal {

namespace {

constexpr double Degrees = 180 / std::numbers::pi;

// The angle of v in degrees, within [0, 360).
double DirectionDegrees(double x, double y)
{
    const double a = std::atan2(y, x) * Degrees;
    return a < 0 ? a + 360 : a;
}

// The ellipse outline: 72 vertices, 5 degrees apart, written a quadrant (18 vertices) at a
// time from the bottom of the upright ellipse, in the directions the shape itself draws.
constexpr int EllipseStepsPerQuadrant = 18;

} // namespace

void TDxfWriter::WriteShape(const TMyShape &shape)
{
    // The exact class decides, never a base class: a measuring line is a line but is not
    // exported, and a junction is a link point but is.
    const QString name = shape.ClassName();
    if (name == QLatin1String("TMyText")) {
        const auto &text = static_cast<const TMyText &>(shape);
        m_Glyphs ? Glyphs(text) : Text(text);
    } else if (name == QLatin1String("TMyLine")) {
        if (shape.GetPointsCount() >= 2)
            Line({shape.Points()[0].X, shape.Points()[0].Y},
                 {shape.Points()[1].X, shape.Points()[1].Y});
    } else if (name == QLatin1String("TMyLinkLine")) {
        Chain(static_cast<const TMyLinkLine &>(shape).RouteInDocument());
    } else if (name == QLatin1String("TMyPolyLine")) {
        Chain(shape.Points());
    } else if (name == QLatin1String("TMyRectangle") || name == QLatin1String("TMyPolygon")) {
        Polyline(std::span<const TMyPoint>(shape.Points()));
    } else if (name == QLatin1String("TMyElliArc")) {
        Arc(shape);
    } else if (name == QLatin1String("TMyLineLinkLine")) {
        if (shape.GetPointsCount() >= 4) {
            const TMyPoint c = shape.GetCenterPoint();
            const double r = GetLengthinPixel(shape.Points()[0], shape.Points()[1]) / 2;
            Circle({c.X, c.Y}, r);
            Circle({c.X, c.Y}, r / TMyLineLinkLine::InnerRatio);
        }
    } else if (name == QLatin1String("TMyEllipse")) {
        Ellipse(shape);
    } else if (name == QLatin1String("TMyPolyBezier")) {
        // The curve itself, flattened in document units, not its control points.
        const std::vector<TMyPoint> curve = FlattenPolyBezier(shape.Points());
        if (!curve.empty())
            Polyline(std::span<const TMyPoint>(curve));
    }
}

// The circle through the arc's start, middle and end point, run anticlockwise in the file
// (Y up) from whichever end makes it pass the middle point. Points on one line, or a
// circle so large that it is a line in all but name, are written as the LINE from start to
// end.
void TDxfWriter::Arc(const TMyShape &arc)
{
    if (arc.GetPointsCount() < 3)
        return;
    const TMyPointArray &pts = arc.Points();
    // In file orientation (Y up), still in pixels.
    auto flip = [&](TMyPoint p) { return QPointF(p.X, m_Height - p.Y); };
    const QPointF a = flip(pts[0]), m = flip(pts[1]), b = flip(pts[2]);
    const double d =
        2 * (a.x() * (m.y() - b.y()) + m.x() * (b.y() - a.y()) + b.x() * (a.y() - m.y()));
    const double span =
        std::max({QLineF(a, m).length(), QLineF(m, b).length(), QLineF(a, b).length()});
    const QPointF start(pts[0].X, pts[0].Y), end(pts[2].X, pts[2].Y);
    if (d == 0 || span == 0) {
        Line(start, end);
        return;
    }
    const double a2 = a.x() * a.x() + a.y() * a.y(), m2 = m.x() * m.x() + m.y() * m.y(),
                 b2 = b.x() * b.x() + b.y() * b.y();
    const QPointF c((a2 * (m.y() - b.y()) + m2 * (b.y() - a.y()) + b2 * (a.y() - m.y())) / d,
                    (a2 * (b.x() - m.x()) + m2 * (a.x() - b.x()) + b2 * (m.x() - a.x())) / d);
    const double radius = QLineF(c, a).length();
    if (!std::isfinite(radius) || radius > 10000 * span) {
        Line(start, end);
        return;
    }
    const double t0 = DirectionDegrees(a.x() - c.x(), a.y() - c.y());
    const double tm = DirectionDegrees(m.x() - c.x(), m.y() - c.y());
    const double t1 = DirectionDegrees(b.x() - c.x(), b.y() - c.y());
    auto turn = [](double from, double to) { return std::fmod(to - from + 360, 360); };
    const bool anticlockwise = turn(t0, tm) <= turn(t0, t1);
    Head("ARC");
    Point(10, QPointF(c.x(), m_Height - c.y()));
    Number(40, radius / Dxf::PixelsPerMm);
    Number(50, anticlockwise ? t0 : t1);
    Number(51, anticlockwise ? t1 : t0);
}

void TDxfWriter::Ellipse(const TMyShape &ellipse)
{
    if (ellipse.GetPointsCount() < 4)
        return;
    const TMyPoint centre = ellipse.GetCenterPoint();
    const double a = ellipse.GetMyWidth() / 2.0, b = ellipse.GetMyHeight() / 2.0;
    const double c = std::cos(double(ellipse.Angle())), s = std::sin(double(ellipse.Angle()));
    std::vector<QPointF> outline;
    for (int quadrant = 0; quadrant < 4; ++quadrant)
        for (int k = 0; k < EllipseStepsPerQuadrant; ++k) {
            const double t = (quadrant * EllipseStepsPerQuadrant + k) * std::numbers::pi / 36;
            const double u = a * std::sin(t), v = b * std::cos(t);
            outline.emplace_back(centre.X + u * c - v * s, centre.Y + u * s + v * c);
        }
    Polyline(outline);
}

namespace {

// The font a text shape's lines are drawn with at the current zoom, on a canvas that only
// measures.
struct TTextSetUp
{
    QImage Image{1, 1, QImage::Format_ARGB32};
    TCanvas Canvas{&Image};
    QFont Font;
    double Ascent = 0;

    TTextSetUp(const TMyText &text, double zoom)
    {
        Canvas.SelectLogFont(MakeScaledLogFont(Canvas, text.Font(), zoom, 0));
        Font = Canvas.TextFont();
        Ascent = QFontMetricsF(Font, &Image).ascent();
    }
};

} // namespace

// One TEXT per laid-out line: the insertion point is the left end of the line's baseline,
// the height the font's character height, the rotation the shape's angle anticlockwise.
//
// The character height is taken in document pixels, like the points: text is drawn with
// its point size as its pixel height at zoom 1 and grows with the zoom just as the geometry
// does, so the point size, scaled to millimetres, keeps the text in proportion with the
// shapes around it, at whatever zoom the file is written. The font's Height field is not
// it: that is the size at the screen's resolution (a third more at 96 pixels per inch),
// which the drawing never shows. The DXF reader takes the height back as the point size.
void TDxfWriter::Text(const TMyText &text)
{
    TTextSetUp setUp(text, m_Zoom);
    const double z = m_Zoom;
    double degrees = -double(text.Angle()) * Degrees;
    degrees = degrees == 0 ? 0 : degrees; // no "-0"
    for (const TMyText::TPlacedLine &line : text.PlacedLines(setUp.Canvas)) {
        const TMyPoint base = RotateAPoint({line.TopLeft.X, float(line.TopLeft.Y + setUp.Ascent)},
                                           line.TopLeft, text.Angle());
        Head("TEXT");
        Point(10, QPointF(base.X / z, base.Y / z));
        Number(40, text.Font().Size() / Dxf::PixelsPerMm);
        Number(50, degrees);
        Pair(1, Dxf::EscapeText(line.Text));
    }
}

// Every closed figure of the glyph outlines as a POLYLINE, the curves flattened.
void TDxfWriter::Glyphs(const TMyText &text)
{
    TTextSetUp setUp(text, m_Zoom);
    const double z = m_Zoom;
    for (const TMyText::TPlacedLine &line : text.PlacedLines(setUp.Canvas)) {
        QPainterPath path;
        path.addText(QPointF(0, setUp.Ascent), setUp.Font, line.Text);
        QTransform place;
        place.scale(1 / z, 1 / z);
        place.translate(line.TopLeft.X, line.TopLeft.Y);
        place.rotateRadians(text.Angle());
        for (QPolygonF figure : path.toSubpathPolygons(place)) {
            if (figure.size() > 1 && figure.front() == figure.back())
                figure.removeLast();
            if (figure.size() >= 2)
                Polyline(std::span<const QPointF>(figure.constData(), std::size_t(figure.size())));
        }
    }
}

} // namespace tessal
