// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/SettingsSidebar.h"

#include "shell/SliderPanel.h"
#include "views/ParameterSlider.h"

#include <QScrollArea>
#include <QVBoxLayout>

#include <string>

namespace starbloom {

namespace {

constexpr CompanionKind sidebarKind{
    .objectName = "settingsWindow",
    .titleKey = "settingsWindowTitle",
    .frameIndex = 1,
    .remembered = &WindowFrameMemory::sidebar,
    .isOpen = &WindowFrameMemory::isSidebarOpen,
    .openingFrame = &WindowFrameMemory::sidebarFrame,
};

} // namespace

SettingsSidebar::SettingsSidebar(SliderPanel& panel, QWidget& mainWindow, Stores& stores, WindowFrameMemory& memory,
                                 DelayedCalls& calls)
    : CompanionWindow(sidebarKind, mainWindow, stores, memory, calls)
    , m_panel(panel) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(&m_panel);
}

SettingsSidebar::~SettingsSidebar() {
    m_panel.setParent(nullptr);
}

void SettingsSidebar::openSettings() {
    m_panel.fill();
    open();
}

void SettingsSidebar::showSlider(const ParameterRow& row) {
    openSettings();
    raise();
    activateWindow();
    const auto name = QString::fromStdString(std::string(row.name));
    if (auto* slider = m_panel.findChild<ParameterSlider*>(name)) {
        slider->setFocus();
        setAttribute(Qt::WA_KeyboardFocusChange); // Shows which one has the focus.
        m_panel.findChild<QScrollArea*>()->ensureWidgetVisible(slider);
    }
}

} // namespace starbloom
