// SPDX-License-Identifier: MIT
// TMyShape: hot tests of link points, end points and the text point, with the highlight
// square that the surface remembers across shapes.
#include <tessal/geometry/canvasmodes.h>
#include <tessal/geometry/geometry.h>
#include <tessal/shapes/shape.h>

#include <cmath>

namespace tessal {

namespace {

// Whether p (screen) lies in the empty rectangle at the rounded position of centre grown
// by margin on every side. Left and top edges count, right and bottom do not, so the
// square reaches margin pixels before the centre and margin - 1 after it.
bool InHotSquare(TMyPoint centre, TMyPoint p, std::int32_t margin)
{
    const TPoint c = MyPtToPt(centre);
    const TRect r = ExpandRect(PtToARect(c, c), margin);
    return p.X >= r.Left && p.X < r.Right && p.Y >= r.Top && p.Y < r.Bottom;
}

TRect SquareBounds(TMyPoint p)
{
    // The square's pixels plus the width-2 pen reaching out one pixel on each side.
    return TRect(RoundEven(p.X - 5), RoundEven(p.Y - 5), RoundEven(p.X + 5), RoundEven(p.Y + 5))
        .Inflated(2, 2);
}

} // namespace

void TMyShape::DrawHotLinkSquare(TCanvas &canvas, TMyPoint p)
{
    if (m_Locked)
        return;
    SetDrawHotMode(canvas);
    canvas.Pen().Width = 2;
    canvas.Pen().Color = clRed;
    canvas.Pen().Mode = TPenMode::pmNotXor;
    canvas.Brush().Style = TBrushStyle::bsClear;
    canvas.Rectangle(
        TRect(RoundEven(p.X - 5), RoundEven(p.Y - 5), RoundEven(p.X + 5), RoundEven(p.Y + 5)));
}

std::int32_t TMyShape::HighlightHot(std::int32_t found, TMyPoint square)
{
    THotHighlight &memory = m_Host->HotHighlight();
    TCanvas *screen = m_Host->ScreenCanvas();
    auto drawSquare = [&](TMyShape *shape, TMyPoint at) {
        if (!screen || !shape)
            return;
        shape->DrawHotLinkSquare(*screen, at);
        m_Host->ScreenChanged(SquareBounds(at));
    };
    if (found < 0) {
        drawSquare(memory.Shape, memory.Square);
        memory = THotHighlight{};
        return -1;
    }
    // The same handle of the same shape is already shown: drawing it again would erase it.
    if (memory.Shape == this && memory.Number == found)
        return found;
    drawSquare(this, square);
    drawSquare(memory.Shape, memory.Square);
    memory.Shape = this;
    memory.Number = found;
    memory.Square = square;
    return found;
}

std::int32_t TMyShape::InWhichLinkHot(TMyPoint p)
{
    for (std::int32_t i = 0; i < GetLinkPointsCount(); ++i) {
        const TMyPoint at = GetLinkPointInZoom(i);
        if (InHotSquare(at, p, 5))
            return HighlightHot(i, at);
    }
    return HighlightHot(-1, {});
}

std::int32_t TMyShape::InWhichPointHot(TMyPoint p)
{
    const std::int32_t last = GetPointsCount() - 1;
    const std::int32_t margin = m_Host->HotSize();
    for (std::int32_t i : {0, last}) {
        if (last < 0)
            break;
        const TMyPoint at = GetPointInZoom(i);
        if (InHotSquare(at, p, margin))
            return HighlightHot(i, at);
    }
    return HighlightHot(-1, {});
}

bool TMyShape::InTextPointHot(TPoint p) const
{
    const TMyPoint at = ZoomedValuePt(m_TextPoint);
    return InHotSquare(at, TMyPoint{float(p.X), float(p.Y)}, m_Host->HotSize());
}

} // namespace tessal
