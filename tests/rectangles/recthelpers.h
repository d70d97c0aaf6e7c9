// SPDX-License-Identifier: MIT
// Shared set-up of the rectangle-family tests: a host whose action state can be set, shapes
// drawn the way the mouse draws them, and pixel helpers.
#pragma once

#include "shapes/testhost.h"

#include <tessal/geometry/geometry.h>
#include <tessal/shapes/rectangle.h>

#include <QImage>

#include <memory>

namespace tessal::test {

// The base test host always answers dtSelecting; handle tests need the rotating states.
class TActionHost : public TTestHost
{
public:
    using TTestHost::TTestHost;
    TActionTools Action = TActionTools::dtSelecting;
    TActionTools ActionTool() const override { return Action; }
};

} // namespace tessal::test
