// SPDX-License-Identifier: MIT
// Colour values, integer scaling, font sizes, code-page text and the message handler.
#include <tessal/platform/codepage.h>
#include <tessal/platform/color.h>
#include <tessal/platform/graphics.h>
#include <tessal/platform/message.h>

#include <gtest/gtest.h>

#include <climits>
#include <tuple>

using namespace tessal;

TEST(Color, ResolutionAndConversions)
{
    // System codes resolve to fixed values, unknown codes to black, plain colours lose only
    // the high byte.
    const std::pair<TColor, TColor> resolved[] = {
        {clWindowText, 0x000000}, {clWindow, 0xFFFFFF},   {clBtnFace, 0xF0F0F0},
        {clHighlight, 0xFF9933},  {clInfoBk, 0xE1FFFF},   {clBtnShadow, 0xA0A0A0},
        {clSystemColor | 99, 0},  {0x02123456, 0x123456}, {clRed, 0x0000FF}};
    for (auto [in, out] : resolved)
        EXPECT_EQ(ColorToRGB(in), out) << std::hex << in;
    for (TColor i = 0; i <= 24; ++i)
        EXPECT_FALSE(IsSystemColor(ColorToRGB(clSystemColor | i))) << i;

    EXPECT_EQ(ToQColor(RGBToColor(1, 2, 3)), QColor(1, 2, 3));
    EXPECT_EQ(ToQColor(clBtnFace), QColor(240, 240, 240));
    EXPECT_EQ(FromQColor(QColor(1, 2, 3)), 0x030201u);
    EXPECT_EQ(FromQColor(QColor::fromHsv(0, 255, 255)), clRed);
    EXPECT_EQ(std::tuple(GetRValue(0x00563412u), GetGValue(0x00563412u), GetBValue(0x00563412u)),
              std::tuple(0x12, 0x34, 0x56));
}

TEST(MulDiv, RoundsHalvesAwayFromZero)
{
    // The last rows need a 64-bit product; no divisor or a quotient out of range gives -1.
    // clang-format off
    const struct { int A, B, C, Expected; } cases[] = {
        {5, 1, 2, 3}, {3, 1, 2, 2}, {-5, 1, 2, -3}, {5, -1, 2, -3}, {5, 1, -2, -3},
        {-5, -1, -2, -3}, {-5, -1, 2, 3}, {1, 1, 3, 0}, {2, 1, 3, 1}, {-2, 1, 3, -1},
        {-11, 72, 96, -8}, {2000000000, 3, 4, 1500000000}, {INT_MAX, INT_MAX, INT_MAX, INT_MAX},
        {7, 3, 0, -1}, {INT_MAX, 2, 1, -1}};
    // clang-format on
    for (const auto &c : cases)
        EXPECT_EQ(MulDiv(c.A, c.B, c.C), c.Expected) << c.A << "*" << c.B << "/" << c.C;
}

TEST(Font, SizeAndHeightAreTwoViewsOfOneValue)
{
    TFont f;
    EXPECT_EQ(std::pair(f.Height(), f.Size()), std::pair(-11, 8)); // 8.25 points
    // Pixels per inch, whether a size (else a height) is set, the value and the other view:
    // 10 points are 13.33 pixels; 1 pixel at 48 per inch is 1.5 points, rounded away from
    // zero; a positive (cell) height gives a negative size. A size set reads back unchanged.
    const std::tuple<int, bool, int, int> rows[] = {{96, true, 10, -13},
                                                    {96, true, 9, -12},
                                                    {120, true, 9, -15},
                                                    {48, false, -1, 2},
                                                    {48, false, 5, -8}};
    for (auto [ppi, isSize, value, other] : rows) {
        f.PixelsPerInch = ppi;
        if (isSize)
            f.SetSize(value);
        else
            f.SetHeight(value);
        EXPECT_EQ(isSize ? f.Height() : f.Size(), other) << ppi << " " << value;
        EXPECT_EQ(isSize ? f.Size() : f.Height(), value) << ppi << " " << value;
    }
}

TEST(CodePage, Windows1252AndADoubleByteCodePage)
{
    ASSERT_EQ(AnsiCodePage(), QByteArray("WINDOWS-1252"));
    // Undefined bytes become the replacement character; unmappable characters '?', one per
    // character even for a surrogate pair.
    const std::pair<QString, QByteArray> pairs[] = {
        {QStringLiteral("\u20AC"), "\x80"},
        {QStringLiteral("A\u20ACz"), "A\x80z"},
        {QStringLiteral("caf\u00E9"), "caf\xE9"},
        {QStringLiteral("\u00AC"), "\xAC"},
        {QStringLiteral("x\u4E2Dy"), "x?y"},
        {QString(), QByteArray()},
        {QString::fromUtf8("<\xF0\x9F\x98\x80>"), "<?>"}};
    for (const auto &[text, bytes] : pairs) {
        EXPECT_EQ(ToAnsi(text), bytes);
        if (!bytes.contains('?')) {
            EXPECT_EQ(FromAnsi(bytes), text);
        }
    }
    EXPECT_EQ(FromAnsi(QByteArray("a\x81"
                                  "b")),
              QStringLiteral("a\uFFFDb"));
    // Every defined byte survives the round trip through Unicode.
    QByteArray all;
    for (int b = 0x20; b < 0x100; ++b)
        if (b != 0x81 && b != 0x8D && b != 0x8F && b != 0x90 && b != 0x9D)
            all.append(char(b));
    EXPECT_EQ(ToAnsi(FromAnsi(all)), all);

    ASSERT_TRUE(SetAnsiCodePage("GBK"));
    const QString text = QStringLiteral("\u4E2D\u6587 ok");
    EXPECT_EQ(ToAnsi(text), QByteArray("\xD6\xD0\xCE\xC4 ok"));
    EXPECT_EQ(FromAnsi(ToAnsi(text)), text);
    // A lead byte without its trail byte at the end does not swallow the text before it.
    EXPECT_EQ(FromAnsi(QByteArray("ab\xD6")), QStringLiteral("ab\uFFFD"));
    // Unknown names are refused and leave the code page alone.
    EXPECT_FALSE(SetAnsiCodePage("NO-SUCH-CODEPAGE"));
    EXPECT_FALSE(SetAnsiCodePage(""));
    EXPECT_EQ(AnsiCodePage(), QByteArray("GBK"));
    ASSERT_TRUE(SetAnsiCodePage("WINDOWS-1252"));
    EXPECT_EQ(ToAnsi(text), QByteArray("?? ok"));
}

// Other tests capture messages through a handler of their own; here the default handler is
// a real one, and an empty handler restores it rather than dropping messages.
TEST(Message, AnEmptyHandlerRestoresTheDefault)
{
    QStringList seen;
    const TMessageHandler previous = SetMessageHandler([&](const QString &t) { seen << t; });
    EXPECT_TRUE(bool(previous));
    ShowMessage(QStringLiteral("Error!There is no Layer!"));
    SetMessageHandler({});
    ShowMessage(QStringLiteral("to the default handler")); // logs on the offscreen platform
    EXPECT_EQ(seen, QStringList{"Error!There is no Layer!"});
    EXPECT_TRUE(bool(SetMessageHandler(previous)));
}
