// SPDX-License-Identifier: MIT
// The editor's file commands as a user meets them: a new drawing after a busy one, files
// known by their contents, Save As with another format's name, printing on the drawing's
// paper, and Ctrl+wheel zoom from wheels that turn in fractions of a notch.
#include "editorfixture.h"

#include <tessal/platform/color.h>

#include <QBuffer>
#include <QPageLayout>
#include <QPageSize>

namespace tessal::test {
namespace {

QByteArray SavedBytes(const TMyCAD &cad)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(cad.SaveToStream(&buffer)) << cad.LastError().toStdString();
    return buffer.data();
}

QAction *MenuAction(QWidget *window, const QString &text)
{
    for (QAction *action : window->findChildren<QAction *>())
        if (action->text() == text)
            return action;
    return nullptr;
}

} // namespace

// Everything the previous drawing set, in its file or on its page, is gone after New: the
// saved bytes are a new surface's, the page is a new surface's, and nothing can be undone.
TEST_F(EditorTest, NewDrawingIsWhatANewSurfaceHolds)
{
    const TMyCAD fresh;
    const QByteArray freshBytes = SavedBytes(fresh);

    DrawRectangle({60, 60}, {200, 140});
    ASSERT_TRUE(m_Window->Layers()->AddLayer("Top"));
    QImage picture(16, 16, QImage::Format_RGB32);
    picture.fill(Qt::green);
    m_Cad()->SetBkBitmap(TBitmap(picture));
    m_Cad()->SetBkBitmapMode(TBkBitmapMode::LeftTop);
    m_Cad()->SetColorOfBackGround(clYellow);
    m_Cad()->UserData().AddKeyandValue("owner", "me");
    m_Cad()->SetTag(7);
    m_Cad()->SetRatio(2.5);
    m_Cad()->SetTheUNIT(TUnits::inch);
    m_Cad()->SetPageOrientation(TPrinterOrientation::poLandscape);
    m_Cad()->SetPageStyle(TPageStyle::A3);
    m_Cad()->SetPageHead("Plant room");
    m_Cad()->SetPrintABorder(!fresh.PrintABorder());
    m_Window->findChild<QAction *>("zoomIn")->trigger();
    ASSERT_NE(SavedBytes(*m_Cad()), freshBytes);

    m_Window->NewDrawing();
    EXPECT_EQ(SavedBytes(*m_Cad()), freshBytes);
    EXPECT_EQ(m_Cad()->UserData().GetCount(), 0);
    EXPECT_EQ(m_Cad()->PageOrientation(), fresh.PageOrientation());
    EXPECT_EQ(m_Cad()->PageStyle(), fresh.PageStyle());
    EXPECT_EQ(m_Cad()->PagePixelSize(), fresh.PagePixelSize());
    EXPECT_EQ(m_Cad()->PageHead(), fresh.PageHead());
    EXPECT_EQ(m_Cad()->PrintABorder(), fresh.PrintABorder());
    EXPECT_EQ(m_Cad()->Zoom(), 1.0);
    EXPECT_TRUE(m_Cad()->UndoRedoShapeList().empty());
    EXPECT_FALSE(m_Window->isWindowModified());
    EXPECT_EQ(m_Window->UndoText(), "&Undo");

    // Saved, the new drawing holds just what a new surface saves.
    const QString path = m_Dir.filePath("new.tsd");
    ASSERT_TRUE(m_Window->Save(path));
    EXPECT_EQ(ReadFile(path), freshBytes);
}

