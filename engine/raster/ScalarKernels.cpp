// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/raster/RasterKernels.h"

#include <algorithm>
#include <cmath>

namespace starbloom {

namespace {

/// Far outside any picture, and well inside what the fixed-point coordinates hold.
constexpr float nearestCoordinate = -16384.0F;
constexpr float farthestCoordinate = 131072.0F;

std::int32_t eighths(float pixels) {
    const float bounded = std::min(std::max(pixels, nearestCoordinate), farthestCoordinate);
    return static_cast<std::int32_t>(std::floor(bounded * 8.0F + 0.5F));
}

float unit(float value) {
    return std::min(std::max(value, 0.0F), 1.0F);
}

std::int32_t tint(float channel, float light) {
    return static_cast<std::int32_t>(channel * light + 0.5F);
}

void place(const SparkBatch& b, std::size_t first, std::size_t count, const PlaceSettings& s, PlacedSparks& out) {
    const SparkLaw& law = b.law();
    const float halfPull = 0.5F * law.yAcceleration;
    for (std::size_t k = 0; k < count; ++k) {
        const std::size_t i = first + k;
        const float age = SparkBatch::age(b.time[i], s.time);
        const bool alive = age >= 0.0F && age < law.lifetime;
        const float x = b.x[i] + b.velocityX[i] * age;
        const float y = (b.y[i] + b.velocityY[i] * age) + (halfPull * age) * age;
        const float scale = std::max(b.scale[i] + law.scaleSpeed * age, 0.0F);
        const float alpha = unit(b.alpha[i] + law.colorSpeed.alpha * age);
        const float light = alive ? alpha * static_cast<float>(fullLight) : 0.0F;
        out.x8[k] = eighths(x * s.pixelsPerPoint);
        out.y8[k] = eighths(s.pictureHeight - y * s.pixelsPerPoint);
        out.sizeStep[k] = SpriteSizes::stepOf(scale * s.imageSizePixels);
        out.rotation[k] = law.spin * age;
        out.red[k] = tint(unit(b.red[i] + law.colorSpeed.red * age), light);
        out.green[k] = tint(unit(b.green[i] + law.colorSpeed.green * age), light);
        out.blue[k] = tint(unit(b.blue[i] + law.colorSpeed.blue * age), light);
    }
}

void draw(std::span<const SparkCommand> commands, std::uint16_t* light, std::ptrdiff_t planeStride) {
    for (const SparkCommand& command : commands) {
        const std::int16_t* mask = command.mask;
        std::uint16_t* out = light + command.place;
        for (int row = 0; row < command.rows; ++row) {
            for (const int tint : {command.red, command.green, command.blue}) {
                for (int x = 0; x < command.width; ++x) {
                    const int added = (mask[x] * tint + (1 << 14)) >> 15;
                    out[x] = static_cast<std::uint16_t>(std::min(out[x] + added, 0xFFFF));
                }
                out += planeStride;
            }
            mask += command.stride;
        }
    }
}

void resolve(const LightBlock& block, const ResolveSettings& settings, std::uint8_t* pixels, std::size_t bytesPerRow) {
    const bool swapped = settings.order == PixelOrder::Bgra;
    std::uint16_t* light = block.light;
    for (int row = 0; row < block.rows; ++row) {
        for (std::size_t channel = 0; channel < 3; ++channel) {
            std::uint8_t* out = pixels + (swapped ? 2 - channel : channel);
            for (int x = 0; x < block.width; ++x) {
                const int sum = std::min(light[x] + settings.background[channel], 0xFFFF);
                out[4 * x] = static_cast<std::uint8_t>(std::min(sum >> lightShift, 255));
                light[x] = 0;
            }
            light += block.planeStride;
        }
        for (int x = 0; x < block.width; ++x) {
            pixels[4 * x + 3] = 255;
        }
        pixels += bytesPerRow;
    }
}

} // namespace

const RasterKernels& scalarKernels() {
    static constexpr RasterKernels kernels{place, draw, resolve};
    return kernels;
}

} // namespace starbloom
