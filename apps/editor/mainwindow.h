// SPDX-License-Identifier: MIT
// The editor's main window: one drawing surface in a scroll area, zoom actions, status bar.
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
    // Takes a drawing named on the command line.
    void OpenFile(const QString &path);

private:
    void CreateActions();
    void ZoomBy(double factor);
    void ZoomTo(double zoom);
    void ShowZoom();

    TMyCAD *m_Cad = nullptr;
    QScrollArea *m_Scroll = nullptr;
    QLabel *m_ZoomLabel = nullptr;
    QLabel *m_PositionLabel = nullptr;
};

} // namespace tessal
