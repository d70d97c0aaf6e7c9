// SPDX-License-Identifier: MIT
// tessal-editor entry point. Without a display it writes a screenshot and exits.
#include "mainwindow.h"
#include "sample.h"

#include <tessal/surface/cad.h>

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QPixmap>
#include <QTextStream>

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("tessal-editor"));
    QApplication::setOrganizationName(QStringLiteral("Tessal"));

    tessal::MainWindow window;
    const bool offscreen = QGuiApplication::platformName() == QLatin1String("offscreen");
    window.SetMessagesToConsole(offscreen);
    const QStringList args = QApplication::arguments();
    if (args.size() > 1) {
        // A name that does not exist yet starts a new drawing that saves under it.
        if (QFileInfo::exists(args.at(1)))
            window.OpenFile(args.at(1));
        else
            window.NewDrawing(QFileInfo(args.at(1)).absoluteFilePath());
    } else {
        BuildSampleDrawing(*window.Cad());
        // Show the sample's layers and selection; it counts as unchanged.
        window.NoteChange();
        window.Cad()->SetModified(false);
        window.NoteChange();
    }
    window.show();

    if (offscreen) {
        // Let layout and the first paint happen before taking the picture.
        QApplication::processEvents();
        const QString path = QDir::current().absoluteFilePath(QStringLiteral("tessal-editor.png"));
        if (!window.grab().save(path)) {
            QTextStream(stderr) << "could not write " << path << "\n";
            return 1;
        }
        QTextStream(stdout) << "screenshot written to " << path << "\n";
        return 0;
    }
    return QApplication::exec();
}
