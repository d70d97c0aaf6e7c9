// SPDX-License-Identifier: MIT
// Font size arithmetic and the integer scaling helper it rests on.
#include <tessal/platform/graphics.h>

#include <cstdlib>
#include <limits>

namespace tessal {

std::int32_t MulDiv(std::int32_t a, std::int32_t b, std::int32_t c)
{
    if (c == 0)
        return -1;
    const std::int64_t product = std::int64_t(a) * b;
    std::int64_t quotient = product / c;
    const std::int64_t remainder = product % c;
    // Round half away from zero: compare twice the remainder against the divisor.
    if (2 * std::llabs(remainder) >= std::llabs(std::int64_t(c)))
        quotient += ((product < 0) != (c < 0)) ? -1 : 1;
    if (quotient > std::numeric_limits<std::int32_t>::max() ||
        quotient < std::numeric_limits<std::int32_t>::min())
        return -1; // the result does not fit, as the platform reports it
    return std::int32_t(quotient);
}

namespace {

// Negation that saturates instead of overflowing for the smallest integer.
std::int32_t Negated(std::int32_t v)
{
    return v == std::numeric_limits<std::int32_t>::min() ? std::numeric_limits<std::int32_t>::max()
                                                         : -v;
}

} // namespace

std::int32_t TFont::Size() const
{
    return Negated(MulDiv(m_Height, 72, PixelsPerInch));
}

void TFont::SetSize(std::int32_t points)
{
    m_Height = Negated(MulDiv(points, PixelsPerInch, 72));
}

} // namespace tessal
