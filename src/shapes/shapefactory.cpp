// SPDX-License-Identifier: MIT
// The class factory: stored class names and drawing tools to shape classes.
#include <tessal/shapes/arc.h>
#include <tessal/shapes/curve.h>
#include <tessal/shapes/image.h>
#include <tessal/shapes/link.h>
#include <tessal/shapes/polyline.h>
#include <tessal/shapes/rectangle.h>
#include <tessal/shapes/ruleline.h>
#include <tessal/shapes/shapefactory.h>
#include <tessal/shapes/text.h>

#include <utility>

namespace tessal {

namespace {

using TMaker = std::unique_ptr<TMyShape> (*)(TShapeHost *);

template <typename T>
std::unique_ptr<TMyShape> Make(TShapeHost *host)
{
    return std::make_unique<T>(host);
}

// In the order in which the files' class names were introduced.
const std::pair<const char *, TMaker> Makers[] = {
    {"TMyRectangle", &Make<TMyRectangle>},
    {"TMyLinkPoint", &Make<TMyLinkPoint>},
    {"TMyLineLinkLine", &Make<TMyLineLinkLine>},
    {"TMyEllipse", &Make<TMyEllipse>},
    {"TMyLine", &Make<TMyLine>},
    {"TMyFreeLine", &Make<TMyFreeLine>},
    {"TMyRuleLine", &Make<TMyRuleLine>},
    {"TMyPolyLine", &Make<TMyPolyLine>},
    {"TMyPolygon", &Make<TMyPolygon>},
    {"TMyPolyBezier", &Make<TMyPolyBezier>},
    {"TMyText", &Make<TMyText>},
    {"TMyImage", &Make<TMyImage>},
    {"TMyElliArc", &Make<TMyElliArc>},
    {"TMyLinkLine", &Make<TMyLinkLine>},
    {"TMyCombine", &Make<TMyCombine>},
    {"TMyGroup", &Make<TMyGroup>},
    {"TMyBLine", &Make<TMyBLine>},
};

} // namespace

std::unique_ptr<TMyShape> CreateShapeOfClass(const QString &className, TShapeHost *host)
{
    for (const auto &[name, make] : Makers)
        if (className == QLatin1String(name))
            return make(host);
    return nullptr;
}

const QStringList &ShapeClassNames()
{
    static const QStringList names = [] {
        QStringList list;
        for (const auto &entry : Makers)
            list << QString::fromLatin1(entry.first);
        return list;
    }();
    return names;
}

std::unique_ptr<TMyShape> CreateShapeForTool(TDrawTool tool, TShapeHost *host)
{
    switch (tool) {
    case TDrawTool::SpLinkLine:
        return Make<TMyLinkLine>(host);
    case TDrawTool::SpLine:
        return Make<TMyLine>(host);
    case TDrawTool::SpRuleLine:
        return Make<TMyRuleLine>(host);
    case TDrawTool::SpPolyLine:
        return Make<TMyPolyLine>(host);
    case TDrawTool::SpRectangle:
        return Make<TMyRectangle>(host);
    case TDrawTool::SpLinkPoint:
        return Make<TMyLinkPoint>(host);
    case TDrawTool::SpLineLinkLine:
        return Make<TMyLineLinkLine>(host);
    case TDrawTool::SpEllipse:
        return Make<TMyEllipse>(host);
    case TDrawTool::SpText:
        return Make<TMyText>(host);
    case TDrawTool::SpImage:
        return Make<TMyImage>(host);
    case TDrawTool::SpPolygon:
        return Make<TMyPolygon>(host);
    case TDrawTool::SpPolyBezier:
        return Make<TMyPolyBezier>(host);
    case TDrawTool::SpElliArc:
        return Make<TMyElliArc>(host);
    case TDrawTool::SpFreeLine:
        return Make<TMyFreeLine>(host);
    case TDrawTool::SpBLine:
        return Make<TMyBLine>(host);
    default:
        return nullptr;
    }
}

} // namespace tessal
