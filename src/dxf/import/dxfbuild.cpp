// SPDX-License-Identifier: GPL-2.0-or-later
// The parsed DXF model as shapes: layers, styles, geometry and block copies.
#include <tessal/dxf/dxfnumbers.h>
#include <tessal/dxf/import/dxfbuild_p.h>
#include <tessal/dxf/import/dxfcurves_p.h>
#include <tessal/dxf/import/dxfvalues_p.h>
#include <tessal/shapes/arc.h>
#include <tessal/shapes/text.h>
#include <tessal/surface/cad.h>

#include <QFontMetricsF>

#include <cmath>
#include <numbers>

namespace tessal::DxfImport {

namespace {

constexpr double Pi = std::numbers::pi;

// A file colour 0x00RRGGBB as a colour value 0x00BBGGRR.
TColor ToColor(std::uint32_t rgb)
{
    return TColor((rgb & 0xFF) << 16 | (rgb & 0xFF00) | (rgb >> 16 & 0xFF));
}

TMyPoint ToMy(QPointF p)
{
    return {float(p.x()), float(p.y())};
}

bool Finite(QPointF p)
{
    return std::isfinite(p.x()) && std::isfinite(p.y());
}

// A sweep below this many radians is drawn straight: its sagitta is under a 40,000th of its
// chord, and the arc shape itself draws so flat an arc as its chord.
constexpr double MinSweep = 1e-4;

// The build reports after this many entities visited: a report per entity would cost more
// than building a line, and a million entities still give a smooth bar.
constexpr std::int64_t ReportVisits = 4096;

// Thrown when a report stops the build; Build catches it and the draft is dropped.
struct TBuildStopped
{};

// The image of a direction under t (its linear part only).
QPointF Linear(const QTransform &t, QPointF v)
{
    return {t.m11() * v.x() + t.m21() * v.y(), t.m12() * v.x() + t.m22() * v.y()};
}

double Length(QPointF v)
{
    return std::hypot(v.x(), v.y());
}

// The curve u cos s + v sin s about its centre, by its axes: it equals
// Major cos (s - Shift) + Minor sin (s - Shift), Major and Minor perpendicular.
struct TAxes
{
    QPointF Major, Minor;
    double Shift = 0;
};

TAxes AxesOf(QPointF u, QPointF v)
{
    const double uu = QPointF::dotProduct(u, u), vv = QPointF::dotProduct(v, v),
                 uv = QPointF::dotProduct(u, v);
    const double shift = 0.5 * std::atan2(2 * uv, uu - vv);
    const double c = std::cos(shift), s = std::sin(shift);
    return {u * c + v * s, -u * s + v * c, shift};
}

} // namespace

TBuilder::TBuilder(TMyCAD &cad, const TModel &model, TDxfImportReport &report,
                   const TDxfImportOptions &options)
    : m_Cad(cad)
    , m_Draft(cad)
    , m_Model(model)
    , m_Report(report)
    , m_Options(options)
{}

bool TBuilder::Build(const TParseProgress &progress)
{
    // The shapes are made for the surface before they join it. As while a file is read,
    // their setters must not ask for the drawing still shown to be composed again at every
    // progress report that lets events through.
    struct TLoadingScope
    {
        TMyCAD &Cad;
        const bool Former = Cad.IsLoading();
        explicit TLoadingScope(TMyCAD &cad)
            : Cad(cad)
        {
            Cad.SetLoading(true);
        }
        ~TLoadingScope() { Cad.SetLoading(Former); }
    };
    try {
        const TLoadingScope loading(m_Cad);
        BuildEntities(progress);
    } catch (const TBuildStopped &) {
        return false;
    }
    m_Cad.CommitDraft(m_Draft);
    FitControl();
    // Nothing is selected after an import, and the shapes are indexed and shown anew.
    m_Cad.ClearWorkingShapes();
    m_Cad.RequestRepaint();
    return true;
}

void TBuilder::BuildEntities(const TParseProgress &progress)
{
    m_Progress = &progress;
    m_PointLimit = PointLimit();
    MakeLayers();
    // $INSUNITS: 1 inch, 2 foot, 4 mm, 5 cm, 6 m, 0 or absent: by $MEASUREMENT (0 imperial
    // drawings are in inches, metric ones in millimetres).
    static const std::map<std::int32_t, double> unitMm = {
        {1, 25.4},  {2, 304.8},   {3, 1609344}, {4, 1},      {5, 10},    {6, 1000},
        {7, 1e6},   {8, 2.54e-5}, {9, 0.0254},  {10, 914.4}, {11, 1e-7}, {12, 1e-6},
        {13, 1e-3}, {14, 100},    {15, 1e4},    {16, 1e5},   {17, 1e12}};
    double mm = m_Model.Measurement == 0 ? 25.4 : 1;
    if (auto it = unitMm.find(m_Model.InsUnits); it != unitMm.end())
        mm = it->second;
    m_Report.UnitToMm = mm;
    const double u = mm * Dxf::PixelsPerMm;
    // File units to document pixels: the inverse of the writer's millimetres and Y flip.
    const QTransform toPixels(u, 0, 0, -u, 0, m_Cad.height());
    const TResolved none{0, -3};
    for (const TEntity &e : m_Model.Entities) {
        if (m_Full)
            Skip(e.Type, "the drawing reached the shape limit");
        else
            Entity(e, toPixels, none, -1, 0);
        ++m_Done;
    }
    const auto all = std::int64_t(m_Model.Entities.size());
    if (!progress(all, all))
        throw TBuildStopped();
}

void TBuilder::Pace()
{
    if (m_Visits - m_Reported < ReportVisits)
        return;
    m_Reported = m_Visits;
    if (!(*m_Progress)(m_Done, std::int64_t(m_Model.Entities.size())))
        throw TBuildStopped();
}

void TBuilder::MakeLayers()
{
    LayerId("0");
    for (const TLayerInfo &layer : m_Model.Layers) {
        const std::int32_t id = LayerId(layer.Name);
        if (id >= 0 && m_Draft.GetLayerNameByID(id) == QString::fromStdString(layer.Name)) {
            m_LayerInfo[id] = &layer;
            if (!layer.Visible)
                m_Draft.InVisibleLayerByID(id);
        }
    }
    m_Draft.SetCurrentLayerId(LayerId("0"));
}

std::int32_t TBuilder::LayerId(const std::string &name)
{
    if (auto it = m_LayerIds.find(name); it != m_LayerIds.end())
        return it->second;
    std::int32_t id = m_Draft.NewLayer(QString::fromStdString(name), true);
    if (id < 0) {
        m_Report.Notes << QStringLiteral("layer \"%1\" put on layer \"0\": a drawing holds at "
                                         "most %2 layers")
                              .arg(QString::fromStdString(name))
                              .arg(TMyCAD::MaxLayers);
        id = m_LayerIds.count("0") ? m_LayerIds["0"] : m_Draft.GetMaxLayerId();
    }
    m_LayerIds[name] = id;
    return id;
}

TBuilder::TResolved TBuilder::Resolve(const TStyle &style, const TResolved &block) const
{
    TResolved r;
    const auto layerIt = m_LayerIds.find(style.Layer);
    const TLayerInfo *layer = nullptr;
    if (layerIt != m_LayerIds.end())
        if (auto info = m_LayerInfo.find(layerIt->second); info != m_LayerInfo.end())
            layer = info->second;
    if (style.TrueColor >= 0)
        r.Rgb = std::uint32_t(style.TrueColor) & 0xFFFFFF;
    else if (style.Aci == 0)
        r.Rgb = block.Rgb;
    else if (style.Aci == 256 || style.Aci < 0)
        r.Rgb = layer ? (layer->TrueColor >= 0 ? std::uint32_t(layer->TrueColor) & 0xFFFFFF
                                               : AciToRgb(layer->Aci))
                      : AciToRgb(7);
    else
        r.Rgb = AciToRgb(style.Aci);
    // Colour 7 is white on a dark screen and black on paper; the drawing is paper.
    if (r.Rgb == 0xFFFFFF)
        r.Rgb = 0;
    r.Weight = style.Weight == -2   ? block.Weight
               : style.Weight == -1 ? (layer ? layer->Weight : -3)
                                    : style.Weight;
    return r;
}

TBuilder::TShapes TBuilder::Entity(const TEntity &e, const QTransform &t, const TResolved &block,
                                   std::int32_t layer, std::int32_t depth)
{
    if (m_Draft.GetShapesCount() >= m_Options.MaxShapes) {
        m_Full = true;
        Skip(e.Type, "the drawing reached the shape limit");
        return {};
    }
    // Blocks that insert each other many times over without drawing anything create no
    // shapes but still cost time: the entities visited are limited as well.
    if (++m_Visits > VisitLimit()) {
        m_Full = true;
        Skip(e.Type, "the blocks expand to more entities than the import visits");
        return {};
    }
    if (m_Points > m_PointLimit) {
        m_Full = true;
        Skip(e.Type, "the blocks expand to more points than the import makes");
        return {};
    }
    Pace();
    // Layers used but not in the table are made on first use; inside a block copy every
    // shape takes the INSERT's layer.
    m_Layer = layer >= 0 ? layer : LayerId(e.Style.Layer);
    m_Style = Resolve(e.Style, block);
    TShapes out;
    switch (e.Kind) {
    case TKind::Line:
        out.push_back(Chain(e.Points, t, false));
        break;
    case TKind::Point: {
        const QPointF p = t.map(e.Points[0]);
        out.push_back(Add("TMyLinkPoint", {ToMy(p + QPointF(-4, -4)), ToMy(p + QPointF(4, -4)),
                                           ToMy(p + QPointF(4, 4)), ToMy(p + QPointF(-4, 4))}));
        if (out.back())
            out.back()->LinkPoints() = {ToMy(p)};
        break;
    }
    case TKind::Circle:
    case TKind::Arc:
    case TKind::Ellipse:
        out = Conic(e, t);
        break;
    case TKind::Polyline:
        if (e.Points.size() < 2) {
            Skip(e.Type, "fewer than two vertices");
            return {};
        }
        out = Polyline(e, t);
        break;
    case TKind::Spline: {
        std::vector<QPointF> bezier = SplineToBezier(e);
        if (bezier.size() < 4) {
            Skip(e.Type, "fewer than two points");
            return {};
        }
        TMyPointArray points;
        for (QPointF p : bezier)
            points.push_back(ToMy(t.map(p)));
        out.push_back(Add("TMyPolyBezier", std::move(points)));
        break;
    }
    case TKind::Face:
        if (e.Points.size() < 2) {
            Skip(e.Type, "all corners coincide");
            return {};
        }
        out.push_back(Chain(e.Points, t, e.Points.size() > 2));
        break;
    case TKind::Hatch: {
        TShapes loops;
        for (const std::vector<QPointF> &loop : e.Loops)
            if (loop.size() >= 3)
                loops.push_back(Chain(loop, t, true));
        if (loops.empty()) {
            Skip(e.Type, "no boundary with three or more points");
            return {};
        }
        out = loops.size() == 1 ? loops : TShapes{Group(loops, m_Layer)};
        break;
    }
    case TKind::Text:
        out = Text(e, t);
        break;
    case TKind::Insert:
        return Insert(e, t, m_Style, m_Layer, depth);
    }
    std::erase(out, nullptr);
    if (out.empty()) {
        if (!m_Full)
            Skip(e.Type, "invalid geometry (not finite or of zero size)");
        return {};
    }
    ++m_Report.EntitiesRead;
    return out;
}

// Every point of the model may turn into a few dozen (arcs and curves are flattened), and
// the shape limit allows a few points a shape on top of that.
std::int64_t TBuilder::PointLimit() const
{
    std::int64_t modelPoints = 0;
    const auto count = [&](const TEntities &entities) {
        for (const TEntity &e : entities)
            modelPoints += 1 + std::int64_t(e.Points.size());
    };
    count(m_Model.Entities);
    for (const auto &[name, block] : m_Model.Blocks)
        count(block.Entities);
    return 64 * modelPoints + 16 * m_Options.MaxShapes + 100000;
}

TMyShape *TBuilder::Add(const char *className, TMyPointArray points, double angle)
{
    m_Points += std::int64_t(points.size());
    for (TMyPoint p : points)
        if (!std::isfinite(p.X) || !std::isfinite(p.Y))
            return nullptr;
    for (TMyPoint p : points)
        m_Bounds.Add(p);
    std::unique_ptr<TMyShape> shape = m_Cad.CreateShapeByName(QLatin1String(className));
    // The angle first: set on a shape with points, it would turn them.
    shape->SetAngle(float(angle));
    shape->Points() = std::move(points);
    const TMyPoint centre = shape->ComputeCenterPoint(4);
    shape->SetCenterPoint(centre);
    const bool box = shape->GetPointsCount() == 4 && dynamic_cast<TMyRectangle *>(shape.get());
    shape->SetTextPoint(box ? TMyPoint{centre.X, shape->GetLeftBottom().Y + 10} : centre);
    TPen pen = shape->Pen();
    pen.Color = ToColor(m_Style.Rgb);
    if (m_Style.Weight > 0)
        pen.Width = std::max(1, int(std::lround(m_Style.Weight / 100.0 * Dxf::PixelsPerMm)));
    shape->SetPen(pen);
    const std::int32_t id = m_Draft.ShapeIdCounter();
    shape->SetShapeNo(m_Draft.GetShapesCount());
    shape->SetShapeId(id);
    shape->SetName(QStringLiteral("Shape") + QString::number(id));
    shape->SetLayerId(m_Layer);
    TMyShape *added = m_Draft.AddShape(std::move(shape));
    if (added)
        ++m_Report.ShapesCreated;
    return added;
}

// Two points make a line; more an open polyline or, closed, a polygon.
TMyShape *TBuilder::Chain(const std::vector<QPointF> &points, const QTransform &t, bool closed)
{
    TMyPointArray pts;
    pts.reserve(points.size() + 1);
    for (QPointF p : points)
        pts.push_back(ToMy(t.map(p)));
    if (pts.size() == 2 && !closed)
        return Add("TMyLine", std::move(pts));
    if (closed && pts.size() >= 3) {
        if (pts.back() != pts.front())
            pts.push_back(pts.front());
        return Add("TMyPolygon", std::move(pts));
    }
    return Add("TMyPolyLine", std::move(pts));
}

// Circles, arcs and ellipses. Full curves become ellipse shapes with the axes of the
// transformed curve; partial ones arcs (see EllipticArc).
TBuilder::TShapes TBuilder::Conic(const TEntity &e, const QTransform &t)
{
    const double d = Pi / 180;
    QPointF major = e.Kind == TKind::Ellipse ? e.Major : QPointF(e.Radius, 0);
    const double ratio = e.Kind == TKind::Ellipse ? e.Ratio : 1;
    double t0 = e.Kind == TKind::Arc ? e.Start * d : e.Start;
    double t1 = e.Kind == TKind::Arc ? e.End * d : e.End;
    if (e.Kind == TKind::Circle) {
        t0 = 0;
        t1 = 2 * Pi;
    }
    if (!(Length(major) > 0) || !(ratio > 0) || !std::isfinite(t0 + t1) || std::fabs(t0) > 1e6 ||
        std::fabs(t1) > 1e6)
        return {};
    // The way round from the start to the end; equal ends (within rounding) mean all of it.
    double span = std::fmod(t1 - t0, 2 * Pi);
    if (span < 0)
        span += 2 * Pi;
    const bool full = e.Kind == TKind::Circle || span <= 1e-9 || span >= 2 * Pi - 1e-9;
    t1 = t0 + span;
    // The transformed curve is c + u cos s + v sin s.
    const QPointF minor(-major.y() * ratio, major.x() * ratio);
    const QPointF c = t.map(e.Centre);
    const QPointF u = Linear(t, major), v = Linear(t, minor);
    if (!Finite(c))
        return {};
    if (!full) {
        auto at = [&](double s) { return c + u * std::cos(s) + v * std::sin(s); };
        return {EllipticArc(c, u, v, t0, t1, at(t0), at(t1))};
    }
    const TAxes axes = AxesOf(u, v);
    const double ra = Length(axes.Major), rb = Length(axes.Minor);
    if (!(ra > 0) || !(rb > 0))
        return {};
    const double angle = std::atan2(axes.Major.y(), axes.Major.x());
    const QPointF ex = axes.Major / ra, ey(-ex.y(), ex.x());
    auto corner = [&](double x, double y) { return ToMy(c + ex * x + ey * y); };
    return {Add("TMyEllipse", {corner(-ra, -rb), corner(ra, -rb), corner(ra, rb), corner(-ra, rb)},
                angle)};
}

// The elliptic arc c + u cos s + v sin s for s from s0 to s1 (either way round), in
// document pixels, from first to last (the curve's ends, given so that pieces of a
// polyline meet exactly). An arc of a circle and half an ellipse are arc shapes, exact;
// any other part of an ellipse (a partial ELLIPSE, an arc under unequal block scales)
// becomes cubic Bezier pieces of at most 22.5 degrees of the parameter, which keep within
// 1e-7 of the larger radius of the true curve.
TMyShape *TBuilder::EllipticArc(QPointF c, QPointF u, QPointF v, double s0, double s1,
                                QPointF first, QPointF last)
{
    auto at = [&](double s) { return c + u * std::cos(s) + v * std::sin(s); };
    const double sweep = s1 - s0;
    const TAxes axes = AxesOf(u, v);
    const double ra = Length(axes.Major), rb = Length(axes.Minor);
    if (!(ra > 0) || !(rb > 0) || !Finite(first) || !Finite(last))
        return nullptr;
    if (std::fabs(ra - rb) <= 1e-9 * ra) {
        TMyShape *arc = Add("TMyElliArc", {ToMy(first), ToMy(at(s0 + sweep / 2)), ToMy(last)});
        if (arc)
            static_cast<TMyElliArc *>(arc)->SetArcMode(TArcMode::amCircle);
        return arc;
    }
    if (std::fabs(std::fabs(sweep) - Pi) <= 1e-9) {
        // Half an ellipse: the arc shape's ellipse mode in the frame of the axes, which finds
        // the ellipse from the start and the point between the ends. That point is taken
        // where it pins the two radii best (the two points' coordinates on the axes differ
        // the most in proportion).
        double best = 0.5, score = -1;
        for (int k = 1; k < 12; ++k) {
            const double a0 = s0 - axes.Shift, a1 = a0 + sweep * k / 12;
            const double q = std::fabs(std::sin(a1 - a0) * std::sin(a1 + a0));
            if (q > score) {
                score = q;
                best = k / 12.0;
            }
        }
        TMyShape *arc = Add("TMyElliArc", {ToMy(first), ToMy(at(s0 + sweep * best)), ToMy(last)},
                            std::atan2(axes.Major.y(), axes.Major.x()));
        if (arc)
            static_cast<TMyElliArc *>(arc)->SetArcMode(TArcMode::amEllipse);
        return arc;
    }
    // Each piece's inner control points lie along the tangents at its ends, 4/3 tan(w / 4)
    // of the parameter step w away in the curve's derivative.
    const std::int32_t pieces =
        std::clamp(std::int32_t(std::ceil(std::fabs(sweep) / (Pi / 8))), 1, 16);
    const double step = sweep / pieces, h = 4.0 / 3 * std::tan(step / 4);
    auto tangent = [&](double s) { return -u * std::sin(s) + v * std::cos(s); };
    TMyPointArray points{ToMy(first)};
    for (std::int32_t i = 0; i < pieces; ++i) {
        const double a = s0 + step * i, b = s0 + step * (i + 1);
        const QPointF from = i == 0 ? first : at(a), to = i + 1 == pieces ? last : at(b);
        points.push_back(ToMy(from + tangent(a) * h));
        points.push_back(ToMy(to - tangent(b) * h));
        points.push_back(ToMy(to));
    }
    return Add("TMyPolyBezier", std::move(points));
}

// A polyline without bulges is one shape: a line, an open polyline or, closed, a polygon.
// Bulged segments are arcs: the polyline becomes a group of its arcs and of the straight
// runs between them, in the order of the outline, each piece ending where the next begins.
// A closed one starts after its first arc, so that no straight run is cut at vertex 0.
TBuilder::TShapes TBuilder::Polyline(const TEntity &e, const QTransform &t)
{
    const std::size_t n = e.Points.size(), segments = e.Closed ? n : n - 1;
    auto bulgeOf = [&](std::size_t i) {
        const double b = i < e.Bulges.size() ? e.Bulges[i] : 0;
        return std::isfinite(b) && std::fabs(4 * std::atan(b)) >= MinSweep &&
                       e.Points[i] != e.Points[(i + 1) % n]
                   ? b
                   : 0.0;
    };
    std::size_t start = segments;
    for (std::size_t i = 0; i < segments && start == segments; ++i)
        if (bulgeOf(i) != 0)
            start = i;
    if (start == segments)
        return {Chain(e.Points, t, e.Closed)};
    // Each arc is a shape, and so may be the run after it: a polyline of many arcs must
    // keep within the shape limit too.
    std::int64_t arcs = 0;
    for (std::size_t i = 0; i < segments; ++i)
        arcs += bulgeOf(i) != 0;
    if (m_Draft.GetShapesCount() + 2 * arcs + 2 > m_Options.MaxShapes) {
        m_Full = true;
        Skip(e.Type, "the drawing reached the shape limit");
        return {};
    }
    start = e.Closed ? (start + 1) % n : 0;
    TShapes pieces;
    std::vector<QPointF> run{e.Points[start]};
    auto endRun = [&] {
        if (run.size() >= 2)
            pieces.push_back(Chain(run, t, false));
    };
    for (std::size_t k = 0; k < segments; ++k) {
        const std::size_t i = (start + k) % n;
        const QPointF b = e.Points[(i + 1) % n];
        const double bulge = bulgeOf(i);
        if (bulge == 0) {
            run.push_back(b);
            continue;
        }
        endRun();
        run = {b};
        pieces.push_back(BulgeArc(e.Points[i], b, bulge, t));
    }
    endRun();
    std::erase(pieces, nullptr);
    if (pieces.size() <= 1)
        return pieces;
    return {Group(pieces, m_Layer)};
}

// The arc of a bulged segment from a to b: the bulge is the tangent of a quarter of the
// included angle, positive anticlockwise (in the file's frame, Y up).
TMyShape *TBuilder::BulgeArc(QPointF a, QPointF b, double bulge, const QTransform &t)
{
    const double sweep = 4 * std::atan(bulge);
    const double chord = Length(b - a);
    const double radius = chord / (2 * std::sin(std::fabs(sweep) / 2));
    // The centre lies on the chord's perpendicular bisector, on the left for a positive
    // bulge when the sweep is below a half turn.
    const QPointF mid = (a + b) / 2, dir = (b - a) / chord;
    const double offset = radius * std::cos(sweep / 2) * (sweep > 0 ? 1 : -1);
    const QPointF centre(mid.x() - dir.y() * offset, mid.y() + dir.x() * offset);
    const double s0 = std::atan2(a.y() - centre.y(), a.x() - centre.x());
    return EllipticArc(t.map(centre), Linear(t, {radius, 0}), Linear(t, {0, radius}), s0,
                       s0 + sweep, t.map(a), t.map(b));
}

// A text shape whose first line starts where the file's text does: the box is sized for
// the lines in the font, placed by the alignment around the insertion point, and turned
// with the text.
TBuilder::TShapes TBuilder::Text(const TEntity &e, const QTransform &t)
{
    const QPointF at = t.map(e.Points[0]);
    const double a = e.Angle * Pi / 180;
    const QPointF dir = t.map(e.Points[0] + QPointF(std::cos(a), std::sin(a))) - at;
    const QPointF up = t.map(e.Points[0] + QPointF(-std::sin(a), std::cos(a)) * e.Height) - at;
    const double height = std::hypot(up.x(), up.y());
    if (!(height >= 0.5) || !Finite(at) || !std::isfinite(height) || height > 1e5)
        return {};
    const double angle = std::atan2(dir.y(), dir.x());
    // Text is drawn with its point size as its pixel height at zoom 1, so the height in
    // document pixels is the size, as the writer has it.
    TFont font = m_Cad.Font();
    font.SetSize(std::int32_t(std::lround(height)));
    font.Color = ToColor(m_Style.Rgb);
    const QFontMetricsF &metrics = Metrics(font.Name, std::max(1, font.Size()));
    const QStringList lines = e.Text.split(QLatin1Char('\n'));
    double width = 0;
    for (const QString &line : lines)
        width = std::max(width, metrics.horizontalAdvance(line));
    const double margin = 2, lineHeight = metrics.height();
    const double w = width + 2 * margin + 1, h = lineHeight * lines.size() + 2 * margin;
    // The box in the text's upright frame, x along the text, y down, from the insertion.
    const double left = e.HAlign == 0 ? -margin : e.HAlign == 1 ? -w / 2 : -w + margin;
    const double top = e.VAlign == 3   ? -margin
                       : e.VAlign == 2 ? -h / 2
                       : e.VAlign == 1 ? -h + margin
                                       : -margin - metrics.ascent();
    const QPointF ex(std::cos(angle), std::sin(angle)), ey(-ex.y(), ex.x());
    auto corner = [&](double x, double y) { return ToMy(at + ex * x + ey * y); };
    TMyShape *shape = Add("TMyText",
                          {corner(left, top), corner(left + w, top), corner(left + w, top + h),
                           corner(left, top + h)},
                          angle);
    if (!shape)
        return {};
    auto *text = static_cast<TMyText *>(shape);
    text->SetFont(font);
    text->SetLines(lines);
    text->SetHAlignment(e.HAlign == 0   ? TAlignment::taLeftJustify
                        : e.HAlign == 1 ? TAlignment::taCenter
                                        : TAlignment::taRightJustify);
    return {shape};
}

const QFontMetricsF &TBuilder::Metrics(const QString &family, std::int32_t pixelSize)
{
    const auto key = std::make_pair(family, pixelSize);
    auto it = m_Metrics.find(key);
    if (it == m_Metrics.end()) {
        QFont font(family);
        font.setPixelSize(pixelSize);
        it = m_Metrics.emplace(key, QFontMetricsF(font)).first;
    }
    return it->second;
}

TBuilder::TShapes TBuilder::Insert(const TEntity &e, const QTransform &t, const TResolved &style,
                                   std::int32_t layer, std::int32_t depth)
{
    const auto blockIt = m_Model.Blocks.find(e.Block);
    if (blockIt == m_Model.Blocks.end()) {
        Skip(e.Type, "the block it names is not defined");
        return {};
    }
    if (depth >= m_Options.MaxBlockDepth) {
        Skip(e.Type, "blocks nested too deeply (or inserting themselves)");
        return {};
    }
    const TBlock &block = blockIt->second;
    const double a = e.Angle * Pi / 180;
    const QPointF ip = e.Points[0];
    TShapes cells;
    bool empty = false;
    for (std::int32_t row = 0; row < e.Rows && !m_Full && !empty; ++row)
        for (std::int32_t col = 0; col < e.Cols && !m_Full; ++col) {
            // Array cells are spaced along the insert's turned axes, unscaled.
            const QPointF off(col * e.Spacing.x(), row * e.Spacing.y());
            const QPointF place = ip + QPointF(off.x() * std::cos(a) - off.y() * std::sin(a),
                                               off.x() * std::sin(a) + off.y() * std::cos(a));
            QTransform local;
            local.translate(place.x(), place.y());
            local.rotateRadians(a);
            local.scale(e.Scale.x(), e.Scale.y());
            local.translate(-block.Base.x(), -block.Base.y());
            const QTransform full = local * t;
            TShapes members;
            for (const TEntity &inner : block.Entities) {
                const TShapes made = Entity(inner, full, style, layer, depth + 1);
                members.insert(members.end(), made.begin(), made.end());
            }
            if (members.empty()) {
                empty = true; // an empty block stays empty in every cell
                break;
            }
            m_Layer = layer;
            cells.push_back(Group(members, layer));
        }
    std::erase(cells, nullptr);
    if (cells.empty()) {
        Skip(e.Type, "its block has nothing that could be imported");
        return {};
    }
    ++m_Report.EntitiesRead;
    if (cells.size() == 1)
        return cells;
    return {Group(cells, layer)};
}

// A group of the shapes, all on one layer as groups require.
TMyShape *TBuilder::Group(const TShapes &members, std::int32_t layer)
{
    for (TMyShape *shape : members)
        shape->SetLayerId(layer);
    if (m_Draft.GroupShapes(members) < 0)
        return nullptr;
    ++m_Report.ShapesCreated;
    return m_Draft.GetShapeByNo(m_Draft.GetShapesCount() - 1);
}

void TBuilder::Skip(const std::string &type, const char *reason)
{
    ++m_Report.Skipped[QString::fromStdString(type) + QStringLiteral(": ") +
                       QString::fromLatin1(reason)];
}

// Moves a drawing that starts left of or above the control into view, and grows the
// control to hold it.
void TBuilder::FitControl()
{
    const std::int32_t count = m_Cad.GetShapesCount();
    if (count == 0)
        return;
    const float left = m_Bounds.Left, top = m_Bounds.Top, right = m_Bounds.Right,
                bottom = m_Bounds.Bottom;
    const float dx = left < 0 ? -left + 10 : 0, dy = top < 0 ? -top + 10 : 0;
    if (dx != 0 || dy != 0) {
        for (std::int32_t i = 0; i < count; ++i) {
            TMyShape *shape = m_Cad.GetShapeByNo(i);
            for (TMyPointArray *points : {&shape->Points(), &shape->LinkPoints()})
                for (TMyPoint &p : *points)
                    p = {p.X + dx, p.Y + dy};
            const TMyPoint c = shape->GetCenterPoint(), tp = shape->TextPoint();
            shape->SetCenterPoint({c.X + dx, c.Y + dy});
            shape->SetTextPoint({tp.X + dx, tp.Y + dy});
        }
        m_Report.Notes << QStringLiteral("the drawing was moved by (%1, %2) pixels to lie "
                                         "within the control")
                              .arg(double(dx))
                              .arg(double(dy));
    }
    const double w = std::min(double(right + dx) + 10, 1e6),
                 h = std::min(double(bottom + dy) + 10, 1e6);
    if (w > m_Cad.width() || h > m_Cad.height())
        m_Cad.resize(std::max(m_Cad.width(), int(w)), std::max(m_Cad.height(), int(h)));
}

} // namespace tessal::DxfImport
