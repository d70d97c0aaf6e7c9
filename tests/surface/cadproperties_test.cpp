// SPDX-License-Identifier: MIT
// Published properties of the surface: order, construction values, markers, and a write /
// read-back walk over every property through the meta-object.
#include <tessal/geometry/canvasmodes.h>
#include <tessal/surface/cad.h>

#include <gtest/gtest.h>

#include <QMetaProperty>

#include <functional>
#include <map>
#include <memory>
#include <string>

using namespace tessal;

namespace {

// The published order; the meta-object must list exactly these after QWidget's own.
const char *const PublishedOrder[] = {"ArcMode",
                                      "ArrowAngle",
                                      "ArrowLength",
                                      "ArrowOffset",
                                      "ArrowStyle",
                                      "BkBitmap",
                                      "BkBitmapMode",
                                      "Brush",
                                      "ColorOfBackGround",
                                      "ColorOfHot",
                                      "CrossLine",
                                      "DragEnable",
                                      "DragMode",
                                      "DragTrace",
                                      "DisableTextInput",
                                      "Enabled",
                                      "Font",
                                      "GridOperation",
                                      "HotShow",
                                      "HotSize",
                                      "LabelValue",
                                      "LabelXY",
                                      "LinklineAroundShape",
                                      "LinkLineDrawStyle",
                                      "LockBound",
                                      "MouseEffect",
                                      "OnActionToolToSelecting",
                                      "OnChildShapeSelected",
                                      "OnClick",
                                      "OnDblClick",
                                      "OnDeleteLayer",
                                      "OnDragDrop",
                                      "OnDragOver",
                                      "OnMouseDown",
                                      "OnMouseEnter",
                                      "OnMouseEnterShape",
                                      "OnMouseLeave",
                                      "OnMouseLeaveShape",
                                      "OnMouseMove",
                                      "OnMouseUp",
                                      "OnNewLayer",
                                      "OnNodeAdded",
                                      "OnNodeDeleted",
                                      "OnPaint",
                                      "OnShapeAdded",
                                      "OnShapeCodeDragging",
                                      "OnShapeCodeRotating",
                                      "OnShapeDeleted",
                                      "OnShapeMouseDragged",
                                      "OnShapeMouseDragging",
                                      "OnShapeMouseResized",
                                      "OnShapeMouseResizeFinished",
                                      "OnShapeMouseResizing",
                                      "OnShapeMouseRotated",
                                      "OnShapeMouseRotating",
                                      "OnShapeSelected",
                                      "OnWholeDragged",
                                      "OperateAllLayer",
                                      "PageFoot",
                                      "PageFootAlignment",
                                      "PageFootFont",
                                      "PageFootToBottom",
                                      "PageHead",
                                      "PageHeadAlignment",
                                      "PageHeadFont",
                                      "PageHeadToTop",
                                      "PageHeight",
                                      "PageOrientation",
                                      "PageStyle",
                                      "PageWidth",
                                      "Pen",
                                      "PenStyleJoinType",
                                      "PenStyleEndCapType",
                                      "PrintABorder",
                                      "PrintABordertoBottom",
                                      "PrintABordertoLeft",
                                      "PrintABordertoRight",
                                      "PrintABordertoTop",
                                      "PrintBackground",
                                      "Ratio",
                                      "ResizeEnable",
                                      "ReturnToSelecting",
                                      "RotateConstraintDegree",
                                      "RotateEnable",
                                      "ShapeTool",
                                      "ShowHint",
                                      "ShowHotLink",
                                      "Snap",
                                      "SnapPixels",
                                      "SnapShape",
                                      "Tag",
                                      "TheUNIT",
                                      "UndoRedoSize",
                                      "UserData",
                                      "Version",
                                      "Visible",
                                      "XYMode",
                                      "Zoom"};

QVariant Byte(int v)
{
    return QVariant::fromValue(std::uint8_t(v));
}

template <typename E>
QVariant Enum(E e)
{
    return QVariant::fromValue(e);
}

bool IsEvent(const char *name)
{
    return name[0] == 'O' && name[1] == 'n';
}

} // namespace

