// SPDX-License-Identifier: GPL-3.0-or-later

// What the particles of a frame cost beside drawing them: a stage of 1920 x 1080 at 60 frames per second, the sliders
// at their reset positions, where they cost the most, and with rockets enough for all the particles that may live at
// once. bench/run prints the ratios.

#include "base/ImageBuffer.h"
#include "bench/Glow.h"
#include "engine/panel/FireworksController.h"
#include "engine/raster/FrameCrew.h"
#include "engine/raster/RasterRenderer.h"
#include "engine/time/Show.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <utility>
#include <vector>

namespace {

using namespace starbloom;

constexpr int width = 1920;
constexpr int height = 1080;
constexpr int threads = 2;

class WideStage final : public Stage {
public:
    Size size() const override { return {width, height}; }

    void setRootLayer(std::shared_ptr<const RootLayer>) override {}

    void layerChanged() override {}
};

enum class Scene { Reset, Ends, Ceiling };

/// The positions that keep the most sparks alive, and all of them on the stage.
const std::vector<std::pair<Parameter, float>> costliest{
    {Parameter::RocketHeight, 8.0F},     {Parameter::RocketBirth, 40.0F},      {Parameter::RocketAngle, 1.25F},
    {Parameter::RocketVelocity, 550.0F}, {Parameter::RocketRange, 200.0F},     {Parameter::RocketGravity, 275.0F},
    {Parameter::ExplodeLife, 50.0F},     {Parameter::ExplodeVelocity, 200.0F}, {Parameter::ExplodeRange, 130.0F},
    {Parameter::ExplodeGravity, 0.0F},   {Parameter::SparkleLife, 40.0F},      {Parameter::AnimateSpeed, 200.0F}};

/// A show that has been going on for long enough.
class PlayingShow {
public:
    explicit PlayingShow(Scene scene) {
        if (scene != Scene::Reset) {
            for (const auto& [parameter, position] : costliest) {
                m_panel.setPosition(parameter, position);
            }
        }
        if (scene == Scene::Ceiling) {
            m_panel.setPosition(Parameter::RocketBirth, 2'500.0F);
        }
        m_step = static_cast<double>(layerSpeed(m_panel.position(Parameter::AnimateSpeed))) / 60.0;
        m_simulation.setPlan(plan());
        m_simulation.jumpTo(100.0);
        for (int i = 0; i < 600; ++i) {
            advance();
        }
    }

    EmitterPlan plan() {
        m_controller.slidersMoved();
        return EmitterPlan::of(m_controller.mortor());
    }

    PositionPanel& panel() { return m_panel; }

    Simulation& simulation() { return m_simulation; }

    void advance() { m_simulation.advanceTo(m_simulation.time() + m_step); }

    void count(benchmark::State& state) const {
        std::size_t sparks = 0;
        for (const SparkBatch& batch : m_simulation.sparks()) {
            sparks += batch.size();
        }
        state.counters["sparks"] = static_cast<double>(sparks);
    }

private:
    PositionPanel m_panel;
    WideStage m_stage;
    FireworksController m_controller{&m_panel, &m_stage, glow()};
    Simulation m_simulation{1, plan()};
    double m_step = 0.0;
};

void stepOfShow(benchmark::State& state, Scene scene) {
    PlayingShow show(scene);
    for (auto _ : state) {
        show.advance();
    }
    show.count(state);
}

/// As while a slider is drawn from one end to the other, a new number with each frame.
void stepWithMovingSlider(benchmark::State& state, Scene scene) {
    PlayingShow show(scene);
    int frame = 0;
    for (auto _ : state) {
        show.panel().setPosition(Parameter::ExplodeLife, 41.0F + 0.1F * static_cast<float>(frame++ % 90));
        show.simulation().setPlan(show.plan());
        show.advance();
    }
    show.count(state);
}

void frameOfShow(benchmark::State& state, Scene scene) {
    PlayingShow show(scene);
    RasterRenderer renderer(std::make_shared<FrameCrew>(threads));
    ImageBuffer image(width, height);
    LitArea lit;
    const auto draw = [&] {
        show.advance();
        renderer.renderNext(show.simulation().sparks(), {.time = show.simulation().time()}, RasterTarget::of(image),
                            lit);
    };
    for (int i = 0; i < 120; ++i) {
        draw();
    }
    for (auto _ : state) {
        draw();
    }
    show.count(state);
}

/// The particles ten minutes into a show, from nothing.
void seek(benchmark::State& state, Scene scene) {
    const EmitterPlan plan = PlayingShow(scene).plan();
    for (auto _ : state) {
        ShowPlayer player({1, {{0.0, plan}}});
        benchmark::DoNotOptimize(player.at(600.0).sparks().data());
    }
}

void realTime(benchmark::internal::Benchmark* bench) {
    bench->UseRealTime()->Unit(benchmark::kMicrosecond);
}

BENCHMARK_CAPTURE(stepOfShow, reset, Scene::Reset)->Apply(realTime);
BENCHMARK_CAPTURE(stepOfShow, ends, Scene::Ends)->Apply(realTime);
BENCHMARK_CAPTURE(stepOfShow, ceiling, Scene::Ceiling)->Apply(realTime);
BENCHMARK_CAPTURE(stepWithMovingSlider, reset, Scene::Reset)->Apply(realTime);
BENCHMARK_CAPTURE(stepWithMovingSlider, ends, Scene::Ends)->Apply(realTime);
BENCHMARK_CAPTURE(frameOfShow, reset, Scene::Reset)->Apply(realTime);
BENCHMARK_CAPTURE(frameOfShow, ends, Scene::Ends)->Apply(realTime);
BENCHMARK_CAPTURE(frameOfShow, ceiling, Scene::Ceiling)->Apply(realTime);
BENCHMARK_CAPTURE(seek, reset, Scene::Reset)->Apply(realTime);
BENCHMARK_CAPTURE(seek, ends, Scene::Ends)->Apply(realTime);

} // namespace

BENCHMARK_MAIN();
