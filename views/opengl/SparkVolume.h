// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/model/SparkImage.h"

#include <qfloat16.h>

#include <vector>

namespace starbloom {

/// A spark image drawn at sizes from an eighth of a pixel up, as a volume that a graphics processor can look up between
/// its values: across, down, and from size to size.
///
/// The CPU's sprites average the image's light over each pixel. Plain texture filters do not, and sparks of a few
/// pixels would shine too brightly or too little, so that is worked out here, for `levelsPerOctave` sizes to each
/// doubling.
///
/// A level of size s covers a square of 2 x reach(s) pixels around the image's centre. Its values are divided by
/// fading(s), as the light of sparks smaller than a pixel falls with the square of their size, which lines between
/// levels would not follow.
struct SparkVolume {
    static constexpr double smallestSize = 0.125; ///< Pixels of the image's longer side.
    static constexpr double levelsPerOctave = 4.0;

    int side = 0; ///< Values across and down a level.
    int levels = 0;
    double largestSize = 0.0;     ///< Of the last level; drawn larger, the image hardly changes but for its scale.
    double imagePixels = 0.0;     ///< The image's longer side.
    std::vector<qfloat16> values; ///< Level by level, each from its top row down.

    static SparkVolume of(const SparkImage& image);

    /// How far the light of an image of that size can reach from its centre, in pixels: half its side, half a pixel for
    /// the average, and the image's outermost pixel fading out.
    double support(double size) const { return size / 2.0 + 0.5 + size / imagePixels; }

    /// The same with the outermost values of a level, which are dark, in it.
    double reach(double size) const { return support(size) / (1.0 - 1.0 / side); }

    static double fading(double size) { return size * size / (1.0 + size * size); }
};

} // namespace starbloom
