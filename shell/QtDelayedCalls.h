// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/DelayedCalls.h"

#include <QObject>

#include <memory>
#include <unordered_map>

class QTimer;

namespace starbloom {

/// Delayed calls by the event loop of the GUI thread. Calls that have not run die with it.
class QtDelayedCalls final : public QObject, public DelayedCalls {
public:
    QtDelayedCalls();
    ~QtDelayedCalls() override;

    Number callAfter(std::chrono::milliseconds delay, std::function<void()> call) override;
    void cancel(Number number) override;

private:
    Number m_lastNumber = 0;
    std::unordered_map<Number, std::unique_ptr<QTimer>> m_timers;
};

} // namespace starbloom
