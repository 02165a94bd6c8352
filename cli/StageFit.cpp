// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/StageFit.h"

#include "cli/Limits.h"
#include "cli/Numbers.h"

#include <algorithm>
#include <cmath>

namespace starbloom {

namespace {

Result<void> readSize(const std::string& text, Options& options) {
    const auto cross = text.find_first_of("xX");
    const auto width = parseNumber<int>(text.substr(0, cross));
    const auto height = cross == std::string::npos ? std::nullopt : parseNumber<int>(text.substr(cross + 1));
    if (!width || !height || *width < 1 || *height < 1 || *width > largestSide || *height > largestSide) {
        return Error{"--size: '" + text + "' is not WIDTHxHEIGHT with both from 1 to " + std::to_string(largestSide)};
    }
    options.width = *width;
    options.height = *height;
    return {};
}

/// A file may claim any size.
Result<void> takeSize(const StageShape& shape, Options& options) {
    const double width = std::round(shape.stage.width * options.pixelsPerPoint);
    const double height = std::round(shape.stage.height * options.pixelsPerPoint);
    if (!(std::min(width, height) >= 1.0 && std::max(width, height) <= largestSide)) {
        return Error{"--size: the stage gives a picture of " + brief(width) + "x" + brief(height) +
                     " pixels, which is too large or too small; give a --size"};
    }
    options.width = static_cast<int>(width);
    options.height = static_cast<int>(height);
    return {};
}

Result<void> checkStage(const Options& options) {
    const auto [width, height] = options.stage();
    if (std::min(width, height) < 1.0 || std::max(width, height) > largestStage) {
        return Error{"--scale: a picture of " + brief(options.width) + "x" + brief(options.height) +
                     " pixels would show a stage of " + brief(width) + "x" + brief(height) +
                     " points; it is 1 to 65536 wide and high"};
    }
    return {};
}

} // namespace

Result<void> fitStage(const Arguments& arguments, const std::optional<StageShape>& shape, Options& options) {
    const StageShape base = shape.value_or(StageShape{});
    options.pixelsPerPoint = base.pixelsPerPoint;
    options.launchPoint = base.launchPoint;
    if (auto scale = readNumber(arguments, OptionId::Scale, leastScale, mostScale, options.pixelsPerPoint); !scale) {
        return scale;
    }
    if (!arguments.given(OptionId::Size)) {
        auto taken = takeSize(base, options);
        return taken ? checkStage(options) : taken;
    }
    if (auto size = readSize(arguments.text(OptionId::Size), options); !size) {
        return size;
    }
    if (shape && !arguments.given(OptionId::Scale)) {
        options.pixelsPerPoint = std::min(options.width / base.stage.width, options.height / base.stage.height);
    }
    if (options.launchPoint) {
        options.launchPoint->x += (options.stage().width - base.stage.width) / 2.0;
    }
    return checkStage(options);
}

} // namespace starbloom
