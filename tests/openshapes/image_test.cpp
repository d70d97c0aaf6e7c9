// SPDX-License-Identifier: MIT
// Image shapes: the picture stretched, turned and clipped into the box, the adjusted copy
// (brightness, grey, transparency, mirrors) against the untouched original, border, copying
// and loading.
#include "shapes/testhost.h"

#include <tessal/shapes/image.h>

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <numbers>

namespace tessal::test {
namespace {

constexpr unsigned kGreen = 0x00FF00;

// A 4 x 2 picture of distinct colours (0xRRGGBB, row by row).
const unsigned kCells[2][4] = {{0xC86400, 0x0000FF, 0x20A040, 0xFFFF00},
                               {0x808080, 0x00FFFF, 0x102030, 0xFF00FF}};

TColor ToTColor(unsigned rgb)
{
    return RGBToColor(std::uint8_t(rgb >> 16), std::uint8_t(rgb >> 8), std::uint8_t(rgb));
}

TBitmap Picture()
{
    TBitmap bitmap(4, 2);
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 4; ++x)
            bitmap.SetPixel(x, y, ToTColor(kCells[y][x]));
    return bitmap;
}

// The picture in the box 40,40 .. 120,80: each cell is 20 x 20 at zoom 1.
std::unique_ptr<TMyImage> ImageShape(TClassHost &host)
{
    auto image = std::make_unique<TMyImage>(&host);
    MakeBox(*image, 40, 40, 120, 80);
    image->SetBitmap(Picture());
    return image;
}

// The colour shown in the middle of cell (cx, cy).
unsigned ShownCell(const QImage &image, int cx, int cy, double z)
{
    return PixelAt(image, int((50 + 20 * cx) * z), int((50 + 20 * cy) * z));
}

// The colour the shape shows now in the middle of cell (cx, cy), over green, at zoom 1.
unsigned Shown(TMyShape &shape, int cx, int cy)
{
    return ShownCell(Painted(shape, 300, 300, kGreen), cx, cy, 1);
}

TEST(ImagePaint, PictureIsStretchedIntoTheBoxAtTwoZoomsAndNothingOutside)
{
    for (double z : {1.0, 2.0}) {
        TClassHost host;
        host.ZoomValue = z;
        auto shape = ImageShape(host);
        const QImage image = Painted(*shape, 300, 300, kGreen);
        for (int y = 0; y < 2; ++y)
            for (int x = 0; x < 4; ++x)
                EXPECT_EQ(ShownCell(image, x, y, z), kCells[y][x]) << z << " " << x << "," << y;
        EXPECT_EQ(InkBounds(image, kGreen),
                  QRect(int(40 * z), int(40 * z), int(80 * z), int(40 * z)))
            << z;
    }
}

// A quarter turn clockwise about the centre: the box stands 40 wide and 80 high, and the
// picture's top-left cell lands where RotateAPoint takes the cell's middle.
TEST(ImagePaint, TurnedPictureTurnsWithTheShapeAndIsClippedToTheBox)
{
    TClassHost host;
    auto shape = ImageShape(host);
    const TMyPoint centre{80, 60};
    shape->RotateChangeValueByAngle(centre, std::numbers::pi / 2);
    const QImage image = Painted(*shape, 300, 300, kGreen);
    for (int y = 0; y < 2; ++y) {
        for (int x = 0; x < 4; ++x) {
            const TMyPoint at = RotateAPoint({float(50 + 20 * x), float(50 + 20 * y)}, centre,
                                             float(std::numbers::pi / 2));
            EXPECT_EQ(PixelAt(image, int(at.X), int(at.Y)), kCells[y][x]) << x << "," << y;
        }
    }
    const QRect ink = InkBounds(image, kGreen);
    EXPECT_NEAR(ink.width(), 40, 1);
    EXPECT_NEAR(ink.height(), 80, 1);
}

// The byte arithmetic of each adjustment is the bitmap operations'; here that the shown
// copy takes it and the original never does.
TEST(ImageAdjust, BrightnessAndGreyChangeTheShownCopyNeverTheOriginal)
{
    TClassHost host;
    auto shape = ImageShape(host);
    shape->SetBrightness(40);
    EXPECT_EQ(Shown(*shape, 0, 0), 0xF08C28u); // C8 64 00 each +40
    EXPECT_EQ(shape->Bitmap(), Picture());

    shape->SetBrightness(0);
    shape->SetGrayScale(true);
    EXPECT_EQ(Shown(*shape, 0, 0), 0x646464u); // (200 + 100 + 0) / 3

    shape->SetGrayScale(false);
    shape->SetContrast(255);
    EXPECT_EQ(shape->AdjustedBitmap().Pixel(0, 0), RGBToColor(255, 73, 0));
    shape->SetContrast(0);
    EXPECT_EQ(shape->AdjustedBitmap(), Picture()); // settings back: the original again
}

TEST(ImageAdjust, TransparentColourAutoFromTheBottomLeftOrFixed)
{
    TClassHost host;
    auto shape = ImageShape(host);
    shape->SetTransparent(true);
    EXPECT_EQ(shape->TransparentKey(), ToTColor(kCells[1][0]));
    EXPECT_EQ(Shown(*shape, 0, 1), kGreen);
    EXPECT_EQ(Shown(*shape, 1, 1), kCells[1][1]);

    // The key is taken from the adjusted copy, so it follows the brightness.
    shape->SetBrightness(16);
    EXPECT_EQ(shape->TransparentKey(), ToTColor(0x909090));
    EXPECT_EQ(Shown(*shape, 0, 1), kGreen);
    shape->SetBrightness(0);

    shape->SetTransparentMode(TTransparentMode::tmFixed);
    shape->SetTransparentColor(ToTColor(kCells[0][2]));
    EXPECT_EQ(Shown(*shape, 2, 0), kGreen);
    EXPECT_EQ(Shown(*shape, 0, 1), kCells[1][0]);

    shape->SetTransparent(false);
    EXPECT_EQ(Shown(*shape, 2, 0), kCells[0][2]);
}

TEST(ImageAdjust, FlipsMirrorThePicture)
{
    TClassHost host;
    auto shape = ImageShape(host);
    shape->FlipHoriz();
    for (int x = 0; x < 4; ++x)
        EXPECT_EQ(Shown(*shape, x, 0), kCells[0][3 - x]) << x;
    shape->FlipVert();
    for (int x = 0; x < 4; ++x)
        EXPECT_EQ(Shown(*shape, x, 0), kCells[1][3 - x]) << x;
    shape->FlipHoriz();
    shape->FlipVert();
    EXPECT_EQ(Shown(*shape, 0, 0), kCells[0][0]);
    EXPECT_EQ(shape->Bitmap(), Picture());
}

// A turned picture flipped left-right shows as the mirror image of what it showed; the
// plain box rule (pi - Angle) would show it upside down. Top-bottom alike, and two flips
// give the angle back exactly.
TEST(ImageAdjust, FlipsOfATurnedPictureMirrorWhatIsShown)
{
    TClassHost host;
    auto shape = ImageShape(host);
    shape->RotateChangeValueByAngle({80, 60}, 0.5);
    const QImage before = Painted(*shape, 160, 120);
    const auto differing = [&](bool horizontal) {
        const QImage after = Painted(*shape, 160, 120);
        int inked = 0, wrong = 0;
        for (int y = 0; y < 120; ++y)
            for (int x = 0; x < 160; ++x) {
                if (!Inked(before, x, y))
                    continue;
                ++inked;
                const unsigned mirrored =
                    horizontal ? PixelAt(after, 159 - x, y) : PixelAt(after, x, 119 - y);
                wrong += mirrored != PixelAt(before, x, y);
            }
        EXPECT_GT(inked, 3000);
        return double(wrong) / inked;
    };
    shape->FlipHoriz();
    EXPECT_FLOAT_EQ(shape->Angle(), -0.5f);
    EXPECT_LT(differing(true), 0.02);
    shape->FlipHoriz();
    EXPECT_EQ(shape->Angle(), 0.5f);
    shape->FlipVert();
    EXPECT_LT(differing(false), 0.02);
}

TEST(ImagePaint, BorderInThePenAndAnEmptyImageShowsItsOutline)
{
    TClassHost host;
    host.HostPen.Color = clRed;
    auto shape = ImageShape(host);
    EXPECT_EQ(PixelAt(Painted(*shape, 300, 300), 50, 40), kCells[0][0]);
    shape->SetBorder(true);
    QImage image = Painted(*shape, 300, 300);
    EXPECT_EQ(PixelAt(image, 60, 40), 0xFF0000u);
    EXPECT_EQ(Shown(*shape, 0, 0), kCells[0][0]);

    TMyImage empty(&host);
    empty.Points() = {{40, 40}, {120, 40}, {120, 80}, {40, 80}};
    image = Painted(empty, 300, 300);
    EXPECT_EQ(PixelAt(image, 60, 40), 0xFF0000u);
    EXPECT_FALSE(Inked(image, 60, 60));
}

TEST(ImageHitAndFile, TheBoxIsHitAndFilesLoad)
{
    TClassHost host;
    auto shape = ImageShape(host);
    QImage scratch = WhiteImage(10, 10);
    TCanvas canvas(&scratch);
    EXPECT_TRUE(shape->IsClickedMe(canvas, {100, 70}));
    EXPECT_FALSE(shape->IsClickedMe(canvas, {130, 70}));

    QTemporaryDir dir;
    const QString file = dir.filePath("picture.bmp");
    ASSERT_TRUE(Picture().Image().save(file, "BMP"));
    TMyImage loaded(&host);
    EXPECT_TRUE(loaded.LoadFromFile(file));
    EXPECT_EQ(loaded.Bitmap(), Picture());
    QString reason;
    EXPECT_FALSE(loaded.LoadFromFile(dir.filePath("missing.bmp"), &reason));
    EXPECT_FALSE(reason.isEmpty());
    EXPECT_EQ(loaded.Bitmap(), Picture());
}

} // namespace
} // namespace tessal::test
