// SPDX-License-Identifier: GPL-3.0-or-later

// What a whole movie costs beside the bare encoder: the same writer fed with the same frames, rendered beforehand and
// waiting in memory. Both are measured in turns; the figure is the ratio of their medians.
//
//     movie_bench [seconds] [rounds]

#include "base/ImageBuffer.h"
#include "cli/Commands.h"
#include "cli/FramePipeline.h"
#include "export/movie/MovieTiming.h"
#include "export/movie/MovieWriter.h"

#include <oneapi/tbb/info.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <vector>

namespace {

using namespace starbloom;
using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

double median(std::vector<double> values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

double timeWhole(const Options& options) {
    const auto start = Clock::now();
    if (runCommand(options) != Done) {
        std::exit(1);
    }
    return secondsSince(start);
}

double timeBareEncoder(const Options& options, const std::vector<ImageBuffer>& frames) {
    const auto start = Clock::now();
    auto writer = MovieWriter::create(options.output, {options.width, options.height, options.framesPerSecond,
                                                       oneapi::tbb::info::default_concurrency()});
    bool good = static_cast<bool>(writer);
    for (std::size_t i = 0; good && i < frames.size(); ++i) {
        good = static_cast<bool>(writer.value().addFrame(frames[i]));
    }
    if (!good || !writer.value().finish()) {
        std::exit(1);
    }
    return secondsSince(start);
}

void measure(int width, int height, double seconds, int rounds) {
    Options options;
    options.kind = OutputKind::Movie;
    options.output = std::filesystem::temp_directory_path() / "starbloom-movie-bench.m4v";
    options.quiet = true;
    options.width = width;
    options.height = height;
    options.seconds = seconds;
    options.from = 3.0; // The stage is empty before.
    std::vector<ImageBuffer> frames;
    FrameRenderer renderer(options);
    for (std::int64_t i = 0; i < options.frameCount(); ++i) {
        renderer.render(options.from + frameTime(i, options.framesPerSecond), frames.emplace_back(width, height));
    }
    std::vector<double> whole;
    std::vector<double> bare;
    for (int round = 0; round < rounds; ++round) {
        bare.push_back(timeBareEncoder(options, frames));
        whole.push_back(timeWhole(options));
    }
    std::filesystem::remove(options.output);
    std::printf("%dx%d, %zu frames: bare encoder %.3f s, whole movie %.3f s (medians of %d), ratio %.3f\n", width,
                height, frames.size(), median(bare), median(whole), rounds, median(whole) / median(bare));
}

} // namespace

int main(int argc, char** argv) {
    const double seconds = argc > 1 ? std::atof(argv[1]) : 10.0;
    const int rounds = argc > 2 ? std::atoi(argv[2]) : 5;
    measure(640, 480, seconds, rounds);
    measure(1920, 1080, std::min(seconds, 4.0), rounds);
    return 0;
}
