// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Color.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace starbloom {

/// Some pixels of a picture, from its top left corner.
struct PixelRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    friend bool operator==(const PixelRect&, const PixelRect&) = default;
};

/// A picture cut into cells, each of which is dark or not.
struct CellGrid {
    static constexpr int cellWidth = 32; ///< Pixels.
    static constexpr int cellHeight = 16;

    int columns = 0;
    int rows = 0;

    CellGrid() = default;

    CellGrid(int width, int height)
        : columns((width + cellWidth - 1) / cellWidth)
        , rows((height + cellHeight - 1) / cellHeight) {}

    std::size_t count() const { return static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows); }

    std::size_t index(int row, int column) const {
        return static_cast<std::size_t>(row) * static_cast<std::size_t>(columns) + static_cast<std::size_t>(column);
    }

    /// A row of the cells that a value is kept for.
    template <typename Values>
    auto row(Values& values, int row) const {
        return std::span(values).subspan(index(row, 0), static_cast<std::size_t>(columns));
    }
};

/// Which cells of a picture have light in them. The rest is plain background, so a renderer that draws the next frame
/// into the same memory can leave alone what is dark before and after.
///
/// Belongs to the picture's memory: whoever writes to that memory in any other way calls forget().
class LitArea {
public:
    /// What is known of a cell: whether there is light in it, and whether the last frame has written it.
    static constexpr std::uint8_t isLit = 1;
    static constexpr std::uint8_t isWritten = 2;

    /// Whatever the memory holds, the next frame is written as a whole.
    void forget() { m_width = 0; }

    /// Rectangles that hold all that the last frame has changed, few rather than tight: they are handed to a screen.
    /// From top to bottom and from left to right; those that share a row of pixels have the same rows and do not touch.
    const std::vector<PixelRect>& changed() const { return m_changed; }

private:
    friend class RasterRenderer;

    std::span<std::uint8_t> row(int index) { return m_grid.row(m_cells, index); }

    void begin(int width, int height, const Color& background);
    void end();
    void appendBand(int firstRow);
    bool growDownwards(std::size_t above, std::size_t first);
    void joinDense();

    int m_width = 0;
    int m_height = 0;
    Color m_background;
    CellGrid m_grid;
    std::vector<std::uint8_t> m_cells;
    std::vector<std::uint8_t> m_band; ///< What is known of some rows of cells together.
    std::vector<PixelRect> m_changed;
};

} // namespace starbloom
