// SPDX-License-Identifier: MIT
// Saves that the system refuses (a full device, a folder without write permission) answer
// false with the system's reason and leave the old file as it was. As root the second runs in
// a child process that has become an unprivileged user.
#include "common/files.h"

#include <tessal/persistence/library.h>
#include <tessal/surface/cad.h>

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <functional>
#include <optional>

#include <sys/wait.h>
#include <unistd.h>

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

// What a save in a child process answered: whether it succeeded and its reason. Empty
// when the child did not get as far as saving (setUp answered false) or was killed.
struct ChildAnswer
{
    bool saved = false;
    QString reason;
};

std::optional<ChildAnswer> SaveInChild(const Document &doc, const QString &path,
                                       const std::function<bool()> &setUp)
{
    int fds[2];
    if (pipe(fds) != 0)
        return std::nullopt;
    const pid_t pid = fork();
    if (pid == 0) {
        close(fds[0]);
        QString reason;
        if (!setUp())
            _exit(3);
        const bool saved = doc.save(path, reason);
        const QByteArray answer = QByteArray(saved ? "1" : "0") + reason.toUtf8();
        const bool written =
            write(fds[1], answer.constData(), size_t(answer.size())) == ssize_t(answer.size());
        _exit(written ? 0 : 4);
    }
    close(fds[1]);
    QByteArray answer;
    char chunk[256];
    for (ssize_t n; (n = read(fds[0], chunk, sizeof chunk)) > 0;)
        answer.append(chunk, n);
    close(fds[0]);
    int status = 0;
    waitpid(pid, &status, 0);
    EXPECT_FALSE(WIFSIGNALED(status)) << "the child was ended by signal " << WTERMSIG(status);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0 || answer.isEmpty())
        return std::nullopt;
    return ChildAnswer{answer[0] == '1', QString::fromUtf8(answer.mid(1))};
}

class SaveFaults : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_Dir.isValid());
        m_Old = m_Dir.filePath(QStringLiteral("old.file"));
        ASSERT_TRUE(test::WriteFile(m_Old, m_OldBytes));
    }

    // The save failed for the given reason and the old file is untouched, with no
    // temporary file left beside it.
    void ExpectRefused(bool saved, const QString &reason, const char *why)
    {
        EXPECT_FALSE(saved);
        EXPECT_TRUE(reason.contains(QLatin1String(why), Qt::CaseInsensitive))
            << reason.toStdString();
        EXPECT_EQ(test::ReadFile(m_Old), m_OldBytes);
        EXPECT_EQ(QDir(m_Dir.path()).entryList(QDir::Files),
                  QStringList{QStringLiteral("old.file")});
    }

    QTemporaryDir m_Dir;
    QString m_Old;
    const QByteArray m_OldBytes = QByteArray("the previous contents, kept");
};

TEST_F(SaveFaults, AFullDeviceSaysSoAndStaysADevice)
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

TEST_F(SaveFaults, AFolderWithoutWritePermissionKeepsTheOldFile)
{
    // The superuser writes into any folder, so as root the save runs in a child that has
    // become an unprivileged user; without the right to change users the case is skipped.
    const bool root = geteuid() == 0;
    ASSERT_TRUE(QFile::setPermissions(m_Dir.path(), QFileDevice::ReadOwner | QFileDevice::ExeOwner |
                                                        QFileDevice::ReadOther |
                                                        QFileDevice::ExeOther));
    // Only the folder refuses: the file itself may be written by anyone.
    ASSERT_TRUE(QFile::setPermissions(m_Old, QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                                 QFileDevice::ReadOther | QFileDevice::WriteOther));
    for (const Document &doc : Documents()) {
        SCOPED_TRACE(doc.name);
        if (!root) {
            QString reason;
            const bool saved = doc.save(m_Old, reason);
            ExpectRefused(saved, reason, "Permission denied");
            continue;
        }
        const auto answer = SaveInChild(doc, m_Old, [] {
            const uid_t nobody = 65534;
            return setgid(nobody) == 0 && setuid(nobody) == 0 && geteuid() == nobody;
        });
        if (!answer)
            GTEST_SKIP() << "running as root without the right to become an unprivileged "
                            "user, so a read-only folder cannot refuse a save here";
        ExpectRefused(answer->saved, answer->reason, "Permission denied");
    }
    QFile::setPermissions(m_Dir.path(),
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
}

} // namespace
} // namespace tessal
