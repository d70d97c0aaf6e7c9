// SPDX-License-Identifier: MIT
// Drawing files: exact bytes of the header and body, what a load restores, the failure
// rules, damaged input, and a picture that survives a save and a load.
#include "../common/imagecompare.h"
#include "common/files.h"
#include "common/paintspy.h"
#include "recordfixture.h"
#include "surface/documenthelpers.h"

#include <tessal/shapes/image.h>
#include <tessal/shapes/link.h>
#include <tessal/shapes/rectangle.h>
#include <tessal/surface/cad.h>

#include <gtest/gtest.h>

#include <QBuffer>
#include <QFile>
#include <QPaintEvent>
#include <QTemporaryDir>

#include <random>

namespace tessal {
namespace {

using test::BaseRecord;
using test::Bytes;
using test::Layout;
using test::TProgressLog;

Bytes Header(const QByteArray &version = "XP.j")
{
    Bytes b = Bytes().Fixed("Tessal Component", 64);
    b.Fixed("Tessal drawing component for C++ and Qt applications", 64).Fixed(version, 16);
    return b.Fixed("20091209", 10).Fixed("", 64);
}

// Colour, size, unit, no background picture, its mode and the ratio.
Bytes Settings(std::int32_t width, std::int32_t height)
{
    return Bytes().U32(0xFFFFFF).I32(width).I32(height).U8(1).I64(0).I32(2).F64(1.0);
}

// A line's arrow fields, then a connector's unbound ends and its draw style.
Bytes Arrows(Bytes b)
{
    return b.I32(10).U8(30).U8(0).U8(0);
}

bool Load(TMyCAD &cad, const QByteArray &bytes,
          TMyCAD::TLoadFault fault = TMyCAD::TLoadFault::KeepWhatWasRead)
{
    QByteArray data = bytes;
    QBuffer buffer(&data);
    buffer.open(QIODevice::ReadOnly);
    return cad.LoadFromStream(&buffer, fault);
}

TEST(DrawingFile, EmptyAndSmallDrawingsByteForByte)
{
    TMyCAD cad;
    cad.resize(300, 200);
    const Bytes layers = Bytes().I32(1).Text("Layer0").I32(0).I32(1).I32(0);
    const QByteArray empty = test::Saved(cad);
    EXPECT_EQ(empty.size(), 289);
    EXPECT_EQ(empty,
              Header().Append(Settings(300, 200)).I32(0).I32(0).Append(layers).I32(0).Data());

    cad.SetTag(-5);
    cad.UserData().AddKeyandValue("owner", "me");
    cad.NewLayer(QStringLiteral("Top"), false);
    auto rect = cad.CreateShapeByName(QStringLiteral("TMyRectangle"));
    test::FillBaseFields(*rect);
    ASSERT_TRUE(cad.AddShape(rect.release(), true, true));
    auto link = cad.CreateShapeByName(QStringLiteral("TMyLinkLine"));
    static_cast<TMyLinkLine &>(*link).SetLinkLineDrawStyle(TLinkLineDrawStyle::lldsFree);
    test::FillBaseFields(*link);
    ASSERT_TRUE(cad.AddShape(link.release(), true, true));
    Bytes expected = Header().Append(Settings(300, 200));
    expected.I32(-5).I32(1).Text("owner").Text("me");                       // tag, user data
    expected.I32(2).Text("Layer0").I32(0).I32(1).Text("Top").I32(1).I32(0); // layers
    expected.I32(1).I32(2);                                                 // current layer, shapes
    expected.Fixed("TMyRectangle", 16).Append(BaseRecord(Layout::XPj));
    expected.Fixed("TMyLinkLine", 16).Append(Arrows(BaseRecord(Layout::XPj)));
    expected.I32(-1).I32(-1).I32(-1).I32(-1).U8(1);
    EXPECT_EQ(test::Saved(cad), expected.Data());
}

TEST(DrawingFile, SizeIsStoredUnzoomedAndLoadsAtZoomOne)
{
    TMyCAD cad;
    cad.SetZoom(2.0);
    cad.resize(1000, 800);
    const QByteArray bytes = test::Saved(cad);
    EXPECT_EQ(bytes.mid(218 + 4, 8), Bytes().I32(500).I32(400).Data());

    // Halves go to the even neighbour: 1001 / 2 = 500.5 and 1003 / 2 = 501.5.
    cad.resize(1001, 1003);
    EXPECT_EQ(test::Saved(cad).mid(218 + 4, 8), Bytes().I32(500).I32(502).Data());

    TMyCAD other;
    other.SetZoom(1.5);
    ASSERT_TRUE(Load(other, bytes));
    EXPECT_EQ(other.Zoom(), 1.0);
    EXPECT_EQ(other.size(), QSize(500, 400));

    // A control grown past the old screen limits, as a big imported drawing grows it, reads
    // back at its size; one beyond what a widget can have, at the largest.
    cad.SetZoom(0.25);
    cad.resize(40016, 20006);
    ASSERT_TRUE(Load(other, test::Saved(cad)));
    EXPECT_EQ(other.size(), QSize(160064, 80024));
    cad.resize(QWIDGETSIZE_MAX, 8);
    ASSERT_TRUE(Load(other, test::Saved(cad)));
    EXPECT_EQ(other.size(), QSize(QWIDGETSIZE_MAX, 32));
}

// The background picture, how it is laid and the ratio come back from a file.
TEST(DrawingFile, BackgroundPictureModeAndRatioComeBack)
{
    TMyCAD cad;
    TBitmap picture(3, 2);
    picture.Fill(clRed);
    picture.SetPixel(2, 1, clBlue);
    cad.SetBkBitmap(picture);
    cad.SetBkBitmapMode(TBkBitmapMode::Stretch);
    cad.SetRatio(2.5);
    TMyCAD other;
    ASSERT_TRUE(Load(other, test::Saved(cad)));
    EXPECT_EQ(std::tuple(other.BkBitmap(), other.BkBitmapMode(), other.Ratio()),
              std::tuple(picture, TBkBitmapMode::Stretch, 2.5));
}

// A file written by hand: two layers, the second stored with visibility 2, and a shape
// whose identity is 41.
TEST(DrawingFile, LoadRestoresLayersIdentitiesAndNextFreeNumbers)
{
    Bytes file = Header().Append(Settings(640, 480));
    file.I32(12).I32(1).Text("k").Text("v");
    file.I32(2).Text("A").I32(3).I32(1).Text("B").I32(7).I32(2);
    file.I32(7).I32(1).Fixed("TMyRectangle", 16).Append(BaseRecord(Layout::XPj, 41));
    TMyCAD cad;
    cad.CreateAddShapeByName(QStringLiteral("TMyEllipse"));
    ASSERT_TRUE(Load(cad, file)) << cad.LastError().toStdString();
    EXPECT_TRUE(cad.LastError().isEmpty());
    EXPECT_EQ(std::tuple(cad.Tag(), cad.CurrentLayerId(), cad.ShapeIdCounter(), cad.IsLoading()),
              std::tuple(12, 7, 42, false));
    EXPECT_EQ(cad.UserData().GetValueByKey("k"), QStringLiteral("v"));
    EXPECT_EQ(cad.Layers(), (std::vector<TLayer>{{"A", 3, true}, {"B", 7, false}}));
    EXPECT_EQ(cad.DiskFileVersion(), QStringLiteral("XP.j"));
    ASSERT_EQ(cad.GetShapesCount(), 1);
    const TMyShape *shape = cad.GetShapeByNo(0);
    // The centre is the middle of the points' box.
    EXPECT_EQ(std::tuple(shape->ShapeId(), shape->ShapeNo(), shape->ChildShapes(),
                         shape->CenterPoint().X),
              std::tuple(41, 3, std::vector<std::int32_t>{4, 5}, 5.75f));
    EXPECT_EQ(cad.CreateAddShapeByName(QStringLiteral("TMyLine"))->ShapeId(), 42);
    EXPECT_EQ(cad.NewLayer(QStringLiteral("C"), true), 8);
}

TEST(DrawingFile, OlderBodiesHaveNoDrawingTagOrUserData)
{
    Bytes file = Header("XP.e   ").Append(Settings(50, 60));
    file.I32(1).Text("Only").I32(4).I32(0).I32(4);
    file.I32(1).Fixed("TMyRectangle", 16).Append(BaseRecord(Layout::XPe));
    TMyCAD cad;
    ASSERT_TRUE(Load(cad, file)) << cad.LastError().toStdString();
    EXPECT_EQ(cad.DiskFileVersion(), QStringLiteral("XP.e"));
    EXPECT_EQ(cad.Layers(), (std::vector<TLayer>{{"Only", 4, false}}));
    EXPECT_EQ(std::tuple(cad.Tag(), cad.GetShapeByNo(0)->MultiInfo().size(), cad.ShapeIdCounter()),
              std::tuple(0, 2, 8));
}

// A load that fails keeps what it read, but neither its next free identities nor the end
// of the undo history: every step recorded before it can still be taken back, on shapes
// found by identity, and the document stays sound after each.
TEST(DrawingFile, FailuresKeepWhatWasReadAndSayWhy)
{
    TMyCAD cad;
    TMyShape *a = test::AddRectangle(cad, 0, 0, 10, 10);
    TMyShape *b = test::AddRectangle(cad, 20, 0, 30, 10);
    TMyShape *c = test::AddRectangle(cad, 40, 0, 50, 10);
    const TMyPointArray cPoints = c->Points();
    TMyShape *const ab[] = {a, b};
    TMyShape *group = cad.GetShapeByID(cad.GroupShapes(ab, true));
    TMyShape *const one[] = {c};
    cad.PushtoUndoRedoShapeList(one, 0, ACT_CHANGE);
    c->DragChangeValuedxdy(5, 5);
    ASSERT_TRUE(cad.DeleteShapeById(2, true));
    cad.SendToBack(group, true);
    const std::size_t records = cad.UndoRedoShapeList().size();
    ASSERT_EQ(test::StepCount(cad), 7);
    ASSERT_EQ(std::tuple(cad.ShapeIdCounter(), cad.LayerIdCounter()), std::tuple(4, 1));

    // Layer 5, then a rectangle sharing B's identity, one of identity 7, and a class no one
    // knows.
    TMyCAD source;
    test::AddRectangle(source, 100, 100, 110, 110);
    test::AddRectangle(source, 100, 100, 110, 110);
    for (const std::int32_t no : {0, 1}) {
        source.GetShapeByNo(no)->SetShapeId(no == 0 ? 1 : 7);
        source.GetShapeByNo(no)->SetLayerId(5);
    }
    const Bytes start = Header().Append(Settings(10, 10)).I32(0).I32(0);
    Bytes unknownClass = Bytes(start).I32(1).Text("L").I32(5).I32(1).I32(5).I32(3);
    for (const std::int32_t no : {0, 1})
        unknownClass.Fixed("TMyRectangle", 16).Raw(test::Saved(*source.GetShapeByNo(no)));
    unknownClass.Fixed("TMyBogusShape", 16).Append(BaseRecord(Layout::XPj, 31));
    EXPECT_FALSE(Load(cad, unknownClass));
    EXPECT_TRUE(cad.LastError().contains(QStringLiteral("TMyBogusShape")));
    EXPECT_EQ(std::tuple(test::IdAt(cad, 0), test::IdAt(cad, 1), cad.GetShapesCount(),
                         cad.Layers().size(), cad.IsLoading()),
              std::tuple(1, 7, 2, 1u, false));
    EXPECT_EQ(
        std::tuple(cad.ShapeIdCounter(), cad.LayerIdCounter(), cad.UndoRedoShapeList().size()),
        std::tuple(4, 1, records));
    // Newest first: the reordering finds no group 3; the deletion brings C back on the
    // current layer (its own is gone), and the change gives it its old points but keeps
    // that layer; the grouping finds no group 3 either; taking back the additions removes C
    // and the loaded shape that has B's identity.
    for (int step = 6; step >= 0; --step) {
        EXPECT_EQ(cad.PopFromUndoRedoShapeList(), step - 1);
        EXPECT_TRUE(test::RelationsValid(cad)) << step;
        EXPECT_TRUE(test::IdsAgreeWithTheScan(cad)) << step;
        if (step == 4) {
            const TMyShape *back = cad.GetShapeByID(2);
            ASSERT_NE(back, nullptr);
            EXPECT_EQ(std::tuple(back->LayerId(), back->Points(), cad.GetShapesCount()),
                      std::tuple(5, cPoints, 3));
        }
    }
    EXPECT_EQ(std::tuple(test::IdAt(cad, 0), cad.GetShapesCount(), cad.UndoRedoShapeList().size()),
              std::tuple(7, 1, 0u));

    // Shapes without any layer: the no-layer handler runs and the load fails. The drawing
    // is left with no layer, so a deletion taken back cannot bring its shape back; it
    // leaves it gone rather than ask the handler once more.
    int handlerCalls = 0;
    const auto previous = TMyCAD::SetNoLayerHandler([&handlerCalls](TMyCAD *) { ++handlerCalls; });
    const Bytes noLayer = Bytes(start).I32(0).I32(0).I32(1).Fixed("TMyLine", 16);
    TMyCAD bare;
    test::AddRectangle(bare, 0, 0, 10, 10);
    ASSERT_TRUE(bare.DeleteShapeById(0, true));
    EXPECT_FALSE(Load(bare, Arrows(Bytes(noLayer).Append(BaseRecord(Layout::XPj)))));
    EXPECT_EQ(std::tuple(handlerCalls, bare.GetShapesCount(), test::StepCount(bare)),
              std::tuple(1, 0, 2));
    EXPECT_FALSE(bare.LastError().isEmpty());
    EXPECT_EQ(bare.PopFromUndoRedoShapeList(), 0);
    EXPECT_EQ(bare.PopFromUndoRedoShapeList(), -1);
    TMyCAD::SetNoLayerHandler(previous);
    EXPECT_EQ(std::tuple(handlerCalls, bare.GetShapesCount()), std::tuple(1, 0));
}

TEST(DrawingFile, FilesAreCheckedBeforeLoadingAndReplacedOnlyWhenComplete)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString path = dir.filePath(QStringLiteral("a.drawing"));
    TMyCAD cad;
    cad.CreateAddShapeByName(QStringLiteral("TMyRectangle"));
    cad.SetModified(true);
    ASSERT_TRUE(cad.SaveToFile(path));
    EXPECT_FALSE(cad.Modified());
    EXPECT_TRUE(TMyCAD::IsZEDAFile(path));
    EXPECT_EQ(test::ReadFile(path), test::Saved(cad));

