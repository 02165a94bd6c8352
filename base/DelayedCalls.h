// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <utility>

namespace starbloom {

/// Calls things later, on the thread that asked. The window's program implements it with its event loop, a test with a
/// clock that it moves by hand.
///
/// An implementation forgets a call before it runs it, so that the call may ask for another one, and a number that was
/// cancelled or has run is never given out again. Owners use PendingCall, which cannot be forgotten.
class DelayedCalls {
public:
    using Number = std::uint64_t;

    virtual ~DelayedCalls() = default;

    /// Runs `call` once, not before the delay has passed. Never runs it before returning.
    virtual Number callAfter(std::chrono::milliseconds delay, std::function<void()> call) = 0;

    /// Drops a call that has not run. A number whose call has run or was dropped is ignored.
    virtual void cancel(Number number) = 0;
};

/// A call that waits for its time and dies with its owner: a member that is destroyed, or given another call, cancels
/// what it held, so that a call never finds its object gone. The DelayedCalls must outlive it. Not thread-safe.
class PendingCall {
public:
    PendingCall() = default;

    PendingCall(DelayedCalls& calls, std::chrono::milliseconds delay, std::function<void()> call)
        : m_calls(&calls)
        , m_number(calls.callAfter(delay, std::move(call))) {}

    PendingCall(PendingCall&& other) noexcept
        : m_calls(std::exchange(other.m_calls, nullptr))
        , m_number(other.m_number) {}

    PendingCall& operator=(PendingCall&& other) noexcept {
        std::swap(m_calls, other.m_calls);
        std::swap(m_number, other.m_number);
        other.cancel();
        return *this;
    }

    ~PendingCall() { cancel(); }

    void cancel() {
        if (auto* calls = std::exchange(m_calls, nullptr)) {
            calls->cancel(m_number);
        }
    }

private:
    DelayedCalls* m_calls = nullptr;
    DelayedCalls::Number m_number = 0;
};

} // namespace starbloom
