// SPDX-License-Identifier: MIT
// tessal-cli on drawing files: info and dump read back exactly, the page renders with ink
// where the shapes are, damaged files and bad command lines end with their exit statuses.
#include "clitool.h"
#include "common/files.h"
#include "common/imagecompare.h"
#include "convert.h"
#include "sample.h"

#include <tessal/shapes/shape.h>
#include <tessal/surface/cad.h>

#include <gtest/gtest.h>

#include <QDir>
#include <QJsonArray>
#include <QJsonObject>
#include <QMetaProperty>
#include <QPainter>
#include <QProcess>
#include <QRegularExpression>
#include <QSvgRenderer>
#include <QTemporaryDir>

#include <map>

using namespace tessal;
using namespace tessal::test;

namespace {

QString DataFile(const char *name)
{
    return QStringLiteral(TESSAL_TEST_DATA_DIR "/drawings/") + QLatin1String(name);
}

// Points as the dump writes them: [[x, y], ...], compared as the floats they were.
void ExpectPoints(const QJsonValue &json, const TMyPointArray &points)
{
    const QJsonArray list = json.toArray();
    ASSERT_EQ(list.size(), qsizetype(points.size()));
    for (std::size_t i = 0; i < points.size(); ++i) {
        EXPECT_EQ(float(list[qsizetype(i)][0].toDouble()), points[i].X) << "point " << i;
        EXPECT_EQ(float(list[qsizetype(i)][1].toDouble()), points[i].Y) << "point " << i;
    }
}

} // namespace

// info on the stored drawings: version, page, size, unit, layer lines with shape counts and
// the shapes of each class, exactly.
TEST(CliInfo, StoredDrawings)
{
    const QString head = QStringLiteral("page: A4, 210 x 297 mm, poPortrait\n"
                                        "size: 200 x 150 pixels\n"
                                        "unit: mm\n"
                                        "layers: 1, current 0\n");
    const std::map<const char *, QString> expected = {
        {"empty.tsd", "version: XP.j\n" + head +
                          "  layer 0 \"Layer0\" visible 0 shapes\n"
                          "shapes: 0\n"},
        {"shapes_xp4.tsd", "version: XP.4\n" + head +
                               "  layer 0 \"Layer0\" visible 2 shapes\n"
                               "shapes: 2\n  TMyLinkLine 1\n  TMyRectangle 1\n"},
        {"shapes_xpj.tsd", "version: XP.j\n" + head +
                               "  layer 0 \"Layer0\" visible 3 shapes\n"
                               "shapes: 3\n  TMyLinkLine 1\n  TMyRectangle 1\n  TMyText 1\n"},
    };
    for (const auto &[name, text] : expected) {
        const TToolResult r = RunTool({"info", DataFile(name)});
        EXPECT_EQ(r.Status, Cli::ExitOk) << name;
        EXPECT_EQ(r.Out, "file: " + DataFile(name) + '\n' + text) << name;
        EXPECT_TRUE(r.Err.isEmpty()) << name;
    }
}

// dump parses back as JSON with the top keys in their order and the exact stored values.
TEST(CliDump, StoredDrawingValues)
{
    const TToolResult r = RunTool({"dump", DataFile("shapes_xpj.tsd")});
    ASSERT_EQ(r.Status, Cli::ExitOk) << r.Err.toStdString();
    QStringList topKeys;
    for (const auto &match :
         QRegularExpression(QStringLiteral("^  \"(\\w+)\":"), QRegularExpression::MultilineOption)
             .globalMatch(r.Out))
        topKeys << match.captured(1);
    EXPECT_EQ(topKeys.join(' '), "Version Width Height ColorOfBackGround TheUNIT Ratio "
                                 "BkBitmapMode BkBitmap Tag UserData Layers CurrentLayerId Shapes");

    const QJsonObject top = ParseJson(r.Out).object();
    EXPECT_EQ(top["Version"], "XP.j");
    EXPECT_EQ(top["Width"], 200);
    EXPECT_EQ(top["Height"], 150);
    EXPECT_EQ(top["ColorOfBackGround"], 0xFFFFFF);
    EXPECT_EQ(top["TheUNIT"], "mm");
    EXPECT_EQ(top["BkBitmapMode"], "Center");
    EXPECT_EQ(top["Layers"],
              ParseJson(R"([{"Name": "Layer0", "Id": 0, "Visible": true}])").array());
    // The shapes' fields are the editor sample's test below.
}

