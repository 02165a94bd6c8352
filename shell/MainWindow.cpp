// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/MainWindow.h"

#include "engine/model/FireworksTree.h"
#include "shell/Menus.h"
#include "shell/StageRoom.h"
#include "shell/StageSizeFields.h"
#include "shell/Toolbar.h"
#include "ui_MainWindow.h"
#include "views/DropView.h"
#include "views/StageView.h"
#include "views/backgrounds/BackgroundViews.h"

#include <QAction>
#include <QCloseEvent>
#include <QScreen>
#include <QShortcut>

namespace starbloom {

namespace {

/// Of menus and toolbar. Points.
constexpr int chromeHeight = 82;

constexpr QSize defaultStage{static_cast<int>(defaultStageSize.width), static_cast<int>(defaultStageSize.height)};

} // namespace

MainWindow::MainWindow(StageView& stage, DelayedCalls& calls)
    : m_ui(std::make_unique<Ui::MainWindow>())
    , m_stage(stage) {
    m_ui->setupUi(this);
    m_ui->stageScroll->setViewport(new BackgroundView5); // Seen beside a stage that does not fill the window.
    m_ui->stageScroll->setAccessibleName(m_stage.accessibleName()); // It has the focus when there is what to scroll.
    m_stageRoom = new StageRoom(*m_ui->stageScroll, m_stage, calls);
    m_stage.installEventFilter(this);
    setMinimumSize(StageView::minimumStage + border);
    m_menus = new Menus(*m_ui->menuBar, *this);
    m_toolbar = new Toolbar(*m_ui->toolBar, calls);
    m_leaveFullScreen = new QShortcut(Qt::Key_Escape, this);
    m_leaveFullScreen->setEnabled(false);
    connectWindowCommands();
}

MainWindow::~MainWindow() {
    m_stage.removeEventFilter(this);
    m_stage.setParent(nullptr);
}

ResultLine& MainWindow::resultLine() const {
    return *m_ui->resultLine;
}

DropView& MainWindow::dropView() const {
    return *m_ui->dropView;
}

void MainWindow::connectWindowCommands() {
    connect(&m_menus->action(Command::AppQuit), &QAction::triggered, this, &QWidget::close);
    connect(&m_menus->action(Command::WindowMinimize), &QAction::triggered, this, &QWidget::showMinimized);
    connect(&m_menus->action(Command::WindowZoom), &QAction::triggered, this, &MainWindow::showZoomed);
    m_menus->action(Command::ToolbarShow).setChecked(true);
    connect(&m_menus->action(Command::ToolbarShow), &QAction::triggered, this, &MainWindow::showToolbar);
    connect(&m_menus->action(Command::WindowFullscreen), &QAction::triggered, this, &MainWindow::showFullScreen);
    connect(m_leaveFullScreen, &QShortcut::activated, this, [this] { showFullScreen(false); });
    connect(&m_toolbar->sizeFields(), &StageSizeFields::sizeTyped, this, &MainWindow::setFireworksViewSize);
}

void MainWindow::takeInitialSize() {
    // What a window's frame takes is not known before it is shown; this leaves room for the usual ones.
    const QSize frame(16, 48);
    resize((defaultStage + border).boundedTo(screen()->availableSize() - frame));
}

void MainWindow::setFireworksViewSize(const QSize& stage) {
    if (isMaximized() || isFullScreen()) {
        showNormal(); // Else the desktop would go on deciding the size.
    }
    m_stageRoom->ask(stage);
    resize(windowSizeFor(stage));
    m_stageRoom->fit();
}

QSize MainWindow::windowSizeFor(const QSize& stage) const {
    // Edges that no screen shows could not be taken hold of.
    const QSize most = screen()->availableVirtualSize() - (frameGeometry().size() - size());
    const QSize bars = m_ui->stageScroll->barsSize();
    QSize wanted = stage + border;
    const bool sideways = wanted.width() > most.width();
    const bool vertical = wanted.height() > most.height();
    wanted += QSize(vertical ? bars.width() : 0, sideways ? bars.height() : 0); // One bar need not bring the other.
    return wanted.boundedTo(most);
}

void MainWindow::showFullScreen(bool full) {
    setWindowState(windowState().setFlag(Qt::WindowFullScreen, full));
}

void MainWindow::showZoomed(bool zoomed) {
    setWindowState(windowState().setFlag(Qt::WindowMaximized, zoomed));
}

void MainWindow::showToolbar(bool visible) {
    m_ui->toolBar->setVisible(visible);
    m_ui->chrome->setFixedHeight(visible ? chromeHeight : m_ui->menuBar->sizeHint().height());
}

void MainWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange) {
        followWindowState();
    }
}

void MainWindow::closeEvent(QCloseEvent* event) {
    QMainWindow::closeEvent(event);
    if (event->isAccepted()) {
        emit closing();
    }
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
    if (watched == &m_stage && event->type() == QEvent::Resize) {
        m_toolbar->sizeFields().showSize(static_cast<QResizeEvent*>(event)->size());
    }
    return QMainWindow::eventFilter(watched, event);
}

void MainWindow::followWindowState() {
    // From here and not from the command: the desktop has its own ways into full screen and out of it.
    const bool full = isFullScreen();
    m_menus->action(Command::WindowFullscreen).setChecked(full);
    m_menus->action(Command::WindowZoom).setChecked(isMaximized());
    m_menus->action(Command::WindowZoom).setEnabled(!full); // There is nothing larger.
    m_leaveFullScreen->setEnabled(full);
    m_ui->chrome->setVisible(!full);
    m_ui->bottomBorder->setVisible(!full);
    const int side = (border.width()) / 2;
    m_stageRoom->setFullScreen(full);
    m_ui->stageLayout->setContentsMargins(full ? QMargins() : QMargins(side, 0, side, side));
}

} // namespace starbloom
