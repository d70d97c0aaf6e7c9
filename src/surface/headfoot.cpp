// SPDX-License-Identifier: MIT
// Printing aids drawn on a page image: the border frame and the head and foot texts.
#include <tessal/geometry/geometry.h>
#include <tessal/surface/cad.h>

#include <tessal/geometry/scaledtext.h>

#include <cmath>

namespace tessal {

namespace {

// Millimetres of the page in pixels of an image that shows the whole page.
struct TPageScale
{
    double X = 0;
    double Y = 0;
};

TPageScale ScaleOf(QSizeF size, std::uint32_t pageWidth, std::uint32_t pageHeight)
{
    if (pageWidth == 0 || pageHeight == 0)
        return {};
    return {size.width() / pageWidth, size.height() / pageHeight};
}

} // namespace

// The frame lies PrintABordertoLeft/Top/Right/Bottom millimetres inside the page edges,
// each distance rounded to pixels of the image (halves to even); it is a one-pixel black
// outline whose right and bottom lines are the last pixels inside those distances.
void TMyCAD::DrawBorder(QImage &image)
{
    if (!m_PrintABorder || image.isNull())
        return;
    TCanvas canvas(&image);
    DrawBorderOn(canvas, image.deviceIndependentSize());
    canvas.Flush();
}

void TMyCAD::DrawBorderOn(TCanvas &canvas, QSizeF size)
{
    const TPageScale s = ScaleOf(size, m_PageWidth, m_PageHeight);
    if (!m_PrintABorder || s.X <= 0 || s.Y <= 0)
        return;
    const TRect frame(RoundEven(m_PrintABordertoLeft * s.X), RoundEven(m_PrintABordertoTop * s.Y),
                      RoundEven(size.width()) - RoundEven(m_PrintABordertoRight * s.X),
                      RoundEven(size.height()) - RoundEven(m_PrintABordertoBottom * s.Y));
    canvas.Pen() = TPen{clBlack, TPenMode::pmCopy, TPenStyle::psSolid, 1};
    canvas.Brush().Style = TBrushStyle::bsClear;
    canvas.Rectangle(frame);
}

// The head's text cell starts PageHeadToTop millimetres below the page's top edge, the
// foot's cell ends PageFootToBottom millimetres above the bottom edge. Horizontally each
// text is aligned between the left and right border distances (whether or not the border
// is drawn): left-justified at the left distance, right-justified ending at the right one,
// centred with round((span - text width) / 2). Fonts scale with the image as the shapes'
// texts scale with the zoom: a page image as wide as the page at zoom 1 on this screen
// draws them at their own size. Transparent background.
void TMyCAD::DrawHeadFoot(QImage &image)
{
    if (image.isNull() || (m_PageHead.isEmpty() && m_PageFoot.isEmpty()))
        return;
    TCanvas canvas(&image);
    DrawHeadFootOn(canvas, image.deviceIndependentSize());
    canvas.Flush();
}

void TMyCAD::DrawHeadFootOn(TCanvas &canvas, QSizeF size)
{
    const TPageScale s = ScaleOf(size, m_PageWidth, m_PageHeight);
    if (s.X <= 0 || s.Y <= 0 || (m_PageHead.isEmpty() && m_PageFoot.isEmpty()))
        return;
    const double textScale = s.X * 25.4 / logicalDpiX();
    const std::int32_t left = RoundEven(m_PrintABordertoLeft * s.X);
    const std::int32_t right = RoundEven(size.width()) - RoundEven(m_PrintABordertoRight * s.X);
    canvas.SetBkModeTransparent(true);
    const auto place = [&](const QString &text, const TFont &font, TAlignment alignment) {
        const TPoint extent = GetTextWidthHeight(canvas, text, font, textScale, 0);
        std::int32_t x = left;
        if (alignment == TAlignment::taRightJustify)
            x = right - extent.X;
        else if (alignment == TAlignment::taCenter)
            x = left + RoundEven((right - left - extent.X) / 2.0);
        return std::pair{x, extent.Y};
    };
    if (!m_PageHead.isEmpty()) {
        const std::int32_t x = place(m_PageHead, m_PageHeadFont, m_PageHeadAlignment).first;
        MyLogTextOut(canvas, x, RoundEven(m_PageHeadToTop * s.Y), m_PageHead, m_PageHeadFont,
                     textScale, 0);
    }
    if (!m_PageFoot.isEmpty()) {
        const auto [x, h] = place(m_PageFoot, m_PageFootFont, m_PageFootAlignment);
        const std::int32_t bottom = RoundEven(size.height()) - RoundEven(m_PageFootToBottom * s.Y);
        MyLogTextOut(canvas, x, bottom - h, m_PageFoot, m_PageFootFont, textScale, 0);
    }
}

} // namespace tessal
