// SPDX-License-Identifier: MIT
// A drawing surface in the manner of a device context, over QPainter on a QImage.
#pragma once

#include <tessal/platform/bitmap.h>
#include <tessal/platform/graphics.h>
#include <tessal/platform/types.h>

#include <QFont>
#include <QImage>
#include <QPainterPath>
#include <QRegion>
#include <QTransform>

#include <memory>
#include <span>
#include <vector>

class QPaintDevice;
class QPainter;

namespace tessal {

namespace canvasdetail {
struct TSpan;
}

// A polygon region for hit tests, fills and clipping, with either fill rule.
class TRegion
{
public:
    TRegion() = default;
    TRegion(std::span<const TPoint> polygon, TFillMode mode);
    static TRegion FromRect(const TRect &r);

    bool IsEmpty() const { return m_Path.isEmpty(); }
    // Whether the pixel at p is inside, as a point-in-region test of the platform.
    bool Contains(TPoint p) const;
    // The same test for the region a polygon would make, without making it: hit tests ask
    // this of every shape under the mouse.
    static bool Contains(std::span<const TPoint> polygon, TFillMode mode, TPoint p);
    TRect Bounds() const;
    const QPainterPath &Path() const { return m_Path; }
    const std::vector<TPoint> &Points() const { return m_Points; }
    TFillMode FillMode() const { return m_Winding ? TFillMode::fmWinding : TFillMode::fmAlternate; }

private:
    QPainterPath m_Path;
    std::vector<TPoint> m_Points; // the polygon, for the exact pixel rule
    bool m_Winding = false;
};

// Logical font construction: what the platform's font-creation call receives. Height is
// in pixels (negative: character height; positive: cell height); escapement and
// orientation are in tenths of a degree, counter-clockwise.
struct TLogFont
{
    std::int32_t Height = 0;
    std::int32_t Weight = 400;
    bool Italic = false;
    bool Underline = false;
    bool StrikeOut = false;
    std::uint8_t Charset = TFont::DEFAULT_CHARSET;
    QString FaceName;
    std::int32_t Escapement = 0;
    std::int32_t Orientation = 0;
    TColor Color = clBlack;

    bool operator==(const TLogFont &) const = default;
};

// TCanvas keeps a current pen, brush, font and pen mode and draws with them. Pen modes are
// raster operations; they only take effect on image-backed canvases, which is why every
// drawing of the component happens on images. Coordinates are pixels; the world transform
// applies to everything drawn.
//
// On an image, with a world transform that only moves by whole pixels, two kinds of figure
// are rasterised by exact rules of their own, so that their pixels depend on the geometry
// alone (never on where a repaint starts) and cost a fraction of a general stroker's work:
// - outlines of width 2 and more with round joins and ends (every wide plain pen, geometric
//   pens with round joins and ends): a pixel is inked when its centre lies closer than half
//   the width to the line through the points' pixel centres; a centre at exactly half the
//   width is inked when the line lies to its right or straight below it;
// - solid polygon fills (FillPolygon, FillRgn, and TRegion::Contains for hit tests): a pixel
//   is inside when its centre is, by the region's rule; a centre on an edge is inside when
//   the polygon lies to its right.
// Other figures, and any figure under scaling or rotation, go to Qt's rasteriser.
//
// A canvas over any other paint device (an SVG or PDF writer, a printer) draws the same
// figures as vectors, one device unit per pixel. Such a device has no pixels to combine
// with: copy mode is honoured, black and white paint in that colour, nop draws nothing, and
// every other pen mode draws as copy. GetPixel answers clNone there. Thin outlines are
// strokes one unit wide through the middle of the pixels an image would paint, so that the
// vector figure covers the same area.
class TCanvas
{
public:
    // Draws on the given image, which must outlive the canvas (its format is kept).
    explicit TCanvas(QImage *target);
    // Draws on a vector device, which must outlive the canvas. The painter stays open until
    // the canvas is destroyed: that is when a writer finishes its document.
    explicit TCanvas(QPaintDevice *device);
    TCanvas(const TCanvas &) = delete;
    TCanvas &operator=(const TCanvas &) = delete;
    ~TCanvas();

    // The image drawn on, nullptr for a vector device.
    QImage *Target() const { return m_Target; }
    QPaintDevice *Device() const { return m_Device; }
    bool IsVector() const { return m_Target == nullptr; }
    // The painter, for the rare drawing that has no canvas operation.
    QPainter &Painter();

