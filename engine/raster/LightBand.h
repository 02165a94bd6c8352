// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/raster/RasterKernels.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace starbloom {

// What is known of a cell of the picture, see LitArea.
constexpr std::uint8_t cellIsLit = 1;
constexpr std::uint8_t cellIsWritten = 2;

/// The accumulated light of some rows of the picture, used for one band after the other. Between bands all light is
/// zero, which resolve() restores, so only what was touched is ever cleared.
class LightBand {
public:
    /// Prepares for the rows top .. top + rows - 1 of a picture of that width.
    void begin(int pictureWidth, int top, int rows);

    /// Adds the rows of a sprite that lie in the band.
    void draw(const RasterKernels& kernels, const SpriteSet& sprite, const SparkCommand& command);

    /// Writes the band's pixels, the first row to `pixels`, and takes the light back to zero. Cells that are dark now
    /// and before are not written; the others are marked as lit or not, and as written.
    void resolve(const RasterKernels& kernels, const ResolveSettings& settings, std::uint8_t* pixels,
                 std::size_t bytesPerRow, std::span<std::uint8_t> cells);

private:
    std::uint16_t* rowStart(int row) {
        return m_light.data() + static_cast<std::ptrdiff_t>(row) * 3 * m_planeStride + margin;
    }

    void drawWide(const RasterKernels& kernels, const std::int16_t* mask, int stride, int rows, int x, int row,
                  const SparkCommand& command);

    /// Pixels that a sprite may hang over on either side; wider ones are cut to fit first.
    static constexpr int margin = 64;

    int m_width = 0;
    int m_top = 0;
    int m_rows = 0;
    std::ptrdiff_t m_planeStride = 0;
    std::vector<std::uint8_t> m_lit; ///< For each cell, whether it has been touched.
    std::vector<std::uint16_t> m_light;
    std::vector<std::int16_t> m_cutMask;
};

} // namespace starbloom