// The editor's sample (every shape class, two layers, a group, a combine, bound connectors)
// saved, then described by info and dump: both agree with the drawing that was saved, every
// published property of every class is written, and enumerations by their names.
TEST(CliDump, EditorSampleDrawing)
{
    TMyCAD cad;
    cad.resize(800, 700);
    BuildSampleDrawing(cad);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("sample.tsd"));
    ASSERT_TRUE(cad.SaveToFile(path));

    const TToolResult info = RunTool({"info", path});
    ASSERT_EQ(info.Status, Cli::ExitOk) << info.Err.toStdString();
    EXPECT_TRUE(info.Out.contains("size: 800 x 700 pixels\n"));
    std::map<QString, int> byClass;
    for (std::int32_t no = 0; no < cad.GetShapesCount(); ++no)
        ++byClass[cad.GetShapeByNo(no)->ClassName()];
    EXPECT_EQ(byClass.size(), 17u) << "the sample holds one shape of every class";
    for (const auto &[className, count] : byClass)
        EXPECT_TRUE(info.Out.contains(QStringLiteral("\n  %1 %2\n").arg(className).arg(count)))
            << className.toStdString();
    ASSERT_EQ(cad.GetLayersCount(), 2);
    for (const TLayer &layer : cad.Layers())
        EXPECT_TRUE(info.Out.contains(QStringLiteral("  layer %1 \"%2\" visible %3 shapes\n")
                                          .arg(layer.Id)
                                          .arg(layer.Name)
                                          .arg(cad.GetShapesCountInALayer(layer.Id))));

    const TToolResult dump = RunTool({"dump", path});
    ASSERT_EQ(dump.Status, Cli::ExitOk) << dump.Err.toStdString();
    const QJsonObject top = ParseJson(dump.Out).object();
    EXPECT_EQ(top["CurrentLayerId"], cad.CurrentLayerId());
    const QJsonArray shapes = top["Shapes"].toArray();
    ASSERT_EQ(shapes.size(), cad.GetShapesCount());
    for (std::int32_t no = 0; no < cad.GetShapesCount(); ++no) {
        const TMyShape &shape = *cad.GetShapeByNo(no);
        const QJsonObject json = shapes[no].toObject();
        const std::string where =
            "shape " + std::to_string(no) + " " + shape.ClassName().toStdString();
        SCOPED_TRACE(where);
        EXPECT_EQ(json["ClassName"], shape.ClassName());
        EXPECT_EQ(json["Name"], shape.Name());
        EXPECT_EQ(json["ShapeId"], shape.ShapeId());
        EXPECT_EQ(json["LayerId"], shape.LayerId());
        EXPECT_EQ(json["ParentNo"], shape.ParentNo());
        const auto numbers = [](const std::vector<std::int32_t> &list) {
            return QJsonArray::fromVariantList(QVariantList(list.begin(), list.end()));
        };
        EXPECT_EQ(json["ChildShapes"], numbers(shape.ChildShapes()));
        EXPECT_EQ(json["LinkShapes"], numbers(shape.LinkShapes()));
        ExpectPoints(json["Points"], shape.Points());
        ExpectPoints(json["LinkPoints"], shape.LinkPoints());
        // Every published value is written; enumerations by name, numbers as the same float.
        const QMetaObject &meta = *shape.MetaObject();
        for (int i = 0; i < meta.propertyCount(); ++i) {
            const QMetaProperty property = meta.property(i);
            const QLatin1String name(property.name());
            if (name == QLatin1String("OnClick"))
                continue;
            ASSERT_TRUE(json.contains(name)) << property.name();
            const QVariant value = property.readOnGadget(&shape);
            const QJsonValue written = json[name];
            if (property.isEnumType()) {
                EXPECT_EQ(written, QLatin1String(property.enumerator().valueToKey(value.toInt())));
            } else if (written.isDouble()) {
                EXPECT_EQ(float(written.toDouble()), value.toFloat()) << property.name();
            } else if (written.isBool() || written.isString()) {
                EXPECT_EQ(written.toVariant(), value) << property.name();
            }
        }
    }
}

