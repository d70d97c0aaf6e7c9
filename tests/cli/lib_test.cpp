// SPDX-License-Identifier: MIT
// tessal-cli lib: listing and dumping entries of a library written by TLibManager, and the
// upgrade chain on a library built byte by byte in an older layout.
#include "clitool.h"
#include "common/files.h"
#include "surface/documenthelpers.h"

#include <tessal/persistence/library.h>
#include <tessal/shapes/shape.h>
#include <tessal/surface/cad.h>

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtEndian>

using namespace tessal;
using namespace tessal::test;

namespace {

QByteArray Int32(std::int32_t value)
{
    QByteArray bytes(4, '\0');
    qToLittleEndian(value, bytes.data());
    return bytes;
}

} // namespace

// A 100 x 50 box at (20, 30) and a link point mark inside it stored in one entry: list shows its
// nominal size and counts, dump gives the box at (0, 0)-(100, 50), the mark's link point
// where placing the entry offers it, and the entry's user data.
TEST(CliLib, ListAndDump)
{
    TMyCAD cad;
    TMyShape *rect = AddByCode(cad, TDrawTool::SpRectangle, {{20, 30}, {120, 80}});
    TMyShape *point = AddByCode(cad, TDrawTool::SpLinkPoint, {{45, 30}, {70, 55}});
    ASSERT_TRUE(rect && point);
    TUserData data;
    data.AddKeyandValue(QStringLiteral("kind"), QStringLiteral("box \"A\""));
    TLibManager library;
    const std::vector<TMyShape *> shapes{rect, point};
    ASSERT_TRUE(library.AppendNewShape(QStringLiteral("Box"), shapes, data));
    ASSERT_TRUE(library.AppendNewShape(QStringLiteral("Empty"), {}, {}));
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("shapes.tsl"));
    ASSERT_TRUE(library.SaveToFile(path));

    const TToolResult list = RunTool({"lib", "list", path});
    EXPECT_EQ(list.Status, Cli::ExitOk) << list.Err.toStdString();
    EXPECT_EQ(list.Out, "tag: ZEDALIBX.j\nentries: 2\n"
                        "  \"Box\" 100 x 50, 2 shapes, 1 user data\n"
                        "  \"Empty\" 1 x 1, 0 shapes, 0 user data\n");

    const TToolResult dump = RunTool({"lib", "dump", path, "Box"});
    ASSERT_EQ(dump.Status, Cli::ExitOk) << dump.Err.toStdString();
    const QJsonObject entry = ParseJson(dump.Out).object();
    EXPECT_EQ(std::pair(entry["Width"], entry["Height"]),
              std::pair(QJsonValue(100), QJsonValue(50)));
    EXPECT_EQ(entry["UserData"], ParseJson(R"([["kind", "box \"A\""]])").array());
    EXPECT_EQ(entry["LinkPoints"], ParseJson("[[37.5, 12.5]]").array()); // the mark's centre
    const QJsonArray read = entry["Shapes"].toArray();
    ASSERT_EQ(read.size(), 2);
    EXPECT_EQ(read[0]["ClassName"], "TMyRectangle");
    EXPECT_EQ(read[0]["Name"], "") << "entries store shapes without names";
    EXPECT_EQ(read[0]["Points"], ParseJson("[[0, 0], [100, 0], [100, 50], [0, 50]]").array());
    EXPECT_EQ(read[1]["ClassName"], "TMyLinkPoint");
    EXPECT_EQ(read[1]["Points"], ParseJson("[[25, 0], [50, 0], [50, 25], [25, 25]]").array());

    const TToolResult missing = RunTool({"lib", "dump", path, "Nothing"});
    EXPECT_EQ(missing.Status, Cli::ExitFailure);
    EXPECT_EQ(missing.Err.toStdString(),
              (path + ": the library has no entry \"Nothing\"\n").toStdString());
}

// A ".h" library of two entries without shapes, built from the format table, is rewritten
// in place as ".j": each entry gains an empty user data block and its size grows by 4.
TEST(CliLib, UpgradeAndRefusals)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("old.tsl"));
    const auto entry = [](const QByteArray &name, std::int32_t w, std::int32_t h, bool j) {
        const QByteArray body = Int32(w) + Int32(h) + (j ? Int32(0) : QByteArray()) + Int32(0);
        return char(name.size()) + name + Int32(std::int32_t(body.size())) + body;
    };
    ASSERT_TRUE(
        WriteFile(path, "ZEDALIBX.h" + entry("A", 7, 9, false) + entry("Bb", 1, 300, false)));
    const TToolResult upgrade = RunTool({"lib", "upgrade", path});
    EXPECT_EQ(upgrade.Status, Cli::ExitOk) << upgrade.Err.toStdString();
    EXPECT_TRUE(upgrade.Out.contains("from ZEDALIBX.h to ZEDALIBX.j (2 entries)"));
    // Rewritten entries take the size of their shapes' box, at least 1 x 1.
    EXPECT_EQ(ReadFile(path), "ZEDALIBX.j" + entry("A", 1, 1, true) + entry("Bb", 1, 1, true));

    const QString notLibrary = dir.filePath(QStringLiteral("text.tsl"));
    ASSERT_TRUE(WriteFile(notLibrary, "ZEDALIBX.q"));
    const QString old = dir.filePath(QStringLiteral("oldest.tsl"));
    ASSERT_TRUE(WriteFile(old, "ZEDALIB2.1 whatever follows"));
    const QString framing = dir.filePath(QStringLiteral("framing.tsl"));
    ASSERT_TRUE(WriteFile(framing, "ZEDALIBX.j" + entry("A", 7, 9, true).chopped(1)));
    for (const QString &bad : {notLibrary, old, framing}) {
        const TToolResult r = RunTool({"lib", "list", bad});
        EXPECT_EQ(r.Status, Cli::ExitFailure) << bad.toStdString();
        EXPECT_EQ(r.Err.count('\n'), 1) << r.Err.toStdString();
        EXPECT_TRUE(r.Err.startsWith(bad)) << r.Err.toStdString();
    }
}
