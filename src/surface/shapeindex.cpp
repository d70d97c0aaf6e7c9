// SPDX-License-Identifier: MIT
// Which shapes a repaint rectangle needs: the extent of a shape and the spatial index.
#include <tessal/surface/cad.h>
#include <tessal/surface/mouse_p.h>
#include <tessal/surface/spatialindex_p.h>

#include <tessal/shapes/arc.h>
#include <tessal/shapes/line.h>
#include <tessal/shapes/link.h>
#include <tessal/shapes/shape.h>
#include <tessal/shapes/shapekind.h>
#include <tessal/shapes/text.h>

#include <algorithm>
#include <cmath>
#include <optional>

namespace tessal {

namespace {

// Up to this many shapes appended since the index was made are entered one by one.
constexpr std::int32_t AppendAtOnce = 1024;

// A scratch canvas for measuring info texts, made only when a shape has one.
class TTextMeasure
{
public:
    TCanvas &Canvas()
    {
        if (!m_Canvas) {
            m_Image = QImage(1, 1, QImage::Format_RGB32);
            m_Canvas.emplace(&m_Image);
        }
        return *m_Canvas;
    }

private:
    QImage m_Image;
    std::optional<TCanvas> m_Canvas;
};

class TExtentBuilder
{
public:
    TExtentBuilder(const TMyCAD &cad, TTextMeasure &measure)
        : m_Cad(cad)
        , m_Measure(measure)
    {}

    TShapeExtent Of(TMyShape *shape)
    {
        m_Extent = {};
        m_HitPoints = false;
        m_HitReach = 0;
        m_Unrouted.clear();
        Add(shape, 0);
        m_Extent.HitReach = m_HitPoints ? std::int16_t(m_HitReach) : std::int16_t(-1);
        return m_Extent;
    }

    // The hit reach of a shape whose extent follows the zoom in its reach alone: a line of
    // its own, with points.
    static std::int16_t ReachOf(const TMyShape &shape)
    {
        const std::int32_t reach = shape.HitReach();
        return std::int16_t(reach < 0 || reach > 1000 ? -1 : reach);
    }

    // The connectors of the last shape measured whose route is to be worked out on the
    // screen and was not yet: their routes are missing from its extent.
    const std::vector<const TMyLinkLine *> &Unrouted() const { return m_Unrouted; }

private:
    void Add(TMyShape *shape, std::int32_t depth);
    void AddDisplayRoute(const TMyLinkLine &link);
    void AddPoint(TMyPoint p);
    // A point the hit tests use; it is painted around as well.
    void AddHitPoint(TMyPoint p);
    void AddHitReach(std::int32_t reach);
    void AddInfoText(TMyShape *shape);
    void AddTextShapeLines(const TMyText &text);
    void AddPad(std::int32_t pad) { m_Extent.Pad = std::max(m_Extent.Pad, pad); }
    void Follows(TZoomRule rule) { m_Extent.Zoomed = std::max(m_Extent.Zoomed, rule); }

