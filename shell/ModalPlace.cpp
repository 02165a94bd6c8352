// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/ModalPlace.h"

#include <QDialog>
#include <QLayout>
#include <QScreen>

#include <algorithm>

namespace starbloom {

namespace {

/// Of the dialog's client rectangle below the main window's. Points.
constexpr int topDistance = 30;

/// The rectangle, moved by as little as brings it onto the screen; where it is too large its top left counts.
QRect onScreen(QRect rect, const QRect& screen) {
    rect.moveRight(std::min(rect.right(), screen.right()));
    rect.moveBottom(std::min(rect.bottom(), screen.bottom()));
    rect.moveLeft(std::max(rect.left(), screen.left()));
    rect.moveTop(std::max(rect.top(), screen.top()));
    return rect;
}

} // namespace

void placeBelowTop(QDialog& dialog, const QWidget& mainWindow) {
    dialog.ensurePolished();
    dialog.layout()->activate();
    if (!dialog.testAttribute(Qt::WA_Resized)) {
        dialog.resize(dialog.sizeHint());
    }
    const QRect main = mainWindow.geometry();
    const QRect centred({main.x() + (main.width() - dialog.width()) / 2, main.y() + topDistance}, dialog.size());
    // The title bar has to stay on the screen, too; the main window's is as high.
    const int titleBar = main.top() - mainWindow.frameGeometry().top();
    dialog.setGeometry(onScreen(centred, mainWindow.screen()->availableGeometry().adjusted(0, titleBar, 0, 0)));
}

} // namespace starbloom
