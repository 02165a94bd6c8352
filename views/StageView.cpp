// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/StageView.h"

#include "base/Log.h"
#include "engine/model/FireworksTree.h"
#include "engine/time/EmitterPlan.h"

#include <QEvent>
#include <QPaintEngine>
#include <QPaintEvent>
#include <QPainter>
#include <QScreen>
#include <QWindow>

#include <algorithm>
#include <bit>
#include <cmath>
#include <utility>

namespace starbloom {

namespace {

using namespace std::chrono_literals;

// QImage keeps a pixel as a number, the renderer as four bytes; here both are the same.
static_assert(std::endian::native == std::endian::little);
constexpr auto pictureFormat = QImage::Format_RGB32;

/// Anything that is not a forward motion stands still.
double clockSpeed(const EmitterLayer& layer) {
    return std::isfinite(layer.speed) && layer.speed > 0.0F ? static_cast<double>(layer.speed) : 0.0;
}

/// The pixels that a widget covers. With fractional scale factors its edges may lie between pixels; rounding each edge,
/// as Qt does for its clipping, makes neighbours meet without a gap.
QRect coveredPixels(const QRect& widget, const QTransform& toPixels) {
    const QRectF exact = toPixels.mapRect(QRectF(widget));
    const QPoint topLeft(qRound(exact.left()), qRound(exact.top()));
    const QPoint bottomRight(qRound(exact.right()), qRound(exact.bottom()));
    return {topLeft, QSize(std::max(bottomRight.x() - topLeft.x(), 1), std::max(bottomRight.y() - topLeft.y(), 1))};
}

/// Copies the part of a picture that lies in a rectangle of the target straight into the target's memory. A painter
/// clipped to many rectangles would do it span by span, and wake threads for that.
void copyPixels(const QImage& picture, const QPoint& place, const QRect& rect, QImage& target) {
    const QRect area = rect & QRect(place, picture.size()) & target.rect();
    for (int y = area.top(); y <= area.bottom(); ++y) {
        const auto* from =
            reinterpret_cast<const QRgb*>(picture.constScanLine(y - place.y())) + area.left() - place.x();
        std::copy_n(from, area.width(), reinterpret_cast<QRgb*>(target.scanLine(y)) + area.left());
    }
}

/// The window's own memory behind a painter, if a picture's pixels can be copied to it as they are.
QImage* memoryBehind(const QPainter& painter) {
    auto* image = dynamic_cast<QImage*>(painter.paintEngine()->paintDevice());
    const bool same = image != nullptr && (image->format() == QImage::Format_RGB32 ||
                                           image->format() == QImage::Format_ARGB32_Premultiplied);
    return same ? image : nullptr;
}

} // namespace

std::chrono::nanoseconds StageView::steadyClock() {
    return std::chrono::steady_clock::now().time_since_epoch();
}

StageView::StageView(std::uint64_t seed, ClockSource clockSource, QWidget* parent)
    : QWidget(parent)
    , m_seed(seed)
    , m_clockSource(std::move(clockSource)) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setObjectName(QStringLiteral("stage"));
    setAccessibleName(qtTrId("stageName"));
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &StageView::showDueFrame);
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
    m_rootLayer = std::move(rootLayer);
    restart();
}

void StageView::layerChanged() {
    if (m_rootLayer == nullptr) {
        return;
    }
    // What has happened so far happened under the old numbers.
    passTimeUntil(m_clockSource());
    readLayer();
}

void StageView::readLayer() {
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
    m_realTime = m_clockSource();
    m_clock = LayerClock(0.0);
    m_simulation.reset();
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
    if (m_playing) {
        m_schedule.start(m_clockSource(), m_screen != nullptr ? m_screen->refreshRate() : FrameSchedule::fallbackRate);
        showDueFrame();
    }
}

void StageView::showDueFrame() {
    const auto now = m_clockSource();
    if (const auto moment = m_schedule.takeDueFrame(now)) {
        passTimeUntil(*moment);
        showChanges();
    }
    waitForNextFrame();
}

