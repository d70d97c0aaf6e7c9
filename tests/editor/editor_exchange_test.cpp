// SPDX-License-Identifier: MIT
// The editor's exchange with other programs and its long-running work: DXF export read back
// by the DXF reader, DXF import with its report, damaged DXF files, combining from the
// menu with the commands that apply, and progress dialogs whose Cancel keeps the drawing
// and the file.
#include "editorfixture.h"
#include "surface/documenthelpers.h"

#include <tessal/shapes/text.h>

#include <QMenuBar>
#include <QProgressDialog>
#include <QStatusBar>

using namespace tessal;
using namespace tessal::test;

namespace {

// Two lines and an entity the reader does not take.
const QByteArray TwoLines = "0\nSECTION\n2\nENTITIES\n"
                            "0\nLINE\n8\nWalls\n10\n10\n20\n20\n11\n30\n21\n20\n"
                            "0\nLINE\n8\nWalls\n10\n10\n20\n40\n11\n30\n21\n40\n"
                            "0\nWIPEOUT\n8\n0\n"
                            "0\nENDSEC\n0\nEOF\n";

// Runs act while every progress dialog of the window is cancelled as soon as it shows, as
// by an impatient user: act fails after exactly one cancel, and the status bar says so.
template <class Act>
void ExpectCancelled(QMainWindow *window, Act act)
{
    int cancels = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&cancels, window] {
        auto *dialog = window->findChild<QProgressDialog *>();
        if (dialog && dialog->isVisible()) {
            ++cancels;
            dialog->cancel();
        }
    });
    timer.start(0);
    EXPECT_FALSE(act());
    EXPECT_EQ(cancels, 1);
    EXPECT_TRUE(window->statusBar()->currentMessage().contains("cancelled"));
}

} // namespace

TEST_F(EditorTest, DxfExportReadsBackAndImportShowsItsReport)
{
    DrawRectangle({100, 120}, {260, 200});
    const TMyPoint textBox[] = {{300, 300}, {460, 360}};
    m_Cad()->AddShapeByCode(TDrawTool::SpText, {}, textBox, 0, "Pump");
    m_Window->NoteChange();
    const QString plain = m_Dir.filePath("plain.dxf");
    const QString outlines = m_Dir.filePath("outlines.dxf");
    ASSERT_TRUE(m_Window->ExportDxf(plain, false));
    ASSERT_TRUE(m_Window->ExportDxf(outlines, true));
    // The text is a TEXT entity in one, glyph outlines in the other.
    EXPECT_TRUE(ReadFile(plain).contains("\r\nTEXT\r\n"));
    EXPECT_FALSE(ReadFile(outlines).contains("\r\nTEXT\r\n"));
    EXPECT_GT(ReadFile(outlines).count("\r\nLWPOLYLINE\r\n") + ReadFile(outlines).count("POLYLINE"),
              2);
    // Writing into a folder that is not there says why and leaves nothing behind.
    EXPECT_TRUE(Refusal([&] {
                    return m_Window->ExportDxf(m_Dir.filePath("no/x.dxf"), false);
                }).contains("cannot be written"));
    if (!MainWindow::CanImportDxf())
        GTEST_SKIP() << "this build reads no DXF files";

    // Imported through the window (Open takes DXF files too): a new, unsaved drawing with a
    // clean history, and the report in a message box.
    m_Window->Save(m_Dir.filePath("before.tsd"));
    {
        TBoxAnswer answer(QMessageBox::Ok);
        ASSERT_TRUE(m_Window->OpenFile(plain));
        EXPECT_EQ(answer.Text(), "plain.dxf imported: 2 entities read, 0 skipped.");
        EXPECT_TRUE(answer.InformativeText().contains("shapes created: 2"));
    }
    EXPECT_EQ(m_Cad()->GetShapesCount(), 2);
    ExpectNear(m_Cad()->GetShapeByNo(0)->Points(),
               {{100, 120}, {260, 120}, {260, 200}, {100, 200}, {100, 120}});
    EXPECT_TRUE(m_Window->FileName().isEmpty());
    EXPECT_TRUE(m_Window->isWindowModified());
    EXPECT_FALSE(m_Window->findChild<QAction *>("undo")->isEnabled());

    // Skipped entities are counted with their reasons; the file's layer comes along.
    const QString lines = m_Dir.filePath("lines.dxf");
    ASSERT_TRUE(WriteFile(lines, TwoLines));
    {
        TBoxAnswer answer(QMessageBox::Ok);
        ASSERT_TRUE(m_Window->ImportDxf(lines));
        EXPECT_EQ(answer.Text(), "lines.dxf imported: 2 entities read, 1 skipped.");
        EXPECT_TRUE(answer.InformativeText().contains("1 x WIPEOUT: entity type not supported"));
    }
    EXPECT_EQ(m_Window->ImportReport().value(2), "entities skipped: 1");
    ASSERT_EQ(m_Cad()->GetShapesCount(), 2);
    EXPECT_GE(m_Cad()->GetLayerIdByName("Walls"), 0);
    EXPECT_EQ(m_Cad()->GetShapeByNo(0)->LayerId(), m_Cad()->GetLayerIdByName("Walls"));
}

