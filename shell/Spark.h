// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/model/SparkImage.h"

#include <memory>

namespace starbloom {

/// The picture that every spark is drawn with, decoded at the first call. Thread-safe: the program has it decoded by
/// another thread while the window system is being connected.
std::shared_ptr<const SparkImage> spark();

} // namespace starbloom
