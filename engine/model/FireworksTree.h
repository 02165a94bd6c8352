// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/model/EmitterLayer.h"

#include <array>
#include <memory>
#include <string_view>

namespace starbloom {

/// The stage that the tree is built for; the launch point is recomputed for others when the sliders are applied.
inline constexpr Size defaultStageSize{640.0, 480.0};

/// What the five cells are called in tables and listings, in depth-first order of the tree. The trail and the spark
/// cell have no name of their own in the model.
inline constexpr std::array<std::string_view, 5> fireworksCellLabels{"rocket", "trail", "firework", "preSpark",
                                                                     "spark"};

/// Fills a layer with the show: rockets that leave a trail, burst into a "firework" and carry a "preSpark" whose sparks
/// flicker. `image` is shared by the cells that draw; null leaves them invisible while the emitter still runs.
void buildFireworksTree(EmitterLayer& mortor, const std::shared_ptr<const SparkImage>& image);

} // namespace starbloom
