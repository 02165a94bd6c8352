// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/Options.h"

#include <string>

namespace starbloom {

/// All particles of drawing cells that live at the moment of the options, as CSV with a heading.
std::string particleTable(const Options& options);

/// The fourteen parameters for people: names, ranges, reset positions, effects.
std::string parameterList();

} // namespace starbloom
