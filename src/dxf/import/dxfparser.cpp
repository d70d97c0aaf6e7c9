// SPDX-License-Identifier: GPL-2.0-or-later
// The DXF file parsed by dxflib into the import model.
#include <tessal/dxf/import/dxfcurves_p.h>
#include <tessal/dxf/import/dxfdirect_p.h>
#include <tessal/dxf/import/dxfgroups_p.h>
#include <tessal/dxf/import/dxfmodel_p.h>
#include <tessal/dxf/import/dxfprescan_p.h>
#include <tessal/dxf/import/dxfvalues_p.h>

#include <dl_creationadapter.h>
#include <dl_dxf.h>

#include <QBuffer>
#include <QByteArray>
#include <QIODevice>
#include <QList>

#include <cmath>
#include <istream>
#include <new>
#include <streambuf>

namespace tessal::DxfImport {

namespace {

// Shows dxflib one group at a time: the lines of the group, straight from the file.
class TGroupBuffer : public std::streambuf
{
public:
    void Show(const char *begin, const char *end)
    {
        char *b = const_cast<char *>(begin);
        setg(b, b, const_cast<char *>(end));
    }
};

// Receives dxflib's callbacks. Entities made of several callbacks (polylines and their
// vertices, splines and their points, hatches and their loops) stay pending until the next
// entity starts or their sequence ends.
class TCollector : public DL_CreationAdapter
{
public:
    explicit TCollector(TModel &model)
        : m_Model(model)
    {}

    void Finish() { Flush(); }

    // Group 50 of the entity that dxflib hands on next (0 when it has none).
    void SetFileAngle(double degrees) { m_FileAngle = degrees; }

    // An entity decoded without the parser, in its place in the file.
    void AddDecoded(TEntity &&e)
    {
        Flush();
        if (e.Style.Layer.empty())
            e.Style.Layer = "0";
        m_Target->push_back(std::move(e));
    }

    // A POLYLINE decoded without the parser: its vertices follow until the sequence ends.
    void AddDecodedPolyline(TEntity &&e, std::int32_t flags)
    {
        if (flags & MeshFlags) {
            SkipMesh();
            return;
        }
        AddDecoded(std::move(e));
        m_Pending = true;
    }

    void AddDecodedVertex(QPointF at, double bulge, std::int32_t flags)
    {
        // A polyface mesh's face record has no point of its own.
        if ((flags & 128) && !(flags & 64))
            return;
        AddVertex(at, bulge);
    }

    void setVariableInt(const std::string &key, int value, int) override
    {
        if (key == "$INSUNITS")
            m_Model.InsUnits = value;
        else if (key == "$MEASUREMENT")
            m_Model.Measurement = value;
    }

    void addLayer(const DL_LayerData &data) override
    {
        const DL_Attributes a = getAttributes();
        TLayerInfo layer;
        layer.Name = data.name;
        // A negative colour number or the off flag switches a layer off; frozen hides it too.
        layer.Visible = !data.off && a.getColor() >= 0 && !(data.flags & 1);
        layer.Aci = std::abs(a.getColor());
        layer.TrueColor = a.getColor24();
        layer.Weight = a.getWidth();
        m_Model.Layers.push_back(layer);
    }

    void addBlock(const DL_BlockData &data) override
    {
        Flush();
        TBlock &block = m_Model.Blocks[data.name];
        block.Base = {data.bpx, data.bpy};
        block.Entities.clear();
        m_Target = &block.Entities;
    }

    void endBlock() override
    {
        Flush();
        m_Target = &m_Model.Entities;
    }

    // dxflib calls endSection at every group 0, so it ends nothing here.
    void endSequence() override { Flush(); }

