// SPDX-License-Identifier: MIT
// The spatial index against a plain scan of the shape list, on random drawings that change.
#include "documenthelpers.h"
#include "rendertestshapes.h"

#include <tessal/shapes/line.h>
#include <tessal/shapes/link.h>
#include <tessal/surface/spatialindex_p.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

using namespace tessal;
using namespace tessal::test;

namespace {

class TRandomDrawing
{
public:
    explicit TRandomDrawing(std::uint32_t seed)
        : m_Rng(seed)
    {
        m_Cad.SetPageStyle(TPageStyle::A3);
        m_Cad.NewLayer(QStringLiteral("Hidden"), false);
        m_Cad.NewLayer(QStringLiteral("Shown"), true);
    }

    TMyCAD &Cad() { return m_Cad; }
    std::mt19937 &Rng() { return m_Rng; }

    TFillShape *AddRandomShape()
    {
        std::uniform_real_distribution<float> pos(-100, 1400);
        std::uniform_real_distribution<float> size(0, 60);
        const float x = pos(m_Rng);
        const float y = pos(m_Rng);
        // Some shapes are large, so that query rectangles lie inside them with no vertex.
        const float scale = m_Rng() % 20 == 0 ? 12.0f : 1.0f;
        auto *shape =
            AddFill(m_Cad, {x, y, x + size(m_Rng) * scale, y + size(m_Rng) * scale}, clRed);
        shape->SetLayerId(m_Cad.GetLayerIdByNo(std::int32_t(m_Rng() % 3)));
        if (m_Rng() % 7 == 0)
            shape->SetInfo(QStringLiteral("text %1").arg(m_Rng() % 1000));
        if (m_Rng() % 9 == 0)
            shape->LinkPoints() = {{x - 15, y - 15}};
        return shape;
    }

    // Shapes whose extents follow the zoom: texts, info texts, arcs, lines with heads, and a
    // group of them.
    void AddOtherShapes()
    {
        std::uniform_real_distribution<float> pos(0, 1200);
        const TDrawTool tools[] = {TDrawTool::SpText, TDrawTool::SpElliArc, TDrawTool::SpLine,
                                   TDrawTool::SpRectangle};
        for (int i = 0; i < 120; ++i) {
            const float x = pos(m_Rng), y = pos(m_Rng);
            const TMyPoint points[] = {{x, y}, {x + 90, y + 20}, {x + 30, y + 60}};
            const std::int32_t id = m_Cad.AddShapeByCode(tools[i % 4], {}, points, i % 3 * 20.0,
                                                         QStringLiteral("text %1").arg(i));
            if (auto *line = dynamic_cast<TMyLine *>(m_Cad.GetShapeByID(id)))
                line->SetArrowStyle(i % 8 < 4 ? TArrowStyle::ADouble : TArrowStyle::ANone);
        }
        GroupLastTwo();
    }

    // Makes the last two shapes members of a new group shape placed elsewhere, so that the
    // group's extent must include its members.
    void GroupLastTwo()
    {
        const std::int32_t n = m_Cad.GetShapesCount();
        TFillShape *group = AddRandomShape();
        for (std::int32_t no : {n - 2, n - 1}) {
            group->ChildShapes().push_back(no);
            m_Cad.GetShapeByNo(no)->SetParentNo(n);
        }
        m_Cad.ShapesRenumbered();
    }

    TRect RandomRect()
    {
        std::uniform_int_distribution<int> pos(-50, m_Cad.width());
        std::uniform_int_distribution<int> size(1, 300);
        const int l = pos(m_Rng);
        const int t = pos(m_Rng);
        return {l, t, l + size(m_Rng), t + size(m_Rng)};
    }

    // Every query agrees with the plain scan; answers the number of shapes found in all.
    int ExpectAgreement(int queries)
    {
        std::vector<TRect> rects;
        for (int q = 0; q < queries; ++q)
            rects.push_back(RandomRect());
        std::vector<std::vector<std::int32_t>> indexed;
        for (const TRect &r : rects)
            indexed.push_back(m_Cad.ShapesInRect(r));
        const std::vector<std::vector<std::int32_t>> linear = m_Cad.ShapesInRectsLinear(rects);
        int found = 0;
        for (std::size_t q = 0; q < rects.size(); ++q) {
            const TRect &r = rects[q];
            EXPECT_EQ(indexed[q], linear[q])
                << r.Left << "," << r.Top << "," << r.Right << "," << r.Bottom;
            found += int(linear[q].size());
        }
        return found;
    }

private:
    TMyCAD m_Cad;
    std::mt19937 m_Rng;
};

} // namespace

