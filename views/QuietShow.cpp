// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/QuietShow.h"

#include <QCoreApplication>
#include <QWindow>

#include <system_error>
#include <utility>

namespace starbloom {

QuietShow::QuietShow(Draw draw, std::function<void()> ended)
    : m_draw(std::move(draw))
    , m_ended(std::move(ended)) {}

QuietShow::~QuietShow() {
    end();
    if (m_thread.joinable()) {
        {
            const std::lock_guard lock(m_mutex);
            m_leaves = true;
        }
        m_changed.notify_one();
        m_thread.join();
    }
}

bool QuietShow::begin(QWindow& window, const QRect& place) {
    if (m_begun || !hasPixelsFor(window, place.size()) || !hasThread()) {
        return false;
    }
    {
        const std::lock_guard lock(m_mutex);
        m_place = place.topLeft();
        m_lit.forget();
        m_hasShown = false;
        m_plays = true;
    }
    m_changed.notify_one();
    m_begun = true;
    QCoreApplication::instance()->installEventFilter(this);
    return true;
}

bool QuietShow::hasPixelsFor(QWindow& window, const QSize& size) {
    if (!m_queue) {
        m_queue = ServerQueue::ofApplication();
    }
    if (m_refused || !m_queue->isKnown()) {
        return false;
    }
    const auto id = static_cast<std::uint32_t>(window.winId());
    const std::lock_guard lock(m_mutex); // Nobody waits: it has not begun.
    if (m_pixels == nullptr || !m_pixels->isFor(id, size)) {
        m_pixels.reset();
        m_pixels = SharedPixels::create(id, size);
        m_refused = m_pixels == nullptr;
    }
    return !m_refused;
}

bool QuietShow::hasThread() {
    if (!m_thread.joinable()) {
        try {
            m_thread = std::thread([this] { run(); });
        } catch (const std::system_error&) {
            m_refused = true;
        }
    }
    return !m_refused;
}

bool QuietShow::end() {
    if (!m_begun) {
        return false;
    }
    m_begun = false;
    QCoreApplication::instance()->removeEventFilter(this);
    m_plays = false;
    const std::lock_guard lock(m_mutex);
    return true;
}

void QuietShow::release() {
    const std::lock_guard lock(m_mutex);
    m_hasShown = false;
    m_pixels.reset();
}

QImage QuietShow::picture() const {
    if (!m_hasShown) {
        return {};
    }
    const RasterTarget& target = m_pixels->target();
    return {target.pixels, target.width, target.height, static_cast<qsizetype>(target.bytesPerRow),
            QImage::Format_RGB32};
}

bool QuietShow::eventFilter(QObject* /*watched*/, QEvent* /*event*/) {
    if (end()) {
        m_ended();
    }
    return false;
}

void QuietShow::run() {
    std::unique_lock lock(m_mutex);
    while (!m_leaves) {
        if (!m_plays) {
            m_changed.wait(lock);
            continue;
        }
        showFrame();
        if (m_plays) {
            m_changed.wait_until(lock, std::chrono::steady_clock::time_point(m_next));
        }
    }
}

void QuietShow::showFrame() {
    if (!m_queue->isEmpty()) {
        m_pixels->waitUntilShown();
    }
    const Frame frame = m_draw(m_pixels->target(), m_lit);
    if (frame.drawn) {
        m_pixels->show(m_lit.changed(), m_place.x(), m_place.y());
        m_hasShown = true;
    }
    m_next = frame.next;
}

} // namespace starbloom
