// SPDX-License-Identifier: MIT
// The DXF writer: number text, the exact file of every exported class, glyph outlines,
// failures, and ezdxf reading and auditing what we write.
#include "dxftestutil.h"

#include <tessal/dxf/dxfnumbers.h>
#include <tessal/geometry/scaledtext.h>
#include <tessal/shapes/curve.h>
#include <tessal/shapes/link.h>
#include <tessal/shapes/text.h>
#include <tessal/surface/cad.h>

#include <QFile>
#include <QFontMetricsF>
#include <QJsonArray>
#include <QLocale>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <numbers>
#include <random>

namespace tessal {
namespace {

using test::DxfLines;
using test::RunPeer;

TEST(DxfNumbers, ShortestGeneralFormWithDotWhateverTheLocale)
{
    // A locale with a decimal comma must not leak into the file.
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German));
    std::setlocale(LC_NUMERIC, "de_DE.UTF-8");
    // The random values further down check every other text's value and form; these rows are
    // the zeros, no more than 15 digits in either form, the two ends of the plain form, a
    // three-digit exponent and the millimetres of a pixel.
    const std::pair<double, const char *> cases[] = {
        {0, "0"},
        {-0.0, "0"},
        {-2.5, "-2.5"},
        {1.0 / 3, "0.333333333333333"},
        {1e15, "1E15"},
        {1234567890123456789.0, "1.23456789012346E18"},
        {0.00001, "0.00001"},
        {-2.5e-300, "-2.5E-300"},
        {378 / Dxf::PixelsPerMm, "100.0125"},
        {96 / Dxf::PixelsPerMm, "25.4"},
    };
    for (const auto &[value, text] : cases)
        EXPECT_EQ(Dxf::FormatNumber(value), QByteArray(text)) << value;
    std::setlocale(LC_NUMERIC, "C");
    QLocale::setDefault(before);
    // Random values of every magnitude: the text reads back as the value rounded to 15
    // significant digits, plain from 1e-5 to below 1e15 and with an exponent otherwise,
    // without trailing zeros.
    std::mt19937_64 random(15);
    std::uniform_real_distribution<double> mantissa(-10, 10);
    std::uniform_int_distribution<int> magnitude(-40, 40);
    const QRegularExpression plain("^-?(0|[1-9][0-9]*)(\\.[0-9]*[1-9])?$");
    const QRegularExpression exponent("^-?[1-9](\\.[0-9]*[1-9])?E-?[1-9][0-9]*$");
    for (int i = 0; i < 20000; ++i) {
        const double value = mantissa(random) * std::pow(10.0, magnitude(random));
        const QByteArray text = Dxf::FormatNumber(value);
        char rounded[64];
        std::snprintf(rounded, sizeof rounded, "%.14e", value);
        ASSERT_EQ(std::strtod(text.constData(), nullptr), std::strtod(rounded, nullptr))
            << text.constData();
        const double size = std::fabs(std::strtod(rounded, nullptr));
        const bool fixed = size >= 1e-5 && size < 1e15;
        EXPECT_TRUE((fixed ? plain : exponent).match(QString::fromLatin1(text)).hasMatch())
            << text.constData();
    }
    // Texts go out in ASCII, everything else escaped.
    EXPECT_EQ(Dxf::EscapeText("Gr\u00f6\u00dfe \u2300\t1"),
              QByteArray("Gr\\U+00F6\\U+00DFe \\U+2300 1"));
}

class DxfWriter : public ::testing::Test
{
protected:
    void SetUp() override { cad.resize(640, 480); }

    void Add(TDrawTool tool, std::initializer_list<TMyPoint> points, const QString &text = {})
    {
        ASSERT_GE(cad.AddShapeByCode(tool, {}, std::span(points.begin(), points.size()), 0, text),
                  0);
    }

    TMyCAD cad;
};

