// SPDX-License-Identifier: MIT
// Shape commands: every one goes through the surface's own command operations, which
// record their undo steps themselves.
#include "shapecommands.h"

#include <tessal/shapes/shape.h>
#include <tessal/surface/cad.h>

#include <QAction>
#include <QKeySequence>
#include <QMenu>

#include <algorithm>

namespace tessal {

namespace {

TShapeCommands::TApplies AtLeast(std::size_t count)
{
    return [count](const std::vector<TMyShape *> &shapes) { return shapes.size() >= count; };
}

TShapeCommands::TApplies Exactly(std::size_t count)
{
    return [count](const std::vector<TMyShape *> &shapes) { return shapes.size() == count; };
}

TShapeCommands::TApplies AnyOf(std::function<bool(const TMyShape &)> test)
{
    return [test = std::move(test)](const std::vector<TMyShape *> &shapes) {
        return std::any_of(shapes.begin(), shapes.end(),
                           [&test](const TMyShape *shape) { return test(*shape); });
    };
}

// Grouping and combining take two or more visible shapes of one layer.
bool Groupable(const std::vector<TMyShape *> &shapes)
{
    if (shapes.size() < 2)
        return false;
    const std::int32_t layer = shapes.front()->LayerId();
    return std::all_of(shapes.begin(), shapes.end(), [layer](const TMyShape *shape) {
        return shape->LayerId() == layer && shape->Visible();
    });
}

bool IsUngroupable(const TMyShape &shape)
{
    return shape.HasChildShapes() && shape.ParentNo() < 0 && !shape.Locked();
}

// The line classes that break at an inner point.
bool IsBreakable(const TMyShape &shape)
{
    const QString name = shape.ClassName();
    return !shape.Locked() && shape.GetPointsCount() > 2 &&
           (name == QLatin1String("TMyLine") || name == QLatin1String("TMyPolyLine") ||
            name == QLatin1String("TMyFreeLine"));
}

bool IsClosable(const TMyShape &shape)
{
    return !shape.Locked() && shape.ClassName() == QLatin1String("TMyPolyLine") &&
           shape.GetPointsCount() >= 3;
}

} // namespace

TShapeCommands::TShapeCommands(TMyCAD *surface, std::function<void()> changed, QObject *parent)
    : QObject(parent)
    , m_Surface(surface)
    , m_Changed(std::move(changed))
{
    TMyCAD *cad = m_Surface;
    Add(
        QStringLiteral("group"), tr("&Group"), [cad] { cad->GroupWorkingShape(); }, Groupable)
        ->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_G));
    Add(
        QStringLiteral("combine"), tr("Com&bine into a Block"),
        [cad] { cad->CombineWorkingShape(); }, Groupable)
        ->setToolTip(tr("Joins the selected shapes into one block, as a library entry is"));
    Add(
        QStringLiteral("ungroup"), tr("&Ungroup"),
        [this] {
            for (TMyShape *shape : Selected())
                if (shape->HasChildShapes())
                    m_Surface->UnGroupShape(shape, true);
        },
        AnyOf(IsUngroupable))
        ->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_G));
    m_GroupStart = true;
    Add(
        QStringLiteral("alignLeft"), tr("Align &Left"), [cad] { cad->AlignLeft(); }, AtLeast(2));
    Add(
        QStringLiteral("alignRight"), tr("Align &Right"), [cad] { cad->AlignRight(); }, AtLeast(2));
    Add(
        QStringLiteral("alignTop"), tr("Align &Top"), [cad] { cad->AlignTop(); }, AtLeast(2));
    Add(
        QStringLiteral("alignBottom"), tr("Align &Bottom"), [cad] { cad->AlignBottom(); },
        AtLeast(2));
    Add(
        QStringLiteral("alignHCenter"), tr("Align Centres &Horizontally"),
        [cad] { cad->AlignHorizontalCenter(); }, AtLeast(2));
    Add(
        QStringLiteral("alignVCenter"), tr("Align Centres &Vertically"),
        [cad] { cad->AlignVerticalCenter(); }, AtLeast(2));
    Add(
        QStringLiteral("averageWidth"), tr("Average &Width"), [cad] { cad->AverageWidth(); },
        AtLeast(2));
    Add(
        QStringLiteral("averageHeight"), tr("Average H&eight"), [cad] { cad->AverageHeight(); },
        AtLeast(2));
    m_GroupStart = true;
    Add(
        QStringLiteral("front"), tr("Bring to &Front"),
        [this] { ForEachSelected([this](TMyShape *s) { m_Surface->BringToFront(s, true); }); },
        AtLeast(1))
        ->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_BracketRight));
    Add(
        QStringLiteral("back"), tr("Send to &Back"),
        [this] { ForEachSelected([this](TMyShape *s) { m_Surface->SendToBack(s, true); }); },
        AtLeast(1))
        ->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_BracketLeft));
    Add(
        QStringLiteral("forward"), tr("Bring F&orward"),
        [this] {
            ForEachSelected([this](TMyShape *s) { m_Surface->BringToFrontByStep(s, true); });
        },
        AtLeast(1))
        ->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_BracketRight));
    Add(
        QStringLiteral("backward"), tr("Send Back&ward"),
        [this] { ForEachSelected([this](TMyShape *s) { m_Surface->SendToBackByStep(s, true); }); },
        AtLeast(1))
        ->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_BracketLeft));
    Add(
        QStringLiteral("swap"), tr("S&wap Places"),
        [this] {
            const std::vector<TMyShape *> shapes = Selected();
            if (shapes.size() == 2)
                m_Surface->SwapShape(shapes[0], shapes[1]);
        },
        Exactly(2));
    m_GroupStart = true;
    Add(
        QStringLiteral("flipH"), tr("Flip &Horizontally"),
        [this] { ForEachSelected([this](TMyShape *s) { m_Surface->FlipHoriz(s); }); }, AtLeast(1));
    Add(
        QStringLiteral("flipV"), tr("Flip &Vertically"),
        [this] { ForEachSelected([this](TMyShape *s) { m_Surface->FlipVert(s); }); }, AtLeast(1));
    Add(
        QStringLiteral("lock"), tr("&Lock"),
        [this] {
            ForEachSelected([this](TMyShape *s) { m_Surface->LockUnLockforShapes(s, true); });
        },
        AnyOf([](const TMyShape &s) { return !s.Locked(); }));
    Add(
        QStringLiteral("unlock"), tr("U&nlock"),
        [this] {
            ForEachSelected([this](TMyShape *s) { m_Surface->LockUnLockforShapes(s, false); });
        },
        AnyOf([](const TMyShape &s) { return s.Locked(); }));
    m_GroupStart = true;
    Add(
        QStringLiteral("breakLine"), tr("Brea&k Line at Middle Point"),
        [this] {
            for (TMyShape *shape : Selected())
                if (IsBreakable(*shape))
                    m_Surface->BreakLine(shape, shape->GetPointsCount() / 2);
        },
        AnyOf(IsBreakable));
    Add(
        QStringLiteral("closePolygon"), tr("&Close Polygon"),
        [this] {
            for (TMyShape *shape : Selected())
                if (IsClosable(*shape))
                    m_Surface->ClosePolygon(shape);
        },
        AnyOf(IsClosable));
    m_GroupStart = true;
    Add(
        QStringLiteral("delete"), tr("&Delete"), [cad] { cad->DeleteSelectedShapes(); }, AtLeast(1))
        ->setShortcut(QKeySequence::Delete);
    UpdateEnabled();
}

QAction *TShapeCommands::Add(const QString &name, const QString &text, std::function<void()> run,
                             TApplies applies)
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
    m_Commands.push_back({action, std::move(applies), m_GroupStart});
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
    const std::vector<TMyShape *> shapes = Selected();
    for (const TCommand &c : m_Commands)
        c.Action->setEnabled(c.Applies(shapes));
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
    // A copy: commands may reorder the working shapes. The surface records each shape's
    // change as a step of its own; the user gave one command, and takes it back at once.
    m_Surface->BeginUndoStep();
    for (TMyShape *shape : Selected())
        run(shape);
    m_Surface->EndUndoStep();
}

} // namespace tessal
