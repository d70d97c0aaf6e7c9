// SPDX-License-Identifier: MIT
// tessal-cli: dispatching a command line, reporting failures, loading drawings.
#include "cli.h"

#include "convert.h"
#include "dump.h"
#include "info.h"
#include "libcommands.h"

#include <tessal/surface/cad.h>

#include <QFile>
#include <QFileInfo>

#include <cstdio>

#include <unistd.h>

namespace tessal::Cli {

QString UsageText()
{
    return QStringLiteral(
        "usage: tessal-cli COMMAND ARGUMENTS\n"
        "  info FILE                 version, page, size, unit, layers and shape counts\n"
        "  dump FILE                 the whole drawing as JSON\n"
        "  convert [--text-outlines] FILE OUT\n"
        "                            FILE (.tsd or .dxf) to OUT: .png, .svg or .pdf\n"
        "                            (the page at zoom 1 with background and shapes,\n"
        "                            no grid, as the editor's Export > Page as\n"
        "                            Picture), .dxf or .tsd (the drawing); a DXF\n"
        "                            input prints what was imported and skipped;\n"
        "                            --text-outlines writes texts to DXF as the\n"
        "                            outlines of their glyphs instead of TEXT\n"
        "  lib list LIBFILE          the entries of a shape library\n"
        "  lib dump LIBFILE NAME     one library entry as JSON\n"
        "  lib upgrade LIBFILE [OUT] rewrite a library in the current layout\n"
        "                            (in place unless OUT is given)\n");
}

int Usage(TIo io)
{
    io.Err << UsageText();
    io.Err.flush();
    return ExitUsage;
}

int Fail(TIo io, const QString &reason)
{
    // Readers may report multi-line texts; a caller scripting the tool expects one line.
    QString line = reason.simplified();
    if (line.isEmpty())
        line = QStringLiteral("unknown error");
    io.Err << line << '\n';
    io.Err.flush();
    return ExitFailure;
}

bool ProgressShown()
{
    return isatty(STDERR_FILENO);
}

void ShowProgress(const char *verb, const QString &name, std::int64_t done, std::int64_t total,
                  int &shown)
{
    const int percent = total > 0 ? int(done * 100 / total) : 100;
    if (percent == shown)
        return;
    shown = percent;
    // Straight to the terminal, not through the error stream a caller may capture.
    std::fprintf(stderr, "\r%s %s: %3d%%", verb, qPrintable(name), percent);
    std::fflush(stderr);
}

void EndProgress()
{
    std::fputs("\r\033[K", stderr);
    std::fflush(stderr);
}

std::unique_ptr<TMyCAD> LoadDrawing(const QString &fileName, QString &error)
{
    // A file that cannot be opened gets the system's reason rather than "not a drawing".
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        error = QStringLiteral("%1: %2").arg(fileName, file.errorString());
        return nullptr;
    }
    const qint64 size = file.size();
    file.close();
    TMyCAD::SetNoLayerHandler([](TMyCAD *) {});
    auto cad = std::make_unique<TMyCAD>();
    const bool progress = size > ProgressFileSize && ProgressShown();
    if (progress)
        cad->SetOnProgress([name = QFileInfo(fileName).fileName(), shown = -1](
                               TMyCAD *, std::int64_t done, std::int64_t total, bool &) mutable {
            ShowProgress("reading", name, done, total, shown);
        });
    const bool loaded = cad->LoadFromFile(fileName);
    if (progress) {
        EndProgress();
        cad->SetOnProgress({});
    }
    if (!loaded) {
        const QString &reason = cad->LastError();
        error = reason.contains(fileName) ? reason : QStringLiteral("%1: %2").arg(fileName, reason);
        return nullptr;
    }
    return cad;
}

int Run(const QStringList &args, TIo io)
{
    if (args.isEmpty())
        return Usage(io);
    const QString &command = args.first();
    const QStringList rest = args.mid(1);
    if (command == QLatin1String("info") && rest.size() == 1)
        return RunInfo(rest[0], io);
    if (command == QLatin1String("dump") && rest.size() == 1)
        return RunDump(rest[0], io);
    if (command == QLatin1String("convert")) {
        TConvertOptions options;
        QStringList files;
        for (const QString &arg : rest) {
            if (arg == QLatin1String("--text-outlines"))
                options.TextOutlines = true;
            else if (arg.startsWith(QLatin1String("--")))
                return Usage(io);
            else
                files << arg;
        }
        if (files.size() == 2)
            return RunConvert(files[0], files[1], io, options);
    }
    if (command == QLatin1String("lib"))
        return RunLib(rest, io);
    return Usage(io);
}

} // namespace tessal::Cli
