// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/QtDelayedCalls.h"

#include <QTimer>

#include <utility>

namespace starbloom {

QtDelayedCalls::QtDelayedCalls() = default;
QtDelayedCalls::~QtDelayedCalls() = default;

DelayedCalls::Number QtDelayedCalls::callAfter(std::chrono::milliseconds delay, std::function<void()> call) {
    const Number number = ++m_lastNumber;
    auto timer = std::make_unique<QTimer>();
    timer->setSingleShot(true);
    connect(timer.get(), &QTimer::timeout, this, [this, number, call = std::move(call)] {
        const auto due = call; // The timer that holds the original goes first.
        cancel(number);
        due();
    });
    timer->start(delay);
    m_timers.emplace(number, std::move(timer));
    return number;
}

void QtDelayedCalls::cancel(Number number) {
    const auto found = m_timers.find(number);
    if (found == m_timers.end()) {
        return;
    }
    // It may be the very timer whose signal is being delivered, so it must not go at once.
    found->second->stop();
    found->second.release()->deleteLater();
    m_timers.erase(found);
}

} // namespace starbloom
