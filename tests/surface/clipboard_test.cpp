// SPDX-License-Identifier: MIT
// Copy, cut and paste: pasted shapes equal the copied ones field for field, texts beyond
// what the records hold come through in full, relations of groups and connectors survive,
// a paste is one undo step, a cut copies only what it removes, the offered picture is the
// surface's own drawing, and damaged data is refused.
#include "../common/imagecompare.h"
#include "documenthelpers.h"
#include "rendertestshapes.h"

#include <tessal/platform/binarystream.h>
#include <tessal/platform/streamprimitives.h>
#include <tessal/shapes/ruleline.h>
#include <tessal/shapes/shapefactory.h>
#include <tessal/shapes/text.h>

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

// Texts no 8-bit record keeps: Cyrillic, CJK, the euro sign, a character outside the basic
// plane, and lengths past 255 (the records keep length mod 256 characters).
QString Unusual(std::int32_t n)
{
    static const QStringList samples = {
        QStringLiteral("Привет, мир"),
        QStringLiteral("Подпись"),
        QStringLiteral("ключ=значение €"),
        QStringLiteral("行一"),
        QString::fromUtf8("\xF0\x9D\x84\x9E clef"),
        QStringLiteral("Жx€").repeated(100),
        QStringLiteral("λ").repeated(256),
    };
    return samples[n % samples.size()] + QString::number(n);
}

// Every text of a shape, labelled, in one list to compare.
QStringList TextsOf(const TMyShape &shape)
{
    QStringList texts{"caption " + shape.Caption(), "info " + shape.Info(),
                      "font " + shape.Font().Name};
    for (const QString &line : shape.MultiInfo())
        texts << "multi " + line;
    for (const TUserDataRecord &r : shape.UserData().Records())
        texts << "key " + r.Key << "value " + r.Value;
    if (const auto *text = dynamic_cast<const TMyText *>(&shape))
        texts << "lines" << text->Lines();
    if (const auto *rule = dynamic_cast<const TMyRuleLine *>(&shape))
        texts << "user info " + rule->UserInfo();
    return texts;
}

// One shape of every class, each of its texts a different unusual one, placed in cad (and
// so selected).
std::vector<TMyShape *> PlaceShapesWithUnusualTexts(TMyCAD &cad)
{
    std::vector<std::unique_ptr<TMyShape>> shapes;
    std::int32_t n = 0;
    const auto next = [&n] { return Unusual(n++); };
    for (const QString &name : ShapeClassNames()) {
        std::unique_ptr<TMyShape> shape = cad.CreateShapeByName(name);
        shape->Points() = {{10, 10}, {60, 12}, {58, 40}, {12, 44}};
        shape->SetCaption(next());
        shape->SetInfo(next());
        TFont font = shape->Font();
        font.Name = next();
        shape->SetFont(font);
        shape->SetMultiInfo({next(), QString(), next()}); // braced: in order
        for (int i = 0; i < 2; ++i) {
            const QString key = next();
            shape->UserData().AddKeyandValue(key, next());
        }
        if (auto *text = dynamic_cast<TMyText *>(shape.get()))
            text->SetLines({next(), next()});
        if (auto *rule = dynamic_cast<TMyRuleLine *>(shape.get()))
            rule->SetUserInfo(next());
        shapes.push_back(std::move(shape));
    }
    return cad.PlaceShapes(std::move(shapes), {}, false);
}

TEST(Clipboard, CopiesAndClonesKeepEveryTextInFull)
{
    TMyCAD cad;
    const std::vector<TMyShape *> originals = PlaceShapesWithUnusualTexts(cad);
    const std::int32_t count = std::int32_t(originals.size());
    ASSERT_EQ(count, ShapeClassNames().size());
    for (const TMyShape *shape : originals) {
        std::unique_ptr<TMyShape> clone = cad.CloneShape(*shape);
        EXPECT_EQ(TextsOf(*clone), TextsOf(*shape)) << shape->ClassName().toStdString();
        // Everything else the record holds is equal too.
        EXPECT_TRUE(SameBytes(Saved(*clone), Saved(*shape))) << shape->ClassName().toStdString();
    }

    ASSERT_TRUE(cad.CopyToClipboard());
    ASSERT_TRUE(cad.PasteFromClipboard()) << cad.LastError().toStdString();
    ASSERT_EQ(cad.GetShapesCount(), 2 * count);
    for (std::int32_t i = 0; i < count; ++i)
        EXPECT_EQ(TextsOf(*cad.GetShapeByNo(count + i)), TextsOf(*originals[i])) << i;

    // The same through the data operations; without the texts part the records' cut texts
    // come back, as data of a program that does not write it would paste.
    cad.SetWorkingShapes(originals);
    const QByteArray records = cad.CopiedShapesData(), texts = cad.CopiedShapeTexts();
    ASSERT_TRUE(cad.PasteShapesData(records, texts));
    ASSERT_TRUE(cad.PasteShapesData(records));
    ASSERT_EQ(cad.GetShapesCount(), 4 * count);
    for (std::int32_t i = 0; i < count; ++i) {
        EXPECT_EQ(TextsOf(*cad.GetShapeByNo(2 * count + i)), TextsOf(*originals[i])) << i;
        const QString caption = originals[i]->Caption();
        EXPECT_EQ(cad.GetShapeByNo(3 * count + i)->Caption().size(), caption.size() % 256) << i;
    }
}

