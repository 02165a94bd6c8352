// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/DelayedCalls.h"
#include "engine/panel/FireworksController.h"
#include "persistence/files/FilePanel.h"
#include "persistence/files/MenuSnapshot.h"
#include "persistence/files/Presets.h"
#include "persistence/files/WindowFrames.h"
#include "persistence/stores/AppFolder.h"
#include "persistence/stores/Stores.h"
#include "shell/BackgroundWell.h"
#include "shell/ExportFolder.h"
#include "shell/ExportGate.h"
#include "shell/ExportWindow.h"
#include "shell/FileManager.h"
#include "shell/MainWindow.h"
#include "shell/Menus.h"
#include "shell/MovieCommand.h"
#include "shell/MovieRescue.h"
#include "shell/MovieWindow.h"
#include "shell/PictureCommand.h"
#include "shell/SettingsSidebar.h"
#include "shell/SliderPanel.h"
#include "shell/StorePresets.h"
#include "shell/Toolbar.h"
#include "shell/WindowPlace.h"
#include "views/ResultLine.h"
#include "views/StageView.h"

#include <cstdint>
#include <memory>

namespace starbloom {

class PreferencesWindow;

/// What the application has from outside: time, the desktop's answers, the show's seed. All that is referred to
/// outlives the application.
struct Surroundings {
    DelayedCalls& calls;
    FilePanel& filePanel;
    const DocumentsFolder& documents;
    FileManager& fileManager;
    Encoders& encoders;
    std::uint64_t seed;
    StageView::ClockSource clock = StageView::steadyClock; ///< The stage's.
};

/// Owns the parts of the desktop application and wires them; the work is theirs. One lives for the whole run.
///
///     AppDelegate app(AppFolder(dataHome), {calls, filePanel, documents, fileManager, encoders, seed});
///     app.launch();
///     return QApplication::exec();
///
/// Needs a QApplication. Used on the GUI thread.
class AppDelegate {
public:
    /// Builds everything, shows nothing and touches no file.
    AppDelegate(AppFolder folder, const Surroundings& surroundings);
    ~AppDelegate();

    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;

    /// Brings the application up: reads the stores, shows the window, applies what was kept. Call once.
    void launch();

    /// Opens the preferences, which are made at the first time.
    void openPreferences();

    /// Exports a picture of this moment, with the settings as they are in the export window.
    void savePicture();

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
    void connectExports();
    void connectMovies();
    std::optional<std::filesystem::path> movieFolder() const;
    ResultLine::LinkTo linkToFolder(const std::filesystem::path& file) const;
    void showMovie(const QString& message, const std::filesystem::path& file);
    ShowNote showNote(const StageView::Capture& capture) const;
    void toolOnoffT1Changed();
    void sidebarIsOpen(bool open);
    void closeCompanions();
    bool isSwitchOn(int number) const;

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
    BackgroundWell m_backgroundWell;
    ExportFolder m_exportFolder;
    ExportWindow m_exportWindow;
    ExportGate m_exportGate;
    PictureCommand m_pictureCommand;
    MovieWindow m_movieWindow;
    MovieCommand m_movieCommand;
    MovieRescue m_movieRescue;
    std::unique_ptr<PreferencesWindow> m_preferences; ///< Nothing until it is opened for the first time.
};

} // namespace starbloom
