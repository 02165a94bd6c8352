// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/raster/RasterKernels.h"

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
    static constexpr int tileHeight = 32;

    TileGrid() = default;

    TileGrid(int width, int height)
        : m_width(width)
        , m_height(height)
        , m_columns((width + tileWidth - 1) / tileWidth)
        , m_bands((height + tileHeight - 1) / tileHeight) {}

    int width() const { return m_width; }

    int height() const { return m_height; }

    int columns() const { return m_columns; }

    int bands() const { return m_bands; }

    std::size_t tileCount() const { return static_cast<std::size_t>(m_columns) * static_cast<std::size_t>(m_bands); }

    std::size_t tile(int band, int column) const {
        return static_cast<std::size_t>(band) * static_cast<std::size_t>(m_columns) + static_cast<std::size_t>(column);
    }

private:
    int m_width = 0;
    int m_height = 0;
    int m_columns = 0;
    int m_bands = 0;
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
    static constexpr std::size_t capacity = 4096; ///< Sparks: their commands stay within the second-level cache.

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
    /// over several bands gets one in each.
    void place(const RasterKernels& kernels, const TileGrid& grid, Atlases atlases);

    /// Looks again which sprites are missing.
    void findMissing(Atlases atlases);

    std::span<const MissingSprite> missing() const { return m_missing; }

    std::span<const SparkCommand> commandsIn(std::size_t tile) const {
        return std::span(m_sorted).subspan(m_tileStarts[tile], m_tileStarts[tile + 1] - m_tileStarts[tile]);
    }

private:
    void appendCommands(const PlacedSparks& placed, std::size_t count, std::uint16_t atlasIndex,
                        const SpriteAtlas& atlas, const TileGrid& grid);
    void sortByTile(const TileGrid& grid);

    std::vector<Piece> m_pieces;
    std::vector<SparkCommand> m_commands;
    std::vector<std::uint32_t> m_tiles; ///< Of each command.
    std::vector<SparkCommand> m_sorted;
    std::vector<std::uint32_t> m_tileStarts; ///< First sorted command of each tile, and the end.
    std::vector<MissingSprite> m_missing;
};

} // namespace starbloom
