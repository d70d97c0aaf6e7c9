// SPDX-License-Identifier: MIT
// What a widget repaints: the region of the paint events it receives.
#pragma once

#include <tessal/surface/cad.h>

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QPaintEvent>
#include <QRegion>

namespace tessal::test {

// Installed as a widget's event filter, gathers the regions of its paint events.
struct TPaintSpy : QObject
{
    QRegion Painted;
    bool eventFilter(QObject *, QEvent *e) override
    {
        if (e->type() == QEvent::Paint)
            Painted += static_cast<QPaintEvent *>(e)->region();
        return false;
    }
};

struct TPaintsOfALoad
{
    QRegion During, After;
    int Reports = 0;
};

// Shows the surface, then runs load while each progress report of the surface lets events
// through, as an application's progress dialog does: what was painted during the load, what
// the events after it painted, and how many reports there were.
template <class Load>
TPaintsOfALoad PaintsOfALoad(TMyCAD &cad, Load load)
{
    cad.show();
    QCoreApplication::processEvents();
    TPaintSpy spy;
    cad.installEventFilter(&spy);
    TPaintsOfALoad paints;
    cad.SetOnProgress([&paints](TMyCAD *, std::int64_t, std::int64_t, bool &) {
        QCoreApplication::processEvents();
        ++paints.Reports;
    });
    load();
    cad.SetOnProgress({});
    paints.During = spy.Painted;
    spy.Painted = {};
    QCoreApplication::processEvents();
    paints.After = spy.Painted;
    cad.removeEventFilter(&spy);
    return paints;
}

} // namespace tessal::test
