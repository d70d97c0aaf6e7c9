// SPDX-License-Identifier: MIT
// The document: identities and names, creation by class, tool and code, deletion with its
// renumbering, and the layer operations with the shapes on them.
#include "documenthelpers.h"

#include <tessal/shapes/image.h>
#include <tessal/shapes/text.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>
#include <tuple>

using namespace tessal;
using namespace tessal::test;

namespace {

// Installs a no-layer handler that counts its calls, for the lifetime of the object.
struct TNoLayerSpy
{
    int Calls = 0;
    TMyCAD::TNoLayerHandler Old;
    TNoLayerSpy()
    {
        Old = TMyCAD::SetNoLayerHandler([this](TMyCAD *) { ++Calls; });
    }
    ~TNoLayerSpy() { TMyCAD::SetNoLayerHandler(Old); }
};

} // namespace

TEST(Document, IdentitiesNamesAndLookUps)
{
    TMyCAD cad;
    TMyShape *first = cad.CreateAddShapeByName(QStringLiteral("TMyEllipse"));
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first->Name(), QStringLiteral("Shape0"));
    EXPECT_EQ(first->Caption(), QStringLiteral("Shape0"));
    EXPECT_EQ(first->ShapeId(), 0);
    EXPECT_EQ(first->LayerId(), 0);
    for (int i = 1; i < 4; ++i)
        cad.CreateAddShapeByName(QStringLiteral("TMyRectangle"), first);
    // A copy takes the source's state but its own identity.
    EXPECT_EQ(cad.GetShapeByNo(2)->Name(), QStringLiteral("Shape2"));
    EXPECT_EQ(cad.CreateAddShapeByName(QStringLiteral("TMyNothing")), nullptr);
    EXPECT_EQ(cad.ShapeIdCounter(), 4);

    // Identities are never reused after deletions.
    EXPECT_TRUE(cad.DeleteShapeById(3, false));
    EXPECT_TRUE(cad.DeleteShapeById(1, false));
    const TMyPoint box[] = {{0, 0}, {5, 5}};
    EXPECT_EQ(cad.AddShapeByCode(TDrawTool::SpRectangle, {}, box, 0, {}), 4);
    EXPECT_EQ(cad.GetShapeByNo(2)->Name(), QStringLiteral("Shape4"));
    EXPECT_EQ(cad.GetShapeByID(1), nullptr);
    EXPECT_EQ(cad.GetShapeNoById(4), 2);
    EXPECT_EQ(cad.GetShapeByName(QStringLiteral("Shape2")), cad.GetShapeByNo(1));
    EXPECT_EQ(cad.GetShapeNoInMyShapes(cad.GetShapeByID(2)), 1);
    EXPECT_EQ(cad.GetShapeByName(QStringLiteral("Shape1")), nullptr);

    // A shape holding the counter's value (added without counting) is found by number but
    // not by identity: the counter bounds the search.
    auto stray = cad.CreateShapeByName(QStringLiteral("TMyLine"));
    stray->SetShapeId(cad.ShapeIdCounter());
    ASSERT_TRUE(cad.AddShape(stray.release(), false, true));
    EXPECT_EQ(cad.GetShapeNoById(5), 3);
    EXPECT_EQ(cad.GetShapeByID(5), nullptr);
    EXPECT_EQ(cad.GetShapeByID(-1), nullptr);

    // Identities set by hand on listed shapes: the first in list order wins a duplicate,
    // the one left behind is no longer found, and one far beyond the rest is found too.
    ASSERT_EQ(cad.GetShapeNoById(4), 2);
    cad.GetShapeByNo(0)->SetShapeId(4);
    EXPECT_EQ(cad.GetShapeNoById(4), 0);
    EXPECT_EQ(cad.GetShapeNoById(0), -1);
    cad.GetShapeByNo(0)->SetShapeId(1 << 30);
    EXPECT_EQ(cad.GetShapeNoById(4), 2);
    EXPECT_EQ(cad.GetShapeNoById(1 << 30), 0);
    cad.GetShapeByNo(0)->SetShapeId(0);
    EXPECT_TRUE(IdsAgreeWithTheScan(cad));

    EXPECT_FALSE(cad.RenameShapeName(QStringLiteral("Shape0"), QStringLiteral("Shape0")));
    EXPECT_FALSE(cad.RenameShapeName(QStringLiteral("Shape0"), QStringLiteral("Shape2")));
    EXPECT_FALSE(cad.RenameShapeName(QStringLiteral("Nope"), QStringLiteral("Door")));
    EXPECT_EQ(first->Name(), QStringLiteral("Shape0"));
    EXPECT_TRUE(cad.RenameShapeName(QStringLiteral("Shape0"), QStringLiteral("Door")));
    EXPECT_EQ(cad.GetShapeByName(QStringLiteral("Door")), first);

    // Identities 0 5 4 5: after a reorder, and after a deletion, the second 5 stands where
    // the first 5 was found before, with the first below it.
    cad.GetShapeByNo(1)->SetShapeId(5);
    ASSERT_EQ(cad.GetShapeNoById(5), 1);
    cad.SendToBack(cad.GetShapeByNo(3), false);
    cad.BringToFront(cad.GetShapeByNo(1), false); // 5 5 4 0
    EXPECT_EQ(cad.GetShapeNoById(5), 0);
    cad.GetShapeByNo(2)->SetShapeId(5);
    cad.SendToBack(cad.GetShapeByNo(3), false); // 0 5 5 5
    ASSERT_EQ(cad.GetShapeNoById(5), 1);
    TMyShape *const bottom[] = {cad.GetShapeByNo(0)};
    cad.SetWorkingShapes(bottom);
    cad.DeleteSelectedShapes();
    cad.AddShapeByCode(TDrawTool::SpRectangle, {}, box, 0, {}); // the list as long as before
    EXPECT_EQ(cad.GetShapeNoById(5), 0);
}

