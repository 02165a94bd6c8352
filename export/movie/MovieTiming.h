// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

namespace starbloom {

// Pure functions; any thread may call them.

/// From `seconds` after the start of the movie on, the slider of the rocket births stands at `position`.
struct LaunchStep {
    double seconds;
    double position;

    friend bool operator==(const LaunchStep&, const LaunchStep&) = default;
};

/// How the launch rate climbs at the start of a movie.
///
/// `birthPosition` is where the user left the slider of the rocket births, and where the climb leads; `fadeSeconds` is
/// how long it nominally takes. The rate starts at position 1.0. Then, every half second, a sum that starts at 0 grows
/// by (birthPosition - 1) / (fadeSeconds / 0.5) and becomes the position, as long as it is not above `birthPosition`.
/// As the sum starts at 0 and not at 1, the climb begins below the start and goes on after the nominal end: 2 seconds
/// to position 5 give 1.0 at 0 s, and 1, 2, 3, 4, 5 at 0.5, 1.0, 1.5, 2.0 and 2.5 s.
///
/// The increment is carried as a decimal text of six places and read back in single precision; the sum is double.
///
/// For a `birthPosition` of 1 or less the sum never rises above it, so the climb ends with the fade. A fade counts as
/// an hour at most, and a climb in very small increments is cut off after 100,000 steps. A fade of nothing, a negative
/// one, and values that are no numbers leave the first step alone.
std::vector<LaunchStep> fadeInSteps(double birthPosition, double fadeSeconds);

/// When a frame is shown, in seconds from the start. `framesPerSecond` must be greater than 0.
double frameTime(std::int64_t frame, int framesPerSecond);

/// How many whole frames fit into a movie of this length: seconds x framesPerSecond without its fraction (one within
/// 1e-12 of the next whole number counts as that). 0 for lengths
/// that are negative or no number; what does not fit the type gives its largest value.
std::int64_t frameCount(double seconds, int framesPerSecond);

} // namespace starbloom
