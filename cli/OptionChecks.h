// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/Arguments.h"
#include "cli/Options.h"

namespace starbloom {

/// Whether options that are right one by one also go together, and with the kind of output.
Result<void> checkTogether(const Arguments& arguments, const Options& options);

/// Adds a warning for each option that has no effect on such an output.
void warnAboutIdleOptions(const Arguments& arguments, Options& options);

} // namespace starbloom
