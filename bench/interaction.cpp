// SPDX-License-Identifier: MIT
// The mouse on a big drawing, against QGraphicsView with the same items in one run: a press
// that selects what lies under it (a hit test through the spatial index against
// QGraphicsScene::itemAt with its BSP tree), and the feedback of one mouse move while 1 or
// 1,000 selected shapes are dragged (against moving the same selected items and repainting),
// and likewise a shape dragged with its connector, the whole-drawing drag, zoom steps, the
// first press after a zoom step, bringing to the front, rubber bands and deletions. The ratios of
// the medians are printed at the end.
#include <tessal/shapes/link.h>
#include <tessal/shapes/shape.h>
#include <tessal/surface/cad.h>

#include "benchtimes.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QGraphicsEllipseItem>
#include <QGraphicsLineItem>
#include <QGraphicsRectItem>
#include <QGraphicsScene>
#include <QGraphicsView>
#include <QScrollArea>
#include <QScrollBar>

#include <algorithm>
#include <cstdio>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

using namespace tessal;

namespace {

constexpr double PageSide = 20000; // pixels
constexpr int ViewWidth = 1920;
constexpr int ViewHeight = 1080;

struct TItem
{
    int Kind; // 0 rectangle, 1 ellipse, 2 line
    QRectF Box;
};

std::vector<TItem> MakeItems(int count)
{
    std::mt19937 rng(777);
    std::uniform_real_distribution<double> at(0, PageSide - 80);
    std::uniform_real_distribution<double> size(8, 80);
    std::vector<TItem> items;
    items.resize(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        items[std::size_t(i)] = {i % 3, QRectF(at(rng), at(rng), size(rng), size(rng))};
    return items;
}

// Presses land on items half of the time and on empty paper otherwise.
std::vector<QPoint> MakePresses(const std::vector<TItem> &items)
{
    std::mt19937 rng(99);
    std::uniform_int_distribution<int> pick(0, int(items.size()) - 1);
    std::uniform_real_distribution<double> anywhere(0, PageSide);
    std::vector<QPoint> points;
    for (int i = 0; i < 1024; ++i) {
        const QRectF box = items[std::size_t(pick(rng))].Box;
        points.push_back(i % 2 ? box.topLeft().toPoint() + QPoint(1, 1)
                               : QPoint(int(anywhere(rng)), int(anywhere(rng))));
    }
    return points;
}

struct TTessalWorld
{
    explicit TTessalWorld(const std::vector<TItem> &items)
    {
        cad = std::make_unique<TMyCAD>();
        cad->SetPageWidth(std::uint32_t(PageSide * 25.4 / cad->logicalDpiX()) + 1);
        cad->SetPageHeight(std::uint32_t(PageSide * 25.4 / cad->logicalDpiY()) + 1);
        cad->SetSnap(false);
        cad->GridOperation()->SetGridType(TGridType::gNone);
        const TDrawTool tools[] = {TDrawTool::SpRectangle, TDrawTool::SpEllipse, TDrawTool::SpLine};
        for (const TItem &item : items) {
            const TMyPoint corners[] = {{float(item.Box.left()), float(item.Box.top())},
                                        {float(item.Box.right()), float(item.Box.bottom())}};
            cad->AddShapeByCode(tools[item.Kind], {}, corners, 0, {});
        }
        cad->ClearAllUndoStuff();
        cad->ClearWorkingShapes();
        cad->resize(ViewWidth, ViewHeight);
        cad->show();
        QCoreApplication::processEvents();
    }
    std::unique_ptr<TMyCAD> cad;
};

struct TSceneWorld
{
    explicit TSceneWorld(const std::vector<TItem> &items)
    {
        scene = std::make_unique<QGraphicsScene>(0, 0, PageSide, PageSide);
        scene->setItemIndexMethod(QGraphicsScene::BspTreeIndex);
        for (const TItem &item : items) {
            QGraphicsItem *g = nullptr;
            const QRectF local(QPointF(0, 0), item.Box.size());
            if (item.Kind == 0)
                g = new QGraphicsRectItem(local);
            else if (item.Kind == 1)
                g = new QGraphicsEllipseItem(local);
            else
                g = new QGraphicsLineItem(QLineF(local.topLeft(), local.bottomRight()));
            g->setPos(item.Box.topLeft());
            g->setFlags(QGraphicsItem::ItemIsSelectable | QGraphicsItem::ItemIsMovable);
            scene->addItem(g);
        }
        view = std::make_unique<QGraphicsView>(scene.get());
        view->resize(ViewWidth, ViewHeight);
        view->setSceneRect(0, 0, PageSide, PageSide);
        view->show();
        QCoreApplication::processEvents();
    }
    std::unique_ptr<QGraphicsScene> scene;
    std::unique_ptr<QGraphicsView> view;
};

std::map<int, std::vector<TItem>> &Items()
{
    static std::map<int, std::vector<TItem>> cache;
    return cache;
}

const std::vector<TItem> &ItemsOf(int count)
{
    auto &items = Items()[count];
    if (items.empty())
        items = MakeItems(count);
    return items;
}

void BM_TessalPress(benchmark::State &state)
{
    const auto &items = ItemsOf(int(state.range(0)));
    TTessalWorld world(items);
    const std::vector<QPoint> presses = MakePresses(items);
    // The index and its press cells are made before timing: the first presses are answered
    // from the tree, and a few thousand of them make the index build its cells.
    for (int k = 0; k < 4; ++k)
        for (const QPoint p : presses) {
            world.cad->MouseDown(TMouseButton::mbLeft, ssLeft, p.x(), p.y());
            world.cad->MouseUp(TMouseButton::mbLeft, 0, p.x(), p.y());
        }
    std::size_t i = 0;
    for (auto _ : state) {
        const QPoint p = presses[i++ % presses.size()];
        world.cad->MouseDown(TMouseButton::mbLeft, ssLeft, p.x(), p.y());
        world.cad->MouseUp(TMouseButton::mbLeft, 0, p.x(), p.y());
        benchmark::DoNotOptimize(world.cad->WorkingShapes().data());
    }
}

void BM_ScenePress(benchmark::State &state)
{
    const auto &items = ItemsOf(int(state.range(0)));
    TSceneWorld world(items);
    const std::vector<QPoint> presses = MakePresses(items);
    world.scene->itemAt(QPointF(0, 0), QTransform()); // the BSP tree is built before timing
    std::size_t i = 0;
    for (auto _ : state) {
        const QPoint p = presses[i++ % presses.size()];
        QGraphicsItem *item = world.scene->itemAt(QPointF(p), QTransform());
        world.scene->clearSelection();
        if (item)
            item->setSelected(true);
        benchmark::DoNotOptimize(item);
    }
}

// The working shapes: the given number of shapes nearest the view's top-left corner.
std::vector<int> Dragged(const std::vector<TItem> &items, int count)
{
    std::vector<int> order(items.size());
    for (std::size_t i = 0; i < order.size(); ++i)
        order[i] = int(i);
    std::partial_sort(order.begin(), order.begin() + count, order.end(), [&](int a, int b) {
        const QPointF pa = items[std::size_t(a)].Box.topLeft();
        const QPointF pb = items[std::size_t(b)].Box.topLeft();
        return pa.x() + pa.y() < pb.x() + pb.y();
    });
    order.resize(std::size_t(count));
    return order;
}

void BM_TessalDragMove(benchmark::State &state)
{
    const auto &items = ItemsOf(100000);
    TTessalWorld world(items);
    std::vector<TMyShape *> shapes;
    for (const int no : Dragged(items, int(state.range(0))))
        shapes.push_back(world.cad->GetShapeByNo(no));
    world.cad->SetWorkingShapes(shapes);
    world.cad->repaint();
    const QRectF first = items[std::size_t(Dragged(items, 1)[0])].Box;
    const QPoint grip = first.center().toPoint();
    world.cad->MouseDown(TMouseButton::mbLeft, ssLeft, grip.x(), grip.y());
    int step = 0;
    for (auto _ : state) {
        const int d = 5 + (step++ % 20);
        world.cad->MouseMove(ssLeft, grip.x() + d, grip.y() + d);
        QCoreApplication::processEvents(); // the touched rectangles are shown
    }
    world.cad->CancelGesture();
}

void BM_SceneDragMove(benchmark::State &state)
{
    const auto &items = ItemsOf(100000);
    TSceneWorld world(items);
    const QList<QGraphicsItem *> all = world.scene->items(Qt::AscendingOrder);
    std::vector<QGraphicsItem *> selected;
    for (const int no : Dragged(items, int(state.range(0)))) {
        all[no]->setSelected(true);
        selected.push_back(all[no]);
    }
    QCoreApplication::processEvents();
    int step = 0;
    for (auto _ : state) {
        const double d = (step++ % 2) ? 1 : -1;
        for (QGraphicsItem *item : selected)
            item->moveBy(d, d);
        QCoreApplication::processEvents(); // the view repaints what moved
    }
}

// A move of the whole-drawing drag: the outlines of the drawing follow the mouse, as the
// view of a scene follows its scroll bars.
void BM_TessalWholeDragMove(benchmark::State &state)
{
    const auto &items = ItemsOf(int(state.range(0)));
    TTessalWorld world(items);
    world.cad->SetShapeTool(TDrawTool::SpDragWhole);
    world.cad->repaint();
    world.cad->MouseDown(TMouseButton::mbLeft, ssLeft, 900, 500);
    int step = 0;
    for (auto _ : state) {
        const int d = 5 + (step++ % 20);
        world.cad->MouseMove(ssLeft, 900 - 4 * d, 500 - 3 * d);
        QCoreApplication::processEvents(); // the touched rectangles are shown
    }
    world.cad->CancelGesture();
}

void BM_SceneWholeDragMove(benchmark::State &state)
{
    const auto &items = ItemsOf(int(state.range(0)));
    TSceneWorld world(items);
    QCoreApplication::processEvents();
    int step = 0;
    for (auto _ : state) {
        const int d = 5 + (step++ % 20);
        world.view->horizontalScrollBar()->setValue(4 * d);
        world.view->verticalScrollBar()->setValue(3 * d);
        QCoreApplication::processEvents(); // the view repaints what scrolled in
    }
}

// A move while dragging a shape bound by a connector to another, the shapes of the drawing
// all around: the connector's route is worked out again round the shapes near it, as the
// feedback shows it. Against moving an item and setting a line item between it and the
// other (a straight line, no search at all), and repainting.
constexpr QRectF ConnectedFrom(400, 400, 60, 60);
constexpr QRectF ConnectedTo(700, 440, 60, 60);

void BM_TessalConnectedDrag(benchmark::State &state)
{
    TTessalWorld world(ItemsOf(int(state.range(0))));
    TMyCAD &cad = *world.cad;
    std::vector<TMyShape *> ends;
    for (const QRectF &box : {ConnectedFrom, ConnectedTo}) {
        const TMyPoint corners[] = {{float(box.left()), float(box.top())},
                                    {float(box.right()), float(box.bottom())}};
        TMyShape *shape =
            cad.GetShapeByID(cad.AddShapeByCode(TDrawTool::SpRectangle, {}, corners, 0, {}));
        shape->AddLinkPoint({float(box.center().x()), float(box.center().y())});
        ends.push_back(shape);
    }
    const TMyPoint line[] = {ends[0]->GetLinkPoint(0), ends[1]->GetLinkPoint(0)};
    auto *link = dynamic_cast<TMyLinkLine *>(
        cad.GetShapeByID(cad.AddShapeByCode(TDrawTool::SpLinkLine, {}, line, 0, {})));
    link->SetLinkLineDrawStyle(TLinkLineDrawStyle::lldsHV);
    link->CreateSrcLink(ends[0]->ShapeId(), 0);
    link->CreateDestLink(ends[1]->ShapeId(), 0);
    cad.SetLiveConnectors(true);
    cad.SetWorkingShapes(std::span(ends.data(), 1));
    cad.repaint();
    const QPoint grip = ConnectedFrom.center().toPoint();
    cad.MouseDown(TMouseButton::mbLeft, ssLeft, grip.x(), grip.y());
    int step = 0;
    for (auto _ : state) {
        const int d = 5 + (step++ % 20);
        cad.MouseMove(ssLeft, grip.x() + d, grip.y() + d);
        QCoreApplication::processEvents(); // the touched rectangles are shown
    }
    cad.CancelGesture();
    state.counters["route points"] = double(link->GetPointsCount());
}

void BM_SceneConnectedDrag(benchmark::State &state)
{
    // The two boxes and the connector are items of the scene from the start, as the items
    // of the drawing are.
    std::vector<TItem> items = ItemsOf(int(state.range(0)));
    items.push_back({0, ConnectedFrom});
    items.push_back({0, ConnectedTo});
    items.push_back({2, QRectF(ConnectedFrom.center(), ConnectedTo.center())});
    TSceneWorld world(items);
    const QList<QGraphicsItem *> all = world.scene->items(Qt::AscendingOrder);
    QGraphicsItem *from = all[all.size() - 3];
    auto *link = dynamic_cast<QGraphicsLineItem *>(all.back());
    from->setSelected(true);
    QCoreApplication::processEvents();
    int step = 0;
    for (auto _ : state) {
        const double d = (step++ % 2) ? 1 : -1;
        from->moveBy(d, d);
        link->setLine(QLineF(from->sceneBoundingRect().center(), ConnectedTo.center()));
        QCoreApplication::processEvents(); // the view repaints what moved
    }
}

// The control inside a scroll area, as an editor holds it: a zoom that makes it larger than
// the screen repaints only what the area shows.
struct TScrolledWorld
{
    explicit TScrolledWorld(const std::vector<TItem> &items)
    {
        TTessalWorld world(items);
        cad = world.cad.release(); // the area owns it now
        area.setWidget(cad);
        area.resize(ViewWidth, ViewHeight);
        area.show();
        QCoreApplication::processEvents();
    }
    QScrollArea area;
    TMyCAD *cad = nullptr;
};

// A step of the zoom and the repaint of the view it gives, the control in a scroll area,
// against a view given the same scale. The steps stay within a factor
// of two of each other and of the first zoom.
constexpr double ZoomSteps[] = {1.25, 1.0, 0.8, 1.5, 2.0, 1.0};

void BM_TessalZoom(benchmark::State &state)
{
    const auto &items = ItemsOf(int(state.range(0)));
    TScrolledWorld world(items);
    TMyCAD *cad = world.cad;
    std::size_t step = 0;
    for (auto _ : state) {
        cad->SetZoom(ZoomSteps[step++ % std::size(ZoomSteps)]);
        cad->repaint();
        QCoreApplication::processEvents();
    }
}

void BM_SceneZoom(benchmark::State &state)
{
    const auto &items = ItemsOf(int(state.range(0)));
    TSceneWorld world(items);
    std::size_t step = 0;
    for (auto _ : state) {
        const double zoom = ZoomSteps[step++ % std::size(ZoomSteps)];
        world.view->setTransform(QTransform::fromScale(zoom, zoom));
        world.view->viewport()->repaint();
        QCoreApplication::processEvents();
    }
}

// The first press after each zoom step, as a user zooms in on a place and clicks there:
// the zoom and its repaint are not timed. The scene's index does not change with the zoom.
void BM_TessalPressAfterZoom(benchmark::State &state)
{
    const auto &items = ItemsOf(int(state.range(0)));
    TScrolledWorld world(items);
    TMyCAD *cad = world.cad;
    const std::vector<QPoint> presses = MakePresses(items);
    std::size_t step = 0;
    for (auto _ : state) {
        state.PauseTiming();
        const double zoom = ZoomSteps[step % std::size(ZoomSteps)];
        cad->SetZoom(zoom);
        cad->repaint();
        QCoreApplication::processEvents();
        const QPoint p = presses[step++ % presses.size()] * zoom;
        state.ResumeTiming();
        cad->MouseDown(TMouseButton::mbLeft, ssLeft, p.x(), p.y());
        cad->MouseUp(TMouseButton::mbLeft, 0, p.x(), p.y());
        benchmark::DoNotOptimize(cad->WorkingShapes().data());
    }
}

void BM_ScenePressAfterZoom(benchmark::State &state)
{
    const auto &items = ItemsOf(int(state.range(0)));
    TSceneWorld world(items);
    const std::vector<QPoint> presses = MakePresses(items);
    std::size_t step = 0;
    for (auto _ : state) {
        state.PauseTiming();
        const double zoom = ZoomSteps[step % std::size(ZoomSteps)];
        world.view->setTransform(QTransform::fromScale(zoom, zoom));
        world.view->viewport()->repaint();
        QCoreApplication::processEvents();
        const QPoint p = presses[step++ % presses.size()];
        state.ResumeTiming();
        QGraphicsItem *item = world.scene->itemAt(QPointF(p), QTransform());
        world.scene->clearSelection();
        if (item)
            item->setSelected(true);
        benchmark::DoNotOptimize(item);
    }
}

// Deleting shapes picked at random over the drawing, then the repaint and the next press,
// as a user deletes and goes on working, against removing as many items from the scene.
void BM_TessalDelete(benchmark::State &state)
{
    const auto &items = ItemsOf(1000000);
    TTessalWorld world(items);
    const std::vector<QPoint> presses = MakePresses(items);
    std::mt19937 rng(5);
    std::size_t i = 0;
    for (auto _ : state) {
        std::vector<TMyShape *> picked;
        for (std::int64_t k = 0; k < state.range(0); ++k)
            picked.push_back(world.cad->GetShapeByNo(
                std::int32_t(rng() % std::uint32_t(world.cad->GetShapesCount()))));
        world.cad->SetWorkingShapes(picked);
        world.cad->DeleteSelectedShapes();
        world.cad->repaint();
        QCoreApplication::processEvents();
        const QPoint p = presses[i++ % presses.size()];
        world.cad->MouseDown(TMouseButton::mbLeft, ssLeft, p.x(), p.y());
        world.cad->MouseUp(TMouseButton::mbLeft, 0, p.x(), p.y());
    }
}

void BM_SceneDelete(benchmark::State &state)
{
    const auto &items = ItemsOf(1000000);
    TSceneWorld world(items);
    const std::vector<QPoint> presses = MakePresses(items);
    QList<QGraphicsItem *> all = world.scene->items(Qt::AscendingOrder);
    std::mt19937 rng(5);
    std::size_t i = 0;
    for (auto _ : state) {
        for (std::int64_t k = 0; k < state.range(0); ++k) {
            const auto at = qsizetype(rng() % std::uint32_t(all.size()));
            world.scene->removeItem(all[at]);
            delete all[at];
            all.swapItemsAt(at, all.size() - 1);
            all.removeLast();
        }
        world.view->viewport()->repaint();
        QCoreApplication::processEvents();
        const QPoint p = presses[i++ % presses.size()];
        benchmark::DoNotOptimize(world.scene->itemAt(QPointF(p), QTransform()));
    }
}

// Bringing a shape picked at random to the front, with the repaint, against raising an
// item above all others.
void BM_TessalRestack(benchmark::State &state)
{
    const auto &items = ItemsOf(int(state.range(0)));
    TTessalWorld world(items);
    world.cad->repaint();
    std::mt19937 rng(8);
    for (auto _ : state) {
        const auto no = std::int32_t(rng() % std::uint32_t(world.cad->GetShapesCount()));
        world.cad->BringToFront(world.cad->GetShapeByNo(no), true);
        world.cad->repaint();
        QCoreApplication::processEvents();
    }
}

void BM_SceneRestack(benchmark::State &state)
{
    const auto &items = ItemsOf(int(state.range(0)));
    TSceneWorld world(items);
    const QList<QGraphicsItem *> all = world.scene->items(Qt::AscendingOrder);
    std::mt19937 rng(8);
    qreal top = 0;
    for (auto _ : state) {
        all[qsizetype(rng() % std::uint32_t(all.size()))]->setZValue(++top);
        world.view->viewport()->repaint();
        QCoreApplication::processEvents();
    }
}

// Rubber bands of 400 x 300 pixels over the drawing, each started on paper that no shape
// takes (on a dense drawing the press would otherwise drag what it hits).
struct TBand
{
    QPoint From, To;
};

std::vector<TBand> FindBands(TMyCAD &cad)
{
    std::mt19937 rng(5);
    std::uniform_int_distribution<int> at(0, int(PageSide) - 400);
    std::vector<TBand> bands;
    while (bands.size() < 64) {
        const QPoint from(at(rng), at(rng));
        cad.MouseDown(TMouseButton::mbLeft, ssLeft, from.x(), from.y());
        cad.MouseUp(TMouseButton::mbLeft, 0, from.x(), from.y());
        if (cad.WorkingShapes().empty())
            bands.push_back({from, from + QPoint(rng() % 2 ? 400 : -400, 300)});
    }
    return bands;
}

// Found on the first side that runs, and kept for the other.
const std::vector<TBand> &BandsOf(const std::vector<TItem> &items, TMyCAD *cad)
{
    static std::map<std::size_t, std::vector<TBand>> cache;
    std::vector<TBand> &bands = cache[items.size()];
    if (bands.empty()) {
        std::unique_ptr<TTessalWorld> own;
        if (!cad) {
            own = std::make_unique<TTessalWorld>(items);
            cad = own->cad.get();
        }
        bands = FindBands(*cad);
    }
    return bands;
}

void BM_TessalBand(benchmark::State &state)
{
    const auto &items = ItemsOf(int(state.range(0)));
    TTessalWorld world(items);
    const std::vector<TBand> &bands = BandsOf(items, world.cad.get());
    std::size_t i = 0, selected = 0;
    for (auto _ : state) {
        const TBand &b = bands[i++ % bands.size()];
        world.cad->MouseDown(TMouseButton::mbLeft, ssLeft, b.From.x(), b.From.y());
        world.cad->MouseMove(ssLeft, b.To.x(), b.To.y());
        world.cad->MouseUp(TMouseButton::mbLeft, 0, b.To.x(), b.To.y());
        selected += world.cad->WorkingShapes().size();
    }
    state.counters["selected"] = double(selected) / double(i);
}

void BM_SceneBand(benchmark::State &state)
{
    const auto &items = ItemsOf(int(state.range(0)));
    const std::vector<TBand> &bands = BandsOf(items, nullptr); // the same bands on both sides
    TSceneWorld world(items);
    world.scene->itemAt(QPointF(0, 0), QTransform()); // the BSP tree is built before timing
    std::size_t i = 0, selected = 0;
    for (auto _ : state) {
        const TBand &b = bands[i++ % bands.size()];
        QPainterPath path;
        path.addRect(QRectF(b.From, b.To).normalized());
        world.scene->setSelectionArea(path, Qt::ReplaceSelection, Qt::ContainsItemShape);
        selected += std::size_t(world.scene->selectedItems().size());
    }
    state.counters["selected"] = double(selected) / double(i);
}

constexpr int Repetitions = 3;
BENCHMARK(BM_TessalPress)
    ->Arg(100000)
    ->Arg(1000000)
    ->Repetitions(Repetitions)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ScenePress)
    ->Arg(100000)
    ->Arg(1000000)
    ->Repetitions(Repetitions)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_TessalDragMove)
    ->Arg(1)
    ->Arg(1000)
    ->Repetitions(Repetitions)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_SceneDragMove)
    ->Arg(1)
    ->Arg(1000)
    ->Repetitions(Repetitions)
    ->Unit(benchmark::kMicrosecond);