// Loading adds a file's user data to the drawing's own; opening a drawing in the window
// replaces the one before, so only the opened file's records are there, and a file that
// cannot be opened leaves them as they were.
TEST_F(EditorTest, OpenedDrawingsKeepOnlyTheirOwnUserData)
{
    const auto records = [this] {
        QStringList keys;
        for (const TUserDataRecord &r : m_Cad()->UserData().Records())
            keys << r.Key + "=" + r.Value;
        return keys;
    };
    const QString a = m_Dir.filePath("a.tsd"), b = m_Dir.filePath("b.tsd");
    m_Cad()->UserData().AddKeyandValue("owner", "a");
    ASSERT_TRUE(m_Window->Save(a));
    m_Window->NewDrawing();
    m_Cad()->UserData().AddKeyandValue("site", "b");
    ASSERT_TRUE(m_Window->Save(b));
    ASSERT_TRUE(m_Window->OpenFile(a));
    EXPECT_EQ(records(), QStringList{"owner=a"});
    ASSERT_TRUE(m_Window->OpenFile(b));
    EXPECT_EQ(records(), QStringList{"site=b"});
    const QString damaged = m_Dir.filePath("damaged.tsd");
    ASSERT_TRUE(WriteFile(damaged, ReadFile(a).left(300)));
    EXPECT_FALSE(Refusal([&] { return m_Window->OpenFile(damaged); }).isEmpty());
    EXPECT_EQ(records(), QStringList{"site=b"});
}

// A drawing saved under any name opens as a drawing; Save As refuses the names of formats
// that the Export menu writes, says where to go instead, and writes nothing.
TEST_F(EditorTest, OpenKnowsDrawingsByContentsAndSaveAsRefusesExportNames)
{
    DrawRectangle({60, 60}, {200, 140});
    const QString drawing = m_Dir.filePath("plan.tsd");
    ASSERT_TRUE(m_Window->Save(drawing));
    for (const char *name : {"plan.dxf", "PLAN.DXF", "plan.bak"}) {
        SCOPED_TRACE(name);
        const QString copy = m_Dir.filePath(QString::fromLatin1(name));
        ASSERT_TRUE(QFile::copy(drawing, copy));
        m_Window->NewDrawing();
        ASSERT_TRUE(m_Window->OpenFile(copy));
        EXPECT_EQ(m_Cad()->GetShapesCount(), 1);
        EXPECT_EQ(m_Window->FileName(), QFileInfo(copy).absoluteFilePath());
    }

    for (const char *name : {"out.dxf", "out.DXF", "out.png", "out.pdf"}) {
        SCOPED_TRACE(name);
        const QString path = m_Dir.filePath(QString::fromLatin1(name));
        const QString text = Refusal([&] { return m_Window->Save(path); });
        EXPECT_TRUE(text.contains("File > Export")) << text.toStdString();
        EXPECT_FALSE(QFile::exists(path));
        EXPECT_TRUE(m_Window->FileName().endsWith("plan.bak"));
    }
    EXPECT_TRUE(Refusal([&] {
                    return m_Window->Save(m_Dir.filePath("o.dxf"));
                }).contains("File > Export > DXF"));

    // A file that is missing, or is no drawing, is refused with the reason.
    EXPECT_EQ(Refusal([&] { return m_Window->OpenFile(m_Dir.filePath("gone.tsd")); }),
              "gone.tsd cannot be opened: No such file or directory");
    ASSERT_TRUE(WriteFile(m_Dir.filePath("notes.txt"), "plain words"));
    EXPECT_EQ(Refusal([&] { return m_Window->OpenFile(m_Dir.filePath("notes.txt")); }),
              "notes.txt is not a drawing file.");
    EXPECT_EQ(m_Cad()->GetShapesCount(), 1);

    // Another name of no known format is still a drawing, and opens again.
    const QString other = m_Dir.filePath("plan.drawing");
    ASSERT_TRUE(m_Window->Save(other));
    EXPECT_TRUE(TMyCAD::IsZEDAFile(other));
    m_Window->NewDrawing();
    ASSERT_TRUE(m_Window->OpenFile(other));
    EXPECT_EQ(m_Cad()->GetShapesCount(), 1);
}

