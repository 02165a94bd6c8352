// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace starbloom {

// What a user chooses before a movie is made. Pure values and functions; any thread may use them.

/// Frames per second, in the order of the choice.
inline constexpr std::array<int, 3> movieRates{24, 25, 30};

/// How many lengths there are, 3.0 to 30.0 seconds in steps of 0.5, and how many lengths of the fade-in, 1.0 to 20.0.
inline constexpr int movieLengthCount = 55;
inline constexpr int fadeInLengthCount = 39;

/// Titles as the choices show them: "24", "3.0". An index beyond the table counts as its first or last one.
std::string movieRateTitle(int index);
std::string movieLengthTitle(int index);
std::string fadeInLengthTitle(int index);

/// The four choices, as indices into the tables. Any number may stand in them, as they are kept in a file: what lies
/// beyond a table counts as its first or last entry.
struct MovieSettings {
    int rateIndex = 0;
    int lengthIndex = 14;
    bool fadeIn = false;
    int fadeInIndex = 2;

    int framesPerSecond() const;
    double seconds() const;

    /// The length chosen for the fade-in, whether it is on or not.
    double fadeInSeconds() const;

    /// Whether a movie can be made: it must be at least as long as the fade-in, even while that is off.
    bool canCreate() const { return seconds() >= fadeInSeconds(); }

    /// How many whole frames fit into the length.
    std::int64_t frameCount() const;

    /// What the movie's window tells that a recording may need in memory: every frame at four bytes a pixel. Width and
    /// height are the stage's in points; a screen of high density counts twice, not four times.
    double memoryBytes(double width, double height, bool highDensity) const;

    friend bool operator==(const MovieSettings&, const MovieSettings&) = default;
};

/// Bytes as millions with one decimal, "368.6", whatever the user's language.
std::string megabytesText(double bytes);

} // namespace starbloom
