// SPDX-License-Identifier: MIT
// TMyElliArc: a part of an ellipse or circle, open or closed by a chord or a pie.
#pragma once

#include <tessal/shapes/shape.h>

namespace tessal {

// The setters only store: the caller repaints.
class TMyElliArc : public TMyShape
{
    Q_GADGET
    Q_PROPERTY(tessal::ShapeEnums::TArcMode ArcMode READ ArcMode WRITE SetArcMode)
    Q_PROPERTY(tessal::ShapeEnums::TArcStyle ArcStyle READ ArcStyle WRITE SetArcStyle)

public:
    // Takes the host's ArcMode; a new arc is open (asArc).
    explicit TMyElliArc(TShapeHost *host);

    const QMetaObject *MetaObject() const override { return &staticMetaObject; }
    QString ClassName() const override { return QStringLiteral("TMyElliArc"); }

    void Assign(const TMyShape &source) override;
    void AssignWithoutRelation(const TMyShape &source) override;

    // amCircle keeps the arc circular while it is drawn; amEllipse lets it stretch.
    TArcMode ArcMode() const { return m_ArcMode; }
    void SetArcMode(TArcMode mode) { m_ArcMode = mode; }
    TArcStyle ArcStyle() const { return m_ArcStyle; }
    void SetArcStyle(TArcStyle style) { m_ArcStyle = style; }

private:
    void CopyArcFields(const TMyShape &source);

    TArcMode m_ArcMode;
    TArcStyle m_ArcStyle = TArcStyle::asArc;
};

} // namespace tessal
