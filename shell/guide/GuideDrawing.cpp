// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/guide/GuideDrawing.h"

#include "engine/time/Simulation.h"

#include <utility>

namespace starbloom {

GuideDrawing::GuideDrawing(std::shared_ptr<const SparkImage> image)
    : m_image(std::move(image)) {}

ImageBuffer GuideDrawing::draw(const GuideScene& scene, SliderEnd end, int width, int height) {
    GuideMoment moment = momentOf(scene, end, m_image);
    Simulation simulation(scene.seed, std::move(moment.plan));
    simulation.advanceTo(moment.time);
    ImageBuffer picture(width, height);
    const RasterRenderer::View view{.time = moment.time, .pixelsPerPoint = width / scene.stage.width};
    m_renderer.render(simulation.sparks(), view, RasterTarget::of(picture));
    return picture;
}

} // namespace starbloom
