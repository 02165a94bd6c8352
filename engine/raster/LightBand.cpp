// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/raster/LightBand.h"

#include "engine/raster/LitArea.h"

#include <algorithm>
#include <cstring>

namespace starbloom {

namespace {

/// Fills pixels with the background alone.
void fillBackground(const ResolveSettings& settings, std::uint8_t* pixels, int count) {
    std::uint8_t one[4];
    for (std::size_t channel = 0; channel < 3; ++channel) {
        const std::size_t place = settings.order == PixelOrder::Rgba ? channel : 2 - channel;
        one[place] = static_cast<std::uint8_t>(settings.background[channel] >> lightShift);
    }
    one[3] = 255;
    std::uint32_t word;
    std::memcpy(&word, one, sizeof word);
    for (int i = 0; i < count; ++i) {
        std::memcpy(pixels + 4 * static_cast<std::size_t>(i), &word, sizeof word);
    }
}

} // namespace

void LightBand::begin(int pictureWidth, int top, int rows) {
    if (pictureWidth != m_width) {
        // An odd number of cache lines: with a power of two of them all rows of a sprite would fall into the same few
        // sets of the first-level cache and push each other out.
        constexpr int lineLights = 64 / sizeof(std::uint16_t);
        m_planeStride = ((pictureWidth + 2 * margin + lineLights - 1) / lineLights | 1) * lineLights;
        m_light.clear();
        m_width = pictureWidth;
    }
    const auto needed = static_cast<std::size_t>(rows) * 3 * static_cast<std::size_t>(m_planeStride);
    if (m_light.size() < needed) {
        m_light.resize(needed, 0);
    }
    m_top = top;
    m_rows = rows;
    m_lit.assign(static_cast<std::size_t>((pictureWidth + LitArea::cellWidth - 1) / LitArea::cellWidth), 0);
}

void LightBand::draw(const RasterKernels& kernels, const SpriteSet& sprite, const SparkCommand& command) {
    const int spriteTop = command.y + sprite.top;
    const int first = std::max(spriteTop, m_top);
    const int rows = std::min(spriteTop + sprite.rows, m_top + m_rows) - first;
    const int x = command.x + sprite.left;
    if (rows <= 0 || x >= m_width || x + sprite.stride <= 0) {
        return;
    }
    const std::int16_t* mask =
        sprite.mask(command.phaseX, command.phaseY) + static_cast<std::ptrdiff_t>(first - spriteTop) * sprite.stride;
    const int lastCell = (std::min(x + sprite.stride, m_width) - 1) / LitArea::cellWidth;
    for (int cell = std::max(x, 0) / LitArea::cellWidth; cell <= lastCell; ++cell) {
        m_lit[static_cast<std::size_t>(cell)] = cellIsLit;
    }
    if (x < -margin || x + sprite.stride > m_width + margin) {
        drawWide(kernels, mask, sprite.stride, rows, x, first - m_top, command);
        return;
    }
    kernels.blit(mask, sprite.stride, rows, command, rowStart(first - m_top) + x, m_planeStride);
}

void LightBand::drawWide(const RasterKernels& kernels, const std::int16_t* mask, int stride, int rows, int x, int row,
                         const SparkCommand& command) {
    const int from = std::max(-x, 0);
    const int to = std::min(stride, m_width - x);
    const int cutStride = (to - from + SpriteSet::laneMultiple - 1) / SpriteSet::laneMultiple * SpriteSet::laneMultiple;
    m_cutMask.assign(static_cast<std::size_t>(cutStride) * static_cast<std::size_t>(rows), 0);
    for (int y = 0; y < rows; ++y) {
        std::copy_n(mask + static_cast<std::ptrdiff_t>(y) * stride + from, to - from,
                    m_cutMask.begin() + static_cast<std::ptrdiff_t>(y) * cutStride);
    }
    kernels.blit(m_cutMask.data(), cutStride, rows, command, rowStart(row) + x + from, m_planeStride);
}

void LightBand::resolve(const RasterKernels& kernels, const ResolveSettings& settings, std::uint8_t* pixels,
                        std::size_t bytesPerRow, std::span<std::uint8_t> cells) {
    for (std::size_t first = 0; first < cells.size();) {
        const std::uint8_t now = m_lit[first];
        const std::uint8_t before = cells[first] & cellIsLit;
        std::size_t end = first;
        for (; end < cells.size() && m_lit[end] == now && (cells[end] & cellIsLit) == before; ++end) {
        }
        const bool write = (now | before) != 0;
        std::fill(cells.begin() + static_cast<std::ptrdiff_t>(first), cells.begin() + static_cast<std::ptrdiff_t>(end),
                  static_cast<std::uint8_t>(now | (write ? cellIsWritten : 0)));
        const auto left = first * LitArea::cellWidth;
        const auto count = std::min(end * LitArea::cellWidth, static_cast<std::size_t>(m_width)) - left;
        first = end;
        for (int row = 0; write && row < m_rows; ++row) {
            std::uint8_t* out = pixels + static_cast<std::size_t>(row) * bytesPerRow + 4 * left;
            if (now != 0) {
                kernels.resolve(rowStart(row) + left, m_planeStride, count, settings, out);
            } else {
                fillBackground(settings, out, static_cast<int>(count));
            }
        }
    }
}

} // namespace starbloom
