// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/model/SparkImage.h"
#include "engine/raster/RasterKernels.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace starbloom {

/// The part of the masks of a sprite that a tint makes visible.
struct SpriteBox {
    std::uint32_t offset = 0; ///< Of its first pixel in each mask.
    std::int16_t left = 0;    ///< First column, counted from the pixel that the centre falls into.
    std::int16_t top = 0;     ///< First row, likewise, downward.
    std::uint16_t width = 0;  ///< Pixels to be drawn.
    std::uint16_t rows = 0;   ///< 0: the tint is too faint to leave any light.
};

/// The spark image drawn at one size and angle, at every sub-pixel position. Masks are 16-bit fixed point: 32767 is all
/// of the tint.
struct SpriteSet {
    /// So many brightnesses of tints are told apart, each half as bright as the one before: a fainter spark is a
    /// smaller one, as its rim is rounded to nothing.
    static constexpr unsigned brightnesses = 8;

    /// Pixels before the first mask and behind the last one, which kernels load but do not draw.
    static constexpr std::size_t padding = spriteLanes;

    int left = 0;       ///< First column, counted from the pixel that the centre falls into.
    int top = 0;        ///< First row, likewise, downward.
    int rows = 0;       ///< 0: too small to leave any light.
    int stride = 0;     ///< Pixels per row.
    int phaseShift = 0; ///< How many of the finest phase bits are not told apart.
    std::vector<std::int16_t> masks;
    std::array<SpriteBox, brightnesses> boxes; ///< The brightest tints first.

    /// The mask whose centre lies phaseX / 8 and phaseY / 8 pixels right of and below the corner of its pixel.
    const std::int16_t* mask(unsigned phaseX, unsigned phaseY) const {
        const unsigned perAxis = 8U >> phaseShift;
        const std::size_t index = static_cast<std::size_t>(phaseY >> phaseShift) * perAxis + (phaseX >> phaseShift);
        return masks.data() + padding + index * static_cast<std::size_t>(rows) * static_cast<std::size_t>(stride);
    }

    /// What a tint (1..fullLight in its strongest channel) can make visible of any of the masks.
    const SpriteBox& box(unsigned tint) const {
        const auto brightness = static_cast<unsigned>(std::countl_zero(static_cast<std::uint16_t>(tint))) - 1;
        return boxes[std::min(brightness, brightnesses - 1)];
    }
};

/// Ready-made sprites of one image, made when first needed.
///
/// Sizes are told apart as SpriteSizes tells; positions in eighths of a pixel, more coarsely for sprites so large and
/// soft that it cannot be seen. Angles are told apart in 64 steps, and not at all for an image that looks the same from
/// all sides.
///
/// Lookups may come from any number of threads; install() and clear() from one thread while there are none.
class SpriteAtlas {
public:
    static constexpr int finestPhases = 8; ///< Per pixel and axis.
    static constexpr int angleCount = 64;

    explicit SpriteAtlas(std::shared_ptr<const SparkImage> image);

    const std::shared_ptr<const SparkImage>& image() const { return m_image; }

    /// The longer side of the image at scale 1, in points.
    float sizeInPoints() const { return m_sizeInPoints; }

    bool isRotationInvariant() const { return m_angles == 1; }

    /// Which sprite serves a size, see SpriteSizes, and an angle in radians.
    int keyFor(int sizeStep, float rotation) const {
        return m_angles == 1 ? sizeStep : angleStep(rotation) * SpriteSizes::count + sizeStep;
    }

    /// The sprite of a key; null when it has not been made yet.
    const SpriteSet* find(int key) const { return m_sets[static_cast<std::size_t>(key)].get(); }

    /// Makes the sprite of a key. Changes nothing in the atlas, so several threads may make different ones at once.
    std::unique_ptr<SpriteSet> make(int key) const;

    void install(int key, std::unique_ptr<SpriteSet> set);

    /// Bytes that the sprites take. Forgetting them all is a matter of time alone: they are made again when needed.
    std::size_t bytes() const { return m_bytes; }

    void clear();

private:
    static int angleStep(float rotation);

    std::shared_ptr<const SparkImage> m_image;
    float m_sizeInPoints;
    int m_angles;
    std::vector<std::unique_ptr<SpriteSet>> m_sets;
    std::size_t m_bytes = 0;
};

} // namespace starbloom