    const TMyCAD &m_Cad;
    TTextMeasure &m_Measure;
    TShapeExtent m_Extent;
    bool m_HitPoints = false;
    // -1 once a class does not say how far it is hit.
    std::int32_t m_HitReach = 0;
    // A builder measures every shape of a rebuild.
    TShapeKind<TMyElliArc> m_AsArc;
    TShapeKind<TMyLine> m_AsLine;
    TShapeKind<TMyText> m_AsText;
    TShapeKind<TMyLinkLine> m_AsLink;
    std::vector<const TMyLinkLine *> m_Unrouted;
};

// Grows box to take in p; the first point makes the box.
void TakeIn(TMyRect &box, bool &any, TMyPoint p)
{
    if (!any) {
        box = {p.X, p.Y, p.X, p.Y};
        any = true;
        return;
    }
    box.Left = std::min(box.Left, p.X);
    box.Top = std::min(box.Top, p.Y);
    box.Right = std::max(box.Right, p.X);
    box.Bottom = std::max(box.Bottom, p.Y);
}

void TExtentBuilder::AddPoint(TMyPoint p)
{
    TakeIn(m_Extent.Box, m_Extent.Indexed, p);
}

void TExtentBuilder::AddHitPoint(TMyPoint p)
{
    AddPoint(p);
    TakeIn(m_Extent.HitBox, m_HitPoints, p);
}

// Reaches far beyond a shape's points would only make presses slower than the paint
// extent does; such a class is treated as one that does not say.
void TExtentBuilder::AddHitReach(std::int32_t reach)
{
    if (m_HitReach < 0)
        return;
    m_HitReach = reach < 0 || reach > 1000 ? -1 : std::max(m_HitReach, reach);
}

// What a shape can paint: its points with the pen around them (a miter join reaches up to
// two pen widths out), arrow heads, link-point marks, and its info text; a group adds its
// members. Curves stay inside the polygon of their control points, so points suffice; an
// arc passes through its three points and bulges out between them, so its outline counts.
void TExtentBuilder::Add(TMyShape *shape, std::int32_t depth)
{
    if (!shape || depth > m_Cad.GetShapesCount())
        return;
    for (std::int32_t i = 0; i < shape->GetPointsCount(); ++i)
        AddHitPoint(shape->GetPoint(i));
    if (const TMyElliArc *arc = m_AsArc(shape)) {
        const double z = m_Cad.Zoom();
        for (const TMyPoint p : arc->OutlineInZoom())
            AddHitPoint({float(p.X / z), float(p.Y / z)});
        Follows(TZoomRule::Measure);
    }
    AddHitReach(shape->HitReach());
    AddPad(2 * std::max(shape->Pen().Width, 1) + 2);
    for (std::int32_t i = 0; i < shape->GetLinkPointsCount(); ++i)
        AddPoint(shape->GetLinkPoint(i));
    if (shape->GetLinkPointsCount() > 0)
        AddPad(4);
    if (const TMyLine *line = m_AsLine(shape)) {
        // A line among others would need the walk again to find the group's reach.
        Follows(depth == 0 && shape->ChildShapes().empty() ? TZoomRule::Reach : TZoomRule::Measure);
        if (line->ArrowStyle() != TArrowStyle::ANone) {
            // The zoomed side of a head is carried in a byte.
            AddPad(std::int32_t(std::uint8_t(std::nearbyint(m_Cad.Zoom() * line->ArrowLength()))) +
                   2);
            Follows(TZoomRule::Measure);
        }
    }
    if (const TMyLinkLine *link = m_AsLink(shape))
        AddDisplayRoute(*link);
    AddInfoText(shape);
    if (const TMyText *text = m_AsText(shape)) {
        AddTextShapeLines(*text);
        Follows(TZoomRule::Measure);
    }
    for (const std::int32_t no : shape->ChildShapes())
        Add(m_Cad.GetShapeByNo(no), depth + 1);
}

// A bound connector draws the route it shows, which need not be its points: the line
// between the live ends of the shapes it is bound to, or a route worked out on the screen
// while its points are out of date. Both follow the zoom.
void TExtentBuilder::AddDisplayRoute(const TMyLinkLine &link)
{
    if (link.StartSpNo() < 0 && link.EndSpNo() < 0)
        return;
    Follows(TZoomRule::Measure);
    const std::optional<std::vector<TMyPoint>> route = link.KnownDisplayRoute();
    if (!route) {
        m_Unrouted.push_back(&link);
        return;
    }
    const double z = m_Cad.Zoom();
    for (const TMyPoint p : *route)
        AddHitPoint({float(p.X / z), float(p.Y / z)});
}

// The text box is measured at the current zoom: text does not scale exactly with it.
void TExtentBuilder::AddInfoText(TMyShape *shape)
{
    if (!shape->CaptionShow() || (shape->Info().isEmpty() && shape->MultiInfo().isEmpty()))
        return;
    const double z = m_Cad.Zoom();
    TCanvas &canvas = m_Measure.Canvas();
    std::int32_t w = 0;
    std::int32_t h = 0;
    const QStringList lines =
        shape->Info().isEmpty() ? shape->MultiInfo() : QStringList{shape->Info()};
    for (const QString &line : lines) {
        const TPoint size = shape->GetTextWidthHeight(canvas, line, shape->Font(), z, 0);
        w = std::max(w, size.X);
        h += size.Y;
    }
    const double ax = std::nearbyint(shape->TextPoint().X * z);
    const double ay = std::nearbyint(shape->TextPoint().Y * z);
    const double left = std::nearbyint(ax - w / 2.0);
    const double top = std::nearbyint(ay - h / 2.0);
    AddPoint({float(left / z), float(top / z)});
    AddPoint({float((left + w) / z), float((top + h) / z)});
    AddPad(3);
    Follows(TZoomRule::Measure);
}

// A text shape's lines may run beyond its rectangle. Wherever the alignments put the block
// of lines, it stays within one block width and height of the upright rectangle, and the
// turn about the centre keeps it within the circle around that.
void TExtentBuilder::AddTextShapeLines(const TMyText &text)
{
    if (text.GetPointsCount() == 0)
        return;
    const double z = m_Cad.Zoom();
    TCanvas &canvas = m_Measure.Canvas();
    double w = 0;
    double h = 0;
    for (const QString &line : text.LaidOutLines(canvas)) {
        const TPoint size = text.GetTextWidthHeight(canvas, line, text.Font(), z, 0);
        w = std::max(w, double(size.X));
        h += size.Y;
    }
    const TMyPoint lt = text.GetLeftTop();
    const TMyPoint rb = text.GetRightBottom();
    const double cx = (lt.X + rb.X) / 2.0;
    const double cy = (lt.Y + rb.Y) / 2.0;
    double halfW = text.GetMyWidth() / 2.0 + w / z;
    double halfH = text.GetMyHeight() / 2.0 + h / z;
    if (text.Angle() != 0)
        halfW = halfH = std::hypot(halfW, halfH);
    AddPoint({float(cx - halfW), float(cy - halfH)});
    AddPoint({float(cx + halfW), float(cy + halfH)});
    AddPad(3);
}

// The visible layers of a query, for look-ups by ID without walking the table each time.
std::vector<std::int32_t> VisibleLayerIds(const std::vector<TLayer> &layers)
{
    std::vector<std::int32_t> ids;
    for (const TLayer &layer : layers)
        if (layer.Visible)
            ids.push_back(layer.Id);
    std::sort(ids.begin(), ids.end());
    return ids;
}

bool Contains(const std::vector<std::int32_t> &sorted, std::int32_t id)
{
    return std::binary_search(sorted.begin(), sorted.end(), id);
}

// A zoom change keeps the tree: only the extents that follow the zoom are worked out again,
// and those whose box moved are replaced in the tree. When many move, the index is marked
// stale: a rebuild is cheaper then, and makes a tighter tree.
void FollowZoom(TShapeIndex &index, TExtentBuilder &builder,
                const std::vector<std::unique_ptr<TMyShape>> &shapes,
                std::vector<std::int32_t> &unrouted)
{
    std::int32_t moved = 0;
    const std::int32_t count = index.Count();
    for (std::int32_t no = 0; no < count; ++no) {
        // The shapes, and then their points, lie apart in memory: those further on that follow
        // the zoom are asked for while this one is worked out.
        if (no + 16 < count && index.Entry(no + 16).Extent.Zoomed != TZoomRule::Fixed)
            __builtin_prefetch(shapes[std::size_t(no + 16)].get());
        if (no + 8 < count && index.Entry(no + 8).Extent.Zoomed != TZoomRule::Fixed)
            __builtin_prefetch(shapes[std::size_t(no + 8)]->Points().data());
        const TShapeIndex::TEntry &entry = index.Entry(no);
        TShapeExtent extent = entry.Extent;
        if (extent.Zoomed == TZoomRule::Reach) {
            extent.HitReach = TExtentBuilder::ReachOf(*entry.Shape);
            index.SetExtentInPlace(no, extent);
            continue;
        }
        if (extent.Zoomed != TZoomRule::Measure)
            continue;
        TMyShape *shape = shapes[std::size_t(no)].get();
        extent = builder.Of(shape);
        extent.Indexed = extent.Indexed && shape->ParentNo() == -1;
        if (!builder.Unrouted().empty())
            unrouted.push_back(no);
        const TShapeExtent &old = entry.Extent;
        if (extent.Box == old.Box && extent.Pad == old.Pad && extent.Indexed == old.Indexed) {
            index.SetExtentInPlace(no, extent);
        } else if (++moved > count / 4) {
            index.MarkStale();
            return;
        } else {
            index.Replace(no, extent);
        }
    }
}

// The extent of a tree with the routes of its connectors that are worked out on the screen:
// those the builder found missing are searched for (which asks the index, so it must answer
// by then) and the tree is measured again.
TShapeExtent MeasureRouted(TExtentBuilder &builder, TMyShape *shape)
{
    TShapeExtent extent = builder.Of(shape);
    if (builder.Unrouted().empty())
        return extent;
    const std::vector<const TMyLinkLine *> unrouted = builder.Unrouted();
    for (const TMyLinkLine *link : unrouted)
        link->DisplayRoute();
    return builder.Of(shape);
}

// Entries whose trees hold such connectors, measured again once the index stands.
void MeasureScreenRoutes(TShapeIndex &index, TExtentBuilder &builder,
                         const std::vector<std::unique_ptr<TMyShape>> &shapes,
                         const std::vector<std::int32_t> &numbers)
{
    for (const std::int32_t no : numbers) {
        if (index.IsStale() || no >= index.Count())
            return;
        TMyShape *shape = shapes[std::size_t(no)].get();
        TShapeExtent extent = MeasureRouted(builder, shape);
        extent.Indexed = extent.Indexed && shape->ParentNo() == -1;
        index.Replace(no, extent);
    }
}

} // namespace

// The rule of a repaint: a shape is drawn when it is not a group member, its layer is
// visible, and the pixels it can paint meet rect. (A vertex inside rect, or a box around
// rect, are both cases of the last condition; testing the extent itself also catches an
// outline that crosses rect with no vertex inside it.)
std::vector<std::int32_t> TMyCAD::ShapesInRectLinear(const TRect &rect) const
{
    return ShapesInRectsLinear({&rect, 1}).front();
}

std::vector<std::vector<std::int32_t>>
TMyCAD::ShapesInRectsLinear(std::span<const TRect> rects) const
{
    std::vector<std::vector<std::int32_t>> numbers(rects.size());
    const std::vector<std::int32_t> layers = VisibleLayerIds(m_Layers);
    TTextMeasure measure;
    TExtentBuilder builder(*this, measure);
    for (std::int32_t no = 0; no < GetShapesCount(); ++no) {
        TMyShape *shape = m_Shapes[std::size_t(no)].get();
        if (shape->ParentNo() != -1 || !Contains(layers, shape->LayerId()))
            continue;
        const TShapeExtent extent = builder.Of(shape);
        if (!extent.Indexed)
            continue;
        const TRect screen = extent.ScreenRect(m_Zoom);
        for (std::size_t r = 0; r < rects.size(); ++r)
            if (!rects[r].IsEmpty() && screen.Intersects(rects[r]))
                numbers[r].push_back(no);
    }
    return numbers;
}

// Sorted: the callers then visit the entries in the order they are stored, and the shapes
// mostly in the order they were made, which matters when the answer holds tens of thousands
// of them.
std::vector<std::int32_t> TMyCAD::IndexedShapesNear(const TRect &rect)
{
    std::vector<std::int32_t> numbers;
    if (rect.IsEmpty())
        return numbers;
    EnsureIndex();
    m_Index->Query(m_Index->QueryBox(rect), numbers);
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

std::vector<std::int32_t> TMyCAD::ShapesInRect(const TRect &rect)
{
    std::vector<std::int32_t> numbers = IndexedShapesNear(rect);
    if (numbers.empty())
        return numbers;
    const double z = m_Zoom;
    const std::vector<std::int32_t> layers = VisibleLayerIds(m_Layers);
    std::erase_if(numbers, [&](std::int32_t no) {
        const TShapeIndex::TEntry &entry = m_Index->Entry(no);
        const TMyShape *shape = m_Shapes[std::size_t(no)].get();
        return shape->ParentNo() != -1 || !Contains(layers, shape->LayerId()) ||
               !entry.Extent.ScreenRect(z).Intersects(rect);
    });
    return numbers;
}

std::vector<std::int32_t> TMyCAD::TreesOf(const std::vector<std::int32_t> &roots) const
{
    std::vector<std::int32_t> numbers;
    for (const std::int32_t root : roots)
        ForTree(*this, GetShapeByNo(root),
                [&](const TMyShape *shape) { numbers.push_back(GetShapeNoInMyShapes(shape)); });
    std::sort(numbers.begin(), numbers.end());
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    return numbers;
}

// The index is a cache of the list: bringing it up to date changes nothing this const call
// promises.
std::vector<std::int32_t> TMyCAD::ShapesIn(const TMyRect &box) const
{
    return TreesOf(const_cast<TMyCAD *>(this)->IndexedShapesNear(
        ControlRectHolding(box.Left, box.Top, box.Right, box.Bottom)));
}

void TMyCAD::BeginPressCandidates(TPoint at, TPressCursor &cursor)
{
    EnsureIndex();
    m_Index->BeginPress(at, cursor);
}

bool TMyCAD::IsShownTopLevel(const TMyShape *shape) const
{
    return shape->ParentNo() == -1 && IsVisibleLayerByID(shape->LayerId());
}

TRect TMyCAD::ShapeScreenRect(TMyShape *shape) const
{
    if (!shape)
        return {};
    TTextMeasure measure;
    const TShapeExtent extent = TExtentBuilder(*this, measure).Of(GetRootParentShape(shape));
    return extent.Indexed ? extent.ScreenRect(m_Zoom) : TRect{};
}

// A rebuild is due after a reported document change, a change of the list that was not
// reported (a shape that is not at its indexed number) or a zoom too far from the tree's; a
// nearer zoom works out again only the extents that follow it. Shapes appended since the last
// query are added one by one.
void TMyCAD::EnsureIndex()
{
    if (!m_Index)
        m_Index = std::make_unique<TShapeIndex>();
    TTextMeasure measure;
    TExtentBuilder builder(*this, measure);
    TShapeKind<TMyLineLinkLine> isConnector;
    const std::int32_t count = GetShapesCount();
    // Every change of the list other than an append marks the index stale where it is made
    // (ShapesRenumbered), so a query does not compare the whole list with the index: only
    // the last indexed place is checked, which catches a list cut short and refilled.
    const auto sameList = [&] {
        const std::int32_t last = m_Index->Count() - 1;
        return last < 0 || m_Index->Entry(last).Shape == m_Shapes[std::size_t(last)].get();
    };
    // Connector routes worked out on the screen search the index, so they are measured last.
    std::vector<std::int32_t> unrouted;
    if (!m_Index->IsStale() && m_Index->Zoom() != m_Zoom && m_Index->Count() <= count &&
        sameList() && m_Index->KeepTreeAtZoom(m_Zoom))
        FollowZoom(*m_Index, builder, m_Shapes, unrouted);
    // Shapes entered one by one cost the tree several times what packing them all does:
    // when more shapes are new than were indexed (a big paste, a deletion taken back), the
    // whole index is made again.
    const std::int32_t fresh = count - m_Index->Count();
    const bool fewFresh = fresh <= AppendAtOnce || fresh <= m_Index->Count();
    if (!m_Index->IsStale() && m_Index->Zoom() == m_Zoom && m_Index->Count() <= count && fewFresh &&
        sameList()) {
        for (std::int32_t no = m_Index->Count(); no < count; ++no) {
            TMyShape *shape = m_Shapes[std::size_t(no)].get();
            TShapeExtent extent = builder.Of(shape);
            extent.Indexed = extent.Indexed && shape->ParentNo() == -1;
            if (!builder.Unrouted().empty())
                unrouted.push_back(no);
            m_Index->Append({shape, extent, isConnector(shape) != nullptr});
        }
        MeasureScreenRoutes(*m_Index, builder, m_Shapes, unrouted);
        return;
    }
    unrouted.clear();
    std::vector<TShapeIndex::TEntry> entries(static_cast<std::size_t>(count));
    for (std::int32_t no = 0; no < count; ++no) {
        // The shapes, and then their points, lie apart in memory: those further on are asked
        // for while this one is measured.
        if (no + 16 < count)
            __builtin_prefetch(m_Shapes[std::size_t(no + 16)].get());
        if (no + 8 < count)
            __builtin_prefetch(m_Shapes[std::size_t(no + 8)]->Points().data());
        TMyShape *shape = m_Shapes[std::size_t(no)].get();
        entries[std::size_t(no)].Shape = shape;
        // A member's entry is known as a connector too, for when its group is removed.
        entries[std::size_t(no)].Connector = isConnector(shape) != nullptr;
        if (shape->ParentNo() == -1) {
            entries[std::size_t(no)].Extent = builder.Of(shape);
            if (!builder.Unrouted().empty())
                unrouted.push_back(no);
        }
    }
    m_Index->Rebuild(std::move(entries), m_Zoom);
    MeasureScreenRoutes(*m_Index, builder, m_Shapes, unrouted);
}

void TMyCAD::ShapeGeometryChanged(TMyShape *shape)
{
    if (!shape || !m_Index || m_Index->IsStale())
        return;
    // Code that sets a property of every shape of a big drawing reports each one.
    if (m_Index->ChangesSinceRebuild() > std::max<std::int64_t>(4096, m_Index->Count() / 64)) {
        m_Index->MarkStale();
        return;
    }
    TMyShape *root = GetRootParentShape(shape);
    const std::int32_t no = m_Index->NumberOf(root);
    if (no < 0) {
        // Not indexed yet: appended shapes are picked up by the next query.
        return;
    }
    if (no >= GetShapesCount() || m_Shapes[std::size_t(no)].get() != root ||
        root->ParentNo() != -1) {
        m_Index->MarkStale();
        return;
    }
    TTextMeasure measure;
    TExtentBuilder builder(*this, measure);
    const TShapeExtent extent = MeasureRouted(builder, root);
    if (m_Index->IsStale())
        return;
    m_Index->Replace(no, extent);
    // The connectors it lists show routes between live ends, which move with it.
    for (const std::int32_t k : root->LinkShapes()) {
        TMyShape *link = GetShapeByNo(k);
        if (link && link != root && link->ParentNo() == -1 && !m_Index->IsStale() &&
            k < m_Index->Count() && m_Index->Entry(k).Shape == link)
            m_Index->Replace(k, MeasureRouted(builder, link));
    }
}

// The shape became a member: it leaves the index, and its new group is measured again.
void TMyCAD::ShapeJoinedGroup(TMyShape *member)
{
    if (!m_Index || m_Index->IsStale())
        return;
    if (const std::int32_t no = m_Index->NumberOf(member); no >= 0)
        m_Index->Replace(no, TShapeExtent{});
    ShapeGeometryChanged(member);
}

void TMyCAD::ShapesRenumbered()
{
    ForgetPlaces();
    if (m_Index)
        m_Index->MarkStale();
}

} // namespace tessal
