// SPDX-License-Identifier: MIT
// Ruler widgets beside a real surface: labels that never overlap, painted ticks, and the
// rulers following the mouse, scrolling, zoom, unit and axis direction of the surface.
#include <tessal/ruler/ruler.h>
#include <tessal/ruler/rulercorner.h>
#include <tessal/ruler/rulerlink.h>
#include <tessal/surface/cad.h>

#include <gtest/gtest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QPaintEvent>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>

#include <algorithm>
#include <functional>

using namespace tessal;

namespace {

bool WaitFor(const std::function<bool()> &done)
{
    QElapsedTimer timer;
    timer.start();
    while (!done() && timer.elapsed() < 2000)
        QTest::qWait(5);
    return done();
}

// A surface with an A5 page in a scroll area without a frame, laid out with its rulers.
struct TRig
{
    TMyCAD *Cad;
    QScrollArea *Scroll;
    TMyRulerFrame *Frame;

    TRig()
        : Cad(new TMyCAD)
        , Scroll(new QScrollArea)
    {
        Cad->SetPageStyle(TPageStyle::A5);
        Scroll->setFrameShape(QFrame::NoFrame);
        Scroll->setWidget(Cad);
        Frame = new TMyRulerFrame(Cad, Scroll);
        Frame->resize(300, 250);
        Frame->show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(Frame));
    }
    ~TRig() { delete Frame; }
    TMyRuler *H() const { return Frame->HorizontalRuler(); }
    TMyRuler *V() const { return Frame->VerticalRuler(); }
};

} // namespace

TEST(Ruler, LabelsNeverOverlapAtAnyZoomOrUnit)
{
    for (Qt::Orientation o : {Qt::Horizontal, Qt::Vertical}) {
        TMyRuler ruler(o);
        ruler.resize(o == Qt::Horizontal ? QSize(900, 24) : QSize(24, 900));
        ruler.SetOrigin(37);
        for (int u = 0; u <= int(TUnits::inch); ++u) {
            ruler.SetUnit(TUnits(u));
            for (double zoom : {0.05, 0.1, 0.25, 0.5, 1.0, 2.0, 4.0, 8.0, 16.0, 64.0}) {
                ruler.SetZoom(zoom);
                SCOPED_TRACE(::testing::Message()
                             << "orientation " << int(o) << " unit " << u << " zoom " << zoom);
                const auto ticks = ruler.Ticks();
                std::vector<QRect> labels;
                for (const TRulerTick &t : ticks)
                    if (t.Level == TRulerTick::Major)
                        labels.push_back(ruler.LabelRect(t));
                ASSERT_GE(labels.size(), 2u);
                for (std::size_t i = 1; i < labels.size(); ++i)
                    EXPECT_FALSE(labels[i].intersects(labels[i - 1]));
                // Minor ticks stay legible: never closer than 4 pixels before rounding.
                EXPECT_GE(ruler.Steps().Minor * ruler.Scale().PixelsPerUnit, 4.0);
            }
        }
    }
}

TEST(Ruler, PaintsTicksAndTheMarker)
{
    TMyRuler ruler(Qt::Horizontal);
    ruler.SetUnit(TUnits::pixel);
    ruler.resize(220, 24);
    QPalette palette;
    palette.setColor(QPalette::Window, Qt::white);
    palette.setColor(QPalette::WindowText, Qt::black);
    ruler.setPalette(palette);
    ruler.SetOrigin(10);
    const auto ticks = ruler.Ticks();
    ASSERT_FALSE(ticks.empty());
    QImage image = ruler.grab().toImage();
    const int bottom = 24 - 2; // above the base line
    for (const TRulerTick &t : ticks)
        EXPECT_EQ(image.pixelColor(t.Pos, bottom), QColor(Qt::black)) << t.Pos;
    // Between two minor ticks the bottom row is background.
    const int gap = (ticks[0].Pos + ticks[1].Pos) / 2;
    ASSERT_GT(ticks[1].Pos - ticks[0].Pos, 2);
    EXPECT_EQ(image.pixelColor(gap, bottom), QColor(Qt::white));
    // A major tick spans the whole thickness, a minor one a quarter.
    const auto first = [&ticks](TRulerTick::TLevel level) {
        return std::find_if(ticks.begin(), ticks.end(),
                            [level](const TRulerTick &t) { return t.Level == level; });
    };
    const auto minor = first(TRulerTick::Minor), major = first(TRulerTick::Major);
    ASSERT_TRUE(minor != ticks.end() && major != ticks.end());
    EXPECT_EQ(major->Pos, 10); // value 0 at the origin
    EXPECT_EQ(image.pixelColor(major->Pos, 2), QColor(Qt::black));
    EXPECT_EQ(image.pixelColor(minor->Pos, 2), QColor(Qt::white));

    ruler.SetMarker(gap);
    image = ruler.grab().toImage();
    EXPECT_EQ(image.pixelColor(gap, 2), QColor(Qt::red));
    EXPECT_EQ(image.pixelColor(gap, bottom), QColor(Qt::red));
    ruler.SetMarker(-5);
    EXPECT_EQ(ruler.Marker(), -1);
    image = ruler.grab().toImage();
    EXPECT_EQ(image.pixelColor(gap, bottom), QColor(Qt::white));
}

