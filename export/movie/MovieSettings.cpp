// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/movie/MovieSettings.h"

#include "export/movie/DecimalText.h"
#include "export/movie/MovieTiming.h"

#include <algorithm>

namespace starbloom {

namespace {

constexpr double shortestMovie = 3.0;
constexpr double shortestFadeIn = 1.0;
constexpr double step = 0.5;

double lengthAt(int index, double shortest, int count) {
    return shortest + std::clamp(index, 0, count - 1) * step;
}

int rateAt(int index) {
    return movieRates.at(static_cast<std::size_t>(std::clamp(index, 0, static_cast<int>(movieRates.size()) - 1)));
}

} // namespace

std::string movieRateTitle(int index) {
    return std::to_string(rateAt(index));
}

std::string movieLengthTitle(int index) {
    return textWithOneDecimal(lengthAt(index, shortestMovie, movieLengthCount));
}

std::string fadeInLengthTitle(int index) {
    return textWithOneDecimal(lengthAt(index, shortestFadeIn, fadeInLengthCount));
}

int MovieSettings::framesPerSecond() const {
    return rateAt(rateIndex);
}

double MovieSettings::seconds() const {
    return lengthAt(lengthIndex, shortestMovie, movieLengthCount);
}

double MovieSettings::fadeInSeconds() const {
    return lengthAt(fadeInIndex, shortestFadeIn, fadeInLengthCount);
}

std::int64_t MovieSettings::frameCount() const {
    return starbloom::frameCount(seconds(), framesPerSecond());
}

double MovieSettings::memoryBytes(double width, double height, bool highDensity) const {
    return width * height * framesPerSecond() * seconds() * 4.0 * (highDensity ? 2.0 : 1.0);
}

std::string megabytesText(double bytes) {
    return textWithOneDecimal(bytes / 1.0e6);
}

} // namespace starbloom
