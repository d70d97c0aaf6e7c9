// SPDX-License-Identifier: MIT
// LoadGraphicsFile on pictures written here: raster files through QImage, metafiles built
// record by record from the file-format tables, and broken files.
#include <tessal/geometry/bitmapops.h>

#include "common/files.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <initializer_list>
#include <tuple>
#include <vector>

namespace tessal {
namespace {

class PictureFile : public ::testing::Test
{
protected:
    QString Write(const QString &name, const QByteArray &bytes)
    {
        const QString path = m_Dir.filePath(name);
        EXPECT_TRUE(test::WriteFile(path, bytes));
        return path;
    }
    QString Save(const QString &name, const QImage &image, const char *format)
    {
        const QString path = m_Dir.filePath(name);
        EXPECT_TRUE(image.save(path, format));
        return path;
    }

    QTemporaryDir m_Dir;
};

// The values as little-endian words of `bytes` bytes each.
QByteArray Le(int bytes, std::initializer_list<qint64> values)
{
    QByteArray out;
    for (qint64 v : values)
        for (int i = 0; i < bytes; ++i)
            out.append(char((v >> (8 * i)) & 0xFF));
    return out;
}

// An enhanced metafile of 100 x 50 pixels at 96 per inch with a red rectangle from (10, 10)
// to (60, 40): header, brush, select, rectangle, end.
QByteArray MakeEmf()
{
    // EMR_HEADER, size; bounds in device pixels (inclusive); frame in 0.01 mm; signature,
    // version, total bytes (patched below), records; handles and a reserved word.
    // Description, palette, device size in pixels and mm, pixel format, micrometres.
    QByteArray f = Le(4, {1, 108, 0, 0, 99, 49, 0, 0, 2645, 1322, 0x464D4520, 0x10000, 0, 5}) +
                   Le(2, {2, 0}) + Le(4, {0, 0, 0, 1920, 1080, 508, 286, 0, 0, 0, 508000, 286000});
    f += Le(4, {39, 24, 1, 0, 0x0000FF, 0}); // EMR_CREATEBRUSHINDIRECT: solid red as 0x00BBGGRR
    f += Le(4, {37, 12, 1});                 // EMR_SELECTOBJECT
    f += Le(4, {43, 24, 10, 10, 60, 40});    // EMR_RECTANGLE
    f += Le(4, {14, 20, 0, 16, 20});         // EMR_EOF
    f.replace(48, 4, Le(4, {f.size()}));
    return f;
}

// A WMF record: size in 16-bit words, function, parameters (coordinates in reverse order).
QByteArray WmfRecord(int function, std::initializer_list<qint64> words)
{
    return Le(4, {3 + qint64(words.size())}) + Le(2, {function}) + Le(2, words);
}

// A placeable metafile of 100 x 50 units at 96 per inch with the same red rectangle.
QByteArray MakeWmf()
{
    // Key; handle, frame left, top, right, bottom, units per inch; reserved; checksum.
    QByteArray f = Le(4, {0x9AC6CDD7}) + Le(2, {0, 0, 0, 100, 50, 96}) + Le(4, {0});
    int checksum = 0;
    for (int i = 0; i < 10; ++i)
        checksum ^= quint8(f[2 * i]) | (quint8(f[2 * i + 1]) << 8);
    f += Le(2, {checksum});
    const QByteArray r = WmfRecord(0x020B, {0, 0}) +            // SETWINDOWORG y, x
                         WmfRecord(0x020C, {50, 100}) +         // SETWINDOWEXT y, x
                         WmfRecord(0x02FC, {0, 0x00FF, 0, 0}) + // CREATEBRUSHINDIRECT
                         WmfRecord(0x012D, {0}) +               // SELECTOBJECT
                         WmfRecord(0x041B, {40, 60, 10, 10}) +  // RECTANGLE b, r, t, l
                         WmfRecord(0x0000, {});                 // EOF
    // Header: type, size in words, version, file size in words, objects, largest record,
    // no parameters.
    return f + Le(2, {1, 9, 0x0300}) + Le(4, {(18 + r.size()) / 2}) + Le(2, {1}) + Le(4, {7}) +
           Le(2, {0}) + r;
}

unsigned Rgb(const TBitmap &b, int x, int y)
{
    const TColor c = b.Pixel(x, y);
    return (GetRValue(c) << 16) | (GetGValue(c) << 8) | GetBValue(c);
}

TEST_F(PictureFile, RasterFormatsByTheirLastThreeLetters)
{
    QImage image(7, 5, QImage::Format_RGB32);
    image.fill(QColor(200, 30, 60));
    image.setPixel(3, 2, qRgb(0, 0, 255));
    QString reason = "stale";
    TBitmap bmp = LoadGraphicsFile(Save("a.bmp", image, "BMP"), &reason);
    ASSERT_EQ(std::pair(bmp.Width(), bmp.Height()), std::pair(7, 5));
    EXPECT_EQ(
        std::tuple(bmp.Pixel(0, 0), bmp.Pixel(3, 2), reason, bmp.Image().format()),
        std::tuple(RGBToColor(200, 30, 60), TColor(clBlue), QString(), QImage::Format_BGR888));

    image.fill(QColor(20, 180, 90)); // flat colour survives JPEG compression nearly intact
    const QByteArray jpeg = test::ReadFile(Save("j.jpg", image, "JPEG"));
    for (const char *name : {"b.jpg", "c.JPEG", "d.Jpeg"}) {
        const TBitmap j = LoadGraphicsFile(Write(name, jpeg));
        ASSERT_EQ(j.Width(), 7) << name;
        EXPECT_NEAR(GetGValue(j.Pixel(3, 2)), 180, 4);
        EXPECT_NEAR(GetRValue(j.Pixel(3, 2)), 20, 4);
    }
    // The name decides, not the contents: JPEG bytes named .bmp are no bitmap.
    EXPECT_TRUE(LoadGraphicsFile(Write("e.bmp", jpeg), &reason).IsEmpty());
    EXPECT_TRUE(reason.contains("BMP")) << reason.toStdString();

    // The transparency of an icon or a PNG picture becomes white.
    QImage icon(16, 16, QImage::Format_ARGB32);
    icon.fill(Qt::transparent);
    for (int y = 4; y < 12; ++y)
        for (int x = 4; x < 12; ++x)
            icon.setPixel(x, y, qRgba(255, 0, 0, 255));
    for (auto [name, format] : {std::pair("i.ICO", "ICO"), {"p.png", "PNG"}}) {
        const TBitmap b = LoadGraphicsFile(Save(name, icon, format));
        ASSERT_EQ(std::pair(b.Width(), b.Height()), std::pair(16, 16)) << name;
        EXPECT_EQ(std::tuple(b.Pixel(8, 8), b.Pixel(1, 1), b.Image().format()),
                  std::tuple(TColor(clRed), TColor(clWhite), QImage::Format_BGR888));
    }
}

TEST_F(PictureFile, UnknownMissingAndBrokenFilesAnswerEmpty)
{
    QImage image(4, 4, QImage::Format_RGB32);
    image.fill(Qt::red);
    QString reason;
    EXPECT_TRUE(LoadGraphicsFile(Save("p.gif", image, "PNG"), &reason).IsEmpty());
    EXPECT_EQ(reason, "unsupported picture format: .gif");
    EXPECT_TRUE(LoadGraphicsFile(m_Dir.filePath("none.bmp"), &reason).IsEmpty());
    EXPECT_TRUE(reason.contains("none.bmp"));
    EXPECT_TRUE(LoadGraphicsFile(m_Dir.filePath("none.bmp")).IsEmpty());

    const QByteArray bmp = test::ReadFile(Save("whole.bmp", image, "BMP"));
    for (qsizetype cut : {0, 10, 40}) { // no header, half a header, no pixel rows
        reason.clear();
        EXPECT_TRUE(LoadGraphicsFile(Write("cut.bmp", bmp.left(cut)), &reason).IsEmpty()) << cut;
        EXPECT_FALSE(reason.isEmpty());
    }
    EXPECT_TRUE(LoadGraphicsFile(Write("x.jpg", "not a jpeg")).IsEmpty());
    EXPECT_TRUE(LoadGraphicsFile(Write("x.ico", QByteArray(6, '\0'))).IsEmpty());
}

TEST_F(PictureFile, Metafiles)
{
    // Both hold a red rectangle from (10, 10) to (60, 40) on 100 x 50 pixels. Every
    // truncation fails cleanly, and so do a wrong signature, a record size running past the
    // end and a wrong placeable-header checksum.
    // Name, contents, whether the reader is built, the step of the truncations, damages.
    const std::tuple<QString, QByteArray, bool, int, std::vector<std::pair<int, char>>> files[] = {
#if defined(TESSAL_HAVE_EMF)
        {"r.emf", MakeEmf(), true, 4, {{40, 'X'}, {108 + 4, char(0xF0)}}},
#else
        {"r.emf", MakeEmf(), false, 4, {}},
#endif
#if defined(TESSAL_HAVE_WMF)
        {"r.WMF", MakeWmf(), true, 2, {{20, char(quint8(MakeWmf()[20]) ^ 1)}}},
#else
        {"r.WMF", MakeWmf(), false, 2, {}},
#endif
    };
    for (const auto &[name, bytes, built, step, damage] : files) {
        SCOPED_TRACE(name.toStdString());
        QString reason;
        const TBitmap b = LoadGraphicsFile(Write(name, bytes), &reason);
        if (!built) {
            EXPECT_TRUE(b.IsEmpty());
            EXPECT_TRUE(reason.contains("not built in"));
            continue;
        }
        ASSERT_FALSE(b.IsEmpty()) << reason.toStdString();
        EXPECT_EQ(std::tuple(b.Width(), b.Height(), b.Image().format()),
                  std::tuple(100, 50, QImage::Format_BGR888));
        for (auto [x, y, rgb] : {std::tuple{30, 25, 0xFF0000u}, std::tuple{12, 12, 0xFF0000u},
                                 std::tuple{5, 5, 0xFFFFFFu}, std::tuple{70, 25, 0xFFFFFFu},
                                 std::tuple{80, 45, 0xFFFFFFu}})
            EXPECT_EQ(Rgb(b, x, y), rgb) << x << "," << y;
        const QString cutName = "t." + name.right(3);
        for (qsizetype cut = 0; cut < bytes.size(); cut += step)
            EXPECT_TRUE(LoadGraphicsFile(Write(cutName, bytes.left(cut))).IsEmpty()) << cut;
        for (auto [at, byte] : damage) {
            QByteArray bad = bytes;
            bad[at] = byte;
            reason.clear();
            EXPECT_TRUE(LoadGraphicsFile(Write(cutName, bad), &reason).IsEmpty()) << at;
            EXPECT_FALSE(reason.isEmpty()) << at;
        }
    }
}

} // namespace
} // namespace tessal