TEST(Ruler, MarkersFollowTheMouseOverTheSurface)
{
    TRig rig;
    // The rulers start where the scroll area starts, so surface and ruler pixels agree.
    for (const QPoint at : {QPoint(30, 40), QPoint(75, 12)}) {
        QTest::mouseMove(rig.Cad, at);
        EXPECT_TRUE(WaitFor([&] { return rig.H()->Marker() == at.x(); })) << rig.H()->Marker();
        EXPECT_EQ(rig.V()->Marker(), at.y());
    }
    // Leaving the surface removes the markers.
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(rig.Cad, &leave);
    EXPECT_EQ(std::pair(rig.H()->Marker(), rig.V()->Marker()), std::pair(-1, -1));
}

TEST(Ruler, FollowsScrollingZoomUnitAndAxisDirection)
{
    TRig rig;
    EXPECT_EQ(
        std::tuple(rig.H()->Origin(), rig.V()->Origin(), rig.H()->Unit(), rig.H()->PixelsPerInch()),
        std::tuple(0, 0, TUnits::mm, rig.Cad->logicalDpiX()));

    rig.Scroll->horizontalScrollBar()->setValue(100);
    rig.Scroll->verticalScrollBar()->setValue(30);
    EXPECT_TRUE(WaitFor([&] { return rig.H()->Origin() == -100; })) << rig.H()->Origin();
    EXPECT_EQ(rig.V()->Origin(), -30);

    rig.Cad->SetZoom(2);
    EXPECT_TRUE(WaitFor([&] { return rig.H()->Zoom() == 2; }));
    EXPECT_EQ(rig.V()->Zoom(), 2);

    rig.Cad->SetTheUNIT(TUnits::inch);
    EXPECT_TRUE(WaitFor([&] { return rig.H()->Unit() == TUnits::inch; }));
    EXPECT_EQ(rig.Frame->Corner()->Unit(), TUnits::inch);

    // Y mirrored: values count upwards from the surface's bottom edge.
    rig.Scroll->verticalScrollBar()->setValue(0);
    rig.Cad->SetXYMode(TXYMode::Mode1);
    EXPECT_TRUE(WaitFor([&] { return rig.V()->Reversed(); }));
    EXPECT_TRUE(WaitFor([&] { return rig.V()->Origin() == rig.Cad->height(); }));
    EXPECT_FALSE(rig.H()->Reversed());
    const TRulerScale v = rig.V()->Scale();
    // A point 50 pixels above the bottom edge reads 50 document pixels / zoom in inches.
    EXPECT_NEAR(v.ValueAt(rig.Cad->height() - 50), 50.0 / 2 / rig.Cad->logicalDpiX(), 1e-12);
}

TEST(Ruler, CornerClickSwitchesTheSurfaceUnit)
{
    TRig rig;
    TMyRulerCorner *corner = rig.Frame->Corner();
    QTest::mouseClick(corner, Qt::LeftButton);
    EXPECT_EQ(std::tuple(rig.Cad->TheUNIT(), corner->Unit(), rig.H()->Unit(), rig.V()->Unit()),
              std::tuple(TUnits::cm, TUnits::cm, TUnits::cm, TUnits::cm));
    QTest::mouseClick(corner, Qt::RightButton);
    EXPECT_EQ(rig.Cad->TheUNIT(), TUnits::cm);
    for (int i = 0; i < 4; ++i)
        QTest::mouseClick(corner, Qt::LeftButton);
    EXPECT_EQ(rig.Cad->TheUNIT(), TUnits::pixel); // cm, dm, m, inch, pixel
}

