// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/FramePipeline.h"

#include "cli/Interruption.h"
#include "cli/Progress.h"
#include "engine/raster/ArenaWorkers.h"
#include "export/movie/MovieTiming.h"

#include <oneapi/tbb/concurrent_queue.h>
#include <oneapi/tbb/parallel_pipeline.h>
#include <oneapi/tbb/task_arena.h>

#include <atomic>
#include <memory>
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
    , m_renderer(std::make_shared<ArenaWorkers>())
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

namespace {

/// One run of frames: what its three stages share.
class FrameRun {
public:
    FrameRun(const Options& options, const FrameHandling& handling)
        : m_options(options)
        , m_handling(handling)
        , m_images(static_cast<std::size_t>(oneapi::tbb::this_task_arena::max_concurrency()) + 2)
        , m_renderer(options)
        , m_frames(options.frames())
        , m_progress(m_frames.count(), options.progress)
        , m_next(m_frames.first) {
        for (ImageBuffer& image : m_images) {
            image = ImageBuffer(options.width, options.height);
            m_idle.push(&image);
        }
    }

    Result<void> run() {
        namespace tbb = oneapi::tbb;
        const auto delivery =
            m_handling.calls == SinkCalls::InOrder ? tbb::filter_mode::serial_in_order : tbb::filter_mode::parallel;
        tbb::parallel_pipeline(
            m_images.size(),
            tbb::make_filter<void, Job>(tbb::filter_mode::serial_in_order,
                                        [this](tbb::flow_control& flow) { return render(flow); }) &
                tbb::make_filter<Job, Job>(delivery, [this](Job job) { return deliver(job); }) &
                tbb::make_filter<Job, void>(tbb::filter_mode::serial_in_order, [this](Job job) { recycle(job); }));
        if (m_passed < m_frames.count() && !m_failure.happened() && !interrupted()) {
            m_progress.update(m_frames.count()); // The last ones were not wanted.
        }
        return m_failure.result();
    }

private:
    Job render(oneapi::tbb::flow_control& flow) {
        while (m_next < m_frames.end && !interrupted() && m_handling.wanted && !m_handling.wanted(m_next)) {
            ++m_next;
        }
        Job job{m_next++};
        if (job.frame >= m_frames.end || m_failure.happened() || interrupted() || !m_idle.try_pop(job.image)) {
            flow.stop();
            return {};
        }
        job.moment = m_renderer.momentAt(m_options.from + frameTime(job.frame, m_options.framesPerSecond));
        // Without the isolation this thread, while it waits for help within a frame, could start on a sink.
        oneapi::tbb::this_task_arena::isolate([&] { m_renderer.renderMoment(job.moment, *job.image); });
        if (interrupted()) {
            flow.stop();
            return {};
        }
        if (m_handling.watch) {
            m_handling.watch(*job.image);
        }
        return job;
    }

    Job deliver(Job job) {
        if (!m_failure.happened()) {
            if (auto delivered = m_handling.sink({job.frame, m_renderer.noteAt(job.moment), *job.image}); !delivered) {
                m_failure.note(delivered.error());
            }
        }
        return job;
    }

    /// Frames come here in order, so those before one are done or were not wanted.
    void recycle(const Job& job) {
        m_idle.push(job.image);
        m_passed = job.frame + 1 - m_frames.first;
        m_progress.update(m_passed);
    }

    const Options& m_options;
    const FrameHandling& m_handling;
    std::vector<ImageBuffer> m_images; ///< As many as are on their way at once.
    oneapi::tbb::concurrent_queue<ImageBuffer*> m_idle;
    FrameRenderer m_renderer;
    FrameSpan m_frames;
    Progress m_progress;
    FirstFailure m_failure;
    std::int64_t m_next;
    std::int64_t m_passed = 0;
};

} // namespace

Result<void> runFrames(const Options& options, const FrameHandling& handling) {
    return FrameRun(options, handling).run();
}

} // namespace starbloom
