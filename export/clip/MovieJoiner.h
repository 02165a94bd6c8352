// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Result.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <span>

namespace starbloom {

struct JoinedMovie {
    std::int64_t frames = 0;
    double seconds = 0.0;
};

/// Makes one movie of parts that were rendered apart, one after the other, without encoding anything again: MPEG-4
/// (.m4v, .mp4), QuickTime (.mov) or WebM (.webm), as the destination's extension says.
///
/// Every part is a movie of this program, of one stream without sound, made with the same settings: codec, size, rate,
/// colours and the encoder's own parameters are compared, and the first part that differs is named with what differs.
/// The frames of a part follow the last one of the part before as any two neighbours do, so the movie has the frames
/// and times of one that was rendered as a whole. A part with a missing frame is refused.
///
/// The movie grows in a hidden file beside the destination (see PendingFile), which may be one of the parts. `goesOn`
/// is asked for each frame; when it says false, the movie is given up and the call fails. Where `refused` is given, it
/// becomes whether a failure is the fault of a part, so that trying again is of no use. Any thread may call this.
Result<JoinedMovie> joinMovies(
    std::span<const std::filesystem::path> parts, const std::filesystem::path& destination,
    const std::function<bool()>& goesOn = [] { return true; }, bool* refused = nullptr);

} // namespace starbloom
