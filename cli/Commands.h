// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/ExitStatus.h"
#include "cli/Options.h"

namespace starbloom {

/// Carries out a checked command line. Results go to files or standard output, errors to standard error in one line.
ExitStatus runCommand(const Options& options);

} // namespace starbloom
