// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/panel/FireworksController.h"
#include "engine/time/Simulation.h"

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <vector>

namespace starbloom {

/// A round soft spark of 12 x 12 points, 48 x 48 pixels, so that no test depends on the program's own picture.
std::shared_ptr<const SparkImage> softSpark();

/// The same, with its light off the centre: right of it and a little below.
std::shared_ptr<const SparkImage> lopsidedSpark();

/// The fireworks on a stage of 640 x 480 points with the sliders at their reset positions, but for what `change` moves.
EmitterPlan panelPlan(const std::function<void(PositionPanel&)>& change = {});

/// The fireworks as built, but for what `change` does to the layer.
EmitterPlan treePlan(const std::function<void(EmitterLayer&)>& change = {});

/// All bits of one living spark: its cell, its birth, and its state.
using SparkBits = std::array<std::uint64_t, 11>;

/// All sparks that live at the simulation's moment, in an order that depends on nothing but themselves.
std::vector<SparkBits> sparkSet(const Simulation& simulation);

/// FNV-1a, 64 bits.
std::uint64_t hashOf(std::span<const std::byte> bytes);

} // namespace starbloom
