// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/panel/ParameterTable.h"

#include <array>

namespace starbloom {

/// The fourteen sliders and the reset button, as FireworksController sees them. A window implements it with widgets, a
/// program without a screen and a test with plain numbers.
class ParameterPanel {
public:
    virtual ~ParameterPanel() = default;

    virtual float position(Parameter parameter) const = 0;

    /// Moves a slider without reporting a move by the user.
    virtual void setPosition(Parameter parameter, float position) = 0;

    virtual void setEnabled(Parameter parameter, bool enabled) = 0;
    virtual void setResetEnabled(bool enabled) = 0;
};

/// A panel without a screen: fourteen numbers, at their reset positions at first. Nothing can be disabled here.
class PositionPanel final : public ParameterPanel {
public:
    PositionPanel();

    float position(Parameter parameter) const override { return m_positions[static_cast<std::size_t>(parameter)]; }

    void setPosition(Parameter parameter, float position) override {
        m_positions[static_cast<std::size_t>(parameter)] = position;
    }

    void setEnabled(Parameter, bool) override {}

    void setResetEnabled(bool) override {}

private:
    std::array<float, parameterCount> m_positions;
};

} // namespace starbloom
