// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/MainWindow.h"

#include "shell/SliderPanel.h"
#include "views/StageView.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QMenuBar>
#include <QScreen>
#include <QShortcut>
#include <QVBoxLayout>
#include <QWindowStateChangeEvent>

namespace starbloom {

MainWindow::MainWindow(StageView& stage, SliderPanel& panel)
    : m_stage(stage)
    , m_panel(panel) {
    setWindowTitle(QApplication::applicationDisplayName());
    makeCommands();
    makeMenus();
    m_side = makeSide();

    auto* content = new QWidget;
    auto* layout = new QHBoxLayout(content);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    layout->addWidget(&m_stage, 1);
    layout->addWidget(m_side);
    setCentralWidget(content);
}

MainWindow::~MainWindow() {
    m_stage.setParent(nullptr);
    m_panel.setParent(nullptr);
}

QAction* MainWindow::addCommand(const QString& text, const QString& name, const QKeySequence& shortcut) {
    auto* action = new QAction(text, this);
    action->setObjectName(name);
    action->setShortcut(shortcut);
    // Known to the window itself, so that shortcuts also work in full screen, where the menu bar is hidden.
    addAction(action);
    return action;
}

void MainWindow::makeCommands() {
    m_quit = addCommand(tr("&Quit"), QStringLiteral("quit"), QKeySequence(Qt::CTRL | Qt::Key_Q));
    connect(m_quit, &QAction::triggered, this, &QWidget::close);

    // The key that starts a presentation elsewhere. Space, the obvious one, belongs to whatever button has the focus.
    m_animation = addCommand(tr("&Animation"), QStringLiteral("animation"), Qt::Key_F5);
    m_animation->setCheckable(true);
    m_animation->setChecked(true);
    connect(m_animation, &QAction::toggled, this, &MainWindow::animationSwitched);

    m_reset = addCommand(tr("&Reset All Sliders"), QStringLiteral("reset"), QKeySequence(Qt::CTRL | Qt::Key_R));
    connect(m_reset, &QAction::triggered, this, &MainWindow::resetRequested);

    m_fullScreen = addCommand(tr("&Full Screen"), QStringLiteral("fullScreen"), Qt::Key_F11);
    m_fullScreen->setCheckable(true);
    connect(m_fullScreen, &QAction::triggered, this, &MainWindow::showFullScreen);

    m_leaveFullScreen = new QShortcut(Qt::Key_Escape, this);
    m_leaveFullScreen->setEnabled(false);
    connect(m_leaveFullScreen, &QShortcut::activated, this, [this] { showFullScreen(false); });
}

void MainWindow::makeMenus() {
    menuBar()->addMenu(tr("&File"))->addAction(m_quit);
    menuBar()->addMenu(tr("&Show"))->addActions({m_animation, m_reset});
    menuBar()->addMenu(tr("&View"))->addAction(m_fullScreen);
}

QWidget* MainWindow::makeSide() {
    auto* animation = new QCheckBox(tr("&Animation"));
    animation->setObjectName(QStringLiteral("animationSwitch"));
    animation->setToolTip(tr("Lets time run, or stops it: every spark stays where it is."));
    animation->setChecked(m_animation->isChecked());
    connect(animation, &QCheckBox::toggled, m_animation, &QAction::setChecked);
    connect(m_animation, &QAction::toggled, animation, &QCheckBox::setChecked);

    auto* side = new QWidget;
    auto* layout = new QVBoxLayout(side);
    QMargins margins = layout->contentsMargins();
    margins.setRight(0); // The panel has its own.
    layout->setContentsMargins(margins);
    layout->addWidget(animation);
    layout->addWidget(&m_panel, 1);
    return side;
}

void MainWindow::takeInitialSize() {
    ensurePolished();
    // What a window's frame takes is not known before it is shown; this leaves room for the usual ones.
    const QSize frame(16, 48);
    resize(sizeHint().boundedTo(screen()->availableSize() - frame));
}

void MainWindow::showFullScreen(bool full) {
    setWindowState(windowState().setFlag(Qt::WindowFullScreen, full));
}

void MainWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange) {
        followWindowState();
    }
}

void MainWindow::followWindowState() {
    // From here and not from the command: the desktop has its own ways into full screen and out of it.
    const bool full = isFullScreen();
    m_fullScreen->setChecked(full);
    m_leaveFullScreen->setEnabled(full);
    menuBar()->setVisible(!full);
    m_side->setVisible(!full);
}

} // namespace starbloom
