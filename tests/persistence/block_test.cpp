// SPDX-License-Identifier: MIT
// Drawings inserted as blocks (size rule, settings, layer modes, older layouts, damaged
// input) and library entries placed into a drawing.
#include "common/files.h"
#include "recordfixture.h"
#include "surface/documenthelpers.h"

#include <tessal/persistence/block.h>
#include <tessal/persistence/library.h>
#include <tessal/shapes/rectangle.h>
#include <tessal/surface/cad.h>

#include <gtest/gtest.h>

#include <QBuffer>
#include <QFile>
#include <QTemporaryDir>

namespace tessal {
namespace {

using test::Saved;

using test::Bytes;
using test::TProgressLog;

// Header, background colour, size, unit cm, no picture, mode Stretch, ratio 2.
Bytes Start(const QByteArray &version, std::int32_t width, std::int32_t height)
{
    Bytes b;
    b.Fixed("Tessal Component", 64).Fixed("", 64).Fixed(version, 16).Fixed("", 74);
    return b.U32(0x00FFEE).I32(width).I32(height).U8(2).I64(0).I32(1).F64(2.0);
}

// Tag 31, one user data pair, layers 5, 2 and 258 (whose low 8 bits equal 2's), current
// layer 5, and rectangles on the layers 5, 2, 258 and 9.
QByteArray ThreeLayerBlock(std::int32_t width, std::int32_t height)
{
    Bytes b = Start("XP.j", width, height).I32(31).I32(1).Text("from").Text("block");
    b.I32(3).Text("L0").I32(5).I32(1).Text("L1").I32(2).I32(1).Text("L2").I32(258).I32(0);
    b.I32(5).I32(4);
    TMyCAD maker;
    for (std::int32_t layer : {5, 2, 258, 9}) {
        auto rect = maker.CreateShapeByName(QStringLiteral("TMyRectangle"));
        rect->Points() = {{0, 0}, {5, 0}, {5, 5}, {0, 5}};
        rect->SetLayerId(layer);
        b.Fixed("TMyRectangle", 16).Raw(test::Saved(*rect));
    }
    return b.Data();
}

bool LoadBlock(TMyCAD &cad, QByteArray bytes, TBlockLayerMode mode)
{
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    return cad.LoadFromStreamforBlock(&buffer, mode);
}

// Enough plain rectangles that progress reports between the first and the last.
constexpr int ManyShapes = 9000;

std::vector<std::int32_t> LayerIds(const TMyCAD &cad, std::int32_t from)
{
    std::vector<std::int32_t> ids;
    for (std::int32_t no = from; no < cad.GetShapesCount(); ++no)
        ids.push_back(cad.GetShapeByNo(no)->LayerId());
    return ids;
}

TEST(Block, GrowsTheDrawingNeverShrinksItAndTakesTheSettings)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("block.drawing"));
    TMyCAD block;
    block.resize(500, 400);
    block.CreateAddShapeByName(QStringLiteral("TMyRectangle"));
    block.CreateAddShapeByName(QStringLiteral("TMyEllipse"));
    ASSERT_TRUE(block.SaveToFile(path));
    for (const auto &[before, after] : {std::pair{QSize(1000, 800), QSize(1000, 800)},
                                        {QSize(300, 300), QSize(500, 400)},
                                        {QSize(300, 600), QSize(500, 600)}}) {
        TMyCAD cad;
        cad.resize(before);
        cad.CreateAddShapeByName(QStringLiteral("TMyLine"));
        cad.CreateAddShapeByName(QStringLiteral("TMyLine"))->SetName(QString());
        const QString firstName = cad.GetShapeByNo(0)->Name();
        ASSERT_TRUE(cad.AddBlockfromZEDAFile(path, TBlockLayerMode::Merge));
        EXPECT_EQ(cad.size(), after);
        ASSERT_EQ(cad.GetShapesCount(), 4);
        // Named shapes become "A" + identity, the unnamed one stays unnamed.
        EXPECT_EQ(std::tuple(cad.GetShapeByNo(0)->Name(), cad.GetShapeByNo(1)->Name(),
                             cad.GetShapeByNo(2)->Name(), cad.GetShapeByNo(3)->ClassName()),
                  std::tuple("A0", "", "Shape2", "TMyEllipse"));
        // One step for both added shapes and the name the first shape had.
        ASSERT_EQ(cad.UndoRedoShapeList().size(), 3u);
        EXPECT_EQ(cad.UndoRedoShapeList().front().Step, cad.UndoRedoShapeList().back().Step);
        EXPECT_EQ(std::tuple(cad.WorkingShapes().size(), cad.MemoryShapes().size()),
                  std::tuple(2u, 0u));
        cad.PopFromUndoRedoShapeList();
        ASSERT_EQ(cad.GetShapesCount(), 2);
        EXPECT_EQ(cad.GetShapeByNo(0)->Name(), firstName);
    }

