// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/raster/SpriteAtlas.h"
#include "engine/time/SparkBatch.h"

#include <array>
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

    std::array<std::int32_t, capacity> x8, y8; ///< Centre in eighths of a pixel, from the picture's top left corner.
    std::array<float, capacity> size;          ///< Longer side in pixels, 0 or more.
    std::array<float, capacity> rotation;      ///< Radians.
    std::array<std::int32_t, capacity> red, green, blue; ///< 0..fullLight.
};

/// One sprite to be drawn.
struct SparkCommand {
    std::int32_t x; ///< The pixel that its centre falls into.
    std::int32_t y;
    std::uint32_t key; ///< Of the sprite in its atlas.
    std::uint16_t atlas;
    std::uint8_t phaseX; ///< Eighths of a pixel from that pixel's corner to the centre.
    std::uint8_t phaseY;
    std::int16_t red; ///< 0..fullLight.
    std::int16_t green;
    std::int16_t blue;
};

enum class PixelOrder {
    Rgba, ///< Bytes red, green, blue, alpha: the order of pictures and movie frames.
    Bgra, ///< Bytes blue, green, red, alpha: the order of most screens.
};

/// Turns accumulated light of one row into opaque pixels and leaves the light at zero.
struct ResolveSettings {
    std::array<std::uint16_t, 3>
        background{}; ///< Red, green, blue in accumulated units, half a step for rounding included.
    PixelOrder order = PixelOrder::Rgba;
};

struct RasterKernels {
    /// Places sparks first .. first + count - 1 of a batch; count is at most PlacedSparks::capacity.
    void (*place)(const SparkBatch& batch, std::size_t first, std::size_t count, const PlaceSettings& settings,
                  PlacedSparks& out);

    /// Adds one sprite's rows firstRow .. firstRow + rows - 1 to the light at `light` (the sprite's first pixel in the
    /// red plane of its first drawn row).
    void (*blit)(const std::int16_t* mask, int stride, int rows, const SparkCommand& tint, std::uint16_t* light,
                 std::ptrdiff_t planeStride);

    /// Resolves `count` pixels of a row.
    void (*resolve)(std::uint16_t* light, std::ptrdiff_t planeStride, std::size_t count,
                    const ResolveSettings& settings, std::uint8_t* pixels);
};

/// The plain ones: the oracle that the fast ones are tested against.
const RasterKernels& scalarKernels();

/// The fastest ones for this processor.
const RasterKernels& vectorKernels();

} // namespace starbloom
