// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/AppDelegate.h"

#include "shell/Menus.h"
#include "shell/PreferencesWindow.h"
#include "shell/Spark.h"
#include "shell/StageSizeFields.h"
#include "views/DropView.h"
#include "views/ResultLine.h"
#include "views/SegmentedControl.h"
#include "views/SymbolIcon.h"

#include <QAction>
#include <QApplication>

#include <utility>

namespace starbloom {

AppDelegate::AppDelegate(AppFolder folder, const Surroundings& surroundings)
    : AppDelegate(folder, Stores(folder), surroundings) {}

AppDelegate::AppDelegate(AppFolder folder, Stores stores, const Surroundings& surroundings)
    : m_surroundings(surroundings)
    , m_folder(std::move(folder))
    , m_stores(std::move(stores))
    , m_stage(surroundings.seed, surroundings.clock)
    , m_controller(&m_panel, &m_stage, spark())
    , m_presetStore(m_stores)
    , m_presets(m_panel, m_presetStore, surroundings.calls,
                {[this] { m_controller.slidersMoved(); }, [this](bool enabled) { m_panel.setSaveEnabled(enabled); },
                 [this] { m_window.resultLine().showResult(qtTrId("settingsSavedResult")); }})
    , m_window(m_stage, surroundings.calls)
    , m_windowPlace(m_window, m_stores, m_frames, surroundings.calls)
    , m_sidebar(m_panel, m_window, m_stores, m_frames, surroundings.calls)
    , m_menuSnapshot(m_window.menus())
    , m_menuCommands(m_window, m_menuSnapshot, m_surroundings)
    , m_openFile(m_surroundings.filePanel, m_menuSnapshot, m_stores, m_surroundings.documents)
    , m_companions({m_window, m_sidebar, m_stores, m_frames, m_menuSnapshot}, m_surroundings)
    , m_backgroundWell(m_window.toolbar().colorWell(), m_folder.filePath6(), surroundings.calls,
                       [this](const Color& color) { m_controller.setBackgroundColor(color); })
    , m_exports({m_window, m_stage, m_controller, m_panel}, m_surroundings, m_folder, m_stores, m_menuSnapshot) {}

AppDelegate::~AppDelegate() = default;

void AppDelegate::launch() {
    screenOptions();
    m_window.menus().makeNSMenu();
    m_window.setWindowTitle(QApplication::applicationDisplayName());
    registerWindowObservers();
    m_window.toolbar().makeToolBar();
    m_window.toolbar().sizeFields().showSize(m_stage.rect().size());
    m_exports.loadSharedFolder();
    m_backgroundWell.showStoredColor();
    m_exports.loadSettings3();
    m_exports.validateImageExport();
    if (isSwitchOn(3)) {
        m_sidebar.openSettings();
    }
    loadPresets();
    m_panel.colourButtons();
}

void AppDelegate::screenOptions() {
    openStores();
    m_window.takeInitialSize();
    readStores();
    m_window.setVisible(true);
    m_companions.beginWithIntroduction(!isSwitchOn(2));
}

void AppDelegate::openStores() {
    m_folder.createAppFolder();
    m_stores.openCreateDB0();
    m_stores.openCreateDB1();
    m_stores.openCreateDB2();
}

void AppDelegate::readStores() {
    // The switches first: they decide what becomes of the window's saved place.
    m_stores.populateDB2();
    m_stores.populateDB1(m_surroundings.documents);
    // Frames that are there and cannot be read leave the window to the desktop; without a file it is centred.
    const bool exists = fileExists(m_folder.filePath0());
    if (m_stores.populateDB0() || !exists) {
        m_windowPlace.restore(exists);
    }
    m_stores.setMain();
}

void AppDelegate::registerWindowObservers() {
    connectSliders();
    connectCommands();
    connectSidebar();
    QObject::connect(&m_window, &MainWindow::closing, &m_window, [this] { closeCompanions(); });
    followWindowOnceOnScreen();
}

void AppDelegate::loadPresets() {
    m_presets.loadSettings6();
}

void AppDelegate::followWindowOnceOnScreen() {
    // The launch point follows from the stage's size, which the desktop may decide when it shows the window.
    QObject::connect(&m_stage, &StageView::appeared, &m_window, [this] {
        m_controller.slidersMoved();
        m_stage.restart(); // What is told of a picture holds from moment 0 on.
        m_windowPlace.follow();
        m_exports.offerRescue();
        // After the first frame: making the introduction, and drawing the icon in every size that desktops ask for,
        // takes longer than showing the window.
        QMetaObject::invokeMethod(
            &m_window,
            [this] {
                m_companions.mainWindowAppeared();
                QApplication::setWindowIcon(symbolIcon(u"starbloom"));
            },
            Qt::QueuedConnection);
    });
}

void AppDelegate::connectSliders() {
    QObject::connect(&m_panel, &SliderPanel::moved, &m_window, [this] { m_controller.slidersMoved(); });
    QObject::connect(&m_panel, &SliderPanel::resetRequested, &m_window, [this] { m_controller.resetSliders(); });
    QObject::connect(&m_panel, &SliderPanel::loadRequested, &m_window, [this] {
        m_presets.loadSettings6();
        m_window.resultLine().showResult(qtTrId("settingsLoadedResult"));
    });
    QObject::connect(&m_panel, &SliderPanel::saveRequested, &m_window, [this] { m_presets.saveSettings6a(); });
}

void AppDelegate::connectCommands() {
    const Menus& menus = m_window.menus();
    const Toolbar& toolbar = m_window.toolbar();
    const auto on = [this](const QAction& action, auto call) {
        QObject::connect(&action, &QAction::triggered, &m_window, call);
    };
    for (const QAction* action : {&menus.action(Command::AppPreferences), &toolbar.button(ToolItem::Preferences)}) {
        on(*action, [this] { openPreferences(); });
    }
    for (const QAction* action :
         {&menus.action(Command::WindowOpensettings), &toolbar.button(ToolItem::Showsettings)}) {
        on(*action, [this] { m_sidebar.openSettings(); });
    }
    on(menus.action(Command::FileOpen), [this] { m_openFile.openFile1(); });
    m_window.dropView().setReceiver(&m_openFile);
    on(menus.action(Command::EmitterReset), [this] { m_controller.resetSliders(); });
    on(menus.action(Command::AppSavesettings), [this] { saveSettings(); });
    on(menus.action(Command::AppLoadsettings), [this] { loadSettings(); });
    on(menus.action(Command::AppDefaultsettings), [this] { defaultSettings(); });
    m_window.menus().validateBy([this] { return m_preferences != nullptr && m_preferences->isPreferencesOpen(); });

    // One switch with two faces.
    QAction& animation = menus.action(Command::EmitterAnimation);
    SegmentedControl& onoff = toolbar.onoffControl();
    animation.setChecked(true);
    on(animation, [this, &onoff](bool checked) {
        onoff.setSelectedSegment(checked ? Toolbar::onSegment : Toolbar::offSegment);
        toolOnoffT1Changed();
    });
    QObject::connect(&onoff, &SegmentedControl::segmentSelected, &m_window, [this, &animation](int segment) {
        animation.setChecked(segment == Toolbar::onSegment);
        toolOnoffT1Changed();
    });
}

void AppDelegate::terminate() {
    m_exports.finishNow();
    m_window.close();
}

void AppDelegate::toolOnoffT1Changed() {
    m_controller.setAnimation(m_window.toolbar().onoffControl().selectedSegment() == Toolbar::onSegment);
    m_exports.validateImageExport();
}

void AppDelegate::connectSidebar() {
    QObject::connect(&m_sidebar, &SettingsSidebar::opening, &m_window, [this] {
        if (isSwitchOn(4)) {
            m_presets.loadSettings6();
        }
    });
    QObject::connect(&m_sidebar, &SettingsSidebar::opened, &m_window, [this] { sidebarIsOpen(true); });
    QObject::connect(&m_sidebar, &SettingsSidebar::closed, &m_window, [this] { sidebarIsOpen(false); });
}

void AppDelegate::sidebarIsOpen(bool open) {
    m_window.menus().action(Command::WindowOpensettings).setEnabled(!open);
    m_window.toolbar().editToolItem(ToolItem::Showsettings, open ? QStringLiteral("0") : QStringLiteral("1"));
}

void AppDelegate::openPreferences() {
    if (m_preferences == nullptr) {
        m_preferences = std::make_unique<PreferencesWindow>(m_stores, m_surroundings.documents, m_menuSnapshot,
                                                            m_surroundings.filePanel, m_window);
    }
    m_preferences->openPreferences();
}

void AppDelegate::closeCompanions() {
    m_backgroundWell.saveNow();
    m_companions.close();
}

bool AppDelegate::isSwitchOn(int number) const {
    return m_stores.checkboxValue(static_cast<std::size_t>(number - 1)) == "1";
}

} // namespace starbloom