TEST(CadProperties, PublishedOrderAndCount)
{
    TMyCAD cad;
    const QMetaObject *mo = cad.metaObject();
    const int first = QWidget::staticMetaObject.propertyCount();
    ASSERT_EQ(mo->propertyCount() - first, 98);
    for (int i = 0; i < 98; ++i)
        EXPECT_STREQ(mo->property(first + i).name(), PublishedOrder[i]) << "position " << i;
}

// Every value of the construction table, read back through the meta-object. Events must
// all start unassigned; object-valued properties are checked in the tests below.
TEST(CadProperties, ConstructionValues)
{
    const std::map<std::string, QVariant> expected = {
        {"ArcMode", Enum(TArcMode::amCircle)},
        {"ArrowAngle", 10},
        {"ArrowLength", Byte(30)},
        {"ArrowOffset", Byte(0)},
        {"ArrowStyle", Enum(TArrowStyle::ANone)},
        {"BkBitmap", QVariant::fromValue(TBitmap())},
        {"BkBitmapMode", Enum(TBkBitmapMode::Center)},
        {"Brush", QVariant::fromValue(TBrush())},
        {"ColorOfBackGround", QVariant::fromValue(TColor(0xFFFFFF))},
        {"ColorOfHot", QVariant::fromValue(TColor(0x808080))},
        {"CrossLine", true},
        {"DragEnable", true},
        {"DragMode", Enum(TDragMode::dgBoth)},
        {"DragTrace", true},
        {"DisableTextInput", false},
        {"Enabled", true},
        {"Font", QVariant::fromValue(TFont())},
        {"HotShow", true},
        {"HotSize", Byte(4)},
        {"LabelValue", QVariant::fromValue<QLabel *>(nullptr)},
        {"LabelXY", QVariant::fromValue<QLabel *>(nullptr)},
        {"LinklineAroundShape", true},
        {"LinkLineDrawStyle", Enum(TLinkLineDrawStyle::lldsHV)},
        {"LockBound", false},
        {"MouseEffect", true},
        {"OperateAllLayer", true},
        {"PageFoot", QString()},
        {"PageFootAlignment", Enum(TAlignment::taRightJustify)},
        {"PageFootFont", QVariant::fromValue(TFont())},
        {"PageFootToBottom", Byte(15)},
        {"PageHead", QString()},
        {"PageHeadAlignment", Enum(TAlignment::taCenter)},
        {"PageHeadFont", QVariant::fromValue(TFont())},
        {"PageHeadToTop", Byte(15)},
        {"PageHeight", QVariant::fromValue(std::uint32_t(297))},
        {"PageOrientation", Enum(TPrinterOrientation::poPortrait)},
        {"PageStyle", Enum(TPageStyle::A4)},
        {"PageWidth", QVariant::fromValue(std::uint32_t(210))},
        {"Pen", QVariant::fromValue(TPen())},
        {"PenStyleJoinType", Enum(TPenStyleJoinType::psjtROUND)},
        {"PenStyleEndCapType", Enum(TPenStyleEndCapType::psectROUND)},
        {"PrintABorder", true},
        {"PrintABordertoBottom", Byte(20)},
        {"PrintABordertoLeft", Byte(20)},
        {"PrintABordertoRight", Byte(20)},
        {"PrintABordertoTop", Byte(20)},
        {"PrintBackground", false},
        {"Ratio", 1.0},
        {"ResizeEnable", true},
        {"ReturnToSelecting", true},
        {"RotateConstraintDegree", 0},
        {"RotateEnable", true},
        {"ShapeTool", Enum(TDrawTool::SpSelecting)},
        {"ShowHint", false},
        {"ShowHotLink", true},
        {"Snap", true},
        {"SnapPixels", Byte(4)},
        {"SnapShape", false},
        {"Tag", 0},
        {"TheUNIT", Enum(TUnits::mm)},
        {"UndoRedoSize", Byte(10)},
        {"UserData", QVariant::fromValue(TUserData())},
        {"Version", QStringLiteral("2013")},
        {"Visible", true},
        {"XYMode", Enum(TXYMode::Mode0)},
        {"Zoom", 1.0},
    };
    TMyCAD cad;
    int checked = 0;
    for (const char *name : PublishedOrder) {
        const QVariant value = cad.property(name);
        ASSERT_TRUE(value.isValid()) << name;
        if (IsEvent(name) || std::string(name) == "GridOperation")
            continue;
        const auto it = expected.find(name);
        ASSERT_NE(it, expected.end()) << "no construction value for " << name;
        EXPECT_EQ(value, it->second) << name;
        ++checked;
    }
    EXPECT_EQ(checked, int(expected.size()));
    EXPECT_DOUBLE_EQ(cad.PreZoom(), 1.0);
    EXPECT_EQ(cad.ActionTool(), TActionTools::dtSelecting);
    EXPECT_EQ(cad.cursor().shape(), Qt::CrossCursor);
    EXPECT_EQ(cad.FileVersion(), QStringLiteral("XP.j"));
    EXPECT_EQ(cad.GetShapesCount(), 0);
    EXPECT_EQ(cad.ShapeIdCounter(), 0);
    EXPECT_FALSE(cad.IsBusy());

    const bool assigned[] = {bool(cad.OnActionToolToSelecting()),
                             bool(cad.OnChildShapeSelected()),
                             bool(cad.OnClick()),
                             bool(cad.OnDblClick()),
                             bool(cad.OnDeleteLayer()),
                             bool(cad.OnDragDrop()),
                             bool(cad.OnDragOver()),
                             bool(cad.OnMouseDown()),
                             bool(cad.OnMouseEnter()),
                             bool(cad.OnMouseEnterShape()),
                             bool(cad.OnMouseLeave()),
                             bool(cad.OnMouseLeaveShape()),
                             bool(cad.OnMouseMove()),
                             bool(cad.OnMouseUp()),
                             bool(cad.OnNewLayer()),
                             bool(cad.OnNodeAdded()),
                             bool(cad.OnNodeDeleted()),
                             bool(cad.OnPaint()),
                             bool(cad.OnShapeAdded()),
                             bool(cad.OnShapeCodeDragging()),
                             bool(cad.OnShapeCodeRotating()),
                             bool(cad.OnShapeDeleted()),
                             bool(cad.OnShapeMouseDragged()),
                             bool(cad.OnShapeMouseDragging()),
                             bool(cad.OnShapeMouseResized()),
                             bool(cad.OnShapeMouseResizeFinished()),
                             bool(cad.OnShapeMouseResizing()),
                             bool(cad.OnShapeMouseRotated()),
                             bool(cad.OnShapeMouseRotating()),
                             bool(cad.OnShapeSelected()),
                             bool(cad.OnWholeDragged())};
    for (std::size_t i = 0; i < std::size(assigned); ++i)
        EXPECT_FALSE(assigned[i]) << "event " << i << " assigned at construction";
}

