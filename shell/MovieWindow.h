// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/DelayedCalls.h"
#include "export/movie/MovieSettings.h"
#include "persistence/files/MenuSnapshot.h"
#include "persistence/stores/Stores.h"

#include <QDialog>

#include <functional>
#include <memory>

namespace Ui {
class MovieWindow;
}

namespace starbloom {

class FireworksController;
class SliderPanel;

/// What is chosen before a movie is recorded: rate, length, fade-in.
///
/// Modal to the application, without an event loop of its own. While it is open the sliders and the preset's buttons
/// rest, and the show has the launch rate that the movie will begin with. Closing gives all of it back; after Create it
/// is the recording's to give back. The controls are made when the window is opened for the first time. What it refers
/// to must outlive it. GUI thread.
class MovieWindow final : public QDialog {
    Q_OBJECT

public:
    struct Show {
        FireworksController& controller;
        SliderPanel& panel;
        std::function<QSize()> stageSize; ///< Points.
    };

    MovieWindow(Show show, Stores& stores, MenuSnapshot& menus, DelayedCalls& calls, QWidget& mainWindow);
    ~MovieWindow() override;

    /// Does nothing while the window is open.
    void openMovieSettings();

    bool isMakeMovieOpen() const { return m_open; }

    /// The choices as they are shown.
    MovieSettings settings() const;

    /// The rocket-birth slider's position when the window was opened.
    double birthRate() const { return m_birthRate; }

    /// The estimate of memory as a sentence.
    QString makeMemoryString() const;

    /// Hides the window and leaves sliders, buttons, menus and launch rate as they are: the recording takes over.
    void handOver();

    /// Gives sliders, buttons, menus and launch rate back.
    void giveBack();

    void load4Clicked();
    void save4Clicked();
    void close4Clicked();

    /// As the cancel button.
    void reject() override;

signals:
    /// It is about to be shown; the show still has its own launch rate.
    void opening();

    /// The user wants the movie. The window stays open until handOver().
    void createClicked();

private:
    void makeControls();
    void loadMovieSettings();
    void saveMovieSettings2();
    void fadein4Selected();
    void showFadeIn();
    void validateCreate();
    void showMemory();

    Show m_show;
    Stores& m_stores;
    MenuSnapshot& m_menus;
    DelayedCalls& m_calls;
    QWidget& m_mainWindow;
    std::unique_ptr<Ui::MovieWindow> m_ui; ///< Nothing until the window is opened.
    double m_birthRate = 0.0;
    bool m_open = false;
    PendingCall m_pendingEnable;
};

} // namespace starbloom
