// SPDX-License-Identifier: MIT
// TXorTiles: a large exclusive-or picture drawn tile by tile as offsets bring it into view.
#include <tessal/surface/xortiles_p.h>

#include <QImage>

#include <utility>

namespace tessal {

TXorTiles::TXorTiles(TDraw draw, std::int32_t side, std::size_t maxTiles)
    : m_Draw(std::move(draw))
    , m_Side(side)
    , m_MaxTiles(maxTiles)
{}

// Floored, so that the tiles left of and above the origin are whole tiles too.
std::int32_t TXorTiles::TileOf(std::int32_t pixel) const
{
    return std::int32_t(pixel >= 0 ? pixel / m_Side
                                   : -((-std::int64_t(pixel) + m_Side - 1) / m_Side));
}

// The tile is drawn with a tile's width of margin all round and only its middle kept. The
// raster engine shifts the dots of a dotted line, and may drop a corner pixel of a figure, where
// it cuts them at the image's edge; with the margin, only outlines reaching more than a tile
// beyond this one are cut, and only they can show such a step at the seam, as any outline
// can at the screen's edge.
std::shared_ptr<const TXorPicture> TXorTiles::DrawTile(std::int32_t column, std::int32_t row) const
{
    const TRect tile(column * m_Side, row * m_Side, (column + 1) * m_Side, (row + 1) * m_Side);
    QImage picture(3 * m_Side, 3 * m_Side, QImage::Format_RGB32);
    picture.fill(Qt::black);
    {
        TCanvas canvas(&picture);
        canvas.SetOrigin({tile.Left - m_Side, tile.Top - m_Side});
        m_Draw(canvas, tile);
        canvas.Flush();
    }
    return std::make_shared<const TXorPicture>(picture.copy(m_Side, m_Side, m_Side, m_Side),
                                               tile.TopLeft());
}

TXorTiles::TTiles TXorTiles::Tiles(const TRect &seen)
{
    TTiles tiles;
    if (seen.IsEmpty())
        return tiles;
    std::vector<std::int64_t> keys;
    const std::int32_t right = TileOf(seen.Right - 1), bottom = TileOf(seen.Bottom - 1);
    for (std::int32_t row = TileOf(seen.Top); row <= bottom; ++row) {
        for (std::int32_t column = TileOf(seen.Left); column <= right; ++column) {
            const std::int64_t key = (std::int64_t(column) << 32) | std::uint32_t(row);
            auto &tile = m_Tiles[key];
            if (!tile)
                tile = DrawTile(column, row);
            tiles.push_back(tile);
            keys.push_back(key);
        }
    }
    if (m_Tiles.size() > m_MaxTiles) {
        decltype(m_Tiles) kept;
        for (std::size_t i = 0; i < keys.size(); ++i)
            kept.emplace(keys[i], tiles[i]);
        m_Tiles = std::move(kept);
    }
    return tiles;
}

} // namespace tessal