// On random drawings with groups, at zooms other than 1, the index answers what the scan
// answers; moves reported one by one update single entries, appended shapes join without a
// rebuild, full invalidations rebuild. Each step is checked against the scan.
TEST(ShapeIndex, AnswersWhatTheScanAnswersThroughReportedChanges)
{
    for (const std::uint32_t seed : {1u, 4242u}) {
        TRandomDrawing drawing(seed);
        for (int i = 0; i < 1500; ++i) {
            drawing.AddRandomShape();
            if (i % 50 == 49)
                drawing.GroupLastTwo();
        }
        drawing.AddOtherShapes();
        // The queries must hit something, or agreement would prove nothing.
        EXPECT_GT(drawing.ExpectAgreement(60), 200);
        // Zooms near the tree's keep it and work out again what follows the zoom (texts,
        // arcs, arrow heads); those far from it rebuild it.
        for (const double zoom : {2.5, 0.63, 0.2, 0.7, 1.7, 0.45, 5.0}) {
            drawing.Cad().SetZoom(seed % 2 ? zoom : 1 / zoom);
            drawing.ExpectAgreement(20);
        }
        EXPECT_GT(drawing.ExpectAgreement(40), 40);
    }
    TRandomDrawing drawing(99);
    TMyCAD &cad = drawing.Cad();
    for (int i = 0; i < 800; ++i)
        drawing.AddRandomShape();
    drawing.GroupLastTwo();
    TMyShape *member = cad.GetShapeByNo(cad.GetShapesCount() - 2);
    ASSERT_NE(member->ParentNo(), -1);
    // The group shows, so that what its member does is seen.
    cad.GetShapeByNo(member->ParentNo())->SetLayerId(cad.GetLayerIdByName(QStringLiteral("Shown")));
    drawing.ExpectAgreement(20);
    std::mt19937 &rng = drawing.Rng();
    std::uniform_real_distribution<double> step(-400, 400);
    for (int round = 0; round < 6; ++round) {
        for (int k = 0; k < 40; ++k) {
            TMyShape *shape = cad.GetShapeByNo(std::int32_t(rng() % cad.GetShapesCount()));
            shape->DragChangeValuedxdy(step(rng), step(rng));
            cad.ShapeGeometryChanged(shape);
        }
        // A member moved: its group's extent grows with it.
        member->DragChangeValuedxdy(step(rng), step(rng));
        cad.ShapeGeometryChanged(member);
        EXPECT_TRUE(IndexAgreesWithTheScan(
            cad, cad.ShapeScreenRect(cad.GetShapeByNo(member->ParentNo())), 8, {3}));
        for (int k = 0; k < 10; ++k)
            drawing.AddRandomShape();
        drawing.ExpectAgreement(25);
    }
    // A moved shape found where it went and no longer where it was.
    TMyShape *shape = cad.GetShapeByNo(5);
    shape->SetLayerId(cad.GetLayerIdByName(QStringLiteral("Shown")));
    shape->Points() = {{100, 100}, {110, 100}, {110, 110}, {100, 110}};
    shape->SetInfo(QString());
    shape->LinkPoints().clear();
    cad.ShapeGeometryChanged(shape);
    const auto has = [&](const TRect &r) {
        const std::vector<std::int32_t> found = cad.ShapesInRect(r);
        return std::find(found.begin(), found.end(), 5) != found.end();
    };
    EXPECT_TRUE(has(TRect(104, 104, 106, 106)));
    shape->DragChangeValuedxdy(500, 0);
    cad.ShapeGeometryChanged(shape);
    EXPECT_FALSE(has(TRect(104, 104, 106, 106)));
    EXPECT_TRUE(has(TRect(604, 104, 606, 106)));
    // A pen change goes through the shape's setter, which invalidates the surface.
    shape->SetPen(TPen{clRed, TPenMode::pmCopy, TPenStyle::psSolid, 40});
    EXPECT_TRUE(has(TRect(520, 104, 530, 106)));
    drawing.ExpectAgreement(20);
    // A turn through a member's setter turns its whole group about the group's centre.
    const std::int32_t group = member->ParentNo();
    const TRect before = cad.ShapeScreenRect(cad.GetShapeByNo(group));
    member->SetAngle(1.2f);
    const TRect after = cad.ShapeScreenRect(cad.GetShapeByNo(group));
    ASSERT_NE(before, after);
    EXPECT_TRUE(IndexAgreesWithTheScan(cad, before.United(after), 4, {3}));
    // The layer's visibility is read at query time.
    cad.Invalidate();
    drawing.ExpectAgreement(10);
}

