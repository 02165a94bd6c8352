// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Color.h"
#include "base/Result.h"
#include "engine/model/EmitterLayer.h"
#include "engine/panel/ParameterTable.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace starbloom {

/// What a picture tells of the show that it was taken from: enough to render it again. docs/file-formats.md describes
/// the text and its place in each kind of file.
struct ShowNote {
    std::string program = "starbloom"; ///< Printable ASCII without spaces, 1 to 40 characters; so is the version.
    std::string version = "0";
    std::array<float, parameterCount> positions{}; ///< In the order of the parameter table; finite.
    std::uint64_t seed = 1;
    double moment = 0.0;             ///< Seconds of the layer's own time, from 0 on.
    Size stage{640.0, 480.0};        ///< Points, 1 to 65536 each.
    double pixelsPerPoint = 1.0;     ///< Of the picture; 0.001 to 1000.
    Point launchPoint{320.0, 0.0};   ///< Points, at most a million to each side.
    Color background{0, 0, 0, 1.0F}; ///< Components 0 to 1.
    bool steady = true;              ///< False when the show was changed while it ran, so that positions, seed and
                                     ///< moment alone do not give the very same sparks.

    friend bool operator==(const ShowNote&, const ShowNote&) = default;
};

// Pure functions, for any thread. Every number comes back exactly as it was.

/// One line of ASCII. Characters that a program's name or version may not have become "-".
std::string toText(const ShowNote& note);

/// The text is not trusted: anything missing, doubled, unknown or out of range is an Error that names it.
Result<ShowNote> parseShowNote(std::string_view text);

/// Reads the note of a PNG, JPEG, GIF, TIFF or JPEG 2000 file by its contents, whatever its name. The file is not
/// trusted and may be truncated. The message of an Error names the file.
Result<ShowNote> readShowNote(const std::filesystem::path& path);

} // namespace starbloom
