// SPDX-License-Identifier: MIT
// Measuring lines: tick marks by style, spacing and zoom, and the label.
#include "shapes/testhost.h"

#include <tessal/shapes/ruleline.h>

#include <gtest/gtest.h>

namespace tessal::test {
namespace {

std::unique_ptr<TMyRuleLine> Ruler(TClassHost &host, TMyPoint a, TMyPoint b, TTickStyle style)
{
    auto rule = std::make_unique<TMyRuleLine>(&host);
    rule->Points() = {a, b};
    rule->SetTickStyle(style);
    rule->SetCaptionShow(false);
    return rule;
}

// Runs of ink along row y (or column x when vertical): their start coordinates.
std::vector<int> InkRuns(const QImage &image, int line, bool vertical)
{
    std::vector<int> starts;
    bool inside = false;
    for (int i = 0; i < (vertical ? image.height() : image.width()); ++i) {
        const bool ink = vertical ? Inked(image, line, i) : Inked(image, i, line);
        if (ink && !inside)
            starts.push_back(i);
        inside = ink;
    }
    return starts;
}

std::vector<int> Expected(int first, int step, int count)
{
    std::vector<int> v;
    for (int i = 0; i < count; ++i)
        v.push_back(first + step * i);
    return v;
}

// A 100-pixel ruler has ticks at 0, 10, ..., 100 (eleven), the ones at 0, 50 and 100 long.
// Short ticks reach 4 pixels from the line and long ones 8, on the sides the style asks for.
TEST(RuleLineTicks, CountAndSpacingBySideAtTwoZooms)
{
    for (double z : {1.0, 2.0}) {
        const int y = int(100 * z), x0 = int(20 * z), step = int(10 * z);
        // {style, ticks above, ticks below}
        const std::tuple<TTickStyle, bool, bool> cases[] = {{TTickStyle::tsBoth, true, true},
                                                            {TTickStyle::tsTop, true, false},
                                                            {TTickStyle::tsBottom, false, true},
                                                            {TTickStyle::tsNone, false, false}};
        for (auto [style, above, below] : cases) {
            TClassHost host;
            host.ZoomValue = z;
            auto rule = Ruler(host, {20, 100}, {120, 100}, style);
            const QImage image = Painted(*rule, 400, 400);
            const int s = int(style);
            // Rows 3 off the line cross every tick, rows 6 off only the long ones.
            for (int off : {-6, -3, 3, 6}) {
                const bool side = off < 0 ? above : below;
                const auto ticks =
                    std::abs(off) == 3 ? Expected(x0, step, 11) : Expected(x0, 5 * step, 3);
                EXPECT_EQ(InkRuns(image, y + off, false), side ? ticks : std::vector<int>{})
                    << s << " " << off;
            }
            EXPECT_TRUE(InkRuns(image, y - 9, false).empty()) << s;
            EXPECT_EQ(InkRuns(image, y, false), Expected(x0, 0, 1)) << s; // the line itself
        }
    }
}

TEST(RuleLineTicks, LastTickOnlyWhereAWholeSpacingEndsAndVerticalTopIsRight)
{
    TClassHost host;
    auto shorter = Ruler(host, {20, 100}, {115, 100}, TTickStyle::tsBoth);
    EXPECT_EQ(shorter->Ticks().size(), 10u);
    // Ticks count from point 0 whichever way the line runs.
    auto backwards = Ruler(host, {115, 100}, {20, 100}, TTickStyle::tsTop);
    EXPECT_EQ(InkRuns(Painted(*backwards), 97, false), Expected(25, 10, 10));

    auto vertical = Ruler(host, {100, 20}, {100, 120}, TTickStyle::tsTop);
    const QImage image = Painted(*vertical);
    EXPECT_EQ(InkRuns(image, 103, true), Expected(20, 10, 11));
    EXPECT_TRUE(InkRuns(image, 97, true).empty());
    // A slanted ruler still gets its ticks by length: 3-4-5 sides, 50 long.
    auto slanted = Ruler(host, {0, 0}, {30, 40}, TTickStyle::tsBoth);
    EXPECT_EQ(slanted->Ticks().size(), 6u);
    EXPECT_TRUE(slanted->Ticks()[5].Long);
}

TEST(RuleLineLabel, LengthOrUserInfoBesideTheMiddleOnTheTopSide)
{
    TClassHost host; // 96 pixels per inch, millimetres
    auto rule = Ruler(host, {20, 100}, {120, 100}, TTickStyle::tsNone);
    EXPECT_EQ(rule->LabelText(), "26.46 mm");
    // Read from the stored points, so that no zoom changes it: 100.4 px is 26.56 mm.
    rule->Points()[1].X = 120.4f;
    for (double zoom : {1.0, 1.5, 2.0, 3.0, 0.5}) {
        host.ZoomValue = zoom;
        EXPECT_EQ(rule->LabelText(), "26.56 mm") << zoom;
    }
    host.ZoomValue = 1;
    rule->Points()[1].X = 120;
    EXPECT_TRUE(InkRuns(Painted(*rule, 400, 400), 90, false).empty()); // CaptionShow off
    rule->SetCaptionShow(true);
    QImage image = Painted(*rule, 400, 400);
    QRect above = InkBounds(image.copy(0, 0, 400, 99));
    ASSERT_FALSE(above.isNull());
    EXPECT_LE(above.bottom(), 100 - 8 - 1);
    EXPECT_NEAR(above.center().x(), 70, 3);
    EXPECT_TRUE(InkBounds(image.copy(0, 101, 400, 299)).isNull());

    rule->SetShowUserInfo(true);
    rule->SetUserInfo("W");
    EXPECT_EQ(rule->LabelText(), "W");
    image = Painted(*rule, 400, 400);
    const QRect user = InkBounds(image.copy(0, 0, 400, 99));
    EXPECT_LT(user.width(), above.width());
    EXPECT_NEAR(user.center().x(), 70, 3);
}

} // namespace
} // namespace tessal::test
