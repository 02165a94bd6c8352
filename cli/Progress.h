// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace starbloom {

/// One line of progress: a bar, frames, percent, time left. `elapsed` is how long the first `done` frames took.
std::string progressLine(std::int64_t done, std::int64_t total, std::chrono::duration<double> elapsed);

/// Shows progress on standard error, at most ten times a second, and only when that is a terminal. Removes its line
/// when destroyed. For one thread at a time.
class Progress {
public:
    /// A quiet one shows nothing.
    Progress(std::int64_t total, bool quiet);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void update(std::int64_t done);

private:
    using Clock = std::chrono::steady_clock;

    std::int64_t m_total;
    bool m_shown;
    bool m_drawn = false;
    Clock::time_point m_start = Clock::now();
    Clock::time_point m_lastDrawn;
};

} // namespace starbloom