BENCHMARK(BM_TessalWholeDragMove)
    ->Arg(1000000)
    ->Repetitions(Repetitions)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_SceneWholeDragMove)
    ->Arg(1000000)
    ->Repetitions(Repetitions)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_TessalConnectedDrag)
    ->Arg(1000000)
    ->Repetitions(Repetitions)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_SceneConnectedDrag)
    ->Arg(1000000)
    ->Repetitions(Repetitions)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_TessalZoom)->Arg(1000000)->Repetitions(Repetitions)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SceneZoom)->Arg(1000000)->Repetitions(Repetitions)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TessalPressAfterZoom)
    ->Arg(1000000)
    ->Iterations(60)
    ->Repetitions(Repetitions)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ScenePressAfterZoom)
    ->Arg(1000000)
    ->Iterations(60)
    ->Repetitions(Repetitions)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_TessalDelete)
    ->Arg(1)
    ->Arg(100)
    ->Repetitions(Repetitions)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SceneDelete)
    ->Arg(1)
    ->Arg(100)
    ->Repetitions(Repetitions)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TessalRestack)->Arg(1000000)->Repetitions(Repetitions)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SceneRestack)->Arg(1000000)->Repetitions(Repetitions)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TessalBand)->Arg(1000000)->Repetitions(Repetitions)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_SceneBand)->Arg(1000000)->Repetitions(Repetitions)->Unit(benchmark::kMicrosecond);