// The expected file, built from the format's rules: handles from 20, millimetres, Y up from
// the control's bottom (480 pixels), "0.0" for Z.
class Expected
{
public:
    Expected() { Pairs({"0", "SECTION", "2", "ENTITIES"}); }
    QStringList Finish()
    {
        Pairs({"0", "ENDSEC", "0", "EOF"});
        return m_Lines;
    }
    void Head(const char *type) { Pairs({"0", type, "5", QString::number(m_Handle++), "8", "0"}); }
    void Point(int code, const QString &x, const QString &y)
    {
        Pairs({QString::number(code), x, QString::number(code + 10), y, QString::number(code + 20),
               "0.0"});
    }
    void Line(const QString &x1, const QString &y1, const QString &x2, const QString &y2)
    {
        Head("LINE");
        Point(10, x1, y1);
        Point(11, x2, y2);
    }
    void Polyline(const QList<std::pair<QString, QString>> &vertices)
    {
        Head("POLYLINE");
        Pairs({"66", "1", "10", "0.0", "20", "0.0", "30", "0.0", "70", "1"});
        for (const auto &[x, y] : vertices) {
            Head("VERTEX");
            Point(10, x, y);
        }
        Head("SEQEND");
    }
    void Pairs(const QStringList &pairs) { m_Lines << pairs; }

private:
    QStringList m_Lines;
    int m_Handle = 20;
};

// Millimetres of a pixel value as %.15g writes them (96 / 25.4 pixels per millimetre); only
// for values whose general form has no exponent.
QString Mm(double pixels)
{
    const QString s = QString::asprintf("%.15g", pixels / 3.779527559055118);
    EXPECT_FALSE(s.contains(QLatin1Char('e'))) << s.toStdString();
    return s;
}

// The empty drawing, then every exported class once, with shapes that are not exported in
// between (they take no handle), compared line for line with the file derived by hand.
TEST_F(DxfWriter, EveryExportedClassExactly)
{
    // An empty drawing is the bare section; every line ends with CR LF, the last one too.
    EXPECT_EQ(DxfLines(cad.DxfText(false)), Expected().Finish());
    EXPECT_TRUE(cad.DxfText(false).endsWith("EOF\r\n"));
    Add(TDrawTool::SpLine, {{48, 48}, {192, 96}});
    Add(TDrawTool::SpFreeLine, {{0, 0}, {10, 10}, {20, 0}});
    Add(TDrawTool::SpPolyLine, {{0, 0}, {96, 0}, {96, 96}});
    Add(TDrawTool::SpLinkLine, {{48, 240}, {144, 240}});
    Add(TDrawTool::SpRuleLine, {{0, 10}, {100, 10}});
    Add(TDrawTool::SpRectangle, {{96, 288}, {192, 384}});
    Add(TDrawTool::SpPolygon, {{240, 288}, {336, 288}, {288, 384}});
    Add(TDrawTool::SpBLine, {{0, 0}, {50, 50}, {100, 0}});
    Add(TDrawTool::SpElliArc, {{0, 240}, {96, 144}, {192, 240}});
    Add(TDrawTool::SpLinkPoint, {{10, 10}, {18, 18}});
    Add(TDrawTool::SpLineLinkLine, {{384, 48}, {480, 144}});
    Add(TDrawTool::SpEllipse, {{384, 240}, {576, 336}});
    Add(TDrawTool::SpPolyBezier, {{0, 432}, {48, 384}, {144, 480}, {192, 432}});

    Expected e;
    e.Line("12.7", "114.3", "50.8", "101.6");
    e.Line("0", "127", "25.4", "127");
    e.Line("25.4", "127", "25.4", "101.6");
    e.Line("12.7", "63.5", "38.1", "63.5");
    e.Polyline({{"25.4", "50.8"}, {"50.8", "50.8"}, {"50.8", "25.4"}, {"25.4", "25.4"}});
    e.Polyline({{"63.5", "50.8"}, {"88.9", "50.8"}, {"76.2", "25.4"}, {"63.5", "50.8"}});
    // The circle through (0, 240), (96, 144), (192, 240): centre (96, 240), radius 96,
    // running anticlockwise (Y up) from 0 degrees over the top to 180.
    e.Head("ARC");
    e.Point(10, "25.4", "63.5");
    e.Pairs({"40", "25.4", "50", "0", "51", "180"});
    // Junction: centre of its square, radius half the side, then half of that.
    e.Head("CIRCLE");
    e.Point(10, "114.3", "101.6");
    e.Pairs({"40", "12.7"});
    e.Head("CIRCLE");
    e.Point(10, "114.3", "101.6");
    e.Pairs({"40", "6.35"});
    // Ellipse: 72 vertices 5 degrees apart from the bottom of the upright ellipse.
    QList<std::pair<QString, QString>> ellipse;
    for (int k = 0; k < 72; ++k) {
        const double t = k * std::numbers::pi / 36;
        ellipse.append({Mm(480 + 96 * std::sin(t)), Mm(480 - (288 + 48 * std::cos(t)))});
    }
    e.Polyline(ellipse);
    // The poly-Bezier as its flattened curve.
    QList<std::pair<QString, QString>> curve;
    for (TMyPoint p : FlattenPolyBezier({{0, 432}, {48, 384}, {144, 480}, {192, 432}}))
        curve.append({Mm(p.X), Mm(480 - p.Y)});
    EXPECT_GT(curve.size(), 4);
    e.Polyline(curve);

    const QStringList actual = DxfLines(cad.DxfText(false));
    const QStringList expected = e.Finish();
    ASSERT_EQ(actual.size(), expected.size());
    for (qsizetype i = 0; i < actual.size(); ++i)
        ASSERT_EQ(actual[i].toStdString(), expected[i].toStdString()) << "line " << i + 1;
    // SaveToDxf1 differs only for text shapes.
    EXPECT_EQ(cad.DxfText(true), cad.DxfText(false));
}