TEST(Document, AddShapeByCodePoints)
{
    TMyCAD cad;
    std::vector<std::pair<TMyShape *, std::int32_t>> added;
    cad.SetOnShapeAdded([&added](TMyCAD *, TMyShape *shape, std::int32_t count) {
        added.push_back({shape, count});
    });

    // Two opposite corners make the four corners in drawing order.
    const TMyPoint corners[] = {{30, 40}, {10, 5}};
    const std::int32_t rect =
        cad.AddShapeByCode(TDrawTool::SpRectangle, QStringLiteral("Box"), corners, 0, {});
    TMyShape *r = cad.GetShapeByID(rect);
    ASSERT_NE(r, nullptr);
    EXPECT_EQ(r->Points(), (TMyPointArray{{30, 40}, {10, 40}, {10, 5}, {30, 5}}));
    EXPECT_EQ(r->CenterPoint(), (TMyPoint{20, 22.5f}));
    EXPECT_EQ(r->TextPoint(), (TMyPoint{20, 50}));
    EXPECT_EQ(r->Caption(), QStringLiteral("Box"));
    EXPECT_EQ(r->Name(), QStringLiteral("Shape0"));
    ASSERT_EQ(added.size(), 1u);
    EXPECT_EQ(added[0], (std::pair<TMyShape *, std::int32_t>{r, 1}));
    EXPECT_EQ(cad.WorkingShapes(), std::vector<TMyShape *>{r});
    EXPECT_EQ(cad.CurrentShape(), nullptr); // working, not under the mouse
    ASSERT_EQ(cad.UndoRedoShapeList().size(), 1u);
    EXPECT_EQ(cad.UndoRedoShapeList()[0].Action, ACT_ADD);

    // A polygon is closed by a repeat of its first point; a polyline keeps what it is given.
    const TMyPoint tri[] = {{0, 0}, {10, 0}, {0, 10}};
    TMyShape *poly = AddByCode(cad, TDrawTool::SpPolygon, tri);
    EXPECT_EQ(poly->Points(), (TMyPointArray{{0, 0}, {10, 0}, {0, 10}, {0, 0}}));
    TMyShape *chain = AddByCode(cad, TDrawTool::SpPolyLine, tri);
    EXPECT_EQ(chain->Points(), (TMyPointArray(std::begin(tri), std::end(tri))));
    EXPECT_EQ(chain->TextPoint(), (TMyPoint{5, 5}));

    // Refusals: no shape for the tool, too few points, a Bezier without whole pieces.
    const std::size_t before = added.size();
    EXPECT_EQ(cad.AddShapeByCode(TDrawTool::SpSelecting, {}, tri, 0, {}), -1);
    EXPECT_EQ(cad.AddShapeByCode(TDrawTool::SpLine, {}, std::span(tri, 1), 0, {}), -1);
    EXPECT_EQ(cad.AddShapeByCode(TDrawTool::SpRectangle, {}, tri, 0, {}), -1);
    EXPECT_EQ(cad.AddShapeByCode(TDrawTool::SpPolyBezier, {}, tri, 0, {}), -1);
    EXPECT_EQ(added.size(), before);
    EXPECT_EQ(cad.ShapeIdCounter(), 3);

    // Text takes the text; the angle turns the shape about its centre.
    const TMyPoint box[] = {{0, 0}, {20, 10}};
    auto *text = AddByCode<TMyText>(cad, TDrawTool::SpText, box, 0, QStringLiteral("a\nb"));
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(text->Info(), QStringLiteral("a\nb"));
    EXPECT_EQ(text->Lines(), (QStringList{QStringLiteral("a"), QStringLiteral("b")}));
    TMyShape *turned = AddByCode(cad, TDrawTool::SpPolyLine, box, std::numbers::pi / 2);
    EXPECT_FLOAT_EQ(turned->Angle(), float(std::numbers::pi / 2));
    ExpectNear(turned->Points(), {{15, -5}, {5, 15}});
}

