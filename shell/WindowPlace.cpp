// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/WindowPlace.h"

#include "shell/DesktopFrames.h"

#include <QWidget>

#include <utility>

namespace starbloom {

WindowPlace::WindowPlace(QWidget& window, Stores& stores, WindowFrameMemory& memory, DelayedCalls& calls)
    : m_window(window)
    , m_stores(stores)
    , m_memory(memory)
    , m_keeper(window, calls, [this](const Frame& frame) { saveWindowFrame(frame); }) {}

void WindowPlace::restore(bool storeExists) {
    const auto isOn = [this](std::size_t position) { return m_stores.checkboxValue(position) == "1"; };
    const RestorePlan plan = restoreFrames(storeExists, m_stores.windowArray(), isOn(0), isOn(4));
    if (plan.sidebarFrame) {
        m_memory.sidebar = *plan.sidebarFrame;
    }
    if (plan.main == RestorePlan::Main::Apply) {
        m_window.setGeometry(rectOf(reachable(plan.mainFrame, desktopScreens())));
        return;
    }
    centre();
    if (plan.main == RestorePlan::Main::CentreAndSave) {
        m_saveIsDue = true;
    }
}

void WindowPlace::follow() {
    m_keeper.follow();
    if (std::exchange(m_saveIsDue, false)) {
        m_keeper.saveSoon();
    }
}

void WindowPlace::centre() {
    const QSize size = m_window.size();
    m_window.setGeometry(rectOf(centredFrame({static_cast<double>(size.width()), static_cast<double>(size.height())},
                                             getScreensize(desktopScreens(), false))));
}

void WindowPlace::saveWindowFrame(const Frame& frame) {
    for (const auto& [key, value] : frameRows(0, frame)) {
        m_stores.saveData0(value, key);
    }
}

} // namespace starbloom
