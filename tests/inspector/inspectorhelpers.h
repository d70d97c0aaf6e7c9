// SPDX-License-Identifier: MIT
// A small drawing and the key and mouse steps the inspector tests share.
#pragma once

#include <tessal/inspector/componentinspector.h>
#include <tessal/inspector/inspectorgrid.h>
#include <tessal/inspector/propertymodel.h>
#include <tessal/shapes/shape.h>
#include <tessal/surface/cad.h>

#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QTest>
#include <QTimer>
#include <QTreeView>

#include <functional>

namespace tessal::test {

inline bool WaitFor(const std::function<bool()> &done)
{
    QElapsedTimer timer;
    timer.start();
    while (!done() && timer.elapsed() < 2000)
        QTest::qWait(5);
    return done();
}

// A surface with one layer, two rectangles A and B and a line L, beside a component
// inspector, all in one shown window.
struct TDoc
{
    QWidget Window;
    TMyCAD *Cad;
    TComponentInspector *Inspector;
    std::int32_t IdA, IdB, IdL;

    TDoc()
        : Cad(new TMyCAD(&Window))
        , Inspector(new TComponentInspector(&Window))
    {
        Cad->setObjectName(QStringLiteral("cad"));
        Cad->NewLayer(QStringLiteral("Layer1"), true);
        IdA = Cad->AddShapeByCode2(TDrawTool::SpRectangle, QStringLiteral("A"), {10, 10}, 50, 40, 0,
                                   0, {});
        IdB = Cad->AddShapeByCode2(TDrawTool::SpRectangle, QStringLiteral("B"), {80, 10}, 50, 40, 0,
                                   0, {});
        const TMyPoint line[] = {{10, 100}, {120, 140}};
        IdL = Cad->AddShapeByCode(TDrawTool::SpLine, QStringLiteral("L"), line, 0, {});
        Cad->ClearWorkingShapes();
        Cad->ClearAllUndoStuff();
        Cad->setGeometry(0, 0, 300, 300);
        Inspector->setGeometry(300, 0, 300, 600);
        Window.resize(600, 600);
        Inspector->SetSurface(Cad);
        Window.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&Window));
    }
    TMyShape *A() const { return Cad->GetShapeByID(IdA); }
    TMyShape *B() const { return Cad->GetShapeByID(IdB); }
    TMyShape *L() const { return Cad->GetShapeByID(IdL); }
    TInspectorGrid *Grid() const { return Inspector->Grid(); }
    std::size_t UndoSteps() const
    {
        const auto &list = Cad->UndoRedoShapeList();
        return list.empty() ? 0 : std::size_t(list.back().Step + 1);
    }

    // Clicks a shape's tree item (with modifiers for extended selection).
    void ClickShape(TMyShape *shape, Qt::KeyboardModifiers mods = {}) const
    {
        QTreeView *tree = Inspector->Tree();
        const QModelIndex item = Inspector->IndexOf(shape);
        ASSERT_TRUE(item.isValid());
        tree->scrollTo(item);
        QTest::mouseClick(tree->viewport(), Qt::LeftButton, mods, tree->visualRect(item).center());
    }
};

// The grid index of a row given as its names joined by '/', as "Pen/Width".
inline QModelIndex Row(TInspectorGrid *grid, const QString &path)
{
    const QModelIndex index = grid->ViewIndex(path.split(QLatin1Char('/')));
    EXPECT_TRUE(index.isValid()) << path.toStdString();
    return index;
}

// Opens the editor of a value cell with F2 and answers it.
inline QWidget *OpenEditor(TInspectorGrid *grid, const QString &path)
{
    QTreeView *view = grid->View();
    const QModelIndex index = Row(grid, path);
    view->scrollTo(index);
    view->setCurrentIndex(index);
    QTest::keyClick(view, Qt::Key_F2);
    return view->indexWidget(index)
               ? view->indexWidget(index)
               : view->viewport()->findChild<QWidget *>(QString(), Qt::FindDirectChildrenOnly);
}

// Types text over an open line edit and presses Enter; the view commits on its next turn.
inline void TypeOver(QLineEdit *line, const QString &text)
{
    QTest::keyClick(line, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(line, text);
    QTest::keyClick(line, Qt::Key_Return);
    QApplication::processEvents();
}

// Types text over a cell's line edit and presses Enter.
inline void TypeInto(TInspectorGrid *grid, const QString &path, const QString &text)
{
    auto *line = qobject_cast<QLineEdit *>(OpenEditor(grid, path));
    ASSERT_TRUE(line) << path.toStdString();
    TypeOver(line, text);
}

// Picks the entry after the current one of an open combo box editor and presses Enter.
inline void PickNext(QComboBox *combo)
{
    QTest::keyClick(combo, Qt::Key_Down);
    QTest::keyClick(combo, Qt::Key_Return);
    QApplication::processEvents();
}

inline QString Shown(TInspectorGrid *grid, const QString &path)
{
    return Row(grid, path).data().toString();
}

// Runs act on the modal dialog of type D once it is shown.
template <typename D>
void WhenModal(std::function<void(D *)> act)
{
    QTimer::singleShot(0, [act] {
        auto *dialog = qobject_cast<D *>(QApplication::activeModalWidget());
        EXPECT_TRUE(dialog);
        if (dialog)
            act(dialog);
    });
}

} // namespace tessal::test
