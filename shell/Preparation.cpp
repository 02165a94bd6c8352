// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/Preparation.h"

#include "persistence/stores/Stores.h"
#include "shell/Spark.h"

#include <QFontDatabase>
#include <QStringList>

#include <exception>
#include <latch>
#include <memory>
#include <system_error>
#include <utility>

#include <fontconfig/fontconfig.h>
#include <pthread.h>
#include <sched.h>

namespace starbloom {

namespace {

/// Sends a thread that was just started to the other processors. Left alone it may begin on this one, where the two
/// would take turns of some milliseconds although another processor is idle.
void moveAside(std::jthread& thread) {
    cpu_set_t others;
    if (sched_getaffinity(0, sizeof others, &others) == 0) {
        CPU_CLR(sched_getcpu(), &others);
        if (CPU_COUNT(&others) > 0) {
            pthread_setaffinity_np(thread.native_handle(), sizeof others, &others);
        }
    }
}

} // namespace

std::jthread startAside(std::function<void()> task) {
    // A thread that has ended cannot be moved: its number would mean the one that asks.
    const auto moved = std::make_shared<std::latch>(1);
    std::jthread thread;
    try {
        thread = std::jthread([moved, task = std::move(task)] {
            moved->wait();
            task();
        });
    } catch (const std::system_error&) {
        return thread;
    }
    moveAside(thread);
    moved->count_down();
    return thread;
}

void prepare(Stores* stores) {
    try {
        FcInit();
        if (stores != nullptr) {
            stores->prepare();
        }
        spark();
    } catch (const std::exception&) {
        return;
    }
}

std::jthread startLookingThroughFonts() {
    return startAside([] { QFontDatabase::families(); });
}

} // namespace starbloom
