// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/ShowBuilder.h"

#include "engine/panel/FireworksController.h"
#include "export/movie/MovieTiming.h"
#include "export/picture/PngCodec.h"
#include "resources/Resources.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

namespace starbloom {

namespace {

EmitterPlan planOf(const FireworksController& controller, const Options& options) {
    EmitterPlan plan = EmitterPlan::of(controller.mortor());
    plan.emitterPosition = options.launchPoint.value_or(plan.emitterPosition);
    return plan;
}

ShowNote noteOf(const RequestedShow& requested, const Options& options) {
    ShowNote note;
    note.program = "starbloom-render";
    note.version = STARBLOOM_VERSION;
    for (const ParameterRow& each : parameterTable) {
        note.positions[static_cast<std::size_t>(each.parameter)] = options.positions.position(each.parameter);
    }
    note.seed = options.seed;
    note.stage = options.stage();
    note.pixelsPerPoint = options.pixelsPerPoint;
    note.launchPoint = requested.show.changes.front().plan.emitterPosition;
    note.background = options.drawnBackground();
    note.steady = requested.show.changes.size() == 1 && !options.loop;
    return note;
}

/// Rockets per second of the layer's time.
double rocketRate(const EmitterPlan& plan) {
    const auto rocket = std::ranges::find_if(plan.cells, [](const CellPlan& cell) { return cell.parent < 0; });
    return rocket == plan.cells.end() ? 0.0 : static_cast<double>(rocket->birthRate);
}

/// Makes a steady show one whose frame after the last would be the first again.
void makeLoop(RequestedShow& requested, const Options& options) {
    EmitterPlan& plan = requested.show.changes.front().plan;
    const double round = frameTime(options.frameCount(), options.framesPerSecond) * requested.speed;
    if (!(round > 0.0)) {
        return; // At speed 0 each frame is like the others.
    }
    const double wanted = rocketRate(plan);
    plan.repeatEvery(round);
    requested.loopRate = wanted > 0.0 ? rocketRate(plan) / wanted : 1.0;
    AncestryBound ancestry;
    ancestry.include(plan);
    requested.start = std::ceil(ancestry.longest() / round) * round;
}

} // namespace

RequestedShow buildShow(const Options& options) {
    SizeStage stage(options.stage());
    PositionPanel panel = options.positions;
    FireworksController controller(&panel, &stage, sharedSparkImage(sparkPng()));
    controller.slidersMoved();

    RequestedShow requested;
    requested.show.seed = options.seed;
    requested.speed = static_cast<double>(controller.mortor().speed);
    if (options.fadeIn > 0.0) {
        const auto birthPosition = static_cast<double>(panel.position(Parameter::RocketBirth));
        for (const LaunchStep& step : fadeInSteps(birthPosition, options.fadeIn)) {
            controller.setLaunchBirth(step.position);
            // The climb starts with the first frame; until then the rate stands where the climb begins.
            const double seconds = requested.show.changes.empty() ? 0.0 : options.from + step.seconds;
            requested.show.changes.push_back({seconds * requested.speed, planOf(controller, options)});
        }
    } else {
        requested.show.changes.push_back({0.0, planOf(controller, options)});
    }
    if (options.loop) {
        makeLoop(requested, options);
    }
    requested.note = noteOf(requested, options);
    return requested;
}

} // namespace starbloom