TEST(Clipboard, TextsPartHasItsLayoutAndIsRefusedWhenDamagedOrForeign)
{
    TMyCAD cad;
    TMyShape *r = AddRectangle(cad, 10, 10, 50, 40);
    r->SetCaption(QString::fromUtf8("\xD0\x96\xF0\x9D\x84\x9E")); // U+0416, U+1D11E
    r->UserData().AddKeyandValue(QStringLiteral("k"), QString());
    TFont font = r->Font();
    font.Name = QStringLiteral("F");
    r->SetFont(font);
    TMyShape *t =
        AddByCode(cad, TDrawTool::SpText, {{60, 10}, {90, 40}}, 0, QStringLiteral("a\nb"));
    t->SetFont(font);
    cad.SetWorkingShapes(std::vector{r, t});

    QByteArray expected;
    {
        QBuffer buffer(&expected);
        buffer.open(QIODevice::WriteOnly);
        BinaryStream s(&buffer);
        const auto text = [&s](std::initializer_list<std::uint16_t> units) {
            s.WriteInt32(std::int32_t(units.size()));
            for (std::uint16_t unit : units)
                s.WriteUInt16(unit);
        };
        s.WriteBytes("Tessal texts    ");
        s.WriteInt32(2);
        s.WriteBytes("TMyRectangle    ");
        text({0x0416, 0xD834, 0xDD1E}); // caption
        text({});                       // info
        text({'F'});                    // font
        s.WriteInt32(0);                // MultiInfo
        s.WriteInt32(1);                // user data
        text({'k'});
        text({});
        s.WriteInt32(0); // own texts
        s.WriteBytes("TMyText         ");
        text({});
        text({'a', '\n', 'b'}); // a text made by code has its text as Info too
        text({'F'});
        s.WriteInt32(0);
        s.WriteInt32(0);
        s.WriteInt32(2);
        text({'a'});
        text({'b'});
    }
    const QByteArray texts = cad.CopiedShapeTexts();
    EXPECT_TRUE(SameBytes(texts, expected));

    // Damaged, or written for other shapes: nothing is added.
    const QByteArray records = cad.CopiedShapesData();
    QByteArray otherClass = texts;
    otherClass.replace("TMyRectangle    ", "TMyEllipse      ");
    cad.SetWorkingShapes(std::vector{r});
    std::vector<QByteArray> bad{texts + 'x', otherClass, cad.CopiedShapeTexts()};
    for (qsizetype n = 1; n < texts.size(); ++n)
        bad.push_back(texts.left(n));
    const std::int32_t steps = StepCount(cad);
    for (const QByteArray &part : bad) {
        ASSERT_FALSE(cad.PasteShapesData(records, part)) << part.size();
        ASSERT_FALSE(cad.LastError().isEmpty());
    }
    EXPECT_EQ(cad.GetShapesCount(), 2);
    EXPECT_EQ(StepCount(cad), steps);
}

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

// The captions of the drawing's shapes, sorted.
std::string Captions(const TMyCAD &cad)
{
    QStringList captions;
    for (std::int32_t no = 0; no < cad.GetShapesCount(); ++no)
        captions << cad.GetShapeByNo(no)->Caption();
    captions.sort();
    return captions.join(' ').toStdString();
}

TEST(Clipboard, CutCopiesOnlyWhatItRemoves)
{
    GroupAndConnector d; // a and b grouped as g, c, and a connector from a to c
    TMyCAD &cad = d.cad;
    TMyShape *e = AddRectangle(cad, 100, 100, 140, 140);
    for (auto [shape, caption] : {std::pair{d.a, "a"},
                                  {d.b, "b"},
                                  {d.c, "c"},
                                  {d.g, "g"},
                                  {static_cast<TMyShape *>(d.link), "link"},
                                  {e, "e"}})
        shape->SetCaption(QString::fromLatin1(caption));
    d.b->SetLocked(true); // a locked member of an unlocked group
    d.c->SetLocked(true);
    e->SetLocked(true);
    const std::int32_t steps = StepCount(cad);

    // Only locked shapes selected: nothing to cut, and the clipboard keeps what it had.
    QGuiApplication::clipboard()->setText(QStringLiteral("kept"));
    cad.SetWorkingShapes(std::vector{d.c, e});
    EXPECT_FALSE(cad.CutToClipboard());
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("kept"));
    EXPECT_EQ(cad.GetShapesCount(), 6);
    EXPECT_EQ(StepCount(cad), steps);

    // The group goes without its locked member, c and e stay, and the connector to c with
    // them; a paste brings back exactly what went, so every shape is there once.
    cad.SetWorkingShapes(std::vector{d.g, d.c, e});
    ASSERT_TRUE(cad.CutToClipboard());
    EXPECT_EQ(Captions(cad), "b c e link");
    EXPECT_EQ(StepCount(cad), steps + 1);
    ASSERT_TRUE(cad.PasteFromClipboard());
    EXPECT_EQ(Captions(cad), "a b c e g link");
    EXPECT_TRUE(RelationsValid(cad));
    const TMyShape *group = cad.GetShapeByNo(cad.GetShapesCount() - 1);
    ASSERT_EQ(group->Caption(), "g");
    ASSERT_EQ(group->ChildShapes().size(), 1u);
    EXPECT_EQ(cad.GetShapeByNo(group->ChildShapes()[0])->Caption(), "a");
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