// The LINE entities of a file, as pixel coordinates of a control height pixels high.
std::vector<std::array<double, 4>> LinesInPixels(const QByteArray &text, double height)
{
    const QStringList lines = DxfLines(text);
    std::vector<std::array<double, 4>> out;
    for (qsizetype i = 0; i + 1 < lines.size(); i += 2) {
        if (lines[i] != "0" || lines[i + 1] != "LINE")
            continue;
        std::array<double, 4> line{};
        for (qsizetype k = i + 2; k + 1 < lines.size() && lines[k] != "0"; k += 2) {
            const int code = lines[k].toInt();
            const double mm = lines[k + 1].toDouble() * 3.779527559055118;
            if (code == 10 || code == 11)
                line[code == 10 ? 0 : 2] = mm;
            else if (code == 20 || code == 21)
                line[code == 20 ? 1 : 3] = height - mm;
        }
        out.push_back(line);
    }
    return out;
}

// A connector goes out as it is drawn. While its stored route meets its shapes, that route
// is written exactly; after a shape moved by code, before anything let the connector follow,
// the route to where the shape is now, at any zoom.
TEST_F(DxfWriter, ConnectorsGoOutAsTheyAreDrawn)
{
    Add(TDrawTool::SpRectangle, {{48, 48}, {144, 144}});
    Add(TDrawTool::SpRectangle, {{336, 48}, {432, 144}});
    TMyShape *a = cad.GetShapeByNo(0);
    TMyShape *b = cad.GetShapeByNo(1);
    a->AddLinkPoint({144, 96});
    b->AddLinkPoint({336, 96});
    Add(TDrawTool::SpLinkLine, {{144, 96}, {336, 96}});
    auto *link = dynamic_cast<TMyLinkLine *>(cad.GetShapeByNo(2));
    ASSERT_NE(link, nullptr);
    ASSERT_TRUE(link->CreateSrcLink(a->ShapeId(), 0) && link->CreateDestLink(b->ShapeId(), 0));
    const auto chainOf = [](const std::vector<std::array<double, 4>> &lines) {
        std::vector<TMyPoint> chain;
        for (const auto &l : lines) {
            if (chain.empty())
                chain.push_back({float(l[0]), float(l[1])});
            EXPECT_NEAR(chain.back().X, l[0], 1e-3);
            EXPECT_NEAR(chain.back().Y, l[1], 1e-3);
            chain.push_back({float(l[2]), float(l[3])});
        }
        return chain;
    };
    const auto written = [&] { return chainOf(LinesInPixels(cad.DxfText(false), cad.height())); };
    const auto near = [](TMyPoint p, TMyPoint q) {
        return std::abs(p.X - q.X) < 1e-3 && std::abs(p.Y - q.Y) < 1e-3;
    };
    EXPECT_EQ(written(), link->Points());

    for (const double zoom : {1.0, 1.5}) {
        SCOPED_TRACE(zoom);
        cad.SetZoom(zoom);
        cad.DragChangeValueDxDyforShapes(b, 0, 96 * zoom); // down 96 document units
        const TMyPoint end = b->GetLinkPoint(0);
        ASSERT_FALSE(near(link->Points().back(), end)); // the stored route is behind
        const std::vector<TMyPoint> chain = written();
        ASSERT_GE(chain.size(), 2u);
        EXPECT_TRUE(near(chain.front(), {144, 96}));
        EXPECT_TRUE(near(chain.back(), end)) << chain.back().X << "," << chain.back().Y;
        cad.ChangeLinkShapes(b);
        EXPECT_EQ(written(), link->Points());
        EXPECT_TRUE(near(link->Points().back(), end));
    }
}

