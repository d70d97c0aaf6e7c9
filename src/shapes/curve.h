// SPDX-License-Identifier: MIT
// Curves: TMyPolyBezier (cubic Bezier pieces) and TMyBLine (a B-spline through its points).
#pragma once

#include <tessal/shapes/shape.h>

namespace tessal {

// Points are the start point followed by groups of two control points and an end point.
class TMyPolyBezier : public TMyShape
{
    Q_GADGET

public:
    using TMyShape::TMyShape;

    const QMetaObject *MetaObject() const override { return &staticMetaObject; }
    QString ClassName() const override { return QStringLiteral("TMyPolyBezier"); }
};

// Points are the control polygon of the spline.
class TMyBLine : public TMyShape
{
    Q_GADGET

public:
    using TMyShape::TMyShape;

    const QMetaObject *MetaObject() const override { return &staticMetaObject; }
    QString ClassName() const override { return QStringLiteral("TMyBLine"); }
};

} // namespace tessal