    // Current drawing objects; changes apply to the next drawing call.
    TPen &Pen() { return m_Pen; }
    TBrush &Brush() { return m_Brush; }
    TFont &Font() { return m_Font; }
    void SetPen(const TPen &pen) { m_Pen = pen; }
    void SetBrush(const TBrush &brush) { m_Brush = brush; }
    void SetFont(const TFont &font);

    // Geometric pen: used by the path strokes and by lines while set; ClearGeometricPen
    // returns to the plain pen (one-pixel lines without end pixel; wider lines with round
    // ends and joins).
    void SetGeometricPen(TPenJoin join, TPenEndCap cap);
    void ClearGeometricPen();
    bool HasGeometricPen() const { return m_Geometric; }

    // Marks a printer canvas; the drawing set-ups read it (a colour count of 2 means black
    // and white). The canvas itself draws the same either way.
    bool IsPrinter() const { return m_IsPrinter; }
    void SetPrinter(bool printer, int colorCount = 0);
    int PrinterColorCount() const { return m_PrinterColors; }

    // Primitives in logical coordinates, drawn with the pen and (for closed figures) the brush
    // under the pen mode. Rectangles and ellipses follow device-context rules: the outline
    // covers Left..Right-1 x Top..Bottom-1; without a pen the filled area is one pixel
    // narrower and shorter. Lines cover their start pixel but not their end pixel. Polygons
    // fill by the alternate rule. FillRect, FrameRect, FillRgn, SetPixel and the image
    // operations always copy.
    void MoveTo(std::int32_t x, std::int32_t y);
    void LineTo(std::int32_t x, std::int32_t y);
    TPoint PenPos() const { return m_PenPos; }
    void Polyline(std::span<const TPoint> points);
    void Polygon(std::span<const TPoint> points);
    void Rectangle(const TRect &r);
    void Ellipse(const TRect &r);
    void FillRect(const TRect &r);  // brush only
    void FrameRect(const TRect &r); // one-pixel frame in the brush colour
    // clNone outside the image.
    TColor GetPixel(std::int32_t x, std::int32_t y) const;
    void SetPixel(std::int32_t x, std::int32_t y, TColor color);
    void Draw(std::int32_t x, std::int32_t y, const QImage &image);
    void StretchDraw(const TRect &dest, const QImage &image);
    void CopyRect(const TRect &dest, const QImage &source, const TRect &sourceRect);

    // Paths: BeginPath starts recording, drawing calls add to the path instead of drawing,
    // EndPath stops recording. FlattenPath turns curves into line segments. GetPathPoints
    // answers the path's points (curve control points too) in logical coordinates. Stroking
    // or filling uses the path up; filling closes open figures and uses the alternate rule.
    void BeginPath();
    void EndPath();
    void CloseFigure();
    void AbortPath();
    void FlattenPath();
    std::vector<TPoint> GetPathPoints() const;
    void StrokePath();
    void FillPath();
    void StrokeAndFillPath();
    bool InPath() const { return m_Recording; }

    // Regions. FillRgn paints in logical coordinates; clip regions are in device pixels and
    // do not follow the world transform.
    void FillRgn(const TRegion &region, const TBrush &brush);
    // FillRgn of TRegion(polygon, mode), without building the region.
    void FillPolygon(std::span<const TPoint> polygon, TFillMode mode, const TBrush &brush);
    // Strokes the closed figure through points with the pen, leaving the canvas as recording it
    // (BeginPath, MoveTo, LineTo..., CloseFigure, EndPath) and StrokePath would.
    void StrokeClosedFigure(std::span<const TPoint> points);
    void SelectClipRgn(const TRegion *region); // nullptr removes the clipping
    void SelectClipRect(const TRect *rect);

    // World transform (applies to subsequent drawing).
    void SetWorldTransform(const QTransform &t);
    void ResetWorldTransform();
    QTransform WorldTransform() const;
    // The device point shown by the image's top-left pixel, (0, 0) unless set. An image that
    // holds only part of a larger device (a window's visible part, a repaint rectangle) is
    // drawn on in the device's coordinates: drawing, clip regions and pixel access all
    // shift by the origin, beneath the world transform.
    void SetOrigin(TPoint origin);
    TPoint Origin() const { return m_Origin; }

