// SPDX-License-Identifier: MIT
// Shared helpers of the DXF tests: the ezdxf peer and DXF text as code/value pairs.
#pragma once

#include <gtest/gtest.h>

#include <QByteArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QString>
#include <QStringList>

namespace tessal::test {

// Runs the ezdxf peer script with Debian's interpreter (where python3-ezdxf lives) and
// answers its JSON output; fails the test when the script fails.
inline QJsonObject RunPeer(const QStringList &arguments)
{
    QProcess python;
    python.start("/usr/bin/python3", QStringList{QStringLiteral(TESSAL_DXF_PEER)} + arguments);
    EXPECT_TRUE(python.waitForFinished(120000));
    const QByteArray err = python.readAllStandardError();
    EXPECT_EQ(python.exitCode(), 0) << err.constData();
    return QJsonDocument::fromJson(python.readAllStandardOutput()).object();
}

// The lines of a DXF text without their line ends.
inline QStringList DxfLines(const QByteArray &text)
{
    QStringList lines = QString::fromUtf8(text).split("\r\n");
    if (!lines.isEmpty() && lines.back().isEmpty())
        lines.removeLast();
    return lines;
}

} // namespace tessal::test
