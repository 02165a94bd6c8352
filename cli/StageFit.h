// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/Arguments.h"
#include "cli/Options.h"

#include <optional>

namespace starbloom {

/// The stage that a show was made for.
struct StageShape {
    Size stage{640.0, 480.0}; ///< Points.
    double pixelsPerPoint = 1.0;
    std::optional<Point> launchPoint; ///< Where the positions and the stage do not give it.
};

/// Settles the size of the picture, the scale and the launch point from --size, --scale and the stage of the show that
/// the options start from, if there is one. At a --size of its own such a stage is drawn as large as all of it is seen,
/// and what is left over shows more of the sky: as much on the left as on the right, the rest above.
Result<void> fitStage(const Arguments& arguments, const std::optional<StageShape>& shape, Options& options);

} // namespace starbloom
