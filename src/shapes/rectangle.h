// SPDX-License-Identifier: MIT
// TMyRectangle and the classes built on its four corners: ellipse, group and combine.
#pragma once

#include <tessal/shapes/shape.h>

namespace tessal {

// Four points: 0 the corner where drawing started, 1 (x of the opposite corner, y of 0),
// 2 the opposite corner, 3 (x of 0, y of the opposite corner). The points keep their
// upright relation; Angle turns the whole about the centre. The side-handle flags only
// store: the caller repaints.
class TMyRectangle : public TMyShape
{
    Q_GADGET
    Q_PROPERTY(bool AssociateSideResizing READ AssociateSideResizing WRITE SetAssociateSideResizing)
    Q_PROPERTY(bool ShowSideHot READ ShowSideHot WRITE SetShowSideHot)
    Q_PROPERTY(bool ShowHorizontalSideHot READ ShowHorizontalSideHot WRITE SetShowHorizontalSideHot)
    Q_PROPERTY(bool ShowVerticalSideHot READ ShowVerticalSideHot WRITE SetShowVerticalSideHot)

public:
    explicit TMyRectangle(TShapeHost *host);

    const QMetaObject *MetaObject() const override { return &staticMetaObject; }
    QString ClassName() const override { return QStringLiteral("TMyRectangle"); }

    void Assign(const TMyShape &source) override;
    void AssignWithoutRelation(const TMyShape &source) override;

    // When a side handle is dragged, the opposite side moves too (read by the surface).
    bool AssociateSideResizing() const { return m_AssociateSideResizing; }
    void SetAssociateSideResizing(bool on) { m_AssociateSideResizing = on; }
    // Whether side-middle handles (4 to 7) exist at all.
    bool ShowSideHot() const { return m_ShowSideHot; }
    void SetShowSideHot(bool on) { m_ShowSideHot = on; }
    // The right and left side handles (5 and 7).
    bool ShowHorizontalSideHot() const { return m_ShowHorizontalSideHot; }
    void SetShowHorizontalSideHot(bool on) { m_ShowHorizontalSideHot = on; }
    // The top and bottom side handles (4 and 6).
    bool ShowVerticalSideHot() const { return m_ShowVerticalSideHot; }
    void SetShowVerticalSideHot(bool on) { m_ShowVerticalSideHot = on; }

private:
    void CopyRectangleFields(const TMyShape &source);

    bool m_AssociateSideResizing = false;
    bool m_ShowSideHot = true;
    bool m_ShowHorizontalSideHot = true;
    bool m_ShowVerticalSideHot = true;
};

// The ellipse inscribed in the rectangle's corners.
class TMyEllipse : public TMyRectangle
{
    Q_GADGET

public:
    using TMyRectangle::TMyRectangle;

    const QMetaObject *MetaObject() const override { return &staticMetaObject; }
    QString ClassName() const override { return QStringLiteral("TMyEllipse"); }
};

// A group: its four points are the corners of its members' common box; the members are
// held by shape number in ChildShapes. It has no outline or fill of its own.
class TMyGroup : public TMyRectangle
{
    Q_GADGET

public:
    using TMyRectangle::TMyRectangle;

    const QMetaObject *MetaObject() const override { return &staticMetaObject; }
    QString ClassName() const override { return QStringLiteral("TMyGroup"); }
};

// A group made from a library entry or an inserted drawing (a block).
class TMyCombine : public TMyGroup
{
    Q_GADGET

public:
    using TMyGroup::TMyGroup;

    const QMetaObject *MetaObject() const override { return &staticMetaObject; }
    QString ClassName() const override { return QStringLiteral("TMyCombine"); }
};

} // namespace tessal
