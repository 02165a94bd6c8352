// SPDX-License-Identifier: GPL-3.0-or-later
#include "shell/MovieCommand.h"

#include "engine/panel/FireworksController.h"
#include "export/movie/MemoryCheck.h"
#include "shell/MovieWindow.h"
#include "views/StageView.h"

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
    connect(&m_settings, &MovieWindow::createClicked, this, &MovieCommand::exportMovie1);
    connect(&m_sheet, &MovieProgress::abortClicked, this, &MovieCommand::abort5Clicked);
}

MovieCommand::~MovieCommand() {
    m_writing.reset(); // Its thread calls back.
}

void MovieCommand::exportMovie1() {
    const auto sample = m_stage.capture();
    const auto verdict = checkMemory(m_settings.settings(), sample.image.width(), sample.image.height(), sample.image,
                                     availableMemory());
    if (!verdict.fits()) {
        auto* box =
            new QMessageBox(QMessageBox::Warning, qtTrId("movieTooLargeTitle"),
                            qtTrId("movieTooLargeText").arg(megabytes(verdict.needed), megabytes(verdict.available)),
                            QMessageBox::Ok, &m_settings);
        box->setObjectName(QStringLiteral("movieTooLarge"));
        box->setAttribute(Qt::WA_DeleteOnClose);
        box->open();
        return;
    }
    m_frameLimit = verdict.frameLimit;
    m_settings.handOver();
    m_tools.filePanel.ask({.kind = FilePanelRequest::Kind::NewFile,
                           .message = qtTrId("saveMovieMessage").toStdString(),
                           .title = qtTrId("Saving a movie file...").toStdString(),
                           .startFolder = m_tools.startFolder(),
                           .canCreateFolders = true,
                           .suggestedName = qtTrId("movieSuggestedName").toStdString(),
                           .extension = "m4v"},
                          [this](const std::optional<std::filesystem::path>& choice) {
                              if (!choice) {
                                  m_settings.giveBack();
                                  return;
                              }
                              m_target = choice;
                              m_sheet.openSheet();
                              m_pendingStart = PendingCall(m_tools.calls, startDelay, [this] { exportMovie2(); });
                          });
}

void MovieCommand::exportMovie2() {
    const MovieSettings settings = m_settings.settings();
    m_inhibitor.inhibit(qtTrId("movieInhibitReason"));
    m_stage.beginRecording();
    m_recorder.begin(settings, m_settings.birthRate(), m_tools.clock(), std::make_unique<FrameStore>(m_frameLimit));
    // Twice as often as frames are due: a tick that comes late by a little still finds its frame within the period.
    m_captureTimer.start(500 / settings.framesPerSecond());
    if (settings.fadeIn) {
        m_fadeTimer.start(fadePeriod);
    }
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
        {.target = *m_target,
         .journal = m_tools.journal,
         .framesPerSecond = m_settings.settings().framesPerSecond(),
         .frames = std::move(frames)},
        [this, here](std::int64_t written, std::int64_t total) {
            here([this, written, total] { m_recorder.writingProgress(written, total, m_tools.clock()); });
        },
        [this, here](const Result<std::optional<WrittenMovie>>& result) {
            here([this, result] { writingFinished(result); });
        });
}

void MovieCommand::writingFinished(const Result<std::optional<WrittenMovie>>& result) {
    if (m_writing == nullptr) {
        return; // Given up, and already forgotten.
    }
    m_writing->wait();
    m_writing.reset();
    m_recorder.writingEnded();
    if (!result) {
        emit failed(QString::fromStdString(result.error().message));
    } else if (result.value()) {
        emit saved(*result.value(), m_recorder.missed());
    }
}

void MovieCommand::recordingEnded(RecordingEnd end) {
    closeProgress();
    if (end == RecordingEnd::NoFrames) {
        emit failed(qtTrId("movieNoFrames"));
    }
}

void MovieCommand::abort5Clicked() {
    m_pendingStart.cancel();
    if (m_writing != nullptr) {
        m_writing->abort();
        m_writing.reset(); // Waits: the last frame may still be on its way.
    }
    if (m_recorder.phase() != RecordingPhase::Idle) {
        m_recorder.abort();
    } else {
        closeProgress(); // Not even begun.
    }
}

void MovieCommand::finishNow() {
    m_pendingStart.cancel();
    m_recorder.finish();
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
    m_target.reset();
    m_sheet.closeSheet();
    m_settings.giveBack();
}

} // namespace starbloom
