// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/StageView.h"

#include "base/Log.h"
#include "engine/model/FireworksTree.h"
#include "engine/time/EmitterPlan.h"

#include <QBackingStore>
#include <QEvent>
#include <QPaintEngine>
#include <QPaintEvent>
#include <QPainter>
#include <QScreen>
#include <QWindow>

#include <algorithm>
#include <cmath>
#include <utility>

namespace starbloom {

namespace {

using namespace std::chrono_literals;

/// Anything that is not a forward motion stands still.
double clockSpeed(const EmitterLayer& layer) {
    return std::isfinite(layer.speed) && layer.speed > 0.0F ? static_cast<double>(layer.speed) : 0.0;
}

} // namespace

std::chrono::nanoseconds StageView::steadyClock() {
    return std::chrono::steady_clock::now().time_since_epoch();
}

StageView::StageView(std::uint64_t seed, ClockSource clockSource, QWidget* parent)
    : QWidget(parent)
    , m_seed(seed)
    , m_clockSource(std::move(clockSource))
    , m_quietShow([this](const RasterTarget& target, LitArea& lit) { return drawQuietly(target, lit); },
                  [this] { goOnAfterQuiet(); }) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setObjectName(QStringLiteral("stage"));
    setAccessibleName(qtTrId("stageName"));
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &StageView::frameTimeout);
}

StageView::~StageView() = default;

Size StageView::size() const {
    return {static_cast<double>(width()), static_cast<double>(height())};
}

QSize StageView::sizeHint() const {
    return {static_cast<int>(defaultStageSize.width), static_cast<int>(defaultStageSize.height)};
}

QSize StageView::minimumSizeHint() const {
    return minimumStage;
}

void StageView::setRootLayer(std::shared_ptr<const RootLayer> rootLayer) {
    endQuiet();
    m_rootLayer = std::move(rootLayer);
    m_background = Color{0.0F, 0.0F, 0.0F, 1.0F};
    restart();
}

void StageView::layerChanged() {
    endQuiet();
    if (m_rootLayer == nullptr) {
        return;
    }
    // What has happened so far happened under the old numbers.
    passTimeUntil(m_clockSource());
    readLayer();
}

void StageView::readLayer() {
    if (m_rootLayer != nullptr) {
        m_background = m_rootLayer->backgroundColor;
    }
    if (m_rootLayer != nullptr && !m_rootLayer->sublayers.empty()) {
        const EmitterLayer& emitter = *m_rootLayer->sublayers.front();
        takePlan(emitter);
        m_clock.setSpeed(clockSpeed(emitter));
        if (m_recording) {
            m_recording->clock.setSpeed(m_clock.speed());
        }
    }
    startOrStop();
    if (!m_playing) {
        invalidate();
    }
}

void StageView::takePlan(const EmitterLayer& emitter) {
    EmitterPlan plan = EmitterPlan::of(emitter);
    if (!m_simulation) {
        m_simulation.emplace(m_seed, std::move(plan));
        m_steady = true;
    } else if (plan != m_simulation->plan()) {
        if (m_recording) {
            m_recording->simulation->setPlan(plan);
        }
        m_simulation->setPlan(std::move(plan));
        m_steady = false;
    }
}

void StageView::restart() {
    endQuiet();
    m_realTime = m_clockSource();
    m_clock = LayerClock(0.0);
    m_simulation.reset();
    ++m_show;
    readLayer();
    invalidate();
}

void StageView::passTimeUntil(std::chrono::nanoseconds moment) {
    if (moment > m_realTime) {
        m_clock.advance(moment - m_realTime);
        m_realTime = moment;
    }
    if (m_simulation) {
        m_simulation->advanceTo(m_clock.time());
    }
}

bool StageView::canBeSeen() const {
    return isVisible() && m_window != nullptr && m_window->isExposed() &&
           (m_window->windowStates() & Qt::WindowMinimized) == 0;
}

void StageView::startOrStop() {
    const bool play = m_clock.speed() > 0.0 && canBeSeen();
    if (play == m_playing) {
        return;
    }
    m_playing = play;
    if (play) {
        restartSchedule();
    } else {
        m_timer.stop();
    }
}

void StageView::restartSchedule() {
    endQuiet();
    m_presentedSince.reset();
    if (m_playing) {
        m_schedule.start(m_clockSource(), m_screen != nullptr ? m_screen->refreshRate() : FrameSchedule::fallbackRate);
        showDueFrame();
        waitForNextFrame();
    }
}

