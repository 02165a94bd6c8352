// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMainWindow>

class QAction;
class QShortcut;

namespace starbloom {

class SliderPanel;
class StageView;

/// The window: the stage, beside it the sliders with the animation's switch, and a small menu.
///
/// Borrows the stage and the panel: they are its children while it lives and are handed back, without a parent, when it
/// is destroyed; both must outlive it. In full screen only the stage is left, Escape leads back. Lives on the GUI
/// thread.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    MainWindow(StageView& stage, SliderPanel& panel);
    ~MainWindow() override;

    /// Gives the window the size at which the stage has its default one, or what fits on the screen.
    void takeInitialSize();

signals:
    void animationSwitched(bool on);
    void resetRequested();

protected:
    void changeEvent(QEvent* event) override;

private:
    QAction* addCommand(const QString& text, const QString& name, const QKeySequence& shortcut);
    void makeCommands();
    void makeMenus();
    QWidget* makeSide();
    void showFullScreen(bool full);
    void followWindowState();

    StageView& m_stage;
    SliderPanel& m_panel;
    QAction* m_quit = nullptr;
    QAction* m_animation = nullptr;
    QAction* m_reset = nullptr;
    QAction* m_fullScreen = nullptr;
    QShortcut* m_leaveFullScreen = nullptr;
    QWidget* m_side = nullptr; ///< Everything beside the stage.
};

} // namespace starbloom
