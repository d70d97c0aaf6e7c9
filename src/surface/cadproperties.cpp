// SPDX-License-Identifier: MIT
// Setters of the published properties and their default markers.
#include <tessal/surface/cad.h>

#include <tessal/geometry/canvasmodes.h>

#include <cstring>

namespace tessal {

QVariant TMyCAD::DefaultMarker(const char *property)
{
    struct TMarker
    {
        const char *Property;
        QVariant Value;
    };
    static const TMarker markers[] = {
        {"CrossLine", true},
        {"DisableTextInput", false},
        {"HotShow", true},
        {"HotSize", QVariant::fromValue(std::uint8_t(4))},
        {"LinkLineDrawStyle", QVariant::fromValue(TLinkLineDrawStyle::lldsHV)},
        {"PageFootAlignment", QVariant::fromValue(TAlignment::taCenter)},
        {"PageFootToBottom", QVariant::fromValue(std::uint8_t(15))},
        {"PageHeadAlignment", QVariant::fromValue(TAlignment::taCenter)},
        {"PageHeadToTop", QVariant::fromValue(std::uint8_t(15))},
        {"PrintABordertoBottom", QVariant::fromValue(std::uint8_t(20))},
        {"PrintABordertoLeft", QVariant::fromValue(std::uint8_t(20))},
        {"PrintABordertoRight", QVariant::fromValue(std::uint8_t(20))},
        {"PrintABordertoTop", QVariant::fromValue(std::uint8_t(20))},
        {"ShowHotLink", true},
        {"SnapShape", false},
        {"UndoRedoSize", QVariant::fromValue(std::uint8_t(10))},
    };
    for (const TMarker &m : markers)
        if (property && std::strcmp(m.Property, property) == 0)
            return m.Value;
    return {};
}

void TMyCAD::SetArcMode(TArcMode value)
{
    Store(m_ArcMode, value);
}

void TMyCAD::SetArrowAngle(std::int32_t value)
{
    Store(m_ArrowAngle, value);
}

void TMyCAD::SetArrowLength(std::uint8_t value)
{
    Store(m_ArrowLength, value);
}

void TMyCAD::SetArrowOffset(std::uint8_t value)
{
    Store(m_ArrowOffset, value);
}

void TMyCAD::SetArrowStyle(TArrowStyle value)
{
    Store(m_ArrowStyle, value);
}

void TMyCAD::SetBkBitmap(const TBitmap &value)
{
    Store(m_BkBitmap, value);
}

void TMyCAD::SetBkBitmapMode(TBkBitmapMode value)
{
    Store(m_BkBitmapMode, value);
}

void TMyCAD::SetBrush(const TBrush &value)
{
    Store(m_Brush, value);
}

void TMyCAD::SetColorOfBackGround(TColor value)
{
    Store(m_ColorOfBackGround, value);
}

void TMyCAD::SetColorOfHot(TColor value)
{
    SetHotColor(value);
    Store(m_ColorOfHot, value);
}

void TMyCAD::SetCrossLine(bool value)
{
    Store(m_CrossLine, value);
}

void TMyCAD::SetDragEnable(bool value)
{
    Store(m_DragEnable, value);
}

void TMyCAD::SetDragTrace(bool value)
{
    Store(m_DragTrace, value);
}

void TMyCAD::SetDisableTextInput(bool value)
{
    Store(m_DisableTextInput, value);
}

void TMyCAD::SetEnabled(bool value)
{
    setEnabled(value);
    Invalidate();
}

void TMyCAD::SetFont(const TFont &value)
{
    Store(m_Font, value);
}

void TMyCAD::SetGridOperation(TGridObject *value)
{
    if (value && value != m_Grid)
        m_Grid->Assign(*value);
}

void TMyCAD::SetHotShow(bool value)
{
    Store(m_HotShow, value);
}

void TMyCAD::SetHotSize(std::uint8_t value)
{
    Store(m_HotSize, value);
}

void TMyCAD::SetLinklineAroundShape(bool value)
{
    Store(m_LinklineAroundShape, value);
}

void TMyCAD::SetLinkLineDrawStyle(TLinkLineDrawStyle value)
{
    Store(m_LinkLineDrawStyle, value);
}

void TMyCAD::SetLockBound(bool value)
{
    Store(m_LockBound, value);
}

void TMyCAD::SetMouseEffect(bool value)
{
    Store(m_MouseEffect, value);
}

void TMyCAD::SetOperateAllLayer(bool value)
{
    Store(m_OperateAllLayer, value);
}

void TMyCAD::SetPageFoot(const QString &value)
{
    Store(m_PageFoot, value);
}

void TMyCAD::SetPageFootAlignment(TAlignment value)
{
    Store(m_PageFootAlignment, value);
}

void TMyCAD::SetPageFootFont(const TFont &value)
{
    Store(m_PageFootFont, value);
}

void TMyCAD::SetPageFootToBottom(std::uint8_t value)
{
    Store(m_PageFootToBottom, value);
}

void TMyCAD::SetPageHead(const QString &value)
{
    Store(m_PageHead, value);
}

void TMyCAD::SetPageHeadAlignment(TAlignment value)
{
    Store(m_PageHeadAlignment, value);
}

void TMyCAD::SetPageHeadFont(const TFont &value)
{
    Store(m_PageHeadFont, value);
}

void TMyCAD::SetPageHeadToTop(std::uint8_t value)
{
    Store(m_PageHeadToTop, value);
}

void TMyCAD::SetPen(const TPen &value)
{
    Store(m_Pen, value);
}

void TMyCAD::SetPenStyleJoinType(TPenStyleJoinType value)
{
    Store(m_PenStyleJoinType, value);
}

void TMyCAD::SetPenStyleEndCapType(TPenStyleEndCapType value)
{
    Store(m_PenStyleEndCapType, value);
}

void TMyCAD::SetPrintABorder(bool value)
{
    Store(m_PrintABorder, value);
}

void TMyCAD::SetPrintABordertoBottom(std::uint8_t value)
{
    Store(m_PrintABordertoBottom, value);
}

void TMyCAD::SetPrintABordertoLeft(std::uint8_t value)
{
    Store(m_PrintABordertoLeft, value);
}

void TMyCAD::SetPrintABordertoRight(std::uint8_t value)
{
    Store(m_PrintABordertoRight, value);
}

void TMyCAD::SetPrintABordertoTop(std::uint8_t value)
{
    Store(m_PrintABordertoTop, value);
}

void TMyCAD::SetPrintBackground(bool value)
{
    Store(m_PrintBackground, value);
}

void TMyCAD::SetResizeEnable(bool value)
{
    Store(m_ResizeEnable, value);
}

void TMyCAD::SetReturnToSelecting(bool value)
{
    Store(m_ReturnToSelecting, value);
}

void TMyCAD::SetRotateConstraintDegree(std::int32_t value)
{
    Store(m_RotateConstraintDegree, value);
}

void TMyCAD::SetRotateEnable(bool value)
{
    Store(m_RotateEnable, value);
}

// The mouse machine's action tool follows the tool once the machine exists; until then
// the tool is only recorded.
void TMyCAD::SetShowHint(bool value)
{
    Store(m_ShowHint, value);
}

void TMyCAD::SetShowHotLink(bool value)
{
    Store(m_ShowHotLink, value);
}

void TMyCAD::SetSnap(bool value)
{
    Store(m_Snap, value);
}

void TMyCAD::SetSnapShape(bool value)
{
    Store(m_SnapShape, value);
}

void TMyCAD::SetTag(std::int32_t value)
{
    Store(m_Tag, value);
}

void TMyCAD::SetTheUNIT(TUnits value)
{
    Store(m_TheUNIT, value);
}

// 0 switches the history off and discards it; a smaller limit keeps a longer history.
void TMyCAD::SetUndoRedoSize(std::uint8_t value)
{
    if (value == m_UndoRedoSize)
        return;
    m_UndoRedoSize = value;
    if (value == 0)
        ClearAllUndoStuff();
}

bool TMyCAD::Visible() const
{
    return !(testAttribute(Qt::WA_WState_ExplicitShowHide) && testAttribute(Qt::WA_WState_Hidden));
}

void TMyCAD::SetVisible(bool value)
{
    setVisible(value);
}

void TMyCAD::SetXYMode(TXYMode value)
{
    Store(m_XYMode, value);
}

} // namespace tessal
