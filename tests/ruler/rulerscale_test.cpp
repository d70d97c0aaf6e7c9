// SPDX-License-Identifier: MIT
// Tick steps, positions and labels at several units and zooms, computed by hand.
#include <tessal/ruler/rulerscale.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string>

using namespace tessal;

namespace {

// The ticks of a scale when labels need a fixed 40 pixels and minor ticks 4.
std::vector<TRulerTick> Ticks(TUnits unit, double zoom, int origin, bool reversed, int from, int to,
                              TRulerSteps *steps = nullptr)
{
    const TRulerScale scale{PixelsPerUnit(unit, 96) * zoom, origin, reversed};
    const TRulerSteps s = ChooseRulerSteps(
        scale.PixelsPerUnit, [](double) { return 40.0; }, 4);
    if (steps)
        *steps = s;
    return RulerTicks(scale, s, from, to);
}

// The first count ticks as text: a minor tick is its position, a medium one its position and
// "-", a major one its position, "|" and its label.
std::string Describe(const std::vector<TRulerTick> &ticks, std::size_t count)
{
    std::string out;
    for (std::size_t i = 0; i < std::min(count, ticks.size()); ++i) {
        const TRulerTick &t = ticks[i];
        out += (i ? " " : "") + std::to_string(t.Pos);
        if (t.Level == TRulerTick::Medium)
            out += "-";
        else if (t.Level == TRulerTick::Major)
            out += "|" + t.Label.toStdString();
        else if (!t.Label.isEmpty())
            out += "?" + t.Label.toStdString();
    }
    return out;
}

} // namespace

TEST(RulerScale, StepsAreTheSmallestOneTwoFiveThatFitTheLabels)
{
    // Unit, zoom, major step and divisions. Pixels per unit and the first step reaching 40
    // pixels, worked out by hand:
    const std::tuple<TUnits, double, double, int> cases[] = {
        {TUnits::pixel, 1, 50, 10},    // 1 px/unit: 20 < 40 <= 50; 50/10 = 5 px
        {TUnits::pixel, 0.1, 500, 10}, // 0.1: 200 -> 20 px, 500 -> 50; tenths 5 px
        {TUnits::mm, 1, 20, 10},       // 3.78: 10 mm = 37.8 < 40, 20 mm = 75.6; 2 mm = 7.6
        {TUnits::mm, 4, 5, 10},        // 15.1: 2 mm = 30.2, 5 mm = 75.6; 0.5 mm = 7.6
        {TUnits::inch, 0.25, 2, 10},   // 24: 1 in = 24, 2 in = 48; 0.2 in = 4.8
        {TUnits::cm, 2, 1, 10},        // 75.6: 0.5 cm = 37.8, 1 cm = 75.6; 0.1 cm = 7.6
        {TUnits::m, 8, 0.002, 10},     // 30236: 1 mm = 30.2, 2 mm = 60.5; 0.2 mm = 6.0
    };
    for (const auto &[unit, zoom, major, divisions] : cases) {
        SCOPED_TRACE(::testing::Message() << "unit " << int(unit) << " at zoom " << zoom);
        TRulerSteps steps;
        Ticks(unit, zoom, 0, false, 0, 10, &steps);
        EXPECT_NEAR(steps.Major, major, major * 1e-9);
        EXPECT_EQ(steps.Divisions, divisions);
        EXPECT_NEAR(steps.Minor, major / divisions, major * 1e-9);
        EXPECT_EQ(steps.Medium, divisions % 2 == 0 && divisions >= 4);
    }
    // A label that needs more room at larger steps pushes the step up.
    // 50 px < 50 / 2 + 30; 100 px >= 100 / 2 + 30.
    const TRulerSteps wide = ChooseRulerSteps(
        1, [](double step) { return step / 2 + 30; }, 4);
    EXPECT_DOUBLE_EQ(wide.Major, 100);
    // Only divisions at least minMinorPixels apart are used: a 100 step at 1 px/unit splits
    // into tenths (10 px) only when 10 px suffice, else fifths (20 px), else halves.
    const auto hundred = [](double) { return 100.0; };
    for (const auto &[minor, divisions] : {std::pair(10, 10), {15, 5}, {30, 2}, {60, 1}})
        EXPECT_EQ(ChooseRulerSteps(1, hundred, minor).Divisions, divisions) << minor;
    EXPECT_FALSE(ChooseRulerSteps(1, hundred, 15).Medium);
}

