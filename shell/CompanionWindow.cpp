// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/CompanionWindow.h"

#include "shell/DesktopFrames.h"
#include "shell/ModalPlace.h"
#include "views/Texts.h"

#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>

namespace starbloom {

CompanionWindow::CompanionWindow(const CompanionKind& kind, QWidget& mainWindow, Stores& stores,
                                 WindowFrameMemory& memory, DelayedCalls& calls)
    : QWidget(&mainWindow, Qt::Tool)
    , m_kind(kind)
    , m_mainWindow(mainWindow)
    , m_stores(stores)
    , m_memory(memory)
    , m_keeper(*this, calls, [this](const Frame& frame) { saveFrame(frame); }) {
    setObjectName(QString::fromLatin1(kind.objectName));
}

void CompanionWindow::open() {
    if (m_memory.*m_kind.isOpen) {
        return;
    }
    emit opening();
    const Frame frame = (m_memory.*m_kind.openingFrame)(frameOf(m_mainWindow.geometry()));
    setGeometry(rectOf(reachable(frame, desktopScreens())));
    setWindowTitle(textOf(m_kind.titleKey));
    const bool asked = QApplication::activeWindow() != nullptr;
    showAnew(*this);
    if (asked) { // By somebody who works with the program, and not by the launch.
        raise();
        activateWindow();
    }
    m_memory.*m_kind.isOpen = true;
    m_keeper.follow();
    emit opened();
}

void CompanionWindow::saveFrame(const Frame& frame) {
    m_memory.*m_kind.remembered = frame;
    for (const auto& [key, value] : frameRows(m_kind.frameIndex, frame)) {
        m_stores.saveData0(value, key);
    }
}

bool CompanionWindow::isClosingKey(const QKeyEvent& key) const {
    return key.matches(QKeySequence::Close);
}

bool CompanionWindow::event(QEvent* event) {
    // While a tool window is active, the shortcuts of the window below it work as well, and would come first.
    if (event->type() == QEvent::ShortcutOverride && isClosingKey(*static_cast<QKeyEvent*>(event))) {
        event->accept();
        return true;
    }
    return QWidget::event(event);
}

void CompanionWindow::keyPressEvent(QKeyEvent* event) {
    if (isClosingKey(*event)) {
        close();
    } else {
        QWidget::keyPressEvent(event);
    }
}

void CompanionWindow::closeEvent(QCloseEvent* event) {
    QWidget::closeEvent(event);
    if (m_memory.*m_kind.isOpen) {
        m_memory.*m_kind.isOpen = false;
        m_memory.*m_kind.remembered = frameOf(geometry());
        emit closed();
    }
}

} // namespace starbloom
