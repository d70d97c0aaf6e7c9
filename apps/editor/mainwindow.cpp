// SPDX-License-Identifier: MIT
// The editor's main window: assembly, edit and view commands, settings, change tracking.
#include "mainwindow.h"

#include "layersdock.h"
#include "librarydock.h"
#include "shapecommands.h"
#include "toolpalette.h"

#include <tessal/inspector/componentinspector.h>
#include <tessal/inspector/inspectorgrid.h>
#include <tessal/inspector/propertymodel.h>
#include <tessal/ruler/rulerlink.h>
#include <tessal/shapes/shape.h>
#include <tessal/surface/cad.h>

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QCloseEvent>
#include <QContextMenuEvent>
#include <QDockWidget>
#include <QFileInfo>
#include <QKeySequence>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QPrinter>
#include <QScrollArea>
#include <QScrollBar>
#include <QSettings>
#include <QStatusBar>
#include <QTextStream>
#include <QToolBar>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace tessal {

namespace {
// Zoom stays within these bounds so that a page never collapses to nothing or grows past
// what a widget can be.
constexpr double MinZoom = 1.0 / 16;
constexpr double MaxZoom = 16;
constexpr double ZoomStep = 1.25;

// What the undo history's action names mean to a user.
QString ActionText(const QString &action)
{
    static const std::pair<const char *, const char *> Names[] = {
        {"ACT_ADD", QT_TRANSLATE_NOOP("MainWindow", "Add")},
        {"ACT_CHANGE", QT_TRANSLATE_NOOP("MainWindow", "Change")},
        {"ACT_DELETE", QT_TRANSLATE_NOOP("MainWindow", "Delete")},
        {"ACT_GROUP", QT_TRANSLATE_NOOP("MainWindow", "Group")},
        {"ACT_UNGROUP", QT_TRANSLATE_NOOP("MainWindow", "Ungroup")},
        {"ACT_BRINGTOFRONT", QT_TRANSLATE_NOOP("MainWindow", "Bring to Front")},
        {"ACT_SENDTOBACK", QT_TRANSLATE_NOOP("MainWindow", "Send to Back")},
        {"ACT_BRINGTOFRONTBYSTEP", QT_TRANSLATE_NOOP("MainWindow", "Bring Forward")},
        {"ACT_SENDTOBACKBYSTEP", QT_TRANSLATE_NOOP("MainWindow", "Send Backward")},
    };
    for (const auto &[key, text] : Names)
        if (action == QLatin1String(key))
            return MainWindow::tr(text);
    return action;
}
} // namespace

MainWindow::MainWindow(QWidget *parent)
    : QMainWindow(parent)
{
    setObjectName(QStringLiteral("TessalEditor"));
    setAcceptDrops(true);
    m_Cad = new TMyCAD;
    m_Cad->setObjectName(QStringLiteral("surface"));
    m_Cad->setContextMenuPolicy(Qt::DefaultContextMenu);
    m_Cad->installEventFilter(this);
    m_Scroll = new QScrollArea;
    m_Scroll->setBackgroundRole(QPalette::Dark);
    m_Scroll->setAlignment(Qt::AlignCenter);
    m_Scroll->setWidget(m_Cad);
    m_Scroll->viewport()->installEventFilter(this);
    m_Rulers = new TMyRulerFrame(m_Cad, m_Scroll);
    setCentralWidget(m_Rulers);

    m_ZoomLabel = new QLabel;
    m_PositionLabel = new QLabel;
    m_ValueLabel = new QLabel;
    for (QLabel *label : {m_PositionLabel, m_ValueLabel})
        label->setMinimumWidth(140);
    statusBar()->addPermanentWidget(m_PositionLabel);
    statusBar()->addPermanentWidget(m_ValueLabel);
    statusBar()->addPermanentWidget(m_ZoomLabel);
    m_Cad->SetLabelXY(m_PositionLabel);
    m_Cad->SetLabelValue(m_ValueLabel);

    m_Printer = new QPrinter(QPrinter::HighResolution);
    m_Palette = new TToolPalette(m_Cad, this);
    m_Commands = new TShapeCommands(
        m_Cad, [this] { NoteChange(); }, this);
    CreateFileMenu();
    CreateEditMenu();
    CreateViewMenu();
    CreateToolsMenu();
    CreateShapeMenu();
    CreateDocks();
    ConnectSurfaceEvents();
    resize(1200, 850);
    ReadSettings();
    m_HistoryMark = HistoryMark();
    UpdateTitle();
    UpdateActions();
    ShowZoom();
}

MainWindow::~MainWindow()
{
    delete m_Printer;
}

