// SPDX-License-Identifier: MIT
// Rendering: control size, grid pixels, background picture modes, composition order,
// partial repaints against full ones, the repaint guard and the printing aids.
#include "documenthelpers.h"
#include "rendertestshapes.h"

#include <common/imagecompare.h>

#include <tessal/shapes/line.h>
#include <tessal/shapes/link.h>
#include <tessal/shapes/rectangle.h>

#include <gtest/gtest.h>

#include <QScrollArea>
#include <QScrollBar>
#include <QTest>

#include <random>
#include <set>

using namespace tessal;
using namespace tessal::test;

namespace {

// A small custom page so that full compositions stay quick: 60 x 40 mm.
void UseSmallPage(TMyCAD &cad)
{
    cad.SetPageStyle(TPageStyle::CustomerPage);
    cad.SetPageWidth(60);
    cad.SetPageHeight(40);
}

void NoGrid(TMyCAD &cad)
{
    cad.GridOperation()->SetGridType(TGridType::gNone);
}

// The columns of row y whose pixel has colour rgb.
std::set<int> ColumnsOf(const QImage &image, int y, unsigned rgb)
{
    std::set<int> xs;
    for (int x = 0; x < image.width(); ++x)
        if (PixelRgb(image, x, y) == rgb)
            xs.insert(x);
    return xs;
}

// A picture whose every pixel differs: red = x, green = y.
TBitmap Gradient(int w, int h)
{
    TBitmap bitmap(w, h);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            bitmap.SetPixel(x, y, RGBToColor(std::uint8_t(x * 10), std::uint8_t(y * 10), 77));
    return bitmap;
}

unsigned PictureRgb(const TBitmap &bitmap, int x, int y)
{
    return Rgb(bitmap.Pixel(x, y));
}

} // namespace

TEST(Render, GridLinesKeepThePagePhaseWithHalvesToEven)
{
    TMyCAD cad;
    UseSmallPage(cad);
    TGridObject &grid = *cad.GridOperation();
    const unsigned silver = Rgb(clSilver);
    // Step 20: columns on multiples of 20 of the control, whatever rectangle is composed.
    const QImage full = Compose(cad, ControlRect(cad));
    EXPECT_EQ(ColumnsOf(full, 5, silver),
              (std::set<int>{0, 20, 40, 60, 80, 100, 120, 140, 160, 180, 200, 220}));
    for (const TRect &r : {TRect(7, 3, 90, 50), TRect(30, 10, 75, 31), TRect(10, 10, 60, 60)}) {
        const QImage part = Compose(cad, r);
        std::set<int> expected;
        for (int x = 0; x < r.Width(); ++x)
            if ((x + r.Left) % 20 == 0)
                expected.insert(x);
        EXPECT_EQ(ColumnsOf(part, 1, silver), expected) << r.Left;
        EXPECT_TRUE(ImagesEqual(part, full.copy(r.ToQRect())));
    }
    // A step of 12.5 (25 at zoom 0.5 with GridInZoom): positions round halves to even.
    grid.SetGridInZoom(true);
    grid.SetGridWidth(25);
    cad.SetZoom(0.5);
    const QImage half = Compose(cad, TRect(0, 0, 101, 20));
    EXPECT_EQ(ColumnsOf(half, 5, silver), (std::set<int>{0, 12, 25, 38, 50, 62, 75, 88, 100}));
    // Horizontal lines follow GridHeight, not scaled by the zoom without GridInZoom.
    grid.SetGridInZoom(false);
    grid.SetGridHeight(15);
    const QImage rows = Compose(cad, TRect(0, 0, 4, 50));
    std::set<int> ys;
    for (int y = 0; y < rows.height(); ++y)
        if (PixelRgb(rows, 1, y) == silver)
            ys.insert(y);
    EXPECT_EQ(ys, (std::set<int>{0, 15, 30, 45}));
}

