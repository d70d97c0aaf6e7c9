// SPDX-License-Identifier: MIT
// Opening, saving and holding big drawings, against building and indexing the same items in
// a QGraphicsScene.
//
// Every figure comes from a fresh child process, so that the resident memory of one case is
// not blurred by what the allocator kept from another. A child prints one line of
// "key=value" figures; the parent runs each case several times and prints the medians and
// the ratios. Run without arguments for 100,000 and 1,000,000 shapes, or give the counts:
//   bench_files [--runs N] [COUNT...]
#include <tessal/shapes/line.h>
#include <tessal/shapes/rectangle.h>
#include <tessal/surface/cad.h>

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QGraphicsItem>
#include <QGraphicsScene>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

using namespace tessal;

namespace {

constexpr double PageSide = 20000; // pixels

enum class TKind : std::uint8_t { Rectangle, Ellipse, Line };

struct TItem
{
    TKind Kind;
    QPointF A, B;
    QColor Pen, Brush;
    int PenWidth;
};

// 40 % rectangles, 35 % ellipses and 25 % lines of 4 to 200 pixels anywhere on the page.
std::vector<TItem> MakeItems(int count)
{
    std::mt19937 rng(2024);
    std::uniform_real_distribution<double> pos(0, PageSide - 200);
    std::uniform_real_distribution<double> size(4, 200);
    std::uniform_int_distribution<int> channel(0, 255);
    std::vector<TItem> items;
    items.reserve(std::size_t(count));
    for (int i = 0; i < count; ++i) {
        const int pick = i % 20;
        TItem item;
        item.Kind = pick < 8 ? TKind::Rectangle : pick < 15 ? TKind::Ellipse : TKind::Line;
        item.A = QPointF(pos(rng), pos(rng));
        item.B = item.A + QPointF(size(rng), size(rng));
        item.Pen = QColor(channel(rng), channel(rng), channel(rng));
        item.Brush = QColor(channel(rng), channel(rng), channel(rng));
        item.PenWidth = 1 + i % 2;
        items.push_back(item);
    }
    return items;
}

TColor ToColor(const QColor &c)
{
    return RGBToColor(std::uint8_t(c.red()), std::uint8_t(c.green()), std::uint8_t(c.blue()));
}

std::unique_ptr<TMyShape> MakeShape(TMyCAD &cad, const TItem &item)
{
    const TMyPoint a{float(item.A.x()), float(item.A.y())};
    const TMyPoint b{float(item.B.x()), float(item.B.y())};
    std::unique_ptr<TMyShape> shape;
    if (item.Kind == TKind::Line) {
        shape = std::make_unique<TMyLine>(&cad);
        shape->Points() = {a, b};
    } else {
        if (item.Kind == TKind::Rectangle)
            shape = std::make_unique<TMyRectangle>(&cad);
        else
            shape = std::make_unique<TMyEllipse>(&cad);
        shape->Points() = {a, {b.X, a.Y}, b, {a.X, b.Y}};
    }
    shape->SetPen(TPen{ToColor(item.Pen), TPenMode::pmCopy, TPenStyle::psSolid, item.PenWidth});
    shape->SetBrush(TBrush{ToColor(item.Brush), TBrushStyle::bsSolid, {}});
    shape->SetCenterPoint(shape->ComputeCenterPoint(4));
    return shape;
}

// A surface whose page is the 20,000-pixel square at 96 dots per inch.
std::unique_ptr<TMyCAD> MakeSurface()
{
    auto cad = std::make_unique<TMyCAD>();
    cad->SetPageStyle(TPageStyle::CustomerPage);
    cad->SetPageWidth(std::uint32_t(std::ceil(PageSide * 25.4 / 96)));
    cad->SetPageHeight(std::uint32_t(std::ceil(PageSide * 25.4 / 96)));
    return cad;
}

// Shapes go in directly, without an undo step each, as a program building a drawing would.
void Populate(TMyCAD &cad, const std::vector<TItem> &items)
{
    for (const TItem &item : items)
        cad.AddShape(MakeShape(cad, item).release(), false, false);
}

// The scene builds its index on the first look-up, which is therefore part of its cost.
void BuildScene(QGraphicsScene &scene, const std::vector<TItem> &items)
{
    for (const TItem &item : items) {
        const QPen pen(item.Pen, item.PenWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
        const QBrush brush(item.Brush);
        const QRectF box = QRectF(item.A, item.B).normalized();
        switch (item.Kind) {
        case TKind::Rectangle:
            scene.addRect(box, pen, brush);
            break;
        case TKind::Ellipse:
            scene.addEllipse(box, pen, brush);
            break;
        case TKind::Line:
            scene.addLine(QLineF(item.A, item.B), pen);
            break;
        }
    }
    scene.items(QRectF(0, 0, 1, 1));
}

// Resident set size in kilobytes.
long ResidentKb()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : status.readAll().split('\n'))
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').first().toLong();
    return 0;
}

