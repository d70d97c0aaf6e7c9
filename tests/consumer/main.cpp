// SPDX-License-Identifier: MIT
// Builds against the installed headers and library and makes a surface with one shape.
#include <tessal/surface/cad.h>

#include <QApplication>

#include <cstdio>

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    tessal::TMyCAD cad;
    if (cad.GetLayersCount() != 1 || cad.GetLayerNameByID(0) != QStringLiteral("Layer0")) {
        std::fprintf(stderr, "unexpected layer table\n");
        return 1;
    }
    if (cad.NewLayer(QStringLiteral("Notes"), true) != 1) {
        std::fprintf(stderr, "NewLayer failed\n");
        return 1;
    }
    std::printf("consumer ok: %d layers\n", cad.GetLayersCount());
    return 0;
}
