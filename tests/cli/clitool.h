// SPDX-License-Identifier: MIT
// Running the tool's commands in process and reading their answers back.
#pragma once

#include "cli.h"

#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QString>
#include <QStringList>

namespace tessal::test {

struct TToolResult
{
    int Status = -1;
    QString Out;
    QString Err;
};

inline TToolResult RunTool(const QStringList &args)
{
    TToolResult result;
    QTextStream out(&result.Out);
    QTextStream err(&result.Err);
    result.Status = Cli::Run(args, {out, err});
    out.flush();
    err.flush();
    return result;
}

inline QJsonDocument ParseJson(const QString &text)
{
    QJsonParseError error;
    const QJsonDocument doc = QJsonDocument::fromJson(text.toUtf8(), &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << error.errorString().toStdString();
    return doc;
}

} // namespace tessal::test
