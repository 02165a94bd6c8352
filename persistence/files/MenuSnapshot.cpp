// SPDX-License-Identifier: GPL-3.0-or-later
#include "persistence/files/MenuSnapshot.h"

namespace starbloom {

void MenuSnapshot::saveMenuStatus() {
    std::array<bool, menuItemCount> enabled{};
    for (std::size_t i = 0; i < menuItemCount; ++i) {
        enabled[i] = m_items.isEnabled(static_cast<MenuItem>(i));
    }
    m_enabled = enabled;
    m_resting = true;
    // Only now: disabling one item may change what another one answers.
    for (std::size_t i = 0; i < menuItemCount; ++i) {
        m_items.setEnabled(static_cast<MenuItem>(i), false);
    }
}

void MenuSnapshot::loadMenuStatus() {
    m_resting = false;
    for (std::size_t i = 0; i < menuItemCount; ++i) {
        m_items.setEnabled(static_cast<MenuItem>(i), m_enabled && (*m_enabled)[i]);
    }
}

void MenuSnapshot::setEnabled(MenuItem item, bool enabled) {
    if (m_resting) {
        (*m_enabled)[static_cast<std::size_t>(item)] = enabled;
    } else {
        m_items.setEnabled(item, enabled);
    }
}

} // namespace starbloom
