// SPDX-License-Identifier: MIT
// The layer table: the first layer, NewLayer's refusals, its event and the look-ups.
#include <tessal/surface/cad.h>

#include <gtest/gtest.h>

#include <vector>

using namespace tessal;

TEST(CadLayers, FirstLayer)
{
    TMyCAD cad;
    ASSERT_EQ(cad.GetLayersCount(), 1);
    EXPECT_EQ(cad.Layers().front(), (TLayer{QStringLiteral("Layer0"), 0, true}));
    EXPECT_EQ(cad.CurrentLayerId(), 0);
    EXPECT_EQ(cad.GetMaxLayerId(), 0);
    EXPECT_EQ(cad.GetLayerIdByName(QStringLiteral("Layer0")), 0);
    EXPECT_TRUE(cad.IsVisibleLayerByID(0));
}

TEST(CadLayers, NewLayerEventsAndRefusals)
{
    struct TCall
    {
        TMyCAD *Sender;
        std::int32_t Id;
        QString Name;
        bool Visible;
        std::int32_t CurrentDuringEvent;
        std::int32_t CountDuringEvent;
    };
    std::vector<TCall> calls;
    TMyCAD cad;
    cad.SetOnNewLayer([&calls](TMyCAD *s, std::int32_t id, const QString &name, bool visible) {
        calls.push_back({s, id, name, visible, s->CurrentLayerId(), s->GetLayersCount()});
    });

    EXPECT_EQ(cad.NewLayer(QStringLiteral("Walls"), false), 1);
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].Sender, &cad);
    EXPECT_EQ(calls[0].Id, 1);
    EXPECT_EQ(calls[0].Name, QStringLiteral("Walls"));
    EXPECT_FALSE(calls[0].Visible);
    // The layer is in the table and current before the event fires.
    EXPECT_EQ(calls[0].CurrentDuringEvent, 1);
    EXPECT_EQ(calls[0].CountDuringEvent, 2);
    EXPECT_FALSE(cad.IsVisibleLayerByID(1));

    // A taken name (case-sensitive) changes nothing and fires nothing.
    EXPECT_EQ(cad.NewLayer(QStringLiteral("Walls"), true), -1);
    EXPECT_EQ(cad.NewLayer(QStringLiteral("Layer0"), true), -1);
    EXPECT_EQ(calls.size(), 1u);
    EXPECT_EQ(cad.GetLayersCount(), 2);
    EXPECT_EQ(cad.CurrentLayerId(), 1);
    EXPECT_EQ(cad.NewLayer(QStringLiteral("walls"), true), 2);
    EXPECT_EQ(cad.CurrentLayerId(), 2);
    EXPECT_EQ(cad.GetMaxLayerId(), 2);

    // At most 255 layers.
    for (int i = 3; i < 255; ++i)
        ASSERT_EQ(cad.NewLayer(QStringLiteral("L%1").arg(i), true), i);
    EXPECT_EQ(cad.GetLayersCount(), 255);
    const std::size_t fired = calls.size();
    EXPECT_EQ(cad.NewLayer(QStringLiteral("one too many"), true), -1);
    EXPECT_EQ(cad.GetLayersCount(), 255);
    EXPECT_EQ(calls.size(), fired);
    EXPECT_EQ(cad.CurrentLayerId(), 254);
}

TEST(CadLayers, LookUps)
{
    TMyCAD cad;
    cad.NewLayer(QStringLiteral("A"), true);
    cad.NewLayer(QStringLiteral("B"), false);
    EXPECT_EQ(cad.GetLayerIdByNo(2), 2);
    EXPECT_EQ(cad.GetLayerNoById(1), 1);
    EXPECT_EQ(cad.GetLayerNoByName(QStringLiteral("B")), 2);
    EXPECT_EQ(cad.GetLayerNameByID(1), QStringLiteral("A"));
    EXPECT_TRUE(cad.IsVisibleLayerByID(1));
    EXPECT_FALSE(cad.IsVisibleLayerByID(2));
    // Unknown IDs, numbers and names.
    EXPECT_EQ(cad.GetLayerIdByNo(3), -1);
    EXPECT_EQ(cad.GetLayerIdByNo(-1), -1);
    EXPECT_EQ(cad.GetLayerNoById(7), -1);
    EXPECT_EQ(cad.GetLayerNoByName(QStringLiteral("b")), -1);
    EXPECT_EQ(cad.GetLayerIdByName(QStringLiteral("C")), -1);
    EXPECT_TRUE(cad.GetLayerNameByID(-1).isEmpty());
    EXPECT_FALSE(cad.IsVisibleLayerByID(3));
}
