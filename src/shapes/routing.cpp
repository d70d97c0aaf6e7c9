// SPDX-License-Identifier: MIT
// Orthogonal routes: exit stubs at bound ends, an A* search over a 15-pixel lattice with a
// turn penalty, and the merging of collinear points.
#include <tessal/shapes/routing.h>

#include <tessal/shapes/routecrossings_p.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <queue>

namespace tessal {

namespace {

// How far a route keeps from the sides of the shapes it avoids. Less than a step, so that
// a stub (one step out) is always clear of its own shape.
constexpr double Clearance = 7;
// A turn costs as much as two steps of length: a longer route with fewer turns wins.
constexpr double TurnPenalty = 2 * RouteStep;
// A step through another shape costs this many times its length.
constexpr double ObstacleFactor = 10;
// Room left around the ends and the bound shapes for going round them.
constexpr double Margin = 3 * RouteStep;
// Above this many lattice nodes (a region of some 4700 pixels square) the search is not
// worth its memory; the plain route is answered.
constexpr std::size_t MaxLatticeNodes = 100000;
constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr int NoDirection = int(Tdirections::dNone);

struct TXY
{
    double X = 0;
    double Y = 0;
    friend bool operator==(TXY, TXY) = default;
};

TXY ToXY(TMyPoint p)
{
    return {p.X, p.Y};
}

// Unit steps by direction, in the order of Tdirections: left, down, right, up.
constexpr int StepX[4] = {-1, 0, 1, 0};
constexpr int StepY[4] = {0, 1, 0, -1};

int Reverse(int dir)
{
    return (dir + 2) % 4;
}

TRouteBox Inflated(const TRouteBox &b, double d)
{
    return {b.Left - d, b.Top - d, b.Right + d, b.Bottom + d};
}

bool InsideOpen(const TRouteBox &b, TXY p)
{
    return b.Left < p.X && p.X < b.Right && b.Top < p.Y && p.Y < b.Bottom;
}

// Whether the horizontal or vertical segment a-c passes through the open interior of b.
bool Crosses(const TRouteBox &b, TXY a, TXY c)
{
    if (a.Y == c.Y) {
        if (!(b.Top < a.Y && a.Y < b.Bottom))
            return false;
        return std::max(a.X, c.X) > b.Left && std::min(a.X, c.X) < b.Right;
    }
    if (!(b.Left < a.X && a.X < b.Right))
        return false;
    return std::max(a.Y, c.Y) > b.Top && std::min(a.Y, c.Y) < b.Bottom;
}

// The part of a route that belongs to one end: from the end point through the magic point
// and the exit on the box's side to the stub one step outside. Free ends are their own
// stub and may leave in any direction.
struct TEndPlan
{
    std::vector<TXY> Lead;
    TXY Stub;
    int Dir = NoDirection;
};

TEndPlan PlanEnd(const TRouteEnd &end)
{
    const TXY at = ToXY(end.At);
    if (!end.Box)
        return {{at}, at, NoDirection};
    const TRouteBox &box = *end.Box;
    const Tdirections dir = ExitDirection(box, end.Corner, end.At);
    TXY exit = at;
    TXY stub = at;
    switch (dir) {
    case Tdirections::dLeft:
        exit.X = std::min(at.X, box.Left);
        stub.X = exit.X - RouteStep;
        break;
    case Tdirections::dRight:
        exit.X = std::max(at.X, box.Right);
        stub.X = exit.X + RouteStep;
        break;
    case Tdirections::dTop:
        exit.Y = std::min(at.Y, box.Top);
        stub.Y = exit.Y - RouteStep;
        break;
    default:
        exit.Y = std::max(at.Y, box.Bottom);
        stub.Y = exit.Y + RouteStep;
        break;
    }
    TEndPlan plan{{at}, stub, int(dir)};
    // The magic point lies on the exit line unless the caller's box and point disagree;
    // a point off that line would break the route's right angles, so it is left out then.
    const TXY corner = ToXY(end.Corner);
    const bool horizontal = dir == Tdirections::dLeft || dir == Tdirections::dRight;
    if (horizontal ? corner.Y == at.Y : corner.X == at.X)
        plan.Lead.push_back(corner);
    plan.Lead.push_back(exit);
    plan.Lead.push_back(stub);
    return plan;
}

// Lattice lines anchor + k x RouteStep covering [lo, hi], with target added so that the
// search can end on it exactly. A lattice line within a pixel of target (other than the
// anchor itself) gives way to it, which avoids a sliver of a step next to the end.
std::vector<double> Axis(double anchor, double target, double lo, double hi)
{
    const auto kLo = std::int64_t(std::floor((lo - anchor) / RouteStep));
    const auto kHi = std::int64_t(std::ceil((hi - anchor) / RouteStep));
    std::vector<double> values;
    values.reserve(std::size_t(kHi - kLo + 2));
    for (std::int64_t k = kLo; k <= kHi; ++k)
        values.push_back(k == 0 ? anchor : anchor + double(k) * RouteStep);
    auto near = std::min_element(values.begin(), values.end(), [&](double a, double b) {
        return std::abs(a - target) < std::abs(b - target);
    });
    if (*near == target)
        return values;
    if (std::abs(*near - target) < 1 && *near != anchor)
        *near = target;
    else
        values.insert(std::upper_bound(values.begin(), values.end(), target), target);
    return values;
}

class TLatticeSearch
{
public:
    // soft holds the bound boxes that are only avoided where possible; the other shapes
    // come from the request, as far as they meet the lattice.
    TLatticeSearch(const TEndPlan &start, const TEndPlan &end, std::vector<TRouteBox> hard,
                   std::vector<TRouteBox> soft, const TRouteRequest &request)
        : m_Start(start)
        , m_End(end)
        , m_Hard(std::move(hard))
        , m_BoundSoft(std::move(soft))
        , m_Request(request)
    {}