TEST(Render, GridDotsStartAtTheImageCorner)
{
    TMyCAD cad;
    UseSmallPage(cad);
    TGridObject &grid = *cad.GridOperation();
    grid.SetGridType(TGridType::gPixel);
    grid.SetGridColor(clRed);
    // A dot is the square (x - 1, y - 1) .. (x + 1, y + 1): its outline covers two by two
    // pixels up and left of each grid point.
    const TRect rect(13, 7, 63, 48);
    const QImage image = Compose(cad, rect);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const bool dot = ((x + 1) % 20 <= 1) && ((y + 1) % 20 <= 1);
            ASSERT_EQ(PixelRgb(image, x, y), dot ? Rgb(clRed) : Rgb(clWhite)) << x << "," << y;
        }
    // Pen size 3: squares (x - 3, y - 3) .. (x + 3, y + 3) with a 3-pixel outline.
    grid.SetGridPenSize(3);
    const QImage big = Compose(cad, TRect(0, 0, 40, 40));
    QRect dot;
    for (int y = 10; y < 30; ++y)
        for (int x = 10; x < 30; ++x)
            if (PixelRgb(big, x, y) == Rgb(clRed))
                dot |= QRect(x, y, 1, 1);
    EXPECT_TRUE(dot.contains(QRect(17, 17, 6, 6))) << dot.x() << "," << dot.width();
    EXPECT_TRUE(QRect(15, 15, 10, 10).contains(dot)) << dot.x() << "," << dot.width();
    EXPECT_EQ(PixelRgb(big, 10, 10), Rgb(clWhite));
    // Steps below a pixel cover every pixel; repeats are skipped without being visited,
    // so that a step typed as 1e-7 paints at once instead of looping for hours.
    grid.SetGridPenSize(1);
    for (double step : {0.37, 1e-7}) {
        grid.SetGridWidth(step);
        grid.SetGridHeight(step);
        const QImage solid = Compose(cad, TRect(0, 0, 30, 20));
        EXPECT_EQ(CountPixels(solid, QRect(0, 0, 30, 20), 0xFF0000), 600) << step;
    }
}

TEST(Render, GridSwitchesThatDrawNothing)
{
    TMyCAD cad;
    UseSmallPage(cad);
    TGridObject &grid = *cad.GridOperation();
    const TRect r(0, 0, 60, 60);
    const auto blank = [&] { return CountPixels(Compose(cad, r), r.ToQRect(), 0xFFFFFF); };
    ASSERT_LT(blank(), 3600);
    grid.SetGridShow(false);
    EXPECT_EQ(blank(), 3600);
    grid.SetGridShow(true);
    grid.SetGridWidth(0);
    EXPECT_EQ(blank(), 3600);
    grid.SetGridWidth(-20);
    EXPECT_EQ(blank(), 3600);
    grid.SetGridWidth(20);
    grid.SetGridType(TGridType::gNone);
    EXPECT_EQ(blank(), 3600);
    grid.SetGridType(TGridType::gPixel);
    grid.SetGridHeight(0);
    EXPECT_EQ(blank(), 3600);
    // The grid-drawing flag is down again, and setters invalidate as before.
    EXPECT_FALSE(cad.IsGridDrawing());
}

