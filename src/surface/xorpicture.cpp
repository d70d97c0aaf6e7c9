// SPDX-License-Identifier: MIT
// TXorPicture: runs of exclusive-or feedback, applied at an offset.
#include <tessal/surface/xorpicture_p.h>

#include <algorithm>

namespace tessal {

namespace {

// Only the colour channels change; the alpha byte of an opaque image stays as it is.
constexpr QRgb ColourBits = 0x00FFFFFF;

} // namespace

TXorPicture::TXorPicture(const QImage &picture, TPoint origin)
{
    for (std::int32_t y = 0; y < picture.height(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(picture.constScanLine(y));
        std::int32_t x = 0;
        while (x < picture.width()) {
            if ((line[x] & ColourBits) == 0) {
                ++x;
                continue;
            }
            TRun run{origin.X + x, origin.Y + y, 0, m_Values.size()};
            for (; x < picture.width() && (line[x] & ColourBits) != 0; ++x, ++run.Count)
                m_Values.push_back(line[x] & ColourBits);
            m_Runs.push_back(run);
        }
    }
}

void TXorPicture::XorInto(QImage &image, TPoint imageOrigin, TPoint offset) const
{
    const std::int32_t w = image.width(), h = image.height();
    const std::int32_t dx = offset.X - imageOrigin.X, dy = offset.Y - imageOrigin.Y;
    for (const TRun &run : m_Runs) {
        const std::int32_t y = run.Y + dy;
        if (y < 0 || y >= h)
            continue;
        const std::int32_t from = std::max(run.X + dx, 0);
        const std::int32_t to = std::min(run.X + dx + run.Count, w);
        if (from >= to)
            continue;
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        const QRgb *values = m_Values.data() + run.First + (from - (run.X + dx));
        for (std::int32_t x = from; x < to; ++x)
            line[x] ^= *values++;
    }
}

} // namespace tessal
