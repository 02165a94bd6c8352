// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/panel/ParameterTable.h"
#include "shell/CompanionWindow.h"

namespace starbloom {

class SliderPanel;

/// The window with the fourteen sliders, beside the main window.
///
/// Borrows the panel, which is its child while it lives and is handed back at the end.
class SettingsSidebar final : public CompanionWindow {
    Q_OBJECT

public:
    SettingsSidebar(SliderPanel& panel, QWidget& mainWindow, Stores& stores, WindowFrameMemory& memory,
                    DelayedCalls& calls);
    ~SettingsSidebar() override;

    /// Shows the window where it was, or else at its place by the main window. Does nothing while it is open.
    void openSettings();

    /// Opens the window if need be, and hands the keyboard to one of its sliders.
    void showSlider(const ParameterRow& row);

private:
    SliderPanel& m_panel;
};

} // namespace starbloom
