// SPDX-License-Identifier: GPL-2.0-or-later
// Flattening of DXF curves: bulges, elliptic arcs, splines and hatch boundaries.
#include <tessal/dxf/import/dxfcurves_p.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tessal::DxfImport {

namespace {

constexpr double Pi = std::numbers::pi;

std::int32_t StepsFor(double sweepRadians)
{
    const double steps = std::ceil(std::fabs(sweepRadians) / (MaxStepDegrees * Pi / 180));
    return std::int32_t(std::clamp(steps, 1.0, 4096.0));
}

// The arc of a bulged segment from a to b: the bulge is the tangent of a quarter of the
// included angle, positive anticlockwise. Appends the points after a, up to b.
void AppendBulge(std::vector<QPointF> &out, QPointF a, QPointF b, double bulge)
{
    const double chord = std::hypot(b.x() - a.x(), b.y() - a.y());
    if (bulge == 0 || !std::isfinite(bulge) || chord == 0) {
        out.push_back(b);
        return;
    }
    const double sweep = 4 * std::atan(bulge);
    const double radius = chord / (2 * std::sin(std::fabs(sweep) / 2));
    // The centre lies on the chord's perpendicular bisector, on the left for a positive
    // bulge when the sweep is below a half turn.
    const QPointF mid = (a + b) / 2;
    const QPointF dir((b.x() - a.x()) / chord, (b.y() - a.y()) / chord);
    const double offset = radius * std::cos(sweep / 2) * (sweep > 0 ? 1 : -1);
    const QPointF centre(mid.x() - dir.y() * offset, mid.y() + dir.x() * offset);
    const double start = std::atan2(a.y() - centre.y(), a.x() - centre.x());
    const std::int32_t steps = StepsFor(sweep);
    for (std::int32_t i = 1; i < steps; ++i) {
        const double t = start + sweep * i / steps;
        out.emplace_back(centre.x() + radius * std::cos(t), centre.y() + radius * std::sin(t));
    }
    out.push_back(b);
}

// The point of the NURBS at u by de Boor's algorithm in homogeneous coordinates.
QPointF DeBoor(const std::vector<QPointF> &p, const std::vector<double> &w,
               const std::vector<double> &knots, int degree, double u)
{
    // The knot span of u: the last knot at or before u among those of the control points,
    // found by bisection (the knots are sorted), since a spline may have thousands.
    const int n = int(p.size());
    const auto first = knots.begin() + (degree + 1), last = knots.begin() + n;
    const int span =
        first < last ? int(std::upper_bound(first, last, u) - knots.begin()) - 1 : degree;
    std::vector<double> x(std::size_t(degree + 1)), y(x.size()), h(x.size());
    for (int j = 0; j <= degree; ++j) {
        const std::size_t k = std::size_t(span - degree + j);
        h[std::size_t(j)] = w[k];
        x[std::size_t(j)] = p[k].x() * w[k];
        y[std::size_t(j)] = p[k].y() * w[k];
    }
    for (int r = 1; r <= degree; ++r)
        for (int j = degree; j >= r; --j) {
            const double lo = knots[std::size_t(span - degree + j)];
            const double hi = knots[std::size_t(span + 1 + j - r)];
            const double a = hi == lo ? 0 : (u - lo) / (hi - lo);
            const std::size_t c = std::size_t(j), b = std::size_t(j - 1);
            x[c] = (1 - a) * x[b] + a * x[c];
            y[c] = (1 - a) * y[b] + a * y[c];
            h[c] = (1 - a) * h[b] + a * h[c];
        }
    const double hw = h[std::size_t(degree)] == 0 ? 1 : h[std::size_t(degree)];
    return {x[std::size_t(degree)] / hw, y[std::size_t(degree)] / hw};
}

// The cubic Bezier piece through the curve's points at 0, 1/3, 2/3 and 1 of [u0, u1]:
// exact when the curve is a polynomial of degree three or less there.
template <class Curve>
void AppendPiece(std::vector<QPointF> &out, const Curve &at, double u0, double u1)
{
    const QPointF c0 = at(u0), c1 = at(u0 + (u1 - u0) / 3), c2 = at(u0 + 2 * (u1 - u0) / 3),
                  c3 = at(u1);
    // c1 = (8 p0 + 12 p1 + 6 p2 + p3) / 27, c2 = (p0 + 6 p1 + 12 p2 + 8 p3) / 27.
    const QPointF r1 = 27 * c1 - 8 * c0 - c3, r2 = 27 * c2 - c0 - 8 * c3;
    const QPointF p1 = (2 * r1 - r2) / 18, p2 = (2 * r2 - r1) / 18;
    if (out.empty())
        out.push_back(c0);
    out.push_back(p1);
    out.push_back(p2);
    out.push_back(c3);
}

std::vector<QPointF> FitSplineToBezier(const std::vector<QPointF> &f, bool closed)
{
    // Catmull-Rom tangents: each piece leaves its point towards the next neighbour.
    std::vector<QPointF> out{f.front()};
    const std::size_t n = f.size();
    const std::size_t pieces = closed ? n : n - 1;
    for (std::size_t i = 0; i < pieces; ++i) {
        const QPointF p0 = f[i], p1 = f[(i + 1) % n];
        const QPointF before = i > 0 ? f[i - 1] : (closed ? f[n - 1] : p0);
        const QPointF after = i + 2 < n ? f[i + 2] : (closed ? f[(i + 2) % n] : p1);
        out.push_back(p0 + (p1 - before) / 6);
        out.push_back(p1 - (after - p0) / 6);
        out.push_back(p1);
    }
    return out;
}

} // namespace

