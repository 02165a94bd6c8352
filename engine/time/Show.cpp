// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/time/Show.h"

#include <algorithm>
#include <cassert>
#include <utility>

namespace starbloom {

ShowPlayer::ShowPlayer(Show show)
    : m_show(std::move(show))
    , m_simulation(m_show.seed, m_show.changes.front().plan) {
    assert(std::ranges::is_sorted(m_show.changes, {}, &Show::Change::time));
    for (const auto& change : m_show.changes) {
        m_ancestry.include(change.plan);
    }
}

const Simulation& ShowPlayer::at(double time) {
    if (time < m_simulation.time() || m_ancestry.forgottenBy(time) > m_simulation.time()) {
        rebuildFor(time);
    }
    while (m_nextChange < m_show.changes.size() && m_show.changes[m_nextChange].time <= time) {
        const auto& change = m_show.changes[m_nextChange++];
        m_simulation.advanceTo(change.time);
        m_simulation.setPlan(change.plan);
    }
    m_simulation.advanceTo(time);
    return m_simulation;
}

void ShowPlayer::rebuildFor(double time) {
    m_simulation = Simulation(m_show.seed, m_show.changes.front().plan);
    m_nextChange = 1;
    const double start = m_ancestry.forgottenBy(time);
    while (m_nextChange < m_show.changes.size() && m_show.changes[m_nextChange].time <= start) {
        const auto& change = m_show.changes[m_nextChange++];
        m_simulation.jumpTo(change.time);
        m_simulation.setPlan(change.plan);
    }
    m_simulation.jumpTo(start);
}

} // namespace starbloom
