// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/raster/CommandChunk.h"

#include "engine/raster/LightBand.h"

#include <algorithm>

namespace starbloom {

/// What of it lies in the picture's width; its rows may still reach over the picture's edges.
struct CommandChunk::Sprite {
    int left;   ///< Pixels from the picture's left edge.
    int top;    ///< Likewise from its upper edge.
    int column; ///< Of the tiles.
    int rows;
    SparkCommand command; ///< Of its first row.
};

TileGrid::TileGrid(int width, int height)
    : m_width(width)
    , m_height(height)
    , m_columns((width + tileWidth - 1) / tileWidth)
    , m_bands((height + tileHeight - 1) / tileHeight)
    , m_cells(width, height)
    , m_planeStride(LightBand::planeStrideFor(width)) {}

void CommandChunk::begin() {
    m_pieces.clear();
}

void CommandChunk::place(const RasterKernels& kernels, const TileGrid& grid, Atlases atlases) {
    m_count = 0;
    m_most = 0;
    for (const Piece& piece : m_pieces) {
        m_most += 2 * piece.count;
    }
    makeRoomFor(m_most); // So that nobody has to ask for those.
    m_missing.clear();
    m_lit.assign(grid.cells().count(), 0);
    PlacedSparks placed;
    for (const Piece& piece : m_pieces) {
        for (std::size_t done = 0; done < piece.count; done += PlacedSparks::capacity) {
            const std::size_t count = std::min(PlacedSparks::capacity, piece.count - done);
            kernels.place(*piece.batch, piece.first + done, count, piece.settings, placed);
            appendCommands(placed, count, piece.atlas, *atlases[piece.atlas], grid);
        }
    }
    sortByTile(grid);
}

// These are called for each spark: not inlined they would have it written to memory and read back.
[[gnu::always_inline]] inline void CommandChunk::writePart(const Sprite& sprite, int row, int end, const TileGrid& grid,
                                                           SparkCommand& command) {
    // Value by value: what was just written in pieces and is read as a whole has to wait for the cache.
    const SparkCommand& from = sprite.command;
    const int rowInBand = row % TileGrid::tileHeight;
    command.mask = from.mask + static_cast<std::ptrdiff_t>(row - sprite.top) * from.stride;
    command.place = from.place + static_cast<std::int32_t>(rowInBand * 3 * grid.planeStride());
    command.rows = static_cast<std::uint16_t>(end - row);
    command.width = from.width;
    command.stride = from.stride;
    command.red = from.red;
    command.green = from.green;
    command.blue = from.blue;
}

[[gnu::always_inline]] inline void CommandChunk::markLit(const Sprite& sprite, const TileGrid& grid) {
    const int firstColumn = std::max(sprite.left, 0) / CellGrid::cellWidth;
    const int lastColumn = (std::min(sprite.left + sprite.command.width, grid.width()) - 1) / CellGrid::cellWidth;
    const int firstRow = std::max(sprite.top, 0) / CellGrid::cellHeight;
    const int lastRow = (std::min(sprite.top + sprite.rows, grid.height()) - 1) / CellGrid::cellHeight;
    std::uint8_t* first = m_lit.data() + grid.cells().index(firstRow, 0);
    std::uint8_t* last = m_lit.data() + grid.cells().index(lastRow, 0);
    if (sprite.command.width <= CellGrid::cellWidth && sprite.rows <= CellGrid::cellHeight) {
        first[firstColumn] = first[lastColumn] = last[firstColumn] = last[lastColumn] = 1;
        return;
    }
    if (lastColumn - firstColumn <= 2) { // As of most, and too few to call a fill for.
        const int between = (firstColumn + lastColumn) / 2;
        for (; first <= last; first += grid.cells().columns) {
            first[firstColumn] = first[between] = first[lastColumn] = 1;
        }
        return;
    }
    for (; first <= last; first += grid.cells().columns) {
        std::fill(first + firstColumn, first + lastColumn + 1, std::uint8_t{1});
    }
}

[[gnu::always_inline]] inline void CommandChunk::append(const Sprite& sprite, const TileGrid& grid) {
    if (sprite.rows > TileGrid::tileHeight) {
        appendTall(sprite, grid);
        return;
    }
    // In one band or in two, which cannot be foreseen: both commands are written, and one or two are counted.
    const int first = std::max(sprite.top, 0);
    const int end = std::min(sprite.top + sprite.rows, grid.height());
    const int band = first / TileGrid::tileHeight;
    const int firstEnd = std::min((band + 1) * TileGrid::tileHeight, end);
    writePart(sprite, first, firstEnd, grid, m_commands[m_count]);
    writePart(sprite, firstEnd, end, grid, m_commands[m_count + 1]);
    const auto tile = static_cast<std::uint32_t>(grid.tile(band, sprite.column));
    m_tiles[m_count] = tile;
    m_tiles[m_count + 1] = tile + static_cast<std::uint32_t>(grid.columns());
    m_count += end > firstEnd ? 2 : 1;
    markLit(sprite, grid);
}

void CommandChunk::appendCommands(const PlacedSparks& placed, std::size_t count, std::uint16_t atlasIndex,
                                  const SpriteAtlas& atlas, const TileGrid& grid) {
    for (std::size_t k = 0; k < count; ++k) {
        const int tint = std::max({placed.red[k], placed.green[k], placed.blue[k]});
        if (tint == 0) {
            continue;
        }
        const int key = atlas.keyFor(placed.sizeStep[k], placed.rotation[k]);
        const SpriteSet* set = atlas.find(key);
        if (set == nullptr) {
            const MissingSprite sprite{atlasIndex, static_cast<std::uint32_t>(key)};
            if (m_missing.empty() || m_missing.back() != sprite) { // Neighbours are often of one size.
                m_missing.push_back(sprite);
            }
            continue;
        }
        // Positions that the sprite does not tell apart are rounded to the nearest one that it does.
        const int roundUp = (1 << set->phaseShift) >> 1;
        const int x8 = placed.x8[k] + roundUp;
        const int y8 = placed.y8[k] + roundUp;
        const SpriteBox& box = set->box(static_cast<unsigned>(tint));
        const int x = x8 >> 3;
        int left = x + box.left;
        const int top = (y8 >> 3) + box.top;
        int width = box.width;
        if (box.rows == 0 || left + width <= 0 || left >= grid.width() || top + box.rows <= 0 || top >= grid.height()) {
            continue;
        }
        const std::int16_t* mask = set->mask(static_cast<unsigned>(x8 & 7), static_cast<unsigned>(y8 & 7)) + box.offset;
        const int hidden = std::max(-left, 0);
        left += hidden;
        mask += hidden;
        width = std::min(width - hidden, grid.width() - left);
        append({left,
                top,
                std::clamp(x, 0, grid.width() - 1) / TileGrid::tileWidth,
                box.rows,
                {mask, left, box.rows, static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(set->stride),
                 static_cast<std::int16_t>(placed.red[k]), static_cast<std::int16_t>(placed.green[k]),
                 static_cast<std::int16_t>(placed.blue[k])}},
               grid);
    }
}

void CommandChunk::appendTall(const Sprite& sprite, const TileGrid& grid) {
    const int end = std::min(sprite.top + sprite.rows, grid.height());
    int row = std::max(sprite.top, 0);
    makeRoomFor(static_cast<std::size_t>((end - row) / TileGrid::tileHeight + 2) + m_most);
    for (int band = row / TileGrid::tileHeight; row < end; ++band) {
        const int partEnd = std::min((band + 1) * TileGrid::tileHeight, end);
        writePart(sprite, row, partEnd, grid, m_commands[m_count]);
        m_tiles[m_count++] = static_cast<std::uint32_t>(grid.tile(band, sprite.column));
        row = partEnd;
    }
    markLit(sprite, grid);
}

void CommandChunk::makeRoomFor(std::size_t more) {
    if (m_count + more > m_commands.size()) {
        const std::size_t room = std::max(2 * m_commands.size(), m_count + more);
        m_commands.resize(room);
        m_tiles.resize(room);
    }
}

void CommandChunk::sortByTile(const TileGrid& grid) {
    m_tileStarts.assign(grid.tileCount() + 1, 0);
    for (std::size_t i = 0; i < m_count; ++i) {
        ++m_tileStarts[m_tiles[i]];
    }
    std::uint32_t end = 0;
    for (std::uint32_t& start : m_tileStarts) {
        end += start;
        start = end;
    }
    if (m_sorted.size() < m_commands.size()) {
        m_sorted.resize(m_commands.size());
    }
    // Filling backwards turns each tile's end into its start.
    for (std::size_t i = m_count; i-- > 0;) {
        m_sorted[--m_tileStarts[m_tiles[i]]] = m_commands[i];
    }
}

} // namespace starbloom