TEST(Render, BackgroundPictureModes)
{
    TMyCAD cad;
    UseSmallPage(cad);
    NoGrid(cad);
    const TBitmap picture = Gradient(7, 5);
    cad.SetBkBitmap(picture);
    const int W = cad.width();
    const int H = cad.height();
    const TRect all = ControlRect(cad);

    cad.SetBkBitmapMode(TBkBitmapMode::Tiled);
    QImage image = Compose(cad, all);
    for (int y = 0; y < H; y += 3)
        for (int x = 0; x < W; x += 2)
            ASSERT_EQ(PixelRgb(image, x, y), PictureRgb(picture, x % 7, y % 5)) << x << "," << y;

    cad.SetBkBitmapMode(TBkBitmapMode::Stretch);
    image = Compose(cad, all);
    for (int y = 0; y < H; ++y)
        for (int x = 0; x < W; ++x)
            ASSERT_EQ(PixelRgb(image, x, y), PictureRgb(picture, x * 7 / W, y * 5 / H));

    cad.SetBkBitmapMode(TBkBitmapMode::Center);
    image = Compose(cad, all);
    const int cx = (W - 7) / 2;
    const int cy = (H - 5) / 2;
    EXPECT_EQ(PixelRgb(image, cx, cy), PictureRgb(picture, 0, 0));
    EXPECT_EQ(PixelRgb(image, cx + 6, cy + 4), PictureRgb(picture, 6, 4));
    EXPECT_EQ(CountPixels(image, all.ToQRect(), 0xFFFFFF), W * H - 35);

    cad.SetBkBitmapMode(TBkBitmapMode::LeftTop);
    image = Compose(cad, all);
    EXPECT_EQ(PixelRgb(image, 6, 4), PictureRgb(picture, 6, 4));
    EXPECT_EQ(CountPixels(image, all.ToQRect(), 0xFFFFFF), W * H - 35);
    // The picture stays on the page: a composition of a rectangle further in shows the
    // same picture pixels at shifted positions.
    image = Compose(cad, TRect(3, 2, 20, 20));
    EXPECT_EQ(PixelRgb(image, 0, 0), PictureRgb(picture, 3, 2));
    EXPECT_EQ(PixelRgb(image, 4, 3), Rgb(clWhite));

    // Nothing outside the page: an image larger than the control keeps its own pixels.
    cad.SetBkBitmapMode(TBkBitmapMode::Tiled);
    QImage larger(W + 30, H + 20, QImage::Format_RGB32);
    larger.fill(Qt::black);
    cad.DrawBkBitmap(larger, 10, 5, false);
    EXPECT_EQ(PixelRgb(larger, 9, 5), 0u);
    EXPECT_EQ(PixelRgb(larger, 10, 5), PictureRgb(picture, 0, 0));
    EXPECT_EQ(PixelRgb(larger, 10 + W, 5 + H - 1), 0u);
    EXPECT_EQ(PixelRgb(larger, 10 + W - 1, 5 + H - 1),
              PictureRgb(picture, (W - 1) % 7, (H - 1) % 5));
    // Printing: the page is the whole image.
    larger.fill(Qt::black);
    cad.SetBkBitmapMode(TBkBitmapMode::Stretch);
    cad.DrawBkBitmap(larger, 0, 0, true);
    EXPECT_EQ(PixelRgb(larger, W + 29, H + 19), PictureRgb(picture, 6, 4));
}

TEST(Render, CompositionOrder)
{
    TMyCAD cad;
    UseSmallPage(cad);
    cad.SetBkBitmap(Gradient(4, 4));
    cad.SetBkBitmapMode(TBkBitmapMode::Tiled);
    const unsigned silver = Rgb(clSilver);
    // Grid over the picture: row 20 is a grid line across the tiles.
    QImage image = Compose(cad, ControlRect(cad));
    EXPECT_EQ(PixelRgb(image, 3, 20), silver);
    EXPECT_EQ(PixelRgb(image, 3, 21), Rgb(Gradient(4, 4).Pixel(3, 1)));

    // Shapes over the grid, later shapes over earlier ones.
    AddFill(cad, {10, 10, 50, 50}, clRed);
    AddFill(cad, {30, 30, 70, 70}, clBlue);
    image = Compose(cad, ControlRect(cad));
    EXPECT_EQ(PixelRgb(image, 20, 25), Rgb(clRed)); // on the grid column 20
    EXPECT_EQ(PixelRgb(image, 40, 40), Rgb(clBlue));
    EXPECT_EQ(PixelRgb(image, 60, 60), Rgb(clBlue));

    // Members before their group: the group paints over its member although the member
    // comes later in the list.
    TFillShape *group = AddFill(cad, {100, 10, 140, 50}, clLime);
    TFillShape *member = AddFill(cad, {120, 30, 160, 70}, clYellow);
    group->ChildShapes() = {cad.GetShapesCount() - 1};
    member->SetParentNo(cad.GetShapesCount() - 2);
    cad.Invalidate();
    image = Compose(cad, ControlRect(cad));
    EXPECT_EQ(PixelRgb(image, 130, 40), Rgb(clLime));
    EXPECT_EQ(PixelRgb(image, 150, 60), Rgb(clYellow));
    // The member is reached only through its group: the draw list holds the group alone.
    EXPECT_EQ(cad.DrawList(), (std::vector<std::int32_t>{0, 1, 2}));
    // A hidden member is skipped, a hidden group hides its members too.
    member->SetVisible(false);
    image = Compose(cad, ControlRect(cad));
    EXPECT_NE(PixelRgb(image, 150, 60), Rgb(clYellow));
    member->SetVisible(true);
    group->SetVisible(false);
    image = Compose(cad, ControlRect(cad));
    EXPECT_EQ(CountPixels(image, QRect(100, 10, 61, 61), Rgb(clYellow)), 0);
    EXPECT_EQ(CountPixels(image, QRect(100, 10, 61, 61), Rgb(clLime)), 0);

    // Shapes of hidden layers are not drawn.
    const std::int32_t second = cad.NewLayer(QStringLiteral("Second"), false);
    TFillShape *hidden = AddFill(cad, {10, 100, 40, 130}, clFuchsia);
    EXPECT_EQ(hidden->LayerId(), second);
    image = Compose(cad, ControlRect(cad));
    EXPECT_EQ(CountPixels(image, ControlRect(cad).ToQRect(), Rgb(clFuchsia)), 0);
}

