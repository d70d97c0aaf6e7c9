// SPDX-License-Identifier: MIT
// Colour values, integer scaling, font sizes, code-page text and the message handler.
#include <tessal/platform/codepage.h>
#include <tessal/platform/color.h>
#include <tessal/platform/graphics.h>
#include <tessal/platform/message.h>

#include <gtest/gtest.h>

#include <climits>

using namespace tessal;

TEST(Color, SystemCodesResolveToFixedValues)
{
    EXPECT_EQ(ColorToRGB(clWindowText), 0x000000u);
    EXPECT_EQ(ColorToRGB(clWindow), 0xFFFFFFu);
    EXPECT_EQ(ColorToRGB(clBtnFace), 0xF0F0F0u);
    EXPECT_EQ(ColorToRGB(clHighlight), RGBToColor(51, 153, 255));
    EXPECT_EQ(ColorToRGB(clHighlight), 0xFF9933u);
    EXPECT_EQ(ColorToRGB(clInfoBk), 0xE1FFFFu);
    EXPECT_EQ(ColorToRGB(clBtnShadow), 0xA0A0A0u);
    // Every known code becomes a plain colour; unknown codes become black.
    for (TColor i = 0; i <= 24; ++i)
        EXPECT_FALSE(IsSystemColor(ColorToRGB(clSystemColor | i))) << i;
    EXPECT_EQ(ColorToRGB(clSystemColor | 99), 0u);
    // Plain colours lose only the high byte.
    EXPECT_EQ(ColorToRGB(0x02123456u), 0x123456u);
    EXPECT_EQ(ColorToRGB(clRed), 0x0000FFu);
}

TEST(Color, QColorConversionKeepsChannelOrder)
{
    EXPECT_EQ(ToQColor(clRed), QColor(255, 0, 0));
    EXPECT_EQ(ToQColor(RGBToColor(1, 2, 3)), QColor(1, 2, 3));
    EXPECT_EQ(ToQColor(clBtnFace), QColor(240, 240, 240));
    EXPECT_EQ(FromQColor(QColor(1, 2, 3)), 0x030201u);
    EXPECT_EQ(FromQColor(QColor::fromHsv(0, 255, 255)), clRed);
    EXPECT_EQ(GetRValue(0x00563412u), 0x12);
    EXPECT_EQ(GetGValue(0x00563412u), 0x34);
    EXPECT_EQ(GetBValue(0x00563412u), 0x56);
}

TEST(MulDiv, RoundsHalvesAwayFromZero)
{
    EXPECT_EQ(MulDiv(5, 1, 2), 3);
    EXPECT_EQ(MulDiv(3, 1, 2), 2);
    EXPECT_EQ(MulDiv(-5, 1, 2), -3);
    EXPECT_EQ(MulDiv(5, -1, 2), -3);
    EXPECT_EQ(MulDiv(5, 1, -2), -3);
    EXPECT_EQ(MulDiv(-5, -1, -2), -3);
    EXPECT_EQ(MulDiv(-5, -1, 2), 3);
    EXPECT_EQ(MulDiv(1, 1, 3), 0);
    EXPECT_EQ(MulDiv(2, 1, 3), 1);
    EXPECT_EQ(MulDiv(-2, 1, 3), -1);
    EXPECT_EQ(MulDiv(-11, 72, 96), -8);
    // The intermediate product needs 64 bits.
    EXPECT_EQ(MulDiv(2000000000, 3, 4), 1500000000);
    EXPECT_EQ(MulDiv(INT_MAX, INT_MAX, INT_MAX), INT_MAX);
    // No divisor, or a quotient out of range: -1.
    EXPECT_EQ(MulDiv(7, 3, 0), -1);
    EXPECT_EQ(MulDiv(INT_MAX, 2, 1), -1);
}

