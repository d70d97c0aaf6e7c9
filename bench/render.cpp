// SPDX-License-Identifier: MIT
// Rendering a full 1920 x 1080 view of the same mixed scene with the drawing surface and
// with QGraphicsView, and the ratio of the two median times.
//
// Both sides draw the same picture with the same means: aliased shapes and glyphs, the same
// pens (colour, width, round joins and ends), brushes and font, over the whole view. Each side
// renders once before timing, so that lazily built indexes (the surface's spatial index, the
// scene's BSP tree) are not charged to the first run. Set TESSAL_BENCH_IMAGES to a directory
// to have both pictures of every size written there for inspection and for comparing the
// surface's picture before and after a change.
#include <tessal/shapes/line.h>
#include <tessal/shapes/polyline.h>
#include <tessal/shapes/rectangle.h>
#include <tessal/shapes/text.h>
#include <tessal/surface/cad.h>

#include "benchtimes.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QDir>
#include <QFont>
#include <QGraphicsItem>
#include <QGraphicsScene>
#include <QGraphicsView>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

using namespace tessal;

namespace {

constexpr int ViewWidth = 1920;
constexpr int ViewHeight = 1080;

enum class TKind : std::uint8_t { Rectangle, Ellipse, Line, PolyLine, Text };

// One shape of the scene, described once and built in both worlds.
struct TItem
{
    TKind Kind;
    std::vector<QPointF> Points; // two corners, or the vertices of a line / polyline
    QColor PenColour;
    QColor BrushColour;
    int PenWidth;
    QString Text;
};

// Shapes spread over the view: 30 % rectangles, 25 % ellipses, 20 % lines, 15 % polylines
// of five vertices, 10 % texts; sizes of 4 to 60 pixels, pens of 1 to 2 pixels.
std::vector<TItem> MakeScene(int count)
{
    std::mt19937 rng(12345);
    std::uniform_real_distribution<double> x(0, ViewWidth);
    std::uniform_real_distribution<double> y(0, ViewHeight);
    std::uniform_real_distribution<double> size(4, 60);
    std::uniform_int_distribution<int> channel(0, 255);
    std::vector<TItem> items;
    items.reserve(std::size_t(count));
    for (int i = 0; i < count; ++i) {
        const int pick = i % 20;
        TItem item;
        item.Kind = pick < 6    ? TKind::Rectangle
                    : pick < 11 ? TKind::Ellipse
                    : pick < 15 ? TKind::Line
                    : pick < 18 ? TKind::PolyLine
                                : TKind::Text;
        const QPointF origin(x(rng), y(rng));
        const double w = size(rng);
        const double h = size(rng);
        if (item.Kind == TKind::PolyLine) {
            for (int k = 0; k < 5; ++k)
                item.Points.push_back(origin + QPointF(w * k / 4, (k % 2) * h));
        } else {
            item.Points = {origin, origin + QPointF(w, h)};
        }
        item.PenColour = QColor(channel(rng), channel(rng), channel(rng));
        item.BrushColour = QColor(channel(rng), channel(rng), channel(rng));
        item.PenWidth = 1 + i % 2;
        if (item.Kind == TKind::Text)
            item.Text = QStringLiteral("Item %1").arg(i);
        items.push_back(std::move(item));
    }
    return items;
}

TColor ToColor(const QColor &c)
{
    return RGBToColor(std::uint8_t(c.red()), std::uint8_t(c.green()), std::uint8_t(c.blue()));
}

TMyPoint MyPt(QPointF p)
{
    return {float(p.x()), float(p.y())};
}

// The shapes are made directly (not through AddShapeByCode) so that building 100,000 of
// them does not also record 100,000 undo steps.
std::unique_ptr<TMyShape> MakeShape(TMyCAD &cad, const TItem &item)
{
    std::unique_ptr<TMyShape> shape;
    const TMyPoint a = MyPt(item.Points.front());
    const TMyPoint b = MyPt(item.Points.back());
    switch (item.Kind) {
    case TKind::Rectangle:
    case TKind::Ellipse:
    case TKind::Text: {
        std::unique_ptr<TMyRectangle> r;
        if (item.Kind == TKind::Rectangle)
            r = std::make_unique<TMyRectangle>(&cad);
        else if (item.Kind == TKind::Ellipse)
            r = std::make_unique<TMyEllipse>(&cad);
        else
            r = std::make_unique<TMyText>(&cad);
        r->Points() = {a, {b.X, a.Y}, b, {a.X, b.Y}};
        shape = std::move(r);
        break;
    }
    case TKind::Line:
        shape = std::make_unique<TMyLine>(&cad);
        shape->Points() = {a, b};
        break;
    case TKind::PolyLine:
        shape = std::make_unique<TMyPolyLine>(&cad);
        for (QPointF p : item.Points)
            shape->Points().push_back(MyPt(p));
        break;
    }
    shape->SetPen(
        TPen{ToColor(item.PenColour), TPenMode::pmCopy, TPenStyle::psSolid, item.PenWidth});
    shape->SetBrush(TBrush{ToColor(item.BrushColour), TBrushStyle::bsSolid, {}});
    if (auto *text = dynamic_cast<TMyText *>(shape.get()))
        text->SetLines({item.Text});
    shape->SetCenterPoint(shape->ComputeCenterPoint(4));
    return shape;
}

// A surface whose page covers the view at 96 dots per inch: 508 x 286 mm.
std::unique_ptr<TMyCAD> MakeSurface(const std::vector<TItem> &items)
{
    auto cad = std::make_unique<TMyCAD>();
    cad->SetPageStyle(TPageStyle::CustomerPage);
    cad->SetPageWidth(std::uint32_t(std::ceil(ViewWidth * 25.4 / cad->logicalDpiX())));
    cad->SetPageHeight(std::uint32_t(std::ceil(ViewHeight * 25.4 / cad->logicalDpiY())));
    cad->GridOperation()->SetGridType(TGridType::gNone);
    cad->SetHotShow(false);
    for (const TItem &item : items)
        cad->AddShape(MakeShape(*cad, item).release(), false, false);
    return cad;
}

// The font the surface draws a text shape's lines in: its default face at 11 pixels, aliased,
// without kerning, in black.
QFont TextFont()
{
    QFont font(TFont().Name);
    font.setPixelSize(-TFont().Height());
    font.setStyleStrategy(QFont::StyleStrategy(QFont::NoAntialias | QFont::NoSubpixelAntialias));
    font.setKerning(false);
    font.setHintingPreference(QFont::PreferFullHinting);
    return font;
}

std::unique_ptr<QGraphicsScene> MakeGraphicsScene(const std::vector<TItem> &items)
{
    auto scene = std::make_unique<QGraphicsScene>(0, 0, ViewWidth, ViewHeight);
    const QFont font = TextFont();
    for (const TItem &item : items) {
        // The surface's default outline has round joins and round ends; the peer draws the
        // same picture.
        const QPen pen(item.PenColour, item.PenWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
        const QBrush brush(item.BrushColour);
        const QRectF box = QRectF(item.Points.front(), item.Points.back()).normalized();
        switch (item.Kind) {
        case TKind::Rectangle:
            scene->addRect(box, pen, brush);
            break;
        case TKind::Ellipse:
            scene->addEllipse(box, pen, brush);
            break;
        case TKind::Line:
            scene->addLine(QLineF(item.Points.front(), item.Points.back()), pen);
            break;
        case TKind::PolyLine: {
            QPainterPath path(item.Points.front());
            for (std::size_t k = 1; k < item.Points.size(); ++k)
                path.lineTo(item.Points[k]);
            scene->addPath(path, pen);
            break;
        }
        case TKind::Text: {
            // The surface insets the line by its two-pixel margin; a text shape has neither
            // border nor fill unless asked.
            QGraphicsSimpleTextItem *text = scene->addSimpleText(item.Text, font);
            text->setBrush(Qt::black);
            text->setPen(Qt::NoPen);
            text->setPos(box.topLeft() + QPointF(2, 2));
            break;
        }
        }
    }
    return scene;
}

// Scenes are built once per size and kept for all runs.
struct TWorlds
{
    std::unique_ptr<TMyCAD> Cad;
    std::unique_ptr<QGraphicsScene> Scene;
    std::unique_ptr<QGraphicsView> View;
};

TWorlds &Worlds(int count)
{
    static std::map<int, TWorlds> worlds;
    TWorlds &w = worlds[count];
    if (!w.Cad) {
        const std::vector<TItem> items = MakeScene(count);
        w.Cad = MakeSurface(items);
        w.Scene = MakeGraphicsScene(items);
        w.View = std::make_unique<QGraphicsView>(w.Scene.get());
        w.View->setFixedSize(ViewWidth, ViewHeight);
        w.View->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        w.View->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        w.View->setFrameShape(QFrame::NoFrame);
        w.View->setSceneRect(0, 0, ViewWidth, ViewHeight);
        w.View->setRenderHints({}); // aliased shapes and glyphs, as the surface draws
        // The surface is sized by its page, which must hold the whole view.
        if (w.Cad->width() < ViewWidth || w.Cad->height() < ViewHeight) {
            std::fprintf(stderr, "surface of %d x %d cannot show the view\n", w.Cad->width(),
                         w.Cad->height());
            std::exit(1);
        }
    }
    return w;
}

void RenderTessal(TMyCAD &cad)
{
    cad.DrawAll(TRect(0, 0, ViewWidth, ViewHeight));
}

void RenderPeer(QGraphicsView &view, QImage &image)
{
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing, false);
    view.render(&painter, QRectF(0, 0, ViewWidth, ViewHeight), QRect(0, 0, ViewWidth, ViewHeight));
}

void SaveImage(const QImage &image, const char *side, std::int64_t count)
{
    const QString dir = qEnvironmentVariable("TESSAL_BENCH_IMAGES");
    if (dir.isEmpty())
        return;
    QDir().mkpath(dir);
    image.copy(0, 0, ViewWidth, ViewHeight)
        .save(QStringLiteral("%1/%2-%3.png").arg(dir, QLatin1String(side)).arg(count));
}

void BM_Tessal(benchmark::State &state)
{
    TMyCAD &cad = *Worlds(int(state.range(0))).Cad;
    RenderTessal(cad); // warm-up: builds the spatial index outside the timing
    SaveImage(cad.OffscreenImage(), "tessal", state.range(0));
    for (auto _ : state) {
        RenderTessal(cad);
        benchmark::DoNotOptimize(cad.OffscreenImage().constBits());
    }
}

void BM_QGraphicsView(benchmark::State &state)
{
    QGraphicsView &view = *Worlds(int(state.range(0))).View;
    QImage image(ViewWidth, ViewHeight, QImage::Format_RGB32);
    RenderPeer(view, image); // warm-up: the scene builds its BSP tree on the first look-up
    SaveImage(image, "qgraphicsview", state.range(0));
    for (auto _ : state) {
        RenderPeer(view, image);
        benchmark::DoNotOptimize(image.constBits());
    }
}

// The index is rebuilt after every full invalidation; its cost is measured on its own.
void BM_TessalIndexRebuild(benchmark::State &state)
{
    TMyCAD &cad = *Worlds(int(state.range(0))).Cad;
    for (auto _ : state) {
        cad.ShapesRenumbered();
        benchmark::DoNotOptimize(cad.ShapesInRect(TRect(0, 0, 1, 1)));
    }
}

// Several repetitions of each; the ratio is taken from the medians, which a busy machine
// disturbs less than the means.
constexpr int Repetitions = 5;
BENCHMARK(BM_Tessal)
    ->Arg(10000)
    ->Arg(100000)
    ->Repetitions(Repetitions)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_QGraphicsView)
    ->Arg(10000)
    ->Arg(100000)
    ->Repetitions(Repetitions)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TessalIndexRebuild)->Arg(100000)->Unit(benchmark::kMillisecond);

// The ratios of the medians, wall-clock and CPU.
void PrintRatios(const tessal::bench::TTimesReporter &times)
{
    for (const char *size : {"10000", "100000"}) {
        const std::string tessal = std::string("BM_Tessal/") + size;
        const std::string peer = std::string("BM_QGraphicsView/") + size;
        if (!times.Has(tessal) || !times.Has(peer))
            continue;
        const double tr = times.Real(tessal), pr = times.Real(peer);
        const double tc = times.Cpu(tessal), pc = times.Cpu(peer);
        std::printf("%7s shapes, medians of %zu: wall Tessal %.1f ms, QGraphicsView %.1f ms, "
                    "ratio %.3f; CPU Tessal %.1f ms, QGraphicsView %.1f ms, ratio %.3f\n",
                    size, times.Count(tessal), tr * 1e3, pr * 1e3, tr / pr, tc * 1e3, pc * 1e3,
                    tc / pc);
    }
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    tessal::bench::TTimesReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    PrintRatios(reporter);
    benchmark::Shutdown();
    return 0;
}
