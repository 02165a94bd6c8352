// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/raster/SpriteAtlas.h"
#include "tests/engine/Scenes.h"

#include <gmock/gmock.h>

#include <cmath>
#include <numbers>
#include <numeric>

namespace starbloom {

namespace {

/// What a spark's light adds up to, and where its centre is, in pixels from the corner of the pixel of the sprite's
/// centre; x to the right, y downward.
struct Light {
    double sum = 0.0;
    double x = 0.0;
    double y = 0.0;
};

Light lightOf(const SpriteSet& set, unsigned phaseX, unsigned phaseY) {
    Light light;
    const std::int16_t* mask = set.mask(phaseX, phaseY);
    for (int y = 0; y < set.rows; ++y) {
        for (int x = 0; x < set.stride; ++x) {
            const double value = *mask++ / 32767.0;
            light.sum += value;
            light.x += value * (set.left + x + 0.5);
            light.y += value * (set.top + y + 0.5);
        }
    }
    light.x /= light.sum;
    light.y /= light.sum;
    return light;
}

int keyOf(const SpriteAtlas& atlas, float size, float rotation) {
    return atlas.keyFor(SpriteSizes::stepOf(size), rotation);
}

double energyOf(const SparkImage& image) {
    return std::accumulate(image.light.begin(), image.light.end(), 0.0);
}

TEST(SpriteAtlas, lightIsKeptAtEverySizeAndLiesWhereItShould) {
    const SpriteAtlas atlas(softSpark());
    ASSERT_TRUE(atlas.isRotationInvariant());
    EXPECT_EQ(atlas.sizeInPoints(), 12.0F);
    for (const float size :
         {1.5F, 3.0F, 4.75F, 7.25F, 12.0F, 15.875F, 24.0F, 60.0F, 100.0F, 144.0F}) { // all exact steps
        const auto set = atlas.make(keyOf(atlas, size, 0.3F));
        const double zoom = static_cast<double>(size) / 48.0;
        const double expected = energyOf(*softSpark()) * zoom * zoom;
        for (unsigned phase = 0; phase < 8; phase += 1U << set->phaseShift) {
            const unsigned other = ((7 - phase) >> set->phaseShift) << set->phaseShift;
            const Light light = lightOf(*set, phase, other);
            // Each pixel of a mask is rounded to a part in 32767.
            EXPECT_NEAR(light.sum, expected, 0.001 * expected + 0.0001) << size << " " << phase;
            // Pixels as coarse as the light itself cannot hold its centre, whoever fills them.
            if (size > 4.0F) {
                EXPECT_NEAR(light.x, phase / 8.0, 0.005) << size << " " << phase;
                EXPECT_NEAR(light.y, other / 8.0, 0.005) << size << " " << phase;
            }
        }
    }
}

TEST(SpriteAtlas, turningMovesTheLightCounterClockwise) {
    const SpriteAtlas atlas(lopsidedSpark());
    ASSERT_FALSE(atlas.isRotationInvariant());
    // The light lies 12 image pixels right of the centre and 4 below, which is a quarter and a twelfth of the size.
    const double size = 32.0;
    const double radius = size * std::hypot(12.0, 4.0) / 48.0;
    const double start = std::atan2(-4.0, 12.0);
    for (const double angle : {0.0, 0.5, 1.0, 1.5, 0.25, 3.25, -1.75, 0.8125}) { // in units of pi: exact steps
        const auto set = atlas.make(keyOf(atlas, 32.0F, static_cast<float>(angle * std::numbers::pi)));
        const Light light = lightOf(*set, 0, 0);
        EXPECT_NEAR(light.x, radius * std::cos(start + angle * std::numbers::pi), 0.05) << angle;
        EXPECT_NEAR(light.y, -radius * std::sin(start + angle * std::numbers::pi), 0.05) << angle;
        EXPECT_NEAR(light.sum, energyOf(*lopsidedSpark()) * (size / 48.0) * (size / 48.0), 0.01 * light.sum) << angle;
    }
}

TEST(SpriteAtlas, keysStandForTheNearestSizeAndAngle) {
    const SpriteAtlas atlas(lopsidedSpark());
    EXPECT_EQ(atlas.make(keyOf(atlas, 0.0F, 1.0F))->rows, 0);
    EXPECT_EQ(keyOf(atlas, 1e30F, 0.0F), keyOf(atlas, SpriteSizes::largest, 0.0F));
    EXPECT_LT(keyOf(atlas, 1e30F, -0.05F), SpriteSizes::count * SpriteAtlas::angleCount);
    EXPECT_EQ(keyOf(atlas, 9.0F, 0.01F), keyOf(atlas, 9.0F, -0.01F));
    EXPECT_NE(keyOf(atlas, 9.0F, 0.06F), keyOf(atlas, 9.0F, -0.06F));
}

} // namespace

} // namespace starbloom
