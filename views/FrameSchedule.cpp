// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/FrameSchedule.h"

#include <algorithm>
#include <cmath>

namespace starbloom {

void FrameSchedule::start(Nanoseconds now, double rate) {
    const bool plausible = rate >= 1.0 && rate <= 1000.0;
    m_period = 1.0e9 / (plausible ? rate : fallbackRate);
    m_start = now;
    m_nextFrame = 0;
}

std::optional<FrameSchedule::Nanoseconds> FrameSchedule::takeDueFrame(Nanoseconds now) {
    if (dueTime(m_nextFrame) > now) {
        return {};
    }
    auto newest = static_cast<std::int64_t>(static_cast<double>((now - m_start).count()) / m_period);
    // The division may be off by one where a frame is due at this very nanosecond.
    while (dueTime(newest) > now) {
        --newest;
    }
    while (dueTime(newest + 1) <= now) {
        ++newest;
    }
    m_nextFrame = newest + 1;
    return dueTime(newest);
}

FrameSchedule::Nanoseconds FrameSchedule::untilNextFrame(Nanoseconds now) const {
    return std::max(dueTime(m_nextFrame) - now, Nanoseconds{});
}

FrameSchedule::Nanoseconds FrameSchedule::dueTime(std::int64_t frame) const {
    return m_start + Nanoseconds{std::llround(static_cast<double>(frame) * m_period)};
}

} // namespace starbloom