void MainWindow::CreateDocks()
{
    auto *layers = new QDockWidget(tr("Layers"), this);
    layers->setObjectName(QStringLiteral("layersDock"));
    // Layer changes record no undo step; they change the drawing all the same.
    m_Layers = new TLayersPanel(m_Cad, [this] { LayersChanged(); });
    layers->setWidget(m_Layers);
    addDockWidget(Qt::RightDockWidgetArea, layers);

    auto *inspector = new QDockWidget(tr("Inspector"), this);
    inspector->setObjectName(QStringLiteral("inspectorDock"));
    m_Inspector = new TComponentInspector;
    m_Inspector->SetSurface(m_Cad);
    // Property edits record no undo step; they change the drawing all the same.
    connect(m_Inspector->Grid()->Model(), &TPropertyModel::EditApplied, this, [this] {
        m_Cad->SetModified(true);
        m_Cad->Invalidate();
        NoteChange();
        ShowZoom(); // the surface's Zoom is one of the properties
    });
    connect(m_Inspector, &TComponentInspector::LayersEdited, this, &MainWindow::LayersChanged);
    inspector->setWidget(m_Inspector);
    addDockWidget(Qt::RightDockWidgetArea, inspector);

    auto *library = new QDockWidget(tr("Library"), this);
    library->setObjectName(QStringLiteral("libraryDock"));
    m_Library = new TLibraryPanel(
        m_Cad, [this] { return VisibleCentre(); }, [this] { NoteChange(); });
    library->setWidget(m_Library);
    addDockWidget(Qt::RightDockWidgetArea, library);
    tabifyDockWidget(layers, library);
    layers->raise();

    QMenu *view = menuBar()->findChild<QMenu *>(QStringLiteral("viewMenu"));
    view->addSeparator();
    view->addAction(layers->toggleViewAction());
    view->addAction(library->toggleViewAction());
    view->addAction(inspector->toggleViewAction());
}

void MainWindow::CreateToolsMenu()
{
    QMenu *menu = menuBar()->addMenu(tr("&Tools"));
    QToolBar *bar = new QToolBar(tr("Tools"), this);
    bar->setObjectName(QStringLiteral("toolsBar"));
    bar->setIconSize(QSize(24, 24));
    addToolBar(Qt::LeftToolBarArea, bar);
    for (QAction *action : m_Palette->Actions()) {
        menu->addAction(action);
        bar->addAction(action);
    }
}

void MainWindow::CreateShapeMenu()
{
    QMenu *menu = menuBar()->addMenu(tr("&Shape"));
    m_Commands->Populate(menu);
}

void MainWindow::CreateEditMenu()
{
    QMenu *edit = menuBar()->addMenu(tr("&Edit"));
    QToolBar *bar = addToolBar(tr("Edit"));
    bar->setObjectName(QStringLiteral("editBar"));
    m_UndoAction = edit->addAction(tr("&Undo"), this, &MainWindow::Undo);
    m_UndoAction->setShortcut(QKeySequence::Undo);
    m_UndoAction->setObjectName(QStringLiteral("undo"));
    edit->addSeparator();
    m_CutAction = edit->addAction(tr("Cu&t"), this, [this] {
        m_Cad->CutToClipboard();
        NoteChange();
    });
    m_CutAction->setShortcut(QKeySequence::Cut);
    m_CutAction->setObjectName(QStringLiteral("cut"));
    m_CopyAction = edit->addAction(tr("&Copy"), this, [this] { m_Cad->CopyToClipboard(); });
    m_CopyAction->setShortcut(QKeySequence::Copy);
    m_CopyAction->setObjectName(QStringLiteral("copy"));
    QAction *paste = edit->addAction(tr("&Paste"), this, [this] {
        if (!m_Cad->PasteFromClipboard())
            statusBar()->showMessage(m_Cad->LastError(), 4000);
        NoteChange();
    });
    paste->setShortcut(QKeySequence::Paste);
    edit->addAction(m_Commands->Action(QStringLiteral("delete")));
    QAction *selectAll = edit->addAction(tr("Select &All"), this, &MainWindow::SelectAll);
    selectAll->setShortcut(QKeySequence::SelectAll);
    bar->addActions({m_UndoAction, m_CutAction, m_CopyAction, paste});
}

