// SPDX-License-Identifier: MIT
// The editor's main window.
#include "mainwindow.h"

#include <tessal/surface/cad.h>

#include <QAction>
#include <QFileDialog>
#include <QFileInfo>
#include <QKeySequence>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QScrollArea>
#include <QStatusBar>
#include <QToolBar>

#include <algorithm>
#include <cmath>

namespace tessal {

namespace {
// Zoom stays within these bounds so that a page never collapses to nothing or grows past
// what a widget can be.
constexpr double MinZoom = 1.0 / 16;
constexpr double MaxZoom = 16;
constexpr double ZoomStep = 1.25;
} // namespace

MainWindow::MainWindow(QWidget *parent)
    : QMainWindow(parent)
{
    setWindowTitle(tr("Tessal Editor"));
    m_Cad = new TMyCAD;
    m_Scroll = new QScrollArea;
    m_Scroll->setBackgroundRole(QPalette::Dark);
    m_Scroll->setAlignment(Qt::AlignCenter);
    m_Scroll->setWidget(m_Cad);
    setCentralWidget(m_Scroll);

    m_ZoomLabel = new QLabel;
    m_PositionLabel = new QLabel;
    statusBar()->addPermanentWidget(m_PositionLabel);
    statusBar()->addPermanentWidget(m_ZoomLabel);
    m_Cad->SetLabelXY(m_PositionLabel);

    CreateActions();
    ShowZoom();
    resize(1000, 750);
}

void MainWindow::CreateActions()
{
    CreateFileActions();
    QMenu *view = menuBar()->addMenu(tr("&View"));
    QToolBar *bar = addToolBar(tr("View"));

    auto *zoomIn = new QAction(tr("Zoom &In"), this);
    zoomIn->setShortcut(QKeySequence::ZoomIn);
    connect(zoomIn, &QAction::triggered, this, [this] { ZoomBy(ZoomStep); });

    auto *zoomOut = new QAction(tr("Zoom &Out"), this);
    zoomOut->setShortcut(QKeySequence::ZoomOut);
    connect(zoomOut, &QAction::triggered, this, [this] { ZoomBy(1 / ZoomStep); });

    auto *actual = new QAction(tr("&100%"), this);
    actual->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_0));
    connect(actual, &QAction::triggered, this, [this] { ZoomTo(1.0); });

    for (QAction *a : {zoomIn, zoomOut, actual}) {
        view->addAction(a);
        bar->addAction(a);
    }
}

void MainWindow::ZoomBy(double factor)
{
    ZoomTo(m_Cad->Zoom() * factor);
}

void MainWindow::ZoomTo(double zoom)
{
    m_Cad->SetZoom(std::clamp(zoom, MinZoom, MaxZoom));
    ShowZoom();
}

void MainWindow::ShowZoom()
{
    m_ZoomLabel->setText(tr("Zoom %1%").arg(std::nearbyint(m_Cad->Zoom() * 100)));
}

void MainWindow::CreateFileActions()
{
    QMenu *file = menuBar()->addMenu(tr("&File"));
    auto *open = new QAction(tr("&Open..."), this);
    open->setShortcut(QKeySequence::Open);
    connect(open, &QAction::triggered, this, [this] {
        const QString path =
            QFileDialog::getOpenFileName(this, tr("Open drawing"), {}, DrawingFilter());
        if (!path.isEmpty())
            OpenFile(path);
    });
    auto *save = new QAction(tr("&Save"), this);
    save->setShortcut(QKeySequence::Save);
    connect(save, &QAction::triggered, this, [this] { Save(m_FileName); });
    auto *saveAs = new QAction(tr("Save &As..."), this);
    saveAs->setShortcut(QKeySequence::SaveAs);
    connect(saveAs, &QAction::triggered, this, [this] { Save({}); });
    file->addActions({open, save, saveAs});
}

QString MainWindow::DrawingFilter() const
{
    return tr("Drawings (*.tsd);;All files (*)");
}

void MainWindow::OpenFile(const QString &path)
{
    const QString name = QFileInfo(path).fileName();
    if (!m_Cad->IsZEDAFile(path)) {
        statusBar()->showMessage(tr("%1 is not a drawing file").arg(name));
        return;
    }
    if (!m_Cad->LoadFromFile(path)) {
        statusBar()->showMessage(tr("%1 could not be read: %2").arg(name, m_Cad->LastError()));
        return;
    }
    m_FileName = path;
    setWindowTitle(tr("%1 - Tessal Editor").arg(name));
    ShowZoom();
    statusBar()->showMessage(tr("%1 opened").arg(name), 3000);
}

void MainWindow::Save(QString path)
{
    if (path.isEmpty())
        path = QFileDialog::getSaveFileName(this, tr("Save drawing"), {}, DrawingFilter());
    if (path.isEmpty())
        return;
    if (!m_Cad->SaveToFile(path)) {
        QMessageBox::warning(this, tr("Save drawing"),
                             tr("%1 could not be saved: %2").arg(path, m_Cad->LastError()));
        return;
    }
    m_FileName = path;
    setWindowTitle(tr("%1 - Tessal Editor").arg(QFileInfo(path).fileName()));
    statusBar()->showMessage(tr("%1 saved").arg(QFileInfo(path).fileName()), 3000);
}

} // namespace tessal
