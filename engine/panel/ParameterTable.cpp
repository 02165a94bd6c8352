// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/panel/ParameterTable.h"

#include <algorithm>
#include <numbers>

namespace starbloom {

namespace {

// Positions are single precision. Products with a fraction are taken in double precision and rounded once, so that a
// reset position gives exactly the number that the tree is built with.

float unchanged(float s) {
    return s;
}

float negated(float s) {
    return -s;
}

float tenth(float s) {
    return static_cast<float>(s * 0.1);
}

float tenfold(float s) {
    return s * 10.0F;
}

float eighthTurns(float s) {
    return static_cast<float>(s * std::numbers::pi / 4.0);
}

float carrierVelocity(float s) {
    return static_cast<float>(s * 0.7);
}

float carrierGravity(float s) {
    return static_cast<float>(s * -0.85);
}

constexpr std::array rocketWrites{
    ParameterWrite{Parameter::RocketBirth, "emitterCells.rocket.birthRate", tenth},
    ParameterWrite{Parameter::RocketAngle, "emitterCells.rocket.emissionRange", eighthTurns},
    ParameterWrite{Parameter::RocketVelocity, "emitterCells.rocket.velocity", unchanged},
    ParameterWrite{Parameter::RocketRange, "emitterCells.rocket.velocityRange", unchanged},
    ParameterWrite{Parameter::RocketGravity, "emitterCells.rocket.yAcceleration", negated},
};

constexpr std::array burstWrites{
    ParameterWrite{Parameter::ExplodeLife, "emitterCells.rocket.emitterCells.firework.lifetime", tenth},
    ParameterWrite{Parameter::ExplodeVelocity, "emitterCells.rocket.emitterCells.firework.velocity", unchanged},
    ParameterWrite{Parameter::ExplodeRange, "emitterCells.rocket.emitterCells.firework.velocityRange", unchanged},
    ParameterWrite{Parameter::ExplodeGravity, "emitterCells.rocket.emitterCells.firework.yAcceleration", negated},
    // "birth", not "birthRate": the number is kept with the cell, and the carriers keep their built rate.
    ParameterWrite{Parameter::SparkleBirth, "emitterCells.rocket.emitterCells.preSpark.birth", tenfold},
    ParameterWrite{Parameter::SparkleLife, "emitterCells.rocket.emitterCells.preSpark.lifetime", tenth},
    ParameterWrite{Parameter::SparkleSize, "emitterCells.rocket.emitterCells.preSpark.scale", tenth},
    ParameterWrite{Parameter::ExplodeVelocity, "emitterCells.rocket.emitterCells.preSpark.velocity", carrierVelocity},
    ParameterWrite{Parameter::ExplodeGravity, "emitterCells.rocket.emitterCells.preSpark.yAcceleration",
                   carrierGravity},
};

} // namespace

const ParameterRow* findParameter(std::string_view name) {
    const auto* found = std::ranges::find(parameterTable, name, &ParameterRow::name);
    return found == parameterTable.end() ? nullptr : found;
}

std::span<const ParameterWrite> writesBeforeLaunchPoint() {
    return rocketWrites;
}

std::span<const ParameterWrite> writesAfterLaunchPoint() {
    return burstWrites;
}

float layerSpeed(float position) {
    return static_cast<float>(position / 100.0);
}

double launchBirthRate(double position) {
    return position * 0.1;
}

} // namespace starbloom
