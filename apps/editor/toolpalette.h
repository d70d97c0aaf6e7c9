// SPDX-License-Identifier: MIT
// The drawing tools as checkable actions, one per tool in the tools' own order, only one
// checked: the surface's current tool.
#pragma once

#include <tessal/shapes/shapeenums.h>

#include <QObject>

#include <vector>

class QAction;
class QActionGroup;

namespace tessal {

class TMyCAD;

class TToolPalette : public QObject
{
    Q_OBJECT

public:
    TToolPalette(TMyCAD *surface, QObject *parent);

    const std::vector<QAction *> &Actions() const { return m_Actions; }
    QAction *ActionFor(TDrawTool tool) const;
    // Checks the action of the surface's tool (after the surface changed it itself).
    void Sync();

    static constexpr int ToolCount = 22;
    static QString ToolName(TDrawTool tool);

private:
    TMyCAD *m_Surface;
    QActionGroup *m_Group;
    std::vector<QAction *> m_Actions;
};

} // namespace tessal
