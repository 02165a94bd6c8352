// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/SettingsSidebar.h"

#include "shell/DesktopFrames.h"
#include "shell/SliderPanel.h"

#include <QCloseEvent>
#include <QShortcut>
#include <QVBoxLayout>

namespace starbloom {

SettingsSidebar::SettingsSidebar(SliderPanel& panel, QWidget& mainWindow, Stores& stores, WindowFrameMemory& memory,
                                 DelayedCalls& calls)
    // A tool of the main window: above it, and gone with it.
    : QWidget(&mainWindow, Qt::Tool)
    , m_panel(panel)
    , m_mainWindow(mainWindow)
    , m_stores(stores)
    , m_memory(memory)
    , m_keeper(*this, calls, [this](const Frame& frame) { sidebarSaveFrame(frame); }) {
    setObjectName(QStringLiteral("settingsWindow"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(&m_panel);
    auto* shut = new QShortcut(QKeySequence::Close, this);
    connect(shut, &QShortcut::activated, this, &QWidget::close);
}

SettingsSidebar::~SettingsSidebar() {
    m_panel.setParent(nullptr);
}

void SettingsSidebar::openSettings() {
    if (m_memory.isSidebarOpen) {
        return;
    }
    emit opening();
    setGeometry(rectOf(reachable(m_memory.sidebarFrame(frameOf(m_mainWindow.geometry())), desktopScreens())));
    setWindowTitle(qtTrId("settingsWindowTitle"));
    show();
    m_memory.isSidebarOpen = true;
    m_keeper.follow();
    emit opened();
}

void SettingsSidebar::sidebarSaveFrame(const Frame& frame) {
    m_memory.sidebar = frame;
    for (const auto& [key, value] : frameRows(1, frame)) {
        m_stores.saveData0(value, key);
    }
}

void SettingsSidebar::closeEvent(QCloseEvent* event) {
    QWidget::closeEvent(event);
    if (m_memory.isSidebarOpen) {
        m_memory.isSidebarOpen = false;
        m_memory.sidebar = frameOf(geometry());
        emit closed();
    }
}

} // namespace starbloom