TEST(RulerScale, TickPositionsRoundToTheNearestPixel)
{
    // Pixels at zoom 1 from 0: every 5 px, majors every 50, mediums halfway.
    const auto pixels = Ticks(TUnits::pixel, 1, 0, false, 0, 101);
    EXPECT_EQ(Describe(pixels, 11), "0|0 5 10 15 20 25- 30 35 40 45 50|50");
    EXPECT_EQ(pixels.size(), 21u);
    // Millimetres with the page starting at ruler pixel 7: 2 mm = 7.559 px.
    // 7 + 7.559 = 14.56 -> 15; 7 + 15.118 = 22.12 -> 22; 10 mm: 44.80 -> 45 (medium);
    // 20 mm: 82.59 -> 83.
    const auto mm = Ticks(TUnits::mm, 1, 7, false, 0, 90);
    EXPECT_EQ(Describe(mm, 11), "7|0 15 22 30 37 45- 52 60 67 75 83|20");
    // Ticks before the page carry negative values: -2 mm at 7 - 7.559 = -0.56 -> -1 is
    // outside [0, 90).
    EXPECT_EQ(mm.front().Value, 0);
    // Inches at a quarter zoom: 0.2 in = 4.8 px: 0, 4.8 -> 5, 9.6 -> 10, 14.4 -> 14,
    // 19.2 -> 19, 24 (1 in, medium), ..., 48 (2 in, major).
    EXPECT_EQ(Describe(Ticks(TUnits::inch, 0.25, 0, false, 0, 50), 11),
              "0|0 5 10 14 19 24- 29 34 38 43 48|2");
    // Metres at zoom 8 label in thousandths: 2 mm = 60.47 px, 4 mm = 120.94 -> 121.
    const auto metres = Ticks(TUnits::m, 8, 0, false, 0, 122);
    std::vector<TRulerTick> majors;
    std::copy_if(metres.begin(), metres.end(), std::back_inserter(majors),
                 [](const TRulerTick &t) { return t.Level == TRulerTick::Major; });
    EXPECT_EQ(Describe(majors, 9), "0|0.000 60|0.002 121|0.004");
}

TEST(RulerScale, ReversedAndNegativeScales)
{
    // Values growing to the left from pixel 100 (a mirrored axis): listed by position.
    EXPECT_EQ(Describe(Ticks(TUnits::pixel, 1, 100, true, 0, 101), 21),
              "0|100 5 10 15 20 25- 30 35 40 45 50|50 55 60 65 70 75- 80 85 90 95 100|0");
    // Left of the origin the values are negative.
    const auto negative = Ticks(TUnits::pixel, 1, 60, false, 0, 70);
    EXPECT_EQ(std::pair(negative.front().Pos, negative.front().Value), std::pair(0, -60.0));
    EXPECT_EQ(Describe(negative, 3), "0 5 10|-50");
}

TEST(RulerScale, LabelsAndDegenerateScales)
{
    const std::tuple<double, double, const char *> labels[] = {
        {-1e-12, 1, "0"}, {-0.001, 0.01, "0.00"}, {0.30000000000000004, 0.1, "0.3"},
        {-20, 10, "-20"}, {0.05, 0.05, "0.05"},   {2.5, 0.5, "2.5"}};
    for (const auto &[value, step, text] : labels)
        EXPECT_EQ(RulerLabel(value, step).toStdString(), text) << value << " by " << step;
    for (double ppu : {0.0, -1.0, std::nan(""), HUGE_VAL}) {
        const TRulerSteps s = ChooseRulerSteps(
            ppu, [](double) { return 40.0; }, 4);
        EXPECT_EQ(s.Major, 0);
        EXPECT_TRUE(RulerTicks({ppu, 0, false}, s, 0, 100).empty());
    }
}
