// SPDX-License-Identifier: MIT
// Published properties of the surface: order and construction values, event handlers read
// back as the handler written, markers, the grid object and the widget flags. Writing and
// reading back every other property is the widget property walk's job.
#include <tessal/geometry/canvasmodes.h>
#include <tessal/surface/cad.h>

#include <gtest/gtest.h>

#include <QMetaProperty>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <tuple>

using namespace tessal;

namespace {

QVariant Byte(int v)
{
    return QVariant::fromValue(std::uint8_t(v));
}

template <typename T>
QVariant V(T value)
{
    return QVariant::fromValue(value);
}

// An event property starts unassigned; a handler written to it that counts its calls is
// read back as a handler that, called with default arguments, counts once.
template <typename F>
struct THandlerWalk;
template <typename... A>
struct THandlerWalk<std::function<void(A...)>>
{
    using F = std::function<void(A...)>;
    static bool Walk(TMyCAD &cad, const QMetaProperty &p)
    {
        auto calls = std::make_shared<int>(0);
        if (p.read(&cad).value<F>() || !p.write(&cad, V(F([calls](A...) { ++*calls; }))))
            return false;
        std::tuple<std::decay_t<A>...> args{};
        if (const F read = p.read(&cad).value<F>())
            std::apply(read, args);
        return *calls == 1;
    }
};

using THandlerCheck = bool (*)(TMyCAD &, const QMetaProperty &);

template <typename... F>
std::map<int, THandlerCheck> HandlerChecks()
{
    return {{QMetaType::fromType<F>().id(), &THandlerWalk<F>::Walk}...};
}

} // namespace