// The heart of the repaint design: any rectangle composed on its own equals the same
// rectangle of a full composition, pixel for pixel, with real shape classes, texts, arrows,
// turned shapes, a tiled picture and the line grid, at a zoom that is not a whole number.
TEST(Render, PartialRepaintEqualsFullRepaint)
{
    TMyCAD cad;
    cad.SetPageStyle(TPageStyle::CustomerPage);
    cad.SetPageWidth(90);
    cad.SetPageHeight(70);
    cad.SetBkBitmap(Gradient(9, 6));
    cad.SetBkBitmapMode(TBkBitmapMode::Tiled);
    std::mt19937 rng(20240611);
    std::uniform_real_distribution<float> pos(-20, 300);
    std::uniform_real_distribution<float> len(2, 80);
    const TDrawTool tools[] = {TDrawTool::SpRectangle, TDrawTool::SpEllipse, TDrawTool::SpLine,
                               TDrawTool::SpText};
    for (int i = 0; i < 60; ++i) {
        const TDrawTool tool = tools[i % 4];
        const TMyPoint a{pos(rng), pos(rng)};
        const TMyPoint b{a.X + len(rng), a.Y + len(rng)};
        const TMyPoint pts[2] = {a, b};
        // Texts longer than their boxes run out of them; some shapes are turned.
        const QString text =
            tool == TDrawTool::SpText ? QStringLiteral("Overflowing text %1").arg(i) : QString();
        const std::int32_t id = cad.AddShapeByCode(tool, QString(), pts, i % 7 ? 0 : 0.4, text);
        ASSERT_GE(id, 0);
        TMyShape *shape = cad.GetShapeByID(id);
        shape->SetPen(TPen{RGBToColor(std::uint8_t(i * 37), 40, 200), TPenMode::pmCopy,
                           TPenStyle::psSolid, 1 + i % 4});
        shape->SetBrush(
            TBrush{RGBToColor(200, std::uint8_t(i * 53), 90), TBrushStyle::bsSolid, {}});
        if (i % 5 == 0)
            shape->SetInfo(QStringLiteral("Label %1").arg(i));
        if (auto *line = dynamic_cast<TMyLine *>(shape))
            line->SetArrowStyle(TArrowStyle::ADouble);
    }
    cad.ClearWorkingShapes();
    std::vector<std::pair<TMyPointArray, TMyPoint>> points;
    for (std::int32_t no = 0; no < cad.GetShapesCount(); ++no)
        points.push_back({cad.GetShapeByNo(no)->Points(), cad.GetShapeByNo(no)->TextPoint()});
    // At 6.5 the control is larger than one composition tile.
    for (const double zoom : {1.0, 1.37, 6.5}) {
        cad.SetZoom(zoom);
        const QImage full = Compose(cad, ControlRect(cad));
        std::uniform_int_distribution<int> x(0, cad.width() - 1);
        std::uniform_int_distribution<int> y(0, cad.height() - 1);
        for (int n = 0; n < 12; ++n) {
            const int l = x(rng);
            const int t = y(rng);
            const TRect r(l, t, std::min(cad.width(), l + 1 + x(rng) / 3),
                          std::min(cad.height(), t + 1 + y(rng) / 3));
            const QImage part = Compose(cad, r);
            EXPECT_TRUE(ImagesEqual(part, full.copy(r.ToQRect())))
                << "zoom " << zoom << " rect " << r.Left << "," << r.Top << "," << r.Right << ","
                << r.Bottom;
        }
    }
    // With every shape selected, the handles a rectangle repaints are those of a full repaint.
    std::vector<TMyShape *> all;
    for (std::int32_t no = 0; no < cad.GetShapesCount(); ++no)
        all.push_back(cad.GetShapeByNo(no));
    cad.SetWorkingShapes(all);
    cad.SetZoom(1.37);
    cad.Paint(ControlRect(cad));
    const QImage handles = cad.ScreenImage().copy();
    ASSERT_GT(CompareImages(handles, Compose(cad, ControlRect(cad))).DifferingPixels, 1000);
    std::uniform_int_distribution<int> x(0, cad.width() - 1);
    std::uniform_int_distribution<int> y(0, cad.height() - 1);
    std::uniform_int_distribution<int> side(1, 24);
    for (int n = 0; n < 400; ++n) {
        const int l = x(rng);
        const int t = y(rng);
        const TRect r(l, t, std::min(cad.width(), l + side(rng)),
                      std::min(cad.height(), t + side(rng)));
        cad.Paint(r);
        EXPECT_TRUE(ImagesEqual(cad.ScreenImage().copy(r.ToQRect()), handles.copy(r.ToQRect())))
            << "rect " << r.Left << "," << r.Top << "," << r.Right << "," << r.Bottom;
    }
    // Painting leaves the document as it was, bit for bit: no residue of a shift and back.
    for (std::int32_t no = 0; no < cad.GetShapesCount(); ++no) {
        EXPECT_EQ(cad.GetShapeByNo(no)->Points(), points[std::size_t(no)].first) << no;
        EXPECT_EQ(cad.GetShapeByNo(no)->TextPoint(), points[std::size_t(no)].second) << no;
    }
}