TEST(Document, AddShapeByBoxAndImage)
{
    TMyCAD cad;
    // Four vertices on the ellipse of the box, clockwise from the top, then the closing
    // repeat.
    TMyShape *diamond = cad.GetShapeByID(
        cad.AddShapeByCode2(TDrawTool::SpPolygon, {}, {10, 20}, 100, 50, 4, 0, {}));
    ASSERT_NE(diamond, nullptr);
    ExpectNear(diamond->Points(), {{60, 20}, {110, 45}, {60, 70}, {10, 45}, {60, 20}});
    TMyShape *line =
        cad.GetShapeByID(cad.AddShapeByCode2(TDrawTool::SpLine, {}, {1, 2}, 30, -2, 9, 0, {}));
    EXPECT_EQ(line->Points(), (TMyPointArray{{1, 2}, {31, 0}}));
    TMyShape *wave = cad.GetShapeByID(
        cad.AddShapeByCode2(TDrawTool::SpPolyBezier, {}, {0, 0}, 60, 10, 2, 0, {}));
    EXPECT_EQ(wave->Points(),
              (TMyPointArray{{0, 5}, {10, 0}, {20, 10}, {30, 5}, {40, 0}, {50, 10}, {60, 5}}));

    TBitmap picture(30, 20);
    picture.Fill(clRed);
    auto *image =
        dynamic_cast<TMyImage *>(cad.GetShapeByID(cad.AddImageShapeByCode({}, {5, 6}, picture)));
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->Points(), (TMyPointArray{{5, 6}, {35, 6}, {35, 26}, {5, 26}}));
    EXPECT_EQ(image->Bitmap(), picture);
    EXPECT_EQ(cad.AddImageShapeByCode(QStringLiteral("/nonexistent.bmp"), {0, 0}, TBitmap()), -1);
}

// A hand-built document: A B C D, the group G of B and C, connectors L (A to D) and M (C to
// D), and E. Deleting takes shapes out and renumbers every relation.
TEST(Document, DeletionRenumbersRelations)
{
    TMyCAD cad;
    TMyShape *a = AddRectangle(cad, 0, 0, 10, 10);
    TMyShape *b = AddRectangle(cad, 20, 0, 30, 10);
    TMyShape *c = AddRectangle(cad, 40, 0, 50, 10);
    TMyShape *d = AddRectangle(cad, 60, 0, 70, 10);
    TMyShape *const members[] = {b, c};
    TMyShape *g = cad.GetShapeByID(cad.GroupShapes(members, false));
    TMyLinkLine *l = AddConnector(cad, a, d);
    TMyLinkLine *m = AddConnector(cad, c, d);
    TMyShape *e = AddRectangle(cad, 80, 0, 90, 10);
    ASSERT_EQ(cad.GetShapeNoInMyShapes(e), 7);
    ASSERT_TRUE(RelationsValid(cad));

    std::vector<std::pair<TMyShape *, std::int32_t>> deleted;
    cad.SetOnShapeDeleted([&deleted](TMyCAD *s, TMyShape *shape) {
        deleted.push_back({shape, s->GetShapeNoInMyShapes(shape)});
    });
    cad.SetWorkingShapes(std::vector<TMyShape *>{e, b});
    ASSERT_EQ(cad.WorkingShapes(), (std::vector<TMyShape *>{e, g}));

    ASSERT_TRUE(cad.DeleteShapeById(a->ShapeId(), false));
    ASSERT_EQ(deleted.size(), 1u);
    EXPECT_EQ(deleted[0].second, 0); // still in the list when announced
    EXPECT_TRUE(cad.WorkingShapes().empty());
    // B C D G L M E are now 0 to 6.
    EXPECT_EQ(g->ChildShapes(), (std::vector<std::int32_t>{0, 1}));
    EXPECT_EQ(b->ParentNo(), 3);
    EXPECT_EQ(Ends(l), (std::array{-1, -1, 2, 1}));
    EXPECT_EQ(Ends(m), (std::array{1, 0, 2, 1}));
    EXPECT_EQ(d->LinkShapes(), (std::vector<std::int32_t>{4, 5}));
    EXPECT_EQ(c->LinkShapes(), (std::vector<std::int32_t>{5}));
    // E keeps the number it was made with, which its record stores; its place is 6.
    EXPECT_EQ(e->ShapeNo(), 7);
    EXPECT_EQ(cad.GetShapeNoInMyShapes(e), 6);
    EXPECT_TRUE(RelationsValid(cad));

    // The group goes with its members; M lets go of C and stays.
    ASSERT_TRUE(cad.DeleteShapeById(g->ShapeId(), false));
    EXPECT_EQ(deleted.size(), 2u);
    ASSERT_EQ(cad.GetShapesCount(), 4); // D L M E
    EXPECT_EQ(Ends(m), (std::array{-1, -1, 0, 1}));
    EXPECT_EQ(Ends(l), (std::array{-1, -1, 0, 1}));
    EXPECT_EQ(d->LinkShapes(), (std::vector<std::int32_t>{1, 2}));
    EXPECT_TRUE(RelationsValid(cad));

    // A deleted connector leaves its shape's list.
    ASSERT_TRUE(cad.DeleteShapeById(l->ShapeId(), false));
    EXPECT_EQ(d->LinkShapes(), (std::vector<std::int32_t>{1}));
    EXPECT_EQ(m->EndSpNo(), 0);
    EXPECT_TRUE(RelationsValid(cad));

    // Locked shapes stay; a locked member survives its group as a top-level shape.
    e->SetLockedFlag(true);
    EXPECT_FALSE(cad.DeleteShapeById(e->ShapeId(), false));
    EXPECT_EQ(cad.GetShapeNoInMyShapes(e), 2);
    TMyShape *f = AddRectangle(cad, 0, 50, 10, 60);
    TMyShape *h = AddRectangle(cad, 20, 50, 30, 60);
    TMyShape *const pair[] = {f, h};
    TMyShape *k = cad.GetShapeByID(cad.GroupShapes(pair, false));
    h->SetLockedFlag(true);
    const std::int32_t fId = f->ShapeId();
    ASSERT_TRUE(cad.DeleteShapeById(k->ShapeId(), false));
    EXPECT_EQ(cad.GetShapeByID(fId), nullptr);
    EXPECT_EQ(cad.GetShapeNoInMyShapes(h), 3);
    EXPECT_EQ(h->ParentNo(), -1);
    EXPECT_TRUE(RelationsValid(cad));
    EXPECT_FALSE(cad.DeleteShapeById(99, false));
}

