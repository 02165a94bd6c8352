// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

namespace starbloom {

/// The fourteen parameters in the panel's order, which is also the order in which positions are stored.
enum class Parameter : std::size_t {
    RocketHeight,
    RocketBirth,
    RocketAngle,
    RocketVelocity,
    RocketRange,
    RocketGravity,
    ExplodeLife,
    ExplodeVelocity,
    ExplodeRange,
    ExplodeGravity,
    SparkleBirth,
    SparkleLife,
    SparkleSize,
    AnimateSpeed,
};

constexpr std::size_t parameterCount = 14;

/// One row of the panel. Positions are what a slider shows and a preset keeps; the emitter gets the results of
/// formulas.
struct ParameterRow {
    Parameter parameter;
    std::string_view name;   ///< Under which the slider is known everywhere.
    std::string_view outlet; ///< The control's name within the controller.
    int resetPosition;       ///< The factory position, within the range.
    float minimum;           ///< The slider's ends. Formulas accept any number beyond them.
    float maximum;
    double unitsPerPosition; ///< A position in `unit` is position x unitsPerPosition + unitsAtZero.
    double unitsAtZero;
    std::string_view unit;
    std::string_view title;  ///< For the panel.
    std::string_view effect; ///< What a person sees change, for listings.
};

/// The ranges are chosen so that each end is a show of its own, at 640 x 480 points with all other sliders at their
/// reset positions: bursts are seen, whole or in part. Only speed 0 shows nothing new, as it should.
inline constexpr std::array<ParameterRow, parameterCount> parameterTable{{
    {Parameter::RocketHeight, "rocketHeightSlider", "yPosition", 5, 0.0F, 8.0F, 10.0, -50.0, "% of height",
     "Launch height",
     "where rockets start: 5 is the bottom edge, below it they start under the stage, above it inside"},
    {Parameter::RocketBirth, "rocketBirthSlider", "rocketBirth", 5, 3.0F, 40.0F, 0.1, 0.0, "rockets/s", "Rocket rate",
     "how many rockets rise each second"},
    {Parameter::RocketAngle, "rocketAngleSlider", "rocketRange", 1, 0.0F, 2.5F, 45.0, 0.0, "°", "Rocket spread",
     "how wide the fan of rockets is; 0 sends all straight up"},
    {Parameter::RocketVelocity, "rocketVelocitySlider", "rocketVelocity", 400, 250.0F, 550.0F, 1.0, 0.0, "pt/s",
     "Rocket speed", "how fast rockets leave, and so how high they burst"},
    {Parameter::RocketRange, "rocketRangeSlider", "rocketVelocityRange", 100, 0.0F, 200.0F, 1.0, 0.0, "pt/s",
     "Speed variation", "how much rockets differ in speed, and so in height"},
    {Parameter::RocketGravity, "rocketGravitySlider", "rocketGravity", 250, 100.0F, 450.0F, 1.0, 0.0, "pt/s²",
     "Rocket gravity", "how strongly rockets are pulled down"},
    {Parameter::ExplodeLife, "explodeLifeSlider", "fireworkLifetime", 20, 5.0F, 50.0F, 0.1, 0.0, "s", "Burst life",
     "how long the sparks of a burst glow; at 50 they fade out completely"},
    {Parameter::ExplodeVelocity, "explodeVelocitySlider", "fireworkVelocity", 130, 30.0F, 300.0F, 1.0, 0.0, "pt/s",
     "Burst speed", "how fast bursts open, and so how large they grow"},
    {Parameter::ExplodeRange, "explodeRangeSlider", "fireworkVelocityRange", 0, 0.0F, 130.0F, 1.0, 0.0, "pt/s",
     "Burst depth", "how much sparks differ in speed: 0 gives a shell, more fills it"},
    {Parameter::ExplodeGravity, "explodeGravitySlider", "fireworkGravity", 80, 0.0F, 300.0F, 1.0, 0.0, "pt/s²",
     "Burst gravity", "how strongly bursts sink: 0 leaves a round ball, more makes a willow"},
    {Parameter::SparkleBirth, "sparkleBirthSlider", "sparkleBirth", 10, 0.0F, 20.0F, 10.0, 0.0, "/s", "Sparkle rate",
     "nothing that can be seen; its position is kept with the others"},
    {Parameter::SparkleLife, "sparkleLifeSlider", "sparkleLifetime", 18, 9.0F, 40.0F, 0.1, 0.0, "s", "Sparkle life",
     "how long sparkles go on flickering after a burst"},
    {Parameter::SparkleSize, "sparkleSizeSlider", "sparkleScale", 6, 1.0F, 12.0F, 10.0, 0.0, "%", "Sparkle size",
     "nothing that can be seen; its position is kept with the others"},
    {Parameter::AnimateSpeed, "animateSpeedSlider", "animationSpeed", 100, 0.0F, 200.0F, 1.0, 0.0, "%",
     "Animation speed", "how fast time runs: 0 freezes the show, 100 is natural, 200 is double speed"},
}};

constexpr const ParameterRow& row(Parameter parameter) {
    return parameterTable[static_cast<std::size_t>(parameter)];
}

/// The row of a property name such as "rocketBirthSlider"; null for any other text.
const ParameterRow* findParameter(std::string_view name);

/// One number that a slider writes into the emitter: at which key path, and which value a position gives.
struct ParameterWrite {
    Parameter parameter;
    std::string_view keyPath;
    float (*formula)(float position);
};

/// What the sliders write before the launch point is set, and after it, in this order.
std::span<const ParameterWrite> writesBeforeLaunchPoint();
std::span<const ParameterWrite> writesAfterLaunchPoint();

/// The emitter layer's speed for a position of the animation-speed slider.
float layerSpeed(float position);

/// The rocket's birth rate for a position on the scale of the rocket-birth slider.
double launchBirthRate(double position);

} // namespace starbloom
