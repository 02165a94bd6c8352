// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Color.h"
#include "engine/model/EmitterLayer.h"
#include "engine/time/Vector3.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace starbloom {

/// One cell of the emitter tree as the simulation reads it: finite numbers within safe bounds, and what follows from
/// them worked out once.
struct CellPlan {
    int parent = -1;   ///< Index of the parent cell in the plan; -1 for a top cell.
    int childSlot = 0; ///< Which of its parent's children it is.
    std::vector<int> children;

    double birthRate = 0.0; ///< Never negative.
    float lifetime = 0.0F;  ///< Never negative.
    double velocity = 0.0;
    double velocityRange = 0.0;
    double yAcceleration = 0.0;
    Vector3 axis{1.0, 0.0, 0.0}; ///< Unit vector of longitude and latitude, before it is turned with the emitter.
    double coneDepth = 0.0;      ///< 1 - cosine of half the emission range: 0 a ray, 2 the whole sphere.
    double scale = 1.0;
    double scaleRange = 0.0;
    float scaleSpeed = 0.0F;
    float spin = 0.0F;
    Color color;
    Color colorRange;
    Color colorSpeed;
    double beginTime = 0.0;           ///< Never negative.
    std::uint64_t birthsPerRound = 0; ///< Of a top cell: after so many births the same come again; 0: never.
    double duration = 0.0;            ///< 0: until the emitter's particle dies.
    std::shared_ptr<const SparkImage> image;

    friend bool operator==(const CellPlan& a, const CellPlan& b);
};

/// The whole emitter tree, flattened: parents before their children, depth first.
struct EmitterPlan {
    Point emitterPosition;
    std::vector<CellPlan> cells;

    /// Reads a layer. Numbers that are not finite count as 0, enormous ones are limited, so that whatever a key path
    /// has set, the arithmetic that follows stays finite. The layer's speed is not a part of it: the plan speaks of the
    /// layer's own time.
    static EmitterPlan of(const EmitterLayer& layer);

    /// Lets the births of the top cells, and so the whole show, come again every `seconds` of the layer's time, once
    /// the first particles have died. The rates give way a little: births of a round are a whole number, at least one.
    void repeatEvery(double seconds);

    /// Whether both have the same cells in the same places, repeated alike, whatever their numbers.
    bool hasSameShapeAs(const EmitterPlan& other) const;

    friend bool operator==(const EmitterPlan&, const EmitterPlan&) = default;
};

} // namespace starbloom
