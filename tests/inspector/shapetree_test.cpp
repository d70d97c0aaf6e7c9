// SPDX-License-Identifier: MIT
// The shape tree model against the document it shows: random drawings with layers and nested
// groups, checked by Qt's model tester and item by item against the shapes' own relations.
#include <tessal/inspector/shapetreemodel.h>
#include <tessal/shapes/shape.h>
#include <tessal/surface/cad.h>

#include <gtest/gtest.h>

#include <QAbstractItemModelTester>

#include <algorithm>
#include <random>

using namespace tessal;

namespace {

// Every item under parent is the shape the document puts there, in its order, and leads back
// to parent; members are followed down to the bottom.
void ExpectChildren(const TShapeTreeModel &model, const QModelIndex &parent,
                    const std::vector<TMyShape *> &expected, const TMyCAD &cad)
{
    ASSERT_EQ(model.rowCount(parent), int(expected.size()));
    for (int row = 0; row < int(expected.size()); ++row) {
        const QModelIndex item = model.index(row, 0, parent);
        ASSERT_EQ(model.ShapeOf(item), expected[std::size_t(row)]);
        ASSERT_EQ(model.parent(item), parent);
        ASSERT_EQ(model.IndexAt(model.ItemOf(item)), item);
        std::vector<TMyShape *> members;
        for (const std::int32_t no : expected[std::size_t(row)]->ChildShapes())
            members.push_back(cad.GetShapeByNo(no));
        ExpectChildren(model, item, members, cad);
    }
}

void ExpectTheDocument(const TShapeTreeModel &model, const TMyCAD &cad)
{
    ASSERT_EQ(model.rowCount(), cad.GetLayersCount());
    for (int row = 0; row < cad.GetLayersCount(); ++row) {
        const TLayer &layer = cad.Layers()[std::size_t(row)];
        const QModelIndex item = model.index(row, 0);
        EXPECT_EQ(item.data().toString(), layer.Name);
        EXPECT_FALSE(model.flags(item) & Qt::ItemIsSelectable);
        std::vector<TMyShape *> top;
        for (TMyShape *shape : cad.GetShapesByLayerId(layer.Id))
            if (!shape->HasParentShape())
                top.push_back(shape);
        ExpectChildren(model, item, top, cad);
    }
    for (std::int32_t no = 0; no < cad.GetShapesCount(); ++no) {
        const TMyShape *shape = cad.GetShapeByNo(no);
        ASSERT_EQ(model.ShapeOf(model.IndexOf(shape)), shape) << no;
        EXPECT_EQ(model.IndexOf(shape).data().toString(),
                  QStringLiteral("%1 (%2)").arg(shape->Name(), shape->ClassName()));
    }
}

} // namespace

// Random drawings on three layers with groups of groups; a shape moved to another layer or
// renamed makes the model out of date (a rename even without a walk over the shapes), and a
// reset shows the change.
TEST(ShapeTreeModel, ShowsLayersTopLevelShapesAndMembersAsTheDocumentHasThem)
{
    std::mt19937 rng(5);
    for (int drawing = 0; drawing < 8; ++drawing) {
        TMyCAD cad;
        const std::int32_t layers[] = {cad.Layers()[0].Id, cad.NewLayer("L1", true),
                                       cad.NewLayer("L2", true)};
        const TMyPoint box[] = {{0, 0}, {10, 10}};
        for (int k = 0; k < 40; ++k) {
            cad.SetCurrentLayerId(layers[rng() % 3]);
            cad.AddShapeByCode(k % 2 ? TDrawTool::SpRectangle : TDrawTool::SpEllipse, {}, box, 0,
                               {});
        }
        for (int k = 0; k < 12; ++k) {
            std::vector<TMyShape *> some;
            for (int m = 0; m < 3; ++m)
                some.push_back(cad.GetRootParentShape(
                    cad.GetShapeByNo(std::int32_t(rng() % cad.GetShapesCount()))));
            cad.GroupShapes(some, false);
        }
        TShapeTreeModel model;
        QAbstractItemModelTester tester(&model,
                                        QAbstractItemModelTester::FailureReportingMode::Fatal);
        model.Reset(&cad);
        ExpectTheDocument(model, cad);
        ASSERT_TRUE(model.UpToDate());

        // A selection holds the first item of each shape chosen and no other, in as many
        // ranges as there are runs of neighbouring rows.
        std::vector<TMyShape *> chosen;
        for (std::int32_t no = 0; no < cad.GetShapesCount(); ++no)
            if (rng() % 3)
                chosen.push_back(cad.GetShapeByNo(no));
        const QItemSelection selection = model.SelectionOf(chosen);
        int runs = 0;
        for (int item = 0; item < model.ShapeItemCount(); ++item) {
            const QModelIndex index = model.IndexAt(item);
            const bool in = std::count(chosen.begin(), chosen.end(), model.ShapeAt(item)) &&
                            model.IndexOf(model.ShapeAt(item)) == index;
            ASSERT_EQ(selection.contains(index), in) << item;
            const QModelIndex before = model.IndexAt(item - 1);
            runs += in &&
                    !(item > 0 && before.parent() == index.parent() && selection.contains(before));
        }
        EXPECT_EQ(selection.size(), runs);

        TMyShape *moved = cad.GetRootParentShape(cad.GetShapeByNo(std::int32_t(rng() % 40)));
        moved->SetLayerId(layers[(cad.GetLayerNoById(moved->LayerId()) + 1) % 3]);
        EXPECT_TRUE(model.SameOutline());
        EXPECT_FALSE(model.UpToDate());
        model.Reset(&cad);
        ExpectTheDocument(model, cad);

        cad.GetShapeByNo(0)->SetName(QStringLiteral("renamed"));
        EXPECT_FALSE(model.SameOutline());
        model.Reset(&cad);
        ExpectTheDocument(model, cad);
        std::vector<TMyShape *> shown;
        for (int item = 0; item < model.ShapeItemCount(); ++item)
            shown.push_back(model.ShapeAt(item));
        cad.DeleteShapeById(cad.GetShapeByNo(0)->ShapeId(), false);
        EXPECT_FALSE(model.SameOutline());
        // Until the next reset, an item whose shape has gone or moved in the list answers
        // none, never another shape.
        for (int item = 0; item < model.ShapeItemCount(); ++item) {
            TMyShape *now = model.ShapeAt(item);
            ASSERT_TRUE(!now || now == shown[std::size_t(item)]) << item;
        }
        model.Reset(nullptr);
        EXPECT_EQ(model.rowCount(), 0);
        EXPECT_TRUE(model.UpToDate());
    }
}
