// SPDX-License-Identifier: MIT
// Connectors (TMyLinkLine) and connection-point markers (TMyLinkPoint, TMyLineLinkLine).
#pragma once

#include <tessal/shapes/line.h>
#include <tessal/shapes/rectangle.h>
#include <tessal/shapes/routing.h>

#include <optional>
#include <vector>

namespace tessal {

// A line whose start and end can each be bound to one link point of one shape. The bound
// shapes are held by shape number (list position) and renumbered by the surface; a bound
// end reads its position from the link point and never stores it.
//
// The stored points are the route: for lldsHV an orthogonal chain computed by the host
// (GetPath), for lldsFree the two ends. Binding, a change of style and the host's
// ChangeLinkShapes store a new route; drawing always starts and ends at the live link
// points, and draws a freshly computed route when the stored one no longer meets them.
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
    // The class's part of the stored record, after its parent's.
    void SaveToStream(BinaryStream &stream) const override;
    void LoadFromStream(BinaryStream &stream) override;

    void Assign(const TMyShape &source) override;
    void AssignWithoutRelation(const TMyShape &source) override;

    // ---- Binding ----
    // Binds the start (end) to link point linkPointIndex of the shape with identity shapeId:
    // the connector leaves the connector list of the shape it was bound to and joins the new
    // one's, the route is recomputed and the host repaints. False, changing nothing, for an
    // unknown shape or an index outside its link points.
    bool CreateSrcLink(std::int32_t shapeId, std::int32_t linkPointIndex);
    bool CreateDestLink(std::int32_t shapeId, std::int32_t linkPointIndex);
    // Sets the end free. The connector stays in the former shape's connector list: callers
    // that need the list clean remove it themselves.
    void RemoveSrcLink();
    void RemoveDestLink();
    void RemoveAllLink();
    // The bound shape, nullptr for a free end.
    TMyShape *GetStartShape() const;
    TMyShape *GetEndShape() const;
    // Screen positions of the ends: the bound link point, else the own first (last) point;
    // (0, 0) for a free end of a connector without points.
    TMyPoint GetStartPoint() const;
    TMyPoint GetEndPoint() const;

    // Plain setters, for renumbering and for the mouse binding an end.
    std::int32_t StartSpNo() const { return m_StartSpNo; }
    void SetStartSpNo(std::int32_t no) { m_StartSpNo = no; }
    std::int32_t StartSpPtId() const { return m_StartSpPtId; }
    void SetStartSpPtId(std::int32_t id) { m_StartSpPtId = id; }
    std::int32_t EndSpNo() const { return m_EndSpNo; }
    void SetEndSpNo(std::int32_t no) { m_EndSpNo = no; }
    std::int32_t EndSpPtId() const { return m_EndSpPtId; }
    void SetEndSpPtId(std::int32_t id) { m_EndSpPtId = id; }

    // 1 when the segment a-b counts as horizontal (|dx| >= |dy|, so ties too), else 2.
    static std::int32_t IsLineHV(TMyPoint a, TMyPoint b);

    TLinkLineDrawStyle LinkLineDrawStyle() const { return m_LinkLineDrawStyle; }
    // Going free keeps only the first point and the former last point; going orthogonal
    // computes the route at once when there are two points to route between (while a
    // drawing is being read, only on the next drawing).
    void SetLinkLineDrawStyle(TLinkLineDrawStyle style);

    // Whether the stored route must be recomputed before it is drawn.
    bool NeedsReroute() const { return m_Reroute; }
    void SetNeedsReroute(bool on) { m_Reroute = on; }

    // ---- Routing ----
    // The route from start to end (screen) as the host computes it (TShapeHost::GetPath).
    std::vector<TMyPoint> GetPath(TMyPoint start, TMyPoint end) const;
    // The connector's own share of that computation: the two ends with the boxes and magic
    // points of the shapes they are bound to, routed around obstacles (screen boxes that the
    // host finds by area; none without a finder). lldsFree answers start and end.
    std::vector<TMyPoint> ComputeRoute(TMyPoint start, TMyPoint end,
                                       const TObstacleFinder &obstacles) const;
    // Stores the host's route between the live ends as the points, moves the caption anchor
    // to the middle of the route and clears the re-route flag. Nothing while a free end has
    // no point of its own to start from.
    void UpdateRoute();
    // Merges collinear points of the stored route.
    void MergePoints();
    // The screen points drawing uses: the stored route while it meets the live ends, else
    // a route computed now (not stored).
    std::vector<TMyPoint> DisplayRoute() const;
    // The same when no route search is due for it: the stored route, the free line between
    // the live ends, or the route last computed for these ends at this zoom.
    std::optional<std::vector<TMyPoint>> KnownDisplayRoute() const;
    // The route in document units: the stored points, exactly, while they start and end at
    // the live ends; else, when a bound shape moved by code and nothing has let the
    // connector follow yet, the route drawing shows, divided by the zoom.
    std::vector<TMyPoint> RouteInDocument() const;

    // ---- Drawing and editing ----
    // Segments (hopping over earlier connectors where an lldsHV route crosses them),
    // corners, arrow heads at the live ends, end dots, info text.
    void Draw(TCanvas &canvas) override;
    // An lldsHV connector shows handles at its two ends only (the route between is the
    // host's) and the middle mark; lldsFree shows the line's handles.
    void DrawHot(TCanvas &canvas) override;
    std::int32_t InWhichHot(TPoint point) override;
    // Moving an end re-routes.
    void SizeChangeValue(TMyPoint from, TMyPoint to) override;
    // A connector drawn with the mouse is routed once it is finished.
    void Drawed(TPoint from, TPoint &to) override;

