// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <span>

namespace starbloom {

/// The file tspark.png, the picture that every spark is drawn with. Built into the programs, so that they run from
/// anywhere.
std::span<const std::byte> sparkPng();

} // namespace starbloom
