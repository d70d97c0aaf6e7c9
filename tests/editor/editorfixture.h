// SPDX-License-Identifier: MIT
// The main window under test: message boxes answered by a timer, as a user would, a
// watchdog against unexpected ones, and mouse drags on the surface.
#pragma once

#include "common/files.h"
#include "layersdock.h"
#include "librarydock.h"
#include "mainwindow.h"
#include "shapecommands.h"
#include "toolpalette.h"

#include <tessal/geometry/geometry.h>
#include <tessal/inspector/componentinspector.h>
#include <tessal/inspector/inspectorgrid.h>
#include <tessal/shapes/shape.h>
#include <tessal/surface/cad.h>

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QFile>
#include <QListWidget>
#include <QMessageBox>
#include <QMimeData>
#include <QPrinter>
#include <QScrollArea>
#include <QStandardPaths>
#include <QSvgRenderer>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTreeView>
#include <QUrl>
#include <QWheelEvent>

#include <algorithm>
#include <memory>

namespace tessal::test {

// Answers the next message box with the given button and keeps its texts.
class TBoxAnswer
{
public:
    explicit TBoxAnswer(QMessageBox::StandardButton button) { Poll(button, 0); }
    QString Text() const { return m_Seen->value(0); }
    QString InformativeText() const { return m_Seen->value(1); }
    bool Seen() const { return !m_Seen->isEmpty(); }

private:
    // The box is looked for every 20 ms for four seconds; the texts outlive the answer.
    void Poll(QMessageBox::StandardButton button, int tries)
    {
        QTimer::singleShot(20, [seen = m_Seen, button, tries, this] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (!box) {
                if (tries < 200)
                    Poll(button, tries + 1);
                return;
            }
            *seen = {box->text(), box->informativeText()};
            box->button(button)->click();
        });
    }
    std::shared_ptr<QStringList> m_Seen = std::make_shared<QStringList>();
};

// Runs act, which must fail and say why in a message box; the text of the box, answered
// with OK.
template <class Act>
QString Refusal(Act act)
{
    TBoxAnswer answer(QMessageBox::Ok);
    EXPECT_FALSE(act());
    return answer.Text();
}

class EditorTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        QStandardPaths::setTestModeEnabled(true);
        m_Window = std::make_unique<MainWindow>();
        m_Window->NewDrawing();
        m_Window->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(m_Window.get()));
        // A message box that no test step expects would wait forever: close it and fail.
        QObject::connect(&m_Watchdog, &QTimer::timeout, [this] {
            QWidget *modal = QApplication::activeModalWidget();
            if (modal && modal == m_LastModal) {
                auto *box = qobject_cast<QMessageBox *>(modal);
                m_Unexpected << (box ? box->text() : modal->windowTitle());
                if (auto *dialog = qobject_cast<QDialog *>(modal))
                    dialog->reject();
            }
            m_LastModal = modal;
        });
        m_Watchdog.start(700);
    }
    void TearDown() override
    {
        m_Watchdog.stop();
        EXPECT_TRUE(m_Unexpected.isEmpty()) << m_Unexpected.join(" | ").toStdString();
        m_Cad()->SetModified(false);
        m_Window.reset();
    }
    TMyCAD *m_Cad() const { return m_Window->Cad(); }

    // A drag with the left button from a to b in surface pixels, as the mouse does it.
    void Drag(QPoint a, QPoint b)
    {
        QWidget *surface = m_Cad();
        QTest::mousePress(surface, Qt::LeftButton, Qt::NoModifier, a);
        for (int i = 1; i <= 4; ++i) {
            const QPoint p = a + (b - a) * i / 4;
            QMouseEvent move(QEvent::MouseMove, p, surface->mapToGlobal(p), Qt::NoButton,
                             Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(surface, &move);
        }
        QTest::mouseRelease(surface, Qt::LeftButton, Qt::NoModifier, b);
        QApplication::processEvents();
    }
    // Grid snapping is switched off so that corners land where the mouse goes.
    void DrawRectangle(QPoint a, QPoint b)
    {
        m_Cad()->SetSnap(false);
        m_Window->Palette()->ActionFor(TDrawTool::SpRectangle)->trigger();
        Drag(a, b);
    }

    std::unique_ptr<MainWindow> m_Window;
    QTemporaryDir m_Dir;
    QTimer m_Watchdog;
    QWidget *m_LastModal = nullptr;
    QStringList m_Unexpected;
};

// The extent of a shape's points in document units.
inline QRectF Box(const TMyShape *shape)
{
    const TMyRect r = GetPointsLTRB(shape->Points());
    return QRectF(QPointF(r.Left, r.Top), QPointF(r.Right, r.Bottom));
}

inline QByteArray Head(const QString &path, int n)
{
    return ReadFile(path).left(n);
}

} // namespace tessal::test