    // Decorations (screen points, current canvas set-up):
    // The join at a route corner: a square of the pen's width, needed only where wide
    // flat-capped segments leave a notch at the outer corner.
    void DrawCorner(TCanvas &canvas, TMyPoint corner);
    // A hop of radius HopRadius over a crossing at centre: the upper half circle for a
    // horizontal segment, the left half circle for a vertical one.
    void DrawHalfCircle(TCanvas &canvas, TMyPoint centre, bool horizontal);
    // The mark at the middle of an lldsHV route while the connector is selected: a small
    // hollow circle showing that the route between the end handles is computed.
    void DrawCenter(TCanvas &canvas);
    // A filled dot of EndDotSize at a bound end that carries no arrow head.
    void DrawStartEnd(TCanvas &canvas, TMyPoint end);

    static constexpr std::int32_t HopRadius = 4;
    static constexpr std::int32_t EndDotSize = 5;

private:
    void CopyLinkFields(const TMyShape &source);
    // The stored route starts and ends at the live ends, to the pixel.
    bool StoredRouteMeetsEnds() const;
    // Binding shared by the start and the end.
    bool Bind(std::int32_t &shapeNo, std::int32_t &pointId, std::int32_t shapeId,
              std::int32_t linkPointIndex);
    TMyPoint EndPosition(std::int32_t shapeNo, std::int32_t pointId, bool atStart) const;
    TRouteEnd RouteEndAt(TMyPoint at, std::int32_t shapeNo) const;
    // The point at half the length of a screen route.
    static TMyPoint Middle(const std::vector<TMyPoint> &route);
    void DrawRoute(TCanvas &canvas, const std::vector<TMyPoint> &route);
    // Where this connector's horizontal segment a-b crosses vertical segments of lldsHV
    // connectors earlier in the list (screen x values, sorted).
    std::vector<float> Crossings(TMyPoint a, TMyPoint b) const;
    void DrawHorizontalWithHops(TCanvas &canvas, TMyPoint a, TMyPoint b);
    void DrawArrows(TCanvas &canvas, const std::vector<TMyPoint> &route);

    std::int32_t m_StartSpNo = -1;
    std::int32_t m_StartSpPtId = -1;
    std::int32_t m_EndSpNo = -1;
    std::int32_t m_EndSpPtId = -1;
    TLinkLineDrawStyle m_LinkLineDrawStyle;
    bool m_Reroute = true;
    // The last route computed for drawing while the stored one was out of date, with the
    // ends and zoom it was computed for: repaints reuse it instead of searching again.
    struct TRouteCache
    {
        TMyPoint Start, End;
        double Zoom = 0;
        std::vector<TMyPoint> Route;
    };
    mutable TRouteCache m_DisplayCache;
};

// A small cross marking a place where connectors attach. Size is the side of its square in
// screen pixels at the zoom it was placed at (the marker then scales with the drawing). Its
// one link point is its centre.
class TMyLinkPoint : public TMyRectangle
{
    Q_GADGET
    Q_PROPERTY(std::uint8_t Size READ Size WRITE SetSize)

public:
    explicit TMyLinkPoint(TShapeHost *host);

    const QMetaObject *MetaObject() const override { return &staticMetaObject; }
    QString ClassName() const override { return QStringLiteral("TMyLinkPoint"); }
    // The class's part of the stored record, after its parent's.
    void SaveToStream(BinaryStream &stream) const override;
    void LoadFromStream(BinaryStream &stream) override;

    void Assign(const TMyShape &source) override;
    void AssignWithoutRelation(const TMyShape &source) override;

    // One click places the whole marker: the square of side Size centred on the click
    // (corners in the rectangle's order) and the link point at the click. Further clicks
    // add nothing.
    void AddPointByMouse(TPoint point) override;
    // The two diagonals (corner 0 to 2, 1 to 3) in the shape's pen, ends rounded to pixels.
    void Draw(TCanvas &canvas) override;
    // Ends a mouse drawing; a marker without a link point gets its centre one.
    void Drawed(TPoint from, TPoint &to) override;

    std::uint8_t Size() const { return m_Size; }
    void SetSize(std::uint8_t size) { m_Size = size; }

    // Gives a marker whose corners were set directly (by code) its link point at the centre
    // unless it already has one, so it never gets a second. The centre must be up to date.
    void EnsureLinkPoint();

private:
    std::uint8_t m_Size = 8;
};

// A junction: a link point placed on connectors, where one connector ends on another.
// Placed like TMyLinkPoint; drawn as a ring of diameter Size with a filled dot of half that
// diameter inside (the ring's radius is twice the dot's). Routes treat it as a point: no
// magic point and no box to go round.
class TMyLineLinkLine : public TMyLinkPoint
{
    Q_GADGET

public:
    using TMyLinkPoint::TMyLinkPoint;

    const QMetaObject *MetaObject() const override { return &staticMetaObject; }
    QString ClassName() const override { return QStringLiteral("TMyLineLinkLine"); }

    void Draw(TCanvas &canvas) override;

    // Outer ring diameter / inner dot diameter.
    static constexpr std::int32_t InnerRatio = 2;
};

} // namespace tessal
