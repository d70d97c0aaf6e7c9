// SPDX-License-Identifier: MIT
// Exclusive-or feedback of a picture far larger than the screen, kept in tiles drawn on demand.
#pragma once

#include <tessal/platform/canvas.h>
#include <tessal/platform/types.h>
#include <tessal/surface/xorpicture_p.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <unordered_map>
#include <vector>

namespace tessal {

// The outlines of a whole drawing, dragged as one, are the same pixels at every offset. They
// are drawn in square tiles of the picture at rest, each the first time an offset brings it
// into view, and kept as exclusive-or pictures: a move then costs laying the tiles in view
// over the screen, not drawing the outlines again.
class TXorTiles
{
public:
    // Draws, in exclusive-or on black, the picture's part within tile, in the picture's own
    // coordinates (the canvas's origin is set); drawing more than that is harmless.
    using TDraw = std::function<void(TCanvas &canvas, const TRect &tile)>;
    using TTiles = std::vector<std::shared_ptr<const TXorPicture>>;

    // Side is the tile's side in pixels. Once more than maxTiles are kept, those that the last
    // request did not need are dropped (a request's answer keeps its own tiles alive).
    explicit TXorTiles(TDraw draw, std::int32_t side = 256, std::size_t maxTiles = 1024);

    // The tiles that hold the picture's area seen, drawing those not drawn yet. Laid over an
    // image together, they show the picture there; laid again, they erase it.
    TTiles Tiles(const TRect &seen);
    std::size_t TileCount() const { return m_Tiles.size(); }

private:
    std::int32_t TileOf(std::int32_t pixel) const;
    std::shared_ptr<const TXorPicture> DrawTile(std::int32_t column, std::int32_t row) const;

    TDraw m_Draw;
    std::int32_t m_Side;
    std::size_t m_MaxTiles;
    // By column and row packed into one key.
    std::unordered_map<std::int64_t, std::shared_ptr<const TXorPicture>> m_Tiles;
};

} // namespace tessal
