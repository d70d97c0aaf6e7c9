// SPDX-License-Identifier: MIT
// Copy, cut and paste: pasted shapes equal the copied ones field for field, relations of
// groups and connectors survive, a paste is one undo step, the offered picture is the
// surface's own drawing, and damaged data is refused.
#include "../common/imagecompare.h"
#include "documenthelpers.h"
#include "rendertestshapes.h"

#include <tessal/platform/binarystream.h>

#include <QBuffer>
#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

namespace tessal {
namespace {

using namespace test;

// Rectangles a, b (grouped as g; numbers 0, 1, 4) and c (2), and a connector from a to c (3).
struct GroupAndConnector
{
    TMyCAD cad;
    TMyShape *a = AddRectangle(cad, 10, 10, 50, 40), *b = AddRectangle(cad, 60, 10, 90, 40);
    TMyShape *c = AddRectangle(cad, 10, 100, 50, 140);
    TMyLinkLine *link = AddConnector(cad, a, c);
    TMyShape *g = Group();
    TMyShape *Group()
    {
        TMyShape *const members[] = {a, b};
        return cad.GetShapeByID(cad.GroupShapes(members, false));
    }
};

TEST(Clipboard, RoundTripEqualsTheOriginalsExceptIdentityNameAndOffset)
{
    TMyCAD cad;
    cad.NewLayer(QStringLiteral("Upper"), true);
    TMyShape *shapes[] = {
        AddRectangle(cad, 10, 10, 80, 60),
        AddByCode(cad, TDrawTool::SpPolyLine, {{5, 5}, {40.5f, 25}, {70, 5}}),
        AddByCode(cad, TDrawTool::SpText, {{100, 20}, {160, 50}}, 0, QStringLiteral("two\nlines")),
    };
    shapes[0]->SetPen(TPen{0x123456, TPenMode::pmCopy, TPenStyle::psDash, 3});
    shapes[0]->SetGradientStyle(TGradientStyle::gsLinearH);
    shapes[0]->UserData().AddKeyandValue(QStringLiteral("k"), QStringLiteral("v"));
    shapes[0]->SetAngleValue(0.3f);
    shapes[1]->SetMultiInfo({QStringLiteral("m1"), QStringLiteral("m2")});
    shapes[2]->SetLockedFlag(true);
    shapes[1]->SetShapeNo(7); // as a file may number it
    cad.SetWorkingShapes(shapes);
    ASSERT_TRUE(cad.CopyToClipboard());
    const QMimeData *mime = QGuiApplication::clipboard()->mimeData();
    ASSERT_TRUE(mime);
    for (const char *format : {"application/x-tessal-shapes", "image/png", "image/svg+xml"})
        EXPECT_TRUE(mime->hasFormat(QLatin1String(format))) << format;
    // Each record is the shape's own, numbered by its place among the copied shapes.
    QByteArray records;
    for (std::int32_t i = 0; i < 3; ++i) {
        std::unique_ptr<TMyShape> copy = cad.CloneShape(*shapes[i]);
        copy->SetShapeNo(i);
        records += copy->ClassName().toLatin1().leftJustified(16, ' ') + Saved(*copy);
    }
    EXPECT_TRUE(mime->data(QStringLiteral("application/x-tessal-shapes")).endsWith(records));

    const std::int32_t counter = cad.ShapeIdCounter();
    ASSERT_TRUE(cad.PasteFromClipboard()) << cad.LastError().toStdString();
    ASSERT_EQ(cad.GetShapesCount(), 6);
    const auto shift = [](TMyPoint p) {
        return TMyPoint{p.X + TMyCAD::PasteOffset, p.Y + TMyCAD::PasteOffset};
    };
    for (std::int32_t i = 0; i < 3; ++i) {
        const TMyShape *pasted = cad.GetShapeByNo(3 + i);
        EXPECT_EQ(pasted->ShapeId(), counter + i);
        EXPECT_EQ(pasted->Name(), QStringLiteral("Shape%1").arg(counter + i));
        // The original moved by the offset, with the new identity, name and place, has the
        // pasted shape's record byte for byte.
        std::unique_ptr<TMyShape> moved = cad.CloneShape(*cad.GetShapeByNo(i));
        std::ranges::transform(moved->Points(), moved->Points().begin(), shift);
        std::ranges::transform(moved->LinkPoints(), moved->LinkPoints().begin(), shift);
        moved->SetTextPoint(shift(moved->TextPoint()));
        moved->SetShapeId(pasted->ShapeId());
        moved->SetName(pasted->Name());
        moved->SetShapeNo(pasted->ShapeNo());
        EXPECT_EQ(Saved(*moved), Saved(*pasted)) << "shape " << i;
    }
    const std::vector<TMyShape *> pasted{cad.GetShapeByNo(3), cad.GetShapeByNo(4),
                                         cad.GetShapeByNo(5)};
    EXPECT_EQ(cad.WorkingShapes(), pasted);
}

TEST(Clipboard, GroupMembersAndConnectorsKeepTheirRelationsAndPasteIsOneStep)
{
    GroupAndConnector d;
    TMyCAD &cad = d.cad;
    const auto before = Snapshot(cad);
    const std::int32_t steps = StepCount(cad);

    // Only the group: its members come along, the connector to c stays behind.
    cad.SetWorkingShapes(std::vector{d.g});
    ASSERT_TRUE(cad.CopyToClipboard());
    ASSERT_TRUE(cad.PasteFromClipboard());
    ASSERT_EQ(cad.GetShapesCount(), 8);
    EXPECT_TRUE(RelationsValid(cad));
    EXPECT_EQ(cad.GetShapeByNo(7)->ChildShapes(), (std::vector<std::int32_t>{5, 6}));
    EXPECT_TRUE(cad.GetShapeByNo(5)->LinkShapes().empty());
    cad.PopFromUndoRedoShapeList();

    // Group and c: the connector bound to both comes along, bound to the pasted a and c.
    cad.SetWorkingShapes(std::vector{d.g, d.c});
    ASSERT_TRUE(cad.CopyToClipboard());
    ASSERT_TRUE(cad.PasteFromClipboard());
    ASSERT_EQ(cad.GetShapesCount(), 10);
    EXPECT_TRUE(RelationsValid(cad));
    EXPECT_EQ(Ends(dynamic_cast<TMyLinkLine *>(cad.GetShapeByNo(8))),
              (std::array<std::int32_t, 4>{5, 0, 7, 1}));
    EXPECT_EQ(cad.GetShapeByNo(9)->ChildShapes(), (std::vector<std::int32_t>{5, 6}));
    EXPECT_EQ(StepCount(cad), steps + 1);
    cad.PopFromUndoRedoShapeList();
    EXPECT_EQ(Snapshot(cad), before);

    // Cut takes the connector too, in one step; pasting brings all five back, bound.
    cad.SetWorkingShapes(std::vector{d.g, d.c});
    ASSERT_TRUE(cad.CutToClipboard());
    EXPECT_EQ(cad.GetShapesCount(), 0);
    EXPECT_EQ(StepCount(cad), steps + 1);
    ASSERT_TRUE(cad.PasteFromClipboard());
    EXPECT_EQ(cad.GetShapesCount(), 5);
    EXPECT_TRUE(RelationsValid(cad));
}

TEST(Clipboard, PictureIsTheSurfacesOwnDrawing)
{
    TMyCAD cad;
    cad.resize(300, 300);
    cad.GridOperation()->SetGridShow(false);
    cad.SetShowHotLink(false);
    cad.SetZoom(1.5);
    TMyShape *r = AddRectangle(cad, 20, 30, 90, 70), *e = AddRectangle(cad, 100, 120, 160, 180);
    r->SetBrush(TBrush{0x0000FF, TBrushStyle::bsSolid, {}});
    r->SetPen(TPen{0x00AA00, TPenMode::pmCopy, TPenStyle::psSolid, 5});
    cad.SetWorkingShapes(std::vector{r, e});
    const QImage picture = cad.SelectionImage();
    const TRect a = cad.ShapeScreenRect(r), b = cad.ShapeScreenRect(e);
    const TRect box(std::min(a.Left, b.Left), std::min(a.Top, b.Top), std::max(a.Right, b.Right),
                    std::max(a.Bottom, b.Bottom));
    EXPECT_TRUE(ImagesEqual(picture, Compose(cad, box)));
    EXPECT_GT(CountPixels(picture, picture.rect(), 0xFF0000), 5000);
    cad.ClearWorkingShapes();
    EXPECT_TRUE(cad.SelectionImage().isNull());
    EXPECT_FALSE(cad.CopyToClipboard());
}

TEST(Clipboard, DamagedOrForeignDataIsRefusedAndAddsNothing)
{
    GroupAndConnector d;
    TMyCAD &cad = d.cad;
    cad.SetWorkingShapes(std::vector{d.g, d.c});
    const QByteArray data = cad.CopiedShapesData();
    const std::int32_t counter = cad.ShapeIdCounter(), steps = StepCount(cad);
    QByteArray otherVersion = data, unknownClass = data;
    otherVersion[19] = 'e'; // "XP.j" -> "XP.e"
    unknownClass.replace("TMyRectangle", "TMyBogusShap");
    std::vector<QByteArray> bad{data + 'x', otherVersion, unknownClass};
    for (qsizetype n = 0; n < data.size(); ++n)
        bad.push_back(data.left(n));
    for (const QByteArray &bytes : bad) {
        ASSERT_FALSE(cad.PasteShapesData(bytes)) << bytes.size();
        ASSERT_FALSE(cad.LastError().isEmpty());
    }
    EXPECT_EQ(cad.GetShapesCount(), 5);
    EXPECT_EQ(cad.ShapeIdCounter(), counter);
    EXPECT_EQ(StepCount(cad), steps);
    QGuiApplication::clipboard()->setText(QStringLiteral("plain text"));
    EXPECT_FALSE(cad.PasteFromClipboard());
    EXPECT_TRUE(cad.PasteShapesData(data)) << cad.LastError().toStdString();
    EXPECT_EQ(cad.GetShapesCount(), 10);
}

} // namespace
} // namespace tessal