// A repaint draws exactly the shapes of the scan, in list order.
TEST(ShapeIndex, DrawListOfARepaintIsTheScan)
{
    TRandomDrawing drawing(5);
    TMyCAD &cad = drawing.Cad();
    for (int i = 0; i < 400; ++i)
        drawing.AddRandomShape();
    QImage image(1, 1, QImage::Format_RGB32);
    TCanvas canvas(&image);
    for (int q = 0; q < 20; ++q) {
        const TRect r = drawing.RandomRect();
        cad.DrawAllShape(canvas, r);
        EXPECT_EQ(cad.DrawList(), cad.ShapesInRectLinear(r));
        EXPECT_TRUE(std::is_sorted(cad.DrawList().begin(), cad.DrawList().end()));
    }
    EXPECT_TRUE(cad.ShapesInRect(TRect(10, 10, 10, 50)).empty()); // an empty rectangle
}

// The commands that move, reorder, regroup, remove or bring back shapes report it
// themselves: through a random run of them the index answers what the scan answers, with no
// report from outside. A plain invalidation changes no shape and keeps the index, so a shape
// moved behind the surface's back stays where the index last saw it.
TEST(ShapeIndex, CommandsReportTheirChanges)
{
    TMyCAD cad;
    cad.SetPageStyle(TPageStyle::A3);
    std::mt19937 rng(31);
    std::uniform_real_distribution<float> pos(0, 900);
    std::uniform_real_distribution<float> len(5, 120);
    const TDrawTool tools[] = {TDrawTool::SpRectangle, TDrawTool::SpEllipse, TDrawTool::SpLine};
    for (int i = 0; i < 120; ++i) {
        const TMyPoint a{pos(rng), pos(rng)};
        const TMyPoint pts[2] = {a, {a.X + len(rng), a.Y + len(rng)}};
        ASSERT_GE(cad.AddShapeByCode(tools[i % 3], QString(), pts, 0, QString()), 0);
    }
    const auto agree = [&](int step) {
        const TRect all(0, 0, cad.width(), cad.height());
        ASSERT_EQ(cad.ShapesInRect(all), cad.ShapesInRectLinear(all)) << "step " << step;
        std::uniform_int_distribution<int> at(0, cad.width());
        for (int q = 0; q < 4; ++q) {
            const int l = at(rng);
            const int t = at(rng);
            const TRect r(l, t, l + 250, t + 250);
            ASSERT_EQ(cad.ShapesInRect(r), cad.ShapesInRectLinear(r)) << "step " << step;
        }
    };
    agree(-1);
    for (int step = 0; step < 90; ++step) {
        const auto pick = [&] {
            return cad.GetShapeByNo(std::int32_t(rng() % cad.GetShapesCount()));
        };
        TMyShape *a = cad.GetRootParentShape(pick());
        TMyShape *b = cad.GetRootParentShape(pick());
        switch (step % 10) {
        case 0:
            cad.BringToFront(a, true);
            break;
        case 1:
            cad.SendToBack(a, true);
            break;
        case 2:
            cad.SwapShape(a, b);
            break;
        case 3:
            cad.FlipHoriz(a);
            break;
        case 4:
            cad.Rotate(a, 0.7f);
            break;
        case 5: // a member taken out of its group, or a whole group
            cad.DeleteShapeById((step % 20 == 5 ? pick() : a)->ShapeId(), true);
            break;
        case 6:
            cad.ClearWorkingShapes();
            cad.AddWorkingShape(a);
            cad.AddWorkingShape(b);
            cad.AlignLeft();
            break;
        case 7: {
            TMyShape *const pair[2] = {a, b};
            cad.GroupShapes(pair, true);
            break;
        }
        case 8:
            if (a->ChildShapes().size() > 0)
                cad.UnGroupShape(a, true);
            break;
        case 9:
            cad.PopFromUndoRedoShapeList();
            break;
        }
        agree(step);
    }
    // A removal changes the extent of shapes that stay: a locked member outlives its group
    // as a shape of its own, and a group that loses a member shrinks (and grows again when
    // the deletion is taken back).
    const auto box = [&](float x) {
        const TMyPoint corners[] = {{x, 950}, {x + 40, 990}};
        return cad.GetShapeByID(cad.AddShapeByCode(TDrawTool::SpRectangle, {}, corners, 0, {}));
    };
    TMyShape *const first[] = {box(100), box(300)};
    TMyShape *const second[] = {box(500), box(700)};
    const std::int32_t firstGroup = cad.GroupShapes(first, false);
    cad.GroupShapes(second, false);
    first[0]->SetLocked(true);
    second[1]->SetPen(TPen{clRed, TPenMode::pmCopy, TPenStyle::psSolid, 30});
    const TRect row(0, 900, 900, 1000);
    ASSERT_EQ(cad.ShapesInRect(row), cad.ShapesInRectLinear(row));
    cad.DeleteShapeById(firstGroup, false);
    cad.DeleteShapeById(second[1]->ShapeId(), true);
    ASSERT_EQ(first[0]->ParentNo(), -1);
    // Taken back, the member comes back into its group, which grows again.
    for (const bool undone : {false, true}) {
        if (undone)
            cad.PopFromUndoRedoShapeList();
        for (const int x : {50, 250, 450, 650, 760})
            EXPECT_EQ(cad.ShapesInRect({x, 900, x + 100, 1000}),
                      cad.ShapesInRectLinear({x, 900, x + 100, 1000}))
                << x << (undone ? " undone" : "");
    }

    // Moved without telling the surface, then only repainted: the index keeps its boxes.
    TMyShape *shape = first[0];
    const TRect before = cad.ShapeScreenRect(shape);
    for (std::int32_t i = 0; i < shape->GetPointsCount(); ++i)
        shape->SetPoint(i, {shape->GetPoint(i).X + 2000, shape->GetPoint(i).Y});
    cad.Invalidate();
    const std::vector<std::int32_t> stale = cad.ShapesInRect(before);
    EXPECT_NE(std::find(stale.begin(), stale.end(), cad.GetShapeNoInMyShapes(shape)), stale.end());
    cad.DocumentChanged();
    EXPECT_EQ(cad.ShapesInRect(before), cad.ShapesInRectLinear(before));
}

