// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace starbloom {

/// One line of progress: a bar, frames, percent, time left. `elapsed` is how long the first `done` frames took.
std::string progressLine(std::int64_t done, std::int64_t total, std::chrono::duration<double> elapsed);

enum class ProgressStyle {
    Bar,  ///< For people: on a terminal alone, and removed in the end.
    Json, ///< An object a line, for programs.
    None,
};

/// Shows progress on standard error, at most ten times a second, the start and the end in any case. For one thread at a
/// time.
class Progress {
public:
    Progress(std::int64_t total, ProgressStyle style);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void update(std::int64_t done);

private:
    using Clock = std::chrono::steady_clock;

    void show(std::int64_t done, std::chrono::duration<double> elapsed) const;

    std::int64_t m_total;
    ProgressStyle m_style;
    bool m_drawn = false;
    Clock::time_point m_start = Clock::now();
    Clock::time_point m_lastDrawn;
};

} // namespace starbloom