TEST_F(EditorTest, DamagedDxfLeavesTheDrawingUntouched)
{
    if (!MainWindow::CanImportDxf())
        GTEST_SKIP() << "this build reads no DXF files";
    DrawRectangle({40, 40}, {120, 90});
    const QString path = m_Dir.filePath("kept.tsd");
    ASSERT_TRUE(m_Window->Save(path));
    const QRectF box = Box(m_Cad()->GetShapeByNo(0));
    const std::size_t history = m_Cad()->UndoRedoShapeList().size();

    // Cut after the first line: the reader would import that line and stop.
    const QString cut = m_Dir.filePath("cut.dxf");
    ASSERT_TRUE(WriteFile(cut, TwoLines.left(TwoLines.indexOf("0\nLINE", 30))));
    // The reader's own reasons for refusing are its tests'; here the window's answer.
    const std::pair<QString, const char *> cases[] = {
        {cut, "EOF marker"},
        {m_Dir.filePath("missing.dxf"), "missing.dxf"},
    };
    for (const auto &[file, reason] : cases) {
        SCOPED_TRACE(file.toStdString());
        TBoxAnswer answer(QMessageBox::Ok);
        EXPECT_FALSE(m_Window->ImportDxf(file));
        EXPECT_TRUE(answer.Text().contains("cannot be imported"));
        EXPECT_TRUE(answer.Text().contains(QLatin1String(reason))) << answer.Text().toStdString();
        EXPECT_EQ(answer.InformativeText(), "The open drawing is unchanged.");
        ASSERT_EQ(m_Cad()->GetShapesCount(), 1);
        EXPECT_EQ(Box(m_Cad()->GetShapeByNo(0)), box);
        EXPECT_EQ(m_Cad()->UndoRedoShapeList().size(), history);
        EXPECT_EQ(m_Window->FileName(), QFileInfo(path).absoluteFilePath());
        EXPECT_FALSE(m_Window->isWindowModified());
    }
}

