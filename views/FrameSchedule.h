// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

namespace starbloom {

/// Decides which moments of a show are drawn.
///
/// Frames are due at whole multiples of the period, counted from the start and not from one another, so that late
/// wake-ups never add up. A frame shows the moment at which it was due: a timer that wakes a little late, now more and
/// now less, then does not show as a tremble of what moves. Frames whose time has passed are left out, never caught up.
///
/// All times are readings of one steady clock, taken by the caller. Not thread-safe.
class FrameSchedule {
public:
    using Nanoseconds = std::chrono::nanoseconds;

    /// What is drawn when a display does not know its rate, per second.
    static constexpr double fallbackRate = 60.0;

    /// Begins anew: the first frame is due at once. A rate (frames per second) outside of 1..1000 is no display's and
    /// counts as the fallback.
    void start(Nanoseconds now, double rate);

    /// The moment of the newest frame that is due and has not been taken; nothing when all due frames have been.
    std::optional<Nanoseconds> takeDueFrame(Nanoseconds now);

    /// How long until the frame after the last one taken is due; 0 when it is already.
    Nanoseconds untilNextFrame(Nanoseconds now) const;

    /// When that is.
    Nanoseconds nextFrame() const { return dueTime(m_nextFrame); }

private:
    Nanoseconds dueTime(std::int64_t frame) const;

    Nanoseconds m_start{};
    double m_period = 1.0e9 / fallbackRate; ///< Nanoseconds.
    std::int64_t m_nextFrame = 0;
};

} // namespace starbloom