// What a press reads from the index: every shape whose painted pixels come within the reach
// of the press, from the top of the drawing down, each once, and no shape far from it; after
// the caller asks for connectors only, just the connectors below. A shape whose classes say
// how far they are hit is reached that far from its hit box, any other one PressReach
// pixels from what it paints. Checked on random extents (small ones, huge ones, unindexed
// ones) through moves, appends, removals that renumber the shapes above them, and enough
// changes that the index builds its press cells afresh, at three zooms and at zooms the
// tree is kept through; the first presses after each are answered without cells. The expected
// answer comes from a plain list of the entries kept beside the index.
TEST(ShapeIndex, PressCandidatesComeFromTheTopAndCoverTheReach)
{
    std::mt19937 rng(77);
    std::uniform_real_distribution<float> pos(0, 2000);
    std::uniform_real_distribution<float> unit(0, 1);
    TMyCAD cad;
    std::vector<std::unique_ptr<TMyShape>> owned; // the index tells entries apart by shape
    const auto randomEntry = [&] {
        TShapeIndex::TEntry e;
        owned.push_back(cad.CreateShapeByName(QStringLiteral("TMyRectangle")));
        e.Shape = owned.back().get();
        const float x = pos(rng), y = pos(rng);
        const float scale = unit(rng) < 0.03f ? 1500 : 60;
        e.Extent.Box = {x, y, x + unit(rng) * scale, y + unit(rng) * scale};
        // A few wide pens, some wider than a repaint's margin takes in.
        e.Extent.Pad = std::int32_t(rng() % 100 == 0 ? 20 + rng() % 300 : rng() % 7);
        e.Extent.Indexed = rng() % 20 != 0;
        e.Connector = rng() % 10 == 0;
        if (rng() % 2) {
            const TMyRect &b = e.Extent.Box;
            const float w = b.Right - b.Left;
            e.Extent.HitBox = {b.Left + w / 8, b.Top, b.Right - w / 4, b.Bottom};
            e.Extent.HitReach = std::int16_t(rng() % 8 == 0 ? 40 : rng() % 3 * 4);
        }
        return e;
    };
    // The control pixels from which a press can take the entry.
    const auto reachOf = [](const TShapeIndex::TEntry &e, double zoom) {
        if (e.Extent.HitReach < 0)
            return e.Extent.ScreenRect(zoom).Inflated(TShapeIndex::PressReach,
                                                      TShapeIndex::PressReach);
        const TShapeExtent hit{e.Extent.HitBox, {}, 0, -1, true};
        return hit.ScreenRect(zoom).Inflated(e.Extent.HitReach, e.Extent.HitReach);
    };
    for (const double zoom : {1.0, 0.37, 3.2}) {
        std::vector<TShapeIndex::TEntry> entries(3000);
        for (auto &e : entries)
            e = randomEntry();
        TShapeIndex index;
        index.Rebuild(entries, zoom);
        std::int64_t seen = 0;
        double shown = zoom;
        const auto check = [&] {
            std::int32_t widest = 0;
            for (const TShapeIndex::TEntry &e : entries)
                widest = std::max(widest, e.Extent.Pad);
            ASSERT_EQ(index.LargestPad(TShapeIndex::PadCounted), widest);
            ASSERT_EQ(index.LargestPad(100), std::min(widest, 100));
            std::uniform_int_distribution<int> at(-20, int(2000 * shown) + 20);
            for (int q = 0; q < 150; ++q) {
                const TPoint p(at(rng), at(rng));
                const std::int32_t switchAfter = std::int32_t(rng() % 4);
                TPressCursor cursor;
                index.BeginPress(p, cursor);
                std::vector<TIndexCandidate> got;
                TIndexCandidate c;
                while (cursor.Next(c)) {
                    got.push_back(c);
                    if (std::int32_t(got.size()) == switchAfter)
                        cursor.ConnectorsOnly();
                }
                ASSERT_TRUE(std::is_sorted(got.begin(), got.end(),
                                           [](auto a, auto b) { return a.No > b.No; }))
                    << p.X << "," << p.Y;
                ASSERT_EQ(std::adjacent_find(got.begin(), got.end()), got.end());
                // The index may answer a little more than a press reaches (a pixel to
                // spare), never a shape three pixels beyond it.
                for (std::size_t k = 0; k < got.size(); ++k) {
                    const TShapeIndex::TEntry &e = entries[std::size_t(got[k].No)];
                    ASSERT_TRUE(e.Extent.Indexed);
                    ASSERT_EQ(got[k].Connector, e.Connector);
                    ASSERT_TRUE(reachOf(e, shown).Inflated(3, 3).Contains(p));
                    ASSERT_TRUE(std::int32_t(k) < switchAfter || switchAfter == 0 ||
                                got[k].Connector);
                }
                // Everything a press reaches is answered; below the switch, the connectors.
                const bool switched = switchAfter > 0 && std::int32_t(got.size()) >= switchAfter;
                const std::int32_t below = switched ? got[std::size_t(switchAfter - 1)].No : -1;
                for (std::int32_t no = 0; no < std::int32_t(entries.size()); ++no) {
                    const TShapeIndex::TEntry &e = entries[std::size_t(no)];
                    if (!e.Extent.Indexed || !reachOf(e, shown).Contains(p) ||
                        (no < below && !e.Connector))
                        continue;
                    ASSERT_NE(std::find(got.begin(), got.end(), TIndexCandidate{no, e.Connector}),
                              got.end())
                        << no << " at " << p.X << "," << p.Y << " shown " << shown;
                }
                seen += std::int64_t(got.size());
            }
        };
        check();
        // Moves, appends and removals are taken in one by one, until the press cells are
        // rebuilt.
        for (int round = 0; round < 4; ++round) {
            for (int k = 0; k < 600; ++k) {
                const auto no = std::size_t(rng() % entries.size());
                entries[no].Extent = randomEntry().Extent;
                index.Replace(std::int32_t(no), entries[no].Extent);
            }
            for (int k = 0; k < 50; ++k) {
                entries.push_back(randomEntry());
                index.Append(entries.back());
            }
            std::vector<TMyShape *> removed;
            for (int k = 0; k < 40; ++k) {
                // The widest first, so that the widest pad left is another one.
                const auto at = k == 0 ? std::max_element(entries.begin(), entries.end(),
                                                          [](const auto &a, const auto &b) {
                                                              return a.Extent.Pad < b.Extent.Pad;
                                                          })
                                       : entries.begin() + std::ptrdiff_t(rng() % entries.size());
                removed.push_back(const_cast<TMyShape *>(at->Shape));
                entries.erase(at);
            }
            index.Remove(removed);
            // Sent to the back, and places exchanged.
            for (int k = 0; k < 30; ++k) {
                const auto no = std::ptrdiff_t(rng() % entries.size());
                ASSERT_TRUE(index.MoveToBottom(entries[std::size_t(no)].Shape));
                std::rotate(entries.begin(), entries.begin() + no, entries.begin() + no + 1);
                const auto a = std::int32_t(rng() % entries.size());
                const auto b = std::int32_t(rng() % entries.size());
                if (a != b) {
                    index.Swap(a, b);
                    std::swap(entries[std::size_t(a)], entries[std::size_t(b)]);
                }
            }
            // Every other round the zoom changes and the tree stays: presses then meet pads
            // that lack what the smaller zoom asks of them, and boxes wider than needed.
            if (round % 2) {
                shown = zoom * (round == 1 ? 0.55 : 1.7);
                ASSERT_TRUE(index.KeepTreeAtZoom(shown));
            }
            ASSERT_FALSE(index.IsStale());
            ASSERT_EQ(index.Count(), std::int32_t(entries.size()));
            for (std::int32_t no = 0; no < index.Count(); no += 7) {
                ASSERT_EQ(index.Entry(no).Shape, entries[std::size_t(no)].Shape) << no;
                ASSERT_EQ(index.NumberOf(entries[std::size_t(no)].Shape), no);
            }
            check();
        }
        // Once the room below is used up, a shape sent to the back is left where it is.
        std::int32_t sent = 0;
        while (index.MoveToBottom(entries.back().Shape)) {
            std::rotate(entries.begin(), entries.end() - 1, entries.end());
            ++sent;
        }
        EXPECT_EQ(sent, TShapeIndex::BottomRoom - 4 * 30);
        check();
        // A shape the index never held is passed over; once more than a quarter of the
        // slots are empty, the index asks to be made again.
        owned.push_back(cad.CreateShapeByName(QStringLiteral("TMyLine")));
        TMyShape *const stranger[] = {owned.back().get()};
        index.Remove(stranger);
        EXPECT_EQ(index.Count(), std::int32_t(entries.size()));
        std::vector<TMyShape *> quarter;
        for (std::size_t k = 0; k < entries.size() / 4; ++k)
            quarter.push_back(const_cast<TMyShape *>(entries[k].Shape));
        index.Remove(quarter);
        EXPECT_TRUE(index.IsStale());
        EXPECT_GT(seen, 2000) << "the presses must meet shapes for the check to mean anything";
    }
}

