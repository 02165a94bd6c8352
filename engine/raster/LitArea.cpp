// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/raster/LitArea.h"

#include <algorithm>

namespace starbloom {

void LitArea::begin(int width, int height, const Color& background) {
    if (width == m_width && height == m_height && background == m_background) {
        return;
    }
    m_width = width;
    m_height = height;
    m_background = background;
    m_grid = CellGrid(width, height);
    // As if there were light everywhere: then all of it is written.
    m_cells.assign(m_grid.count(), isLit);
}

void LitArea::end() {
    m_changed.clear();
    std::size_t above = 0; // Where the rectangles begin that end where the present row of cells begins.
    for (int row = 0; row < m_grid.rows; ++row) {
        const auto cells = this->row(row);
        const int top = row * CellGrid::cellHeight;
        const int rows = std::min(CellGrid::cellHeight, m_height - top);
        const std::size_t first = m_changed.size();
        for (int column = 0; column < m_grid.columns; ++column) {
            const int begin = column;
            while (column < m_grid.columns && (cells[static_cast<std::size_t>(column)] & isWritten) != 0) {
                ++column;
            }
            if (column > begin) {
                const int left = begin * CellGrid::cellWidth;
                m_changed.push_back({left, top, std::min(column * CellGrid::cellWidth, m_width) - left, rows});
            }
        }
        // A row just like the one above makes that one's rectangles higher.
        const std::size_t count = m_changed.size() - first;
        const auto sameColumns = [](const PixelRect& a, const PixelRect& b) {
            return a.x == b.x && a.width == b.width;
        };
        if (count > 0 && first - above == count && m_changed[above].y + m_changed[above].height == top &&
            std::equal(m_changed.begin() + static_cast<std::ptrdiff_t>(first), m_changed.end(),
                       m_changed.begin() + static_cast<std::ptrdiff_t>(above), sameColumns)) {
            m_changed.resize(first);
            for (std::size_t i = above; i < first; ++i) {
                m_changed[i].height += rows;
            }
        } else {
            above = first;
        }
    }
}

} // namespace starbloom