TEST(Document, RelationsAndSelectionDeletes)
{
    TMyCAD cad;
    TMyShape *a = AddRectangle(cad, 0, 0, 10, 10);
    TMyShape *b = AddRectangle(cad, 20, 0, 30, 10);
    TMyShape *c = AddRectangle(cad, 40, 0, 50, 10);
    TMyShape *const ab[] = {a, b};
    TMyShape *g = cad.GetShapeByID(cad.GroupShapes(ab, false));
    TMyShape *const gc[] = {g, c};
    TMyShape *outer = cad.GetShapeByID(cad.GroupShapes(gc, false));
    TMyShape *d = AddRectangle(cad, 60, 0, 70, 10);
    // a b c g outer d
    EXPECT_EQ(cad.GetRootParentShape(a), outer);
    for (auto [other, brother] :
         {std::pair{c, true}, {b, true}, {a, false}, {outer, false}, {d, false}})
        EXPECT_EQ(cad.areTheyBrother(a, other), brother) << other->ShapeNo();
    EXPECT_EQ(cad.GetNextSingleorRootShape(0), outer);
    EXPECT_EQ(cad.GetNextSingleorRootShape(4), d);
    EXPECT_EQ(cad.GetNextSingleorRootShape(5), nullptr);
    EXPECT_EQ(cad.GetPrevSingleorRootShape(5), outer);
    EXPECT_EQ(cad.GetPrevSingleorRootShape(4), nullptr);

    // Deleting the selection is one step; a locked working shape stays.
    d->SetLockedFlag(true);
    cad.ClearAllUndoStuff();
    cad.SetWorkingShapes(std::vector<TMyShape *>{a, d});
    cad.DeleteSelectedShapes();
    ASSERT_EQ(cad.GetShapesCount(), 1);
    EXPECT_EQ(cad.GetShapeByNo(0), d);
    EXPECT_EQ(StepCount(cad), 1);
    EXPECT_EQ(cad.UndoRedoShapeList().size(), 5u); // outer, g, a, b, c

    // A shape removed with its layer leaves the selection, and the current shape with it.
    const std::int32_t layer = cad.NewLayer(QStringLiteral("Removed"), true);
    TMyShape *e = AddRectangle(cad, 80, 0, 90, 10);
    cad.SetWorkingShapes(std::vector<TMyShape *>{e, d, e});
    cad.SetCurrentShape(e);
    ASSERT_TRUE(cad.DeleteLayerByID(layer));
    ASSERT_EQ(cad.GetShapesCount(), 1);
    EXPECT_EQ(cad.WorkingShapes(), std::vector<TMyShape *>{d});
    EXPECT_EQ(cad.CurrentShape(), nullptr);

    cad.DeleteAllShapes();
    EXPECT_EQ(cad.GetShapesCount(), 0);
    EXPECT_EQ(cad.ShapeIdCounter(), 7);
}

