// SPDX-License-Identifier: MIT
// Byte layouts of the binary stream, the extended float and the BMP form of bitmaps.
#include <tessal/platform/binarystream.h>
#include <tessal/platform/bitmap.h>

#include <gtest/gtest.h>

#include <QBuffer>
#include <QRandomGenerator>

#include <cmath>
#include <limits>

using namespace tessal;

namespace {

QByteArray Bytes(std::initializer_list<int> values)
{
    QByteArray out;
    for (int v : values)
        out.append(char(v));
    return out;
}

QByteArray Extended(double v)
{
    QByteArray data;
    QBuffer buffer(&data);
    buffer.open(QIODevice::WriteOnly);
    BinaryStream(&buffer).WriteExtended(v);
    return data;
}

double FromExtended(const QByteArray &bytes)
{
    QByteArray data = bytes;
    QBuffer buffer(&data);
    buffer.open(QIODevice::ReadOnly);
    return BinaryStream(&buffer).ReadExtended();
}

// An extended value from its significand and its sign-and-exponent word.
QByteArray ExtendedBytes(std::uint64_t significand, std::uint16_t top)
{
    QByteArray out;
    for (int i = 0; i < 8; ++i)
        out.append(char(significand >> (8 * i)));
    out.append(char(top & 0xFF));
    out.append(char(top >> 8));
    return out;
}

} // namespace

TEST(BinaryStream, WritesLittleEndianLayouts)
{
    QByteArray data;
    QBuffer buffer(&data);
    buffer.open(QIODevice::WriteOnly);
    BinaryStream s(&buffer);
    s.WriteInt8(-2);
    s.WriteUInt8(0xAB);
    s.WriteInt16(-2);
    s.WriteUInt16(0x1234);
    s.WriteInt32(-2);
    s.WriteUInt32(0x12345678);
    s.WriteInt64(0x0102030405060708);
    s.WriteFloat(1.5f);
    s.WriteDouble(-2.0);
    s.WriteBool(true);
    s.WriteBool(false);
    s.WriteBytes("xy");
    const QByteArray expected =
        Bytes({0xFE, 0xAB, 0xFE, 0xFF, 0x34, 0x12, 0xFE, 0xFF, 0xFF, 0xFF, 0x78, 0x56, 0x34,
               0x12, 0x08, 0x07, 0x06, 0x05, 0x04, 0x03, 0x02, 0x01, 0x00, 0x00, 0xC0, 0x3F,
               0,    0,    0,    0,    0,    0,    0x00, 0xC0, 0x01, 0x00, 'x',  'y'});
    EXPECT_EQ(data.toHex(' '), expected.toHex(' '));

    buffer.close();
    buffer.open(QIODevice::ReadOnly);
    BinaryStream r(&buffer);
    EXPECT_EQ(r.BytesLeft(), expected.size());
    EXPECT_EQ(r.ReadInt8(), -2);
    EXPECT_EQ(r.ReadUInt8(), 0xAB);
    EXPECT_EQ(r.ReadInt16(), -2);
    EXPECT_EQ(r.ReadUInt16(), 0x1234);
    EXPECT_EQ(r.ReadInt32(), -2);
    EXPECT_EQ(r.ReadUInt32(), 0x12345678u);
    EXPECT_EQ(r.ReadInt64(), 0x0102030405060708);
    EXPECT_EQ(r.ReadFloat(), 1.5f);
    EXPECT_EQ(r.ReadDouble(), -2.0);
    EXPECT_TRUE(r.ReadBool());
    EXPECT_FALSE(r.ReadBool());
    EXPECT_EQ(r.BytesLeft(), 2);
    EXPECT_EQ(r.ReadBytes(2), QByteArray("xy"));
    EXPECT_EQ(r.BytesLeft(), 0);
}

