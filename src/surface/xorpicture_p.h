// SPDX-License-Identifier: MIT
// A picture to exclusive-or into an image, kept as the runs of pixels that change anything.
#pragma once

#include <tessal/platform/types.h>

#include <QImage>

#include <cstddef>
#include <vector>

namespace tessal {

// Feedback drawn in exclusive-or is its own eraser, and feedback moved by whole pixels is the
// same pixels moved. Drawn once on black (where a pixel holds what the drawing xors into the
// screen there), it is kept as its non-black runs, so that showing it at an offset touches
// only those pixels: thin outlines are a small part of the box they span.
class TXorPicture
{
public:
    TXorPicture() = default;
    // The non-black pixels of picture (RGB32), whose top-left pixel stands for origin.
    TXorPicture(const QImage &picture, TPoint origin);

    bool IsEmpty() const { return m_Runs.empty(); }
    // Exclusive-ors the picture, moved by offset, into image (32 bits a pixel, device pixel
    // ratio 1), whose top-left pixel stands for imageOrigin; what falls outside is left out.
    void XorInto(QImage &image, TPoint imageOrigin, TPoint offset) const;

private:
    struct TRun
    {
        std::int32_t X = 0;
        std::int32_t Y = 0;
        std::int32_t Count = 0;
        std::size_t First = 0; // into m_Values
    };
    std::vector<TRun> m_Runs;
    std::vector<QRgb> m_Values;
};

} // namespace tessal
