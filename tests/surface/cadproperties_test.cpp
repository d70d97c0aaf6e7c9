// SPDX-License-Identifier: MIT
// Published properties of the surface: order, construction values, markers, and a write /
// read-back walk over every property through the meta-object.
#include <tessal/geometry/canvasmodes.h>
#include <tessal/surface/cad.h>

#include <gtest/gtest.h>

#include <QMetaProperty>

#include <functional>
#include <memory>
#include <string>
#include <vector>

using namespace tessal;

namespace {

QVariant Byte(int v)
{
    return QVariant::fromValue(std::uint8_t(v));
}

template <typename E>
QVariant Enum(E e)
{
    return QVariant::fromValue(e);
}

// How one property is exercised: the value written (invalid for a read-only property), how
// the read-back is judged, and, for properties without a comparable construction value, how
// the construction state is judged.
struct TWalk
{
    QVariant Value;
    std::function<bool(const QVariant &readBack)> Check;
    std::function<bool(const QVariant &readBack)> AtStart = {};
};

// One published property: its name, its construction value (invalid: judged by AtStart) and
// its walk.
struct TRow
{
    const char *Name;
    QVariant Initial;
    TWalk Walk;
};

TWalk Plain(const QVariant &v)
{
    return {v, [v](const QVariant &r) { return r == v; }};
}

// A handler that counts its calls; the read-back must be the same handler, which calling
// it proves. Events start unassigned.
template <typename F, typename Call>
TWalk Handler(std::shared_ptr<int> calls, F handler, Call call)
{
    return {QVariant::fromValue(handler),
            [calls, call](const QVariant &r) mutable {
                const F f = r.value<F>();
                if (!f)
                    return false;
                const int before = *calls;
                call(f);
                return *calls == before + 1;
            },
            [](const QVariant &r) { return !r.value<F>(); }};
}

// Every published property in the published order, which the meta-object must list exactly
// after QWidget's own.
std::vector<TRow> Table(TMyCAD *cad, TGridObject *grid, QLabel *label)
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
        {"ArcMode", Enum(TArcMode::amCircle), Plain(Enum(TArcMode::amEllipse))},
        {"ArrowAngle", 10, Plain(25)},
        {"ArrowLength", Byte(30), Plain(Byte(12))},
        {"ArrowOffset", Byte(0), Plain(Byte(5))},
        {"ArrowStyle", Enum(TArrowStyle::ANone), Plain(Enum(TArrowStyle::ADouble))},
        {"BkBitmap", QVariant::fromValue(TBitmap()), Plain(QVariant::fromValue(bitmap))},
        {"BkBitmapMode", Enum(TBkBitmapMode::Center), Plain(Enum(TBkBitmapMode::Tiled))},
        {"Brush", QVariant::fromValue(TBrush()), Plain(QVariant::fromValue(brush))},
        {"ColorOfBackGround", QVariant::fromValue(TColor(0xFFFFFF)),
         Plain(QVariant::fromValue(TColor(0x102030)))},
        {"ColorOfHot", QVariant::fromValue(TColor(0x808080)),
         Plain(QVariant::fromValue(TColor(0x405060)))},
        {"CrossLine", true, Plain(false)},
        {"DragEnable", true, Plain(false)},
        {"DragMode", Enum(TDragMode::dgBoth), Plain(Enum(TDragMode::dgVert))},
        {"DragTrace", true, Plain(false)},
        {"DisableTextInput", false, Plain(true)},
        {"Enabled", true, Plain(false)},
        {"Font", QVariant::fromValue(TFont()), Plain(QVariant::fromValue(font))},
        // The surface keeps its own grid object and copies the written one into it.
        {"GridOperation",
         {},
         {QVariant::fromValue(grid),
          [cad](const QVariant &r) {
              auto *g = r.value<TGridObject *>();
              return g == cad->GridOperation() && g->GridWidth() == 33.0;
          },
          [](const QVariant &r) { return r.value<TGridObject *>() != nullptr; }}},
        {"HotShow", true, Plain(false)},
        {"HotSize", Byte(4), Plain(Byte(7))},
        {"LabelValue", QVariant::fromValue<QLabel *>(nullptr), Plain(QVariant::fromValue(label))},
        {"LabelXY", QVariant::fromValue<QLabel *>(nullptr), Plain(QVariant::fromValue(label))},
        {"LinklineAroundShape", true, Plain(false)},
        {"LinkLineDrawStyle", Enum(TLinkLineDrawStyle::lldsHV),
         Plain(Enum(TLinkLineDrawStyle::lldsFree))},
        {"LockBound", false, Plain(true)},
        {"MouseEffect", true, Plain(false)},
        {"OnActionToolToSelecting", {}, notify},
        {"OnChildShapeSelected",
         {},
         Handler(n, TChildShapeSelected([n](TMyCAD *, TMyShape *, bool &) { ++*n; }),
                 [cad, shape, accept](const TChildShapeSelected &f) mutable {
                     f(cad, shape, accept);
                 })},
        {"OnClick", {}, notify},
        {"OnDblClick", {}, notify},
        {"OnDeleteLayer", {}, layer},
        {"OnDragDrop",
         {},
         Handler(n, TDragDropEvent([n](TMyCAD *, QObject *, std::int32_t, std::int32_t) { ++*n; }),
                 [cad](const TDragDropEvent &f) { f(cad, nullptr, 1, 2); })},
        {"OnDragOver",
         {},
         Handler(n,
                 TDragOverEvent([n](TMyCAD *, QObject *, std::int32_t, std::int32_t, TDragState,
                                    bool &) { ++*n; }),
                 [cad, accept](const TDragOverEvent &f) mutable {
                     f(cad, nullptr, 1, 2, TDragState::dsDragMove, accept);
                 })},
        {"OnMouseDown", {}, mouse},
        {"OnMouseEnter", {}, notify},
        {"OnMouseEnterShape", {}, shapeEvent},
        {"OnMouseLeave", {}, notify},
        {"OnMouseLeaveShape", {}, shapeEvent},
        {"OnMouseMove",
         {},
         Handler(n,
                 TMouseMoveEvent([n](TMyCAD *, TShiftState, std::int32_t, std::int32_t) { ++*n; }),
                 [cad](const TMouseMoveEvent &f) { f(cad, 0, 1, 2); })},
        {"OnMouseUp", {}, mouse},
        {"OnNewLayer", {}, layer},
        {"OnNodeAdded", {}, indexEvent},
        {"OnNodeDeleted", {}, indexEvent},
        {"OnPaint", {}, notify},
        {"OnShapeAdded", {}, indexEvent},
        {"OnShapeCodeDragging",
         {},
         Handler(n, TShapeCodeDragging([n](TMyCAD *, TMyShape *, double, double) { ++*n; }),
                 [cad, shape](const TShapeCodeDragging &f) { f(cad, shape, 1, 2); })},
        {"OnShapeCodeRotating",
         {},
         Handler(n, TShapeCodeRotating([n](TMyCAD *, TMyShape *, float) { ++*n; }),
                 [cad, shape](const TShapeCodeRotating &f) { f(cad, shape, 0.5f); })},
        {"OnShapeDeleted", {}, shapeEvent},
        {"OnShapeMouseDragged", {}, gesture},
        {"OnShapeMouseDragging", {}, gesture},
        {"OnShapeMouseResized", {}, gesture},
        {"OnShapeMouseResizeFinished", {}, gesture},
        {"OnShapeMouseResizing", {}, gesture},
        {"OnShapeMouseRotated", {}, gesture},
        {"OnShapeMouseRotating", {}, gesture},
        {"OnShapeSelected",
         {},
         Handler(n, TShapeSelected([n](TMyCAD *, TMyShape *, TMyShape *) { ++*n; }),
                 [cad, shape](const TShapeSelected &f) { f(cad, shape, shape); })},
        {"OnWholeDragged", {}, notify},
        {"OperateAllLayer", true, Plain(false)},
        {"PageFoot", QString(), Plain(QStringLiteral("foot"))},
        {"PageFootAlignment", Enum(TAlignment::taRightJustify),
         Plain(Enum(TAlignment::taLeftJustify))},
        {"PageFootFont", QVariant::fromValue(TFont()), Plain(QVariant::fromValue(font))},
        {"PageFootToBottom", Byte(15), Plain(Byte(3))},
        {"PageHead", QString(), Plain(QStringLiteral("head"))},
        {"PageHeadAlignment", Enum(TAlignment::taCenter), Plain(Enum(TAlignment::taRightJustify))},
        {"PageHeadFont", QVariant::fromValue(TFont()), Plain(QVariant::fromValue(font))},
        {"PageHeadToTop", Byte(15), Plain(Byte(4))},
        {"PageHeight", QVariant::fromValue(std::uint32_t(297)),
         Plain(QVariant::fromValue(std::uint32_t(123)))},
        {"PageOrientation", Enum(TPrinterOrientation::poPortrait),
         Plain(Enum(TPrinterOrientation::poLandscape))},
        {"PageStyle", Enum(TPageStyle::A4), Plain(Enum(TPageStyle::B5))},
        {"PageWidth", QVariant::fromValue(std::uint32_t(210)),
         Plain(QVariant::fromValue(std::uint32_t(77)))},
        {"Pen", QVariant::fromValue(TPen()), Plain(QVariant::fromValue(pen))},
        {"PenStyleJoinType", Enum(TPenStyleJoinType::psjtROUND),
         Plain(Enum(TPenStyleJoinType::psjtMITER))},
        {"PenStyleEndCapType", Enum(TPenStyleEndCapType::psectROUND),
         Plain(Enum(TPenStyleEndCapType::psectFLAT))},
        {"PrintABorder", true, Plain(false)},
        {"PrintABordertoBottom", Byte(20), Plain(Byte(1))},
        {"PrintABordertoLeft", Byte(20), Plain(Byte(2))},
        {"PrintABordertoRight", Byte(20), Plain(Byte(3))},
        {"PrintABordertoTop", Byte(20), Plain(Byte(4))},
        {"PrintBackground", false, Plain(true)},
        {"Ratio", 1.0, Plain(2.5)},
        {"ResizeEnable", true, Plain(false)},
        {"ReturnToSelecting", true, Plain(false)},
        {"RotateConstraintDegree", 0, Plain(15)},
        {"RotateEnable", true, Plain(false)},
        {"ShapeTool", Enum(TDrawTool::SpSelecting), Plain(Enum(TDrawTool::SpRectangle))},
        {"ShowHint", false, Plain(true)},
        {"ShowHotLink", true, Plain(false)},
        {"Snap", true, Plain(false)},
        {"SnapPixels", Byte(4), Plain(Byte(9))},
        {"SnapShape", false, Plain(true)},
        {"Tag", 0, Plain(-42)},
        {"TheUNIT", Enum(TUnits::mm), Plain(Enum(TUnits::inch))},
        {"UndoRedoSize", Byte(10), Plain(Byte(50))},
        {"UserData", QVariant::fromValue(TUserData()), Plain(QVariant::fromValue(data))},
        {"Version",
         QStringLiteral("2013"),
         {QVariant(), [](const QVariant &r) { return r == QStringLiteral("2013"); }}},
        {"Visible", true, Plain(false)},
        {"XYMode", Enum(TXYMode::Mode0), Plain(Enum(TXYMode::Mode2))},
        {"Zoom", 1.0, Plain(1.5)},
        {"KeyboardEditing", true, Plain(false)},
        {"LiveConnectors", false, Plain(true)},
        {"OnRequestPicture",
         {},
         Handler(n, TRequestPicture([n](TMyCAD *, TBitmap &) { ++*n; }),
                 [cad](const TRequestPicture &f) {
                     TBitmap picture;
                     f(cad, picture);
                 })},
    };
}

} // namespace

