// SPDX-License-Identifier: MIT
// The File menu: drawings, recent files, blocks, picture export and printing.
#include "mainwindow.h"

#include "layersdock.h"
#include "progress.h"

#include <tessal/geometry/bitmapops.h>
#include <tessal/surface/cad.h>

#include <QAction>
#include <QApplication>
#include <QBuffer>
#include <QFileDialog>
#include <QFileInfo>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPageLayout>
#include <QPageSetupDialog>
#include <QPageSize>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QRegularExpression>
#include <QStatusBar>
#include <QToolBar>

#include <algorithm>

namespace tessal {

namespace {
constexpr int MaxRecent = 8;

// What belongs to a drawing without being in its file: the page and what prints on it.
// Orientation comes first, since it swaps the sizes that the style then sets. Tool defaults
// and view settings are the user's, not the drawing's, and stay.
constexpr const char *PageProperties[] = {"PageOrientation",
                                          "PageStyle",
                                          "PageWidth",
                                          "PageHeight",
                                          "PageHead",
                                          "PageHeadAlignment",
                                          "PageHeadFont",
                                          "PageHeadToTop",
                                          "PageFoot",
                                          "PageFootAlignment",
                                          "PageFootFont",
                                          "PageFootToBottom",
                                          "PrintABorder",
                                          "PrintABordertoLeft",
                                          "PrintABordertoTop",
                                          "PrintABordertoRight",
                                          "PrintABordertoBottom",
                                          "PrintBackground"};
} // namespace

void MainWindow::CreateFileMenu()
{
    QMenu *file = menuBar()->addMenu(tr("&File"));
    QToolBar *bar = addToolBar(tr("File"));
    bar->setObjectName(QStringLiteral("fileBar"));
    QAction *create = file->addAction(tr("&New"), this, [this] {
        if (MaybeSave())
            NewDrawing();
    });
    create->setShortcut(QKeySequence::New);
    QAction *open = file->addAction(tr("&Open..."), this, [this] {
        if (!MaybeSave())
            return;
        const QString path =
            QFileDialog::getOpenFileName(this, tr("Open drawing"), {},
                                         CanImportDxf() ? tr("Drawings (*.tsd *.dxf);;"
                                                             "All files (*)")
                                                        : DrawingFilter());
        if (!path.isEmpty())
            OpenFile(path);
    });
    open->setShortcut(QKeySequence::Open);
    m_RecentMenu = file->addMenu(tr("Open &Recent"));
    QAction *save = file->addAction(tr("&Save"), this, [this] { Save(m_FileName); });
    save->setShortcut(QKeySequence::Save);
    QAction *saveAs = file->addAction(tr("Save &As..."), this, [this] { Save({}); });
    saveAs->setShortcut(QKeySequence::SaveAs);
    bar->addActions({create, open, save});
    file->addSeparator();
    QMenu *insert = file->addMenu(tr("&Insert Drawing as Block"));
    insert->addAction(tr("Onto the &Current Layer..."), this, [this] { InsertBlock(false); });
    insert->addAction(tr("With its &Layers..."), this, [this] { InsertBlock(true); });
    CreateExportAndPrint(file);
    file->addSeparator();
    QAction *quit = file->addAction(tr("&Quit"), this, &QWidget::close);
    quit->setShortcut(QKeySequence::Quit);
}

void MainWindow::CreateExportAndPrint(QMenu *file)
{
    file->addSeparator();
    QMenu *exportMenu = file->addMenu(tr("&Export"));
    exportMenu->setObjectName(QStringLiteral("exportMenu"));
    exportMenu->addAction(tr("&Page as Picture..."), this, [this] { ExportDialog(false); });
    exportMenu->addAction(tr("&Selection as Picture..."), this, [this] { ExportDialog(true); });
    CreateDxfActions(file, exportMenu);
    file->addSeparator();
    QAction *print = file->addAction(tr("&Print..."), this, [this] {
        QPrintDialog dialog(PrinterForDrawing(), this);
        if (dialog.exec() == QDialog::Accepted)
            PrintOn(m_Printer);
    });
    print->setShortcut(QKeySequence::Print);
    file->addAction(tr("Print Pre&view..."), this, &MainWindow::PrintPreview);
    file->addAction(tr("Page Set&up..."), this, &MainWindow::PageSetup);
    m_FitToPageAction = file->addAction(tr("Print &Scaled to One Sheet"));
    m_FitToPageAction->setCheckable(true);
    m_FitToPageAction->setChecked(true);
    m_FitToPageAction->setToolTip(
        tr("Otherwise the page prints at its own size over as many sheets as it needs"));
}

QString MainWindow::DrawingFilter() const
{
    return tr("Drawings (*.tsd);;All files (*)");
}

bool MainWindow::OpenFile(const QString &path)
{
    const QString name = QFileInfo(path).fileName();
    if (QFile file(path); !file.open(QIODevice::ReadOnly)) {
        ShowError(tr("Open drawing"), tr("%1 cannot be opened: %2").arg(name, file.errorString()));
        return false;
    }
    // The contents decide, not the name: a drawing saved under any name opens as one.
    const bool drawing = QFileInfo(path).isFile() && TMyCAD::IsZEDAFile(path);
    if (!drawing && CanImportDxf() &&
        QFileInfo(path).suffix().compare(QLatin1String("dxf"), Qt::CaseInsensitive) == 0)
        return ImportDxf(path);
    if (!drawing) {
        ShowError(tr("Open drawing"), tr("%1 is not a drawing file.").arg(name));
        return false;
    }
    TProgressScope progress(this, tr("Opening %1...").arg(name), m_ProgressDelay);
    progress.Attach(m_Cad);
    QApplication::setOverrideCursor(Qt::WaitCursor);
    // A damaged file is refused whole, as a cancelled load is: the open drawing stays as it
    // was rather than holding what could be read.
    const bool loaded = LoadReplacing(
        [&] { return m_Cad->LoadFromFile(path, TMyCAD::TLoadFault::KeepTheDrawing); });
    QApplication::restoreOverrideCursor();
    const QString reason = m_Cad->LastError();
    progress.Finish();
    if (!loaded && progress.Cancelled()) {
        statusBar()->showMessage(
            tr("Opening %1 was cancelled; the drawing is unchanged.").arg(name), 5000);
        return false;
    }
    if (!loaded) {
        ShowError(tr("Open drawing"), tr("%1 cannot be read: %2").arg(name, reason));
        return false;
    }
    DrawingReplaced(QFileInfo(path).absoluteFilePath(), false);
    AddRecent(m_FileName);
    statusBar()->showMessage(tr("%1 opened").arg(name), 3000);
    return true;
}

void MainWindow::DrawingReplaced(const QString &fileName, bool modified)
{
    m_Cad->ClearAllUndoStuff();
    m_Cad->SetModified(modified);
    m_FileName = fileName;
    m_SaveHint.clear();
    m_PageChosen = false;
    m_HistoryMark = HistoryMark();
    NoteChange();
    ShowZoom();
    m_Cad->Invalidate();
}

bool MainWindow::Save(QString path)
{
    if (path.isEmpty())
        path = QFileDialog::getSaveFileName(this, tr("Save drawing"),
                                            m_FileName.isEmpty() ? m_SaveHint : m_FileName,
                                            DrawingFilter());
    if (path.isEmpty())
        return false;
    if (QFileInfo(path).suffix().isEmpty())
        path += QStringLiteral(".tsd");
    const QString name = QFileInfo(path).fileName();
    if (!CheckDrawingSuffix(path))
        return false;
    TProgressScope progress(this, tr("Saving %1...").arg(name), m_ProgressDelay);
    progress.Attach(m_Cad);
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const bool saved = m_Cad->SaveToFile(path);
    QApplication::restoreOverrideCursor();
    progress.Finish();
    if (!saved && progress.Cancelled()) {
        statusBar()->showMessage(
            tr("Saving was cancelled; the drawing is not saved and %1 is unchanged.").arg(name),
            5000);
        return false;
    }
    if (!saved) {
        ShowError(tr("Save drawing"), tr("%1 cannot be saved: %2").arg(path, m_Cad->LastError()));
        return false;
    }
    m_FileName = QFileInfo(path).absoluteFilePath();
    m_SaveHint.clear();
    AddRecent(m_FileName);
    UpdateTitle();
    statusBar()->showMessage(tr("%1 saved").arg(name), 3000);
    return true;
}

// A name that says DXF or a picture format would hold a drawing that no other program
// reads as such; those formats are written by the Export menu, and the file stays unsaved.
bool MainWindow::CheckDrawingSuffix(const QString &path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    QString command;
    if (suffix == QLatin1String("dxf"))
        command = tr("File > Export > DXF");
    else if (TMyCAD::ExportSuffixes().contains(suffix))
        command = tr("File > Export > Page as Picture");
    else
        return true;
    ShowError(tr("Save drawing"),
              tr("%1 was not saved: drawings are saved as .tsd files. To write %2, use %3.")
                  .arg(QFileInfo(path).fileName(), suffix.toUpper(), command));
    return false;
}

// Loading adds the file's user data to the drawing's own, as the format has it; a drawing
// opened in the window replaces the one before, whose user data must not travel into it.
// A load that fails leaves the drawing as it was, user data included.
bool MainWindow::LoadReplacing(const std::function<bool()> &load)
{
    const TUserData before = m_Cad->UserData();
    m_Cad->UserData().ClearAll();
    const bool loaded = load();
    if (!loaded)
        m_Cad->SetUserData(before);
    return loaded;
}

bool MainWindow::MaybeSave()
{
    if (!m_Cad->Modified())
        return true;
    const auto answer = QMessageBox::warning(
        this, tr("Unsaved changes"), tr("The drawing has been changed. Save the changes?"),
        QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save);
    if (answer == QMessageBox::Save)
        return Save(m_FileName);
    return answer == QMessageBox::Discard;
}

// A new drawing is exactly what a new surface holds: its page settings are copied and its
// saved bytes read back, so that nothing of the previous drawing (background, user data,
// Tag, Ratio, unit, size, layers) can stay behind.
void MainWindow::NewDrawing(const QString &fileName)
{
    const TMyCAD fresh;
    for (const char *name : PageProperties)
        m_Cad->setProperty(name, fresh.property(name));
    QBuffer bytes;
    bytes.open(QIODevice::ReadWrite);
    if (!fresh.SaveToStream(&bytes) ||
        !LoadReplacing([&] { return m_Cad->LoadFromStream(&bytes); }))
        ShowError(tr("New drawing"), m_Cad->LastError());
    DrawingReplaced(fileName, false);
}

void MainWindow::AddRecent(const QString &path)
{
    m_Recent.removeAll(path);
    m_Recent.prepend(path);
    while (m_Recent.size() > MaxRecent)
        m_Recent.removeLast();
    UpdateRecentMenu();
}

void MainWindow::UpdateRecentMenu()
{
    m_RecentMenu->clear();
    for (const QString &path : std::as_const(m_Recent))
        m_RecentMenu
            ->addAction(QFileInfo(path).fileName(), this,
                        [this, path] {
                            if (MaybeSave())
                                OpenFile(path);
                        })
            ->setToolTip(path);
    m_RecentMenu->setEnabled(!m_Recent.isEmpty());
}

void MainWindow::InsertBlock(bool import)
{
    const QString path =
        QFileDialog::getOpenFileName(this, tr("Insert drawing"), {}, DrawingFilter());
    if (!path.isEmpty())
        InsertBlockFile(path, import);
}

bool MainWindow::InsertBlockFile(const QString &path, bool import)
{
    const QString name = QFileInfo(path).fileName();
    if (!QFileInfo(path).isFile() || !TMyCAD::IsZEDAFile(path)) {
        ShowError(tr("Insert drawing"), tr("%1 is not a drawing file.").arg(name));
        return false;
    }
    // The block is read whole before it joins the drawing: a damaged file leaves the drawing
    // as it was.
    const bool modified = m_Cad->Modified();
    if (!m_Cad->AddBlockfromZEDAFile(path,
                                     import ? TBlockLayerMode::Import : TBlockLayerMode::Merge)) {
        m_Cad->SetModified(modified);
        ShowError(tr("Insert drawing"), tr("%1 cannot be read: %2").arg(name, m_Cad->LastError()));
        return false;
    }
    m_Cad->SetModified(true);
    NoteChange();
    return true;
}

bool MainWindow::ExportTo(const QString &path, bool selectionOnly)
{
    const bool ok =
        m_Cad->ExportToFile(path, selectionOnly ? TExportArea::Selection : TExportArea::Page);
    if (!ok)
        ShowError(tr("Export"), m_Cad->LastError());
    else
        statusBar()->showMessage(tr("%1 written").arg(QFileInfo(path).fileName()), 3000);
    return ok;
}

void MainWindow::ExportDialog(bool selectionOnly)
{
    const QString filter = tr("PNG picture (*.png);;SVG drawing (*.svg);;PDF document (*.pdf);;"
                              "BMP picture (*.bmp);;JPEG picture (*.jpg *.jpeg);;"
                              "Windows metafile (*.wmf)");
    QString chosen;
    QString path = QFileDialog::getSaveFileName(this, tr("Export"), {}, filter, &chosen);
    if (path.isEmpty())
        return;
    if (QFileInfo(path).suffix().isEmpty()) {
        // The first suffix of the chosen filter: "JPEG picture (*.jpg *.jpeg)" gives ".jpg".
        const QRegularExpressionMatch match =
            QRegularExpression(QStringLiteral("\\*(\\.\\w+)")).match(chosen);
        path += match.hasMatch() ? match.captured(1) : QStringLiteral(".png");
    }
    ExportTo(path, selectionOnly);
}

bool MainWindow::PrintOn(QPrinter *printer)
{
    const bool ok = m_Cad->Print(printer, m_FitToPageAction->isChecked() ? TPrintScale::FitToPage
                                                                         : TPrintScale::ActualSize);
    if (!ok)
        ShowError(tr("Print"), m_Cad->LastError());
    return ok;
}

QPrinter *MainWindow::PrinterForDrawing()
{
    if (!m_PageChosen)
        m_Printer->setPageLayout(DrawingPageLayout());
    return m_Printer;
}

// The drawing's paper in the printer's terms: the page's millimetres as a portrait size (a
// standard paper when they match one), turned when the page is wider than tall. The page's
// sizes are already swapped for landscape, so for a square or unsized page the orientation
// property decides. The margins stay as they were.
QPageLayout MainWindow::DrawingPageLayout() const
{
    QPageLayout layout = m_Printer->pageLayout();
    const double width = m_Cad->PageWidth();
    const double height = m_Cad->PageHeight();
    const bool sized = width > 0 && height > 0;
    const bool landscape = sized && width != height
                               ? width > height
                               : m_Cad->PageOrientation() == TPrinterOrientation::poLandscape;
    if (sized) {
        const QSizeF portrait(std::min(width, height), std::max(width, height));
        layout.setPageSize(QPageSize(portrait, QPageSize::Millimeter));
    }
    layout.setOrientation(landscape ? QPageLayout::Landscape : QPageLayout::Portrait);
    return layout;
}

void MainWindow::PrintPreview()
{
    QPrintPreviewDialog dialog(PrinterForDrawing(), this);
    connect(&dialog, &QPrintPreviewDialog::paintRequested, this,
            [this](QPrinter *printer) { PrintOn(printer); });
    dialog.exec();
}

// Paper chosen here holds for this drawing; a new or opened one starts from its own page.
void MainWindow::PageSetup()
{
    QPageSetupDialog dialog(PrinterForDrawing(), this);
    if (dialog.exec() == QDialog::Accepted)
        m_PageChosen = true;
}

void MainWindow::RequestPicture(TBitmap &picture)
{
    const QString path = QFileDialog::getOpenFileName(
        this, tr("Picture"), {}, tr("Pictures (*.bmp *.jpg *.jpeg *.ico *.emf *.wmf *.png)"));
    if (path.isEmpty())
        return;
    QString reason;
    picture = LoadGraphicsFile(path, &reason);
    if (picture.IsEmpty())
        ShowError(tr("Picture"), tr("%1 cannot be read: %2").arg(path, reason));
}

} // namespace tessal
