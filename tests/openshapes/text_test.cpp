// SPDX-License-Identifier: MIT
// Text shapes: alignment in the box, zoom and turn, word wrap, layout alike at every zoom, border
// and background, copying, hit tests, and the editor dialog.
#include "shapes/testhost.h"

#include <tessal/geometry/scaledtext.h>
#include <tessal/shapes/text.h>
#include <tessal/shapes/texteditdialog.h>

#include <QApplication>
#include <QPlainTextEdit>
#include <QTimer>

#include <gtest/gtest.h>

#include <array>
#include <numbers>
#include <random>

namespace tessal::test {
namespace {

std::unique_ptr<TMyText> TextBox(TClassHost &host, float l, float t, float r, float b,
                                 const QStringList &lines)
{
    auto text = std::make_unique<TMyText>(&host);
    MakeBox(*text, l, t, r, b);
    TFont font;
    font.SetSize(12);
    font.Color = clBlack;
    text->SetFont(font);
    text->SetLines(lines);
    return text;
}

TPoint Measured(const TMyText &text, const QString &s, double zoom)
{
    QImage scratch = WhiteImage(10, 10);
    TCanvas canvas(&scratch);
    return text.GetTextWidthHeight(canvas, s, text.Font(), zoom, 0);
}

// The box is 20..180 x 20..120 with a 2-pixel margin. The ink of one line moves by exactly
// what the alignment rules say: the same glyphs are drawn at other whole-pixel places. The
// rules work in document units with the font at its own size, so at zoom 2 every offset is
// twice the zoom-1 one; the zoomed glyphs, however wide they happen to be, then keep the
// right end or the middle where the rules put it.
TEST(TextLayout, AlignmentsPlaceTheInkByTheBoxAtTwoZooms)
{
    for (int z : {1, 2}) {
        TClassHost host;
        host.ZoomValue = z;
        auto text = TextBox(host, 20, 20, 180, 120, {"Hello"});
        const TPoint size = Measured(*text, "Hello", 1);
        const int longer = Measured(*text, "Hello", z).X - z * size.X;
        const int lineHeight = Measured(*text, "Wg", 1).Y;
        const int margin = 2, boxW = 160, boxH = 100;
        const QRect leftTop = InkBounds(Painted(*text, 400, 400));
        SCOPED_TRACE(z);
        EXPECT_TRUE(leftTop.left() >= z * (20 + margin) && leftTop.top() >= z * (20 + margin));
        EXPECT_LE(leftTop.left(), z * (20 + margin + 3));
        EXPECT_LE(leftTop.bottom(), z * (20 + margin + lineHeight));

        text->SetHAlignment(TAlignment::taRightJustify);
        text->SetVAlignment(TVAlignment::vaBottom);
        const QRect rightBottom = InkBounds(Painted(*text, 400, 400));
        EXPECT_EQ(rightBottom.left() - leftTop.left(), z * (boxW - 2 * margin - size.X) - longer);
        EXPECT_EQ(rightBottom.top() - leftTop.top(), z * (boxH - 2 * margin - lineHeight));

        text->SetHAlignment(TAlignment::taCenter);
        text->SetVAlignment(TVAlignment::vaCenter);
        const QRect centre = InkBounds(Painted(*text, 400, 400));
        EXPECT_EQ(centre.left() - leftTop.left(),
                  int(std::nearbyint(z * (std::nearbyint((boxW - size.X) / 2.0) - margin) -
                                     longer / 2.0)));
        EXPECT_EQ(centre.top() - leftTop.top(),
                  z * (int(std::nearbyint((boxH - lineHeight) / 2.0)) - margin));
        EXPECT_EQ(centre.size(), leftTop.size());
    }
}

// Turned a quarter about its centre the wide box stands upright, and the lines with it.
TEST(TextLayout, TextTurnsWithTheShapeInsideTheTurnedBox)
{
    TClassHost host;
    auto text = TextBox(host, 40, 80, 160, 120, {"Hello World"});
    const QRect flat = InkBounds(Painted(*text, 200, 200));
    EXPECT_GT(flat.width(), flat.height());
    text->RotateChangeValueByAngle({100, 100}, std::numbers::pi / 2);
    const QRect turned = InkBounds(Painted(*text, 200, 200));
    EXPECT_GT(turned.height(), turned.width());
    EXPECT_TRUE(QRect(78, 38, 45, 125).contains(turned)) << turned.x() << "," << turned.y();
    // A clockwise quarter takes the upright top-left corner to the turned top-right: the
    // first glyphs sit near the top, on the side of the box's old top edge.
    EXPECT_LE(turned.top(), 40 + 2 + 4);
    EXPECT_GE(turned.right(), 110);
    // Flipped left-right it keeps its glyphs' tops on the mirrored side (turned the other
    // way, reading upwards from the bottom), not upside down: the first glyphs sit low.
    text->FlipHoriz();
    EXPECT_FLOAT_EQ(text->Angle(), -float(std::numbers::pi / 2));
    const QRect flipped = InkBounds(Painted(*text, 200, 200));
    EXPECT_GE(flipped.bottom(), 160 - 2 - 4);
    EXPECT_LE(flipped.left(), 90);
}

TEST(TextWordWrap, LongLinesBreakBetweenWordsAndLongWordsBetweenCharacters)
{
    TClassHost host;
    auto text = TextBox(host, 10, 10, 110, 190, {"aaaa cccc eeee oooo", "", "x"});
    QImage scratch = WhiteImage(10, 10);
    TCanvas canvas(&scratch);
    EXPECT_EQ(text->LaidOutLines(canvas), text->Lines());
    // Groups of consecutive rows holding ink: one per shown line of text.
    const auto bands = [](const QImage &image) {
        int count = 0;
        bool previous = false;
        for (int y = 0; y < image.height(); ++y) {
            bool ink = false;
            for (int x = 0; x < image.width() && !ink; ++x)
                ink = Inked(image, x, y);
            count += ink && !previous;
            previous = ink;
        }
        return count;
    };
    const QImage single = Painted(*text, 200, 200);

    text->SetWordWrap(true);
    const QStringList wrapped = text->LaidOutLines(canvas);
    ASSERT_GT(wrapped.size(), 3);
    const double room = 100 - 4;
    QStringList words;
    for (qsizetype i = 0; i + 2 < wrapped.size(); ++i) {
        EXPECT_LE(Measured(*text, wrapped[i], 1).X, room) << wrapped[i].toStdString();
        words << wrapped[i].split(' ');
    }
    EXPECT_EQ(words.join(' '), "aaaa cccc eeee oooo");
    EXPECT_EQ(wrapped.mid(wrapped.size() - 2), (QStringList{"", "x"}));
    // On screen: more separate rows of text in the first column of glyphs.
    const QImage broken = Painted(*text, 200, 200);
    EXPECT_LE(InkBounds(broken).right(), 110);
    EXPECT_EQ(bands(single), 2); // the empty line keeps its place
    EXPECT_EQ(bands(broken), int(wrapped.size()) - 1);

    text->SetLines({"abcdefghijklmnopqrstuvwxyz"});
    const QStringList pieces = text->LaidOutLines(canvas);
    EXPECT_GT(pieces.size(), 1);
    EXPECT_EQ(pieces.join(QString()), "abcdefghijklmnopqrstuvwxyz");
    for (const QString &piece : pieces)
        EXPECT_LE(Measured(*text, piece, 1).X, room);
}

// A random paragraph: one to three lines of up to eight words, some lines empty.
QStringList RandomParagraph(std::mt19937 &random)
{
    static const QStringList words{"a",
                                   "to",
                                   "the",
                                   "lorem",
                                   "ipsum",
                                   "Wide",
                                   "MMMM",
                                   "illicit",
                                   "jumps",
                                   "x",
                                   "Quartz",
                                   "wrapping",
                                   "mmmmmmmmmmmmmmmmmm"};
    QStringList lines;
    const int count = 1 + int(random() % 3);
    for (int i = 0; i < count; ++i) {
        QStringList line;
        const int length = int(random() % 9);
        for (int w = 0; w < length; ++w)
            line << words[qsizetype(random() % words.size())];
        lines << line.join(' ');
    }
    return lines;
}

// The hinted glyphs of a zoomed font are not exactly zoom times as wide or as high, so the
// layout must not be measured with them: at every zoom the lines break where they do at zoom
// 1, and each line's corner is its zoom-1 place times the zoom. Random boxes, paragraphs, font
// sizes, alignments and turns; the first mismatch is reported with its case.
TEST(TextZoom, LinesBreakAndStandAsAtZoomOneAtEveryZoom)
{
    std::mt19937 random(20240611);
    QImage scratch = WhiteImage(10, 10);
    TCanvas canvas(&scratch);
    int cases = 0, mismatches = 0, wrapped = 0;
    std::string first;
    for (int round = 0; round < 150; ++round) {
        TClassHost host;
        const float width = 20 + float(random() % 180), height = 20 + float(random() % 120);
        auto text = TextBox(host, 10, 10, 10 + width, 10 + height, RandomParagraph(random));
        TFont font = text->Font();
        font.SetSize(std::array{9, 11, 12, 14}[random() % 4]);
        text->SetFont(font);
        text->SetWordWrap(true);
        text->SetHAlignment(TAlignment(random() % 3));
        text->SetVAlignment(TVAlignment(random() % 3));
        if (round % 4 == 3)
            text->RotateChangeValueByAngle(text->GetCenterPoint(), 0.1 + 0.01 * (random() % 300));
        const QStringList lines = text->LaidOutLines(canvas);
        const std::vector<TMyText::TPlacedLine> places = text->PlacedLines(canvas);
        wrapped += lines.size() > text->Lines().size();
        for (double z : {0.5, 1.5, 2.0, 3.0}) {
            host.ZoomValue = z;
            const std::vector<TMyText::TPlacedLine> zoomed = text->PlacedLines(canvas);
            bool same = text->LaidOutLines(canvas) == lines && zoomed.size() == places.size();
            for (std::size_t i = 0; same && i < zoomed.size(); ++i)
                same = std::abs(zoomed[i].TopLeft.X / z - places[i].TopLeft.X) < 1 / z &&
                       std::abs(zoomed[i].TopLeft.Y / z - places[i].TopLeft.Y) < 1 / z;
            ++cases;
            if (!same && mismatches++ == 0)
                first = QStringLiteral("zoom %1, box %2 x %3, size %4: \"%5\"")
                            .arg(z)
                            .arg(width)
                            .arg(height)
                            .arg(font.Size())
                            .arg(text->Lines().join('|'))
                            .toStdString();
        }
    }
    EXPECT_GT(wrapped, 30); // the cases do exercise word wrap
    EXPECT_EQ(mismatches, 0) << "of " << cases << ", first: " << first;
}

// At any zoom a right-aligned line ends at the right margin, and a centred one has its middle
// where the zoom-1 layout puts it, however long the zoomed font's hinting makes its glyphs.
// The run drawn alone says where its ink starts against the point it is drawn at.
TEST(TextZoom, AlignedLinesKeepTheirEndOrMiddleAtEveryZoom)
{
    std::mt19937 random(20261127);
    int cases = 0, longer = 0;
    for (int round = 0; round < 60; ++round) {
        TClassHost host;
        const int width = 200 + int(random() % 200);
        const QString line = RandomParagraph(random).join(' ').left(16).trimmed();
        if (line.isEmpty())
            continue;
        auto text = TextBox(host, 10, 10, 10 + float(width), 60, {line});
        TFont font = text->Font();
        font.SetSize(std::array{9, 11, 12, 14}[random() % 4]);
        text->SetFont(font);
        const bool right = round % 2 == 0;
        text->SetHAlignment(right ? TAlignment::taRightJustify : TAlignment::taCenter);
        const int w1 = Measured(*text, line, 1).X;
        for (double z : {0.5, 1.5, 2.0, 3.0}) {
            host.ZoomValue = z;
            const int wz = Measured(*text, line, z).X;
            QImage alone = WhiteImage(wz + 100, 200);
            TCanvas canvas(&alone);
            MyLogTextOut(canvas, 50, 10, line, font, z, 0);
            const int bearing = InkBounds(alone).left() - 50;
            const int start = InkBounds(Painted(*text, 3 * (width + 20), 200)).left() - bearing;
            const double end =
                right ? z * (10 + width - 2)
                      : z * (10 + std::nearbyint((width - w1) / 2.0) + w1 / 2.0) + wz / 2.0;
            SCOPED_TRACE(QStringLiteral("\"%1\", zoom %2, size %3, %4")
                             .arg(line)
                             .arg(z)
                             .arg(font.Size())
                             .arg(right ? "right" : "centre")
                             .toStdString());
            EXPECT_NEAR(start + wz, end, 1);
            longer += std::abs(wz - z * w1) > 2;
            ++cases;
        }
    }
    EXPECT_GT(longer, 10) << "of " << cases << ": zoomed runs must differ for the check to bite";
}

TEST(TextPaint, BorderAndSolidBackgroundFollowTheirFlags)
{
    TClassHost host;
    host.HostBrush.Color = 0x0000FF; // red
    auto text = TextBox(host, 20, 20, 120, 80, {});
    EXPECT_TRUE(InkBounds(Painted(*text, 200, 200)).isNull());
    text->SetIsBorder(true);
    QImage image = Painted(*text, 200, 200);
    EXPECT_TRUE(Inked(image, 70, 20));
    EXPECT_FALSE(Inked(image, 70, 50));
    text->SetIsSolid(true);
    text->SetIsBorder(false);
    image = Painted(*text, 200, 200);
    EXPECT_EQ(PixelAt(image, 70, 50), kRed);
    EXPECT_EQ(PixelAt(image, 20, 20), kRed);
    EXPECT_FALSE(Inked(image, 125, 50));
    // The text shape is its own text: Info is never drawn.
    text->SetIsSolid(false);
    text->SetTextPoint({70, 150});
    text->SetInfo("info");
    EXPECT_TRUE(InkBounds(Painted(*text, 200, 200)).isNull());
}

// The dialog is modal; a timer answers it the way a user would: it shows the lines, takes
// the new text and is accepted or cancelled.
void AnswerTextDialog(const QString &shown, const QString &typed, bool accept)
{
    QTimer::singleShot(0, [=] {
        auto *dialog = qobject_cast<TTextEditDialog *>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(dialog->Editor()->toPlainText(), shown);
        dialog->Editor()->setPlainText(typed);
        accept ? dialog->accept() : dialog->reject();
    });
}

TEST(TextEditDialog, OkTakesTheEditedLinesCancelKeepsThem)
{
    QStringList lines{"old"};
    AnswerTextDialog("old", "one\ntwo", true);
    EXPECT_TRUE(EditTextLines(nullptr, lines));
    EXPECT_EQ(lines, (QStringList{"one", "two"}));
    AnswerTextDialog("one\ntwo", "changed", false);
    EXPECT_FALSE(EditTextLines(nullptr, lines));
    EXPECT_EQ(lines, (QStringList{"one", "two"}));
}

} // namespace
} // namespace tessal::test
