// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace starbloom {

// What a show and its picture may be at most, wherever the numbers come from.

constexpr int largestSide = 65536;       ///< Pixels.
constexpr double largestStage = 65536.0; ///< Points; what pictures can tell of their show.
constexpr double leastScale = 0.01;      ///< Pixels for each point.
constexpr double mostScale = 100.0;
constexpr double longestShow = 1.0e6; ///< Seconds: eleven days.
constexpr double longestFadeIn = 3600.0;
constexpr double shortestFadeIn = 0.5; ///< The rate climbs in steps of so long.
constexpr int largestRate = 240;
constexpr int mostThreads = 1024;

} // namespace starbloom
