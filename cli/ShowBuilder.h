// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/Options.h"
#include "engine/time/Show.h"
#include "export/picture/ShowNote.h"

namespace starbloom {

/// The show that a command line asks for, in the layer's own time.
struct RequestedShow {
    Show show;
    double speed = 1.0; ///< Layer seconds per second as the viewer counts.
    double start = 0.0; ///< Layer time of the show's first moment; a loop begins when all that it shows has been born.
    double loopRate = 1.0; ///< By what --loop has multiplied the rocket rate.
    ShowNote note;         ///< For its pictures; each has its own moment.
};

/// Applies the options' positions to a freshly built tree, as the sliders of the application would, and lays the climb
/// of --fade-in over the show's time, or lets it come again for --loop.
RequestedShow buildShow(const Options& options);

} // namespace starbloom
