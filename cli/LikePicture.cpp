// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/LikePicture.h"

#include "export/picture/ShowNote.h"

#include <algorithm>
#include <cmath>

namespace starbloom {

namespace {

constexpr long largestSide = 65536;

/// A file may claim any size.
Result<void> takeSize(const ShowNote& note, Options& options) {
    const long width = std::lround(note.stage.width * note.pixelsPerPoint);
    const long height = std::lround(note.stage.height * note.pixelsPerPoint);
    if (std::min(width, height) < 1 || std::max(width, height) > largestSide) {
        return Error{"--like: the picture tells of a stage of " + std::to_string(width) + "x" + std::to_string(height) +
                     " pixels, which is too large or too small; give a --size"};
    }
    options.width = static_cast<int>(width);
    options.height = static_cast<int>(height);
    options.pixelsPerPoint = note.pixelsPerPoint;
    options.launchPoint = note.launchPoint;
    return {};
}

void fitSize(const ShowNote& note, Options& options) {
    options.pixelsPerPoint = std::min(options.width / note.stage.width, options.height / note.stage.height);
    options.launchPoint = note.launchPoint;
    options.launchPoint->x += (options.stage().width - note.stage.width) / 2.0;
}

} // namespace

Result<void> showLike(const std::filesystem::path& picture, const LikeKeeps& keeps, Options& options) {
    const auto read = readShowNote(picture);
    if (!read) {
        return read.error();
    }
    const ShowNote& note = read.value();
    for (const ParameterRow& each : parameterTable) {
        options.positions.setPosition(each.parameter, note.positions[static_cast<std::size_t>(each.parameter)]);
    }
    if (keeps.size) {
        fitSize(note, options);
    } else if (auto taken = takeSize(note, options); !taken) {
        return taken;
    }
    if (!keeps.seed) {
        options.seed = note.seed;
    }
    if (!keeps.moment) {
        options.moment = note.moment;
    }
    if (!keeps.background) {
        options.background = note.background;
    }
    if (!note.steady) {
        options.warnings.push_back(
            picture.string() + " comes from a show that was changed while it ran: its sparks cannot be the very same");
    }
    return {};
}

} // namespace starbloom