// Every published property in the published order, which the meta-object must list exactly
// after QWidget's own, with its construction value (none: an event, or the grid object).
TEST(CadProperties, PublishedOrderConstructionValuesAndHandlers)
{
    const TFont font;
    // clang-format off
    const std::pair<const char *, QVariant> table[] = {
        {"ArcMode", V(TArcMode::amCircle)}, {"ArrowAngle", 10}, {"ArrowLength", Byte(30)},
        {"ArrowOffset", Byte(0)}, {"ArrowStyle", V(TArrowStyle::ANone)}, {"BkBitmap", V(TBitmap())},
        {"BkBitmapMode", V(TBkBitmapMode::Center)}, {"Brush", V(TBrush())},
        {"ColorOfBackGround", V(TColor(0xFFFFFF))}, {"ColorOfHot", V(TColor(0x808080))},
        {"CrossLine", true}, {"DragEnable", true}, {"DragMode", V(TDragMode::dgBoth)},
        {"DragTrace", true}, {"DisableTextInput", false}, {"Enabled", true}, {"Font", V(font)},
        {"GridOperation", {}}, {"HotShow", true}, {"HotSize", Byte(4)},
        {"LabelValue", V<QLabel *>(nullptr)}, {"LabelXY", V<QLabel *>(nullptr)},
        {"LinklineAroundShape", true}, {"LinkLineDrawStyle", V(TLinkLineDrawStyle::lldsHV)},
        {"LockBound", false}, {"MouseEffect", true}, {"OnActionToolToSelecting", {}},
        {"OnChildShapeSelected", {}}, {"OnClick", {}}, {"OnDblClick", {}}, {"OnDeleteLayer", {}},
        {"OnDragDrop", {}}, {"OnDragOver", {}}, {"OnMouseDown", {}}, {"OnMouseEnter", {}},
        {"OnMouseEnterShape", {}}, {"OnMouseLeave", {}}, {"OnMouseLeaveShape", {}},
        {"OnMouseMove", {}}, {"OnMouseUp", {}}, {"OnNewLayer", {}}, {"OnNodeAdded", {}},
        {"OnNodeDeleted", {}}, {"OnPaint", {}}, {"OnShapeAdded", {}}, {"OnShapeCodeDragging", {}},
        {"OnShapeCodeRotating", {}}, {"OnShapeDeleted", {}}, {"OnShapeMouseDragged", {}},
        {"OnShapeMouseDragging", {}}, {"OnShapeMouseResized", {}},
        {"OnShapeMouseResizeFinished", {}}, {"OnShapeMouseResizing", {}},
        {"OnShapeMouseRotated", {}}, {"OnShapeMouseRotating", {}}, {"OnShapeSelected", {}},
        {"OnWholeDragged", {}}, {"OperateAllLayer", true}, {"PageFoot", QString()},
        {"PageFootAlignment", V(TAlignment::taRightJustify)}, {"PageFootFont", V(font)},
        {"PageFootToBottom", Byte(15)}, {"PageHead", QString()},
        {"PageHeadAlignment", V(TAlignment::taCenter)}, {"PageHeadFont", V(font)},
        {"PageHeadToTop", Byte(15)}, {"PageHeight", V(std::uint32_t(297))},
        {"PageOrientation", V(TPrinterOrientation::poPortrait)}, {"PageStyle", V(TPageStyle::A4)},
        {"PageWidth", V(std::uint32_t(210))}, {"Pen", V(TPen())},
        {"PenStyleJoinType", V(TPenStyleJoinType::psjtROUND)},
        {"PenStyleEndCapType", V(TPenStyleEndCapType::psectROUND)}, {"PrintABorder", true},
        {"PrintABordertoBottom", Byte(20)}, {"PrintABordertoLeft", Byte(20)},
        {"PrintABordertoRight", Byte(20)}, {"PrintABordertoTop", Byte(20)},
        {"PrintBackground", false}, {"Ratio", 1.0}, {"ResizeEnable", true},
        {"ReturnToSelecting", true}, {"RotateConstraintDegree", 0}, {"RotateEnable", true},
        {"ShapeTool", V(TDrawTool::SpSelecting)}, {"ShowHint", false}, {"ShowHotLink", true},
        {"Snap", true}, {"SnapPixels", Byte(4)}, {"SnapShape", false}, {"Tag", 0},
        {"TheUNIT", V(TUnits::mm)}, {"UndoRedoSize", Byte(10)}, {"UserData", V(TUserData())},
        {"Version", QStringLiteral("2013")}, {"Visible", true}, {"XYMode", V(TXYMode::Mode0)},
        {"Zoom", 1.0}, {"KeyboardEditing", true}, {"LiveConnectors", false},
        {"OnRequestPicture", {}}, {"UserDataTexts", QStringList()}};
    // clang-format on
    const auto handlers =
        HandlerChecks<TNotifyEvent, TChildShapeSelected, TLayerEvent, TDragDropEvent,
                      TDragOverEvent, TMouseEvent, TMouseMoveEvent, TShapeEvent, TShapeIndexEvent,
                      TShapeSelected, TShapeCodeDragging, TShapeCodeRotating,
                      TShapeMouseDraggingSizingRotating, TRequestPicture>();
    TMyCAD cad;
    const QMetaObject *mo = cad.metaObject();
    const int first = QWidget::staticMetaObject.propertyCount();
    ASSERT_EQ(mo->propertyCount() - first, int(std::size(table)));
    ASSERT_EQ(std::size(table), 102u);
    int events = 0;
    for (int i = 0; i < 102; ++i) {
        const auto &[name, initial] = table[i];
        SCOPED_TRACE(name);
        const QMetaProperty p = mo->property(first + i);
        ASSERT_STREQ(p.name(), name) << "position " << i;
        const QVariant value = p.read(&cad);
        ASSERT_TRUE(value.isValid());
        EXPECT_EQ(p.isWritable(), std::string(name) != "Version");
        if (const auto h = handlers.find(p.metaType().id()); h != handlers.end()) {
            ++events;
            EXPECT_FALSE(initial.isValid());
            EXPECT_TRUE(h->second(cad, p));
        } else if (initial.isValid()) {
            EXPECT_EQ(value, initial);
        } else {
            EXPECT_EQ(value.value<TGridObject *>(), cad.GridOperation());
        }
    }
    EXPECT_EQ(events, 32);
    EXPECT_DOUBLE_EQ(cad.PreZoom(), 1.0);
    EXPECT_EQ(cad.ActionTool(), TActionTools::dtSelecting);
    EXPECT_EQ(cad.cursor().shape(), Qt::CrossCursor);
    EXPECT_EQ(cad.FileVersion(), QStringLiteral("XP.j"));
    EXPECT_FALSE(cad.IsBusy());
    // Enabled is the widget's own flag.
    cad.setEnabled(false);
    EXPECT_FALSE(cad.Enabled());
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
    EXPECT_EQ(TMyCAD::DefaultMarker("PageFootAlignment"), V(TAlignment::taCenter));
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
