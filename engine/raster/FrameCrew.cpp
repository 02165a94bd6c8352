// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/raster/FrameCrew.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include <sched.h>

namespace starbloom {

FrameCrew::FrameCrew(std::size_t count)
    : m_count(std::max<std::size_t>(count, 1)) {}

FrameCrew::~FrameCrew() {
    {
        const std::scoped_lock lock(m_mutex);
        m_ends = true;
    }
    m_called.notify_all();
    for (std::thread& helper : m_helpers) {
        helper.join();
    }
}

void FrameCrew::run(std::size_t tasks, std::size_t most, const Call& call) {
    const std::size_t helpers = makeHelpers(std::max<std::size_t>(std::min({tasks, most, m_count}), 1) - 1);
    m_call = &call;
    m_tasks = tasks;
    m_next = 0;
    {
        const std::scoped_lock lock(m_mutex);
        m_wanted = helpers;
    }
    for (std::size_t helper = 0; helper < helpers; ++helper) {
        m_called.notify_one();
    }
    work(0);
    std::unique_lock lock(m_mutex);
    m_wanted = 0; // Whoever has not woken up by now would find nothing to do.
    m_done.wait(lock, [&] { return m_working == 0; });
    if (m_failure) {
        std::rethrow_exception(std::exchange(m_failure, nullptr));
    }
}

std::size_t FrameCrew::worthwhile(double milliseconds) const {
    return static_cast<std::size_t>(std::clamp(milliseconds, 1.0, static_cast<double>(m_count)));
}

std::size_t FrameCrew::usableProcessors() {
    cpu_set_t processors;
    const bool known = sched_getaffinity(0, sizeof processors, &processors) == 0;
    return known ? static_cast<std::size_t>(CPU_COUNT(&processors)) : std::thread::hardware_concurrency();
}

std::size_t FrameCrew::makeHelpers(std::size_t wanted) {
    try {
        while (m_helpers.size() < wanted) {
            m_helpers.emplace_back(&FrameCrew::help, this, m_helpers.size() + 1);
        }
    } catch (const std::system_error&) {
        return m_helpers.size();
    }
    return wanted;
}

void FrameCrew::help(std::size_t worker) {
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_called.wait(lock, [&] { return m_wanted > 0 || m_ends; });
        if (m_ends) {
            return;
        }
        --m_wanted;
        ++m_working;
        lock.unlock();
        work(worker);
        lock.lock();
        if (--m_working == 0) {
            m_done.notify_one();
        }
    }
}

void FrameCrew::work(std::size_t worker) {
    try {
        for (std::size_t task = m_next++; task < m_tasks; task = m_next++) {
            (*m_call)(task, worker);
        }
    } catch (...) {
        m_next = m_tasks; // The others need not go on.
        const std::scoped_lock lock(m_mutex);
        if (!m_failure) {
            m_failure = std::current_exception();
        }
    }
}

} // namespace starbloom
