// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/time/Show.h"
#include "tests/engine/Scenes.h"

#include <gmock/gmock.h>

#include <vector>

namespace starbloom {

namespace {

/// Every step taken, nothing skipped: what the player must agree with.
std::vector<SparkBits> playedThrough(const Show& show, double end) {
    Simulation simulation(show.seed, show.changes.front().plan);
    std::size_t next = 1;
    for (int step = 1; simulation.time() < end; ++step) {
        const double time = std::min(step / 30.0, end);
        for (; next < show.changes.size() && show.changes[next].time <= time; ++next) {
            simulation.advanceTo(show.changes[next].time);
            simulation.setPlan(show.changes[next].plan);
        }
        simulation.advanceTo(time);
    }
    return sparkSet(simulation);
}

/// Rockets fade in over the first seconds, as in a recording; later other sliders move, and most of them back.
Show changingShow() {
    Show show{7, {}};
    for (int i = 0; i <= 10; ++i) {
        show.changes.push_back({0.5 * i, panelPlan([=](PositionPanel& panel) {
                                    panel.setPosition(Parameter::RocketBirth, static_cast<float>(1 + 2 * i));
                                })});
    }
    const auto lively = [](PositionPanel& panel) {
        panel.setPosition(Parameter::RocketBirth, 21.0F);
        panel.setPosition(Parameter::ExplodeLife, 45.0F);
        panel.setPosition(Parameter::RocketHeight, 6.0F);
    };
    show.changes.push_back({9.3, panelPlan(lively)});
    show.changes.push_back({11.0, panelPlan([&](PositionPanel& panel) {
                                lively(panel);
                                panel.setPosition(Parameter::ExplodeLife, 8.0F);
                                panel.setPosition(Parameter::RocketVelocity, 300.0F);
                            })});
    return show;
}

TEST(ShowPlayer, everyMomentIsTheSameByWhicheverWay) {
    const Show show = changingShow();
    ShowPlayer wandering(show);
    for (const double time : {0.0, 3.0, 2.9, 9.29, 9.3, 12.5, 4.75, 11.0, 40.0, 10.999, 39.0, 41.0}) {
        const auto expected = playedThrough(show, time);
        EXPECT_EQ(expected.empty(), time == 0.0);
        EXPECT_EQ(sparkSet(ShowPlayer(show).at(time)), expected) << "from scratch at " << time;
        EXPECT_EQ(sparkSet(wandering.at(time)), expected) << "wandering at " << time;
    }
    EXPECT_EQ(wandering.at(-5.0).time(), 0.0);
}

TEST(ShowPlayer, livesThatGrowLongInTurnAreNotForgotten) {
    // Carriers of the first plan live long, sparks of the second do: together longer than any chain of one plan.
    const auto plan = [](float carrierLife, float sparkLife) {
        return treePlan([=](EmitterLayer& layer) {
            EmitterCell& carrier = *layer.emitterCells[0];
            carrier.birthRate = 50.0F;
            carrier.lifetime = carrierLife;
            carrier.emitterCells.resize(1);
            carrier.emitterCells[0]->lifetime = sparkLife;
            carrier.emitterCells[0]->birthRate = 5.0F;
            carrier.emitterCells[0]->duration = 0.0;
        });
    };
    const Show show{3, {{0.0, plan(10.0F, 1.0F)}, {3.0, plan(1.0F, 10.0F)}}};
    for (const double time : {14.0, 20.0, 22.5}) {
        const auto expected = playedThrough(show, time);
        EXPECT_FALSE(expected.empty());
        EXPECT_EQ(sparkSet(ShowPlayer(show).at(time)), expected) << time;
        Simulation leaping(show.seed, show.changes[0].plan);
        leaping.advanceTo(3.0);
        leaping.setPlan(show.changes[1].plan);
        leaping.advanceTo(time);
        EXPECT_EQ(sparkSet(leaping), expected) << time;
    }
}

} // namespace

} // namespace starbloom
