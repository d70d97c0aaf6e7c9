// SPDX-License-Identifier: MIT
// The editor's main window: one drawing surface in a scroll area, file and zoom actions,
// status bar.
#pragma once

#include <QMainWindow>

class QLabel;
class QScrollArea;

namespace tessal {

class TMyCAD;

class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(QWidget *parent = nullptr);

    TMyCAD *Cad() const { return m_Cad; }
    // Opens a drawing file; a file that cannot be read leaves the drawing as it was and
    // says why in the status bar.
    void OpenFile(const QString &path);
    // Saves to path, or asks for a name when it is empty.
    void Save(QString path);

private:
    void CreateActions();
    void CreateFileActions();
    QString DrawingFilter() const;
    void ZoomBy(double factor);
    void ZoomTo(double zoom);
    void ShowZoom();

    TMyCAD *m_Cad = nullptr;
    QString m_FileName;
    QScrollArea *m_Scroll = nullptr;
    QLabel *m_ZoomLabel = nullptr;
    QLabel *m_PositionLabel = nullptr;
};

} // namespace tessal
