// SPDX-License-Identifier: MIT
// DXF exchange: writing the drawing as DXF and, where the DXF reader is built, importing a
// DXF file as a new drawing with the reader's report shown.
#include "mainwindow.h"

#include "progress.h"

#include <tessal/surface/cad.h>

#ifdef TESSAL_EDITOR_DXF_IMPORT
#include <tessal/dxf/import/dxfimport.h>
#endif

#include <QApplication>
#include <QBuffer>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenu>
#include <QStatusBar>

namespace tessal {

namespace {
// Report lines shown in the message itself.
constexpr qsizetype ShortReport = 12;
} // namespace

void MainWindow::CreateDxfActions(QMenu *file, QMenu *exportMenu)
{
    exportMenu->addSeparator();
    exportMenu->addAction(tr("&DXF..."), this, [this] { DxfExportDialog(false); })
        ->setObjectName(QStringLiteral("exportDxf"));
    exportMenu
        ->addAction(tr("DXF with &Text as Outlines..."), this, [this] { DxfExportDialog(true); })
        ->setObjectName(QStringLiteral("exportDxfOutlines"));
    if (!CanImportDxf())
        return;
    QAction *import = file->addAction(tr("&Import DXF..."), this, [this] {
        if (!MaybeSave())
            return;
        const QString path = QFileDialog::getOpenFileName(
            this, tr("Import DXF"), {}, tr("DXF drawings (*.dxf);;All files (*)"));
        if (!path.isEmpty())
            ImportDxf(path);
    });
    import->setObjectName(QStringLiteral("importDxf"));
}

void MainWindow::DxfExportDialog(bool textAsOutlines)
{
    QString start = m_FileName.isEmpty() ? m_SaveHint : m_FileName;
    if (!start.isEmpty())
        start = QFileInfo(start).path() + QDir::separator() + QFileInfo(start).completeBaseName() +
                QStringLiteral(".dxf");
    QString path = QFileDialog::getSaveFileName(this, tr("Export DXF"), start,
                                                tr("DXF drawings (*.dxf);;All files (*)"));
    if (path.isEmpty())
        return;
    if (QFileInfo(path).suffix().isEmpty())
        path += QStringLiteral(".dxf");
    ExportDxf(path, textAsOutlines);
}

bool MainWindow::ExportDxf(const QString &path, bool textAsOutlines)
{
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const bool ok = textAsOutlines ? m_Cad->SaveToDxf1(path) : m_Cad->SaveToDxf(path);
    QApplication::restoreOverrideCursor();
    if (!ok) {
        ShowError(
            tr("Export DXF"),
            tr("%1 cannot be written: %2").arg(QFileInfo(path).fileName(), m_Cad->LastError()));
        return false;
    }
    statusBar()->showMessage(tr("%1 written").arg(QFileInfo(path).fileName()), 3000);
    return true;
}

bool MainWindow::CanImportDxf()
{
#ifdef TESSAL_EDITOR_DXF_IMPORT
    return true;
#else
    return false;
#endif
}

bool MainWindow::TakeDrawing(TMyCAD &source, TProgressScope &progress)
{
    QBuffer buffer;
    buffer.open(QIODevice::ReadWrite);
    if (!source.SaveToStream(&buffer)) {
        progress.Finish();
        ShowError(tr("Import DXF"), source.LastError());
        return false;
    }
    progress.NextPass();
    progress.Attach(m_Cad);
    // Read back whole: only a cancel can stop it, and a cancel leaves the drawing as it was.
    const bool taken = LoadReplacing([&] { return m_Cad->LoadFromStream(&buffer); });
    progress.Finish();
    if (!taken && !progress.Cancelled())
        ShowError(tr("Import DXF"), m_Cad->LastError());
    return taken;
}

#ifdef TESSAL_EDITOR_DXF_IMPORT

bool MainWindow::ImportDxf(const QString &path)
{
    const QFileInfo info(path);
    const QString name = info.fileName();
    TProgressScope progress(this, tr("Importing %1...").arg(name), m_ProgressDelay, 2);
    // The reader replaces the drawing it reads into, and a damaged file leaves part of one:
    // it reads into a scratch surface with the page of this one, so that Y flips alike.
    TMyCAD scratch;
    scratch.SetPageOrientation(m_Cad->PageOrientation());
    scratch.SetPageWidth(m_Cad->PageWidth());
    scratch.SetPageHeight(m_Cad->PageHeight());
    // A Cancel stops the parse at its next report.
    progress.Attach(&scratch);
    TDxfImportReport report;
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const bool read = LoadFromDxf(scratch, path, report);
    QApplication::restoreOverrideCursor();
    progress.Attach(nullptr); // scratch ends before the scope does
    m_ImportReport = report.Lines();
    if (progress.Cancelled()) {
        progress.Finish();
        statusBar()->showMessage(
            tr("Importing %1 was cancelled; the drawing is unchanged.").arg(name), 5000);
        return false;
    }
    if (!read) {
        progress.Finish();
        ShowMessage(true, tr("Import DXF"), tr("%1 cannot be imported: %2").arg(name, report.Error),
                    tr("The open drawing is unchanged."), m_ImportReport.join(QLatin1Char('\n')));
        return false;
    }
    if (!TakeDrawing(scratch, progress)) {
        if (progress.Cancelled())
            statusBar()->showMessage(
                tr("Importing %1 was cancelled; the drawing is unchanged.").arg(name), 5000);
        return false;
    }
    // A long report (many kinds of skipped entities) shows in full under Details.
    const bool longReport = m_ImportReport.size() > ShortReport;
    // A new drawing that has no file yet; Save As offers the DXF's name.
    DrawingReplaced({}, true);
    m_SaveHint =
        info.absolutePath() + QDir::separator() + info.completeBaseName() + QStringLiteral(".tsd");
    ShowMessage(false, tr("Import DXF"),
                tr("%1 imported: %2 entities read, %3 skipped.")
                    .arg(name)
                    .arg(report.EntitiesRead)
                    .arg(report.SkippedCount()),
                m_ImportReport.mid(0, ShortReport).join(QLatin1Char('\n')) +
                    (longReport ? QStringLiteral("\n...") : QString()),
                longReport ? m_ImportReport.join(QLatin1Char('\n')) : QString());
    return true;
}

#else

bool MainWindow::ImportDxf(const QString &path)
{
    ShowError(tr("Import DXF"),
              tr("%1 cannot be imported: this build reads no DXF files.").arg(path));
    return false;
}

#endif

} // namespace tessal
