// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/time/Trigonometry.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace starbloom {

namespace {

double worstError(double from, double to, double step) {
    double worst = 0.0;
    for (double angle = from; angle < to; angle += step) {
        const auto [sine, cosine] = sineCosine(angle);
        worst = std::max({worst, std::abs(sine - std::sin(angle)), std::abs(cosine - std::cos(angle))});
    }
    return worst;
}

TEST(Trigonometry, keepsItsPromisedAccuracy) {
    EXPECT_LT(worstError(-20.0, 20.0, 3.7e-5), 1e-12);
    EXPECT_LT(worstError(-1.0e6, 1.0e6, 3.14159), 1e-12);
}

TEST(Trigonometry, quarterTurnsFallIntoTheRightQuadrant) {
    for (int quarters = -9; quarters <= 9; ++quarters) {
        for (const double beside : {-1e-9, 0.0, 1e-9}) {
            const double angle = quarters * std::numbers::pi / 2.0 + beside;
            EXPECT_NEAR(sineCosine(angle).sine, std::sin(angle), 1e-12) << quarters;
            EXPECT_NEAR(sineCosine(angle).cosine, std::cos(angle), 1e-12) << quarters;
        }
    }
}

} // namespace

} // namespace starbloom
