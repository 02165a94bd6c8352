// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/Log.h"
#include "engine/time/Show.h"
#include "tests/engine/Scenes.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace starbloom {

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();
constexpr double hostile[] = {noNumber, infinity, -infinity, 1e30, -1e30, 1e300, 1e9, 1e-300, -0.0};

/// The trees of this test stay below the ceiling or reach it within a step, so a few steps show all that can happen.
void expectSaneShow(const EmitterPlan& plan, const std::string& what) {
    Simulation simulation(1, plan);
    for (const double time : {0.02, 1.0, 2.0, 2.02, 4.5}) {
        simulation.advanceTo(time);
        std::size_t count = 0;
        for (const SparkBatch& batch : simulation.sparks()) {
            count += batch.size();
            for (std::size_t i = 0; i < batch.size(); i += 1 + batch.size() / 100) {
                if (const auto s = batch.stateAt(i, time)) {
                    const float sum = s->x + s->y + s->scale + s->rotation + s->color.red + s->color.green +
                                      s->color.blue + s->color.alpha;
                    ASSERT_TRUE(std::isfinite(sum)) << what << " at " << time;
                }
            }
        }
        ASSERT_LE(count, Simulation::liveCeiling) << what;
    }
}

class HostileNumbersTest : public testing::Test {
protected:
    HostileNumbersTest() {
        setLogSink([this](LogLevel, std::string_view area, std::string_view message) {
            lines.push_back(std::string(area) + ": " + std::string(message));
        });
    }

    ~HostileNumbersTest() override { setLogSink({}); }

    std::vector<std::string> lines;
};

TEST_F(HostileNumbersTest, everyPropertyTakesAnything) {
    const std::string cells[] = {"emitterCells.rocket.", "emitterCells.rocket.emitterCells.firework.",
                                 "emitterCells.rocket.emitterCells.preSpark."};
    for (const double value : hostile) {
        for (const char* name : {"birthRate", "lifetime", "velocity", "velocityRange", "yAcceleration",
                                 "emissionLongitude", "emissionLatitude", "emissionRange", "scale", "scaleRange",
                                 "scaleSpeed", "spin", "redRange", "redSpeed", "alphaSpeed", "beginTime", "duration"}) {
            for (const std::string& cell : cells) {
                expectSaneShow(treePlan([&](EmitterLayer& layer) { layer.setValue(value, cell + name); }),
                               cell + name + " = " + std::to_string(value));
            }
        }
        expectSaneShow(treePlan([&](EmitterLayer& layer) {
                           layer.emitterPosition = {value, value};
                           layer.emitterCells[0]->color = Color{static_cast<float>(value), static_cast<float>(-value),
                                                                1.0F, static_cast<float>(value)};
                       }),
                       "place and colour = " + std::to_string(value));
        expectSaneShow(panelPlan([&](PositionPanel& panel) {
                           for (const auto& each : parameterTable) {
                               panel.setPosition(each.parameter, static_cast<float>(value));
                           }
                       }),
                       "all sliders at " + std::to_string(value));
    }
}

TEST_F(HostileNumbersTest, sparksTooShortLivedToBeSeenCostNothing) {
    // A thousand million a second that die at once; one by one they would take minutes.
    const auto plan = treePlan([](EmitterLayer& layer) {
        layer.setValue(20.0, "emitterCells.rocket.birthRate");
        layer.setValue(1e9, "emitterCells.rocket.emitterCells.firework.birthRate");
        layer.setValue(1e-7, "emitterCells.rocket.emitterCells.firework.lifetime");
    });
    Simulation simulation(1, plan);
    simulation.advanceTo(4.0);
    EXPECT_GT(simulation.birthCounts()[2], 1'000'000'000U);
    EXPECT_EQ(simulation.skippedBirths(), 0U);
}

TEST_F(HostileNumbersTest, ceilingHoldsRecoversAndIsLoggedSparingly) {
    const auto flood = panelPlan([](PositionPanel& panel) {
        panel.setPosition(Parameter::RocketBirth, 1e7F);
        panel.setPosition(Parameter::ExplodeLife, 1e3F);
    });
    Simulation simulation(1, flood);
    for (int step = 1; step <= 150; ++step) {
        simulation.advanceTo(step / 50.0);
    }
    const auto full = sparkSet(simulation).size();
    EXPECT_GT(full, Simulation::liveCeiling / 2);
    EXPECT_LE(full, Simulation::liveCeiling);
    EXPECT_GT(simulation.skippedBirths(), 0U);
    ASSERT_GE(lines.size(), 1U);
    EXPECT_LE(lines.size(), 40U); // one each time the number has doubled, and not one a step
    EXPECT_THAT(lines[0], testing::StartsWith("engine: too many particles"));
    EXPECT_THAT(lines[0], testing::HasSubstr("births left out so far: "));

    Simulation emitters(1, treePlan([](EmitterLayer& layer) { layer.setValue(1e9, "emitterCells.rocket.birthRate"); }));
    emitters.advanceTo(0.01);
    EXPECT_EQ(emitters.birthCounts()[0], Simulation::emitterCeiling);
    EXPECT_NEAR(static_cast<double>(emitters.skippedBirths()), 0.01 * 1e9 - Simulation::emitterCeiling, 1.0);

    simulation.setPlan(panelPlan());
    simulation.advanceTo(200.0);
    const auto skipped = simulation.skippedBirths();
    simulation.advanceTo(210.0);
    Simulation fresh(1, panelPlan());
    fresh.advanceTo(210.0);
    EXPECT_EQ(simulation.skippedBirths(), skipped);
    EXPECT_NEAR(static_cast<double>(sparkSet(simulation).size()), static_cast<double>(sparkSet(fresh).size()), 3000.0);
}

TEST_F(HostileNumbersTest, slidersAtTheirEndsStayFarBelowTheCeiling) {
    Simulation simulation(1, panelPlan([](PositionPanel& panel) {
                              for (const auto& each : parameterTable) {
                                  panel.setPosition(each.parameter, each.maximum);
                              }
                          }));
    std::size_t most = 0;
    for (int step = 1; step <= 200; ++step) {
        simulation.advanceTo(step / 10.0);
        most = std::max(most, sparkSet(simulation).size());
    }
    EXPECT_LT(most, Simulation::liveCeiling / 20);
    EXPECT_GT(most, 10'000U);
    EXPECT_TRUE(lines.empty());
}

TEST_F(HostileNumbersTest, anyMomentCanBeAskedFor) {
    ShowPlayer player({1, {{0.0, panelPlan()}}});
    Simulation simulation(1, panelPlan());
    for (const double time : {86'400.0, 1e9, 1e18, 1e300, infinity, noNumber, -infinity}) {
        simulation.advanceTo(time);
        EXPECT_LE(simulation.time(), Simulation::latestTime);
        EXPECT_LE(player.at(time).time(), Simulation::latestTime);
        EXPECT_LT(sparkSet(player.at(time)).size(), 10'000U);
    }
    EXPECT_FALSE(sparkSet(player.at(86'400.0)).empty());
    Simulation flood(1, treePlan([](EmitterLayer& layer) { layer.setValue(1e30, "emitterCells.rocket.birthRate"); }));
    flood.advanceTo(infinity);
    EXPECT_EQ(flood.time(), Simulation::latestTime);
}

} // namespace

} // namespace starbloom