TEST(BinaryStream, ShortReadsAndImpossibleCountsThrow)
{
    QByteArray data = Bytes({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19});
    QBuffer buffer(&data);
    buffer.open(QIODevice::ReadOnly);
    BinaryStream s(&buffer);
    EXPECT_NO_THROW(s.RequireBytes(4, 4));
    try {
        s.RequireBytes(5, 4);
        FAIL() << "20 bytes accepted with 19 left";
    } catch (const TStreamError &e) {
        EXPECT_STREQ(e.what(), "count 5 exceeds remaining bytes");
    }
    EXPECT_THROW(s.RequireBytes(-1, 1), TStreamError);
    EXPECT_THROW(s.RequireBytes(std::numeric_limits<std::int64_t>::max(), 8), TStreamError);
    EXPECT_THROW(s.ReadBytes(1 << 30), TStreamError); // refused before allocating
    EXPECT_EQ(s.ReadInt64(), 0x0807060504030201);
    EXPECT_EQ(s.ReadInt64(), 0x100F0E0D0C0B0A09);
    EXPECT_THROW(s.ReadInt32(), TStreamError); // three bytes left
    // A failed read is an error the caller catches as a runtime error with a message.
    QByteArray empty;
    QBuffer none(&empty);
    none.open(QIODevice::ReadOnly);
    BinaryStream e(&none);
    EXPECT_THROW(e.ReadBool(), std::runtime_error);
    EXPECT_THROW(e.ReadExtended(), TStreamError);
}

TEST(BinaryStream, WritingToAReadOnlyDeviceThrows)
{
    QByteArray data;
    QBuffer buffer(&data);
    buffer.open(QIODevice::ReadOnly);
    BinaryStream s(&buffer);
    EXPECT_THROW(s.WriteInt32(1), TStreamError);
}