std::vector<QPointF> EllipsePoints(QPointF centre, QPointF major, double ratio, double t0,
                                   double t1)
{
    const QPointF minor(-major.y() * ratio, major.x() * ratio);
    const std::int32_t steps = StepsFor(t1 - t0);
    std::vector<QPointF> out;
    out.reserve(std::size_t(steps + 1));
    for (std::int32_t i = 0; i <= steps; ++i) {
        const double t = t0 + (t1 - t0) * i / steps;
        out.push_back(centre + major * std::cos(t) + minor * std::sin(t));
    }
    return out;
}

std::vector<QPointF> FlattenPolyline(const std::vector<QPointF> &points,
                                     const std::vector<double> &bulges, bool closed)
{
    std::vector<QPointF> out;
    if (points.empty())
        return out;
    out.push_back(points.front());
    const std::size_t n = points.size();
    const std::size_t segments = closed ? n : n - 1;
    for (std::size_t i = 0; i < segments; ++i)
        AppendBulge(out, points[i], points[(i + 1) % n], i < bulges.size() ? bulges[i] : 0);
    if (closed && out.size() > 1)
        out.pop_back(); // the closing segment ended on the first point
    return out;
}

std::vector<QPointF> SplineToBezier(const TEntity &s)
{
    const std::vector<QPointF> &p = s.Points;
    if (p.size() < 2)
        return {};
    if (s.FitOnly)
        return FitSplineToBezier(p, s.Closed);
    const int degree = std::clamp(s.Degree, 1, std::max(1, int(p.size()) - 1));
    std::vector<double> knots = s.Knots;
    const std::size_t need = p.size() + std::size_t(degree) + 1;
    if (knots.size() != need || !std::is_sorted(knots.begin(), knots.end())) {
        // Missing or broken knots: the clamped uniform vector.
        knots.assign(need, 0);
        for (std::size_t i = 0; i < need; ++i)
            knots[i] = double(std::clamp<std::ptrdiff_t>(std::ptrdiff_t(i) - degree, 0,
                                                         std::ptrdiff_t(p.size()) - degree));
    }
    std::vector<double> w = s.Weights;
    const bool rational = std::any_of(w.begin(), w.end(), [](double v) { return v != 1; });
    if (w.size() != p.size() || std::any_of(w.begin(), w.end(), [](double v) { return !(v > 0); }))
        w.assign(p.size(), 1);
    auto at = [&](double u) { return DeBoor(p, w, knots, degree, u); };
    // Rational pieces are cut finer, since one cubic per knot span only approximates them.
    const int cuts = rational || degree > 3 ? 8 : 1;
    std::vector<QPointF> out;
    for (std::size_t i = std::size_t(degree); i + 1 < knots.size() - std::size_t(degree); ++i) {
        const double u0 = knots[i], u1 = knots[i + 1];
        if (!(u1 > u0))
            continue;
        for (int c = 0; c < cuts; ++c)
            AppendPiece(out, at, u0 + (u1 - u0) * c / cuts, u0 + (u1 - u0) * (c + 1) / cuts);
    }
    return out;
}

void AppendHatchEdge(const DL_HatchEdgeData &e, std::vector<QPointF> &loop)
{
    auto add = [&](QPointF q) {
        if (loop.empty() || loop.back() != q)
            loop.push_back(q);
    };
    if (!e.vertices.empty()) {
        std::vector<QPointF> pts;
        std::vector<double> bulges;
        for (const std::vector<double> &v : e.vertices) {
            if (v.size() < 2)
                continue;
            pts.emplace_back(v[0], v[1]);
            bulges.push_back(v.size() > 2 ? v[2] : 0);
        }
        for (QPointF q : FlattenPolyline(pts, bulges, true))
            add(q);
        return;
    }
    if (!e.defined)
        return;
    switch (e.type) {
    case 1:
        add({e.x1, e.y1});
        add({e.x2, e.y2});
        break;
    case 2:
    case 3: {
        // Angles in radians (the parser converts them); a clockwise edge runs its angles
        // mirrored.
        const QPointF major = e.type == 2 ? QPointF(e.radius, 0) : QPointF(e.mx, e.my);
        const double ratio = e.type == 2 ? 1 : e.ratio;
        double a0 = e.angle1, a1 = e.angle2;
        if (!e.ccw) {
            a0 = -a0;
            a1 = -a1;
        }
        double sweep = e.ccw ? a1 - a0 : a0 - a1;
        sweep = std::fmod(sweep, 2 * Pi);
        if (sweep <= 0)
            sweep += 2 * Pi;
        const double end = e.ccw ? a0 + sweep : a0 - sweep;
        std::vector<QPointF> pts =
            EllipsePoints({e.cx, e.cy}, major, ratio, std::min(a0, end), std::max(a0, end));
        if (!e.ccw)
            std::reverse(pts.begin(), pts.end());
        for (QPointF q : pts)
            add(q);
        break;
    }
    case 4: {
        TEntity s;
        s.Degree = std::int32_t(e.degree);
        s.Knots = e.knots;
        s.Weights = e.weights;
        for (const std::vector<double> &v : e.controlPoints)
            if (v.size() >= 2)
                s.Points.emplace_back(v[0], v[1]);
        if (s.Points.empty()) {
            for (const std::vector<double> &v : e.fitPoints)
                if (v.size() >= 2)
                    s.Points.emplace_back(v[0], v[1]);
            s.FitOnly = true;
        }
        const std::vector<QPointF> bez = SplineToBezier(s);
        for (std::size_t i = 0; i < bez.size(); i += 3)
            add(bez[i]);
        break;
    }
    default:
        break;
    }
}

} // namespace tessal::DxfImport
