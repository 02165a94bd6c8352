// SPDX-License-Identifier: GPL-3.0-or-later

// What a frame costs: all sparks evaluated and drawn, next to the machine's own limit for the same number and size.
// The last argument is the number of threads. bench/run prints the ratios.

#include "base/ImageBuffer.h"
#include "bench/BareBlit.h"
#include "bench/Glow.h"
#include "engine/raster/FrameCrew.h"
#include "engine/raster/RasterRenderer.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <random>

namespace {

using namespace starbloom;

constexpr float stepOfFrame = 1.0F / 60.0F;

/// Sparks all over the picture that fly, shrink a little and fade, none of which dies while it is measured.
SparkBatch scene(int width, int height, std::size_t count) {
    SparkBatch batch({0, 1.0e6F, -10.0F, -0.001F, 2.0F, {0.0F, 0.0F, 0.0F, -0.001F}, glow()});
    std::mt19937 random(1);
    std::uniform_real_distribution<float> unit(0.0F, 1.0F);
    for (std::size_t i = 0; i < count; ++i) {
        batch.append({-static_cast<double>(unit(random)), unit(random) * static_cast<float>(width),
                      unit(random) * static_cast<float>(height), unit(random) * 40.0F - 20.0F,
                      unit(random) * 40.0F - 20.0F, 0.9F + 0.1F * unit(random),
                      Color{unit(random), unit(random), unit(random), 0.5F + 0.5F * unit(random)}});
    }
    return batch;
}

void drawFrame(benchmark::State& state) {
    const auto count = static_cast<std::size_t>(state.range(0));
    const int width = static_cast<int>(state.range(1));
    const int height = static_cast<int>(state.range(2));
    const SparkBatch batch = scene(width, height, count);
    RasterRenderer renderer(std::make_shared<FrameCrew>(state.range(3)));
    ImageBuffer image(width, height);
    int frame = 0;
    const auto draw = [&] {
        // Back and forth over one second, so that every measurement sees the same moments.
        const double time = static_cast<double>(frame++ % 60) * stepOfFrame;
        renderer.render({&batch, 1}, {.time = time}, RasterTarget::of(image));
    };
    for (int i = 0; i < 60; ++i) {
        draw();
    }
    for (auto _ : state) {
        draw();
        benchmark::DoNotOptimize(image.bytes().data());
    }
}

void drawBare(benchmark::State& state) {
    FrameCrew crew(state.range(3));
    BareBlit bare(static_cast<int>(state.range(1)), static_cast<int>(state.range(2)),
                  static_cast<std::size_t>(state.range(0)));
    int frame = 0;
    for (auto _ : state) {
        const float time = static_cast<float>(frame++ % 60) * stepOfFrame;
        bare.drawFrame(time, crew);
        benchmark::DoNotOptimize(bare.output().data());
    }
}

void scenes(benchmark::internal::Benchmark* bench) {
    for (const auto& [width, height] : {std::pair(640, 480), std::pair(1920, 1080)}) {
        for (const int count : {1000, 20000, 100000}) {
            for (const int threads : {1, 2}) {
                bench->Args({count, width, height, threads});
            }
        }
    }
    bench->MeasureProcessCPUTime()->UseRealTime()->Unit(benchmark::kMicrosecond);
}

BENCHMARK(drawFrame)->Apply(scenes);
BENCHMARK(drawBare)->Apply(scenes);

} // namespace

BENCHMARK_MAIN();
