// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/ImageBuffer.h"
#include "base/Result.h"
#include "cli/MotionBlur.h"
#include "cli/Options.h"
#include "cli/ShowBuilder.h"
#include "engine/raster/RasterRenderer.h"
#include "engine/time/Show.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace starbloom {

/// Renders the frames of a show, each at its own moment, or as its shutter sees it from that moment on.
class FrameRenderer {
public:
    explicit FrameRenderer(const Options& options);

    /// The stage as a viewer sees it `seconds` into the show.
    void render(double seconds, ImageBuffer& image) { renderMoment(momentAt(seconds), image); }

    /// The same at a moment of the layer's own time. Returns early, with whatever is there, when the user interrupts.
    void renderMoment(double moment, ImageBuffer& image);

    const Simulation& particlesAtMoment(double moment);

    /// `seconds` into the show, in the layer's own time.
    double momentAt(double seconds) const { return m_start + seconds * m_speed; }

    /// The moment of a picture or particle table, in the layer's own time.
    double pictureMoment() const;

    /// What pictures tell of the show at a moment.
    ShowNote noteAt(double moment) const;

private:
    FrameRenderer(const Options& options, RequestedShow&& requested);
    void drawAt(double moment, ImageBuffer& image);

    double m_at;
    std::optional<double> m_moment;
    double m_start;
    double m_speed;
    double m_pixelsPerPoint;
    Color m_background;
    ShowNote m_note;
    ShowPlayer m_player;
    RasterRenderer m_renderer;
    double m_exposure; ///< Seconds of the layer's own time; 0 without a shutter.
    std::optional<BlurSteps> m_blurSteps;
    LightAverage m_average;
};

/// One frame of several, for a sink, which may change the picture and keep it until its call returns.
struct RenderedFrame {
    std::int64_t number;
    const ShowNote& note;
    ImageBuffer& image;
};

/// What becomes of one frame.
using FrameSink = std::function<Result<void>(const RenderedFrame& frame)>;

/// Looks at a frame.
using FrameWatch = std::function<void(const ImageBuffer& frame)>;

enum class SinkCalls {
    InOrder,  ///< One after the other, in the order of frames.
    Together, ///< Several at once, in any order.
};

/// What happens to the frames of a run.
struct FrameHandling {
    FrameSink sink;
    SinkCalls calls = SinkCalls::InOrder;
    std::function<bool(std::int64_t number)> wanted{}; ///< Leaves frames out; empty: none.
    FrameWatch watch{};                                ///< Sees the frames in order, before the sink; may be empty.
};

/// Renders the frames of `options.frames()` and hands each to the sink, rendering ahead while sinks work. How threads
/// share the work: one at a time renders (and is helped by others within the frame), the others run sinks; all come
/// from the caller's oneTBB arena. A few frames exist at once, however many there are in all.
///
/// Stops early when a sink fails, which is the result, or when the user interrupts, which is none.
Result<void> runFrames(const Options& options, const FrameHandling& handling);

} // namespace starbloom
