// SPDX-License-Identifier: MIT
// The File menu: drawings, recent files, blocks, picture export and printing.
#include "mainwindow.h"

#include "layersdock.h"
#include "progress.h"

#include <tessal/geometry/bitmapops.h>
#include <tessal/surface/cad.h>

#include <QAction>
#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPageSetupDialog>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QRegularExpression>
#include <QStatusBar>
#include <QToolBar>

namespace tessal {

namespace {
constexpr int MaxRecent = 8;
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
        QPrintDialog dialog(m_Printer, this);
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
    if (CanImportDxf() &&
        QFileInfo(path).suffix().compare(QLatin1String("dxf"), Qt::CaseInsensitive) == 0)
        return ImportDxf(path);
    if (!QFileInfo(path).isFile() || !TMyCAD::IsZEDAFile(path)) {
        ShowError(tr("Open drawing"), tr("%1 is not a drawing file.").arg(name));
        return false;
    }
    TProgressScope progress(this, tr("Opening %1...").arg(name), m_ProgressDelay);
    progress.Attach(m_Cad);
    QApplication::setOverrideCursor(Qt::WaitCursor);
    // A damaged file is refused whole, as a cancelled load is: the open drawing stays as it
    // was rather than holding what could be read.
    const bool loaded = m_Cad->LoadFromFile(path, TMyCAD::TLoadFault::KeepTheDrawing);
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

void MainWindow::NewDrawing(const QString &fileName)
{
    m_Cad->DeleteAllShapes();
    m_Cad->DeleteAllLayers();
    m_Cad->NewLayer(QStringLiteral("Layer0"), true);
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

void MainWindow::PrintPreview()
{
    QPrintPreviewDialog dialog(m_Printer, this);
    connect(&dialog, &QPrintPreviewDialog::paintRequested, this,
            [this](QPrinter *printer) { PrintOn(printer); });
    dialog.exec();
}

void MainWindow::PageSetup()
{
    QPageSetupDialog dialog(m_Printer, this);
    dialog.exec();
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
