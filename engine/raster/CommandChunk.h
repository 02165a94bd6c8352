// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/raster/LitArea.h"
#include "engine/raster/RasterKernels.h"
#include "engine/raster/SpriteAtlas.h"

#include <compare>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace starbloom {

/// The picture cut into tiles. A band of tiles is drawn as one; the columns only bring sprites that lie near each other
/// together, so that the light they touch stays in the first-level cache (three planes of a tile take 24 KiB).
class TileGrid {
public:
    static constexpr int tileWidth = 128; ///< Pixels.
    static constexpr int tileHeight = 32; ///< A multiple of the height of cells.

    TileGrid() = default;
    TileGrid(int width, int height);

    int width() const { return m_width; }

    int height() const { return m_height; }

    int columns() const { return m_columns; }

    int bands() const { return m_bands; }

    std::size_t tileCount() const { return static_cast<std::size_t>(m_columns) * static_cast<std::size_t>(m_bands); }

    std::size_t tile(int band, int column) const {
        return static_cast<std::size_t>(band) * static_cast<std::size_t>(m_columns) + static_cast<std::size_t>(column);
    }

    const CellGrid& cells() const { return m_cells; }

    /// Of the light of its bands, see LightBand.
    std::ptrdiff_t planeStride() const { return m_planeStride; }

private:
    int m_width = 0;
    int m_height = 0;
    int m_columns = 0;
    int m_bands = 0;
    CellGrid m_cells;
    std::ptrdiff_t m_planeStride = 0;
};

/// A sprite that a chunk needs and its atlas does not have yet.
struct MissingSprite {
    std::uint16_t atlas;
    std::uint32_t key;

    friend auto operator<=>(const MissingSprite&, const MissingSprite&) = default;
};

/// Some thousand sparks on their way to the picture: where each one goes, sorted by tile. One chunk is worked on by one
/// thread, and only read once it has been placed.
class CommandChunk {
public:
    static constexpr std::size_t capacity = 8192; ///< Sparks: their commands stay within the second-level cache.

    /// Consecutive sparks of one batch.
    struct Piece {
        const SparkBatch* batch;
        std::size_t first;
        std::size_t count;
        PlaceSettings settings;
        std::uint16_t atlas;
    };

    using Atlases = std::span<const std::unique_ptr<SpriteAtlas>>;

    /// Empties the chunk for a new frame.
    void begin();

    void add(const Piece& piece) { m_pieces.push_back(piece); }

    /// Works out the commands of all pieces and sorts them by tile. What shows nowhere gets none; a sprite that reaches
    /// over several bands gets one in each. Where sprites are missing, it has to be done again once they have been
    /// made.
    void place(const RasterKernels& kernels, const TileGrid& grid, Atlases atlases);

    std::span<const MissingSprite> missing() const { return m_missing; }

    std::span<const SparkCommand> commandsIn(std::size_t tile) const {
        return std::span(m_sorted).subspan(m_tileStarts[tile], m_tileStarts[tile + 1] - m_tileStarts[tile]);
    }

    /// For each cell of the grid, whether there is something to be drawn.
    std::span<const std::uint8_t> lit() const { return m_lit; }

private:
    /// A spark's own part of its commands.
    struct Sprite;

    void appendCommands(const PlacedSparks& placed, std::size_t count, std::uint16_t atlasIndex,
                        const SpriteAtlas& atlas, const TileGrid& grid);
    static inline void writePart(const Sprite& sprite, int row, int end, const TileGrid& grid, SparkCommand& command);
    inline void append(const Sprite& sprite, const TileGrid& grid);
    void appendTall(const Sprite& sprite, const TileGrid& grid);
    inline void markLit(const Sprite& sprite, const TileGrid& grid);
    void makeRoomFor(std::size_t more);
    void sortByTile(const TileGrid& grid);

    std::vector<Piece> m_pieces;
    std::size_t m_most = 0;  ///< Commands of all sparks that are not tall, at most.
    std::size_t m_count = 0; ///< Of commands; the vectors are longer.
    std::vector<SparkCommand> m_commands;
    std::vector<std::uint32_t> m_tiles; ///< Of each command.
    std::vector<SparkCommand> m_sorted;
    std::vector<std::uint32_t> m_tileStarts; ///< First sorted command of each tile, and the end.
    std::vector<std::uint8_t> m_lit;
    std::vector<MissingSprite> m_missing;
};

} // namespace starbloom
