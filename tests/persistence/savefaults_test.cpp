// SPDX-License-Identifier: MIT
// A save that the system refuses answers false with the system's reason. (That a failed or
// cancelled save leaves the old file as it was is the drawing-file tests'.)
#include <tessal/persistence/library.h>
#include <tessal/surface/cad.h>

#include <gtest/gtest.h>

#include <QFileInfo>

namespace tessal {
namespace {

// The save answered false with the system's reason and, written in place, left the device a
// device: a save through a temporary file would have replaced it.
void ExpectFullDevice(const char *document, bool saved, const QString &reason)
{
    SCOPED_TRACE(document);
    EXPECT_FALSE(saved);
    EXPECT_TRUE(reason.contains(QLatin1String("No space left on device"))) << reason.toStdString();
    const QFileInfo device(QStringLiteral("/dev/full"));
    EXPECT_TRUE(device.exists() && !device.isFile());
}

TEST(SaveFaults, AFullDeviceSaysSoAndStaysADevice)
{
    if (!QFileInfo::exists(QStringLiteral("/dev/full")))
        GTEST_SKIP() << "this system has no /dev/full";
    TMyCAD cad;
    for (int i = 0; i < 40; ++i)
        cad.CreateAddShapeByName(QStringLiteral("TMyRectangle"));
    const bool drawingSaved = cad.SaveToFile(QStringLiteral("/dev/full"));
    ExpectFullDevice("drawing", drawingSaved, cad.LastError());
    TLibManager lib;
    const bool librarySaved = lib.SaveToFile(QStringLiteral("/dev/full"));
    ExpectFullDevice("library", librarySaved, lib.LastError());
}

} // namespace
} // namespace tessal
