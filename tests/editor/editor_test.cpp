// SPDX-License-Identifier: MIT
// The editor's main window driven in-process: tools chosen from the palette, shapes drawn
// with real mouse events, undo, commands, layers, files, export, printing and the guard
// against losing changes.
#include "editorfixture.h"

#include <tessal/inspector/listdialogs.h>

using namespace tessal;
using namespace tessal::test;

TEST_F(EditorTest, PaletteDrawUndoSaveAndReopen)
{
    TToolPalette *palette = m_Window->Palette();
    ASSERT_EQ(int(palette->Actions().size()), 22);
    for (int i = 0; i < 22; ++i) {
        palette->Actions()[std::size_t(i)]->trigger();
        EXPECT_EQ(m_Cad()->ShapeTool(), TDrawTool(i));
        EXPECT_TRUE(palette->Actions()[std::size_t(i)]->isChecked());
        EXPECT_FALSE(palette->Actions()[std::size_t(i)]->icon().isNull());
    }
    DrawRectangle({100, 120}, {260, 200});
    ASSERT_EQ(m_Cad()->GetShapesCount(), 1);
    TMyShape *shape = m_Cad()->GetShapeByNo(0);
    EXPECT_EQ(shape->ClassName(), "TMyRectangle");
    EXPECT_EQ(Box(shape), QRectF(QPointF(100, 120), QPointF(260, 200)));
    // The surface went back to selecting and the palette follows it.
    EXPECT_TRUE(palette->ActionFor(TDrawTool::SpSelecting)->isChecked());
    QApplication::processEvents();
    EXPECT_TRUE(m_Window->isWindowModified());
    QAction *undo = m_Window->findChild<QAction *>("undo");
    EXPECT_EQ(undo->text(), "&Undo Add");
    undo->trigger();
    EXPECT_EQ(m_Cad()->GetShapesCount(), 0);

    DrawRectangle({100, 120}, {260, 200});
    DrawRectangle({300, 300}, {340, 380});
    ASSERT_EQ(m_Cad()->GetShapesCount(), 2);
    const QString path = m_Dir.filePath("drawing.tsd");
    ASSERT_TRUE(m_Window->Save(path));
    EXPECT_FALSE(m_Window->isWindowModified());
    EXPECT_EQ(m_Window->RecentFiles().value(0), QFileInfo(path).absoluteFilePath());

    m_Window->NewDrawing();
    EXPECT_EQ(m_Cad()->GetShapesCount(), 0);
    ASSERT_TRUE(m_Window->OpenFile(path));
    ASSERT_EQ(m_Cad()->GetShapesCount(), 2);
    EXPECT_EQ(Box(m_Cad()->GetShapeByNo(1)), QRectF(QPointF(300, 300), QPointF(340, 380)));
    EXPECT_FALSE(m_Window->isWindowModified());

    // A damaged file: the reason is shown and the open drawing stays as it is.
    ASSERT_TRUE(WriteFile(path, ReadFile(path).chopped(30)));
    m_Window->NewDrawing();
    DrawRectangle({10, 10}, {50, 50});
    EXPECT_TRUE(Refusal([&] { return m_Window->OpenFile(path); }).contains("cannot be read"));
    ASSERT_EQ(m_Cad()->GetShapesCount(), 1);
    EXPECT_EQ(Box(m_Cad()->GetShapeByNo(0)), QRectF(QPointF(10, 10), QPointF(50, 50)));
    EXPECT_EQ(m_Window->UndoText(), "&Undo Add");
    // A failed save keeps the old file and says why.
    const QString missing = m_Dir.filePath("missing/x.tsd");
    EXPECT_TRUE(Refusal([&] { return m_Window->Save(missing); }).contains("cannot be saved"));
}

