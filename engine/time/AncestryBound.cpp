// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/time/AncestryBound.h"

#include <algorithm>

namespace starbloom {

void AncestryBound::include(const EmitterPlan& plan) {
    const std::size_t count = plan.cells.size();
    m_lifetimes.resize(std::max(m_lifetimes.size(), count));
    std::vector<double> longestDescent(count);
    // Children come after their parents, so each cell's descendants are known when its turn comes.
    for (std::size_t i = count; i-- > 0;) {
        const CellPlan& cell = plan.cells[i];
        m_lifetimes[i] = std::max(m_lifetimes[i], cell.lifetime);
        const double ancestry = m_lifetimes[i] + longestDescent[i];
        double& above = cell.parent < 0 ? m_seconds : longestDescent[static_cast<std::size_t>(cell.parent)];
        above = std::max(above, ancestry);
    }
}

double AncestryBound::forgottenBy(double time) const {
    // The margin covers the single precision in which ages are counted.
    return time - m_seconds * 1.000001 - 1.0e-3;
}

} // namespace starbloom