bool StageView::showDueFrame() {
    const auto moment = m_schedule.takeDueFrame(m_clockSource());
    if (moment) {
        passTimeUntil(*moment);
        showChanges();
    }
    return moment.has_value();
}

void StageView::frameTimeout() {
    if (!showDueFrame() || !playQuietly()) {
        waitForNextFrame();
    }
}

void StageView::showChanges() {
    m_stale = true;
    const auto presentedSince = std::exchange(m_presentedSince, std::nullopt);
    if (!canBeSeen()) {
        return;
    }
    if (showOnSurface()) {
        return;
    }
    if (!m_raster.isPlaced()) {
        update(); // Where the picture lies among the screen's pixels is found out when it is painted.
        return;
    }
    if (m_raster.present(moment())) {
        m_presentedSince = presentedSince.value_or(m_realTime);
        momentShown();
        return;
    }
    // Drawn now and not when it is painted, so that only what has changed needs to be.
    const QRegion changed = m_raster.render(moment());
    momentShown();
    update(changed);
}

void StageView::waitForNextFrame() {
    // Rounded up: a timer that wakes too early would find nothing to show.
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(m_schedule.untilNextFrame(m_clockSource()));
    m_timer.start(std::max(wait, 1ms));
}

bool StageView::playQuietly() {
    constexpr auto quietTime = 1s; // Longer than a caret takes to blink, which is an event.
    const auto* const clock = m_clockSource.target<std::chrono::nanoseconds (*)()>(); // Others may be of one thread.
    if (!m_presentedSince || m_realTime - *m_presentedSince < quietTime || m_recording || clock == nullptr ||
        *clock != steadyClock) {
        return false;
    }
    m_presentedSince.reset();
    const auto pixels = m_raster.sharedPixels();
    return pixels && m_quietShow.begin(*m_window, *pixels);
}

QuietShow::Frame StageView::drawQuietly(const RasterTarget& target, LitArea& lit) {
    QuietShow::Frame frame;
    if (const auto due = m_schedule.takeDueFrame(m_clockSource())) {
        passTimeUntil(*due);
        m_raster.renderElsewhere(moment(), target, lit);
        momentShown();
        frame.drawn = true;
    }
    frame.next = m_schedule.nextFrame();
    return frame;
}

void StageView::endQuiet() {
    if (m_quietShow.end()) {
        goOnAfterQuiet();
    }
}

void StageView::goOnAfterQuiet() {
    m_presentedSince.reset();
    if (const QImage shown = m_quietShow.picture(); !shown.isNull()) {
        m_raster.take(shown);
    }
    waitForNextFrame();
}

void StageView::invalidate() {
    m_stale = true;
    if (canBeSeen()) {
        update();
    }
}

void StageView::paintEvent(QPaintEvent* event) {
    if (m_renderedFrames == 0) {
        log(LogLevel::Info, "views", "first frame"); // What the benchmark of the launch waits for.
    }
    m_presentedSince.reset();
    QPainter painter(this);
    const bool toWindow = paintsWindow(painter);
    if (toWindow && showOnSurface()) {
        // For the edge that a surface of whole points may leave free between the pixels of the screen.
        const Color color = m_background;
        const auto channel = [&color](float value) { return std::clamp(value * color.alpha, 0.0F, 1.0F); };
        painter.fillRect(event->rect(),
                         QColor::fromRgbF(channel(color.red), channel(color.green), channel(color.blue)));
        return;
    }
    if (m_stale || !m_raster.fits(painter)) {
        m_raster.renderFor(painter, moment());
        momentShown();
    }
    m_raster.paint(painter, event->region());
    if (toWindow) {
        m_formerRenderer.reset();
        if (m_screenRenderer != nullptr && !isWholeInWindow()) {
            m_screenRenderer->withdraw();
        }
    } else if (m_screenRenderer != nullptr) {
        m_raster.forgetPlace(); // A picture of the window, and what lies below the surface is not painted yet.
    }
}

void StageView::moveEvent(QMoveEvent* event) {
    QWidget::moveEvent(event);
    if (m_screenRenderer != nullptr) {
        update(); // What is moved is not painted anew by itself, and a surface does not move with it.
    }
}

