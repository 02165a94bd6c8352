// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/model/SparkImage.h"

#include <cmath>
#include <memory>

namespace starbloom {

/// The spark of all benchmarks: a glow of 12 x 12 points, with room for scale factors up to 4.
inline std::shared_ptr<const SparkImage> glow() {
    constexpr int side = 48;
    SparkImage image{side, side, 4.0, {}};
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            const double r = std::hypot(x + 0.5 - side / 2.0, y + 0.5 - side / 2.0) / (side / 2.0);
            image.light.push_back(r < 1.0 ? static_cast<float>(std::exp(-6.0 * r * r) * (1.0 - r * r)) : 0.0F);
        }
    }
    return std::make_shared<const SparkImage>(image);
}

} // namespace starbloom