TEST(CadProperties, GridObjectDefaultsAndAssign)
{
    TMyCAD cad;
    TGridObject *grid = cad.GridOperation();
    ASSERT_NE(grid, nullptr);
    EXPECT_EQ(grid->GridColor(), 0xC0C0C0u);
    EXPECT_EQ(grid->GridHeight(), 20.0);
    EXPECT_EQ(grid->GridPenSize(), 1);
    EXPECT_FALSE(grid->GridInZoom());
    EXPECT_TRUE(grid->GridShow());
    EXPECT_EQ(grid->GridType(), TGridType::gLine);
    EXPECT_EQ(grid->GridWidth(), 20.0);

    // Writing the property copies the settings into the surface's own object.
    TGridObject other;
    other.SetGridColor(0x123456);
    other.SetGridHeight(7.5);
    other.SetGridPenSize(3);
    other.SetGridInZoom(true);
    other.SetGridShow(false);
    other.SetGridType(TGridType::gPixel);
    other.SetGridWidth(11);
    EXPECT_TRUE(cad.setProperty("GridOperation", QVariant::fromValue(&other)));
    EXPECT_EQ(cad.GridOperation(), grid);
    for (const char *p : {"GridColor", "GridHeight", "GridPenSize", "GridInZoom", "GridShow",
                          "GridType", "GridWidth"})
        EXPECT_EQ(grid->property(p), other.property(p)) << p;
    cad.SetGridOperation(nullptr);
    EXPECT_EQ(cad.GridOperation(), grid);
    EXPECT_EQ(grid->GridWidth(), 11.0);
}

