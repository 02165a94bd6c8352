// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/raster/Workers.h"

namespace starbloom {

/// The threads of the oneTBB arena that calls, whose limits hold. They help with other work of the arena as well.
class ArenaWorkers final : public Workers {
public:
    std::size_t count() const override;

    /// All: they are awake in any case.
    std::size_t worthwhile(double milliseconds) const override { return milliseconds > 1.0 ? count() : 1; }

protected:
    void run(std::size_t tasks, std::size_t most, const Call& call) override;
};

} // namespace starbloom