    TMyCAD cad;
    cad.SetTag(4);
    cad.SetZoom(2.0);
    cad.UserData().AddKeyandValue(QStringLiteral("own"), QStringLiteral("value"));
    ASSERT_TRUE(LoadBlock(cad, ThreeLayerBlock(10, 10), TBlockLayerMode::Merge));
    EXPECT_EQ(std::tuple(cad.Zoom(), cad.ColorOfBackGround(), cad.TheUNIT(), cad.Tag(),
                         cad.UserData().GetCount()),
              std::tuple(1.0, TColor(0x00FFEE), TUnits::cm, 31, 2));
    // Not yet in the drawing.
    EXPECT_EQ(std::tuple(cad.MemoryShapes().size(), cad.GetShapesCount()), std::tuple(4u, 0));
}

TEST(Block, ImportMapsLayersByPlaceAndMergeUsesTheCurrentLayer)
{
    // The drawing's only layer has ID 1, so places and identities differ.
    TMyCAD cad;
    cad.NewLayer(QStringLiteral("Own"), true);
    cad.DeleteLayerByID(0);
    ASSERT_TRUE(LoadBlock(cad, ThreeLayerBlock(10, 10), TBlockLayerMode::Import));
    ASSERT_TRUE(cad.PasteforBlock());
    ASSERT_EQ(cad.GetLayersCount(), 3);
    EXPECT_EQ(cad.Layers()[1], (TLayer{QStringLiteral("Block1"), 2, true}));
    EXPECT_EQ(cad.Layers()[2], (TLayer{QStringLiteral("Block2"), 3, true}));
    // Layer 5 is the block's first; 2 matches 2 and 258, the last wins; 9 is not there.
    EXPECT_EQ(LayerIds(cad, 0), (std::vector<std::int32_t>{1, 3, 3, -1}));

    TMyCAD merged;
    merged.NewLayer(QStringLiteral("Second"), true);
    merged.SetCurrentLayerId(0);
    ASSERT_TRUE(LoadBlock(merged, ThreeLayerBlock(10, 10), TBlockLayerMode::Merge));
    ASSERT_TRUE(merged.PasteforBlock());
    EXPECT_EQ(merged.GetLayersCount(), 2);
    EXPECT_EQ(LayerIds(merged, 0), (std::vector<std::int32_t>{0, 0, 0, 0}));
}

TEST(Block, OlderLayoutsAreReadAsSuchAndDamagedBlocksInsertNothing)
{
    Bytes old = Start("XP.e", 20, 20).I32(1).Text("Only").I32(0).I32(1).I32(0).I32(1);
    old.Fixed("TMyRectangle", 16).Append(test::BaseRecord(test::Layout::XPe));
    TMyCAD cad;
    cad.SetTag(6);
    ASSERT_TRUE(LoadBlock(cad, old.Data(), TBlockLayerMode::Merge))
        << cad.LastError().toStdString();
    EXPECT_EQ(cad.DiskFileVersion(), QStringLiteral("XP.e"));
    ASSERT_EQ(cad.MemoryShapes().size(), 1u);
    // No drawing Tag before XP.h; the log fields came with XP.h too.
    EXPECT_EQ(std::tuple(cad.Tag(), cad.MemoryShapes()[0]->MultiInfo().size(),
                         cad.MemoryShapes()[0]->LogHeight()),
              std::tuple(6, 2, 10));
    ASSERT_TRUE(cad.PasteforBlock());
    // The stored relations lead outside the block and are dropped.
    EXPECT_TRUE(cad.GetShapeByNo(0)->ChildShapes().empty() &&
                cad.GetShapeByNo(0)->LinkShapes().empty());

    const QByteArray block = ThreeLayerBlock(10, 10);
    for (qsizetype n = 0; n < block.size(); n += 7) {
        ASSERT_FALSE(LoadBlock(cad, block.left(n), TBlockLayerMode::Import)) << n;
        ASSERT_FALSE(cad.LastError().isEmpty());
        ASSERT_TRUE(cad.MemoryShapes().empty());
    }
    EXPECT_FALSE(LoadBlock(cad, Start("XP.j", -1, 5).Data(), TBlockLayerMode::Merge));
    QTemporaryDir dir;
    const QString foreign = dir.filePath(QStringLiteral("foreign"));
    ASSERT_TRUE(test::WriteFile(foreign, QByteArray(300, 'x')));
    EXPECT_FALSE(cad.AddBlockfromZEDAFile(foreign, TBlockLayerMode::Merge));
    EXPECT_EQ(std::tuple(cad.GetShapesCount(), cad.UndoRedoShapeList().size(), cad.IsLoading()),
              std::tuple(1, 1u, false));
}

