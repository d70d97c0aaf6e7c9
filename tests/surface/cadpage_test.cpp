// SPDX-License-Identifier: MIT
// Page styles, orientation, zoom and the control size they give; reported coordinates and
// the labels that show them.
#include <tessal/surface/cad.h>

#include <gtest/gtest.h>

#include <QEvent>
#include <QLabel>
#include <QWidget>

#include <cmath>

using namespace tessal;

namespace {

// round(mm x zoom x dpi / 25.4), halves to even.
int Pixels(double mm, double zoom, int dpi)
{
    return int(std::nearbyint(mm * zoom * dpi / 25.4));
}

struct TStyleSize
{
    TPageStyle Style;
    std::uint32_t Width;
    std::uint32_t Height;
};

const TStyleSize PortraitSizes[] = {
    {TPageStyle::A0, 841, 1189}, {TPageStyle::A1, 594, 841}, {TPageStyle::A2, 420, 594},
    {TPageStyle::A3, 297, 420},  {TPageStyle::A4, 210, 297}, {TPageStyle::A5, 148, 210},
    {TPageStyle::B3, 353, 500},  {TPageStyle::B4, 257, 364}, {TPageStyle::B5, 182, 257},
};

} // namespace

// Each style in each orientation: its sizes, the control's size at two zooms, and the style
// that the sizes name, which only the current orientation's sizes do.
TEST(CadPage, StylesSizeTheControlInBothOrientations)
{
    TMyCAD cad;
    const int dpi = cad.logicalDpiX();
    EXPECT_EQ(cad.size(), QSize(Pixels(210, 1, dpi), Pixels(297, 1, dpi)));
    EXPECT_EQ(cad.GetPageStyleByWH(0, 0), TPageStyle::CustomerPage);
    EXPECT_EQ(cad.GetPageStyleByWH(210, 296), TPageStyle::CustomerPage);
    for (const double zoom : {1.0, 2.0}) {
        cad.SetZoom(zoom);
        for (const TStyleSize &s : PortraitSizes)
            for (const bool landscape : {false, true}) {
                SCOPED_TRACE(testing::Message() << s.Width << " landscape " << landscape);
                cad.SetPageOrientation(landscape ? TPrinterOrientation::poLandscape
                                                 : TPrinterOrientation::poPortrait);
                cad.SetPageStyle(s.Style);
                const std::uint32_t w = landscape ? s.Height : s.Width;
                const std::uint32_t h = landscape ? s.Width : s.Height;
                EXPECT_EQ(cad.PageWidth(), w);
                EXPECT_EQ(cad.PageHeight(), h);
                EXPECT_EQ(cad.size(), QSize(Pixels(w, zoom, dpi), Pixels(h, zoom, dpi)));
                EXPECT_EQ(cad.PageStyle(), s.Style);
                EXPECT_EQ(cad.GetPageStyleByWH(w, h), s.Style);
                EXPECT_EQ(cad.GetPageStyleByWH(h, w), TPageStyle::CustomerPage);
            }
    }
    // Turning the page swaps the sizes of the current style.
    cad.SetPageOrientation(TPrinterOrientation::poPortrait);
    cad.SetPageStyle(TPageStyle::A4);
    cad.SetPageOrientation(TPrinterOrientation::poLandscape);
    EXPECT_EQ(cad.PageWidth(), 297u);
    EXPECT_EQ(cad.PageHeight(), 210u);
    EXPECT_EQ(cad.width(), Pixels(297, 2, dpi));
    // A customer page keeps its sizes and the control's size.
    cad.SetPageWidth(100);
    cad.SetPageHeight(50);
    EXPECT_EQ(cad.size(), QSize(Pixels(100, 2, dpi), Pixels(50, 2, dpi)));
    cad.resize(40, 30);
    cad.SetPageStyle(TPageStyle::CustomerPage);
    EXPECT_EQ(cad.PageStyle(), TPageStyle::CustomerPage);
    EXPECT_EQ(cad.PageWidth(), 100u);
    EXPECT_EQ(cad.PageHeight(), 50u);
    EXPECT_EQ(cad.size(), QSize(40, 30));
}

