// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/ShowBuilder.h"

#include "engine/panel/FireworksController.h"
#include "export/movie/MovieTiming.h"
#include "export/picture/PngCodec.h"
#include "resources/Resources.h"

#include <memory>
#include <utility>

namespace starbloom {

namespace {

/// A stage that is nothing but its size.
class SizeStage final : public Stage {
public:
    explicit SizeStage(Size size)
        : m_size(size) {}

    Size size() const override { return m_size; }

    void setRootLayer(std::shared_ptr<const RootLayer>) override {}

    void layerChanged() override {}

private:
    Size m_size;
};

} // namespace

RequestedShow buildShow(const Options& options) {
    SizeStage stage({static_cast<double>(options.width), static_cast<double>(options.height)});
    PositionPanel panel = options.positions;
    FireworksController controller(&panel, &stage, sharedSparkImage(sparkPng()));
    controller.slidersMoved();

    RequestedShow requested;
    requested.show.seed = options.seed;
    requested.speed = static_cast<double>(controller.mortor().speed);
    if (!(options.fadeIn > 0.0)) {
        requested.show.changes.push_back({0.0, EmitterPlan::of(controller.mortor())});
        return requested;
    }
    const auto birthPosition = static_cast<double>(panel.position(Parameter::RocketBirth));
    for (const LaunchStep& step : fadeInSteps(birthPosition, options.fadeIn)) {
        controller.setLaunchBirth(step.position);
        // The climb starts with the first frame; until then the rate stands where the climb begins.
        const double seconds = requested.show.changes.empty() ? 0.0 : options.from + step.seconds;
        requested.show.changes.push_back({seconds * requested.speed, EmitterPlan::of(controller.mortor())});
    }
    return requested;
}

} // namespace starbloom
