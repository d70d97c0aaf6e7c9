// SPDX-License-Identifier: MIT
// The DXF reader against ezdxf: files ezdxf writes (R12, R2000, R2018) are read and every
// entity's geometry, after block transforms, is compared with ezdxf's own evaluation;
// layers, colours, the report, damaged input, and the round trip through our writer.
#include "common/paintspy.h"
#include "dxftestutil.h"
#include "persistence/recordfixture.h"
#include "surface/documenthelpers.h"

#include <tessal/dxf/dxfnumbers.h>
#include <tessal/dxf/import/dxfimport.h>
#include <tessal/dxf/import/dxfmodel_p.h>
#include <tessal/geometry/geometry.h>
#include <tessal/shapes/arc.h>
#include <tessal/shapes/curve.h>
#include <tessal/shapes/link.h>
#include <tessal/shapes/text.h>
#include <tessal/surface/cad.h>

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QTemporaryDir>

#include <algorithm>

#include <cmath>
#include <numbers>
#include <random>

namespace tessal {
namespace {

using test::RunPeer;
using Poly = std::vector<QPointF>;

constexpr double F = Dxf::PixelsPerMm;

// Distance from p to the chain of segments through poly.
double DistanceToChain(QPointF p, const Poly &poly)
{
    double best = std::numeric_limits<double>::infinity();
    for (std::size_t i = 0; i < poly.size(); ++i) {
        const QPointF a = poly[i], b = poly[std::min(i + 1, poly.size() - 1)];
        const QPointF ab = b - a;
        const double len2 = QPointF::dotProduct(ab, ab);
        const double t = len2 > 0 ? std::clamp(QPointF::dotProduct(p - a, ab) / len2, 0.0, 1.0) : 0;
        best = std::min(best, QLineF(p, a + ab * t).length());
    }
    return best;
}

// The largest distance of either chain's points from the other chain.
double Hausdorff(const Poly &a, const Poly &b)
{
    double worst = 0;
    for (QPointF p : a)
        worst = std::max(worst, DistanceToChain(p, b));
    for (QPointF p : b)
        worst = std::max(worst, DistanceToChain(p, a));
    return worst;
}

Poly FromJson(const QJsonArray &points)
{
    Poly out;
    for (const QJsonValue &v : points)
        out.emplace_back(v.toArray()[0].toDouble(), v.toArray()[1].toDouble());
    return out;
}

// A shape's outline in file millimetres (Y up against the control's height), curves
// evaluated densely from the shape's own definition.
Poly Outline(const TMyShape &shape, double height)
{
    Poly px;
    const QString cls = shape.ClassName();
    auto pt = [](TMyPoint p) { return QPointF(p.X, p.Y); };
    if (cls == QLatin1String("TMyEllipse")) {
        const TMyPoint c = shape.GetCenterPoint();
        const double a = shape.GetMyWidth() / 2.0, b = shape.GetMyHeight() / 2.0, r = shape.Angle();
        for (int i = 0; i <= 720; ++i) {
            const double t = i * std::numbers::pi / 360;
            const double u = a * std::cos(t), v = b * std::sin(t);
            px.emplace_back(c.X + u * std::cos(r) - v * std::sin(r),
                            c.Y + u * std::sin(r) + v * std::cos(r));
        }
    } else if (cls == QLatin1String("TMyElliArc")) {
        // The arc's frame is turned by the shape's angle about its centre.
        const TArcGeometry g = static_cast<const TMyElliArc &>(shape).ArcGeometry();
        const double c = std::cos(shape.Angle()), s = std::sin(shape.Angle());
        for (int i = 0; i <= 720; ++i) {
            const double t = g.Start + g.Sweep * i / 720;
            const double x = g.RadiusX * std::cos(t), y = -g.RadiusY * std::sin(t);
            px.emplace_back(g.Centre.X + x * c - y * s, g.Centre.Y + x * s + y * c);
        }
    } else if (cls == QLatin1String("TMyPolyBezier")) {
        const TMyPointArray &p = shape.Points();
        for (std::size_t i = 0; i + 3 < p.size(); i += 3)
            for (int k = 0; k <= 64; ++k)
                px.push_back(pt(BezierPoint(p[i], p[i + 1], p[i + 2], p[i + 3], k / 64.0)));
    } else if (cls == QLatin1String("TMyLinkPoint")) {
        px.push_back(pt(shape.LinkPoints().at(0)));
    } else {
        for (TMyPoint p : shape.Points())
            px.push_back(pt(p));
    }
    Poly mm;
    for (QPointF p : px)
        mm.emplace_back(p.x() / F, (height - p.y()) / F);
    return mm;
}

// The leaf shapes under a top-level shape, in drawing order.
void Leaves(const TMyCAD &cad, const TMyShape *shape, std::vector<const TMyShape *> &out)
{
    if (shape->ClassName() != QLatin1String("TMyGroup")) {
        out.push_back(shape);
        return;
    }
    for (std::int32_t no : shape->ChildShapes())
        Leaves(cad, cad.GetShapeByNo(no), out);
}

// Curves that stay curves (arcs, ellipses, Bezier pieces of elliptic arcs) are evaluated
// exactly and must follow ezdxf's flattening (0.0005 mm) within this many millimetres;
// what the reader approximates (rational splines, hatch boundaries in 5 degree steps)
// within the looser one.
constexpr double ExactTolerance = 0.002, LooseTolerance = 0.02;

// The leaf's class and geometry against ezdxf's evaluation: an ARC is an arc shape on the
// same circle, a partial ELLIPSE an arc shape when it is half the ellipse and Bezier
// pieces otherwise, a full one an ellipse shape.
void CheckLeaf(const QJsonObject &leaf, const TMyShape &shape, double height)
{
    const QString type = leaf["type"].toString();
    const QString cls = shape.ClassName();
    const double tolerance = type == QLatin1String("SPLINE") ? LooseTolerance : ExactTolerance;
    EXPECT_LT(Hausdorff(Outline(shape, height), FromJson(leaf["points"].toArray())), tolerance)
        << cls.toStdString();
    if (type == QLatin1String("ARC")) {
        ASSERT_EQ(cls, "TMyElliArc");
        const auto &arc = static_cast<const TMyElliArc &>(shape);
        EXPECT_EQ(arc.ArcMode(), TArcMode::amCircle);
        const TArcGeometry g = arc.ArcGeometry();
        const QJsonArray centre = leaf["centre"].toArray();
        EXPECT_NEAR(g.Centre.X / F, centre[0].toDouble(), 1e-3);
        EXPECT_NEAR((height - g.Centre.Y) / F, centre[1].toDouble(), 1e-3);
        EXPECT_NEAR(g.RadiusX / F, leaf["radius"].toDouble(), 1e-3);
    } else if (type == QLatin1String("ELLIPSE")) {
        const double sweep = leaf["sweep"].toDouble();
        const bool half = std::fabs(sweep - std::numbers::pi) < 1e-9;
        EXPECT_EQ(cls, sweep == 0 ? "TMyEllipse" : half ? "TMyElliArc" : "TMyPolyBezier");
        if (half) {
            EXPECT_EQ(static_cast<const TMyElliArc &>(shape).ArcMode(), TArcMode::amEllipse);
        }
    }
}

// A bulged polyline is a group of arcs and straight runs: each of ezdxf's pieces has its
// own member, an arc shape for an arc on the same circle, a line or polyline for a run.
void CheckPieces(const QJsonArray &pieces, const std::vector<const TMyShape *> &members,
                 double height)
{
    ASSERT_EQ(qsizetype(members.size()), pieces.size());
    std::vector<bool> used(members.size());
    for (const QJsonValue &value : pieces) {
        const QJsonObject piece = value.toObject();
        const Poly want = FromJson(piece["points"].toArray());
        const bool arc = piece["kind"] == QLatin1String("arc");
        std::size_t found = members.size();
        for (std::size_t m = 0; m < members.size() && found == members.size(); ++m)
            if (!used[m] && (members[m]->ClassName() == QLatin1String("TMyElliArc")) == arc &&
                Hausdorff(Outline(*members[m], height), want) < ExactTolerance)
                found = m;
        ASSERT_LT(found, members.size()) << QJsonDocument(piece).toJson().toStdString();
        used[found] = true;
        if (arc) {
            QJsonObject asArc = piece;
            asArc["type"] = "ARC";
            CheckLeaf(asArc, *members[found], height);
        }
    }
}

class DxfImport : public ::testing::TestWithParam<const char *>
{
protected:
    void SetUp() override { cad.resize(1600, 1000); }
    QTemporaryDir dir;
    TMyCAD cad;
};

// Every entity of the sample, in the order of the file, against ezdxf's flattening of the
// same entity with its block transforms applied (tolerances above).
TEST_P(DxfImport, GeometryMatchesEzdxfEvaluation)
{
    const QString name = dir.filePath("sample.dxf");
    const QJsonObject expected = RunPeer({"make", GetParam(), name});
    TDxfImportReport report;
    // The Y flip is taken against the control's height before the import, which may grow
    // the control afterwards to hold the drawing.
    const int flipHeight = cad.height();
    ASSERT_TRUE(LoadFromDxf(cad, name, report)) << report.Lines().join('\n').toStdString();
    EXPECT_EQ(report.SkippedCount(), 0) << report.Lines().join('\n').toStdString();
    EXPECT_TRUE(report.Notes.isEmpty());

    std::vector<const TMyShape *> tops;
    for (std::int32_t i = 0; i < cad.GetShapesCount(); ++i)
        if (cad.GetShapeByNo(i)->ParentNo() < 0)
            tops.push_back(cad.GetShapeByNo(i));
    const QJsonArray entities = expected["entities"].toArray();
    ASSERT_EQ(qsizetype(tops.size()), entities.size());
    // Entities inside blocks count once per copy.
    EXPECT_GT(report.EntitiesRead, entities.size());
    for (qsizetype i = 0; i < entities.size(); ++i) {
        const QJsonObject entity = entities[i].toObject();
        const QString type = entity["type"].toString();
        std::vector<const TMyShape *> leaves;
        Leaves(cad, tops[std::size_t(i)], leaves);
        const QJsonArray want = entity["leaves"].toArray();
        std::size_t next = 0;
        for (const QJsonValue &leafValue : want) {
            const QJsonObject leaf = leafValue.toObject();
            SCOPED_TRACE((type + " / " + leaf["type"].toString()).toStdString());
            if (leaf["type"] == QLatin1String("HATCH")) {
                for (const QJsonValue &loop : leaf["loops"].toArray()) {
                    ASSERT_LT(next, leaves.size());
                    EXPECT_LT(
                        Hausdorff(Outline(*leaves[next++], flipHeight), FromJson(loop.toArray())),
                        LooseTolerance);
                }
                continue;
            }
            ASSERT_LT(next, leaves.size());
            const TMyShape *shape = leaves[next++];
            if (leaf.contains("text")) {
                ASSERT_EQ(shape->ClassName(), "TMyText");
                EXPECT_EQ(static_cast<const TMyText *>(shape)->Lines().join('\n'),
                          leaf["text"].toString());
                // Turned the other way on the page, whose Y grows downwards.
                const double turn = -leaf["rotation"].toDouble() * std::numbers::pi / 180;
                EXPECT_NEAR(std::cos(shape->Angle()), std::cos(turn), 1e-6);
                EXPECT_NEAR(std::sin(shape->Angle()), std::sin(turn), 1e-6);
                continue;
            }
            if (leaf.contains("pieces")) {
                const qsizetype count = leaf["pieces"].toArray().size();
                ASSERT_LE(next - 1 + std::size_t(count), leaves.size());
                CheckPieces(leaf["pieces"].toArray(),
                            {leaves.begin() + qsizetype(next) - 1,
                             leaves.begin() + qsizetype(next) - 1 + count},
                            flipHeight);
                next += std::size_t(count) - 1;
                continue;
            }
            if (!leaf["points"].isNull())
                CheckLeaf(leaf, *shape, flipHeight);
        }
        EXPECT_EQ(next, leaves.size());
    }

    // Layers with their visibility; colours by layer, by number and true colour.
    // The file's layers take the next free identities after the drawing's own layer 0.
    const std::vector<TLayer> layers = {{"0", 1, true},
                                        {"Defpoints", 2, true},
                                        {"walls", 3, true},
                                        {"hidden", 4, false},
                                        {"doors", 5, true}};
    EXPECT_EQ(cad.Layers(), layers);
    // Red by layer (as 0x00BBGGRR), colour 3 and colour 5.
    EXPECT_EQ(std::tuple(tops[0]->LayerId(), tops[2]->LayerId(), tops[0]->Pen().Color,
                         tops[1]->Pen().Color, tops[3]->Pen().Color),
              std::tuple(3, 4, 0x0000FFu, 0x00FF00u, 0xFF0000u));
}

INSTANTIATE_TEST_SUITE_P(Versions, DxfImport, ::testing::Values("R12", "R2000", "R2018"));

// A file written by our writer and read back: every exported class keeps its geometry.
// Points stored as they were written come back exactly (within 1e-6 mm); vertices the
// writer computes (ellipse, curve) within the single precision shapes store points in.
TEST(DxfRoundTrip, WriterOutputReadsBackToTheSameGeometry)
{
    TMyCAD source;
    source.resize(640, 480);
    test::AddByCode(source, TDrawTool::SpLine, {{48.25f, 48.5f}, {192.125f, 96.75f}});
    test::AddByCode(source, TDrawTool::SpPolyLine, {{0, 0}, {96.3f, 0.7f}, {96, 96}});
    test::AddByCode(source, TDrawTool::SpRectangle, {{96, 288}, {192, 384}});
    test::AddByCode(source, TDrawTool::SpPolygon, {{240, 288}, {336.6f, 288}, {288, 384.1f}});
    test::AddByCode(source, TDrawTool::SpElliArc, {{10, 240}, {96, 144}, {192, 250}});
    test::AddByCode(source, TDrawTool::SpLineLinkLine, {{384, 48}, {480, 144}});
    test::AddByCode(source, TDrawTool::SpEllipse, {{384, 240}, {576, 336}});
    test::AddByCode(source, TDrawTool::SpPolyBezier, {{0, 432}, {48, 384}, {144, 480}, {192, 432}});
    test::AddByCode(source, TDrawTool::SpText, {{240, 96}, {480, 192}}, 0,
                    "Gr\u00f6\u00dfe\n\u00b1 2");
    const QByteArray file = source.DxfText(false);

    TMyCAD target;
    target.resize(640, 480);
    TDxfImportReport report;
    ASSERT_TRUE(LoadFromDxfData(target, file, report)) << report.Error.toStdString();
    ASSERT_EQ(target.GetShapesCount(), 1 + 2 + 1 + 1 + 1 + 2 + 1 + 1 + 2);
    const double exact = 1e-6 * F;
    auto same = [&](const TMyPointArray &a, const TMyPointArray &b, double tol) {
        ASSERT_EQ(a.size(), b.size());
        for (std::size_t i = 0; i < a.size(); ++i) {
            EXPECT_NEAR(a[i].X, b[i].X, tol) << i;
            EXPECT_NEAR(a[i].Y, b[i].Y, tol) << i;
        }
    };
    auto shape = [&](int no) { return target.GetShapeByNo(no); };
    same(shape(0)->Points(), source.GetShapeByNo(0)->Points(), exact);
    const TMyPointArray &chain = source.GetShapeByNo(1)->Points();
    same(shape(1)->Points(), {chain[0], chain[1]}, exact);
    same(shape(2)->Points(), {chain[1], chain[2]}, exact);
    TMyPointArray box = source.GetShapeByNo(2)->Points();
    box.push_back(box.front());
    EXPECT_EQ(shape(3)->ClassName(), "TMyPolygon");
    same(shape(3)->Points(), box, exact);
    same(shape(4)->Points(), source.GetShapeByNo(3)->Points(), exact);
    // The arc: the same circle and the same two ends (in either order).
    const TArcGeometry before = static_cast<TMyElliArc *>(source.GetShapeByNo(4))->ArcGeometry();
    const TArcGeometry after = static_cast<TMyElliArc *>(shape(5))->ArcGeometry();
    const double fine = 2e-5 * F;
    EXPECT_NEAR(after.Centre.X, before.Centre.X, fine);
    EXPECT_NEAR(after.Centre.Y, before.Centre.Y, fine);
    EXPECT_NEAR(after.RadiusX, before.RadiusX, fine);
    const TMyPointArray &ends = source.GetShapeByNo(4)->Points();
    const TMyPointArray &got = shape(5)->Points();
    const bool swapped = GetLengthinPixel(got[0], ends[0]) > 1;
    same({got[0], got[2]},
         swapped ? TMyPointArray{ends[2], ends[0]} : TMyPointArray{ends[0], ends[2]}, fine);
    // The junction: two circles about the centre, radius 48 and 24.
    for (int i : {6, 7}) {
        EXPECT_EQ(shape(i)->ClassName(), "TMyEllipse");
        EXPECT_NEAR(shape(i)->GetCenterPoint().X, 432, fine);
        EXPECT_NEAR(shape(i)->GetCenterPoint().Y, 96, fine);
        EXPECT_NEAR(shape(i)->GetMyWidth(), i == 6 ? 96 : 48, fine);
    }
    // The ellipse's 72 vertices (and the closing one).
    const TMyPointArray &ring = shape(8)->Points();
    ASSERT_EQ(ring.size(), 73u);
    for (int k = 0; k < 72; ++k) {
        const double t = k * std::numbers::pi / 36;
        EXPECT_NEAR(ring[std::size_t(k)].X, 480 + 96 * std::sin(t), fine);
        EXPECT_NEAR(ring[std::size_t(k)].Y, 288 + 48 * std::cos(t), fine);
    }
    std::vector<TMyPoint> curve = FlattenPolyBezier(source.GetShapeByNo(7)->Points());
    curve.push_back(curve.front());
    same(shape(9)->Points(), curve, fine);
    // The text's two lines come back, one text shape each, starting at the left margin.
    EXPECT_EQ(static_cast<TMyText *>(shape(10))->Lines(), QStringList{"Gr\u00f6\u00dfe"});
    EXPECT_EQ(static_cast<TMyText *>(shape(11))->Lines(), QStringList{"\u00b1 2"});
    EXPECT_NEAR(shape(10)->Points()[0].X, 240, 0.5);
    EXPECT_EQ(shape(10)->Font().Size(), source.GetShapeByNo(8)->Font().Size());
}

// The entities the reader decodes itself (LINE, POINT, CIRCLE, ARC, LWPOLYLINE, TEXT) come
// out exactly as the parser library gives them: random drawings of every version, with
// random styles, in blocks and between other entities, parsed both ways to the same model.
void ExpectSameEntities(const tessal::DxfImport::TEntities &direct,
                        const tessal::DxfImport::TEntities &library)
{
    ASSERT_EQ(direct.size(), library.size());
    for (std::size_t i = 0; i < direct.size(); ++i) {
        const tessal::DxfImport::TEntity &a = direct[i], &b = library[i];
        SCOPED_TRACE(b.Type + " #" + std::to_string(i));
        // Field by field as one tuple: a failure prints both sides whole.
        const auto fields = [](const tessal::DxfImport::TEntity &e) {
            return std::tie(e.Kind, e.Type, e.Style.Layer, e.Style.Aci, e.Style.TrueColor,
                            e.Style.Weight, e.Points, e.Bulges, e.Closed, e.Centre, e.Radius,
                            e.Start, e.End, e.Height, e.Text, e.HAlign, e.VAlign, e.Block);
        };
        EXPECT_EQ(fields(a), fields(b));
        // The library turns a TEXT's degrees into radians, which are turned back.
        EXPECT_NEAR(a.Angle, b.Angle, 1e-9 * std::max(1.0, std::fabs(b.Angle)));
    }
}

TEST(DxfParser, DirectDecodingMatchesTheParserLibrary)
{
    QTemporaryDir dir;
    // Polylines of older files with their vertices, and meshes skipped with theirs.
    std::int64_t olderPolylines = 0, meshes = 0;
    for (int seed = 1; seed <= 6; ++seed) {
        const QString name = dir.filePath(QString("random%1.dxf").arg(seed));
        RunPeer({"random", QString::number(seed), "400", name});
        QFile file(name);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QByteArray data = file.readAll();
        tessal::DxfImport::TModel direct, library;
        QString error;
        ASSERT_TRUE(tessal::DxfImport::ParseDxf(data, direct, error, {}, true))
            << error.toStdString();
        ASSERT_TRUE(tessal::DxfImport::ParseDxf(data, library, error, {}, false))
            << error.toStdString();
        SCOPED_TRACE(seed);
        EXPECT_GT(direct.Entities.size(), 300u);
        ExpectSameEntities(direct.Entities, library.Entities);
        ASSERT_EQ(direct.Blocks.size(), library.Blocks.size());
        for (const auto &[blockName, block] : library.Blocks)
            ExpectSameEntities(direct.Blocks.at(blockName).Entities, block.Entities);
        EXPECT_EQ(direct.Skipped, library.Skipped);
        EXPECT_EQ(direct.Layers.size(), library.Layers.size());
        olderPolylines += data.count("\nPOLYLINE\n");
        for (const auto &[reason, count] : library.Skipped)
            meshes += reason.find("mesh") != std::string::npos ? count : 0;
    }
    EXPECT_GT(olderPolylines, 200);
    EXPECT_GT(meshes, 50);

    // Odd sequences no writer makes on purpose: a face record and widths in a plain
    // polyline, a vertex with no polyline, a polyline that another entity ends. Comments
    // at the end make the file long enough for its flags to pass as counts.
    const QByteArray odd = "0\nSECTION\n2\nENTITIES\n"
                           "0\nPOLYLINE\n8\nA\n66\n1\n10\n5\n20\n6\n40\n2\n41\n3\n70\n1\n"
                           "0\nVERTEX\n10\n1\n20\n2\n42\n0.5\n"
                           "0\nVERTEX\n10\n3\n20\n4\n70\n128\n"
                           "0\nVERTEX\n10\n5\n20\n6\n70\n192\n"
                           "0\nSEQEND\n"
                           "0\nVERTEX\n10\n7\n20\n8\n"
                           "0\nPOLYLINE\n62\n3\n70\n8\n0\nVERTEX\n10\n9\n20\n9\n"
                           "0\nLINE\n10\n0\n20\n0\n11\n1\n21\n1\n"
                           "0\nVERTEX\n10\n10\n20\n10\n"
                           "0\nENDSEC\n" +
                           QByteArray("999\nlong enough\n").repeated(200) + "0\nEOF\n";
    tessal::DxfImport::TModel direct, library;
    QString error;
    ASSERT_TRUE(tessal::DxfImport::ParseDxf(odd, direct, error, {}, true));
    ASSERT_TRUE(tessal::DxfImport::ParseDxf(odd, library, error, {}, false));
    ASSERT_EQ(library.Entities.size(), 3u);
    ExpectSameEntities(direct.Entities, library.Entities);
}

// A DXF text of one ENTITIES section holding body.
QByteArray Entities(const QByteArray &body)
{
    return "0\nSECTION\n2\nENTITIES\n" + body + "0\nENDSEC\n0\nEOF\n";
}

// An import of DXF bytes into a 640 x 480 surface, with at most maxShapes shapes.
struct TImport
{
    explicit TImport(std::int64_t maxShapes = TDxfImportOptions().MaxShapes)
    {
        Cad.resize(640, 480);
        Options.MaxShapes = maxShapes;
    }
    bool Run(const QByteArray &data) { return LoadFromDxfData(Cad, data, Report, Options); }
    // The number of entities skipped for a reason ending in cause.
    std::int64_t SkippedFor(const QString &cause) const
    {
        std::int64_t count = 0;
        for (const auto &[reason, times] : Report.Skipped)
            count += reason.endsWith(cause) ? times : 0;
        return count;
    }

