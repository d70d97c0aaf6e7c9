// SPDX-License-Identifier: MIT
// Shape commands: every one goes through the surface's own command operations, which
// record their undo steps themselves.
#include "shapecommands.h"

#include <tessal/shapes/shape.h>
#include <tessal/surface/cad.h>

#include <QAction>
#include <QKeySequence>
#include <QMenu>

namespace tessal {

TShapeCommands::TShapeCommands(TMyCAD *surface, std::function<void()> changed, QObject *parent)
    : QObject(parent)
    , m_Surface(surface)
    , m_Changed(std::move(changed))
{
    TMyCAD *cad = m_Surface;
    Add(
        QStringLiteral("group"), tr("&Group"), [cad] { cad->GroupWorkingShape(); }, 2)
        ->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_G));
    Add(
        QStringLiteral("ungroup"), tr("&Ungroup"),
        [this] {
            for (TMyShape *shape : Selected())
                if (shape->HasChildShapes())
                    m_Surface->UnGroupShape(shape, true);
        },
        1)
        ->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_G));
    m_GroupStart = true;
    Add(
        QStringLiteral("alignLeft"), tr("Align &Left"), [cad] { cad->AlignLeft(); }, 2);
    Add(
        QStringLiteral("alignRight"), tr("Align &Right"), [cad] { cad->AlignRight(); }, 2);
    Add(
        QStringLiteral("alignTop"), tr("Align &Top"), [cad] { cad->AlignTop(); }, 2);
    Add(
        QStringLiteral("alignBottom"), tr("Align &Bottom"), [cad] { cad->AlignBottom(); }, 2);
    Add(
        QStringLiteral("alignHCenter"), tr("Align Centres &Horizontally"),
        [cad] { cad->AlignHorizontalCenter(); }, 2);
    Add(
        QStringLiteral("alignVCenter"), tr("Align Centres &Vertically"),
        [cad] { cad->AlignVerticalCenter(); }, 2);
    Add(
        QStringLiteral("averageWidth"), tr("Average &Width"), [cad] { cad->AverageWidth(); }, 2);
    Add(
        QStringLiteral("averageHeight"), tr("Average H&eight"), [cad] { cad->AverageHeight(); }, 2);
    m_GroupStart = true;
    Add(
        QStringLiteral("front"), tr("Bring to &Front"),
        [this] { ForEachSelected([this](TMyShape *s) { m_Surface->BringToFront(s, true); }); }, 1)
        ->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_BracketRight));
    Add(
        QStringLiteral("back"), tr("Send to &Back"),
        [this] { ForEachSelected([this](TMyShape *s) { m_Surface->SendToBack(s, true); }); }, 1)
        ->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_BracketLeft));
    Add(
        QStringLiteral("forward"), tr("Bring F&orward"),
        [this] {
            ForEachSelected([this](TMyShape *s) { m_Surface->BringToFrontByStep(s, true); });
        },
        1)
        ->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_BracketRight));
    Add(
        QStringLiteral("backward"), tr("Send Back&ward"),
        [this] { ForEachSelected([this](TMyShape *s) { m_Surface->SendToBackByStep(s, true); }); },
        1)
        ->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_BracketLeft));
    Add(
        QStringLiteral("swap"), tr("S&wap Places"),
        [this] {
            const std::vector<TMyShape *> shapes = Selected();
            if (shapes.size() == 2)
                m_Surface->SwapShape(shapes[0], shapes[1]);
        },
        2);
    m_GroupStart = true;
    Add(
        QStringLiteral("flipH"), tr("Flip &Horizontally"),
        [this] { ForEachSelected([this](TMyShape *s) { m_Surface->FlipHoriz(s); }); }, 1);
    Add(
        QStringLiteral("flipV"), tr("Flip &Vertically"),
        [this] { ForEachSelected([this](TMyShape *s) { m_Surface->FlipVert(s); }); }, 1);
    Add(
        QStringLiteral("lock"), tr("&Lock"),
        [this] {
            ForEachSelected([this](TMyShape *s) { m_Surface->LockUnLockforShapes(s, true); });
        },
        1);
    Add(
        QStringLiteral("unlock"), tr("U&nlock"),
        [this] {
            ForEachSelected([this](TMyShape *s) { m_Surface->LockUnLockforShapes(s, false); });
        },
        1);
    m_GroupStart = true;
    Add(
        QStringLiteral("breakLine"), tr("Brea&k Line at Middle Point"),
        [this] {
            for (TMyShape *shape : Selected())
                if (shape->GetPointsCount() > 2)
                    m_Surface->BreakLine(shape, shape->GetPointsCount() / 2);
        },
        1);
    Add(
        QStringLiteral("closePolygon"), tr("&Close Polygon"),
        [this] { ForEachSelected([this](TMyShape *s) { m_Surface->ClosePolygon(s); }); }, 1);
    m_GroupStart = true;
    Add(
        QStringLiteral("delete"), tr("&Delete"), [cad] { cad->DeleteSelectedShapes(); }, 1)
        ->setShortcut(QKeySequence::Delete);
    UpdateEnabled();
}

QAction *TShapeCommands::Add(const QString &name, const QString &text, std::function<void()> run,
                             int minSelected)
{
    auto *action = new QAction(text, this);
    action->setObjectName(name);
    // The surface takes Delete itself while it has the focus; elsewhere the action does.
    action->setShortcutContext(Qt::WindowShortcut);
    connect(action, &QAction::triggered, this, [this, run = std::move(run)] {
        run();
        m_Surface->DocumentChanged();
        m_Changed();
        UpdateEnabled();
    });
    m_Commands.push_back({action, minSelected, m_GroupStart});
    m_GroupStart = false;
    return action;
}

void TShapeCommands::Populate(QMenu *menu) const
{
    for (const TCommand &c : m_Commands) {
        if (c.Separator)
            menu->addSeparator();
        menu->addAction(c.Action);
    }
}

void TShapeCommands::UpdateEnabled()
{
    const int count = m_Surface->GetWorkingShapesCount();
    for (const TCommand &c : m_Commands)
        c.Action->setEnabled(count >= c.MinSelected);
}

QAction *TShapeCommands::Action(const QString &objectName) const
{
    for (const TCommand &c : m_Commands)
        if (c.Action->objectName() == objectName)
            return c.Action;
    return nullptr;
}

std::vector<TMyShape *> TShapeCommands::Selected() const
{
    return m_Surface->WorkingShapes();
}

void TShapeCommands::ForEachSelected(const std::function<void(TMyShape *)> &run)
{
    // A copy: commands may reorder the working shapes.
    for (TMyShape *shape : Selected())
        run(shape);
}

} // namespace tessal
