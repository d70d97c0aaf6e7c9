// SPDX-License-Identifier: GPL-2.0-or-later
// Turns the parsed DXF model into shapes of a drawing.
#pragma once

#include <tessal/dxf/import/dxfimport.h>
#include <tessal/dxf/import/dxfmodel_p.h>
#include <tessal/geometry/mypoint.h>
#include <tessal/surface/drawingdraft.h>

#include <QFontMetricsF>
#include <QTransform>

#include <algorithm>
#include <map>
#include <vector>

namespace tessal {
class TMyShape;
}

namespace tessal::DxfImport {

// Builds the drawing aside and puts it in place of the drawing of cad only once every entity
// is built, so that a cancel at any report leaves cad as it was.
class TBuilder
{
public:
    TBuilder(TMyCAD &cad, const TModel &model, TDxfImportReport &report,
             const TDxfImportOptions &options);
    // Told now and then the top-level entities built of all; answers false to stop the build.
    // The last report, all of them built, comes before cad changes. False when stopped.
    bool Build(const TParseProgress &progress);

private:
    // The colour and weight an entity draws with, "by block" resolved by the INSERT above.
    struct TResolved
    {
        std::uint32_t Rgb = 0;
        std::int32_t Weight = -3;
    };
    using TShapes = std::vector<TMyShape *>;

    void MakeLayers();
    void BuildEntities(const TParseProgress &progress);
    // Reports after every so many visits, also within the copies of a block, where a single
    // INSERT can make many shapes; throws when the report stops the build.
    void Pace();
    std::int32_t LayerId(const std::string &name);
    TResolved Resolve(const TStyle &style, const TResolved &block) const;
    // The shapes of one entity under transform (file units to document pixels); inside a
    // block copy every shape goes onto layer (>= 0).
    TShapes Entity(const TEntity &e, const QTransform &t, const TResolved &block,
                   std::int32_t layer, std::int32_t depth);
    TShapes Insert(const TEntity &e, const QTransform &t, const TResolved &style,
                   std::int32_t layer, std::int32_t depth);
    TShapes Conic(const TEntity &e, const QTransform &t);
    TMyShape *EllipticArc(QPointF c, QPointF u, QPointF v, double s0, double s1, QPointF first,
                          QPointF last);
    TShapes Polyline(const TEntity &e, const QTransform &t);
    TMyShape *BulgeArc(QPointF a, QPointF b, double bulge, const QTransform &t);
    TShapes Text(const TEntity &e, const QTransform &t);
    TMyShape *Add(const char *className, TMyPointArray points, double angle = 0);
    TMyShape *Chain(const std::vector<QPointF> &points, const QTransform &t, bool closed);
    TMyShape *Group(const TShapes &members, std::int32_t layer);
    void Skip(const std::string &type, const char *reason);
    void FitControl();
    // Entities visited before the import stops: every visit of a drawable entity makes a
    // shape, so twice the shape limit leaves room for the ones that are skipped.
    std::int64_t VisitLimit() const { return 2 * m_Options.MaxShapes + 10000; }
    // Points made before the import stops. A visit of a block's entity costs what its
    // points cost (a spline of a thousand control points is a thousand times a line), so
    // blocks of long curves inserting each other are bounded by their points as well. A
    // drawing's own entities, made once each, always fit.
    std::int64_t PointLimit() const;
    // Metrics of the font at a pixel size, made once per size: a drawing has many texts
    // but few sizes.
    const QFontMetricsF &Metrics(const QString &family, std::int32_t pixelSize);

    TMyCAD &m_Cad;
    // What the import makes, until it replaces the drawing of m_Cad.
    TDrawingDraft m_Draft;
    const TModel &m_Model;
    TDxfImportReport &m_Report;
    const TDxfImportOptions &m_Options;
    std::map<std::string, std::int32_t> m_LayerIds;
    std::map<std::int32_t, const TLayerInfo *> m_LayerInfo;
    // Set per entity before its shapes are added.
    TResolved m_Style;
    std::int32_t m_Layer = -1;
    bool m_Full = false;
    std::int64_t m_Visits = 0;
    std::int64_t m_Points = 0;
    std::int64_t m_PointLimit = 0;
    // The progress of the build: top-level entities done, and the visits at the last report.
    const TParseProgress *m_Progress = nullptr;
    std::int64_t m_Done = 0;
    std::int64_t m_Reported = 0;
    // Where the points of the shapes made lie (groups lie within their members).
    struct TBounds
    {
        float Left = 0, Top = 0, Right = 0, Bottom = 0;
        bool Empty = true;
        void Add(TMyPoint p)
        {
            Left = Empty ? p.X : std::min(Left, p.X);
            Top = Empty ? p.Y : std::min(Top, p.Y);
            Right = Empty ? p.X : std::max(Right, p.X);
            Bottom = Empty ? p.Y : std::max(Bottom, p.Y);
            Empty = false;
        }
    } m_Bounds;
    std::map<std::pair<QString, std::int32_t>, QFontMetricsF> m_Metrics;
};

} // namespace tessal::DxfImport
