// SPDX-License-Identifier: MIT
// Private state of TCanvas and the helpers its three source files share.
#pragma once

#include <tessal/platform/canvas.h>

#include "polygonfill_p.h"
#include "roundstroke_p.h"
#include "thinstroke_p.h"

#include <QFont>
#include <QPainter>
#include <QPainterPath>

#include <optional>

namespace tessal {

struct TCanvas::Impl
{
    QPainter Painter;
    QTransform World;
    // The world transform followed by the shift of the origin, and its whole-pixel shift when
    // it does nothing else: worked out when either changes, as every drawing asks for them.
    QTransform Device;
    std::optional<QPoint> DeviceShift = QPoint(0, 0);
    // Clipping in device pixels (clip regions are not subject to the world transform).
    std::optional<QPainterPath> Clip;
    // The same clipping when it is a plain rectangle, which wide strokes honour directly.
    std::optional<QRect> ClipRect;
    // The pixels of the wide stroke being drawn; kept to reuse its memory.
    canvasdetail::TRoundStroke Stroke;
    // The pixels of the polygon being filled, likewise.
    canvasdetail::TPolygonFill Fill;
    // One-pixel outlines painted directly.
    canvasdetail::TThinStroke Thin;
    // The path being recorded or last recorded, in logical coordinates.
    QPainterPath Path;
    // The font last turned into the log font, to notice edits made through Font().
    TFont SyncedFont;
    QFont QtFont; // built from the log font last selected
    bool FontBuilt = false;
    // A positive log-font height: the cell height that text measures, 0 otherwise.
    int CellHeight = 0;
};

namespace canvasdetail {

// The result of the pen mode for one colour channel set: how a primitive is painted.
struct ModeSetup
{
    bool Draw = true; // false for the no-operation mode
    QPainter::CompositionMode Composition = QPainter::CompositionMode_SourceOver;
    // Black and white replace the colour and paint in copy mode.
    std::optional<QColor> ForcedColor;
};

ModeSetup SetupForMode(TPenMode mode);
// Whether drawing a pixel twice in this mode can give a different result than once; such
// modes need fill and outline combined before they reach the target.
bool ModeNeedsSinglePass(TPenMode mode);
// The mode applied to 0xRRGGBB pen and destination values.
std::uint32_t ApplyMode(TPenMode mode, std::uint32_t pen, std::uint32_t dest);

// Qt pen for a canvas pen: cosmetic for width 0 and 1 unless geometric.
QPen MakeQPen(const TPen &pen, bool geometric, TPenJoin join, TPenEndCap cap);
QBrush MakeQBrush(const TBrush &brush);
// The whole-pixel shift of a transform that does nothing else.
std::optional<QPoint> WholeShift(const QTransform &t);

} // namespace canvasdetail

} // namespace tessal
