// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/engine/Scenes.h"

#include "engine/model/FireworksTree.h"

#include <algorithm>
#include <bit>

namespace starbloom {

namespace {

class FixedStage final : public Stage {
public:
    Size size() const override { return defaultStageSize; }

    void setRootLayer(std::shared_ptr<const RootLayer>) override {}

    void layerChanged() override {}
};

/// A bell (1 - d^2)^3 of a radius in pixels: smooth, and plain arithmetic alone, so the same on every machine.
std::shared_ptr<const SparkImage> bell(double centreX, double centreY, double radius) {
    SparkImage image{48, 48, 4.0, {}};
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x) {
            const double dx = (x + 0.5 - centreX) / radius;
            const double dy = (y + 0.5 - centreY) / radius;
            const double rest = std::max(1.0 - (dx * dx + dy * dy), 0.0);
            image.light.push_back(static_cast<float>(rest * rest * rest));
        }
    }
    return std::make_shared<SparkImage>(std::move(image));
}

} // namespace

std::shared_ptr<const SparkImage> softSpark() {
    static const auto image = bell(24.0, 24.0, 24.0);
    return image;
}

std::shared_ptr<const SparkImage> lopsidedSpark() {
    static const auto image = bell(36.0, 28.0, 12.0);
    return image;
}

EmitterPlan panelPlan(const std::function<void(PositionPanel&)>& change) {
    PositionPanel panel;
    FixedStage stage;
    FireworksController controller(&panel, &stage, softSpark());
    if (change) {
        change(panel);
    }
    controller.slidersMoved();
    return EmitterPlan::of(controller.mortor());
}

EmitterPlan treePlan(const std::function<void(EmitterLayer&)>& change) {
    EmitterLayer layer;
    layer.emitterPosition = {320.0, 0.0};
    buildFireworksTree(layer, softSpark());
    if (change) {
        change(layer);
    }
    return EmitterPlan::of(layer);
}

std::vector<SparkBits> sparkSet(const Simulation& simulation) {
    std::vector<SparkBits> set;
    const auto bits = [](float value) { return std::uint64_t{std::bit_cast<std::uint32_t>(value)}; };
    for (const SparkBatch& batch : simulation.sparks()) {
        for (std::size_t i = 0; i < batch.size(); ++i) {
            if (const auto state = batch.stateAt(i, simulation.time())) {
                set.push_back({static_cast<std::uint64_t>(batch.law().cell),
                               std::bit_cast<std::uint64_t>(batch.time[i]), bits(state->age), bits(state->x),
                               bits(state->y), bits(state->scale), bits(state->rotation), bits(state->color.red),
                               bits(state->color.green), bits(state->color.blue), bits(state->color.alpha)});
            }
        }
    }
    std::ranges::sort(set);
    return set;
}

std::uint64_t hashOf(std::span<const std::byte> bytes) {
    std::uint64_t hash = 0xCBF29CE484222325U;
    for (const std::byte byte : bytes) {
        hash = (hash ^ static_cast<std::uint64_t>(byte)) * 0x100000001B3U;
    }
    return hash;
}

} // namespace starbloom