    void addPoint(const DL_PointData &d) override { Add(TKind::Point, "POINT", {{d.x, d.y}}); }
    void addLine(const DL_LineData &d) override
    {
        Add(TKind::Line, "LINE", {{d.x1, d.y1}, {d.x2, d.y2}});
    }
    void addArc(const DL_ArcData &d) override
    {
        TEntity &e = Add(TKind::Arc, "ARC", {});
        e.Centre = {d.cx, d.cy};
        e.Radius = d.radius;
        e.Start = d.angle1;
        e.End = d.angle2;
    }
    void addCircle(const DL_CircleData &d) override
    {
        TEntity &e = Add(TKind::Circle, "CIRCLE", {});
        e.Centre = {d.cx, d.cy};
        e.Radius = d.radius;
    }
    void addEllipse(const DL_EllipseData &d) override
    {
        TEntity &e = Add(TKind::Ellipse, "ELLIPSE", {});
        e.Centre = {d.cx, d.cy};
        e.Major = {d.mx, d.my};
        e.Ratio = d.ratio;
        e.Start = d.angle1;
        e.End = d.angle2;
    }
    void addPolyline(const DL_PolylineData &d) override
    {
        // 8: 3D polyline, 16: polygon mesh, 64: polyface mesh. A 3D polyline is drawn by
        // its X and Y; meshes are not drawings of lines.
        if (d.flags & MeshFlags) {
            SkipMesh();
            return;
        }
        TEntity &e = Add(TKind::Polyline, "POLYLINE", {});
        e.Closed = d.flags & 1;
        m_Pending = true;
    }
    void addVertex(const DL_VertexData &d) override { AddVertex({d.x, d.y}, d.bulge); }
    void AddVertex(QPointF at, double bulge)
    {
        if (m_SkipVertices)
            return;
        if (!m_Pending || m_Target->empty() || m_Target->back().Kind != TKind::Polyline)
            return;
        TEntity &e = m_Target->back();
        e.Points.push_back(at);
        SetLastBulge(e, bulge);
    }
    // 16: polygon mesh, 64: polyface mesh.
    static constexpr std::int32_t MeshFlags = 16 | 64;
    void SkipMesh()
    {
        Skip("POLYLINE", "polygon and polyface meshes are not imported");
        m_SkipVertices = true;
    }
    void addSpline(const DL_SplineData &d) override
    {
        TEntity &e = Add(TKind::Spline, "SPLINE", {});
        e.Degree = std::int32_t(std::min(d.degree, 32u));
        e.Closed = d.flags & 1;
        m_Pending = true;
    }
    void addControlPoint(const DL_ControlPointData &d) override
    {
        if (TEntity *e = PendingOf(TKind::Spline)) {
            e->Points.push_back({d.x, d.y});
            e->Weights.push_back(d.w);
        }
    }
    void addFitPoint(const DL_FitPointData &d) override
    {
        if (PendingOf(TKind::Spline))
            m_FitPoints.push_back({d.x, d.y});
    }
    void addKnot(const DL_KnotData &d) override
    {
        if (TEntity *e = PendingOf(TKind::Spline))
            e->Knots.push_back(d.k);
    }
    void addInsert(const DL_InsertData &d) override
    {
        TEntity &e = Add(TKind::Insert, "INSERT", {{d.ipx, d.ipy}});
        e.Block = d.name;
        e.Scale = {d.sx, d.sy};
        e.Angle = d.angle;
        e.Cols = std::max(d.cols, 1);
        e.Rows = std::max(d.rows, 1);
        e.Spacing = {d.colSp, d.rowSp};
    }
    void addSolid(const DL_SolidData &d) override { Face("SOLID", d, true); }
    void addTrace(const DL_TraceData &d) override { Face("TRACE", d, true); }
    void add3dFace(const DL_3dFaceData &d) override { Face("3DFACE", d, false); }
    void addText(const DL_TextData &d) override
    {
        // dxflib gives a TEXT's angle in radians.
        SetText(Add(TKind::Text, "TEXT", {}), {d.ipx, d.ipy}, {d.apx, d.apy}, d.height,
                d.angle * 180 / M_PI, d.hJustification, d.vJustification, d.text);
    }
    void addMTextChunk(const std::string &text) override { m_MTextChunks += text; }
    void addMText(const DL_MTextData &d) override
    {
        TEntity &e = Add(TKind::Text, "MTEXT", {{d.ipx, d.ipy}});
        e.Height = d.height;
        // The direction vector wins over the angle when it is given. The angle (group 50)
        // is taken in degrees, as files are written; dxflib takes it for radians in some
        // files and converts it in others, so its value as read from the file is used.
        e.Angle =
            (d.dirx != 0 || d.diry != 0) ? std::atan2(d.diry, d.dirx) * 180 / M_PI : m_FileAngle;
        e.Text = PlainMText(DecodeText(m_MTextChunks + d.text, false));
        m_MTextChunks.clear();
        // Attachment 1..9: top/middle/bottom rows of left/centre/right.
        const int attach = std::clamp(d.attachmentPoint, 1, 9) - 1;
        e.HAlign = attach % 3;
        e.VAlign = 3 - attach / 3; // 3 top, 2 middle, 1 bottom
    }
    void addHatch(const DL_HatchData &) override
    {
        Add(TKind::Hatch, "HATCH", {});
        m_Pending = true;
    }
    void addHatchLoop(const DL_HatchLoopData &) override
    {
        if (TEntity *e = PendingOf(TKind::Hatch))
            e->Loops.emplace_back();
    }
    void addHatchEdge(const DL_HatchEdgeData &d) override
    {
        TEntity *e = PendingOf(TKind::Hatch);
        if (!e || e->Loops.empty())
            return;
        AppendHatchEdge(d, e->Loops.back());
    }

