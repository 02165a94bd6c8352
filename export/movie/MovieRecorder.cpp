// SPDX-License-Identifier: GPL-3.0-or-later
#include "export/movie/MovieRecorder.h"

#include "export/movie/DecimalText.h"

#include <algorithm>
#include <utility>

namespace starbloom {

namespace {

/// Requests that may wait for their answers. More would mean that capturing lags behind for good.
constexpr std::int64_t mostWaiting = 3;

std::chrono::nanoseconds nanoseconds(double seconds) {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::duration<double>(seconds));
}

void setPercent(RecordingProgress& progress) {
    progress.percent =
        progress.total > 0 ? static_cast<double>(progress.done) / static_cast<double>(progress.total) * 100.0 : 0.0;
    progress.percentText = textWithOneDecimal(progress.percent) + "%";
}

} // namespace

void MovieRecorder::begin(const MovieSettings& settings, double birthPosition, Nanoseconds now,
                          std::unique_ptr<FrameStore> frames) {
    if (m_phase != RecordingPhase::Idle) {
        return;
    }
    m_phase = RecordingPhase::Recording;
    m_settings = settings;
    m_birthPosition = birthPosition;
    m_start = now;
    m_now = now;
    m_frames = std::move(frames);
    m_fade = settings.fadeIn ? fadeInSteps(birthPosition, settings.fadeInSeconds()) : std::vector<LaunchStep>{};
    m_nextStep = 0;
    m_total = settings.frameCount();
    m_next = 0;
    m_waiting = 0;
    m_captured = 0;
    m_missed = 0;
    m_full = false;
    reportCapture();
}

MovieRecorder::Nanoseconds MovieRecorder::dueTime(std::int64_t frame) const {
    // From the start and not from frame to frame, so that nothing adds up.
    return m_start + Nanoseconds(frame * 1'000'000'000 / m_settings.framesPerSecond());
}

void MovieRecorder::tick(Nanoseconds now) {
    if (m_phase != RecordingPhase::Recording) {
        return;
    }
    m_now = now;
    captureDue(now);
    if (m_phase != RecordingPhase::Recording) {
        return;
    }
    // A step must not come before the frames that are due earlier.
    fadeTo(m_next < m_total ? std::min(now, dueTime(m_next)) : now);
    if (now >= m_start + nanoseconds(m_settings.seconds()) + writingDelay) {
        startWriting();
    }
}

void MovieRecorder::captureDue(Nanoseconds now) {
    for (int asked = 0; asked < mostPerTick && m_next < m_total && m_waiting < mostWaiting;) {
        const Nanoseconds due = dueTime(m_next);
        if (due > now) {
            return;
        }
        ++m_next;
        if (now - due > latestCapture) {
            ++m_missed;
            continue;
        }
        fadeTo(due);
        ++asked;
        ++m_waiting;
        m_host.captureFrame(due);
        if (m_phase != RecordingPhase::Recording) {
            return;
        }
    }
}

void MovieRecorder::fadeTo(Nanoseconds time) {
    while (m_nextStep < m_fade.size() && m_start + nanoseconds(m_fade[m_nextStep].seconds) <= time) {
        m_host.setLaunchBirth(m_fade[m_nextStep++].position);
    }
}

ImageBuffer MovieRecorder::blankFrame(int width, int height) {
    return m_frames != nullptr ? m_frames->blank(width, height) : ImageBuffer(width, height);
}

void MovieRecorder::frameGiven(ImageBuffer&& frame) {
    if (m_phase != RecordingPhase::Recording || m_waiting == 0) {
        return;
    }
    --m_waiting;
    switch (m_frames->add(std::move(frame))) {
    case FrameStore::Added::Kept:
        ++m_captured;
        break;
    case FrameStore::Added::Busy:
        ++m_missed;
        break;
    case FrameStore::Added::Full:
        m_full = true;
        startWriting();
        return;
    }
    reportCapture();
}

void MovieRecorder::frameFailed() {
    if (m_phase == RecordingPhase::Recording && m_waiting > 0) {
        --m_waiting;
        ++m_missed;
        reportCapture();
    }
}

void MovieRecorder::abort() {
    if (m_phase != RecordingPhase::Idle) {
        close(RecordingEnd::Aborted);
    }
}

void MovieRecorder::finish() {
    if (m_phase == RecordingPhase::Recording) {
        startWriting();
    }
}

void MovieRecorder::startWriting() {
    m_missed = m_total - m_captured;
    if (m_captured == 0) {
        close(RecordingEnd::NoFrames);
        return;
    }
    m_phase = RecordingPhase::Writing;
    m_writingStart = m_now;
    m_host.writeMovie(std::move(m_frames));
}

void MovieRecorder::reportCapture() {
    RecordingProgress progress{m_phase, m_captured, m_total, m_missed, 0.0, {}, {}};
    setPercent(progress);
    progress.left = std::max(m_start + nanoseconds(m_settings.seconds()) - m_now, Nanoseconds(0));
    m_host.showProgress(progress);
}

void MovieRecorder::writingProgress(std::int64_t written, std::int64_t total, Nanoseconds now) {
    if (m_phase != RecordingPhase::Writing) {
        return;
    }
    RecordingProgress progress{m_phase, written, total, m_missed, 0.0, {}, {}};
    setPercent(progress);
    if (written > 0) {
        progress.left = nanoseconds(std::chrono::duration<double>(now - m_writingStart).count() *
                                    static_cast<double>(total - written) / static_cast<double>(written));
    }
    m_host.showProgress(progress);
}

void MovieRecorder::writingEnded() {
    if (m_phase == RecordingPhase::Writing) {
        close(RecordingEnd::WritingEnded);
    }
}

void MovieRecorder::close(RecordingEnd end) {
    m_phase = RecordingPhase::Idle;
    m_frames.reset();
    m_host.setLaunchBirth(m_birthPosition);
    m_host.recordingEnded(end);
}

} // namespace starbloom
