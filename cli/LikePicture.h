// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/Options.h"
#include "cli/StageFit.h"

namespace starbloom {

/// Sets options to the show that a picture tells of, and yields its stage. A picture of a show that was changed while
/// it ran gives a warning. Fails when the file tells of no show.
Result<StageShape> showLike(const std::filesystem::path& picture, Options& options);

} // namespace starbloom
