// SPDX-License-Identifier: MIT
// Making shapes: by class name, by drawing tool, and drawn by code from points or a box.
#include <tessal/surface/cad.h>
#include <tessal/surface/pointrule_p.h>

#include <tessal/geometry/bitmapops.h>
#include <tessal/shapes/image.h>
#include <tessal/shapes/link.h>
#include <tessal/shapes/shape.h>
#include <tessal/shapes/shapefactory.h>
#include <tessal/shapes/text.h>

#include <cmath>
#include <numbers>
#include <optional>

namespace tessal {

std::optional<TPointRule> PointRuleOf(TDrawTool tool)
{
    switch (tool) {
    case TDrawTool::SpRectangle:
    case TDrawTool::SpEllipse:
    case TDrawTool::SpText:
    case TDrawTool::SpImage:
    case TDrawTool::SpLinkPoint:
    case TDrawTool::SpLineLinkLine:
        return TPointRule::Box;
    case TDrawTool::SpLine:
    case TDrawTool::SpRuleLine:
    case TDrawTool::SpLinkLine:
    case TDrawTool::SpPolyLine:
    case TDrawTool::SpFreeLine:
    case TDrawTool::SpBLine:
        return TPointRule::Chain;
    case TDrawTool::SpElliArc:
        return TPointRule::Arc;
    case TDrawTool::SpPolyBezier:
        return TPointRule::Bezier;
    case TDrawTool::SpPolygon:
        return TPointRule::Polygon;
    default:
        return std::nullopt;
    }
}

namespace {

// The rectangle classes keep their corners in drawing order: the first corner, the one
// level with it, the opposite one, the one below the first.
TMyPointArray BoxCorners(TMyPoint p, TMyPoint q)
{
    return {p, {q.X, p.Y}, q, {p.X, q.Y}};
}

std::optional<TMyPointArray> PointsForRule(TPointRule rule, std::span<const TMyPoint> in)
{
    const std::size_t n = in.size();
    switch (rule) {
    case TPointRule::Box:
        if (n == 2)
            return BoxCorners(in[0], in[1]);
        if (n == 4)
            return TMyPointArray(in.begin(), in.end());
        return std::nullopt;
    case TPointRule::Chain:
        if (n < 2)
            return std::nullopt;
        return TMyPointArray(in.begin(), in.end());
    case TPointRule::Bezier:
        if (n < 4 || (n - 1) % 3 != 0)
            return std::nullopt;
        return TMyPointArray(in.begin(), in.end());
    case TPointRule::Arc:
        // Start, a point the arc passes through, end.
        if (n != 3)
            return std::nullopt;
        return TMyPointArray(in.begin(), in.end());
    case TPointRule::Polygon: {
        if (n < 3)
            return std::nullopt;
        TMyPointArray points(in.begin(), in.end());
        if (points.back() != points.front())
            points.push_back(points.front());
        return points;
    }
    }
    return std::nullopt;
}

// count points on the ellipse inscribed in the box, clockwise on screen from its top.
TMyPointArray EllipsePoints(TMyPoint leftTop, double w, double h, std::int32_t count)
{
    const double cx = leftTop.X + w / 2;
    const double cy = leftTop.Y + h / 2;
    TMyPointArray points;
    for (std::int32_t i = 0; i < count; ++i) {
        const double a = -std::numbers::pi / 2 + 2 * std::numbers::pi * i / count;
        points.push_back({float(cx + w / 2 * std::cos(a)), float(cy + h / 2 * std::sin(a))});
    }
    return points;
}

// count cubic pieces across the box: the joins on its middle line, each piece's first
// control point on the top edge and its second on the bottom edge.
TMyPointArray BezierWave(TMyPoint leftTop, double w, double h, std::int32_t count)
{
    const std::int32_t n = 3 * count;
    TMyPointArray points;
    for (std::int32_t i = 0; i <= n; ++i) {
        const double y = i % 3 == 0 ? h / 2 : (i % 3 == 1 ? 0 : h);
        points.push_back({float(leftTop.X + w * i / n), float(leftTop.Y + y)});
    }
    return points;
}

void PlacePoints(TMyShape &shape, TMyPointArray points, TPointRule rule)
{
    shape.Points() = std::move(points);
    const TMyPoint centre = shape.ComputeCenterPoint(4);
    shape.SetCenterPoint(centre);
    if (rule == TPointRule::Box)
        shape.SetTextPoint({centre.X, shape.GetLeftBottom().Y + 10});
    else
        shape.SetTextPoint(centre);
}

// A marker drawn with the mouse gets its link point with its corners; one made from given
// corners gets it here, so that connectors can attach to it.
void GiveMarkerItsLinkPoint(TMyShape &shape)
{
    if (auto *marker = dynamic_cast<TMyLinkPoint *>(&shape))
        marker->EnsureLinkPoint();
}

} // namespace

std::unique_ptr<TMyShape> TMyCAD::CreateShapeByName(const QString &className, TShapeHost *owner)
{
    return CreateShapeOfClass(className, owner ? owner : this);
}

std::unique_ptr<TMyShape> TMyCAD::CreateShapeBySpTool(TDrawTool tool, TShapeHost *owner)
{
    return CreateShapeForTool(tool, owner ? owner : this);
}

TMyShape *TMyCAD::CreateAddShapeByName(const QString &className, const TMyShape *source)
{
    std::unique_ptr<TMyShape> shape = CreateShapeByName(className);
    if (!shape)
        return nullptr;
    if (source) {
        shape->Assign(*source);
        GiveMarkerItsLinkPoint(*shape);
    }
    const QString name = QStringLiteral("Shape") + QString::number(m_ShapeIdCounter);
    shape->SetShapeNo(GetShapesCount());
    shape->SetShapeId(m_ShapeIdCounter);
    shape->SetName(name);
    shape->SetCaption(name);
    if (!AddShape(shape.get(), false, false))
        return nullptr;
    Invalidate();
    return shape.release();
}

std::int32_t TMyCAD::FinishShapeByCode(std::unique_ptr<TMyShape> shape, const QString &caption,
                                       double angle)
{
    const std::int32_t id = m_ShapeIdCounter;
    shape->SetShapeNo(GetShapesCount());
    shape->SetShapeId(id);
    shape->SetName(QStringLiteral("Shape") + QString::number(id));
    shape->SetAngle(float(angle));
    shape->SetCaption(caption);
    TMyShape *added = shape.get();
    if (!AddShape(added, false, false))
        return -1;
    shape.release();
    TMyShape *const one[] = {added};
    PushtoUndoRedoShapeList(one, 0, ACT_ADD);
    // The only working shape, but not the current one: that is the shape under the mouse,
    // which snapping leaves out, and a shape made by code is not under it.
    m_WorkingShapes = {added};
    if (m_OnShapeAdded) {
        m_OnShapeAdded(this, added, GetShapesCount());
        // The handler may have changed anything.
        DocumentChanged();
    } else {
        // The index takes in appended shapes at its next query.
        Invalidate();
    }
    return id;
}

std::int32_t TMyCAD::AddShapeByCode(TDrawTool tool, const QString &caption,
                                    std::span<const TMyPoint> points, double angle,
                                    const QString &text)
{
    const std::optional<TPointRule> rule = PointRuleOf(tool);
    if (!rule)
        return -1;
    std::optional<TMyPointArray> shapePoints = PointsForRule(*rule, points);
    std::unique_ptr<TMyShape> shape = CreateShapeBySpTool(tool);
    if (!shapePoints || !shape)
        return -1;
    PlacePoints(*shape, std::move(*shapePoints), *rule);
    GiveMarkerItsLinkPoint(*shape);
    if (auto *textShape = dynamic_cast<TMyText *>(shape.get())) {
        textShape->SetInfo(text);
        textShape->SetLines(text.split(QLatin1Char('\n')));
    }
    return FinishShapeByCode(std::move(shape), caption, angle);
}

std::int32_t TMyCAD::AddShapeByCode2(TDrawTool tool, const QString &caption, TMyPoint point,
                                     std::int32_t width, std::int32_t height, std::int32_t count,
                                     double angle, const QString &text)
{
    const TMyPoint far{point.X + float(width), point.Y + float(height)};
    TMyPointArray points;
    switch (tool) {
    case TDrawTool::SpPolyLine:
    case TDrawTool::SpFreeLine:
    case TDrawTool::SpBLine:
        points = EllipsePoints(point, width, height, std::max(count, 2));
        break;
    case TDrawTool::SpPolygon:
        points = EllipsePoints(point, width, height, std::max(count, 3));
        break;
    case TDrawTool::SpPolyBezier:
        points = BezierWave(point, width, height, std::max(count, 1));
        break;
    default:
        points = {point, far};
        break;
    }
    return AddShapeByCode(tool, caption, points, angle, text);
}

std::int32_t TMyCAD::AddImageShapeByCode(const QString &file, TMyPoint point, const TBitmap &bitmap)
{
    TBitmap picture = file.isEmpty() ? TBitmap() : LoadGraphicsFile(file);
    if (picture.IsEmpty())
        picture = bitmap;
    if (picture.IsEmpty())
        return -1;
    auto image = std::make_unique<TMyImage>(this);
    image->SetBitmap(picture);
    const TMyPoint far{point.X + float(picture.Width()), point.Y + float(picture.Height())};
    PlacePoints(*image, BoxCorners(point, far), TPointRule::Box);
    return FinishShapeByCode(std::move(image), QString(), 0);
}

} // namespace tessal
