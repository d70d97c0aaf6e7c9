// SPDX-License-Identifier: MIT
// Any bytes given to the drawing reader: an answer, never a crash, a hang or a huge allocation.
#include "fuzzapp.h"

#include <tessal/surface/cad.h>

#include <QBuffer>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    tessal::fuzz::EnsureApplication();
    QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    tessal::TMyCAD cad;
    // Drawing what was accepted is left out: the composition margin grows with the widest
    // pen, so an accepted file with a very wide pen asks for gigabytes when painted.
    cad.LoadFromStream(&buffer);
    return 0;
}