void StageView::setScreenRenderer(std::unique_ptr<StageRenderer> renderer) {
    endQuiet();
    if (m_screenRenderer != nullptr) {
        m_formerRenderer = std::move(m_screenRenderer);
        m_raster.forgetPlace();
    }
    m_quietShow.release();
    m_screenRenderer = std::move(renderer);
    if (canBeSeen()) {
        update();
    }
}

bool StageView::showOnSurface() {
    if (m_screenRenderer == nullptr || !canBeSeen() || !isWholeInWindow()) {
        return false;
    }
    m_screenRenderer->place(*m_window, QRect(mapTo(window(), QPoint()), QWidget::size()));
    switch (m_screenRenderer->show(moment())) {
    case StageRenderer::Outcome::Shown:
        momentShown();
        m_raster.passOver();
        m_raster.forgetPlace();
        return true;
    case StageRenderer::Outcome::NotYet:
        return false;
    case StageRenderer::Outcome::Failed:
        log(LogLevel::Warning, "views", "the stage is drawn by the CPU from now on: its graphics context failed");
        setScreenRenderer(nullptr);
        return false;
    }
    return false;
}

bool StageView::isWholeInWindow() const {
    return visibleRegion() == QRegion(rect());
}

bool StageView::paintsWindow(const QPainter& painter) const {
    const QBackingStore* const store = window()->backingStore();
    return store != nullptr && painter.paintEngine()->paintDevice() == const_cast<QBackingStore*>(store)->paintDevice();
}

StageMoment StageView::moment() const {
    return {m_simulation ? m_simulation->sparks() : std::span<const SparkBatch>{}, m_clock.time(), m_background,
            m_show};
}

void StageView::momentShown() {
    m_shownTime = m_clock.time();
    m_stale = false;
    ++m_renderedFrames;
}

void StageView::renderInto(ImageBuffer& image, const std::optional<Simulation>& simulation, double time) {
    m_raster.pictureRenderer().render(simulation ? simulation->sparks() : std::span<const SparkBatch>{},
                                      {.time = time, .pixelsPerPoint = 1.0, .background = m_background},
                                      RasterTarget::of(image));
}

StageView::Capture StageView::capture() {
    endQuiet();
    Capture taken{ImageBuffer(width(), height()), m_clock.time(), m_steady};
    renderInto(taken.image, m_simulation, taken.moment);
    return taken;
}

void StageView::beginRecording() {
    endQuiet();
    m_recording = Recording{m_realTime, m_clock, m_simulation};
}

void StageView::record(std::chrono::nanoseconds moment, ImageBuffer& image) {
    if (moment > m_recording->realTime) {
        m_recording->clock.advance(moment - m_recording->realTime);
        m_recording->realTime = moment;
    }
    const double time = m_recording->clock.time();
    if (m_recording->simulation) {
        m_recording->simulation->advanceTo(time);
    }
    renderInto(image, m_recording->simulation, time);
}

void StageView::endRecording() {
    m_recording.reset();
}

void StageView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    m_raster.forgetPlace();
    watchWindow();
    startOrStop();
}

void StageView::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    if (m_screenRenderer != nullptr) {
        m_screenRenderer->withdraw();
    }
    m_formerRenderer.reset();
    startOrStop();
}

void StageView::watchWindow() {
    QWindow* const present = window()->windowHandle();
    if (m_window == present) {
        return;
    }
    if (m_window != nullptr) {
        m_window->removeEventFilter(this);
        m_window->disconnect(this);
    }
    m_window = present;
    if (m_window != nullptr) {
        m_window->installEventFilter(this);
        connect(m_window, &QWindow::screenChanged, this, &StageView::followScreen);
        followScreen(m_window->screen());
    }
}

void StageView::followScreen(QScreen* screen) {
    disconnect(m_rateConnection);
    m_screen = screen;
    if (screen != nullptr) {
        m_rateConnection = connect(screen, &QScreen::refreshRateChanged, this, &StageView::restartSchedule);
    }
    restartSchedule();
}

bool StageView::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_window && (event->type() == QEvent::Expose || event->type() == QEvent::WindowStateChange)) {
        startOrStop();
        if (canBeSeen()) {
            nowSeen();
        }
    }
    return QWidget::eventFilter(watched, event);
}

void StageView::nowSeen() {
    if (m_stale) {
        update(); // What has changed unseen; not every desktop asks a window that comes back to draw itself.
    }
    if (!m_hasAppeared) {
        m_hasAppeared = true;
        emit appeared();
    }
}

} // namespace starbloom
