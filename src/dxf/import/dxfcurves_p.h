// SPDX-License-Identifier: GPL-2.0-or-later
// Curve helpers of the DXF import: bulges, elliptic arcs, splines, hatch edges.
#pragma once

#include <tessal/dxf/import/dxfmodel_p.h>

#include <dl_entities.h>

#include <QPointF>

#include <cstdint>
#include <vector>

namespace tessal::DxfImport {

// Curves are flattened in steps of at most this many degrees of their angle or parameter.
constexpr double MaxStepDegrees = 5;

// The points of the elliptic arc centre + major cos t + minor sin t for t from t0 to t1
// (radians, t1 > t0), both ends included; minor is major turned a quarter anticlockwise
// and scaled by ratio.
std::vector<QPointF> EllipsePoints(QPointF centre, QPointF major, double ratio, double t0,
                                   double t1);
// The vertices of a polyline with its bulged segments flattened (closed: the closing
// segment too, without repeating the first point).
std::vector<QPointF> FlattenPolyline(const std::vector<QPointF> &points,
                                     const std::vector<double> &bulges, bool closed);
// A spline as cubic Bezier pieces (3n + 1 points): exact for polynomial splines up to
// degree 3, close for rational or higher ones; fit-point splines pass through their points.
// Empty when the spline has fewer than two points.
std::vector<QPointF> SplineToBezier(const TEntity &spline);
// Appends a hatch boundary edge to a loop of points.
void AppendHatchEdge(const DL_HatchEdgeData &edge, std::vector<QPointF> &loop);
} // namespace tessal::DxfImport