// A text shape: one TEXT per line at the left end of the line's baseline, the font's
// character height, the angle anticlockwise in degrees; SaveToDxf1 writes glyph outlines.
// A 12-point font is drawn 12 pixels high at zoom 1, as a 12-pixel line is long: 3.175 mm
// at any zoom, so that text keeps its size beside the geometry.
TEST_F(DxfWriter, TextAsTextAndAsGlyphOutlines)
{
    Add(TDrawTool::SpText, {{240, 96}, {480, 192}}, "Hi\nthere");
    TFont font = cad.GetShapeByNo(0)->Font();
    font.SetSize(12);
    cad.GetShapeByNo(0)->SetFont(font);
    QImage image(1, 1, QImage::Format_ARGB32);
    TCanvas canvas(&image);
    canvas.SelectLogFont(MakeScaledLogFont(canvas, font, 1, 0));
    const double ascent = QFontMetricsF(canvas.TextFont(), &image).ascent();
    const double lineHeight = canvas.LineHeight();

    const QStringList lines = DxfLines(cad.DxfText(false));
    Expected e;
    e.Head("TEXT");
    e.Point(10, Mm(242), Mm(480 - (98 + ascent)));
    e.Pairs({"40", "3.175", "50", "0", "1", "Hi"});
    e.Head("TEXT");
    e.Point(10, Mm(242), Mm(480 - (98 + lineHeight + ascent)));
    e.Pairs({"40", "3.175", "50", "0", "1", "there"});
    EXPECT_EQ(lines.join(' ').toStdString(), e.Finish().join(' ').toStdString());

    // Turned by a quarter clockwise on screen: anticlockwise -90 degrees in the file.
    cad.GetShapeByNo(0)->SetAngle(float(std::numbers::pi / 2));
    const QStringList turned = DxfLines(cad.DxfText(false));
    const qsizetype at = turned.indexOf("50");
    ASSERT_GT(at, 0);
    EXPECT_NEAR(turned[at + 1].toDouble(), -90, 1e-5);

    // Glyphs: only closed POLYLINE groups, every vertex inside the text's box.
    cad.GetShapeByNo(0)->SetAngle(0);
    const QStringList glyphs = DxfLines(cad.DxfText(true));
    EXPECT_FALSE(glyphs.contains("TEXT"));
    EXPECT_GE(glyphs.count("POLYLINE"), 7); // H, i (2), t, h, e (2), r, e
    EXPECT_EQ(glyphs.count("POLYLINE"), glyphs.count("SEQEND"));
    for (qsizetype i = 0; i + 1 < glyphs.size(); i += 2)
        if (glyphs[i] == QLatin1String("10") && glyphs[i + 1] != QLatin1String("0.0")) {
            const double x = glyphs[i + 1].toDouble() * 96 / 25.4;
            const double y = 480 - glyphs[i + 3].toDouble() * 96 / 25.4;
            EXPECT_TRUE(x > 240 && x < 480 && y > 96 && y < 192) << x << ", " << y;
        }

    // Not the 16 pixels the font is drawn with at zoom 1.3: the same 12 pixels of the drawing.
    cad.SetZoom(1.3);
    const QStringList zoomed = DxfLines(cad.DxfText(false));
    EXPECT_EQ(zoomed.at(zoomed.indexOf("40") + 1).toStdString(), "3.175");
}

