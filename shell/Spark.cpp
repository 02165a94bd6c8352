// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/Spark.h"

#include "export/picture/PngCodec.h"
#include "resources/Resources.h"

namespace starbloom {

std::shared_ptr<const SparkImage> spark() {
    static const std::shared_ptr<const SparkImage> image = sharedSparkImage(sparkPng());
    return image;
}

} // namespace starbloom
