// SPDX-License-Identifier: MIT
// The commands on the selected shapes (grouping, alignment, stacking, flipping, locking,
// line edits, deletion) as actions for the menu bar and the surface's context menu.
#pragma once

#include <QObject>

#include <functional>
#include <vector>

class QAction;
class QMenu;

namespace tessal {

class TMyCAD;
class TMyShape;

class TShapeCommands : public QObject
{
    Q_OBJECT

public:
    // changed runs after every command that may have changed the drawing.
    TShapeCommands(TMyCAD *surface, std::function<void()> changed, QObject *parent);

    // Fills menu with the commands, in groups.
    void Populate(QMenu *menu) const;
    // Enables the commands that the current selection allows.
    void UpdateEnabled();
    QAction *Action(const QString &objectName) const;

    // Whether a command applies to the selected shapes.
    using TApplies = std::function<bool(const std::vector<TMyShape *> &)>;

private:
    QAction *Add(const QString &name, const QString &text, std::function<void()> run,
                 TApplies applies);
    std::vector<TMyShape *> Selected() const;
    void ForEachSelected(const std::function<void(TMyShape *)> &run);

    TMyCAD *m_Surface;
    std::function<void()> m_Changed;
    struct TCommand
    {
        QAction *Action;
        TApplies Applies;
        bool Separator;
    };
    std::vector<TCommand> m_Commands;
    bool m_GroupStart = false;
};

} // namespace tessal
