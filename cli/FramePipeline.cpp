// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/FramePipeline.h"

#include "cli/Interruption.h"
#include "cli/Progress.h"
#include "export/movie/MovieTiming.h"

#include <oneapi/tbb/concurrent_queue.h>
#include <oneapi/tbb/parallel_pipeline.h>
#include <oneapi/tbb/task_arena.h>

#include <atomic>
#include <mutex>
#include <optional>
#include <utility>

namespace starbloom {

namespace {

/// A frame on its way from the renderer to the sink.
struct Job {
    std::int64_t frame = 0;
    double moment = 0.0;
    ImageBuffer* image = nullptr;
};

/// The first failure of several threads.
class FirstFailure {
public:
    void note(const Error& error) {
        const std::scoped_lock lock(m_mutex);
        if (!m_error) {
            m_error = error;
        }
        m_failed = true;
    }

    bool happened() const { return m_failed; }

    Result<void> result() const { return m_error ? Result<void>(*m_error) : Result<void>(); }

private:
    std::mutex m_mutex;
    std::optional<Error> m_error;
    std::atomic<bool> m_failed = false;
};

} // namespace

FrameRenderer::FrameRenderer(const Options& options)
    : FrameRenderer(options, buildShow(options)) {}

FrameRenderer::FrameRenderer(const Options& options, RequestedShow&& requested)
    : m_at(options.at)
    , m_moment(options.moment)
    , m_start(requested.start)
    , m_speed(requested.speed)
    , m_pixelsPerPoint(options.pixelsPerPoint)
    , m_background(options.drawnBackground())
    , m_note(std::move(requested.note))
    , m_player(requested.show)
    , m_exposure(options.shutter / options.framesPerSecond * requested.speed) {
    if (m_exposure > 0.0) {
        m_blurSteps.emplace(std::move(requested.show), m_exposure, m_pixelsPerPoint);
    }
}

const Simulation& FrameRenderer::particlesAtMoment(double moment) {
    return m_player.at(moment);
}

void FrameRenderer::renderMoment(double moment, ImageBuffer& image) {
    const int steps = m_blurSteps ? m_blurSteps->at(moment) : 1;
    if (steps == 1) {
        drawAt(moment, image);
        return;
    }
    for (int step = 0; step < steps; ++step) {
        drawAt(moment + m_exposure * (step + 0.5) / steps, image);
        m_average.add(image);
        if (interrupted()) { // There may be hundreds of steps, and nobody wants the picture any more.
            break;
        }
    }
    m_average.take(image);
}

void FrameRenderer::drawAt(double moment, ImageBuffer& image) {
    const Simulation& simulation = particlesAtMoment(moment);
    m_renderer.render(simulation.sparks(), {moment, m_pixelsPerPoint, m_background}, RasterTarget::of(image));
}

double FrameRenderer::pictureMoment() const {
    return m_moment.value_or(momentAt(m_at));
}

ShowNote FrameRenderer::noteAt(double moment) const {
    ShowNote note = m_note;
    note.moment = moment;
    return note;
}

Result<void> runFrames(const Options& options, const FrameHandling& handling) {
    namespace tbb = oneapi::tbb;
    const auto inFlight = static_cast<std::size_t>(tbb::this_task_arena::max_concurrency()) + 2;
    std::vector<ImageBuffer> images(inFlight);
    tbb::concurrent_queue<ImageBuffer*> idle;
    for (ImageBuffer& image : images) {
        image = ImageBuffer(options.width, options.height);
        idle.push(&image);
    }
    FrameRenderer renderer(options);
    const FrameSpan frames = options.frames();
    Progress progress(frames.count(), options.progress);
    FirstFailure failure;
    std::int64_t next = frames.first;

    const auto render = [&](tbb::flow_control& flow) -> Job {
        while (next < frames.end && !interrupted() && handling.wanted && !handling.wanted(next)) {
            ++next;
        }
        Job job{next++};
        if (job.frame >= frames.end || failure.happened() || interrupted() || !idle.try_pop(job.image)) {
            flow.stop();
            return {};
        }
        const double seconds = options.from + frameTime(job.frame, options.framesPerSecond);
        // Without the isolation this thread, while it waits for help within a frame, could start on a sink.
        job.moment = renderer.momentAt(seconds);
        tbb::this_task_arena::isolate([&] { renderer.renderMoment(job.moment, *job.image); });
        if (interrupted()) {
            flow.stop();
            return {};
        }
        if (handling.watch) {
            handling.watch(*job.image);
        }
        return job;
    };
    const auto deliver = [&](Job job) -> Job {
        if (!failure.happened()) {
            if (auto delivered = handling.sink({job.frame, renderer.noteAt(job.moment), *job.image}); !delivered) {
                failure.note(delivered.error());
            }
        }
        return job;
    };
    // Frames come here in order, so those before one are done or were not wanted.
    std::int64_t passed = 0;
    const auto recycle = [&](Job job) {
        idle.push(job.image);
        passed = job.frame + 1 - frames.first;
        progress.update(passed);
    };
    const auto deliveryMode =
        handling.calls == SinkCalls::InOrder ? tbb::filter_mode::serial_in_order : tbb::filter_mode::parallel;
    tbb::parallel_pipeline(inFlight, tbb::make_filter<void, Job>(tbb::filter_mode::serial_in_order, render) &
                                         tbb::make_filter<Job, Job>(deliveryMode, deliver) &
                                         tbb::make_filter<Job, void>(tbb::filter_mode::serial_in_order, recycle));
    if (passed < frames.count() && !failure.happened() && !interrupted()) {
        progress.update(frames.count()); // The last ones were not wanted.
    }
    return failure.result();
}

} // namespace starbloom
