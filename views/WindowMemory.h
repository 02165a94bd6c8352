// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "views/ServerQueue.h"

#include <QRect>

#include <optional>

class QBackingStore;
class QImage;
class QPaintDevice;

namespace starbloom {

/// The memory that a window's pixels are in, for a widget that writes its part of them itself, frame after frame.
///
/// When a widget is painted again, the toolkit asks an X11 server whether it has read the last frame out of the memory
/// that both share, and waits for the answer: three threads wake up for it. Here that question is left out when it need
/// not be asked: when the server has taken all that was sent to it, which a frame later is nearly always so. A server
/// that is behind is waited for as ever. One that is stopped between taking a frame and showing it may show parts of
/// the next one with it, until that is shown as a whole.
///
/// GUI thread.
class WindowMemory {
public:
    /// Begins to write in a place of the window, in points; end() follows. The answer is the memory of the whole
    /// window, or nothing when pixels cannot be written to it as they are.
    QImage* begin(QBackingStore& store, const QRect& place);

    /// Whether an X11 server reads it where it is.
    bool isShared() const { return m_shared; }

    /// The place has been painted in another way since, or may have been.
    void forget() { m_place = QRect(); }

    /// What is painted on, if a picture's pixels can be written to it as they are.
    static QImage* pixelsOf(QPaintDevice* device);

    /// Whether that address is in memory that other processes can see.
    static bool isShared(const void* address);

private:
    bool mayBeWritten() const { return m_shared && m_queue->isEmpty(); }

    std::optional<ServerQueue> m_queue; ///< Known from the first frame on.
    QRect m_place;                      ///< All of it has been begun with, and nobody has painted there since.
    const void* m_pixels = nullptr;     ///< The memory at that time.
    bool m_shared = false;              ///< With an X11 server.
};

} // namespace starbloom