    TMyCAD Cad;
    TDxfImportReport Report;
    TDxfImportOptions Options;
};

// Text values: UTF-8 or the 8-bit code page, escapes and the special codes of TEXT.
TEST(DxfText, EncodingsAndCodes)
{
    TImport in;
    ASSERT_TRUE(in.Run(
        Entities("0\nTEXT\n8\n0\n10\n1\n20\n1\n40\n3\n1\n45%%d \xe9 %%c5 %%uA\n"
                 "0\nTEXT\n8\n0\n10\n1\n20\n9\n40\n3\n1\nna\xc3\xafve \\U+2300\n"
                 "0\nMTEXT\n8\n0\n10\n1\n20\n20\n40\n3\n1\n{\\fArial;A}\\PB \\U+00E9 \\S1^2;\n")))
        << in.Report.Error.toStdString();
    ASSERT_EQ(in.Cad.GetShapesCount(), 3);
    auto lines = [&](int no) { return static_cast<TMyText *>(in.Cad.GetShapeByNo(no))->Lines(); };
    EXPECT_EQ(lines(0), QStringList{"45\u00b0 \u00e9 \u23005 A"});
    EXPECT_EQ(lines(1), QStringList{"na\u00efve \u2300"});
    EXPECT_EQ(lines(2), (QStringList{"A", "B \u00e9 1/2"}));
}

// Damaged and hostile input: a clear error or a partial import with a report, never a
// crash, a hang or an allocation by a count the file cannot hold.
TEST(DxfDamaged, ErrorsAndPartialImports)
{
    TImport in;
    const std::pair<QByteArray, const char *> refused[] = {
        {"", "not a DXF file"},
        {"hello world\n", "not a DXF file"},
        {QByteArray("AutoCAD Binary DXF\r\n\x1a\0", 22) + QByteArray(100, '\x01'), "binary DXF"},
    };
    for (const auto &[data, reason] : refused) {
        EXPECT_FALSE(in.Run(data));
        EXPECT_TRUE(in.Report.Error.contains(QLatin1String(reason)))
            << in.Report.Error.toStdString();
        EXPECT_EQ(in.Cad.LastError(), in.Report.Error);
    }

    const QByteArray lines = Entities("0\nLINE\n8\n0\n10\n1\n20\n2\n11\n3\n21\n4\n"
                                      "0\nLINE\n8\n0\n10\n5\n20\n6\n11\n7\n21\n8\n"
                                      "0\nWIPEOUT\n8\n0\n");
    ASSERT_TRUE(in.Run(lines)) << in.Report.Error.toStdString();
    EXPECT_EQ(in.Cad.GetShapesCount(), 2);
    EXPECT_EQ(in.Report.Skipped.at("WIPEOUT: entity type not supported"), 1);
    // Cut after the first LINE: that line is imported, the report says the file is cut.
    EXPECT_FALSE(in.Run(lines.left(lines.indexOf("0\nLINE", 30))));
    EXPECT_TRUE(in.Report.Error.contains(QLatin1String("EOF marker")));
    EXPECT_EQ(in.Cad.GetShapesCount(), 1);
    // Every cut of the file gives an answer, whatever is left.
    for (qsizetype n = 0; n < lines.size(); ++n)
        (void)in.Run(lines.left(n));

    // Absurd counts: a polyline that announces two billion vertices, an insert array of two
    // billion columns, a block that inserts itself.
    in.Options.MaxShapes = 500;
    EXPECT_TRUE(in.Run("0\nSECTION\n2\nBLOCKS\n"
                       "0\nBLOCK\n2\nSELF\n10\n0\n20\n0\n"
                       "0\nLINE\n8\n0\n10\n0\n20\n0\n11\n1\n21\n1\n"
                       "0\nINSERT\n2\nSELF\n10\n1\n20\n0\n"
                       "0\nENDBLK\n0\nENDSEC\n" +
                       Entities("0\nLWPOLYLINE\n8\n0\n90\n2147483647\n70\n0\n10\n0\n20\n0\n10\n5\n"
                                "20\n5\n"
                                "0\nINSERT\n2\nMISSING\n10\n0\n20\n0\n"
                                "0\nINSERT\n2\nSELF\n10\n0\n20\n0\n70\n2147483647\n71\n2\n44\n3\n"
                                "45\n3\n")))
        << in.Report.Error.toStdString();
    EXPECT_LE(in.Cad.GetShapesCount(), 500 + 64); // a group per nesting level may finish
    EXPECT_EQ(in.Report.Skipped.count("INSERT: the block it names is not defined"), 1u);
    EXPECT_GE(in.Report.Skipped["INSERT: blocks nested too deeply (or inserting themselves)"], 1);
    EXPECT_GE(in.Report.Skipped["INSERT: the drawing reached the shape limit"] +
                  in.Report.Skipped["LINE: the drawing reached the shape limit"],
              1);
    EXPECT_TRUE(in.Report.Lines().join('\n').contains(QLatin1String("entities skipped")));

    // A polyline of 3000 arcs would be 3000 shapes and more: beyond the limit it is skipped.
    QByteArray arcs = "0\nLWPOLYLINE\n8\n0\n90\n3000\n70\n0\n";
    for (int i = 0; i < 3000; ++i)
        arcs += "10\n" + QByteArray::number(i) + "\n20\n0\n42\n0.5\n";
    EXPECT_TRUE(in.Run(Entities(arcs + "0\nLINE\n8\n0\n10\n0\n20\n0\n11\n1\n21\n1\n")))
        << in.Report.Error.toStdString();
    EXPECT_EQ(in.Cad.GetShapesCount(), 0);
    EXPECT_EQ(in.Report.Skipped, (std::map<QString, std::int64_t>{
                                     {"LINE: the drawing reached the shape limit", 1},
                                     {"POLYLINE: the drawing reached the shape limit", 1}}));
    EXPECT_EQ(in.Report.SkippedCount(), 2);
}

// Blocks that insert each other twice over and draw nothing make no shapes, so the shape
// limit never stops them: 2^16 copies at the nesting limit, and an array of a million
// rows of an empty block. The import visits a bounded number of entities and says so.
TEST(DxfDamaged, BlocksThatExpandWithoutDrawing)
{
    TImport in(1000);
    EXPECT_TRUE(in.Run("0\nSECTION\n2\nBLOCKS\n"
                       "0\nBLOCK\n2\nTWICE\n10\n0\n20\n0\n"
                       "0\nINSERT\n2\nTWICE\n10\n1\n20\n0\n"
                       "0\nINSERT\n2\nTWICE\n10\n2\n20\n0\n"
                       "0\nENDBLK\n"
                       "0\nBLOCK\n2\nEMPTY\n10\n0\n20\n0\n0\nENDBLK\n0\nENDSEC\n" +
                       Entities("0\nINSERT\n2\nEMPTY\n10\n0\n20\n0\n70\n3\n71\n1000000\n"
                                "0\nINSERT\n2\nTWICE\n10\n0\n20\n0\n"
                                "0\nLINE\n8\n0\n10\n0\n20\n0\n11\n1\n21\n1\n")))
        << in.Report.Error.toStdString();
    EXPECT_EQ(in.Cad.GetShapesCount(), 0);
    EXPECT_GE(in.Report.Skipped["INSERT: its block has nothing that could be imported"], 1);
    EXPECT_GE(in.Report.Skipped[QStringLiteral(
                  "INSERT: the blocks expand to more entities than the import visits")],
              1);
    EXPECT_EQ(in.Report.Skipped["LINE: the drawing reached the shape limit"], 1);
    // Visits stop at twice the shape limit and some; each is skipped at most twice (as an
    // entity and as an insert whose block gave nothing).
    EXPECT_LE(in.Report.SkippedCount(), 2 * (2 * 1000 + 10000) + 10);

    // A block of one spline with thousands of control points that inserts itself twice:
    // few shapes, but each costs thousands of points, so the points made stop the copies.
    QByteArray spline = "0\nSECTION\n2\nBLOCKS\n0\nBLOCK\n2\nLONG\n10\n0\n20\n0\n"
                        "0\nSPLINE\n8\n0\n70\n0\n71\n3\n73\n3000\n";
    for (int i = 0; i < 3000; ++i)
        spline += "10\n" + QByteArray::number(i) + "\n20\n" + QByteArray::number(i % 7) + "\n";
    spline += "0\nINSERT\n2\nLONG\n10\n0\n20\n0\n0\nINSERT\n2\nLONG\n10\n5\n20\n0\n"
              "0\nENDBLK\n0\nENDSEC\n";
    TImport curves(20000);
    EXPECT_TRUE(curves.Run(spline + Entities("0\nINSERT\n2\nLONG\n10\n0\n20\n0\n")))
        << curves.Report.Error.toStdString();
    EXPECT_GE(curves.SkippedFor(": the blocks expand to more points than the import makes"), 1);
    // Points stop at 64 for each point of the file, 16 for each shape of the limit and
    // 100,000 more: some 68 copies of the spline's 8,992 points, each with a group.
    EXPECT_LE(curves.Cad.GetShapesCount(), 2 * ((64 * 3007 + 16 * 20000 + 100000) / 8992 + 2));
}

// The files in the fuzz seeds, including every input a fuzzer found slow or fatal: each
// import answers, and a damaged one says why.
TEST(DxfDamaged, SeedFilesAnswer)
{
    QStringList files;
    for (const QString &folder :
         {QStringLiteral(TESSAL_TEST_DATA_DIR "/dxf"), QStringLiteral(TESSAL_DXF_FUZZ_CORPUS)}) {
        const QDir seeds(folder);
        for (const QString &name : seeds.entryList(QDir::Files))
            files << seeds.filePath(name);
    }
    ASSERT_GE(files.size(), 6);
    for (const QString &name : files) {
        TImport in(20000);
        const bool ok = LoadFromDxf(in.Cad, name, in.Report, in.Options);
        EXPECT_TRUE(ok || !in.Report.Error.isEmpty()) << name.toStdString();
        EXPECT_LE(in.Cad.GetShapesCount(), 20000 + 64) << name.toStdString();
    }
}

// Randomly damaged copies of an ezdxf file: lines dropped, doubled or swapped, numbers made
// huge, negative or not numbers, bytes flipped. Each import answers, with a report.
TEST(DxfDamaged, RandomMutationsOfAGoodFile)
{
    QFile sample(QStringLiteral(TESSAL_TEST_DATA_DIR "/dxf/ezdxf_r2000_sample.dxf"));
    ASSERT_TRUE(sample.open(QIODevice::ReadOnly));
    const QList<QByteArray> good = sample.readAll().split('\n');
    std::mt19937 random(2024);
    const QByteArray replacements[] = {"2147483647", "-2147483648", "1e308",  "nan",    "",  "x",
                                       "0",          "SECTION",     "INSERT", "ENDBLK", "-1"};
    TImport in(20000);
    for (int run = 0; run < 300; ++run) {
        QList<QByteArray> lines = good;
        for (int edits = 1 + int(random() % 8); edits > 0; --edits) {
            const qsizetype at = qsizetype(random() % std::uint32_t(lines.size()));
            switch (random() % 5) {
            case 0:
                lines.removeAt(at);
                break;
            case 1:
                lines.insert(at, lines[at]);
                break;
            case 2:
                lines.swapItemsAt(at, qsizetype(random() % std::uint32_t(lines.size())));
                break;
            case 3:
                lines[at] = replacements[random() % std::size(replacements)];
                break;
            default:
                if (!lines[at].isEmpty())
                    lines[at][qsizetype(random() % std::uint32_t(lines[at].size()))] =
                        char(random());
            }
        }
        EXPECT_TRUE(in.Run(lines.join('\n')) || !in.Report.Error.isEmpty()) << run;
    }
}

// Units: $INSUNITS scales the file to millimetres; without it $MEASUREMENT 0 means inches.
TEST(DxfUnits, InsUnitsAndMeasurement)
{
    const std::pair<QByteArray, double> cases[] = {
        {"9\n$INSUNITS\n70\n6\n", 1000}, // metres
        {"9\n$INSUNITS\n70\n1\n", 25.4}, // inches
        {"9\n$MEASUREMENT\n70\n0\n", 25.4},
        {"9\n$MEASUREMENT\n70\n1\n", 1},
    };
    for (const auto &[header, mm] : cases) {
        TImport in;
        ASSERT_TRUE(in.Run("0\nSECTION\n2\nHEADER\n" + header + "0\nENDSEC\n" +
                           Entities("0\nLINE\n8\n0\n10\n0\n20\n0\n11\n0.1\n21\n0\n")));
        EXPECT_DOUBLE_EQ(in.Report.UnitToMm, mm);
        EXPECT_NEAR(in.Cad.GetShapeByNo(0)->Points()[1].X, 0.1 * mm * F, 1e-3);
    }
}

// The saved bytes of the drawing; saving reports to OnProgress too, so it is taken off
// meanwhile.
QByteArray SavedUnheard(TMyCAD &cad)
{
    const TProgressEvent handler = cad.OnProgress();
    cad.SetOnProgress({});
    const QByteArray data = test::Saved(cad);
    cad.SetOnProgress(handler);
    return data;
}

// What a cancelled import must leave as it was: the bytes, undo steps, selection and next
// free identities.
auto State(TMyCAD &cad)
{
    return std::tuple(SavedUnheard(cad), cad.UndoRedoShapeList().size(), cad.WorkingShapes(),
                      cad.ShapeIdCounter(), cad.LayerIdCounter());
}

// A drawing with its own layer, shapes, a group, undo steps and a selection.
void MakeOwnDrawing(TMyCAD &cad)
{
    cad.resize(500, 400);
    cad.NewLayer("mine", true);
    const TMyPoint box[] = {{10, 10}, {50, 30}}, oval[] = {{60, 60}, {90, 80}};
    cad.AddShapeByCode(TDrawTool::SpRectangle, "Kept", box, 0, {});
    cad.AddShapeByCode(TDrawTool::SpEllipse, "Oval", oval, 0.5, {});
    TMyShape *const both[] = {cad.GetShapeByNo(0), cad.GetShapeByNo(1)};
    cad.GroupShapes(both, true);
    cad.AddShapeByCode(TDrawTool::SpLine, "Line", box, 0, {});
}

// count LINE entities half a unit long, a hundred to a row, each with the given groups.
QByteArray ShortLines(int count, const char *groups)
{
    QByteArray lines;
    for (int i = 0; i < count; ++i)
        lines += QString::asprintf("0\nLINE\n%s10\n%d\n20\n%d\n11\n%d.5\n21\n%d\n", groups, i % 100,
                                   i / 100, i % 100, i / 100)
                     .toLatin1();
    return lines;
}

// Shapes are built for the surface before they replace its drawing: the drawing shown is
// not composed again while they are, even where progress reports let events through.
TEST(DxfImport, TheDrawingShownStaysUntilTheImportEnds)
{
    const QByteArray lines = ShortLines(5000, "62\n3\n");
    TMyCAD cad;
    MakeOwnDrawing(cad);
    TDxfImportReport report;
    const test::TPaintsOfALoad paints = test::PaintsOfALoad(cad, [&] {
        ASSERT_TRUE(LoadFromDxfData(cad, Entities(lines), report)) << report.Error.toStdString();
    });
    EXPECT_FALSE(cad.IsLoading());
    EXPECT_GT(paints.Reports, 2);
    EXPECT_TRUE(paints.During.isEmpty());
    EXPECT_FALSE(paints.After.isEmpty());
}

// A file of 20,000 lines, several times the parse's report step: the parse reports while it
// reads, every report further on, and a cancel at its first report inside the file stops
// the import with the drawing, its layers and its undo steps as they were.
TEST(DxfImport, ParseReportsAsItReadsAndACancelInsideLeavesTheDrawing)
{
    const QByteArray lines = ShortLines(20000, "8\nparts\n");
    const QByteArray data = Entities(lines);

    std::vector<std::int64_t> done;
    std::size_t cancelAt = 0;
    const auto handler = [&](TMyCAD *, std::int64_t at, std::int64_t total, bool &cancel) {
        EXPECT_EQ(total, data.size());
        done.push_back(at);
        cancel = done.size() == cancelAt;
    };
    TMyCAD probe;
    probe.SetOnProgress(handler);
    TDxfImportReport report;
    ASSERT_TRUE(LoadFromDxfData(probe, data, report)) << report.Error.toStdString();
    EXPECT_EQ(probe.GetShapesCount(), 20000);
    EXPECT_EQ(done.back(), data.size());
    for (std::size_t i = 1; i < done.size(); ++i)
        EXPECT_GT(done[i], done[i - 1]) << i;
    // Reports of the parse, the first half of the scale, between its start and its end.
    ASSERT_GE(std::count_if(done.begin(), done.end(),
                            [&](std::int64_t at) { return at > 0 && at < data.size() / 2; }),
              1);

    TMyCAD cad;
    MakeOwnDrawing(cad);
    const auto before = State(cad);
    cad.SetOnProgress(handler);
    done.clear();
    cancelAt = 2;
    EXPECT_FALSE(LoadFromDxfData(cad, data, report));
    EXPECT_EQ(
        std::tuple(report.Cancelled, report.ShapesCreated, cad.LastError().isEmpty(), done.size()),
        std::tuple(true, 0, false, cancelAt));
    EXPECT_EQ(State(cad), before);
}

// Thirty INSERTs of a 2 x 5 array of a block of 61 entities, on a layer of the table beside
// a hidden one: some 18,000 entities visited and more shapes made, from a file far smaller
// than the parse's report step, so that the parse reports its start and end and the block
// copies make the build report several times, also within one INSERT.
QByteArray BlockArrays()
{
    QByteArray data = "0\nSECTION\n2\nTABLES\n0\nTABLE\n2\nLAYER\n70\n2\n"
                      "0\nLAYER\n2\nparts\n70\n0\n62\n3\n6\nCONTINUOUS\n"
                      "0\nLAYER\n2\nhidden\n70\n0\n62\n-5\n6\nCONTINUOUS\n"
                      "0\nENDTAB\n0\nENDSEC\n"
                      "0\nSECTION\n2\nBLOCKS\n0\nBLOCK\n8\n0\n2\ncell\n70\n0\n10\n0\n20\n0\n";
    for (int i = 0; i < 60; ++i)
        data += QString("0\nLINE\n8\n0\n10\n%1\n20\n0\n11\n%1\n21\n8\n").arg(i).toLatin1();
    data += "0\nCIRCLE\n8\n0\n10\n5\n20\n5\n40\n3\n0\nENDBLK\n0\nENDSEC\n"
            "0\nSECTION\n2\nENTITIES\n";
    for (int i = 0; i < 30; ++i)
        data += QString("0\nINSERT\n8\nparts\n2\ncell\n10\n%1\n20\n%2\n"
                        "70\n5\n71\n2\n44\n70\n45\n12\n")
                    .arg(i % 3 * 400)
                    .arg(i / 3 * 30)
                    .toLatin1();
    return data + "0\nENDSEC\n0\nEOF\n";
}

// The import reports through the parse and the build on one scale, the file's size, never
// going back and ending at the whole; reporting changes nothing in what is built. A cancel
// at the first report, at the build's first, in the middle of the build and at the very
// last leaves the drawing as it was: its bytes, undo steps, selection and next free
// identities, so that the import made afterwards equals one made without the cancels.
TEST(DxfImport, CancelDuringTheBuildLeavesTheDrawing)
{
    const QByteArray data = BlockArrays();
    const std::int64_t whole = data.size();
    TMyCAD reference;
    MakeOwnDrawing(reference);
    TDxfImportReport report;
    ASSERT_TRUE(LoadFromDxfData(reference, data, report)) << report.Error.toStdString();
    ASSERT_GT(report.ShapesCreated, 18000);
    const QByteArray imported = test::Saved(reference);

    std::vector<std::pair<std::int64_t, std::int64_t>> all, heard;
    std::size_t cancelAt = 0;
    TMyCAD cad;
    MakeOwnDrawing(cad);
    cad.AddWorkingShapes(cad.GetShapeByNo(3));
    cad.SetOnProgress([&](TMyCAD *, std::int64_t done, std::int64_t total, bool &cancel) {
        all.emplace_back(done, total);
        cancel = all.size() == cancelAt;
    });
    TDxfImportOptions options;
    options.Progress = [&](std::int64_t done, std::int64_t total) {
        heard.emplace_back(done, total);
    };
    {
        TMyCAD probe;
        MakeOwnDrawing(probe);
        probe.SetOnProgress(cad.OnProgress());
        ASSERT_TRUE(LoadFromDxfData(probe, data, report, options));
        EXPECT_EQ(SavedUnheard(probe), imported);
    }
    EXPECT_EQ(heard, all);
    test::ExpectSteadyProgress(all, whole);
    // The parse is the first half of the scale.
    const auto firstBuild = std::size_t(
        std::find_if(all.begin(), all.end(), [&](auto r) { return r.first > whole / 2; }) -
        all.begin());
    ASSERT_EQ(firstBuild, 2u);
    ASSERT_GE(all.size() - firstBuild, 4u);

    const auto before = State(cad);
    const std::size_t reports = all.size();
    for (const std::size_t at :
         {std::size_t(1), firstBuild + 1, (firstBuild + reports) / 2 + 1, reports}) {
        all.clear();
        cancelAt = at;
        EXPECT_FALSE(LoadFromDxfData(cad, data, report)) << at;
        EXPECT_EQ(
            std::tuple(all.size(), report.Cancelled, report.ShapesCreated, report.EntitiesRead),
            std::tuple(at, true, 0, 0));
        EXPECT_EQ(std::tuple(report.Error, cad.LastError()),
                  std::tuple("the import was cancelled", "the import was cancelled"));
        EXPECT_EQ(State(cad), before) << at;
    }
    cancelAt = 0;
    ASSERT_TRUE(LoadFromDxfData(cad, data, report));
    EXPECT_EQ(SavedUnheard(cad), imported);
    EXPECT_TRUE(cad.UndoRedoShapeList().empty());
}

} // namespace
} // namespace tessal
