// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/raster/Workers.h"

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace starbloom {

/// Threads that help with the frames of a screen, and sleep between them.
///
/// A library of tasks has its threads look out for more work for a while after the last, which suits frames that follow
/// one another at once. On a screen the next one begins ten milliseconds later, and the looking out is lost: a tenth of
/// the processor time of a frame of 1920x1080.
///
/// Threads are started when first needed, and end with the crew; without those that the system refuses the caller does
/// the work. share() may be called from one thread at a time.
class FrameCrew final : public Workers {
public:
    /// `count` includes the thread that calls share(). By default there are as many as processors that the program may
    /// use.
    explicit FrameCrew(std::size_t count = usableProcessors());
    ~FrameCrew() override;

    FrameCrew(const FrameCrew&) = delete;
    FrameCrew& operator=(const FrameCrew&) = delete;

    std::size_t count() const override { return m_count; }

    /// Each has a millisecond or more to do. For less, waking it costs more than it saves the caller.
    std::size_t worthwhile(double milliseconds) const override;

protected:
    void run(std::size_t tasks, std::size_t most, const Call& call) override;

private:
    static std::size_t usableProcessors();
    std::size_t makeHelpers(std::size_t wanted);
    void help(std::size_t worker);
    void work(std::size_t worker);

    const std::size_t m_count;
    std::vector<std::thread> m_helpers;

    std::mutex m_mutex; ///< Guards what follows, up to the failure.
    std::condition_variable m_called;
    std::condition_variable m_done;
    std::size_t m_wanted = 0;  ///< Helpers that have been called and have not begun.
    std::size_t m_working = 0; ///< Helpers that have begun and not ended.
    bool m_ends = false;
    std::exception_ptr m_failure; ///< The first one of this call.

    // Of the present call; written only while no helper works.
    const Call* m_call = nullptr;
    std::size_t m_tasks = 0;
    alignas(64) std::atomic<std::size_t> m_next = 0; ///< The first task that nobody has taken.
};

} // namespace starbloom