// ---- Child cases: each prints one line of figures ----

int RunScene(int count)
{
    const std::vector<TItem> items = MakeItems(count);
    const long before = ResidentKb();
    QElapsedTimer timer;
    timer.start();
    auto scene = std::make_unique<QGraphicsScene>(0, 0, PageSide, PageSide);
    BuildScene(*scene, items);
    const double ms = double(timer.nsecsElapsed()) / 1e6;
    std::printf("build_ms=%.2f rss_kb=%ld\n", ms, ResidentKb() - before);
    return 0;
}

// Builds by code, saves to file, and measures both.
int RunSave(int count, const QString &file)
{
    const std::vector<TItem> items = MakeItems(count);
    auto cad = MakeSurface();
    QElapsedTimer timer;
    timer.start();
    Populate(*cad, items);
    cad->ShapesInRect(TRect(0, 0, 1, 1));
    const double build = double(timer.nsecsElapsed()) / 1e6;
    timer.restart();
    if (!cad->SaveToFile(file)) {
        std::fprintf(stderr, "save failed: %s\n", qPrintable(cad->LastError()));
        return 1;
    }
    const double save = double(timer.nsecsElapsed()) / 1e6;
    std::printf("code_ms=%.2f save_ms=%.2f bytes=%lld\n", build, save, QFileInfo(file).size());
    return 0;
}

// Opens the file and looks something up, so that the index is built as the scene's is.
int RunOpen(const QString &file)
{
    auto cad = std::make_unique<TMyCAD>();
    const long before = ResidentKb();
    QElapsedTimer timer;
    timer.start();
    if (!cad->LoadFromFile(file)) {
        std::fprintf(stderr, "open failed: %s\n", qPrintable(cad->LastError()));
        return 1;
    }
    cad->ShapesInRect(TRect(0, 0, 1, 1));
    const double ms = double(timer.nsecsElapsed()) / 1e6;
    std::printf("open_ms=%.2f rss_kb=%ld shapes=%d\n", ms, ResidentKb() - before,
                cad->GetShapesCount());
    return 0;
}

// ---- The parent: runs the children and prints medians and ratios ----

using TFigures = std::map<std::string, double>;

TFigures RunChild(const QStringList &args)
{
    QProcess child;
    child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    child.start(QCoreApplication::applicationFilePath(), args);
    if (!child.waitForFinished(-1) || child.exitCode() != 0) {
        std::fprintf(stderr, "child %s failed\n", qPrintable(args.join(' ')));
        std::exit(1);
    }
    TFigures figures;
    for (const QByteArray &pair : child.readAllStandardOutput().trimmed().split(' ')) {
        const QList<QByteArray> kv = pair.split('=');
        if (kv.size() == 2)
            figures[kv[0].toStdString()] = kv[1].toDouble();
    }
    return figures;
}

