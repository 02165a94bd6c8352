// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/time/AncestryBound.h"
#include "engine/time/Simulation.h"

#include <cstdint>
#include <vector>

namespace starbloom {

/// A whole show: a seed, and the emitter's plan over the layer's own time.
struct Show {
    struct Change {
        double time; ///< From when on the plan is in force.
        EmitterPlan plan;
    };

    std::uint64_t seed = 1;
    std::vector<Change> changes; ///< At least one; the first at time 0, then in order of time.
};

/// Gives the particles of a show at any moment.
///
/// Moments in forward order continue from one another; any other is computed from scratch, starting no more than one
/// ancestry lifetime before it. Both ways give the same particles, bit for bit. Owns its show; not thread-safe.
class ShowPlayer {
public:
    explicit ShowPlayer(Show show);

    /// The particles at that moment of the layer's time; times before 0 count as 0. Valid until the next call.
    const Simulation& at(double time);

private:
    void rebuildFor(double time);

    Show m_show;
    Simulation m_simulation;
    std::size_t m_nextChange = 1;
    AncestryBound m_ancestry;
};

} // namespace starbloom
