// SPDX-License-Identifier: MIT
// Windows metafiles: checks the record framing, plays the file into SVG and renders it.
#include "metafile_p.h"

#include <QtEndian>

#include <cmath>
#include <cstring>
#include <optional>

// The library's headers define short macros that collide with Qt's, so they come last.
#include <libwmf/api.h>
#include <libwmf/svg.h>

namespace tessal::detail {

namespace {

constexpr std::uint32_t PlaceableKey = 0x9AC6CDD7;
constexpr qsizetype PlaceableSize = 22;
constexpr qsizetype MetaHeaderSize = 18;

std::uint16_t LeU16(const QByteArray &b, qsizetype at)
{
    return qFromLittleEndian<quint16>(b.constData() + at);
}

std::uint32_t LeU32(const QByteArray &b, qsizetype at)
{
    return qFromLittleEndian<quint32>(b.constData() + at);
}

// The picture frame of a placeable metafile, in metafile units with units per inch.
struct TPlaceable
{
    std::int16_t Left, Top, Right, Bottom;
    std::uint16_t Inch;
};

struct TWmfLayout
{
    qsizetype Length = 0; // through the end record
    std::optional<TPlaceable> Placeable;
};

bool ReadPlaceable(const QByteArray &b, TWmfLayout &layout)
{
    if (b.size() < PlaceableSize + MetaHeaderSize)
        return false;
    std::uint16_t checksum = 0;
    for (qsizetype i = 0; i < 10; ++i)
        checksum ^= LeU16(b, 2 * i);
    if (checksum != LeU16(b, 20))
        return false;
    const TPlaceable p{qint16(LeU16(b, 6)), qint16(LeU16(b, 8)), qint16(LeU16(b, 10)),
                       qint16(LeU16(b, 12)), LeU16(b, 14)};
    if (p.Inch == 0 || p.Right <= p.Left || p.Bottom <= p.Top)
        return false;
    layout.Placeable = p;
    return true;
}

// Walks the header and the records by their sizes; libwmf trusts them, so a file that does
// not hold together up to its end record never reaches it.
std::optional<TWmfLayout> CheckLayout(const QByteArray &b)
{
    TWmfLayout layout;
    qsizetype at = 0;
    if (b.size() >= 4 && LeU32(b, 0) == PlaceableKey) {
        if (!ReadPlaceable(b, layout))
            return std::nullopt;
        at = PlaceableSize;
    }
    if (b.size() - at < MetaHeaderSize)
        return std::nullopt;
    const std::uint16_t type = LeU16(b, at);
    const std::uint16_t headerWords = LeU16(b, at + 2);
    if ((type != 1 && type != 2) || headerWords != MetaHeaderSize / 2)
        return std::nullopt;
    // The player sizes its record buffer by the header's largest record: one larger than the
    // whole file cannot be true, and would cost gigabytes and minutes.
    if (std::uint64_t(LeU32(b, at + 12)) * 2 > std::uint64_t(b.size() - at))
        return std::nullopt;
    at += MetaHeaderSize;
    while (b.size() - at >= 6) {
        const std::uint64_t size = std::uint64_t(LeU32(b, at)) * 2;
        const std::uint16_t function = LeU16(b, at + 4);
        if (size < 6 || size > std::uint64_t(b.size() - at))
            return std::nullopt;
        at += qsizetype(size);
        if (function == 0) {
            layout.Length = at;
            return layout;
        }
    }
    return std::nullopt;
}

// Owns one player instance of the library.
class TWmfPlayer
{
public:
    TWmfPlayer()
    {
        wmfAPI_Options options;
        std::memset(&options, 0, sizeof options);
        options.function = wmf_svg_function;
        const unsigned long flags =
            WMF_OPT_FUNCTION | WMF_OPT_IGNORE_NONFATAL | WMF_OPT_NO_ERROR | WMF_OPT_NO_DEBUG;
        if (wmf_api_create(&m_Api, flags, &options) != wmf_E_None) {
            if (m_Api)
                wmf_api_destroy(m_Api);
            m_Api = nullptr;
        }
    }
    TWmfPlayer(const TWmfPlayer &) = delete;
    TWmfPlayer &operator=(const TWmfPlayer &) = delete;
    ~TWmfPlayer()
    {
        if (m_Api)
            wmf_api_destroy(m_Api);
    }

    wmfAPI *Api() const { return m_Api; }

private:
    wmfAPI *m_Api = nullptr;
};

struct TSvgResult
{
    QByteArray Svg;
    std::int64_t Width = 0;
    std::int64_t Height = 0;
};

// Plays the picture into SVG. Device units of the SVG layer are points with the frame's
// left-top at the origin, so a placeable frame maps to (0, 0) .. (size x 72 / inch).
std::optional<TSvgResult> PlayToSvg(QByteArray data, const TWmfLayout &layout)
{
    TWmfPlayer player;
    wmfAPI *api = player.Api();
    if (!api)
        return std::nullopt;
    if (wmf_mem_open(api, reinterpret_cast<unsigned char *>(data.data()), long(data.size())) !=
        wmf_E_None)
        return std::nullopt;
    wmfD_Rect box;
    if (wmf_scan(api, 0, &box) != wmf_E_None)
        return std::nullopt;
    TSvgResult result;
    if (layout.Placeable) {
        const TPlaceable &p = *layout.Placeable;
        const double w = double(p.Right) - p.Left;
        const double h = double(p.Bottom) - p.Top;
        box.TL = {0, 0};
        box.BR = {float(w * 72 / p.Inch), float(h * 72 / p.Inch)};
        result.Width = std::int64_t(std::nearbyint(w * 96 / p.Inch));
        result.Height = std::int64_t(std::nearbyint(h * 96 / p.Inch));
    } else {
        unsigned int w = 0;
        unsigned int h = 0;
        if (wmf_display_size(api, &w, &h, 96, 96) != wmf_E_None)
            return std::nullopt;
        result.Width = w;
        result.Height = h;
    }
    if (!PictureSizeAcceptable(result.Width, result.Height))
        return std::nullopt;
    wmf_svg_t *device = WMF_SVG_GetData(api);
    char description[] = "Tessal picture";
    device->out = wmf_stream_create(api, nullptr);
    device->Description = description;
    device->bbox = box;
    device->width = unsigned(result.Width);
    device->height = unsigned(result.Height);
    const wmf_error_t played = wmf_play(api, 0, &box);
    char *text = nullptr;
    unsigned long length = 0;
    wmf_stream_destroy(api, device->out, &text, &length);
    // The text stays owned by the library and goes with the player, so copy it now.
    if (text)
        result.Svg = QByteArray(text, qsizetype(length));
    if (played != wmf_E_None || result.Svg.isEmpty())
        return std::nullopt;
    return result;
}

} // namespace

TBitmap ReadWmfPicture(const QByteArray &bytes, QString &reason)
{
    const std::optional<TWmfLayout> layout = CheckLayout(bytes);
    if (!layout) {
        reason = QStringLiteral("not a valid WMF picture (bad header or truncated records)");
        return {};
    }
    const std::optional<TSvgResult> svg = PlayToSvg(bytes.left(layout->Length), *layout);
    if (!svg) {
        reason = QStringLiteral("WMF picture could not be played");
        return {};
    }
    TBitmap picture =
        RenderSvgPicture(svg->Svg, std::int32_t(svg->Width), std::int32_t(svg->Height));
    if (picture.IsEmpty())
        reason = QStringLiteral("WMF picture could not be rendered");
    return picture;
}

} // namespace tessal::detail
