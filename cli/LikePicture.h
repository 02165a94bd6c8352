// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/Options.h"

namespace starbloom {

/// What the command line gives itself, and no picture is asked for.
struct LikeKeeps {
    bool size = false;
    bool seed = false;
    bool moment = false;
    bool background = false;
};

/// Sets options to the show that a picture tells of. At a size of its own the stage keeps its scale to the picture, all
/// of it is seen, and what is left over shows more of the sky: as much on the left as on the right, the rest above.
/// A picture of a show that was changed while it ran gives a warning. Fails when the file tells of no show.
Result<void> showLike(const std::filesystem::path& picture, const LikeKeeps& keeps, Options& options);

} // namespace starbloom
