// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/Options.h"

namespace starbloom {

/// What a run ends with.
enum ExitStatus : int {
    Done = 0,
    WriteFailed = 1,
    BadInput = 2,
    Interrupted = 130, ///< As shells number a program that Ctrl+C ended.
};

/// Carries out a checked command line. Results go to files or standard output, errors to standard error in one line.
ExitStatus runCommand(const Options& options);

} // namespace starbloom
