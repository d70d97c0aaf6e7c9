// SPDX-License-Identifier: MIT
// TMyLine: the straight line (an open chain of points) with optional arrow heads.
#pragma once

#include <tessal/shapes/shape.h>

namespace tessal {

// Points are document values; the chain is drawn segment by segment. Heads are filled in
// the pen colour. ArrowLength is in document pixels (grows with the zoom) while ArrowOffset
// is in screen pixels (does not). The arrow setters only store: the caller repaints.
//
// Lines also serve the polyline, connector and measuring-line classes, which inherit the
// drawing, the segment hit test, the handle test and the previews.
class TMyLine : public TMyShape
{
    Q_GADGET
    Q_PROPERTY(int ArrowAngle READ ArrowAngle WRITE SetArrowAngle)
    Q_PROPERTY(std::uint8_t ArrowLength READ ArrowLength WRITE SetArrowLength)
    Q_PROPERTY(std::uint8_t ArrowOffset READ ArrowOffset WRITE SetArrowOffset)
    Q_PROPERTY(tessal::ShapeEnums::TArrowStyle ArrowStyle READ ArrowStyle WRITE SetArrowStyle)

public:
    // Takes the host's arrow settings; the merge fields start at -1.
    explicit TMyLine(TShapeHost *host);

    const QMetaObject *MetaObject() const override { return &staticMetaObject; }
    QString ClassName() const override { return QStringLiteral("TMyLine"); }
    // The class's part of the stored record, after its parent's.
    void SaveToStream(BinaryStream &stream) const override;
    void LoadFromStream(BinaryStream &stream) override;

    void Draging(TCanvas &canvas, TPoint from, TPoint to) override;
    // Computes centre and caption anchor; a plain line then looks for a line end under the
    // end point (LookUpMergeShape).
    void Drawed(TPoint from, TPoint &to) override;
    void DrawHot(TCanvas &canvas) override;
    void Drawing(TCanvas &canvas, TPoint from, TPoint to) override;
    bool IsDrawingFinished(Qt::MouseButton button, TPoint point) override;
    // centre is a screen point here, like the points it turns.
    void Rotating(TCanvas &canvas, TMyPoint centre, double angle) override;
    // Moves the current hot point by to - from (screen values).
    void SizeChangeValue(TMyPoint from, TMyPoint to) override;
    void Sizing(TCanvas &canvas, TPoint from, TPoint to) override;

    // ArrowOffset is not copied: a copy keeps the offset it was made with.
    void Assign(const TMyShape &source) override;
    void AssignWithoutRelation(const TMyShape &source) override;
    // Segments, arrow heads, info text; also sets Angle to the first segment's direction.
    void Draw(TCanvas &canvas) override;
    // The first segment's length in the host's unit, stored as Info; only for plain lines
    // and measuring lines, empty for every other line class.
    QString GetInfo() const override;
    std::int32_t InWhichHot(TPoint point) override;
    bool IsClickedMe(TCanvas &canvas, TPoint point) override;
    std::int32_t HitReach() const override;

    // One filled head whose tip is at tip (pulled back by ArrowOffset) and which opens
    // towards toward; zoomed values.
    void DrawTriangle(TCanvas &canvas, TMyPoint tip, TMyPoint toward);
    // The segment hit test that also tells where a new point would be inserted: the index
    // after the hit segment, or -1 when nothing is hit.
    bool IsClickedMeBeforeWhichPoint(std::int32_t &pointIndex, TPoint point) const;
    // Whether the rounded screen segment a-b is hit at p with the fixed 8-pixel band.
    static bool SegmentHit(TPoint a, TPoint b, TPoint p);

    // Looks through the host's shapes, in list order, for the first plain line or polyline
    // other than this one whose first or last point handle contains point (screen), and
    // stores its ShapeId and point number in the start (atStart) or end merge fields, or -1
    // and -1. Answers whether one was found.
    bool LookUpMergeShape(bool atStart, TMyPoint point);

    std::int32_t ArrowAngle() const { return m_ArrowAngle; }
    void SetArrowAngle(std::int32_t angle) { m_ArrowAngle = angle; }
    std::uint8_t ArrowLength() const { return m_ArrowLength; }
    void SetArrowLength(std::uint8_t length) { m_ArrowLength = length; }
    std::uint8_t ArrowOffset() const { return m_ArrowOffset; }
    void SetArrowOffset(std::uint8_t offset) { m_ArrowOffset = offset; }
    TArrowStyle ArrowStyle() const { return m_ArrowStyle; }
    void SetArrowStyle(TArrowStyle style) { m_ArrowStyle = style; }

    // Where the ends were dropped: ShapeId and point number of another line's end, or -1.
    // Filled by the merge look-up, read by the surface when it joins lines; not stored.
    std::int32_t StartMergeShapeId() const { return m_StartMergeShapeId; }
    std::int32_t StartMergePointNo() const { return m_StartMergePointNo; }
    std::int32_t EndMergeShapeId() const { return m_EndMergeShapeId; }
    std::int32_t EndMergePointNo() const { return m_EndMergePointNo; }
    void SetStartMerge(std::int32_t shapeId, std::int32_t pointNo);
    void SetEndMerge(std::int32_t shapeId, std::int32_t pointNo);

protected:
    // Copies the arrow fields of another line (not the offset).
    void CopyArrowFields(const TMyShape &source);
    // The chain's segments, zoomed and rounded, each end moved by the given offsets.
    void DrawSegments(TCanvas &canvas, TPoint offset) const;

private:
    std::int32_t m_ArrowAngle;
    std::uint8_t m_ArrowLength;
    std::uint8_t m_ArrowOffset;
    TArrowStyle m_ArrowStyle;
    std::int32_t m_StartMergeShapeId = -1;
    std::int32_t m_StartMergePointNo = -1;
    std::int32_t m_EndMergeShapeId = -1;
    std::int32_t m_EndMergePointNo = -1;
};

} // namespace tessal
