// SPDX-License-Identifier: MIT
// The class factory, and every published property of every shape class beyond the base's:
// written with a non-default value through the meta-object, read back, and carried over
// by Assign.
#include "classhost.h"

#include <tessal/shapes/image.h>
#include <tessal/shapes/link.h>
#include <tessal/shapes/shapefactory.h>

#include <gtest/gtest.h>

#include <QMetaProperty>

#include <functional>
#include <map>
#include <set>
#include <string>

namespace tessal::test {
namespace {

TEST(ShapeFactory, EveryClassNameMakesThatClass)
{
    TClassHost host;
    const QStringList expected = {"TMyRectangle", "TMyLinkPoint",  "TMyLineLinkLine", "TMyEllipse",
                                  "TMyLine",      "TMyFreeLine",   "TMyRuleLine",     "TMyPolyLine",
                                  "TMyPolygon",   "TMyPolyBezier", "TMyText",         "TMyImage",
                                  "TMyElliArc",   "TMyLinkLine",   "TMyCombine",      "TMyGroup",
                                  "TMyBLine"};
    EXPECT_EQ(ShapeClassNames(), expected);
    for (const QString &name : expected) {
        const auto shape = CreateShapeOfClass(name, &host);
        ASSERT_NE(shape, nullptr) << name.toStdString();
        EXPECT_EQ(shape->ClassName(), name);
        // The meta-object is the class's own, so the inspector sees its properties.
        EXPECT_EQ(QString::fromLatin1(shape->MetaObject()->className()), "tessal::" + name);
    }
    for (const char *bad : {"TMyShape", "tmyline", "TMyLine ", ""})
        EXPECT_EQ(CreateShapeOfClass(bad, &host), nullptr) << bad;
}

TEST(ShapeFactory, ToolsMakeTheirClassesAndTheRestNothing)
{
    TClassHost host;
    // clang-format off
    const std::map<TDrawTool, const char *> made = {
        {TDrawTool::SpLinkLine, "TMyLinkLine"}, {TDrawTool::SpLine, "TMyLine"},
        {TDrawTool::SpRuleLine, "TMyRuleLine"}, {TDrawTool::SpPolyLine, "TMyPolyLine"},
        {TDrawTool::SpRectangle, "TMyRectangle"}, {TDrawTool::SpLinkPoint, "TMyLinkPoint"},
        {TDrawTool::SpLineLinkLine, "TMyLineLinkLine"}, {TDrawTool::SpEllipse, "TMyEllipse"},
        {TDrawTool::SpText, "TMyText"}, {TDrawTool::SpImage, "TMyImage"},
        {TDrawTool::SpPolygon, "TMyPolygon"}, {TDrawTool::SpPolyBezier, "TMyPolyBezier"},
        {TDrawTool::SpElliArc, "TMyElliArc"}, {TDrawTool::SpFreeLine, "TMyFreeLine"},
        {TDrawTool::SpBLine, "TMyBLine"},
    };
    // clang-format on
    for (int t = 0; t <= int(TDrawTool::SpBLine); ++t) {
        const auto tool = TDrawTool(t);
        const auto shape = CreateShapeForTool(tool, &host);
        const auto it = made.find(tool);
        if (it == made.end()) {
            EXPECT_EQ(shape, nullptr) << t;
            continue;
        }
        ASSERT_NE(shape, nullptr) << t;
        EXPECT_EQ(shape->ClassName(), QString(it->second));
    }
}

TEST(ShapeFactory, NewShapesTakeTheHostsDefaults)
{
    TClassHost host;
    host.ArcModeValue = TArcMode::amEllipse;
    host.LinkStyleValue = TLinkLineDrawStyle::lldsFree;
    host.ArrowOffsetValue = 6;
    const auto arc = CreateShapeOfClass("TMyElliArc", &host);
    EXPECT_EQ(arc->MetaObject()
                  ->property(arc->MetaObject()->indexOfProperty("ArcMode"))
                  .readOnGadget(arc.get())
                  .value<TArcMode>(),
              TArcMode::amEllipse);
    TMyLinkLine link(&host);
    EXPECT_EQ(link.LinkLineDrawStyle(), TLinkLineDrawStyle::lldsFree);
    EXPECT_EQ(link.ArrowOffset(), 6);
}

struct TRow
{
    QVariant Value;
    std::function<bool(const QVariant &)> Same;
};

template <typename T>
TRow Row(T value)
{
    return {QVariant::fromValue(value),
            [value](const QVariant &v) { return v.value<T>() == value; }};
}

TBitmap SmallPicture()
{
    TBitmap b(3, 2);
    b.Fill(clRed);
    b.SetPixel(1, 1, clBlue);
    return b;
}

// One non-default value per published property of the shape classes, by name.
const std::map<std::string, TRow> &Rows()
{
    // clang-format off
    static const std::map<std::string, TRow> rows = {
        {"ArrowAngle", Row<int>(25)}, {"ArrowLength", Row<std::uint8_t>(200)},
        {"ArrowOffset", Row<std::uint8_t>(7)}, {"ArrowStyle", Row(TArrowStyle::ADouble)},
        {"StartSpNo", Row<int>(3)}, {"StartSpPtId", Row<int>(1)}, {"EndSpNo", Row<int>(4)},
        {"EndSpPtId", Row<int>(2)}, {"LinkLineDrawStyle", Row(TLinkLineDrawStyle::lldsFree)},
        {"Size", Row<std::uint8_t>(12)}, {"AssociateSideResizing", Row(true)},
        {"ShowSideHot", Row(false)}, {"ShowHorizontalSideHot", Row(false)},
        {"ShowVerticalSideHot", Row(false)}, {"ArcMode", Row(TArcMode::amEllipse)},
        {"ArcStyle", Row(TArcStyle::asPie)}, {"IsBorder", Row(true)}, {"IsSolid", Row(true)},
        {"Lines", Row(QStringList{"first", "second"})}, {"VAlignment", Row(TVAlignment::vaBottom)},
        {"HAlignment", Row(TAlignment::taCenter)}, {"WordWrap", Row(true)},
        {"Bitmap", Row(SmallPicture())}, {"Brightness", Row<int>(40)}, {"Contrast", Row<int>(-20)},
        {"Transparent", Row(true)}, {"Border", Row(true)}, {"GrayScale", Row(true)},
        {"TransparentColor", Row<TColor>(0x123456)},
        {"TransparentMode", Row(TTransparentMode::tmFixed)}, {"ShowUserInfo", Row(true)},
        {"TickStyle", Row(TTickStyle::tsTop)}, {"UserInfo", Row(QString("ruler"))},
    };
    // clang-format on
    return rows;
}

TEST(ShapeProperties, EveryOwnPropertyOfEveryClassWritesReadsAndIsCopied)
{
    TClassHost host;
    const int baseCount = TMyShape::staticMetaObject.propertyCount();
    std::set<std::string> seen;
    for (const QString &name : ShapeClassNames()) {
        const auto source = CreateShapeOfClass(name, &host);
        const auto copy = CreateShapeOfClass(name, &host);
        const auto bare = CreateShapeOfClass(name, &host);
        const QMetaObject *meta = source->MetaObject();
        for (int i = baseCount; i < meta->propertyCount(); ++i) {
            const QMetaProperty prop = meta->property(i);
            const std::string what = name.toStdString() + "." + prop.name();
            const auto row = Rows().find(prop.name());
            ASSERT_NE(row, Rows().end()) << "no value for " << what;
            seen.insert(prop.name());
            ASSERT_FALSE(row->second.Same(prop.readOnGadget(source.get()))) << "default " << what;
            ASSERT_TRUE(prop.writeOnGadget(source.get(), row->second.Value)) << what;
            EXPECT_TRUE(row->second.Same(prop.readOnGadget(source.get()))) << what;
        }
        copy->Assign(*source);
        for (int i = baseCount; i < meta->propertyCount(); ++i) {
            const QMetaProperty prop = meta->property(i);
            const std::string what = name.toStdString() + "." + prop.name();
            const QVariant copied = prop.readOnGadget(copy.get());
            // A copied line keeps the arrow offset it was created with.
            if (std::string(prop.name()) == "ArrowOffset")
                EXPECT_EQ(copied, prop.readOnGadget(bare.get())) << what;
            else
                EXPECT_TRUE(Rows().at(prop.name()).Same(copied)) << what;
        }
    }
    // Every row belongs to some class: a renamed property cannot hide behind a stale row.
    EXPECT_EQ(seen.size(), Rows().size());
}

TEST(ShapeProperties, BindingsAreRelationsAndStayBehindWithoutThem)
{
    TClassHost host;
    TMyLinkLine source(&host);
    source.Points() = {{0, 0}, {10, 0}, {10, 10}, {20, 10}};
    source.SetStartSpNo(2);
    source.SetStartSpPtId(1);
    source.SetEndSpNo(5);
    source.SetEndSpPtId(0);
    TMyLinkLine full(&host), loose(&host);
    full.Assign(source);
    loose.AssignWithoutRelation(source);
    EXPECT_TRUE(full.StartSpNo() == 2 && full.EndSpNo() == 5);
    EXPECT_TRUE(loose.StartSpNo() == -1 && loose.EndSpPtId() == -1);
    EXPECT_EQ(loose.GetPointsCount(), 4);

    // Going free keeps the ends only; going back routes again at once, orthogonally
    // between the same two ends.
    full.SetNeedsReroute(false);
    full.SetLinkLineDrawStyle(TLinkLineDrawStyle::lldsFree);
    EXPECT_EQ(full.Points(), (TMyPointArray{{0, 0}, {20, 10}}));
    full.SetLinkLineDrawStyle(TLinkLineDrawStyle::lldsHV);
    EXPECT_FALSE(full.NeedsReroute());
    const TMyPointArray &route = full.Points();
    ASSERT_GE(route.size(), 3u);
    EXPECT_EQ(route.front(), (TMyPoint{0, 0}));
    EXPECT_EQ(route.back(), (TMyPoint{20, 10}));
    for (std::size_t i = 1; i < route.size(); ++i)
        EXPECT_TRUE(route[i].X == route[i - 1].X || route[i].Y == route[i - 1].Y) << i;
}

TEST(ShapeProperties, SettersOfTextImageAndRuleRepaintOnlyOnChange)
{
    TClassHost host;
    const auto image = CreateShapeOfClass("TMyImage", &host);
    auto &img = static_cast<TMyImage &>(*image);
    host.Repaints = 0;
    img.SetContrast(0);
    EXPECT_EQ(host.Repaints, 0);
    img.SetContrast(10);
    img.SetContrast(10);
    EXPECT_EQ(host.Repaints, 1);
    // The arrow setters only store; the caller repaints.
    TMyLine line(&host);
    line.SetArrowLength(90);
    EXPECT_EQ(host.Repaints, 1);
}

} // namespace
} // namespace tessal::test
