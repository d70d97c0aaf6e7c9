// SPDX-License-Identifier: MIT
// Drawings inserted as blocks (size rule, settings, layer modes, older layouts, damaged
// input) and library entries placed into a drawing.
#include "recordfixture.h"

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

using test::BaseRecord;
using test::Bytes;
using test::Layout;

Bytes Header(const QByteArray &version)
{
    return Bytes()
        .Fixed("Tessal Component", 64)
        .Fixed("", 64)
        .Fixed(version, 16)
        .Fixed("", 10)
        .Fixed("", 64);
}

// Background colour, size, unit (cm), no picture, picture mode Stretch, ratio 2.
Bytes Settings(std::int32_t width, std::int32_t height)
{
    return Bytes().U32(0x00FFEE).I32(width).I32(height).U8(2).I64(0).I32(1).F64(2.0);
}

// Rectangles whose layers are the given IDs, as records.
Bytes Rectangles(std::initializer_list<std::int32_t> layerIds)
{
    TMyCAD maker;
    Bytes b;
    b.I32(std::int32_t(layerIds.size()));
    float x = 0;
    for (std::int32_t id : layerIds) {
        auto rect = maker.CreateShapeByName(QStringLiteral("TMyRectangle"));
        rect->Points() = {{x, 0}, {x + 5, 0}, {x + 5, 5}, {x, 5}};
        rect->SetName(QStringLiteral("Shape1"));
        rect->SetLayerId(id);
        b.Fixed("TMyRectangle", 16).Raw(test::Saved(*rect));
        x += 10;
    }
    return b;
}

// A block whose layer table holds 5, 2 and 258 (whose low 8 bits equal 2's).
QByteArray ThreeLayerBlock(std::int32_t width, std::int32_t height)
{
    Bytes b = Header("XP.j").Append(Settings(width, height));
    b.I32(31).I32(1).Text("from").Text("block");
    b.I32(3).Text("L0").I32(5).I32(1).Text("L1").I32(2).I32(1).Text("L2").I32(258).I32(0);
    b.I32(5);
    return b.Append(Rectangles({5, 2, 258, 9})).Data();
}

bool LoadBlock(TMyCAD &cad, const QByteArray &bytes, TBlockLayerMode mode)
{
    QByteArray data = bytes;
    QBuffer buffer(&data);
    buffer.open(QIODevice::ReadOnly);
    return cad.LoadFromStreamforBlock(&buffer, mode);
}

std::vector<std::int32_t> LayerIds(const TMyCAD &cad, std::int32_t from)
{
    std::vector<std::int32_t> ids;
    for (std::int32_t no = from; no < cad.GetShapesCount(); ++no)
        ids.push_back(cad.GetShapeByNo(no)->LayerId());
    return ids;
}

std::int32_t Steps(const TMyCAD &cad)
{
    return cad.UndoRedoShapeList().empty() ? 0 : cad.UndoRedoShapeList().back().Step + 1;
}

TEST(Block, GrowsTheDrawingNeverShrinksItAndTakesTheSettings)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString path = dir.filePath(QStringLiteral("block.drawing"));
    {
        TMyCAD block;
        block.resize(500, 400);
        block.CreateAddShapeByName(QStringLiteral("TMyRectangle"));
        block.CreateAddShapeByName(QStringLiteral("TMyEllipse"));
        ASSERT_TRUE(block.SaveToFile(path));
    }
    struct Case
    {
        QSize Before, After;
    };
    for (const Case c : {Case{{1000, 800}, {1000, 800}}, Case{{300, 300}, {500, 400}},
                         Case{{300, 600}, {500, 600}}}) {
        TMyCAD cad;
        cad.resize(c.Before);
        cad.CreateAddShapeByName(QStringLiteral("TMyLine"));
        cad.CreateAddShapeByName(QStringLiteral("TMyLine"))->SetName(QString());
        const std::int32_t steps = Steps(cad);
        ASSERT_TRUE(cad.AddBlockfromZEDAFile(path, TBlockLayerMode::Merge));
        EXPECT_EQ(cad.size(), c.After);
        ASSERT_EQ(cad.GetShapesCount(), 4);
        // Existing named shapes are renamed "A" + identity; the unnamed one stays unnamed.
        EXPECT_EQ(cad.GetShapeByNo(0)->Name(), QStringLiteral("A0"));
        EXPECT_EQ(cad.GetShapeByNo(1)->Name(), QString());
        EXPECT_EQ(cad.GetShapeByNo(2)->Name(), QStringLiteral("Shape2"));
        EXPECT_EQ(cad.GetShapeByNo(3)->ClassName(), QStringLiteral("TMyEllipse"));
        EXPECT_EQ(cad.GetShapeByNo(3)->ShapeId(), 3);
        EXPECT_EQ(Steps(cad), steps + 1);
        EXPECT_EQ(cad.WorkingShapes().size(), 2u);
        EXPECT_TRUE(cad.MemoryShapes().empty());
        EXPECT_TRUE(cad.Modified());
    }

    TMyCAD cad;
    cad.SetTag(4);
    cad.SetZoom(2.0);
    cad.UserData().AddKeyandValue(QStringLiteral("own"), QStringLiteral("value"));
    ASSERT_TRUE(LoadBlock(cad, ThreeLayerBlock(10, 10), TBlockLayerMode::Merge));
    EXPECT_EQ(cad.Zoom(), 1.0);
    EXPECT_EQ(cad.ColorOfBackGround(), TColor(0x00FFEE));
    EXPECT_EQ(cad.TheUNIT(), TUnits::cm);
    EXPECT_EQ(cad.BkBitmapMode(), TBkBitmapMode::Stretch);
    EXPECT_EQ(cad.Ratio(), 2.0);
    EXPECT_EQ(cad.Tag(), 31);
    EXPECT_EQ(cad.UserData().GetCount(), 2);
    EXPECT_EQ(cad.UserData().GetValueByKey(QStringLiteral("from")), QStringLiteral("block"));
    EXPECT_EQ(cad.MemoryShapes().size(), 4u);
    EXPECT_EQ(cad.GetShapesCount(), 0);
}

