// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/ImageBuffer.h"
#include "engine/raster/RasterRenderer.h"
#include "tests/engine/CountedAllocations.h"
#include "tests/engine/Scenes.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <random>
#include <vector>

namespace starbloom {

namespace {

/// The most that the sliders can ask for: rockets, and lives of what they leave.
void askForMost(PositionPanel& panel) {
    for (const Parameter each : {Parameter::RocketBirth, Parameter::ExplodeLife, Parameter::SparkleLife}) {
        panel.setPosition(each, row(each).maximum);
    }
}

/// What one frame of the screen is of the layer's time, at the greatest speed.
constexpr double step = 2.0 / 60.0;

TEST(SteadyState, framesAskForNoMemory) {
    for (const auto& change : {std::function<void(PositionPanel&)>(), std::function(askForMost)}) {
        Simulation simulation(1, panelPlan(change));
        RasterRenderer renderer;
        ImageBuffer image(640, 480);
        LitArea lit;
        const auto play = [&](int frames) {
            for (int i = 0; i < frames; ++i) {
                simulation.advanceTo(simulation.time() + step);
                renderer.renderNext(simulation.sparks(), {.time = simulation.time()}, RasterTarget::of(image), lit);
            }
        };
        // By one thread: with several, one that never had work before would bring its own memory at any time.
        play(600);
        const std::size_t before = countedAllocations();
        play(200);
        EXPECT_EQ(countedAllocations() - before, 0U);
        if (change) {
            EXPECT_GT(simulation.sparks().size(), 5U); // So batches came and went meanwhile.
        }
    }
}

TEST(SteadyState, slidersThatDecideBirthsAloneBeginNoBatches) {
    Simulation simulation(1, panelPlan(askForMost));
    simulation.advanceTo(20.0);
    const std::size_t usual = simulation.sparks().size();
    for (int i = 0; i < 300; ++i) {
        simulation.setPlan(panelPlan([&](PositionPanel& panel) {
            askForMost(panel);
            for (const Parameter each : {Parameter::RocketVelocity, Parameter::ExplodeVelocity, Parameter::ExplodeRange,
                                         Parameter::RocketHeight}) {
                panel.setPosition(each, row(each).minimum + static_cast<float>(i % 5));
            }
        }));
        simulation.advanceTo(simulation.time() + step);
        ASSERT_LE(simulation.sparks().size(), usual + 2) << i;
    }
}

TEST(SteadyState, sweepKeepsTheLivingInTheirOrder) {
    std::mt19937 random(1);
    SparkBatch batch({0, 2.0F, 0.0F, 0.0F, 0.0F, Color{}, softSpark()});
    for (const double now : {0.0, 1.0, 1.9, 2.5, 3.0, 4.5, 6.6, 7.0, 20.0}) {
        std::vector<double> living;
        std::ranges::copy_if(batch.time, std::back_inserter(living),
                             [now](double birth) { return SparkBatch::age(birth, now) < 2.0F; });
        batch.sweep(now);
        EXPECT_EQ(batch.time, living) << now;
        for (std::size_t i = 0; i < batch.size(); ++i) {
            ASSERT_EQ(batch.x[i] + batch.blue[i], 2.0F * static_cast<float>(batch.time[i]));
        }
        for (int i = 0; i < 100; ++i) { // Not in order, as those of several emitters within one step.
            const double birth = now + std::uniform_real_distribution(0.0, 1.0)(random);
            const auto mark = static_cast<float>(birth);
            batch.append({birth, mark, mark, mark, mark, mark, Color{mark, mark, mark, mark}});
        }
        if (now == 7.0) {
            batch.reuse({1, 2.0F, 0.0F, 0.0F, 0.0F, Color{}, softSpark()}, 5);
            EXPECT_EQ(batch.size(), 0U);
            EXPECT_EQ(batch.number(), 5U);
        }
    }
}

} // namespace

} // namespace starbloom
