// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/panel/ParameterPanel.h"

#include <algorithm>

namespace starbloom {

PositionPanel::PositionPanel() {
    std::ranges::transform(parameterTable, m_positions.begin(),
                           [](const ParameterRow& row) { return static_cast<float>(row.resetPosition); });
}

} // namespace starbloom
