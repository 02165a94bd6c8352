// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/raster/CommandChunk.h"

#include <algorithm>

namespace starbloom {

void CommandChunk::begin() {
    m_pieces.clear();
}

void CommandChunk::place(const RasterKernels& kernels, const TileGrid& grid, Atlases atlases) {
    m_commands.clear();
    m_tiles.clear();
    PlacedSparks placed;
    for (const Piece& piece : m_pieces) {
        for (std::size_t done = 0; done < piece.count; done += PlacedSparks::capacity) {
            const std::size_t count = std::min(PlacedSparks::capacity, piece.count - done);
            kernels.place(*piece.batch, piece.first + done, count, piece.settings, placed);
            appendCommands(placed, count, piece.atlas, *atlases[piece.atlas], grid);
        }
    }
    sortByTile(grid);
    findMissing(atlases);
}

void CommandChunk::appendCommands(const PlacedSparks& placed, std::size_t count, std::uint16_t atlasIndex,
                                  const SpriteAtlas& atlas, const TileGrid& grid) {
    for (std::size_t k = 0; k < count; ++k) {
        if ((placed.red[k] | placed.green[k] | placed.blue[k]) == 0) {
            continue;
        }
        const int key = atlas.keyFor(placed.size[k], placed.rotation[k]);
        // Positions that the sprite does not tell apart are rounded to the nearest one that it does.
        const SpriteAtlas::SizeTraits& traits = SpriteAtlas::traitsOf(key);
        const int roundUp = (1 << traits.phaseShift) >> 1;
        const int x8 = placed.x8[k] + roundUp;
        const int y8 = placed.y8[k] + roundUp;
        const int x = x8 >> 3;
        const int y = y8 >> 3;
        const int reach = traits.reach;
        if (x + reach < 0 || x - reach >= grid.width() || y + reach < 0 || y - reach >= grid.height()) {
            continue;
        }
        const SparkCommand command{x,
                                   y,
                                   static_cast<std::uint32_t>(key),
                                   atlasIndex,
                                   static_cast<std::uint8_t>(x8 & 7),
                                   static_cast<std::uint8_t>(y8 & 7),
                                   static_cast<std::int16_t>(placed.red[k]),
                                   static_cast<std::int16_t>(placed.green[k]),
                                   static_cast<std::int16_t>(placed.blue[k])};
        const int column = std::clamp(x, 0, grid.width() - 1) / TileGrid::tileWidth;
        const int firstBand = std::max(y - reach, 0) / TileGrid::tileHeight;
        const int lastBand = std::min(y + reach, grid.height() - 1) / TileGrid::tileHeight;
        for (int band = firstBand; band <= lastBand; ++band) {
            m_commands.push_back(command);
            m_tiles.push_back(static_cast<std::uint32_t>(grid.tile(band, column)));
        }
    }
}

void CommandChunk::sortByTile(const TileGrid& grid) {
    m_tileStarts.assign(grid.tileCount() + 1, 0);
    for (const std::uint32_t tile : m_tiles) {
        ++m_tileStarts[tile + 1];
    }
    for (std::size_t tile = 0; tile < grid.tileCount(); ++tile) {
        m_tileStarts[tile + 1] += m_tileStarts[tile];
    }
    // Filling backwards turns each tile's end into its start.
    m_sorted.resize(m_commands.size());
    for (std::size_t i = m_commands.size(); i-- > 0;) {
        m_sorted[--m_tileStarts[m_tiles[i] + 1]] = m_commands[i];
    }
    m_tileStarts.erase(m_tileStarts.begin());
    m_tileStarts.push_back(static_cast<std::uint32_t>(m_commands.size()));
}

void CommandChunk::findMissing(Atlases atlases) {
    m_missing.clear();
    MissingSprite last{0, ~0U};
    for (const SparkCommand& command : m_commands) {
        // Neighbours are often of one size, so most need no look.
        const MissingSprite sprite{command.atlas, command.key};
        if (sprite != last && atlases[command.atlas]->find(static_cast<int>(command.key)) == nullptr) {
            m_missing.push_back(sprite);
        }
        last = sprite;
    }
}

} // namespace starbloom
