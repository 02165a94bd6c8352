// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

namespace starbloom {

/// The picture that a drawing cell stamps for each of its particles: how much light falls where, without colour. The
/// particle's colour tints it. Decoded once and shared by every cell that draws; never changed afterwards, so any
/// number of threads may read it.
struct SparkImage {
    int width = 0;  ///< pixels, at least 1
    int height = 0; ///< pixels, at least 1

    /// How densely the image's pixels lie: its size in points is width / pixelsPerPoint by height / pixelsPerPoint.
    /// Greater than 0.
    double pixelsPerPoint = 1.0;

    /// Light of each pixel, 0 (none) to 1 (all of the particle's colour); width x height values, top row first.
    std::vector<float> light;
};

} // namespace starbloom