double Median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    const std::size_t n = v.size();
    return n % 2 ? v[n / 2] : (v[n / 2 - 1] + v[n / 2]) / 2;
}

struct TCaseFigures
{
    std::map<std::string, std::vector<double>> Values;
    void Add(const TFigures &f)
    {
        for (const auto &[k, v] : f)
            Values[k].push_back(v);
    }
    double Med(const std::string &key) const { return Median(Values.at(key)); }
    std::string All(const std::string &key) const
    {
        std::string text;
        for (double v : Values.at(key))
            text += (text.empty() ? "" : " ") + std::to_string(std::lround(v));
        return text;
    }
};

struct TSizeResult
{
    double Open, OpenKb, SceneMs, SceneKb;
};

TSizeResult RunSize(int count, int runs, const QString &dir)
{
    const QString file = QStringLiteral("%1/drawing-%2.tsl").arg(dir).arg(count);
    TCaseFigures save, open, scene;
    for (int r = 0; r < runs; ++r) {
        save.Add(RunChild({QStringLiteral("save"), QString::number(count), file}));
        open.Add(RunChild({QStringLiteral("open"), file}));
        scene.Add(RunChild({QStringLiteral("scene"), QString::number(count)}));
    }
    std::printf("%d shapes (medians of %d runs; every run in brackets)\n", count, runs);
    std::printf("  build by code        %9.1f ms   [%s]\n", save.Med("code_ms"),
                save.All("code_ms").c_str());
    std::printf("  save                 %9.1f ms   [%s]  %.1f bytes a shape\n", save.Med("save_ms"),
                save.All("save_ms").c_str(), save.Med("bytes") / count);
    std::printf("  open + index         %9.1f ms   [%s]\n", open.Med("open_ms"),
                open.All("open_ms").c_str());
    std::printf("  scene build + index  %9.1f ms   [%s]\n", scene.Med("build_ms"),
                scene.All("build_ms").c_str());
    std::printf("  open / scene         %9.2f\n", open.Med("open_ms") / scene.Med("build_ms"));
    std::printf("  memory: drawing %.1f MB, scene %.1f MB, ratio %.2f\n", open.Med("rss_kb") / 1024,
                scene.Med("rss_kb") / 1024, open.Med("rss_kb") / scene.Med("rss_kb"));
    std::fflush(stdout);
    QFile::remove(file);
    return {open.Med("open_ms"), open.Med("rss_kb"), scene.Med("build_ms"), scene.Med("rss_kb")};
}

int RunParent(QStringList args)
{
    int runs = 3;
    if (args.size() >= 2 && args[0] == QLatin1String("--runs")) {
        runs = std::max(1, args[1].toInt());
        args = args.mid(2);
    }
    std::vector<int> counts;
    for (const QString &a : args)
        counts.push_back(a.toInt());
    if (counts.empty())
        counts = {100000, 1000000};
    QTemporaryDir dir;
    std::vector<TSizeResult> results;
    for (int count : counts)
        results.push_back(RunSize(count, runs, dir.path()));
    if (results.size() >= 2) {
        const TSizeResult &a = results.front(), &b = results.back();
        std::printf("growth from %d to %d shapes: open time %.1fx, memory %.1fx "
                    "(scene: %.1fx, %.1fx)\n",
                    counts.front(), counts.back(), b.Open / a.Open, b.OpenKb / a.OpenKb,
                    b.SceneMs / a.SceneMs, b.SceneKb / a.SceneKb);
    }
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QStringList args = app.arguments().mid(1);
    const QString mode = args.value(0);
    if (mode == QLatin1String("scene"))
        return RunScene(args.value(1).toInt());
    if (mode == QLatin1String("save"))
        return RunSave(args.value(1).toInt(), args.value(2));
    if (mode == QLatin1String("open"))
        return RunOpen(args.value(1));
    return RunParent(args);
}
