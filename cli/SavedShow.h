// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/Options.h"
#include "persistence/stores/AppFolder.h"

namespace starbloom {

/// Sets options to the positions and the background that the user has saved in the application. Changes no file. Fails
/// when nothing was ever saved or it cannot be read.
Result<void> showSaved(const EnvironmentLookup& environment, Options& options);

} // namespace starbloom