TEST(CadProperties, DefaultMarkers)
{
    TMyCAD cad;
    // Markers that coincide with the construction value.
    for (const char *p :
         {"CrossLine", "DisableTextInput", "HotShow", "HotSize", "LinkLineDrawStyle",
          "PageHeadAlignment", "PageFootToBottom", "PageHeadToTop", "PrintABordertoBottom",
          "PrintABordertoLeft", "PrintABordertoRight", "PrintABordertoTop", "ShowHotLink",
          "SnapShape", "UndoRedoSize"}) {
        const QVariant marker = TMyCAD::DefaultMarker(p);
        ASSERT_TRUE(marker.isValid()) << p;
        EXPECT_EQ(marker, cad.property(p)) << p;
    }
    // The footer starts right-justified although its marker is centre.
    EXPECT_EQ(TMyCAD::DefaultMarker("PageFootAlignment"), Enum(TAlignment::taCenter));
    EXPECT_NE(TMyCAD::DefaultMarker("PageFootAlignment"), cad.property("PageFootAlignment"));
    for (const char *p : {"ArrowAngle", "Zoom", "ColorOfHot", "SnapPixels", "NoSuchProperty"})
        EXPECT_FALSE(TMyCAD::DefaultMarker(p).isValid()) << p;
    EXPECT_FALSE(TMyCAD::DefaultMarker(nullptr).isValid());

    // SnapPixels is the one property that streaming never writes.
    const QMetaObject *mo = cad.metaObject();
    for (int i = QWidget::staticMetaObject.propertyCount(); i < mo->propertyCount(); ++i) {
        const QMetaProperty p = mo->property(i);
        EXPECT_EQ(p.isStored(), std::string(p.name()) != "SnapPixels") << p.name();
    }
}

TEST(CadProperties, ColorOfHotLeavesProcessColourUntilSet)
{
    const TColor before = HotColor();
    SetHotColor(0x00ABCDEF);
    {
        TMyCAD cad;
        EXPECT_EQ(cad.ColorOfHot(), 0x808080u);
        EXPECT_EQ(HotColor(), 0x00ABCDEFu);
        cad.SetColorOfHot(clRed);
        EXPECT_EQ(cad.ColorOfHot(), clRed);
        EXPECT_EQ(HotColor(), clRed);
        EXPECT_TRUE(cad.setProperty("ColorOfHot", QVariant::fromValue(TColor(clBlue))));
        EXPECT_EQ(HotColor(), clBlue);
    }
    SetHotColor(before);
}

TEST(CadProperties, EnabledAndVisibleForwardToTheWidget)
{
    TMyCAD cad;
    cad.SetEnabled(false);
    EXPECT_FALSE(cad.isEnabled());
    EXPECT_FALSE(cad.Enabled());
    cad.setEnabled(true);
    EXPECT_TRUE(cad.Enabled());

    cad.show();
    EXPECT_TRUE(cad.Visible());
    cad.SetVisible(false);
    EXPECT_TRUE(cad.isHidden());
    EXPECT_FALSE(cad.Visible());
    cad.setVisible(true);
    EXPECT_TRUE(cad.Visible());
    EXPECT_TRUE(cad.isVisible());
}

