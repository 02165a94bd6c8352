// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/panel/FireworksController.h"
#include "shell/MainWindow.h"
#include "shell/SliderPanel.h"
#include "views/StageView.h"

#include <cstdint>

namespace starbloom {

/// Owns the parts of the desktop application and wires them; the work is theirs. One lives for the whole run.
///
///     AppDelegate app(seed);
///     app.launch();
///     return QApplication::exec();
///
/// Needs a QApplication that outlives it. Used on the GUI thread.
class AppDelegate {
public:
    /// Builds everything, shows nothing. The clock is the stage's.
    explicit AppDelegate(std::uint64_t seed, StageView::ClockSource clock = StageView::steadyClock);

    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;

    void launch();

    const FireworksController& controller() const { return m_controller; }

    MainWindow& window() { return m_window; }

private:
    void connectSliders();
    void connectSwitches();
    void applySlidersOnceOnScreen();
    void showWindow();

    // In the order in which they are built: the controller keeps references to the panel and the stage and hands its
    // layers to the stage at once; the window borrows both widgets. Destroyed the other way round, the window gives the
    // widgets back before they go, and nothing is left that could reach the controller when it goes.
    SliderPanel m_panel;
    StageView m_stage;
    FireworksController m_controller;
    MainWindow m_window;
};

} // namespace starbloom