// convert writes the page as the editor's Export > Page as Picture does: the same pixels,
// at the page's size, the grid left out; the SVG holds figures that show the same pixels;
// the PDF page has the page's size and holds figures too.
TEST(CliConvert, PageFormatsAreTheEditorsExport)
{
    QTemporaryDir dir;
    const QString png = dir.filePath(QStringLiteral("page.png"));
    const QString source = DataFile("shapes_xpj.tsd");
    ASSERT_EQ(RunTool({"convert", source, png}).Status, Cli::ExitOk);
    const QImage page(png);
    // An A4 page at 96 pixels per inch, though the drawing was saved 200 x 150 pixels large.
    ASSERT_EQ(page.size(), QSize(794, 1123));
    QString error;
    const std::unique_ptr<TMyCAD> cad = Cli::LoadDrawing(source, error);
    ASSERT_TRUE(cad);
    const ImageDiff same = CompareImages(page.convertToFormat(QImage::Format_RGB32),
                                         cad->ExportImage(TExportArea::Page));
    EXPECT_EQ(same.DifferingPixels, 0) << "the editor's export, pixel for pixel";
    // Box (10, 10)-(60, 40) with a black pen over a white fill, a connector with an arrow.
    EXPECT_EQ(page.pixel(10, 25) & 0xFFFFFF, 0x000000u) << "left edge of the box";
    EXPECT_EQ(page.pixel(35, 40) & 0xFFFFFF, 0x000000u) << "bottom edge of the box";
    EXPECT_EQ(page.pixel(100, 20) & 0xFFFFFF, 0x000000u) << "the connector's first leg";
    EXPECT_GT(CountPixels(page, QRect(110, 60, 20, 25), 0x000000), 20) << "the arrow head";
    // The drawing shows a grid on screen; none of it reaches the file.
    ASSERT_TRUE(cad->GridOperation()->GridShow());
    EXPECT_EQ(CountPixels(page, QRect(0, 90, 794, 1033), 0xFFFFFF), 794 * 1033)
        << "nothing but white below the shapes";

    const QString svg = dir.filePath(QStringLiteral("page.svg"));
    const TToolResult svgRun = RunTool({"convert", source, svg});
    ASSERT_EQ(svgRun.Status, Cli::ExitOk);
    EXPECT_FALSE(ReadFile(svg).contains("<image")) << "figures, not a picture of the page";
    QSvgRenderer renderer(svg);
    ASSERT_TRUE(renderer.isValid());
    ASSERT_EQ(renderer.viewBox(), QRect(QPoint(0, 0), page.size()));
    QImage drawn(page.size(), QImage::Format_RGB32);
    drawn.fill(Qt::magenta);
    QPainter painter(&drawn);
    renderer.render(&painter);
    painter.end();
    // The same page, apart from the smoothing of slanted edges, corners and glyphs.
    const ImageDiff diff = CompareImages(drawn, page.convertToFormat(QImage::Format_RGB32));
    EXPECT_LT(diff.DifferingPixels, 200 * 150 / 100);
    for (const QPoint at :
         {QPoint(10, 25), QPoint(35, 40), QPoint(40, 100), QPoint(40, 30), QPoint(100, 20)})
        EXPECT_EQ(drawn.pixel(at), page.pixel(at)) << at.x() << ", " << at.y();

    const QString pdf = dir.filePath(QStringLiteral("page.pdf"));
    ASSERT_EQ(RunTool({"convert", source, pdf}).Status, Cli::ExitOk);
    const QByteArray bytes = ReadFile(pdf);
    EXPECT_TRUE(bytes.startsWith("%PDF-"));
    // 794 x 1123 pixels at 96 per inch are 595.5 x 842.25 points, whole points on the page.
    EXPECT_TRUE(bytes.contains("/MediaBox [0 0 596.000000 842.000000]"))
        << "page size from the drawing";
    EXPECT_FALSE(bytes.contains("/Subtype /Image")) << "figures, not a picture of the page";

    EXPECT_TRUE(Cli::UsageText().contains("no grid")) << "the help says what is written";
}

