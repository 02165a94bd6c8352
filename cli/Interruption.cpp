// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Interruption.h"

#include <csignal>

namespace starbloom {

namespace {

volatile std::sig_atomic_t stopRequested = 0;

void requestStop(int signal) {
    stopRequested = 1;
    // Whoever asks a second time means it.
    std::signal(signal, SIG_DFL);
}

} // namespace

void installSignalHandlers() {
    std::signal(SIGINT, requestStop);
    std::signal(SIGTERM, requestStop);
    std::signal(SIGHUP, requestStop);
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
}

bool interrupted() {
    return stopRequested != 0;
}

} // namespace starbloom
