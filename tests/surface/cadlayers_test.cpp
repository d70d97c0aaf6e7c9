// SPDX-License-Identifier: MIT
// The layer table: the first layer, NewLayer's refusals, its event and the look-ups.
#include <tessal/surface/cad.h>

#include <gtest/gtest.h>

#include <vector>

using namespace tessal;

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
        bool operator==(const TCall &) const = default;
    };
    std::vector<TCall> calls;
    TMyCAD cad;
    cad.SetOnNewLayer([&calls](TMyCAD *s, std::int32_t id, const QString &name, bool visible) {
        calls.push_back({s, id, name, visible, s->CurrentLayerId(), s->GetLayersCount()});
    });

    EXPECT_EQ(cad.NewLayer(QStringLiteral("Walls"), false), 1);
    // The layer is in the table and current before the event fires.
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_TRUE((calls[0] == TCall{&cad, 1, QStringLiteral("Walls"), false, 1, 2}));
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

TEST(CadLayers, FirstLayerAndLookUps)
{
    TMyCAD cad;
    EXPECT_EQ(cad.Layers(), (std::vector<TLayer>{{QStringLiteral("Layer0"), 0, true}}));
    EXPECT_EQ(cad.CurrentLayerId(), 0);
    EXPECT_EQ(cad.GetMaxLayerId(), 0);
    EXPECT_EQ(cad.GetLayerIdByName(QStringLiteral("Layer0")), 0);
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
