// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/Options.h"

namespace starbloom {

/// Refuses sizes that would end in the middle for want of memory.
Result<void> checkMemory(const Options& options, int threads);

} // namespace starbloom