    // Text. TextOut draws with the text cell's top-left at (x, y), turned counter-clockwise
    // about that corner by the escapement, in Font().Color, with a transparent background
    // when SetBkModeTransparent(true), else on a solid brush's colour. SelectLogFont also
    // sets Font().Color from the log font; changing only the colour keeps the selected font,
    // any other edit of Font() replaces it (without escapement) at the next text call. A
    // positive log-font height is the cell height that TextExtent reports. Glyphs are aliased.
    // SetTextCharacterExtra adds pixels after every character, measured text included.
    void SelectLogFont(const TLogFont &font);
    const TLogFont &LogFont() const { return m_LogFont; }
    void SetBkModeTransparent(bool transparent) { m_BkTransparent = transparent; }
    void SetTextCharacterExtra(std::int32_t extra) { m_CharExtra = extra; }
    void TextOut(std::int32_t x, std::int32_t y, const QString &text);
    TPoint TextExtent(const QString &text) const; // X = width, Y = height
    std::int32_t TextWidth(const QString &text) const { return TextExtent(text).X; }
    std::int32_t TextHeight(const QString &text) const { return TextExtent(text).Y; }
    // The height TextExtent reports for any text in the current font, without measuring one.
    std::int32_t LineHeight() const;
    // The Qt font TextOut draws with (character extra included), for callers that need the
    // glyphs' outlines or exact metrics.
    QFont TextFont() const;

    // Finishes pending painting so that the target image can be read. Nothing on a vector
    // device, whose document would end with the painter.
    void Flush();

private:
    struct Impl;
    // How an outline is placed: centred on pixel centres (the normal case), already
    // positioned in continuous coordinates (inside-frame outlines), or given as pixels.
    enum class OutlinePlacement : std::uint8_t { PixelCentres, Exact, Area };

    // Paints the fill (with the brush, when given and the brush is not clear) and then the
    // outline (with the pen) under the current pen mode.
    // With OutlinePlacement::Area the outline is a set of whole pixels painted in the pen
    // colour rather than a line to stroke.
    void Render(const QPainterPath &outline, const QPainterPath *fill,
                OutlinePlacement placement = OutlinePlacement::PixelCentres);
    void RenderDirect(const QPainterPath &outline, const QPainterPath *fill,
                      OutlinePlacement placement);
    bool DrawExactEllipse(const TRect &r);
    bool RoundStrokeApplies() const;
    bool CollectRoundStroke(const QPainterPath &outline);
    void CollectRoundStroke(std::span<const TPoint> chain, bool closed, QPoint shift);
    bool BeginRoundStroke(bool direct, const QColor &colour);
    bool WritesSpansDirectly(bool copy) const;
    bool FillPolygonAsSpans(std::span<const TPoint> polygon, TFillMode mode, const TBrush &brush);
    bool StrokeAsSpans(const QPainterPath &outline, const QColor &colour);
    bool StrokeChainAsSpans(std::span<const TPoint> chain, bool closed);
    bool StrokeChainThin(std::span<const TPoint> chain, bool closed);
    bool StrokeChainThinDirectly(std::span<const TPoint> chain, bool closed, QRgb colour);
    void PaintSpans(bool direct, const QColor &colour);
    void WriteSpans(const std::vector<canvasdetail::TSpan> &spans, QRgb colour, TPenMode mode);
    void PaintSpansOnLayer(const QPainterPath &outline, const QRect &box, QImage &layer,
                           const QColor &colour);
    bool EndPixelNeedsMoving(TPoint from, TPoint to) const;
    void DrawBackwardLine(TPoint from, TPoint to);
    // Fill and outline combined off-target, then merged pixel by pixel, so that modes which
    // are not idempotent touch every pixel once.
    void RenderSinglePass(const QPainterPath &outline, const QPainterPath *fill,
                          OutlinePlacement placement);
    QTransform OutlineTransform(OutlinePlacement placement) const;
    // The world transform followed by the shift of the origin: what the painter applies.
    QTransform DeviceTransform() const;
    QTransform OriginShift() const;
    // Works out the device transform again after a change of the world or the origin.
    void DeviceChanged();
    void RestoreDeviceState();
    void SyncFont();

    std::unique_ptr<Impl> d;
    QImage *m_Target = nullptr;
    QPaintDevice *m_Device = nullptr;
    TPen m_Pen;
    TBrush m_Brush;
    TFont m_Font;
    TLogFont m_LogFont;
    TPoint m_PenPos;
    bool m_Geometric = false;
    TPenJoin m_Join = TPenJoin::pjRound;
    TPenEndCap m_Cap = TPenEndCap::pecRound;
    bool m_IsPrinter = false;
    int m_PrinterColors = 0;
    bool m_Recording = false;
    bool m_BkTransparent = false;
    std::int32_t m_CharExtra = 0;
    TPoint m_Origin;
};

} // namespace tessal
