// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/ModalPlace.h"

#include <QApplication>
#include <QDialog>
#include <QLayout>
#include <QScreen>
#include <QWidget>

#include <algorithm>

namespace starbloom {

namespace {

/// The rectangle, moved by as little as brings it onto the screen; where it is too large its top left counts.
QRect onScreen(QRect rect, const QRect& screen) {
    rect.moveRight(std::min(rect.right(), screen.right()));
    rect.moveBottom(std::min(rect.bottom(), screen.bottom()));
    rect.moveLeft(std::max(rect.left(), screen.left()));
    rect.moveTop(std::max(rect.top(), screen.top()));
    return rect;
}

} // namespace

void placeBelowTop(QWidget& window, const QWidget& mainWindow, int distance) {
    window.ensurePolished();
    window.layout()->activate();
    if (!window.testAttribute(Qt::WA_Resized)) {
        window.resize(window.sizeHint());
    }
    const QRect main = mainWindow.geometry();
    const QRect centred({main.x() + (main.width() - window.width()) / 2, main.y() + distance}, window.size());
    // The title bar has to stay on the screen, too; the main window's is as high.
    const int titleBar = main.top() - mainWindow.frameGeometry().top();
    window.setGeometry(onScreen(centred, mainWindow.screen()->availableGeometry().adjusted(0, titleBar, 0, 0)));
}

void bringBack(QWidget& window) {
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
}

void showAnew(QWidget& window) {
    for (const QWidget* each = window.parentWidget(); each != nullptr; each = each->window()->parentWidget()) {
        bringBack(*each->window());
    }
    bringBack(window);
    window.show();
}

void openModal(QDialog& dialog) {
    dialog.setWindowModality(Qt::ApplicationModal);
    showAnew(dialog);
}

void openModalUnasked(QDialog& dialog) {
    dialog.setWindowModality(Qt::ApplicationModal);
    dialog.show();
    if (QWidget* const parent = dialog.parentWidget(); parent != nullptr && parent->window()->isMinimized()) {
        QApplication::alert(parent->window());
    }
}

} // namespace starbloom
