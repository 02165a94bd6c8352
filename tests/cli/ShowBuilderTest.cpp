// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/ShowBuilder.h"

#include <gtest/gtest.h>

namespace starbloom {

namespace {

TEST(ShowBuilder, AppliesThePositionsToTheWholeStage) {
    Options options;
    options.width = 1920;
    options.height = 1080;
    options.seed = 9;
    options.positions.setPosition(Parameter::AnimateSpeed, 50.0F);
    const RequestedShow requested = buildShow(options);
    EXPECT_EQ(requested.speed, 0.5);
    EXPECT_EQ(requested.show.seed, 9U);
    ASSERT_EQ(requested.show.changes.size(), 1U);
    const EmitterPlan& plan = requested.show.changes[0].plan;
    EXPECT_EQ(plan.emitterPosition, (Point{960.0, 0.0}));
    // The sliders have been applied: a bare tree has rockets of one speed.
    EXPECT_EQ(plan.cells[0].velocityRange, 100.0);
    EXPECT_NE(plan.cells[1].image, nullptr);
}

TEST(ShowBuilder, TheClimbStartsWithTheFirstFrameInTheLayersTime) {
    Options options;
    options.from = 4.0;
    options.fadeIn = 2.0;
    options.positions.setPosition(Parameter::AnimateSpeed, 200.0F);
    const RequestedShow requested = buildShow(options);
    std::vector<std::pair<double, double>> climb;
    for (const auto& change : requested.show.changes) {
        climb.emplace_back(change.time, change.plan.cells[0].birthRate);
    }
    const auto rate = [](double position) { return static_cast<double>(static_cast<float>(position * 0.1)); };
    // Position 5 in steps of 1 each half second, at twice the pace of the viewer's time.
    const std::vector<std::pair<double, double>> expected{{0.0, rate(1.0)},  {9.0, rate(1.0)},  {10.0, rate(2.0)},
                                                          {11.0, rate(3.0)}, {12.0, rate(4.0)}, {13.0, rate(5.0)}};
    EXPECT_EQ(climb, expected);
}

} // namespace

} // namespace starbloom
