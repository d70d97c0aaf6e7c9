// SPDX-License-Identifier: MIT
// Every published property of the shape, walked through the meta-object: written with a
// non-default value and read back.
#include "testhost.h"

#include <gtest/gtest.h>

#include <QMetaProperty>

#include <functional>
#include <set>
#include <string>

namespace tessal::test {
namespace {

struct TPropertyRow
{
    const char *Name;
    QVariant Value;
    // Compares what was read back; empty means QVariant equality with Value.
    std::function<bool(const QVariant &)> Same;
};

template <typename T>
std::function<bool(const QVariant &)> Equals(T expected)
{
    return [expected](const QVariant &v) { return v.value<T>() == expected; };
}

TEST(ShapeProperties, EveryPublishedPropertyInOrderWritesAndReadsBack)
{
    TPen pen;
    pen.Width = 4;
    pen.Style = TPenStyle::psDash;
    TBrush brush;
    brush.Style = TBrushStyle::bsCross;
    TFont font;
    font.Name = "Serif";
    font.Style = fsBold | fsItalic;
    TUserData data;
    data.AddKeyandValue("k", "v");
    bool clicked = false;
    const TShapeNotifyEvent onClick = [&](TMyShape *) { clicked = true; };
    // In published order; a property without a row fails the walk below.
    const std::vector<TPropertyRow> rows = {
        {"Angle", QVariant::fromValue(0.5f), Equals(0.5f)},
        {"Brush", QVariant::fromValue(brush), Equals(brush)},
        {"Caption", QString("cap"), {}},
        {"CaptionShow", false, {}},
        {"ColorBegin", QVariant::fromValue<TColor>(0x123456), Equals<TColor>(0x123456)},
        {"ColorEnd", QVariant::fromValue<TColor>(0x654321), Equals<TColor>(0x654321)},
        {"DragEnable", false, {}},
        {"Font", QVariant::fromValue(font), Equals(font)},
        {"GradientStyle", QVariant::fromValue(TGradientStyle::gsDiamond),
         Equals(TGradientStyle::gsDiamond)},
        {"HotShow", false, {}},
        {"Info", QString("info"), {}},
        {"IsFlipHorz", true, {}},
        {"IsFlipVert", true, {}},
        {"Locked", true, {}},
        {"LogHeight", 17, {}},
        {"LogUse", true, {}},
        {"LogWidth", 13, {}},
        {"MultiInfo", QStringList{"a", "b"}, {}},
        {"MultiInfoAlignment", QVariant::fromValue(TAlignment::taRightJustify),
         Equals(TAlignment::taRightJustify)},
        {"OnClick", QVariant::fromValue(onClick),
         [&](const QVariant &v) {
             auto f = v.value<TShapeNotifyEvent>();
             if (!f)
                 return false;
             f(nullptr);
             return clicked;
         }},
        {"Pen", QVariant::fromValue(pen), Equals(pen)},
        {"PenStyleJoinType", QVariant::fromValue(TPenStyleJoinType::psjtBEVEL),
         Equals(TPenStyleJoinType::psjtBEVEL)},
        {"PenStyleEndCapType", QVariant::fromValue(TPenStyleEndCapType::psectSQUARE),
         Equals(TPenStyleEndCapType::psectSQUARE)},
        {"ResizeEnable", false, {}},
        {"RotateEnable", false, {}},
        {"Tag", 99, {}},
        {"UserData", QVariant::fromValue(data), Equals(data)},
        {"Visible", false, {}},
    };
    const std::set<std::string> enums = {"GradientStyle", "MultiInfoAlignment", "PenStyleJoinType",
                                         "PenStyleEndCapType"};

    TTestHost host;
    TMyShape shape(&host);
    const QMetaObject *meta = shape.MetaObject();
    ASSERT_EQ(meta->propertyCount(), int(rows.size()));
    for (int i = 0; i < meta->propertyCount(); ++i) {
        const QMetaProperty prop = meta->property(i);
        const TPropertyRow &row = rows[std::size_t(i)];
        SCOPED_TRACE(prop.name());
        ASSERT_STREQ(prop.name(), row.Name);
        EXPECT_EQ(prop.isEnumType(), enums.count(row.Name) == 1);
        const QVariant before = prop.readOnGadget(&shape);
        ASSERT_TRUE(before.isValid());
        if (!row.Same)
            ASSERT_NE(before, row.Value) << "the test value must differ from the default";
        else
            ASSERT_FALSE(row.Same(before)) << "the test value must differ from the default";
        ASSERT_TRUE(prop.writeOnGadget(&shape, row.Value));
        const QVariant after = prop.readOnGadget(&shape);
        if (row.Same)
            EXPECT_TRUE(row.Same(after));
        else
            EXPECT_EQ(after, row.Value);
    }
}

} // namespace
} // namespace tessal::test
