// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/DelayedCalls.h"
#include "export/Encoders.h"
#include "export/movie/MovieRecorder.h"
#include "persistence/files/FilePanel.h"
#include "shell/MovieProgress.h"
#include "shell/SessionInhibitor.h"

#include <QObject>
#include <QTimer>

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

namespace starbloom {

class FireworksController;
class MovieWindow;
class StageView;

/// Makes movies: from the Create button on, over the panel for the file, the recording and the writing, until the
/// window is as it was.
///
/// Each recording owns its two timers and ends them. Frames come from the stage, one for each moment at which one is
/// due, not for each tick of a timer. While it records and writes, the desktop is asked not to fall asleep and not to
/// log out. What it refers to must outlive it. GUI thread.
class MovieCommand final : public QObject, private RecordingHost {
    Q_OBJECT

public:
    struct Tools {
        Encoders& encoders;
        FilePanel& filePanel;
        DelayedCalls& calls;
        std::function<std::chrono::nanoseconds()> clock;                   ///< The stage's.
        std::function<std::optional<std::filesystem::path>()> startFolder; ///< Of the panel.
        std::filesystem::path journal;                                     ///< See MovieRecovery.
    };

    MovieCommand(Tools tools, StageView& stage, FireworksController& controller, MovieWindow& settings,
                 QWidget& mainWindow);

    /// Gives a recording up.
    ~MovieCommand() override;

    /// The user wants the movie that the settings window describes.
    void exportMovie1();

    void abort5Clicked();

    /// The program has to end soon: makes a movie of what there is, and waits for it.
    void finishNow();

    /// From the panel for the file on until the window is as it was.
    bool isBusy() const { return m_busy; }

signals:
    /// A movie has been written. So many frames were missed; it may have ended early for want of memory.
    void saved(const WrittenMovie& movie, std::int64_t missed, bool ranOutOfMemory);

    /// It could not be; the sentence tells why.
    void failed(const QString& why);

protected:
    /// Keeps the main window open while a movie is being made.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void askForFile();
    void exportMovie1(const std::filesystem::path& target);
    void exportMovie2();
    void tick();
    void writingFinished(const Result<std::optional<WrittenMovie>>& result);
    void closeProgress();

    void captureFrame(std::chrono::nanoseconds moment) override;
    void setLaunchBirth(double position) override;
    void showProgress(const RecordingProgress& progress) override;
    void writeMovie(std::unique_ptr<FrameStore> frames) override;
    void recordingEnded(RecordingEnd end) override;

    Tools m_tools;
    StageView& m_stage;
    FireworksController& m_controller;
    MovieWindow& m_settings;
    MovieProgress m_sheet;
    MovieRecorder m_recorder;
    SessionInhibitor m_inhibitor;
    QTimer m_captureTimer;
    QTimer m_fadeTimer;
    bool m_busy = false;
    MovieSettings m_chosen;         ///< Of the movie that is being made, as are the next three.
    ImageBuffer m_sample;           ///< The stage before it, at its full launch rate.
    std::uint64_t m_frameLimit = 0; ///< Bytes that frames may take.
    std::filesystem::path m_target;
    std::unique_ptr<MovieWriting> m_writing;
    PendingCall m_pendingStart;
};

} // namespace starbloom
