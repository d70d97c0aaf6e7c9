// SPDX-License-Identifier: MIT
// The one application every fuzz target runs in: offscreen, silent, and with the no-layer
// answer (which would end the program) switched off.
#pragma once

#include <tessal/surface/cad.h>

#include <QApplication>

namespace tessal::fuzz {

inline void EnsureApplication()
{
    static int argc = 1;
    static char name[] = "tessal-fuzz";
    static char *argv[] = {name, nullptr};
    static QApplication *app = [] {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
        TMyCAD::SetNoLayerHandler([](TMyCAD *) {});
        return new QApplication(argc, argv);
    }();
    (void)app;
}

} // namespace tessal::fuzz
