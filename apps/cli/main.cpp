// SPDX-License-Identifier: MIT
// tessal-cli entry point: a QApplication on the offscreen platform unless the caller chose
// another, since the drawing surface is a widget but the tool never shows a window.
#include "cli.h"

#include <QApplication>

#include <cstdio>

namespace {

// The error stream carries the tool's own one-line reasons, which scripts read; Qt's notes
// about the platform (runtime directories, fonts) would bury them. Only its errors pass.
void QtMessages(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (type == QtCriticalMsg || type == QtFatalMsg)
        std::fprintf(stderr, "%s\n", qPrintable(message));
}

} // namespace

int main(int argc, char **argv)
{
    qInstallMessageHandler(QtMessages);
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("tessal-cli"));

    QTextStream out(stdout);
    QTextStream err(stderr);
    return tessal::Cli::Run(QApplication::arguments().mid(1), {out, err});
}
