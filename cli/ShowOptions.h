// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/Arguments.h"
#include "cli/Options.h"

namespace starbloom {

/// Reads which show is asked for and on what stage: the one to start from (--like, --show, --saved), and then what is
/// given besides it and counts more.
Result<void> readShow(const Arguments& arguments, Options& options);

} // namespace starbloom
