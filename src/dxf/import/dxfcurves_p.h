// SPDX-License-Identifier: GPL-2.0-or-later
// Curve helpers of the DXF import: bulges, elliptic arcs, splines, hatch edges, colours.
#pragma once

#include <tessal/dxf/import/dxfmodel_p.h>

#include <dl_entities.h>

#include <QByteArray>
#include <QPointF>
#include <QString>

#include <cstdint>
#include <map>
#include <string>
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
// MTEXT without its formatting codes: \P breaks lines, stacked fractions become a/b.
QString PlainMText(const QString &text);
// A text value's bytes as text: UTF-8 when they are valid UTF-8, else the process's 8-bit
// code page (Windows-1252 unless the application set another); "\U+XXXX" escapes decoded and, for
// TEXT, the "%%" codes (%%d degree, %%p plus-minus, %%c diameter, %%% percent; the underline and
// overline switches %%u and %%o dropped).
QString DecodeText(const std::string &bytes, bool textCodes);
// One pass over the file before parsing. Answers the data with every count value (group
// codes 70-79 and 90-99) that exceeds the number of lines after it lowered to that number:
// no valid file needs more, and the parser allocates by these counts. Counts the entities
// of the ENTITIES and BLOCKS sections whose types the import does not know into unknown.
QByteArray Prescan(const QByteArray &data, std::map<std::string, std::int64_t> &unknown);
// The RGB value (0x00RRGGBB) of an AutoCAD colour index 1..255.
std::uint32_t AciToRgb(std::int32_t aci);

} // namespace tessal::DxfImport
