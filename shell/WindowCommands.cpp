// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/WindowCommands.h"

#include "shell/Menus.h"
#include "shell/ModalPlace.h"

#include <QAction>
#include <QApplication>
#include <QEvent>

#include <utility>

namespace starbloom {

namespace {

/// The windows of the application that are open, be they minimized or not; what pops up is none.
QWidgetList openWindows() {
    QWidgetList windows;
    for (QWidget* each : QApplication::topLevelWidgets()) {
        const auto type = each->windowType();
        if (each->isVisible() && (type == Qt::Window || type == Qt::Dialog || type == Qt::Tool)) {
            windows.append(each);
        }
    }
    return windows;
}

} // namespace

WindowCommands::WindowCommands(Menus& menus, QWidget& mainWindow)
    : m_mainWindow(mainWindow) {
    const auto on = [&](Command command, auto call) {
        connect(&menus.action(command), &QAction::triggered, this, call);
    };
    on(Command::FileClose, &WindowCommands::close);
    on(Command::AppHideapp, &WindowCommands::hideApp);
    on(Command::AppShowall, &WindowCommands::showAll);
    on(Command::WindowBringfront, &WindowCommands::bringFront);
}

void WindowCommands::close() {
    QWidget* active = QApplication::activeWindow();
    (active != nullptr ? active : &m_mainWindow)->close();
}

void WindowCommands::hideApp() {
    for (QWidget* each : openWindows()) {
        // Desktops minimize a window's tools with it, and offer no way to bring one back alone.
        if (each->windowType() != Qt::Tool && !each->isMinimized()) {
            each->setWindowState(each->windowState() | Qt::WindowMinimized);
            each->installEventFilter(this);
            m_hidden.emplace_back(each);
        }
    }
}

bool WindowCommands::eventFilter(QObject* object, QEvent* event) {
    auto& window = static_cast<QWidget&>(*object);
    if (event->type() == QEvent::WindowStateChange && !window.isMinimized()) {
        for (const QPointer<QWidget>& each : std::exchange(m_hidden, {})) {
            if (each != nullptr) {
                each->removeEventFilter(this);
                bringBack(*each);
            }
        }
        window.raise();
        window.activateWindow();
    }
    return QObject::eventFilter(object, event);
}

void WindowCommands::showAll() {
    for (QWidget* each : openWindows()) {
        bringBack(*each);
    }
    bringFront();
}

void WindowCommands::bringFront() {
    for (QWidget* each : openWindows()) {
        if (!each->isMinimized()) {
            each->raise();
        }
    }
    // Its companions stay above it, and the keys go on working where they did.
    (QApplication::activeWindow() != nullptr ? QApplication::activeWindow() : &m_mainWindow)->activateWindow();
}

} // namespace starbloom