// The first layer, look-ups by identity, place and name, and NewLayer's event, which fires
// once the layer is in the table and current, and never for a refusal.
TEST(Document, LayerTableLookUpsAndNewLayerEvent)
{
    TMyCAD cad;
    EXPECT_EQ(cad.Layers(), (std::vector<TLayer>{{QStringLiteral("Layer0"), 0, true}}));
    EXPECT_EQ(cad.CurrentLayerId(), 0);
    EXPECT_EQ(cad.GetMaxLayerId(), 0);
    EXPECT_EQ(cad.GetLayerIdByName(QStringLiteral("Layer0")), 0);
    std::vector<std::tuple<TMyCAD *, std::int32_t, QString, bool, std::int32_t, std::int32_t>>
        calls;
    cad.SetOnNewLayer([&calls](TMyCAD *s, std::int32_t id, const QString &name, bool visible) {
        calls.emplace_back(s, id, name, visible, s->CurrentLayerId(), s->GetLayersCount());
    });
    EXPECT_EQ(cad.NewLayer(QStringLiteral("A"), true), 1);
    EXPECT_EQ(cad.NewLayer(QStringLiteral("B"), false), 2);
    // A taken name (case-sensitive) changes nothing and fires nothing.
    EXPECT_EQ(cad.NewLayer(QStringLiteral("B"), true), -1);
    EXPECT_EQ(cad.NewLayer(QStringLiteral("Layer0"), true), -1);
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[1], std::make_tuple(&cad, 2, QStringLiteral("B"), false, 2, 3));
    EXPECT_EQ(cad.CurrentLayerId(), 2);
    EXPECT_EQ(cad.GetMaxLayerId(), 2);
    EXPECT_EQ(cad.GetLayerIdByNo(2), 2);
    EXPECT_EQ(cad.GetLayerNoById(1), 1);
    EXPECT_EQ(cad.GetLayerNoByName(QStringLiteral("B")), 2);
    EXPECT_EQ(cad.GetLayerNameByID(1), QStringLiteral("A"));
    EXPECT_TRUE(cad.IsVisibleLayerByID(1));
    EXPECT_FALSE(cad.IsVisibleLayerByID(2));
    // Unknown identities, places and names.
    EXPECT_EQ(cad.GetLayerIdByNo(3), -1);
    EXPECT_EQ(cad.GetLayerIdByNo(-1), -1);
    EXPECT_EQ(cad.GetLayerNoById(7), -1);
    EXPECT_EQ(cad.GetLayerNoByName(QStringLiteral("b")), -1);
    EXPECT_EQ(cad.GetLayerIdByName(QStringLiteral("C")), -1);
    EXPECT_TRUE(cad.GetLayerNameByID(-1).isEmpty());
    EXPECT_FALSE(cad.IsVisibleLayerByID(3));
    EXPECT_EQ(cad.NewLayer(QStringLiteral("b"), true), 3);
}

