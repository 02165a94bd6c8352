// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/DelayedCalls.h"
#include "engine/panel/FireworksController.h"
#include "persistence/files/Presets.h"
#include "persistence/stores/AppFolder.h"
#include "persistence/stores/Stores.h"
#include "shell/MainWindow.h"
#include "shell/SliderPanel.h"
#include "shell/StorePresets.h"
#include "shell/WindowPlace.h"
#include "views/StageView.h"

#include <cstdint>

namespace starbloom {

/// Owns the parts of the desktop application and wires them; the work is theirs. One lives for the whole run.
///
///     AppDelegate app(AppFolder(dataHome), calls, seed);
///     app.launch();
///     return QApplication::exec();
///
/// Needs a QApplication and the calls, which outlive it. Used on the GUI thread.
class AppDelegate {
public:
    /// Builds everything, shows nothing and touches no file. The clock is the stage's.
    AppDelegate(AppFolder folder, DelayedCalls& calls, std::uint64_t seed,
                StageView::ClockSource clock = StageView::steadyClock);

    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;

    void launch();

    const FireworksController& controller() const { return m_controller; }

    MainWindow& window() { return m_window; }

private:
    void openStores();
    void readStores();
    void connectSliders();
    void connectSwitches();
    void loadPresetOnceOnScreen();
    void showWindow();

    // In the order in which they are built. What is kept on disk comes first, the rest refers to it. The controller
    // keeps references to the panel and the stage and hands its layers to the stage at once; the window borrows both
    // widgets. Destroyed the other way round, the window gives the widgets back before they go, and nothing is left
    // that could reach the controller when it goes.
    AppFolder m_folder;
    Stores m_stores;
    SliderPanel m_panel;
    StageView m_stage;
    FireworksController m_controller;
    StorePresets m_presetStore;
    Presets m_presets;
    MainWindow m_window;
    WindowPlace m_windowPlace;
};

} // namespace starbloom
