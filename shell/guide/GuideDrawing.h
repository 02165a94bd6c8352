// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/ImageBuffer.h"
#include "engine/model/SparkImage.h"
#include "engine/raster/RasterRenderer.h"
#include "shell/guide/GuideScenes.h"

#include <memory>

namespace starbloom {

/// Draws pictures of the guide. Keeps what the next one may need as well. May be used from one thread at a time, any;
/// it draws on that thread alone, and leaves the processor's other cores to the show.
class GuideDrawing {
public:
    /// Without an image, all pictures are black.
    explicit GuideDrawing(std::shared_ptr<const SparkImage> image);

    /// The scene with its slider at an end, opaque. Width and height are pixels, at least 1.
    ImageBuffer draw(const GuideScene& scene, SliderEnd end, int width, int height);

private:
    std::shared_ptr<const SparkImage> m_image;
    RasterRenderer m_renderer;
};

} // namespace starbloom
