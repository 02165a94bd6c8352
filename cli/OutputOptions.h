// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/Arguments.h"
#include "cli/Options.h"

namespace starbloom {

/// Reads what is to come out: the kind of output, where it goes, its format and how it is transparent.
Result<void> readOutput(const Arguments& arguments, Options& options);

} // namespace starbloom
