// SPDX-License-Identifier: MIT
// A save that the system refuses answers false with the system's reason. (That a failed or
// cancelled save leaves the old file as it was is the drawing-file tests'.)
#include <tessal/persistence/library.h>
#include <tessal/surface/cad.h>

#include <gtest/gtest.h>

#include <QFileInfo>

#include <functional>

namespace tessal {
namespace {

// One kind of document that can be saved, and the save itself.
struct Document
{
    const char *name;
    std::function<bool(const QString &path, QString &reason)> save;
};

std::vector<Document> Documents()
{
    static TMyCAD cad;
    if (cad.GetShapesCount() == 0)
        for (int i = 0; i < 40; ++i)
            cad.CreateAddShapeByName(QStringLiteral("TMyRectangle"));
    static TLibManager lib;
    return {{"drawing",
             [](const QString &path, QString &reason) {
                 const bool ok = cad.SaveToFile(path);
                 reason = cad.LastError();
                 return ok;
             }},
            {"library", [](const QString &path, QString &reason) {
                 const bool ok = lib.SaveToFile(path);
                 reason = lib.LastError();
                 return ok;
             }}};
}

TEST(SaveFaults, AFullDeviceSaysSoAndStaysADevice)
{
    if (!QFileInfo::exists(QStringLiteral("/dev/full")))
        GTEST_SKIP() << "this system has no /dev/full";
    for (const Document &doc : Documents()) {
        SCOPED_TRACE(doc.name);
        QString reason;
        EXPECT_FALSE(doc.save(QStringLiteral("/dev/full"), reason));
        EXPECT_TRUE(reason.contains(QLatin1String("No space left on device")))
            << reason.toStdString();
        // Written in place: a save through a temporary file would have replaced the device.
        const QFileInfo device(QStringLiteral("/dev/full"));
        EXPECT_TRUE(device.exists() && !device.isFile());
    }
}

} // namespace
} // namespace tessal
