// SPDX-License-Identifier: MIT
// Byte layouts of the binary stream, the extended float and the BMP form of bitmaps.
#include <tessal/platform/binarystream.h>
#include <tessal/platform/bitmap.h>

#include <gtest/gtest.h>

#include <QBuffer>
#include <QRandomGenerator>

#include <bit>
#include <cmath>
#include <limits>
#include <vector>

using namespace tessal;

namespace {

constexpr double Inf = std::numeric_limits<double>::infinity();

// A stream over its own buffer, for reading or writing.
struct Stream
{
    explicit Stream(QIODevice::OpenMode mode, const QByteArray &bytes = {})
        : Data(bytes)
        , Buffer(&Data)
    {
        Buffer.open(mode);
    }
    QByteArray Data;
    QBuffer Buffer;
    BinaryStream S{&Buffer};
};

// The value v as n little-endian bytes.
QByteArray Le(std::uint64_t v, int n)
{
    QByteArray out;
    for (int i = 0; i < n; ++i)
        out.append(char(v >> (8 * i)));
    return out;
}

QByteArray Extended(double v)
{
    Stream w(QIODevice::WriteOnly);
    w.S.WriteExtended(v);
    return w.Data;
}

double FromExtended(std::uint64_t significand, std::uint16_t top)
{
    return Stream(QIODevice::ReadOnly, Le(significand, 8) + Le(top, 2)).S.ReadExtended();
}

// The message of the stream error f throws, empty when it throws none.
template <class F>
std::string ErrorOf(F f)
{
    try {
        f();
    } catch (const TStreamError &e) {
        return e.what();
    }
    return {};
}

} // namespace

TEST(BinaryStream, LittleEndianLayoutsShortReadsAndImpossibleCounts)
{
    Stream w(QIODevice::WriteOnly);
    BinaryStream &s = w.S;
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
    const QByteArray expected = QByteArray::fromHex("FE AB FEFF 3412 FEFFFFFF 78563412"
                                                    "0807060504030201 0000C03F"
                                                    "00000000000000C0 01 00 7879");
    EXPECT_EQ(w.Data.toHex(' '), expected.toHex(' '));

    Stream rs(QIODevice::ReadOnly, expected);
    BinaryStream &r = rs.S;
    EXPECT_EQ(r.BytesLeft(), expected.size());
    // Braces read the values in order.
    const std::tuple<int, int, int, int, int, std::uint32_t, std::int64_t, float, double, bool,
                     bool, QByteArray>
        values{r.ReadInt8(),   r.ReadUInt8(),  r.ReadInt16(), r.ReadUInt16(),
               r.ReadInt32(),  r.ReadUInt32(), r.ReadInt64(), r.ReadFloat(),
               r.ReadDouble(), r.ReadBool(),   r.ReadBool(),  r.ReadBytes(2)};
    EXPECT_EQ(values, std::tuple(-2, 0xAB, -2, 0x1234, -2, 0x12345678u, 0x0102030405060708, 1.5f,
                                 -2.0, true, false, QByteArray("xy")));
    EXPECT_EQ(r.BytesLeft(), 0);
    // A failed read is a runtime error with a message; so is writing to a read-only device.
    EXPECT_THROW(r.ReadBool(), std::runtime_error);
    EXPECT_THROW(r.ReadExtended(), TStreamError);
    EXPECT_THROW(r.WriteInt32(1), TStreamError);

    // Counts are checked against what is left before anything is read or allocated.
    Stream counts(QIODevice::ReadOnly, QByteArray(19, 'x'));
    EXPECT_NO_THROW(counts.S.RequireBytes(4, 4));
    EXPECT_EQ(ErrorOf([&] { counts.S.RequireBytes(5, 4); }), "count 5 exceeds remaining bytes");
    EXPECT_THROW(counts.S.RequireBytes(-1, 1), TStreamError);
    EXPECT_THROW(counts.S.RequireBytes(std::numeric_limits<std::int64_t>::max(), 8), TStreamError);
    EXPECT_THROW(counts.S.ReadBytes(1 << 30), TStreamError);
    EXPECT_EQ(counts.S.ReadBytes(16), QByteArray(16, 'x'));
    EXPECT_THROW(counts.S.ReadInt32(), TStreamError); // three bytes left
}

