// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/opengl/SparkVolume.h"

#include "engine/raster/Resampling.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>

namespace starbloom {

SparkVolume SparkVolume::of(const SparkImage& image) {
    const int longer = std::max(image.width, image.height);
    SparkVolume volume;
    volume.imagePixels = longer;
    volume.side = longer <= 96 ? 64 : 128;
    volume.levels = static_cast<int>(std::ceil(std::log2(4.0 * longer / smallestSize) * levelsPerOctave)) + 1;
    const std::vector<double> light(image.light.begin(), image.light.end());
    for (int level = 0; level < volume.levels; ++level) {
        const double size = smallestSize * std::exp2(level / levelsPerOctave);
        volume.largestSize = size;
        const double spacing = 2.0 * volume.reach(size) / volume.side;
        const SampleLine line{-volume.reach(size) + 0.5 * spacing - 0.5, spacing, volume.side};
        const double zoom = size / longer;
        const auto narrow =
            transposed(resampleLines(light, image.width, tapsFor(line, image.width, image.width * zoom)), volume.side);
        const auto drawn = transposed(
            resampleLines(narrow, image.height, tapsFor(line, image.height, image.height * zoom)), volume.side);
        std::ranges::transform(drawn, std::back_inserter(volume.values), [size](double value) {
            return qfloat16(static_cast<float>(std::min(value, 1.0) / fading(size)));
        });
    }
    return volume;
}

} // namespace starbloom