TEST_F(DxfWriter, FailedSaveKeepsOldFileAndSaysWhy)
{
    Add(TDrawTool::SpLine, {{0, 0}, {10, 10}});
    EXPECT_FALSE(cad.SaveToDxf("/nonexistent-folder/plan.dxf"));
    EXPECT_TRUE(cad.LastError().contains("plan.dxf"));

    QTemporaryDir dir;
    const QString name = dir.filePath("plan.dxf");
    ASSERT_TRUE(cad.SaveToDxf(name)); // what it writes is the progress test's
    EXPECT_TRUE(cad.LastError().isEmpty());
    // A folder in the file's place cannot be replaced: the save fails, the folder stays.
    const QString blocked = dir.filePath("blocked.dxf");
    ASSERT_TRUE(QDir().mkdir(blocked));
    EXPECT_FALSE(cad.SaveToDxf1(blocked));
    EXPECT_TRUE(QFileInfo(blocked).isDir());
}

// A save reports its progress per 4096 shapes, from 0 to all of them; a cancel leaves the
// old file as it was and says so.
TEST_F(DxfWriter, ProgressAndCancel)
{
    for (int i = 0; i < 10000; ++i)
        Add(TDrawTool::SpLine, {{float(i % 600), 0}, {10, float(i % 400)}});
    std::vector<std::int64_t> seen;
    cad.SetOnProgress([&](TMyCAD *sender, std::int64_t done, std::int64_t total, bool &) {
        EXPECT_EQ(sender, &cad);
        EXPECT_EQ(total, 10000);
        seen.push_back(done);
    });
    QTemporaryDir dir;
    const QString name = dir.filePath("plan.dxf");
    ASSERT_TRUE(cad.SaveToDxf(name));
    EXPECT_EQ(seen, (std::vector<std::int64_t>{0, 4096, 8192, 10000}));

    cad.SetOnProgress(
        [](TMyCAD *, std::int64_t done, std::int64_t, bool &cancel) { cancel = done >= 4096; });
    EXPECT_FALSE(cad.SaveToDxf1(name));
    EXPECT_EQ(cad.LastError(), name + ": cancelled");
    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), cad.DxfText(false));
}

// ezdxf reads what both variants write, in strict mode, and its audit finds no error; the
// entities it sees are the ones written.
TEST_F(DxfWriter, EzdxfReadsAndAuditsEveryFile)
{
    Add(TDrawTool::SpLine, {{48, 48}, {192, 96}});
    Add(TDrawTool::SpPolyLine, {{0, 0}, {96, 0}, {96, 96}});
    Add(TDrawTool::SpRectangle, {{96, 288}, {192, 384}});
    Add(TDrawTool::SpPolygon, {{240, 288}, {336, 288}, {288, 384}});
    Add(TDrawTool::SpElliArc, {{0, 240}, {96, 336}, {192, 240}});
    Add(TDrawTool::SpLineLinkLine, {{384, 48}, {480, 144}});
    Add(TDrawTool::SpEllipse, {{384, 240}, {576, 336}});
    Add(TDrawTool::SpPolyBezier, {{0, 432}, {48, 384}, {144, 480}, {192, 432}});
    Add(TDrawTool::SpText, {{240, 96}, {480, 192}}, "Ab");
    QTemporaryDir dir;
    for (bool glyphs : {false, true}) {
        const QString name = dir.filePath(glyphs ? "glyphs.dxf" : "text.dxf");
        ASSERT_TRUE(glyphs ? cad.SaveToDxf1(name) : cad.SaveToDxf(name));
        const QJsonObject peer = RunPeer({"audit", name});
        EXPECT_EQ(std::tuple(peer["errors"].toInt(-1), peer["lines"].toArray().size(),
                             peer["circles"].toArray().size(), peer["texts"].toArray().size()),
                  std::tuple(0, 3, 2, glyphs ? 0 : 1));
        const QJsonArray arc = peer["arcs"].toArray().at(0).toArray();
        // Below the chord on screen, so anticlockwise from 180 to 360 in the file.
        EXPECT_NEAR(arc[0].toDouble(), 25.4, 1e-12);
        EXPECT_NEAR(arc[2].toDouble(), 25.4, 1e-12);
        EXPECT_NEAR(arc[3].toDouble(), 180, 1e-12);
        EXPECT_NEAR(std::fmod(arc[4].toDouble(), 360), 0, 1e-12);
        const QJsonArray polylines = peer["vertices"].toArray();
        EXPECT_EQ(polylines.at(2).toArray().size(), 72);
        // Rectangle, polygon, ellipse, curve, and the glyphs' outlines.
        EXPECT_GE(polylines.size(), glyphs ? 4 + 3 : 4);
    }
}

} // namespace
} // namespace tessal