TEST(Block, ImportMapsLayersByPlaceAndMergeUsesTheCurrentLayer)
{
    // The drawing's only layer has ID 1, so places and identities differ.
    TMyCAD cad;
    cad.NewLayer(QStringLiteral("Own"), true);
    cad.DeleteLayerByID(0);
    cad.CreateAddShapeByName(QStringLiteral("TMyLine"));
    ASSERT_TRUE(LoadBlock(cad, ThreeLayerBlock(10, 10), TBlockLayerMode::Import));
    ASSERT_TRUE(cad.PasteforBlock());
    ASSERT_EQ(cad.GetLayersCount(), 3);
    EXPECT_EQ(cad.Layers()[1], (TLayer{QStringLiteral("Block1"), 2, true}));
    EXPECT_EQ(cad.Layers()[2], (TLayer{QStringLiteral("Block2"), 3, true}));
    // Layer 5 is the block's first; 2 matches 2 and 258, the last wins; 9 is not there.
    EXPECT_EQ(LayerIds(cad, 1), (std::vector<std::int32_t>{1, 3, 3, -1}));

    // A "Block" name in use is skipped.
    TMyCAD named;
    named.NewLayer(QStringLiteral("Block1"), true);
    ASSERT_TRUE(LoadBlock(named, ThreeLayerBlock(10, 10), TBlockLayerMode::Import));
    ASSERT_EQ(named.GetLayersCount(), 3);
    EXPECT_EQ(named.Layers()[2].Name, QStringLiteral("Block2"));

    TMyCAD merged;
    merged.NewLayer(QStringLiteral("Second"), true);
    merged.SetCurrentLayerId(0);
    ASSERT_TRUE(LoadBlock(merged, ThreeLayerBlock(10, 10), TBlockLayerMode::Merge));
    ASSERT_TRUE(merged.PasteforBlock());
    EXPECT_EQ(merged.GetLayersCount(), 2);
    EXPECT_EQ(LayerIds(merged, 0), (std::vector<std::int32_t>{0, 0, 0, 0}));
}

TEST(Block, OlderBlocksAreReadInTheirOwnLayout)
{
    Bytes b = Header("XP.e").Append(Settings(20, 20));
    b.I32(1).Text("Only").I32(0).I32(1).I32(0);
    b.I32(1).Fixed("TMyRectangle", 16).Append(BaseRecord(Layout::XPe));
    TMyCAD cad;
    cad.SetTag(6);
    ASSERT_TRUE(LoadBlock(cad, b.Data(), TBlockLayerMode::Merge)) << cad.LastError().toStdString();
    EXPECT_EQ(cad.DiskFileVersion(), QStringLiteral("XP.e"));
    EXPECT_EQ(cad.Tag(), 6);
    ASSERT_EQ(cad.MemoryShapes().size(), 1u);
    const TMyShape &shape = *cad.MemoryShapes()[0];
    EXPECT_EQ(shape.MultiInfo(), (QStringList{QStringLiteral("m1"), QStringLiteral("m2")}));
    EXPECT_EQ(shape.UserData().GetValueByKey(QStringLiteral("k2")), QStringLiteral("v2"));
    EXPECT_EQ(shape.LogHeight(), 10); // the log fields came with XP.h
    EXPECT_FALSE(shape.LogUse());
    EXPECT_FALSE(shape.Locked());

    // Paste drops the stored relations that lead outside the block.
    ASSERT_TRUE(cad.PasteforBlock());
    EXPECT_TRUE(cad.GetShapeByNo(0)->ChildShapes().empty());
    EXPECT_TRUE(cad.GetShapeByNo(0)->LinkShapes().empty());
}

