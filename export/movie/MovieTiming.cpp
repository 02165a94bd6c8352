// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/movie/MovieTiming.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

namespace starbloom {

namespace {

constexpr double secondsPerStep = 0.5;
constexpr double longestFadeSeconds = 3600.0;

/// Increments are at least a millionth, so this is what keeps a barely rising climb from filling the memory.
constexpr int mostSteps = 100'000;

/// Takes the value through "%f" and single precision. Not by printf and strtof, because these follow the locale.
double throughDecimalText(double value) {
    // The largest double has 309 digits before the point.
    std::array<char, 330> text{};
    const auto written = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, 6);
    float result = 0.0F;
    const auto read = std::from_chars(text.data(), written.ptr, result);
    if (read.ec == std::errc::result_out_of_range) {
        return std::copysign(std::numeric_limits<double>::infinity(), value);
    }
    return result;
}

} // namespace

std::vector<LaunchStep> fadeInSteps(double birthPosition, double fadeSeconds) {
    std::vector<LaunchStep> launches{{0.0, 1.0}};
    if (!std::isfinite(birthPosition) || !(fadeSeconds > 0.0)) {
        return launches;
    }
    const double steps = std::min(fadeSeconds, longestFadeSeconds) / secondsPerStep;
    const double increment = throughDecimalText((birthPosition - 1.0) / steps);
    const int last = increment > 0.0 ? mostSteps : static_cast<int>(steps);
    double sum = 0.0;
    for (int step = 1; step <= last; ++step) {
        sum += increment;
        if (birthPosition >= sum) {
            launches.push_back({step * secondsPerStep, sum});
        } else if (increment > 0.0) {
            break;
        }
    }
    return launches;
}

double frameTime(std::int64_t frame, int framesPerSecond) {
    return static_cast<double>(frame) / framesPerSecond;
}

std::int64_t frameCount(double seconds, int framesPerSecond) {
    // A length such as 2.3 lies a last bit off its decimal text, which must not cost a frame.
    const double frames = seconds * framesPerSecond * (1.0 + 1.0e-12);
    if (!(frames > 0.0)) {
        return 0;
    }
    // 2^63 is the first value that does not fit.
    return frames < 0x1p63 ? static_cast<std::int64_t>(frames) : std::numeric_limits<std::int64_t>::max();
}

} // namespace starbloom