// The page is the one size a page output allocates: a damaged stored size of ten million
// pixels changes nothing (the program runs with a few gigabytes of address space at most),
// and a page past the limit is refused with one line before anything is drawn or written.
TEST(CliConvert, PageSizesHaveALimit)
{
    QTemporaryDir dir;
    QByteArray bytes = ReadFile(DataFile("shapes_xpj.tsd"));
    const QByteArray stored("\xC8\0\0\0\x96\0\0\0", 8); // 200 x 150
    const qsizetype at = bytes.indexOf(stored);
    ASSERT_GT(at, 0);
    ASSERT_EQ(bytes.indexOf(stored, at + 1), -1);
    bytes.replace(at + 4, 4, QByteArray("\x96\x00\x9A\x00", 4)); // 10,092,694
    const QString tall = dir.filePath(QStringLiteral("tall.tsd"));
    ASSERT_TRUE(WriteFile(tall, bytes));
    for (const char *name : {"tall.png", "tall.svg", "tall.pdf"}) {
        const QString out = dir.filePath(QLatin1String(name));
        QProcess process;
        process.start(QStringLiteral("bash"),
                      {"-c", "ulimit -v 4000000 && exec \"$0\" convert \"$1\" \"$2\"",
                       QStringLiteral(TESSAL_CLI_PROGRAM), tall, out});
        ASSERT_TRUE(process.waitForFinished(60000));
        EXPECT_EQ(process.exitCode(), Cli::ExitOk) << name << process.readAllStandardError().data();
        EXPECT_TRUE(QFile::exists(out)) << name;
    }
    EXPECT_EQ(QImage(dir.filePath("tall.png")).size(), QSize(794, 1123));

    // 32768 pixels a side and 2^28 pixels in all.
    QString reason;
    EXPECT_TRUE(Cli::PageSizeAllowed(QSize(32768, 8192), reason));
    EXPECT_TRUE(Cli::PageSizeAllowed(QSize(8192, 32768), reason));
    EXPECT_FALSE(Cli::PageSizeAllowed(QSize(32769, 1), reason));
    EXPECT_FALSE(Cli::PageSizeAllowed(QSize(1, 32769), reason));
    EXPECT_FALSE(Cli::PageSizeAllowed(QSize(16385, 16384), reason));
    EXPECT_EQ(reason, QStringLiteral("the page of 16385 x 16384 pixels is larger than this tool "
                                     "renders (32768 pixels a side, 268 million pixels in all)"));

    // A custom page ten metres wide.
    TMyCAD cad;
    cad.SetPageStyle(TPageStyle::CustomerPage);
    cad.SetPageWidth(10000);
    const QString out = dir.filePath(QStringLiteral("wide.png"));
    QString error;
    EXPECT_FALSE(Cli::WritePage(cad, out, error));
    EXPECT_TRUE(error.startsWith(out + QStringLiteral(": the page of 37795 x 1123 pixels")))
        << error.toStdString();
    EXPECT_FALSE(QFile::exists(out));
}

