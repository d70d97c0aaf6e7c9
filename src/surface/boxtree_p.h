// SPDX-License-Identifier: MIT
// The R-tree both indexes of a surface keep: boxes in document units with what the index
// knows of each shape.
#pragma once

#include <tessal/geometry/mypoint.h>
#include <tessal/surface/pressgrid_p.h>

#include <boost/geometry.hpp>
#include <boost/geometry/geometries/box.hpp>
#include <boost/geometry/geometries/point.hpp>
#include <boost/geometry/index/rtree.hpp>
#include <boost/iterator/function_output_iterator.hpp>

#include <utility>

namespace tessal::boxtree {

namespace bg = boost::geometry;
namespace bgi = boost::geometry::index;

using TPoint2 = bg::model::point<float, 2, bg::cs::cartesian>;
using TBox2 = bg::model::box<TPoint2>;
using TValue = std::pair<TBox2, TIndexCandidate>;
using TTree = bgi::rtree<TValue, bgi::rstar<16>>;

inline TBox2 Box(const TMyRect &r)
{
    return {{r.Left, r.Top}, {r.Right, r.Bottom}};
}

// Calls visit(candidate) for every entry whose box meets geometry (edges included).
template <typename TGeometry, typename TVisit>
void Query(const TTree &tree, const TGeometry &geometry, TVisit visit)
{
    tree.query(bgi::intersects(geometry),
               boost::make_function_output_iterator([&](const TValue &v) { visit(v.second); }));
}

} // namespace tessal::boxtree
