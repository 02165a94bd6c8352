// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/time/Random.h"

#include <gmock/gmock.h>

#include <array>

namespace starbloom {

namespace {

constexpr std::array draws{Draw::Moment, Draw::ConeHeight, Draw::ConeTurn, Draw::Velocity,
                           Draw::Scale,  Draw::Red,        Draw::Green,    Draw::Blue};

TEST(Random, eachDrawIsEvenAndIndependentOfItsNeighbours) {
    constexpr int count = 100'000;
    constexpr int bins = 20;
    const ParticleKey emitter = showKey(1);
    for (const Draw draw : draws) {
        std::array<int, bins> histogram{};
        double products = 0.0; // of each number with the one of the next birth, and with another draw of its own
        double crossed = 0.0;
        for (std::uint64_t i = 0; i < count; ++i) {
            const ParticleKey key = birthKey(emitter, 0, i);
            const double number = uniform(key, draw);
            ASSERT_GE(number, 0.0);
            ASSERT_LT(number, 1.0);
            ++histogram[static_cast<std::size_t>(number * bins)];
            products += (number - 0.5) * (uniform(birthKey(emitter, 0, i + 1), draw) - 0.5);
            crossed += draw == Draw::Scale ? 0.0 : (number - 0.5) * (uniform(key, Draw::Scale) - 0.5);
        }
        for (const int hits : histogram) {
            EXPECT_NEAR(hits, count / bins, 345); // five standard deviations
        }
        // A product has variance 1/144; five standard deviations again.
        EXPECT_NEAR(products / count, 0.0, 0.00132);
        EXPECT_NEAR(crossed / count, 0.0, 0.00132);
    }
}

} // namespace

} // namespace starbloom
