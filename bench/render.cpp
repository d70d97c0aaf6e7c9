// SPDX-License-Identifier: MIT
// Rendering a full 1920 x 1080 view of the same mixed scene with the drawing surface and
// with QGraphicsView, and the ratio of the two times.
#include <tessal/shapes/line.h>
#include <tessal/shapes/polyline.h>
#include <tessal/shapes/rectangle.h>
#include <tessal/shapes/text.h>
#include <tessal/surface/cad.h>

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QGraphicsItem>
#include <QGraphicsScene>
#include <QGraphicsView>
#include <QPainter>
#include <QPainterPath>

#include <cmath>
#include <cstdio>
#include <map>
#include <memory>
#include <random>
#include <string>

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

std::unique_ptr<QGraphicsScene> MakeGraphicsScene(const std::vector<TItem> &items)
{
    auto scene = std::make_unique<QGraphicsScene>(0, 0, ViewWidth, ViewHeight);
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
        case TKind::Text:
            scene->addSimpleText(item.Text)->setPos(box.topLeft());
            break;
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
    }
    return w;
}

void BM_Tessal(benchmark::State &state)
{
    TMyCAD &cad = *Worlds(int(state.range(0))).Cad;
    const TRect view(0, 0, ViewWidth, ViewHeight);
    cad.DrawAll(view); // builds the spatial index outside the timing
    for (auto _ : state) {
        cad.DrawAll(view);
        benchmark::DoNotOptimize(cad.OffscreenImage().constBits());
    }
}

void BM_QGraphicsView(benchmark::State &state)
{
    QGraphicsView &view = *Worlds(int(state.range(0))).View;
    QImage image(ViewWidth, ViewHeight, QImage::Format_RGB32);
    for (auto _ : state) {
        image.fill(Qt::white);
        QPainter painter(&image);
        view.render(&painter, QRectF(0, 0, ViewWidth, ViewHeight),
                    QRect(0, 0, ViewWidth, ViewHeight));
        painter.end();
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

BENCHMARK(BM_Tessal)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_QGraphicsView)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TessalIndexRebuild)->Arg(100000)->Unit(benchmark::kMillisecond);

// Prints as usual and remembers the time per iteration of every run for the ratios.
class TRatioReporter : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run> &runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &run : runs)
            if (run.iterations > 0)
                m_Times[run.benchmark_name()] = run.real_accumulated_time / double(run.iterations);
    }

    void PrintRatios() const
    {
        for (const char *size : {"10000", "100000"}) {
            const auto tessal = m_Times.find(std::string("BM_Tessal/") + size);
            const auto peer = m_Times.find(std::string("BM_QGraphicsView/") + size);
            if (tessal == m_Times.end() || peer == m_Times.end())
                continue;
            std::printf("%7s shapes: Tessal %.2f ms, QGraphicsView %.2f ms, ratio %.3f\n", size,
                        tessal->second * 1e3, peer->second * 1e3, tessal->second / peer->second);
        }
    }

private:
    std::map<std::string, double> m_Times;
};

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    TRatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.PrintRatios();
    benchmark::Shutdown();
    return 0;
}
