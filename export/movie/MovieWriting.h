// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Result.h"
#include "export/movie/FrameStore.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

namespace starbloom {

/// A movie that is to be written.
struct MovieJob {
    std::filesystem::path target;
    std::filesystem::path journal; ///< Names the hidden file meanwhile, see MovieRecovery.h; empty for none.
    int framesPerSecond = 30;      ///< 1..1000
    std::unique_ptr<FrameStore> frames;
};

/// A movie that was saved.
struct WrittenMovie {
    std::filesystem::path path;
    std::int64_t frames = 0;
    double seconds = 0.0;
};

using MovieProgressCall = std::function<void(std::int64_t written, std::int64_t total)>;

/// Gets the movie, nothing after an abort, or why it failed.
using MovieFinishedCall = std::function<void(const Result<std::optional<WrittenMovie>>& result)>;

/// A movie on its way to the disk. Destroying it aborts, and waits until its thread has ended. All functions but wait()
/// may be called from any thread.
class MovieWriting {
public:
    virtual ~MovieWriting() = default;

    /// Gives the movie up, up to the moment when it takes the target's place.
    virtual void abort() = 0;

    /// Encodes no further frames and finishes the movie with those that are: for a program that has to end soon.
    virtual void finishEarly() = 0;

    /// Returns when the thread has ended, after the last call back. From one thread only.
    virtual void wait() = 0;
};

} // namespace starbloom
