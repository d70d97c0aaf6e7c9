// SPDX-License-Identifier: MIT
// The DXF writer behind TMyCAD::SaveToDxf: entity records in the group-code/value text form.
#pragma once

#include <tessal/geometry/mypoint.h>

#include <QByteArray>
#include <QByteArrayView>
#include <QPointF>
#include <QString>

#include <cstdint>
#include <span>

class QIODevice;

namespace tessal {

class TMyShape;
class TMyText;

// Collects one DXF file. Points come in document pixels and go out in millimetres, Y
// flipped against the control's height; every record gets the next handle, from 20 on.
class TDxfWriter
{
public:
    // zoom: the surface's, at which text shapes lay out their lines.
    TDxfWriter(double controlHeight, double zoom, bool glyphs);

    // The file for the shapes in drawing order: SECTION ENTITIES, the entities, ENDSEC, EOF.
    void WriteShape(const TMyShape &shape);
    // Hands the text made so far to device once it holds at least atLeast bytes, so that the
    // file of a big drawing is never held whole; false when the device took less.
    bool Drain(QIODevice &device, qsizetype atLeast);
    // The end of the file appended to what has not been drained.
    QByteArray Finish();

private:
    void Code(int code);
    void Pair(int code, QByteArrayView value);
    void Number(int code, double value);
    void Head(const char *type);
    // A document point (pixels) as the codes code, code + 10 and code + 20.
    void Point(int code, QPointF p);

    void Line(QPointF a, QPointF b);
    void Chain(std::span<const TMyPoint> points);
    void Polyline(std::span<const QPointF> points);
    void Polyline(std::span<const TMyPoint> points);
    void Circle(QPointF centre, double radiusPixels);
    void Arc(const TMyShape &arc);
    void Ellipse(const TMyShape &ellipse);
    void Text(const TMyText &text);
    void Glyphs(const TMyText &text);

    double m_Height;
    double m_Zoom;
    bool m_Glyphs;
    std::int32_t m_Handle = 20;
    QByteArray m_Out;
};

} // namespace tessal
