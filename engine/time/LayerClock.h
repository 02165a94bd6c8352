// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>

namespace starbloom {

/// A layer's own time: starts at 0 and runs `speed` times as fast as real time.
///
/// Real time comes in whole nanoseconds, which add up exactly, and the layer's time is worked out from the last change
/// of speed: the same real time in other steps gives the same layer time, bit for bit.
class LayerClock {
public:
    explicit LayerClock(double speed = 1.0)
        : m_speed(speed) {}

    /// Real time passes. Must not be negative.
    void advance(std::chrono::nanoseconds real) { m_sinceChange += real; }

    void setSpeed(double speed) {
        if (speed != m_speed) {
            m_atChange = time();
            m_sinceChange = {};
            m_speed = speed;
        }
    }

    double speed() const { return m_speed; }

    /// Seconds of layer time.
    double time() const { return m_atChange + m_speed * (static_cast<double>(m_sinceChange.count()) / 1.0e9); }

private:
    double m_speed;
    double m_atChange = 0.0;
    std::chrono::nanoseconds m_sinceChange{};
};

} // namespace starbloom
