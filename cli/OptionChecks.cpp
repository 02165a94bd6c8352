// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/OptionChecks.h"

#include "cli/InTurn.h"
#include "cli/Limits.h"
#include "cli/Numbers.h"

#include <algorithm>

namespace starbloom {

namespace {

constexpr int largestMovieSide = 16384; // What H.264 encoders take.
constexpr int largestJpegSide = 65500;  // The format could have 35 more, its library has not.

bool isManyFrames(const Options& options) {
    return options.kind == OutputKind::Movie || options.kind == OutputKind::Frames ||
           options.kind == OutputKind::Clip || options.kind == OutputKind::FlashCheck;
}

/// The endings of all kinds of pictures and clips that can do something.
template <typename PictureTrait, typename ClipTrait>
std::string endingsOf(PictureTrait pictureCan, ClipTrait clipCan) {
    std::string endings;
    for (const PictureFormatRow& each : pictureFormats) {
        endings += pictureCan(each) ? ", ." + std::string(each.extension) : "";
    }
    for (const ClipTraits& each : clipFormats) {
        endings += clipCan(each) ? ", " + std::string(each.extension) : "";
    }
    return endings.substr(2);
}

/// Options that only some formats know: refused elsewhere, as whoever asks for transparency wants no less.
Result<void> checkFormatOptions(const Arguments& arguments, const Options& options) {
    const bool isPicture = options.kind == OutputKind::Picture || options.kind == OutputKind::Frames;
    const bool isClip = options.kind == OutputKind::Clip;
    const auto can = [&](auto pictureCan, auto clipCan) {
        return (isPicture && pictureCan(row(options.format))) || (isClip && clipCan(traitsOf(options.clipFormat)));
    };
    const auto quality = [](const auto& each) { return each.hasQuality; };
    if (arguments.given(OptionId::Quality) && !can(quality, quality)) {
        return Error{"--quality is for " + endingsOf(quality, quality) + " alone"};
    }
    const auto pictureAlpha = [](const PictureFormatRow& each) { return each.hasTransparency; };
    const auto clipAlpha = [](const ClipTraits& each) { return each.hasAlpha; };
    if (options.transparent && !can(pictureAlpha, clipAlpha)) {
        return Error{"--transparent is for " + endingsOf(pictureAlpha, clipAlpha) + " alone"};
    }
    const auto none = [](const PictureFormatRow&) { return false; };
    const auto premultiplied = [](const ClipTraits& each) { return each.hasPremultiplied; };
    if (options.transparent && options.alpha == AlphaMode::Premultiplied && !can(none, premultiplied)) {
        return Error{"--alpha premultiplied is for " + endingsOf(none, premultiplied) + " alone"};
    }
    if (options.onBlack && arguments.given(OptionId::Background)) {
        return Error{"--transparent and --alpha leave the background out and do not go with --background"};
    }
    return {};
}

/// What the encoders take.
Result<void> checkSize(const Options& options) {
    const bool isPicture = options.kind == OutputKind::Picture || options.kind == OutputKind::Frames;
    int largest = largestSide;
    if (isPicture && options.format == PictureFormat::Jpeg) {
        largest = largestJpegSide;
    } else if (isPicture && options.format == PictureFormat::Gif) {
        largest = traitsOf(ClipFormat::Gif).largestSide;
    } else if (options.kind == OutputKind::Movie) {
        largest = largestMovieSide;
    } else if (options.kind == OutputKind::Clip) {
        largest = traitsOf(options.clipFormat).largestSide;
    }
    if (std::max(options.width, options.height) > largest) {
        return Error{std::string("--size: such a ") + (isPicture ? "picture" : "movie") + " is at most " +
                     std::to_string(largest) + " pixels wide and high"};
    }
    return {};
}

Result<void> checkFlashOptions(const Options& options) {
    if (!options.checksFlashes) {
        return {};
    }
    if (!isManyFrames(options)) {
        return Error{"--check-flashes is for movies, clips and frames alone"};
    }
    if (options.skipsExisting) {
        return Error{"--check-flashes looks at each frame, so it does not go with --skip-existing"};
    }
    return {};
}

/// A movie is joined from what is there, so all that says how to render is a mistake.
Result<void> checkJoin(const Arguments& arguments) {
    for (const OptionRow& each : optionTable()) {
        const bool goes = each.id == OptionId::Join || each.id == OptionId::Quiet || each.id == OptionId::Progress ||
                          each.id == OptionId::Threads || each.id == OptionId::SkipExisting;
        if (!goes && arguments.given(each.id)) {
            return Error{std::string(each.name) + " does not go with --join, which renders nothing"};
        }
    }
    return {};
}

} // namespace

Result<void> checkTogether(const Arguments& arguments, const Options& options) {
    if (options.kind == OutputKind::Join) {
        return checkJoin(arguments);
    }
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
    return inTurn([&] { return checkSize(options); }, [&] { return checkFormatOptions(arguments, options); },
                  [&] { return checkFlashOptions(options); });
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
