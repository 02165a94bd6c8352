// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/TerminationSignals.h"

#include <QSocketNotifier>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace starbloom {

namespace {

constexpr std::array handledSignals{SIGTERM, SIGINT, SIGHUP};

/// A handler may do next to nothing but write to a pipe.
std::array<int, 2> ends{-1, -1};

void wake(int) {
    const char byte = 1;
    [[maybe_unused]] const auto written = ::write(ends[1], &byte, 1);
}

void handle(void (*handler)(int)) {
    for (const int number : handledSignals) {
        struct sigaction action {};

        action.sa_handler = handler;
        action.sa_flags = SA_RESTART;
        ::sigaction(number, &action, nullptr);
    }
}

} // namespace

TerminationSignals::TerminationSignals() {
    if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        return; // The signals then end the program as they always do.
    }
    m_notifier = std::make_unique<QSocketNotifier>(ends[0], QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] {
        std::array<char, 16> bytes{};
        [[maybe_unused]] const auto taken = ::read(ends[0], bytes.data(), bytes.size());
        emit received();
    });
    handle(wake);
}

TerminationSignals::~TerminationSignals() {
    if (m_notifier != nullptr) {
        handle(SIG_DFL);
        ::close(ends[0]);
        ::close(ends[1]);
    }
}

} // namespace starbloom