TEST(Ruler, MovingTheMarkerRepaintsOnlyTwoStrips)
{
    TMyRuler ruler(Qt::Vertical);
    ruler.resize(24, 300);
    ruler.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&ruler));
    QRegion painted;
    struct TSpy : QObject
    {
        QRegion *Region;
        bool eventFilter(QObject *, QEvent *e) override
        {
            if (e->type() == QEvent::Paint)
                *Region += static_cast<QPaintEvent *>(e)->region();
            return false;
        }
    } spy;
    spy.Region = &painted;
    ruler.SetMarker(100);
    QTest::qWait(20);
    ruler.installEventFilter(&spy);
    ruler.SetMarker(200);
    EXPECT_TRUE(WaitFor([&] { return !painted.isEmpty(); }));
    QTest::qWait(20);
    EXPECT_EQ(painted, QRegion(0, 99, 24, 3) + QRegion(0, 199, 24, 3));
}

TEST(Ruler, ReadsWhatTheSurfaceReportsAtAnyDrawingRatio)
{
    TRig rig;
    QPalette palette;
    palette.setColor(QPalette::Window, Qt::white);
    palette.setColor(QPalette::WindowText, Qt::black);
    rig.H()->setPalette(palette);
    // Where the surface's pixel 0 lies on the horizontal ruler.
    const auto start = [&] { return rig.H()->mapFromGlobal(rig.Cad->mapToGlobal(QPoint())).x(); };
    // {ratio, unit, zoom}
    const std::tuple<double, TUnits, double> cases[] = {
        {2, TUnits::mm, 1}, {0.5, TUnits::cm, 2}, {25.4, TUnits::inch, 1}, {3, TUnits::pixel, 0.5}};
    for (const auto &c : cases) {
        const auto [ratio, unit, zoom] = c;
        const double r = ratio, z = zoom; // captured below
        SCOPED_TRACE(::testing::Message() << "ratio " << ratio << " unit " << int(unit));
        rig.Cad->SetTheUNIT(unit);
        rig.Cad->SetZoom(zoom);
        rig.Cad->SetRatio(ratio);
        rig.Scroll->horizontalScrollBar()->setValue(40);
        ASSERT_TRUE(WaitFor([&] { return rig.H()->Ratio() == r && rig.H()->Zoom() == z; }));
        ASSERT_TRUE(WaitFor([&] { return rig.H()->Origin() == start(); }));
        const int shift = -start();
        EXPECT_GT(shift, 0);
        EXPECT_EQ(rig.V()->Ratio(), ratio);
        // Every labelled tick sits on the control pixel whose reported x is nearest to its
        // value: within half a pixel's worth of units, and its label is that value.
        const double unitsPerPixel =
            rig.Cad->GetPointByMode({1001, 0}).X - rig.Cad->GetPointByMode({1000, 0}).X;
        const auto ticks = rig.H()->Ticks();
        const QImage image = rig.H()->grab().toImage();
        int labelled = 0;
        for (const TRulerTick &t : ticks) {
            if (t.Level != TRulerTick::Major)
                continue;
            ++labelled;
            const double reported = rig.Cad->GetPointByMode({t.Pos + shift, 0}).X;
            EXPECT_LE(std::abs(reported - t.Value), unitsPerPixel / 2 + 1e-4) << t.Pos;
            EXPECT_EQ(t.Label, RulerLabel(t.Value, rig.H()->Steps().Major));
            EXPECT_EQ(image.pixelColor(t.Pos, 1), QColor(Qt::black)) << t.Pos;
        }
        EXPECT_GE(labelled, 2);
        // The ruler's reading under any control pixel is the surface's own.
        for (int x : {0, 17, 138, 255}) {
            const double reported = rig.Cad->GetPointByMode({x + shift, 0}).X;
            EXPECT_NEAR(rig.H()->Scale().ValueAt(x), reported, 1e-4 * std::max(1.0, reported));
        }
    }
    // The case of the report: 2 mm drawn per screen millimetre, control pixel 378.
    rig.Cad->SetTheUNIT(TUnits::mm);
    rig.Cad->SetZoom(1);
    rig.Cad->SetRatio(2);
    ASSERT_TRUE(WaitFor([&] {
        return rig.H()->Zoom() == 1 && rig.H()->Unit() == TUnits::mm && rig.H()->Ratio() == 2 &&
               rig.H()->Origin() == start();
    }));
    const double at378 = 378.0 / rig.Cad->logicalDpiX() * 25.4 * 2;
    EXPECT_NEAR(rig.Cad->GetPointByMode({378, 0}).X, at378, 1e-4);
    EXPECT_NEAR(rig.H()->Scale().ValueAt(378 + start()), at378, 1e-9);
}
