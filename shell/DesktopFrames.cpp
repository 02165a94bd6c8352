// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/DesktopFrames.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

#include <cmath>

namespace starbloom {

namespace {

double desktopHeight() {
    const QScreen* primary = QGuiApplication::primaryScreen();
    return primary != nullptr ? primary->geometry().y() + primary->geometry().height() : 0.0;
}

} // namespace

std::vector<Screen> desktopScreens() {
    std::vector<Screen> screens;
    for (const QScreen* screen : QGuiApplication::screens()) {
        screens.push_back({frameOf(screen->geometry()), frameOf(screen->availableGeometry())});
    }
    return screens;
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

bool liesFreely(const QWidget& window) {
    return !window.isMinimized() && !window.isMaximized() && !window.isFullScreen();
}

} // namespace starbloom