// Print, Preview and Page Setup start from the drawing's paper; a choice made in Page Setup
// holds for that drawing only.
TEST_F(EditorTest, PrintingFollowsTheDrawingsPage)
{
    const auto paper = [&] {
        const QPageLayout layout = m_Window->PrinterForDrawing()->pageLayout();
        return std::pair(layout.pageSize().id(), layout.orientation());
    };
    EXPECT_EQ(paper(), std::pair(QPageSize::A4, QPageLayout::Portrait));
    m_Cad()->SetPageOrientation(TPrinterOrientation::poLandscape);
    m_Cad()->SetPageStyle(TPageStyle::A3);
    EXPECT_EQ(paper(), std::pair(QPageSize::A3, QPageLayout::Landscape));
    const QRectF sheet =
        m_Window->PrinterForDrawing()->pageLayout().fullRect(QPageLayout::Millimeter);
    EXPECT_NEAR(sheet.width(), 420, 0.5);
    EXPECT_NEAR(sheet.height(), 297, 0.5);

    // A custom page: its millimetres, turned as the page is.
    m_Cad()->SetPageStyle(TPageStyle::CustomerPage);
    m_Cad()->SetPageWidth(160);
    m_Cad()->SetPageHeight(90);
    const QPageLayout custom = m_Window->PrinterForDrawing()->pageLayout();
    EXPECT_EQ(custom.orientation(), QPageLayout::Landscape);
    EXPECT_NEAR(custom.fullRect(QPageLayout::Millimeter).width(), 160, 0.5);
    EXPECT_NEAR(custom.fullRect(QPageLayout::Millimeter).height(), 90, 0.5);

    // Page Setup accepted: the printer keeps its paper while the drawing's page changes.
    m_Cad()->SetPageOrientation(TPrinterOrientation::poPortrait);
    m_Cad()->SetPageStyle(TPageStyle::A3);
    QAction *setup = MenuAction(m_Window.get(), "Page Set&up...");
    ASSERT_TRUE(setup);
    QTimer::singleShot(50, [] {
        if (auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget()))
            dialog->accept();
    });
    setup->trigger();
    EXPECT_EQ(paper(), std::pair(QPageSize::A3, QPageLayout::Portrait));
    m_Cad()->SetPageStyle(TPageStyle::A5);
    EXPECT_EQ(paper(), std::pair(QPageSize::A3, QPageLayout::Portrait));
    // The next drawing follows its own page again.
    m_Window->NewDrawing();
    EXPECT_EQ(paper(), std::pair(QPageSize::A4, QPageLayout::Portrait));
}

// Ctrl+wheel: one zoom step per 120 in total, in either direction, however the wheel
// divides it; a wheel without Ctrl leaves the zoom alone.
TEST_F(EditorTest, CtrlWheelAddsUpFractionsOfANotch)
{
    QWidget *viewport = m_Window->ScrollArea()->viewport();
    const auto turn = [&](int delta, Qt::KeyboardModifiers modifiers = Qt::ControlModifier) {
        const QPointF at(50, 50);
        QWheelEvent wheel(at, viewport->mapToGlobal(at), {}, {0, delta}, Qt::NoButton, modifiers,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(viewport, &wheel);
    };
    const auto steps = [&] { return std::log(m_Cad()->Zoom()) / std::log(1.25); };
    ASSERT_DOUBLE_EQ(m_Cad()->Zoom(), 1.0);
    for (int i = 0; i < 3; ++i)
        turn(30);
    EXPECT_NEAR(steps(), 0, 1e-9) << "three quarters of a notch";
    turn(30);
    EXPECT_NEAR(steps(), 1, 1e-9);
    for (int i = 0; i < 4; ++i)
        turn(30);
    EXPECT_NEAR(steps(), 2, 1e-9) << "eight events of 30";
    turn(60, Qt::NoModifier);
    EXPECT_NEAR(steps(), 2, 1e-9);
    turn(-90);
    EXPECT_NEAR(steps(), 2, 1e-9);
    turn(-30);
    EXPECT_NEAR(steps(), 1, 1e-9);
    turn(250); // two steps and a bit
    EXPECT_NEAR(steps(), 3, 1e-9);
    turn(110);
    EXPECT_NEAR(steps(), 4, 1e-9);
    turn(-480);
    EXPECT_NEAR(steps(), 0, 1e-9);
}

} // namespace tessal::test
