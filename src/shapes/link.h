// SPDX-License-Identifier: MIT
// Connectors (TMyLinkLine) and connection-point markers (TMyLinkPoint, TMyLineLinkLine).
#pragma once

#include <tessal/shapes/line.h>
#include <tessal/shapes/rectangle.h>

namespace tessal {

// A line whose start and end can each be bound to one link point of one shape. The bound
// shapes are held by shape number (list position) and renumbered by the surface; a bound
// end reads its position from the link point and never stores it.
class TMyLinkLine : public TMyLine
{
    Q_GADGET
    Q_PROPERTY(int StartSpNo READ StartSpNo WRITE SetStartSpNo)
    Q_PROPERTY(int StartSpPtId READ StartSpPtId WRITE SetStartSpPtId)
    Q_PROPERTY(int EndSpNo READ EndSpNo WRITE SetEndSpNo)
    Q_PROPERTY(int EndSpPtId READ EndSpPtId WRITE SetEndSpPtId)
    Q_PROPERTY(tessal::ShapeEnums::TLinkLineDrawStyle LinkLineDrawStyle READ LinkLineDrawStyle WRITE
                   SetLinkLineDrawStyle)

public:
    // Free at both ends; takes the host's LinkLineDrawStyle.
    explicit TMyLinkLine(TShapeHost *host);

    const QMetaObject *MetaObject() const override { return &staticMetaObject; }
    QString ClassName() const override { return QStringLiteral("TMyLinkLine"); }

    void Assign(const TMyShape &source) override;
    void AssignWithoutRelation(const TMyShape &source) override;

    // Plain setters, for renumbering and for the mouse binding an end.
    std::int32_t StartSpNo() const { return m_StartSpNo; }
    void SetStartSpNo(std::int32_t no) { m_StartSpNo = no; }
    std::int32_t StartSpPtId() const { return m_StartSpPtId; }
    void SetStartSpPtId(std::int32_t id) { m_StartSpPtId = id; }
    std::int32_t EndSpNo() const { return m_EndSpNo; }
    void SetEndSpNo(std::int32_t no) { m_EndSpNo = no; }
    std::int32_t EndSpPtId() const { return m_EndSpPtId; }
    void SetEndSpPtId(std::int32_t id) { m_EndSpPtId = id; }

    TLinkLineDrawStyle LinkLineDrawStyle() const { return m_LinkLineDrawStyle; }
    // Going free keeps only the first and the last point; going orthogonal asks for a new
    // route before the next drawing.
    void SetLinkLineDrawStyle(TLinkLineDrawStyle style);

    // Whether the orthogonal route must be recomputed before the next drawing.
    bool NeedsReroute() const { return m_Reroute; }
    void SetNeedsReroute(bool on) { m_Reroute = on; }

private:
    void CopyLinkFields(const TMyShape &source);

    std::int32_t m_StartSpNo = -1;
    std::int32_t m_StartSpPtId = -1;
    std::int32_t m_EndSpNo = -1;
    std::int32_t m_EndSpPtId = -1;
    TLinkLineDrawStyle m_LinkLineDrawStyle;
    bool m_Reroute = true;
};

// A small cross marking a place where connectors attach; Size is its extent in pixels.
class TMyLinkPoint : public TMyRectangle
{
    Q_GADGET
    Q_PROPERTY(std::uint8_t Size READ Size WRITE SetSize)

public:
    explicit TMyLinkPoint(TShapeHost *host);

    const QMetaObject *MetaObject() const override { return &staticMetaObject; }
    QString ClassName() const override { return QStringLiteral("TMyLinkPoint"); }

    void Assign(const TMyShape &source) override;
    void AssignWithoutRelation(const TMyShape &source) override;

    std::uint8_t Size() const { return m_Size; }
    void SetSize(std::uint8_t size) { m_Size = size; }

private:
    std::uint8_t m_Size = 8;
};

// A link point that connectors prefer over the shapes it lies on.
class TMyLineLinkLine : public TMyLinkPoint
{
    Q_GADGET

public:
    using TMyLinkPoint::TMyLinkPoint;

    const QMetaObject *MetaObject() const override { return &staticMetaObject; }
    QString ClassName() const override { return QStringLiteral("TMyLineLinkLine"); }
};

} // namespace tessal
