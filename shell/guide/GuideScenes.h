// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/panel/ParameterTable.h"
#include "engine/time/EmitterPlan.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>

namespace starbloom {

/// The end of a slider that a picture of the guide shows.
enum class SliderEnd { Lowest, Highest };

constexpr float positionAt(const ParameterRow& row, SliderEnd end) {
    return end == SliderEnd::Lowest ? row.minimum : row.maximum;
}

/// The moment of a show at which it is plain to see what one slider does. Both ends are shown with the same seed, so
/// that nothing else differs.
struct GuideScene {
    struct Setting {
        Parameter parameter;
        float position;
    };

    Parameter parameter;
    std::span<const Setting> others;  ///< Sliders that are not at their reset positions, to bring out the one.
    Size stage;                       ///< Points; width : height is pictureAspect.
    std::optional<Point> launchPoint; ///< Where it is not the slider's.
    std::uint64_t seed;
    double moment;       ///< In the layer's own time, seconds.
    double passed = 0.0; ///< Seconds of real time that then pass, at the speed that the scene's sliders give.
};

/// Width : height of all pictures of the guide.
inline constexpr double pictureAspect = 4.0 / 3.0;

/// Null for a slider that changes nothing that can be seen.
const GuideScene* findGuideScene(Parameter parameter);

/// What a scene becomes when its slider is at an end.
struct GuideMoment {
    EmitterPlan plan;
    double time; ///< In the layer's own time, seconds.
};

GuideMoment momentOf(const GuideScene& scene, SliderEnd end, const std::shared_ptr<const SparkImage>& image);

} // namespace starbloom
