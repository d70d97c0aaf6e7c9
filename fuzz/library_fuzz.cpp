// SPDX-License-Identifier: MIT
// Any bytes given to the shape library reader: an answer, never a crash, a hang or a huge
// allocation, through loading, reading every entry and rewriting it in the current layout.
#include "fuzzapp.h"

#include <tessal/persistence/library.h>
#include <tessal/surface/cad.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    tessal::fuzz::EnsureApplication();
    tessal::TLibManager lib;
    if (!lib.LoadFromBuffer(QByteArray(reinterpret_cast<const char *>(data), qsizetype(size))))
        return 0;
    // Previews are left out for the reason the drawing target gives: an accepted record with
    // a very wide pen asks for a huge composition when painted.
    const std::int32_t count = std::min(lib.GetcmbShapesCount(), 8);
    for (std::int32_t i = 0; i < count; ++i) {
        const QString name = lib.GetCmbShapesNameByID(i);
        tessal::TMyPointArray links;
        tessal::TUserData userData;
        tessal::TLibManager::TShapeList shapes;
        std::int32_t width = 0, height = 0;
        lib.GetCmbShape(name, i % 2 == 1, links, userData, shapes, width, height);
        lib.GetCmbShapeforXE(name, false, links, userData, shapes, width, height);
    }
    lib.Upgradefromx6tox8();
    lib.Upgradefromx8tox9();
    lib.Upgradefromx9toxa();
    lib.Upgradefromxatoxe();
    lib.Upgradefromxetoxh();
    lib.Upgradefromxhtoxi();
    lib.Upgradefromxitoxj();
    return 0;
}
