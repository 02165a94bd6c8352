// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Result.h"
#include "export/movie/FrameStore.h"

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <thread>

namespace starbloom {

/// A movie that was saved.
struct WrittenMovie {
    std::filesystem::path path;
    std::int64_t frames = 0;
    double seconds = 0.0;
};

/// Writes the frames of a recording into a movie file, on a thread of its own.
///
/// The movie grows in a hidden file beside the target that survives the end of the program, however it comes (see
/// MovieRecovery.h); what is complete of it reaches the disk about once a second. At the end it becomes a regular
/// movie and takes the target's place. When it fails or is aborted, nothing is left and the target is as before. The
/// frames are forgotten as they are encoded. The same frames give the same bytes on any machine. The size is that of
/// the first frame; a frame of another size is laid into the bottom left corner, cut off or on black.
///
/// `progress` and `finished` are called on the writer's thread; `finished` once, as the last thing, from where the
/// writer must not be destroyed. All functions may be called from any thread.
class MovieFileWriter {
public:
    struct Job {
        std::filesystem::path target;
        std::filesystem::path journal; ///< Names the hidden file meanwhile; empty for none.
        int framesPerSecond = 30;      ///< 1..1000
        std::unique_ptr<FrameStore> frames;
    };

    using Progress = std::function<void(std::int64_t written, std::int64_t total)>;

    /// Gets the movie, nothing after an abort, or why it failed.
    using Finished = std::function<void(const Result<std::optional<WrittenMovie>>& result)>;

    /// How many threads encode. A fixed number, as the bytes depend on it.
    static constexpr int encoderThreads = 4;

    /// Starts.
    MovieFileWriter(Job job, Progress progress, Finished finished);

    /// Aborts, and waits until the thread has ended.
    ~MovieFileWriter();
    MovieFileWriter(const MovieFileWriter&) = delete;
    MovieFileWriter& operator=(const MovieFileWriter&) = delete;

    /// Gives the movie up, up to the moment when it takes the target's place.
    void abort() { m_aborted = true; }

    /// Encodes no further frames and finishes the movie with those that are: for a program that has to end soon.
    void finishEarly() { m_ending = true; }

    /// Returns when the thread has ended, after `finished`. From one thread only.
    void wait();

private:
    void work();
    Result<std::optional<WrittenMovie>> write();

    Job m_job;
    Progress m_progress;
    Finished m_finished;
    std::atomic<bool> m_aborted = false;
    std::atomic<bool> m_ending = false;
    std::thread m_thread;
};

} // namespace starbloom
