// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/time/EmitterPlan.h"

#include "engine/time/Trigonometry.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace starbloom {

namespace {

// Far beyond anything that shows, and small enough that value x age^2 stays finite in single precision.
constexpr double largestValue = 1.0e9;
constexpr double largestTime = 1.0e6;
constexpr double largestRate = 1.0e9;

double bounded(double value, double lowest, double highest) {
    return std::isfinite(value) ? std::clamp(value, lowest, highest) : 0.0;
}

double bounded(double value) {
    return bounded(value, -largestValue, largestValue);
}

float boundedFloat(double value) {
    return static_cast<float>(bounded(value));
}

Vector3 axisOf(const EmitterCell& cell) {
    const auto longitude = sineCosine(bounded(cell.emissionLongitude));
    const auto latitude = sineCosine(bounded(cell.emissionLatitude));
    return {latitude.cosine * longitude.cosine, latitude.cosine * longitude.sine, latitude.sine};
}

double coneDepthOf(const EmitterCell& cell) {
    const double halfAngle = bounded(cell.emissionRange, 0.0, 2.0 * std::numbers::pi) / 2.0;
    return 1.0 - sineCosine(halfAngle).cosine;
}

CellPlan planOf(const EmitterCell& cell) {
    CellPlan plan;
    plan.birthRate = bounded(cell.birthRate, 0.0, largestRate);
    plan.lifetime = static_cast<float>(bounded(cell.lifetime, 0.0, largestTime));
    plan.velocity = bounded(cell.velocity);
    plan.velocityRange = bounded(cell.velocityRange);
    plan.yAcceleration = bounded(cell.yAcceleration);
    plan.axis = axisOf(cell);
    plan.coneDepth = coneDepthOf(cell);
    plan.scale = bounded(cell.scale);
    plan.scaleRange = bounded(cell.scaleRange);
    plan.scaleSpeed = boundedFloat(cell.scaleSpeed);
    plan.spin = boundedFloat(cell.spin);
    plan.color = {boundedFloat(cell.color.red), boundedFloat(cell.color.green), boundedFloat(cell.color.blue),
                  boundedFloat(cell.color.alpha)};
    plan.colorRange = {boundedFloat(cell.redRange), boundedFloat(cell.greenRange), boundedFloat(cell.blueRange), 0.0F};
    plan.colorSpeed = {boundedFloat(cell.redSpeed), boundedFloat(cell.greenSpeed), boundedFloat(cell.blueSpeed),
                       boundedFloat(cell.alphaSpeed)};
    plan.beginTime = bounded(cell.beginTime, 0.0, largestTime);
    plan.duration = bounded(cell.duration, 0.0, largestTime);
    plan.image = cell.contents;
    return plan;
}

/// Appends the cell and its descendants.
void append(EmitterPlan& plan, const EmitterCell& cell, int parent, int childSlot) {
    const int index = static_cast<int>(plan.cells.size());
    plan.cells.push_back(planOf(cell));
    plan.cells.back().parent = parent;
    plan.cells.back().childSlot = childSlot;
    if (parent >= 0) {
        plan.cells[static_cast<std::size_t>(parent)].children.push_back(index);
    }
    int slot = 0;
    for (const auto& child : cell.emitterCells) {
        append(plan, *child, index, slot++);
    }
}

bool same(const Vector3& a, const Vector3& b) {
    return a.x == b.x && a.y == b.y && a.z == b.z;
}

} // namespace

bool operator==(const CellPlan& a, const CellPlan& b) {
    return a.parent == b.parent && a.childSlot == b.childSlot && a.children == b.children &&
           a.birthRate == b.birthRate && a.lifetime == b.lifetime && a.velocity == b.velocity &&
           a.velocityRange == b.velocityRange && a.yAcceleration == b.yAcceleration && same(a.axis, b.axis) &&
           a.coneDepth == b.coneDepth && a.scale == b.scale && a.scaleRange == b.scaleRange &&
           a.scaleSpeed == b.scaleSpeed && a.spin == b.spin && a.color == b.color && a.colorRange == b.colorRange &&
           a.colorSpeed == b.colorSpeed && a.beginTime == b.beginTime && a.duration == b.duration &&
           a.birthsPerRound == b.birthsPerRound && a.image == b.image;
}

EmitterPlan EmitterPlan::of(const EmitterLayer& layer) {
    EmitterPlan plan;
    plan.emitterPosition = {bounded(layer.emitterPosition.x), bounded(layer.emitterPosition.y)};
    int slot = 0;
    for (const auto& cell : layer.emitterCells) {
        append(plan, *cell, -1, slot++);
    }
    return plan;
}

void EmitterPlan::repeatEvery(double seconds) {
    for (CellPlan& cell : cells) {
        if (cell.parent >= 0 || cell.birthRate == 0.0 || !(seconds > 0.0)) {
            continue;
        }
        const double births = std::clamp(std::round(cell.birthRate * seconds), 1.0, 1.0e15);
        cell.birthsPerRound = static_cast<std::uint64_t>(births);
        cell.birthRate = births / seconds;
    }
}

bool EmitterPlan::hasSameShapeAs(const EmitterPlan& other) const {
    return std::ranges::equal(cells, other.cells, [](const CellPlan& a, const CellPlan& b) {
        return a.parent == b.parent && a.childSlot == b.childSlot && a.children == b.children &&
               a.birthsPerRound == b.birthsPerRound;
    });
}

} // namespace starbloom