TEST(Extended, EncodesAndDecodesExactly)
{
    // Exact encodings; 2^-1074, the smallest double subnormal, is a normal extended value.
    // clang-format off
    const struct { double Value; std::uint64_t Significand; std::uint16_t Top; } encodings[] = {
        {1.0, 0x8000000000000000, 0x3FFF}, {-2.5, 0xA000000000000000, 0xC000}, {0.0, 0, 0},
        {-0.0, 0, 0x8000}, {0.1, 0xCCCCCCCCCCCCD000, 0x3FFB},
        {Inf, 0x8000000000000000, 0x7FFF}, {-Inf, 0x8000000000000000, 0xFFFF},
        {std::ldexp(1.0, -1074), 0x8000000000000000, 16383 - 1074}};
    // clang-format on
    for (const auto &e : encodings) {
        EXPECT_EQ(Extended(e.Value), Le(e.Significand, 8) + Le(e.Top, 2)) << e.Value;
        EXPECT_EQ(FromExtended(e.Significand, e.Top), e.Value) << e.Value;
    }
    EXPECT_TRUE(std::signbit(FromExtended(0, 0x8000)));

    // 1e-310 is subnormal as a double: the extended form normalises it without loss.
    Stream tiny(QIODevice::ReadOnly, Extended(1e-310));
    const auto significand = std::uint64_t(tiny.S.ReadInt64());
    EXPECT_EQ(tiny.S.ReadUInt16(), 16383 - 1030); // 2^-1030 <= 1e-310 < 2^-1029
    EXPECT_EQ(significand >> 63, 1u);
    EXPECT_EQ(std::ldexp(double(significand), -1030 - 63), 1e-310);

    const QByteArray nan = Extended(std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(std::uint8_t(nan[9]) & 0x7F, 0x7F);
    EXPECT_EQ(std::uint8_t(nan[8]), 0xFF);
    EXPECT_EQ(std::uint8_t(nan[7]) & 0xC0, 0xC0); // integer bit and quiet bit
    EXPECT_TRUE(std::isnan(FromExtended(0xC000000000000000, 0x7FFF)));
    EXPECT_TRUE(std::isnan(Stream(QIODevice::ReadOnly, nan).S.ReadExtended()));

    // Decoding rounds once, to nearest even: ties go to the even double, anything above a
    // tie goes up; into the subnormal range 1.5 x 2^-1074 ties to 2^-1073 and 2^-1076
    // vanishes; beyond the double range lies infinity; unnormals (integer bit clear) decode
    // by their value.
    // clang-format off
    const struct { std::uint64_t Significand; std::uint16_t Top; double Expected; } roundings[] = {
        {0x8000000000000400, 0x3FFF, 1.0}, {0x8000000000000C00, 0x3FFF, 1.0 + std::ldexp(1.0, -51)},
        {0x8000000000000401, 0x3FFF, 1.0 + std::ldexp(1.0, -52)}, {0xFFFFFFFFFFFFFFFF, 0x3FFF, 2.0},
        {0xC000000000000000, 16383 - 1074, std::ldexp(1.0, -1073)},
        {0x8000000000000000, 16383 - 1076, 0.0},
        {0x8000000000000001, 16383 - 1075, std::ldexp(1.0, -1074)},
        {0x8000000000000000, 0x7FFE, Inf}, {0x4000000000000000, 0x4000, 1.0}};
    // clang-format on
    for (const auto &r : roundings)
        EXPECT_EQ(FromExtended(r.Significand, r.Top), r.Expected)
            << std::hex << r.Significand << " " << r.Top;
}

// The limits of the double range, a subnormal and random bit patterns of every kind.
TEST(Extended, RoundTripsEveryKindOfDouble)
{
    std::vector<double> values = {1e-310, std::numeric_limits<double>::max(),
                                  std::numeric_limits<double>::min(),
                                  std::numeric_limits<double>::denorm_min(), 123456.789e200};
    QRandomGenerator rng(42);
    while (values.size() < 2000)
        if (const double v = std::bit_cast<double>(rng.generate64()); !std::isnan(v))
            values.push_back(v);
    for (double v : values)
        ASSERT_EQ(Stream(QIODevice::ReadOnly, Extended(v)).S.ReadExtended(), v)
            << std::hexfloat << v;
}

TEST(Bitmap, BmpBytesOfATwoByTwoBitmap)
{
    TBitmap bmp(2, 2);
    bmp.SetPixel(0, 0, RGBToColor(0x10, 0x20, 0x30));
    bmp.SetPixel(1, 0, RGBToColor(0x40, 0x50, 0x60));
    bmp.SetPixel(0, 1, RGBToColor(0x70, 0x80, 0x90));
    bmp.SetPixel(1, 1, clBtnFace); // system colours are stored resolved
    const int rowBytes = 8;        // 6 bytes of pixels padded to a multiple of 4
    // File header: magic, size, reserved, pixel offset. Info header: size, width, height,
    // planes, bits, compression, image size, resolutions and palette (zero). Then the rows,
    // bottom first, B G R.
    const QByteArray expected = "BM" + Le(14 + 40 + 2 * rowBytes, 4) + Le(0, 4) + Le(54, 4) +
                                Le(40, 4) + Le(2, 4) + Le(2, 4) + Le(1, 2) + Le(24, 2) + Le(0, 4) +
                                Le(2 * rowBytes, 4) + QByteArray(16, '\0') +
                                QByteArray::fromHex("908070F0F0F00000 3020106050400000");
    EXPECT_EQ(bmp.SaveToBmp().toHex(' '), expected.toHex(' '));
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
    QByteArray hugeHeader = keep.SaveToBmp();
    hugeHeader[18] = char(0xFF); // width 0x7F0000FF: far more pixels than bytes
    hugeHeader[21] = char(0x7F);
    for (const QByteArray &bad : {QByteArray(), QByteArray("BM garbage that is not a bitmap"),
                                  keep.SaveToBmp().left(30), hugeHeader})
        EXPECT_FALSE(keep.LoadFromBmp(bad)) << bad.size();
    EXPECT_TRUE(keep == before);
    EXPECT_EQ(keep.Pixel(3, 0), clBlack); // outside
}

TEST(Bitmap, PixelsAndScanLinesAgree)
{
    TBitmap bmp(4, 2);
    EXPECT_EQ(bmp.Pixel(3, 1), clWhite);
    bmp.SetPixel(2, 1, RGBToColor(1, 2, 3));
    const std::uint8_t *row = bmp.ScanLine(1);
    EXPECT_EQ(QByteArray(reinterpret_cast<const char *>(row) + 6, 3), QByteArray("\3\2\1"));
    bmp.ScanLine(0)[2] = 0x00; // blue first, red last
    EXPECT_EQ(bmp.Pixel(0, 0), 0xFFFF00u);
    bmp.SetPixel(9, 9, clBlack); // ignored
    const TBitmap fromArgb(QImage(3, 3, QImage::Format_ARGB32));
    EXPECT_EQ(fromArgb.Image().format(), QImage::Format_BGR888);
    bmp.SetSize(0, 5);
    EXPECT_TRUE(bmp.IsEmpty());
}

// Writing to memory grows the array many times over, keeps what it held before, and may be
// taken away in pieces (Trim, take, Rewind) without a byte lost, doubled or left over.
TEST(BinaryStream, MemoryWritesGrowAndPassOnInPieces)
{
    QRandomGenerator random(99);
    Stream device(QIODevice::WriteOnly);
    device.S.WriteBytes("head");
    QByteArray memory = "head";
    QByteArray taken;
    {
        BinaryStream m(&memory);
        EXPECT_EQ(m.Pos(), 4);
        for (int i = 0; i < 60000; ++i) {
            const std::uint64_t v = random.generate64();
            for (BinaryStream *s : {&device.S, &m}) {
                if (v % 7 == 0)
                    s->WriteBytes(QByteArray(int(v % 3000), char(v >> 8)));
                else if (v % 2)
                    s->WriteInt64(std::int64_t(v));
                else
                    s->WriteUInt16(std::uint16_t(v));
            }
            if (v % 5000 == 1) {
                m.Trim();
                ASSERT_EQ(memory.size(), m.Pos());
                taken += memory;
                m.Rewind();
                ASSERT_EQ(m.Pos(), 0);
            }
        }
    }
    ASSERT_GT(device.Data.size(), 1 << 22);
    taken += memory; // the stream's end cut the array to the last piece
    EXPECT_EQ(taken, device.Data);
}

// Memory streams must be indistinguishable from device streams: the same bytes for the same
// writes, the same values and the same failures for the same reads.
TEST(BinaryStream, MemoryStreamsMatchDeviceStreams)
{
    using TWrite = void (*)(BinaryStream &, std::uint64_t);
    using TRead = std::uint64_t (*)(BinaryStream &);
    const std::pair<TWrite, TRead> kinds[] = {
        {[](BinaryStream &s, std::uint64_t v) { s.WriteUInt8(std::uint8_t(v)); },
         [](BinaryStream &s) -> std::uint64_t { return s.ReadUInt8(); }},
        {[](BinaryStream &s, std::uint64_t v) { s.WriteInt16(std::int16_t(v)); },
         [](BinaryStream &s) { return std::uint64_t(s.ReadInt16()); }},
        {[](BinaryStream &s, std::uint64_t v) { s.WriteUInt32(std::uint32_t(v)); },
         [](BinaryStream &s) -> std::uint64_t { return s.ReadUInt32(); }},
        {[](BinaryStream &s, std::uint64_t v) { s.WriteInt64(std::int64_t(v)); },
         [](BinaryStream &s) { return std::uint64_t(s.ReadInt64()); }},
        {[](BinaryStream &s, std::uint64_t v) { s.WriteExtended(double(std::int64_t(v)) / 3); },
         [](BinaryStream &s) { return std::bit_cast<std::uint64_t>(s.ReadExtended()); }},
        {[](BinaryStream &s, std::uint64_t v) { s.WriteBytes(QByteArray(int(v % 5), char(v))); },
         [](BinaryStream &s) { return std::uint64_t(s.ReadBytes(s.ReadUInt8() % 5).size()); }},
    };
    QRandomGenerator random(4711);
    for (int round = 0; round < 20; ++round) {
        Stream device(QIODevice::WriteOnly);
        QByteArray memory;
        BinaryStream m(&memory);
        std::vector<int> written;
        for (int i = 0; i < 200; ++i) {
            written.push_back(random.bounded(6));
            const std::uint64_t v = random.generate64();
            for (BinaryStream *s : {&device.S, &m})
                kinds[written.back()].first(*s, v);
            ASSERT_EQ(m.Pos(), device.S.Pos());
        }
        m.Trim();
        ASSERT_EQ(memory, device.Data);

        // Read both back, cut short at a random place, and compare value by value.
        const QByteArray cut = memory.left(random.bounded(memory.size() + 1));
        Stream dr(QIODevice::ReadOnly, cut);
        BinaryStream mr(cut.constData(), cut.size());
        for (const int kind : written) {
            ASSERT_EQ(mr.BytesLeft(), dr.S.BytesLeft());
            const auto read = [&](BinaryStream &s) {
                std::uint64_t value = 0;
                const std::string error = ErrorOf([&] { value = kinds[kind].second(s); });
                return std::pair(value, error);
            };
            ASSERT_EQ(read(mr), read(dr.S));
            ASSERT_EQ(mr.Pos(), dr.S.Pos());
        }
    }
    // Writing to a stream that reads memory fails as writing to a read-only device does.
    const QByteArray bytes("abcd");
    BinaryStream r(bytes.constData(), bytes.size());
    r.Skip(3);
    EXPECT_THROW(r.Skip(2), TStreamError);
    EXPECT_EQ(r.ReadUInt8(), 'd');
    EXPECT_THROW(r.WriteInt32(1), TStreamError);
}