TEST(Document, LayerEditsAndShapesOnLayers)
{
    TMyCAD cad;
    std::vector<std::pair<std::int32_t, QString>> removed;
    cad.SetOnDeleteLayer([&removed](TMyCAD *s, std::int32_t id, const QString &name, bool) {
        EXPECT_EQ(s->GetLayerNoById(id), -1); // gone from the table when announced
        removed.push_back({id, name});
    });
    EXPECT_EQ(cad.NewLayer(QStringLiteral("Walls"), true), 1);
    EXPECT_FALSE(cad.SetLayerNameByID(1, QStringLiteral("Layer0")));
    EXPECT_FALSE(cad.SetLayerNameByID(7, QStringLiteral("X")));
    EXPECT_TRUE(cad.SetLayerNameByID(1, QStringLiteral("Walls"))); // its own name
    EXPECT_TRUE(cad.SetLayerNameByName(QStringLiteral("Walls"), QStringLiteral("Doors")));
    EXPECT_EQ(cad.GetLayerNameByID(1), QStringLiteral("Doors"));
    EXPECT_FALSE(cad.SetLayerNameByName(QStringLiteral("Walls"), QStringLiteral("Y")));

    EXPECT_TRUE(cad.InVisibleLayerByID(0));
    EXPECT_TRUE(cad.InVisibleLayerByName(QStringLiteral("Doors")));
    EXPECT_FALSE(cad.VisibleLayerByID(5));
    cad.VisibleAllLayer();
    EXPECT_TRUE(cad.IsVisibleLayerByID(0) && cad.IsVisibleLayerByID(1));

    // Shapes join the current layer.
    EXPECT_FALSE(cad.SetCurrentLayerId(9));
    ASSERT_TRUE(cad.SetCurrentLayerId(0));
    TMyShape *a = AddRectangle(cad, 0, 0, 10, 10);
    TMyShape *b = AddRectangle(cad, 20, 0, 30, 10);
    ASSERT_TRUE(cad.SetCurrentLayerId(1));
    TMyShape *c = AddRectangle(cad, 40, 0, 50, 10);
    TMyShape *d = AddRectangle(cad, 60, 0, 70, 10);
    TMyShape *const cd[] = {c, d};
    TMyShape *g = cad.GetShapeByID(cad.GroupShapes(cd, false));
    ASSERT_TRUE(cad.SetCurrentLayerId(0));
    TMyLinkLine *link = AddConnector(cad, a, c);
    EXPECT_EQ(cad.GetShapesByLayerId(1), (std::vector<TMyShape *>{c, d, g}));
    EXPECT_EQ(cad.GetShapesCountInALayer(0), 3);
    cad.SelectAllShapesByLayerId(1);
    EXPECT_EQ(cad.WorkingShapes(), std::vector<TMyShape *>{g});

    // Merging moves the shapes and removes the layer.
    ASSERT_EQ(cad.NewLayer(QStringLiteral("Notes"), true), 2);
    TMyShape *n = AddRectangle(cad, 0, 40, 10, 50);
    EXPECT_FALSE(cad.MergeLayers(2, 2));
    EXPECT_FALSE(cad.MergeLayers(2, 8));
    ASSERT_TRUE(cad.MergeLayers(2, 1));
    EXPECT_EQ(n->LayerId(), 1);
    EXPECT_EQ(cad.CurrentLayerId(), 1);
    EXPECT_EQ(removed.back(), (std::pair<std::int32_t, QString>{2, QStringLiteral("Notes")}));

    // Deleting layer 1 removes its shapes, a locked one too; the connector on layer 0 lets
    // go of C and stays.
    d->SetLockedFlag(true);
    ASSERT_TRUE(cad.DeleteLayerByName(QStringLiteral("Doors")));
    EXPECT_EQ(cad.GetShapesCount(), 3);
    EXPECT_EQ(cad.GetShapeNoInMyShapes(link), 2);
    EXPECT_EQ(Ends(link), (std::array{0, 0, -1, -1}));
    EXPECT_EQ(a->LinkShapes(), (std::vector<std::int32_t>{2}));
    EXPECT_TRUE(RelationsValid(cad));
    EXPECT_EQ(cad.CurrentLayerId(), 0);
    EXPECT_FALSE(cad.DeleteLayerByID(1));
    EXPECT_EQ(cad.GetShapesCount(), 3);
    (void)b;

    // Layer identities are not reused; the 255 bound counts layers, not identities, and a
    // refusal changes nothing and fires nothing.
    int fired = 0;
    cad.SetOnNewLayer([&fired](TMyCAD *, std::int32_t, const QString &, bool) { ++fired; });
    for (int i = 1; i < TMyCAD::MaxLayers; ++i)
        ASSERT_GE(cad.NewLayer(QStringLiteral("L%1").arg(i), true), 0);
    EXPECT_EQ(fired, 254);
    EXPECT_EQ(cad.NewLayer(QStringLiteral("more"), true), -1);
    EXPECT_EQ(fired, 254);
    EXPECT_EQ(cad.GetLayersCount(), 255);
    EXPECT_EQ(cad.CurrentLayerId(), 256);
    ASSERT_TRUE(cad.DeleteLayerByID(3));
    EXPECT_EQ(cad.NewLayer(QStringLiteral("more"), true), 257);

    // Without layers nothing can be added; the handler decides what happens.
    TNoLayerSpy spy;
    removed.clear();
    cad.DeleteAllLayers();
    EXPECT_EQ(removed.size(), 255u);
    EXPECT_EQ(cad.GetShapesCount(), 0);
    EXPECT_EQ(cad.CurrentLayerId(), -1);
    auto orphan = cad.CreateShapeByName(QStringLiteral("TMyLine"));
    EXPECT_FALSE(cad.AddShape(orphan.get(), false, false));
    EXPECT_EQ(spy.Calls, 1);
    const TMyPoint box[] = {{0, 0}, {5, 5}};
    EXPECT_EQ(cad.AddShapeByCode(TDrawTool::SpRectangle, {}, box, 0, {}), -1);
    EXPECT_EQ(spy.Calls, 2);
    EXPECT_EQ(cad.GetShapesCount(), 0);
}

