// SPDX-License-Identifier: MIT
// A surface driven by real Qt mouse events, and the byte image of its drawing.
#pragma once

#include "surface/documenthelpers.h"

#include <tessal/surface/cad.h>

#include <QBuffer>
#include <QTest>

#include <vector>

namespace tessal::test {

// A shown surface without grid snapping, so that points land where the mouse goes.
class TMouseSurface
{
public:
    TMouseSurface()
    {
        cad.SetSnap(false);
        cad.show();
        // Until the window is exposed nothing is painted on the screen image.
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&cad));
    }

    void Press(QPoint p, Qt::KeyboardModifiers m = Qt::NoModifier)
    {
        QTest::mousePress(&cad, Qt::LeftButton, m, p);
    }
    void Release(QPoint p, Qt::KeyboardModifiers m = Qt::NoModifier)
    {
        QTest::mouseRelease(&cad, Qt::LeftButton, m, p);
    }
    void Move(QPoint p) { QTest::mouseMove(&cad, p); }
    void Click(QPoint p, Qt::KeyboardModifiers m = Qt::NoModifier)
    {
        Press(p, m);
        Release(p, m);
    }
    // A press, moves in steps of at most 8 pixels, and a release.
    void Drag(QPoint from, QPoint to, Qt::KeyboardModifiers m = Qt::NoModifier)
    {
        Press(from, m);
        const QPoint d = to - from;
        const int steps = std::max(1, std::max(std::abs(d.x()), std::abs(d.y())) / 8);
        for (int i = 1; i <= steps; ++i)
            Move(from + d * i / steps);
        Release(to, m);
    }

    TMyCAD cad;
};

// The control pixels that a screen image taken earlier (with its origin) and the surface's
// present one both hold are equal. (The shown part of the control may change size when
// the window settles, so the images are compared where they overlap.)
inline ::testing::AssertionResult SameOnScreen(const QImage &before, QPoint origin,
                                               const TMyCAD &cad)
{
    const QImage &now = cad.ScreenImage();
    const QRect common = QRect(origin, before.size()) & QRect(cad.ScreenOrigin(), now.size());
    if (common.isEmpty())
        return ::testing::AssertionFailure() << "the images do not overlap";
    int differing = 0;
    QRect box;
    for (int y = common.top(); y <= common.bottom(); ++y)
        for (int x = common.left(); x <= common.right(); ++x)
            if (before.pixel(QPoint(x, y) - origin) != now.pixel(QPoint(x, y) - cad.ScreenOrigin()))
                ++differing, box |= QRect(x, y, 1, 1);
    if (differing == 0)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << differing << " pixels differ within (" << box.left() << ", " << box.top() << ") - ("
           << box.right() << ", " << box.bottom() << ")";
}

inline TPoint ToTPoint(QPoint p)
{
    return {p.x(), p.y()};
}

} // namespace tessal::test