TEST_F(EditorTest, CommandsLayersZoomAndTheUnsavedGuard)
{
    DrawRectangle({100, 100}, {200, 150});
    DrawRectangle({140, 200}, {300, 260});
    TShapeCommands *commands = m_Window->Commands();
    m_Cad()->ClearWorkingShapes();
    m_Window->NoteChange();
    EXPECT_FALSE(commands->Action("group")->isEnabled());
    m_Window->SelectAll();
    ASSERT_TRUE(commands->Action("alignLeft")->isEnabled());
    commands->Action("alignLeft")->trigger();
    EXPECT_EQ(Box(m_Cad()->GetShapeByNo(1)).left(), 100);
    commands->Action("group")->trigger();
    EXPECT_EQ(m_Cad()->GetShapesCount(), 3);
    EXPECT_EQ(m_Window->UndoText(), "&Undo Group");
    m_Window->findChild<QAction *>("undo")->trigger();
    EXPECT_FALSE(m_Cad()->GetShapeByNo(0)->HasChildShapes());

    // Layers: a new layer becomes current, its check box hides it.
    TLayersPanel *layers = m_Window->Layers();
    ASSERT_TRUE(layers->AddLayer("Top"));
    const std::int32_t top = m_Cad()->GetLayerIdByName("Top");
    EXPECT_EQ(m_Cad()->CurrentLayerId(), top);
    ASSERT_EQ(layers->List()->count(), 2);
    layers->List()->item(1)->setCheckState(Qt::Unchecked);
    EXPECT_FALSE(m_Cad()->IsVisibleLayerByID(top));
    // Layer changes record no undo step, yet they are changes: from the dock and from the
    // inspector's "Layers..." dialog alike.
    m_Cad()->SetModified(false);
    m_Window->NoteChange();
    ASSERT_TRUE(layers->RenameCurrent("Upper"));
    EXPECT_EQ(layers->List()->item(1)->text(), "Upper");
    EXPECT_TRUE(m_Window->isWindowModified());
    m_Cad()->SetModified(false);
    m_Window->NoteChange();
    QTimer::singleShot(0, [] {
        auto *dialog = qobject_cast<TCollectionDialog *>(QApplication::activeModalWidget());
        ASSERT_TRUE(dialog);
        dialog->AddItem("Notes");
        dialog->accept();
    });
    m_Window->Inspector()->EditLayers();
    EXPECT_TRUE(m_Window->isWindowModified());
    EXPECT_EQ(layers->List()->count(), 3);

    // A property edit in the inspector counts as a change of the drawing.
    m_Cad()->SetModified(false);
    m_Window->NoteChange();
    ASSERT_FALSE(m_Window->isWindowModified());
    m_Cad()->ClearWorkingShapes();
    m_Cad()->AddWorkingShape(m_Cad()->GetShapeByNo(0));
    m_Window->Inspector()->Refresh();
    TInspectorGrid *grid = m_Window->Inspector()->Grid();
    const QModelIndex caption = grid->ViewIndex({"Caption"});
    ASSERT_TRUE(caption.isValid());
    ASSERT_TRUE(grid->View()->model()->setData(caption, "Pump"));
    EXPECT_EQ(m_Cad()->GetShapeByNo(0)->Caption(), "Pump");
    EXPECT_TRUE(m_Window->isWindowModified());

    // Ctrl+wheel zooms by one step per notch.
    QWidget *viewport = m_Window->ScrollArea()->viewport();
    const QPointF at(50, 50);
    QWheelEvent wheel(at, viewport->mapToGlobal(at), {}, {0, 120}, Qt::NoButton,
                      Qt::ControlModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(viewport, &wheel);
    EXPECT_DOUBLE_EQ(m_Cad()->Zoom(), 1.25);

    // Closing with changes asks first; Cancel keeps the window, Discard closes it.
    ASSERT_TRUE(m_Cad()->Modified());
    {
        TBoxAnswer answer(QMessageBox::Cancel);
        EXPECT_FALSE(m_Window->close());
        EXPECT_TRUE(answer.Seen());
        EXPECT_TRUE(m_Window->isVisible());
    }
    TBoxAnswer answer(QMessageBox::Discard);
    EXPECT_TRUE(m_Window->close());
    EXPECT_TRUE(answer.Seen());
}

TEST_F(EditorTest, ExportsEveryFormatAndPrints)
{
    DrawRectangle({60, 60}, {200, 140});
    const QSize page = m_Cad()->PagePixelSize();
    for (const char *name : {"p.png", "p.bmp", "p.jpg"}) {
        SCOPED_TRACE(name);
        const QString path = m_Dir.filePath(QString::fromLatin1(name));
        ASSERT_TRUE(m_Window->ExportTo(path, false));
        const QImage image(path);
        EXPECT_EQ(image.size(), page);
        // The rectangle's black outline at its left edge, white inside.
        EXPECT_LT(qGray(image.pixel(60, 100)), 40);
        EXPECT_GT(qGray(image.pixel(130, 100)), 215);
    }
    ASSERT_TRUE(m_Window->ExportTo(m_Dir.filePath("p.svg"), false));
    EXPECT_EQ(QSvgRenderer(m_Dir.filePath("p.svg")).viewBox().size(), page);
    ASSERT_TRUE(m_Window->ExportTo(m_Dir.filePath("p.pdf"), false));
    EXPECT_EQ(Head(m_Dir.filePath("p.pdf"), 5), QByteArray("%PDF-"));
    if (m_Window->Cad()->SaveToWmf(m_Dir.filePath("probe.wmf"))) {
        ASSERT_TRUE(m_Window->ExportTo(m_Dir.filePath("p.wmf"), false));
        EXPECT_EQ(Head(m_Dir.filePath("p.wmf"), 4), QByteArray("\xD7\xCD\xC6\x9A", 4));
    }
    // The selection: nothing selected is said, a selected shape is written alone.
    m_Cad()->ClearWorkingShapes();
    EXPECT_EQ(Refusal([&] { return m_Window->ExportTo(m_Dir.filePath("s.png"), true); }),
              "Nothing is selected.");
    m_Window->SelectAll();
    ASSERT_TRUE(m_Window->ExportTo(m_Dir.filePath("s.png"), true));
    EXPECT_LT(QImage(m_Dir.filePath("s.png")).width(), 200);

    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(m_Dir.filePath("print.pdf"));
    ASSERT_TRUE(m_Window->PrintOn(&printer));
    EXPECT_EQ(Head(m_Dir.filePath("print.pdf"), 5), QByteArray("%PDF-"));
}

TEST_F(EditorTest, LibraryEntriesArePreviewedAndInserted)
{
    TLibraryPanel *library = m_Window->Library();
    const QString garbage = m_Dir.filePath("garbage.tsl");
    ASSERT_TRUE(WriteFile(garbage, "not a library at all"));
    EXPECT_TRUE(Refusal([&] { return library->OpenLibrary(garbage); }).contains("cannot be read"));
    EXPECT_EQ(library->List()->count(), 0);
    ASSERT_TRUE(
        library->OpenLibrary(QStringLiteral(TESSAL_TEST_DATA_DIR "/libraries/two_shapes.tsl")));
    ASSERT_EQ(library->List()->count(), 2);
    const QIcon preview = library->List()->item(0)->icon();
    ASSERT_FALSE(preview.isNull());
    const QImage picture = preview.pixmap(64, 64).toImage();
    bool drawn = false;
    for (int y = 0; y < picture.height() && !drawn; ++y)
        for (int x = 0; x < picture.width() && !drawn; ++x)
            drawn = qGray(picture.pixel(x, y)) < 128;
    EXPECT_TRUE(drawn) << "the preview shows the entry's shapes";

    const std::int32_t before = m_Cad()->GetShapesCount();
    ASSERT_EQ(library->List()->item(0)->text(), "Door");
    ASSERT_TRUE(library->InsertEntry("Door"));
    EXPECT_EQ(m_Cad()->GetShapesCount(), before + 2);
    // An entry of connection points only has nothing to insert, and says so.
    EXPECT_TRUE(Refusal([&] { return library->InsertEntry("Pin"); }).contains("no shapes"));
    EXPECT_EQ(m_Window->UndoText(), "&Undo Add");
    EXPECT_TRUE(m_Window->isWindowModified());
    // Centred on the middle of the view: the door's 100 x 50 box around it.
    const QPointF centre = m_Window->VisibleCentre();
    QRectF box = Box(m_Cad()->GetShapeByNo(before));
    for (std::int32_t no = before + 1; no < m_Cad()->GetShapesCount(); ++no)
        box |= Box(m_Cad()->GetShapeByNo(no));
    EXPECT_NEAR(box.center().x(), centre.x(), 1.0);
    EXPECT_NEAR(box.center().y(), centre.y(), 1.0);

    // Dragged from the list and dropped on the surface: centred where it was dropped.
    m_Window->findChild<QAction *>("zoomIn")->trigger();
    const double zoom = m_Cad()->Zoom();
    const std::unique_ptr<QMimeData> data(
        library->List()->model()->mimeData({library->List()->model()->index(0, 0)}));
    ASSERT_TRUE(data && data->hasFormat(TLibraryPanel::EntryMimeType()));
    const QPoint at(500, 400);
    QDragEnterEvent enter(at, Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(m_Cad(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(at, Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(m_Cad(), &drop);
    ASSERT_EQ(m_Cad()->GetShapesCount(), before + 4);
    QRectF dropped = Box(m_Cad()->GetShapeByNo(before + 2));
    dropped |= Box(m_Cad()->GetShapeByNo(before + 3));
    EXPECT_NEAR(dropped.center().x(), at.x() / zoom, 1.0);
    EXPECT_NEAR(dropped.center().y(), at.y() / zoom, 1.0);
}

TEST_F(EditorTest, DroppedDrawingOpensAndTheContextMenuOffersTheCommands)
{
    DrawRectangle({40, 40}, {90, 90});
    const QString path = m_Dir.filePath("dropped.tsd");
    ASSERT_TRUE(m_Window->Save(path));
    m_Window->NewDrawing();

    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(path)});
    const QPoint at(400, 300);
    QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(m_Window.get(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(m_Window.get(), &drop);
    QTRY_COMPARE(m_Window->FileName(), QFileInfo(path).absoluteFilePath());
    EXPECT_EQ(m_Cad()->GetShapesCount(), 1);

    // A right click on the surface opens the shape commands.
    QStringList offered;
    QTimer::singleShot(50, [&offered] {
        if (QWidget *popup = QApplication::activePopupWidget()) {
            for (QAction *action : popup->actions())
                if (!action->isSeparator())
                    offered << action->text();
            popup->close();
        }
    });
    QContextMenuEvent menu(QContextMenuEvent::Mouse, QPoint(60, 60),
                           m_Cad()->mapToGlobal(QPoint(60, 60)));
    QApplication::sendEvent(m_Cad(), &menu);
    for (const char *command : {"&Group", "Com&bine into a Block", "Bring to &Front", "Cu&t"})
        EXPECT_TRUE(offered.contains(command)) << command;
}
