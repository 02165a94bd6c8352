// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/raster/ArenaWorkers.h"

#include <oneapi/tbb/parallel_for.h>
#include <oneapi/tbb/task_arena.h>

namespace starbloom {

std::size_t ArenaWorkers::count() const {
    return static_cast<std::size_t>(oneapi::tbb::this_task_arena::max_concurrency());
}

void ArenaWorkers::run(std::size_t tasks, std::size_t /*most*/, const Call& call) {
    oneapi::tbb::parallel_for(std::size_t{0}, tasks, [&](std::size_t index) {
        call(index, static_cast<std::size_t>(oneapi::tbb::this_task_arena::current_thread_index()));
    });
}

} // namespace starbloom
