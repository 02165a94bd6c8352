// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/DelayedCalls.h"

#include <map>
#include <utility>

namespace starbloom {

/// Delayed calls on a clock that a test moves by hand.
class HandDrivenCalls final : public DelayedCalls {
public:
    Number callAfter(std::chrono::milliseconds delay, std::function<void()> call) override {
        m_waiting[{m_now + delay, ++m_last}] = std::move(call);
        return m_last;
    }

    void cancel(Number number) override {
        std::erase_if(m_waiting, [number](const auto& entry) { return entry.first.second == number; });
    }

    /// Moves the clock and runs what has become due, earliest first.
    void advance(std::chrono::milliseconds time) {
        m_now += time;
        while (!m_waiting.empty() && m_waiting.begin()->first.first <= m_now) {
            auto call = std::move(m_waiting.begin()->second);
            m_waiting.erase(m_waiting.begin());
            call();
        }
    }

    std::size_t waiting() const { return m_waiting.size(); }

private:
    std::chrono::milliseconds m_now{0};
    Number m_last = 0;
    std::map<std::pair<std::chrono::milliseconds, Number>, std::function<void()>> m_waiting;
};

} // namespace starbloom
