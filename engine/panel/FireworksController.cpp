// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/panel/FireworksController.h"

#include "engine/model/FireworksTree.h"

namespace starbloom {

FireworksController::FireworksController(ParameterPanel* panel, Stage* stage, std::shared_ptr<const SparkImage> image)
    : m_panel(panel)
    , m_stage(stage)
    , m_rootLayer(std::make_shared<RootLayer>())
    , m_mortor(std::make_shared<EmitterLayer>()) {
    m_rootLayer->bounds = defaultStageSize;
    m_rootLayer->backgroundColor = Color{0.0F, 0.0F, 0.0F, 1.0F};
    m_mortor->emitterPosition = {320.0, 0.0};
    m_mortor->renderMode = RenderMode::Additive;
    buildFireworksTree(*m_mortor, image);
    m_rootLayer->sublayers.push_back(m_mortor);
    if (m_stage != nullptr) {
        m_stage->setRootLayer(m_rootLayer);
    }
}

void FireworksController::slidersMoved() {
    if (m_off || m_panel == nullptr) {
        return;
    }
    for (const auto& each : writesBeforeLaunchPoint()) {
        write(each);
    }
    placeLaunchPoint();
    for (const auto& each : writesAfterLaunchPoint()) {
        write(each);
    }
    m_mortor->speed = layerSpeed(m_panel->position(Parameter::AnimateSpeed));
    for (const auto& each : parameterTable) {
        m_applied[static_cast<std::size_t>(each.parameter)] = m_panel->position(each.parameter);
    }
    notifyStage();
}

void FireworksController::resetSliders() {
    if (m_off || m_panel == nullptr) {
        return;
    }
    for (const auto& each : parameterTable) {
        m_panel->setPosition(each.parameter, static_cast<float>(each.resetPosition));
    }
    slidersMoved();
}

void FireworksController::setLaunchBirth(double position) {
    m_mortor->setValue(launchBirthRate(position), "emitterCells.rocket.birthRate");
    notifyStage();
}

void FireworksController::setAnimation(bool on) {
    m_off = !on;
    if (!on) {
        m_mortor->speed = 0.0F;
    } else if (m_panel != nullptr) {
        const float speed = m_panel->position(Parameter::AnimateSpeed);
        m_mortor->speed = layerSpeed(speed);
        m_applied[static_cast<std::size_t>(Parameter::AnimateSpeed)] = speed;
    }
    notifyStage();
}

void FireworksController::setBackgroundColor(const Color& color) {
    m_rootLayer->backgroundColor = color;
    notifyStage();
}

void FireworksController::setControls(bool enabled) {
    if (m_panel == nullptr) {
        return;
    }
    for (const auto& each : parameterTable) {
        m_panel->setEnabled(each.parameter, enabled);
    }
    m_panel->setResetEnabled(enabled);
}

void FireworksController::write(const ParameterWrite& write) {
    m_mortor->setValue(static_cast<double>(write.formula(m_panel->position(write.parameter))), write.keyPath);
}

void FireworksController::placeLaunchPoint() {
    const Size size = m_stage != nullptr ? m_stage->size() : Size{};
    const auto s = static_cast<double>(m_panel->position(Parameter::RocketHeight));
    m_mortor->emitterPosition = {size.width / 2.0, size.height * s * 0.1 - size.height * 0.5};
}

void FireworksController::notifyStage() {
    if (m_stage != nullptr) {
        m_stage->layerChanged();
    }
}

} // namespace starbloom
