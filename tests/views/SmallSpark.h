// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/model/SparkImage.h"

#include <memory>

namespace starbloom {

/// A square of even light: whether a stage shows the right picture does not depend on the image.
inline std::shared_ptr<const SparkImage> smallSpark() {
    auto image = std::make_shared<SparkImage>();
    image->width = image->height = 5;
    image->light.assign(25, 0.6F);
    return image;
}

} // namespace starbloom