TEST_F(EditorTest, CombineFromTheMenuAndCommandsThatApply)
{
    DrawRectangle({100, 100}, {200, 150});
    DrawRectangle({140, 200}, {300, 260});
    TShapeCommands *commands = m_Window->Commands();
    // The command as the Shape menu offers it.
    QAction *combine = nullptr;
    for (QAction *entry : m_Window->menuBar()->actions())
        if (entry->menu())
            for (QAction *action : entry->menu()->actions())
                if (action->objectName() == QLatin1String("combine"))
                    combine = action;
    ASSERT_NE(combine, nullptr);
    const auto enabled = [commands](const char *name) {
        return commands->Action(QString::fromLatin1(name))->isEnabled();
    };

    // One plain rectangle: stacking, flipping and locking apply, nothing that takes two or
    // works on lines or groups.
    m_Cad()->SetWorkingShapes(std::vector<TMyShape *>{m_Cad()->GetShapeByNo(0)});
    m_Window->NoteChange();
    for (const char *name : {"group", "combine", "ungroup", "alignLeft", "swap", "unlock",
                             "breakLine", "closePolygon"})
        EXPECT_FALSE(enabled(name)) << name;
    for (const char *name : {"front", "flipH", "lock", "delete"})
        EXPECT_TRUE(enabled(name)) << name;

    m_Window->SelectAll();
    for (const char *name : {"group", "combine", "alignLeft", "swap", "averageWidth"})
        EXPECT_TRUE(enabled(name)) << name;
    combine->trigger();
    ASSERT_EQ(m_Cad()->GetShapesCount(), 3);
    TMyShape *block = m_Cad()->GetShapeByNo(2);
    EXPECT_EQ(block->ClassName(), "TMyCombine");
    EXPECT_EQ(block->ChildShapes(), (std::vector<std::int32_t>{0, 1}));
    EXPECT_EQ(Box(block), QRectF(QPointF(100, 100), QPointF(300, 260)));
    EXPECT_TRUE(m_Window->isWindowModified());
    EXPECT_TRUE(enabled("ungroup"));
    EXPECT_FALSE(enabled("combine"));
    EXPECT_EQ(m_Window->UndoText(), "&Undo Group");

    // Locked, the block cannot be ungrouped, and only Unlock is offered of the two; it can
    // be copied but not cut, as a cut would leave it where it is.
    QAction *cut = m_Window->findChild<QAction *>("cut");
    EXPECT_TRUE(cut->isEnabled());
    commands->Action("lock")->trigger();
    EXPECT_TRUE(block->Locked());
    EXPECT_FALSE(enabled("ungroup"));
    EXPECT_FALSE(enabled("lock"));
    EXPECT_TRUE(enabled("unlock"));
    EXPECT_FALSE(cut->isEnabled());
    EXPECT_TRUE(m_Window->findChild<QAction *>("copy")->isEnabled());
    commands->Action("unlock")->trigger();
    EXPECT_TRUE(cut->isEnabled());
    commands->Action("ungroup")->trigger();
    EXPECT_EQ(m_Cad()->GetShapesCount(), 2);

    // A polyline breaks and closes; closed, it no longer offers to close.
    const TMyPoint chain[] = {{400, 100}, {500, 100}, {500, 200}, {420, 220}};
    m_Cad()->AddShapeByCode(TDrawTool::SpPolyLine, {}, chain, 0, {});
    m_Window->NoteChange();
    EXPECT_TRUE(enabled("breakLine"));
    ASSERT_TRUE(enabled("closePolygon"));
    commands->Action("closePolygon")->trigger();
    EXPECT_EQ(m_Cad()->GetShapeByNo(2)->ClassName(), "TMyPolygon");
    EXPECT_FALSE(enabled("closePolygon"));
    EXPECT_FALSE(enabled("breakLine"));

    // Shapes on two layers are neither grouped nor combined.
    ASSERT_TRUE(m_Window->Layers()->AddLayer("Top"));
    DrawRectangle({600, 100}, {650, 150});
    m_Cad()->SetWorkingShapes(
        std::vector<TMyShape *>{m_Cad()->GetShapeByNo(0), m_Cad()->GetShapeByNo(3)});
    m_Window->NoteChange();
    EXPECT_FALSE(enabled("group"));
    EXPECT_FALSE(enabled("combine"));
    EXPECT_TRUE(enabled("swap"));
}

// A command on a selection is one step to take back, however many shapes it changed, even
// more than the history holds steps.
TEST_F(EditorTest, CommandsOnASelectionAreTakenBackAtOnce)
{
    for (int i = 0; i < 12; ++i) {
        const TMyPoint corners[] = {{float(30 * i), float(5 * i)}, {float(30 * i + 20), 90}};
        m_Cad()->AddShapeByCode(TDrawTool::SpRectangle, {}, corners, 0.2, {});
    }
    m_Cad()->ClearAllUndoStuff();
    const auto state = [this] {
        std::vector<std::pair<std::int32_t, TMyPointArray>> all;
        for (std::int32_t no = 0; no < m_Cad()->GetShapesCount(); ++no)
            all.emplace_back(m_Cad()->GetShapeByNo(no)->ShapeId(),
                             m_Cad()->GetShapeByNo(no)->Points());
        return all;
    };
    const auto before = state();
    QAction *undo = m_Window->findChild<QAction *>("undo");
    // Taking back a restack restacks again, which gives the old order back only where the
    // shapes were at the far end before; one step it is all the same.
    for (const char *name : {"flipH", "flipV", "back"}) {
        SCOPED_TRACE(name);
        m_Window->SelectAll();
        m_Cad()->SetWorkingShapes(std::vector<TMyShape *>(m_Cad()->WorkingShapes().begin() + 1,
                                                          m_Cad()->WorkingShapes().end()));
        m_Window->NoteChange();
        m_Window->Commands()->Action(QString::fromLatin1(name))->trigger();
        ASSERT_NE(state(), before);
        EXPECT_EQ(m_Cad()->UndoRedoShapeList().size(), 11u);
        EXPECT_EQ(m_Cad()->UndoRedoShapeList().front().Step, 0);
        undo->trigger();
        EXPECT_TRUE(m_Cad()->UndoRedoShapeList().empty());
        if (name[0] == 'f') {
            EXPECT_EQ(state(), before);
        }
    }
}