TEST(Block, LibraryEntryIsPlacedAsOneCombine)
{
    TMyCAD source;
    TMyShape *rect = test::AddByCode(source, TDrawTool::SpRectangle, {{10, 10}, {50, 30}});
    TMyShape *point = test::AddByCode(source, TDrawTool::SpLinkPoint, {{48, 18}, {52, 22}});
    TUserData data;
    data.AddKeyandValue(QStringLiteral("part"), QStringLiteral("valve"));
    TLibManager lib;
    TMyShape *const both[] = {rect, point};
    ASSERT_TRUE(lib.AppendNewShape(QStringLiteral("two"), both, data));
    ASSERT_TRUE(lib.AppendNewShape(QStringLiteral("one"), std::span(both, 1), {}));

    TMyCAD cad;
    cad.CreateAddShapeByName(QStringLiteral("TMyLine"));
    cad.SetZoom(2.0);
    ASSERT_TRUE(AddUserDefineShapefromLib(lib, QStringLiteral("two"), 100, 50, cad));
    ASSERT_EQ(cad.GetShapesCount(), 3);
    const TMyShape *member = cad.GetShapeByNo(1);
    const TMyShape *combine = cad.GetShapeByNo(2);
    const TMyPointArray corners{{50, 25}, {90, 25}, {90, 45}, {50, 45}};
    EXPECT_EQ(std::tuple(combine->ClassName(), combine->Name(),
                         combine->UserData().GetValueByKey(QStringLiteral("part"))),
              std::tuple("TMyCombine", "Shape2", "valve"));
    EXPECT_EQ(std::tuple(combine->Points(), combine->LinkPoints(), member->Points()),
              std::tuple(corners, TMyPointArray{{90, 35}}, corners));
    EXPECT_EQ(member->ParentNo(), 2);
    EXPECT_EQ(cad.WorkingShapes(), (std::vector<TMyShape *>{cad.GetShapeByNo(2)}));
    EXPECT_EQ(cad.UndoRedoShapeList().size(), 2u);
    cad.PopFromUndoRedoShapeList();
    EXPECT_EQ(cad.GetShapesCount(), 1);

    ASSERT_TRUE(AddUserDefineShapefromLib(lib, QStringLiteral("one"), 0, 0, cad));
    EXPECT_EQ(cad.GetShapeByNo(2)->ClassName(), QStringLiteral("TMyCombine"));
    EXPECT_FALSE(AddUserDefineShapefromLib(lib, QStringLiteral("missing"), 0, 0, cad));
    EXPECT_EQ(cad.GetShapesCount(), 3);
}

