// SPDX-License-Identifier: GPL-2.0-or-later
// What the DXF parser collects before any shape is made: entities in file units.
#pragma once

#include <tessal/dxf/import/dxflines_p.h>

#include <QByteArray>
#include <QPointF>
#include <QString>

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

class QIODevice;

namespace tessal::DxfImport {

// Colour and line weight as the file gives them: Aci 256 is "by layer", 0 "by block";
// TrueColor is 0x00RRGGBB or -1; Weight is in 1/100 mm, negative for by layer/block/default.
struct TStyle
{
    std::string Layer = "0";
    std::int32_t Aci = 256;
    std::int32_t TrueColor = -1;
    std::int32_t Weight = -1;
};

enum class TKind : std::uint8_t {
    Line,     // Points[0..1]
    Point,    // Points[0]
    Circle,   // Centre, Radius
    Arc,      // Centre, Radius, Start/End in degrees, anticlockwise
    Ellipse,  // Centre, Major (end of the major axis from the centre), Ratio, Start/End
              // parameters in radians
    Polyline, // Points with Bulges, Closed
    Spline,   // Points (control or fit points), Weights, Knots, Degree, Closed, FitOnly
    Face,     // Points: the corners of SOLID, TRACE or 3DFACE in outline order
    Text,     // Points[0] insertion, Height, Angle (degrees), Text, HAlign, VAlign
    Insert,   // Block, Points[0], Scale, Angle, Cols/Rows, Spacing
    Hatch,    // Loops
};

struct TEntity
{
    TKind Kind = TKind::Line;
    std::string Type; // the DXF entity name, for the report
    TStyle Style;
    std::vector<QPointF> Points;
    std::vector<double> Bulges; // per point, up to the last that is not zero
    std::vector<double> Weights;
    std::vector<double> Knots;
    std::vector<std::vector<QPointF>> Loops;
    bool Closed = false;
    bool FitOnly = false;
    std::int32_t Degree = 3;
    QPointF Centre;
    QPointF Major;
    double Radius = 0, Ratio = 1, Start = 0, End = 0;
    double Height = 0, Angle = 0;
    QString Text;
    std::int32_t HAlign = 0; // 0 left, 1 centre, 2 right
    std::int32_t VAlign = 0; // 0 baseline, 1 bottom, 2 middle, 3 top
    std::string Block;
    QPointF Scale{1, 1};
    std::int32_t Cols = 1, Rows = 1;
    QPointF Spacing;
};

// Gives the last point of e its bulge. Most polylines have no arcs, so bulges are kept only up
// to the last one that is not zero; the points after it have none.
inline void SetLastBulge(TEntity &e, double bulge)
{
    if (e.Points.empty() || (bulge == 0 && e.Bulges.size() < e.Points.size()))
        return;
    e.Bulges.resize(e.Points.size(), 0.0);
    e.Bulges.back() = bulge;
}

// A deque: entities are large, and a growing deque never moves the ones it holds.
using TEntities = std::deque<TEntity>;

struct TLayerInfo
{
    std::string Name;
    bool Visible = true;
    std::int32_t Aci = 7;
    std::int32_t TrueColor = -1;
    std::int32_t Weight = -1;
};

struct TBlock
{
    QPointF Base;
    TEntities Entities;
};

struct TModel
{
    std::vector<TLayerInfo> Layers;
    std::map<std::string, TBlock> Blocks;
    TEntities Entities;
    std::int32_t InsUnits = -1;
    std::int32_t Measurement = -1;
    std::map<std::string, std::int64_t> Skipped; // "TYPE: reason" -> count
    bool Cancelled = false;                      // the progress handler stopped the parse
};

// What an import stopped by its progress handler says, whichever stage it stopped in.
inline QString CancelledMessage()
{
    return QStringLiteral("the import was cancelled");
}

// Told the bytes parsed so far and their total; answers false to stop the parse.
using TParseProgress = std::function<bool(std::int64_t done, std::int64_t total)>;

// The bytes of the device from its current position parsed into model, read in pieces of
// window bytes (the device must allow seeking back: it is read more than once); false with
// error when the data is no ASCII DXF, the parser gave up or the device could not be read
// (the model then holds what came before) or progress stopped it (Cancelled).
// decodeDirectly false leaves every entity to the parser library, which must give the same
// model.
bool ParseDxf(QIODevice &device, TModel &model, QString &error, const TParseProgress &progress,
              bool decodeDirectly = true, qsizetype window = DefaultWindow);
// The same from the file's bytes.
bool ParseDxf(const QByteArray &data, TModel &model, QString &error, const TParseProgress &progress,
              bool decodeDirectly = true, qsizetype window = DefaultWindow);

} // namespace tessal::DxfImport