// Look-ups by name and by identity answer the first shape of that name or identity in list
// order, as a search does, and every shape is found at its place, through renames (by the
// document and on the shape itself, also of a shape made by another document), identities
// given twice, shapes added with numbers of their own, deletions one by one and many at once,
// insertions, appends and restacks, with many names shared.
TEST(Document, PlaceNameAndIdentityLookUpsAgreeWithTheScanThroughChanges)
{
    TMyCAD cad, other;
    const TMyPoint box[] = {{0, 0}, {5, 5}};
    for (int i = 0; i < 30; ++i)
        cad.AddShapeByCode(TDrawTool::SpRectangle, {}, box, 0, {});
    std::mt19937 rng(7);
    const auto pick = [&] { return cad.GetShapeByNo(std::int32_t(rng() % cad.GetShapesCount())); };
    const auto name = [&] { return QStringLiteral("N%1").arg(rng() % 9); };
    for (int step = 0; step < 400; ++step) {
        while (cad.GetShapesCount() < 10)
            cad.AddShapeByCode(TDrawTool::SpRectangle, {}, box, 0, {});
        switch (rng() % 10) {
        case 0:
            pick()->SetName(name());
            break;
        case 8:
            pick()->SetShapeId(pick()->ShapeId());
            break;
        case 9: {
            std::vector<TMyShape *> some;
            for (int k = 0; k < 4; ++k)
                some.push_back(pick());
            cad.SetWorkingShapes(some);
            cad.DeleteSelectedShapes();
            break;
        }
        case 1:
            cad.RenameShapeName(name(), name());
            break;
        case 2:
            cad.DeleteShapeById(pick()->ShapeId(), false);
            break;
        case 3:
            cad.AddShapeByCode(TDrawTool::SpRectangle, {}, box, 0, {});
            break;
        case 4: {
            // Added the way code and files add shapes: with numbers of their own.
            TMyShape *made = other.CreateShapeByName(QStringLiteral("TMyRectangle")).release();
            made->SetShapeNo(std::int32_t(rng() % 40));
            cad.AddShape(made, false, false);
            ASSERT_EQ(made->Host(), &cad);
            made->SetName(name());
            break;
        }
        case 5:
            cad.SendToBack(pick(), false);
            break;
        case 6:
            cad.BringToFront(pick(), false);
            break;
        default:
            cad.SwapShape(pick(), pick());
            break;
        }
        // More look-ups than are searched before a table is made, so both ways answer.
        for (int round = 0; round < 3; ++round)
            for (int n = -1; n < 10; ++n) {
                const QString wanted =
                    n < 0 ? QStringLiteral("Shape3") : QStringLiteral("N%1").arg(n);
                TMyShape *first = nullptr;
                for (std::int32_t no = 0; !first && no < cad.GetShapesCount(); ++no)
                    if (cad.GetShapeByNo(no)->Name() == wanted)
                        first = cad.GetShapeByNo(no);
                ASSERT_EQ(cad.GetShapeByName(wanted), first) << "step " << step << " " << n;
            }
        for (std::int32_t id = -1; id <= cad.ShapeIdCounter(); ++id) {
            std::int32_t first = -1;
            for (std::int32_t no = cad.GetShapesCount() - 1; no >= 0; --no)
                first = cad.GetShapeByNo(no)->ShapeId() == id ? no : first;
            ASSERT_EQ(cad.GetShapeNoById(id), first) << "step " << step << " id " << id;
        }
        for (std::int32_t no = 0; no < cad.GetShapesCount(); ++no)
            ASSERT_EQ(cad.GetShapeNoInMyShapes(cad.GetShapeByNo(no)), no) << "step " << step;
        const std::unique_ptr<TMyShape> detached = other.CreateShapeByName("TMyRectangle");
        detached->SetShapeNo(0);
        detached->SetListPlace(1);
        ASSERT_EQ(cad.GetShapeNoInMyShapes(detached.get()), -1);
    }
}

// Whether a shape is selected agrees with the selection list through shapes taken in one by
// one, let go, deleted with their layer and selected anew, on selections above and below the size
// from which membership is kept in a set; a shape taken in twice is listed once.
TEST(Document, SelectionMembershipAgreesWithTheList)
{
    TMyCAD cad;
    const TMyPoint box[] = {{0, 0}, {5, 5}};
    for (int i = 0; i < 120; ++i)
        cad.AddShapeByCode(TDrawTool::SpRectangle, {}, box, 0, {});
    std::mt19937 rng(3);
    const auto pick = [&] { return cad.GetShapeByNo(std::int32_t(rng() % cad.GetShapesCount())); };
    for (int step = 0; step < 600; ++step) {
        const unsigned op = rng() % 20;
        if (op < 10) {
            cad.AddWorkingShape(pick());
        } else if (op < 16) {
            cad.RemoveWorkingShape(cad.WorkingShapes().empty() || op % 2
                                       ? pick()
                                       : cad.WorkingShapes()[rng() % cad.GetWorkingShapesCount()]);
        } else if (op < 18) {
            // A layer's shapes leave the selection; the rest of it stays.
            const std::int32_t layer = cad.NewLayer(QStringLiteral("Gone"), true);
            TMyShape *gone = pick();
            gone->SetLayerId(layer);
            cad.DeleteLayerByID(layer);
            ASSERT_FALSE(cad.IsWorkingShape(gone)) << "step " << step;
            cad.AddShapeByCode(TDrawTool::SpRectangle, {}, box, 0, {});
        } else if (op == 18) {
            std::vector<TMyShape *> some;
            for (unsigned k = rng() % 60; k > 0; --k)
                some.push_back(pick());
            cad.SetWorkingShapes(some);
        } else if (rng() % 4 == 0) {
            cad.ClearWorkingShapes();
        }
        const std::vector<TMyShape *> &list = cad.WorkingShapes();
        for (std::int32_t no = 0; no < cad.GetShapesCount(); ++no) {
            const TMyShape *shape = cad.GetShapeByNo(no);
            const auto listed = std::count(list.begin(), list.end(), shape);
            ASSERT_LE(listed, 1) << "step " << step;
            ASSERT_EQ(cad.IsWorkingShape(shape), listed == 1) << "step " << step << " no " << no;
        }
    }
}

