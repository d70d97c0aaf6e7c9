// SPDX-License-Identifier: MIT
// Builds against the installed headers and library, makes a surface and draws a shape.
#include <tessal/shapes/shape.h>
#include <tessal/surface/cad.h>

#include <QApplication>

#include <cstdio>
#include <vector>

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
    // The README's first steps: an event handler and a shape drawn from code.
    int added = 0;
    cad.SetOnShapeAdded(
        [&added](tessal::TMyCAD *, tessal::TMyShape *, int count) { added = count; });
    const std::vector<tessal::TMyPoint> corners{{40, 40}, {200, 120}};
    const int id = cad.AddShapeByCode(tessal::TDrawTool::SpRectangle, "Box", corners, 0, {});
    tessal::TMyShape *box = cad.GetShapeByID(id);
    if (!box || box->GetPointsCount() != 4 || added != 1) {
        std::fprintf(stderr, "AddShapeByCode did not add the rectangle\n");
        return 1;
    }
    std::printf("consumer ok: %d layers, %d shape\n", cad.GetLayersCount(), cad.GetShapesCount());
    return 0;
}
