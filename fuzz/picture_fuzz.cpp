// SPDX-License-Identifier: MIT
// Any bytes given to the picture readers (a user's BMP, JPEG, icon, EMF or WMF file): an
// empty picture and a reason, never a crash, a hang or a huge allocation.
#include "fuzzapp.h"

#include <tessal/geometry/metafile_p.h>

#include <array>
#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    tessal::fuzz::EnsureApplication();
    if (size == 0)
        return 0;
    // The first byte chooses the reader, as a file name's extension does; the rest is the file.
    static const std::array<QString, 5> kinds = {QStringLiteral("BMP"), QStringLiteral("JPG"),
                                                 QStringLiteral("ICO"), QStringLiteral("EMF"),
                                                 QStringLiteral("WMF")};
    const QString &kind = kinds[data[0] % kinds.size()];
    const QByteArray bytes(reinterpret_cast<const char *>(data + 1), qsizetype(size - 1));
    QString reason;
    const tessal::TBitmap picture = tessal::detail::DecodePicture(bytes, kind, reason);
    if (picture.IsEmpty() && reason.isEmpty())
        __builtin_trap(); // a refusal always says why
    return 0;
}
