// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/time/Trigonometry.h"

#include <cmath>
#include <numbers>

namespace starbloom {

namespace {

// Taylor polynomials on [-pi/4, pi/4]; the first omitted terms are below 3e-14.

double sineNearZero(double x) {
    const double q = x * x;
    double sum = 1.0 / 6227020800.0;
    sum = sum * q - 1.0 / 39916800.0;
    sum = sum * q + 1.0 / 362880.0;
    sum = sum * q - 1.0 / 5040.0;
    sum = sum * q + 1.0 / 120.0;
    sum = sum * q - 1.0 / 6.0;
    return x + x * (q * sum);
}

double cosineNearZero(double x) {
    const double q = x * x;
    double sum = -1.0 / 87178291200.0;
    sum = sum * q + 1.0 / 479001600.0;
    sum = sum * q - 1.0 / 3628800.0;
    sum = sum * q + 1.0 / 40320.0;
    sum = sum * q - 1.0 / 720.0;
    sum = sum * q + 1.0 / 24.0;
    sum = sum * q - 0.5;
    return 1.0 + q * sum;
}

} // namespace

SineCosine sineCosine(double angle) {
    // Quarter turns are taken off in two parts of pi/2, so that little is lost when the angle is several turns.
    constexpr double quarterHigh = 0x1.921fb54400000p+0;
    constexpr double quarterLow = 0x1.0b4611a626331p-34;
    const double quarters = std::floor(angle * (2.0 / std::numbers::pi) + 0.5);
    const double rest = (angle - quarters * quarterHigh) - quarters * quarterLow;
    const double s = sineNearZero(rest);
    const double c = cosineNearZero(rest);
    const double quadrant = quarters - 4.0 * std::floor(quarters * 0.25);
    if (quadrant == 0.0) {
        return {s, c};
    }
    if (quadrant == 1.0) {
        return {c, -s};
    }
    if (quadrant == 2.0) {
        return {-s, -c};
    }
    return {-c, s};
}

} // namespace starbloom
