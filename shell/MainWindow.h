// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/DelayedCalls.h"

#include <QMainWindow>

#include <memory>

class QShortcut;

namespace Ui {
class MainWindow;
}

namespace starbloom {

class DropView;
class Menus;
class ResultLine;
class StageRoom;
class StageView;
class Toolbar;

/// The window: menus and toolbar, the stage below them, and under it a line with what was done last.
///
/// Its size is the stage's and a fixed border around it: 82 points for menus and toolbar, 5 at the left, right and
/// bottom of the stage, 22 for the line. Without its toolbar the window stays as large, and the stage takes the room.
/// In full screen only the stage is left, Escape leads back.
/// A stage that was asked to be larger than the window can be is scrolled over, see StageRoom.
///
/// Borrows the stage: it is a child of the window while that lives and is handed back, without a parent, when it is
/// destroyed; it must outlive the window. Lives on the GUI thread.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    /// What the window has beside the stage, in points.
    static constexpr QSize border{10, 109};

    MainWindow(StageView& stage, DelayedCalls& calls);
    ~MainWindow() override;

    /// Gives the window the size at which the stage has its default one, or what fits on the screen.
    void takeInitialSize();

    /// Gives the stage this size, and the window the size that it then has, or what the desktop grants; its top edge
    /// stays where it is.
    void setFireworksViewSize(const QSize& stage);

    Menus& menus() const { return *m_menus; }

    Toolbar& toolbar() const { return *m_toolbar; }

    ResultLine& resultLine() const;

    /// The well for picture files, at the right end of the line.
    DropView& dropView() const;

signals:
    /// The window closes; its companions are to be closed, too.
    void closing();

protected:
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void connectWindowCommands();
    QSize windowSizeFor(const QSize& stage) const;
    void showFullScreen(bool full);
    void showZoomed(bool zoomed);
    void showToolbar(bool visible);
    void followWindowState();

    std::unique_ptr<Ui::MainWindow> m_ui;
    StageView& m_stage;
    StageRoom* m_stageRoom;
    Menus* m_menus;
    Toolbar* m_toolbar;
    QShortcut* m_leaveFullScreen;
};

} // namespace starbloom
