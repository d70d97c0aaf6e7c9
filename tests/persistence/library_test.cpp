// SPDX-License-Identifier: MIT
// Shape libraries: entry bytes built from the layout table, normalisation to the box, the
// tag table, upgrades of hand-built old libraries, edits that leave other entries alone,
// damaged input and the preview picture.
#include "common/files.h"
#include "recordfixture.h"
#include "surface/documenthelpers.h"

#include <tessal/persistence/library.h>
#include <tessal/shapes/link.h>
#include <tessal/shapes/rectangle.h>
#include <tessal/surface/cad.h>

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include <random>

namespace tessal {
namespace {

using test::BaseRecord;
using test::Bytes;
using test::Layout;
using Shapes = TLibManager::TShapeList;

// FillBaseFields' record in the newest layout with other geometry and no name: the fixed
// part after the angle is taken from the fixture (110 bytes precede it there).
Bytes Record(const TMyPointArray &points, const TMyPointArray &links, TMyPoint text)
{
    Bytes b;
    b.Text("").I32(7).I32(3).I32(2).I32(-1).I32(2).I32(4).I32(5).I32(1).I32(9);
    b.I32(std::int32_t(points.size()));
    for (TMyPoint p : points)
        b.F32(p.X).F32(p.Y);
    b.I32(std::int32_t(links.size()));
    for (TMyPoint p : links)
        b.F32(p.X).F32(p.Y);
    b.F32(text.X).F32(text.Y).I32(99).F32(90);
    return b.Raw(BaseRecord(Layout::XPj).Data().mid(110));
}

// One entry: name, size, then the body.
Bytes Entry(const QByteArray &name, const Bytes &body)
{
    return Bytes().U8(std::uint8_t(name.size())).Raw(name).I32(body.Data().size()).Append(body);
}

std::unique_ptr<TMyShape> Filled(TMyCAD &cad, const char *className, const TMyPointArray &points,
                                 const TMyPointArray &links, TMyPoint text)
{
    auto shape = cad.CreateShapeByName(QString::fromLatin1(className));
    test::FillBaseFields(*shape);
    shape->Points() = points;
    shape->LinkPoints() = links;
    shape->SetTextPoint(text);
    return shape;
}

// A one-shape entry.
bool AppendOne(TLibManager &lib, const QString &name, TMyShape *shape, const TUserData &data = {})
{
    TMyShape *const list[] = {shape};
    return lib.AppendNewShape(name, list, data);
}

const TMyPointArray Box2030 = {{20, 30}, {120, 30}, {120, 80}, {20, 80}};
const TMyPointArray Unit = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};

struct Read
{
    TMyPointArray Links;
    TUserData Data;
    Shapes List;
    std::int32_t Width = -1, Height = -1;
    bool Ok = false;
};

Read Get(TLibManager &lib, const QString &name, bool linkPointsOnly = false)
{
    Read r;
    r.Ok = lib.GetCmbShape(name, linkPointsOnly, r.Links, r.Data, r.List, r.Width, r.Height);
    return r;
}

QByteArray EntryBytes(TLibManager &lib, const QString &name)
{
    std::int64_t pos = 0, size = 0;
    EXPECT_TRUE(lib.GetExistShape(name, pos, size)) << name.toStdString();
    return lib.Buffer().mid(pos, size);
}

TEST(Library, OneEntryByteForByteAndBackAtNominalSize)
{
    TMyCAD cad;
    TLibManager lib;
    EXPECT_EQ(lib.Buffer(), QByteArray("ZEDALIBX.j"));
    auto rect = Filled(cad, "TMyRectangle", Box2030, {}, {70, 55});
    TUserData data;
    data.AddKeyandValue("owner", "me");
    ASSERT_TRUE(AppendOne(lib, "Door", rect.get(), data));

    Bytes body = Bytes().I32(100).I32(50).I32(1).Text("owner").Text("me").I32(1);
    body.Fixed("TMyRectangle", 16).Append(Record(Unit, {}, {0.5f, 0.5f}));
    EXPECT_EQ(lib.Buffer(), Bytes().Raw("ZEDALIBX.j").Append(Entry("Door", body)).Data());
    // The caller's shape is left as it was.
    EXPECT_EQ(std::tuple(rect->Name(), rect->Points(), rect->TextPoint()),
              std::tuple("Shape7", Box2030, TMyPoint{70, 55}));

    Read r = Get(lib, "Door");
    ASSERT_TRUE(r.Ok) << lib.LastError().toStdString();
    ASSERT_EQ(r.List.size(), 1u);
    EXPECT_EQ(std::tuple(r.Width, r.Height, r.Data.GetValueByKey("owner")),
              std::tuple(100, 50, "me"));
    const TMyShape &read = *r.List[0];
    EXPECT_EQ(
        std::tuple(read.ClassName(), read.Name(), read.Points(), read.TextPoint(), read.Tag()),
        std::tuple("TMyRectangle", "", TMyPointArray{{0, 0}, {100, 0}, {100, 50}, {0, 50}},
                   TMyPoint{50, 25}, 99));

    // An unknown name leaves every output empty.
    Read missing = Get(lib, "Window");
    EXPECT_EQ(std::tuple(missing.Ok, missing.List.size(), missing.Width), std::tuple(false, 0u, 0));
    EXPECT_FALSE(lib.LastError().isEmpty());

    QTemporaryDir dir;
    const QString path = dir.filePath("lib.lib");
    ASSERT_TRUE(TLibManager().SaveToFile(path));
    EXPECT_EQ(test::ReadFile(path), QByteArray("ZEDALIBX.j"));
}

TEST(Library, BoxLeavesOutLinkPointsAndRoundsHalfToEven)
{
    TMyCAD cad;
    TLibManager lib;
    // A link point alone: a box of no size, stored as 1 x 1 from the origin.
    auto mark = Filled(cad, "TMyLinkPoint", {{125, 50}, {135, 50}, {135, 60}, {125, 60}},
                       {{130, 55}}, {0, 0});
    ASSERT_TRUE(AppendOne(lib, "Pin", mark.get()));
    Bytes pinBody = Bytes().I32(1).I32(1).I32(0).I32(1).Fixed("TMyLinkPoint", 16);
    pinBody.Append(Record(mark->Points(), {{130, 55}}, {0, 0}));
    pinBody.U8(static_cast<TMyLinkPoint &>(*mark).Size());
    EXPECT_EQ(EntryBytes(lib, "Pin"), Entry("Pin", pinBody).Data());

    // With a rectangle the box is the rectangle's; the link point lies beyond it.
    auto rect = Filled(cad, "TMyRectangle", Box2030, {}, {20, 30});
    TMyShape *both[] = {rect.get(), mark.get()};
    ASSERT_TRUE(lib.AppendNewShape("Plug", both, {}));
    Read r = Get(lib, "Plug", true);
    ASSERT_TRUE(r.Ok) << lib.LastError().toStdString();
    // The link point went to the link points.
    EXPECT_EQ(std::tuple(r.Width, r.Height, r.List.size(), r.Links),
              std::tuple(100, 50, 1u, TMyPointArray{{110, 25}}));
    EXPECT_EQ(Get(lib, "Plug").List.size(), 2u);

    // 2.5 rounds to 2, 0.5 to 0 and then up to 1; 3.5 rounds to 4.
    auto small =
        Filled(cad, "TMyRectangle", {{0, 0}, {2.5f, 0}, {2.5f, 0.5f}, {0, 0.5f}}, {}, {0, 0});
    auto odd =
        Filled(cad, "TMyRectangle", {{0, 0}, {3.5f, 0}, {3.5f, 3.5f}, {0, 3.5f}}, {}, {0, 0});
    ASSERT_TRUE(AppendOne(lib, "Small", small.get()));
    ASSERT_TRUE(AppendOne(lib, "Odd", odd.get()));
    EXPECT_EQ(EntryBytes(lib, "Small").mid(10, 8), Bytes().I32(2).I32(1).Data());
    EXPECT_EQ(EntryBytes(lib, "Odd").mid(8, 8), Bytes().I32(4).I32(4).Data());
}

TEST(Library, TagTestsAndRecordVersions)
{
    QTemporaryDir dir;
    const char *tags[] = {"ZEDALIBX.j", "ZEDALIBX.i", "ZEDALIBX.h", "ZEDALIBX.e", "ZEDALIBX.a",
                          "ZEDALIBX.9", "ZEDALIBX.8", "ZEDALIBX.7", "ZEDALIBX.6", "ZEDALIBX.3",
                          "ZEDALIBX.2", "ZEDALIB2.1", "ZEDALIBX.J", "ZEDALIBX."};
    // Expected answers, one letter per test: general, .2, .6/.7, .8, .9, .a, .e, .h, .i, old.
    const char *expected[] = {"G.........", "........I.", "G......H..", "......E...", "G....A....",
                              "G...9.....", "G..8......", "G.6.......", "G.6.......", "G.........",
                              "G2........", ".........O", "..........", ".........."};
    bool (*tests[])(const QString &) = {
        IsZEDALibFile,   IsZEDALibX2File, IsZEDALibFileX67, IsZEDALibFileX8, IsZEDALibFileX9,
        IsZEDALibFileXA, IsZEDALibFileXE, IsZEDALibFileXH,  IsZEDALibFileXI, IsOLDZEDALibFile};
    for (std::size_t t = 0; t < std::size(tags); ++t) {
        const QString path = dir.filePath(QString::number(t));
        ASSERT_TRUE(test::WriteFile(path, tags[t]));
        for (std::size_t f = 0; f < std::size(tests); ++f)
            EXPECT_EQ(tests[f](path), expected[t][f] != '.') << tags[t] << " test " << f;
    }

    const std::pair<const char *, const char *> versions[] = {
        {"ZEDALIBX.j", "XP.j"}, {"ZEDALIBX.i", "XP.i"}, {"ZEDALIBX.e", "XP.e"},
        {"ZEDALIBX.6", "XP.6"}, {"ZEDALIBX.3", "XP.4"}, {"ZEDALIBX.2", "XP.2"},
        {"ZEDALIBX.5", ""},     {"ZEDALIB2.1", ""}};
    TLibManager lib;
    for (const auto &[tag, version] : versions) {
        ASSERT_TRUE(lib.LoadFromBuffer(tag));
        EXPECT_EQ(lib.Drawing().DiskFileVersion(), QString(version)) << tag;
    }
    std::int32_t length = 5;
    std::int64_t position = 5;
    ASSERT_TRUE(lib.LoadFromBuffer("ZEDALIB"));
    EXPECT_TRUE(lib.ReadLibTag(length, position).isEmpty());
    EXPECT_EQ(std::tuple(length, position, lib.GetcmbShapesCount()), std::tuple(0, -1, 0));

    // A ".3" library: extended coordinates, no user data block.
    const Bytes body =
        Bytes().I32(2).I32(4).I32(1).Fixed("TMyRectangle", 16).Append(BaseRecord(Layout::XP3to5));
    ASSERT_TRUE(lib.LoadFromBuffer(Bytes().Raw("ZEDALIBX.3").Append(Entry("Old", body))));
    Read r = Get(lib, "Old");
    ASSERT_TRUE(r.Ok) << lib.LastError().toStdString();
    EXPECT_EQ(std::tuple(r.List[0]->Points(), r.List[0]->TextPoint(), r.Data.GetCount()),
              std::tuple(TMyPointArray{{3, 8}, {20, -12}, {20, 80}, {3, 80}}, TMyPoint{6, 16}, 0));
}

TEST(Library, UpgradeChainRewritesHandBuiltOldLibraries)
{
    const std::pair<const char *, Layout> olds[] = {
        {"ZEDALIBX.6", Layout::XP6}, {"ZEDALIBX.8", Layout::XP8}, {"ZEDALIBX.a", Layout::XPa}};
    for (const auto &[tag, layout] : olds) {
        SCOPED_TRACE(tag);
        const Bytes a =
            Bytes().I32(2).I32(4).I32(1).Fixed("TMyRectangle", 16).Append(BaseRecord(layout));
        const Bytes b =
            Bytes().I32(1).I32(1).I32(1).Fixed("TMyRectangle", 16).Append(BaseRecord(layout, 8));
        TLibManager lib;
        ASSERT_TRUE(lib.LoadFromBuffer(
            Bytes().Raw(tag).Append(Entry("A", a)).Append(Entry("B", b)).Data()));
        for (auto step : {&TLibManager::Upgradefromx6tox8, &TLibManager::Upgradefromx8tox9,
                          &TLibManager::Upgradefromx9toxa, &TLibManager::Upgradefromxatoxe,
                          &TLibManager::Upgradefromxetoxh, &TLibManager::Upgradefromxhtoxi,
                          &TLibManager::Upgradefromxitoxj})
            ASSERT_TRUE((lib.*step)()) << lib.LastError().toStdString();
        EXPECT_EQ(lib.Buffer().left(10), QByteArray("ZEDALIBX.j"));
        ASSERT_EQ(lib.GetcmbShapesCount(), 2);
        EXPECT_EQ(lib.GetCmbShapesNameByID(1), QStringLiteral("B"));

        // Stored at 2 x 4, the points spread over (3, -12)-(20, 80): a box of 17 x 92.
        Read r = Get(lib, "A");
        ASSERT_TRUE(r.Ok) << lib.LastError().toStdString();
        EXPECT_EQ(std::tuple(r.Width, r.Height), std::tuple(17, 92));
        const TMyShape &s = *r.List[0];
        test::ExpectNear(s.Points(), {{0, 20}, {17, 0}, {17, 92}, {0, 92}});
        // User data since XP.8, flips since XP.9.
        EXPECT_EQ(std::tuple(s.Name(), s.Tag(), s.UserData().GetCount(), s.IsFlipHorz()),
                  std::tuple("", 99, layout >= Layout::XP8 ? 2 : 0, layout >= Layout::XP9));
        // 8.5 rounds to even.
        EXPECT_EQ(std::tuple(Get(lib, "B").Width, Get(lib, "B").List[0]->ShapeId()),
                  std::tuple(8, 8));
    }
}

TEST(Library, EditsKeepTheOtherEntriesByteIdentical)
{
    TMyCAD cad;
    TLibManager lib;
    std::vector<std::unique_ptr<TMyShape>> keep;
    for (const char *name : {"A", "B", "C"}) {
        keep.push_back(Filled(cad, "TMyRectangle", Box2030, {}, {0, 0}));
        keep.back()->SetTag(name[0]);
        ASSERT_TRUE(AppendOne(lib, name, keep.back().get()));
    }
    const QByteArray a = EntryBytes(lib, "A"), b = EntryBytes(lib, "B"), c = EntryBytes(lib, "C");
    const QByteArray tag = "ZEDALIBX.j";

    ASSERT_TRUE(lib.RenameCmbShapeName("B", "Bee"));
    const QByteArray bee = "\3Bee" + b.mid(2);
    EXPECT_EQ(lib.Buffer(), tag + a + bee + c);
    ASSERT_TRUE(lib.MoveCmbShapeBeforeByName("C", "A"));
    EXPECT_EQ(lib.Buffer(), tag + c + a + bee);
    ASSERT_TRUE(lib.MoveCmbShapeBeforeByName("C", "Bee"));
    EXPECT_EQ(lib.Buffer(), tag + a + c + bee);
    ASSERT_TRUE(lib.DeleteShape("A"));
    EXPECT_EQ(lib.Buffer(), tag + c + bee);

    // Inserting before "Bee" and replacing it in place.
    std::int64_t pos = 0, size = 0;
    ASSERT_TRUE(lib.GetExistShape("Bee", pos, size));
    TMyShape *list[] = {keep[0].get()};
    ASSERT_TRUE(lib.InsertNewShape(pos, "A", list, {}));
    EXPECT_EQ(lib.Buffer(), tag + c + a + bee);
    ASSERT_TRUE(lib.RepalceExistShape("Bee", list, {}));
    EXPECT_EQ(lib.Buffer(), tag + c + a + "\3Bee" + a.mid(2));

    // Refusals leave the buffer alone.
    const QByteArray before = lib.Buffer();
    EXPECT_FALSE(lib.AppendNewShape("A", list, {}));
    EXPECT_FALSE(lib.RenameCmbShapeName("A", "C"));
    EXPECT_FALSE(lib.AppendNewShape(QString(256, 'x'), list, {}));
    EXPECT_FALSE(lib.AppendNewShape(QString(), list, {}));
    EXPECT_FALSE(lib.InsertNewShape(pos + 1, "D", list, {}));
    EXPECT_FALSE(lib.DeleteShape("D"));
    EXPECT_FALSE(lib.MoveCmbShapeBeforeByName("A", "D"));
    EXPECT_EQ(lib.Buffer(), before);
    EXPECT_TRUE(lib.AppendNewShape(QString(255, 'x'), list, {}));
}

TEST(Library, DamagedLibrariesAreAnsweredFalse)
{
    TMyCAD cad;
    TLibManager good;
    auto rect = Filled(cad, "TMyRectangle", Box2030, {}, {0, 0});
    TUserData data;
    data.AddKeyandValue("k", "v");
    ASSERT_TRUE(AppendOne(good, "A", rect.get(), data));
    ASSERT_TRUE(AppendOne(good, "B", rect.get(), data));
    const QByteArray whole = good.Buffer();
    const qsizetype second = 10 + EntryBytes(good, "A").size();

    // Cut anywhere: only the cuts at entry boundaries frame correctly.
    TLibManager lib;
    for (qsizetype n = 11; n < whole.size(); ++n) {
        EXPECT_EQ(lib.LoadFromBuffer(whole.left(n)), n == second) << n;
        EXPECT_EQ(lib.LastError().isEmpty(), n == second) << n;
    }
    EXPECT_EQ(lib.Buffer(), whole.left(second)); // the last accepted buffer stays

    // Cut inside the shapes with the size field following the cut: framed, but unreadable.
    const QByteArray entry = EntryBytes(good, "A");
    for (qsizetype cut = 1; cut < entry.size() - 6 - 8; ++cut) {
        QByteArray shorter = entry.left(entry.size() - cut);
        const Bytes size = Bytes().I32(std::int32_t(shorter.size() - 6));
        shorter.replace(2, 4, size.Data());
        ASSERT_TRUE(lib.LoadFromBuffer("ZEDALIBX.j" + shorter)) << cut;
        Read r = Get(lib, "A");
        EXPECT_FALSE(r.Ok) << cut;
        EXPECT_TRUE(r.List.empty() && r.Data.GetCount() == 0);
        EXPECT_FALSE(lib.LastError().isEmpty());
    }

    // Impossible counts: user data, shapes, and a width of 0.
    for (const auto &[offset, value] : {std::pair{14, 0x7FFFFFFF}, std::pair{14, -1},
                                        std::pair{28, 0x10000000}, std::pair{6, 0}}) {
        QByteArray bad = whole;
        bad.replace(10 + offset, 4, Bytes().I32(value).Data());
        ASSERT_TRUE(lib.LoadFromBuffer(bad));
        EXPECT_FALSE(Get(lib, "A").Ok) << offset << " " << value;
        EXPECT_TRUE(Get(lib, "B").Ok);
    }

    // Random bytes over the first entry's body never crash a reader.
    std::mt19937 random(17);
    for (int round = 0; round < 300; ++round) {
        QByteArray bad = whole;
        for (int k = 0; k < 4; ++k)
            bad[std::uniform_int_distribution<qsizetype>(16, second - 1)(random)] = char(random());
        ASSERT_TRUE(lib.LoadFromBuffer(bad));
        Read r = Get(lib, "A", round % 2 == 1);
        EXPECT_EQ(r.Ok, lib.LastError().isEmpty());
        lib.GetCmbShapeforXH("B", false, r.Links, r.Data, r.List, r.Width, r.Height);
    }
}

TEST(Library, PreviewScalesTheEntryIntoTheImage)
{
    TMyCAD cad;
    TLibManager lib;
    auto rect = cad.CreateShapeByName(QStringLiteral("TMyRectangle"));
    rect->Points() = Box2030;
    rect->SetBrush(TBrush{clRed, TBrushStyle::bsSolid, {}});
    ASSERT_TRUE(AppendOne(lib, "R", rect.get()));
    // 100 x 50 into 54 x 54 less the margin: 50 x 25, centred at rows 14.5 to 39.5.
    TBitmap bitmap;
    ASSERT_TRUE(lib.GetCmbShapeImage("R", bitmap, 54, 54));
    ASSERT_EQ(bitmap.Width(), 54);
    EXPECT_EQ(std::tuple(bitmap.Pixel(27, 27), bitmap.Pixel(10, 20), bitmap.Pixel(27, 10),
                         bitmap.Pixel(27, 44), bitmap.Pixel(0, 27)),
              std::tuple(clRed, clRed, clWhite, clWhite, clWhite));
    EXPECT_FALSE(lib.GetCmbShapeImage("S", bitmap, 54, 54));

    // A 1 x 1 entry scaled up a hundredfold, within the image asked for.
    auto mark = cad.CreateShapeByName(QStringLiteral("TMyLinkPoint"));
    mark->Points() = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
    ASSERT_TRUE(AppendOne(lib, "Pin", mark.get()));
    EXPECT_EQ(lib.GetCmbShapeImage("Pin", QSize(104, 104)).size(), QSize(104, 104));
}

} // namespace
} // namespace tessal