TEST(Render, PaintCopiesDrawsHandlesAndFiresOnPaint)
{
    TMyCAD cad;
    UseSmallPage(cad);
    NoGrid(cad);
    const TMyPoint pts[2] = {{20, 20}, {80, 60}};
    const std::int32_t id =
        cad.AddShapeByCode(TDrawTool::SpRectangle, QString(), pts, 0, QString());
    TMyShape *shape = cad.GetShapeByID(id);
    ASSERT_TRUE(cad.IsWorkingShape(shape));
    int fired = 0;
    bool busyInside = false;
    cad.SetOnPaint([&](TMyCAD *sender) {
        ++fired;
        busyInside = sender->IsBusy();
        // A nested repaint is refused while the first one runs.
        sender->Paint(TRect(0, 0, 10, 10));
    });
    cad.Paint(ControlRect(cad));
    EXPECT_EQ(fired, 1);
    EXPECT_TRUE(busyInside);
    EXPECT_FALSE(cad.IsBusy());
    const QImage withHandles = cad.ScreenImage().copy();
    // The handles are on the screen image only, on top of the shape.
    const QImage composed = Compose(cad, ControlRect(cad));
    const test::ImageDiff diff = CompareImages(withHandles, composed);
    EXPECT_GT(diff.DifferingPixels, 0);
    // The corner handle sits on the shape's corner (20, 20) in the hot colour.
    EXPECT_NE(PixelRgb(withHandles, 20, 20), PixelRgb(composed, 20, 20));
    // Without working shapes the screen shows exactly the composition.
    cad.ClearWorkingShapes();
    cad.Paint(ControlRect(cad));
    EXPECT_TRUE(ImagesEqual(cad.ScreenImage(), composed));
    EXPECT_EQ(fired, 2);
    // A clip outside the control composes nothing but still reports the paint.
    cad.Paint(TRect(-50, -50, -10, -10));
    EXPECT_EQ(fired, 3);
}

