// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/LikePicture.h"

#include "export/picture/ShowNote.h"

namespace starbloom {

Result<StageShape> showLike(const std::filesystem::path& picture, Options& options) {
    const auto read = readShowNote(picture);
    if (!read) {
        return read.error();
    }
    const ShowNote& note = read.value();
    for (const ParameterRow& each : parameterTable) {
        options.positions.setPosition(each.parameter, note.positions[static_cast<std::size_t>(each.parameter)]);
    }
    options.seed = note.seed;
    options.moment = note.moment;
    options.background = note.background;
    if (!note.steady) {
        options.warnings.push_back(
            picture.string() + " comes from a show that was changed while it ran: its sparks cannot be the very same");
    }
    return StageShape{note.stage, note.pixelsPerPoint, note.launchPoint};
}

} // namespace starbloom