// A block cancelled at its first, a middle or its last report, or a damaged one, leaves the
// drawing as it was: same bytes (names, size, settings, layers), same undo steps.
TEST(Block, CancelledOrDamagedBlocksLeaveTheDrawingAsItWas)
{
    TMyCAD source;
    source.resize(900, 700);
    source.SetColorOfBackGround(0x123456);
    source.SetTag(77);
    source.NewLayer(QStringLiteral("second"), true);
    test::AddRectangles(source, ManyShapes);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("block.drawing"));
    ASSERT_TRUE(source.SaveToFile(path));

    TMyCAD cad;
    const TMyPoint box[] = {{10, 10}, {50, 30}};
    cad.AddShapeByCode(TDrawTool::SpRectangle, QStringLiteral("Kept"), box, 0, {});
    cad.SetZoom(2.0);
    const QByteArray before = Saved(cad);
    const std::size_t undoSteps = cad.UndoRedoShapeList().size();
    const QSize size = cad.size();

    std::size_t reports = 0;
    {
        TMyCAD probe;
        TProgressLog all;
        probe.SetOnProgress(all.Handler(&probe));
        ASSERT_TRUE(probe.AddBlockfromZEDAFile(path, TBlockLayerMode::Import));
        EXPECT_EQ(probe.GetShapesCount(), ManyShapes);
        test::ExpectSteadyProgress(all.Calls, ManyShapes);
        reports = all.Calls.size();
    }
    for (const std::size_t at : {std::size_t(1), reports / 2, reports}) {
        TProgressLog log;
        log.CancelAt = at;
        cad.SetOnProgress(log.Handler(&cad));
        EXPECT_FALSE(cad.AddBlockfromZEDAFile(path, TBlockLayerMode::Import)) << at;
        EXPECT_EQ(std::tuple(log.Calls.size(), cad.IsLoading(), cad.MemoryShapes().size(),
                             cad.size(), cad.Zoom(), cad.UndoRedoShapeList().size()),
                  std::tuple(at, false, 0u, size, 2.0, undoSteps));
        EXPECT_TRUE(cad.LastError().contains(QStringLiteral("cancel")));
        EXPECT_EQ(Saved(cad), before);
    }
    cad.SetOnProgress({});

    // Cut short past the settings: nothing of the block is taken over either.
    const QByteArray bytes = test::ReadFile(path);
    EXPECT_FALSE(LoadBlock(cad, bytes.left(bytes.size() - 5), TBlockLayerMode::Import));
    EXPECT_EQ(cad.GetShapeByNo(0)->Name(), QStringLiteral("Shape0")); // not renamed "A0"
    EXPECT_EQ(Saved(cad), before);

    ASSERT_TRUE(cad.AddBlockfromZEDAFile(path, TBlockLayerMode::Import));
    EXPECT_EQ(std::tuple(cad.GetShapesCount(), cad.ColorOfBackGround(), cad.Tag()),
              std::tuple(ManyShapes + 1, 0x123456u, 77));
}

// Reading a library entry reports its shapes to the library's handler; a cancel at any
// report hands nothing out and places nothing.
TEST(Block, CancelledLibraryEntriesPlaceNothing)
{
    TMyCAD source;
    test::AddRectangles(source, ManyShapes);
    std::vector<TMyShape *> shapes;
    for (std::int32_t no = 0; no < source.GetShapesCount(); ++no)
        shapes.push_back(source.GetShapeByNo(no));
    TLibManager lib;
    ASSERT_TRUE(lib.AppendNewShape(QStringLiteral("many"), shapes, {}));
    const QByteArray library = lib.Buffer();

    TProgressLog all;
    lib.SetOnProgress(all.Handler(&lib.Drawing()));
    TMyPointArray links;
    TUserData data;
    TLibManager::TShapeList read;
    std::int32_t width = 0, height = 0;
    ASSERT_TRUE(lib.GetCmbShape(QStringLiteral("many"), true, links, data, read, width, height));
    EXPECT_EQ(read.size(), std::size_t(ManyShapes));
    test::ExpectSteadyProgress(all.Calls, ManyShapes);

    TMyCAD cad;
    const TMyPoint box[] = {{10, 10}, {50, 30}};
    cad.AddShapeByCode(TDrawTool::SpRectangle, QStringLiteral("Kept"), box, 0, {});
    const QByteArray before = Saved(cad);
    for (const std::size_t at : {std::size_t(1), all.Calls.size() / 2, all.Calls.size()}) {
        TProgressLog log;
        log.CancelAt = at;
        lib.SetOnProgress(log.Handler(&lib.Drawing()));
        EXPECT_FALSE(
            lib.GetCmbShape(QStringLiteral("many"), true, links, data, read, width, height));
        EXPECT_TRUE(read.empty() && lib.LastError().contains(QStringLiteral("cancel")));
        log.Calls.clear();
        EXPECT_FALSE(AddUserDefineShapefromLib(lib, QStringLiteral("many"), 5, 5, cad)) << at;
        EXPECT_EQ(std::tuple(log.Calls.size(), cad.UndoRedoShapeList().size()), std::tuple(at, 1u));
        EXPECT_EQ(Saved(cad), before);
        EXPECT_EQ(lib.Buffer(), library);
    }
    lib.SetOnProgress({});
    ASSERT_TRUE(AddUserDefineShapefromLib(lib, QStringLiteral("many"), 5, 5, cad));
    EXPECT_EQ(cad.GetShapesCount(), ManyShapes + 2);
}

} // namespace
} // namespace tessal
