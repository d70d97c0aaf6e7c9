// SPDX-License-Identifier: MIT
// Builds expected byte layouts field by field, independently of the writers under test.
#pragma once

#include <QByteArray>

#include <bit>
#include <cmath>
#include <cstdint>

namespace tessal::test {

class Bytes
{
public:
    Bytes &I32(std::int32_t v) { return Little(std::uint32_t(v), 4); }
    Bytes &U32(std::uint32_t v) { return Little(v, 4); }
    Bytes &I64(std::int64_t v) { return Little(std::uint64_t(v), 8); }
    Bytes &U8(std::uint8_t v) { return Little(v, 1); }
    Bytes &F32(float v) { return Little(std::bit_cast<std::uint32_t>(v), 4); }
    Bytes &F64(double v) { return Little(std::bit_cast<std::uint64_t>(v), 8); }
    // The 10-byte x87 form of a finite, normal value: the significand with its integer bit,
    // then the sign bit over the exponent biased by 16383.
    Bytes &Ext(double v)
    {
        if (v == 0)
            return Little(0, 8).Little(0, 2);
        const std::uint64_t sign = v < 0 ? 0x8000 : 0;
        int exponent = 0;
        const double fraction = std::frexp(std::fabs(v), &exponent); // |v| = fraction * 2^exp
        const auto significand = std::uint64_t(std::ldexp(fraction, 64));
        return Little(significand, 8).Little(sign | std::uint64_t(exponent - 1 + 16383), 2);
    }
    // Raw bytes.
    Bytes &Raw(const QByteArray &bytes)
    {
        m_Bytes.append(bytes);
        return *this;
    }
    // A counted text of Latin-1 characters: the length, then its bytes.
    Bytes &Text(const QByteArray &latin1) { return I32(std::int32_t(latin1.size())).Raw(latin1); }
    // A fixed-width field: the text padded with spaces.
    Bytes &Fixed(const QByteArray &latin1, int width)
    {
        return Raw(latin1.leftJustified(width, ' ', true));
    }
    Bytes &Append(const Bytes &other) { return Raw(other.m_Bytes); }

    const QByteArray &Data() const { return m_Bytes; }
    operator const QByteArray &() const { return m_Bytes; }

private:
    Bytes &Little(std::uint64_t v, int size)
    {
        for (int i = 0; i < size; ++i, v >>= 8)
            m_Bytes.append(char(v & 0xFF));
        return *this;
    }

    QByteArray m_Bytes;
};

} // namespace tessal::test
