// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/model/EmitterCell.h"

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace starbloom {

/// A place on the stage, in points from its bottom left corner, y upward.
struct Point {
    double x = 0.0;
    double y = 0.0;

    friend bool operator==(const Point&, const Point&) = default;
};

/// Width and height in points.
struct Size {
    double width = 0.0;
    double height = 0.0;

    friend bool operator==(const Size&, const Size&) = default;
};

enum class RenderMode {
    Unordered, ///< What a layer has until it is told otherwise.
    Additive,  ///< Overlapping particles add their colours.
};

/// The emitter: a point that throws the particles of its top cells. A plain model, see EmitterCell.
struct EmitterLayer {
    Point emitterPosition;
    RenderMode renderMode = RenderMode::Unordered;
    float speed = 1.0F; ///< How fast the layer's own time runs; 0 stands still.
    std::vector<std::unique_ptr<EmitterCell>> emitterCells;

    /// Sets a number at a key path such as "emitterCells.rocket.emitterCells.firework.velocity": any number of
    /// "emitterCells" + cell name, then a property of that cell. A final name that is no property is kept on the cell
    /// as an extra attribute. A path that leads to no cell changes nothing and yields false.
    bool setValue(double value, std::string_view keyPath);

    /// The number at a key path; nothing when there is none.
    std::optional<double> value(std::string_view keyPath) const;
};

/// The stage's background and what lies on it. The bounds are set once; covering a stage of another size is the
/// hosting view's business.
struct RootLayer {
    Size bounds;
    Color backgroundColor{0.0F, 0.0F, 0.0F, 0.0F};
    std::vector<std::shared_ptr<EmitterLayer>> sublayers;
};

} // namespace starbloom