// A connector bound at both ends whose points were never routed shows a route worked out on
// the screen, here round a box in its way and away from its points. A repaint of a part of
// that route alone draws it, with the connector's handles when it is selected, as a repaint
// of everything does.
TEST(Render, ARouteWorkedOutOnTheScreenIsRepaintedInParts)
{
    TMyCAD cad;
    cad.SetPageStyle(TPageStyle::CustomerPage);
    cad.SetPageWidth(90);
    cad.SetPageHeight(70);
    NoGrid(cad);
    // At a zoom that is not a whole number the route's pixels are not its document units.
    const double zoom = 1.5;
    cad.SetZoom(zoom);
    const auto px = [zoom](int l, int t, int r, int b) {
        return TRect(int(l * zoom), int(t * zoom), int(r * zoom), int(b * zoom));
    };
    TMyShape *a = AddRectangle(cad, 20, 100, 60, 130);
    TMyShape *b = AddRectangle(cad, 220, 100, 260, 130);
    a->AddLinkPoint({60, 115});
    b->AddLinkPoint({220, 115});
    AddRectangle(cad, 120, 20, 160, 200);
    TMyLinkLine *link = AddConnector(cad, a, b);
    ASSERT_EQ(link->LinkLineDrawStyle(), TLinkLineDrawStyle::lldsHV);
    const TRect above = px(100, 0, 180, 24); // the route passes here, its points do not
    const QImage drawing = Compose(cad, ControlRect(cad));
    ASSERT_TRUE(ImagesEqual(Compose(cad, above), drawing.copy(above.ToQRect())));
    ASSERT_FALSE(ImagesEqual(Compose(cad, above), Compose(cad, px(0, 300, 80, 324))));
    cad.SetWorkingShapes(std::vector<TMyShape *>{link});
    cad.Paint(ControlRect(cad));
    const QImage whole = cad.ScreenImage().copy();
    ASSERT_FALSE(ImagesEqual(whole.copy(above.ToQRect()), drawing.copy(above.ToQRect())));
    cad.Paint(above);
    EXPECT_TRUE(ImagesEqual(cad.ScreenImage().copy(above.ToQRect()), whole.copy(above.ToQRect())));
    // Moved by code, a bound box takes the route along, and what a part repaints with it.
    a->DragChangeValuedxdy(0, 200 * zoom);
    cad.ShapeGeometryChanged(a);
    cad.Paint(ControlRect(cad));
    const QImage moved = cad.ScreenImage().copy();
    ASSERT_FALSE(ImagesEqual(moved.copy(above.ToQRect()), whole.copy(above.ToQRect())));
    for (const TRect part : {above, px(0, 200, 120, 340), px(150, 120, 300, 340)}) {
        cad.Paint(part);
        EXPECT_TRUE(ImagesEqual(cad.ScreenImage().copy(part.ToQRect()), moved.copy(part.ToQRect())))
            << part.Left << "," << part.Top;
    }
}

namespace {

// Bounding box of the pixels that are not white.
QRect InkBox(const QImage &image)
{
    QRect box;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (PixelRgb(image, x, y) != 0xFFFFFF)
                box |= QRect(x, y, 1, 1);
    return box;
}

} // namespace

TEST(Render, BorderAndHeadFootOnAPageImage)
{
    TMyCAD cad;
    cad.SetPageStyle(TPageStyle::CustomerPage);
    cad.SetPageWidth(100);
    cad.SetPageHeight(50);
    // Ten pixels per millimetre.
    QImage page(1000, 500, QImage::Format_RGB32);
    page.fill(Qt::white);
    cad.DrawBorder(page);
    // Border distances of 20 mm: the frame covers 200..799 x 200..299.
    EXPECT_EQ(InkBox(page), QRect(QPoint(200, 200), QPoint(799, 299)));
    EXPECT_EQ(PixelRgb(page, 200, 250), 0u);
    EXPECT_EQ(PixelRgb(page, 799, 250), 0u);
    EXPECT_EQ(PixelRgb(page, 500, 250), 0xFFFFFFu);
    page.fill(Qt::white);
    cad.SetPrintABorder(false);
    cad.DrawBorder(page);
    EXPECT_TRUE(InkBox(page).isNull());

    // Head 15 mm below the top, left-justified at the left distance.
    cad.SetPageHead(QStringLiteral("HEAD"));
    cad.SetPageHeadAlignment(TAlignment::taLeftJustify);
    cad.DrawHeadFoot(page);
    const QRect head = InkBox(page);
    ASSERT_FALSE(head.isNull());
    EXPECT_GE(head.top(), 150);
    EXPECT_LT(head.bottom(), 250);
    EXPECT_GE(head.left(), 200);
    EXPECT_LT(head.left(), 210);
    // Right-justified: the text ends at the right distance.
    page.fill(Qt::white);
    cad.SetPageHeadAlignment(TAlignment::taRightJustify);
    cad.DrawHeadFoot(page);
    const QRect right = InkBox(page);
    EXPECT_LE(right.right(), 799);
    EXPECT_GT(right.right(), 780);
    EXPECT_EQ(right.width(), head.width());
    // Foot centred, its cell ending 15 mm above the bottom.
    page.fill(Qt::white);
    cad.SetPageHead(QString());
    cad.SetPageFoot(QStringLiteral("FOOT"));
    cad.SetPageFootAlignment(TAlignment::taCenter);
    cad.DrawHeadFoot(page);
    const QRect foot = InkBox(page);
    ASSERT_FALSE(foot.isNull());
    EXPECT_LE(foot.bottom(), 349);
    EXPECT_GT(foot.bottom(), 300);
    EXPECT_NEAR(foot.center().x(), 500, 6);
    // The screen composition shows neither.
    cad.SetPageHead(QStringLiteral("HEAD"));
    NoGrid(cad);
    const QImage screen = Compose(cad, ControlRect(cad));
    EXPECT_EQ(CountPixels(screen, ControlRect(cad).ToQRect(), 0xFFFFFF),
              cad.width() * cad.height());
}

