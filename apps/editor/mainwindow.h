// SPDX-License-Identifier: MIT
// The editor's main window: the drawing surface with rulers in a scroll area, the tool
// palette, shape commands, docks for layers and the inspector, files, export and printing.
// Everything it does goes through the surface's public operations.
#pragma once

#include <QMainWindow>
#include <QStringList>

class QAction;
class QLabel;
class QMenu;
class QPageLayout;
class QPrinter;
class QScrollArea;

namespace tessal {

class TBitmap;
class TComponentInspector;
class TLayersPanel;
class TLibraryPanel;
class TMyCAD;
class TMyRulerFrame;
class TProgressScope;
class TShapeCommands;
class TToolPalette;

class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(QWidget *parent = nullptr);
    ~MainWindow() override;

    TMyCAD *Cad() const { return m_Cad; }
    TToolPalette *Palette() const { return m_Palette; }
    TShapeCommands *Commands() const { return m_Commands; }
    TLayersPanel *Layers() const { return m_Layers; }
    TLibraryPanel *Library() const { return m_Library; }
    TComponentInspector *Inspector() const { return m_Inspector; }
    // The document point at the middle of the visible part of the surface.
    QPointF VisibleCentre() const;
    QScrollArea *ScrollArea() const { return m_Scroll; }
    const QString &FileName() const { return m_FileName; }
    QStringList RecentFiles() const { return m_Recent; }

    // Opens a drawing, known by its contents whatever its name (a DXF file is imported where
    // the build reads DXF); a file that cannot be read leaves the open drawing untouched and
    // says why in a message box. Answers whether it was opened.
    bool OpenFile(const QString &path);
    // Saves to path (asks for a name when empty); a failed save keeps the old file and says
    // why. A .dxf or picture name is refused with a pointer to the Export menu. Answers
    // whether it was saved.
    bool Save(QString path);
    // Inserts a drawing file as a block, onto the current layer or with its own layers. A
    // file that cannot be read leaves the drawing untouched and says why.
    bool InsertBlockFile(const QString &path, bool import);
    // Writes the page (or the selection) to a picture file chosen by its suffix.
    bool ExportTo(const QString &path, bool selectionOnly);
    // Writes the drawing as DXF, its texts as text entities or as the outlines of their glyphs.
    bool ExportDxf(const QString &path, bool textAsOutlines);
    // Whether this build reads DXF files.
    static bool CanImportDxf();
    // Replaces the drawing with a DXF file's (after MaybeSave, like Open) as a new, unsaved
    // drawing and shows the import's report. A file that cannot be read, or only in part,
    // leaves the open drawing untouched and says why. Answers whether it was imported.
    bool ImportDxf(const QString &path);
    // The report of the last DXF import, as shown to the user.
    const QStringList &ImportReport() const { return m_ImportReport; }
    // Without a display nobody could answer a message box: messages go to the console.
    void SetMessagesToConsole(bool on) { m_MessagesToConsole = on; }
    // How long a load or save runs before its progress dialog shows.
    void SetProgressDelay(int ms) { m_ProgressDelay = ms; }
    // Prints on printer with the scaling chosen in the Print menu.
    bool PrintOn(QPrinter *printer);
    // The printer that Print, Print Preview and Page Setup start from: its paper and
    // orientation are the drawing's page, unless Page Setup chose others for this drawing.
    QPrinter *PrinterForDrawing();
    // Asks whether to save unsaved changes; false when the user cancelled.
    bool MaybeSave();
    // Empties the drawing (after MaybeSave).
    void NewDrawing(const QString &fileName = {});
    // The title of the undo action: "Undo" followed by what the newest step did.
    QString UndoText() const;
    // Selects every top-level shape of the visible layers.
    void SelectAll();
    // Checks whether the drawing changed since the last look and updates title and actions.
    void NoteChange();
    // The layer table changed (layers record no undo step): the drawing is modified.
    void LayersChanged();
    // Runs a load that replaces the drawing, which must not keep the old user data.
    bool LoadReplacing(const std::function<bool()> &load);

protected:
    void closeEvent(QCloseEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void CreateDocks();
    void CreateFileMenu();
    void CreateExportAndPrint(QMenu *file);
    void CreateEditMenu();
    void CreateViewMenu();
    void CreateToolsMenu();
    void CreateShapeMenu();
    void ConnectSurfaceEvents();
    void ReadSettings();
    void WriteSettings() const;
    void AddRecent(const QString &path);
    void UpdateRecentMenu();
    void UpdateTitle();
    void UpdateActions();
    void Undo();
    void ZoomBy(double factor);
    void ZoomTo(double zoom);
    void ZoomToFit();
    void WheelZoom(int delta);
    void ShowZoom();
    void ShowError(const QString &title, const QString &text);
    // A message box with optional further text, or the console (SetMessagesToConsole).
    void ShowMessage(bool warning, const QString &title, const QString &text,
                     const QString &informative = {}, const QString &detailed = {});
    void InsertBlock(bool import);
    void CreateDxfActions(QMenu *file, QMenu *exportMenu);
    void DxfExportDialog(bool textAsOutlines);
    // Takes the drawing of a scratch surface as a new, unsaved drawing.
    bool TakeDrawing(TMyCAD &source, TProgressScope &progress);
    // After a new drawing came in: clean history, title, layers, zoom.
    void DrawingReplaced(const QString &fileName, bool modified);
    void ExportDialog(bool selectionOnly);
    void PrintPreview();
    void PageSetup();
    QPageLayout DrawingPageLayout() const;
    void RequestPicture(TBitmap &picture);
    QString DrawingFilter() const;
    // False, with a message, for a name whose suffix belongs to a format the editor exports.
    bool CheckDrawingSuffix(const QString &path);
    // A fingerprint of the newest undo step, to notice new steps.
    QString HistoryMark() const;

    TMyCAD *m_Cad = nullptr;
    TMyRulerFrame *m_Rulers = nullptr;
    QScrollArea *m_Scroll = nullptr;
    TToolPalette *m_Palette = nullptr;
    TShapeCommands *m_Commands = nullptr;
    TLayersPanel *m_Layers = nullptr;
    TLibraryPanel *m_Library = nullptr;
    TComponentInspector *m_Inspector = nullptr;
    QPrinter *m_Printer = nullptr;
    QString m_FileName;
    // Where Save As starts for a drawing that has no file yet (an imported one).
    QString m_SaveHint;
    QStringList m_ImportReport;
    int m_ProgressDelay = 500;
    bool m_MessagesToConsole = false;
    // Page Setup chose the paper for the open drawing: printing no longer follows its page.
    bool m_PageChosen = false;
    QStringList m_Recent;
    QMenu *m_RecentMenu = nullptr;
    QAction *m_UndoAction = nullptr;
    QAction *m_CutAction = nullptr;
    QAction *m_CopyAction = nullptr;
    QAction *m_FitToPageAction = nullptr;
    QLabel *m_ZoomLabel = nullptr;
    QLabel *m_PositionLabel = nullptr;
    QLabel *m_ValueLabel = nullptr;
    QString m_HistoryMark;
    // The part of a notch that Ctrl+wheel has turned without zooming yet.
    int m_WheelRest = 0;
};

} // namespace tessal