// Deleting a selection at once leaves the drawing that deleting its shapes one after the
// other leaves, with or without a deletion handler: random drawings, random selections of
// top-level shapes, members and connectors. The handler hears of each selected shape once,
// in order, while every shape of the selection is still there.
TEST(Document, DeletingASelectionAtOnceEqualsOneByOne)
{
    int announced = 0;
    for (unsigned seed = 1; seed <= 40; ++seed) {
        TMyCAD together, apart, told;
        std::vector<TMyShape *> heard;
        told.SetOnShapeDeleted([&](TMyCAD *s, TMyShape *shape) {
            EXPECT_EQ(s->GetShapesCount(), together.GetShapesCount());
            heard.push_back(shape);
        });
        std::mt19937 rng(seed);
        for (TMyCAD *cad : {&together, &apart, &told}) {
            std::mt19937 same(seed);
            BuildRandomDrawing(*cad, same);
        }
        std::vector<std::int32_t> picked;
        for (int i = 0; i < 7; ++i)
            picked.push_back(std::int32_t(rng() % together.GetShapesCount()));
        for (TMyCAD *cad : {&together, &apart, &told}) {
            std::vector<TMyShape *> shapes;
            for (std::int32_t no : picked)
                shapes.push_back(cad->GetShapeByNo(no));
            cad->SetWorkingShapes(shapes);
        }
        std::vector<TMyShape *> unlocked;
        for (TMyShape *shape : told.WorkingShapes())
            if (!shape->Locked())
                unlocked.push_back(shape);
        std::vector<std::int32_t> ids;
        for (TMyShape *shape : apart.WorkingShapes())
            ids.push_back(shape->ShapeId());
        told.DeleteSelectedShapes();
        together.DeleteSelectedShapes();
        for (std::int32_t id : ids)
            apart.DeleteShapeById(id, false);
        EXPECT_EQ(heard, unlocked) << "seed " << seed;
        announced += int(heard.size());
        for (const TMyCAD *cad : {&apart, &told}) {
            ASSERT_TRUE(RelationsValid(*cad)) << "seed " << seed;
            ASSERT_EQ(cad->GetShapesCount(), together.GetShapesCount()) << "seed " << seed;
            for (std::int32_t no = 0; no < together.GetShapesCount(); ++no)
                ASSERT_EQ(IdAt(*cad, no), IdAt(together, no)) << "seed " << seed;
            EXPECT_EQ(Snapshot(*cad), Snapshot(together)) << "seed " << seed;
        }
    }
    EXPECT_GT(announced, 100);
}

// A handler may delete shapes of the selection still to be announced, or add shapes; shapes
// that share an identity, as shapes added by code without one do, all go.
TEST(Document, DeletionHandlersMayChangeTheDrawing)
{
    TMyCAD cad;
    std::vector<TMyShape *> shapes;
    for (int i = 0; i < 6; ++i) {
        shapes.push_back(cad.CreateShapeByName(QStringLiteral("TMyRectangle")).release());
        cad.AddShape(shapes.back(), false, false);
    }
    shapes[2]->SetShapeId(3);
    TMyShape *kept = AddRectangle(cad, 0, 0, 10, 10);
    std::vector<TMyShape *> heard;
    cad.SetOnShapeDeleted([&](TMyCAD *s, TMyShape *shape) {
        heard.push_back(shape);
        if (heard.size() == 1)
            s->DeleteShapeById(3, false);
        if (shape == shapes[4])
            AddRectangle(*s, 20, 0, 30, 10);
    });
    cad.SetWorkingShapes(shapes);
    cad.DeleteSelectedShapes();
    EXPECT_EQ(heard, (std::vector<TMyShape *>{shapes[0], shapes[2], shapes[1], shapes[3], shapes[4],
                                              shapes[5]}));
    ASSERT_EQ(cad.GetShapesCount(), 2);
    EXPECT_EQ(cad.GetShapeByNo(0), kept);
    EXPECT_EQ(cad.GetShapeByNo(1)->GetLeftTop().X, 20);
    EXPECT_TRUE(RelationsValid(cad));
}
