// SPDX-License-Identifier: MIT
// Counted, fixed-width and bitmap fields: exact bytes, truncation rules and bad input.
#include "bytes.h"

#include <tessal/platform/codepage.h>
#include <tessal/platform/streamprimitives.h>

#include <gtest/gtest.h>

#include <QBuffer>

namespace tessal {
namespace {

using test::Bytes;

// A byte buffer with a stream on it, for writing or for reading given bytes.
struct Buffer
{
    explicit Buffer(const QByteArray &bytes = {})
        : Data(bytes)
    {
        Device.setBuffer(&Data);
        Device.open(QIODevice::ReadWrite);
    }
    QByteArray Data;
    QBuffer Device;
    BinaryStream Stream{&Device};
};

// Keeps the process-wide code page of a test from leaking into the others.
struct CodePageScope
{
    explicit CodePageScope(const QByteArray &name) { EXPECT_TRUE(SetAnsiCodePage(name)); }
    ~CodePageScope() { SetAnsiCodePage(m_Old); }
    QByteArray m_Old = AnsiCodePage();
};

// A counted text keeps its length but only length mod 256 of its characters, each as its low
// byte; an ANSI text counts the code page's bytes; a fixed-width field is padded with spaces
// or cut. Reading goes through the code page, and a bad length or a short stream throws.
TEST(StreamPrimitives, TextFieldsByteForByte)
{
    const auto written = [](auto write) {
        Buffer out;
        write(out.Stream);
        return out.Data;
    };
    const auto read = [](const QByteArray &bytes) {
        Buffer in(bytes);
        const QString text = ReadCountedText(in.Stream);
        EXPECT_TRUE(in.Device.atEnd());
        return text;
    };
    QString caption;
    for (int i = 0; i < 300; ++i)
        caption.append(QChar('A' + i % 26));
    const QByteArray long300 = written([&](BinaryStream &s) { WriteCountedText(s, caption); });
    EXPECT_EQ(long300, Bytes().I32(300).Raw(caption.left(44).toLatin1()).Data());
    EXPECT_EQ(read(long300), caption.left(44));
    EXPECT_EQ(written([](BinaryStream &s) { WriteCountedText(s, QString(256, QChar('x'))); }),
              Bytes().I32(256).Data());
    EXPECT_EQ(written([](BinaryStream &s) {
                  WriteFixedText(s, QStringLiteral("TMyLinkLine"), 16);
                  WriteFixedText(s, QStringLiteral("ExactlySixteen16"), 16);
                  WriteFixedText(s, QStringLiteral("SeventeenLetters!"), 16);
              }),
              QByteArray("TMyLinkLine     ExactlySixteen16SeventeenLetters"));
    Buffer fixed(QByteArray("TMyLinkLine     "));
    EXPECT_EQ(ReadFixedText(fixed.Stream, 16), QStringLiteral("TMyLinkLine     "));
    {
        CodePageScope scope("WINDOWS-1252");
        EXPECT_EQ(written([](BinaryStream &s) {
                      WriteCountedText(s, QString(QChar(0x20AC)) + QStringLiteral("\u00e9z"));
                  }),
                  Bytes().I32(3).U8(0xAC).U8(0xE9).U8('z').Data());
        // The euro sign is 0x80 in Windows-1252; 0xAC there is the not sign.
        EXPECT_EQ(read(Bytes().I32(2).U8(0x80).U8(0xAC)), QStringLiteral("\u20ac\u00ac"));
    }
    {
        CodePageScope scope("GBK");
        const QString line = QStringLiteral("\u4e2d\u6587ab"); // two double-byte characters
        const QByteArray ansi = written([&](BinaryStream &s) { WriteCountedAnsiText(s, line); });
        EXPECT_EQ(ansi, Bytes().I32(6).U8(0xD6).U8(0xD0).U8(0xCE).U8(0xC4).U8('a').U8('b').Data());
        EXPECT_EQ(read(ansi), line);
    }
    Buffer negative(Bytes().I32(-1));
    EXPECT_THROW(ReadCountedText(negative.Stream), TStreamError);
    Buffer shortText(Bytes().I32(5).Raw("abc"));
    EXPECT_THROW(ReadCountedText(shortText.Stream), TStreamError);
    Buffer shortFixed(QByteArray("TMyLine"));
    EXPECT_THROW(ReadFixedText(shortFixed.Stream, 16), TStreamError);
}

// Good bitmap blocks (a count, then the BMP form) are written and read in every shape record
// test: the empty pattern block of each base record, an image shape's picture.
TEST(StreamPrimitives, BadBitmapBlocksAnswerFalseWithoutThrowing)
{
    TBitmap target(3, 3);
    Buffer negative(Bytes().I64(-5).I32(7));
    EXPECT_TRUE(ReadBitmapBuffer(negative.Stream, target));
    EXPECT_TRUE(target.IsEmpty());
    EXPECT_EQ(negative.Stream.ReadInt32(), 7);

    // Garbage of the stated length is consumed; the decoder's refusal leaves no bitmap.
    Buffer garbage(Bytes().I64(4).Raw("XXXX").I32(7));
    EXPECT_FALSE(ReadBitmapBuffer(garbage.Stream, target));
    EXPECT_TRUE(target.IsEmpty());
    EXPECT_EQ(garbage.Stream.ReadInt32(), 7);

    // A count beyond the stream: nothing is allocated, and the stream is at its end.
    Buffer huge(Bytes().I64(std::int64_t(1) << 60).Raw(TBitmap(2, 1).SaveToBmp()));
    EXPECT_FALSE(ReadBitmapBuffer(huge.Stream, target));
    EXPECT_THROW(huge.Stream.ReadUInt8(), TStreamError);

    Buffer cut(Bytes().I32(0));
    EXPECT_FALSE(ReadBitmapBuffer(cut.Stream, target));
}

} // namespace
} // namespace tessal
