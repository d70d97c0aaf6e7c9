// SPDX-License-Identifier: MIT
// The region of the paint events a widget receives, once installed as its event filter.
#pragma once

#include <QEvent>
#include <QObject>
#include <QPaintEvent>
#include <QRegion>

namespace tessal::test {

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

} // namespace tessal::test
