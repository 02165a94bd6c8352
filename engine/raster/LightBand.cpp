// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/raster/LightBand.h"

#include <algorithm>
#include <cstring>

namespace starbloom {

namespace {

/// Fills pixels with the background alone.
void fillBackground(const ResolveSettings& settings, std::uint8_t* pixels, std::size_t bytesPerRow, int width,
                    int rows) {
    std::uint8_t one[4];
    for (std::size_t channel = 0; channel < 3; ++channel) {
        const std::size_t place = settings.order == PixelOrder::Rgba ? channel : 2 - channel;
        one[place] = static_cast<std::uint8_t>(settings.background[channel] >> lightShift);
    }
    one[3] = 255;
    std::uint32_t word;
    std::memcpy(&word, one, sizeof word);
    for (int row = 0; row < rows; ++row) {
        for (int x = 0; x < width; ++x) {
            std::memcpy(pixels + 4 * static_cast<std::size_t>(x), &word, sizeof word);
        }
        pixels += bytesPerRow;
    }
}

} // namespace

std::ptrdiff_t LightBand::planeStrideFor(int pictureWidth) {
    // An odd number of cache lines: with a power of two of them all rows of a sprite would fall into the same few sets
    // of the first-level cache and push each other out.
    constexpr int lineLights = 64 / sizeof(std::uint16_t);
    return ((pictureWidth + margin + lineLights - 1) / lineLights | 1) * lineLights;
}

void LightBand::begin(int pictureWidth, int rows) {
    if (pictureWidth != m_width) {
        m_planeStride = planeStrideFor(pictureWidth);
        m_light.clear();
        m_width = pictureWidth;
    }
    const auto needed = static_cast<std::size_t>(rows) * 3 * static_cast<std::size_t>(m_planeStride);
    if (m_light.size() < needed) {
        m_light.resize(needed, 0);
    }
}

void LightBand::resolve(const RasterKernels& kernels, const ResolveSettings& settings, const CellRow& row) {
    for (std::size_t first = 0; first < row.cells.size();) {
        const bool now = row.lit[first] != 0;
        const bool before = (row.cells[first] & LitArea::isLit) != 0;
        const auto continues = [&](std::size_t cell) {
            // What is drawn now is written whatever was there.
            return (row.lit[cell] != 0) == now && (now || ((row.cells[cell] & LitArea::isLit) != 0) == before);
        };
        const std::size_t begin = first;
        do {
            row.cells[first++] =
                static_cast<std::uint8_t>((now ? LitArea::isLit : 0) | (now || before ? LitArea::isWritten : 0));
        } while (first < row.cells.size() && continues(first));
        const auto left = static_cast<int>(begin) * CellGrid::cellWidth;
        const int width = std::min(static_cast<int>(first) * CellGrid::cellWidth, m_width) - left;
        std::uint8_t* pixels = row.pixels + 4 * static_cast<std::size_t>(left);
        if (now) {
            const LightBlock block{light() + static_cast<std::ptrdiff_t>(row.top) * 3 * m_planeStride + left,
                                   m_planeStride, width, row.rows};
            kernels.resolve(block, settings, pixels, row.bytesPerRow);
        } else if (before) {
            fillBackground(settings, pixels, row.bytesPerRow, width, row.rows);
        }
    }
}

} // namespace starbloom
