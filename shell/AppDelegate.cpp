// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/AppDelegate.h"

#include "export/picture/PngCodec.h"
#include "resources/Resources.h"

#include <memory>
#include <utility>

namespace starbloom {

namespace {

/// Without its picture the program runs on, with a stage that shows its background; nobody is told.
std::shared_ptr<const SparkImage> loadSparkImage() {
    auto image = decodeSparkImage(sparkPng());
    return image ? std::make_shared<const SparkImage>(std::move(image).value()) : nullptr;
}

} // namespace

AppDelegate::AppDelegate(std::uint64_t seed, StageView::ClockSource clock)
    : m_stage(seed, std::move(clock))
    , m_controller(&m_panel, &m_stage, loadSparkImage())
    , m_window(m_stage, m_panel) {}

void AppDelegate::launch() {
    connectSliders();
    connectSwitches();
    applySlidersOnceOnScreen();
    showWindow();
}

void AppDelegate::connectSliders() {
    QObject::connect(&m_panel, &SliderPanel::moved, &m_window, [this] { m_controller.slidersMoved(); });
    QObject::connect(&m_panel, &SliderPanel::resetRequested, &m_window, [this] { m_controller.resetSliders(); });
}

void AppDelegate::connectSwitches() {
    QObject::connect(&m_window, &MainWindow::resetRequested, &m_window, [this] { m_controller.resetSliders(); });
    QObject::connect(&m_window, &MainWindow::animationSwitched, &m_window,
                     [this](bool on) { m_controller.setAnimation(on); });
}

void AppDelegate::applySlidersOnceOnScreen() {
    // The launch point follows from the stage's size, which the desktop may decide when it shows the window.
    QObject::connect(&m_stage, &StageView::appeared, &m_window, [this] { m_controller.slidersMoved(); });
}

void AppDelegate::showWindow() {
    m_window.takeInitialSize();
    m_window.show();
}

} // namespace starbloom
