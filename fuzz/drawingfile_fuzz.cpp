// SPDX-License-Identifier: MIT
// Any bytes given to the drawing reader: an answer, never a crash, a hang or a huge allocation.
#include <tessal/surface/cad.h>

#include <QApplication>
#include <QBuffer>

#include <cstddef>
#include <cstdint>

namespace {

void Quiet(QtMsgType, const QMessageLogContext &, const QString &)
{}

// One application for the whole run, on the offscreen platform, without message output and
// with the no-layer answer (which would end the program) switched off.
void EnsureApplication()
{
    static int argc = 1;
    static char name[] = "fuzz_drawingfile";
    static char *argv[] = {name, nullptr};
    static QApplication *app = [] {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qInstallMessageHandler(Quiet);
        tessal::TMyCAD::SetNoLayerHandler([](tessal::TMyCAD *) {});
        return new QApplication(argc, argv);
    }();
    (void)app;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    EnsureApplication();
    QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    tessal::TMyCAD cad;
    // Drawing what was accepted is left out: the composition margin grows with the widest
    // pen, so an accepted file with a very wide pen asks for gigabytes when painted.
    cad.LoadFromStream(&buffer);
    return 0;
}
