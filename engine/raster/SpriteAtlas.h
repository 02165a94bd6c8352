// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/model/SparkImage.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace starbloom {

/// The spark image drawn at one size and angle, at every sub-pixel position. Masks are 16-bit fixed point: 32767 is all
/// of the tint. Rows are padded with zeros to a multiple of `laneMultiple` pixels.
struct SpriteSet {
    static constexpr int laneMultiple = 16;

    int left = 0;       ///< First column, counted from the pixel that the centre falls into.
    int top = 0;        ///< First row, likewise, downward.
    int rows = 0;       ///< 0: too small to leave any light.
    int stride = 0;     ///< Pixels per row.
    int phaseShift = 0; ///< How many of the finest phase bits are not told apart.
    std::vector<std::int16_t> masks;

    /// The mask whose centre lies phaseX / 8 and phaseY / 8 pixels right of and below the corner of its pixel.
    const std::int16_t* mask(unsigned phaseX, unsigned phaseY) const {
        const unsigned perAxis = 8U >> phaseShift;
        const std::size_t index = static_cast<std::size_t>(phaseY >> phaseShift) * perAxis + (phaseX >> phaseShift);
        return masks.data() + index * static_cast<std::size_t>(rows) * static_cast<std::size_t>(stride);
    }
};

/// Ready-made sprites of one image, made when first needed.
///
/// Sizes are told apart in steps of an eighth of a pixel up to 16 pixels, and in steps of a sixty-fourth of an octave
/// above; positions in eighths of a pixel, more coarsely for sprites so large and soft that it cannot be seen. Angles
/// are told apart in 64 steps, and not at all for an image that looks the same from all sides. A larger image than
/// `largestSize` pixels is drawn at that size.
///
/// Lookups may come from any number of threads; install() and clear() from one thread while there are none.
class SpriteAtlas {
public:
    static constexpr int finestPhases = 8; ///< Per pixel and axis.
    static constexpr float largestSize = 2048.0F;
    static constexpr int sizeCount = 128 + 64 * 7 + 1;
    static constexpr int angleCount = 64;

    explicit SpriteAtlas(std::shared_ptr<const SparkImage> image);

    const std::shared_ptr<const SparkImage>& image() const { return m_image; }

    /// The longer side of the image at scale 1, in points.
    float sizeInPoints() const { return m_sizeInPoints; }

    bool isRotationInvariant() const { return m_angles == 1; }

    /// Which sprite serves a size in pixels (of the longer side) and an angle in radians.
    int keyFor(float size, float rotation) const;

    /// What follows from a sprite's size alone.
    struct SizeTraits {
        float size = 0.0F;           ///< Pixels of the longer side.
        std::int16_t reach = 0;      ///< How far from its centre's pixel it can reach, in pixels.
        std::int16_t phaseShift = 0; ///< How many bits of the finest phase it does not tell apart.
    };

    static const SizeTraits& traitsOf(int key) { return sizeTraits[static_cast<std::size_t>(key % sizeCount)]; }

    /// The sprite of a key; null when it has not been made yet.
    const SpriteSet* find(int key) const { return m_sets[static_cast<std::size_t>(key)].get(); }

    /// Makes the sprite of a key. Changes nothing in the atlas, so several threads may make different ones at once.
    std::unique_ptr<SpriteSet> make(int key) const;

    void install(int key, std::unique_ptr<SpriteSet> set);

    /// Bytes that the sprites take. Forgetting them all is a matter of time alone: they are made again when needed.
    std::size_t bytes() const { return m_bytes; }

    void clear();

private:
    static const std::array<SizeTraits, sizeCount> sizeTraits;

    std::shared_ptr<const SparkImage> m_image;
    float m_sizeInPoints;
    int m_angles;
    std::vector<std::unique_ptr<SpriteSet>> m_sets;
    std::size_t m_bytes = 0;
};

} // namespace starbloom