TEST(Block, DamagedBlocksAreRefusedAndInsertNothing)
{
    const QByteArray block = ThreeLayerBlock(10, 10);
    TMyCAD cad;
    cad.CreateAddShapeByName(QStringLiteral("TMyLine"));
    for (qsizetype n = 0; n < block.size(); n += 7) {
        ASSERT_FALSE(LoadBlock(cad, block.left(n), TBlockLayerMode::Import)) << n;
        ASSERT_FALSE(cad.LastError().isEmpty());
        ASSERT_TRUE(cad.MemoryShapes().empty());
        ASSERT_FALSE(cad.IsLoading());
    }
    Bytes huge = Header("XP.j").Append(Settings(10, 10)).I32(0).I32(0).I32(1 << 30);
    EXPECT_FALSE(LoadBlock(cad, huge.Data(), TBlockLayerMode::Merge));
    EXPECT_FALSE(
        LoadBlock(cad, Header("XP.j").Append(Settings(-1, 5)).Data(), TBlockLayerMode::Merge));

    QTemporaryDir dir;
    const QString damaged = dir.filePath(QStringLiteral("damaged"));
    const QString foreign = dir.filePath(QStringLiteral("foreign"));
    for (const auto &[path, bytes] : {std::pair{damaged, block.left(block.size() - 3)},
                                      std::pair{foreign, QByteArray(300, 'x')}}) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    EXPECT_FALSE(cad.AddBlockfromZEDAFile(damaged, TBlockLayerMode::Merge));
    EXPECT_FALSE(cad.LastError().isEmpty());
    EXPECT_FALSE(cad.AddBlockfromZEDAFile(foreign, TBlockLayerMode::Merge));
    EXPECT_EQ(cad.GetShapesCount(), 1);
    EXPECT_TRUE(cad.UndoRedoShapeList().empty());
}

TEST(Block, LibraryEntryIsPlacedAsOneCombine)
{
    TMyCAD source;
    const TMyPoint box[] = {{10, 10}, {50, 30}};
    const TMyPoint mark[] = {{48, 18}, {52, 22}};
    TMyShape *rect =
        source.GetShapeByID(source.AddShapeByCode(TDrawTool::SpRectangle, {}, box, 0, {}));
    TMyShape *point =
        source.GetShapeByID(source.AddShapeByCode(TDrawTool::SpLinkPoint, {}, mark, 0, {}));
    point->LinkPoints() = {{50, 20}};
    TUserData data;
    data.AddKeyandValue(QStringLiteral("part"), QStringLiteral("valve"));
    TLibManager lib;
    TMyShape *const both[] = {rect, point};
    TMyShape *const single[] = {rect};
    ASSERT_TRUE(lib.AppendNewShape(QStringLiteral("two"), both, data));
    ASSERT_TRUE(lib.AppendNewShape(QStringLiteral("one"), single, {}));
    TMyPointArray links;
    TUserData unused;
    TLibManager::TShapeList entry;
    std::int32_t w = 0, h = 0;
    ASSERT_TRUE(lib.GetCmbShape(QStringLiteral("two"), true, links, unused, entry, w, h));
    ASSERT_EQ(links, (TMyPointArray{{40, 10}}));

    TMyCAD cad;
    cad.CreateAddShapeByName(QStringLiteral("TMyLine"));
    cad.SetZoom(2.0);
    ASSERT_TRUE(AddUserDefineShapefromLib(lib, QStringLiteral("two"), 100, 50, cad));
    ASSERT_EQ(cad.GetShapesCount(), 3);
    const TMyShape *member = cad.GetShapeByNo(1);
    const TMyShape *combine = cad.GetShapeByNo(2);
    EXPECT_EQ(combine->ClassName(), QStringLiteral("TMyCombine"));
    EXPECT_EQ(combine->Name(), QStringLiteral("Shape2"));
    EXPECT_EQ(combine->Points(), (TMyPointArray{{50, 25}, {90, 25}, {90, 45}, {50, 45}}));
    TMyPointArray placedLinks;
    for (TMyPoint p : links)
        placedLinks.push_back({p.X + 50, p.Y + 25});
    EXPECT_EQ(combine->LinkPoints(), placedLinks);
    EXPECT_EQ(combine->ChildShapes(), (std::vector<std::int32_t>{1}));
    EXPECT_EQ(combine->UserData().GetValueByKey(QStringLiteral("part")), QStringLiteral("valve"));
    EXPECT_EQ(member->ParentNo(), 2);
    EXPECT_EQ(member->Points(), (TMyPointArray{{50, 25}, {90, 25}, {90, 45}, {50, 45}}));
    EXPECT_EQ(member->Name(), QStringLiteral("Shape1"));
    EXPECT_EQ(cad.WorkingShapes(), (std::vector<TMyShape *>{cad.GetShapeByNo(2)}));
    EXPECT_EQ(Steps(cad), 1);
    cad.PopFromUndoRedoShapeList();
    EXPECT_EQ(cad.GetShapesCount(), 1);

    ASSERT_TRUE(AddUserDefineShapefromLib(lib, QStringLiteral("one"), 0, 0, cad));
    EXPECT_EQ(cad.GetShapeByNo(2)->ClassName(), QStringLiteral("TMyCombine"));
    EXPECT_FALSE(AddUserDefineShapefromLib(lib, QStringLiteral("missing"), 0, 0, cad));
    EXPECT_EQ(cad.GetShapesCount(), 3);
}

} // namespace
} // namespace tessal
