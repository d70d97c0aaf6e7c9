// SPDX-License-Identifier: MIT
// Rendering a full 1920 x 1080 view of the same mixed scene with the drawing surface and
// with QGraphicsView, and the ratio of the two median times; and a million shapes seen
// zoomed out, scrolled.
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
#include <QScrollBar>

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

// The drawing of a big document: rectangles, ellipses and lines in equal parts, 4 to 60
// pixels, spread over a square of the given side.
std::vector<TItem> MakeSpreadScene(int count, double side)
{
    std::mt19937 rng(54321);
    std::uniform_real_distribution<double> at(0, side);
    std::uniform_real_distribution<double> size(4, 60);
    std::uniform_int_distribution<int> channel(0, 255);
    std::vector<TItem> items;
    items.reserve(std::size_t(count));
    for (int i = 0; i < count; ++i) {
        TItem item;
        item.Kind = i % 3 == 0 ? TKind::Rectangle : i % 3 == 1 ? TKind::Ellipse : TKind::Line;
        const QPointF origin(at(rng), at(rng));
        item.Points = {origin, origin + QPointF(size(rng), size(rng))};
        item.PenColour = QColor(channel(rng), channel(rng), channel(rng));
        item.BrushColour = QColor(channel(rng), channel(rng), channel(rng));
        item.PenWidth = 1 + i % 2;
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

// A surface whose page covers width x height pixels at zoom 1, by default the view: 508 x 286
// mm at 96 dots per inch.
std::unique_ptr<TMyCAD> MakeSurface(const std::vector<TItem> &items, int width = ViewWidth,
                                    int height = ViewHeight)
{
    auto cad = std::make_unique<TMyCAD>();
    cad->SetPageStyle(TPageStyle::CustomerPage);
    cad->SetPageWidth(std::uint32_t(std::ceil(width * 25.4 / cad->logicalDpiX())));
    cad->SetPageHeight(std::uint32_t(std::ceil(height * 25.4 / cad->logicalDpiY())));
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

// Pens are as wide on screen as the surface's at every zoom: cosmetic ones when the view
// is scaled.
std::unique_ptr<QGraphicsScene> MakeGraphicsScene(const std::vector<TItem> &items,
                                                  int width = ViewWidth, int height = ViewHeight,
                                                  bool cosmetic = false)
{
    auto scene = std::make_unique<QGraphicsScene>(0, 0, width, height);
    const QFont font = TextFont();
    for (const TItem &item : items) {
        // The surface's default outline has round joins and round ends; the peer draws the
        // same picture.
        QPen pen(item.PenColour, item.PenWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
        pen.setCosmetic(cosmetic);
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

// ---- A big drawing seen zoomed out ----
//
// A million shapes over 20,000 x 20,000 pixels, shown at a tenth of their size: the view of
// 1920 x 1080 holds about half of the drawing. Scrolling down by a tenth of the view moves
// the pixels both already show and composes the strip it exposes; that composition is what
// is measured, at a new place every time, and for comparison the whole view at once (a jump).
constexpr int BigSide = 20000;
constexpr double BigZoom = 0.1;
constexpr int ScrollStep = ViewHeight / 10;

struct TZoomedWorlds
{
    std::unique_ptr<TMyCAD> Cad;
    std::unique_ptr<QGraphicsScene> Scene;
    std::unique_ptr<QGraphicsView> View;
    int Top = 0; // the view's top row, in pixels of the zoomed drawing
};

TZoomedWorlds &ZoomedWorlds(int count)
{
    // Kept to the end and never destroyed: a scene takes minutes to take a million items
    // out of its index one by one, which would only delay the report.
    static auto *worlds = new std::map<int, TZoomedWorlds>;
    TZoomedWorlds &w = (*worlds)[count];
    if (w.Cad)
        return w;
    const std::vector<TItem> items = MakeSpreadScene(count, BigSide);
    w.Cad = MakeSurface(items, BigSide, BigSide);
    w.Cad->SetZoom(BigZoom);
    w.Scene = MakeGraphicsScene(items, BigSide, BigSide, true);
    w.View = std::make_unique<QGraphicsView>(w.Scene.get());
    w.View->setFixedSize(ViewWidth, ViewHeight);
    w.View->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    w.View->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    w.View->setFrameShape(QFrame::NoFrame);
    w.View->setRenderHints({});
    w.View->setTransformationAnchor(QGraphicsView::NoAnchor);
    w.View->setTransform(QTransform::fromScale(BigZoom, BigZoom));
    if (w.Cad->width() < ViewWidth || w.Cad->height() < ViewHeight) {
        std::fprintf(stderr, "zoomed-out surface of %d x %d cannot show the view\n", w.Cad->width(),
                     w.Cad->height());
        std::exit(1);
    }
    return w;
}

// The next place of the view: a step further down, back to the top at the bottom.
int ScrollDown(TZoomedWorlds &w)
{
    const int limit = int(BigSide * BigZoom) - ViewHeight;
    w.Top = w.Top + ScrollStep > limit ? 0 : w.Top + ScrollStep;
    w.View->verticalScrollBar()->setValue(w.Top);
    return w.Top;
}

// The rows of the view that a scroll down by a step exposes, in view and control pixels.
QRect ExposedStrip()
{
    return QRect(0, ViewHeight - ScrollStep, ViewWidth, ScrollStep);
}

void RenderPeerPart(QGraphicsView &view, QImage &image, const QRect &part)
{
    QPainter painter(&image);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing, false);
    painter.fillRect(part, Qt::white);
    view.render(&painter, QRectF(part), part);
}

void BM_TessalZoomedOutScroll(benchmark::State &state)
{
    TZoomedWorlds &w = ZoomedWorlds(int(state.range(0)));
    w.Cad->DrawAll(TRect(0, 0, ViewWidth, ViewHeight)); // builds the index
    SaveImage(w.Cad->OffscreenImage(), "tessal-zoomed-out", state.range(0));
    for (auto _ : state) {
        const QRect strip = ExposedStrip().translated(0, ScrollDown(w));
        w.Cad->DrawAll(TRect::FromQRect(strip));
        benchmark::DoNotOptimize(w.Cad->OffscreenImage().constBits());
    }
}

void BM_QGraphicsViewZoomedOutScroll(benchmark::State &state)
{
    TZoomedWorlds &w = ZoomedWorlds(int(state.range(0)));
    QImage image(ViewWidth, ViewHeight, QImage::Format_RGB32);
    w.View->verticalScrollBar()->setValue(0);
    RenderPeerPart(*w.View, image, image.rect()); // builds the BSP tree
    SaveImage(image, "qgraphicsview-zoomed-out", state.range(0));
    for (auto _ : state) {
        ScrollDown(w);
        RenderPeerPart(*w.View, image, ExposedStrip());
        benchmark::DoNotOptimize(image.constBits());
    }
}

void BM_TessalZoomedOutView(benchmark::State &state)
{
    TZoomedWorlds &w = ZoomedWorlds(int(state.range(0)));
    for (auto _ : state) {
        const int top = ScrollDown(w);
        w.Cad->DrawAll(TRect(0, top, ViewWidth, top + ViewHeight));
        benchmark::DoNotOptimize(w.Cad->OffscreenImage().constBits());
    }
}

void BM_QGraphicsViewZoomedOutView(benchmark::State &state)
{
    TZoomedWorlds &w = ZoomedWorlds(int(state.range(0)));
    QImage image(ViewWidth, ViewHeight, QImage::Format_RGB32);
    for (auto _ : state) {
        ScrollDown(w);
        RenderPeerPart(*w.View, image, image.rect());
        benchmark::DoNotOptimize(image.constBits());
    }
}

constexpr int ZoomedRepetitions = 9;
BENCHMARK(BM_TessalZoomedOutScroll)
    ->Arg(1000000)
    ->Repetitions(ZoomedRepetitions)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_QGraphicsViewZoomedOutScroll)
    ->Arg(1000000)
    ->Repetitions(ZoomedRepetitions)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TessalZoomedOutView)->Arg(1000000)->Repetitions(3)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_QGraphicsViewZoomedOutView)
    ->Arg(1000000)
    ->Repetitions(3)
    ->Unit(benchmark::kMillisecond);

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
    for (const char *what : {"Scroll", "View"}) {
        const std::string tessal = std::string("BM_TessalZoomedOut") + what + "/1000000";
        const std::string peer = std::string("BM_QGraphicsViewZoomedOut") + what + "/1000000";
        if (!times.Has(tessal) || !times.Has(peer))
            continue;
        const double tr = times.Real(tessal), pr = times.Real(peer);
        const double tc = times.Cpu(tessal), pc = times.Cpu(peer);
        std::printf("1M zoomed out, %s, medians of %zu: wall Tessal %.1f ms, QGraphicsView "
                    "%.1f ms, ratio %.3f; CPU Tessal %.1f ms, QGraphicsView %.1f ms, ratio %.3f\n",
                    *what == 'S' ? "strip exposed by a scroll" : "whole view", times.Count(tessal),
                    tr * 1e3, pr * 1e3, tr / pr, tc * 1e3, pc * 1e3, tc / pc);
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