// The ratios of the CPU medians of each pair, and the growth of a press from 100k to 1M.
void PrintRatios(const tessal::bench::TTimesReporter &times)
{
    const char *pairs[][3] = {{"BM_TessalPress", "BM_ScenePress", "100000"},
                              {"BM_TessalPress", "BM_ScenePress", "1000000"},
                              {"BM_TessalDragMove", "BM_SceneDragMove", "1"},
                              {"BM_TessalDragMove", "BM_SceneDragMove", "1000"},
                              {"BM_TessalWholeDragMove", "BM_SceneWholeDragMove", "1000000"},
                              {"BM_TessalConnectedDrag", "BM_SceneConnectedDrag", "1000000"},
                              {"BM_TessalZoom", "BM_SceneZoom", "1000000"},
                              {"BM_TessalPressAfterZoom", "BM_ScenePressAfterZoom", "1000000"},
                              {"BM_TessalBand", "BM_SceneBand", "1000000"},
                              {"BM_TessalRestack", "BM_SceneRestack", "1000000"},
                              {"BM_TessalDelete", "BM_SceneDelete", "1"},
                              {"BM_TessalDelete", "BM_SceneDelete", "100"}};
    for (const auto &pair : pairs) {
        const std::string t = std::string(pair[0]) + "/" + pair[2];
        const std::string q = std::string(pair[1]) + "/" + pair[2];
        if (!times.Has(t) || !times.Has(q))
            continue;
        std::printf("%-24s CPU medians: Tessal %.2f us, QGraphicsView %.2f us, ratio %.3f\n",
                    t.c_str(), times.Cpu(t) * 1e6, times.Cpu(q) * 1e6, times.Cpu(t) / times.Cpu(q));
    }
    const std::string small = "BM_TessalPress/100000", big = "BM_TessalPress/1000000";
    if (times.Has(small) && times.Has(big))
        std::printf("press growth from 100k to 1M shapes: %.2fx\n",
                    times.Cpu(big) / times.Cpu(small));
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
