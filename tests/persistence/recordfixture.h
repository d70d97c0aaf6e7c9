// SPDX-License-Identifier: MIT
// Shapes with a known value in every stored base field, and those fields' expected bytes;
// drawings large enough to report progress, and a log of the reports.
#pragma once

#include "bytes.h"
#include "surface/documenthelpers.h"

#include <tessal/platform/binarystream.h>
#include <tessal/shapes/rectangle.h>
#include <tessal/shapes/shape.h>
#include <tessal/surface/cad.h>

#include <gtest/gtest.h>

#include <QBuffer>

#include <numbers>
#include <utility>
#include <vector>

namespace tessal::test {

// Gives every base field a value other than its default (raw setters where a published one
// would also turn, flip or lock the geometry).
inline void FillBaseFields(TMyShape &shape)
{
    shape.SetName(QStringLiteral("Shape7"));
    shape.SetShapeId(7);
    shape.SetShapeNo(3);
    shape.SetLayerId(2);
    shape.SetParentNo(-1);
    shape.ChildShapes() = {4, 5};
    shape.LinkShapes() = {9};
    shape.Points() = {{1.5f, 2.0f}, {10.0f, -3.0f}, {10.0f, 20.0f}, {1.5f, 20.0f}};
    shape.LinkPoints() = {{5.0f, 5.0f}};
    shape.SetTextPoint({3.0f, 4.0f});
    shape.SetTag(99);
    shape.SetAngleValue(float(std::numbers::pi / 2));
    shape.SetBrush(TBrush{0x123456, TBrushStyle::bsCross, {}});
    shape.SetCaption(QStringLiteral("Cap"));
    shape.SetColorBegin(0x0000FF);
    shape.SetColorEnd(0x00FF00);
    TFont font;
    font.Name = QStringLiteral("Arial");
    font.Charset = 0;
    font.Color = 0x112233;
    font.SetHeight(-16);
    font.Pitch = TFontPitch::fpFixed;
    font.Style = fsBold | fsUnderline;
    shape.SetFont(font);
    shape.SetGradientStyle(TGradientStyle::gsLinearH);
    shape.SetInfo(QStringLiteral("Info"));
    shape.SetPen(TPen{0x445566, TPenMode::pmXor, TPenStyle::psDash, 3});
    shape.UserData().SetUserDataRecord({{"k1", "v1"}, {"k2", "v2"}});
    shape.SetFlipFlags(true, false);
    shape.SetMultiInfo({QStringLiteral("m1"), QStringLiteral("m2")});
    shape.SetMultiInfoAlignment(TAlignment::taCenter);
    shape.SetLogHeight(12);
    shape.SetLogUse(true);
    shape.SetLogWidth(8);
    shape.SetLockedFlag(true);
    shape.SetPenStyleEndCapType(TPenStyleEndCapType::psectFLAT);
    shape.SetPenStyleJoinType(TPenStyleJoinType::psjtMITER);
    shape.SetHotShow(false);
    shape.SetResizeEnable(false);
    shape.SetRotateEnable(true);
}

// The coordinate forms and optional parts of the base record by layout.
enum class Layout { Common, XP2, XP3to5, XP6, XP7, XP8, XP9, XPa, XPe, XPh, XPj };

// The base part of FillBaseFields' shape, built field by field from the record table.
inline Bytes BaseRecord(Layout layout, std::int32_t shapeId = 7)
{
    // Common: a version no reader knows, which has only the fields of every version.
    const bool noPoints = layout == Layout::XP2 || layout == Layout::Common;
    const bool extended = layout == Layout::XP3to5;
    auto point = [&](Bytes &b, double x, double y) -> Bytes & {
        return extended ? b.Ext(x).Ext(y) : b.F32(float(x)).F32(float(y));
    };
    Bytes b;
    b.Text("Shape7").I32(shapeId).I32(3).I32(2).I32(-1);
    b.I32(2).I32(4).I32(5).I32(1).I32(9);
    b.I32(4);
    if (!noPoints) {
        point(b, 1.5, 2);
        point(b, 10, -3);
        point(b, 10, 20);
        point(b, 1.5, 20);
    }
    b.I32(1);
    if (!noPoints)
        point(b, 5, 5);
    if (layout == Layout::XP2)
        b.Ext(3).Ext(4); // the text point only
    else if (extended)
        b.Ext(3).Ext(4).I32(99).Ext(90);
    else if (layout != Layout::Common)
        b.F32(3).F32(4).I32(99).F32(90);
    b.I64(0).U32(0x123456).U8(6); // no pattern; colour; bsCross
    b.Text("Cap").U32(0x0000FF).U32(0x00FF00);
    b.Text("Arial").U8(0).U32(0x112233).I32(-16).I32(12).U8(1).I32(96).U8(0x05);
    if (layout != Layout::XP7)
        b.I32(0).I32(0);
    b.U8(9); // gsLinearH
    if (layout == Layout::XP2 || extended)
        b.U8(0).U8(0);
    b.Text("Info").U32(0x445566).U8(14).U8(1).I32(3);
    if (layout < Layout::XP8)
        return b;
    b.I32(2).Text("k1").Text("v1").Text("k2").Text("v2");
    if (layout < Layout::XP9)
        return b;
    b.U8(1).U8(0).U8(1);
    if (layout < Layout::XPe)
        return b;
    b.I32(2).Text("m1").Text("m2").U8(2);
    if (layout < Layout::XPh)
        return b;
    b.I32(12).U8(1).I32(8).U8(1);
    if (layout < Layout::XPj)
        return b;
    return b.U8(2).U8(2).U8(0).U8(0).U8(1);
}

// Reads a record into shape; answers whether every byte was used.
inline bool LoadAll(TMyShape &shape, const QByteArray &bytes)
{
    QByteArray data = bytes;
    QBuffer buffer(&data);
    buffer.open(QIODevice::ReadOnly);
    BinaryStream stream(&buffer);
    shape.LoadFromStream(stream);
    return buffer.atEnd();
}

// Plain rectangles added without undo steps, many enough that progress has steps to report.
inline void AddRectangles(TMyCAD &cad, int count)
{
    for (int i = 0; i < count; ++i) {
        auto *shape = new TMyRectangle(&cad);
        const float x = float(i % 100) * 3, y = float(i / 100) * 2;
        shape->Points() = {{x, y}, {x + 2, y}, {x + 2, y + 1}, {x, y + 1}};
        ASSERT_TRUE(cad.AddShape(shape, false, false));
    }
}

// Every progress report as (done, total); the report numbered CancelAt (from 1) cancels, 0
// never does.
struct TProgressLog
{
    std::vector<std::pair<std::int64_t, std::int64_t>> Calls;
    std::size_t CancelAt = 0;

    TProgressEvent Handler(const TMyCAD *expected)
    {
        return
            [this, expected](TMyCAD *sender, std::int64_t done, std::int64_t total, bool &cancel) {
                EXPECT_EQ(sender, expected);
                Calls.emplace_back(done, total);
                cancel = Calls.size() == CancelAt;
            };
    }
};

// Reports start at 0, end at the total, never go back, and come often enough to show.
inline void ExpectSteadyProgress(const std::vector<std::pair<std::int64_t, std::int64_t>> &calls,
                                 std::int64_t total)
{
    ASSERT_GE(calls.size(), 3u);
    EXPECT_EQ(calls.front(), std::make_pair(std::int64_t(0), total));
    EXPECT_EQ(calls.back(), std::make_pair(total, total));
    for (std::size_t i = 1; i < calls.size(); ++i) {
        EXPECT_GE(calls[i].first, calls[i - 1].first) << i;
        EXPECT_EQ(calls[i].second, total);
    }
}

} // namespace tessal::test