TEST(CadPage, ZoomResizesAndRemembersThePreviousZoom)
{
    TMyCAD cad;
    const int dpi = cad.logicalDpiX();
    cad.SetZoom(2);
    EXPECT_EQ(cad.PreZoom(), 1.0);
    // The same zoom again changes nothing, not even the previous zoom.
    cad.SetZoom(2);
    EXPECT_EQ(cad.PreZoom(), 1.0);
    cad.SetZoom(0.5);
    EXPECT_EQ(cad.PreZoom(), 2.0);
    EXPECT_EQ(cad.Zoom(), 0.5);
    EXPECT_EQ(cad.width(), Pixels(210, 0.5, dpi));
    // The page setters size by the current zoom too.
    cad.SetPageWidth(100);
    EXPECT_EQ(cad.width(), Pixels(100, 0.5, dpi));
    EXPECT_EQ(cad.PageMmToPixels(100), Pixels(100, 0.5, dpi));
}

// The busy flag is up while the control is being resized by a zoom or page change, so a
// repaint cannot nest inside them, and down again afterwards.
TEST(CadPage, BusyDuringZoomAndPageChanges)
{
    struct TResizeSpy : QObject
    {
        TMyCAD *Cad = nullptr;
        int Resizes = 0;
        int BusyResizes = 0;
        bool eventFilter(QObject *, QEvent *e) override
        {
            if (e->type() == QEvent::Resize) {
                ++Resizes;
                BusyResizes += Cad->IsBusy() ? 1 : 0;
            }
            return false;
        }
    } spy;
    // A child of a shown window: its resizes are delivered at once.
    QWidget window;
    auto &cad = *new TMyCAD(&window);
    spy.Cad = &cad;
    window.show();
    cad.installEventFilter(&spy);
    cad.SetZoom(1.5);
    cad.SetPageStyle(TPageStyle::A5);
    EXPECT_EQ(spy.Resizes, 2);
    EXPECT_EQ(spy.BusyResizes, 2);
    EXPECT_FALSE(cad.IsBusy());
    cad.SetPageWidth(99);
    EXPECT_EQ(spy.Resizes, 3);
    EXPECT_EQ(spy.BusyResizes, 2);
}

TEST(CadPage, ReportedPointsFollowXYMode)
{
    TMyCAD cad;
    cad.resize(200, 100);
    const struct
    {
        TXYMode Mode;
        TPoint Expected;
    } rows[] = {{TXYMode::Mode0, {30, 10}},
                {TXYMode::Mode1, {30, 90}},
                {TXYMode::Mode2, {170, 90}},
                {TXYMode::Mode3, {170, 10}}};
    for (const auto &r : rows) {
        cad.SetXYMode(r.Mode);
        EXPECT_EQ(cad.ReportPoint(30, 10), r.Expected) << int(r.Mode);
    }
    // Labels, when attached, show a reported position and a readout as given.
    cad.UpdateLabelXY(3, 4);
    QLabel xy;
    QLabel value;
    cad.SetLabelXY(&xy);
    cad.SetLabelValue(&value);
    cad.UpdateLabelXY(-12, 340);
    cad.UpdateLabelValue(QStringLiteral("    12.70 mm"));
    EXPECT_EQ(xy.text(), QStringLiteral("-12, 340"));
    EXPECT_EQ(value.text(), QStringLiteral("    12.70 mm"));
    // The host view that shapes mirror with.
    TShapeHost &host = cad;
    EXPECT_EQ(host.ControlWidth(), 200);
    EXPECT_EQ(host.ControlHeight(), 100);
    EXPECT_EQ(host.ScreenPixelsPerInch(), cad.logicalDpiX());
}
