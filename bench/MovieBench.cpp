// SPDX-License-Identifier: GPL-3.0-or-later

// What a whole movie costs beside the bare encoder: the same writer fed with the same frames, rendered beforehand and
// waiting in memory. Both are measured in turns; the figure is the ratio of their medians.
//
// Then the same for the application: keeping a recording's frames in memory, and writing them from there, beside the
// encoder alone, whose packets go nowhere.
//
//     movie_bench [seconds] [rounds]

#include "base/ImageBuffer.h"
#include "cli/Commands.h"
#include "cli/FramePipeline.h"
#include "export/movie/FrameStore.h"
#include "export/movie/MovieEncoder.h"
#include "export/movie/MovieFileWriter.h"
#include "export/movie/MovieTiming.h"
#include "export/movie/MovieWriter.h"

#include <oneapi/tbb/info.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <utility>
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

double timeEncoderAlone(const Options& options, const std::vector<ImageBuffer>& frames) {
    const auto start = Clock::now();
    auto encoder =
        MovieEncoder::open({options.width, options.height, options.framesPerSecond, MovieFileWriter::encoderThreads});
    const auto dropped = [](AVPacket&) { return Result<void>(); };
    bool good = static_cast<bool>(encoder);
    for (std::size_t i = 0; good && i < frames.size(); ++i) {
        good = static_cast<bool>(encoder.value().encode(frames[i], dropped));
    }
    if (!good || !encoder.value().drain(dropped)) {
        std::exit(1);
    }
    return secondsSince(start);
}

std::unique_ptr<FrameStore> storeOf(const std::vector<ImageBuffer>& frames) {
    auto store = std::make_unique<FrameStore>();
    for (const ImageBuffer& frame : frames) {
        ImageBuffer copy = store->blank(frame.width(), frame.height());
        std::ranges::copy(frame.bytes(), copy.bytes().begin());
        store->add(std::move(copy));
        store->waitUntilPacked();
    }
    return store;
}

double timeWriting(const Options& options, const std::vector<ImageBuffer>& frames) {
    auto store = storeOf(frames);
    const auto start = Clock::now();
    bool good = false;
    {
        MovieFileWriter writer(
            {options.output, options.output.string() + ".journal", options.framesPerSecond, std::move(store)},
            [](std::int64_t, std::int64_t) {}, [&good](const auto& result) { good = result && result.value(); });
        writer.wait();
    }
    if (!good) {
        std::exit(1);
    }
    return secondsSince(start);
}

/// How long a frame takes to be kept, how much smaller it becomes, and how much larger the mean frame is than one that
/// was picked as a sample, at worst.
void measureStore(const std::vector<ImageBuffer>& frames) {
    std::vector<double> milliseconds;
    std::vector<double> sizes;
    FrameStore store;
    double total = 0.0;
    for (const ImageBuffer& frame : frames) {
        ImageBuffer copy = store.blank(frame.width(), frame.height());
        std::ranges::copy(frame.bytes(), copy.bytes().begin());
        const auto start = Clock::now();
        const std::uint64_t before = store.bytes();
        store.add(std::move(copy));
        store.waitUntilPacked();
        milliseconds.push_back(secondsSince(start) * 1000.0);
        sizes.push_back(static_cast<double>(store.bytes() - before));
        total += sizes.back();
    }
    const double mean = total / static_cast<double>(frames.size());
    const double raw = static_cast<double>(frames.front().bytes().size());
    std::printf(
        "  kept in memory: %.2f ms a frame (median; longest %.2f), 1/%.1f of its size (worst frame 1/%.1f); mean "
        "over smallest frame %.2f\n",
        median(milliseconds), std::ranges::max(milliseconds), raw / mean, raw / std::ranges::max(sizes),
        mean / std::ranges::min(sizes));
}

void measureWriting(const Options& options, const std::vector<ImageBuffer>& frames, int rounds) {
    std::vector<double> alone;
    std::vector<double> writing;
    std::vector<double> ratios;
    for (int round = 0; round < rounds; ++round) {
        alone.push_back(timeEncoderAlone(options, frames));
        writing.push_back(timeWriting(options, frames));
        ratios.push_back(writing.back() / alone.back());
    }
    std::printf("  encoder alone %.3f s, written from memory %.3f s (medians of %d), ratio %.3f\n", median(alone),
                median(writing), rounds, median(ratios));
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
    std::printf("%dx%d, %zu frames: bare encoder %.3f s, whole movie %.3f s (medians of %d), ratio %.3f\n", width,
                height, frames.size(), median(bare), median(whole), rounds, median(whole) / median(bare));
    measureStore(frames);
    measureWriting(options, frames, rounds);
    std::filesystem::remove(options.output);
}

} // namespace

int main(int argc, char** argv) {
    const double seconds = argc > 1 ? std::atof(argv[1]) : 10.0;
    const int rounds = argc > 2 ? std::atoi(argv[2]) : 5;
    measure(640, 480, seconds, rounds);
    measure(1920, 1080, std::min(seconds, 4.0), rounds);
    return 0;
}
