// SPDX-License-Identifier: MIT
// Copy, cut and paste: the pasted shapes equal the copied ones field for field, relations
// of groups and connectors survive, a paste is one undo step, the offered picture is the
// surface's own drawing, and damaged data is refused.
#include "../common/imagecompare.h"
#include "documenthelpers.h"
#include "rendertestshapes.h"

#include <tessal/platform/binarystream.h>
#include <tessal/shapes/line.h>
#include <tessal/surface/cad.h>

#include <gtest/gtest.h>

#include <QBuffer>
#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

namespace tessal {
namespace {

using test::AddConnector;
using test::AddRectangle;
using test::RelationsValid;
using test::Snapshot;
using test::StepCount;

QByteArray Record(const TMyShape &shape)
{
    QByteArray data;
    QBuffer buffer(&data);
    buffer.open(QIODevice::WriteOnly);
    BinaryStream stream(&buffer);
    shape.SaveToStream(stream);
    return data;
}

// A group G of rectangles A and B, a rectangle C, and a connector from A to C.
struct GroupAndConnector
{
    TMyCAD cad;
    TMyShape *a, *b, *c, *g;
    TMyLinkLine *link;
    GroupAndConnector()
    {
        a = AddRectangle(cad, 10, 10, 50, 40);
        b = AddRectangle(cad, 60, 10, 90, 40);
        c = AddRectangle(cad, 10, 100, 50, 140);
        link = AddConnector(cad, a, c);
        TMyShape *const members[] = {a, b};
        g = cad.GetShapeByID(cad.GroupShapes(members, false));
    }
};

TEST(Clipboard, RoundTripEqualsTheOriginalsExceptIdentityNameAndOffset)
{
    TMyCAD cad;
    cad.NewLayer(QStringLiteral("Upper"), true);
    const TMyPoint chain[] = {{5, 5}, {40.5f, 25}, {70, 5}};
    const TMyPoint corners[] = {{100, 20}, {160, 50}};
    TMyShape *shapes[] = {
        AddRectangle(cad, 10, 10, 80, 60),
        cad.GetShapeByID(
            cad.AddShapeByCode(TDrawTool::SpPolyLine, QStringLiteral("zig"), chain, 0, {})),
        cad.GetShapeByID(
            cad.AddShapeByCode(TDrawTool::SpText, {}, corners, 0, QStringLiteral("two\nlines"))),
    };
    shapes[0]->SetPen(TPen{0x123456, TPenMode::pmCopy, TPenStyle::psDash, 3});
    shapes[0]->SetBrush(TBrush{0x00FF00, TBrushStyle::bsCross, {}});
    shapes[0]->SetGradientStyle(TGradientStyle::gsLinearH);
    shapes[0]->UserData().AddKeyandValue(QStringLiteral("k"), QStringLiteral("v"));
    shapes[0]->SetCaption(QStringLiteral("box"));
    shapes[0]->SetAngleValue(0.3f);
    shapes[1]->SetTag(77);
    shapes[1]->SetMultiInfo({QStringLiteral("m1"), QStringLiteral("m2")});
    shapes[2]->SetLockedFlag(true);
    cad.SetWorkingShapes(shapes);
    ASSERT_TRUE(cad.CopyToClipboard());

    const QMimeData *mime = QGuiApplication::clipboard()->mimeData();
    ASSERT_TRUE(mime);
    for (const char *format : {"application/x-tessal-shapes", "image/png", "image/svg+xml"})
        EXPECT_TRUE(mime->hasFormat(QLatin1String(format))) << format;
    EXPECT_EQ(QImage::fromData(mime->data(QStringLiteral("image/png"))).size(),
              cad.SelectionImage().size());

    const std::int32_t counter = cad.ShapeIdCounter();
    ASSERT_TRUE(cad.PasteFromClipboard()) << cad.LastError().toStdString();
    ASSERT_EQ(cad.GetShapesCount(), 6);
    for (std::int32_t i = 0; i < 3; ++i) {
        const TMyShape *original = cad.GetShapeByNo(i);
        const TMyShape *pasted = cad.GetShapeByNo(3 + i);
        EXPECT_EQ(pasted->ShapeId(), counter + i);
        EXPECT_EQ(pasted->Name(), QStringLiteral("Shape%1").arg(counter + i));
        EXPECT_EQ(pasted->ClassName(), original->ClassName());
        // The original moved by the offset and given the new identity, name and place has
        // the pasted shape's record byte for byte.
        std::unique_ptr<TMyShape> moved = cad.CloneShape(*original);
        const auto shift = [](TMyPoint p) {
            return TMyPoint{p.X + TMyCAD::PasteOffset, p.Y + TMyCAD::PasteOffset};
        };
        for (TMyPoint &p : moved->Points())
            p = shift(p);
        for (TMyPoint &p : moved->LinkPoints())
            p = shift(p);
        moved->SetTextPoint(shift(moved->TextPoint()));
        moved->SetShapeId(pasted->ShapeId());
        moved->SetName(pasted->Name());
        moved->SetShapeNo(pasted->ShapeNo());
        EXPECT_EQ(Record(*moved), Record(*pasted)) << "shape " << i;
    }
    EXPECT_EQ(
        cad.WorkingShapes(),
        (std::vector<TMyShape *>{cad.GetShapeByNo(3), cad.GetShapeByNo(4), cad.GetShapeByNo(5)}));
    EXPECT_TRUE(cad.Modified());
}

TEST(Clipboard, GroupMembersAndConnectorsKeepTheirRelationsAndPasteIsOneStep)
{
    GroupAndConnector d;
    TMyCAD &cad = d.cad;
    const auto before = Snapshot(cad);
    const std::int32_t steps = StepCount(cad);

    // Only the group: its members come along, the connector to C stays behind.
    TMyShape *const group[] = {d.g};
    cad.SetWorkingShapes(group);
    ASSERT_TRUE(cad.CopyToClipboard());
    ASSERT_TRUE(cad.PasteFromClipboard());
    ASSERT_EQ(cad.GetShapesCount(), 8);
    EXPECT_TRUE(RelationsValid(cad));
    const TMyShape *g2 = cad.GetShapeByNo(7);
    EXPECT_EQ(g2->ClassName(), QStringLiteral("TMyGroup"));
    EXPECT_EQ(g2->ChildShapes(), (std::vector<std::int32_t>{5, 6}));
    EXPECT_TRUE(cad.GetShapeByNo(5)->LinkShapes().empty());
    EXPECT_EQ(cad.WorkingShapes(), (std::vector<TMyShape *>{cad.GetShapeByNo(7)}));
    EXPECT_EQ(StepCount(cad), steps + 1);
    cad.PopFromUndoRedoShapeList();
    EXPECT_EQ(Snapshot(cad), before);

    // Group and C: the connector bound to both comes along, bound to the pasted shapes.
    TMyShape *const both[] = {d.g, d.c};
    cad.SetWorkingShapes(both);
    ASSERT_TRUE(cad.CopyToClipboard());
    ASSERT_TRUE(cad.PasteFromClipboard());
    ASSERT_EQ(cad.GetShapesCount(), 10);
    EXPECT_TRUE(RelationsValid(cad));
    const auto *link2 = dynamic_cast<const TMyLinkLine *>(cad.GetShapeByNo(8));
    ASSERT_TRUE(link2);
    // Original order a b c link g: the pasted a is 5, c is 7.
    EXPECT_EQ(test::Ends(link2), (std::array<std::int32_t, 4>{5, 0, 7, 1}));
    EXPECT_EQ(cad.GetShapeByNo(9)->ChildShapes(), (std::vector<std::int32_t>{5, 6}));
    EXPECT_EQ(StepCount(cad), steps + 1);
    cad.PopFromUndoRedoShapeList();
    EXPECT_EQ(Snapshot(cad), before);

    // Cut takes the connector too, as one deletion; pasting brings all five back bound.
    cad.SetWorkingShapes(both);
    ASSERT_TRUE(cad.CutToClipboard());
    EXPECT_EQ(cad.GetShapesCount(), 0);
    EXPECT_EQ(StepCount(cad), steps + 1);
    ASSERT_TRUE(cad.PasteFromClipboard());
    EXPECT_EQ(cad.GetShapesCount(), 5);
    EXPECT_TRUE(RelationsValid(cad));
    EXPECT_EQ(StepCount(cad), steps + 2);
}

TEST(Clipboard, PictureIsTheSurfacesOwnDrawing)
{
    TMyCAD cad;
    cad.resize(300, 300);
    cad.GridOperation()->SetGridShow(false);
    cad.SetShowHotLink(false);
    cad.SetZoom(1.5);
    TMyShape *r = AddRectangle(cad, 20, 30, 90, 70);
    r->SetBrush(TBrush{0x0000FF, TBrushStyle::bsSolid, {}});
    r->SetPen(TPen{0x00AA00, TPenMode::pmCopy, TPenStyle::psSolid, 5});
    const TMyPoint ends[] = {{100, 120}, {160, 180}};
    cad.AddShapeByCode(TDrawTool::SpEllipse, {}, ends, 0, {});
    TMyShape *const both[] = {r, cad.GetShapeByNo(1)};
    cad.SetWorkingShapes(both);
    const QImage picture = cad.SelectionImage();
    ASSERT_FALSE(picture.isNull());
    TRect box = cad.ShapeScreenRect(r);
    const TRect other = cad.ShapeScreenRect(cad.GetShapeByNo(1));
    box = TRect(std::min(box.Left, other.Left), std::min(box.Top, other.Top),
                std::max(box.Right, other.Right), std::max(box.Bottom, other.Bottom));
    EXPECT_TRUE(test::ImagesEqual(picture, test::Compose(cad, box)));
    EXPECT_GT(test::CountPixels(picture, picture.rect(), 0xFF0000), 1000);

    cad.ClearWorkingShapes();
    EXPECT_TRUE(cad.SelectionImage().isNull());
    EXPECT_FALSE(cad.CopyToClipboard());
}

TEST(Clipboard, DamagedOrForeignDataIsRefusedAndAddsNothing)
{
    GroupAndConnector d;
    TMyCAD &cad = d.cad;
    TMyShape *const both[] = {d.g, d.c};
    cad.SetWorkingShapes(both);
    const QByteArray data = cad.CopiedShapesData();
    ASSERT_FALSE(data.isEmpty());
    const std::int32_t count = cad.GetShapesCount();
    const std::int32_t counter = cad.ShapeIdCounter();
    const std::int32_t steps = StepCount(cad);
    for (qsizetype n = 0; n < data.size(); ++n) {
        ASSERT_FALSE(cad.PasteShapesData(data.left(n))) << n;
        ASSERT_FALSE(cad.LastError().isEmpty());
    }
    QByteArray otherVersion = data;
    otherVersion[16 + 3] = 'e';
    QByteArray unknownClass = data;
    unknownClass.replace("TMyRectangle", "TMyBogusShap");
    for (const QByteArray &bad : {data + 'x', otherVersion, unknownClass}) {
        EXPECT_FALSE(cad.PasteShapesData(bad));
        EXPECT_FALSE(cad.LastError().isEmpty());
    }
    EXPECT_EQ(cad.GetShapesCount(), count);
    EXPECT_EQ(cad.ShapeIdCounter(), counter);
    EXPECT_EQ(StepCount(cad), steps);

    QGuiApplication::clipboard()->setText(QStringLiteral("plain text"));
    EXPECT_FALSE(cad.PasteFromClipboard());
    EXPECT_TRUE(cad.PasteShapesData(data)) << cad.LastError().toStdString();
    EXPECT_EQ(cad.GetShapesCount(), 2 * count);
}

} // namespace
} // namespace tessal
