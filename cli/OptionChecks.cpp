// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/OptionChecks.h"

#include "cli/Limits.h"
#include "cli/Numbers.h"

#include <algorithm>

namespace starbloom {

namespace {

constexpr int largestMovieSide = 16384; // What H.264 encoders take.

bool isManyFrames(const Options& options) {
    return options.kind == OutputKind::Movie || options.kind == OutputKind::Frames;
}

/// Options that only some kinds of picture know: refused elsewhere, as whoever asks for transparency wants no less.
Result<void> checkPictureOptions(const Arguments& arguments, const Options& options) {
    const bool isPicture = options.kind == OutputKind::Picture || options.kind == OutputKind::Frames;
    if (arguments.given(OptionId::Quality) && !(isPicture && row(options.format).hasQuality)) {
        return Error{"--quality is for JPEG (.jpg) and JPEG 2000 (.jp2) alone"};
    }
    if (!options.transparent) {
        return {};
    }
    if (!(isPicture && row(options.format).hasTransparency)) {
        return Error{"--transparent is for PNG (.png), TIFF (.tif) and JPEG 2000 (.jp2) alone"};
    }
    if (arguments.given(OptionId::Background)) {
        return Error{"--transparent leaves the background out and does not go with --background"};
    }
    return {};
}

} // namespace

Result<void> checkTogether(const Arguments& arguments, const Options& options) {
    if (options.fadeIn > 0.0 && options.fadeIn < shortestFadeIn) {
        return Error{"--fade-in takes at least " + brief(shortestFadeIn) +
                     " seconds: the rate climbs in steps of so long"};
    }
    if (isManyFrames(options) && options.frames().count() < 1) {
        return Error{"--seconds " + brief(options.seconds) + " at --fps " + std::to_string(options.framesPerSecond) +
                     " is not even one frame"};
    }
    if (options.loop && !isManyFrames(options)) {
        return Error{"--loop is for movies and frames alone"};
    }
    if (options.loop && options.fadeIn > 0.0) {
        return Error{"--loop has no beginning, so it does not go with --fade-in"};
    }
    if (options.kind == OutputKind::Movie && std::max(options.width, options.height) > largestMovieSide) {
        return Error{"--size: a movie is at most " + std::to_string(largestMovieSide) + " pixels wide and high"};
    }
    return checkPictureOptions(arguments, options);
}

void warnAboutIdleOptions(const Arguments& arguments, Options& options) {
    const bool oneMoment = options.kind == OutputKind::Picture || options.kind == OutputKind::ParticleTable;
    if (isManyFrames(options) && arguments.given(OptionId::At)) {
        options.warnings.emplace_back("--at is for pictures and has no effect here; --from sets where a movie starts");
    }
    if (options.positions.position(Parameter::AnimateSpeed) == 0.0F && !(oneMoment && options.moment)) {
        options.warnings.emplace_back("animateSpeedSlider=0 stands still before the first rocket: nothing will show");
    }
    for (const OptionId option : {OptionId::Fps, OptionId::Seconds, OptionId::Frames}) {
        const bool exposes = option == OptionId::Fps && options.shutter > 0.0;
        if (oneMoment && !exposes && arguments.given(option)) {
            options.warnings.push_back(std::string(row(option).name) +
                                       " is for movies and frames and has no effect here");
        }
    }
}

} // namespace starbloom
