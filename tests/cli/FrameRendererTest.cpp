// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/FramePipeline.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <tuple>
#include <vector>

namespace starbloom {

namespace {

/// A small lively show of three seconds.
Options livelyOptions() {
    Options options;
    options.width = 160;
    options.height = 120;
    options.pixelsPerPoint = 0.25;
    options.seconds = 3.0;
    options.framesPerSecond = 20;
    options.positions.setPosition(Parameter::RocketBirth, 12.0F);
    return options;
}

std::vector<ImageBuffer> framesOf(const Options& options) {
    std::vector<ImageBuffer> frames;
    const auto keep = [&](const RenderedFrame& frame) {
        frames.push_back(frame.image);
        return Result<void>();
    };
    EXPECT_TRUE(runFrames(options, {.sink = keep}));
    return frames;
}

double meanDifference(const ImageBuffer& a, const ImageBuffer& b) {
    double sum = 0.0;
    for (std::size_t i = 0; i < a.bytes().size(); ++i) {
        sum += std::abs(a.bytes()[i] - b.bytes()[i]);
    }
    return sum / static_cast<double>(a.bytes().size());
}

struct Seam {
    double least;
    double most;
    double atTheSeam;

    bool isSmooth() const { return least <= atTheSeam && atTheSeam <= most; }
};

Seam seamOf(const std::vector<ImageBuffer>& frames) {
    std::vector<double> differences;
    for (std::size_t i = 1; i < frames.size(); ++i) {
        differences.push_back(meanDifference(frames[i - 1], frames[i]));
    }
    const auto [least, most] = std::ranges::minmax(differences);
    return {least, most, meanDifference(frames.back(), frames.front())};
}

TEST(FrameRenderer, ALoopGoesOnFromItsLastFrameToItsFirst) {
    Options options = livelyOptions();
    EXPECT_FALSE(seamOf(framesOf(options)).isSmooth()) << "without a loop, or this test can see nothing";
    options.loop = true;
    for (const double seconds : {0.4, 3.0}) {
        options.seconds = seconds;
        const Seam seam = seamOf(framesOf(options));
        EXPECT_TRUE(seam.isSmooth()) << seconds << ": " << seam.least << ' ' << seam.atTheSeam << ' ' << seam.most;
    }
}

TEST(FrameRenderer, ALoopHasTheSameParticlesInEachRound) {
    Options options = livelyOptions();
    options.loop = true;
    options.seconds = 1.7;
    options.positions.setPosition(Parameter::AnimateSpeed, 80.0F);
    using Place = std::tuple<int, float, float>;
    FrameRenderer renderer(options);
    const auto placesAt = [&](double seconds) {
        std::vector<Place> places;
        const Simulation& simulation = renderer.particlesAtMoment(renderer.momentAt(seconds));
        for (const SparkBatch& batch : simulation.sparks()) {
            for (std::size_t i = 0; i < batch.size(); ++i) {
                if (const auto state = batch.stateAt(i, simulation.time())) {
                    places.emplace_back(batch.law().cell, state->x, state->y);
                }
            }
        }
        std::ranges::sort(places);
        return places;
    };
    const std::vector<Place> first = placesAt(0.35);
    const std::vector<Place> second = placesAt(0.35 + 1.7);
    ASSERT_GT(first.size(), 1000U);
    ASSERT_EQ(second.size(), first.size());
    for (std::size_t i = 0; i < first.size(); ++i) {
        ASSERT_NEAR(std::get<1>(second[i]), std::get<1>(first[i]), 0.001);
    }
}

TEST(FrameRenderer, APartHasTheFramesOfTheWhole) {
    Options options = livelyOptions();
    options.from = 2.0;
    options.fadeIn = 1.0;
    const auto whole = framesOf(options);
    options.part = FrameSpan{31, 34};
    const auto part = framesOf(options);
    EXPECT_EQ(part, std::vector<ImageBuffer>(whole.begin() + 31, whole.begin() + 34));
}

TEST(FrameRenderer, AShutterSmearsWhatMoves) {
    Options options = livelyOptions();
    options.framesPerSecond = 10;
    const auto sharp = framesOf(options);
    options.shutter = 1.0;
    const auto blurred = framesOf(options);
    const auto lit = [](const ImageBuffer& image) {
        return std::ranges::count_if(image.bytes(), [](std::uint8_t value) { return value > 3 && value < 255; });
    };
    const std::size_t frame = 28;
    EXPECT_GT(lit(blurred[frame]), lit(sharp[frame]) * 5 / 4);
    EXPECT_EQ(blurred[0], sharp[0]) << "nothing is there to move yet";
}

TEST(LightAverage, IsOneOfLightAndLeavesAlone) {
    ImageBuffer ramp(256, 1);
    for (int x = 0; x < 256; ++x) {
        std::fill_n(ramp.row(0) + 4 * x, 3, static_cast<std::uint8_t>(x));
        ramp.row(0)[4 * x + 3] = 255;
    }
    LightAverage average;
    ImageBuffer mean(256, 1);
    for (const int count : {1, 3, 64}) {
        for (int i = 0; i < count; ++i) {
            average.add(ramp);
        }
        average.take(mean);
        EXPECT_EQ(mean, ramp) << "what lies still keeps its pixels";
    }
    average.add(ramp);
    average.add(ImageBuffer(256, 1));
    average.take(mean);
    EXPECT_EQ(mean.row(0)[4 * 255], 188) << "half the light of white, in sRGB";
}

TEST(FrameRenderer, BlurTakesAStepAPixel) {
    const RequestedShow requested = buildShow(livelyOptions());
    const auto stepsOf = [&](double exposure, double pixelsPerPoint) {
        return BlurSteps(requested.show, exposure, pixelsPerPoint).at(2.5);
    };
    // Burst sparks set off at 130 points a second, trails fall at up to 600.
    EXPECT_GE(stepsOf(0.02, 4.0), 11);
    EXPECT_LE(stepsOf(0.02, 4.0), 49);
    EXPECT_NEAR(stepsOf(0.02, 4.0), 2 * stepsOf(0.02, 2.0), 2);
    EXPECT_EQ(stepsOf(0.05, 0.01), 12) << "for the flicker of what hardly moves";
    // A long way takes more steps, until they are as fine as it makes sense.
    EXPECT_GE(stepsOf(1.0, 10.0), 240);
    EXPECT_LE(stepsOf(1.0, 10.0), 600);
    EXPECT_EQ(stepsOf(1.0, 10.0), stepsOf(1.0, 5.0));
}

} // namespace

} // namespace starbloom
