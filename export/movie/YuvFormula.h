// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/ImageBuffer.h"
#include "export/movie/YuvConverter.h"

#include <cmath>
#include <cstddef>
#include <cstdint>

// The arithmetic of YuvConverter one sample at a time, and the numbers that its SIMD code shares with it.

namespace starbloom {

/// Weights of red, green and blue, times 2^15.
struct YuvWeights {
    std::int16_t red;
    std::int16_t green;
    std::int16_t blue;
};

struct YuvCoefficients {
    YuvWeights luma;
    YuvWeights blueChroma;
    YuvWeights redChroma;
};

inline constexpr int weightBits = 15;
inline constexpr int lumaBias = (16 << weightBits) + (1 << (weightBits - 1));

/// A chroma sample is made of sums of eight values: two rows of 1 + 2 + 1.
inline constexpr int chromaBits = weightBits + 3;
inline constexpr int chromaBias = (128 << chromaBits) + (1 << (chromaBits - 1));

/// Two rows of a picture, of an even number of pixels, and where their samples go.
struct YuvRowPair {
    const std::uint8_t* upper;
    const std::uint8_t* lower;
    std::size_t width; ///< pixels
    std::uint8_t* upperLuma;
    std::uint8_t* lowerLuma;
    std::uint8_t* blue;
    std::uint8_t* red;
};

inline std::uint8_t lumaOf(const std::uint8_t* pixel, const YuvWeights& weights) {
    const int sum = weights.red * pixel[0] + weights.green * pixel[1] + weights.blue * pixel[2];
    return static_cast<std::uint8_t>((sum + lumaBias) >> weightBits);
}

inline std::uint8_t chromaOf(const int (&sums)[3], const YuvWeights& weights) {
    const int sum = weights.red * sums[0] + weights.green * sums[1] + weights.blue * sums[2];
    return static_cast<std::uint8_t>((sum + chromaBias) >> chromaBits);
}

/// One chroma sample without SIMD, for the left edge and for what is left of a row at the right.
inline void convertChroma(const YuvRowPair& rows, const YuvCoefficients& coefficients, std::size_t sample) {
    const std::size_t middle = sample * 2 * ImageBuffer::channels;
    const std::size_t right = middle + ImageBuffer::channels;
    const std::size_t left = sample == 0 ? middle : middle - ImageBuffer::channels;
    int sums[3];
    for (std::size_t channel = 0; channel < 3; ++channel) {
        const auto column = [&](std::size_t offset) {
            return rows.upper[offset + channel] + rows.lower[offset + channel];
        };
        sums[channel] = column(left) + 2 * column(middle) + column(right);
    }
    rows.blue[sample] = chromaOf(sums, coefficients.blueChroma);
    rows.red[sample] = chromaOf(sums, coefficients.redChroma);
}

inline YuvCoefficients coefficientsOf(YuvMatrix matrix) {
    const double kr = matrix == YuvMatrix::Bt709 ? 0.2126 : 0.299;
    const double kb = matrix == YuvMatrix::Bt709 ? 0.0722 : 0.114;
    const double kg = 1.0 - kr - kb;
    const auto weight = [](double value, double range) {
        return static_cast<std::int16_t>(std::lround(value * range / 255.0 * (1 << weightBits)));
    };
    YuvCoefficients result{};
    result.luma = {weight(kr, 219), weight(kg, 219), weight(kb, 219)};
    result.blueChroma = {weight(-kr / (2 * (1 - kb)), 224), 0, weight(0.5, 224)};
    result.redChroma = {weight(0.5, 224), 0, weight(-kb / (2 * (1 - kr)), 224)};
    // Taken from the other two, so that grey has exactly no colour.
    result.blueChroma.green = static_cast<std::int16_t>(-result.blueChroma.red - result.blueChroma.blue);
    result.redChroma.green = static_cast<std::int16_t>(-result.redChroma.red - result.redChroma.blue);
    return result;
}

} // namespace starbloom
