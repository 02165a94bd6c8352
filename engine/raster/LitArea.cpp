// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/raster/LitArea.h"

#include "engine/raster/LightBand.h"

#include <algorithm>

namespace starbloom {

namespace {

std::size_t cellsAcross(int width) {
    return static_cast<std::size_t>((width + LitArea::cellWidth - 1) / LitArea::cellWidth);
}

} // namespace

std::span<std::uint8_t> LitArea::band(int index) {
    const std::size_t columns = cellsAcross(m_width);
    return std::span(m_cells).subspan(static_cast<std::size_t>(index) * columns, columns);
}

void LitArea::begin(int width, int height, int bandHeight, const Color& background) {
    if (width == m_width && height == m_height && bandHeight == m_bandHeight && background == m_background) {
        return;
    }
    m_width = width;
    m_height = height;
    m_bandHeight = bandHeight;
    m_background = background;
    // As if there were light everywhere: then all of it is written.
    m_cells.assign(cellsAcross(width) * static_cast<std::size_t>((height + bandHeight - 1) / bandHeight), cellIsLit);
}

void LitArea::end() {
    m_changed.clear();
    const int columns = static_cast<int>(cellsAcross(m_width));
    for (int top = 0; top < m_height; top += m_bandHeight) {
        const auto cells = band(top / m_bandHeight);
        const int rows = std::min(m_bandHeight, m_height - top);
        for (int column = 0; column < columns; ++column) {
            const int first = column;
            while (column < columns && (cells[static_cast<std::size_t>(column)] & cellIsWritten) != 0) {
                ++column;
            }
            if (column > first) {
                const int left = first * cellWidth;
                m_changed.push_back({left, top, std::min(column * cellWidth, m_width) - left, rows});
            }
        }
    }
}

} // namespace starbloom