// A convert that fails while writing leaves the file it would have replaced as it was and
// says why in one line, with the system's reason: here the files the program may write are
// limited to no bytes at all.
TEST(CliConvert, FailedWriteKeepsTheOldFile)
{
    QTemporaryDir dir;
    const QByteArray old("the previous contents, which must survive");
    for (const char *name : {"page.png", "page.svg", "page.pdf", "page.dxf"}) {
        SCOPED_TRACE(name);
        const QString out = dir.filePath(QLatin1String(name));
        ASSERT_TRUE(WriteFile(out, old));
        QProcess process;
        process.start(QStringLiteral("bash"),
                      {"-c", "trap '' XFSZ; ulimit -f 0 && exec \"$0\" convert \"$1\" \"$2\"",
                       QStringLiteral(TESSAL_CLI_PROGRAM), DataFile("shapes_xpj.tsd"), out});
        ASSERT_TRUE(process.waitForFinished(60000));
        const QString err = QString::fromUtf8(process.readAllStandardError());
        EXPECT_EQ(process.exitCode(), Cli::ExitFailure) << err.toStdString();
        // A coverage build's program cannot write its counters under the limit either, and
        // says so on lines of its own.
        QStringList lines = err.split(QLatin1Char('\n'));
        lines.removeIf([](const QString &line) { return line.startsWith("libgcov"); });
        EXPECT_EQ(lines.join(QLatin1Char('\n')).count('\n'), 1) << err.toStdString();
        EXPECT_TRUE(err.contains(out)) << err.toStdString();
        EXPECT_TRUE(err.contains("File too large")) << err.toStdString();
        EXPECT_EQ(ReadFile(out), old);
        EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files).size(), 1) << "no temporary file left";
        QFile::remove(out);
    }
}

// Every damaged copy of a drawing fails with one line naming the file and nothing on the
// output; command lines the tool does not know print the usage and exit with 2.
TEST(CliErrors, DamagedFilesAndUsage)
{
    const QByteArray bytes = ReadFile(DataFile("shapes_xpj.tsd"));
    QTemporaryDir dir;
    const QString damaged = dir.filePath(QStringLiteral("damaged.tsd"));
    for (qsizetype length = 0; length < bytes.size(); length += 13) {
        ASSERT_TRUE(WriteFile(damaged, bytes.left(length)));
        for (const char *command : {"info", "dump", "convert"}) {
            QStringList args{QLatin1String(command), damaged};
            if (args[0] == "convert")
                args << dir.filePath(QStringLiteral("out.png"));
            const TToolResult r = RunTool(args);
            EXPECT_EQ(r.Status, Cli::ExitFailure) << command << " " << length;
            EXPECT_TRUE(r.Out.isEmpty()) << command << " " << length;
            EXPECT_EQ(r.Err.count('\n'), 1) << r.Err.toStdString();
            EXPECT_TRUE(r.Err.startsWith(damaged)) << r.Err.toStdString();
        }
    }
    // The layer table emptied (count, then name length, name, identity and visibility) while
    // shapes follow: the load fails instead of ending the program.
    QByteArray noLayer = bytes;
    const qsizetype layerCount = bytes.indexOf("Layer0") - 8;
    ASSERT_EQ(noLayer.mid(layerCount, 8), QByteArray("\1\0\0\0\6\0\0\0", 8));
    noLayer.replace(layerCount, 4 + 4 + 6 + 4 + 4, QByteArray(4, '\0'));
    ASSERT_TRUE(WriteFile(damaged, noLayer));
    const TToolResult noLayerRun = RunTool({"info", damaged});
    EXPECT_EQ(noLayerRun.Status, Cli::ExitFailure);
    EXPECT_TRUE(noLayerRun.Err.contains("no layer")) << noLayerRun.Err.toStdString();

    const QString good = DataFile("shapes_xpj.tsd");
    for (const QStringList &args : {QStringList{},
                                    {"info"},
                                    {"info", good, "extra"},
                                    {"frobnicate", good},
                                    {"convert", good, dir.filePath("page.bmp")},
                                    {"lib", "list"}}) {
        const TToolResult r = RunTool(args);
        EXPECT_EQ(r.Status, Cli::ExitUsage) << args.join(' ').toStdString();
        EXPECT_TRUE(r.Err.contains(Cli::UsageText())) << args.join(' ').toStdString();
    }
}