// Construction values on a fresh surface, then on a second one each property written with a
// value it does not hold yet and read back.
TEST(CadProperties, PublishedOrderConstructionValuesAndWriteReadBack)
{
    TMyCAD cad;
    TGridObject grid;
    grid.SetGridWidth(33);
    QLabel label;
    const auto table = Table(&cad, &grid, &label);
    const QMetaObject *mo = cad.metaObject();
    const int first = QWidget::staticMetaObject.propertyCount();
    ASSERT_EQ(table.size(), 101u);
    ASSERT_EQ(mo->propertyCount() - first, 101);

    TMyCAD fresh;
    for (int i = 0; i < 101; ++i) {
        const TRow &row = table[i];
        ASSERT_STREQ(mo->property(first + i).name(), row.Name) << "position " << i;
        const QVariant value = fresh.property(row.Name);
        ASSERT_TRUE(value.isValid()) << row.Name;
        if (row.Initial.isValid())
            EXPECT_EQ(value, row.Initial) << row.Name;
        else
            EXPECT_TRUE(row.Walk.AtStart(value)) << row.Name;
    }
    EXPECT_DOUBLE_EQ(fresh.PreZoom(), 1.0);
    EXPECT_EQ(fresh.ActionTool(), TActionTools::dtSelecting);
    EXPECT_EQ(fresh.cursor().shape(), Qt::CrossCursor);
    EXPECT_EQ(fresh.FileVersion(), QStringLiteral("XP.j"));
    EXPECT_EQ(fresh.GetShapesCount(), 0);
    EXPECT_EQ(fresh.ShapeIdCounter(), 0);
    EXPECT_FALSE(fresh.IsBusy());

    for (int i = 0; i < 101; ++i) {
        const QMetaProperty p = mo->property(first + i);
        const TWalk &walk = table[i].Walk;
        if (!walk.Value.isValid()) {
            EXPECT_FALSE(p.isWritable()) << p.name();
        } else {
            ASSERT_TRUE(p.isWritable()) << p.name();
            EXPECT_FALSE(walk.Check(p.read(&cad))) << p.name() << " row holds the current value";
            EXPECT_TRUE(p.write(&cad, walk.Value)) << p.name();
        }
        EXPECT_TRUE(walk.Check(p.read(&cad))) << p.name();
    }
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
