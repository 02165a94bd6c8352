// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/time/Simulation.h"
#include "engine/time/LayerClock.h"
#include "tests/engine/Scenes.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>
#include <set>
#include <vector>

namespace starbloom {

namespace {

using std::numbers::pi;

// Places in the plan: depth first.
constexpr std::size_t rocket = 0;
constexpr std::size_t trail = 1;
constexpr std::size_t firework = 2;
constexpr std::size_t preSpark = 3;
constexpr std::size_t spark = 4;

struct BornSpark {
    std::size_t cell;
    double time;
    double x, y, velocityX, velocityY;
    Color color;
};

/// Every spark that is born up to a moment, in order of birth, caught by looking often enough.
std::vector<BornSpark> birthsUpTo(double end, Simulation simulation) {
    std::vector<BornSpark> all;
    double before = -1.0;
    for (double now = 0.0; before < end; now += 0.04) {
        simulation.advanceTo(std::min(now, end));
        for (const SparkBatch& b : simulation.sparks()) {
            for (std::size_t i = 0; i < b.size(); ++i) {
                if (b.time[i] > before) {
                    const Color color{b.red[i], b.green[i], b.blue[i], b.alpha[i]};
                    all.push_back({static_cast<std::size_t>(b.law().cell), b.time[i], b.x[i], b.y[i], b.velocityX[i],
                                   b.velocityY[i], color});
                }
            }
        }
        before = std::min(now, end);
    }
    std::ranges::sort(all, {}, &BornSpark::time);
    return all;
}

/// One rocket, which leaves within the first second, and nothing else but its trail for all of its life.
EmitterPlan lonelyTrail(const std::function<void(EmitterCell& rocket, EmitterCell& trail)>& change) {
    return treePlan([&](EmitterLayer& layer) {
        EmitterCell& cell = *layer.emitterCells[0];
        cell.birthRate = 1.0F;
        cell.duration = 1.0;
        cell.emissionRange = 0.0;
        cell.emitterCells.resize(1);
        cell.emitterCells[0]->duration = 0.0;
        change(cell, *cell.emitterCells[0]);
    });
}

TEST(Simulation, rocketsAndTheirSparksComeAtTheirRates) {
    Simulation simulation(1, panelPlan());
    for (int step = 1; step <= 200 * 60; ++step) {
        simulation.advanceTo(step / 60.0);
        if (step % 120 == 0) {
            // One birth in each slot of two seconds: at the end of each slot the number is exact.
            ASSERT_EQ(simulation.birthCounts()[rocket], static_cast<std::uint64_t>(step / 120));
        }
    }
    simulation.setPlan(panelPlan([](PositionPanel& panel) { panel.setPosition(Parameter::RocketBirth, 0.0F); }));
    for (int step = 1; step <= 4 * 60; ++step) {
        simulation.advanceTo(200.0 + step / 60.0); // the last rockets' bursts
    }
    const auto births = simulation.birthCounts();
    EXPECT_EQ(births[rocket], 100U);
    EXPECT_NEAR(static_cast<double>(births[trail]), 100 * 45.0 * 0.7, 50.0); // each has the 32nd or not
    EXPECT_NEAR(static_cast<double>(births[firework]), 100 * 9999.0 * 0.1, 100.0);
    EXPECT_EQ(births[preSpark], 100U * 30U);
    EXPECT_EQ(births[spark], 100U * 30U * 10U);
    EXPECT_TRUE(sparkSet(simulation).empty());
    EXPECT_EQ(simulation.skippedBirths(), 0U);
}

TEST(Simulation, changesOfTheRateKeepThePhase) {
    // The same stream twice: of the layer's own, and of a particle that lives long.
    const auto plan = [](float rate) {
        return treePlan([=](EmitterLayer& layer) {
            EmitterCell& top = *layer.emitterCells[0];
            top.birthRate = rate;
            EmitterCell& carrier = *layer.emitterCells.emplace_back(std::make_unique<EmitterCell>());
            carrier.birthRate = 1.0F;
            carrier.duration = 1.0;
            carrier.lifetime = 1000.0F;
            carrier.emitterCells.push_back(std::make_unique<EmitterCell>());
            carrier.emitterCells[0]->birthRate = rate;
        });
    };
    Simulation simulation(5, plan(0.0F));
    simulation.advanceTo(1.0);
    constexpr std::size_t top = 0;
    constexpr std::size_t child = 6;
    ASSERT_EQ(simulation.birthCounts()[child - 1], 1U);
    double phase = 0.0;
    for (int step = 0; step < 6000; ++step) {
        const float rate = std::array{0.1F, 7.3F, 0.0F, 31.0F, 2.5F}[static_cast<std::size_t>(step % 5)];
        simulation.setPlan(plan(rate));
        simulation.advanceTo(1.0 + (step + 1) / 60.0);
        phase += static_cast<double>(rate) / 60.0;
        for (const std::size_t cell : {top, child}) {
            const auto births = static_cast<double>(simulation.birthCounts()[cell]);
            ASSERT_GE(births, std::floor(phase - 1e-6)) << step;
            ASSERT_LE(births, std::floor(phase + 1e-6) + 1.0) << step;
        }
    }
}

TEST(Simulation, stepsDoNotMatter) {
    const EmitterPlan before = panelPlan();
    const EmitterPlan after = panelPlan([](PositionPanel& panel) {
        panel.setPosition(Parameter::RocketBirth, 30.0F);
        panel.setPosition(Parameter::ExplodeVelocity, 200.0F);
    });
    // Advances to 10 s of layer time with a change at 4 s, real time running half as fast.
    const auto play = [&](const std::function<std::chrono::nanoseconds(int)>& stepOf) {
        Simulation simulation(1, before);
        LayerClock clock(0.5);
        bool changed = false;
        std::chrono::nanoseconds real{};
        for (int i = 0; real < std::chrono::seconds(20); ++i) {
            const auto limit = std::chrono::seconds(changed ? 20 : 8);
            const auto step = std::min<std::chrono::nanoseconds>(stepOf(i), limit - real);
            real += step;
            clock.advance(step);
            simulation.advanceTo(clock.time());
            if (!changed && real == limit) {
                changed = true;
                simulation.setPlan(after);
            }
        }
        EXPECT_EQ(simulation.time(), 10.0);
        return sparkSet(simulation);
    };
    using namespace std::chrono_literals;
    const auto expected = play([](int) { return 20s; });
    EXPECT_GT(expected.size(), 1000U);
    EXPECT_EQ(play([](int) { return 2ms; }), expected);
    EXPECT_EQ(play([](int) { return 33'366'667ns; }), expected);
    EXPECT_EQ(play([](int i) { return std::chrono::nanoseconds((i * 7919LL % 1000) * (i % 3 == 0 ? 1 : 900'001)); }),
              expected);
}

TEST(Simulation, goldenShow) {
    // Every bit of every spark, the same for each compiler setting and machine. To renew it after a change that is
    // meant to change the show: take the number from the failure, and check that debug and release agree on it.
    Simulation simulation(1, panelPlan());
    std::vector<SparkBits> sparks;
    for (const double time : {2.0, 5.0, 12.25}) {
        simulation.advanceTo(time);
        const auto some = sparkSet(simulation);
        EXPECT_FALSE(some.empty()) << time;
        sparks.insert(sparks.end(), some.begin(), some.end());
    }
    EXPECT_EQ(hashOf(std::as_bytes(std::span(sparks))), 15534702441957515244U);
}

TEST(Simulation, newNumbersTouchOnlyLaterBirths) {
    Simulation kept(1, panelPlan());
    kept.advanceTo(5.0);
    Simulation changed = kept;
    changed.setPlan(panelPlan([](PositionPanel& panel) {
        for (const auto& each : parameterTable) {
            panel.setPosition(each.parameter, each.maximum);
        }
    }));
    kept.advanceTo(5.6);
    changed.advanceTo(5.6);
    const auto bornBefore = [](const Simulation& simulation) {
        auto set = sparkSet(simulation);
        std::erase_if(set, [](const SparkBits& bits) { return std::bit_cast<double>(bits[1]) > 5.0; });
        return set;
    };
    EXPECT_GT(bornBefore(kept).size(), 100U);
    EXPECT_EQ(bornBefore(changed), bornBefore(kept));
    EXPECT_NE(sparkSet(changed), sparkSet(kept));
    Simulation other(2, panelPlan());
    other.advanceTo(5.6);
    EXPECT_NE(sparkSet(other), sparkSet(kept));
}

TEST(Simulation, planOfAnotherShapeStartsAnew) {
    Simulation simulation(1, panelPlan());
    simulation.advanceTo(5.0);
    simulation.setPlan(lonelyTrail([](EmitterCell&, EmitterCell&) {}));
    EXPECT_TRUE(sparkSet(simulation).empty());
    simulation.advanceTo(6.5);
    EXPECT_FALSE(sparkSet(simulation).empty());
}

TEST(Simulation, rocketsTintTheirTrailAndBurstAndSparklesAreWhite) {
    const auto color = [](const BornSpark& each) {
        return std::array{each.color.red, each.color.green, each.color.blue};
    };
    std::set<std::array<float, 3>> trailColors;
    std::set<std::array<float, 3>> burstColors;
    for (const BornSpark& each : birthsUpTo(60.0, Simulation(3, panelPlan()))) {
        EXPECT_EQ(each.color.alpha, 1.0F);
        if (each.cell == spark) {
            EXPECT_EQ(color(each), (std::array{1.0F, 1.0F, 1.0F}));
            continue;
        }
        (each.cell == trail ? trailColors : burstColors).insert(color(each));
    }
    // One colour each of 30 rockets; the last one has not burst yet.
    EXPECT_EQ(trailColors.size(), 30U);
    EXPECT_EQ(burstColors.size(), 29U);
    EXPECT_TRUE(std::ranges::includes(trailColors, burstColors));
    for (const auto& each : trailColors) {
        EXPECT_TRUE(std::ranges::all_of(each, [](float channel) { return channel >= 0.0F && channel < 1.0F; }));
    }
}

TEST(Simulation, burstFillsASphere) {
    double squares = 0.0;
    double sumX = 0.0;
    double sumY = 0.0;
    int inner = 0;
    int count = 0;
    for (const BornSpark& each : birthsUpTo(60.0, Simulation(1, panelPlan()))) {
        if (each.cell != firework) {
            continue;
        }
        const double x = each.velocityX / 130.0;
        const double y = each.velocityY / 130.0;
        ASSERT_LE(std::hypot(x, y), 1.000001);
        squares += x * x + y * y;
        sumX += x;
        sumY += y;
        inner += std::hypot(x, y) < 0.5 ? 1 : 0;
        ++count;
    }
    ASSERT_GT(count, 25'000);
    // Seen along z, a sphere's surface has a mean square radius of 2/3 and 1 - sqrt(3/4) of it within half the radius.
    // The bounds are five standard deviations.
    EXPECT_NEAR(squares / count, 2.0 / 3.0, 0.0094);
    EXPECT_NEAR(sumX / count, 0.0, 0.018);
    EXPECT_NEAR(sumY / count, 0.0, 0.018);
    EXPECT_NEAR(static_cast<double>(inner) / count, 1.0 - std::sqrt(0.75), 0.011);
}

TEST(Simulation, childrenAreThrownAroundTheirEmittersDirectionOfTheMoment) {
    // Straight up at first, and down again once gravity has turned the rocket at 0.16 s.
    const auto births = birthsUpTo(2.5, Simulation(3, lonelyTrail([](EmitterCell& up, EmitterCell& sparks) {
                                                       up.yAcceleration = -2500.0;
                                                       sparks.birthRate = 2000.0F;
                                                   })));
    const double begin = births.front().time - 0.01;
    double upward = 0.0;
    int rising = 0;
    for (const BornSpark& each : births) {
        const double age = each.time - begin;
        if (std::abs(age - 0.16) < 0.002) {
            continue; // the begin is known to a slot only
        }
        // How much of the speed lies along the axis does not depend on the turn around it.
        const double along = (age < 0.16 ? 1.0 : -1.0) * each.velocityY / 100.0;
        ASSERT_GE(along, std::cos(pi / 14.0) - 1e-6) << age;
        ASSERT_LE(std::abs(each.velocityX) / 100.0, std::sin(pi / 14.0) + 1e-6);
        upward += age < 0.16 ? along : 0.0;
        rising += age < 0.16 ? 1 : 0;
    }
    ASSERT_GT(rising, 280);
    // Even by solid angle means even in the cosine.
    EXPECT_NEAR(upward / rising, (1.0 + std::cos(pi / 14.0)) / 2.0, 0.002);
}

TEST(Simulation, longitudeTurnsInThePictureAndLatitudeOutOfIt) {
    const auto straight = [](EmitterCell& cell, double longitude, double latitude) {
        cell.emissionLongitude = longitude;
        cell.emissionLatitude = latitude;
        cell.emissionRange = 0.0;
    };
    const auto births = birthsUpTo(1.5, Simulation(3, lonelyTrail([&](EmitterCell& shot, EmitterCell& sparks) {
                                                       straight(shot, 0.3, 0.0);
                                                       straight(sparks, 0.5, pi / 3.0);
                                                       shot.yAcceleration = 0.0;
                                                   })));
    ASSERT_GT(births.size(), 10U);
    for (const BornSpark& each : births) {
        EXPECT_NEAR(each.velocityX, 50.0 * std::cos(0.8), 1e-4);
        EXPECT_NEAR(each.velocityY, 50.0 * std::sin(0.8), 1e-4);
    }
}

TEST(Simulation, motionIsTheThrownParabola) {
    const auto births = birthsUpTo(2.4, Simulation(3, lonelyTrail([](EmitterCell&, EmitterCell&) {})));
    // The rocket's own way is seen by where its trail is born: y = 400 a - 125 a^2, solved for the first one's age.
    const double firstAge = (400.0 - std::sqrt(160'000.0 - 500.0 * births.front().y)) / 250.0;
    const double begin = births.front().time - firstAge;
    for (const BornSpark& each : births) {
        const double age = each.time - begin;
        EXPECT_NEAR(each.x, 320.0, 1e-3);
        EXPECT_NEAR(each.y, 400.0 * age - 125.0 * age * age, 2e-3) << age;
    }
    SparkBatch batch({0, 3.0F, -80.0F, -0.5F, 2.0F, {0.0F, 0.5F, -0.25F, -0.4F}, softSpark()});
    batch.append({10.0, 100.0F, 50.0F, 30.0F, -20.0F, 1.25F, {0.5F, 0.5F, 0.5F, 1.0F}});
    const auto state = batch.stateAt(0, 12.75).value();
    EXPECT_FLOAT_EQ(state.x, 182.5F);
    EXPECT_FLOAT_EQ(state.y, -307.5F); // 50 - 20 x 2.75 - 40 x 2.75^2
    EXPECT_EQ(state.scale, 0.0F);      // would be negative
    EXPECT_FLOAT_EQ(state.rotation, 5.5F);
    EXPECT_EQ(state.color, (Color{0.5F, 1.0F, 0.0F, 0.0F}));
    EXPECT_FALSE(batch.stateAt(0, 9.999));
    EXPECT_TRUE(batch.stateAt(0, 10.0));
    EXPECT_FALSE(batch.stateAt(0, 13.0));
    batch.sweep(13.0);
    EXPECT_EQ(batch.size(), 0U);
}

TEST(LayerClock, speedScalesTimeWithoutAJump) {
    using namespace std::chrono_literals;
    LayerClock clock(2.0);
    clock.advance(1500ms);
    EXPECT_EQ(clock.time(), 3.0);
    clock.setSpeed(0.0);
    clock.advance(1h);
    EXPECT_EQ(clock.time(), 3.0);
    clock.setSpeed(0.5);
    EXPECT_EQ(clock.time(), 3.0);
    for (int i = 0; i < 3000; ++i) {
        clock.advance(1ms);
        clock.setSpeed(0.5);
    }
    EXPECT_EQ(clock.time(), 4.5);
}

} // namespace

} // namespace starbloom
