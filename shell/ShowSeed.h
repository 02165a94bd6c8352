// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace starbloom {

/// The environment variable that, set to a decimal number, shows the show of that seed again.
constexpr auto seedVariable = "STARBLOOM_SEED";

/// The seed of this run's show: the environment's, or else a random one. It is logged, so that a show someone liked can
/// be had again. A variable that holds no number of 64 bits is told in the log and ignored.
std::uint64_t chooseShowSeed();

} // namespace starbloom