// The built program: without any display setting it runs offscreen, prints what the
// command prints in process, and exits with the statuses above.
TEST(CliProgram, RunsWithoutDisplay)
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"})
        env.remove(QLatin1String(name));
    const auto run = [&](const QStringList &args) {
        QProcess process;
        process.setProcessEnvironment(env);
        process.start(QStringLiteral(TESSAL_CLI_PROGRAM), args);
        EXPECT_TRUE(process.waitForFinished(60000));
        return TToolResult{process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
                           QString::fromUtf8(process.readAllStandardError())};
    };
    const QStringList info{"info", DataFile("shapes_xpj.tsd")};
    const TToolResult ok = run(info);
    EXPECT_EQ(ok.Status, Cli::ExitOk);
    EXPECT_EQ(ok.Out, RunTool(info).Out);
    EXPECT_TRUE(ok.Err.isEmpty()) << ok.Err.toStdString();

    const TToolResult bad = run({QStringLiteral("dump"), QStringLiteral(__FILE__)});
    EXPECT_EQ(bad.Status, Cli::ExitFailure);
    EXPECT_EQ(bad.Err, QStringLiteral(__FILE__ " is not a drawing file\n"));
    EXPECT_EQ(run({}).Status, Cli::ExitUsage);
}

#ifdef TESSAL_CLI_DXF_IMPORT
namespace tessal {
namespace {

// convert to DXF writes what the surface's writer writes; from DXF it prints the import
// report, and a file cut short is still converted but fails with one line naming it.
TEST(CliDxf, ConvertsBothWaysWithTheImportReport)
{
    QTemporaryDir dir;
    const QString source = DataFile("shapes_xpj.tsd");
    const QString dxf = dir.filePath(QStringLiteral("plan.dxf"));
    const TToolResult toDxf = RunTool({"convert", source, dxf});
    ASSERT_EQ(toDxf.Status, Cli::ExitOk) << toDxf.Err.toStdString();
    QString error;
    const std::unique_ptr<TMyCAD> cad = Cli::LoadDrawing(source, error);
    ASSERT_TRUE(cad);
    const QByteArray bytes = ReadFile(dxf);
    EXPECT_EQ(bytes, cad->DxfText(false));

    // Texts as glyph outlines on request; the switch means nothing for other outputs.
    const QString outlines = dir.filePath(QStringLiteral("outlines.dxf"));
    const TToolResult toOutlines = RunTool({"convert", "--text-outlines", source, outlines});
    ASSERT_EQ(toOutlines.Status, Cli::ExitOk) << toOutlines.Err.toStdString();
    const QByteArray glyphs = ReadFile(outlines);
    EXPECT_EQ(glyphs, cad->DxfText(true));
    EXPECT_NE(glyphs, bytes);
    const TToolResult notDxf =
        RunTool({"convert", "--text-outlines", source, dir.filePath("page.png")});
    EXPECT_EQ(notDxf.Status, Cli::ExitUsage);
    EXPECT_TRUE(notDxf.Err.startsWith(QStringLiteral("convert: --text-outlines applies to DXF")));
    EXPECT_EQ(RunTool({"convert", "--glyphs", source, outlines}).Status, Cli::ExitUsage);

    const QString back = dir.filePath(QStringLiteral("back.tsd"));
    const TToolResult fromDxf = RunTool({"convert", dxf, back});
    ASSERT_EQ(fromDxf.Status, Cli::ExitOk) << fromDxf.Err.toStdString();
    EXPECT_TRUE(fromDxf.Out.startsWith(QStringLiteral("entities read: ")))
        << fromDxf.Out.toStdString();
    EXPECT_TRUE(fromDxf.Out.contains(QStringLiteral("entities skipped: 0")));
    TMyCAD reloaded;
    ASSERT_TRUE(reloaded.LoadFromFile(back));
    EXPECT_GT(reloaded.GetShapesCount(), 0);

    const QString cut = dir.filePath(QStringLiteral("cut.dxf"));
    ASSERT_TRUE(WriteFile(cut, bytes.left(bytes.size() * 2 / 3)));
    const QString png = dir.filePath(QStringLiteral("cut.png"));
    const TToolResult damaged = RunTool({"convert", cut, png});
    EXPECT_EQ(damaged.Status, Cli::ExitFailure);
    EXPECT_TRUE(damaged.Out.contains(QStringLiteral("entities read: ")));
    EXPECT_EQ(damaged.Err.count('\n'), 1);
    EXPECT_TRUE(damaged.Err.startsWith(cut)) << damaged.Err.toStdString();
    EXPECT_TRUE(QFile::exists(png));
}

} // namespace
} // namespace tessal
#endif
