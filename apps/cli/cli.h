// SPDX-License-Identifier: MIT
// tessal-cli: the command table, exit statuses and what every command shares.
#pragma once

#include <QString>
#include <QStringList>
#include <QTextStream>

#include <cstdint>
#include <memory>

namespace tessal {
class TMyCAD;
}

namespace tessal::Cli {

// Exit statuses: a file that cannot be read or written is a failure; a command line the
// tool does not understand is a usage error (the usage text goes to the error stream).
constexpr int ExitOk = 0;
constexpr int ExitFailure = 1;
constexpr int ExitUsage = 2;

// Where a command writes. Results go to Out; reasons and notes go to Err, one line each.
struct TIo
{
    QTextStream &Out;
    QTextStream &Err;
};

// Runs one command line without the program name ("info", "drawing.tsd"). Needs a
// QApplication, since the drawing surface is a widget.
int Run(const QStringList &args, TIo io);

QString UsageText();
int Usage(TIo io);

// Writes the reason for a failure as one line and answers ExitFailure.
int Fail(TIo io, const QString &reason);

// A drawing loaded from file, or nullptr with the reader's reason in error. A damaged file
// never stops the tool: the surface's no-layer handler is replaced by one that lets the load
// fail with a reason instead of ending the application.
std::unique_ptr<TMyCAD> LoadDrawing(const QString &fileName, QString &error);

// Files from this size on, or drawings of this many shapes, take long enough to read or
// write that a person at a terminal wants to see that something happens.
constexpr qint64 ProgressFileSize = 4 << 20;
constexpr std::int32_t ProgressShapeCount = 20000;
// Whether the error stream is a terminal, where a progress line may be shown.
bool ProgressShown();
// Rewrites one line of standard error with "verb name: percent", only when it changes.
void ShowProgress(const char *verb, const QString &name, std::int64_t done, std::int64_t total,
                  int &shown);
// Removes the progress line once the work is done.
void EndProgress();

} // namespace tessal::Cli