void MainWindow::CreateViewMenu()
{
    QMenu *view = menuBar()->addMenu(tr("&View"));
    view->setObjectName(QStringLiteral("viewMenu"));
    QToolBar *bar = addToolBar(tr("View"));
    bar->setObjectName(QStringLiteral("viewBar"));
    QAction *in = view->addAction(tr("Zoom &In"), this, [this] { ZoomBy(ZoomStep); });
    in->setShortcut(QKeySequence::ZoomIn);
    in->setObjectName(QStringLiteral("zoomIn"));
    QAction *out = view->addAction(tr("Zoom &Out"), this, [this] { ZoomBy(1 / ZoomStep); });
    out->setShortcut(QKeySequence::ZoomOut);
    QAction *fit = view->addAction(tr("&Fit Page"), this, &MainWindow::ZoomToFit);
    fit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_9));
    QAction *actual = view->addAction(tr("&100%"), this, [this] { ZoomTo(1.0); });
    actual->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_0));
    bar->addActions({in, out, fit, actual});
    view->addSeparator();
    QAction *grid = view->addAction(tr("Show &Grid"));
    grid->setObjectName(QStringLiteral("showGrid"));
    grid->setCheckable(true);
    grid->setChecked(m_Cad->GridOperation()->GridShow());
    connect(grid, &QAction::toggled, this, [this](bool on) {
        m_Cad->GridOperation()->SetGridShow(on);
        m_Cad->Invalidate();
    });
    QAction *snap = view->addAction(tr("&Snap to Grid"));
    snap->setObjectName(QStringLiteral("snap"));
    snap->setCheckable(true);
    snap->setChecked(m_Cad->Snap());
    connect(snap, &QAction::toggled, this, [this](bool on) { m_Cad->SetSnap(on); });
    QAction *snapShape = view->addAction(tr("Snap to S&hapes"));
    snapShape->setCheckable(true);
    snapShape->setChecked(m_Cad->SnapShape());
    connect(snapShape, &QAction::toggled, this, [this](bool on) { m_Cad->SetSnapShape(on); });
    bar->addActions({grid, snap});
}

void MainWindow::ConnectSurfaceEvents()
{
    m_Cad->SetOnActionToolToSelecting([this](TMyCAD *) { m_Palette->Sync(); });
    m_Cad->SetOnShapeSelected([this](TMyCAD *, TMyShape *, TMyShape *) { UpdateActions(); });
    m_Cad->SetOnShapeAdded(
        [this](TMyCAD *, TMyShape *, std::int32_t) { m_Cad->SetModified(true); });
    m_Cad->SetOnShapeDeleted([this](TMyCAD *, TMyShape *) { m_Cad->SetModified(true); });
    // The image tool asks for its picture here.
    m_Cad->SetOnRequestPicture([this](TMyCAD *, TBitmap &picture) { RequestPicture(picture); });
}

QString MainWindow::HistoryMark() const
{
    const auto &history = m_Cad->UndoRedoShapeList();
    if (history.empty())
        return {};
    const TMyCAD::TUndoRecord &last = history.back();
    return QStringLiteral("%1/%2/%3/%4")
        .arg(history.size())
        .arg(last.Step)
        .arg(last.Action)
        .arg(quintptr(last.Copy.get()));
}

void MainWindow::NoteChange()
{
    const QString mark = HistoryMark();
    if (mark != m_HistoryMark) {
        m_HistoryMark = mark;
        m_Cad->SetModified(true);
    }
    m_Palette->Sync();
    m_Layers->Refresh();
    UpdateTitle();
    UpdateActions();
}

void MainWindow::LayersChanged()
{
    m_Cad->SetModified(true);
    NoteChange();
}

QString MainWindow::UndoText() const
{
    const auto &history = m_Cad->UndoRedoShapeList();
    if (history.empty())
        return tr("&Undo");
    return tr("&Undo %1").arg(ActionText(history.back().Action));
}

void MainWindow::Undo()
{
    if (m_Cad->PopFromUndoRedoShapeList() < -1)
        return;
    m_Cad->SetModified(true);
    m_HistoryMark = HistoryMark();
    NoteChange();
}

void MainWindow::SelectAll()
{
    std::vector<TMyShape *> shapes;
    for (std::int32_t no = 0; no < m_Cad->GetShapesCount(); ++no) {
        TMyShape *shape = m_Cad->GetShapeByNo(no);
        if (shape->ParentNo() < 0 && m_Cad->IsVisibleLayerByID(shape->LayerId()))
            shapes.push_back(shape);
    }
    m_Cad->SetWorkingShapes(shapes);
    m_Cad->Invalidate();
    UpdateActions();
}

void MainWindow::UpdateActions()
{
    m_UndoAction->setText(UndoText());
    m_UndoAction->setEnabled(!m_Cad->UndoRedoShapeList().empty());
    const std::vector<TMyShape *> &selected = m_Cad->WorkingShapes();
    // Cut removes only unlocked shapes, and copies only what it removes.
    m_CutAction->setEnabled(std::any_of(selected.begin(), selected.end(),
                                        [](const TMyShape *s) { return !s->Locked(); }));
    m_CopyAction->setEnabled(!selected.empty());
    m_Commands->UpdateEnabled();
}

