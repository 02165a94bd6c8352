// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/guide/GuideScenes.h"

#include "engine/model/FireworksTree.h"
#include "engine/panel/FireworksController.h"

#include <algorithm>
#include <array>

namespace starbloom {

namespace {

using enum Parameter;
using Setting = GuideScene::Setting;

// Where rockets go is plain to see when there are many of them and their bursts stay small.
constexpr std::array smallBursts{Setting{RocketBirth, 40.0F}, Setting{ExplodeVelocity, 70.0F},
                                 Setting{ExplodeLife, 14.0F}};
constexpr std::array smallBurstsAtAnyRate{Setting{ExplodeVelocity, 70.0F}};
constexpr std::array bigBursts{Setting{RocketBirth, 14.0F}};

// A burst is looked at alone: one rocket in three seconds, straight up, whose burst opens in the same place each time.
constexpr std::array singleBurst{Setting{RocketBirth, 3.0F}, Setting{RocketAngle, 0.0F}, Setting{RocketRange, 0.0F}};

constexpr std::array smallSingleBurst{Setting{RocketBirth, 3.0F}, Setting{RocketAngle, 0.0F},
                                      Setting{RocketRange, 0.0F}, Setting{ExplodeVelocity, 80.0F},
                                      Setting{ExplodeGravity, 40.0F}};

/// How far above its launch point such a rocket bursts. Points.
constexpr double burstHeight = 319.0;

constexpr Size closeStage{400.0, 300.0};
constexpr Size closestStage{240.0, 180.0};

/// The launch point for which a single burst opens in the middle of a stage, or so far above it.
constexpr Point belowMiddle(Size stage, double above = 0.0) {
    return {stage.width / 2.0, stage.height / 2.0 + above - burstHeight};
}

// Seeds and moments are chosen by eye, for pictures that differ plainly, and change with anything that changes the
// show.
const std::array<GuideScene, 12> scenes{{
    {RocketHeight, smallBursts, defaultStageSize, {}, 3, 6.0},
    {RocketBirth, smallBurstsAtAnyRate, defaultStageSize, {}, 1, 6.0},
    {RocketAngle, smallBursts, defaultStageSize, {}, 2, 6.0},
    {RocketVelocity, smallBursts, defaultStageSize, {}, 6, 6.0},
    {RocketRange, smallBursts, defaultStageSize, {}, 2, 6.0},
    {RocketGravity, smallBursts, defaultStageSize, {}, 3, 6.0},
    {ExplodeLife, bigBursts, defaultStageSize, {}, 5, 6.0},
    {ExplodeVelocity, singleBurst, defaultStageSize, belowMiddle(defaultStageSize), 1, 4.85},
    {ExplodeRange, singleBurst, closeStage, belowMiddle(closeStage), 1, 4.9},
    {ExplodeGravity, singleBurst, defaultStageSize, belowMiddle(defaultStageSize, 100.0), 1, 5.5},
    {SparkleLife, smallSingleBurst, closestStage, belowMiddle(closestStage, 20.0), 5, 5.2},
    {AnimateSpeed, singleBurst, closeStage, belowMiddle(closeStage), 1, 4.55, 0.4},
}};

} // namespace

const GuideScene* findGuideScene(Parameter parameter) {
    const auto* found = std::ranges::find(scenes, parameter, &GuideScene::parameter);
    return found == scenes.end() ? nullptr : found;
}

GuideMoment momentOf(const GuideScene& scene, SliderEnd end, const std::shared_ptr<const SparkImage>& image) {
    PositionPanel panel;
    for (const Setting& other : scene.others) {
        panel.setPosition(other.parameter, other.position);
    }
    panel.setPosition(scene.parameter, positionAt(row(scene.parameter), end));
    SizeStage stage(scene.stage);
    FireworksController controller(&panel, &stage, image);
    controller.slidersMoved();
    GuideMoment moment{EmitterPlan::of(controller.mortor()), scene.moment};
    moment.plan.emitterPosition = scene.launchPoint.value_or(moment.plan.emitterPosition);
    moment.time += scene.passed * static_cast<double>(controller.mortor().speed);
    return moment;
}

} // namespace starbloom
