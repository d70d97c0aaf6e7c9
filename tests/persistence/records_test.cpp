// SPDX-License-Identifier: MIT
// Shape records: the newest layout byte for byte, the older layouts read from hand-built
// bytes, and every class's fields through a write and a read.
#include "recordfixture.h"

#include <tessal/platform/streamprimitives.h>
#include <tessal/shapes/arc.h>
#include <tessal/shapes/image.h>
#include <tessal/shapes/line.h>
#include <tessal/shapes/link.h>
#include <tessal/shapes/ruleline.h>
#include <tessal/shapes/shapefactory.h>
#include <tessal/shapes/text.h>
#include <tessal/surface/cad.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

namespace tessal {
namespace {

using test::BaseRecord;
using test::Bytes;
using test::Layout;

template <typename T>
std::unique_ptr<T> Make(TMyCAD &cad, const char *className)
{
    std::unique_ptr<TMyShape> shape = cad.CreateShapeByName(QString::fromLatin1(className));
    EXPECT_NE(shape, nullptr) << className;
    return std::unique_ptr<T>(static_cast<T *>(shape.release()));
}

// The base fields as FillBaseFields set them, written again in the newest layout: every
// field up to the pen (the part all layouts share) must be back byte for byte, and the
// loaded shape must have rebuilt its gradient picture.
void ExpectBaseFields(const TMyShape &s)
{
    const qsizetype shared = BaseRecord(Layout::XP6).Data().size();
    EXPECT_EQ(test::Saved(s).left(shared), BaseRecord(Layout::XPj).Data().left(shared));
    EXPECT_FALSE(s.GradientBitmap().IsEmpty());
}

// Gives the fields a class adds non-default values, neighbours in the record told apart.
void FillClassFields(TMyShape &shape)
{
    if (auto *line = dynamic_cast<TMyLine *>(&shape)) {
        line->SetArrowAngle(33);
        line->SetArrowLength(7);
        line->SetArrowOffset(2);
        line->SetArrowStyle(TArrowStyle::ARight);
    }
    if (auto *link = dynamic_cast<TMyLinkLine *>(&shape)) {
        link->SetStartSpNo(5);
        link->SetStartSpPtId(1);
        link->SetEndSpNo(8);
        link->SetEndSpPtId(3);
        link->SetLinkLineDrawStyle(TLinkLineDrawStyle::lldsFree);
    }
    if (auto *rule = dynamic_cast<TMyRuleLine *>(&shape)) {
        rule->SetShowUserInfo(true);
        rule->SetTickStyle(TTickStyle::tsBottom);
        rule->SetUserInfo(QStringLiteral("12 m"));
    }
    if (auto *arc = dynamic_cast<TMyElliArc *>(&shape)) {
        arc->SetArcMode(TArcMode::amEllipse);
        arc->SetArcStyle(TArcStyle::asPie);
    }
    if (auto *text = dynamic_cast<TMyText *>(&shape)) {
        text->SetIsBorder(true);
        text->SetLines({QStringLiteral("a b"), QString(), QStringLiteral("\u00e9t\u00e9")});
        text->SetVAlignment(TVAlignment::vaBottom);
        text->SetHAlignment(TAlignment::taRightJustify);
        text->SetWordWrap(true);
    }
    if (auto *image = dynamic_cast<TMyImage *>(&shape)) {
        TBitmap picture(3, 2);
        picture.SetPixel(2, 1, clRed);
        image->SetBitmap(picture);
        image->SetBrightness(-20);
        image->SetContrast(15);
        image->SetGrayScale(true);
        image->SetTransparent(true);
        image->SetTransparentColor(clRed);
        image->SetTransparentMode(TTransparentMode::tmFixed);
    }
    if (auto *mark = dynamic_cast<TMyLinkPoint *>(&shape))
        mark->SetSize(11);
}

TEST(ShapeRecords, NewestLayoutOfEachClassByteForByte)
{
    // What each class writes after the base part, for FillClassFields' values.
    const Bytes arrows = Bytes().I32(33).U8(7).U8(2).U8(2); // angle, length, offset, ARight
    TBitmap picture(3, 2);
    picture.SetPixel(2, 1, clRed);
    const QByteArray bmp = picture.SaveToBmp();
    // Classes not listed add nothing to their parent's part.
    std::map<QString, Bytes> tails = {
        {"TMyLinkLine", Bytes(arrows).I32(5).I32(1).I32(8).I32(3).U8(1)},
        {"TMyRuleLine", Bytes(arrows).U8(1).U8(3).Text("12 m")},
        {"TMyElliArc", Bytes().U8(1).U8(2)},
        {"TMyText",
         Bytes().U8(1).U8(0).I32(3).Text("a b").Text("").Text("\xe9t\xe9").U8(2).U8(1).U8(1)},
        {"TMyImage",
         Bytes().I64(bmp.size()).Raw(bmp).I32(-20).I32(15).U8(1).U8(0).U8(1).U32(0x0000FF).I32(1)},
        {"TMyLinkPoint", Bytes().U8(11)},
        {"TMyLineLinkLine", Bytes().U8(11)}};
    for (const char *chain : {"TMyLine", "TMyPolyLine", "TMyPolygon", "TMyFreeLine"})
        tails[chain] = arrows;
    TMyCAD cad;
    for (const QString &name : ShapeClassNames()) {
        std::unique_ptr<TMyShape> shape = cad.CreateShapeByName(name);
        FillClassFields(*shape);
        test::FillBaseFields(*shape);
        EXPECT_EQ(test::Saved(*shape), BaseRecord(Layout::XPj).Append(tails[name]).Data())
            << name.toStdString();
    }
}

// Each layout read from its own bytes leaves the same fields, and uses every byte.
TEST(ShapeRecords, EveryLayoutReadsTheFieldsItHas)
{
    const struct
    {
        const char *Version;
        Layout Form;
    } cases[] = {{"XP.3", Layout::XP3to5}, {"XP.5", Layout::XP3to5}, {"XP.6", Layout::XP6},
                 {"XP.7", Layout::XP7},    {"XP.8", Layout::XP8},    {"XP.9", Layout::XP9},
                 {"XP.a", Layout::XP9},    {"XP.e", Layout::XPe},    {"XP.h", Layout::XPh},
                 {"XP.i", Layout::XPh},    {"XP.j", Layout::XPj}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.Version);
        TMyCAD cad;
        cad.SetDiskFileVersion(QString::fromLatin1(c.Version));
        auto rect = Make<TMyRectangle>(cad, "TMyRectangle");
        EXPECT_TRUE(test::LoadAll(*rect, BaseRecord(c.Form)));
        ExpectBaseFields(*rect);
        if (c.Form >= Layout::XPj) {
            EXPECT_EQ(test::Saved(*rect), BaseRecord(Layout::XPj).Data());
        }
        EXPECT_EQ(rect->UserData().GetCount(), c.Form >= Layout::XP8 ? 2 : 0);
        EXPECT_EQ(rect->IsFlipHorz(), c.Form >= Layout::XP9);
        EXPECT_EQ(rect->MultiInfo().size(), c.Form >= Layout::XPe ? 2 : 0);
        EXPECT_EQ(rect->Locked(), c.Form >= Layout::XPh);
        EXPECT_EQ(rect->HotShow(), c.Form < Layout::XPj);
    }
}

TEST(ShapeRecords, OldestLayoutHasNoCoordinatesTagOrAngle)
{
    TMyCAD cad;
    cad.SetDiskFileVersion(QStringLiteral("XP.2"));
    auto rect = Make<TMyRectangle>(cad, "TMyRectangle");
    EXPECT_TRUE(test::LoadAll(*rect, BaseRecord(Layout::XP2)));
    EXPECT_EQ(std::tuple(rect->Points(), rect->LinkPoints(), rect->Tag(), rect->Angle()),
              std::tuple(TMyPointArray(4), TMyPointArray(1), 0, 0.0f));
    EXPECT_EQ(rect->Caption(), QStringLiteral("Cap"));
    EXPECT_EQ(rect->Pen().Color, 0x445566u);

    // Only the counts are stored, so they may run far past the bytes that follow. What
    // they make from nothing is bounded per stream: one count beyond that, or two that
    // together overdraw it, are refused before anything is allocated.
    const QByteArray record = BaseRecord(Layout::XP2);
    const qsizetype counts = 10 + 16 + 12 + 8;
    ASSERT_EQ(record.mid(counts, 8), Bytes().I32(4).I32(1).Data());
    auto withCounts = [&](std::int32_t points, std::int32_t linkPoints) {
        return QByteArray(record).replace(counts, 8, Bytes().I32(points).I32(linkPoints).Data());
    };
    auto many = Make<TMyRectangle>(cad, "TMyRectangle");
    EXPECT_TRUE(test::LoadAll(*many, withCounts(5000, 3000)));
    EXPECT_EQ(std::tuple(many->Points(), many->LinkPoints().size(), many->Caption()),
              std::tuple(TMyPointArray(5000), 3000u, QStringLiteral("Cap")));
    constexpr std::int32_t half = BinaryStream::UnbackedAllowance / sizeof(TMyPoint) / 2;
    EXPECT_TRUE(test::LoadAll(*many, withCounts(half, half)));
    EXPECT_EQ(many->GetPointsCount(), half);
    for (const auto &[points, linkPoints] :
         {std::pair(INT32_MAX, 1), std::pair(half, half + 1), std::pair(-5, INT32_MAX)}) {
        try {
            test::LoadAll(*Make<TMyRectangle>(cad, "TMyRectangle"), withCounts(points, linkPoints));
            ADD_FAILURE() << points << ", " << linkPoints;
        } catch (const TStreamError &e) {
            EXPECT_TRUE(QString::fromLatin1(e.what()).startsWith(
                QStringLiteral("count %1 ").arg(std::max(points, linkPoints))))
                << e.what();
        }
    }

    // A version no reader knows has only the fields every version has.
    TMyCAD other;
    other.SetDiskFileVersion(QStringLiteral("xp.j"));
    auto unknown = Make<TMyRectangle>(other, "TMyRectangle");
    EXPECT_TRUE(test::LoadAll(*unknown, BaseRecord(Layout::Common)));
    EXPECT_EQ(unknown->Info(), QStringLiteral("Info"));
    EXPECT_EQ(std::tuple(unknown->GetPointsCount(), unknown->TextPoint().X), std::tuple(4, 0.0f));
}

TEST(ShapeRecords, SubclassPartsFollowTheirVersionGates)
{
    TMyCAD cad;
    cad.SetLinkLineDrawStyle(TLinkLineDrawStyle::lldsFree);
    // Arrows (ALeft), then the connector's ends; the draw style came with XP.5.
    const Bytes link =
        BaseRecord(Layout::XP3to5).I32(20).U8(15).U8(2).U8(1).I32(4).I32(0).I32(6).I32(1);
    cad.SetDiskFileVersion(QStringLiteral("XP.4"));
    auto unstyled = Make<TMyLinkLine>(cad, "TMyLinkLine");
    EXPECT_TRUE(test::LoadAll(*unstyled, link));
    EXPECT_EQ(
        std::tuple(unstyled->LinkLineDrawStyle(), unstyled->EndSpNo(), unstyled->ArrowStyle()),
        std::tuple(TLinkLineDrawStyle::lldsFree, 6, TArrowStyle::ALeft));
    cad.SetDiskFileVersion(QStringLiteral("XP.5"));
    auto styled = Make<TMyLinkLine>(cad, "TMyLinkLine");
    EXPECT_TRUE(test::LoadAll(*styled, Bytes(link).U8(0)));
    EXPECT_EQ(styled->LinkLineDrawStyle(), TLinkLineDrawStyle::lldsHV);

    cad.SetDiskFileVersion(QStringLiteral("XP.8"));
    auto image = Make<TMyImage>(cad, "TMyImage");
    EXPECT_TRUE(test::LoadAll(*image, BaseRecord(Layout::XP8).I64(0)));
    EXPECT_EQ(image->Brightness(), 0);
    cad.SetDiskFileVersion(QStringLiteral("XP.9"));
    auto adjusted = Make<TMyImage>(cad, "TMyImage");
    EXPECT_TRUE(
        test::LoadAll(*adjusted, BaseRecord(Layout::XP9).I64(0).I32(30).I32(-4).U8(1).U8(1).U8(1)));
    EXPECT_EQ(std::tuple(adjusted->Contrast(), adjusted->GrayScale(), adjusted->TransparentMode()),
              std::tuple(-4, true, TTransparentMode::tmAuto));

    auto text = Make<TMyText>(cad, "TMyText");
    EXPECT_TRUE(test::LoadAll(*text, BaseRecord(Layout::XP9).U8(1).U8(0)));
    EXPECT_TRUE(text->IsBorder() && text->Lines().isEmpty());
    cad.SetDiskFileVersion(QStringLiteral("XP.a"));
    auto lines = Make<TMyText>(cad, "TMyText");
    EXPECT_TRUE(test::LoadAll(
        *lines, BaseRecord(Layout::XP9).U8(0).U8(0).I32(1).Text("hi").U8(1).U8(2).U8(0)));
    EXPECT_EQ(lines->Lines(), QStringList{QStringLiteral("hi")});
    EXPECT_EQ(lines->HAlignment(), TAlignment::taCenter);
}

TEST(ShapeRecords, ShortOrImpossibleRecordsThrow)
{
    TMyCAD cad;
    const QByteArray full = BaseRecord(Layout::XPj).I32(25).U8(12).U8(3).U8(3);
    for (int length = 0; length < full.size(); ++length)
        EXPECT_THROW(test::LoadAll(*Make<TMyLine>(cad, "TMyLine"), full.left(length)), TStreamError)
            << length;
    // A child count the stream cannot hold fails before anything is allocated.
    const Bytes huge = Bytes().Text("a").I32(1).I32(1).I32(0).I32(-1).I32(INT32_MAX);
    EXPECT_THROW(test::LoadAll(*Make<TMyRectangle>(cad, "TMyRectangle"), huge), TStreamError);
    // A pen too wide to draw is refused.
    QByteArray wide = BaseRecord(Layout::XPj);
    const qsizetype width = wide.indexOf("Info") + 4 + 4 + 2;
    ASSERT_EQ(wide.mid(width, 4), Bytes().I32(3).Data());
    wide.replace(width, 4, Bytes().I32(40000).Data());
    EXPECT_THROW(test::LoadAll(*Make<TMyRectangle>(cad, "TMyRectangle"), wide), TStreamError);
    // An arrow style beyond the list is refused rather than stored.
    EXPECT_THROW(test::LoadAll(*Make<TMyLine>(cad, "TMyLine"),
                               BaseRecord(Layout::XPj).I32(25).U8(12).U8(3).U8(4)),
                 TStreamError);
}

// A brush pattern replaces the brush: the colour and style stored after it are skipped.
TEST(ShapeRecords, BrushPatternWinsOverStoredColourAndStyle)
{
    TMyCAD cad;
    auto original = Make<TMyRectangle>(cad, "TMyRectangle");
    test::FillBaseFields(*original);
    TBrush patterned = original->Brush();
    TBitmap pattern(2, 1);
    pattern.SetPixel(0, 0, clRed);
    pattern.SetPixel(1, 0, clBlue);
    patterned.Bitmap = pattern.Image();
    original->SetBrush(patterned);
    const QByteArray bytes = test::Saved(*original);
    EXPECT_EQ(bytes.mid(bytes.indexOf("Cap") - 4 - 4 - 1 - 62 - 8, 8), Bytes().I64(62).Data());

    auto copy = Make<TMyRectangle>(cad, "TMyRectangle");
    EXPECT_TRUE(test::LoadAll(*copy, bytes));
    EXPECT_EQ(copy->Brush(), (TBrush{cad.Brush().Color, cad.Brush().Style, pattern.Image()}));
}

// Random values in every base field: texts up to 255 characters, the longest a record keeps
// whole, and the default or another font face.
void FillRandomBaseFields(TMyShape &shape, std::mt19937 &random)
{
    const auto pick = [&random](std::uint32_t n) { return std::int32_t(random() % n); };
    const auto text = [&](std::int32_t longest) {
        QString t;
        for (std::int32_t i = pick(std::uint32_t(longest + 1)); i > 0; --i)
            t.append(QChar(char16_t(0x20 + pick(0x5F))));
        return t;
    };
    const auto coordinate = [&] { return float(pick(200001) - 100000) / 8; };
    shape.SetName(text(12));
    shape.SetShapeId(pick(1000));
    shape.SetShapeNo(pick(1000));
    shape.SetLayerId(pick(5));
    shape.SetParentNo(pick(10) - 1);
    shape.ChildShapes().assign(std::size_t(pick(4)), pick(100));
    shape.LinkShapes().assign(std::size_t(pick(3)), pick(100));
    shape.Points().clear();
    for (std::int32_t i = 2 + pick(6); i > 0; --i)
        shape.Points().push_back({coordinate(), coordinate()});
    shape.LinkPoints().assign(std::size_t(pick(3)), TMyPoint{coordinate(), coordinate()});
    shape.SetTextPoint({coordinate(), coordinate()});
    shape.SetTag(std::int32_t(random()));
    shape.SetAngleValue(float(pick(7200)) / 1000);
    shape.SetBrush(TBrush{TColor(random() & 0xFFFFFF), TBrushStyle(pick(8)), {}});
    shape.SetCaption(text(pick(2) ? 8 : 255));
    shape.SetColorBegin(TColor(random() & 0xFFFFFF));
    shape.SetColorEnd(TColor(random() & 0xFFFFFF));
    TFont font = shape.Font();
    if (pick(2))
        font.Name = text(20);
    font.Color = TColor(random() & 0xFFFFFF);
    // A reader applies the stored size after the height, so only a height that the size
    // reproduces comes back; a font's own setter keeps the two consistent.
    font.SetSize(1 + pick(60));
    font.Pitch = TFontPitch(pick(3));
    font.Style = TFontStyles(pick(16));
    shape.SetFont(font);
    shape.SetGradientStyle(TGradientStyle(pick(24)));
    shape.SetInfo(text(pick(2) ? 8 : 255));
    shape.SetPen(
        TPen{TColor(random() & 0xFFFFFF), TPenMode(pick(16)), TPenStyle(pick(9)), pick(20)});
    std::vector<TUserDataRecord> records;
    for (std::int32_t i = pick(3); i > 0; --i)
        records.push_back({text(6), text(10)});
    shape.UserData().SetUserDataRecord(records);
    shape.SetFlipFlags(pick(2), pick(2));
    QStringList lines;
    for (std::int32_t i = pick(3); i > 0; --i)
        lines.append(text(10));
    shape.SetMultiInfo(lines);
    shape.SetMultiInfoAlignment(TAlignment(pick(3)));
    shape.SetLogHeight(pick(100));
    shape.SetLogUse(pick(2));
    shape.SetLogWidth(pick(100));
    shape.SetLockedFlag(pick(2));
    shape.SetPenStyleEndCapType(TPenStyleEndCapType(pick(4)));
    shape.SetPenStyleJoinType(TPenStyleJoinType(pick(4)));
    shape.SetHotShow(pick(2));
    shape.SetResizeEnable(pick(2));
    shape.SetRotateEnable(pick(2));
}

// Every class written, read into a fresh shape and written again gives the same bytes: first
// with the known values, then with random ones. The writer's bytes are exact (the newest
// layout test), so equal bytes mean the reader restored every field it stores.
TEST(ShapeRecords, EveryClassWriteReadWriteGivesTheSameBytes)
{
    TMyCAD cad;
    std::mt19937 random(8128);
    for (const QString &name : ShapeClassNames()) {
        SCOPED_TRACE(name.toStdString());
        for (int round = 0; round <= 40; ++round) {
            std::unique_ptr<TMyShape> original = cad.CreateShapeByName(name);
            if (round == 0 || random() % 2)
                FillClassFields(*original);
            if (round == 0)
                test::FillBaseFields(*original);
            else
                FillRandomBaseFields(*original, random);
            const QByteArray bytes = test::Saved(*original);
            std::unique_ptr<TMyShape> copy = cad.CreateShapeByName(name);
            ASSERT_TRUE(test::LoadAll(*copy, bytes)) << round;
            const QByteArray again = test::Saved(*copy);
            const auto differ =
                std::mismatch(bytes.begin(), bytes.end(), again.begin(), again.end());
            ASSERT_EQ(again, bytes)
                << "round " << round << ", first difference at " << (differ.first - bytes.begin());
            EXPECT_EQ(copy->Font().Name, original->Font().Name) << round;
        }
    }
}

} // namespace
} // namespace tessal