TEST(Font, SizeAndHeightAreTwoViewsOfOneValue)
{
    TFont f;
    EXPECT_EQ(f.Height(), -11);
    EXPECT_EQ(f.Size(), 8); // 8.25 points
    f.SetSize(10);
    EXPECT_EQ(f.Height(), -13); // 13.33 pixels
    f.SetSize(9);
    EXPECT_EQ(f.Height(), -12);
    EXPECT_EQ(f.Size(), 9);
    f.PixelsPerInch = 120;
    f.SetSize(9);
    EXPECT_EQ(f.Height(), -15);
    f.PixelsPerInch = 48;
    f.SetHeight(-1);
    EXPECT_EQ(f.Size(), 2); // 1.5 points round away from zero
    f.SetHeight(5);         // a positive (cell) height gives a negative size
    EXPECT_EQ(f.Size(), -8);
}

TEST(CodePage, Windows1252ByDefault)
{
    ASSERT_EQ(AnsiCodePage(), QByteArray("WINDOWS-1252"));
    EXPECT_EQ(ToAnsi(QStringLiteral("\u20AC")), QByteArray("\x80"));
    EXPECT_EQ(FromAnsi(QByteArray("\xAC")), QStringLiteral("\u00AC"));
    EXPECT_EQ(FromAnsi(QByteArray("A\x80z")), QStringLiteral("A\u20ACz"));
    EXPECT_EQ(ToAnsi(QStringLiteral("caf\u00E9")), QByteArray("caf\xE9"));
    // Undefined bytes become the replacement character; unmappable characters '?', one
    // per character even for a surrogate pair.
    EXPECT_EQ(FromAnsi(QByteArray("a\x81"
                                  "b")),
              QStringLiteral("a\uFFFDb"));
    EXPECT_EQ(ToAnsi(QStringLiteral("x\u4E2Dy")), QByteArray("x?y"));
    EXPECT_EQ(ToAnsi(QString::fromUtf8("<\xF0\x9F\x98\x80>")), QByteArray("<?>"));
    EXPECT_EQ(ToAnsi(QString()), QByteArray());
    // Every defined byte survives the round trip through Unicode.
    QByteArray all;
    for (int b = 0x20; b < 0x100; ++b)
        if (b != 0x81 && b != 0x8D && b != 0x8F && b != 0x90 && b != 0x9D)
            all.append(char(b));
    EXPECT_EQ(ToAnsi(FromAnsi(all)), all);
}

TEST(CodePage, SwitchingToADoubleByteCodePage)
{
    ASSERT_TRUE(SetAnsiCodePage("GBK"));
    const QString text = QStringLiteral("\u4E2D\u6587 ok");
    const QByteArray bytes = ToAnsi(text);
    EXPECT_EQ(bytes, QByteArray("\xD6\xD0\xCE\xC4 ok"));
    EXPECT_EQ(FromAnsi(bytes), text);
    // A lead byte without its trail byte at the end does not swallow the text before it.
    EXPECT_EQ(FromAnsi(QByteArray("ab\xD6")), QStringLiteral("ab\uFFFD"));
    // Unknown names are refused and leave the code page alone.
    EXPECT_FALSE(SetAnsiCodePage("NO-SUCH-CODEPAGE"));
    EXPECT_FALSE(SetAnsiCodePage(""));
    EXPECT_EQ(AnsiCodePage(), QByteArray("GBK"));
    ASSERT_TRUE(SetAnsiCodePage("WINDOWS-1252"));
    EXPECT_EQ(ToAnsi(text), QByteArray("?? ok"));
}

TEST(Message, HandlerCanBeReplacedAndRestored)
{
    QStringList seen;
    TMessageHandler previous = SetMessageHandler([&](const QString &t) { seen << t; });
    EXPECT_TRUE(bool(previous));
    ShowMessage(QStringLiteral("Error!There is no Layer!"));
    ShowMessage(QStringLiteral("second"));
    EXPECT_EQ(seen, QStringList({"Error!There is no Layer!", "second"}));
    TMessageHandler mine = SetMessageHandler(previous);
    ASSERT_TRUE(bool(mine));
    mine(QStringLiteral("direct"));
    EXPECT_EQ(seen.size(), 3);
    ShowMessage(QStringLiteral("to the default handler")); // logs on the offscreen platform
    EXPECT_EQ(seen.size(), 3);
    // An empty handler restores the default rather than dropping messages.
    SetMessageHandler({});
    EXPECT_TRUE(bool(SetMessageHandler(previous)));
}
