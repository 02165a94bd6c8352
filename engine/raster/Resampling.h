// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

namespace starbloom {

// Draws a spark image smaller or larger, one axis after the other. Light is averaged over the area of one pixel of the
// picture, so a spark keeps its energy at any size and wherever it lies between pixels.

/// How much each pixel of a line of an image counts for one sample.
struct Taps {
    int first = 0;
    std::vector<double> weights;
};

/// Where samples lie, in pixels of the picture from the image's centre. Each is the average over one pixel.
struct SampleLine {
    double left = 0.0; ///< The left edge of the first sample's pixel.
    double spacing = 1.0;
    int count = 0;
};

/// The taps of all samples, for a line of `imagePixels` pixels that is drawn `size` pixels long.
std::vector<Taps> tapsFor(const SampleLine& samples, int imagePixels, double size);

/// One pass of the separable resampling: each line of `source` (of `lineLength` values) becomes taps.size() values.
std::vector<double> resampleLines(const std::vector<double>& source, int lineLength, const std::vector<Taps>& taps);

std::vector<double> transposed(const std::vector<double>& values, int lineLength);

} // namespace starbloom
