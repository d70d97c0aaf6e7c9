// SPDX-License-Identifier: MIT
// Any bytes given to the block reader, and the paste of whatever it accepted: an answer,
// never a crash, a hang or a huge allocation.
#include "fuzzapp.h"

#include <tessal/surface/cad.h>

#include <QBuffer>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    tessal::fuzz::EnsureApplication();
    if (size == 0)
        return 0;
    // The first byte chooses the layer mode; the rest is the block.
    const auto mode =
        (data[0] & 1) ? tessal::TBlockLayerMode::Import : tessal::TBlockLayerMode::Merge;
    QByteArray bytes(reinterpret_cast<const char *>(data + 1), qsizetype(size - 1));
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    tessal::TMyCAD cad;
    cad.CreateAddShapeByName(QStringLiteral("TMyRectangle"));
    // Pasting renumbers every stored relation, which is where untrusted numbers meet the
    // document; drawing is left out for the reason given in the drawing reader's target.
    if (cad.LoadFromStreamforBlock(&buffer, mode))
        cad.PasteforBlock();
    return 0;
}
