// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/raster/Resampling.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace starbloom {

namespace {

/// The integral, from far left up to x, of a triangle of radius 1 and area 1 around 0: linear interpolation between the
/// pixels of an image, collected over an interval.
double triangleIntegral(double x) {
    if (x <= -1.0) {
        return 0.0;
    }
    if (x >= 1.0) {
        return 1.0;
    }
    return x < 0.0 ? 0.5 * (x + 1.0) * (x + 1.0) : 1.0 - 0.5 * (1.0 - x) * (1.0 - x);
}

} // namespace

std::vector<Taps> tapsFor(const SampleLine& samples, int imagePixels, double size) {
    std::vector<Taps> all(static_cast<std::size_t>(samples.count));
    const double step = imagePixels / size;
    for (int i = 0; i < samples.count; ++i) {
        const double from = (samples.left + i * samples.spacing + size / 2.0) * step;
        const double to = from + step;
        const int begin = std::clamp(static_cast<int>(std::floor(from - 1.5)), 0, imagePixels);
        const int end = std::clamp(static_cast<int>(std::ceil(to + 1.5)), 0, imagePixels);
        Taps& taps = all[static_cast<std::size_t>(i)];
        taps.first = begin;
        for (int k = begin; k < end; ++k) {
            taps.weights.push_back((triangleIntegral(to - (k + 0.5)) - triangleIntegral(from - (k + 0.5))) / step);
        }
    }
    return all;
}

std::vector<double> resampleLines(const std::vector<double>& source, int lineLength, const std::vector<Taps>& taps) {
    const std::size_t lines = source.size() / static_cast<std::size_t>(lineLength);
    std::vector<double> result;
    result.reserve(lines * taps.size());
    for (std::size_t line = 0; line < lines; ++line) {
        const double* values = source.data() + line * static_cast<std::size_t>(lineLength);
        for (const Taps& tap : taps) {
            double sum = 0.0;
            for (std::size_t k = 0; k < tap.weights.size(); ++k) {
                sum += tap.weights[k] * values[static_cast<std::size_t>(tap.first) + k];
            }
            result.push_back(sum);
        }
    }
    return result;
}

std::vector<double> transposed(const std::vector<double>& values, int lineLength) {
    const auto width = static_cast<std::size_t>(lineLength);
    const std::size_t lines = values.size() / width;
    std::vector<double> result(values.size());
    for (std::size_t line = 0; line < lines; ++line) {
        for (std::size_t i = 0; i < width; ++i) {
            result[i * lines + line] = values[line * width + i];
        }
    }
    return result;
}

} // namespace starbloom
