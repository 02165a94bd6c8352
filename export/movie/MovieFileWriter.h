// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "export/movie/MovieWriting.h"

#include <atomic>
#include <optional>
#include <thread>

namespace starbloom {

/// Writes the frames of a recording into a movie file, on a thread of its own.
///
/// The movie grows in a hidden file beside the target that survives the end of the program, however it comes (see
/// MovieRecovery.h); what is complete of it reaches the disk about once a second. At the end it becomes a regular
/// movie, if there is room for that (see MovieWriterOptions), and takes the target's place. When it fails or is
/// aborted, nothing is left and the target is as before. The frames are forgotten as they are encoded. The same frames
/// give the same bytes on any machine. The size is that of the first frame; a frame of another size is laid into the
/// bottom left corner, cut off or on black.
///
/// `progress` and `finished` are called on the writer's thread; `finished` once, as the last thing, from where the
/// writer must not be destroyed. All functions may be called from any thread.
class MovieFileWriter final : public MovieWriting {
public:
    /// How many threads encode. A fixed number, as the bytes depend on it.
    static constexpr int encoderThreads = 4;

    /// Starts.
    MovieFileWriter(MovieJob job, MovieProgressCall progress, MovieFinishedCall finished);

    ~MovieFileWriter() override;
    MovieFileWriter(const MovieFileWriter&) = delete;
    MovieFileWriter& operator=(const MovieFileWriter&) = delete;

    void abort() override { m_aborted = true; }

    void finishEarly() override { m_ending = true; }

    void wait() override;

private:
    void work();
    Result<std::optional<WrittenMovie>> write();

    MovieJob m_job;
    MovieProgressCall m_progress;
    MovieFinishedCall m_finished;
    std::atomic<bool> m_aborted = false;
    std::atomic<bool> m_ending = false;
    std::thread m_thread;
};

} // namespace starbloom