void StageView::showChanges() {
    m_stale = true;
    if (!canBeSeen()) {
        return;
    }
    if (m_renderedFrames == 0 || m_pictureSize != QWidget::size() || m_pixelsPerPoint != devicePixelRatioF()) {
        update(); // Where the picture lies among the screen's pixels is found out when it is painted.
        return;
    }
    // Drawn now and not when it is painted, so that only what has changed needs to be.
    render(m_picture.size(), m_pixelsPerPoint);
    QRegion changed;
    for (const PixelRect& pixels : m_lit.changed()) {
        const QRectF exact(pixels.x / m_pixelsPerPoint, pixels.y / m_pixelsPerPoint, pixels.width / m_pixelsPerPoint,
                           pixels.height / m_pixelsPerPoint);
        changed += m_pixelsPerPoint == 1.0 ? exact.toRect() : exact.toAlignedRect().adjusted(-1, -1, 1, 1);
    }
    update(changed);
}

void StageView::waitForNextFrame() {
    // Rounded up: a timer that wakes too early would find nothing to show.
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(m_schedule.untilNextFrame(m_clockSource()));
    m_timer.start(std::max(wait, 1ms));
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
    QPainter painter(this);
    const QTransform toPixels = painter.deviceTransform();
    const QRect pixels = coveredPixels(rect(), toPixels);
    if (m_stale || m_picture.size() != pixels.size() || m_pixelsPerPoint != toPixels.m11()) {
        render(pixels.size(), toPixels.m11());
    }
    m_pictureSize = QWidget::size();
    if (QImage* memory = memoryBehind(painter)) {
        for (const QRect& part : event->region()) {
            copyPixels(m_picture, pixels.topLeft(), coveredPixels(part, toPixels), *memory);
        }
        return;
    }
    // Drawn in the screen's own pixels, so that nothing is scaled and no edge lies between two of them.
    painter.setWorldTransform(QTransform::fromTranslate(pixels.x(), pixels.y()) * toPixels.inverted());
    painter.drawImage(0, 0, m_picture);
}

void StageView::render(const QSize& pixels, double pixelsPerPoint) {
    if (m_picture.size() != pixels) {
        m_picture = QImage(pixels, pictureFormat);
        m_lit.forget();
    }
    const RasterTarget target{m_picture.bits(), static_cast<std::size_t>(m_picture.bytesPerLine()), pixels.width(),
                              pixels.height(), PixelOrder::Bgra};
    m_renderer.renderNext(m_simulation ? m_simulation->sparks() : std::span<const SparkBatch>{},
                          {.time = m_clock.time(), .pixelsPerPoint = pixelsPerPoint, .background = background()},
                          target, m_lit);
    m_pixelsPerPoint = pixelsPerPoint;
    m_shownTime = m_clock.time();
    m_stale = false;
    ++m_renderedFrames;
}

Color StageView::background() const {
    return m_rootLayer != nullptr ? m_rootLayer->backgroundColor : Color{0.0F, 0.0F, 0.0F, 1.0F};
}

void StageView::renderInto(ImageBuffer& image, const std::optional<Simulation>& simulation, double time) {
    // The screen's renderer has its sprites already, if they are of the right size.
    RasterRenderer& renderer = m_pixelsPerPoint == 1.0 ? m_renderer : m_captureRenderer;
    renderer.render(simulation ? simulation->sparks() : std::span<const SparkBatch>{},
                    {.time = time, .pixelsPerPoint = 1.0, .background = background()}, RasterTarget::of(image));
}

StageView::Capture StageView::capture() {
    Capture taken{ImageBuffer(width(), height()), m_clock.time(), m_steady};
    renderInto(taken.image, m_simulation, taken.moment);
    return taken;
}

void StageView::beginRecording() {
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
    m_pictureSize = QSize(); // All of it is painted next.
    watchWindow();
    startOrStop();
}

void StageView::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
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
