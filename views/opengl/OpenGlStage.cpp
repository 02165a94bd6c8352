// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/opengl/OpenGlStage.h"

#include "base/Log.h"

#include <ctime>
#include <utility>

namespace starbloom {

namespace {

/// A machine that sleeps and wakes, or changes its graphics card, may lose a context now and then; one that does so
/// more often than this in one run has a driver that is better left alone.
constexpr int mostLosses = 8;

std::chrono::nanoseconds readClock(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

} // namespace

std::chrono::nanoseconds OpenGlStage::timeAsleep() {
    return readClock(CLOCK_BOOTTIME) - readClock(CLOCK_MONOTONIC);
}

OpenGlStage::OpenGlStage(std::unique_ptr<GlSurface> surface, std::vector<PreparedImage> prepared, SleepClock sleepClock)
    : m_surface(std::move(surface))
    , m_prepared(std::move(prepared))
    , m_sleepClock(std::move(sleepClock))
    , m_asleep(m_sleepClock()) {}

OpenGlStage::~OpenGlStage() {
    if (m_painter != nullptr && m_surface->isOnScreen()) {
        [[maybe_unused]] const auto current = m_surface->makeCurrent();
    }
    m_painter.reset();
}

StageRenderer::Outcome OpenGlStage::show(const StageMoment& moment) {
    if (!m_surface->isOnScreen()) {
        return Outcome::NotYet;
    }
    for (int attempt = 0; attempt < 2; ++attempt) {
        const auto drawn = draw(moment);
        if (drawn) {
            m_surface->present();
            return Outcome::Shown;
        }
        log(LogLevel::Warning, "views", "OpenGL: " + drawn.error().message);
        m_painter.reset();
        m_surface->dropContext();
        if (++m_losses > mostLosses) {
            break;
        }
    }
    return Outcome::Failed;
}

void OpenGlStage::dropWhatSleepMayHaveSpoiled() {
    // Some drivers bring a context back from the machine's sleep without what was in the graphics memory, and do not
    // tell. The two clocks are not read at the same moment, so their difference trembles.
    const auto asleep = m_sleepClock();
    if (asleep - m_asleep > std::chrono::milliseconds(100)) {
        m_painter.reset();
    }
    m_asleep = asleep;
}

Result<void> OpenGlStage::draw(const StageMoment& moment) {
    if (auto current = m_surface->makeCurrent(); !current) {
        return current;
    }
    dropWhatSleepMayHaveSpoiled();
    if (m_painter == nullptr) {
        auto made = OpenGlPainter::make(m_prepared);
        if (!made) {
            return made.error();
        }
        m_painter = std::move(made).value();
    }
    return m_painter->draw(moment, m_surface->canvas(), m_surface->framebuffer());
}

} // namespace starbloom