    cad.SetModified(true);
    EXPECT_FALSE(cad.SaveToFile(dir.filePath(QStringLiteral("missing/b.drawing"))));
    EXPECT_TRUE(cad.Modified());
    EXPECT_FALSE(cad.LastError().isEmpty());

    const QString other = dir.filePath(QStringLiteral("other.bin"));
    ASSERT_TRUE(test::WriteFile(other, Bytes().Fixed("Tessal Componen", 64)));
    EXPECT_FALSE(TMyCAD::IsZEDAFile(other));
    EXPECT_FALSE(cad.LoadFromFile(other));
    EXPECT_EQ(cad.LastError(), other + QStringLiteral(" is not a drawing file"));
    EXPECT_EQ(cad.GetShapesCount(), 1);
    const QString none = dir.filePath(QStringLiteral("none"));
    EXPECT_FALSE(TMyCAD::IsZEDAFile(none));
    EXPECT_FALSE(cad.LoadFromFile(none));
    EXPECT_EQ(cad.LastError(),
              none + QStringLiteral(" cannot be opened: No such file or directory"));
    EXPECT_EQ(cad.GetShapesCount(), 1);

    TMyCAD loaded;
    ASSERT_TRUE(loaded.LoadFromFile(path)) << loaded.LastError().toStdString();
    EXPECT_EQ(test::Saved(loaded), test::Saved(cad));
}

// A drawing of every family, drawn as the user would make it.
void DrawSample(TMyCAD &cad)
{
    cad.resize(240, 180);
    const TMyPoint box[] = {{20, 20}, {90, 70}};
    cad.AddShapeByCode(TDrawTool::SpRectangle, QStringLiteral("R"), box, 0.3, {});
    test::AddByCode(cad, TDrawTool::SpEllipse, {{120, 20}, {200, 80}});
    test::AddByCode(cad, TDrawTool::SpText, {{20, 100}, {110, 150}}, 0, QStringLiteral("Hello"));
    cad.SetArrowStyle(TArrowStyle::ADouble);
    test::AddByCode(cad, TDrawTool::SpLine, {{130, 100}, {220, 160}});
    test::AddByCode(cad, TDrawTool::SpPolygon, {{150, 120}, {200, 110}, {180, 170}});
    test::AddByCode(cad, TDrawTool::SpElliArc, {{60, 140}, {90, 140}, {60, 110}});
    TBitmap picture(12, 8);
    picture.Fill(clBlue);
    picture.SetPixel(3, 3, clYellow);
    cad.AddImageShapeByCode(QString(), {200, 10}, picture);
    cad.GetShapeByNo(0)->SetGradientStyle(TGradientStyle::gsLinearV);
    cad.ClearWorkingShapes();
}

TEST(DrawingFile, ProgressIsReportedAndCancellingChangesNothing)
{
    constexpr int Count = 10000;
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString path = dir.filePath(QStringLiteral("big.drawing"));
    TMyCAD big;
    test::AddRectangles(big, Count);
    TProgressLog saving;
    big.SetOnProgress(saving.Handler(&big));
    ASSERT_TRUE(big.SaveToFile(path)) << big.LastError().toStdString();
    test::ExpectSteadyProgress(saving.Calls, Count);
    const QByteArray bigBytes = test::Saved(big);

    // A save cancelled half-way keeps the old file and the modified flag.
    TMyCAD other;
    test::AddRectangles(other, Count / 2);
    other.SetModified(true);
    TProgressLog cancelSave;
    cancelSave.CancelAt = 2;
    other.SetOnProgress(cancelSave.Handler(&other));
    EXPECT_FALSE(other.SaveToFile(path));
    EXPECT_EQ(std::tuple(cancelSave.Calls.size(), other.Modified(), other.LastError().isEmpty()),
              std::tuple(2u, true, false));
    EXPECT_EQ(test::ReadFile(path), bigBytes);

    // A load cancelled at any report leaves the drawing, its selection and its undo steps.
    TMyCAD cad;
    DrawSample(cad);
    cad.SetDiskFileVersion(QStringLiteral("XP.i"));
    test::AddByCode(cad, TDrawTool::SpRectangle, {{1, 1}, {5, 5}});
    const QByteArray before = test::Saved(cad);
    const std::size_t undoSteps = cad.UndoRedoShapeList().size();
    const TMyShape *first = cad.GetShapeByNo(0);
    const QSize size = cad.size();
    for (const std::size_t at : {std::size_t(1), std::size_t(2), std::size_t(4)}) {
        TProgressLog cancelLoad;
        cancelLoad.CancelAt = at;
        cad.SetOnProgress(cancelLoad.Handler(&cad));
        EXPECT_FALSE(at % 2 ? cad.LoadFromFile(path) : Load(cad, bigBytes)) << at;
        EXPECT_EQ(std::tuple(cancelLoad.Calls.size(), cad.IsLoading(), cad.GetShapeByNo(0),
                             cad.size(), cad.UndoRedoShapeList().size()),
                  std::tuple(at, false, first, size, undoSteps));
        EXPECT_TRUE(cad.LastError().contains(QStringLiteral("cancel")));
        EXPECT_EQ(cad.DiskFileVersion(), QStringLiteral("XP.i"));
        EXPECT_EQ(test::Saved(cad), before);
    }

    TProgressLog loading;
    cad.SetOnProgress(loading.Handler(&cad));
    ASSERT_TRUE(cad.LoadFromFile(path)) << cad.LastError().toStdString();
    test::ExpectSteadyProgress(loading.Calls, Count);
    cad.SetOnProgress({});
    EXPECT_EQ(test::Saved(cad), bigBytes);
}

// The drawing shown stays as it is while a file is read, even where the progress handler
// lets events through: the shapes being read are not asked to be drawn yet. The end of the
// load repaints the whole control.
TEST(DrawingFile, ReadingLeavesTheDrawingShownUntilItEnds)
{
    TMyCAD big;
    test::AddRectangles(big, 10000);
    // Shapes read take what differs from a new shape's appearance through its setters.
    for (std::int32_t no = 0; no < big.GetShapesCount(); ++no)
        big.GetShapeByNo(no)->SetBrush(TBrush{clYellow, TBrushStyle::bsSolid, {}});
    const QByteArray bytes = test::Saved(big);
    TMyCAD cad;
    DrawSample(cad);
    const test::TPaintsOfALoad paints =
        test::PaintsOfALoad(cad, [&] { ASSERT_TRUE(Load(cad, bytes)); });
    EXPECT_GT(paints.Reports, 2);
    EXPECT_TRUE(paints.During.isEmpty());
    EXPECT_EQ(paints.After, QRegion(cad.rect()));
}

TEST(DrawingFile, SavedAndLoadedDrawingRendersTheSame)
{
    TMyCAD cad;
    DrawSample(cad);
    const QImage before = cad.grab().toImage();
    ASSERT_LT(test::CountPixels(before, before.rect(), 0xFFFFFF),
              before.width() * before.height() - 2000);
    TMyCAD loaded;
    ASSERT_TRUE(Load(loaded, test::Saved(cad))) << loaded.LastError().toStdString();
    EXPECT_EQ(loaded.GetShapesCount(), 7);
    EXPECT_TRUE(test::ImagesEqual(loaded.grab().toImage(), before));
}

// Every cut of a drawing file is refused, and damaged bytes never crash or hang the reader.
TEST(DrawingFile, TruncatedAndCorruptedFilesAreAnsweredFalse)
{
    TMyCAD source;
    DrawSample(source);
    const QByteArray bytes = test::Saved(source);
    TMyCAD cad;
    for (qsizetype length = 0; length < bytes.size(); ++length) {
        EXPECT_FALSE(Load(cad, bytes.left(length))) << length;
        EXPECT_FALSE(cad.LastError().isEmpty());
        EXPECT_FALSE(cad.IsLoading());
    }
    EXPECT_TRUE(Load(cad, bytes));

    // Damage can leave shapes without a layer; the default answer would end the program.
    const auto previous = TMyCAD::SetNoLayerHandler([](TMyCAD *) {});
    std::mt19937 random(20240611);
    for (int round = 0; round < 400; ++round) {
        QByteArray damaged = bytes;
        const int changes = 1 + int(random() % 4);
        for (int i = 0; i < changes; ++i) {
            const auto at = qsizetype(random() % std::uint32_t(damaged.size()));
            damaged[at] = char(random() % 2 ? random() : 0xFF);
        }
        if (!Load(cad, damaged)) {
            EXPECT_FALSE(cad.LastError().isEmpty());
        }
        if (cad.width() * cad.height() <= 4'000'000)
            cad.grab(); // whatever was accepted must also draw
    }
    TMyCAD::SetNoLayerHandler(previous);
}

// Asked to keep the drawing, a load that meets damage changes nothing at all: not the
// shapes, their selection, the undo steps, the identities to come nor the layout version.
// It refuses what the other load refuses, for the same reason.
TEST(DrawingFile, AKeptDrawingSurvivesEveryDamagedFile)
{
    TMyCAD source;
    DrawSample(source);
    const QByteArray bytes = test::Saved(source);
    TMyCAD cad;
    DrawSample(cad);
    cad.DeleteShapeById(cad.GetShapeByNo(1)->ShapeId(), true);
    cad.SelectAllWorkingShapes();
    cad.SetDiskFileVersion(QStringLiteral("XP.i"));
    const QByteArray before = test::Saved(cad);
    const auto state = [&cad] {
        return std::tuple(cad.GetShapeByNo(0), cad.GetWorkingShapesCount(),
                          cad.UndoRedoShapeList().size(), cad.ShapeIdCounter(),
                          cad.DiskFileVersion(), cad.size(), cad.IsLoading());
    };
    const auto kept = state();
    TMyCAD lenient;
    const auto expectKept = [&](const QByteArray &damaged, int at) {
        EXPECT_FALSE(Load(cad, damaged, TMyCAD::TLoadFault::KeepTheDrawing)) << at;
        const QString error = cad.LastError();
        EXPECT_EQ(state(), kept) << at;
        EXPECT_EQ(test::Saved(cad), before) << at;
        EXPECT_FALSE(Load(lenient, damaged)) << at;
        EXPECT_EQ(error, lenient.LastError()) << at;
    };
    for (qsizetype length = 0; length < bytes.size(); length += 7)
        expectKept(bytes.left(length), int(length));

    // Shapes without any layer: the drawing keeps its own, so the handler is not asked.
    int handlerCalls = 0;
    const auto previous = TMyCAD::SetNoLayerHandler([&handlerCalls](TMyCAD *) { ++handlerCalls; });
    const Bytes noLayer = Header().Append(Settings(10, 10)).I32(0).I32(0).I32(0).I32(0).I32(1);
    const QByteArray bare =
        Arrows(Bytes(noLayer).Fixed("TMyLine", 16).Append(BaseRecord(Layout::XPj)));
    expectKept(bare, -1);
    EXPECT_EQ(handlerCalls, 1); // the lenient load's
    std::mt19937 random(20261126);
    for (int round = 0; round < 200; ++round) {
        QByteArray damaged = bytes;
        damaged[qsizetype(random() % std::uint32_t(damaged.size()))] = char(random());
        if (!Load(lenient, damaged))
            expectKept(damaged, round);
    }
    TMyCAD::SetNoLayerHandler(previous);

    ASSERT_TRUE(Load(cad, bytes, TMyCAD::TLoadFault::KeepTheDrawing));
    EXPECT_EQ(test::Saved(cad), bytes);
    EXPECT_EQ(std::tuple(cad.GetWorkingShapesCount(), cad.UndoRedoShapeList().size()),
              std::tuple(0, 0u));
}

} // namespace
} // namespace tessal
