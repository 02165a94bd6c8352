// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/WindowPlace.h"

#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

#include <cmath>

namespace starbloom {

namespace {

/// A drag reports a new place for every few pixels; only where it ends is worth a visit to the disk.
constexpr std::chrono::milliseconds restTime{400};

double desktopHeight() {
    const QScreen* primary = QGuiApplication::primaryScreen();
    return primary != nullptr ? primary->geometry().y() + primary->geometry().height() : 0.0;
}

Frame frameOf(const QRect& rect) {
    const Frame downward{static_cast<double>(rect.x()), static_cast<double>(rect.y()),
                         static_cast<double>(rect.width()), static_cast<double>(rect.height())};
    return flipped(downward, desktopHeight());
}

QRect rectOf(const Frame& frame) {
    const Frame downward = flipped(frame, desktopHeight());
    return {static_cast<int>(std::lround(downward.x)), static_cast<int>(std::lround(downward.y)),
            static_cast<int>(std::lround(downward.width)), static_cast<int>(std::lround(downward.height))};
}

} // namespace

std::vector<Screen> desktopScreens() {
    std::vector<Screen> screens;
    for (const QScreen* screen : QGuiApplication::screens()) {
        screens.push_back({frameOf(screen->geometry()), frameOf(screen->availableGeometry())});
    }
    return screens;
}

WindowPlace::WindowPlace(QWidget& window, Stores& stores, DelayedCalls& calls)
    : m_window(window)
    , m_stores(stores)
    , m_calls(calls) {}

void WindowPlace::restore(bool storeExists) {
    const auto isOn = [this](std::size_t position) { return m_stores.checkboxValue(position) == "1"; };
    const RestorePlan plan = restoreFrames(storeExists, m_stores.windowArray(), isOn(0), isOn(4));
    if (plan.main == RestorePlan::Main::Apply) {
        apply(reachable(plan.mainFrame, desktopScreens()));
        return;
    }
    centre();
    if (plan.main == RestorePlan::Main::CentreAndSave) {
        // By the event loop, where a store that fails is dealt with and does not end the launch.
        m_pendingSave = PendingCall(m_calls, std::chrono::milliseconds(0), [this] { saveWindowFrame(); });
    }
}

void WindowPlace::centre() {
    const QSize size = m_window.size();
    apply(centredFrame({static_cast<double>(size.width()), static_cast<double>(size.height())},
                       getScreensize(desktopScreens(), false)));
}

void WindowPlace::apply(const Frame& frame) {
    m_window.setGeometry(rectOf(frame));
}

void WindowPlace::follow() {
    m_known = m_window.geometry();
    m_window.installEventFilter(this);
}

void WindowPlace::saveWindowFrame() {
    m_known = m_window.geometry();
    for (const auto& [key, value] : frameRows(0, frameOf(m_known))) {
        m_stores.saveData0(value, key);
    }
}

void WindowPlace::saveIfMoved() {
    const bool freeStanding = !m_window.isMinimized() && !m_window.isMaximized() && !m_window.isFullScreen();
    if (freeStanding && m_window.geometry() != m_known) {
        saveWindowFrame();
    }
}

bool WindowPlace::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Move || event->type() == QEvent::Resize) {
        m_pendingSave = PendingCall(m_calls, restTime, [this] { saveIfMoved(); });
    } else if (event->type() == QEvent::Close) {
        m_pendingSave.cancel();
        saveIfMoved();
    }
    return QObject::eventFilter(watched, event);
}

} // namespace starbloom
