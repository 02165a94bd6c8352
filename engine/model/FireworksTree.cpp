// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/model/FireworksTree.h"

#include <numbers>
#include <utility>

namespace starbloom {

namespace {

using CellPointer = std::unique_ptr<EmitterCell>;

CellPointer makeRocket() {
    auto rocket = std::make_unique<EmitterCell>();
    rocket->name = "rocket";
    rocket->birthRate = 0.5F;
    rocket->lifetime = 1.6F;
    rocket->velocity = 400.0;
    rocket->velocityRange = 100.0;
    rocket->yAcceleration = -250.0;
    rocket->emissionLongitude = std::numbers::pi / 2.0;
    rocket->emissionLatitude = 0.0;
    rocket->emissionRange = std::numbers::pi / 4.0;
    rocket->color = Color{0.5F, 0.5F, 0.5F, 1.0F};
    rocket->redRange = 0.5F;
    rocket->greenRange = 0.5F;
    rocket->blueRange = 0.5F;
    return rocket;
}

CellPointer makeTrail(const std::shared_ptr<const SparkImage>& image) {
    auto trail = std::make_unique<EmitterCell>();
    trail->contents = image;
    trail->birthRate = 45.0F;
    trail->lifetime = 1.5F;
    trail->velocity = 100.0;
    trail->yAcceleration = -350.0;
    trail->emissionLongitude = 2.0 * std::numbers::pi;
    trail->emissionRange = std::numbers::pi / 7.0;
    trail->scale = 0.4;
    trail->scaleRange = 0.1;
    trail->scaleSpeed = -0.1;
    trail->alphaSpeed = -0.7F;
    trail->beginTime = 0.01;
    trail->duration = 0.7;
    return trail;
}

CellPointer makeFirework(EmitterCell& rocket, const std::shared_ptr<const SparkImage>& image) {
    auto firework = std::make_unique<EmitterCell>();
    firework->name = "firework";
    firework->contents = image;
    firework->birthRate = 9999.0F;
    firework->lifetime = 2.0F;
    firework->velocity = 130.0;
    // Means the rocket, not the burst: the tree starts with rockets that are all equally fast, and stays so until the
    // sliders are applied for the first time.
    rocket.velocityRange = 0.0;
    firework->yAcceleration = -80.0;
    firework->emissionRange = 2.0 * std::numbers::pi;
    firework->scale = 0.6;
    firework->scaleSpeed = -0.1;
    firework->spin = 2.0;
    firework->alphaSpeed = -0.2F;
    firework->beginTime = 1.5;
    firework->duration = 0.1;
    return firework;
}

CellPointer makePreSpark(const EmitterCell& firework) {
    auto preSpark = std::make_unique<EmitterCell>();
    preSpark->name = "preSpark";
    preSpark->birthRate = 100.0F;
    preSpark->lifetime = 1.8F;
    preSpark->velocity = firework.velocity * 0.7;
    preSpark->yAcceleration = firework.yAcceleration * 0.85;
    preSpark->emissionRange = firework.emissionRange;
    preSpark->scale = 0.6;
    // The carrier itself is never drawn; it turns white at once so that its sparks are white in a burst of any colour.
    preSpark->redSpeed = 100.0F;
    preSpark->greenSpeed = 100.0F;
    preSpark->blueSpeed = 100.0F;
    preSpark->beginTime = firework.beginTime - 0.2;
    return preSpark;
}

CellPointer makeSpark(const std::shared_ptr<const SparkImage>& image) {
    auto spark = std::make_unique<EmitterCell>();
    spark->contents = image;
    spark->birthRate = 10.0F;
    spark->lifetime = 0.05F;
    spark->yAcceleration = -250.0;
    spark->beginTime = 0.8;
    return spark;
}

} // namespace

void buildFireworksTree(EmitterLayer& mortor, const std::shared_ptr<const SparkImage>& image) {
    auto rocket = makeRocket();
    auto trail = makeTrail(image);
    auto firework = makeFirework(*rocket, image);
    auto preSpark = makePreSpark(*firework);
    auto spark = makeSpark(image);

    preSpark->emitterCells.push_back(std::move(spark));
    rocket->emitterCells.push_back(std::move(trail));
    rocket->emitterCells.push_back(std::move(firework));
    rocket->emitterCells.push_back(std::move(preSpark));
    mortor.emitterCells.clear();
    mortor.emitterCells.push_back(std::move(rocket));
}

} // namespace starbloom
