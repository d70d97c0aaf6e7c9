// SPDX-License-Identifier: MIT
// Filling a run of 32-bit pixels with one colour.
#pragma once

#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace tessal::canvasdetail {

// Sets the pixels from .. end - 1 to colour. The compiler's plain loop stores one pixel at a
// time; fills of shapes' insides and wide strokes spend most of their time here, so runs are
// stored sixteen bytes at a time where the processor allows.
inline void FillPixels(std::uint32_t *from, std::uint32_t *end, std::uint32_t colour)
{
#if defined(__SSE2__)
    const __m128i four = _mm_set1_epi32(int(colour));
    for (; end - from >= 8; from += 8) {
        _mm_storeu_si128(reinterpret_cast<__m128i *>(from), four);
        _mm_storeu_si128(reinterpret_cast<__m128i *>(from + 4), four);
    }
    if (end - from >= 4) {
        _mm_storeu_si128(reinterpret_cast<__m128i *>(from), four);
        from += 4;
    }
#endif
    for (; from != end; ++from)
        *from = colour;
}

} // namespace tessal::canvasdetail