TEST_F(EditorTest, CancelledLoadAndSaveKeepTheDrawingAndTheFile)
{
    // Enough shapes for several progress reports.
    m_Cad()->SetUndoRedoSize(1);
    for (int i = 0; i < 9000; ++i) {
        const float x = float(i % 90) * 8, y = float(i / 90) * 8;
        const TMyPoint corners[] = {{x, y}, {x + 6, y + 6}};
        m_Cad()->AddShapeByCode(TDrawTool::SpRectangle, {}, corners, 0, {});
    }
    const QString path = m_Dir.filePath("big.tsd");
    ASSERT_TRUE(m_Window->Save(path));
    const QByteArray saved = ReadFile(path);
    m_Window->SetProgressDelay(0);
    // A cancelled save keeps the old file and the drawing's unsaved state.
    m_Cad()->DeleteShapeById(m_Cad()->GetShapeByNo(0)->ShapeId(), true);
    m_Window->NoteChange();
    ASSERT_TRUE(m_Window->isWindowModified());
    ExpectCancelled(m_Window.get(), [&] { return m_Window->Save(path); });
    EXPECT_EQ(ReadFile(path), saved);
    EXPECT_TRUE(m_Window->isWindowModified());

    m_Window->NewDrawing();
    DrawRectangle({40, 40}, {120, 90});
    ExpectCancelled(m_Window.get(), [&] { return m_Window->OpenFile(path); });
    ASSERT_EQ(m_Cad()->GetShapesCount(), 1);
    EXPECT_EQ(Box(m_Cad()->GetShapeByNo(0)), QRectF(QPointF(40, 40), QPointF(120, 90)));
    EXPECT_TRUE(m_Window->FileName().isEmpty());
    EXPECT_EQ(m_Window->UndoText(), "&Undo Add");

    // A DXF import cancelled while the file is parsed: the parse finishes, its result is
    // dropped.
    if (MainWindow::CanImportDxf()) {
        TMyCAD big;
        ASSERT_TRUE(big.LoadFromFile(path));
        const QString dxf = m_Dir.filePath("big.dxf");
        ASSERT_TRUE(WriteFile(dxf, big.DxfText(false)));
        ASSERT_GT(QFileInfo(dxf).size(), 2 << 20) << "several slices of the parser";
        ExpectCancelled(m_Window.get(), [&] { return m_Window->ImportDxf(dxf); });
        ASSERT_EQ(m_Cad()->GetShapesCount(), 1);
        EXPECT_TRUE(m_Window->FileName().isEmpty());
    }

    // Left alone, the dialog shows and the load completes.
    m_Cad()->SetModified(false);
    ASSERT_TRUE(m_Window->OpenFile(path));
    EXPECT_EQ(m_Cad()->GetShapesCount(), 9000);
    EXPECT_EQ(m_Window->findChild<QProgressDialog *>(), nullptr);
}

TEST_F(EditorTest, BlocksAndSavesThatFailKeepWhatWasThere)
{
    DrawRectangle({40, 40}, {120, 90});
    const QString path = m_Dir.filePath("block.tsd");
    ASSERT_TRUE(m_Window->Save(path));

    // A damaged block: the reason, and the drawing as it was (that the surface takes
    // nothing of a damaged block, byte for byte, is the block reader's test).
    const QString cut = m_Dir.filePath("cut.tsd");
    ASSERT_TRUE(WriteFile(cut, ReadFile(path).chopped(30)));
    const std::vector<TLayer> layers = m_Cad()->Layers();
    EXPECT_TRUE(Refusal([&] {
                    return m_Window->InsertBlockFile(cut, true);
                }).startsWith("cut.tsd cannot be read: "));
    EXPECT_EQ(m_Cad()->GetShapesCount(), 1);
    EXPECT_EQ(m_Cad()->Layers(), layers);
    EXPECT_FALSE(m_Window->isWindowModified());

    // A good one comes in with its layer and is one step to take back.
    ASSERT_TRUE(m_Window->InsertBlockFile(path, true));
    EXPECT_EQ(m_Cad()->GetShapesCount(), 2);
    EXPECT_TRUE(m_Window->isWindowModified());
    m_Window->findChild<QAction *>("undo")->trigger();
    EXPECT_EQ(m_Cad()->GetShapesCount(), 1);

    // Saving into a folder that refuses writing says why and keeps the old file. Whoever
    // may write anywhere (root) cannot see this refusal.
    const QByteArray before = ReadFile(path);
    DrawRectangle({200, 40}, {260, 90});
    QFile::setPermissions(m_Dir.path(), QFile::ReadOwner | QFile::ExeOwner);
    if (!WriteFile(m_Dir.filePath("probe"), "x")) {
        EXPECT_TRUE(Refusal([&] { return m_Window->Save(path); }).contains("cannot be saved"));
        EXPECT_EQ(ReadFile(path), before);
        EXPECT_TRUE(m_Window->isWindowModified());
    }
    QFile::setPermissions(m_Dir.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}
