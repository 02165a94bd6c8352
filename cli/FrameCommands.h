// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/ExitStatus.h"
#include "cli/Options.h"

namespace starbloom {

/// Makes what consists of many frames: a movie, a clip, numbered frames, or nothing but the check for flashes.
ExitStatus makeFrames(const Options& options, int threads);

} // namespace starbloom
