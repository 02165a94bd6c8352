// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>
#include <string_view>

class QWidget;

namespace starbloom {

/// Which text a window, or a control in it, is titled with.
struct ControlTitle {
    std::string_view control; ///< Object name.
    std::string_view key;     ///< Key in the string tables.
    int page = -1;            ///< The page of a tab view, counted from 0; -1 for everything else.
};

/// The titles of all windows' controls, in the order in which they are set.
std::span<const ControlTitle> controlTitles();

/// Gives the window and the controls in it their titles; whatever the window does not have is passed over. Windows,
/// boxes, buttons, check boxes, labels, tabs and commands can have one, asking for another kind's asserts.
void setControlTitles(QWidget& window);

} // namespace starbloom
