// SPDX-License-Identifier: MIT
// Creating shapes by stored class name and by drawing tool.
#pragma once

#include <tessal/shapes/shape.h>

#include <QStringList>

#include <memory>

namespace tessal {

// The shape of the class whose stored name is given ("TMyLine", ...); nullptr for any
// other name. The names compare exactly (case-sensitive).
std::unique_ptr<TMyShape> CreateShapeOfClass(const QString &className, TShapeHost *host);
// The seventeen class names CreateShapeOfClass understands.
const QStringList &ShapeClassNames();
// The shape a drawing tool makes; nullptr for tools that make none (selecting, closing,
// node editing, dragging the whole drawing, browsing).
std::unique_ptr<TMyShape> CreateShapeForTool(TDrawTool tool, TShapeHost *host);

} // namespace tessal
