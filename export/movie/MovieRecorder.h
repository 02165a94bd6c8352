// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/ImageBuffer.h"
#include "export/movie/FrameStore.h"
#include "export/movie/MovieSettings.h"
#include "export/movie/MovieTiming.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace starbloom {

enum class RecordingPhase { Idle, Recording, Writing };

/// How far a recording, or the writing of it, has come.
struct RecordingProgress {
    RecordingPhase phase = RecordingPhase::Idle;
    std::int64_t done = 0; ///< Frames captured, or written.
    std::int64_t total = 0;
    std::int64_t missed = 0;                      ///< Frames that the movie will not have, so far.
    double percent = 0.0;                         ///< 0..100
    std::string percentText;                      ///< "12.5%"
    std::optional<std::chrono::nanoseconds> left; ///< Time to the end of this phase; not known at the start of writing.
};

/// Why a recording ended.
enum class RecordingEnd {
    WritingEnded, ///< Well or not: who wrote knows.
    Aborted,
    NoFrames, ///< Not one frame could be captured, so there is nothing to write.
};

/// What a recording asks from the program around it. All are called on the thread that drives the recorder.
class RecordingHost {
public:
    virtual ~RecordingHost() = default;

    /// Wants the stage as it is at that moment, which lies a little in the past: answer with frameGiven() or
    /// frameFailed(), at once or later, in the order of the requests. The moment is a reading of the clock that `now`
    /// comes from. A show that has been advanced beyond it may have dropped sparks that died since.
    virtual void captureFrame(std::chrono::nanoseconds moment) = 0;

    /// Wants the launch rate at this position of the slider's scale. The slider itself stays.
    virtual void setLaunchBirth(double position) = 0;

    virtual void showProgress(const RecordingProgress& progress) = 0;

    /// It is time to write these frames; tell writingProgress() now and then, and writingEnded() in the end.
    virtual void writeMovie(std::unique_ptr<FrameStore> frames) = 0;

    /// The recorder is idle again, and the launch rate is restored. Time to close windows and give controls back; and
    /// after an abort, to end a writing that is under way.
    virtual void recordingEnded(RecordingEnd end) = 0;
};

/// The recording of a movie as a state machine without a clock: ticks, frames and answers go in, requests come out.
///
/// Frame k is due k / rate seconds after the start and shows just that moment, so a late tick does not show in the
/// movie. A tick catches up on at most two frames, and on none that is more than a quarter of a second late: on a
/// machine too slow, frames are left out and counted, and as every frame lasts one period, the movie becomes shorter.
/// Writing starts a second after the end, or earlier when memory is used up.
///
/// The fade-in follows fadeInSteps(), each step before the first frame that is due after it. However a recording ends,
/// the launch rate is set back once.
///
///     recorder.begin(settings, birthPosition, now, std::make_unique<FrameStore>(limit));
///     every 1 / rate seconds, and every half second while a fade-in is on: recorder.tick(now)
///
/// A recorder serves any number of recordings, one after the other. It may be called from within its requests. Used
/// from one thread; the host must outlive it.
class MovieRecorder {
public:
    using Nanoseconds = std::chrono::nanoseconds;

    static constexpr Nanoseconds writingDelay = std::chrono::seconds(1);
    static constexpr Nanoseconds latestCapture = std::chrono::milliseconds(250);
    static constexpr int mostPerTick = 2;

    explicit MovieRecorder(RecordingHost& host)
        : m_host(host) {}

    /// Starts; ignored while a recording is under way. `birthPosition` is where the slider of the rocket births stands:
    /// where a fade-in leads, and what is set in the end.
    void begin(const MovieSettings& settings, double birthPosition, Nanoseconds now,
               std::unique_ptr<FrameStore> frames);

    /// Asks for the frames that are due, takes the fade-in further, and starts the writing when its time has come.
    void tick(Nanoseconds now);

    /// Half a second has passed. The climb is a matter of time, so this is a tick like the others.
    void fadeTick(Nanoseconds now) { tick(now); }

    /// A picture for the next frame, with any contents: memory that has been used before.
    ImageBuffer blankFrame(int width, int height);

    void frameGiven(ImageBuffer&& frame);
    void frameFailed();

    /// Drops everything. Ignored when idle.
    void abort();

    /// Ends the capture now and starts to write what there is, for a program that has to end. Ignored unless recording.
    void finish();

    void writingProgress(std::int64_t written, std::int64_t total, Nanoseconds now);
    void writingEnded();

    RecordingPhase phase() const { return m_phase; }

    /// How many frames were captured and how many were left out; of the last recording, when idle.
    std::int64_t captured() const { return m_captured; }

    std::int64_t missed() const { return m_missed; }

    /// Whether the last recording ended early for want of memory.
    bool ranOutOfMemory() const { return m_full; }

private:
    Nanoseconds dueTime(std::int64_t frame) const;
    void captureDue(Nanoseconds now);
    void fadeTo(Nanoseconds time);
    void startWriting();
    void reportCapture();
    void close(RecordingEnd end);

    RecordingHost& m_host;
    RecordingPhase m_phase = RecordingPhase::Idle;
    MovieSettings m_settings;
    double m_birthPosition = 0.0;
    Nanoseconds m_start{};
    Nanoseconds m_now{};
    Nanoseconds m_writingStart{};
    std::unique_ptr<FrameStore> m_frames;
    std::vector<LaunchStep> m_fade;
    std::size_t m_nextStep = 0;
    std::int64_t m_total = 0;
    std::int64_t m_next = 0;    ///< The frame that is asked for next.
    std::int64_t m_waiting = 0; ///< Requests without an answer.
    std::int64_t m_captured = 0;
    std::int64_t m_missed = 0;
    bool m_full = false;
};

} // namespace starbloom
