// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <functional>

namespace starbloom {

/// Threads that share the work within a frame: FrameCrew on the screen, ArenaWorkers where frames follow one another
/// without a pause.
class Workers {
public:
    virtual ~Workers() = default;

    /// How many can work at once, the caller included.
    virtual std::size_t count() const = 0;

    /// How many it is worth to have at work that takes one of them so many milliseconds; 1 or more.
    virtual std::size_t worthwhile(double milliseconds) const = 0;

    /// Calls `task(index, worker)` once for each index below `tasks`, in any order, and returns when all are done. Of
    /// tasks that run at the same time each has another worker, below count(); 0 may be the caller. More than `most`
    /// workers would be wasted. What a task throws comes out here, and then some of the others have not been done.
    template <typename Task>
    void share(std::size_t tasks, std::size_t most, const Task& task) {
        run(tasks, most, std::cref(task)); // A reference fits into the function, which so takes no memory.
    }

protected:
    using Call = std::function<void(std::size_t index, std::size_t worker)>;

    virtual void run(std::size_t tasks, std::size_t most, const Call& call) = 0;
};

} // namespace starbloom
