// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/time/EmitterPlan.h"

#include <vector>

namespace starbloom {

/// How far back anything alive can reach, in a show whose plan changes.
///
/// A chain of descent may run through several plans, an emitter that lived long under one and a child that lives long
/// under the next, so the longest lifetime that each cell ever had counts, and not the longest chain of one plan.
class AncestryBound {
public:
    /// Takes a further plan of the show into account.
    void include(const EmitterPlan& plan);

    /// The latest moment whose births have left nothing behind by `time`, neither themselves nor a descendant.
    double forgottenBy(double time) const;

    /// How long anything and its descendants live at most.
    double longest() const { return -forgottenBy(0.0); }

private:
    std::vector<float> m_lifetimes; ///< Per cell of the plans.
    double m_seconds = 0.0;
};

} // namespace starbloom