// A press selects what the exact hit tests of the shape classes choose, the topmost shape
// hit or a connector box below it: random presses around shapes of every drawing tool,
// turned and with wide pens, on a connector box, at zooms above and below one. The presses
// fall around the shapes as much as on them, so an index that stops short of where a class
// can be hit (an arc's bulge, a line's band) fails here.
TEST(ShapeIndex, PressSelectsWhatTheHitTestsChoose)
{
    const TDrawTool tools[] = {
        TDrawTool::SpLine,       TDrawTool::SpRuleLine,     TDrawTool::SpLinkLine,
        TDrawTool::SpPolyLine,   TDrawTool::SpFreeLine,     TDrawTool::SpBLine,
        TDrawTool::SpRectangle,  TDrawTool::SpEllipse,      TDrawTool::SpText,
        TDrawTool::SpLinkPoint,  TDrawTool::SpLineLinkLine, TDrawTool::SpPolygon,
        TDrawTool::SpPolyBezier, TDrawTool::SpElliArc};
    std::mt19937 rng(23);
    std::uniform_real_distribution<float> at(150, 350);
    QImage image(1, 1, QImage::Format_RGB32);
    TCanvas canvas(&image);
    std::int64_t hits = 0;
    for (const TDrawTool tool : tools) {
        TMyCAD cad;
        cad.SetPageStyle(TPageStyle::A3);
        const TMyPoint box[] = {{at(rng), at(rng)}, {at(rng), at(rng)}};
        cad.AddShapeByCode(TDrawTool::SpLineLinkLine, {}, box, 0, {});
        for (int k = 0; k < 3; ++k) {
            std::size_t n = 2 + rng() % 4;
            if (tool == TDrawTool::SpElliArc)
                n = 3;
            else if (tool == TDrawTool::SpPolygon)
                n += 1;
            else if (tool == TDrawTool::SpPolyBezier)
                n = rng() % 2 ? 4 : 7;
            else if (tool >= TDrawTool::SpRectangle && tool <= TDrawTool::SpText)
                n = n == 3 ? 2 : 4;
            std::vector<TMyPoint> points(n);
            for (TMyPoint &p : points)
                p = {at(rng), at(rng)};
            double angle = double(rng() % 4) * 35.0;
            // Level and upright strokes are hit in a band beside them, slanted ones only
            // within the box of their ends.
            const bool stroke = tool == TDrawTool::SpLine || tool == TDrawTool::SpRuleLine ||
                                tool == TDrawTool::SpLinkLine || tool == TDrawTool::SpPolyLine ||
                                tool == TDrawTool::SpFreeLine;
            // The third stroke is nearly level: level on the screen at some zooms only.
            if (stroke) {
                (k == 0 ? points[1].X : points[1].Y) =
                    (k == 0 ? points[0].X : points[0].Y) + (k == 2 ? 1.4f : 0.0f);
                angle = 0;
            }
            const std::int32_t id =
                cad.AddShapeByCode(tool, {}, points, angle, QStringLiteral("a\nb"));
            ASSERT_GE(id, 0) << int(tool);
            TMyShape *shape = cad.GetShapeByID(id);
            TPen pen = shape->Pen();
            pen.Width = std::int32_t(rng() % 7);
            shape->SetPen(pen);
        }
        // The zooms change on the same drawing, so they also check what a zoom change keeps.
        for (const double zoom : {1.0, 0.37, 2.6}) {
            cad.SetZoom(zoom);
            std::uniform_int_distribution<int> probe(int(100 * zoom), int(400 * zoom));
            for (int q = 0; q < 4000; ++q) {
                const int x = probe(rng), y = probe(rng);
                // From the top down, the first hit; below it only a connector can win.
                TMyShape *expected = nullptr;
                for (std::int32_t no = cad.GetShapesCount() - 1; no >= 0; --no) {
                    TMyShape *shape = cad.GetShapeByNo(no);
                    const bool connector = dynamic_cast<TMyLineLinkLine *>(shape) != nullptr;
                    if ((expected && !connector) || !cad.IsClickedMeforShape(canvas, shape, {x, y}))
                        continue;
                    expected = shape;
                    if (connector)
                        break;
                }
                cad.ClearWorkingShapes();
                cad.MouseDown(TMouseButton::mbLeft, ssLeft, x, y);
                cad.MouseUp(TMouseButton::mbLeft, 0, x, y);
                const std::vector<TMyShape *> chosen =
                    expected ? std::vector<TMyShape *>{expected} : std::vector<TMyShape *>{};
                ASSERT_EQ(cad.WorkingShapes(), chosen)
                    << "tool " << int(tool) << " at " << x << "," << y << " zoom " << zoom;
                hits += expected ? 1 : 0;
            }
        }
    }
    EXPECT_GT(hits, 10000);
}