    // The lattice nodes from the start stub to the end stub, or nothing.
    std::optional<std::vector<TXY>> Run();

private:
    bool BuildLattice();
    // The boxes to avoid where possible that may meet area, with their clearance.
    std::vector<TRouteBox> SoftMeeting(const TRouteBox &area) const;
    double Heuristic(std::size_t node) const;
    double Terminal(int dir) const;
    // The cost of the step from node to its neighbour in direction dir, infinite when a
    // bound box is in the way.
    double StepCost(std::size_t node, std::size_t next, int dir) const;
    TXY At(std::size_t node) const { return {m_Xs[node % m_Xs.size()], m_Ys[node / m_Xs.size()]}; }
    std::vector<TXY> Path(std::size_t state) const;

    TEndPlan m_Start;
    TEndPlan m_End;
    std::vector<TRouteBox> m_Hard;
    std::vector<TRouteBox> m_BoundSoft;
    const TRouteRequest &m_Request;
    std::vector<double> m_Xs;
    std::vector<double> m_Ys;
    TEdgeCrossings m_Crossings;
    std::size_t m_Goal = 0;
    std::vector<double> m_Cost;
    std::vector<std::int64_t> m_From;
};

bool TLatticeSearch::BuildLattice()
{
    TRouteBox region{std::min(m_Start.Stub.X, m_End.Stub.X), std::min(m_Start.Stub.Y, m_End.Stub.Y),
                     std::max(m_Start.Stub.X, m_End.Stub.X),
                     std::max(m_Start.Stub.Y, m_End.Stub.Y)};
    auto grow = [&region](const TRouteBox &b) {
        region = {std::min(region.Left, b.Left), std::min(region.Top, b.Top),
                  std::max(region.Right, b.Right), std::max(region.Bottom, b.Bottom)};
    };
    for (const TRouteBox &b : m_Hard)
        grow(b);
    region = Inflated(region, Margin);
    const auto small = [&region] {
        const double xCount = (region.Right - region.Left) / RouteStep + 3;
        const double yCount = (region.Bottom - region.Top) / RouteStep + 3;
        return xCount * yCount <= double(MaxLatticeNodes);
    };
    // Widening only makes it larger: a region too large already asks for no shapes.
    if (!small())
        return false;
    // Shapes lying across the region widen it, so that the search can go round them.
    const TRouteBox core = region;
    for (const TRouteBox &b : SoftMeeting(core)) {
        if (b.Right > core.Left && b.Left < core.Right && b.Bottom > core.Top &&
            b.Top < core.Bottom)
            grow(Inflated(b, RouteStep));
    }
    if (!small())
        return false;
    m_Xs = Axis(m_Start.Stub.X, m_End.Stub.X, region.Left, region.Right);
    m_Ys = Axis(m_Start.Stub.Y, m_End.Stub.Y, region.Top, region.Bottom);
    // No step leaves the lattice, so no other box can be in one's way.
    const TRouteBox lattice{m_Xs.front(), m_Ys.front(), m_Xs.back(), m_Ys.back()};
    m_Crossings = TEdgeCrossings(m_Xs, m_Ys, SoftMeeting(lattice));
    return true;
}

std::vector<TRouteBox> TLatticeSearch::SoftMeeting(const TRouteBox &area) const
{
    std::vector<TRouteBox> soft = m_BoundSoft;
    const std::vector<TRouteBox> found = m_Request.FindObstacles
                                             ? m_Request.FindObstacles(Inflated(area, Clearance))
                                             : m_Request.Obstacles;
    soft.reserve(soft.size() + found.size());
    for (const TRouteBox &b : found)
        soft.push_back(Inflated(b, Clearance));
    return soft;
}

double TLatticeSearch::Heuristic(std::size_t node) const
{
    const TXY p = At(node);
    return std::abs(p.X - m_End.Stub.X) + std::abs(p.Y - m_End.Stub.Y);
}

// Arriving at the end stub heading into the end's box continues straight into it; any
// other heading costs a turn there, and heading out of the box would double back over it.
double TLatticeSearch::Terminal(int dir) const
{
    if (m_End.Dir == NoDirection || dir == NoDirection || dir == Reverse(m_End.Dir))
        return 0;
    return dir == m_End.Dir ? 100 * TurnPenalty : TurnPenalty;
}

double TLatticeSearch::StepCost(std::size_t node, std::size_t next, int dir) const
{
    const TXY a = At(node), b = At(next);
    for (const TRouteBox &box : m_Hard)
        if (Crosses(box, a, b))
            return Infinity;
    const double length = std::abs(b.X - a.X) + std::abs(b.Y - a.Y);
    // The step is counted from its left or upper node.
    const std::size_t from =
        dir == int(Tdirections::dLeft) || dir == int(Tdirections::dTop) ? next : node;
    const std::size_t i = from % m_Xs.size(), j = from / m_Xs.size();
    const bool level = dir == int(Tdirections::dLeft) || dir == int(Tdirections::dRight);
    const std::int32_t crossings = level ? m_Crossings.Level(i, j) : m_Crossings.Upright(i, j);
    // Added one box at a time, so that the sum does not depend on how it is counted.
    double cost = length;
    for (std::int32_t k = 0; k < crossings; ++k)
        cost += ObstacleFactor * length;
    return cost;
}

std::vector<TXY> TLatticeSearch::Path(std::size_t state) const
{
    std::vector<TXY> path;
    for (std::int64_t s = std::int64_t(state); s >= 0; s = m_From[std::size_t(s)])
        path.push_back(At(std::size_t(s) / 5));
    std::reverse(path.begin(), path.end());
    return path;
}

std::optional<std::vector<TXY>> TLatticeSearch::Run()
{
    if (!BuildLattice())
        return std::nullopt;
    const std::size_t nx = m_Xs.size();
    const std::size_t ny = m_Ys.size();
    auto indexOf = [](const std::vector<double> &axis, double v) {
        return std::size_t(std::find(axis.begin(), axis.end(), v) - axis.begin());
    };
    const std::size_t startNode =
        indexOf(m_Ys, m_Start.Stub.Y) * nx + indexOf(m_Xs, m_Start.Stub.X);
    m_Goal = indexOf(m_Ys, m_End.Stub.Y) * nx + indexOf(m_Xs, m_End.Stub.X);
    // A state is a node and the direction the route arrived in (or none at a free start).
    m_Cost.assign(nx * ny * 5, Infinity);
    m_From.assign(nx * ny * 5, -1);
    using TEntry = std::pair<double, std::size_t>;
    std::priority_queue<TEntry, std::vector<TEntry>, std::greater<>> open;
    const std::size_t first = startNode * 5 + std::size_t(m_Start.Dir);
    m_Cost[first] = 0;
    open.push({Heuristic(startNode), first});
    double best = Infinity;
    std::size_t bestState = 0;
    while (!open.empty()) {
        const auto [f, state] = open.top();
        open.pop();
        if (f >= best)
            break;
        const std::size_t node = state / 5;
        const int dir = int(state % 5);
        const double g = m_Cost[state];
        if (f > g + Heuristic(node))
            continue; // superseded by a cheaper way here
        if (node == m_Goal) {
            if (g + Terminal(dir) < best) {
                best = g + Terminal(dir);
                bestState = state;
            }
            continue;
        }
        const std::size_t i = node % nx, j = node / nx;
        for (int next = 0; next < 4; ++next) {
            if (dir != NoDirection && next == Reverse(dir))
                continue;
            const std::int64_t ni = std::int64_t(i) + StepX[next];
            const std::int64_t nj = std::int64_t(j) + StepY[next];
            if (ni < 0 || nj < 0 || ni >= std::int64_t(nx) || nj >= std::int64_t(ny))
                continue;
            const std::size_t nextNode = std::size_t(nj) * nx + std::size_t(ni);
            double cost = StepCost(node, nextNode, next);
            if (dir != NoDirection && next != dir)
                cost += TurnPenalty;
            const std::size_t nextState = nextNode * 5 + std::size_t(next);
            if (g + cost < m_Cost[nextState]) {
                m_Cost[nextState] = g + cost;
                m_From[nextState] = std::int64_t(state);
                open.push({g + cost + Heuristic(nextNode), nextState});
            }
        }
    }
    if (best == Infinity)
        return std::nullopt;
    return Path(bestState);
}

// Between the stubs with at most two turns, leaving along the start's exit axis.
std::vector<TXY> PlainRoute(const TEndPlan &start, const TEndPlan &end)
{
    const TXY a = start.Stub, b = end.Stub;
    const bool horizontal = start.Dir == NoDirection ? std::abs(b.X - a.X) >= std::abs(b.Y - a.Y)
                                                     : start.Dir == int(Tdirections::dLeft) ||
                                                           start.Dir == int(Tdirections::dRight);
    if (horizontal) {
        const double mid = (a.X + b.X) / 2;
        return {a, {mid, a.Y}, {mid, b.Y}, b};
    }
    const double mid = (a.Y + b.Y) / 2;
    return {a, {a.X, mid}, {b.X, mid}, b};
}

} // namespace

Tdirections ExitDirection(const TRouteBox &box, TMyPoint corner, TMyPoint p)
{
    if (corner.X == box.Left)
        return Tdirections::dLeft;
    if (corner.X == box.Right)
        return Tdirections::dRight;
    if (corner.Y == box.Top)
        return Tdirections::dTop;
    if (corner.Y == box.Bottom)
        return Tdirections::dbottom;
    const double d[4] = {std::abs(p.X - box.Left), std::abs(p.X - box.Right),
                         std::abs(p.Y - box.Top), std::abs(p.Y - box.Bottom)};
    constexpr Tdirections sides[4] = {Tdirections::dLeft, Tdirections::dRight, Tdirections::dTop,
                                      Tdirections::dbottom};
    return sides[std::min_element(std::begin(d), std::end(d)) - std::begin(d)];
}

std::vector<TMyPoint> RouteOrthogonal(const TRouteRequest &request)
{
    const TEndPlan start = PlanEnd(request.Start);
    const TEndPlan end = PlanEnd(request.End);
    // The bound boxes must not be entered; but when one of them (with its clearance) holds
    // a stub, shapes overlap or nearly touch, and that box can only be avoided where
    // possible like any other shape.
    std::vector<TRouteBox> hard, soft;
    for (const TRouteEnd *e : {&request.Start, &request.End}) {
        if (!e->Box)
            continue;
        const TRouteBox b = Inflated(*e->Box, Clearance);
        const bool holdsStub = InsideOpen(b, start.Stub) || InsideOpen(b, end.Stub);
        (holdsStub ? soft : hard).push_back(b);
    }

    std::vector<TXY> middle;
    if (start.Stub == end.Stub)
        middle = {start.Stub};
    else if (auto found = TLatticeSearch(start, end, hard, soft, request).Run())
        middle = std::move(*found);
    else
        middle = PlainRoute(start, end);

    std::vector<TMyPoint> route;
    auto add = [&route](TXY p) { route.push_back({float(p.X), float(p.Y)}); };
    for (TXY p : start.Lead)
        add(p);
    for (TXY p : middle)
        add(p);
    for (auto it = end.Lead.rbegin(); it != end.Lead.rend(); ++it)
        add(*it);
    MergePoints(route);
    return route;
}

void MergePoints(std::vector<TMyPoint> &points)
{
    auto collinear = [](TMyPoint a, TMyPoint b, TMyPoint c) {
        return (a.X == b.X && b.X == c.X) || (a.Y == b.Y && b.Y == c.Y);
    };
    std::vector<TMyPoint> out;
    out.reserve(points.size());
    for (const TMyPoint p : points) {
        if (!out.empty() && out.back() == p)
            continue;
        // A point between two others on their line is no corner; taking it out may put the
        // previous point between its neighbours in turn, or back onto the one before.
        while (out.size() >= 2 && collinear(out[out.size() - 2], out.back(), p))
            out.pop_back();
        if (!out.empty() && out.back() == p)
            continue;
        out.push_back(p);
    }
    points = std::move(out);
}

} // namespace tessal
