// SPDX-License-Identifier: MIT
// The editor's main window.
#include "mainwindow.h"

#include <tessal/surface/cad.h>

#include <QAction>
#include <QFileInfo>
#include <QKeySequence>
#include <QLabel>
#include <QMenuBar>
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

void MainWindow::OpenFile(const QString &path)
{
    // Drawing files are not read yet: say so rather than showing an empty page silently.
    statusBar()->showMessage(tr("%1: opening drawings is not available in this version")
                                 .arg(QFileInfo(path).fileName()));
}

} // namespace tessal
