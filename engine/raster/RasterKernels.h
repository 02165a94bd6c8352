// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/time/SparkBatch.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

namespace starbloom {

// The three inner loops of the CPU renderer. They exist twice: plainly, and with the widest vectors that the processor
// has; both give the same bytes. Everything is either one IEEE operation after the other in single precision, without
// fused multiply-add, or integer arithmetic, so lanes do not matter.

/// Light is accumulated in 16 bits per channel; this much is full brightness on the display. Half of the range lies
/// above it, and additions saturate, so the order of additions does not matter.
constexpr int fullLight = 255 * 128;

/// One accumulated unit is 1/128 of a step of an 8-bit display: a thousand sparks too faint to be seen one by one add
/// up.
constexpr int lightShift = 7;

/// Which sizes of sprites are told apart: steps of an eighth of a pixel below 16 pixels, and of a sixty-fourth of an
/// octave above. A larger sprite than `largest` is drawn at that size.
struct SpriteSizes {
    static constexpr int fineSteps = 128;        ///< Those below 16 pixels.
    static constexpr int firstOctaveBits = 8384; ///< The bits of 16.0F above the 17 lowest ones.
    static constexpr float largest = 2048.0F;
    static constexpr int count = fineSteps + 64 * 7 + 1;

    /// The step nearest to a size in pixels of the longer side, 0 or more.
    static int stepOf(float size) {
        if (size < 16.0F) {
            return static_cast<int>(size * 8.0F + 0.5F);
        }
        // The exponent and the six leading bits of the mantissa count the steps; adding half a step rounds.
        const auto bits = std::bit_cast<std::uint32_t>(std::min(size, largest));
        return fineSteps + static_cast<int>((bits + (1U << 16U)) >> 17U) - firstOctaveBits;
    }
};

/// How a moment is placed on a picture.
struct PlaceSettings {
    double time = 0.0; ///< The moment, in the layer's own time.
    float pixelsPerPoint = 1.0F;
    float pictureHeight = 0.0F;   ///< Pixels.
    float imageSizePixels = 0.0F; ///< Longer side of the spark image at scale 1.
};

/// Where a block of sparks goes. A spark that is not alive, or without light, has no tint in any channel.
struct PlacedSparks {
    static constexpr std::size_t capacity = 256;

    std::array<std::int32_t, capacity> x8, y8;   ///< Centre in eighths of a pixel, from the picture's top left corner.
    std::array<std::int32_t, capacity> sizeStep; ///< See SpriteSizes.
    std::array<float, capacity> rotation;        ///< Radians.
    std::array<std::int32_t, capacity> red, green, blue; ///< 0..fullLight.
};

/// A part of one sprite to be drawn into the light of a band.
struct SparkCommand {
    const std::int16_t* mask; ///< Its first pixel; spriteLanes more can be read before it and behind its last one.
    std::int32_t place;       ///< Where that one goes in the red plane, counted from the band's first pixel.
    std::uint16_t rows;       ///< At least 1.
    std::uint16_t width;      ///< Pixels, at least 1.
    std::uint16_t stride;     ///< Of the mask's rows.
    std::int16_t red;         ///< 0..fullLight.
    std::int16_t green;
    std::int16_t blue;
};

/// Sprites are drawn so many pixels at once.
constexpr int spriteLanes = 16;

/// So many pixels fill a cache line.
constexpr int linePixels = 16;

/// The light of some pixels of a band.
struct LightBlock {
    std::uint16_t* light = nullptr; ///< Of the first pixel, in the red plane.
    std::ptrdiff_t planeStride = 0; ///< To the next channel's plane; three of them to the next row.
    int width = 0;                  ///< Pixels.
    int rows = 0;
};

enum class PixelOrder {
    Rgba, ///< Bytes red, green, blue, alpha: the order of pictures and movie frames.
    Bgra, ///< Bytes blue, green, red, alpha: the order of most screens.
};

/// How accumulated light turns into opaque pixels.
struct ResolveSettings {
    std::array<std::uint16_t, 3>
        background{}; ///< Red, green, blue in accumulated units, half a step for rounding included.
    PixelOrder order = PixelOrder::Rgba;
};

struct RasterKernels {
    /// Places sparks first .. first + count - 1 of a batch; count is at most PlacedSparks::capacity.
    void (*place)(const SparkBatch& batch, std::size_t first, std::size_t count, const PlaceSettings& settings,
                  PlacedSparks& out);

    /// Adds sprites to the light of a band, which begins at `light`.
    void (*draw)(std::span<const SparkCommand> commands, std::uint16_t* light, std::ptrdiff_t planeStride);

    /// Writes the pixels of a block and takes its light back to zero. So many pixels as fill a cache line can be read
    /// behind each row of light, and be cleared there where a block is narrower. Other threads and programs see the
    /// pixels once this one has passed hwy::FlushStream().
    void (*resolve)(const LightBlock& block, const ResolveSettings& settings, std::uint8_t* pixels,
                    std::size_t bytesPerRow);
};

/// The plain ones: the oracle that the fast ones are tested against.
const RasterKernels& scalarKernels();

/// The fastest ones for this processor.
const RasterKernels& vectorKernels();

} // namespace starbloom