    // Entities that do not become shapes.
    void addXLine(const DL_XLineData &) override
    {
        Skip("XLINE", "infinite lines are not imported");
    }
    void addRay(const DL_RayData &) override { Skip("RAY", "infinite lines are not imported"); }
    void addImage(const DL_ImageData &) override
    {
        Skip("IMAGE", "raster images are not imported");
    }
    void addAttribute(const DL_AttributeData &) override
    {
        Skip("ATTRIB", "block attributes are not imported");
    }
    void addLeader(const DL_LeaderData &) override { Skip("LEADER", "leaders are not imported"); }
    void addArcAlignedText(const DL_ArcAlignedTextData &) override
    {
        Skip("ARCALIGNEDTEXT", "text along arcs is not imported");
    }
    void addDimAlign(const DL_DimensionData &, const DL_DimAlignedData &) override { Dim(); }
    void addDimLinear(const DL_DimensionData &, const DL_DimLinearData &) override { Dim(); }
    void addDimRadial(const DL_DimensionData &, const DL_DimRadialData &) override { Dim(); }
    void addDimDiametric(const DL_DimensionData &, const DL_DimDiametricData &) override { Dim(); }
    void addDimAngular(const DL_DimensionData &, const DL_DimAngular2LData &) override { Dim(); }
    void addDimAngular3P(const DL_DimensionData &, const DL_DimAngular3PData &) override { Dim(); }
    void addDimOrdinate(const DL_DimensionData &, const DL_DimOrdinateData &) override { Dim(); }

private:
    TEntity &Add(TKind kind, const char *type, std::vector<QPointF> points)
    {
        Flush();
        TEntity e;
        e.Kind = kind;
        e.Type = type;
        const DL_Attributes a = getAttributes();
        e.Style.Layer = a.getLayer().empty() ? std::string("0") : a.getLayer();
        e.Style.Aci = a.getColor();
        e.Style.TrueColor = a.getColor24();
        e.Style.Weight = a.getWidth();
        e.Points = std::move(points);
        m_Target->push_back(std::move(e));
        return m_Target->back();
    }

    template <class Data>
    void Face(const char *type, const Data &d, bool zigzag)
    {
        // SOLID and TRACE list their corners in the order 1, 2, 4, 3 of the outline.
        const int order[4] = {0, 1, zigzag ? 3 : 2, zigzag ? 2 : 3};
        std::vector<QPointF> corners;
        for (int i : order) {
            const QPointF p(d.x[i], d.y[i]);
            if (corners.empty() || corners.back() != p)
                corners.push_back(p);
        }
        if (corners.size() > 1 && corners.back() == corners.front())
            corners.pop_back();
        Add(TKind::Face, type, std::move(corners));
    }

    TEntity *PendingOf(TKind kind)
    {
        if (!m_Pending || m_Target->empty() || m_Target->back().Kind != kind)
            return nullptr;
        return &m_Target->back();
    }

