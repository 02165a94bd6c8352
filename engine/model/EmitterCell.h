// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Color.h"
#include "engine/model/SparkImage.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace starbloom {

/// One kind of particle and how an emitter throws it: a node of the emitter tree.
///
/// A plain model: it holds properties under the names that key paths use, and means nothing by itself; Simulation gives
/// it its meaning in time. Angles are radians, times seconds, lengths points, velocities points per second,
/// accelerations points per second squared, rates per second. Every property may hold any number, the simulation copes.
/// A cell owns its child cells and shares its image.
///
/// The width of each number is a part of the model: rates, lifetimes, colour ranges and colour speeds are single
/// precision, all others double.
struct EmitterCell {
    std::string name; ///< Key paths reach the cell by it; an empty name is never matched.

    float birthRate = 0.0F; ///< Particles per second of the emitter's time; 0 and less gives none.
    float lifetime = 0.0F;  ///< Seconds that a particle lives.

    double velocity = 0.0;
    double velocityRange = 0.0; ///< Speeds lie evenly in velocity +- this.
    double yAcceleration = 0.0;
    double emissionLongitude = 0.0; ///< Turns the axis in the plane of the picture, counter-clockwise from +x.
    double emissionLatitude = 0.0;  ///< Turns the axis out of that plane.
    double emissionRange = 0.0;     ///< Full apex angle of the cone around the axis; 2 pi is the whole sphere.

    double scale = 1.0; ///< Size of a particle in sizes of its image.
    double scaleRange = 0.0;
    double scaleSpeed = 0.0; ///< Change of the scale per second.
    double spin = 0.0;       ///< Radians per second, counter-clockwise.

    Color color;
    float redRange = 0.0F;
    float greenRange = 0.0F;
    float blueRange = 0.0F;
    float redSpeed = 0.0F; ///< Change per second, as for the other three.
    float greenSpeed = 0.0F;
    float blueSpeed = 0.0F;
    float alphaSpeed = 0.0F;

    double beginTime = 0.0; ///< When emission starts, counted from the birth of the emitter's own particle.
    double duration = 0.0;  ///< How long it goes on; 0 means until the emitter's particle dies.

    std::shared_ptr<const SparkImage> contents; ///< Null: the particles are invisible and only emit.
    std::vector<std::unique_ptr<EmitterCell>> emitterCells;

    /// Values set under names that are no property of a cell. They are kept and have no effect.
    std::map<std::string, double, std::less<>> extraAttributes;

    /// Sets a numeric property by name, rounding to the property's own precision. A name that is no numeric property of
    /// a cell becomes an extra attribute.
    void setValue(double value, std::string_view property);

    /// A numeric property or extra attribute by name; nothing when the cell has neither.
    std::optional<double> value(std::string_view property) const;
};

/// The child of that name, or null. An empty name finds nothing: unnamed cells are reached through their parent alone.
EmitterCell* findCell(const std::vector<std::unique_ptr<EmitterCell>>& cells, std::string_view name);

} // namespace starbloom
