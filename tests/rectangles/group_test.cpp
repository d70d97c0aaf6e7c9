// SPDX-License-Identifier: MIT
// Groups and combined shapes: nothing of their own on the canvas but the info text, and hit
// inside their box or on any member.
#include "shapes/testhost.h"

#include <tessal/shapes/rectangle.h>

#include <gtest/gtest.h>

namespace tessal::test {
namespace {

// A member whose hit test reaches beyond the group's box, as a line's tolerance band does.
class TProbe : public TMyShape
{
public:
    using TMyShape::TMyShape;
    TRect HitArea;
    int Asked = 0;
    bool IsClickedMe(TCanvas &, TPoint p) override
    {
        ++Asked;
        return HitArea.Contains(p);
    }
};

struct TGroupFixture
{
    TTestHost Host;
    TProbe *Probe = nullptr;
    std::unique_ptr<TMyGroup> Group;

    explicit TGroupFixture(bool combine)
        : Group(combine ? std::make_unique<TMyCombine>(&Host) : std::make_unique<TMyGroup>(&Host))
    {
        Host.HostBrush.Color = clRed;
        auto member = std::make_unique<TMyRectangle>(&Host);
        member->AddPointByMouse({20, 20});
        member->AddPointByMouse({60, 50});
        Host.Add(std::move(member));
        Probe = static_cast<TProbe *>(Host.Add(std::make_unique<TProbe>(&Host)));
        Probe->Points() = {{80, 40}, {120, 80}};
        Probe->HitArea = TRect(78, 38, 123, 83);
        // The group's corners are the members' common box, 20,20 .. 120,80.
        Group->AddPointByMouse({20, 20});
        Group->AddPointByMouse({120, 80});
        Group->ChildShapes() = {0, 1, 7}; // 7 names no shape: skipped
    }
};

// Plain groups and combined shapes alike: nothing of their own on the canvas but the info
// text; hit inside their box or on any member, and never through themselves.
TEST(Group, DrawsOnlyItsInfoAndIsHitInsideItsBoxOrOnAMember)
{
    for (bool combine : {false, true}) {
        SCOPED_TRACE(combine);
        TGroupFixture f(combine);
        EXPECT_TRUE(AllWhite(Painted(*f.Group)));
        f.Group->SetTextPoint({70, 100});
        f.Group->SetInfo("G");
        const QImage image = Painted(*f.Group);
        EXPECT_FALSE(AllWhite(image, QRect(55, 90, 30, 20)));
        EXPECT_TRUE(AllWhite(image, QRect(0, 0, 200, 85)));

        TCanvas &canvas = *f.Host.ScreenCanvas();
        EXPECT_TRUE(f.Group->IsClickedMe(canvas, {70, 70})); // box, between the members
        EXPECT_TRUE(f.Group->IsClickedMe(canvas, {30, 30}));
        // Outside the box but within the probe member's reach.
        EXPECT_TRUE(f.Group->IsClickedMe(canvas, {121, 81}));
        EXPECT_GT(f.Probe->Asked, 0);
        EXPECT_FALSE(f.Group->IsClickedMe(canvas, {124, 81}));
        EXPECT_FALSE(f.Group->IsClickedMe(canvas, {10, 10}));
        f.Host.Add(std::unique_ptr<TMyShape>(f.Group.release()));
        TMyShape *group = f.Host.Shapes.back().get();
        group->ChildShapes() = {2, 0};
        EXPECT_FALSE(group->IsClickedMe(canvas, {150, 150}));
    }
}

} // namespace
} // namespace tessal::test
