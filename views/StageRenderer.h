// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Color.h"
#include "engine/time/SparkBatch.h"

#include <QRect>

#include <cstdint>
#include <span>

class QWindow;

namespace starbloom {

/// What the stage shows at one moment.
struct StageMoment {
    std::span<const SparkBatch> sparks;
    double time = 0.0; ///< In the layer's own time.
    Color background{0.0F, 0.0F, 0.0F, 1.0F};
    std::uint64_t show = 0; ///< Another one whenever the show has begun anew: its batches are not those from before.
};

/// Draws the stage on the screen instead of the CPU, on a surface of its own that lies above the stage in its window
/// and lets all input through.
///
/// Belongs to the stage. GUI thread.
class StageRenderer {
public:
    enum class Outcome {
        Shown,
        NotYet, ///< The surface is not on the screen; what lies below it is seen.
        Failed, ///< And it will not get better.
    };

    virtual ~StageRenderer() = default;

    /// Where the stage lies: a rectangle in that window, in points. Costs nothing when it has not changed. The surface
    /// comes on the screen after the first call, with the pixels that are there until it has drawn.
    virtual void place(QWindow& window, const QRect& stage) = 0;

    /// Takes the surface off the screen until it is placed again.
    virtual void withdraw() = 0;

    /// Draws a moment in all pixels of the surface. Moments of one show come in order.
    virtual Outcome show(const StageMoment& moment) = 0;
};

} // namespace starbloom