TEST(Extended, EncodesExactly)
{
    EXPECT_EQ(Extended(1.0), ExtendedBytes(0x8000000000000000, 0x3FFF));
    EXPECT_EQ(Extended(-2.5), ExtendedBytes(0xA000000000000000, 0xC000));
    EXPECT_EQ(Extended(0.0), ExtendedBytes(0, 0));
    EXPECT_EQ(Extended(-0.0), ExtendedBytes(0, 0x8000));
    EXPECT_EQ(Extended(0.1), ExtendedBytes(0xCCCCCCCCCCCCD000, 0x3FFB));
    EXPECT_EQ(Extended(std::numeric_limits<double>::infinity()),
              ExtendedBytes(0x8000000000000000, 0x7FFF));
    EXPECT_EQ(Extended(-std::numeric_limits<double>::infinity()),
              ExtendedBytes(0x8000000000000000, 0xFFFF));
    // The smallest double subnormal, 2^-1074, is a normal extended value.
    EXPECT_EQ(Extended(std::ldexp(1.0, -1074)), ExtendedBytes(0x8000000000000000, 16383 - 1074));

    // 1e-310 is subnormal as a double: the extended form normalises it without loss.
    const QByteArray tiny = Extended(1e-310);
    const std::uint16_t top = std::uint16_t(std::uint8_t(tiny[8]) | (std::uint8_t(tiny[9]) << 8));
    EXPECT_EQ(top, 16383 - 1030); // 2^-1030 <= 1e-310 < 2^-1029
    std::uint64_t significand = 0;
    for (int i = 7; i >= 0; --i)
        significand = (significand << 8) | std::uint8_t(tiny[i]);
    EXPECT_EQ(significand >> 63, 1u);
    EXPECT_EQ(std::ldexp(double(significand), -1030 - 63), 1e-310);

    const QByteArray nan = Extended(std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(std::uint8_t(nan[9]) & 0x7F, 0x7F);
    EXPECT_EQ(std::uint8_t(nan[8]), 0xFF);
    EXPECT_EQ(std::uint8_t(nan[7]) & 0xC0, 0xC0); // integer bit and quiet bit
}

TEST(Extended, DecodesWithOneRoundingToNearestEven)
{
    EXPECT_EQ(FromExtended(ExtendedBytes(0xA000000000000000, 0xC000)), -2.5);
    EXPECT_EQ(FromExtended(ExtendedBytes(0x8000000000000000, 0x3FFF)), 1.0);
    // Ties between two doubles go to the even one; anything above a tie goes up.
    EXPECT_EQ(FromExtended(ExtendedBytes(0x8000000000000400, 0x3FFF)), 1.0);
    EXPECT_EQ(FromExtended(ExtendedBytes(0x8000000000000C00, 0x3FFF)), 1.0 + std::ldexp(1.0, -51));
    EXPECT_EQ(FromExtended(ExtendedBytes(0x8000000000000401, 0x3FFF)), 1.0 + std::ldexp(1.0, -52));
    EXPECT_EQ(FromExtended(ExtendedBytes(0xFFFFFFFFFFFFFFFF, 0x3FFF)), 2.0);
    // Into the double subnormal range: 1.5 x 2^-1074 ties to 2^-1073, 2^-1076 vanishes.
    EXPECT_EQ(FromExtended(ExtendedBytes(0xC000000000000000, 16383 - 1074)),
              std::ldexp(1.0, -1073));
    EXPECT_EQ(FromExtended(ExtendedBytes(0x8000000000000000, 16383 - 1076)), 0.0);
    EXPECT_EQ(FromExtended(ExtendedBytes(0x8000000000000001, 16383 - 1075)),
              std::ldexp(1.0, -1074));
    // Beyond the double range, and the infinities and NaNs.
    EXPECT_EQ(FromExtended(ExtendedBytes(0x8000000000000000, 0x7FFE)),
              std::numeric_limits<double>::infinity());
    EXPECT_EQ(FromExtended(ExtendedBytes(0x8000000000000000, 0xFFFF)),
              -std::numeric_limits<double>::infinity());
    EXPECT_TRUE(std::isnan(FromExtended(ExtendedBytes(0xC000000000000000, 0x7FFF))));
    EXPECT_TRUE(std::signbit(FromExtended(ExtendedBytes(0, 0x8000))));
    // Unnormal inputs (integer bit clear) still decode by their value.
    EXPECT_EQ(FromExtended(ExtendedBytes(0x4000000000000000, 0x4000)), 1.0);
}

TEST(Extended, RoundTripsEveryKindOfDouble)
{
    const double samples[] = {1.0,
                              -2.5,
                              0.0,
                              1e-310,
                              std::numeric_limits<double>::max(),
                              std::numeric_limits<double>::min(),
                              std::numeric_limits<double>::denorm_min(),
                              123456.789e200};
    for (double v : samples)
        EXPECT_EQ(FromExtended(Extended(v)), v) << v;
    EXPECT_TRUE(std::isinf(FromExtended(Extended(-INFINITY))));
    EXPECT_TRUE(std::isnan(FromExtended(Extended(NAN))));
    QRandomGenerator rng(42);
    for (int i = 0; i < 2000; ++i) {
        const double v = std::bit_cast<double>(rng.generate64());
        if (std::isnan(v))
            continue;
        ASSERT_EQ(FromExtended(Extended(v)), v) << std::hexfloat << v;
    }
}

TEST(Bitmap, BmpBytesOfATwoByTwoBitmap)
{
    TBitmap bmp(2, 2);
    bmp.SetPixel(0, 0, RGBToColor(0x10, 0x20, 0x30));
    bmp.SetPixel(1, 0, RGBToColor(0x40, 0x50, 0x60));
    bmp.SetPixel(0, 1, RGBToColor(0x70, 0x80, 0x90));
    bmp.SetPixel(1, 1, clBtnFace); // system colours are stored resolved
    const int rowBytes = 8;        // 6 bytes of pixels padded to a multiple of 4
    const int size = 14 + 40 + 2 * rowBytes;
    const QByteArray expected = Bytes({
        'B',  'M',  size, 0,    0,
        0,    0,    0,    0,    0,
        54,   0,    0,    0, // file header
        40,   0,    0,    0,    2,
        0,    0,    0,    2,    0,
        0,    0,    1,    0,    24,
        0, // size, width, height,
        0,    0,    0,    0,    2 * rowBytes,
        0,    0,    0,    0,    0,
        0,    0,    0,    0,    0,
        0, // planes, bits, compression,
        0,    0,    0,    0,    0,
        0,    0,    0, // image size, resolution
        0x90, 0x80, 0x70, 0xF0, 0xF0,
        0xF0, 0,    0, // bottom row first, B G R
        0x30, 0x20, 0x10, 0x60, 0x50,
        0x40, 0,    0,
    });
    EXPECT_EQ(bmp.SaveToBmp().toHex(' '), expected.toHex(' '));
    EXPECT_EQ(bmp.Pixel(1, 1), 0xF0F0F0u);
    EXPECT_TRUE(TBitmap().SaveToBmp().isEmpty());
}

TEST(Bitmap, BmpRoundTripAndBadInput)
{
    QRandomGenerator rng(7);
    for (const auto &[w, h] : {std::pair{5, 3}, std::pair{1, 1}, std::pair{4, 7}}) {
        TBitmap bmp(w, h);
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x)
                bmp.SetPixel(x, y, rng.bounded(0x1000000u));
        const QByteArray bytes = bmp.SaveToBmp();
        EXPECT_EQ(bytes.size(), 54 + h * ((3 * w + 3) / 4 * 4));
        TBitmap back;
        ASSERT_TRUE(back.LoadFromBmp(bytes));
        EXPECT_EQ(back.Image().format(), QImage::Format_BGR888);
        EXPECT_TRUE(back == bmp) << w << "x" << h;
    }
    TBitmap keep(3, 2);
    keep.Fill(clRed);
    const TBitmap before = keep;
    EXPECT_FALSE(keep.LoadFromBmp(QByteArray()));
    EXPECT_FALSE(keep.LoadFromBmp("BM garbage that is not a bitmap at all"));
    EXPECT_FALSE(keep.LoadFromBmp(keep.SaveToBmp().left(30)));
    QByteArray hugeHeader = keep.SaveToBmp();
    hugeHeader[18] = char(0xFF); // width 0x7F0000FF: far more pixels than bytes
    hugeHeader[21] = char(0x7F);
    EXPECT_FALSE(keep.LoadFromBmp(hugeHeader));
    EXPECT_TRUE(keep == before);
    EXPECT_EQ(keep.Pixel(2, 1), clRed);
    EXPECT_EQ(keep.Pixel(3, 0), clBlack); // outside
}

TEST(Bitmap, PixelsAndScanLinesAgree)
{
    TBitmap bmp(4, 2);
    EXPECT_EQ(bmp.Pixel(3, 1), clWhite);
    bmp.SetPixel(2, 1, RGBToColor(1, 2, 3));
    const std::uint8_t *row = bmp.ScanLine(1);
    EXPECT_EQ(row[6], 3); // blue first
    EXPECT_EQ(row[7], 2);
    EXPECT_EQ(row[8], 1);
    bmp.ScanLine(0)[0] = 0xFF;
    EXPECT_EQ(bmp.Pixel(0, 0), 0xFFFFFFu);
    bmp.ScanLine(0)[2] = 0x00;
    EXPECT_EQ(bmp.Pixel(0, 0), 0xFFFF00u);
    bmp.SetPixel(9, 9, clBlack); // ignored
    const TBitmap fromArgb(QImage(3, 3, QImage::Format_ARGB32));
    EXPECT_EQ(fromArgb.Image().format(), QImage::Format_BGR888);
    bmp.SetSize(0, 5);
    EXPECT_TRUE(bmp.IsEmpty());
}