// ---- Write / read-back walk ----

namespace {

// How one property is exercised: the value written, and how the read-back is judged.
struct TWalkRow
{
    QVariant Value;
    std::function<bool(const QVariant &readBack)> Check;
};

TWalkRow Plain(const QVariant &v)
{
    return {v, [v](const QVariant &r) { return r == v; }};
}

// A handler that counts its calls; the read-back must be the same handler, which calling
// it proves.
template <typename F, typename Call>
TWalkRow Handler(std::shared_ptr<int> calls, F handler, Call call)
{
    return {QVariant::fromValue(handler), [calls, call](const QVariant &r) mutable {
                const F f = r.value<F>();
                if (!f)
                    return false;
                const int before = *calls;
                call(f);
                return *calls == before + 1;
            }};
}

std::map<std::string, TWalkRow> WalkTable(TMyCAD *cad, TGridObject *grid, QLabel *label)
{
    auto n = std::make_shared<int>(0);
    TMyShape *shape = nullptr;
    TMyPoint p{1, 2};
    bool accept = true;
    auto notify =
        Handler(n, TNotifyEvent([n](TMyCAD *) { ++*n; }), [cad](const TNotifyEvent &f) { f(cad); });
    auto shapeEvent = Handler(n, TShapeEvent([n](TMyCAD *, TMyShape *) { ++*n; }),
                              [cad, shape](const TShapeEvent &f) { f(cad, shape); });
    auto indexEvent =
        Handler(n, TShapeIndexEvent([n](TMyCAD *, TMyShape *, std::int32_t) { ++*n; }),
                [cad, shape](const TShapeIndexEvent &f) { f(cad, shape, 3); });
    auto gesture = Handler(n,
                           TShapeMouseDraggingSizingRotating(
                               [n](TMyCAD *, TMyShape *, TMyPoint, TMyPoint &) { ++*n; }),
                           [cad, shape, p](const TShapeMouseDraggingSizingRotating &f) mutable {
                               f(cad, shape, p, p);
                           });
    auto layer =
        Handler(n, TLayerEvent([n](TMyCAD *, std::int32_t, const QString &, bool) { ++*n; }),
                [cad](const TLayerEvent &f) { f(cad, 1, QStringLiteral("L"), true); });
    auto mouse = Handler(
        n,
        TMouseEvent([n](TMyCAD *, TMouseButton, TShiftState, std::int32_t, std::int32_t) { ++*n; }),
        [cad](const TMouseEvent &f) { f(cad, TMouseButton::mbLeft, ssShift, 1, 2); });

    TUserData data;
    data.AddKeyandValue(QStringLiteral("k"), QStringLiteral("v"));
    TBitmap bitmap(3, 2);
    bitmap.Fill(clRed);
    TPen pen;
    pen.Color = clRed;
    pen.Width = 3;
    TBrush brush;
    brush.Style = TBrushStyle::bsCross;
    TFont font;
    font.Name = QStringLiteral("Courier");
    font.SetHeight(-20);

    return {
        {"ArcMode", Plain(Enum(TArcMode::amEllipse))},
        {"ArrowAngle", Plain(25)},
        {"ArrowLength", Plain(Byte(12))},
        {"ArrowOffset", Plain(Byte(5))},
        {"ArrowStyle", Plain(Enum(TArrowStyle::ADouble))},
        {"BkBitmap", Plain(QVariant::fromValue(bitmap))},
        {"BkBitmapMode", Plain(Enum(TBkBitmapMode::Tiled))},
        {"Brush", Plain(QVariant::fromValue(brush))},
        {"ColorOfBackGround", Plain(QVariant::fromValue(TColor(0x102030)))},
        {"ColorOfHot", Plain(QVariant::fromValue(TColor(0x405060)))},
        {"CrossLine", Plain(false)},
        {"DragEnable", Plain(false)},
        {"DragMode", Plain(Enum(TDragMode::dgVert))},
        {"DragTrace", Plain(false)},
        {"DisableTextInput", Plain(true)},
        {"Enabled", Plain(false)},
        {"Font", Plain(QVariant::fromValue(font))},
        // The surface keeps its own grid object and copies the written one into it.
        {"GridOperation",
         {QVariant::fromValue(grid),
          [cad](const QVariant &r) {
              auto *g = r.value<TGridObject *>();
              return g == cad->GridOperation() && g->GridWidth() == 33.0;
          }}},
        {"HotShow", Plain(false)},
        {"HotSize", Plain(Byte(7))},
        {"LabelValue", Plain(QVariant::fromValue(label))},
        {"LabelXY", Plain(QVariant::fromValue(label))},
        {"LinklineAroundShape", Plain(false)},
        {"LinkLineDrawStyle", Plain(Enum(TLinkLineDrawStyle::lldsFree))},
        {"LockBound", Plain(true)},
        {"MouseEffect", Plain(false)},
        {"OnActionToolToSelecting", notify},
        {"OnChildShapeSelected",
         Handler(
             n, TChildShapeSelected([n](TMyCAD *, TMyShape *, bool &) { ++*n; }),
             [cad, shape, accept](const TChildShapeSelected &f) mutable { f(cad, shape, accept); })},
        {"OnClick", notify},
        {"OnDblClick", notify},
        {"OnDeleteLayer", layer},
        {"OnDragDrop",
         Handler(n, TDragDropEvent([n](TMyCAD *, QObject *, std::int32_t, std::int32_t) { ++*n; }),
                 [cad](const TDragDropEvent &f) { f(cad, nullptr, 1, 2); })},
        {"OnDragOver", Handler(n,
                               TDragOverEvent([n](TMyCAD *, QObject *, std::int32_t, std::int32_t,
                                                  TDragState, bool &) { ++*n; }),
                               [cad, accept](const TDragOverEvent &f) mutable {
                                   f(cad, nullptr, 1, 2, TDragState::dsDragMove, accept);
                               })},
        {"OnMouseDown", mouse},
        {"OnMouseEnter", notify},
        {"OnMouseEnterShape", shapeEvent},
        {"OnMouseLeave", notify},
        {"OnMouseLeaveShape", shapeEvent},
        {"OnMouseMove",
         Handler(n,
                 TMouseMoveEvent([n](TMyCAD *, TShiftState, std::int32_t, std::int32_t) { ++*n; }),
                 [cad](const TMouseMoveEvent &f) { f(cad, 0, 1, 2); })},
        {"OnMouseUp", mouse},
        {"OnNewLayer", layer},
        {"OnNodeAdded", indexEvent},
        {"OnNodeDeleted", indexEvent},
        {"OnPaint", notify},
        {"OnShapeAdded", indexEvent},
        {"OnShapeCodeDragging",
         Handler(n, TShapeCodeDragging([n](TMyCAD *, TMyShape *, double, double) { ++*n; }),
                 [cad, shape](const TShapeCodeDragging &f) { f(cad, shape, 1, 2); })},
        {"OnShapeCodeRotating",
         Handler(n, TShapeCodeRotating([n](TMyCAD *, TMyShape *, float) { ++*n; }),
                 [cad, shape](const TShapeCodeRotating &f) { f(cad, shape, 0.5f); })},
        {"OnShapeDeleted", shapeEvent},
        {"OnShapeMouseDragged", gesture},
        {"OnShapeMouseDragging", gesture},
        {"OnShapeMouseResized", gesture},
        {"OnShapeMouseResizeFinished", gesture},
        {"OnShapeMouseResizing", gesture},
        {"OnShapeMouseRotated", gesture},
        {"OnShapeMouseRotating", gesture},
        {"OnShapeSelected",
         Handler(n, TShapeSelected([n](TMyCAD *, TMyShape *, TMyShape *) { ++*n; }),
                 [cad, shape](const TShapeSelected &f) { f(cad, shape, shape); })},
        {"OnWholeDragged", notify},
        {"OperateAllLayer", Plain(false)},
        {"PageFoot", Plain(QStringLiteral("foot"))},
        {"PageFootAlignment", Plain(Enum(TAlignment::taLeftJustify))},
        {"PageFootFont", Plain(QVariant::fromValue(font))},
        {"PageFootToBottom", Plain(Byte(3))},
        {"PageHead", Plain(QStringLiteral("head"))},
        {"PageHeadAlignment", Plain(Enum(TAlignment::taRightJustify))},
        {"PageHeadFont", Plain(QVariant::fromValue(font))},
        {"PageHeadToTop", Plain(Byte(4))},
        {"PageHeight", Plain(QVariant::fromValue(std::uint32_t(123)))},
        {"PageOrientation", Plain(Enum(TPrinterOrientation::poLandscape))},
        {"PageStyle", Plain(Enum(TPageStyle::B5))},
        {"PageWidth", Plain(QVariant::fromValue(std::uint32_t(77)))},
        {"Pen", Plain(QVariant::fromValue(pen))},
        {"PenStyleJoinType", Plain(Enum(TPenStyleJoinType::psjtMITER))},
        {"PenStyleEndCapType", Plain(Enum(TPenStyleEndCapType::psectFLAT))},
        {"PrintABorder", Plain(false)},
        {"PrintABordertoBottom", Plain(Byte(1))},
        {"PrintABordertoLeft", Plain(Byte(2))},
        {"PrintABordertoRight", Plain(Byte(3))},
        {"PrintABordertoTop", Plain(Byte(4))},
        {"PrintBackground", Plain(true)},
        {"Ratio", Plain(2.5)},
        {"ResizeEnable", Plain(false)},
        {"ReturnToSelecting", Plain(false)},
        {"RotateConstraintDegree", Plain(15)},
        {"RotateEnable", Plain(false)},
        {"ShapeTool", Plain(Enum(TDrawTool::SpRectangle))},
        {"ShowHint", Plain(true)},
        {"ShowHotLink", Plain(false)},
        {"Snap", Plain(false)},
        {"SnapPixels", Plain(Byte(9))},
        {"SnapShape", Plain(true)},
        {"Tag", Plain(-42)},
        {"TheUNIT", Plain(Enum(TUnits::inch))},
        {"UndoRedoSize", Plain(Byte(50))},
        {"UserData", Plain(QVariant::fromValue(data))},
        {"Version", {QVariant(), [](const QVariant &r) { return r == QStringLiteral("2013"); }}},
        {"Visible", Plain(false)},
        {"XYMode", Plain(Enum(TXYMode::Mode2))},
        {"Zoom", Plain(1.5)},
    };
}

} // namespace

TEST(CadProperties, EveryPropertyWritesAndReadsBack)
{
    TMyCAD cad;
    TGridObject grid;
    grid.SetGridWidth(33);
    QLabel label;
    const auto table = WalkTable(&cad, &grid, &label);
    const QMetaObject *mo = cad.metaObject();
    int walked = 0;
    for (int i = QWidget::staticMetaObject.propertyCount(); i < mo->propertyCount(); ++i) {
        const QMetaProperty p = mo->property(i);
        const auto it = table.find(p.name());
        if (it == table.end()) {
            ADD_FAILURE() << "no walk row for property " << p.name();
            continue;
        }
        const TWalkRow &row = it->second;
        if (!row.Value.isValid()) {
            EXPECT_FALSE(p.isWritable()) << p.name();
        } else {
            ASSERT_TRUE(p.isWritable()) << p.name();
            // The written value must differ from what the property holds already.
            EXPECT_FALSE(row.Check(p.read(&cad))) << p.name() << " row holds the current value";
            EXPECT_TRUE(p.write(&cad, row.Value)) << p.name();
        }
        EXPECT_TRUE(row.Check(p.read(&cad))) << p.name();
        ++walked;
    }
    EXPECT_EQ(walked, 98);
}