void MainWindow::UpdateTitle()
{
    const QString name = m_FileName.isEmpty() ? tr("Untitled") : QFileInfo(m_FileName).fileName();
    setWindowTitle(tr("%1[*] - Tessal Editor").arg(name));
    setWindowModified(m_Cad->Modified());
}

QPointF MainWindow::VisibleCentre() const
{
    const QPoint middle =
        m_Cad->mapFrom(m_Scroll->viewport(), m_Scroll->viewport()->rect().center());
    const QPoint clamped(std::clamp(middle.x(), 0, m_Cad->width()),
                         std::clamp(middle.y(), 0, m_Cad->height()));
    return QPointF(clamped) / m_Cad->Zoom();
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

// One zoom step per notch of 120: high-resolution wheels and touchpads send fractions of a
// notch, which add up until they make one; what is left over waits for the next event.
void MainWindow::WheelZoom(int delta)
{
    constexpr int Notch = 120;
    m_WheelRest += delta;
    const int steps = m_WheelRest / Notch;
    m_WheelRest -= steps * Notch;
    if (steps != 0)
        ZoomBy(std::pow(ZoomStep, steps));
}

void MainWindow::ZoomToFit()
{
    const QSize page = m_Cad->PagePixelSize();
    const QSize room = m_Scroll->viewport()->size() - QSize(8, 8);
    if (page.isEmpty() || room.isEmpty())
        return;
    ZoomTo(std::min(double(room.width()) / page.width(), double(room.height()) / page.height()));
}

void MainWindow::ShowZoom()
{
    m_ZoomLabel->setText(tr("Zoom %1%").arg(std::nearbyint(m_Cad->Zoom() * 100)));
}

void MainWindow::ShowError(const QString &title, const QString &text)
{
    ShowMessage(true, title, text);
}

void MainWindow::ShowMessage(bool warning, const QString &title, const QString &text,
                             const QString &informative, const QString &detailed)
{
    if (m_MessagesToConsole) {
        QTextStream out(stderr);
        out << title << ": " << text << "\n";
        for (const QString &more : {informative, detailed})
            if (!more.isEmpty())
                out << more << "\n";
        return;
    }
    QMessageBox box(warning ? QMessageBox::Warning : QMessageBox::Information, title, text,
                    QMessageBox::Ok, this);
    box.setInformativeText(informative);
    box.setDetailedText(detailed);
    box.exec();
}

bool MainWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_Scroll->viewport() && event->type() == QEvent::Wheel) {
        auto *wheel = static_cast<QWheelEvent *>(event);
        if (wheel->modifiers() & Qt::ControlModifier) {
            WheelZoom(wheel->angleDelta().y());
            return true;
        }
    }
    if (watched == m_Cad) {
        switch (event->type()) {
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::KeyRelease:
            // After the surface handled it: the gesture or key has finished its step.
            QMetaObject::invokeMethod(this, &MainWindow::NoteChange, Qt::QueuedConnection);
            break;
        case QEvent::ContextMenu: {
            QMenu menu(this);
            m_Commands->Populate(&menu);
            menu.addSeparator();
            menu.addActions({m_CutAction, m_CopyAction});
            menu.exec(static_cast<QContextMenuEvent *>(event)->globalPos());
            return true;
        }
        default:
            break;
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (!MaybeSave()) {
        event->ignore();
        return;
    }
    WriteSettings();
    event->accept();
}

void MainWindow::dragEnterEvent(QDragEnterEvent *event)
{
    const QList<QUrl> urls = event->mimeData()->urls();
    if (urls.size() == 1 && urls.front().isLocalFile())
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent *event)
{
    const QString path = event->mimeData()->urls().front().toLocalFile();
    event->acceptProposedAction();
    // Leave the drop's event loop before a message box may open.
    QMetaObject::invokeMethod(
        this,
        [this, path] {
            if (MaybeSave())
                OpenFile(path);
        },
        Qt::QueuedConnection);
}

void MainWindow::ReadSettings()
{
    QSettings settings;
    restoreGeometry(settings.value(QStringLiteral("window/geometry")).toByteArray());
    restoreState(settings.value(QStringLiteral("window/state")).toByteArray());
    m_Recent = settings.value(QStringLiteral("recentFiles")).toStringList();
    UpdateRecentMenu();
}

void MainWindow::WriteSettings() const
{
    QSettings settings;
    settings.setValue(QStringLiteral("window/geometry"), saveGeometry());
    settings.setValue(QStringLiteral("window/state"), saveState());
    settings.setValue(QStringLiteral("recentFiles"), m_Recent);
}

} // namespace tessal
