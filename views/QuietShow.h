// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/raster/LitArea.h"
#include "engine/raster/RasterRenderer.h"
#include "views/ServerQueue.h"
#include "views/SharedPixels.h"

#include <QImage>
#include <QObject>
#include <QRect>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

class QWindow;

namespace starbloom {

/// Shows a picture that goes on by itself, from a thread of its own, while nothing else happens in the application.
///
/// To be woken by the toolkit for each frame, and to have it hand the frame to the screen, takes a third as long as
/// drawing does. The thread sleeps, draws, and tells the X11 server. Any event that comes to the application ends that
/// before it is handled, so all that handles events finds things as if there were no such thread: what drawing uses
/// belongs to the thread between begin() and end(), and to the GUI thread else.
///
/// Called by the GUI thread. Only with an X11 server that shares memory.
class QuietShow final : public QObject {
public:
    struct Frame {
        bool drawn = false;              ///< Whether one was due.
        std::chrono::nanoseconds next{}; ///< When the next one is, by the steady clock.
    };

    /// Draws the frame that is due into memory that holds the last one. Called by the thread; throws nothing.
    using Draw = std::function<Frame(const RasterTarget&, LitArea&)>;

    /// `ended` is called when an event has ended it, before that event is handled.
    QuietShow(Draw draw, std::function<void()> ended);
    ~QuietShow() override;

    /// Begins to show the picture in a place of a window, in the screen's pixels. False where that cannot be.
    bool begin(QWindow& window, const QRect& place);

    /// Ends it, which may take until a frame has been drawn. False when it has not begun.
    bool end();

    bool isPlaying() const { return m_begun; }

    /// Lets go of the memory, until the next begin(). Not while playing.
    void release();

    /// The picture shown last, in memory that stays until the next begin() or release(); none if it was ended before
    /// the first frame. Only after end().
    QImage picture() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool hasPixelsFor(QWindow& window, const QSize& size);
    bool hasThread();
    void run();
    void showFrame();

    Draw m_draw;
    std::function<void()> m_ended;
    bool m_begun = false;
    std::optional<ServerQueue> m_queue; ///< Known from the first begin() on.

    std::mutex m_mutex; ///< The thread has it but while it waits. Guards what follows.
    std::condition_variable m_changed;
    std::atomic<bool> m_plays = false; ///< Taken back without the mutex, which a thread behind its time hardly lets go.
    bool m_leaves = false;
    std::unique_ptr<SharedPixels> m_pixels;
    bool m_refused = false; ///< There is no such memory, or no thread.
    bool m_hasShown = false;
    QPoint m_place;
    LitArea m_lit;
    std::chrono::nanoseconds m_next{};

    std::thread m_thread; ///< Begun when first needed.
};

} // namespace starbloom
