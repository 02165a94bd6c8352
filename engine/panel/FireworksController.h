// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/Color.h"
#include "engine/model/EmitterLayer.h"
#include "engine/panel/ParameterPanel.h"
#include "engine/panel/Stage.h"

#include <array>
#include <memory>

namespace starbloom {

/// Builds the emitter tree and turns slider positions into values on it.
///
/// The tree is built once and never rebuilt; afterwards only its numbers change. The controller keeps references to a
/// panel and a stage that outlive it; either may be null: without a panel slidersMoved() and resetSliders() do nothing,
/// a missing stage reads as one of size 0 x 0. Used from one thread.
class FireworksController {
public:
    /// Builds the tree and hands it to the stage. A null image is no failure: nothing but the background shows.
    FireworksController(ParameterPanel* panel, Stage* stage, std::shared_ptr<const SparkImage> image);

    FireworksController(const FireworksController&) = delete;
    FireworksController& operator=(const FireworksController&) = delete;

    /// Applies all fourteen positions; the action of every slider. Ignored while the animation is off.
    void slidersMoved();

    /// Moves the sliders to their reset positions and applies them. Ignored while the animation is off.
    void resetSliders();

    /// Sets the rocket rate from a position on the rocket-birth slider's scale and leaves the slider alone.
    void setLaunchBirth(double position);

    /// Switches time on (at the speed slider's position) or off, which freezes every particle where it is.
    void setAnimation(bool on);

    void setBackgroundColor(const Color& color);

    /// Enables or disables the fourteen sliders in table order, and then the reset button.
    void setControls(bool enabled);

    bool off() const { return m_off; }

    /// The positions that the emitter has got last; sliders may have been moved since, while the animation was off.
    const std::array<float, parameterCount>& appliedPositions() const { return m_applied; }

    ParameterPanel* panel() const { return m_panel; }

    const RootLayer& rootLayer() const { return *m_rootLayer; }

    const EmitterLayer& mortor() const { return *m_mortor; }

private:
    void write(const ParameterWrite& write);
    void placeLaunchPoint();
    void notifyStage();

    ParameterPanel* m_panel;
    Stage* m_stage;
    std::shared_ptr<RootLayer> m_rootLayer;
    std::shared_ptr<EmitterLayer> m_mortor;
    std::array<float, parameterCount> m_applied{};
    bool m_off = false;
};

} // namespace starbloom
