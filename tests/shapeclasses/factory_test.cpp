// SPDX-License-Identifier: MIT
// The class factory, and every published property of the shape and of every shape class:
// written with a non-default value through the meta-object, read back, and carried over
// (or not) by Assign and AssignWithoutRelation.
#include "shapes/testhost.h"

#include <tessal/shapes/image.h>
#include <tessal/shapes/link.h>
#include <tessal/shapes/shapefactory.h>
#include <tessal/shapes/shapekind.h>

#include <gtest/gtest.h>

#include <QMetaProperty>

#include <functional>
#include <map>
#include <set>
#include <string>

namespace tessal::test {
namespace {

TEST(ShapeFactory, ClassNamesAndToolsMakeTheirClasses)
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

    // Tools, in their order: the drawing tools make their classes, every other tool nothing.
    // clang-format off
    const QStringList made = {
        "TMyLinkLine", "-", "-", "TMyLine", "TMyRuleLine", "TMyPolyLine", "TMyRectangle",
        "TMyLinkPoint", "TMyLineLinkLine", "TMyEllipse", "TMyText", "TMyImage", "TMyPolygon",
        "TMyPolyBezier", "TMyElliArc", "-", "-", "-", "-", "-", "TMyFreeLine", "TMyBLine"};
    // clang-format on
    ASSERT_EQ(made.size(), int(TDrawTool::SpBLine) + 1);
    for (int t = 0; t < made.size(); ++t) {
        const auto shape = CreateShapeForTool(TDrawTool(t), &host);
        EXPECT_EQ(shape ? shape->ClassName() : "-", made[t]) << t;
    }

