// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/MovieCommand.h"

#include "base/Log.h"
#include "base/PendingFile.h"
#include "engine/panel/FireworksController.h"
#include "export/movie/MemoryCheck.h"
#include "shell/ModalPlace.h"
#include "shell/MovieWindow.h"
#include "views/StageView.h"

#include <QEvent>
#include <QMessageBox>

#include <condition_variable>
#include <mutex>
#include <stop_token>
#include <thread>
#include <utility>

namespace starbloom {

namespace {

/// Between the sheet and the first frame, so that the sheet is there and nothing moves any more.
constexpr std::chrono::milliseconds startDelay{500};

constexpr std::chrono::milliseconds fadePeriod{500};

/// For writing a movie when the program has been asked to end. Sessions wait a minute and a half before they kill.
constexpr std::chrono::seconds longestGoodbye{30};

QString megabytes(std::uint64_t bytes) {
    return QString::fromStdString(megabytesText(static_cast<double>(bytes)));
}

} // namespace

MovieCommand::MovieCommand(Tools tools, StageView& stage, FireworksController& controller, MovieWindow& settings,
                           QWidget& mainWindow)
    : m_tools(std::move(tools))
    , m_stage(stage)
    , m_controller(controller)
    , m_settings(settings)
    , m_sheet(mainWindow)
    , m_recorder(*this) {
    m_captureTimer.setTimerType(Qt::PreciseTimer);
    m_fadeTimer.setTimerType(Qt::PreciseTimer);
    connect(&m_captureTimer, &QTimer::timeout, this, &MovieCommand::tick);
    connect(&m_fadeTimer, &QTimer::timeout, this, &MovieCommand::tick);
    connect(&m_settings, &MovieWindow::opening, this, [this] { m_sample = m_stage.capture().image; });
    connect(&m_settings, &MovieWindow::createClicked, this, qOverload<>(&MovieCommand::exportMovie1));
    connect(&m_sheet, &MovieProgress::abortClicked, this, &MovieCommand::abort5Clicked);
    mainWindow.installEventFilter(this);
}

MovieCommand::~MovieCommand() {
    m_writing.reset(); // Its thread calls back.
}

void MovieCommand::exportMovie1() {
    m_chosen = m_settings.settings();
    const auto verdict = checkMemory(m_chosen, m_stage.width(), m_stage.height(), m_sample, availableMemory());
    if (!verdict.fits()) {
        auto* box =
            new QMessageBox(QMessageBox::Warning, qtTrId("movieTooLargeTitle"),
                            qtTrId("movieTooLargeText").arg(megabytes(verdict.needed), megabytes(verdict.available)),
                            QMessageBox::Ok, &m_settings);
        box->setObjectName(QStringLiteral("movieTooLarge"));
        box->setAttribute(Qt::WA_DeleteOnClose);
        openModal(*box);
        return;
    }
    m_frameLimit = verdict.frameLimit;
    m_busy = true;
    m_settings.handOver();
    askForFile();
}

void MovieCommand::askForFile() {
    m_tools.filePanel.ask({.kind = FilePanelRequest::Kind::NewFile,
                           .message = qtTrId("saveMovieMessage").toStdString(),
                           .title = qtTrId("Saving a movie file...").toStdString(),
                           .startFolder = m_tools.startFolder(),
                           .canCreateFolders = true,
                           .suggestedName = qtTrId("movieSuggestedName").toStdString(),
                           .extension = "m4v"},
                          [this](const std::optional<std::filesystem::path>& choice) {
                              if (choice) {
                                  exportMovie1(*choice);
                              } else {
                                  closeProgress();
                              }
                          });
}

void MovieCommand::exportMovie1(const std::filesystem::path& target) {
    // Better told now than when half a minute has been recorded.
    if (const auto trial = PendingFile::create(target); !trial) {
        closeProgress();
        emit failed(QString::fromStdString(trial.error().message));
        return;
    }
    m_target = target;
    m_sheet.openSheet();
    m_pendingStart = PendingCall(m_tools.calls, startDelay, [this] { exportMovie2(); });
}

void MovieCommand::exportMovie2() {
    m_inhibitor.inhibit(qtTrId("movieInhibitReason"));
    m_stage.beginRecording();
    m_recorder.begin(m_chosen, m_settings.birthRate(), m_tools.clock(), std::make_unique<FrameStore>(m_frameLimit));
    // Twice as often as frames are due: a tick that comes late by a little still finds its frame within the period.
    m_captureTimer.start(500 / m_chosen.framesPerSecond());
    if (m_chosen.fadeIn) {
        m_fadeTimer.start(fadePeriod);
    }
}

bool MovieCommand::eventFilter(QObject* watched, QEvent* event) {
    // Desktops that show the menus elsewhere can still ask for it.
    if (event->type() == QEvent::Close && m_busy) {
        event->ignore();
        return true;
    }
    return QObject::eventFilter(watched, event);
}

void MovieCommand::tick() {
    m_recorder.tick(m_tools.clock());
}

void MovieCommand::captureFrame(std::chrono::nanoseconds moment) {
    const QSize stage = m_stage.rect().size();
    ImageBuffer frame = m_recorder.blankFrame(stage.width(), stage.height());
    if (frame.width() != stage.width()) {
        m_recorder.frameFailed();
        return;
    }
    m_stage.record(moment, frame);
    m_recorder.frameGiven(std::move(frame));
}

void MovieCommand::setLaunchBirth(double position) {
    m_controller.setLaunchBirth(position);
}

void MovieCommand::showProgress(const RecordingProgress& progress) {
    m_sheet.showProgress(progress);
}

void MovieCommand::writeMovie(std::unique_ptr<FrameStore> frames) {
    m_captureTimer.stop();
    m_fadeTimer.stop();
    m_stage.endRecording();
    const auto here = [this](auto call) { QMetaObject::invokeMethod(this, std::move(call), Qt::QueuedConnection); };
    m_writing = m_tools.encoders.writeMovie(
        {.target = m_target,
         .journal = m_tools.journal,
         .framesPerSecond = m_chosen.framesPerSecond(),
         .frames = std::move(frames)},
        [this, here](std::int64_t written, std::int64_t total) {
            here([this, written, total] { m_recorder.writingProgress(written, total, m_tools.clock()); });
        },
        [this, here](const Result<std::optional<WrittenMovie>>& result) {
            if (!result) {
                log(LogLevel::Warning, "export", result.error().message); // The window may be gone before it can tell.
            }
            here([this, result] { writingFinished(result); });
        });
}

void MovieCommand::writingFinished(const Result<std::optional<WrittenMovie>>& result) {
    m_writing->wait();
    m_writing.reset();
    m_recorder.writingEnded();
    if (!result) {
        emit failed(QString::fromStdString(result.error().message));
    } else if (result.value()) {
        emit saved(*result.value(), m_recorder.missed(), m_recorder.ranOutOfMemory());
    }
}

void MovieCommand::recordingEnded(RecordingEnd end) {
    closeProgress();
    if (end == RecordingEnd::NoFrames) {
        log(LogLevel::Warning, "export", "not one frame could be recorded");
        emit failed(qtTrId("movieNoFrames"));
    }
}

void MovieCommand::abort5Clicked() {
    m_pendingStart.cancel();
    if (m_writing != nullptr) {
        // It ends within a frame, but may be waiting for the disk. Its last word may be that the movie is there.
        m_sheet.showAborting();
        m_writing->abort();
    } else if (m_recorder.phase() != RecordingPhase::Idle) {
        m_recorder.abort();
    } else {
        closeProgress(); // Not even begun.
    }
}

void MovieCommand::finishNow() {
    m_pendingStart.cancel();
    m_recorder.tick(m_tools.clock()); // On a busy machine none may have come yet.
    m_recorder.finish();
    m_busy = false;
    if (m_writing == nullptr) {
        return;
    }
    // All frames, if they can be written before the desktop loses its patience.
    const std::jthread limit([writing = m_writing.get()](const std::stop_token& done) {
        std::mutex mutex;
        std::unique_lock lock(mutex);
        std::condition_variable_any waiting;
        if (!waiting.wait_for(lock, done, longestGoodbye, [&] { return done.stop_requested(); })) {
            writing->finishEarly();
        }
    });
    m_writing->wait();
}

void MovieCommand::closeProgress() {
    m_captureTimer.stop();
    m_fadeTimer.stop();
    m_stage.endRecording();
    m_inhibitor.release();
    m_busy = false;
    m_sheet.closeSheet();
    m_settings.giveBack();
}

} // namespace starbloom