// At zoom 16 an A4 page is about 12700 x 17960 pixels. The images behind the repaint stay as
// small as what can be seen: inside a scroll area the viewport's part, hidden no more than a
// screen. Scrolling moves the screen image with the view; what it shows is the composition of
// the pixels under it, and feedback drawn in control coordinates lands there.
TEST(Render, ImagesStayAsSmallAsTheVisiblePart)
{
    QScrollArea area;
    auto *cad = new TMyCAD;
    cad->SetZoom(16);
    const TMyPoint pts[2] = {{300, 400}, {420, 470}};
    ASSERT_GE(cad->AddShapeByCode(TDrawTool::SpEllipse, QString(), pts, 0, QString()), 0);
    cad->ClearWorkingShapes();
    ASSERT_GT(cad->width(), 12000);
    ASSERT_GT(cad->height(), 17000);
    area.setWidget(cad);
    area.resize(420, 320);
    area.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&area));
    const QSize view = area.viewport()->size();
    const auto checkShown = [&] {
        QApplication::processEvents();
        cad->repaint();
        const QRect seen(-cad->pos(), view);
        EXPECT_EQ(QRect(cad->ScreenOrigin(), cad->ScreenImage().size()), seen);
        EXPECT_LE(cad->OffscreenImage().width(), view.width());
        EXPECT_LE(cad->OffscreenImage().height(), view.height());
        EXPECT_TRUE(ImagesEqual(cad->ScreenImage().convertToFormat(QImage::Format_RGB32),
                                Compose(*cad, TRect::FromQRect(seen))));
    };
    checkShown();
    EXPECT_EQ(cad->ScreenOrigin(), QPoint(0, 0));
    // Onto the ellipse's left end, 300 x 16 = 4800 across, (400 + 470) / 2 x 16 = 6960 down.
    area.horizontalScrollBar()->setValue(4700);
    area.verticalScrollBar()->setValue(6800);
    checkShown();
    EXPECT_EQ(cad->ScreenOrigin(), QPoint(4700, 6800));
    EXPECT_GT(CountPixels(cad->ScreenImage(), cad->ScreenImage().rect(), 0xFFFFFF),
              0); // some background
    EXPECT_LT(CountPixels(cad->ScreenImage(), cad->ScreenImage().rect(), 0xFFFFFF),
              view.width() * view.height()); // and some ellipse
    // Feedback in control coordinates lands on the same control pixels.
    TCanvas *screen = cad->ScreenCanvas();
    ASSERT_NE(screen, nullptr);
    screen->Brush().Color = clBlack;
    screen->Brush().Style = TBrushStyle::bsSolid;
    screen->FillRect(TRect(4750, 6850, 4760, 6855));
    screen->Flush();
    const QImage &shown = cad->ScreenImage();
    EXPECT_EQ(CountPixels(shown, QRect(50, 50, 10, 5), 0x000000), 50);
    EXPECT_EQ(PixelRgb(shown, 49, 50) == 0, false);

    // Not shown: the top-left part, no larger than the screen.
    TMyCAD hidden;
    hidden.SetZoom(16);
    hidden.Paint(TRect(0, 0, hidden.width(), hidden.height()));
    const QSize screenSize = hidden.screen()->geometry().size();
    EXPECT_EQ(hidden.ScreenOrigin(), QPoint(0, 0));
    EXPECT_LE(hidden.ScreenImage().width(), screenSize.width());
    EXPECT_LE(hidden.ScreenImage().height(), screenSize.height());
    EXPECT_LE(hidden.OffscreenImage().width(), screenSize.width());
}