    // Ends the pending multi-part entity, checking what it collected.
    void Flush()
    {
        m_SkipVertices = false;
        if (!m_Pending)
            return;
        m_Pending = false;
        TEntity &e = m_Target->back();
        if (e.Kind == TKind::Spline && e.Points.empty()) {
            e.Points = std::move(m_FitPoints);
            e.FitOnly = true;
        }
        m_FitPoints.clear();
        // It grew point by point: what the vectors reserved beyond that is given back, which
        // for a drawing of many polylines is a good part of the whole model.
        e.Points.shrink_to_fit();
        e.Bulges.shrink_to_fit();
    }

    void Skip(const char *type, const char *reason)
    {
        Flush();
        ++m_Model.Skipped[std::string(type) + ": " + reason];
    }

    void Dim() { Skip("DIMENSION", "dimensions are not imported"); }

    TModel &m_Model;
    TEntities *m_Target = &m_Model.Entities;
    std::vector<QPointF> m_FitPoints;
    std::string m_MTextChunks;
    bool m_Pending = false;
    bool m_SkipVertices = false;
    double m_FileAngle = 0;
};

// Whether the last group is "0" "EOF" (tail: the file's last bytes): a file cut short lacks
// it.
bool EndsWithEof(const QByteArray &tail)
{
    const QList<QByteArray> lines = tail.right(64).trimmed().split('\n');
    return lines.size() >= 2 && lines.back().trimmed() == "EOF" &&
           lines[lines.size() - 2].trimmed() == "0";
}

void FinishDirect(TDirectEntity &direct, TCollector &collector)
{
    const std::int32_t flags = direct.Flags();
    switch (direct.Part()) {
    case TDirectEntity::TPart::Entity:
        collector.AddDecoded(direct.Finish());
        break;
    case TDirectEntity::TPart::PolylineStart:
        collector.AddDecodedPolyline(direct.Finish(), flags);
        break;
    case TDirectEntity::TPart::Vertex:
        collector.AddDecodedVertex(direct.VertexPoint(), direct.VertexBulge(), flags);
        break;
    }
}

// Hands the file's groups to dxflib one by one, except for the entities that are decoded
// directly: for each of those dxflib reads only the start of an entity it does not know,
// so that it hands on the entity it holds (keeping the file's order) and ignores what
// follows, which is decoded here instead.
// Cancelled or ReadFailed: the entities read so far are then left unfinished.
enum class TParseEnd { Finished, Cancelled, ReadFailed };
TParseEnd Parse(TGroupStream &groups, qint64 total, TCollector &collector,
                const TParseProgress &progress, bool decodeDirectly)
{
    static const char Elsewhere[] = "0\nDECODED-ELSEWHERE\n";
    constexpr qsizetype ProgressBytes = 1 << 18;
    if (progress && !progress(0, total))
        return TParseEnd::Cancelled;
    DL_Dxf dxf;
    TGroupBuffer buffer;
    std::istream stream(&buffer);
    // Reading an empty stream sets the parser's state up as for a new file.
    dxf.in(stream, &collector);
    auto show = [&](const char *begin, const char *end) {
        buffer.Show(begin, end);
        stream.clear();
        dxf.readDxfGroups(stream, &collector);
    };
    TDirectEntity direct;
    bool inDirect = false, entitySection = false, sectionStart = false;
    qint64 reported = 0;
    double angle = 0; // group 50 of the entity dxflib reads
    while (groups.Next()) {
        const int code = groups.Code();
        const std::string_view text = groups.Value();
        // dxflib hands an entity on when the next one starts.
        if (code == 0) {
            collector.SetFileAngle(angle);
            angle = 0;
        } else if (code == 50 && !inDirect) {
            angle = ToReal(text);
        }
        if (code == 0 && inDirect) {
            FinishDirect(direct, collector);
            inDirect = false;
        }
        if (inDirect) {
            direct.Add(code, text);
            continue;
        }
        if (code == 0 && decodeDirectly && entitySection && IsDirectEntity(text)) {
            show(Elsewhere, Elsewhere + sizeof Elsewhere - 1);
            direct.Start(text);
            inDirect = true;
            continue;
        }
        if (code == 2 && sectionStart)
            entitySection = text == "ENTITIES" || text == "BLOCKS";
        if (code == 0)
            sectionStart = text == "SECTION";
        show(groups.Group().data(), groups.Group().data() + groups.Group().size());
        if (progress && groups.Offset() - reported >= ProgressBytes) {
            reported = groups.Offset();
            if (!progress(reported, total))
                return TParseEnd::Cancelled;
        }
    }
    if (!groups.Error().isEmpty())
        return TParseEnd::ReadFailed;
    if (inDirect)
        FinishDirect(direct, collector);
    collector.Finish();
    // The end of the data is the last report, so that a cancel there still counts.
    return !progress || progress(total, total) ? TParseEnd::Finished : TParseEnd::Cancelled;
}

QString ReadError(const QString &reason)
{
    return QStringLiteral("the file could not be read: %1").arg(reason);
}

// The file kind's error, or nothing for an ASCII DXF file.
QString KindError(TFileKind kind)
{
    switch (kind) {
    case TFileKind::AsciiDxf:
        break;
    case TFileKind::BinaryDxf:
        return QStringLiteral("binary DXF is not supported; save the drawing as ASCII DXF");
    case TFileKind::NotDxf:
        return QStringLiteral("not a DXF file: the first line is no group code");
    }
    return {};
}

// Reads the file in three passes, none of which keeps it: the prescan, the end of the file
// as the parser sees it (a pass of its own only when counts are replaced), and the parse.
bool ParseGroups(QIODevice &device, TModel &model, QString &error, const TParseProgress &progress,
                 bool decodeDirectly, qsizetype window)
{
    const qint64 start = device.pos();
    const TPrescan scan = Prescan(device, window);
    if (!scan.Error.isEmpty()) {
        error = ReadError(scan.Error);
        return false;
    }
    if (scan.Kind != TFileKind::AsciiDxf) {
        error = KindError(scan.Kind);
        return false;
    }
    const TSafeEnd end = SafeEnd(device, start, window, scan);
    if (!end.Error.isEmpty() || !device.seek(start)) {
        error = ReadError(end.Error.isEmpty() ? device.errorString() : end.Error);
        return false;
    }
    // The parser hands on an entity only when the next one starts: a file cut short gets an
    // end, so that its last complete entity is read too.
    const bool complete = EndsWithEof(end.Tail);
    // Entity types the parser passes to no callback are counted here, never dropped silently.
    for (const auto &[type, count] : scan.Unknown)
        model.Skipped[type + ": entity type not supported"] += count;
    TCollector collector(model);
    TGroupStream groups(device, window, scan.Lines, !complete);
    const qint64 total = end.Bytes + (complete ? 0 : qint64(AddedEnd.size()));
    switch (Parse(groups, total, collector, progress, decodeDirectly)) {
    case TParseEnd::Finished:
        break;
    case TParseEnd::Cancelled:
        model.Cancelled = true;
        error = CancelledMessage();
        return false;
    case TParseEnd::ReadFailed:
        error = ReadError(groups.Error());
        return false;
    }
    if (groups.Lines().LinesRead() != scan.Lines || groups.Lines().BytesRead() != scan.Bytes) {
        error = QStringLiteral("the file changed while it was read");
        return false;
    }
    if (!complete) {
        error = QStringLiteral("the file ends before its EOF marker (truncated or damaged); "
                               "what was read before has been imported");
        return false;
    }
    return true;
}

} // namespace

bool ParseDxf(QIODevice &device, TModel &model, QString &error, const TParseProgress &progress,
              bool decodeDirectly, qsizetype window)
{
    try {
        return ParseGroups(device, model, error, progress, decodeDirectly, window);
    } catch (const std::bad_alloc &) {
        error = QStringLiteral("the file asks for more memory than is available");
    } catch (const std::exception &e) {
        error = QStringLiteral("the DXF parser stopped: %1").arg(QString::fromLocal8Bit(e.what()));
    }
    return false;
}

bool ParseDxf(const QByteArray &data, TModel &model, QString &error, const TParseProgress &progress,
              bool decodeDirectly, qsizetype window)
{
    QBuffer buffer;
    buffer.setData(data);
    buffer.open(QIODevice::ReadOnly);
    return ParseDxf(buffer, model, error, progress, decodeDirectly, window);
}

} // namespace tessal::DxfImport
