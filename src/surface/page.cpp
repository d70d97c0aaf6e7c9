// SPDX-License-Identifier: MIT
// Page size, orientation and zoom: they decide the control's size on screen.
#include <tessal/surface/cad.h>
#include <tessal/surface/mouse_p.h>

#include <array>
#include <cmath>
#include <utility>

namespace tessal {

namespace {

struct TPageSizeMm
{
    std::uint32_t Width;
    std::uint32_t Height;
};

// Portrait sizes of the named styles, in the order of TPageStyle.
constexpr std::array<TPageSizeMm, 9> PageSizes{{{841, 1189},
                                                {594, 841},
                                                {420, 594},
                                                {297, 420},
                                                {210, 297},
                                                {148, 210},
                                                {353, 500},
                                                {257, 364},
                                                {182, 257}}};

// Clears the busy flag however the guarded operation ends.
class TBusyScope
{
public:
    explicit TBusyScope(bool &flag)
        : m_Flag(flag)
    {
        m_Flag = true;
    }
    ~TBusyScope() { m_Flag = false; }
    TBusyScope(const TBusyScope &) = delete;
    TBusyScope &operator=(const TBusyScope &) = delete;

private:
    bool &m_Flag;
};

} // namespace

std::int32_t TMyCAD::PageMmToPixels(std::uint32_t mm) const
{
    return std::int32_t(std::nearbyint(double(mm) * m_Zoom * logicalDpiX() / 25.4));
}

void TMyCAD::ResizeToPage()
{
    resize(PageMmToPixels(m_PageWidth), PageMmToPixels(m_PageHeight));
    updateGeometry();
    Invalidate();
}

void TMyCAD::SetPageStyle(TPageStyle style)
{
    TBusyScope busy(m_Busy);
    m_PageStyle = style;
    if (style == TPageStyle::CustomerPage)
        return;
    const TPageSizeMm size = PageSizes[std::size_t(style)];
    m_PageWidth = size.Width;
    m_PageHeight = size.Height;
    if (m_PageOrientation == TPrinterOrientation::poLandscape)
        std::swap(m_PageWidth, m_PageHeight);
    ResizeToPage();
}

TPageStyle TMyCAD::GetPageStyleByWH(std::uint32_t w, std::uint32_t h) const
{
    const bool landscape = m_PageOrientation == TPrinterOrientation::poLandscape;
    for (std::size_t i = 0; i < PageSizes.size(); ++i) {
        const TPageSizeMm s = PageSizes[i];
        if (landscape ? (w == s.Height && h == s.Width) : (w == s.Width && h == s.Height))
            return TPageStyle(i);
    }
    return TPageStyle::CustomerPage;
}

void TMyCAD::SetPageWidth(std::uint32_t mm)
{
    m_PageWidth = mm;
    ResizeToPage();
}

void TMyCAD::SetPageHeight(std::uint32_t mm)
{
    m_PageHeight = mm;
    ResizeToPage();
}

void TMyCAD::SetPageOrientation(TPrinterOrientation orientation)
{
    if (orientation == m_PageOrientation)
        return;
    m_PageOrientation = orientation;
    std::swap(m_PageWidth, m_PageHeight);
    ResizeToPage();
}

void TMyCAD::SetZoom(double zoom)
{
    if (zoom == m_Zoom)
        return;
    // Feedback drawn at the old zoom could not be erased at the new one.
    m_Mouse->Cancel();
    TBusyScope busy(m_Busy);
    SetPreZoom(m_Zoom);
    m_Zoom = zoom;
    ResizeToPage();
}

void TMyCAD::SetRatio(double ratio)
{
    Store(m_Ratio, ratio);
}

} // namespace tessal
