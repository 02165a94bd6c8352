// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/ImageBuffer.h"
#include "base/Result.h"
#include "cli/Options.h"
#include "engine/raster/RasterRenderer.h"
#include "engine/time/Show.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace starbloom {

/// Renders the frames of a show, each at its own moment.
class FrameRenderer {
public:
    explicit FrameRenderer(const Options& options);

    /// The stage as a viewer sees it `seconds` into the show.
    void render(double seconds, ImageBuffer& image);

    /// The particles of that moment.
    const Simulation& particlesAt(double seconds);

private:
    double m_speed;
    Color m_background;
    ShowPlayer m_player;
    RasterRenderer m_renderer;
};

/// What becomes of one frame. The picture may be kept until the call returns, and no longer.
using FrameSink = std::function<Result<void>(std::int64_t frame, const ImageBuffer& image)>;

enum class SinkCalls {
    InOrder,  ///< One after the other, in the order of frames.
    Together, ///< Several at once, in any order.
};

/// Renders `options.frameCount()` frames and hands each to the sink, rendering ahead while sinks work. How threads
/// share the work: one at a time renders (and is helped by others within the frame), the others run sinks; all come
/// from the caller's oneTBB arena. A few frames exist at once, however many there are in all.
///
/// Stops early when a sink fails, which is the result, or when the user interrupts, which is none.
Result<void> runFrames(const Options& options, SinkCalls calls, const FrameSink& sink);

} // namespace starbloom
