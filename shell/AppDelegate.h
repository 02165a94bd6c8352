// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/panel/FireworksController.h"
#include "persistence/files/MenuSnapshot.h"
#include "persistence/files/Presets.h"
#include "persistence/files/WindowFrames.h"
#include "persistence/stores/AppFolder.h"
#include "persistence/stores/Stores.h"
#include "shell/BackgroundWell.h"
#include "shell/Companions.h"
#include "shell/Exports.h"
#include "shell/MainWindow.h"
#include "shell/MenuCommands.h"
#include "shell/OpenFile.h"
#include "shell/SettingsSidebar.h"
#include "shell/SliderPanel.h"
#include "shell/StorePresets.h"
#include "shell/Surroundings.h"
#include "shell/Toolbar.h"
#include "shell/WindowPlace.h"
#include "views/StageView.h"

#include <memory>

namespace starbloom {

class PreferencesWindow;

/// Owns the parts of the desktop application and wires them; the work is theirs. One lives for the whole run.
///
///     AppDelegate app(AppFolder(dataHome), {calls, filePanel, documents, fileManager, encoders, printSystem, seed});
///     app.launch();
///     return QApplication::exec();
///
/// Needs a QApplication. Used on the GUI thread.
class AppDelegate {
public:
    /// Builds everything, shows nothing and touches no file.
    AppDelegate(AppFolder folder, const Surroundings& surroundings);

    /// The same with stores that have been prepared. They lie in the folder.
    AppDelegate(AppFolder folder, Stores stores, const Surroundings& surroundings);
    ~AppDelegate();

    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;

    /// Brings the application up: reads the stores, shows the window, applies what was kept. Call once.
    void launch();

    /// Opens the preferences, which are made at the first time.
    void openPreferences();

    /// Ends the application as closing its window does; a movie that is being made is finished with what there is.
    void terminate();

    const FireworksController& controller() const { return m_controller; }

    MainWindow& window() { return m_window; }

    SettingsSidebar& sidebar() { return m_sidebar; }

private:
    // The steps of the launch, in their order.
    void screenOptions();
    void openStores();
    void readStores();
    void registerWindowObservers();
    void loadPresets();
    void followWindowOnceOnScreen();

    void connectSliders();
    void connectCommands();
    void connectSidebar();
    void toolOnoffT1Changed();
    void sidebarIsOpen(bool open);
    void closeCompanions();
    bool isSwitchOn(int number) const;

    // Commands that can be given and have no effect: the settings are saved and loaded in their own window.
    void saveSettings() {}

    void loadSettings() {}

    void defaultSettings() {}

    // In the order in which they are built. What is kept on disk comes first, the rest refers to it. The controller
    // keeps references to the panel and the stage and hands its layers to the stage at once; the windows borrow both
    // widgets. Destroyed the other way round, the windows give the widgets back before they go, and nothing is left
    // that could reach the controller when it goes.
    Surroundings m_surroundings;
    AppFolder m_folder;
    Stores m_stores;
    WindowFrameMemory m_frames;
    SliderPanel m_panel;
    StageView m_stage;
    FireworksController m_controller;
    StorePresets m_presetStore;
    Presets m_presets;
    MainWindow m_window;
    WindowPlace m_windowPlace;
    SettingsSidebar m_sidebar;
    MenuSnapshot m_menuSnapshot;
    MenuCommands m_menuCommands;
    OpenFile m_openFile;
    Companions m_companions;
    BackgroundWell m_backgroundWell;
    Exports m_exports;
    std::unique_ptr<PreferencesWindow> m_preferences; ///< Nothing until it is opened for the first time.
};

} // namespace starbloom