    // New shapes take the host's defaults.
    host.ArcModeValue = TArcMode::amEllipse;
    host.LinkStyleValue = TLinkLineDrawStyle::lldsFree;
    host.ArrowOffsetValue = 6;
    const auto arc = CreateShapeOfClass("TMyElliArc", &host);
    const QMetaObject *meta = arc->MetaObject();
    EXPECT_EQ(meta->property(meta->indexOfProperty("ArcMode")).readOnGadget(arc.get()),
              QVariant::fromValue(TArcMode::amEllipse));
    TMyLinkLine link(&host);
    EXPECT_EQ(link.LinkLineDrawStyle(), TLinkLineDrawStyle::lldsFree);
    EXPECT_EQ(link.ArrowOffset(), 6);
}

// How a copy treats a property: both copies take it, only Assign, neither (the copy keeps
// its own value), or nothing said.
enum class TCopy { Both, AssignOnly, Kept, Unchecked };

struct TRow
{
    QVariant Value;
    std::function<bool(const QVariant &)> Same;
    TCopy Copy = TCopy::Both;
};

template <typename T>
TRow Row(T value, TCopy copy = TCopy::Both)
{
    return {QVariant::fromValue(value),
            [value](const QVariant &v) { return v.value<T>() == value; }, copy};
}

bool g_Clicked = false;

// One non-default value per published property, by name.
const std::map<std::string, TRow> &Rows()
{
    static const std::map<std::string, TRow> rows = [] {
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
        TBitmap picture(3, 2);
        picture.Fill(clRed);
        picture.SetPixel(1, 1, clBlue);
        const TShapeNotifyEvent onClick = [](TMyCAD *, TMyShape *) { g_Clicked = true; };
        const TRow clickRow{QVariant::fromValue(onClick),
                            [](const QVariant &v) {
                                auto f = v.value<TShapeNotifyEvent>();
                                g_Clicked = false;
                                if (f)
                                    f(nullptr, nullptr);
                                return g_Clicked;
                            },
                            TCopy::Unchecked};
        const auto K = TCopy::Kept, U = TCopy::Unchecked;
        // clang-format off
        return std::map<std::string, TRow>{
            // The shape's own.
            {"Angle", Row(0.5f)}, {"Brush", Row(brush)}, {"Caption", Row(QString("cap"))},
            {"CaptionShow", Row(false, K)}, {"ColorBegin", Row<TColor>(0x123456)},
            {"ColorEnd", Row<TColor>(0x654321)}, {"DragEnable", Row(false, U)},
            {"Font", Row(font)}, {"GradientStyle", Row(TGradientStyle::gsDiamond)},
            {"HotShow", Row(false, U)}, {"Info", Row(QString("info"))},
            {"IsFlipHorz", Row(true)}, {"IsFlipVert", Row(true)}, {"Locked", Row(true)},
            {"LogHeight", Row(17, U)}, {"LogUse", Row(true, K)}, {"LogWidth", Row(13, U)},
            {"MultiInfo", Row(QStringList{"a", "b"}, TCopy::AssignOnly)},
            {"MultiInfoAlignment", Row(TAlignment::taRightJustify)}, {"OnClick", clickRow},
            {"Pen", Row(pen)}, {"PenStyleJoinType", Row(TPenStyleJoinType::psjtBEVEL, U)},
            {"PenStyleEndCapType", Row(TPenStyleEndCapType::psectSQUARE, U)},
            {"ResizeEnable", Row(false, U)}, {"RotateEnable", Row(false, U)}, {"Tag", Row(99)},
            {"UserData", Row(data)}, {"Visible", Row(false, K)},
            // The classes'. A copied line keeps the arrow offset it was created with.
            {"ArrowAngle", Row<int>(25)}, {"ArrowLength", Row<std::uint8_t>(200)},
            {"ArrowOffset", Row<std::uint8_t>(7, K)}, {"ArrowStyle", Row(TArrowStyle::ADouble)},
            {"StartSpNo", Row<int>(3)}, {"StartSpPtId", Row<int>(1)}, {"EndSpNo", Row<int>(4)},
            {"EndSpPtId", Row<int>(2)}, {"LinkLineDrawStyle", Row(TLinkLineDrawStyle::lldsFree)},
            {"Size", Row<std::uint8_t>(12)}, {"AssociateSideResizing", Row(true)},
            {"ShowSideHot", Row(false)}, {"ShowHorizontalSideHot", Row(false)},
            {"ShowVerticalSideHot", Row(false)}, {"ArcMode", Row(TArcMode::amEllipse)},
            {"ArcStyle", Row(TArcStyle::asPie)}, {"IsBorder", Row(true)}, {"IsSolid", Row(true)},
            {"Lines", Row(QStringList{"first", "second"})},
            {"VAlignment", Row(TVAlignment::vaBottom)}, {"HAlignment", Row(TAlignment::taCenter)},
            {"WordWrap", Row(true)}, {"Bitmap", Row(picture)}, {"Brightness", Row<int>(40)},
            {"Contrast", Row<int>(-20)}, {"Transparent", Row(true)}, {"Border", Row(true)},
            {"GrayScale", Row(true)}, {"TransparentColor", Row<TColor>(0x123456)},
            {"TransparentMode", Row(TTransparentMode::tmFixed)}, {"ShowUserInfo", Row(true)},
            {"TickStyle", Row(TTickStyle::tsTop)}, {"UserInfo", Row(QString("ruler"))}};
        // clang-format on
    }();
    return rows;
}

// The shape's own properties come first, in this order, then each class's; the enumerated
// ones are registered as enumerations (the inspector offers their names).
// The class test of the scans answers what dynamic_cast answers, for every class in any
// order and for a class derived from the one asked for, whose answer it remembers per class.
TEST(ShapeFactory, KindTestAnswersAsTheCast)
{
    struct TMyOwnLink : TMyLinkLine
    {
        using TMyLinkLine::TMyLinkLine;
    };
    TClassHost host;
    std::vector<std::unique_ptr<TMyShape>> shapes;
    for (int round = 0; round < 2; ++round)
        for (const QString &name : ShapeClassNames())
            shapes.push_back(CreateShapeOfClass(name, &host));
    shapes.push_back(std::make_unique<TMyOwnLink>(&host));
    std::swap(shapes.front(), shapes.back());
    TShapeKind<TMyLinkLine> asLink;
    TShapeKind<TMyLine> asLine;
    int links = 0;
    for (const auto &shape : shapes) {
        ASSERT_EQ(asLink(shape.get()), dynamic_cast<const TMyLinkLine *>(shape.get()))
            << shape->ClassName().toStdString();
        ASSERT_EQ(asLine(shape.get()), dynamic_cast<const TMyLine *>(shape.get()))
            << shape->ClassName().toStdString();
        links += asLink(shape.get()) != nullptr;
    }
    EXPECT_EQ(links, 3);
    EXPECT_EQ(asLink(static_cast<TMyShape *>(nullptr)), nullptr);
}

TEST(ShapeProperties, EveryPropertyOfEveryClassWritesReadsAndIsCopied)
{
    TClassHost host;
    const QMetaObject &base = TMyShape::staticMetaObject;
    QStringList order;
    for (int i = 0; i < base.propertyCount(); ++i)
        order << base.property(i).name();
    EXPECT_EQ(order.join(' '),
              "Angle Brush Caption CaptionShow ColorBegin ColorEnd DragEnable Font GradientStyle "
              "HotShow Info IsFlipHorz IsFlipVert Locked LogHeight LogUse LogWidth MultiInfo "
              "MultiInfoAlignment OnClick Pen PenStyleJoinType PenStyleEndCapType ResizeEnable "
              "RotateEnable Tag UserData Visible");
    const std::set<std::string> enums = {
        "GradientStyle", "MultiInfoAlignment", "PenStyleJoinType", "PenStyleEndCapType",
        "ArrowStyle",    "LinkLineDrawStyle",  "ArcMode",          "ArcStyle",
        "VAlignment",    "HAlignment",         "TransparentMode",  "TickStyle"};

    std::set<std::string> seen;
    QStringList classes = ShapeClassNames();
    classes.prepend("TMyShape");
    for (const QString &name : classes) {
        auto make = [&] {
            return name == "TMyShape" ? std::make_unique<TMyShape>(&host)
                                      : CreateShapeOfClass(name, &host);
        };
        const auto source = make(), full = make(), bare = make();
        const QMetaObject *meta = source->MetaObject();
        // The shape's own properties are walked once, on the shape itself.
        const int first = name == "TMyShape" ? 0 : base.propertyCount();
        for (int i = first; i < meta->propertyCount(); ++i) {
            const QMetaProperty prop = meta->property(i);
            const std::string what = name.toStdString() + "." + prop.name();
            const auto row = Rows().find(prop.name());
            ASSERT_NE(row, Rows().end()) << "no value for " << what;
            seen.insert(prop.name());
            EXPECT_EQ(prop.isEnumType(), enums.count(prop.name()) == 1) << what;
            ASSERT_FALSE(row->second.Same(prop.readOnGadget(source.get()))) << "default " << what;
            ASSERT_TRUE(prop.writeOnGadget(source.get(), row->second.Value)) << what;
            EXPECT_TRUE(row->second.Same(prop.readOnGadget(source.get()))) << what;
        }
        full->Assign(*source);
        bare->AssignWithoutRelation(*source);
        // A later write may have changed an earlier value (a flip turns the angle), so the
        // copies are compared with the source as it is now.
        for (int i = first; i < meta->propertyCount(); ++i) {
            const QMetaProperty prop = meta->property(i);
            const std::string what = name.toStdString() + "." + prop.name();
            const TCopy copy = Rows().at(prop.name()).Copy;
            if (copy == TCopy::Unchecked)
                continue;
            const QVariant now = prop.readOnGadget(source.get());
            EXPECT_EQ(prop.readOnGadget(full.get()) == now, copy != TCopy::Kept)
                << "Assign " << what;
            if (first == 0) { // the copy without relations, on the shape's own properties
                EXPECT_EQ(prop.readOnGadget(bare.get()) == now, copy == TCopy::Both)
                    << "AssignWithoutRelation " << what;
            }
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

    // Setters of the classes repaint only on a change; the arrow setters only store.
    TMyImage image(&host);
    host.Repaints = 0;
    image.SetContrast(0);
    image.SetContrast(10);
    image.SetContrast(10);
    EXPECT_EQ(host.Repaints, 1);
    source.SetArrowLength(90);
    EXPECT_EQ(host.Repaints, 1);
}

} // namespace
} // namespace tessal::test
