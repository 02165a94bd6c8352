// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/AppDelegate.h"

#include "export/picture/PngCodec.h"
#include "resources/Resources.h"

#include <QFile>
#include <QStandardPaths>

#include <utility>

namespace starbloom {

namespace {

/// The desktop's own answer.
class DesktopDocuments final : public DocumentsFolder {
public:
    std::filesystem::path documentsFolder() const override {
        return QFile::encodeName(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation)).toStdString();
    }
};

} // namespace

AppDelegate::AppDelegate(AppFolder folder, DelayedCalls& calls, std::uint64_t seed, StageView::ClockSource clock)
    : m_folder(std::move(folder))
    , m_stores(m_folder)
    , m_stage(seed, std::move(clock))
    , m_controller(&m_panel, &m_stage, sharedSparkImage(sparkPng()))
    , m_presetStore(m_stores)
    , m_presets(m_panel, m_presetStore, calls,
                {[this] { m_controller.slidersMoved(); }, [this](bool enabled) { m_panel.setSaveEnabled(enabled); }})
    , m_window(m_stage, m_panel)
    , m_windowPlace(m_window, m_stores, calls) {}

void AppDelegate::launch() {
    openStores();
    m_window.takeInitialSize();
    readStores();
    connectSliders();
    connectSwitches();
    loadPresetOnceOnScreen();
    showWindow();
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
    m_stores.populateDB1(DesktopDocuments());
    // Frames that are there and cannot be read leave the window to the desktop; without a file it is centred.
    const bool exists = fileExists(m_folder.filePath0());
    if (m_stores.populateDB0() || !exists) {
        m_windowPlace.restore(exists);
    }
    m_stores.setMain();
}

void AppDelegate::connectSliders() {
    QObject::connect(&m_panel, &SliderPanel::moved, &m_window, [this] { m_controller.slidersMoved(); });
    QObject::connect(&m_panel, &SliderPanel::resetRequested, &m_window, [this] { m_controller.resetSliders(); });
    QObject::connect(&m_panel, &SliderPanel::loadRequested, &m_window, [this] { m_presets.loadSettings6(); });
    QObject::connect(&m_panel, &SliderPanel::saveRequested, &m_window, [this] { m_presets.saveSettings6a(); });
}

void AppDelegate::connectSwitches() {
    QObject::connect(&m_window, &MainWindow::resetRequested, &m_window, [this] { m_controller.resetSliders(); });
    QObject::connect(&m_window, &MainWindow::animationSwitched, &m_window,
                     [this](bool on) { m_controller.setAnimation(on); });
}

void AppDelegate::loadPresetOnceOnScreen() {
    // The launch point follows from the stage's size, which the desktop may decide when it shows the window.
    QObject::connect(&m_stage, &StageView::appeared, &m_window, [this] {
        m_presets.loadSettings6();
        m_windowPlace.follow();
    });
}

void AppDelegate::showWindow() {
    m_window.show();
}

} // namespace starbloom
