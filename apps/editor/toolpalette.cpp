// SPDX-License-Identifier: MIT
// Tool actions with small drawn icons.
#include "toolpalette.h"

#include <tessal/surface/cad.h>

#include <QAction>
#include <QActionGroup>
#include <QIcon>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

#include <array>

namespace tessal {

namespace {

struct TToolInfo
{
    const char *Name;
    const char *Tip;
};

// In TDrawTool order.
constexpr std::array<TToolInfo, TToolPalette::ToolCount> Tools{{
    {QT_TRANSLATE_NOOP("TToolPalette", "Connector"),
     QT_TRANSLATE_NOOP("TToolPalette", "Draw a connector between connection points")},
    {QT_TRANSLATE_NOOP("TToolPalette", "Select"),
     QT_TRANSLATE_NOOP("TToolPalette", "Select, move and resize shapes")},
    {QT_TRANSLATE_NOOP("TToolPalette", "Rotate"),
     QT_TRANSLATE_NOOP("TToolPalette", "Select and rotate shapes")},
    {QT_TRANSLATE_NOOP("TToolPalette", "Line"),
     QT_TRANSLATE_NOOP("TToolPalette", "Draw a straight line")},
    {QT_TRANSLATE_NOOP("TToolPalette", "Measuring line"),
     QT_TRANSLATE_NOOP("TToolPalette", "Draw a measuring line")},
    {QT_TRANSLATE_NOOP("TToolPalette", "Polyline"),
     QT_TRANSLATE_NOOP("TToolPalette", "Draw a polyline; double-click ends it")},
    {QT_TRANSLATE_NOOP("TToolPalette", "Rectangle"),
     QT_TRANSLATE_NOOP("TToolPalette", "Draw a rectangle")},
    {QT_TRANSLATE_NOOP("TToolPalette", "Connection point"),
     QT_TRANSLATE_NOOP("TToolPalette", "Place a connection point")},
    {QT_TRANSLATE_NOOP("TToolPalette", "Line connector"),
     QT_TRANSLATE_NOOP("TToolPalette", "Draw a line that joins two line ends")},
    {QT_TRANSLATE_NOOP("TToolPalette", "Ellipse"),
     QT_TRANSLATE_NOOP("TToolPalette", "Draw an ellipse")},
    {QT_TRANSLATE_NOOP("TToolPalette", "Text"),
     QT_TRANSLATE_NOOP("TToolPalette", "Draw a text box")},
    {QT_TRANSLATE_NOOP("TToolPalette", "Image"),
     QT_TRANSLATE_NOOP("TToolPalette", "Draw a picture frame and choose its picture")},
    {QT_TRANSLATE_NOOP("TToolPalette", "Polygon"),
     QT_TRANSLATE_NOOP("TToolPalette", "Draw a polygon; double-click closes it")},
    {QT_TRANSLATE_NOOP("TToolPalette", "Bezier curve"),
     QT_TRANSLATE_NOOP("TToolPalette", "Draw a poly-Bezier curve")},
    {QT_TRANSLATE_NOOP("TToolPalette", "Arc"),
     QT_TRANSLATE_NOOP("TToolPalette", "Draw an elliptic arc")},
    {QT_TRANSLATE_NOOP("TToolPalette", "Close"),
     QT_TRANSLATE_NOOP("TToolPalette", "Close a polyline into a polygon")},
    {QT_TRANSLATE_NOOP("TToolPalette", "Remove point"),
     QT_TRANSLATE_NOOP("TToolPalette", "Remove a point of a polyline or polygon")},
    {QT_TRANSLATE_NOOP("TToolPalette", "Add point"),
     QT_TRANSLATE_NOOP("TToolPalette", "Add a point to a polyline or polygon")},
    {QT_TRANSLATE_NOOP("TToolPalette", "Move drawing"),
     QT_TRANSLATE_NOOP("TToolPalette", "Drag the whole drawing")},
    {QT_TRANSLATE_NOOP("TToolPalette", "Browse"),
     QT_TRANSLATE_NOOP("TToolPalette", "Look at the drawing without changing it")},
    {QT_TRANSLATE_NOOP("TToolPalette", "Freehand"),
     QT_TRANSLATE_NOOP("TToolPalette", "Draw a freehand line")},
    {QT_TRANSLATE_NOOP("TToolPalette", "B-spline"),
     QT_TRANSLATE_NOOP("TToolPalette", "Draw a B-spline curve")},
}};

void DrawGlyph(QPainter &p, TDrawTool tool)
{
    switch (tool) {
    case TDrawTool::SpLinkLine:
        p.drawPolyline(QPolygonF({{3, 5}, {12, 5}, {12, 19}, {21, 19}}));
        p.drawEllipse(QPointF(3, 5), 2, 2);
        p.drawEllipse(QPointF(21, 19), 2, 2);
        break;
    case TDrawTool::SpSelecting:
        p.drawPolygon(
            QPolygonF({{6, 3}, {6, 19}, {10, 15}, {14, 22}, {16, 21}, {12, 14}, {18, 14}}));
        break;
    case TDrawTool::SpRotateSelecting:
        p.drawArc(QRectF(4, 4, 16, 16), 30 * 16, 280 * 16);
        p.drawPolyline(QPolygonF({{17, 2}, {18, 7}, {13, 8}}));
        break;
    case TDrawTool::SpLine:
        p.drawLine(QPointF(4, 20), QPointF(20, 4));
        break;
    case TDrawTool::SpRuleLine:
        p.drawLine(QPointF(3, 12), QPointF(21, 12));
        p.drawLine(QPointF(3, 8), QPointF(3, 16));
        p.drawLine(QPointF(21, 8), QPointF(21, 16));
        break;
    case TDrawTool::SpPolyLine:
        p.drawPolyline(QPolygonF({{3, 20}, {8, 6}, {15, 16}, {21, 4}}));
        break;
    case TDrawTool::SpRectangle:
        p.drawRect(QRectF(4, 6, 16, 12));
        break;
    case TDrawTool::SpLinkPoint:
        p.drawLine(QPointF(6, 6), QPointF(18, 18));
        p.drawLine(QPointF(18, 6), QPointF(6, 18));
        break;
    case TDrawTool::SpLineLinkLine:
        p.drawLine(QPointF(3, 18), QPointF(10, 12));
        p.drawLine(QPointF(14, 12), QPointF(21, 6));
        p.drawEllipse(QPointF(12, 12), 2, 2);
        break;
    case TDrawTool::SpEllipse:
        p.drawEllipse(QRectF(3, 6, 18, 12));
        break;
    case TDrawTool::SpText:
        p.drawText(QRectF(0, 0, 24, 24), Qt::AlignCenter, QStringLiteral("A"));
        break;
    case TDrawTool::SpImage:
        p.drawRect(QRectF(3, 5, 18, 14));
        p.drawPolyline(QPolygonF({{4, 18}, {10, 11}, {14, 15}, {17, 12}, {20, 18}}));
        break;
    case TDrawTool::SpPolygon:
        p.drawPolygon(QPolygonF({{12, 3}, {21, 10}, {17, 21}, {7, 21}, {3, 10}}));
        break;
    case TDrawTool::SpPolyBezier: {
        QPainterPath path(QPointF(3, 18));
        path.cubicTo(QPointF(8, 0), QPointF(16, 24), QPointF(21, 6));
        p.drawPath(path);
        break;
    }
    case TDrawTool::SpElliArc:
        p.drawArc(QRectF(3, 5, 18, 16), 0, 180 * 16);
        break;
    case TDrawTool::SpClose:
        p.drawPolyline(QPolygonF({{4, 18}, {8, 5}, {18, 7}, {20, 18}}));
        p.setPen(QPen(Qt::darkGray, 1.5, Qt::DashLine));
        p.drawLine(QPointF(20, 18), QPointF(4, 18));
        break;
    case TDrawTool::SpPolylinePolygonPointRemoving:
        p.drawPolyline(QPolygonF({{3, 18}, {12, 6}, {21, 18}}));
        p.drawLine(QPointF(8, 3), QPointF(16, 3));
        break;
    case TDrawTool::SpPolylinePolygonPointAdding:
        p.drawPolyline(QPolygonF({{3, 18}, {12, 8}, {21, 18}}));
        p.drawLine(QPointF(12, 1), QPointF(12, 7));
        p.drawLine(QPointF(9, 4), QPointF(15, 4));
        break;
    case TDrawTool::SpDragWhole:
        p.drawLine(QPointF(12, 2), QPointF(12, 22));
        p.drawLine(QPointF(2, 12), QPointF(22, 12));
        p.drawPolyline(QPolygonF({{9, 5}, {12, 2}, {15, 5}}));
        p.drawPolyline(QPolygonF({{9, 19}, {12, 22}, {15, 19}}));
        break;
    case TDrawTool::SpBrowse:
        p.drawEllipse(QRectF(3, 3, 12, 12));
        p.drawLine(QPointF(13, 13), QPointF(21, 21));
        break;
    case TDrawTool::SpFreeLine: {
        QPainterPath path(QPointF(3, 14));
        path.quadTo(QPointF(6, 4), QPointF(10, 12));
        path.quadTo(QPointF(14, 20), QPointF(17, 9));
        path.quadTo(QPointF(19, 4), QPointF(21, 8));
        p.drawPath(path);
        break;
    }
    case TDrawTool::SpBLine: {
        QPainterPath path(QPointF(3, 20));
        path.quadTo(QPointF(12, -6), QPointF(21, 20));
        p.drawPath(path);
        for (const QPointF c : {QPointF(3, 20), QPointF(12, 4), QPointF(21, 20)})
            p.drawRect(QRectF(c - QPointF(1.5, 1.5), QSizeF(3, 3)));
        break;
    }
    }
}

QIcon ToolIcon(TDrawTool tool)
{
    QPixmap pixmap(24, 24);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(QColor(40, 40, 40), 1.5));
    QFont font = p.font();
    font.setPixelSize(16);
    font.setBold(true);
    p.setFont(font);
    DrawGlyph(p, tool);
    return QIcon(pixmap);
}

} // namespace

QString TToolPalette::ToolName(TDrawTool tool)
{
    return tr(Tools[std::size_t(tool)].Name);
}

TToolPalette::TToolPalette(TMyCAD *surface, QObject *parent)
    : QObject(parent)
    , m_Surface(surface)
    , m_Group(new QActionGroup(this))
{
    m_Group->setExclusive(true);
    for (int i = 0; i < ToolCount; ++i) {
        const auto tool = TDrawTool(i);
        auto *action = new QAction(ToolIcon(tool), ToolName(tool), m_Group);
        action->setCheckable(true);
        action->setToolTip(tr(Tools[std::size_t(i)].Tip));
        action->setStatusTip(action->toolTip());
        action->setData(i);
        action->setObjectName(QStringLiteral("tool%1").arg(i));
        connect(action, &QAction::triggered, this, [this, tool] {
            m_Surface->SetShapeTool(tool);
            m_Surface->setFocus();
        });
        m_Actions.push_back(action);
    }
    Sync();
}

QAction *TToolPalette::ActionFor(TDrawTool tool) const
{
    return m_Actions[std::size_t(tool)];
}

void TToolPalette::Sync()
{
    ActionFor(m_Surface->ShapeTool())->setChecked(true);
}

} // namespace tessal
